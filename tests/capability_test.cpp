// The capability of one side of a call: copies, partial equality, searches, bulk edits, port plans
// and the log text. The order in which it touches its media is the business of order_test.cpp.

#include "qova/capability.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <list>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "allocations.h"
#include "building_blocks.h"
#include "equality.h"
#include "rows.h"

namespace {

static_assert(!std::is_polymorphic_v<QOVA_Capability>);

// A search by codec gives the media, one by tone codec the attribute: on purpose.
template <typename... Arguments>
using Found = decltype(std::declval<const QOVA_Capability&>().find(std::declval<Arguments>()...));
static_assert(std::is_same_v<Found<QOVA_Codec>, QOVA_Media*>);
static_assert(std::is_same_v<Found<QOVA_FaxTransport>, QOVA_Media*>);
static_assert(std::is_same_v<Found<QOVA_Media::e_MediaType, QOVA_Media::e_MediaStatus>,
                             std::list<QOVA_Media*>>);

using MediaList = std::list<QOVA_Media*>;
using Owned = std::unique_ptr<QOVA_Capability>;

// Send and receive ports, then the second ones.
using Ports = std::array<int, 4>;

Ports ports_of(const QOVA_Media& media) {
    return {media.sndPort, media.rcvPort, media.sndPort2, media.rcvPort2};
}

void set_ports(QOVA_Media& media, const Ports& ports) {
    media.sndPort = static_cast<unsigned short>(ports[0]);
    media.rcvPort = static_cast<unsigned short>(ports[1]);
    media.sndPort2 = static_cast<unsigned short>(ports[2]);
    media.rcvPort2 = static_cast<unsigned short>(ports[3]);
}

Owned construct(const QOVA_Capability& source) {
    return std::make_unique<QOVA_Capability>(source);
}

TEST(DefaultCapability, IsEmptyAndAllFlagsAreClear) {
    const QOVA_Capability capability;
    EXPECT_TRUE(capability.filteredMedia.empty());
    EXPECT_FALSE(capability.marked);
    EXPECT_FALSE(capability.offer);
    EXPECT_EQ(capability.passThrough, "");
    EXPECT_FALSE(capability.hold);
    EXPECT_EQ(capability.spare1, 0);
    EXPECT_EQ(capability.spare2, 0);
    EXPECT_EQ(capability.spare3, 0);
    EXPECT_FALSE(capability.silenceSuppSdp);
}

// ---- The flags, one at a time: is one copied, compared, printed? ----

struct Flag {
    const char* name;
    void (*set)(QOVA_Capability& capability);
    bool compared;
    const char* text;  // of an otherwise empty capability
};

void PrintTo(const Flag& flag, std::ostream* out) {
    *out << flag.name;
}

constexpr Flag flags[] = {
    {"marked", [](QOVA_Capability& c) { c.marked = true; }, false,
     "Capability(answer, Not Hold, silenceSuppSdp=no)'"},
    {"offer", [](QOVA_Capability& c) { c.offer = true; }, true,
     "Capability(offer, Not Hold, silenceSuppSdp=no)"},
    {"hold", [](QOVA_Capability& c) { c.hold = true; }, true,
     "Capability(answer, Hold, silenceSuppSdp=no)"},
    {"spare1", [](QOVA_Capability& c) { c.spare1 = 255; }, false,
     "Capability(answer, Not Hold, silenceSuppSdp=no)"},
    {"spare2", [](QOVA_Capability& c) { c.spare2 = 255; }, false,
     "Capability(answer, Not Hold, silenceSuppSdp=no)"},
    {"spare3", [](QOVA_Capability& c) { c.spare3 = 255; }, false,
     "Capability(answer, Not Hold, silenceSuppSdp=no)"},
    {"silenceSuppSdp", [](QOVA_Capability& c) { c.silenceSuppSdp = true; }, true,
     "Capability(answer, Not Hold, silenceSuppSdp=yes)"},
};

class CapabilityFlag : public testing::TestWithParam<Flag> {
protected:
    CapabilityFlag() { GetParam().set(with); }

    QOVA_Capability with;
    QOVA_Capability without;
};

INSTANTIATE_TEST_SUITE_P(Capability, CapabilityFlag, testing::ValuesIn(flags), name_of_row);

TEST_P(CapabilityFlag, IsCopiedOnItsOwn) {
    EXPECT_EQ(members(*construct(with)), members(with));
    auto target = full<QOVA_Capability>();
    *target = with;
    EXPECT_EQ(members(*target), members(with));
    *target = without;
    EXPECT_EQ(members(*target), members(without));
}

// The same text does not outweigh a flag.
TEST_P(CapabilityFlag, IsComparedOrLeftOutWhateverTheText) {
    for (const char* const text : {"", "the same"}) {
        with.passThrough = without.passThrough = text;
        if (GetParam().compared) {
            expect_unequal(with, without);
        } else {
            expect_equal(with, without);
        }
    }
    GetParam().set(without);
    expect_equal(with, without);
}

TEST_P(CapabilityFlag, StandsInTheSummaryOrNowhere) {
    EXPECT_EQ(std::string(with), GetParam().text);
}

// ---- Copies ----

Owned assign_to_empty(const QOVA_Capability& source) {
    auto target = std::make_unique<QOVA_Capability>();
    EXPECT_EQ(&(*target = source), target.get());
    return target;
}

Owned assign_to_full(const QOVA_Capability& source) {
    auto target = full<QOVA_Capability>();
    *target = source;
    return target;
}

using CapabilityPath = CopyPath<QOVA_Capability>;

class CapabilityCopy : public testing::TestWithParam<CapabilityPath> {
protected:
    static Owned copy(const QOVA_Capability& source) { return GetParam().copy(source); }

    const std::string members_of_full = members(*full<QOVA_Capability>());
    Owned source = full<QOVA_Capability>();
};

INSTANTIATE_TEST_SUITE_P(Path, CapabilityCopy,
                         testing::Values(CapabilityPath{"Constructor", construct},
                                         CapabilityPath{"AssignmentToAnEmpty", assign_to_empty},
                                         CapabilityPath{"AssignmentToAFull", assign_to_full}),
                         name_of_row);

TEST_P(CapabilityCopy, TakesEveryMemberAndLeavesTheSourceAsItIs) {
    EXPECT_EQ(members(*copy(*source)), members_of_full);
    EXPECT_EQ(members(*source), members_of_full);
}

TEST_P(CapabilityCopy, TakesTheDefaults) {
    EXPECT_EQ(members(*copy(QOVA_Capability())), members(QOVA_Capability()));
}

TEST_P(CapabilityCopy, TakesTheBytesOfThePassThroughText) {
    source->passThrough = std::string("a\0b\n\xFF\0", 6);
    EXPECT_EQ(copy(*source)->passThrough, std::string("a\0b\n\xFF\0", 6));
}

void scramble(QOVA_Capability& capability) {
    capability.offer = false;
    capability.passThrough[0] = 'X';
    capability.filteredMedia.front()->sndPort = 1;
    capability.find(CODEC_G711_ULAW)->attributes.front()->status = QOVA_Media::MS_REJECTED;
    capability.ClearMediaDirection();
    capability.setPublicAddrPort(endpoint("192.0.2.1"), 40000, 7000);
    delete capability.filteredMedia.back();
    capability.filteredMedia.pop_back();
}

TEST_P(CapabilityCopy, DoesNotFollowItsSourceAndOutlivesIt) {
    const Owned result = copy(*source);
    scramble(*source);
    EXPECT_EQ(members(*result), members_of_full);
    source.reset();
    EXPECT_EQ(members(*result), members_of_full);
}

TEST_P(CapabilityCopy, DoesNotReachIntoItsSourceAndMayBeFreedBeforeIt) {
    Owned result = copy(*source);
    scramble(*result);
    EXPECT_EQ(members(*source), members_of_full);
    result.reset();
    EXPECT_EQ(members(*source), members_of_full);
}

TEST(DerivedMedia, IsKeptByTheCopyConstructorAndMadePlainByAssignment) {
    QOVA_Capability source;
    append_media<Derived<QOVA_Media>>(source, QOVA_Media::MT_VIDEO);
    const QOVA_Capability copy(source);
    EXPECT_EQ(members(copy), members(source));
    QOVA_Capability target;
    append_media<Derived<QOVA_Media>>(target, QOVA_Media::MT_AUDIO);
    target = source;
    const QOVA_Media& media = *target.filteredMedia.front();
    EXPECT_EQ(typeid(media), typeid(QOVA_Media));
    EXPECT_EQ(std::string(target), std::string(source));
}

TEST(CapabilityAssignment, FreesWhatTheTargetOwned) {
    QOVA_Capability target;
    const std::size_t before = allocations::live();
    fill(append_media(target, QOVA_Media::MT_AUDIO));
    target = QOVA_Capability();
    EXPECT_TRUE(target.filteredMedia.empty());
    EXPECT_EQ(allocations::live(), before);
}

TEST(CapabilityAssignment, CanBeRepeated) {
    const auto source = full<QOVA_Capability>();
    QOVA_Capability target;
    for (int i = 0; i < 3; ++i) {
        target = *source;
        EXPECT_EQ(members(target), members(*source));
        target = QOVA_Capability();
        EXPECT_EQ(members(target), members(QOVA_Capability()));
    }
}

TEST(CapabilityAssignment, ToItselfFreesTheMediaAndKeepsTheRest) {
    const auto source = full<QOVA_Capability>();
    QOVA_Capability capability;
    capability = *source;
    const QOVA_Capability& same = capability;
    EXPECT_EQ(&(capability = same), &capability);
    EXPECT_TRUE(capability.filteredMedia.empty());
    for (const QOVA_Media* const media : source->filteredMedia) {
        capability.filteredMedia.push_back(new QOVA_Media(*media));
    }
    EXPECT_EQ(members(capability), members(*source));
}

// ---- Equality ----

class CapabilityEquality : public testing::Test {
protected:
    // Appends a media that can equal another.
    static QOVA_Media& append_comparable(QOVA_Capability& capability,
                                         QOVA_Media::e_MediaType type) {
        return drop_parameters(append_media(capability, type));
    }

    QOVA_Capability a;
    QOVA_Capability b;
};

TEST_F(CapabilityEquality, HoldsBetweenEmptyOnes) {
    expect_equal(a, b);
}

TEST_F(CapabilityEquality, HoldsWithItself) {
    fill(a);
    expect_equal(a, a);
    a.passThrough.clear();
    expect_equal(a, a);
}

TEST_F(CapabilityEquality, IsDecidedByTheTextsAloneWhenBothHaveOne) {
    a.passThrough = b.passThrough = "the same";
    append_media(a, QOVA_Media::MT_AUDIO);
    expect_equal(a, b);
    append_media(b, QOVA_Media::MT_FAX);
    expect_equal(a, b);
    append_media(b, QOVA_Media::MT_FAX);
    expect_equal(a, b);
    b.passThrough = "the samf";
    expect_unequal(a, b);
}

TEST_F(CapabilityEquality, ComparesEveryByteOfTheTexts) {
    a.passThrough = std::string("a\0b", 3);
    for (const std::string& other :
         {std::string("a\0c", 3), std::string("a"), std::string("a\0b\0", 4), std::string()}) {
        b.passThrough = other;
        expect_unequal(a, b);
    }
    b.passThrough = a.passThrough;
    expect_equal(a, b);
}

TEST_F(CapabilityEquality, TakesATextOfOneNulForAText) {
    b.passThrough = std::string(1, '\0');
    expect_unequal(a, b);
    a.passThrough = std::string(1, '\0');
    append_media(a, QOVA_Media::MT_AUDIO);
    expect_equal(a, b);
}

TEST_F(CapabilityEquality, SeesADifferenceInAnyMedia) {
    for (QOVA_Capability* const capability : {&a, &b}) {
        append_audio(append_comparable(*capability, QOVA_Media::MT_AUDIO), CODEC_G729);
        append_fax(append_comparable(*capability, QOVA_Media::MT_FAX), FT_T38_UDPTL);
        append_comparable(*capability, QOVA_Media::MT_VIDEO);
    }
    expect_equal(a, b);
    for (QOVA_Media* const media : b.filteredMedia) {
        media->rcvPort = 1;
        expect_unequal(a, b);
        media->rcvPort = 0;
    }
    b.filteredMedia.reverse();
    expect_unequal(a, b);
}

// Unlike the lists within a media.
TEST_F(CapabilityEquality, WantsAsManyMedia) {
    append_comparable(a, QOVA_Media::MT_AUDIO);
    expect_unequal(a, b);
    append_comparable(b, QOVA_Media::MT_AUDIO);
    expect_equal(a, b);
    append_comparable(b, QOVA_Media::MT_AUDIO);
    expect_unequal(a, b);
}

// The copies of the media have parameter objects of their own.
TEST_F(CapabilityEquality, HoldsWithACopyUnlessItHasMediaAndNoText) {
    a.offer = true;
    expect_equal(a, *construct(a));
    append_media(a, QOVA_Media::MT_AUDIO);
    expect_unequal(a, *construct(a));
    b = a;
    expect_unequal(a, b);
    a.passThrough = "text";
    expect_equal(a, *construct(a));
}

// ---- Searches ----

TEST(EmptyCapability, FindsNothing) {
    const QOVA_Capability capability;
    EXPECT_EQ(capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN), MediaList());
    EXPECT_EQ(capability.find(QOVA_Media::MT_NIL, QOVA_Media::MS_ACCEPTED), MediaList());
    EXPECT_EQ(capability.find(CODEC_NIL), nullptr);
    EXPECT_EQ(capability.find(FT_NIL), nullptr);
    EXPECT_EQ(capability.find_mf(CODEC_NIL), nullptr);
    EXPECT_FALSE(capability.isMute());
}

TEST(EmptyCapability, IsNotChangedByBulkEdits) {
    QOVA_Capability capability;
    capability.rejectMedia(QOVA_Media::MT_AUDIO);
    capability.ClearMediaDirection();
    capability.setPublicAddrPort(endpoint("192.0.2.1"), 40000, 7000);
    capability.setLocalAddrPort(endpoint("192.0.2.1"), 40000, 7000);
    EXPECT_EQ(members(capability), members(QOVA_Capability()));
}

class SearchByKindAndStatus : public testing::Test {
protected:
    QOVA_Capability capability;
    QOVA_Media& accepted = append_media(capability, QOVA_Media::MT_AUDIO);
    QOVA_Media& fax = append_media(capability, QOVA_Media::MT_FAX);
    QOVA_Media& rejected = append_media(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_REJECTED);
    QOVA_Media& unknown = append_media(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN);
    QOVA_Media& accepted_too = append_media(capability, QOVA_Media::MT_AUDIO);
};

TEST_F(SearchByKindAndStatus, GivesAllThatMatchInListOrder) {
    EXPECT_EQ(capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_ACCEPTED),
              (MediaList{&accepted, &accepted_too}));
    EXPECT_EQ(capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_REJECTED), MediaList{&rejected});
    EXPECT_EQ(capability.find(QOVA_Media::MT_FAX, QOVA_Media::MS_ACCEPTED), MediaList{&fax});
}

TEST_F(SearchByKindAndStatus, TakesTheUnknownStatusForAny) {
    EXPECT_EQ(capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN),
              (MediaList{&accepted, &rejected, &unknown, &accepted_too}));
}

TEST_F(SearchByKindAndStatus, GivesAnEmptyListWhenNothingMatches) {
    EXPECT_EQ(capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_MODIFIED), MediaList());
    EXPECT_EQ(capability.find(QOVA_Media::MT_FAX, QOVA_Media::MS_REJECTED), MediaList());
    EXPECT_EQ(capability.find(QOVA_Media::MT_VIDEO, QOVA_Media::MS_UNKNOWN), MediaList());
    EXPECT_EQ(capability.find(QOVA_Media::MT_NIL, QOVA_Media::MS_UNKNOWN), MediaList());
}

TEST_F(SearchByKindAndStatus, TakesValuesWithoutEnumerator) {
    const auto type = fax.mediaType = static_cast<QOVA_Media::e_MediaType>(77);
    const auto status = fax.mediaStatus = static_cast<QOVA_Media::e_MediaStatus>(-3);
    EXPECT_EQ(capability.find(type, status), MediaList{&fax});
    EXPECT_EQ(capability.find(type, QOVA_Media::MS_UNKNOWN), MediaList{&fax});
}

TEST_F(SearchByKindAndStatus, LeavesTheMediaToTheCapability) {
    const std::string before = members(capability, PLACES);
    capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN).clear();
    EXPECT_EQ(members(capability, PLACES), before);
}

class CapabilitySearch : public testing::Test {
protected:
    QOVA_Capability capability;
};

TEST_F(CapabilitySearch, ByCodecGivesTheFirstAudioMediaThatHasIt) {
    append_audio(append_media(capability, QOVA_Media::MT_AUDIO), CODEC_G723);
    auto& first = append_media(capability, QOVA_Media::MT_AUDIO);
    append_audio(first, CODEC_OPUS);
    append_audio(first, CODEC_G729);
    auto& second = append_media(capability, QOVA_Media::MT_AUDIO);
    append_audio(second, CODEC_G729);
    append_audio(second, CODEC_G722);
    EXPECT_EQ(capability.find(CODEC_G729), &first);
    EXPECT_EQ(capability.find(CODEC_G722), &second);
    EXPECT_EQ(capability.find(CODEC_G711_ALAW), nullptr);
}

TEST_F(CapabilitySearch, ByToneCodecGivesTheFirstAttribute) {
    append_audio(append_media(capability, QOVA_Media::MT_AUDIO), CODEC_G722, CODEC_G723);
    auto& audio = append_media(capability, QOVA_Media::MT_AUDIO);
    append_audio(audio, CODEC_G722, CODEC_G729);
    const auto& first = append_audio(audio, CODEC_NIL, CODEC_G722);
    append_audio(audio, CODEC_NIL, CODEC_G722);
    append_audio(append_media(capability, QOVA_Media::MT_AUDIO), CODEC_NIL, CODEC_G722);
    EXPECT_EQ(capability.find_mf(CODEC_G722), &first);
    EXPECT_EQ(capability.find_mf(CODEC_OPUS), nullptr);
}

TEST_F(CapabilitySearch, ByTransportGivesTheFirstFaxMediaThatHasIt) {
    append_fax(append_media(capability, QOVA_Media::MT_FAX), FT_T38_TCP);
    auto& first = append_media(capability, QOVA_Media::MT_FAX);
    append_fax(first, FT_T38_UDPTL);
    append_fax(append_media(capability, QOVA_Media::MT_FAX), FT_T38_UDPTL);
    EXPECT_EQ(capability.find(FT_T38_UDPTL), &first);
    EXPECT_EQ(capability.find(FT_NIL), nullptr);
}

TEST_F(CapabilitySearch, LooksAtMediaOfItsKindOnly) {
    for (const int type : {0, 1, 2, 3, 4}) {
        auto& media = append_media(capability, static_cast<QOVA_Media::e_MediaType>(type));
        if (type != QOVA_Media::MT_AUDIO) {
            append_audio(media, CODEC_G729, CODEC_G729);
        }
        if (type != QOVA_Media::MT_FAX) {
            append_fax(media, FT_T38_UDPTL);
        }
    }
    EXPECT_EQ(capability.find(CODEC_G729), nullptr);
    EXPECT_EQ(capability.find_mf(CODEC_G729), nullptr);
    EXPECT_EQ(capability.find(FT_T38_UDPTL), nullptr);
}

// Status plays no part in these searches.
TEST_F(CapabilitySearch, FindsRejectedMediaToo) {
    auto& audio = append_media(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_REJECTED);
    const auto& attribute = append_audio(audio, CODEC_G729, CODEC_G722);
    auto& fax = append_media(capability, QOVA_Media::MT_FAX, QOVA_Media::MS_REJECTED);
    append_fax(fax, FT_T38_TCP);
    EXPECT_EQ(capability.find(CODEC_G729), &audio);
    EXPECT_EQ(capability.find_mf(CODEC_G722), &attribute);
    EXPECT_EQ(capability.find(FT_T38_TCP), &fax);
}

// ---- Mute test ----

TEST(MuteCapability, HasAMuteAudioMedia) {
    QOVA_Capability capability;
    for (int i = 0; i < 3; ++i) {
        auto& audible = append_media(capability, QOVA_Media::MT_AUDIO);
        set_address(audible, "10.0.0.1");
        audible.rcvPort = 5000;
        EXPECT_FALSE(capability.isMute());
    }
    auto& last = *capability.filteredMedia.back();
    last.rcvPort = 0;
    EXPECT_TRUE(capability.isMute());
    last.rcvPort = 5000;
    set_address(last, "0.0.0.0");
    EXPECT_TRUE(capability.isMute());
}

TEST(MuteCapability, IsNotMadeByMediaOfOtherKinds) {
    QOVA_Capability capability;
    for (const auto type :
         {QOVA_Media::MT_NIL, QOVA_Media::MT_VIDEO, QOVA_Media::MT_FAX, QOVA_Media::MT_DATA}) {
        append_media(capability, type);
    }
    EXPECT_FALSE(capability.isMute());
}

// ---- Bulk edits ----

TEST(RejectMedia, ClearsTheFirstPortsOfTheFirstMediaOfAKind) {
    for (const int kind : {0, 1, 2, 3, 4, 77}) {
        const auto type = static_cast<QOVA_Media::e_MediaType>(kind);
        QOVA_Capability capability;
        append_media(capability, static_cast<QOVA_Media::e_MediaType>(5));
        auto& first = append_media(capability, type, QOVA_Media::MS_MODIFIED);
        append_media(capability, type);
        for (QOVA_Media* const media : capability.filteredMedia) {
            set_ports(*media, {1, 2, 3, 4});
        }
        QOVA_Capability expected(capability);
        // Once more: it does not go on to the second media when the first has been rejected before.
        capability.rejectMedia(type);
        capability.rejectMedia(type);
        EXPECT_EQ(ports_of(first), (Ports{0, 0, 3, 4})) << kind;
        set_ports(first, {1, 2, 3, 4});
        EXPECT_EQ(members(capability), members(expected)) << "nothing else changes";
    }
}

TEST(RejectMedia, OfAKindThatIsNotThereChangesNothing) {
    const auto capability = full<QOVA_Capability>();
    const std::string before = members(*capability);
    capability->rejectMedia(QOVA_Media::MT_VIDEO);
    capability->rejectMedia(QOVA_Media::MT_NIL);
    EXPECT_EQ(members(*capability), before);
}

TEST(ClearMediaDirection, ClearsBothDirectionsOfEveryAudioMediaOnly) {
    QOVA_Capability capability;
    for (const int type : {0, 1, 2, 3, 4, 0, 1, 2, 3, 4}) {
        append_media(capability, static_cast<QOVA_Media::e_MediaType>(type));
    }
    auto& audio = append_media(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_REJECTED);
    audio.bsnd = false;
    auto& video = append_media(capability, QOVA_Media::MT_VIDEO);
    video.brcv = false;
    QOVA_Capability expected(capability);
    for (QOVA_Media* const media : expected.filteredMedia) {
        if (media->mediaType == QOVA_Media::MT_AUDIO) {
            media->bsnd = media->brcv = false;
        }
    }
    capability.ClearMediaDirection();
    EXPECT_EQ(members(capability), members(expected));
}

// ---- Port plans ----

class PortPlan : public testing::Test {
protected:
    QOVA_Capability capability;
    QOVA_Media& audio = append_media(capability, QOVA_Media::MT_AUDIO);
    QOVA_Media& fax = append_media(capability, QOVA_Media::MT_FAX);
};

TEST_F(PortPlan, MovesToThePublicPlanAndBack) {
    set_ports(audio, {32000, 32001, 32002, 32003});
    set_ports(fax, {6666, 6667, 0, 0});

    capability.setPublicAddrPort(endpoint("192.0.2.1"), 40000, 7000);
    EXPECT_EQ(ports_of(audio), (Ports{40000, 40001, 40002, 40003}));
    EXPECT_EQ(ports_of(fax), (Ports{7000, 7001, 334, 334}));
    EXPECT_EQ(audio.address->ToString(), "192.0.2.1");
    EXPECT_EQ(fax.address->ToString(), "192.0.2.1");

    capability.setLocalAddrPort(endpoint("10.0.0.1"), 40000, 7000);
    EXPECT_EQ(ports_of(audio), (Ports{32000, 32001, 32002, 32003}));
    EXPECT_EQ(ports_of(fax), (Ports{6666, 6667, 0, 0}));
    EXPECT_EQ(audio.address->ToString(), "10.0.0.1");
    EXPECT_EQ(fax.address->ToString(), "10.0.0.1");
}

TEST_F(PortPlan, WrapsAroundInsteadOfStoppingAtTheEnds) {
    set_ports(audio, {32000, 100, 31000, 65535});
    capability.setPublicAddrPort(endpoint("192.0.2.1"), 1000, 6666);
    EXPECT_EQ(ports_of(audio), (Ports{1000, 34636, 0, 34535}));
    capability.setLocalAddrPort(endpoint("192.0.2.1"), 1000, 6666);
    EXPECT_EQ(ports_of(audio), (Ports{32000, 100, 31000, 65535}));
}

TEST_F(PortPlan, ShiftsPortZeroLikeAnyOther) {
    capability.setPublicAddrPort(endpoint("192.0.2.1"), 32001, 6665);
    EXPECT_EQ(ports_of(audio), (Ports{1, 1, 1, 1}));
    EXPECT_EQ(ports_of(fax), (Ports{65535, 65535, 65535, 65535}));
}

TEST_F(PortPlan, ComesBackFromEveryBase) {
    const Ports ports = {0, 1, 32768, 65535};
    set_ports(audio, ports);
    set_ports(fax, ports);
    const UDPAddr to = endpoint("192.0.2.1");
    for (unsigned int base = 0; base < 65536; base += 7) {
        const auto audio_port = static_cast<unsigned short>(base);
        const auto fax_port = static_cast<unsigned short>(65535 - base);
        capability.setPublicAddrPort(to, audio_port, fax_port);
        ASSERT_EQ(audio.sndPort, static_cast<unsigned short>(base + 65536 - 32000)) << base;
        ASSERT_EQ(fax.sndPort, static_cast<unsigned short>(65535 - base + 65536 - 6666)) << base;
        capability.setLocalAddrPort(to, audio_port, fax_port);
        ASSERT_EQ(ports_of(audio), ports) << base;
        ASSERT_EQ(ports_of(fax), ports) << base;
    }
}

struct Plan {
    const char* name;
    void (QOVA_Capability::*move)(const UDPAddr&, unsigned short, unsigned short);
    int sign;  // of the shift
};

void PrintTo(const Plan& plan, std::ostream* out) {
    *out << plan.name;
}

class EitherPortPlan : public testing::TestWithParam<Plan> {
protected:
    // Shifts audio ports by 5, or by -5, and fax ports by 7.
    void move() { (capability.*GetParam().move)(UDPAddr(ip("2001:db8::1"), 9999), 32005, 6673); }

    static Ports shifted(const Ports& ports, int shift) {
        Ports result = {};
        for (std::size_t i = 0; i < ports.size(); ++i) {
            result[i] = static_cast<unsigned short>(ports[i] + GetParam().sign * shift);
        }
        return result;
    }

    QOVA_Capability capability;
};

INSTANTIATE_TEST_SUITE_P(To, EitherPortPlan,
                         testing::Values(Plan{"Public", &QOVA_Capability::setPublicAddrPort, 1},
                                         Plan{"Local", &QOVA_Capability::setLocalAddrPort, -1}),
                         name_of_row);

TEST_P(EitherPortPlan, GivesEveryKindTheAddressAndShiftsThePortsOfAudioAndFax) {
    for (const int type : {0, 1, 2, 3, 4, 5, -1}) {
        set_ports(append_media(capability, static_cast<QOVA_Media::e_MediaType>(type)),
                  {1, 2, 3, 40000});
    }
    move();
    for (const QOVA_Media* const media : capability.filteredMedia) {
        const int shift = media->mediaType == QOVA_Media::MT_AUDIO ? 5
                          : media->mediaType == QOVA_Media::MT_FAX ? 7
                                                                   : 0;
        EXPECT_EQ(media->address->ToString(), "2001:db8::1");
        EXPECT_EQ(ports_of(*media), shifted({1, 2, 3, 40000}, shift)) << media->mediaType;
    }
}

TEST_P(EitherPortPlan, LeavesRejectedMediaTheirAddressObjectAndPorts) {
    for (const auto type : {QOVA_Media::MT_AUDIO, QOVA_Media::MT_FAX, QOVA_Media::MT_VIDEO}) {
        fill(append_media(capability, type));
        capability.filteredMedia.back()->mediaStatus = QOVA_Media::MS_REJECTED;
    }
    const std::string before = members(capability, PLACES);
    move();
    EXPECT_EQ(members(capability, PLACES), before);
}

TEST_P(EitherPortPlan, MovesMediaOfEveryOtherStatus) {
    for (const int status : {0, 1, 3, 4, -1}) {
        append_media(capability, QOVA_Media::MT_AUDIO,
                     static_cast<QOVA_Media::e_MediaStatus>(status));
    }
    move();
    for (const QOVA_Media* const media : capability.filteredMedia) {
        EXPECT_EQ(media->address->ToString(), "2001:db8::1");
        EXPECT_EQ(ports_of(*media), shifted({0, 0, 0, 0}, 5));
    }
}

TEST_P(EitherPortPlan, GivesEachMediaACopyOfTheAddressAndFillsANullAddress) {
    delete append_media(capability, QOVA_Media::MT_AUDIO).address;
    capability.filteredMedia.front()->address = nullptr;
    append_media(capability, QOVA_Media::MT_AUDIO);
    move();  // whose endpoint is gone by now
    const INetAddress* const first = capability.filteredMedia.front()->address;
    const INetAddress* const second = capability.filteredMedia.back()->address;
    EXPECT_NE(first, second);
    EXPECT_EQ(first->ToString(), "2001:db8::1");
    EXPECT_EQ(second->ToString(), "2001:db8::1");
}

TEST_P(EitherPortPlan, ChangesNothingElse) {
    fill(capability);
    QOVA_Capability expected(capability);
    auto& audio = *expected.filteredMedia.front();
    set_address(audio, "2001:db8::1");
    set_ports(audio, shifted(ports_of(audio), 5));
    move();
    EXPECT_EQ(members(capability), members(expected));
}

// ---- Log text ----

TEST(CapabilityText, OfAFullCapability) {
    QOVA_Capability capability;
    fill(capability);
    delete capability.filteredMedia.front();
    capability.filteredMedia.front() = new QOVA_Media;
    EXPECT_EQ(std::string(capability),
              "Capability(offer, Hold, silenceSuppSdp=yes)'\n"
              "\tFiltered=\n"
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n"
              "\t-> media(Fax)/Rejected @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :"
              "\t\t -> fax / transport=T38tcp / red=0 / depth=0 / mxRate=0\n"
              "\t\t    rateMgt=NIL / fillBit=0 / transMMR=0 / transJBIG=0\n"
              "\t\t    mxBuffer=0/ mxDgram=0 / errCorr=0\n"
              "\t   Crypto attributes (0) :\n"
              "\n"
              "\tPass-through=\n"
              "m=application 5000 udp wb\r\n"
              "a=orient:portrait\r\n"
              "\n");
}

TEST(CapabilityText, IsOneLineWithoutNewlineWhenEmpty) {
    EXPECT_EQ(std::string(QOVA_Capability()), "Capability(answer, Not Hold, silenceSuppSdp=no)");
}

TEST(CapabilityText, EndsWithTheLastMediaWithoutAPassThroughText) {
    QOVA_Capability capability;
    std::string texts;
    for (const auto type : {QOVA_Media::MT_AUDIO, QOVA_Media::MT_VIDEO, QOVA_Media::MT_AUDIO}) {
        texts += append_media(capability, type);
    }
    EXPECT_EQ(std::string(capability),
              "Capability(answer, Not Hold, silenceSuppSdp=no)\n\tFiltered=\n" + texts);
}

TEST(CapabilityText, HasNoMediaHeaderWithoutMediaAndEveryByteOfThePassThroughText) {
    QOVA_Capability capability;
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    for (const std::string& text : {std::string("P"), std::string(1, '\0'), bytes + "\n\n"}) {
        capability.passThrough = text;
        EXPECT_EQ(
            std::string(capability),
            "Capability(answer, Not Hold, silenceSuppSdp=no)\n\tPass-through=\n" + text + "\n");
    }
}

}  // namespace
