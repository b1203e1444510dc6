#include "sdp/reader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "readings.h"

namespace {

// --- Session -------------------------------------------------------------------------------------

TEST(SdpReader, TakesTheRoleFromItsCaller) {
    const std::string text = session({});
    EXPECT_TRUE(sdp::read(sdp::Description(text), sdp::Role::OFFER, sdp::Strictness::LENIENT)
                    .capability->offer);
    EXPECT_FALSE(sdp::read(sdp::Description(text), sdp::Role::ANSWER, sdp::Strictness::LENIENT)
                     .capability->offer);
}

TEST(SdpReader, KeepsTheOrderOfTheLinesAndSaysWhichMediaIsWhose) {
    const sdp::Reading reading = reading_of(
        session({"m=audio 5004 RTP/AVP 0", "m=text 7 TCP *", "m=video 5006 RTP/AVP 31"}));
    ASSERT_EQ(reading.lines.size(), 3U);
    EXPECT_EQ(reading.lines[0].media, reading.capability->filteredMedia.front());
    EXPECT_EQ(reading.lines[1].media, nullptr);
    EXPECT_EQ(reading.lines[2].media, reading.capability->filteredMedia.back());
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
    EXPECT_EQ(codecs(*reading.lines[0].media), std::vector<int>{CODEC_G711_ULAW});
}

TEST(SdpReader, PassesOverBlankLinesAndLeadingBlanks) {
    const sdp::Reading reading = reading_of(
        session({"m=audio 5004 RTP/AVP 0", "", " \t", "  a=ptime:20", "\ta=maxptime:40"}));
    EXPECT_EQ(attribute<QOVA_AudioAttribute>(*reading.lines[0].media).framing, 20);
    EXPECT_EQ(attribute<QOVA_AudioAttribute>(*reading.lines[0].media).mxFraming, 40);
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

TEST(SdpHold, IsNoUnspecifiedAddressAtTheDiscardPort) {
    const auto hold = [](std::initializer_list<std::string> media) {
        return reading_of(session(media)).capability->hold;
    };
    for (const std::string address : {"c=IN IP4 0.0.0.0", "c=IN IP6 ::"}) {
        EXPECT_FALSE(hold({"m=audio 9 UDP/TLS/RTP/SAVPF 0", address}));
        EXPECT_TRUE(hold({"m=audio 9 UDP/TLS/RTP/SAVPF 0", address, "a=sendonly"}));
        EXPECT_TRUE(hold({"m=audio 10 UDP/TLS/RTP/SAVPF 0", address}));
    }
    EXPECT_FALSE(hold({"m=audio 9 TCP/RTP/AVP 0", "a=setup:active"}));
    EXPECT_FALSE(hold({"m=audio 9 TCP/RTP/AVP 0", "a=setup:active", "c=IN IP4 0.0.0.0"}));
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
    ASSERT_NE(reading.lines[0].media, nullptr);
    EXPECT_EQ(reading.lines[0].media->mediaType, type);
    EXPECT_EQ(reading.lines[0].media->mediaStatus, QOVA_Media::MS_ACCEPTED);
    EXPECT_EQ(reading.lines[0].media->attributes.size(), 1U);
    EXPECT_NE(reading.lines[0].media->find(attribute_type, QOVA_Media::MS_ACCEPTED), nullptr);
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
        return reading_of(session(media)).lines[0].media->address->ToString();
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
    EXPECT_EQ(reading.lines[0].media->address->ToString(), "0.0.0.0");
    EXPECT_EQ(refusal_of(head + lines({"m=audio 5004 RTP/AVP 0"})),
              "4: the media line has no address: c= is missing");
}

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

}  // namespace
