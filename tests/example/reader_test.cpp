#include "sdp_reader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <vector>

#include "descriptions.h"
#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/crypto.h"
#include "qova/media.h"

namespace {

using sdp::Role;

// The bytes 0 to 45 in base64: prefixes of it are keys of every suite's length.
const std::string key_30 = "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";
const std::string key_46 = "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8gISIjJCUmJygpKissLQ==";

sdp::Reading reading_of(const std::string& text) {
    return sdp::read(sdp::Description(text), Role::OFFER, sdp::Strictness::LENIENT);
}

std::string refusal_of(const std::string& text) {
    return refusal(
        [&] { sdp::read(sdp::Description(text), Role::OFFER, sdp::Strictness::LENIENT); });
}

// What is wrong with an audio line that has an attribute, which is line 7.
std::string refusal_of_attribute(const std::string& attribute) {
    return refusal_of(session({"m=audio 5004 RTP/AVP 0 96 97", attribute}));
}

template <class T>
const T& attribute(const QOVA_Media& media, std::size_t index = 0) {
    auto at = media.attributes.begin();
    std::advance(at, index);
    return dynamic_cast<const T&>(**at);
}

// The only media of a session that has one line with attributes.
class OneLine {
public:
    OneLine(std::initializer_list<std::string> lines) : reading(reading_of(session(lines))) {}

    const QOVA_Capability& capability() const { return *reading.capability; }
    const QOVA_Media& media() const { return *capability().filteredMedia.front(); }
    const QOVA_AudioAttribute& audio(std::size_t index = 0) const {
        return attribute<QOVA_AudioAttribute>(media(), index);
    }
    const QOVA_FaxAttribute& fax() const { return attribute<QOVA_FaxAttribute>(media()); }
    const QOVA_Crypto& crypto() const { return *media().cryptos.front(); }

private:
    sdp::Reading reading;
};

std::vector<int> codecs(const QOVA_Media& media,
                        QOVA_Codec QOVA_AudioAttribute::*member = &QOVA_AudioAttribute::codec) {
    std::vector<int> found;
    for (std::size_t i = 0; i < media.attributes.size(); ++i) {
        found.push_back(attribute<QOVA_AudioAttribute>(media, i).*member);
    }
    return found;
}

// --- Session -------------------------------------------------------------------------------------

TEST(SdpReader, TakesTheRoleFromItsCaller) {
    const std::string text = session({});
    EXPECT_TRUE(
        sdp::read(sdp::Description(text), Role::OFFER, sdp::Strictness::LENIENT).capability->offer);
    EXPECT_FALSE(sdp::read(sdp::Description(text), Role::ANSWER, sdp::Strictness::LENIENT)
                     .capability->offer);
}

TEST(SdpReader, KeepsTheOrderOfTheLinesAndSaysWhichMediaIsWhose) {
    const sdp::Reading reading = reading_of(
        session({"m=audio 5004 RTP/AVP 0", "m=text 7 TCP *", "m=video 5006 RTP/AVP 31"}));
    ASSERT_EQ(reading.media.size(), 3U);
    EXPECT_EQ(reading.media[0], reading.capability->filteredMedia.front());
    EXPECT_EQ(reading.media[1], nullptr);
    EXPECT_EQ(reading.media[2], reading.capability->filteredMedia.back());
}

TEST(SdpReader, AcceptsEveryLineEnding) {
    const std::string with_crlf = session({"m=audio 5004 RTP/AVP 0 101", "a=ptime:20"});
    for (const char* const ending : {"\n", "\r", "\r\n\r\n", " \n"}) {
        std::string text = with_crlf;
        for (std::size_t at = text.find("\r\n"); at != std::string::npos;
             at = text.find("\r\n", at + std::strlen(ending))) {
            text.replace(at, 2, ending);
        }
        EXPECT_EQ(std::string(*reading_of(text).capability),
                  std::string(*reading_of(with_crlf).capability));
    }
}

TEST(SdpReader, AcceptsATextWithoutFinalLineEnding) {
    const sdp::Reading reading =
        reading_of("v=0\no=- 1 1 IN IP4 10.0.0.1\nc=IN IP4 10.0.0.1\nm=audio 5004 RTP/AVP 0");
    EXPECT_EQ(codecs(*reading.media[0]), std::vector<int>{CODEC_G711_ULAW});
}

TEST(SdpReader, PassesOverBlankLinesAndLeadingBlanks) {
    const sdp::Reading reading = reading_of(
        session({"m=audio 5004 RTP/AVP 0", "", " \t", "  a=ptime:20", "\ta=maxptime:40"}));
    EXPECT_EQ(attribute<QOVA_AudioAttribute>(*reading.media[0]).framing, 20);
    EXPECT_EQ(attribute<QOVA_AudioAttribute>(*reading.media[0]).mxFraming, 40);
}

struct Direction {
    const char* of_session;
    const char* of_line;
    bool bsnd;
    bool brcv;
};

class SdpDirections : public testing::TestWithParam<Direction> {};

TEST_P(SdpDirections, OfTheLineElseOfTheSessionElseBoth) {
    const auto [of_session, of_line, bsnd, brcv] = GetParam();
    const OneLine line = {of_session, "m=audio 5004 RTP/AVP 0", of_line};
    EXPECT_EQ(line.media().bsnd, bsnd);
    EXPECT_EQ(line.media().brcv, brcv);
}

INSTANTIATE_TEST_SUITE_P(Table, SdpDirections,
                         testing::Values(Direction{"", "", true, true},
                                         Direction{"", "a=sendrecv", true, true},
                                         Direction{"", "a=sendonly", true, false},
                                         Direction{"", "a=recvonly", false, true},
                                         Direction{"", "a=inactive", false, false},
                                         Direction{"a=sendonly", "", true, false},
                                         Direction{"a=recvonly", "", false, true},
                                         Direction{"a=inactive", "a=sendrecv", true, true},
                                         Direction{"a=sendonly", "a=recvonly", false, true}));

TEST(SdpHold, AsksEveryAudioLineThatIsNotRejected) {
    const auto hold = [](std::initializer_list<std::string> media) {
        return reading_of(session(media)).capability->hold;
    };
    const std::string audio = "m=audio 5004 RTP/AVP 0";
    EXPECT_FALSE(hold({audio}));
    EXPECT_FALSE(hold({audio, "a=recvonly"}));
    EXPECT_TRUE(hold({audio, "a=sendonly"}));
    EXPECT_TRUE(hold({audio, "a=inactive"}));
    EXPECT_TRUE(hold({"a=sendonly", audio}));
    EXPECT_TRUE(hold({audio, "c=IN IP4 0.0.0.0"}));
    EXPECT_TRUE(hold({audio, "c=IN IP6 ::"}));
    EXPECT_FALSE(hold({audio, "a=sendonly", audio}));
    EXPECT_TRUE(hold({audio, "a=sendonly", audio, "a=inactive"}));
    EXPECT_TRUE(hold({audio, "a=sendonly", "m=audio 0 RTP/AVP 0"}));
    EXPECT_TRUE(hold({audio, "a=sendonly", "m=video 5006 RTP/AVP 31"}));
}

TEST(SdpHold, NeedsAnAudioLineThatIsNotRejected) {
    EXPECT_FALSE(reading_of(session({})).capability->hold);
    EXPECT_FALSE(reading_of(session({"m=audio 0 RTP/AVP 0", "a=sendonly"})).capability->hold);
    EXPECT_FALSE(reading_of(session({"m=video 5006 RTP/AVP 31", "a=sendonly"})).capability->hold);
}

TEST(SdpSilenceSuppression, IsSignalledByAnyLineThatTurnsItOn) {
    const auto signalled = [](std::initializer_list<std::string> media) {
        return reading_of(session(media)).capability->silenceSuppSdp;
    };
    EXPECT_FALSE(signalled({"m=audio 5004 RTP/AVP 0"}));
    EXPECT_TRUE(signalled({"a=silenceSupp:on - - - -", "m=audio 5004 RTP/AVP 0"}));
    EXPECT_TRUE(signalled(
        {"m=audio 5004 RTP/AVP 0", "m=audio 5006 RTP/AVP 0", "a=silenceSupp:on - - - -"}));
    EXPECT_FALSE(signalled({"m=audio 5004 RTP/AVP 0", "a=silenceSupp:off - - - -"}));
    EXPECT_TRUE(signalled(
        {"a=silenceSupp:on - - - -", "m=audio 5004 RTP/AVP 0", "a=silenceSupp:off - - - -"}));
}

// --- Lines ---------------------------------------------------------------------------------------

struct Kind {
    const char* line;
    QOVA_Media::e_MediaType type;  // MT_NIL: passed through
    QOVA_Media::e_AttributeType attribute_type;
};

class SdpKinds : public testing::TestWithParam<Kind> {};

TEST_P(SdpKinds, FollowTheMediaLine) {
    const auto [line, type, attribute_type] = GetParam();
    const sdp::Reading reading = reading_of(session({line}));
    if (type == QOVA_Media::MT_NIL) {
        EXPECT_TRUE(reading.capability->filteredMedia.empty());
        EXPECT_EQ(reading.capability->passThrough, std::string(line) + "\r\n");
        return;
    }
    EXPECT_EQ(reading.capability->passThrough, "");
    ASSERT_NE(reading.media[0], nullptr);
    EXPECT_EQ(reading.media[0]->mediaType, type);
    EXPECT_EQ(reading.media[0]->mediaStatus, QOVA_Media::MS_ACCEPTED);
    EXPECT_EQ(reading.media[0]->attributes.size(), 1U);
    EXPECT_NE(reading.media[0]->find(attribute_type, QOVA_Media::MS_ACCEPTED), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SdpKinds,
    testing::Values(Kind{"m=audio 5004 RTP/AVP 0", QOVA_Media::MT_AUDIO, QOVA_Media::AT_AUDIO},
                    Kind{"m=audio 5004 RTP/AVPF 0", QOVA_Media::MT_AUDIO, QOVA_Media::AT_AUDIO},
                    Kind{"m=audio 5004 RTP/SAVP 0", QOVA_Media::MT_AUDIO, QOVA_Media::AT_AUDIO},
                    Kind{"m=audio 5004 RTP/SAVPF 0", QOVA_Media::MT_AUDIO, QOVA_Media::AT_AUDIO},
                    Kind{"m=audio 5004 rtp/avp 0", QOVA_Media::MT_AUDIO, QOVA_Media::AT_AUDIO},
                    Kind{"m=audio 9 UDP/TLS/RTP/SAVPF 0", QOVA_Media::MT_AUDIO,
                         QOVA_Media::AT_AUDIO},
                    Kind{"m=audio 5004 udp 0", QOVA_Media::MT_NIL, QOVA_Media::AT_NIL},
                    Kind{"m=audio 5004 XRTP/AVP 0", QOVA_Media::MT_NIL, QOVA_Media::AT_NIL},
                    Kind{"m=video 5004 RTP/AVPF 31", QOVA_Media::MT_VIDEO, QOVA_Media::AT_VIDEO},
                    Kind{"m=video 5004 udp 31", QOVA_Media::MT_NIL, QOVA_Media::AT_NIL},
                    Kind{"m=image 6666 udptl t38", QOVA_Media::MT_FAX, QOVA_Media::AT_FAX},
                    Kind{"m=image 6666 UDPTL T38", QOVA_Media::MT_FAX, QOVA_Media::AT_FAX},
                    Kind{"m=image 6666 UDP/TLS/UDPTL t38", QOVA_Media::MT_FAX, QOVA_Media::AT_FAX},
                    Kind{"m=image 6666 TCP t38", QOVA_Media::MT_FAX, QOVA_Media::AT_FAX},
                    Kind{"m=image 6666 tcptl t38", QOVA_Media::MT_FAX, QOVA_Media::AT_FAX},
                    Kind{"m=image 6666 udptl jpip", QOVA_Media::MT_NIL, QOVA_Media::AT_NIL},
                    Kind{"m=image 6666 RTP/AVP 96", QOVA_Media::MT_NIL, QOVA_Media::AT_NIL},
                    Kind{"m=application 5004 UDP/BFCP *", QOVA_Media::MT_DATA, QOVA_Media::AT_DATA},
                    Kind{"m=message 2855 TCP/MSRP *", QOVA_Media::MT_DATA, QOVA_Media::AT_DATA},
                    Kind{"m=data 5004 udp x", QOVA_Media::MT_DATA, QOVA_Media::AT_DATA},
                    Kind{"m=text 5004 RTP/AVP 98", QOVA_Media::MT_NIL, QOVA_Media::AT_NIL},
                    Kind{"m=control 5004 udp x", QOVA_Media::MT_NIL, QOVA_Media::AT_NIL},
                    Kind{"m=x-new 5004 udp x", QOVA_Media::MT_NIL, QOVA_Media::AT_NIL}));

TEST(SdpMedia, HasOneAttributeForEachFormat) {
    EXPECT_EQ(OneLine({"m=video 5004 RTP/AVP 31 34 96"}).media().attributes.size(), 3U);
    EXPECT_EQ(OneLine({"m=message 5004 TCP/MSRP a b"}).media().attributes.size(), 2U);
    EXPECT_EQ(OneLine({"m=data 5004 RTP 100 101"}).media().attributes.size(), 2U);
    EXPECT_EQ(OneLine({"m=image 6666 udptl t38 x"}).media().attributes.size(), 1U);
    EXPECT_EQ(OneLine({"m=audio 5004 RTP/AVP"}).media().attributes.size(), 0U);
    EXPECT_EQ(OneLine({"m=audio 5004 RTP/AVP 0 8 0"}).media().attributes.size(), 2U);
}

TEST(SdpMedia, OfDataHasTheRtpPayloadTypeAsItsType) {
    const OneLine rtp = {"m=application 5004 RTP/AVP 100"};
    EXPECT_EQ(attribute<QOVA_DataAttribute>(rtp.media()).type, 100);
    const OneLine other = {"m=application 5004 DTLS/SCTP 5000"};
    EXPECT_EQ(attribute<QOVA_DataAttribute>(other.media()).type, 0);
}

TEST(SdpMedia, IsRejectedAtPortZero) {
    const OneLine line = {"m=audio 0 RTP/AVP 0", "a=rtcp:5005", "a=sendonly"};
    EXPECT_EQ(line.media().mediaStatus, QOVA_Media::MS_REJECTED);
    EXPECT_EQ(line.audio().status, QOVA_Media::MS_REJECTED);
    EXPECT_EQ(line.media().sndPort, 0);
    EXPECT_EQ(line.media().rcvPort, 0);
    EXPECT_EQ(line.media().sndPort2, 0);
    EXPECT_EQ(line.media().rcvPort2, 0);
    EXPECT_TRUE(line.media().bsnd);
    EXPECT_FALSE(line.media().brcv);
}

using Ports = std::tuple<int, int, int, int>;

Ports ports(const OneLine& line) {
    return {line.media().sndPort, line.media().rcvPort, line.media().sndPort2,
            line.media().rcvPort2};
}

TEST(SdpMedia, HasTheRtcpPortAsItsSecondPort) {
    EXPECT_EQ(ports({"m=audio 5004 RTP/AVP 0"}), Ports(5004, 5004, 5005, 5005));
    EXPECT_EQ(ports({"m=audio 5004 RTP/AVP 0", "a=rtcp:53020"}), Ports(5004, 5004, 53020, 53020));
    EXPECT_EQ(ports({"m=audio 5004 RTP/AVP 0", "a=rtcp:53020 IN IP4 10.0.0.1"}),
              Ports(5004, 5004, 53020, 53020));
    EXPECT_EQ(ports({"m=image 6666 udptl t38"}), Ports(6666, 6666, 6667, 6667));
    EXPECT_EQ(ports({"m=audio 5004/2 RTP/AVP 0"}), Ports(5004, 5004, 5005, 5005));
    EXPECT_EQ(ports({"m=audio 65535 RTP/AVP 0"}), Ports(65535, 65535, 0, 0));
}

TEST(SdpMedia, HasItsOwnAddressElseTheSessions) {
    const auto address = [](std::initializer_list<std::string> media) {
        return reading_of(session(media)).media[0]->address->ToString();
    };
    const std::string audio = "m=audio 5004 RTP/AVP 0";
    EXPECT_EQ(address({audio}), "10.0.0.1");
    EXPECT_EQ(address({audio, "c=IN IP4 10.0.0.2"}), "10.0.0.2");
    EXPECT_EQ(address({audio, "c=IN IP6 2001:DB8::2"}), "2001:db8::2");
    EXPECT_EQ(address({audio, "c=IN IP4 224.2.1.1/127/3"}), "224.2.1.1");
    EXPECT_EQ(address({audio, "c=in ip4  10.0.0.3 "}), "10.0.0.3");
    EXPECT_EQ(address({audio, "c=IN IP4 10.0.0.4", "c=IN IP4 10.0.0.5"}), "10.0.0.4");
}

TEST(SdpMedia, MayLackAnAddressWhenRejectedOrPassedThrough) {
    const std::string head = lines({"v=0", "o=- 1 1 IN IP4 host.example.com", "s=-"});
    const sdp::Reading reading =
        reading_of(head + lines({"m=audio 0 RTP/AVP 0", "m=text 5004 RTP/AVP 98"}));
    EXPECT_EQ(reading.media[0]->address->ToString(), "0.0.0.0");
    EXPECT_EQ(refusal_of(head + lines({"m=audio 5004 RTP/AVP 0"})),
              "4: no c= line gives this media an address");
}

// --- Audio ---------------------------------------------------------------------------------------

struct CodecRow {
    const char* payload;
    const char* rtpmap;
    int codec;
};

class SdpCodecs : public testing::TestWithParam<CodecRow> {};

TEST_P(SdpCodecs, FollowNameAndRateElseTheStaticTypeElseTheNumber) {
    const auto [payload, rtpmap, codec] = GetParam();
    const std::string map =
        *rtpmap == '\0' ? "" : "a=rtpmap:" + (payload + (" " + std::string(rtpmap)));
    EXPECT_EQ(codecs(OneLine({std::string("m=audio 5004 RTP/AVP ") + payload, map}).media()),
              std::vector<int>{codec});
}

INSTANTIATE_TEST_SUITE_P(
    Table, SdpCodecs,
    testing::Values(
        CodecRow{"0", "", CODEC_G711_ULAW}, CodecRow{"8", "", CODEC_G711_ALAW},
        CodecRow{"4", "", CODEC_G723}, CodecRow{"18", "", CODEC_G729},
        CodecRow{"9", "", CODEC_G722}, CodecRow{"9", "G722/16000", CODEC_G722},
        CodecRow{"96", "PCMU/8000", CODEC_G711_ULAW},
        CodecRow{"96", "pcma/8000/1", CODEC_G711_ALAW}, CodecRow{"96", "G723/8000", CODEC_G723},
        CodecRow{"96", "G729/8000", CODEC_G729}, CodecRow{"96", "g729a/8000", CODEC_G729A},
        CodecRow{"18", "G729A/8000", CODEC_G729A}, CodecRow{"96", "AMR-WB/16000", CODEC_G722_2},
        CodecRow{"127", "opus/48000/2", CODEC_OPUS}, CodecRow{"96", "PCMU/16000", 96},
        CodecRow{"97", "iLBC/8000", 97}, CodecRow{"127", "", 127}, CodecRow{"1", "", CODEC_NIL},
        CodecRow{"3", "", CODEC_NIL}, CodecRow{"5", "", CODEC_NIL}, CodecRow{"10", "", CODEC_NIL},
        CodecRow{"13", "CN/8000", CODEC_NIL}, CodecRow{"95", "", CODEC_NIL},
        CodecRow{"35", "iLBC/8000", CODEC_NIL}));

TEST(SdpAudio, KeepsTheOrderOfThePayloads) {
    const OneLine line = {"m=audio 5004 RTP/AVPF 18 97 0 3 8", "a=rtpmap:97 x/8000"};
    EXPECT_EQ(codecs(line.media()),
              (std::vector<int>{CODEC_G729, 97, CODEC_G711_ULAW, CODEC_NIL, CODEC_G711_ALAW}));
}

TEST(SdpAudio, CarriesToneEventsInThePayloadsOfTheirClockRate) {
    const OneLine line = {"m=audio 5004 RTP/AVP 0 104 111 9 98 97 101 102 105",
                          "a=rtpmap:104 AMR-WB/16000",
                          "a=rtpmap:111 opus/48000/2",
                          "a=rtpmap:98 speex/32000",
                          "a=rtpmap:101 telephone-event/8000",
                          "a=rtpmap:102 Telephone-Event/16000",
                          "a=rtpmap:105 telephone-event/8000"};
    EXPECT_EQ(codecs(line.media()),
              (std::vector<int>{CODEC_G711_ULAW, CODEC_G722_2, CODEC_OPUS, CODEC_G722, 98, 97}));
    EXPECT_EQ(codecs(line.media(), &QOVA_AudioAttribute::mf),
              (std::vector<int>{101, 102, CODEC_NIL, 101, CODEC_NIL, CODEC_NIL}));
    EXPECT_NE(line.capability().find_mf(static_cast<QOVA_Codec>(102)), nullptr);
}

TEST(SdpAudio, TakesFramingFromPtimeAndMaxptime) {
    const OneLine line = {"m=audio 5004 RTP/AVP 0 8", "a=ptime:20", "a=maxptime: 60 "};
    for (const std::size_t i : {0U, 1U}) {
        EXPECT_EQ(line.audio(i).framing, 20);
        EXPECT_EQ(line.audio(i).mxFraming, 60);
    }
    EXPECT_EQ(OneLine({"m=audio 5004 RTP/AVP 0"}).audio().framing, 0);
    EXPECT_EQ(OneLine({"m=audio 5004 RTP/AVP 0"}).audio().mxFraming, 0);
}

struct VadRow {
    const char* of_session;
    const char* payload;
    const char* of_line;
    const char* fmtp;
    bool vad;
};

class SdpVad : public testing::TestWithParam<VadRow> {};

TEST_P(SdpVad, AsksTheAnnexThenTheLineThenTheSession) {
    const auto [of_session, payload, of_line, fmtp, vad] = GetParam();
    const std::string parameters =
        *fmtp == '\0' ? "" : "a=fmtp:" + (payload + (" " + std::string(fmtp)));
    const OneLine line = {of_session, std::string("m=audio 5004 RTP/AVP ") + payload, of_line,
                          parameters};
    EXPECT_EQ(line.audio().vad, vad);
}

constexpr char on[] = "a=silenceSupp:on - - - -";
constexpr char off[] = "a=silenceSupp:off - - - -";
INSTANTIATE_TEST_SUITE_P(
    Table, SdpVad,
    testing::Values(VadRow{"", "18", "", "", true}, VadRow{"", "18", "", "annexb=no", false},
                    VadRow{"", "18", "", "annexb=yes", true},
                    VadRow{"", "18", "", "x=1; AnnexB = NO ;", false},
                    VadRow{"", "18", off, "", false}, VadRow{"", "18", off, "annexb=yes", true},
                    VadRow{"", "18", on, "annexb=no", false}, VadRow{"", "4", "", "", true},
                    VadRow{"", "4", "", "bitrate=6.3;annexa=no", false},
                    VadRow{"", "4", "", "annexb=no", true}, VadRow{"", "0", "", "", false},
                    VadRow{"", "0", on, "", true}, VadRow{on, "0", "", "", true},
                    VadRow{on, "0", off, "", false}, VadRow{off, "18", "", "", false},
                    VadRow{on, "0", "a=silenceSupp:- - - - -", "", true},
                    VadRow{"", "8", "", "annexb=yes", false}));

TEST(SdpAmrwb, FillsTheParametersOfTheLine) {
    const auto amrwb = [](const std::string& map, const std::string& parameters) {
        const OneLine line = {"m=audio 5004 RTP/AVP 104", "a=rtpmap:104 " + map,
                              "a=fmtp:104 " + parameters};
        return std::string(*line.media().amrwbParam);
    };
    for (const std::string parameter :
         {"octet-align=1", "mode-set=0,2,8", "mode-change-period=2", "mode-change-capability=2",
          "mode-change-neighbor=1", "crc=0", "robust-sorting=1", "interleaving=30", "channels=3",
          "max-red=220"}) {
        EXPECT_EQ(amrwb("AMR-WB/16000", parameter), " AMR-WB(payload-type=104; " + parameter + ")");
    }
    EXPECT_EQ(amrwb("AMR-WB/16000/2", "unknown; Mode-Set=0, 2,8 ;CRC = 1;max-red=2;other=x;"),
              " AMR-WB(payload-type=104; mode-set=0,2,8; crc=1; channels=2; max-red=2)");
}

TEST(SdpAmrwb, OfTheFirstSuchPayloadOnlyButOfAllItsLines) {
    const OneLine line = {"m=audio 5004 RTP/AVP 105 104",    "a=rtpmap:104 AMR-WB/16000",
                          "a=rtpmap:105 AMR-WB/16000",       "a=fmtp:104 octet-align=1; crc=1",
                          "a=fmtp:105 mode-change-period=2", "a=fmtp:105 octet-align=0"};
    EXPECT_EQ(line.media().amrwbParam->payloadType, 105);
    EXPECT_EQ(line.media().amrwbParam->octetAlign, 0);
    EXPECT_EQ(line.media().amrwbParam->modeChangePeriod, 2);
    EXPECT_EQ(line.media().amrwbParam->crc, +Sdp::Sdp_Amrwb_Param::ABSENT);
}

TEST(SdpOpus, FillsTheParametersOfTheLine) {
    const auto opus = [](const std::string& parameters) {
        const OneLine line = {"m=audio 5004 RTP/AVP 111", "a=rtpmap:111 opus/48000/2",
                              "a=fmtp:111 " + parameters};
        return std::string(*line.media().opusParam);
    };
    for (const std::string parameter :
         {"maxplaybackrate=48000", "sprop-maxcapturerate=16000", "maxaveragebitrate=510000",
          "stereo=1", "cbr=1", "useinbandfec=1", "usedtx=1", "maxptime=120", "sprop-stereo=1"}) {
        EXPECT_EQ(opus(parameter), " opus(" + parameter + ")");
    }
    EXPECT_EQ(opus("stereo=1; cbr=0;minptime=10;usedtx=1"), " opus(stereo=1; usedtx=1)");
}

TEST(SdpOpus, ParametersOfOtherPayloadsPlayNoPart) {
    const OneLine line = {"m=audio 5004 RTP/AVP 0 111 112",
                          "a=rtpmap:111 opus/48000/2",
                          "a=rtpmap:112 opus/48000/2",
                          "a=fmtp:112 stereo=1",
                          "a=fmtp:0 stereo=1",
                          "a=fmtp:99 stereo=1"};
    EXPECT_EQ(std::string(*line.media().opusParam), "");
}

// --- Fax -----------------------------------------------------------------------------------------

TEST(SdpFax, TakesTheT38Attributes) {
    const OneLine line = {"m=image 6666 udptl t38",
                          "a=T38FaxVersion:3",
                          "a=T38MaxBitRate:33600",
                          "a=T38FaxFillBitRemoval",
                          "a=T38FaxTranscodingMMR:1",
                          "a=t38faxtranscodingjbig:0",
                          "a=T38FaxRateManagement:transferredTCF",
                          "a=T38FaxMaxBuffer:2000",
                          "a=T38FaxMaxDatagram:4294967295",
                          "a=T38FaxUdpEC:t38UDPFEC"};
    EXPECT_EQ(line.fax().transport, FT_T38_UDPTL);
    EXPECT_EQ(line.fax().mxRate, 33600U);
    EXPECT_TRUE(line.fax().fillBit);
    EXPECT_TRUE(line.fax().transMMR);
    EXPECT_FALSE(line.fax().transJBIG);
    EXPECT_EQ(line.fax().rateMgt, RM_TRFTCF);
    EXPECT_EQ(line.fax().mxBuffer, 2000U);
    EXPECT_EQ(line.fax().mxDgram, 4294967295U);
    EXPECT_EQ(line.fax().errCorr, 2U);
    EXPECT_EQ(line.fax().red, 0U);
    EXPECT_EQ(line.fax().depth, 0U);
}

TEST(SdpFax, NamesEachValue) {
    const auto fax = [](const std::string& attribute) {
        return OneLine({"m=image 6666 TCP t38", attribute}).fax();
    };
    EXPECT_EQ(fax("").transport, FT_T38_TCP);
    EXPECT_EQ(fax("").rateMgt, RM_NIL);
    EXPECT_EQ(fax("a=T38FaxRateManagement:localTCF").rateMgt, RM_LOCALTCF);
    EXPECT_EQ(fax("a=T38FaxUdpEC:t38UDPNoEC").errCorr, 0U);
    EXPECT_EQ(fax("a=T38FaxUdpEC:t38UDPRedundancy").errCorr, 1U);
    EXPECT_FALSE(fax("").fillBit);
    EXPECT_TRUE(fax("a=T38FaxTranscodingJBIG").transJBIG);
}

// --- Crypto --------------------------------------------------------------------------------------

TEST(SdpCrypto, TakesTagSuiteLifetimeMkiAndKey) {
    const OneLine line = {"m=audio 5004 RTP/SAVP 0",
                          "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" + key_30 + "|2^20|258:4"};
    EXPECT_EQ(line.media().cryptoCount, 1U);
    EXPECT_EQ(line.crypto().tag, 1U);
    EXPECT_EQ(line.crypto().algo, CS_AES_CM_128_HMAC_SHA1_80);
    ASSERT_EQ(line.crypto().keys.size(), 1U);
    const QOVA_CryptoKey& key = line.crypto().keys.front();
    EXPECT_EQ(key.lifetime, 1048576U);
    EXPECT_EQ(key.mkiSize, 4);
    const unsigned char mki[8] = {0, 0, 1, 2};
    EXPECT_EQ(std::memcmp(key.mki, mki, sizeof mki), 0);
    for (unsigned i = 0; i < sizeof key.key; ++i) {
        EXPECT_EQ(key.key[i], i < 30 ? i : 0);
    }
}

TEST(SdpCrypto, TakesLinesAndKeysInOrder) {
    const OneLine line = {"m=audio 5004 RTP/SAVP 0",
                          "a=crypto:7 AES_256_CM_HMAC_SHA1_80 inline:" + key_46 +
                              "|1:1;inline:" + key_46 + "|2:1 FEC_ORDER=FEC_SRTP",
                          "a=crypto:999999999 AEAD_AES_128_GCM inline:" + key_46.substr(0, 38)};
    EXPECT_EQ(line.media().cryptoCount, 2U);
    ASSERT_EQ(line.media().cryptos.size(), 2U);
    ASSERT_EQ(line.crypto().keys.size(), 2U);
    EXPECT_EQ(line.crypto().keys.front().mki[0], 1);
    EXPECT_EQ(line.crypto().keys.back().mki[0], 2);
    EXPECT_EQ(line.crypto().keys.back().lifetime, 0U);
    EXPECT_EQ(line.crypto().keys.back().key[45], 45);
    EXPECT_EQ(line.media().cryptos.back()->tag, 999999999U);
    EXPECT_EQ(line.media().cryptos.back()->keys.front().mkiSize, 0);
    EXPECT_EQ(line.media().cryptos.back()->keys.front().key[27], 27);
}

TEST(SdpCrypto, BelongsToLinesOfEveryKind) {
    const std::string crypto = "a=crypto:1 AES_CM_128_HMAC_SHA1_32 inline:" + key_30;
    const sdp::Reading reading =
        reading_of(session({crypto, "m=video 5004 RTP/SAVP 31", crypto, "m=audio 0 RTP/AVP 0",
                            crypto, crypto, "m=audio 5006 RTP/AVP 0"}));
    EXPECT_EQ(reading.media[0]->cryptoCount, 1U);
    EXPECT_EQ(reading.media[1]->cryptoCount, 2U);
    EXPECT_EQ(reading.media[2]->cryptoCount, 0U);
}

TEST(SdpCrypto, KeepsALineOfAnUnknownSuiteWithoutItsKeys) {
    const OneLine line = {"m=audio 5004 RTP/SAVP 0", "a=crypto:3 NEW_SUITE uri:whatever"};
    EXPECT_EQ(line.media().cryptoCount, 1U);
    EXPECT_EQ(line.crypto().tag, 3U);
    EXPECT_EQ(line.crypto().algo, CS_NIL);
    EXPECT_TRUE(line.crypto().keys.empty());
}

TEST(SdpCrypto, ReadsEveryFormOfLifetime) {
    const auto lifetime = [](const std::string& text) {
        return OneLine({"m=audio 5004 RTP/SAVP 0",
                        "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" + key_30 + "|" + text})
            .crypto()
            .keys.front()
            .lifetime;
    };
    EXPECT_EQ(lifetime("2^0"), 1U);
    EXPECT_EQ(lifetime("2^31"), 2147483648U);
    EXPECT_EQ(lifetime("2^32"), 4294967295U);
    EXPECT_EQ(lifetime("2^48"), 4294967295U);
    EXPECT_EQ(lifetime("1"), 1U);
    EXPECT_EQ(lifetime("4294967294"), 4294967294U);
    EXPECT_EQ(lifetime("281474976710656"), 4294967295U);
}

TEST(SdpCrypto, ReadsAnMkiOfEightBytes) {
    const OneLine line = {"m=audio 5004 RTP/SAVP 0", "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" +
                                                         key_30 + "|18446744073709551614:8"};
    const unsigned char mki[8] = {255, 255, 255, 255, 255, 255, 255, 254};
    EXPECT_EQ(std::memcmp(line.crypto().keys.front().mki, mki, sizeof mki), 0);
}

TEST(SdpCrypto, AcceptsBase64WithoutItsPadding) {
    const OneLine line = {"m=audio 5004 RTP/SAVP 0",
                          "a=crypto:1 AES_256_CM_HMAC_SHA1_80 inline:" + key_46.substr(0, 62)};
    EXPECT_EQ(line.crypto().keys.front().key[45], 45);
}

struct BrokenCrypto {
    std::string value;
    const char* message;
};

class SdpBrokenCrypto : public testing::TestWithParam<BrokenCrypto> {};

TEST_P(SdpBrokenCrypto, IsRefusedWithItsLineAndWithoutItsKey) {
    const std::string refused =
        refusal_of(session({"m=audio 5004 RTP/SAVP 0", "a=crypto:" + GetParam().value}));
    EXPECT_EQ(refused, std::string("7: a=crypto") + GetParam().message);
    EXPECT_EQ(refused.find("AAEC"), std::string::npos);
}

const std::string suite = "1 AES_CM_128_HMAC_SHA1_80 ";
const std::string inline_30 = suite + "inline:" + key_30;
INSTANTIATE_TEST_SUITE_P(
    Table, SdpBrokenCrypto,
    testing::Values(
        BrokenCrypto{"", " needs a tag, a suite and a key"},
        BrokenCrypto{"1 AES_CM_128_HMAC_SHA1_80", " needs a tag, a suite and a key"},
        BrokenCrypto{"x AES_CM_128_HMAC_SHA1_80 inline:" + key_30,
                     ": tag: the value is no number from 0 to 999999999"},
        BrokenCrypto{"1000000000 AES_CM_128_HMAC_SHA1_80 inline:" + key_30,
                     ": tag: the value is no number from 0 to 999999999"},
        BrokenCrypto{suite + key_30, ": a key is not given inline"},
        BrokenCrypto{suite + "uri:" + key_30, ": a key is not given inline"},
        BrokenCrypto{inline_30 + ";", ": a key is not given inline"},
        BrokenCrypto{suite + "inline:", ": a key has not the length that the suite asks for"},
        BrokenCrypto{suite + "inline:" + key_30.substr(4),
                     ": a key has not the length that the suite asks for"},
        BrokenCrypto{suite + "inline:" + key_46,
                     ": a key has not the length that the suite asks for"},
        BrokenCrypto{suite + "inline:" + key_46 + "AAEC", ": a key is not base64, or too long"},
        BrokenCrypto{suite + "inline:" + key_46.substr(0, 62) + "AAEC",
                     ": a key is not base64, or too long"},
        BrokenCrypto{suite + "inline:" + key_30.substr(0, 39),
                     ": a key has not the length that the suite asks for"},
        BrokenCrypto{suite + "inline:" + key_30.substr(0, 37),
                     ": a key is not base64, or too long"},
        BrokenCrypto{inline_30 + "=", ": a key is not base64, or too long"},
        BrokenCrypto{inline_30 + "====", ": a key is not base64, or too long"},
        BrokenCrypto{suite + "inline:" + key_30.substr(0, 39) + "*",
                     ": a key is not base64, or too long"},
        BrokenCrypto{inline_30 + "|", ": the lifetime is no number of packets up to 2^48"},
        BrokenCrypto{inline_30 + "|0", ": the lifetime is no number of packets up to 2^48"},
        BrokenCrypto{inline_30 + "|2^49", ": the lifetime is no number of packets up to 2^48"},
        BrokenCrypto{inline_30 + "|2^", ": the lifetime is no number of packets up to 2^48"},
        BrokenCrypto{inline_30 + "|3^2", ": the lifetime is no number of packets up to 2^48"},
        BrokenCrypto{inline_30 + "|281474976710657",
                     ": the lifetime is no number of packets up to 2^48"},
        BrokenCrypto{inline_30 + "|1:0", ": the MKI's length is no number from 1 to 8"},
        BrokenCrypto{inline_30 + "|1:9", ": the MKI's length is no number from 1 to 8"},
        BrokenCrypto{inline_30 + "|1:", ": the MKI's length is no number from 1 to 8"},
        BrokenCrypto{inline_30 + "|256:1", ": the MKI is no number of that length"},
        BrokenCrypto{inline_30 + "|x:1", ": the MKI is no number of that length"},
        BrokenCrypto{inline_30 + "|:1", ": the MKI is no number of that length"},
        BrokenCrypto{inline_30 + "|1:1|2^20", ": something follows a key's lifetime and MKI"},
        BrokenCrypto{inline_30 + "|2^20|2^20", ": something follows a key's lifetime and MKI"}));

// --- Pass-through --------------------------------------------------------------------------------

TEST(SdpPassThrough, IsTheLinesAsTheyCame) {
    const sdp::Reading reading =
        reading_of(lines({"v=0", "o=- 1 1 IN IP4 10.0.0.1", "c=IN IP4 10.0.0.1",
                          "m=text 1 RTP/AVP 98", " a=x: y ", "m=audio 5004 RTP/AVP 0"}) +
                   "m=y 2 z *\na=last");
    EXPECT_EQ(reading.capability->passThrough,
              "m=text 1 RTP/AVP 98\r\n a=x: y \r\nm=y 2 z *\na=last");
    EXPECT_EQ(reading.capability->filteredMedia.size(), 1U);
}

TEST(SdpPassThrough, WithholdsKeys) {
    const sdp::Reading reading = reading_of(
        session({"m=text 1 RTP/AVP 98", "k=clear:secret", " k=base64:secret",
                 "a=Crypto:1 AES_CM_128_HMAC_SHA1_80 inline:secret", "a=crypto :secret",
                 "a=key-mgmt:mikey secret", "a=ice-pwd:secret", "a=x-crypto:1 Inline:secret",
                 "i=inline:secret", "a=crypto", "a=kept"}));
    EXPECT_EQ(
        reading.capability->passThrough,
        lines({"m=text 1 RTP/AVP 98", "k=(withheld)", " k(withheld)", "a=Crypto:(withheld)",
               "a=crypto :(withheld)", "a=key-mgmt:(withheld)", "a=ice-pwd:(withheld)",
               "a=x-crypto:1 Inline:(withheld)", "i=inline:(withheld)", "a=crypto", "a=kept"}));
}

// --- Refusals ------------------------------------------------------------------------------------

TEST(SdpRefusal, OfWhatIsNoDescription) {
    EXPECT_EQ(refusal_of(""), "0: no session description: there is nothing in it");
    EXPECT_EQ(refusal_of("\r\n \n"), "0: no session description: there is nothing in it");
    EXPECT_EQ(refusal_of("hello"), "1: no session description: it does not begin with v=0");
    EXPECT_EQ(refusal_of("\nv=1\n"), "2: no session description: it does not begin with v=0");
    EXPECT_EQ(refusal_of("\xef\xbb\xbfv=0\n"), "1: a byte-order mark stands before v=");
    EXPECT_EQ(refusal_of("v=0\n"), "1: no o= line follows");
}

TEST(SdpRefusal, OfLinesThatTheParserWouldPassOverOrMerge) {
    EXPECT_EQ(refusal_of(session({"m=audio 5004 RTP/AVP 0", "nonsense", "a=ptime:20"})),
              "7: the line is not of the form x=value");
    EXPECT_EQ(refusal_of(session({"m=audio 5004 RTP/AVP 0", "y=1"})),
              "7: SDP has no such kind of line");
    EXPECT_EQ(refusal_of(session({"m=audio 5004 RTP/AVP 0", "v=0"})),
              "7: a second description begins here");
    EXPECT_EQ(refusal_of(session({"o=- 1 1 IN IP4 10.0.0.1"})),
              "6: o= stands once, before the media");
    EXPECT_EQ(refusal_of(lines({"v=0", "m=audio 0 RTP/AVP 0", "o=- 1 1 IN IP4 10.0.0.1"})),
              "3: o= stands once, before the media");
    EXPECT_EQ(refusal_of(session({"c=IN IP4 10.0.0.2"})), "6: the session has a second c= line");
    EXPECT_EQ(refusal_of(session({std::string("a=x:\0y", 6)})), "6: the line holds a NUL byte");
    EXPECT_EQ(refusal_of_attribute("a=rtcp:5005\r\na=rtcp:5007"),
              "8: the media has a second a=rtcp line");
}

TEST(SdpRefusal, OfPorts) {
    const auto of_port = [](const std::string& port) {
        return refusal_of(session({"m=audio " + port + " RTP/AVP 0"}));
    };
    for (const char* const port : {"65536", "-1", "abc", "", "99999999999999999999", "+5", "5x"}) {
        EXPECT_EQ(of_port(port).substr(0, 3), "6: ") << port;
    }
    EXPECT_EQ(of_port("65536"), "6: the port is no number from 0 to 65535");
    EXPECT_EQ(of_port("5004/0"), "6: the number of ports is out of range");
    EXPECT_EQ(of_port("5004/"), "6: the number of ports is out of range");
    EXPECT_EQ(of_port("5004/65536"), "6: the number of ports is out of range");
    EXPECT_EQ(of_port("65532/2"), "accepted");
    EXPECT_EQ(of_port("65533/2"), "6: the ports run beyond 65535");
    EXPECT_EQ(refusal_of(session({"m=image 65534/2 udptl t38"})), "accepted");
    EXPECT_EQ(refusal_of(session({"m=image 65535/2 udptl t38"})), "6: the ports run beyond 65535");
    for (const char* const port : {"0", "65536", "x"}) {
        EXPECT_EQ(refusal_of_attribute(std::string("a=rtcp:") + port),
                  "7: the RTCP port is no number from 1 to 65535");
    }
    EXPECT_EQ(refusal_of_attribute("a=rtcp:"), "7: a=rtcp needs a port, or a port and an address");
    EXPECT_EQ(refusal_of_attribute("a=rtcp:5 IN IP4"),
              "7: a=rtcp needs a port, or a port and an address");
}

TEST(SdpRefusal, OfAddresses) {
    const auto of_address = [](const std::string& address) {
        return refusal_of(session({"m=audio 5004 RTP/AVP 0", "c=" + address}));
    };
    EXPECT_EQ(of_address("IN IP4 host.example.com"),
              "7: the address is none (host names are not looked up)");
    EXPECT_EQ(of_address("IN IP4 10.0.0.256"),
              "7: the address is none (host names are not looked up)");
    EXPECT_EQ(of_address("IN IP4 2001:db8::1"),
              "7: the address is of another family than its label says");
    EXPECT_EQ(of_address("IN IP6 10.0.0.1"),
              "7: the address is of another family than its label says");
    EXPECT_EQ(of_address("ATM NSAP 47.0091"), "7: the SDP parser refuses this c= line");
    EXPECT_EQ(of_address("IN IP4"), "7: the SDP parser refuses this c= line");
    EXPECT_EQ(of_address("IN IP4 10.0.0.1 x"),
              "7: c= needs a net type, an address type and an address");
    EXPECT_EQ(refusal_of_attribute("a=rtcp:5005 ATM NSAP 47.0091"),
              "7: the address is neither IN IP4 nor IN IP6");
    EXPECT_EQ(refusal_of(lines({"v=0", "o=- 1 1 IN IP4 h", "c=IN IP4 host.example.com",
                                "m=audio 5004 RTP/AVP 0"})),
              "3: the address is none (host names are not looked up)");
    EXPECT_EQ(refusal_of_attribute("a=rtcp:5005 IN IP4 host"),
              "7: the address is none (host names are not looked up)");
}

TEST(SdpRefusal, OfFmtpLines) {
    const std::string form = "7: a=fmtp needs a payload type from 0 to 127 and parameters";
    for (const char* const value : {"", "97", "abc", "128 x=1", "x x=1", "-1 x=1"}) {
        EXPECT_EQ(refusal_of_attribute(std::string("a=fmtp:") + value), form) << value;
    }
    EXPECT_EQ(refusal_of(session({"m=video 5004 RTP/AVP 96", "a=fmtp:x"})), form);
    EXPECT_EQ(refusal_of(session({"m=text 5004 RTP/AVP 96", "a=fmtp:x"})), "accepted");
}

TEST(SdpRefusal, OfFmtpValues) {
    const auto of_parameter = [](const char* map, const std::string& parameters) {
        return refusal_of(session({"m=audio 5004 RTP/AVP 96", std::string("a=rtpmap:96 ") + map,
                                   "a=fmtp:96 " + parameters}));
    };
    for (const char* const parameter :
         {"octet-align=2", "octet-align", "octet-align=", "octet-align=x",
          "mode-set=", "mode-set=9", "mode-set=1,,2", "mode-set=1,", "mode-change-period=3",
          "crc=-1", "robust-sorting=2", "mode-change-neighbor=2", "mode-change-capability=3",
          "channels=7", "interleaving=65536", "max-red=65536"}) {
        EXPECT_EQ(of_parameter("AMR-WB/16000", parameter).substr(0, 3), "8: ") << parameter;
        EXPECT_EQ(of_parameter("iLBC/8000", parameter), "accepted") << parameter;
    }
    for (const char* const parameter :
         {"stereo=2", "cbr=x", "useinbandfec=", "usedtx", "sprop-stereo=2",
          "maxplaybackrate=2147483648", "maxaveragebitrate=x", "sprop-maxcapturerate=65536",
          "maxptime=65536"}) {
        EXPECT_EQ(of_parameter("opus/48000/2", parameter).substr(0, 3), "8: ") << parameter;
    }
    EXPECT_EQ(of_parameter("opus/48000/2", "x=1; stereo=2"),
              "8: stereo: the value is no number from 0 to 1");
    EXPECT_EQ(of_parameter("G729/8000", "annexb=maybe"), "8: annexb is neither yes nor no");
    EXPECT_EQ(of_parameter("G723/8000", "annexa"), "8: annexa is neither yes nor no");
}

TEST(SdpRefusal, OfOtherValues) {
    EXPECT_EQ(refusal_of_attribute("a=ptime:x"),
              "7: a=ptime: the value is no number from 0 to 2147483647");
    EXPECT_EQ(refusal_of_attribute("a=maxptime:2147483648"),
              "7: a=maxptime: the value is no number from 0 to 2147483647");
    const auto of_fax = [](const std::string& attribute) {
        return refusal_of(session({"m=image 6666 udptl t38", attribute}));
    };
    EXPECT_EQ(of_fax("a=T38MaxBitRate:fast"),
              "7: T38MaxBitRate: the value is no number from 0 to 4294967295");
    EXPECT_EQ(of_fax("a=T38FaxMaxBuffer:4294967296"),
              "7: T38FaxMaxBuffer: the value is no number from 0 to 4294967295");
    EXPECT_EQ(of_fax("a=T38FaxMaxDatagram"),
              "7: T38FaxMaxDatagram: the value is no number from 0 to 4294967295");
    EXPECT_EQ(of_fax("a=T38FaxTranscodingMMR:2"),
              "7: T38FaxTranscodingMMR: the value is no number from 0 to 1");
    EXPECT_EQ(of_fax("a=T38FaxRateManagement:x"),
              "7: the rate management is neither of T.38's two");
    EXPECT_EQ(of_fax("a=T38FaxUdpEC:x"), "7: the error correction is none of T.38's three");
}

TEST(SdpRefusal, NamesTheLineThatTheParserStumblesOver) {
    EXPECT_EQ(refusal_of(session({"m=audio 5004 RTP/AVP 0", "a=ptime:20", "b=AS", "a=x"})),
              "8: the SDP parser refuses this b= line");
    EXPECT_EQ(refusal_of_attribute("a=rtpmap:0 inline:secret"),
              "7: the SDP parser refuses this a= line");
    EXPECT_EQ(refusal_of(session({"m=audio 5004 RTP/AVP 0", "m=audio 5004 RTP/SAVPF 128"})),
              "7: the SDP parser refuses this m= line");
    EXPECT_EQ(refusal_of(lines({"v=0", "o=broken"})), "2: the SDP parser refuses this o= line");
}

TEST(SdpRefusal, OfFormatsAtWhichTheParserWouldNotEnd) {
    for (const char* const line :
         {"m=x 5 y /z", "m=x\xcf 5 y z", "m=x 5 y a:b", "m=x 5 y a (b", "m=x 5 y \xe9",
          "m=x 5 y=z a", "m=x 5 y\x01 a", "m=x 5 y \x7f", "m=audio 5004 RTP/AVP ,"}) {
        EXPECT_EQ(refusal_of(session({line})),
                  "6: the kind, the transport or a format is not made of token characters");
    }
    EXPECT_EQ(refusal_of(session({"m=x 5 y/z webrtc-datachannel * {~"})), "accepted");
}

TEST(SdpRefusal, OfMoreFormatsThanRtpHas) {
    const auto with_formats = [](int count) {
        std::string line = "m=audio 5004 RTP/AVP";
        while (count-- != 0) {
            line += " 0";
        }
        return refusal_of(session({line}));
    };
    EXPECT_EQ(with_formats(128), "accepted");
    EXPECT_EQ(with_formats(129), "6: the media has more than 128 formats");
}

}  // namespace
