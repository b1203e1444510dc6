// How the payloads of an audio line are read.

#include <gtest/gtest.h>

#include "readings.h"

namespace {

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

}  // namespace
