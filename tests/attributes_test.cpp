// Payload attributes: defaults, copies, equality, log texts.

#include "qova/attributes.h"

#include <gtest/gtest.h>

#include <climits>
#include <initializer_list>
#include <memory>
#include <string>
#include <typeinfo>

#include "building_blocks.h"
#include "derived.h"
#include "describe.h"
#include "equality.h"
#include "rows.h"

namespace {

using Audio = QOVA_AudioAttribute;
using Video = QOVA_VideoAttribute;
using Fax = QOVA_FaxAttribute;
using Data = QOVA_DataAttribute;
using Owned = std::unique_ptr<QOVA_MediaAttribute>;

// ---- Defaults. New memory is not zero here: see allocations.cpp ----

template <class Object>
std::string describe_new() {
    return describe(*std::unique_ptr<Object>(new Object));
}

TEST(AttributeDefaults, AreNeutral) {
    EXPECT_EQ(describe_new<Audio>(),
              "QOVA_AudioAttribute status=0 attributeType=0"
              " codec=0 framing=0 vad=0 echo=0 mxFraming=0 mf=0");
    EXPECT_EQ(describe_new<Video>(), "QOVA_VideoAttribute status=0 attributeType=0");
    EXPECT_EQ(describe_new<Fax>(),
              "QOVA_FaxAttribute status=0 attributeType=0"
              " red=0 depth=0 mxRate=0 rateMgt=0 transport=0 fillBit=0 transMMR=0 transJBIG=0"
              " mxBuffer=0 mxDgram=0 errCorr=0");
    EXPECT_EQ(describe_new<Data>(), "QOVA_DataAttribute status=0 attributeType=0 type=0");
}

// ---- Rules that all four classes share ----

template <class Attribute>
class EachAttribute : public testing::Test {
protected:
    const std::unique_ptr<Attribute> attribute = full<Attribute>();
    const std::unique_ptr<Attribute> like = full<Attribute>();
    const QOVA_MediaAttribute& base = *attribute;  // as the owner of the list sees it
};

using AttributeClasses = testing::Types<Audio, Video, Fax, Data>;
TYPED_TEST_SUITE(EachAttribute, AttributeClasses, );

TYPED_TEST(EachAttribute, CopyHasEveryMember) {
    const TypeParam copy(*this->attribute);
    EXPECT_EQ(describe(copy), describe(*this->like));
}

TYPED_TEST(EachAttribute, CloneHasTheSameClassAndMembers) {
    const Owned clone(this->base.clone());
    EXPECT_EQ(describe(*clone), describe(*this->like));
    expect_equal(*clone, this->base);
}

TYPED_TEST(EachAttribute, CloneIsPlainWithoutAnOverride) {
    const Owned derived = full<WithoutClone<TypeParam>>();
    EXPECT_EQ(describe(*Owned(derived->clone())), describe(*this->like));
}

TYPED_TEST(EachAttribute, CloneIsIndependent) {
    const Owned clone(this->base.clone());
    *this->attribute = TypeParam();
    EXPECT_EQ(describe(*clone), describe(*this->like));
}

TYPED_TEST(EachAttribute, EqualsOneWithTheSameFields) {
    expect_equal(this->base, this->base);
    expect_equal(this->base, *this->like);
}

TYPED_TEST(EachAttribute, IgnoresStatusAndAttributeType) {
    this->like->status = QOVA_Media::MS_REJECTED;
    expect_equal(this->base, *this->like);
    this->like->attributeType = QOVA_Media::AT_DATA;
    expect_equal(this->base, *this->like);
}

TYPED_TEST(EachAttribute, IsUnequalToOtherClasses) {
    const Audio audio;
    const Video video;
    const Fax fax;
    const Data data;
    const OwnAttribute own;
    const TypeParam neutral;
    for (const QOVA_MediaAttribute* const other :
         std::initializer_list<const QOVA_MediaAttribute*>{&audio, &video, &fax, &data, &own}) {
        if (typeid(*other) != typeid(TypeParam)) {
            expect_unequal<QOVA_MediaAttribute>(neutral, *other);
        }
    }
}

// The left operand's class decides what is compared; the right operand must be exactly that class.
TYPED_TEST(EachAttribute, IsAsymmetricWithADerivedClass) {
    const Owned derived = full<Derived<TypeParam>>();
    EXPECT_FALSE(this->base == *derived);
    EXPECT_TRUE(*derived == this->base);
    expect_unequal(*derived, *derived);
}

TEST(AttributeEquality, IsFalseWithoutOverride) {
    const OwnAttribute own;
    expect_unequal<QOVA_MediaAttribute>(own, own);
}

// ---- Each compared field ----

template <class Attribute>
class AttributeField : public testing::TestWithParam<Change<Attribute>> {
protected:
    void expect_compared() {
        const Owned one = full<Attribute>();
        const auto other = full<Attribute>();
        this->GetParam().apply(*other);
        expect_unequal<QOVA_MediaAttribute>(*one, *other);
        const Owned copy(other->clone());
        EXPECT_EQ(describe(*copy), describe(*other));
    }
};

constexpr Change<Audio> audio_fields[] = {
    {"codec", flip_highest_bit<&Audio::codec>},
    {"framing", flip_highest_bit<&Audio::framing>},
    {"vad", flip_highest_bit<&Audio::vad>},
    {"echo", flip_highest_bit<&Audio::echo>},
    {"mxFraming", flip_highest_bit<&Audio::mxFraming>},
    {"mf", flip_highest_bit<&Audio::mf>},
};
using AudioField = AttributeField<Audio>;
TEST_P(AudioField, IsComparedAndCopied) {
    expect_compared();
}
INSTANTIATE_TEST_SUITE_P(Equality, AudioField, testing::ValuesIn(audio_fields), name_of_row);

constexpr Change<Fax> fax_fields[] = {
    {"red", flip_highest_bit<&Fax::red>},
    {"depth", flip_highest_bit<&Fax::depth>},
    {"mxRate", flip_highest_bit<&Fax::mxRate>},
    {"rateMgt", flip_highest_bit<&Fax::rateMgt>},
    {"transport", flip_highest_bit<&Fax::transport>},
    {"fillBit", flip_highest_bit<&Fax::fillBit>},
    {"transMMR", flip_highest_bit<&Fax::transMMR>},
    {"transJBIG", flip_highest_bit<&Fax::transJBIG>},
    {"mxBuffer", flip_highest_bit<&Fax::mxBuffer>},
    {"mxDgram", flip_highest_bit<&Fax::mxDgram>},
    {"errCorr", flip_highest_bit<&Fax::errCorr>},
};
using FaxField = AttributeField<Fax>;
TEST_P(FaxField, IsComparedAndCopied) {
    expect_compared();
}
INSTANTIATE_TEST_SUITE_P(Equality, FaxField, testing::ValuesIn(fax_fields), name_of_row);

constexpr Change<Data> data_fields[] = {{"type", flip_highest_bit<&Data::type>}};
using DataField = AttributeField<Data>;
TEST_P(DataField, IsComparedAndCopied) {
    expect_compared();
}
INSTANTIATE_TEST_SUITE_P(Equality, DataField, testing::ValuesIn(data_fields), name_of_row);

// ---- Log texts. The names of the enumerations are in enumerations_test.cpp ----

template <class Attribute>
class AttributeText : public testing::TestWithParam<TextRow<Attribute>> {
protected:
    void expect_text() {
        const auto attribute = full<Attribute>();
        this->GetParam().value(*attribute);
        const QOVA_MediaAttribute& base = *attribute;
        EXPECT_EQ(std::string(base), this->GetParam().text);
    }
};

constexpr TextRow<Audio> audio_texts[] = {
    {"full", [](Audio&) {},
     "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"defaults", [](Audio& a) { a = Audio(); },
     "\t\t -> NIL / Unknown / framing=0 / vad=0 / echo=0 / mxFraming=0 / MF=0\n"},
    {"codecByNameAndMfByNumber",
     [](Audio& a) {
         a.codec = payload_type(96);
         a.mf = payload_type(96);
     },
     "\t\t -> DYN(96) / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=96\n"},
    {"vadOff", [](Audio& a) { a.vad = false; },
     "\t\t -> G711ulaw / Modified / framing=20 / vad=0 / echo=1 / mxFraming=40 / MF=101\n"},
    {"longest",
     [](Audio& a) {
         a.codec = payload_type(127);
         a.status = QOVA_Media::MS_REJECTED;
         a.framing = INT_MIN;
         a.mxFraming = INT_MIN;
         a.mf = payload_type(INT_MIN);
     },
     "\t\t -> DYN(127) / Rejected / framing=-2147483648 / vad=1 / echo=1"
     " / mxFraming=-2147483648 / MF=-2147483648\n"},
};
using AudioText = AttributeText<Audio>;
TEST_P(AudioText, IsOneLine) {
    expect_text();
}
INSTANTIATE_TEST_SUITE_P(Golden, AudioText, testing::ValuesIn(audio_texts), name_of_row);

constexpr TextRow<Fax> fax_texts[] = {
    {"full", [](Fax&) {},
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"},
    {"defaults", [](Fax& f) { f = Fax(); },
     "\t\t -> fax / transport=NIL / red=0 / depth=0 / mxRate=0\n"
     "\t\t    rateMgt=NIL / fillBit=0 / transMMR=0 / transJBIG=0\n"
     "\t\t    mxBuffer=0/ mxDgram=0 / errCorr=0\n"},
    {"fillBitOff", [](Fax& f) { f.fillBit = false; },
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=0 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"},
    {"longestWithJbigOff",
     [](Fax& f) {
         f.red = f.depth = f.mxRate = f.mxBuffer = f.mxDgram = f.errCorr = UINT_MAX;
         f.transJBIG = false;
     },
     "\t\t -> fax / transport=T38udptl / red=4294967295 / depth=4294967295 / mxRate=4294967295\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=0\n"
     "\t\t    mxBuffer=4294967295/ mxDgram=4294967295 / errCorr=4294967295\n"},
};
using FaxText = AttributeText<Fax>;
TEST_P(FaxText, IsThreeLines) {
    expect_text();
}
INSTANTIATE_TEST_SUITE_P(Golden, FaxText, testing::ValuesIn(fax_texts), name_of_row);

TEST(VideoText, IsFixed) {
    EXPECT_EQ(std::string(*full<Video>()), "\t\t -> video : not implemented\n");
}

// The text says "NIL" whatever the type is: a promise, not a gap.
TEST(DataText, IsFixed) {
    EXPECT_EQ(std::string(*full<Data>()), "\t\t -> Data / type=NIL\n");
}

TEST(AttributeNumbers, PrintAtEveryLength) {
    const auto expect_printed = [](int number) {
        Audio audio;
        audio.framing = number;
        EXPECT_EQ(std::string(audio), "\t\t -> NIL / Unknown / framing=" + std::to_string(number) +
                                          " / vad=0 / echo=0 / mxFraming=0 / MF=0\n");
    };
    for (int power = 1; power <= INT_MAX / 10; power *= 10) {
        for (const int number : {power, -power, 10 * power - 1, 1 - 10 * power}) {
            expect_printed(number);
        }
    }
}

}  // namespace
