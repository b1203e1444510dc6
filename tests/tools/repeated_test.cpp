// Which of several lines counts where they conflict or repeat each other.

#include <gtest/gtest.h>

#include <tuple>

#include "netconf/sdp.h"
#include "readings.h"

namespace {

const std::string audio = "m=audio 5004 RTP/AVP 0";

TEST(SdpRepeated, TheFirstDirectionCounts) {
    const auto direction = [](std::initializer_list<std::string> media) {
        const OneLine line(media);
        return std::make_tuple(line.media().bsnd, line.media().brcv);
    };
    EXPECT_EQ(direction({audio, "a=sendonly", "a=recvonly"}), std::make_tuple(true, false));
    EXPECT_EQ(direction({audio, "a=recvonly", "a=sendonly"}), std::make_tuple(false, true));
    EXPECT_EQ(direction({audio, "a=inactive", "a=sendrecv"}), std::make_tuple(false, false));
    EXPECT_EQ(direction({audio, "a=sendrecv", "a=inactive"}), std::make_tuple(true, true));
    EXPECT_EQ(direction({"a=recvonly", "a=inactive", audio}), std::make_tuple(false, true));
}

TEST(SdpRepeated, TheFirstConnectionOfALineCounts) {
    EXPECT_EQ(
        OneLine({audio, "c=IN IP4 10.0.0.2", "c=IN IP4 10.0.0.3"}).media().address->ToString(),
        "10.0.0.2");
}

TEST(SdpRepeated, TheFirstRtcpLineWithAPortCounts) {
    const std::string text =
        session({audio, "a=rtcp:0", "a=rtcp:5007 IN IP4 10.0.0.1", "a=rtcp:5009", "a=rtcp-mux"});
    EXPECT_EQ(reading_of(text).lines[0].media->rcvPort2, 5007);
    EXPECT_EQ(warnings_of(text),
              "7: a=rtcp: expected a port from 1 to 65535\n"
              "9: duplicate a=rtcp line");
}

TEST(SdpRepeated, TheLastReadableFramingCounts) {
    const OneLine line = {audio,          "a=ptime:20",    "a=ptime:30",   "a=ptime:x",
                          "a=maxptime:x", "a=maxptime:40", "a=maxptime:60"};
    EXPECT_EQ(line.audio().framing, 30);
    EXPECT_EQ(line.audio().mxFraming, 60);
}

TEST(SdpRepeated, TheLastSilenceSuppressionCounts) {
    const std::string on = "a=silenceSupp:on - - - -";
    const std::string off = "a=silenceSupp:off - - - -";
    EXPECT_TRUE(OneLine({audio, off, on}).audio().vad);
    EXPECT_FALSE(OneLine({audio, on, off}).audio().vad);
    EXPECT_FALSE(OneLine({audio, on, "a=silenceSupp:- - - - -"}).audio().vad);
    EXPECT_FALSE(OneLine({audio, on, off}).capability().silenceSuppSdp);
}

TEST(SdpRepeated, TheFirstPlaceOfAPayloadCountsAndItsLastReadableMap) {
    const OneLine line = {"m=audio 5004 RTP/AVP 96 0 96", "a=rtpmap:96 PCMA/8000",
                          "a=rtpmap:96 G722/8000", "a=rtpmap:96 opus"};
    EXPECT_EQ(codecs(line.media()), (std::vector<int>{CODEC_G722, CODEC_G711_ULAW}));
}

TEST(SdpRepeated, TheFirstToneEventsOfAClockRateCount) {
    const OneLine line = {"m=audio 5004 RTP/AVP 0 102 101", "a=rtpmap:101 telephone-event/8000",
                          "a=rtpmap:102 telephone-event/8000"};
    EXPECT_EQ(line.audio().mf, 102);
}

TEST(SdpRepeated, TheLastReadableValueOfAFormatParameterCounts) {
    const OneLine line = {
        "m=audio 5004 RTP/AVP 111 104 18",     "a=rtpmap:111 opus/48000/2",
        "a=rtpmap:104 AMR-WB/16000/2",         "a=fmtp:111 maxptime=20; maxptime=40; stereo=1",
        "a=fmtp:111 maxptime=60; maxptime=x",  "a=fmtp:104 mode-set=0,1; channels=1",
        "a=fmtp:104 mode-set=2; mode-set=9,1", "a=fmtp:18 annexb=no; annexb=yes; annexb=0"};
    EXPECT_EQ(std::string(*line.media().opusParam), " opus(stereo=1; maxptime=60)");
    EXPECT_EQ(std::string(*line.media().amrwbParam),
              " AMR-WB(payload-type=104; mode-set=2; channels=1)");
    EXPECT_TRUE(line.audio(2).vad);
}

TEST(SdpRepeated, TheLastReadableT38ValueCounts) {
    const OneLine line = {"m=image 6666 udptl t38",  "a=T38MaxBitRate:9600",
                          "a=T38MaxBitRate:14400",   "a=T38MaxBitRate:x",
                          "a=T38FaxUdpEC:t38UDPFEC", "a=T38FaxUdpEC:t38UDPRedundancy",
                          "a=T38FaxFillBitRemoval",  "a=T38FaxFillBitRemoval:0"};
    EXPECT_EQ(line.fax().mxRate, 14400U);
    EXPECT_EQ(line.fax().errCorr, 1U);
    EXPECT_FALSE(line.fax().fillBit);
}

TEST(SdpRepeated, EveryCryptoLineCountsAlsoThoseOfOneTag) {
    const std::string crypto =
        "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";
    const OneLine line = {"m=audio 5004 RTP/SAVP 0", crypto, crypto};
    EXPECT_EQ(line.media().cryptoCount, 2U);
    EXPECT_EQ(line.media().cryptos.back()->tag, 1U);
}

}  // namespace
