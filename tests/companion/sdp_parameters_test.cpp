// The companion's SDP parameters: texts of AMR-WB and Opus parameters, and names of crypto suites.

#include "netconf/sdp.h"

#include <gtest/gtest.h>

#include <climits>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "building_blocks.h"
#include "grouping_locale.h"

namespace {

using Sdp::CryptoParser;
using AmrWb = Sdp::Sdp_Amrwb_Param;
using Opus = Sdp::Sdp_Opus_Param;
using Modes = std::list<int>;

static_assert(std::has_virtual_destructor_v<AmrWb> && std::has_virtual_destructor_v<Opus>);

// ---- Crypto suites ----

TEST(CryptoSuite, HasItsRegisteredName) {
    const std::pair<g_crypto_suite, const char*> suites[] = {
        {CS_AES_CM_128_HMAC_SHA1_80, "AES_CM_128_HMAC_SHA1_80"},
        {CS_AES_CM_128_HMAC_SHA1_32, "AES_CM_128_HMAC_SHA1_32"},
        {CS_F8_128_HMAC_SHA1_80, "F8_128_HMAC_SHA1_80"},
        {CS_SEED_CTR_128_HMAC_SHA1_80, "SEED_CTR_128_HMAC_SHA1_80"},
        {CS_SEED_128_CCM_80, "SEED_128_CCM_80"},
        {CS_SEED_128_GCM_96, "SEED_128_GCM_96"},
        {CS_AES_192_CM_HMAC_SHA1_80, "AES_192_CM_HMAC_SHA1_80"},
        {CS_AES_192_CM_HMAC_SHA1_32, "AES_192_CM_HMAC_SHA1_32"},
        {CS_AES_256_CM_HMAC_SHA1_80, "AES_256_CM_HMAC_SHA1_80"},
        {CS_AES_256_CM_HMAC_SHA1_32, "AES_256_CM_HMAC_SHA1_32"},
        {CS_AEAD_AES_128_GCM, "AEAD_AES_128_GCM"},
        {CS_AEAD_AES_256_GCM, "AEAD_AES_256_GCM"},
    };
    int number = CS_NIL;
    for (const auto& [suite, name] : suites) {
        EXPECT_EQ(suite, ++number);
        EXPECT_EQ(CryptoParser::enumToAlgo(suite), name);
        EXPECT_EQ(CryptoParser::algoToEnum(name), suite);
    }
}

TEST(CryptoSuite, IsNilForOtherNumbers) {
    for (const int number : {0, 13, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(CryptoParser::enumToAlgo(static_cast<g_crypto_suite>(number)), "NIL") << number;
    }
}

TEST(CryptoSuite, IsNilForOtherNames) {
    for (const char* const name : {"", "NIL", "seed_128_ccm_80", " SEED_128_CCM_80",
                                   "SEED_128_CCM_80 ", "SEED_128_CCM_8", "EED_128_CCM_80"}) {
        EXPECT_EQ(CryptoParser::algoToEnum(name), CS_NIL) << name;
    }
    EXPECT_EQ(CryptoParser::algoToEnum(std::string("SEED_128_CCM_80\0", 16)), CS_NIL);
}

// ---- Parameters ----

// Returns the text of an object with one parameter.
template <typename Parameters, typename Member, typename Value>
std::string text_with(Member Parameters::*member, Value value) {
    Parameters parameters;
    parameters.*member = static_cast<Member>(value);
    return parameters;
}

TEST(ParameterText, NamesEachAmrWbParameter) {
    EXPECT_EQ(std::string(AmrWb()), "");
    EXPECT_EQ(text_with(&AmrWb::payloadType, 98), " AMR-WB(payload-type=98)");
    EXPECT_EQ(text_with(&AmrWb::octetAlign, 0), " AMR-WB(octet-align=0)");
    EXPECT_EQ(text_with(&AmrWb::modeSet, Modes({8, 10, 0})), " AMR-WB(mode-set=8,10,0)");
    EXPECT_EQ(text_with(&AmrWb::modeChangePeriod, 2), " AMR-WB(mode-change-period=2)");
    EXPECT_EQ(text_with(&AmrWb::modeChangeCapability, 1), " AMR-WB(mode-change-capability=1)");
    EXPECT_EQ(text_with(&AmrWb::modeChangeNeighbor, 1), " AMR-WB(mode-change-neighbor=1)");
    EXPECT_EQ(text_with(&AmrWb::crc, 1), " AMR-WB(crc=1)");
    EXPECT_EQ(text_with(&AmrWb::robustSorting, 1), " AMR-WB(robust-sorting=1)");
    EXPECT_EQ(text_with(&AmrWb::interleaving, 30), " AMR-WB(interleaving=30)");
    EXPECT_EQ(text_with(&AmrWb::channels, 6), " AMR-WB(channels=6)");
    EXPECT_EQ(text_with(&AmrWb::maxRed, 65535), " AMR-WB(max-red=65535)");
    EXPECT_EQ(text_with(&AmrWb::maxRed, 255), "") << "absent";
}

TEST(ParameterText, NamesEachOpusParameter) {
    EXPECT_EQ(std::string(Opus()), "");
    EXPECT_EQ(text_with(&Opus::maxPlaybackRate, INT_MAX), " opus(maxplaybackrate=2147483647)");
    EXPECT_EQ(text_with(&Opus::spropMaxCaptureRate, USHRT_MAX),
              " opus(sprop-maxcapturerate=65535)");
    EXPECT_EQ(text_with(&Opus::maxAverageBitrate, 510000), " opus(maxaveragebitrate=510000)");
    EXPECT_EQ(text_with(&Opus::stereo, true), " opus(stereo=1)");
    EXPECT_EQ(text_with(&Opus::cbr, true), " opus(cbr=1)");
    EXPECT_EQ(text_with(&Opus::useInbandFec, true), " opus(useinbandfec=1)");
    EXPECT_EQ(text_with(&Opus::useDtx, true), " opus(usedtx=1)");
    EXPECT_EQ(text_with(&Opus::maxPtime, USHRT_MAX), " opus(maxptime=65535)");
    EXPECT_EQ(text_with(&Opus::spropStereo, true), " opus(sprop-stereo=1)");
}

TEST(ParameterText, ListsAllParametersInAnyLocale) {
    const GroupingLocale locale;
    AmrWb amrwb;
    fill(amrwb);
    amrwb.maxRed = 10000;
    EXPECT_EQ(std::string(amrwb),
              " AMR-WB(payload-type=97; octet-align=1; mode-set=0,1,2; mode-change-period=3; "
              "mode-change-capability=4; mode-change-neighbor=5; crc=6; robust-sorting=7; "
              "interleaving=8; channels=9; max-red=10000)");
    Opus opus;
    fill(opus);
    EXPECT_EQ(std::string(opus),
              " opus(maxplaybackrate=16000; sprop-maxcapturerate=48000; maxaveragebitrate=20000; "
              "stereo=1; cbr=1; useinbandfec=1; usedtx=1; maxptime=60; sprop-stereo=1)");
}

TEST(AmrWbCopy, HasItsOwnList) {
    auto source = std::make_unique<AmrWb>();
    source->modeSet = {0, 2};
    AmrWb copy(*source);
    copy.modeSet.push_back(8);
    EXPECT_EQ(source->modeSet, Modes({0, 2}));
    source.reset();
    EXPECT_EQ(copy.modeSet, Modes({0, 2, 8}));
}

}  // namespace
