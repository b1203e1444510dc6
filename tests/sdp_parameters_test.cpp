// The companion's SDP parameters: format parameters of AMR-WB and Opus, and names of crypto suites.

#include <gtest/gtest.h>

#include <climits>
#include <list>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>

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

struct AmrwbParameter {
    const char* name;
    void (*set)(Sdp_Amrwb_Param& param);
    const char* text;
};

void PrintTo(const AmrwbParameter& parameter, std::ostream* out) {
    *out << parameter.name;
}

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
    {"all",
     [](Sdp_Amrwb_Param& p) {
         p.octetAlign = 1;
         p.modeSet = {0, 1};
         p.modeChangePeriod = 2;
         p.modeChangeCapability = 3;
         p.modeChangeNeighbor = 4;
         p.crc = 5;
         p.robustSorting = 6;
         p.interleaving = 7;
         p.channels = 8;
         p.maxRed = 9;
         p.payloadType = 10;
     },
     " AMR-WB(payload-type=10; octet-align=1; mode-set=0,1; mode-change-period=2; "
     "mode-change-capability=3; "
     "mode-change-neighbor=4; crc=5; robust-sorting=6; interleaving=7; channels=8; max-red=9)"},
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
    GetParam().set(param);
    EXPECT_EQ(std::string(param), GetParam().text);
}

TEST_P(AmrwbText, OfACopyIsTheSame) {
    Sdp_Amrwb_Param param;
    GetParam().set(param);
    const Sdp_Amrwb_Param copy(param);
    EXPECT_EQ(std::string(copy), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, AmrwbText, testing::ValuesIn(amrwb_parameters), name_of_row);

TEST(AmrwbTexts, AreIndependentOfTheGlobalLocale) {
    Sdp_Amrwb_Param param;
    param.maxRed = 65535;
    const GroupingLocale locale;
    EXPECT_EQ(std::string(param), " AMR-WB(max-red=65535)");
}

TEST(AmrwbCopy, HasEveryMember) {
    Sdp_Amrwb_Param source;
    source.octetAlign = 1;
    source.modeSet = {2, 3};
    source.modeChangePeriod = 4;
    source.modeChangeCapability = 5;
    source.modeChangeNeighbor = 6;
    source.crc = 7;
    source.robustSorting = 8;
    source.interleaving = 9;
    source.channels = 10;
    source.maxRed = 11;
    source.payloadType = 12;
    const Sdp_Amrwb_Param copy(source);
    EXPECT_EQ(copy.octetAlign, 1);
    EXPECT_EQ(copy.modeSet, (std::list<int>{2, 3}));
    EXPECT_EQ(copy.modeChangePeriod, 4);
    EXPECT_EQ(copy.modeChangeCapability, 5);
    EXPECT_EQ(copy.modeChangeNeighbor, 6);
    EXPECT_EQ(copy.crc, 7);
    EXPECT_EQ(copy.robustSorting, 8);
    EXPECT_EQ(copy.interleaving, 9);
    EXPECT_EQ(copy.channels, 10);
    EXPECT_EQ(copy.maxRed, 11);
    EXPECT_EQ(copy.payloadType, 12);
}

TEST(AmrwbCopy, HasAListOfItsOwn) {
    Sdp_Amrwb_Param source;
    source.modeSet = {0, 2};
    Sdp_Amrwb_Param copy(source);
    source.modeSet.front() = 7;
    copy.modeSet.push_back(8);
    EXPECT_EQ(source.modeSet, (std::list<int>{7, 2}));
    EXPECT_EQ(copy.modeSet, (std::list<int>{0, 2, 8}));
}

TEST(AmrwbCopy, OutlivesItsSource) {
    auto source = std::make_unique<Sdp_Amrwb_Param>();
    source->modeSet = {0, 2};
    const Sdp_Amrwb_Param copy(*source);
    source.reset();
    EXPECT_EQ(std::string(copy), " AMR-WB(mode-set=0,2)");
}

TEST(AmrwbCopy, LeavesItsSourceWholeWhenFreed) {
    Sdp_Amrwb_Param source;
    source.modeSet = {0, 2};
    std::make_unique<Sdp_Amrwb_Param>(source).reset();
    EXPECT_EQ(std::string(source), " AMR-WB(mode-set=0,2)");
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

struct OpusParameter {
    const char* name;
    void (*set)(Sdp_Opus_Param& param);
    const char* text;
};

void PrintTo(const OpusParameter& parameter, std::ostream* out) {
    *out << parameter.name;
}

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
    {"all",
     [](Sdp_Opus_Param& p) {
         p.maxPlaybackRate = 1;
         p.spropMaxCaptureRate = 2;
         p.maxAverageBitrate = 3;
         p.stereo = true;
         p.cbr = true;
         p.useInbandFec = true;
         p.useDtx = true;
         p.maxPtime = 4;
         p.spropStereo = true;
     },
     " opus(maxplaybackrate=1; sprop-maxcapturerate=2; maxaveragebitrate=3; stereo=1; cbr=1; "
     "useinbandfec=1; usedtx=1; maxptime=4; sprop-stereo=1)"},
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
    GetParam().set(param);
    EXPECT_EQ(std::string(param), GetParam().text);
}

TEST_P(OpusText, OfACopyIsTheSame) {
    auto source = std::make_unique<Sdp_Opus_Param>();
    GetParam().set(*source);
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

TEST(OpusCopy, IsIndependent) {
    Sdp_Opus_Param source;
    source.maxPlaybackRate = 16000;
    Sdp_Opus_Param copy(source);
    copy.maxPlaybackRate = 8000;
    EXPECT_EQ(source.maxPlaybackRate, 16000);
    EXPECT_EQ(copy.maxPlaybackRate, 8000);
}

}  // namespace
