// The printable names of the enumerators.

#include "qova/enumerations.h"

#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <string>

#include "qova/attributes.h"
#include "qova/media.h"
#include "rows.h"

namespace {

using Names = std::map<int, std::string>;

struct Enumeration {
    const char* name;
    std::string (*print)(int value);
    Names names;
    const char* fallback;  // the name of every other value
};

void PrintTo(const Enumeration& enumeration, std::ostream* out) {
    *out << enumeration.name;
}

// The fax attribute prints the names of its enumerations itself.
std::string printed_after(const std::string& label, const std::string& fax) {
    const std::size_t begin = fax.find(label) + label.size();
    return fax.substr(begin, fax.find(" /", begin) - begin);
}

std::string print_transport(int value) {
    QOVA_FaxAttribute fax;
    fax.transport = static_cast<QOVA_FaxTransport>(value);
    return printed_after("transport=", fax);
}

std::string print_rate_management(int value) {
    QOVA_FaxAttribute fax;
    fax.rateMgt = static_cast<QOVA_FaxRateMgt>(value);
    return printed_after("rateMgt=", fax);
}

const Enumeration enumerations[] = {
    {"Codec",
     [](int value) { return ToString(static_cast<QOVA_Codec>(value)); },
     {{CODEC_NIL, "NIL"},
      {CODEC_G711_ALAW, "G711alaw"},
      {CODEC_G711_ULAW, "G711ulaw"},
      {CODEC_G723, "G723"},
      {CODEC_G729, "G729"},
      {CODEC_G729A, "G729a"},
      {CODEC_G711_NIL, "G711nil"},
      {CODEC_G729_NIL, "G729nil"},
      {CODEC_G722, "G722"},
      {CODEC_G722_2, "G722.2"},
      {CODEC_OPUS, "OPUS"}},
     "NIL"},
    {"EarlyMedia",
     [](int value) { return ToString(static_cast<QOVA_EarlyMedia>(value)); },
     {{EM_NIL, "nil"},
      {EM_SENDRECV, "sendrecv"},
      {EM_SENDONLY, "sendonly"},
      {EM_RECVONLY, "recvonly"},
      {EM_INACTIVE, "inactive"}},
     "unknown???"},
    {"MediaType",
     [](int value) { return QOVA_Media::ToString(static_cast<QOVA_Media::e_MediaType>(value)); },
     {{QOVA_Media::MT_NIL, "Nil"},
      {QOVA_Media::MT_AUDIO, "Audio"},
      {QOVA_Media::MT_VIDEO, "Video"},
      {QOVA_Media::MT_FAX, "Fax"},
      {QOVA_Media::MT_DATA, "Data"}},
     "Nil"},
    {"MediaStatus",
     [](int value) { return QOVA_Media::ToString(static_cast<QOVA_Media::e_MediaStatus>(value)); },
     {{QOVA_Media::MS_UNKNOWN, "Unknown"},
      {QOVA_Media::MS_ACCEPTED, "Accepted"},
      {QOVA_Media::MS_REJECTED, "Rejected"},
      {QOVA_Media::MS_MODIFIED, "Modified"}},
     "Unknown"},
    {"FaxTransport",
     print_transport,
     {{FT_NIL, "NIL"}, {FT_T38_UDPTL, "T38udptl"}, {FT_T38_TCP, "T38tcp"}},
     "NIL"},
    {"FaxRateManagement",
     print_rate_management,
     {{RM_NIL, "NIL"}, {RM_TRFTCF, "TRFTCF"}, {RM_LOCALTCF, "LocalTCF"}},
     "NIL"},
};

class EnumerationNames : public testing::TestWithParam<Enumeration> {};

INSTANTIATE_TEST_SUITE_P(Of, EnumerationNames, testing::ValuesIn(enumerations), name_of_row);

TEST_P(EnumerationNames, NameEveryEnumerator) {
    for (const auto& [value, name] : GetParam().names) {
        EXPECT_EQ(GetParam().print(value), name) << value;
    }
}

// Codecs from 96 to 127 are dynamic payload types: see the test below.
TEST_P(EnumerationNames, HaveAFallback) {
    const auto expect_fallback = [](int value) {
        EXPECT_EQ(GetParam().print(value), GetParam().fallback) << value;
    };
    for (int value = -1000; value <= 1000; ++value) {
        if (GetParam().names.count(value) == 0 && (value < 96 || value > 127)) {
            expect_fallback(value);
        }
    }
    // The low bits of these values equal a value that has a name.
    for (const int value : {0x101, 0x160, 0x10001, 0x10060, INT_MIN + 1, INT_MIN + 96}) {
        expect_fallback(value);
    }
    expect_fallback(INT_MIN);
    expect_fallback(INT_MAX);
}

TEST(CodecNames, ShowDynamicPayloadTypes) {
    for (int type = 96; type <= 127; ++type) {
        EXPECT_EQ(ToString(static_cast<QOVA_Codec>(type)), "DYN(" + std::to_string(type) + ")");
    }
}

}  // namespace
