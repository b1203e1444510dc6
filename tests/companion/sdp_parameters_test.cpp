// The companion's SDP parameters: format parameters of AMR-WB and Opus, and names of crypto suites.

#include <gtest/gtest.h>

#include <climits>
#include <list>
#include <memory>
#include <string>
#include <type_traits>

#include "building_blocks.h"
#include "grouping_locale.h"
#include "netconf/sdp.h"
#include "rows.h"

namespace {

using Sdp::CryptoParser;
using Sdp::Sdp_Amrwb_Param;
using Sdp::Sdp_Opus_Param;

static_assert(sizeof(g_crypto_suite) == sizeof(int));
static_assert(std::has_virtual_destructor_v<Sdp_Amrwb_Param>);
static_assert(std::has_virtual_destructor_v<Sdp_Opus_Param>);

using Suite = Row<g_crypto_suite>;

constexpr Suite suites[] = {
    {"AES_CM_80", CS_AES_CM_128_HMAC_SHA1_80, "AES_CM_128_HMAC_SHA1_80"},
    {"AES_CM_32", CS_AES_CM_128_HMAC_SHA1_32, "AES_CM_128_HMAC_SHA1_32"},
    {"F8_80", CS_F8_128_HMAC_SHA1_80, "F8_128_HMAC_SHA1_80"},
    {"SEED_CTR_80", CS_SEED_CTR_128_HMAC_SHA1_80, "SEED_CTR_128_HMAC_SHA1_80"},
    {"SEED_CCM_80", CS_SEED_128_CCM_80, "SEED_128_CCM_80"},
    {"SEED_GCM_96", CS_SEED_128_GCM_96, "SEED_128_GCM_96"},
    {"AES_192_CM_80", CS_AES_192_CM_HMAC_SHA1_80, "AES_192_CM_HMAC_SHA1_80"},
    {"AES_192_CM_32", CS_AES_192_CM_HMAC_SHA1_32, "AES_192_CM_HMAC_SHA1_32"},
    {"AES_256_CM_80", CS_AES_256_CM_HMAC_SHA1_80, "AES_256_CM_HMAC_SHA1_80"},
    {"AES_256_CM_32", CS_AES_256_CM_HMAC_SHA1_32, "AES_256_CM_HMAC_SHA1_32"},
    {"AEAD_AES_128", CS_AEAD_AES_128_GCM, "AEAD_AES_128_GCM"},
    {"AEAD_AES_256", CS_AEAD_AES_256_GCM, "AEAD_AES_256_GCM"},
};

class CryptoSuite : public testing::TestWithParam<Suite> {};

TEST_P(CryptoSuite, HasItsRegisteredName) {
    EXPECT_EQ(CryptoParser::enumToAlgo(GetParam().value), GetParam().text);
}

TEST_P(CryptoSuite, IsFoundByItsName) {
    EXPECT_EQ(CryptoParser::algoToEnum(GetParam().text), GetParam().value);
}

TEST_P(CryptoSuite, IsNotFoundByAnythingLikeItsName) {
    const std::string name = GetParam().text;
    std::string lower;
    for (const char c : name) {
        lower += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    const std::string texts[] = {lower,
                                 " " + name,
                                 name + " ",
                                 name + "0",
                                 name.substr(1),
                                 name.substr(0, name.size() - 1),
                                 name + std::string(1, '\0')};
    for (const std::string& text : texts) {
        EXPECT_EQ(CryptoParser::algoToEnum(text), CS_NIL) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(All, CryptoSuite, testing::ValuesIn(suites), name_of_row);

TEST(CryptoSuites, AreNumberedFromOneInTheOrderOfTheirRegistration) {
    EXPECT_EQ(CS_NIL, 0);
    int number = 0;
    for (const Suite& suite : suites) {
        EXPECT_EQ(suite.value, ++number) << suite.text;
    }
}

TEST(CryptoSuites, AreNilWithoutAName) {
    for (const int number : {0, 13, 14, 257, -1, INT_MIN, INT_MIN + 1, INT_MAX}) {
        EXPECT_EQ(CryptoParser::enumToAlgo(static_cast<g_crypto_suite>(number)), "NIL") << number;
    }
}

TEST(CryptoSuites, AreNilForAnUnknownName) {
    for (const char* const name : {"", "NIL", "AES", "AES_CM_128_HMAC_SHA1_64", "_"}) {
        EXPECT_EQ(CryptoParser::algoToEnum(name), CS_NIL) << name;
    }
}

TEST(AmrwbParameters, AreAbsentByDefault) {
    const Sdp_Amrwb_Param param;
    EXPECT_EQ(param.octetAlign, 255);
    EXPECT_TRUE(param.modeSet.empty());
    EXPECT_EQ(param.modeChangePeriod, 255);
    EXPECT_EQ(param.modeChangeCapability, 255);
    EXPECT_EQ(param.modeChangeNeighbor, 255);
    EXPECT_EQ(param.crc, 255);
    EXPECT_EQ(param.robustSorting, 255);
    EXPECT_EQ(param.interleaving, 255);
    EXPECT_EQ(param.channels, 255);
    EXPECT_EQ(param.maxRed, 255);
    EXPECT_EQ(param.payloadType, 0);
}

using AmrwbParameter = Row<void (*)(Sdp_Amrwb_Param& param)>;

constexpr AmrwbParameter amrwb_parameters[] = {
    {"none", [](Sdp_Amrwb_Param&) {}, ""},
    {"payloadType", [](Sdp_Amrwb_Param& p) { p.payloadType = 99; }, " AMR-WB(payload-type=99)"},
    {"octetAlign", [](Sdp_Amrwb_Param& p) { p.octetAlign = 1; }, " AMR-WB(octet-align=1)"},
    {"octetAlign_0", [](Sdp_Amrwb_Param& p) { p.octetAlign = 0; }, " AMR-WB(octet-align=0)"},
    {"modeSet_of_one", [](Sdp_Amrwb_Param& p) { p.modeSet = {8}; }, " AMR-WB(mode-set=8)"},
    {"modeSet_of_three",
     [](Sdp_Amrwb_Param& p) {
         p.modeSet = {0, 2, 10};
     },
     " AMR-WB(mode-set=0,2,10)"},
    {"modeSet_in_its_own_order",
     [](Sdp_Amrwb_Param& p) {
         p.modeSet = {8, 1, 1};
     },
     " AMR-WB(mode-set=8,1,1)"},
    {"modeChangePeriod", [](Sdp_Amrwb_Param& p) { p.modeChangePeriod = 2; },
     " AMR-WB(mode-change-period=2)"},
    {"modeChangeCapability", [](Sdp_Amrwb_Param& p) { p.modeChangeCapability = 2; },
     " AMR-WB(mode-change-capability=2)"},
    {"modeChangeNeighbor", [](Sdp_Amrwb_Param& p) { p.modeChangeNeighbor = 1; },
     " AMR-WB(mode-change-neighbor=1)"},
    {"crc", [](Sdp_Amrwb_Param& p) { p.crc = 1; }, " AMR-WB(crc=1)"},
    {"robustSorting", [](Sdp_Amrwb_Param& p) { p.robustSorting = 1; }, " AMR-WB(robust-sorting=1)"},
    {"interleaving", [](Sdp_Amrwb_Param& p) { p.interleaving = 30; }, " AMR-WB(interleaving=30)"},
    {"channels", [](Sdp_Amrwb_Param& p) { p.channels = 6; }, " AMR-WB(channels=6)"},
    {"maxRed", [](Sdp_Amrwb_Param& p) { p.maxRed = 220; }, " AMR-WB(max-red=220)"},
    {"maxRed_of_five_digits", [](Sdp_Amrwb_Param& p) { p.maxRed = 65535; },
     " AMR-WB(max-red=65535)"},
    {"maxRed_beside_absent", [](Sdp_Amrwb_Param& p) { p.maxRed = 256; }, " AMR-WB(max-red=256)"},
    {"all", [](Sdp_Amrwb_Param& p) { fill(p); },
     " AMR-WB(payload-type=97; octet-align=1; mode-set=0,1,2; mode-change-period=3; "
     "mode-change-capability=4; mode-change-neighbor=5; crc=6; robust-sorting=7; interleaving=8; "
     "channels=9; max-red=10)"},
    {"the_last_two_only",
     [](Sdp_Amrwb_Param& p) {
         p.channels = 2;
         p.maxRed = 0;
     },
     " AMR-WB(channels=2; max-red=0)"},
};

class AmrwbText : public testing::TestWithParam<AmrwbParameter> {};

TEST_P(AmrwbText, SaysWhatWasGiven) {
    Sdp_Amrwb_Param param;
    GetParam().value(param);
    EXPECT_EQ(std::string(param), GetParam().text);
}

TEST_P(AmrwbText, OfACopyThatOutlivesItsSourceIsTheSame) {
    auto source = std::make_unique<Sdp_Amrwb_Param>();
    GetParam().value(*source);
    const Sdp_Amrwb_Param copy(*source);
    source.reset();
    EXPECT_EQ(std::string(copy), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, AmrwbText, testing::ValuesIn(amrwb_parameters), name_of_row);

TEST(AmrwbTexts, AreIndependentOfTheGlobalLocale) {
    Sdp_Amrwb_Param param;
    param.maxRed = 65535;
    const GroupingLocale locale;
    EXPECT_EQ(std::string(param), " AMR-WB(max-red=65535)");
}

TEST(AmrwbCopy, HasAListOfItsOwnThatMayGoFirst) {
    Sdp_Amrwb_Param source;
    source.modeSet = {0, 2};
    {
        Sdp_Amrwb_Param copy(source);
        source.modeSet.front() = 7;
        copy.modeSet.push_back(8);
        EXPECT_EQ(copy.modeSet, (std::list<int>{0, 2, 8}));
    }
    EXPECT_EQ(source.modeSet, (std::list<int>{7, 2}));
}

TEST(OpusParameters, AreAbsentByDefault) {
    const Sdp_Opus_Param param;
    EXPECT_EQ(param.maxPlaybackRate, 0);
    EXPECT_EQ(param.spropMaxCaptureRate, 0);
    EXPECT_EQ(param.maxAverageBitrate, 0);
    EXPECT_FALSE(param.stereo);
    EXPECT_FALSE(param.cbr);
    EXPECT_FALSE(param.useInbandFec);
    EXPECT_FALSE(param.useDtx);
    EXPECT_EQ(param.maxPtime, 0);
    EXPECT_FALSE(param.spropStereo);
}

TEST(OpusParameters, HaveTheirWidths) {
    EXPECT_EQ(sizeof(Sdp_Opus_Param::maxPlaybackRate), 4u);
    EXPECT_EQ(sizeof(Sdp_Opus_Param::spropMaxCaptureRate), 2u);
    EXPECT_EQ(sizeof(Sdp_Opus_Param::maxAverageBitrate), 4u);
    EXPECT_EQ(sizeof(Sdp_Opus_Param::stereo), 1u);
    EXPECT_EQ(sizeof(Sdp_Opus_Param::cbr), 1u);
    EXPECT_EQ(sizeof(Sdp_Opus_Param::useInbandFec), 1u);
    EXPECT_EQ(sizeof(Sdp_Opus_Param::useDtx), 1u);
    EXPECT_EQ(sizeof(Sdp_Opus_Param::maxPtime), 2u);
    EXPECT_EQ(sizeof(Sdp_Opus_Param::spropStereo), 1u);
}

using OpusParameter = Row<void (*)(Sdp_Opus_Param& param)>;

constexpr OpusParameter opus_parameters[] = {
    {"none", [](Sdp_Opus_Param&) {}, ""},
    {"maxPlaybackRate", [](Sdp_Opus_Param& p) { p.maxPlaybackRate = 48000; },
     " opus(maxplaybackrate=48000)"},
    {"spropMaxCaptureRate", [](Sdp_Opus_Param& p) { p.spropMaxCaptureRate = 48000; },
     " opus(sprop-maxcapturerate=48000)"},
    {"spropMaxCaptureRate_greatest", [](Sdp_Opus_Param& p) { p.spropMaxCaptureRate = 65535; },
     " opus(sprop-maxcapturerate=65535)"},
    {"maxAverageBitrate", [](Sdp_Opus_Param& p) { p.maxAverageBitrate = 510000; },
     " opus(maxaveragebitrate=510000)"},
    {"maxAverageBitrate_greatest", [](Sdp_Opus_Param& p) { p.maxAverageBitrate = INT_MAX; },
     " opus(maxaveragebitrate=2147483647)"},
    {"stereo", [](Sdp_Opus_Param& p) { p.stereo = true; }, " opus(stereo=1)"},
    {"cbr", [](Sdp_Opus_Param& p) { p.cbr = true; }, " opus(cbr=1)"},
    {"useInbandFec", [](Sdp_Opus_Param& p) { p.useInbandFec = true; }, " opus(useinbandfec=1)"},
    {"useDtx", [](Sdp_Opus_Param& p) { p.useDtx = true; }, " opus(usedtx=1)"},
    {"maxPtime", [](Sdp_Opus_Param& p) { p.maxPtime = 120; }, " opus(maxptime=120)"},
    {"maxPtime_greatest", [](Sdp_Opus_Param& p) { p.maxPtime = 65535; }, " opus(maxptime=65535)"},
    {"spropStereo", [](Sdp_Opus_Param& p) { p.spropStereo = true; }, " opus(sprop-stereo=1)"},
    {"all", [](Sdp_Opus_Param& p) { fill(p); },
     " opus(maxplaybackrate=16000; sprop-maxcapturerate=48000; maxaveragebitrate=20000; stereo=1; "
     "cbr=1; useinbandfec=1; usedtx=1; maxptime=60; sprop-stereo=1)"},
    {"the_last_two_only",
     [](Sdp_Opus_Param& p) {
         p.maxPtime = 40;
         p.spropStereo = true;
     },
     " opus(maxptime=40; sprop-stereo=1)"},
};

class OpusText : public testing::TestWithParam<OpusParameter> {};

TEST_P(OpusText, SaysWhatWasGiven) {
    Sdp_Opus_Param param;
    GetParam().value(param);
    EXPECT_EQ(std::string(param), GetParam().text);
}

TEST_P(OpusText, OfACopyThatOutlivesItsSourceIsTheSame) {
    auto source = std::make_unique<Sdp_Opus_Param>();
    GetParam().value(*source);
    const Sdp_Opus_Param copy(*source);
    source.reset();
    EXPECT_EQ(std::string(copy), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, OpusText, testing::ValuesIn(opus_parameters), name_of_row);

TEST(OpusTexts, AreIndependentOfTheGlobalLocale) {
    Sdp_Opus_Param param;
    param.maxPlaybackRate = 48000;
    param.stereo = true;
    const GroupingLocale locale;
    EXPECT_EQ(std::string(param), " opus(maxplaybackrate=48000; stereo=1)");
}

}  // namespace
