// The printable names of the enumerators.

#include "qova/enumerations.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "qova/media.h"
#include "rows.h"

namespace {

// Values that a table read by its low bits only, or read signed, would take for its own.
constexpr int WITH_1_IN_THE_LOW_BYTE = 0x101;
constexpr int WITH_1_IN_THE_LOW_HALF = 0x10001;
constexpr int WITH_1_ABOVE_THE_LEAST = INT_MIN + 1;

// A table holds numbers without enumerators too.
using Name = Row<int>;

constexpr Name codec_names[] = {
    {"CODEC_NIL", CODEC_NIL, "NIL"},
    {"CODEC_G711_ALAW", CODEC_G711_ALAW, "G711alaw"},
    {"CODEC_G711_ULAW", CODEC_G711_ULAW, "G711ulaw"},
    {"CODEC_G723", CODEC_G723, "G723"},
    {"CODEC_G729", CODEC_G729, "G729"},
    {"CODEC_G729A", CODEC_G729A, "G729a"},
    {"CODEC_G711_NIL", CODEC_G711_NIL, "G711nil"},
    {"CODEC_G729_NIL", CODEC_G729_NIL, "G729nil"},
    {"CODEC_G722", CODEC_G722, "G722"},
    {"CODEC_G722_2", CODEC_G722_2, "G722.2"},
    {"CODEC_OPUS", CODEC_OPUS, "OPUS"},
    {"dynamic_first", 96, "DYN(96)"},
    {"dynamic_second", 97, "DYN(97)"},
    {"dynamic_last_of_two_digits", 99, "DYN(99)"},
    {"dynamic_first_of_three_digits", 100, "DYN(100)"},
    {"dynamic_tone_events", 101, "DYN(101)"},
    {"dynamic_last_but_one", 126, "DYN(126)"},
    {"dynamic_last", 127, "DYN(127)"},
    {"after_the_named", 11, "NIL"},
    {"before_the_dynamic", 95, "NIL"},
    {"after_the_dynamic", 128, "NIL"},
    {"minus_1", -1, "NIL"},
    {"minus_96", -96, "NIL"},
    {"minus_160_whose_low_byte_is_96", -160, "NIL"},
    {"named_in_the_low_byte", WITH_1_IN_THE_LOW_BYTE, "NIL"},
    {"named_in_the_low_half", WITH_1_IN_THE_LOW_HALF, "NIL"},
    {"named_above_the_least", WITH_1_ABOVE_THE_LEAST, "NIL"},
    {"dynamic_in_the_low_byte", 0x160, "NIL"},
    {"dynamic_in_the_low_half", 0x10060, "NIL"},
    {"dynamic_above_the_least", INT_MIN + 96, "NIL"},
    {"least", INT_MIN, "NIL"},
    {"greatest", INT_MAX, "NIL"},
};

class CodecName : public testing::TestWithParam<Name> {};

TEST_P(CodecName, IsPrinted) {
    EXPECT_EQ(ToString(static_cast<QOVA_Codec>(GetParam().value)), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, CodecName, testing::ValuesIn(codec_names), name_of_row);

TEST(CodecNames, CarryTheNumberOfEveryDynamicPayloadType) {
    for (int type = 96; type <= 127; ++type) {
        EXPECT_EQ(ToString(static_cast<QOVA_Codec>(type)), "DYN(" + std::to_string(type) + ")");
    }
}

TEST(CodecNames, AreNilForEveryOtherSmallNumber) {
    for (int value = -1000; value <= 1000; ++value) {
        if ((value < 1 || value > 10) && (value < 96 || value > 127)) {
            EXPECT_EQ(ToString(static_cast<QOVA_Codec>(value)), "NIL") << value;
        }
    }
}

constexpr Name early_media_names[] = {
    {"EM_NIL", EM_NIL, "nil"},
    {"EM_SENDRECV", EM_SENDRECV, "sendrecv"},
    {"EM_SENDONLY", EM_SENDONLY, "sendonly"},
    {"EM_RECVONLY", EM_RECVONLY, "recvonly"},
    {"EM_INACTIVE", EM_INACTIVE, "inactive"},
    {"after_the_last", 5, "unknown???"},
    {"minus_1", -1, "unknown???"},
    {"minus_4", -4, "unknown???"},
    {"named_in_the_low_byte", WITH_1_IN_THE_LOW_BYTE, "unknown???"},
    {"named_in_the_low_half", WITH_1_IN_THE_LOW_HALF, "unknown???"},
    {"named_above_the_least", WITH_1_ABOVE_THE_LEAST, "unknown???"},
    {"least", INT_MIN, "unknown???"},
    {"greatest", INT_MAX, "unknown???"},
};

class EarlyMediaName : public testing::TestWithParam<Name> {};

TEST_P(EarlyMediaName, IsPrinted) {
    EXPECT_EQ(ToString(static_cast<QOVA_EarlyMedia>(GetParam().value)), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, EarlyMediaName, testing::ValuesIn(early_media_names), name_of_row);

constexpr Name media_type_names[] = {
    {"MT_NIL", QOVA_Media::MT_NIL, "Nil"},
    {"MT_AUDIO", QOVA_Media::MT_AUDIO, "Audio"},
    {"MT_VIDEO", QOVA_Media::MT_VIDEO, "Video"},
    {"MT_FAX", QOVA_Media::MT_FAX, "Fax"},
    {"MT_DATA", QOVA_Media::MT_DATA, "Data"},
    {"after_the_last", 5, "Nil"},
    {"minus_1", -1, "Nil"},
    {"minus_4", -4, "Nil"},
    {"named_in_the_low_byte", WITH_1_IN_THE_LOW_BYTE, "Nil"},
    {"named_in_the_low_half", WITH_1_IN_THE_LOW_HALF, "Nil"},
    {"named_above_the_least", WITH_1_ABOVE_THE_LEAST, "Nil"},
    {"least", INT_MIN, "Nil"},
    {"greatest", INT_MAX, "Nil"},
};

class MediaTypeName : public testing::TestWithParam<Name> {};

TEST_P(MediaTypeName, IsPrinted) {
    EXPECT_EQ(QOVA_Media::ToString(static_cast<QOVA_Media::e_MediaType>(GetParam().value)),
              GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, MediaTypeName, testing::ValuesIn(media_type_names), name_of_row);

constexpr Name media_status_names[] = {
    {"MS_UNKNOWN", QOVA_Media::MS_UNKNOWN, "Unknown"},
    {"MS_ACCEPTED", QOVA_Media::MS_ACCEPTED, "Accepted"},
    {"MS_REJECTED", QOVA_Media::MS_REJECTED, "Rejected"},
    {"MS_MODIFIED", QOVA_Media::MS_MODIFIED, "Modified"},
    {"after_the_last", 4, "Unknown"},
    {"minus_1", -1, "Unknown"},
    {"minus_3", -3, "Unknown"},
    {"named_in_the_low_byte", WITH_1_IN_THE_LOW_BYTE, "Unknown"},
    {"named_in_the_low_half", WITH_1_IN_THE_LOW_HALF, "Unknown"},
    {"named_above_the_least", WITH_1_ABOVE_THE_LEAST, "Unknown"},
    {"least", INT_MIN, "Unknown"},
    {"greatest", INT_MAX, "Unknown"},
};

class MediaStatusName : public testing::TestWithParam<Name> {};

TEST_P(MediaStatusName, IsPrinted) {
    EXPECT_EQ(QOVA_Media::ToString(static_cast<QOVA_Media::e_MediaStatus>(GetParam().value)),
              GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, MediaStatusName, testing::ValuesIn(media_status_names), name_of_row);

// Asks twice, and spoils the first answer.
template <typename Function>
void expect_independent_answers(Function name) {
    std::string first = name();
    const std::string second = name();
    ASSERT_EQ(first, second);
    first.assign(first.size(), '#');
    EXPECT_NE(first, second);
    EXPECT_EQ(name(), second);
}

TEST(Names, AreIndependentStrings) {
    expect_independent_answers([] { return ToString(CODEC_G711_ALAW); });
    expect_independent_answers([] { return ToString(static_cast<QOVA_Codec>(101)); });
    expect_independent_answers([] { return ToString(EM_SENDRECV); });
    expect_independent_answers([] { return QOVA_Media::ToString(QOVA_Media::MT_AUDIO); });
    expect_independent_answers([] { return QOVA_Media::ToString(QOVA_Media::MS_ACCEPTED); });
}

TEST(Names, OfOneDynamicPayloadTypeSurviveTheNextCall) {
    const std::string first = ToString(static_cast<QOVA_Codec>(96));
    const std::string second = ToString(static_cast<QOVA_Codec>(127));
    EXPECT_EQ(first, "DYN(96)");
    EXPECT_EQ(second, "DYN(127)");
}

}  // namespace
