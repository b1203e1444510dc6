// What is answered to an offer: which lines, codecs and keys are accepted, and why others are not.

#include "answer/answerer.h"

#include <cstring>
#include <set>

#include "answers.h"
#include "qova/attributes.h"
#include "rows.h"

namespace {

using Media = std::vector<std::string>;

// --- Lines ---------------------------------------------------------------------------------------

class AnswererLines : public testing::TestWithParam<Row<Media>> {};

TEST_P(AnswererLines, AreAcceptedOrRejectedForAReason) {
    const Answered answered(GetParam().value);
    EXPECT_EQ(answered.rejections(), GetParam().text);
    EXPECT_EQ(answered.answer.accepts, answered.rejections().empty());
    ASSERT_EQ(answered.answer.payloads.size(), 1U);
    EXPECT_EQ(answered.answer.payloads.front().empty(),
              answered.media().find(CODEC_G711_ALAW) == nullptr);
    EXPECT_EQ(answered.media().mediaStatus,
              answered.answer.accepts ? QOVA_Media::MS_ACCEPTED : QOVA_Media::MS_REJECTED);
}

const std::string fingerprint =
    "a=fingerprint:sha-256 00:11:22:33:44:55:66:77:88:99:AA:BB:CC:DD:EE:FF:00:11:22:33:44:55:66:77:"
    "88:99:AA:BB:CC:DD:EE:FF";

INSTANTIATE_TEST_SUITE_P(
    Table, AnswererLines,
    testing::Values(
        Row<Media>{"Audio", {"m=audio 5004 RTP/AVP 8"}, ""},
        Row<Media>{"AudioWithFeedback", {"m=audio 5004 RTP/AVPF 8"}, ""},
        Row<Media>{"AudioInSmallLetters", {"m=audio 5004 rtp/avp 8"}, ""},
        Row<Media>{"AudioWithoutACodecOfOurs",
                   {"m=audio 5004 RTP/AVP 3 97", "a=rtpmap:97 iLBC/8000"},
                   "6: no codec in common"},
        Row<Media>{"TonesAlone",
                   {"m=audio 5004 RTP/AVP 101", "a=rtpmap:101 telephone-event/8000"},
                   "6: no codec in common"},
        Row<Media>{"SecureAudio", {"m=audio 5004 RTP/SAVP 8", "a=crypto:1 " + aes_80}, ""},
        Row<Media>{
            "SecureAudioWithFeedback", {"m=audio 5004 RTP/SAVPF 8", "a=crypto:1 " + aes_80}, ""},
        Row<Media>{
            "SecureAudioWithoutKeys", {"m=audio 5004 RTP/SAVP 8"}, "6: no crypto suite in common"},
        Row<Media>{"SecureAudioOfAnotherSuite",
                   {"m=audio 5004 RTP/SAVP 8",
                    "a=crypto:1 F8_128_HMAC_SHA1_80 inline:" + offered_key.substr(0, 40),
                    "a=crypto:2 NEW_SUITE inline:" + offered_key},
                   "6: no crypto suite in common"},
        Row<Media>{"SecureAudioWithABrokenKey",
                   {"m=audio 5004 RTP/SAVP 8", "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:AAAA"},
                   "6: no crypto suite in common"},
        Row<Media>{"KeysByDtls",
                   {"m=audio 5004 UDP/TLS/RTP/SAVPF 8", "a=setup:actpass", fingerprint},
                   "6: unsupported transport"},
        Row<Media>{"KeysByDtlsOnAPlainSecureLine",
                   {"m=audio 5004 RTP/SAVP 8", "a=setup:actpass", fingerprint},
                   "6: no crypto suite in common"},
        Row<Media>{"KeysByMikey",
                   {"m=audio 5004 RTP/SAVP 8", "a=key-mgmt:mikey AQAFgM0XflABAAAAAAAAAAAAAAYAyONQ"},
                   "6: no crypto suite in common"},
        Row<Media>{"AudioOverTcp", {"m=audio 5004 TCP/RTP/AVP 8"}, "6: unsupported transport"},
        Row<Media>{"Video", {"m=video 5004 RTP/AVP 31"}, "6: unsupported media type"},
        Row<Media>{"Data", {"m=application 5004 UDP/BFCP *"}, "6: unsupported media type"},
        Row<Media>{"Chat", {"m=message 5004 TCP/MSRP *"}, "6: unsupported media type"},
        Row<Media>{"Fax", {"m=image 5004 udptl t38"}, ""},
        Row<Media>{"FaxInCapitals", {"m=image 5004 UDPTL T38"}, ""},
        Row<Media>{"FaxOverTcp", {"m=image 5004 tcp t38"}, "6: unsupported transport"},
        Row<Media>{"FaxOverDtls",
                   {"m=image 5004 UDP/TLS/UDPTL t38", fingerprint},
                   "6: unsupported transport"},
        Row<Media>{"OfAnotherAddressFamily",
                   {"m=audio 5004 RTP/AVP 8", "c=IN IP6 2001:db8::1"},
                   "6: unreachable address"},
        Row<Media>{"OfAMulticastGroup",
                   {"m=audio 5004 RTP/AVP 8", "c=IN IP4 224.2.17.12/127"},
                   "6: unreachable address"},
        Row<Media>{"AtAHostName", {"m=audio 5004 RTP/AVP 8", "c=IN IP4 phone.example"}, ""}),
    name_of_row);

TEST(Answerer, HasTheLinesOfTheOfferInItsOrder) {
    const Answered answered({"m=text 5002 RTP/AVP 98", "m=audio 5004 RTP/AVP 8",
                             "m=video 5006 RTP/AVP 31", "m=audio 0 RTP/AVP 8",
                             "m=image 5008 udptl t38", "m=foo 0 TCP a b"});
    std::vector<std::pair<QOVA_Media::e_MediaType, QOVA_Media::e_MediaStatus>> found;
    for (const QOVA_Media* const media : answered.capability().filteredMedia) {
        found.emplace_back(media->mediaType, media->mediaStatus);
    }
    const decltype(found) expected = {{QOVA_Media::MT_AUDIO, QOVA_Media::MS_ACCEPTED},
                                      {QOVA_Media::MT_VIDEO, QOVA_Media::MS_REJECTED},
                                      {QOVA_Media::MT_AUDIO, QOVA_Media::MS_REJECTED},
                                      {QOVA_Media::MT_FAX, QOVA_Media::MS_ACCEPTED}};
    EXPECT_EQ(found, expected);
    EXPECT_EQ(answered.capability().passThrough, lines({"m=text 0 RTP/AVP 98", "m=foo 0 TCP a"}));
    EXPECT_FALSE(answered.capability().offer);
    const std::vector<std::vector<unsigned>> payloads = {{}, {8}, {}, {}, {}, {}};
    EXPECT_EQ(answered.answer.payloads, payloads);
}

TEST(Answerer, SaysNothingOfALineThatIsRejectedAlready) {
    const Answered answered({"m=video 0 RTP/AVP 31", "m=foo 0 TCP a"});
    EXPECT_EQ(answered.rejections(), "");
    EXPECT_FALSE(answered.answer.accepts);
}

TEST(Answerer, AcceptsSomethingWhenOneLineIsAccepted) {
    const Answered answered({"m=audio 5004 RTP/AVP 8", "m=video 5006 RTP/AVP 31"});
    EXPECT_EQ(answered.rejections(), "7: unsupported media type");
    EXPECT_TRUE(answered.answer.accepts);
}

TEST(Answerer, RejectsFaxWhereThePolicyHasNone) {
    sdp::Policy policy = policy_at();
    policy.fax = false;
    EXPECT_EQ(Answered({"m=image 5004 udptl t38"}, policy).rejections(), "6: fax is disabled");
}

TEST(Answerer, LeavesARejectedLineWithoutAddressPortsAndPayloads) {
    for (const std::string line :
         {"m=audio 5004 RTP/AVP 3", "m=audio 0 RTP/AVP 8", "m=video 5004 RTP/AVP 31",
          "m=image 5004 tcp t38", "m=application 5004 UDP/BFCP *"}) {
        const Answered answered({line, "a=crypto:1 " + aes_80});
        const QOVA_Media& media = answered.media();
        EXPECT_NE(media.address->IsAny(), 0) << line;
        EXPECT_EQ(media.sndPort | media.rcvPort | media.sndPort2 | media.rcvPort2, 0) << line;
        EXPECT_TRUE(media.attributes.empty()) << line;
        EXPECT_TRUE(media.cryptos.empty()) << line;
        EXPECT_EQ(media.cryptoCount, 0U) << line;
    }
}

// --- Ports and address ---------------------------------------------------------------------------

TEST(Answerer, CountsItsPortsByTheLinesOfAKind) {
    const Answered answered({"m=audio 5004 RTP/AVP 8", "m=image 5006 udptl t38",
                             "m=audio 0 RTP/AVP 8", "m=audio 5008 RTP/AVP 8",
                             "m=image 5010 udptl t38"});
    std::vector<unsigned> ports;
    for (const QOVA_Media* const media : answered.capability().filteredMedia) {
        ports.push_back(media->rcvPort);
        EXPECT_EQ(media->sndPort, media->rcvPort);
        EXPECT_EQ(media->rcvPort2, media->rcvPort == 0 ? 0 : media->rcvPort + 1);
        EXPECT_EQ(media->sndPort2, media->rcvPort2);
    }
    EXPECT_EQ(ports, (std::vector<unsigned>{32000, 6666, 0, 32004, 6668}));
}

TEST(Answerer, HasThePolicysAddress) {
    EXPECT_EQ(Answered({"m=audio 5004 RTP/AVP 8"}).media().address->ToString(), "192.0.2.1");
    const Answered answered({"m=audio 5004 RTP/AVP 8", "c=IN IP6 2001:db8::7"},
                            policy_at("2001:db8::1"));
    EXPECT_EQ(answered.media().address->ToString(), "2001:db8::1");
}

// --- Codecs --------------------------------------------------------------------------------------

TEST(Answerer, KeepsTheOffersOrderOfCodecs) {
    sdp::Policy policy = policy_at();
    policy.codecs = {CODEC_G711_ALAW, CODEC_G722, CODEC_G711_ULAW};
    const Answered answered({"m=audio 5004 RTP/AVP 0 18 9 3 8"}, policy);
    EXPECT_EQ(codecs(answered.media()),
              (std::vector<int>{CODEC_G711_ULAW, CODEC_G722, CODEC_G711_ALAW}));
    EXPECT_EQ(answered.answer.payloads.front(), (std::vector<unsigned>{0, 9, 8}));
}

TEST(Answerer, KeepsTheToneEventsOfTheClockRatesThatStay) {
    sdp::Policy policy = policy_at();
    const Media offer = {"m=audio 5004 RTP/AVP 96 8 101 102 13", "a=rtpmap:96 opus/48000/2",
                         "a=rtpmap:101 telephone-event/8000", "a=rtpmap:102 telephone-event/48000"};
    EXPECT_EQ(Answered(offer, policy).answer.payloads.front(),
              (std::vector<unsigned>{96, 8, 102, 101}));
    policy.codecs = {CODEC_G711_ALAW};
    EXPECT_EQ(Answered(offer, policy).answer.payloads.front(), (std::vector<unsigned>{8, 101}));
}

TEST(Answerer, KeepsTheParametersOfTheCodecsThatStay) {
    const Media offer = {"m=audio 5004 RTP/AVP 96 97 8", "a=rtpmap:96 AMR-WB/16000",
                         "a=fmtp:96 octet-align=1", "a=rtpmap:97 opus/48000/2",
                         "a=fmtp:97 stereo=1"};
    sdp::Policy policy = policy_at();
    const Answered all(offer, policy);
    EXPECT_EQ(all.media().amrwbParam->octetAlign, 1);
    EXPECT_TRUE(all.media().opusParam->stereo);
    policy.codecs = {CODEC_G711_ALAW};
    const Answered none(offer, policy);
    EXPECT_EQ(std::string(*none.media().amrwbParam), "");
    EXPECT_EQ(std::string(*none.media().opusParam), "");
}

TEST(Answerer, LeavesTheOfferAsItIs) {
    const Answered answered({"m=audio 5004 RTP/SAVP 96 8", "a=rtpmap:96 opus/48000/2",
                             "a=crypto:1 " + aes_80, "m=video 5006 RTP/AVP 31"});
    const sdp::Reading again = reading_of(answered.text);
    EXPECT_EQ(std::string(*answered.reading.capability), std::string(*again.capability));
}

// --- Direction and hold --------------------------------------------------------------------------

struct Direction {
    const char* name;
    std::vector<std::string> offered;
    bool bsnd;
    bool brcv;
    bool hold;
};

void PrintTo(const Direction& direction, std::ostream* out) {
    *out << direction.name;
}

class AnswererDirections : public testing::TestWithParam<Direction> {};

TEST_P(AnswererDirections, AreTheReverse) {
    const Direction& expected = GetParam();
    Media media = {"m=audio 5004 RTP/AVP 8"};
    media.insert(media.end(), expected.offered.begin(), expected.offered.end());
    const Answered answered(media);
    EXPECT_EQ(answered.media().bsnd, expected.bsnd);
    EXPECT_EQ(answered.media().brcv, expected.brcv);
    EXPECT_EQ(answered.capability().hold, expected.hold);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AnswererDirections,
    testing::Values(
        Direction{"Unsaid", {}, true, true, false},
        Direction{"Both", {"a=sendrecv"}, true, true, false},
        Direction{"SendOnly", {"a=sendonly"}, false, true, false},
        Direction{"ReceiveOnly", {"a=recvonly"}, true, false, true},
        Direction{"Inactive", {"a=inactive"}, false, false, true},
        Direction{"NoAddress", {"c=IN IP4 0.0.0.0"}, false, true, false},
        Direction{"NoAddressOfTheOtherFamily", {"c=IN IP6 ::"}, false, true, false},
        Direction{
            "NoAddressAndReceiveOnly", {"c=IN IP4 0.0.0.0", "a=recvonly"}, false, false, true},
        Direction{"NoAddressAndInactive", {"c=IN IP4 0.0.0.0", "a=inactive"}, false, false, true}),
    name_of_row);

TEST(Answerer, IsOnHoldWhenAllItsAcceptedAudioIs) {
    const auto hold = [](const Media& media) { return Answered(media).capability().hold; };
    const std::string audio = "m=audio 5004 RTP/AVP 8";
    EXPECT_TRUE(hold({audio, "a=inactive", audio, "a=recvonly"}));
    EXPECT_FALSE(hold({audio, "a=inactive", audio}));
    EXPECT_TRUE(hold({audio, "a=inactive", "m=audio 5004 RTP/AVP 3"}));
    EXPECT_TRUE(hold({audio, "a=inactive", "m=image 5006 udptl t38"}));
    EXPECT_FALSE(hold({"m=audio 5004 RTP/AVP 3", "a=inactive"}));
    EXPECT_FALSE(hold({"m=image 5006 udptl t38", "a=inactive"}));
}

TEST(Answerer, DoesNotSendAtTheDiscardPortOfAnOfferThatIsOnHold) {
    EXPECT_TRUE(Answered({"m=audio 9 RTP/AVP 8", "c=IN IP4 0.0.0.0"}).media().bsnd);
    EXPECT_FALSE(Answered({"m=audio 9 RTP/AVP 8", "c=IN IP4 0.0.0.0", "a=sendonly"}).media().bsnd);
}

// --- Silence suppression -------------------------------------------------------------------------

class AnswererSilence : public testing::TestWithParam<Row<Media>> {};

TEST_P(AnswererSilence, IsWhatTheAnswerSays) {
    EXPECT_STREQ(Answered(GetParam().value).capability().silenceSuppSdp ? "yes" : "no",
                 GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AnswererSilence,
    testing::Values(
        Row<Media>{"OfTheSession", {"a=silenceSupp:on - - - -", "m=audio 5 RTP/AVP 8"}, "yes"},
        Row<Media>{"OfAnAcceptedLine", {"m=audio 5 RTP/AVP 8", "a=silenceSupp:on - - - -"}, "yes"},
        Row<Media>{"Off", {"m=audio 5 RTP/AVP 8", "a=silenceSupp:off - - - -"}, "no"},
        Row<Media>{"OfARejectedLine",
                   {"m=audio 5 RTP/AVP 3", "a=silenceSupp:on - - - -", "m=audio 5 RTP/AVP 8"},
                   "no"},
        Row<Media>{"OfALineThatWasRejected",
                   {"m=audio 0 RTP/AVP 8", "a=silenceSupp:on - - - -", "m=audio 5 RTP/AVP 8"},
                   "no"},
        Row<Media>{"OfVideo", {"m=video 5 RTP/AVP 31", "a=silenceSupp:on - - - -"}, "no"},
        Row<Media>{"OfFax", {"m=image 5 udptl t38", "a=silenceSupp:on - - - -"}, "no"}),
    name_of_row);

// --- Keys ----------------------------------------------------------------------------------------

TEST(AnswererKeys, AreFreshAndAsLongAsTheSuiteAsks) {
    for (const auto& [suite, size] :
         {std::pair("AES_CM_128_HMAC_SHA1_80", 30U), std::pair("AES_CM_128_HMAC_SHA1_32", 30U),
          std::pair("AES_256_CM_HMAC_SHA1_80", 46U), std::pair("AES_256_CM_HMAC_SHA1_32", 46U),
          std::pair("AEAD_AES_128_GCM", 28U), std::pair("AEAD_AES_256_GCM", 44U)}) {
        const std::string key = offered_key.substr(0, (size * 4UL + 2) / 3);
        const Answered answered({"m=audio 5004 RTP/SAVP 8", std::string("a=crypto:7 ") + suite +
                                                                " inline:" + key + "|2^20|1:4"});
        ASSERT_EQ(answered.rejections(), "") << suite;
        ASSERT_EQ(answered.media().cryptos.size(), 1U);
        EXPECT_EQ(answered.media().cryptoCount, 1U);
        const QOVA_Crypto& crypto = *answered.media().cryptos.front();
        EXPECT_EQ(crypto.tag, 7U);
        EXPECT_EQ(Sdp::CryptoParser::enumToAlgo(crypto.algo), suite);
        ASSERT_EQ(crypto.keys.size(), 1U);
        for (unsigned i = 0; i < sizeof QOVA_CryptoKey::key; ++i) {
            EXPECT_EQ(crypto.keys.front().key[i], i < size ? 255 - i : 0) << suite;
        }
        EXPECT_EQ(crypto.keys.front().lifetime, 0U);
        EXPECT_EQ(crypto.keys.front().mkiSize, 0);
    }
}

TEST(AnswererKeys, AreOthersForEachLine) {
    const Answered answered({"m=audio 5004 RTP/SAVP 8", "a=crypto:1 " + aes_80,
                             "m=audio 5006 RTP/SAVP 8", "a=crypto:1 " + aes_80});
    const auto& media = answered.capability().filteredMedia;
    ASSERT_EQ(answered.rejections(), "");
    EXPECT_NE(std::memcmp(media.front()->cryptos.front()->keys.front().key,
                          media.back()->cryptos.front()->keys.front().key, 30),
              0);
}

TEST(AnswererKeys, ComeFromTheSystemUnlessToldOtherwise) {
    const sdp::Policy policy{sdp::MediaAddress::parse("192.0.2.1").value()};
    std::set<std::string> keys;
    for (int i = 0; i < 3; ++i) {
        const Answered answered({"m=audio 5004 RTP/SAVP 8", "a=crypto:1 " + aes_80}, policy);
        const unsigned char* const key = answered.media().cryptos.front()->keys.front().key;
        keys.insert(std::string(key, key + 30));
    }
    EXPECT_EQ(keys.size(), 3U);
}

TEST(AnswererKeys, FailAsTheirSourceDoes) {
    sdp::Policy policy = policy_at();
    policy.random = [](unsigned char*, std::size_t) -> void { throw std::runtime_error("none"); };
    EXPECT_THROW(Answered({"m=audio 5004 RTP/SAVP 8", "a=crypto:1 " + aes_80}, policy),
                 std::runtime_error);
    EXPECT_EQ(Answered({"m=audio 5004 RTP/AVP 8"}, policy).rejections(), "");
}

class AnswererSuites : public testing::TestWithParam<Row<Media>> {};

TEST_P(AnswererSuites, AreTheFirstThatServes) {
    Media media = {"m=audio 5004 RTP/SAVP 8"};
    media.insert(media.end(), GetParam().value.begin(), GetParam().value.end());
    const Answered answered(media);
    ASSERT_EQ(answered.rejections(), "");
    EXPECT_EQ(std::to_string(answered.media().cryptos.front()->tag), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AnswererSuites,
    testing::Values(
        Row<Media>{"OfTheOffersOrder", {"a=crypto:5 " + aes_32, "a=crypto:2 " + aes_80}, "5"},
        Row<Media>{"PastOneUnknown",
                   {"a=crypto:1 NEW inline:" + offered_key, "a=crypto:2 " + aes_80},
                   "2"},
        Row<Media>{"PastOneOfNoPolicy",
                   {"a=crypto:1 F8_128_HMAC_SHA1_80 inline:" + offered_key.substr(0, 40),
                    "a=crypto:2 " + aes_80},
                   "2"},
        Row<Media>{"PastOneThatNeedsAParameter",
                   {"a=crypto:1 " + aes_80 + " UNENCRYPTED_SRTCP", "a=crypto:2 " + aes_80},
                   "2"},
        Row<Media>{"PastOneThatNeedsTheSecondOfTwoParameters",
                   {"a=crypto:1 " + aes_80 + " -WSH=64 KDR=1", "a=crypto:2 " + aes_80},
                   "2"},
        Row<Media>{"WithAParameterToBePassedOver",
                   {"a=crypto:1 " + aes_80 + " -WSH=64", "a=crypto:2 " + aes_80},
                   "1"},
        Row<Media>{"PastABrokenOne",
                   {"a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:AAAA", "a=crypto:2 " + aes_80},
                   "2"}),
    name_of_row);

TEST(AnswererSuites, AreOnlyThePolicys) {
    sdp::Policy policy = policy_at();
    policy.suites = {CS_AES_CM_128_HMAC_SHA1_32};
    const Answered answered(
        {"m=audio 5004 RTP/SAVP 8", "a=crypto:1 " + aes_80, "a=crypto:2 " + aes_32}, policy);
    EXPECT_EQ(answered.media().cryptos.front()->tag, 2U);
}

TEST(AnswererSuites, ArePassedOverOnAPlainLine) {
    const Answered answered({"m=audio 5004 RTP/AVP 8", "a=crypto:1 " + aes_80});
    EXPECT_EQ(answered.rejections(), "");
    EXPECT_TRUE(answered.media().cryptos.empty());
    EXPECT_EQ(answered.media().cryptoCount, 0U);
    EXPECT_TRUE(
        Answered({"m=image 5004 udptl t38", "a=crypto:1 " + aes_80}).media().cryptos.empty());
}

}  // namespace
