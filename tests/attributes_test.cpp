// Payload attributes: copies, equality, texts.

#include "qova/attributes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "allocations.h"
#include "building_blocks.h"
#include "equality.h"
#include "literal_renderer.h"
#include "rows.h"

namespace {

static_assert(std::is_abstract_v<QOVA_MediaAttribute>);
static_assert(std::has_virtual_destructor_v<QOVA_MediaAttribute>);

using Owned = std::unique_ptr<QOVA_MediaAttribute>;

// ---- What holds for each of the four classes ----

template <typename Attribute>
class EachAttribute : public testing::Test {
protected:
    EachAttribute() {
        fill(attribute);
        fill(like);
    }

    Attribute attribute;
    Attribute like;
    // Seen as their owner sees them.
    const QOVA_MediaAttribute& base = attribute;
    const QOVA_MediaAttribute& base_of_like = like;
};

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

TYPED_TEST(EachAttribute, CopyHasClassAndFieldsOfItsSource) {
    const TypeParam copy(this->attribute);
    EXPECT_EQ(members(copy), members(this->like));
}

TYPED_TEST(EachAttribute, CloneHasClassAndFieldsOfItsSource) {
    const Owned clone(this->base.clone());
    EXPECT_NE(clone.get(), &this->base);
    EXPECT_EQ(members(*clone), members(this->like));
    EXPECT_EQ(members(this->attribute), members(this->like));
    expect_equal(*clone, this->base);
}

TYPED_TEST(EachAttribute, CloneIsIndependentOfItsSource) {
    const Owned clone(this->base.clone());
    this->attribute = TypeParam();
    EXPECT_EQ(members(*clone), members(this->like));
    clone->status = QOVA_Media::MS_REJECTED;
    clone->attributeType = QOVA_Media::AT_DATA;
    EXPECT_EQ(members(this->attribute), members(TypeParam()));
}

TYPED_TEST(EachAttribute, CloneIsOneGlobalAllocationThatFreeingGivesBack) {
    const std::size_t made = allocations::made();
    const std::size_t live = allocations::live();
    const QOVA_MediaAttribute* const clone = this->base.clone();
    EXPECT_EQ(allocations::made(), made + 1);
    EXPECT_EQ(allocations::live(), live + 1);
    delete clone;
    EXPECT_EQ(allocations::live(), live);
}

TYPED_TEST(EachAttribute, EqualsItselfAndItsLike) {
    expect_equal(this->base, this->base);
    expect_equal(this->base, this->base_of_like);
    const Owned neutral = std::make_unique<TypeParam>();
    const Owned neutral_too = std::make_unique<TypeParam>();
    expect_equal(*neutral, *neutral_too);
}

TYPED_TEST(EachAttribute, IsEqualWhateverStatusAndType) {
    for (const int value : {0, 1, 2, 3, 4, 99, -7}) {
        this->like.status = static_cast<QOVA_Media::e_MediaStatus>(value);
        expect_equal(this->base, this->base_of_like);
    }
    for (const int value : {0, 1, 2, 3, 4, 99, -7}) {
        this->like.attributeType = static_cast<QOVA_Media::e_AttributeType>(value);
        expect_equal(this->base, this->base_of_like);
    }
}

TYPED_TEST(EachAttribute, IsUnequalToEveryOtherClass) {
    const QOVA_AudioAttribute audio;
    const QOVA_VideoAttribute video;
    const QOVA_FaxAttribute fax;
    const QOVA_DataAttribute data;
    const OwnAttribute own;
    const Owned neutral = std::make_unique<TypeParam>();
    for (const QOVA_MediaAttribute* const other :
         std::initializer_list<const QOVA_MediaAttribute*>{&audio, &video, &fax, &data, &own}) {
        if (typeid(*other) != typeid(TypeParam)) {
            EXPECT_NO_THROW(expect_unequal(*neutral, *other));
        }
    }
}

// The left operand decides whose fields count, and asks for exactly its own class on the right.
TYPED_TEST(EachAttribute, IsEqualledByADerivedOneButDoesNotEqualIt) {
    const Owned derived = full<Derived<TypeParam>>();
    EXPECT_FALSE(this->base == *derived);
    EXPECT_TRUE(*derived == this->base);
    expect_unequal(*derived, *derived);
}

// The base's comparison says no to everything.
TYPED_TEST(EachAttribute, IsUnequalToItselfByTheBaseEquality) {
    EXPECT_FALSE(this->attribute.QOVA_MediaAttribute::operator==(this->attribute));
}

TEST(OwnAttributeClass, HasNoEqualWhenItKeepsTheBaseEquality) {
    const OwnAttribute own;
    const Owned clone(own.clone());
    const QOVA_MediaAttribute& base = own;
    expect_unequal(base, base);
    expect_unequal(base, *clone);
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
    Owned tracked = std::make_unique<Tracked<TypeParam>>(&destroyed);
    Owned clone(tracked->clone());
    clone.reset();
    EXPECT_EQ(destroyed, 1);
    tracked.reset();
    EXPECT_EQ(destroyed, 2);
}

TYPED_TEST(EachAttribute, PrintsWholeLinesThroughTheBaseTooAndStaysAsItIs) {
    const std::string text = this->attribute;
    EXPECT_EQ(text.substr(0, 6), "\t\t -> ");
    EXPECT_EQ(text.back(), '\n');
    EXPECT_NE(text[text.size() - 2], '\n');
    EXPECT_EQ(std::string(this->base), text);
    EXPECT_EQ(members(this->attribute), members(this->like));
}

// ---- One change for each compared field: lowest and highest bit, or the other truth value ----

template <typename Attribute>
class AttributeEquality : public testing::TestWithParam<Change<Attribute>> {
protected:
    void expect_compared() {
        const Owned one = full<Attribute>();
        const auto other = full<Attribute>();
        const QOVA_MediaAttribute& base_of_other = *other;
        this->GetParam().apply(*other);
        expect_unequal(*one, base_of_other);
    }
};

constexpr unsigned int HIGHEST_BIT = 0x80000000u;

using Audio = QOVA_AudioAttribute;
constexpr Change<Audio> audio_changes[] = {
    {"codec", [](Audio& a) { a.codec = CODEC_G711_ALAW; }},
    {"codec_without_a_name", [](Audio& a) { a.codec = payload_type(a.codec + INT_MIN); }},
    {"framing", [](Audio& a) { a.framing = 21; }},
    {"framing_negative", [](Audio& a) { a.framing += INT_MIN; }},
    {"vad", [](Audio& a) { a.vad = false; }},
    {"echo", [](Audio& a) { a.echo = false; }},
    {"mxFraming", [](Audio& a) { a.mxFraming = 41; }},
    {"mxFraming_negative", [](Audio& a) { a.mxFraming += INT_MIN; }},
    {"mf", [](Audio& a) { a.mf = payload_type(100); }},
    {"mf_negative", [](Audio& a) { a.mf = payload_type(a.mf + INT_MIN); }},
};
using AudioEquality = AttributeEquality<Audio>;
TEST_P(AudioEquality, Compares) {
    expect_compared();
}
INSTANTIATE_TEST_SUITE_P(Field, AudioEquality, testing::ValuesIn(audio_changes), name_of_row);

using Fax = QOVA_FaxAttribute;
constexpr Change<Fax> fax_changes[] = {
    {"red", [](Fax& f) { f.red ^= 1u; }},
    {"red_highest_bit", [](Fax& f) { f.red ^= HIGHEST_BIT; }},
    {"depth", [](Fax& f) { f.depth ^= 1u; }},
    {"depth_highest_bit", [](Fax& f) { f.depth ^= HIGHEST_BIT; }},
    {"mxRate", [](Fax& f) { f.mxRate ^= 1u; }},
    {"mxRate_highest_bit", [](Fax& f) { f.mxRate ^= HIGHEST_BIT; }},
    {"rateMgt", [](Fax& f) { f.rateMgt = RM_TRFTCF; }},
    {"rateMgt_without_a_name",
     [](Fax& f) { f.rateMgt = static_cast<QOVA_FaxRateMgt>(f.rateMgt + INT_MIN); }},
    {"transport", [](Fax& f) { f.transport = FT_T38_TCP; }},
    {"transport_without_a_name",
     [](Fax& f) { f.transport = static_cast<QOVA_FaxTransport>(f.transport + INT_MIN); }},
    {"fillBit", [](Fax& f) { f.fillBit = false; }},
    {"transMMR", [](Fax& f) { f.transMMR = false; }},
    {"transJBIG", [](Fax& f) { f.transJBIG = false; }},
    {"mxBuffer", [](Fax& f) { f.mxBuffer ^= 1u; }},
    {"mxBuffer_highest_bit", [](Fax& f) { f.mxBuffer ^= HIGHEST_BIT; }},
    {"mxDgram", [](Fax& f) { f.mxDgram ^= 1u; }},
    {"mxDgram_highest_bit", [](Fax& f) { f.mxDgram ^= HIGHEST_BIT; }},
    {"errCorr", [](Fax& f) { f.errCorr ^= 1u; }},
    {"errCorr_highest_bit", [](Fax& f) { f.errCorr ^= HIGHEST_BIT; }},
};
using FaxEquality = AttributeEquality<Fax>;
TEST_P(FaxEquality, Compares) {
    expect_compared();
}
INSTANTIATE_TEST_SUITE_P(Field, FaxEquality, testing::ValuesIn(fax_changes), name_of_row);

using Data = QOVA_DataAttribute;
constexpr Change<Data> data_changes[] = {
    {"type", [](Data& d) { d.type = 6; }},
    {"type_negative", [](Data& d) { d.type += INT_MIN; }},
};
using DataEquality = AttributeEquality<Data>;
TEST_P(DataEquality, Compares) {
    expect_compared();
}
INSTANTIATE_TEST_SUITE_P(Field, DataEquality, testing::ValuesIn(data_changes), name_of_row);

// ---- Defaults. The memory is dirty beforehand, which shows a field that no constructor sets ----

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
    const OnDirtyMemory<TypeParam> fresh;
    EXPECT_EQ(fresh->status, QOVA_Media::MS_UNKNOWN);
    EXPECT_EQ(fresh->attributeType, QOVA_Media::AT_NIL);
}

TEST(AudioDefaults, AreNeutral) {
    const OnDirtyMemory<Audio> audio;
    EXPECT_EQ(audio->codec, CODEC_NIL);
    EXPECT_EQ(audio->framing, 0);
    EXPECT_FALSE(audio->vad);
    EXPECT_FALSE(audio->echo);
    EXPECT_EQ(audio->mxFraming, 0);
    EXPECT_EQ(audio->mf, CODEC_NIL);
}

TEST(FaxDefaults, AreNeutral) {
    const OnDirtyMemory<Fax> fax;
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
    const OnDirtyMemory<Data> data;
    EXPECT_EQ(data->type, 0);
}

// ---- Texts, byte for byte ----

TEST(AudioText, NamesCodecAndStatusAndPrintsTheRestAsNumbers) {
    EXPECT_EQ(
        std::string(*full<Audio>()),
        "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n");
}

TEST(AudioText, OfTheDefaults) {
    EXPECT_EQ(std::string(Audio()),
              "\t\t -> NIL / Unknown / framing=0 / vad=0 / echo=0 / mxFraming=0 / MF=0\n");
}

TEST(FaxText, HasThreeLines) {
    EXPECT_EQ(std::string(*full<Fax>()),
              "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
              "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
              "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n");
}

TEST(FaxText, OfTheDefaults) {
    EXPECT_EQ(std::string(Fax()),
              "\t\t -> fax / transport=NIL / red=0 / depth=0 / mxRate=0\n"
              "\t\t    rateMgt=NIL / fillBit=0 / transMMR=0 / transJBIG=0\n"
              "\t\t    mxBuffer=0/ mxDgram=0 / errCorr=0\n");
}

TEST(VideoText, IsAlwaysTheSame) {
    EXPECT_EQ(std::string(QOVA_VideoAttribute()), "\t\t -> video : not implemented\n");
    EXPECT_EQ(std::string(*full<QOVA_VideoAttribute>()), "\t\t -> video : not implemented\n");
}

TEST(DataText, SaysNilWhateverTheType) {
    for (const int type : {0, 1, 2, 7, -1, INT_MIN, INT_MAX}) {
        Data data;
        data.type = type;
        EXPECT_EQ(std::string(data), "\t\t -> Data / type=NIL\n") << type;
    }
}

TEST(AudioText, NamesEveryCodecAsToStringDoes) {
    for (int number = -2; number <= 130; ++number) {
        Audio audio;
        audio.codec = payload_type(number);
        EXPECT_EQ(std::string(audio), "\t\t -> " + ToString(audio.codec) +
                                          " / Unknown / framing=0 / vad=0 / echo=0"
                                          " / mxFraming=0 / MF=0\n");
    }
}

// A change to a full attribute, and the piece of the text that shows it.
template <typename Attribute>
using TextRow = Row<void (*)(Attribute& attribute)>;

template <typename Attribute>
class AttributeText : public testing::TestWithParam<TextRow<Attribute>> {
protected:
    void expect_piece() {
        const auto attribute = full<Attribute>();
        this->GetParam().value(*attribute);
        const std::string text = *attribute;
        EXPECT_NE(text.find(this->GetParam().text), std::string::npos) << text;
        EXPECT_EQ(text, literal::text(*attribute));
    }
};

constexpr TextRow<Audio> audio_texts[] = {
    {"codec_by_name_mf_by_number",
     [](Audio& a) {
         a.codec = payload_type(96);
         a.mf = payload_type(96);
     },
     "-> DYN(96) / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=96\n"},
    {"status_UNKNOWN", [](Audio& a) { a.status = QOVA_Media::MS_UNKNOWN; }, " / Unknown / "},
    {"status_ACCEPTED", [](Audio& a) { a.status = QOVA_Media::MS_ACCEPTED; }, " / Accepted / "},
    {"status_REJECTED", [](Audio& a) { a.status = QOVA_Media::MS_REJECTED; }, " / Rejected / "},
    {"status_without_a_name",
     [](Audio& a) { a.status = static_cast<QOVA_Media::e_MediaStatus>(99); }, " / Unknown / "},
    {"attributeType_which_is_not_printed", [](Audio& a) { a.attributeType = QOVA_Media::AT_VIDEO; },
     "-> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"},
    {"framing_minus_1", [](Audio& a) { a.framing = -1; }, " / framing=-1 /"},
    {"vad_off", [](Audio& a) { a.vad = false; }, " / vad=0 / echo=1 /"},
    {"echo_off", [](Audio& a) { a.echo = false; }, " / vad=1 / echo=0 /"},
    {"mxFraming_minus_1", [](Audio& a) { a.mxFraming = -1; }, " / mxFraming=-1 /"},
    {"mf_with_a_name", [](Audio& a) { a.mf = CODEC_OPUS; }, " / MF=10\n"},
    {"mf_negative", [](Audio& a) { a.mf = payload_type(-1); }, " / MF=-1\n"},
    {"the_longest_line",
     [](Audio& a) {
         a.status = QOVA_Media::MS_REJECTED;
         a.framing = a.mxFraming = INT_MIN;
         a.mf = payload_type(INT_MIN);
     },
     "-> G711ulaw / Rejected / framing=-2147483648 / vad=1 / echo=1 / mxFraming=-2147483648"
     " / MF=-2147483648\n"},
};
using AudioTextWith = AttributeText<Audio>;
TEST_P(AudioTextWith, ShowsIt) {
    expect_piece();
}
INSTANTIATE_TEST_SUITE_P(All, AudioTextWith, testing::ValuesIn(audio_texts), name_of_row);

template <int number>
void set_transport(Fax& fax) {
    fax.transport = static_cast<QOVA_FaxTransport>(number);
}

template <int number>
void set_rate_management(Fax& fax) {
    fax.rateMgt = static_cast<QOVA_FaxRateMgt>(number);
}

constexpr TextRow<Fax> fax_texts[] = {
    {"red", [](Fax& f) { f.red = UINT_MAX; }, " / red=4294967295 / depth=4 /"},
    {"depth", [](Fax& f) { f.depth = UINT_MAX; }, " / depth=4294967295 / mxRate=14400\n"},
    {"mxRate", [](Fax& f) { f.mxRate = UINT_MAX; }, " / mxRate=4294967295\n"},
    {"fillBit", [](Fax& f) { f.fillBit = false; }, " / fillBit=0 / transMMR=1 /"},
    {"transMMR", [](Fax& f) { f.transMMR = false; }, " / transMMR=0 / transJBIG=1\n"},
    {"transJBIG", [](Fax& f) { f.transJBIG = false; }, " / transMMR=1 / transJBIG=0\n"},
    {"mxBuffer", [](Fax& f) { f.mxBuffer = UINT_MAX; }, "mxBuffer=4294967295/ mxDgram=512 /"},
    {"mxDgram", [](Fax& f) { f.mxDgram = UINT_MAX; }, "/ mxDgram=4294967295 / errCorr=5\n"},
    {"errCorr", [](Fax& f) { f.errCorr = UINT_MAX; }, " / errCorr=4294967295\n"},
    {"the_longest_lines",
     [](Fax& f) { f.red = f.depth = f.mxRate = f.mxBuffer = f.mxDgram = f.errCorr = UINT_MAX; },
     "\t\t -> fax / transport=T38udptl / red=4294967295 / depth=4294967295 / mxRate=4294967295\n"
     "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
     "\t\t    mxBuffer=4294967295/ mxDgram=4294967295 / errCorr=4294967295\n"},
    {"transport_NIL", set_transport<FT_NIL>, " transport=NIL /"},
    {"transport_TCP", set_transport<FT_T38_TCP>, " transport=T38tcp /"},
    {"transport_after_the_last", set_transport<3>, " transport=NIL /"},
    {"transport_7", set_transport<7>, " transport=NIL /"},
    {"transport_minus_1", set_transport<-1>, " transport=NIL /"},
    {"transport_minus_2", set_transport<-2>, " transport=NIL /"},
    {"transport_named_in_the_low_byte", set_transport<0x101>, " transport=NIL /"},
    {"transport_named_above_the_least", set_transport<INT_MIN + 1>, " transport=NIL /"},
    {"transport_greatest", set_transport<INT_MAX>, " transport=NIL /"},
    {"rate_NIL", set_rate_management<RM_NIL>, "\t\t    rateMgt=NIL /"},
    {"rate_TRFTCF", set_rate_management<RM_TRFTCF>, "\t\t    rateMgt=TRFTCF /"},
    {"rate_after_the_last", set_rate_management<3>, "\t\t    rateMgt=NIL /"},
    {"rate_minus_1", set_rate_management<-1>, "\t\t    rateMgt=NIL /"},
    {"rate_minus_2", set_rate_management<-2>, "\t\t    rateMgt=NIL /"},
    {"rate_named_in_the_low_byte", set_rate_management<0x101>, "\t\t    rateMgt=NIL /"},
    {"rate_named_above_the_least", set_rate_management<INT_MIN + 1>, "\t\t    rateMgt=NIL /"},
    {"rate_greatest", set_rate_management<INT_MAX>, "\t\t    rateMgt=NIL /"},
};
using FaxTextWith = AttributeText<Fax>;
TEST_P(FaxTextWith, ShowsIt) {
    expect_piece();
}
INSTANTIATE_TEST_SUITE_P(All, FaxTextWith, testing::ValuesIn(fax_texts), name_of_row);

}  // namespace
