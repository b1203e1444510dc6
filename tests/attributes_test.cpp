// Payload attributes: copies, equality, texts.

#include "qova/attributes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "allocations.h"
#include "equality.h"
#include "grouping_locale.h"
#include "rows.h"

namespace {

template <typename Member, typename Type>
constexpr bool is_a = std::is_same_v<Member, Type>;

static_assert(std::is_abstract_v<QOVA_MediaAttribute>);
static_assert(std::has_virtual_destructor_v<QOVA_MediaAttribute>);
static_assert(is_a<decltype(QOVA_MediaAttribute::status), QOVA_Media::e_MediaStatus>);
static_assert(is_a<decltype(QOVA_MediaAttribute::attributeType), QOVA_Media::e_AttributeType>);

static_assert(is_a<decltype(QOVA_AudioAttribute::codec), QOVA_Codec>);
static_assert(is_a<decltype(QOVA_AudioAttribute::framing), std::int32_t>);
static_assert(is_a<decltype(QOVA_AudioAttribute::vad), bool>);
static_assert(is_a<decltype(QOVA_AudioAttribute::echo), bool>);
static_assert(is_a<decltype(QOVA_AudioAttribute::mxFraming), std::int32_t>);
static_assert(is_a<decltype(QOVA_AudioAttribute::mf), QOVA_Codec>);

static_assert(is_a<decltype(QOVA_FaxAttribute::red), std::uint32_t>);
static_assert(is_a<decltype(QOVA_FaxAttribute::depth), std::uint32_t>);
static_assert(is_a<decltype(QOVA_FaxAttribute::mxRate), std::uint32_t>);
static_assert(is_a<decltype(QOVA_FaxAttribute::rateMgt), QOVA_FaxRateMgt>);
static_assert(is_a<decltype(QOVA_FaxAttribute::transport), QOVA_FaxTransport>);
static_assert(is_a<decltype(QOVA_FaxAttribute::fillBit), bool>);
static_assert(is_a<decltype(QOVA_FaxAttribute::transMMR), bool>);
static_assert(is_a<decltype(QOVA_FaxAttribute::transJBIG), bool>);
static_assert(is_a<decltype(QOVA_FaxAttribute::mxBuffer), std::uint32_t>);
static_assert(is_a<decltype(QOVA_FaxAttribute::mxDgram), std::uint32_t>);
static_assert(is_a<decltype(QOVA_FaxAttribute::errCorr), std::uint32_t>);

static_assert(is_a<decltype(QOVA_DataAttribute::type), std::int32_t>);
static_assert(sizeof(bool) == 1);

using Owned = std::unique_ptr<QOVA_MediaAttribute>;

constexpr auto UNNAMED_STATUS = static_cast<QOVA_Media::e_MediaStatus>(99);
constexpr auto UNNAMED_TYPE = static_cast<QOVA_Media::e_AttributeType>(-7);

// Attributes whose fields all differ from the defaults and, where they can, from each other.

template <typename Attribute>
void fill_base(Attribute& attribute) {
    attribute.status = QOVA_Media::MS_MODIFIED;
    attribute.attributeType = UNNAMED_TYPE;
}

void fill(QOVA_AudioAttribute& audio) {
    fill_base(audio);
    audio.codec = CODEC_G711_ULAW;
    audio.framing = 20;
    audio.vad = true;
    audio.echo = true;
    audio.mxFraming = 40;
    audio.mf = static_cast<QOVA_Codec>(101);
}

void fill(QOVA_VideoAttribute& video) {
    fill_base(video);
}

void fill(QOVA_FaxAttribute& fax) {
    fill_base(fax);
    fax.red = 3;
    fax.depth = 4;
    fax.mxRate = 14400;
    fax.rateMgt = RM_LOCALTCF;
    fax.transport = FT_T38_UDPTL;
    fax.fillBit = true;
    fax.transMMR = true;
    fax.transJBIG = true;
    fax.mxBuffer = 2000;
    fax.mxDgram = 512;
    fax.errCorr = 5;
}

void fill(QOVA_DataAttribute& data) {
    fill_base(data);
    data.type = 7;
}

template <typename Attribute>
Attribute sample() {
    Attribute attribute;
    fill(attribute);
    return attribute;
}

// Field by field, since operator== leaves fields out.

void expect_base_fields(const QOVA_MediaAttribute& left, const QOVA_MediaAttribute& right) {
    EXPECT_EQ(left.status, right.status);
    EXPECT_EQ(left.attributeType, right.attributeType);
}

void expect_fields(const QOVA_AudioAttribute& left, const QOVA_AudioAttribute& right) {
    expect_base_fields(left, right);
    EXPECT_EQ(left.codec, right.codec);
    EXPECT_EQ(left.framing, right.framing);
    EXPECT_EQ(left.vad, right.vad);
    EXPECT_EQ(left.echo, right.echo);
    EXPECT_EQ(left.mxFraming, right.mxFraming);
    EXPECT_EQ(left.mf, right.mf);
}

void expect_fields(const QOVA_VideoAttribute& left, const QOVA_VideoAttribute& right) {
    expect_base_fields(left, right);
}

void expect_fields(const QOVA_FaxAttribute& left, const QOVA_FaxAttribute& right) {
    expect_base_fields(left, right);
    EXPECT_EQ(left.red, right.red);
    EXPECT_EQ(left.depth, right.depth);
    EXPECT_EQ(left.mxRate, right.mxRate);
    EXPECT_EQ(left.rateMgt, right.rateMgt);
    EXPECT_EQ(left.transport, right.transport);
    EXPECT_EQ(left.fillBit, right.fillBit);
    EXPECT_EQ(left.transMMR, right.transMMR);
    EXPECT_EQ(left.transJBIG, right.transJBIG);
    EXPECT_EQ(left.mxBuffer, right.mxBuffer);
    EXPECT_EQ(left.mxDgram, right.mxDgram);
    EXPECT_EQ(left.errCorr, right.errCorr);
}

void expect_fields(const QOVA_DataAttribute& left, const QOVA_DataAttribute& right) {
    expect_base_fields(left, right);
    EXPECT_EQ(left.type, right.type);
}

// What holds for each of the four classes.

template <typename Attribute>
class EachAttribute : public testing::Test {};

struct AttributeName {
    template <typename Attribute>
    static std::string GetName(int /*index*/) {
        if (std::is_same_v<Attribute, QOVA_AudioAttribute>) {
            return "Audio";
        }
        if (std::is_same_v<Attribute, QOVA_VideoAttribute>) {
            return "Video";
        }
        return std::is_same_v<Attribute, QOVA_FaxAttribute> ? "Fax" : "Data";
    }
};

using AttributeClasses =
    testing::Types<QOVA_AudioAttribute, QOVA_VideoAttribute, QOVA_FaxAttribute, QOVA_DataAttribute>;
TYPED_TEST_SUITE(EachAttribute, AttributeClasses, AttributeName);

TYPED_TEST(EachAttribute, DerivesPubliclyFromTheBase) {
    EXPECT_TRUE((std::is_convertible_v<TypeParam*, QOVA_MediaAttribute*>));
    EXPECT_FALSE(std::is_abstract_v<TypeParam>);
    EXPECT_TRUE(std::is_copy_constructible_v<TypeParam>);
}

TYPED_TEST(EachAttribute, CopyHasEveryField) {
    const TypeParam source = sample<TypeParam>();
    const TypeParam copy(source);
    expect_fields(copy, source);
    expect_fields(copy, sample<TypeParam>());
}

TYPED_TEST(EachAttribute, CloneHasTheClassOfItsSource) {
    const TypeParam source = sample<TypeParam>();
    const QOVA_MediaAttribute& base = source;
    const Owned clone(base.clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone.get(), &base);
    const QOVA_MediaAttribute& cloned = *clone;
    EXPECT_EQ(typeid(cloned), typeid(TypeParam));
}

TYPED_TEST(EachAttribute, CloneHasEveryField) {
    const TypeParam source = sample<TypeParam>();
    const Owned clone(source.clone());
    const auto* const cloned = dynamic_cast<const TypeParam*>(clone.get());
    ASSERT_NE(cloned, nullptr);
    expect_fields(*cloned, sample<TypeParam>());
    expect_fields(source, sample<TypeParam>());
}

TYPED_TEST(EachAttribute, CloneEqualsItsSource) {
    const TypeParam source = sample<TypeParam>();
    const Owned clone(source.clone());
    const QOVA_MediaAttribute& base = source;
    expect_equal(*clone, base);
}

TYPED_TEST(EachAttribute, CloneIsIndependentOfItsSource) {
    TypeParam source = sample<TypeParam>();
    const Owned clone(source.clone());
    source = TypeParam();
    const auto* const cloned = dynamic_cast<const TypeParam*>(clone.get());
    ASSERT_NE(cloned, nullptr);
    expect_fields(*cloned, sample<TypeParam>());
    clone->status = QOVA_Media::MS_REJECTED;
    clone->attributeType = QOVA_Media::AT_DATA;
    expect_fields(source, TypeParam());
}

TYPED_TEST(EachAttribute, CloneOutlivesItsSource) {
    auto source = std::make_unique<TypeParam>(sample<TypeParam>());
    const Owned clone(source->clone());
    source.reset();
    EXPECT_EQ(std::string(*clone), std::string(sample<TypeParam>()));
}

TYPED_TEST(EachAttribute, CloneIsOneGlobalAllocationThatFreeingGivesBack) {
    const TypeParam source = sample<TypeParam>();
    const std::size_t made = allocations::made();
    const std::size_t live = allocations::live();
    const QOVA_MediaAttribute* const clone = source.clone();
    EXPECT_EQ(allocations::made(), made + 1);
    EXPECT_EQ(allocations::live(), live + 1);
    delete clone;
    EXPECT_EQ(allocations::live(), live);
}

TYPED_TEST(EachAttribute, CloneReportsThatMemoryRanOut) {
    const TypeParam source = sample<TypeParam>();
    const allocations::Failure failure(1);
    EXPECT_THROW(source.clone(), std::bad_alloc);
}

TYPED_TEST(EachAttribute, EqualsItselfAndItsLike) {
    const TypeParam one = sample<TypeParam>();
    const TypeParam other = sample<TypeParam>();
    const QOVA_MediaAttribute& left = one;
    const QOVA_MediaAttribute& right = other;
    expect_equal(left, left);
    expect_equal(left, right);
    const TypeParam neutral;
    const TypeParam neutral_too;
    const QOVA_MediaAttribute& neutral_left = neutral;
    const QOVA_MediaAttribute& neutral_right = neutral_too;
    expect_equal(neutral_left, neutral_right);
}

TYPED_TEST(EachAttribute, IsEqualWhateverTheStatus) {
    for (const auto status : {QOVA_Media::MS_UNKNOWN, QOVA_Media::MS_ACCEPTED,
                              QOVA_Media::MS_REJECTED, QOVA_Media::MS_MODIFIED, UNNAMED_STATUS}) {
        const TypeParam one = sample<TypeParam>();
        TypeParam other = sample<TypeParam>();
        other.status = status;
        const QOVA_MediaAttribute& left = one;
        const QOVA_MediaAttribute& right = other;
        expect_equal(left, right);
    }
}

TYPED_TEST(EachAttribute, IsEqualWhateverTheAttributeType) {
    for (const auto type : {QOVA_Media::AT_NIL, QOVA_Media::AT_AUDIO, QOVA_Media::AT_VIDEO,
                            QOVA_Media::AT_FAX, QOVA_Media::AT_DATA, UNNAMED_TYPE}) {
        const TypeParam one = sample<TypeParam>();
        TypeParam other = sample<TypeParam>();
        other.attributeType = type;
        const QOVA_MediaAttribute& left = one;
        const QOVA_MediaAttribute& right = other;
        expect_equal(left, right);
    }
}

TYPED_TEST(EachAttribute, IsUnequalToEveryOtherClass) {
    const QOVA_AudioAttribute audio;
    const QOVA_VideoAttribute video;
    const QOVA_FaxAttribute fax;
    const QOVA_DataAttribute data;
    const TypeParam attribute;
    const QOVA_MediaAttribute& left = attribute;
    for (const QOVA_MediaAttribute* const right :
         std::initializer_list<const QOVA_MediaAttribute*>{&audio, &video, &fax, &data}) {
        if (typeid(*right) != typeid(TypeParam)) {
            EXPECT_NO_THROW(expect_unequal(left, *right));
        }
    }
}

// The left operand decides whose fields count, and asks for exactly its own class on the right.
template <typename Attribute>
class Derived : public Attribute {
public:
    QOVA_MediaAttribute* clone() const override { return new Derived(*this); }
};

TYPED_TEST(EachAttribute, DoesNotEqualADerivedOne) {
    Derived<TypeParam> derived;
    fill(derived);
    const TypeParam plain = sample<TypeParam>();
    const QOVA_MediaAttribute& left = plain;
    const QOVA_MediaAttribute& right = derived;
    EXPECT_FALSE(left == right);
}

TYPED_TEST(EachAttribute, IsEqualledByADerivedOneOfTheSameFields) {
    Derived<TypeParam> derived;
    fill(derived);
    const TypeParam plain = sample<TypeParam>();
    const QOVA_MediaAttribute& left = derived;
    const QOVA_MediaAttribute& right = plain;
    EXPECT_TRUE(left == right);
}

TYPED_TEST(EachAttribute, LeavesDerivedOnesUnequalToThemselves) {
    const Derived<TypeParam> derived;
    const QOVA_MediaAttribute& attribute = derived;
    expect_unequal(attribute, attribute);
}

TYPED_TEST(EachAttribute, ComparesWithoutAllocating) {
    const TypeParam one = sample<TypeParam>();
    const TypeParam other = sample<TypeParam>();
    const QOVA_MediaAttribute& left = one;
    const QOVA_MediaAttribute& right = other;
    const std::size_t before = allocations::made();
    const bool equal = left == right;
    const std::size_t after = allocations::made();
    EXPECT_TRUE(equal);
    EXPECT_EQ(after, before);
}

template <typename Attribute>
class Tracked : public Attribute {
public:
    explicit Tracked(int* counter) : destroyed(counter) {}
    ~Tracked() override { ++*destroyed; }
    QOVA_MediaAttribute* clone() const override { return new Tracked(*this); }

private:
    int* destroyed;
};

TYPED_TEST(EachAttribute, RunsTheConcreteDestructorWhenFreedThroughTheBase) {
    int destroyed = 0;
    const QOVA_MediaAttribute* const attribute = new Tracked<TypeParam>(&destroyed);
    const QOVA_MediaAttribute* const clone = attribute->clone();
    EXPECT_EQ(destroyed, 0);
    delete clone;
    EXPECT_EQ(destroyed, 1);
    delete attribute;
    EXPECT_EQ(destroyed, 2);
}

TYPED_TEST(EachAttribute, PrintsWholeLinesAndStaysAsItIs) {
    const TypeParam attribute = sample<TypeParam>();
    const std::string text = attribute;
    EXPECT_EQ(text.substr(0, 6), "\t\t -> ");
    EXPECT_EQ(text.back(), '\n');
    EXPECT_NE(text[text.size() - 2], '\n');
    EXPECT_EQ(std::string(attribute), text);
    expect_fields(attribute, sample<TypeParam>());
}

TYPED_TEST(EachAttribute, PrintsTheSameThroughTheBase) {
    const TypeParam attribute = sample<TypeParam>();
    const QOVA_MediaAttribute& base = attribute;
    EXPECT_EQ(std::string(base), std::string(attribute));
}

TYPED_TEST(EachAttribute, PrintsTheSameInAnyGlobalLocale) {
    const TypeParam attribute = sample<TypeParam>();
    const std::string before = attribute;
    const GroupingLocale locale;
    EXPECT_EQ(std::string(attribute), before);
}

// One test for each field that is compared: lowest and highest bit, or the other truth value.

class AudioEquality : public testing::TestWithParam<Change<QOVA_AudioAttribute>> {};

TEST_P(AudioEquality, Compares) {
    const auto one = sample<QOVA_AudioAttribute>();
    auto other = sample<QOVA_AudioAttribute>();
    GetParam().apply(other);
    const QOVA_MediaAttribute& left = one;
    const QOVA_MediaAttribute& right = other;
    expect_unequal(left, right);
}

constexpr Change<QOVA_AudioAttribute> audio_changes[] = {
    {"codec", [](QOVA_AudioAttribute& a) { a.codec = CODEC_G711_ALAW; }},
    {"codec_without_a_name",
     [](QOVA_AudioAttribute& a) { a.codec = static_cast<QOVA_Codec>(a.codec + INT_MIN); }},
    {"framing", [](QOVA_AudioAttribute& a) { a.framing = 21; }},
    {"framing_negative", [](QOVA_AudioAttribute& a) { a.framing += INT_MIN; }},
    {"vad", [](QOVA_AudioAttribute& a) { a.vad = false; }},
    {"echo", [](QOVA_AudioAttribute& a) { a.echo = false; }},
    {"mxFraming", [](QOVA_AudioAttribute& a) { a.mxFraming = 41; }},
    {"mxFraming_negative", [](QOVA_AudioAttribute& a) { a.mxFraming += INT_MIN; }},
    {"mf", [](QOVA_AudioAttribute& a) { a.mf = static_cast<QOVA_Codec>(100); }},
    {"mf_negative", [](QOVA_AudioAttribute& a) { a.mf = static_cast<QOVA_Codec>(a.mf + INT_MIN); }},
};

INSTANTIATE_TEST_SUITE_P(Field, AudioEquality, testing::ValuesIn(audio_changes), name_of_row);

class FaxEquality : public testing::TestWithParam<Change<QOVA_FaxAttribute>> {};

TEST_P(FaxEquality, Compares) {
    const auto one = sample<QOVA_FaxAttribute>();
    auto other = sample<QOVA_FaxAttribute>();
    GetParam().apply(other);
    const QOVA_MediaAttribute& left = one;
    const QOVA_MediaAttribute& right = other;
    expect_unequal(left, right);
}

constexpr unsigned int HIGHEST_BIT = 0x80000000u;

constexpr Change<QOVA_FaxAttribute> fax_changes[] = {
    {"red", [](QOVA_FaxAttribute& f) { f.red ^= 1u; }},
    {"red_highest_bit", [](QOVA_FaxAttribute& f) { f.red ^= HIGHEST_BIT; }},
    {"depth", [](QOVA_FaxAttribute& f) { f.depth ^= 1u; }},
    {"depth_highest_bit", [](QOVA_FaxAttribute& f) { f.depth ^= HIGHEST_BIT; }},
    {"mxRate", [](QOVA_FaxAttribute& f) { f.mxRate ^= 1u; }},
    {"mxRate_highest_bit", [](QOVA_FaxAttribute& f) { f.mxRate ^= HIGHEST_BIT; }},
    {"rateMgt", [](QOVA_FaxAttribute& f) { f.rateMgt = RM_TRFTCF; }},
    {"rateMgt_without_a_name",
     [](QOVA_FaxAttribute& f) { f.rateMgt = static_cast<QOVA_FaxRateMgt>(f.rateMgt + INT_MIN); }},
    {"transport", [](QOVA_FaxAttribute& f) { f.transport = FT_T38_TCP; }},
    {"transport_without_a_name",
     [](QOVA_FaxAttribute& f) {
         f.transport = static_cast<QOVA_FaxTransport>(f.transport + INT_MIN);
     }},
    {"fillBit", [](QOVA_FaxAttribute& f) { f.fillBit = false; }},
    {"transMMR", [](QOVA_FaxAttribute& f) { f.transMMR = false; }},
    {"transJBIG", [](QOVA_FaxAttribute& f) { f.transJBIG = false; }},
    {"mxBuffer", [](QOVA_FaxAttribute& f) { f.mxBuffer ^= 1u; }},
    {"mxBuffer_highest_bit", [](QOVA_FaxAttribute& f) { f.mxBuffer ^= HIGHEST_BIT; }},
    {"mxDgram", [](QOVA_FaxAttribute& f) { f.mxDgram ^= 1u; }},
    {"mxDgram_highest_bit", [](QOVA_FaxAttribute& f) { f.mxDgram ^= HIGHEST_BIT; }},
    {"errCorr", [](QOVA_FaxAttribute& f) { f.errCorr ^= 1u; }},
    {"errCorr_highest_bit", [](QOVA_FaxAttribute& f) { f.errCorr ^= HIGHEST_BIT; }},
};

INSTANTIATE_TEST_SUITE_P(Field, FaxEquality, testing::ValuesIn(fax_changes), name_of_row);

class DataEquality : public testing::TestWithParam<Change<QOVA_DataAttribute>> {};

TEST_P(DataEquality, Compares) {
    const auto one = sample<QOVA_DataAttribute>();
    auto other = sample<QOVA_DataAttribute>();
    GetParam().apply(other);
    const QOVA_MediaAttribute& left = one;
    const QOVA_MediaAttribute& right = other;
    expect_unequal(left, right);
}

constexpr Change<QOVA_DataAttribute> data_changes[] = {
    {"type", [](QOVA_DataAttribute& d) { d.type = 6; }},
    {"type_negative", [](QOVA_DataAttribute& d) { d.type += INT_MIN; }},
};

INSTANTIATE_TEST_SUITE_P(Field, DataEquality, testing::ValuesIn(data_changes), name_of_row);

// The base's comparison says no to everything: a class that keeps it has no equal.

class KeepsBaseEquality : public QOVA_MediaAttribute {
public:
    QOVA_MediaAttribute* clone() const override { return new KeepsBaseEquality(*this); }
    operator const std::string() const override { return "\t\t -> none\n"; }
};

TEST(BaseEquality, IsFalseEvenWithItself) {
    const KeepsBaseEquality one;
    const KeepsBaseEquality other;
    const QOVA_MediaAttribute& left = one;
    const QOVA_MediaAttribute& right = other;
    expect_unequal(left, left);
    expect_unequal(left, right);
}

TEST(BaseEquality, IsFalseWithACopyAndAClone) {
    const KeepsBaseEquality one;
    const KeepsBaseEquality copy(one);
    const Owned clone(one.clone());
    const QOVA_MediaAttribute& left = one;
    const QOVA_MediaAttribute& right = copy;
    expect_unequal(left, right);
    expect_unequal(left, *clone);
}

TYPED_TEST(EachAttribute, IsUnequalToAClassThatKeepsTheBaseEquality) {
    const KeepsBaseEquality keeper;
    const TypeParam attribute;
    const QOVA_MediaAttribute& left = keeper;
    const QOVA_MediaAttribute& right = attribute;
    expect_unequal(left, right);
}

TYPED_TEST(EachAttribute, IsUnequalToItselfByTheBaseEquality) {
    const TypeParam attribute;
    EXPECT_FALSE(attribute.QOVA_MediaAttribute::operator==(attribute));
}

// Defaults. The memory is dirty beforehand, which shows a field that no constructor sets.
template <typename Attribute>
class OnDirtyMemory {
public:
    OnDirtyMemory() {
        std::fill(std::begin(block), std::end(block), static_cast<unsigned char>(0xa5));
        attribute = new (block) Attribute;
    }
    ~OnDirtyMemory() { attribute->~Attribute(); }
    OnDirtyMemory(const OnDirtyMemory&) = delete;
    OnDirtyMemory& operator=(const OnDirtyMemory&) = delete;

    const Attribute* operator->() const { return attribute; }

private:
    alignas(Attribute) unsigned char block[sizeof(Attribute)];
    const Attribute* attribute;
};

TYPED_TEST(EachAttribute, StartsWithoutStatusAndType) {
    const OnDirtyMemory<TypeParam> attribute;
    EXPECT_EQ(attribute->status, QOVA_Media::MS_UNKNOWN);
    EXPECT_EQ(attribute->attributeType, QOVA_Media::AT_NIL);
}

TEST(AudioDefaults, AreNeutral) {
    const OnDirtyMemory<QOVA_AudioAttribute> audio;
    EXPECT_EQ(audio->codec, CODEC_NIL);
    EXPECT_EQ(audio->framing, 0);
    EXPECT_FALSE(audio->vad);
    EXPECT_FALSE(audio->echo);
    EXPECT_EQ(audio->mxFraming, 0);
    EXPECT_EQ(audio->mf, CODEC_NIL);
}

TEST(FaxDefaults, AreNeutral) {
    const OnDirtyMemory<QOVA_FaxAttribute> fax;
    EXPECT_EQ(fax->red, 0u);
    EXPECT_EQ(fax->depth, 0u);
    EXPECT_EQ(fax->mxRate, 0u);
    EXPECT_EQ(fax->rateMgt, RM_NIL);
    EXPECT_EQ(fax->transport, FT_NIL);
    EXPECT_FALSE(fax->fillBit);
    EXPECT_FALSE(fax->transMMR);
    EXPECT_FALSE(fax->transJBIG);
    EXPECT_EQ(fax->mxBuffer, 0u);
    EXPECT_EQ(fax->mxDgram, 0u);
    EXPECT_EQ(fax->errCorr, 0u);
}

TEST(DataDefaults, AreNeutral) {
    const OnDirtyMemory<QOVA_DataAttribute> data;
    EXPECT_EQ(data->type, 0);
}

// Texts, byte for byte.

TEST(AudioText, OfTheDefaults) {
    EXPECT_EQ(std::string(QOVA_AudioAttribute()),
              "\t\t -> NIL / Unknown / framing=0 / vad=0 / echo=0 / mxFraming=0 / MF=0\n");
}

TEST(AudioText, OfAnOffer) {
    QOVA_AudioAttribute audio;
    audio.codec = CODEC_G711_ALAW;
    audio.status = QOVA_Media::MS_ACCEPTED;
    audio.framing = 20;
    audio.vad = false;
    audio.echo = true;
    audio.mxFraming = 40;
    audio.mf = static_cast<QOVA_Codec>(101);
    EXPECT_EQ(
        std::string(audio),
        "\t\t -> G711alaw / Accepted / framing=20 / vad=0 / echo=1 / mxFraming=40 / MF=101\n");
}

using AudioRow = Row<void (*)(QOVA_AudioAttribute& audio)>;

constexpr AudioRow audio_texts[] = {
    {"codec_NIL", [](QOVA_AudioAttribute& a) { a.codec = CODEC_NIL; },
     "\t\t -> NIL / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_G711_ALAW", [](QOVA_AudioAttribute& a) { a.codec = CODEC_G711_ALAW; },
     "\t\t -> G711alaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_G711_ULAW", [](QOVA_AudioAttribute& a) { a.codec = CODEC_G711_ULAW; },
     "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_G723", [](QOVA_AudioAttribute& a) { a.codec = CODEC_G723; },
     "\t\t -> G723 / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_G729", [](QOVA_AudioAttribute& a) { a.codec = CODEC_G729; },
     "\t\t -> G729 / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_G729A", [](QOVA_AudioAttribute& a) { a.codec = CODEC_G729A; },
     "\t\t -> G729a / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_G711_NIL", [](QOVA_AudioAttribute& a) { a.codec = CODEC_G711_NIL; },
     "\t\t -> G711nil / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_G729_NIL", [](QOVA_AudioAttribute& a) { a.codec = CODEC_G729_NIL; },
     "\t\t -> G729nil / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_G722", [](QOVA_AudioAttribute& a) { a.codec = CODEC_G722; },
     "\t\t -> G722 / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_G722_2", [](QOVA_AudioAttribute& a) { a.codec = CODEC_G722_2; },
     "\t\t -> G722.2 / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_OPUS", [](QOVA_AudioAttribute& a) { a.codec = CODEC_OPUS; },
     "\t\t -> OPUS / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_and_mf_96",
     [](QOVA_AudioAttribute& a) {
         a.codec = static_cast<QOVA_Codec>(96);
         a.mf = static_cast<QOVA_Codec>(96);
     },
     "\t\t -> DYN(96) / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=96\n"},
    {"codec_127", [](QOVA_AudioAttribute& a) { a.codec = static_cast<QOVA_Codec>(127); },
     "\t\t -> DYN(127) / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_without_a_name", [](QOVA_AudioAttribute& a) { a.codec = static_cast<QOVA_Codec>(128); },
     "\t\t -> NIL / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"codec_negative", [](QOVA_AudioAttribute& a) { a.codec = static_cast<QOVA_Codec>(-1); },
     "\t\t -> NIL / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"status_UNKNOWN", [](QOVA_AudioAttribute& a) { a.status = QOVA_Media::MS_UNKNOWN; },
     "\t\t -> G711ulaw / Unknown / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"status_ACCEPTED", [](QOVA_AudioAttribute& a) { a.status = QOVA_Media::MS_ACCEPTED; },
     "\t\t -> G711ulaw / Accepted / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"status_REJECTED", [](QOVA_AudioAttribute& a) { a.status = QOVA_Media::MS_REJECTED; },
     "\t\t -> G711ulaw / Rejected / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"status_without_a_name", [](QOVA_AudioAttribute& a) { a.status = UNNAMED_STATUS; },
     "\t\t -> G711ulaw / Unknown / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"attributeType_which_is_not_printed",
     [](QOVA_AudioAttribute& a) { a.attributeType = QOVA_Media::AT_VIDEO; },
     "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"framing_minus_1", [](QOVA_AudioAttribute& a) { a.framing = -1; },
     "\t\t -> G711ulaw / Modified / framing=-1 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"vad_off", [](QOVA_AudioAttribute& a) { a.vad = false; },
     "\t\t -> G711ulaw / Modified / framing=20 / vad=0 / echo=1 / mxFraming=40 / MF=101\n"},
    {"echo_off", [](QOVA_AudioAttribute& a) { a.echo = false; },
     "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=0 / mxFraming=40 / MF=101\n"},
    {"mxFraming_minus_1", [](QOVA_AudioAttribute& a) { a.mxFraming = -1; },
     "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=-1 / MF=101\n"},
    {"mf_with_a_name_prints_its_number", [](QOVA_AudioAttribute& a) { a.mf = CODEC_OPUS; },
     "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=10\n"},
    {"mf_NIL_prints_its_number", [](QOVA_AudioAttribute& a) { a.mf = CODEC_NIL; },
     "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=0\n"},
    {"mf_negative", [](QOVA_AudioAttribute& a) { a.mf = static_cast<QOVA_Codec>(-1); },
     "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=-1\n"},
    {"all_numbers_least",
     [](QOVA_AudioAttribute& a) {
         a.framing = INT_MIN;
         a.mxFraming = INT_MIN;
         a.mf = static_cast<QOVA_Codec>(INT_MIN);
     },
     "\t\t -> G711ulaw / Modified / framing=-2147483648 / vad=1 / echo=1 / "
     "mxFraming=-2147483648 / MF=-2147483648\n"},
    {"all_numbers_greatest",
     [](QOVA_AudioAttribute& a) {
         a.framing = INT_MAX;
         a.mxFraming = INT_MAX;
         a.mf = static_cast<QOVA_Codec>(INT_MAX);
     },
     "\t\t -> G711ulaw / Modified / framing=2147483647 / vad=1 / echo=1 / "
     "mxFraming=2147483647 / MF=2147483647\n"},
    {"the_longest_line",
     [](QOVA_AudioAttribute& a) {
         a.codec = CODEC_G711_ALAW;
         a.status = QOVA_Media::MS_REJECTED;
         a.framing = INT_MIN;
         a.vad = false;
         a.echo = false;
         a.mxFraming = INT_MIN;
         a.mf = static_cast<QOVA_Codec>(INT_MIN);
     },
     "\t\t -> G711alaw / Rejected / framing=-2147483648 / vad=0 / echo=0 / "
     "mxFraming=-2147483648 / MF=-2147483648\n"},
};

class AudioTextWith : public testing::TestWithParam<AudioRow> {};

TEST_P(AudioTextWith, IsPrinted) {
    auto audio = sample<QOVA_AudioAttribute>();
    GetParam().value(audio);
    EXPECT_EQ(std::string(audio), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, AudioTextWith, testing::ValuesIn(audio_texts), name_of_row);

TEST(FaxText, OfTheDefaults) {
    EXPECT_EQ(std::string(QOVA_FaxAttribute()),
              "\t\t -> fax / transport=NIL / red=0 / depth=0 / mxRate=0\n"
              "\t\t    rateMgt=NIL / fillBit=0 / transMMR=0 / transJBIG=0\n"
              "\t\t    mxBuffer=0/ mxDgram=0 / errCorr=0\n");
}

TEST(FaxText, OfAnOffer) {
    QOVA_FaxAttribute fax;
    fax.transport = FT_T38_UDPTL;
    fax.red = 3;
    fax.depth = 0;
    fax.mxRate = 14400;
    fax.rateMgt = RM_TRFTCF;
    fax.mxBuffer = 2000;
    fax.mxDgram = 512;
    fax.errCorr = 1;
    EXPECT_EQ(std::string(fax),
              "\t\t -> fax / transport=T38udptl / red=3 / depth=0 / mxRate=14400\n"
              "\t\t    rateMgt=TRFTCF / fillBit=0 / transMMR=0 / transJBIG=0\n"
              "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=1\n");
}

TEST(FaxText, OfTransport7AndRateManagement0) {
    QOVA_FaxAttribute fax;
    fax.transport = static_cast<QOVA_FaxTransport>(7);
    fax.rateMgt = RM_NIL;
    EXPECT_EQ(std::string(fax),
              "\t\t -> fax / transport=NIL / red=0 / depth=0 / mxRate=0\n"
              "\t\t    rateMgt=NIL / fillBit=0 / transMMR=0 / transJBIG=0\n"
              "\t\t    mxBuffer=0/ mxDgram=0 / errCorr=0\n");
}

TEST(FaxText, OfTheGreatestNumbers) {
    QOVA_FaxAttribute fax;
    fax.red = UINT_MAX;
    fax.depth = UINT_MAX;
    fax.mxRate = UINT_MAX;
    fax.mxBuffer = UINT_MAX;
    fax.mxDgram = UINT_MAX;
    fax.errCorr = UINT_MAX;
    EXPECT_EQ(std::string(fax),
              "\t\t -> fax / transport=NIL / red=4294967295 / depth=4294967295 / "
              "mxRate=4294967295\n"
              "\t\t    rateMgt=NIL / fillBit=0 / transMMR=0 / transJBIG=0\n"
              "\t\t    mxBuffer=4294967295/ mxDgram=4294967295 / errCorr=4294967295\n");
}

TEST(FaxText, OfTheLongestLines) {
    QOVA_FaxAttribute fax;
    fax.transport = FT_T38_UDPTL;
    fax.red = UINT_MAX;
    fax.depth = UINT_MAX;
    fax.mxRate = UINT_MAX;
    fax.rateMgt = RM_LOCALTCF;
    fax.fillBit = true;
    fax.transMMR = true;
    fax.transJBIG = true;
    fax.mxBuffer = UINT_MAX;
    fax.mxDgram = UINT_MAX;
    fax.errCorr = UINT_MAX;
    EXPECT_EQ(std::string(fax),
              "\t\t -> fax / transport=T38udptl / red=4294967295 / depth=4294967295 / "
              "mxRate=4294967295\n"
              "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
              "\t\t    mxBuffer=4294967295/ mxDgram=4294967295 / errCorr=4294967295\n");
}

TEST(FaxText, HasThreeLines) {
    const std::string text = sample<QOVA_FaxAttribute>();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
}

using FaxRow = Row<void (*)(QOVA_FaxAttribute& fax)>;

// One field at a time, from numbers that all differ.
constexpr FaxRow fax_texts[] = {
    {"no_change", [](QOVA_FaxAttribute&) {},
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"},
    {"red", [](QOVA_FaxAttribute& f) { f.red = UINT_MAX; },
     "\t\t -> fax / transport=T38udptl / red=4294967295 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"},
    {"depth", [](QOVA_FaxAttribute& f) { f.depth = UINT_MAX; },
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4294967295 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"},
    {"mxRate", [](QOVA_FaxAttribute& f) { f.mxRate = UINT_MAX; },
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=4294967295\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"},
    {"fillBit", [](QOVA_FaxAttribute& f) { f.fillBit = false; },
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=0 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"},
    {"transMMR", [](QOVA_FaxAttribute& f) { f.transMMR = false; },
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=0 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"},
    {"transJBIG", [](QOVA_FaxAttribute& f) { f.transJBIG = false; },
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=0\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"},
    {"mxBuffer", [](QOVA_FaxAttribute& f) { f.mxBuffer = UINT_MAX; },
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=4294967295/ mxDgram=512 / errCorr=5\n"},
    {"mxDgram", [](QOVA_FaxAttribute& f) { f.mxDgram = UINT_MAX; },
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=4294967295 / errCorr=5\n"},
    {"errCorr", [](QOVA_FaxAttribute& f) { f.errCorr = UINT_MAX; },
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=4294967295\n"},
    {"status_and_type_which_are_not_printed",
     [](QOVA_FaxAttribute& f) {
         f.status = QOVA_Media::MS_REJECTED;
         f.attributeType = QOVA_Media::AT_FAX;
     },
     "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"},
};

class FaxTextWith : public testing::TestWithParam<FaxRow> {};

TEST_P(FaxTextWith, IsPrinted) {
    auto fax = sample<QOVA_FaxAttribute>();
    GetParam().value(fax);
    EXPECT_EQ(std::string(fax), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, FaxTextWith, testing::ValuesIn(fax_texts), name_of_row);

constexpr Row<int> transports[] = {
    {"FT_NIL", FT_NIL, "NIL"},
    {"FT_T38_UDPTL", FT_T38_UDPTL, "T38udptl"},
    {"FT_T38_TCP", FT_T38_TCP, "T38tcp"},
    {"after_the_last", 3, "NIL"},
    {"seven", 7, "NIL"},
    {"minus_1", -1, "NIL"},
    {"minus_2", -2, "NIL"},
    {"named_in_the_low_byte", 0x101, "NIL"},
    {"named_above_the_least", INT_MIN + 1, "NIL"},
    {"least", INT_MIN, "NIL"},
    {"greatest", INT_MAX, "NIL"},
};

class FaxTransportName : public testing::TestWithParam<Row<int>> {};

TEST_P(FaxTransportName, IsPrinted) {
    auto fax = sample<QOVA_FaxAttribute>();
    fax.transport = static_cast<QOVA_FaxTransport>(GetParam().value);
    EXPECT_EQ(std::string(fax), std::string("\t\t -> fax / transport=") + GetParam().text +
                                    " / red=3 / depth=4 / mxRate=14400\n"
                                    "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / "
                                    "transJBIG=1\n"
                                    "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n");
}

INSTANTIATE_TEST_SUITE_P(All, FaxTransportName, testing::ValuesIn(transports), name_of_row);

constexpr Row<int> rate_managements[] = {
    {"RM_NIL", RM_NIL, "NIL"},
    {"RM_TRFTCF", RM_TRFTCF, "TRFTCF"},
    {"RM_LOCALTCF", RM_LOCALTCF, "LocalTCF"},
    {"after_the_last", 3, "NIL"},
    {"minus_1", -1, "NIL"},
    {"minus_2", -2, "NIL"},
    {"named_in_the_low_byte", 0x101, "NIL"},
    {"named_above_the_least", INT_MIN + 1, "NIL"},
    {"least", INT_MIN, "NIL"},
    {"greatest", INT_MAX, "NIL"},
};

class FaxRateManagementName : public testing::TestWithParam<Row<int>> {};

TEST_P(FaxRateManagementName, IsPrinted) {
    auto fax = sample<QOVA_FaxAttribute>();
    fax.rateMgt = static_cast<QOVA_FaxRateMgt>(GetParam().value);
    EXPECT_EQ(std::string(fax), std::string("\t\t -> fax / transport=T38udptl / red=3 / depth=4 / "
                                            "mxRate=14400\n"
                                            "\t\t    rateMgt=") +
                                    GetParam().text +
                                    " / fillBit=1 / transMMR=1 / transJBIG=1\n"
                                    "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n");
}

INSTANTIATE_TEST_SUITE_P(All, FaxRateManagementName, testing::ValuesIn(rate_managements),
                         name_of_row);

TEST(VideoText, IsAlwaysTheSame) {
    EXPECT_EQ(std::string(QOVA_VideoAttribute()), "\t\t -> video : not implemented\n");
    EXPECT_EQ(std::string(sample<QOVA_VideoAttribute>()), "\t\t -> video : not implemented\n");
}

TEST(DataText, SaysNilWhateverTheType) {
    for (const int type : {0, 1, 2, 7, -1, INT_MIN, INT_MAX}) {
        auto data = sample<QOVA_DataAttribute>();
        data.type = type;
        EXPECT_EQ(std::string(data), "\t\t -> Data / type=NIL\n") << type;
    }
}

// Numbers that the locale would group, in every place that prints one.

TEST(GroupingLocale, ShowsInAStream) {
    const GroupingLocale locale;
    std::ostringstream out;
    out << 1234567 << ' ' << std::boolalpha << true;
    EXPECT_EQ(out.str(), "1.234.567 wahr");
}

TEST(AudioText, HasUngroupedDigitsInAnyGlobalLocale) {
    QOVA_AudioAttribute audio;
    audio.codec = static_cast<QOVA_Codec>(101);
    audio.framing = 1234567;
    audio.vad = true;
    audio.mxFraming = -1234567;
    audio.mf = static_cast<QOVA_Codec>(7654321);
    const GroupingLocale locale;
    EXPECT_EQ(std::string(audio),
              "\t\t -> DYN(101) / Unknown / framing=1234567 / vad=1 / echo=0 / "
              "mxFraming=-1234567 / MF=7654321\n");
}

TEST(FaxText, HasUngroupedDigitsInAnyGlobalLocale) {
    QOVA_FaxAttribute fax;
    fax.red = 1234567;
    fax.depth = 2345678;
    fax.mxRate = 3456789;
    fax.fillBit = true;
    fax.mxBuffer = 4567890;
    fax.mxDgram = 5678901;
    fax.errCorr = 6789012;
    const GroupingLocale locale;
    EXPECT_EQ(std::string(fax),
              "\t\t -> fax / transport=NIL / red=1234567 / depth=2345678 / mxRate=3456789\n"
              "\t\t    rateMgt=NIL / fillBit=1 / transMMR=0 / transJBIG=0\n"
              "\t\t    mxBuffer=4567890/ mxDgram=5678901 / errCorr=6789012\n");
}

}  // namespace
