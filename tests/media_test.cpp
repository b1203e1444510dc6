// One media line: defaults, deep copies, partial equality, searches, the mute test and the log
// text. The order in which a media touches what it owns is the business of order_test.cpp.

#include "qova/media.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "allocations.h"
#include "building_blocks.h"
#include "equality.h"
#include "rows.h"

namespace {

template <typename... Arguments>
using Found = decltype(std::declval<const QOVA_Media&>().find(std::declval<Arguments>()...));
static_assert(std::is_same_v<Found<QOVA_Codec>, QOVA_AudioAttribute*>);
static_assert(std::is_same_v<Found<QOVA_FaxTransport>, QOVA_FaxAttribute*>);
static_assert(std::is_same_v<Found<QOVA_Media::e_AttributeType, QOVA_Media::e_MediaStatus>,
                             QOVA_MediaAttribute*>);
static_assert(std::has_virtual_destructor_v<QOVA_Media>);

using Owned = std::unique_ptr<QOVA_Media>;

// ---- Defaults ----

TEST(DefaultMedia, IsAnAcceptedLineOfNoKind) {
    const QOVA_Media media;
    EXPECT_EQ(media.mediaStatus, QOVA_Media::MS_ACCEPTED);
    EXPECT_EQ(media.mediaType, QOVA_Media::MT_NIL);
}

TEST(DefaultMedia, HasBothDirectionsAndNoPorts) {
    const QOVA_Media media;
    EXPECT_TRUE(media.bsnd);
    EXPECT_TRUE(media.brcv);
    EXPECT_EQ(media.sndPort, 0);
    EXPECT_EQ(media.rcvPort, 0);
    EXPECT_EQ(media.sndPort2, 0);
    EXPECT_EQ(media.rcvPort2, 0);
}

TEST(DefaultMedia, HasEmptyLists) {
    const QOVA_Media media;
    EXPECT_TRUE(media.attributes.empty());
    EXPECT_TRUE(media.cryptos.empty());
    EXPECT_EQ(media.cryptoCount, 0U);
}

TEST(DefaultMedia, HasACloneOfTheStaticAddressWhichStaysWhenItGoes) {
    {
        const QOVA_Media media;
        EXPECT_NE(media.address, static_cast<const INetAddress*>(&IPAddress::IpAddressAny));
        const INetAddress& address = *media.address;
        EXPECT_EQ(typeid(address), typeid(IPAddress));
        EXPECT_EQ(address.ToString(), "0.0.0.0");
    }
    EXPECT_EQ(IPAddress::IpAddressAny.ToString(), "0.0.0.0");
    EXPECT_NE(IPAddress::IpAddressAny.IsAny(), 0);
}

TEST(DefaultMedia, HasObjectsOfItsOwnWithEveryParameterAbsent) {
    const QOVA_Media media;
    const QOVA_Media other;
    EXPECT_NE(media.address, other.address);
    EXPECT_NE(media.amrwbParam, other.amrwbParam);
    EXPECT_NE(media.opusParam, other.opusParam);
    EXPECT_EQ(members(*media.amrwbParam), members(Sdp::Sdp_Amrwb_Param()));
    EXPECT_EQ(members(*media.opusParam), members(Sdp::Sdp_Opus_Param()));
}

// ---- Changes to the fields of a full media: a table for copies, one for equality ----

using MediaChange = Change<QOVA_Media>;

// What is compared is copied too.
constexpr MediaChange compared_fields[] = {
    {"mediaStatus", [](QOVA_Media& m) { m.mediaStatus = QOVA_Media::MS_UNKNOWN; }},
    {"mediaStatusOutOfRange",
     [](QOVA_Media& m) { m.mediaStatus = static_cast<QOVA_Media::e_MediaStatus>(77); }},
    {"mediaType", [](QOVA_Media& m) { m.mediaType = QOVA_Media::MT_VIDEO; }},
    {"mediaTypeOutOfRange",
     [](QOVA_Media& m) { m.mediaType = static_cast<QOVA_Media::e_MediaType>(-1); }},
    {"address", [](QOVA_Media& m) { set_address(m, "10.0.0.2"); }},
    {"bsnd", [](QOVA_Media& m) { m.bsnd = true; }},
    {"brcv", [](QOVA_Media& m) { m.brcv = false; }},
    {"sndPort", [](QOVA_Media& m) { m.sndPort = 4000 + 256; }},
    {"rcvPort", [](QOVA_Media& m) { m.rcvPort = 5000 + 1; }},
    {"sndPort2", [](QOVA_Media& m) { m.sndPort2 = 4001 + 1; }},
    {"rcvPort2", [](QOVA_Media& m) { m.rcvPort2 = 5001 + 256; }},
    {"cryptoCount", [](QOVA_Media& m) { m.cryptoCount = 5 + 65536; }},
    {"firstAttribute", [](QOVA_Media& m) { m.find(CODEC_G711_ULAW)->framing = 21; }},
    {"laterAttribute", [](QOVA_Media& m) { m.find(FT_T38_UDPTL)->errCorr = 2; }},
    {"lastAttribute",
     [](QOVA_Media& m) { dynamic_cast<QOVA_DataAttribute&>(*m.attributes.back()).type = 8; }},
    {"orderOfAttributes", [](QOVA_Media& m) { m.attributes.reverse(); }},
    {"cryptoLine", [](QOVA_Media& m) { m.cryptos.front()->tag = 9; }},
    {"keyOfACryptoLine", [](QOVA_Media& m) { m.cryptos.front()->keys.back().lifetime = 9; }},
};

constexpr MediaChange fields_left_out[] = {
    {"statusOfAnAttribute",
     [](QOVA_Media& m) { m.attributes.front()->status = QOVA_Media::MS_REJECTED; }},
    {"typeOfAnAttribute",
     [](QOVA_Media& m) { m.attributes.front()->attributeType = QOVA_Media::AT_NIL; }},
    {"keyMaterial", [](QOVA_Media& m) { m.cryptos.front()->keys.front().key[0] = 1; }},
    {"lengthOfTheAttributes", [](QOVA_Media& m) { append_audio(m, CODEC_G729); }},
    {"lengthOfTheCryptoLines", [](QOVA_Media& m) { append_crypto(m, 3); }},
    {"lengthOfAKeyList", [](QOVA_Media& m) { m.cryptos.front()->keys.pop_back(); }},
    {"allKeysOfACryptoLine", [](QOVA_Media& m) { m.cryptos.front()->keys.clear(); }},
};

// ---- Copies ----

Owned construct(const QOVA_Media& source) {
    return std::make_unique<QOVA_Media>(source);
}

Owned assign_to_default(const QOVA_Media& source) {
    auto target = std::make_unique<QOVA_Media>();
    EXPECT_EQ(&(*target = source), target.get());
    return target;
}

Owned assign_to_full(const QOVA_Media& source) {
    auto target = full<QOVA_Media>();
    *target = source;
    return target;
}

// Null stands nowhere in a media of the library's making, but freeing passes it over.
void put_nulls(QOVA_Media& media) {
    drop_parameters(media);
    delete media.address;
    media.address = nullptr;
    media.attributes.push_back(nullptr);
    append_audio(media, CODEC_G723);
    media.cryptos.push_back(nullptr);
    append_crypto(media, 1);
}

Owned assign_to_nulls(const QOVA_Media& source) {
    auto target = std::make_unique<QOVA_Media>();
    put_nulls(*target);
    *target = source;
    return target;
}

Owned clone(const QOVA_Media& source) {
    return Owned(source.clone());
}

using MediaPath = CopyPath<QOVA_Media>;
constexpr MediaPath paths[] = {{"Constructor", construct},
                               {"AssignmentToADefault", assign_to_default},
                               {"AssignmentToAFull", assign_to_full},
                               {"AssignmentToNullPointers", assign_to_nulls},
                               {"Clone", clone}};

class MediaCopy : public testing::TestWithParam<MediaPath> {
protected:
    static Owned copy(const QOVA_Media& source) { return GetParam().copy(source); }

    const std::string members_of_full = members(*full<QOVA_Media>());
    Owned source = full<QOVA_Media>();
};

INSTANTIATE_TEST_SUITE_P(Path, MediaCopy, testing::ValuesIn(paths), name_of_row);

TEST_P(MediaCopy, TakesEveryMemberAndLeavesTheSourceAsItIs) {
    EXPECT_EQ(members(*copy(*source)), members_of_full);
    EXPECT_EQ(members(*source), members_of_full);
}

TEST_P(MediaCopy, TakesTheDefaults) {
    EXPECT_EQ(members(*copy(QOVA_Media())), members(QOVA_Media()));
}

// A member copied from its neighbour would show here.
TEST_P(MediaCopy, TakesAChangeOfAnyField) {
    const auto expect_taken = [](const auto& changes) {
        for (const MediaChange& change : changes) {
            const auto changed = full<QOVA_Media>();
            change.apply(*changed);
            EXPECT_EQ(members(*copy(*changed)), members(*changed)) << change.name;
        }
    };
    expect_taken(compared_fields);
    expect_taken(fields_left_out);
}

void scramble(QOVA_Media& media) {
    media.mediaType = QOVA_Media::MT_DATA;
    media.sndPort = 1;
    media.cryptoCount = 99;
    set_address(media, "192.0.2.1");
    media.amrwbParam->modeSet.clear();
    media.amrwbParam->crc = 0;
    media.opusParam->maxPtime = 1;
    media.find(CODEC_G711_ULAW)->framing = 99;
    delete media.attributes.back();
    media.attributes.pop_back();
    media.cryptos.front()->keys.clear();
    media.cryptos.front()->tag = 99;
}

TEST_P(MediaCopy, DoesNotFollowItsSourceAndOutlivesIt) {
    const Owned result = copy(*source);
    scramble(*source);
    EXPECT_EQ(members(*result), members_of_full);
    source.reset();
    EXPECT_EQ(members(*result), members_of_full);
}

TEST_P(MediaCopy, DoesNotReachIntoItsSourceAndMayBeFreedBeforeIt) {
    Owned result = copy(*source);
    scramble(*result);
    EXPECT_EQ(members(*source), members_of_full);
    result.reset();
    EXPECT_EQ(members(*source), members_of_full);
}

// Copying does not look at the number of crypto lines, only at the member.
TEST_P(MediaCopy, TakesACryptoCountThatDoesNotAgreeWithTheList) {
    source->cryptoCount = 4294967295U;
    EXPECT_EQ(copy(*source)->cryptoCount, 4294967295U);
}

TEST_P(MediaCopy, IsAPlainMediaEvenOfADerivedOne) {
    struct WithoutClone : QOVA_Media {};
    EXPECT_EQ(members(*copy(*full<WithoutClone>())), members_of_full);
}

TEST_P(MediaCopy, KeepsTheClassOfDerivedAttributesAndCryptoLines) {
    fill(append<Derived<QOVA_VideoAttribute>>(source->attributes));
    append<OwnAttribute>(source->attributes);
    fill(append<Derived<QOVA_Crypto>>(source->cryptos));
    EXPECT_EQ(members(*copy(*source)), members(*source));
}

TEST(MediaAssignment, FreesWhatTheTargetOwned) {
    QOVA_Media target;
    const std::size_t before = allocations::live();
    fill(target);
    target = QOVA_Media();
    EXPECT_EQ(allocations::live(), before);
}

TEST(MediaAssignment, CanBeRepeated) {
    const auto first = full<QOVA_Media>();
    const QOVA_Media second;
    QOVA_Media target;
    for (int i = 0; i < 3; ++i) {
        target = second;
        EXPECT_EQ(members(target), members(second));
        target = *first;
        EXPECT_EQ(members(target), members(*first));
    }
}

TEST(MediaAssignment, ToItselfChangesNothingAndFreesNothing) {
    const auto media = full<QOVA_Media>();
    const std::string before = members(*media, PLACES);
    const std::size_t made = allocations::made();
    const QOVA_Media& same = *media;
    EXPECT_EQ(&(*media = same), media.get());
    EXPECT_EQ(allocations::made(), made);
    EXPECT_EQ(members(*media, PLACES), before);
}

TEST(MediaDestructor, PassesNullPointersOver) {
    QOVA_Media media;
    put_nulls(media);
}

// ---- Equality. Parameter objects are compared by identity, so most media here have none ----

class MediaEquality : public testing::Test {
protected:
    MediaEquality() {
        drop_parameters(a);
        drop_parameters(b);
    }

    QOVA_Media a;
    QOVA_Media b;
};

class FullMediaEquality : public testing::TestWithParam<MediaChange> {
protected:
    FullMediaEquality() {
        drop_parameters(*a);
        drop_parameters(*b);
        EXPECT_TRUE(*a == *b);
    }

    const Owned a = full<QOVA_Media>();
    const Owned b = full<QOVA_Media>();
};

class ComparedField : public FullMediaEquality {};

TEST_P(ComparedField, MakesMediaUnequal) {
    GetParam().apply(*b);
    expect_unequal(*a, *b);
    GetParam().apply(*a);
    expect_equal(*a, *b);
}

INSTANTIATE_TEST_SUITE_P(Media, ComparedField, testing::ValuesIn(compared_fields), name_of_row);

class FieldLeftOut : public FullMediaEquality {};

TEST_P(FieldLeftOut, LeavesMediaEqual) {
    GetParam().apply(*b);
    expect_equal(*a, *b);
}

INSTANTIATE_TEST_SUITE_P(Media, FieldLeftOut, testing::ValuesIn(fields_left_out), name_of_row);

TEST(MediaEqualityByIdentity, HoldsWithItselfAndWithNoOther) {
    const QOVA_Media media;
    expect_equal(media, media);
    expect_unequal(media, QOVA_Media());
    const auto filled = full<QOVA_Media>();
    expect_equal(*filled, *filled);
    for (const MediaPath& path : paths) {
        expect_unequal(*filled, *path.copy(*filled));
    }
}

// An attribute whose class has no comparison equals nothing, itself included.
TEST(MediaEqualityByIdentity, DoesNotEvenHoldWithItselfWhenAnAttributeHasNoComparison) {
    QOVA_Media media;
    append<OwnAttribute>(media.attributes);
    expect_unequal(media, media);
}

// Shares parameter objects between two media for as long as it lives.
class SharedParameters : public MediaEquality {
protected:
    ~SharedParameters() override {
        for (QOVA_Media* const media : {&a, &b}) {
            media->amrwbParam = nullptr;
            media->opusParam = nullptr;
        }
    }

    Sdp::Sdp_Amrwb_Param amrwb;
    Sdp::Sdp_Amrwb_Param same_amrwb;
    Sdp::Sdp_Opus_Param opus;
    Sdp::Sdp_Opus_Param same_opus;
};

TEST_F(SharedParameters, MakeMediaEqualByTheAmrwbObjectsIdentity) {
    a.amrwbParam = b.amrwbParam = &amrwb;
    expect_equal(a, b);
    b.amrwbParam = &same_amrwb;
    expect_unequal(a, b);
    b.amrwbParam = nullptr;
    expect_unequal(a, b);
}

TEST_F(SharedParameters, MakeMediaEqualByTheOpusObjectsIdentity) {
    a.opusParam = b.opusParam = &opus;
    expect_equal(a, b);
    b.opusParam = &same_opus;
    expect_unequal(a, b);
    b.opusParam = nullptr;
    expect_unequal(a, b);
}

TEST_F(MediaEquality, ComparesAddressesByMeaningNotByObject) {
    set_address(a, "2001:db8::1");
    set_address(b, "2001:0DB8:0:0:0:0:0:1");
    expect_equal(a, b);
    set_address(a, "10.0.0.1");
    set_address(b, "::ffff:10.0.0.1");
    expect_unequal(a, b);
}

TEST_F(MediaEquality, ComparesAttributesUntilTheShorterListEnds) {
    append_audio(a, CODEC_G711_ALAW);
    append_fax(a, FT_T38_TCP);
    expect_equal(a, b);
    append_audio(b, CODEC_G711_ALAW);
    expect_equal(a, b);
    append_audio(b, CODEC_G723);
    append_fax(b, FT_T38_TCP);
    expect_unequal(a, b);
}

TEST_F(MediaEquality, TellsAttributesOfDifferentClassesApart) {
    append<QOVA_VideoAttribute>(a.attributes);
    append<QOVA_DataAttribute>(b.attributes);
    expect_unequal(a, b);
}

TEST_F(MediaEquality, ComparesCryptoLinesUntilTheShorterListEnds) {
    append_crypto(a, 1);
    append_crypto(a, 2);
    expect_equal(a, b);
    append_crypto(b, 1);
    expect_equal(a, b);
    append_crypto(b, 3);
    append_crypto(b, 2);
    expect_unequal(a, b);
}

// The list that ends first must not end the comparison of the other one.
TEST_F(MediaEquality, ComparesCryptoLinesAlsoAfterAttributesThatEndEarly) {
    append_audio(a, CODEC_G711_ALAW);
    append_crypto(a, 1);
    append_crypto(b, 2);
    expect_unequal(a, b);
}

// Only the line on the right is asked for its class.
TEST_F(MediaEquality, DoesNotHoldWithADerivedCryptoLineOnTheRight) {
    append<Derived<QOVA_Crypto>>(a.cryptos);
    append_crypto(b, 0);
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(b == a);
    EXPECT_FALSE(a == a);
}

// ---- Searches ----

using DerivedAudio = Derived<QOVA_AudioAttribute>;
using DerivedFax = Derived<QOVA_FaxAttribute>;

class MediaSearch : public testing::Test {
protected:
    QOVA_Media media;
};

TEST_F(MediaSearch, FindsNothingInAnEmptyList) {
    EXPECT_EQ(media.find(CODEC_NIL), nullptr);
    EXPECT_EQ(media.find_mf(CODEC_NIL), nullptr);
    EXPECT_EQ(media.find(FT_NIL), nullptr);
    EXPECT_EQ(media.find(QOVA_Media::AT_NIL, QOVA_Media::MS_UNKNOWN), nullptr);
}

TEST_F(MediaSearch, FindsByCodecAndByToneCodecIndependently) {
    const auto& carried = append_audio(media, CODEC_G729, CODEC_G711_ALAW);
    const auto& alaw = append_audio(media, CODEC_G711_ALAW, payload_type(101));
    EXPECT_EQ(media.find(CODEC_G711_ALAW), &alaw);
    EXPECT_EQ(media.find_mf(CODEC_G711_ALAW), &carried);
    EXPECT_EQ(media.find(payload_type(101)), nullptr);
    EXPECT_EQ(media.find_mf(payload_type(101)), &alaw);
    EXPECT_EQ(media.find_mf(CODEC_G729), nullptr);
    EXPECT_EQ(media.find(CODEC_NIL), nullptr);
}

TEST_F(MediaSearch, TakesTheNeutralCodecAndNumbersWithoutEnumeratorLikeAnyOther) {
    append_audio(media, CODEC_G729, CODEC_G723);
    const auto& nil = append_audio(media, CODEC_NIL, CODEC_NIL);
    const auto& negative = append_audio(media, payload_type(-5), payload_type(-6));
    EXPECT_EQ(media.find(CODEC_NIL), &nil);
    EXPECT_EQ(media.find_mf(CODEC_NIL), &nil);
    EXPECT_EQ(media.find(payload_type(-5)), &negative);
    EXPECT_EQ(media.find_mf(payload_type(-6)), &negative);
}

TEST_F(MediaSearch, FindsAFaxAttributeByItsTransport) {
    append_fax(media, FT_T38_TCP);
    const auto& udptl = append_fax(media, FT_T38_UDPTL);
    EXPECT_EQ(media.find(FT_T38_UDPTL), &udptl);
    EXPECT_EQ(media.find(FT_NIL), nullptr);
}

TEST_F(MediaSearch, GivesTiesToTheEarlierElement) {
    append_audio(media, CODEC_OPUS);
    auto& first = append_audio(media, CODEC_G729, CODEC_G722);
    append_audio(media, CODEC_G729, CODEC_G722);
    auto& first_fax = append_fax(media, FT_T38_TCP);
    append_fax(media, FT_T38_TCP);
    first.attributeType = QOVA_Media::AT_AUDIO;
    first_fax.attributeType = QOVA_Media::AT_AUDIO;
    EXPECT_EQ(media.find(CODEC_G729), &first);
    EXPECT_EQ(media.find_mf(CODEC_G722), &first);
    EXPECT_EQ(media.find(FT_T38_TCP), &first_fax);
    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_UNKNOWN), &first);
}

// The numbers agree; the classes do not.
TEST_F(MediaSearch, PassesOverNullElementsAndOtherClasses) {
    media.attributes.push_back(nullptr);
    append<QOVA_VideoAttribute>(media.attributes);
    append<QOVA_DataAttribute>(media.attributes).type = 1;
    append<OwnAttribute>(media.attributes);
    const auto& fax = append_fax(media, FT_T38_UDPTL);
    media.attributes.push_back(nullptr);
    const auto& audio = append_audio(media, CODEC_G711_ALAW, CODEC_G711_ULAW);
    EXPECT_EQ(media.find(CODEC_G711_ALAW), &audio);
    EXPECT_EQ(media.find_mf(CODEC_G711_ULAW), &audio);
    EXPECT_EQ(media.find(FT_T38_UDPTL), &fax);
    EXPECT_EQ(media.find(FT_T38_TCP), nullptr);
    EXPECT_EQ(media.find(FT_NIL), nullptr);
    EXPECT_EQ(media.find(CODEC_NIL), nullptr);
}

TEST_F(MediaSearch, FindsObjectsOfDerivedClasses) {
    auto& fax = append<DerivedFax>(media.attributes);
    fax.transport = FT_T38_TCP;
    auto& audio = append<DerivedAudio>(media.attributes);
    audio.codec = CODEC_OPUS;
    audio.mf = CODEC_G722;
    EXPECT_EQ(media.find(CODEC_OPUS), &audio);
    EXPECT_EQ(media.find_mf(CODEC_G722), &audio);
    EXPECT_EQ(media.find(FT_T38_TCP), &fax);
    EXPECT_EQ(media.find(CODEC_G722), nullptr);
    EXPECT_EQ(media.find_mf(CODEC_OPUS), nullptr);
    EXPECT_EQ(media.find(FT_T38_UDPTL), nullptr);
}

TEST_F(MediaSearch, GivesTiesToTheEarlierElementAlsoOfADerivedClass) {
    append_audio(media, CODEC_G729);
    auto& derived = append<DerivedAudio>(media.attributes);
    derived.codec = CODEC_OPUS;
    const auto& exact = append_audio(media, CODEC_OPUS, CODEC_G722);
    append<DerivedAudio>(media.attributes).mf = CODEC_G722;
    EXPECT_EQ(media.find(CODEC_OPUS), &derived);
    EXPECT_EQ(media.find_mf(CODEC_G722), &exact);
}

TEST_F(MediaSearch, ByTypeAndStatusWantsBoth) {
    auto& rejected = append_audio(media, CODEC_G711_ALAW);
    rejected.attributeType = QOVA_Media::AT_AUDIO;
    rejected.status = QOVA_Media::MS_REJECTED;
    auto& fax = append_fax(media, FT_T38_UDPTL);
    fax.attributeType = QOVA_Media::AT_FAX;
    fax.status = QOVA_Media::MS_ACCEPTED;
    auto& accepted = append_audio(media, CODEC_G729);
    accepted.attributeType = QOVA_Media::AT_AUDIO;
    accepted.status = QOVA_Media::MS_ACCEPTED;

    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_ACCEPTED), &accepted);
    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_REJECTED), &rejected);
    EXPECT_EQ(media.find(QOVA_Media::AT_FAX, QOVA_Media::MS_ACCEPTED), &fax);
    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_MODIFIED), nullptr);
    EXPECT_EQ(media.find(QOVA_Media::AT_VIDEO, QOVA_Media::MS_ACCEPTED), nullptr);
}

TEST_F(MediaSearch, ByTypeTakesTheUnknownStatusForAny) {
    append<QOVA_VideoAttribute>(media.attributes).attributeType = QOVA_Media::AT_VIDEO;
    auto& rejected = append_audio(media, CODEC_G711_ALAW);
    rejected.attributeType = QOVA_Media::AT_AUDIO;
    rejected.status = QOVA_Media::MS_REJECTED;
    append_audio(media, CODEC_G729).attributeType = QOVA_Media::AT_AUDIO;
    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_UNKNOWN), &rejected);
    // An attribute of unknown status is not of any status.
    EXPECT_EQ(media.find(QOVA_Media::AT_VIDEO, QOVA_Media::MS_ACCEPTED), nullptr);
}

TEST_F(MediaSearch, ByTypeLooksAtTheFieldAndNotAtTheClass) {
    append_audio(media, CODEC_G729).attributeType = QOVA_Media::AT_NIL;
    auto& fax = append_fax(media, FT_T38_TCP);
    fax.attributeType = QOVA_Media::AT_AUDIO;
    fax.status = QOVA_Media::MS_MODIFIED;
    auto& video = append<QOVA_VideoAttribute>(media.attributes);
    video.attributeType = static_cast<QOVA_Media::e_AttributeType>(99);
    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_MODIFIED), &fax);
    EXPECT_EQ(media.find(static_cast<QOVA_Media::e_AttributeType>(99), QOVA_Media::MS_UNKNOWN),
              &video);
}

TEST_F(MediaSearch, DoesNotAskForTheKindOrStatusOfTheMedia) {
    media.mediaType = QOVA_Media::MT_FAX;
    media.mediaStatus = QOVA_Media::MS_REJECTED;
    const auto& audio = append_audio(media, CODEC_G729, CODEC_G722);
    EXPECT_EQ(media.find(CODEC_G729), &audio);
    EXPECT_EQ(media.find_mf(CODEC_G722), &audio);
}

// ---- Mute test ----

TEST(MuteMedia, IsTheDefaultOneForItsPortWhateverItsAddress) {
    QOVA_Media media;
    EXPECT_TRUE(media.isMute());
    set_address(media, "10.0.0.1");
    EXPECT_TRUE(media.isMute());
}

TEST(MuteMedia, HasTheAnyAddressOrNoReceivePort) {
    QOVA_Media media;
    set_address(media, "10.0.0.1");
    media.rcvPort = 5000;
    EXPECT_FALSE(media.isMute());
    set_address(media, "0.0.0.0");
    EXPECT_TRUE(media.isMute());
    set_address(media, "::");
    EXPECT_TRUE(media.isMute());
}

TEST(MuteMedia, IsNotToldByOtherPortsDirectionsKindOrStatus) {
    const auto media = full<QOVA_Media>();
    EXPECT_FALSE(media->isMute());
    media->sndPort = media->sndPort2 = media->rcvPort2 = 0;
    media->bsnd = media->brcv = false;
    media->mediaType = QOVA_Media::MT_VIDEO;
    media->mediaStatus = QOVA_Media::MS_REJECTED;
    EXPECT_FALSE(media->isMute());
    media->sndPort = media->sndPort2 = media->rcvPort2 = 1;
    media->rcvPort = 0;
    EXPECT_TRUE(media->isMute());
}

// ---- Log text ----

const std::string header = "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1";
const std::string lists = "\n\t   Attributes :\t   Crypto attributes (0) :\n";

TEST(MediaText, OfAFullMedia) {
    EXPECT_EQ(std::string(*full<QOVA_Media>()),
              "\t-> media(Audio)/Modified @2001:db8:1111:2222:3333:4444:5555:6666"
              "/snd=4000~4001/rcv=5000~5001/bsnd=0/brcv=1"
              " AMR-WB(payload-type=97; octet-align=1; mode-set=0,1,2; mode-change-period=3; "
              "mode-change-capability=4; mode-change-neighbor=5; crc=6; robust-sorting=7; "
              "interleaving=8; channels=9; max-red=10)"
              " opus(maxplaybackrate=16000; sprop-maxcapturerate=48000; maxaveragebitrate=20000; "
              "stereo=1; cbr=1; useinbandfec=1; usedtx=1; maxptime=60; sprop-stereo=1)\n"
              "\t   Attributes :"
              "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"
              "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
              "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
              "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"
              "\t\t -> video : not implemented\n"
              "\t\t -> Data / type=NIL\n"
              "\t   Crypto attributes (5) :\n"
              "\t\ttag=4294967295, algo=AES_CM_128_HMAC_SHA1_80"
              ", key=(lifetime=1048576 / mki=10000000 / mkiSize=1)"
              ", key=(lifetime=2097152 / mki=20000000 / mkiSize=1)"
              ", key=(lifetime=4294967295 / mki=30000000 / mkiSize=1)\n");
}

TEST(MediaText, HasBothHeadersOnOneLineWithoutAttributes) {
    EXPECT_EQ(std::string(QOVA_Media()),
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n");
}

TEST(MediaText, PutsAttributeTextsDirectlyAfterTheColonWithAllTheirBytes) {
    struct Bytes : OwnAttribute {
        operator const std::string() const override { return {"a\0\xFF\n", 4}; }
    };
    QOVA_Media media;
    append<OwnAttribute>(media.attributes).text = "A1";
    append<Bytes>(media.attributes);
    EXPECT_EQ(std::string(media), header + "\n\t   Attributes :A1" + std::string("a\0\xFF\n", 4) +
                                      "\t   Crypto attributes (0) :\n");
}

TEST(MediaText, ShowsTheCryptoCountAndNotTheNumberOfLines) {
    QOVA_Media media;
    media.cryptoCount = 2;
    EXPECT_EQ(std::string(media), header + "\n\t   Attributes :\t   Crypto attributes (2) :\n");
    media.cryptoCount = 4294967295U;
    append_crypto(media, 7);
    append_crypto(media, 8);
    EXPECT_EQ(std::string(media), header +
                                      "\n\t   Attributes :\t   Crypto attributes (4294967295) :\n"
                                      "\t\ttag=7, algo=NIL\n"
                                      "\t\ttag=8, algo=NIL\n");
}

TEST(MediaText, PrintsPortsUnsignedAndDirectionsAsDigits) {
    QOVA_Media media;
    media.brcv = false;
    media.sndPort = 65535;
    media.sndPort2 = 65534;
    media.rcvPort = 32768;
    media.rcvPort2 = 40000;
    EXPECT_EQ(
        std::string(media),
        "\t-> media(Nil)/Accepted @0.0.0.0/snd=65535~65534/rcv=32768~40000/bsnd=1/brcv=0" + lists);
}

TEST(MediaText, InsertsTheAddressWithItsFullLength) {
    struct Address : IPAddress {
        Address* Copy() const override { return new Address(*this); }
        std::string ToString() const override { return text; }
        std::string text;
    };
    for (const std::string& text :
         {std::string("a\0b", 3), std::string(), std::string(5000, 'x')}) {
        Address address;
        address.text = text;
        QOVA_Media media;
        set_address(media, address);
        EXPECT_EQ(std::string(media),
                  "\t-> media(Nil)/Accepted @" + text + "/snd=0~0/rcv=0~0/bsnd=1/brcv=1" + lists);
    }
}

TEST(MediaText, NamesEveryKindAndStatusAsToStringDoes) {
    for (int number = -1; number <= 5; ++number) {
        QOVA_Media media;
        media.mediaType = static_cast<QOVA_Media::e_MediaType>(number);
        media.mediaStatus = static_cast<QOVA_Media::e_MediaStatus>(number);
        EXPECT_EQ(std::string(media), "\t-> media(" + QOVA_Media::ToString(media.mediaType) + ")/" +
                                          QOVA_Media::ToString(media.mediaStatus) +
                                          " @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1" + lists);
    }
}

}  // namespace
