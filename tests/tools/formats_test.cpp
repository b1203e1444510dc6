// How format parameters are read: AMR-WB, Opus, T.38.

#include <gtest/gtest.h>

#include "netconf/sdp.h"
#include "readings.h"

namespace {

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

}  // namespace
