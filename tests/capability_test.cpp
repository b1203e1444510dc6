// The capability of one side of a call: copies, partial equality, searches, bulk edits, port plans
// and the log text. The order in which it touches its media is the business of order_test.cpp.

#include "qova/capability.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <list>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "allocations.h"
#include "equality.h"
#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/crypto.h"
#include "qova/media.h"
#include "rows.h"
#include "socket/address.h"

namespace {

static_assert(QOVA_Capability::AUDIO_PORT_BASE == 32000);
static_assert(QOVA_Capability::FAX_PORT_BASE == 6666);
static_assert(!std::is_polymorphic_v<QOVA_Capability>);

// A search by codec gives the media, one by tone codec the attribute: on purpose.
template <typename... Arguments>
using Found = decltype(std::declval<const QOVA_Capability&>().find(std::declval<Arguments>()...));
static_assert(std::is_same_v<Found<QOVA_Codec>, QOVA_Media*>);
static_assert(std::is_same_v<Found<QOVA_FaxTransport>, QOVA_Media*>);
static_assert(std::is_same_v<Found<QOVA_Media::e_MediaType, QOVA_Media::e_MediaStatus>,
                             std::list<QOVA_Media*>>);
static_assert(std::is_same_v<decltype(&QOVA_Capability::find_mf),
                             QOVA_AudioAttribute* (QOVA_Capability::*)(QOVA_Codec) const>);

using MediaList = std::list<QOVA_Media*>;

// ---- Building blocks ----

template <typename Media = QOVA_Media>
Media& append(QOVA_Capability& capability, QOVA_Media::e_MediaType type,
              QOVA_Media::e_MediaStatus status = QOVA_Media::MS_ACCEPTED) {
    capability.filteredMedia.push_back(nullptr);
    auto* const media = new Media;
    capability.filteredMedia.back() = media;
    media->mediaType = type;
    media->mediaStatus = status;
    return *media;
}

QOVA_AudioAttribute& append_audio(QOVA_Media& media, QOVA_Codec codec, QOVA_Codec mf = CODEC_NIL) {
    media.attributes.push_back(nullptr);
    auto* const audio = new QOVA_AudioAttribute;
    media.attributes.back() = audio;
    audio->codec = codec;
    audio->mf = mf;
    return *audio;
}

QOVA_FaxAttribute& append_fax(QOVA_Media& media, QOVA_FaxTransport transport) {
    media.attributes.push_back(nullptr);
    auto* const fax = new QOVA_FaxAttribute;
    media.attributes.back() = fax;
    fax->transport = transport;
    return *fax;
}

void append_crypto(QOVA_Media& media, unsigned int tag) {
    media.cryptos.push_back(nullptr);
    auto* const crypto = new QOVA_Crypto;
    media.cryptos.back() = crypto;
    crypto->tag = tag;
    crypto->keys.push_back({});
}

struct Ports {
    unsigned short snd;
    unsigned short rcv;
    unsigned short snd2;
    unsigned short rcv2;

    friend bool operator==(const Ports& a, const Ports& b) {
        return a.snd == b.snd && a.rcv == b.rcv && a.snd2 == b.snd2 && a.rcv2 == b.rcv2;
    }
    friend void PrintTo(const Ports& ports, std::ostream* out) {
        *out << ports.snd << '/' << ports.rcv << '/' << ports.snd2 << '/' << ports.rcv2;
    }
};

Ports ports_of(const QOVA_Media& media) {
    return {media.sndPort, media.rcvPort, media.sndPort2, media.rcvPort2};
}

void set_ports(QOVA_Media& media, const Ports& ports) {
    media.sndPort = ports.snd;
    media.rcvPort = ports.rcv;
    media.sndPort2 = ports.snd2;
    media.rcvPort2 = ports.rcv2;
}

IPAddress address(const char* text) {
    IPAddress result;
    EXPECT_TRUE(IPAddress::Parse(text, result)) << text;
    return result;
}

UDPAddr endpoint(const char* text) {
    return {address(text), 5060};
}

void set_address(QOVA_Media& media, const char* text) {
    INetAddress* const copy = address(text).Copy();
    delete media.address;
    media.address = copy;
}

// Parameter objects are compared by identity; without any, equal media can be made.
QOVA_Media& drop_parameters(QOVA_Media& media) {
    delete media.amrwbParam;
    media.amrwbParam = nullptr;
    delete media.opusParam;
    media.opusParam = nullptr;
    return media;
}

// Every member differs from its default.
void fill(QOVA_Capability& capability) {
    auto& audio = append(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_MODIFIED);
    append_audio(audio, CODEC_G711_ALAW, static_cast<QOVA_Codec>(101));
    append_audio(audio, CODEC_G729);
    set_address(audio, "10.0.0.1");
    set_ports(audio, {4000, 5000, 4001, 5001});
    audio.cryptoCount = 1;
    append_crypto(audio, 1);
    auto& fax = append(capability, QOVA_Media::MT_FAX, QOVA_Media::MS_REJECTED);
    append_fax(fax, FT_T38_UDPTL);
    capability.marked = true;
    capability.offer = true;
    // Longer than any string that is stored without an allocation.
    capability.passThrough = "m=application 5000 udp wb\r\na=orient:portrait\r\n";
    capability.hold = true;
    capability.spare1 = 11;
    capability.spare2 = 12;
    capability.spare3 = 13;
    capability.silenceSuppSdp = true;
}

const std::string media_of_filled =
    "\t-> media(Audio)/Modified @10.0.0.1/snd=4000~4001/rcv=5000~5001/bsnd=1/brcv=1\n"
    "\t   Attributes :"
    "\t\t -> G711alaw / Unknown / framing=0 / vad=0 / echo=0 / mxFraming=0 / MF=101\n"
    "\t\t -> G729 / Unknown / framing=0 / vad=0 / echo=0 / mxFraming=0 / MF=0\n"
    "\t   Crypto attributes (1) :\n"
    "\t\ttag=1, algo=NIL, key=(lifetime=0 / mki=00000000 / mkiSize=0)\n"
    "\t-> media(Fax)/Rejected @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
    "\t   Attributes :"
    "\t\t -> fax / transport=T38udptl / red=0 / depth=0 / mxRate=0\n"
    "\t\t    rateMgt=NIL / fillBit=0 / transMMR=0 / transJBIG=0\n"
    "\t\t    mxBuffer=0/ mxDgram=0 / errCorr=0\n"
    "\t   Crypto attributes (0) :\n";

const std::string text_of_filled =
    "Capability(offer, Hold, silenceSuppSdp=yes)'\n"
    "\tFiltered=\n" +
    media_of_filled +
    "\n"
    "\tPass-through=\n"
    "m=application 5000 udp wb\r\n"
    "a=orient:portrait\r\n"
    "\n";

// Differs in every member from what fill() makes.
void fill_otherwise(QOVA_Capability& capability) {
    append_audio(append(capability, QOVA_Media::MT_VIDEO), CODEC_OPUS);
    append(capability, QOVA_Media::MT_DATA);
    append_fax(append(capability, QOVA_Media::MT_FAX), FT_T38_TCP);
    capability.passThrough = "short";
    capability.spare1 = 21;
    capability.spare2 = 22;
    capability.spare3 = 23;
}

// ---- Defaults ----

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

// ---- Copies ----

void expect_same_flags_and_text(const QOVA_Capability& copy, const QOVA_Capability& source) {
    EXPECT_EQ(copy.marked, source.marked);
    EXPECT_EQ(copy.offer, source.offer);
    EXPECT_EQ(copy.passThrough, source.passThrough);
    EXPECT_EQ(copy.hold, source.hold);
    EXPECT_EQ(copy.spare1, source.spare1);
    EXPECT_EQ(copy.spare2, source.spare2);
    EXPECT_EQ(copy.spare3, source.spare3);
    EXPECT_EQ(copy.silenceSuppSdp, source.silenceSuppSdp);
}

void expect_copied(const QOVA_Capability& copy, const QOVA_Capability& source) {
    expect_same_flags_and_text(copy, source);
    ASSERT_EQ(copy.filteredMedia.size(), source.filteredMedia.size());
    auto copied = copy.filteredMedia.begin();
    for (const QOVA_Media* const media : source.filteredMedia) {
        EXPECT_NE(*copied, media);
        EXPECT_EQ(std::string(**copied), std::string(*media));
        ++copied;
    }
}

std::unique_ptr<QOVA_Capability> construct(const QOVA_Capability& source) {
    return std::make_unique<QOVA_Capability>(source);
}

std::unique_ptr<QOVA_Capability> assign(const QOVA_Capability& source) {
    auto target = std::make_unique<QOVA_Capability>();
    fill_otherwise(*target);
    *target = source;
    return target;
}

struct CopyPath {
    const char* name;
    std::unique_ptr<QOVA_Capability> (*copy)(const QOVA_Capability& source);
};

void PrintTo(const CopyPath& path, std::ostream* out) {
    *out << path.name;
}

class CapabilityCopy : public testing::TestWithParam<CopyPath> {
protected:
    static std::unique_ptr<QOVA_Capability> copy(const QOVA_Capability& source) {
        return GetParam().copy(source);
    }
};

INSTANTIATE_TEST_SUITE_P(Path, CapabilityCopy,
                         testing::Values(CopyPath{"Constructor", construct},
                                         CopyPath{"Assignment", assign}),
                         name_of_row);

TEST_P(CapabilityCopy, TakesEveryMember) {
    QOVA_Capability source;
    fill(source);
    const std::unique_ptr<QOVA_Capability> result = copy(source);
    expect_copied(*result, source);
    EXPECT_EQ(std::string(*result), text_of_filled);
}

TEST_P(CapabilityCopy, TakesEveryMemberOfAnotherCapabilityToo) {
    QOVA_Capability source;
    fill_otherwise(source);
    const std::unique_ptr<QOVA_Capability> result = copy(source);
    expect_copied(*result, source);
}

TEST_P(CapabilityCopy, TakesTheDefaults) {
    const QOVA_Capability source;
    const std::unique_ptr<QOVA_Capability> result = copy(source);
    expect_copied(*result, source);
    EXPECT_EQ(std::string(*result), "Capability(answer, Not Hold, silenceSuppSdp=no)");
}

// A member copied from its neighbour would show here.
class CopiedFlag : public testing::TestWithParam<Change<QOVA_Capability>> {};

TEST_P(CopiedFlag, IsCopiedOnItsOwn) {
    QOVA_Capability source;
    GetParam().apply(source);
    expect_same_flags_and_text(*construct(source), source);
    expect_same_flags_and_text(*assign(source), source);
}

constexpr Change<QOVA_Capability> flags[] = {
    {"marked", [](QOVA_Capability& capability) { capability.marked = true; }},
    {"offer", [](QOVA_Capability& capability) { capability.offer = true; }},
    {"hold", [](QOVA_Capability& capability) { capability.hold = true; }},
    {"spare1", [](QOVA_Capability& capability) { capability.spare1 = 255; }},
    {"spare2", [](QOVA_Capability& capability) { capability.spare2 = 255; }},
    {"spare3", [](QOVA_Capability& capability) { capability.spare3 = 255; }},
    {"silenceSuppSdp", [](QOVA_Capability& capability) { capability.silenceSuppSdp = true; }},
};

INSTANTIATE_TEST_SUITE_P(Capability, CopiedFlag, testing::ValuesIn(flags), name_of_row);

TEST_P(CapabilityCopy, TakesTheBytesOfThePassThroughText) {
    QOVA_Capability source;
    source.passThrough = std::string("a\0b\n\xFF\0", 6);
    const std::unique_ptr<QOVA_Capability> result = copy(source);
    EXPECT_EQ(result->passThrough, std::string("a\0b\n\xFF\0", 6));
}

TEST_P(CapabilityCopy, DoesNotFollowItsSource) {
    QOVA_Capability source;
    fill(source);
    const std::unique_ptr<QOVA_Capability> result = copy(source);
    source.offer = false;
    source.passThrough[0] = 'X';
    source.filteredMedia.front()->sndPort = 1;
    source.find(CODEC_G711_ALAW)->attributes.front()->status = QOVA_Media::MS_REJECTED;
    source.ClearMediaDirection();
    source.setPublicAddrPort(endpoint("192.0.2.1"), 40000, 7000);
    delete source.filteredMedia.back();
    source.filteredMedia.pop_back();
    EXPECT_EQ(std::string(*result), text_of_filled);
}

TEST_P(CapabilityCopy, DoesNotReachIntoItsSource) {
    QOVA_Capability source;
    fill(source);
    const std::unique_ptr<QOVA_Capability> result = copy(source);
    result->offer = false;
    result->passThrough[0] = 'X';
    result->filteredMedia.front()->sndPort = 1;
    result->find(CODEC_G711_ALAW)->attributes.front()->status = QOVA_Media::MS_REJECTED;
    result->ClearMediaDirection();
    result->setPublicAddrPort(endpoint("192.0.2.1"), 40000, 7000);
    delete result->filteredMedia.back();
    result->filteredMedia.pop_back();
    EXPECT_EQ(std::string(source), text_of_filled);
}

TEST_P(CapabilityCopy, OutlivesItsSource) {
    auto source = std::make_unique<QOVA_Capability>();
    fill(*source);
    const std::unique_ptr<QOVA_Capability> result = copy(*source);
    source.reset();
    EXPECT_EQ(std::string(*result), text_of_filled);
}

TEST_P(CapabilityCopy, MayBeFreedBeforeItsSource) {
    QOVA_Capability source;
    fill(source);
    copy(source).reset();
    EXPECT_EQ(std::string(source), text_of_filled);
}

struct DerivedMedia : QOVA_Media {
    DerivedMedia* clone() const override { return new DerivedMedia(*this); }
};

TEST(CapabilityCopyConstructor, KeepsTheClassOfDerivedMedia) {
    QOVA_Capability source;
    append(source, QOVA_Media::MT_AUDIO);
    append<DerivedMedia>(source, QOVA_Media::MT_VIDEO);
    const QOVA_Capability copy(source);
    const QOVA_Media& first = *copy.filteredMedia.front();
    const QOVA_Media& last = *copy.filteredMedia.back();
    EXPECT_EQ(typeid(first), typeid(QOVA_Media));
    EXPECT_EQ(typeid(last), typeid(DerivedMedia));
    expect_copied(copy, source);
}

TEST(CapabilityAssignment, MakesPlainMediaOfDerivedOnes) {
    QOVA_Capability source;
    append<DerivedMedia>(source, QOVA_Media::MT_VIDEO);
    QOVA_Capability target;
    append<DerivedMedia>(target, QOVA_Media::MT_AUDIO);
    target = source;
    const QOVA_Media& media = *target.filteredMedia.front();
    EXPECT_EQ(typeid(media), typeid(QOVA_Media));
    expect_copied(target, source);
}

TEST(CapabilityAssignment, ReturnsTheTarget) {
    QOVA_Capability target;
    const QOVA_Capability source;
    EXPECT_EQ(&(target = source), &target);
}

TEST(CapabilityAssignment, FreesWhatTheTargetOwned) {
    QOVA_Capability target;
    const std::size_t before = allocations::live();
    for (int i = 0; i < 3; ++i) {
        append_audio(append(target, QOVA_Media::MT_AUDIO), CODEC_G729);
    }
    target = QOVA_Capability();
    EXPECT_TRUE(target.filteredMedia.empty());
    EXPECT_EQ(allocations::live(), before);
}

TEST(CapabilityAssignment, ToItselfEmptiesTheMediaAndKeepsTheRest) {
    QOVA_Capability expected;
    fill(expected);
    QOVA_Capability capability;
    fill(capability);

    const QOVA_Capability& same = capability;
    EXPECT_EQ(&(capability = same), &capability);

    EXPECT_TRUE(capability.filteredMedia.empty());
    expect_same_flags_and_text(capability, expected);
    EXPECT_EQ(std::string(capability),
              "Capability(offer, Hold, silenceSuppSdp=yes)'\n"
              "\tPass-through=\n"
              "m=application 5000 udp wb\r\n"
              "a=orient:portrait\r\n"
              "\n");
}

TEST(CapabilityAssignment, ToItselfFreesTheMedia) {
    QOVA_Capability capability;
    const std::size_t before = allocations::live();
    append_audio(append(capability, QOVA_Media::MT_AUDIO), CODEC_G729);
    const QOVA_Capability& same = capability;
    capability = same;
    EXPECT_EQ(allocations::live(), before);
}

TEST(CapabilityAssignment, ToItselfLeavesACapabilityThatCanBeUsed) {
    QOVA_Capability capability;
    fill(capability);
    const QOVA_Capability& same = capability;
    capability = same;
    capability = same;
    append(capability, QOVA_Media::MT_AUDIO);
    EXPECT_EQ(capability.filteredMedia.size(), 1U);

    QOVA_Capability source;
    fill(source);
    capability = source;
    expect_copied(capability, source);
}

TEST(CapabilityAssignment, CanBeRepeated) {
    QOVA_Capability first;
    fill(first);
    QOVA_Capability second;
    fill_otherwise(second);
    QOVA_Capability target;
    for (int i = 0; i < 3; ++i) {
        target = second;
        expect_copied(target, second);
        target = first;
        expect_copied(target, first);
    }
}

// ---- Failed allocations ----

// Calls an operation in which the n-th allocation fails, for every n until it succeeds. Each time
// `prepare` makes the object that `operation` works on, and `check` looks at what a failure left.
template <typename Prepare, typename Operation, typename Check>
void for_every_failure(Prepare prepare, Operation operation, Check check) {
    bool consumed = true;
    for (std::size_t nth = 1; consumed; ++nth) {
        std::unique_ptr<QOVA_Capability> object = prepare();
        bool failed = false;
        {
            const allocations::Failure failure(nth);
            try {
                operation(object);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            consumed = allocations::Failure::consumed();
        }
        ASSERT_EQ(failed, consumed) << "allocation " << nth;
        if (failed) {
            check(std::move(object));
        } else {
            EXPECT_GT(nth, 2U) << "no failure was tried";
        }
    }
}

std::unique_ptr<QOVA_Capability> filled_otherwise() {
    auto capability = std::make_unique<QOVA_Capability>();
    fill_otherwise(*capability);
    return capability;
}

TEST(CapabilityFailure, InACopyLeaksNothing) {
    QOVA_Capability source;
    fill(source);
    append<DerivedMedia>(source, QOVA_Media::MT_VIDEO);
    const std::size_t before = allocations::live();
    for_every_failure([] { return std::unique_ptr<QOVA_Capability>(); },
                      [&](std::unique_ptr<QOVA_Capability>& copy) { copy = construct(source); },
                      [&](std::unique_ptr<QOVA_Capability> copy) {
                          EXPECT_EQ(copy, nullptr);
                          EXPECT_EQ(allocations::live(), before);
                      });
}

TEST(CapabilityFailure, InAnAssignmentLeavesATargetThatCanBeDestroyed) {
    QOVA_Capability source;
    fill(source);
    const std::size_t before = allocations::live();
    for_every_failure(
        filled_otherwise, [&](std::unique_ptr<QOVA_Capability>& target) { *target = source; },
        [&](std::unique_ptr<QOVA_Capability> target) {
            target.reset();
            EXPECT_EQ(allocations::live(), before);
        });
}

TEST(CapabilityFailure, InAnAssignmentLeavesATargetThatCanBeAssignedAgain) {
    QOVA_Capability source;
    fill(source);
    for_every_failure(
        filled_otherwise, [&](std::unique_ptr<QOVA_Capability>& target) { *target = source; },
        [&](std::unique_ptr<QOVA_Capability> target) {
            *target = source;
            EXPECT_EQ(std::string(*target), std::string(*construct(source)));
            EXPECT_EQ(std::string(*target), text_of_filled);
        });
}

TEST(CapabilityFailure, InAnAssignmentLeavesOnlyWholeMediaInTheList) {
    QOVA_Capability source;
    fill(source);
    for_every_failure(
        filled_otherwise, [&](std::unique_ptr<QOVA_Capability>& target) { *target = source; },
        [&](std::unique_ptr<QOVA_Capability> target) {
            ASSERT_LE(target->filteredMedia.size(), source.filteredMedia.size());
            auto original = source.filteredMedia.begin();
            for (const QOVA_Media* const media : target->filteredMedia) {
                ASSERT_NE(media, nullptr);
                EXPECT_EQ(std::string(*media), std::string(**original));
                ++original;
            }
        });
}

class FailedPortMove : public testing::TestWithParam<void (QOVA_Capability::*)(
                           const UDPAddr&, unsigned short, unsigned short)> {
protected:
    static std::unique_ptr<QOVA_Capability> two_movable_media() {
        auto capability = std::make_unique<QOVA_Capability>();
        append(*capability, QOVA_Media::MT_AUDIO);
        append(*capability, QOVA_Media::MT_VIDEO, QOVA_Media::MS_REJECTED);
        append(*capability, QOVA_Media::MT_FAX);
        return capability;
    }
};

TEST_P(FailedPortMove, LeavesACapabilityThatCanBeDestroyed) {
    const UDPAddr to = endpoint("192.0.2.1");
    const std::size_t before = allocations::live();
    for_every_failure(
        two_movable_media,
        [&](std::unique_ptr<QOVA_Capability>& capability) {
            (*capability.*GetParam())(to, 40000, 7000);
        },
        [&](std::unique_ptr<QOVA_Capability> capability) {
            capability.reset();
            EXPECT_EQ(allocations::live(), before);
        });
}

TEST_P(FailedPortMove, LeavesACapabilityThatCanBeAssignedAgain) {
    const UDPAddr to = endpoint("192.0.2.1");
    QOVA_Capability source;
    fill(source);
    for_every_failure(
        two_movable_media,
        [&](std::unique_ptr<QOVA_Capability>& capability) {
            (*capability.*GetParam())(to, 40000, 7000);
        },
        [&](std::unique_ptr<QOVA_Capability> capability) {
            *capability = source;
            EXPECT_EQ(std::string(*capability), text_of_filled);
        });
}

TEST_P(FailedPortMove, CanBeRepeated) {
    const UDPAddr to = endpoint("192.0.2.1");
    for_every_failure(
        two_movable_media,
        [&](std::unique_ptr<QOVA_Capability>& capability) {
            (*capability.*GetParam())(to, 40000, 7000);
        },
        [&](std::unique_ptr<QOVA_Capability> capability) {
            (*capability.*GetParam())(to, 40000, 7000);
            EXPECT_EQ(capability->filteredMedia.front()->address->ToString(), "192.0.2.1");
            EXPECT_EQ(capability->filteredMedia.back()->address->ToString(), "192.0.2.1");
        });
}

// ---- Equality ----

TEST(CapabilityEquality, HoldsBetweenEmptyOnes) {
    const QOVA_Capability a;
    const QOVA_Capability b;
    expect_equal(a, b);
}

TEST(CapabilityEquality, HoldsWithItself) {
    QOVA_Capability capability;
    fill(capability);
    expect_equal(capability, capability);
    capability.passThrough.clear();
    expect_equal(capability, capability);
}

class ComparedFlag : public testing::TestWithParam<Change<QOVA_Capability>> {};

TEST_P(ComparedFlag, MakesCapabilitiesUnequal) {
    QOVA_Capability a;
    QOVA_Capability b;
    GetParam().apply(b);
    expect_unequal(a, b);
    GetParam().apply(a);
    expect_equal(a, b);
}

// The same pass-through text does not outweigh a flag.
TEST_P(ComparedFlag, MakesCapabilitiesUnequalWhateverTheirText) {
    QOVA_Capability a;
    QOVA_Capability b;
    a.passThrough = b.passThrough = "the same";
    GetParam().apply(b);
    expect_unequal(a, b);
}

constexpr Change<QOVA_Capability> compared_flags[] = {
    {"offer", [](QOVA_Capability& capability) { capability.offer = true; }},
    {"hold", [](QOVA_Capability& capability) { capability.hold = true; }},
    {"silenceSuppSdp", [](QOVA_Capability& capability) { capability.silenceSuppSdp = true; }},
};

INSTANTIATE_TEST_SUITE_P(Capability, ComparedFlag, testing::ValuesIn(compared_flags), name_of_row);

class FieldLeftOutOfCapability : public testing::TestWithParam<Change<QOVA_Capability>> {};

TEST_P(FieldLeftOutOfCapability, LeavesCapabilitiesEqual) {
    QOVA_Capability a;
    QOVA_Capability b;
    GetParam().apply(b);
    expect_equal(a, b);
}

TEST_P(FieldLeftOutOfCapability, LeavesCapabilitiesWithTextEqual) {
    QOVA_Capability a;
    QOVA_Capability b;
    a.passThrough = b.passThrough = "the same";
    GetParam().apply(b);
    expect_equal(a, b);
}

constexpr Change<QOVA_Capability> fields_left_out[] = {
    {"marked", [](QOVA_Capability& capability) { capability.marked = true; }},
    {"spare1", [](QOVA_Capability& capability) { capability.spare1 = 1; }},
    {"spare2", [](QOVA_Capability& capability) { capability.spare2 = 1; }},
    {"spare3", [](QOVA_Capability& capability) { capability.spare3 = 1; }},
};

INSTANTIATE_TEST_SUITE_P(Capability, FieldLeftOutOfCapability, testing::ValuesIn(fields_left_out),
                         name_of_row);

TEST(CapabilityEquality, DoesNotHoldWhenOneTextIsEmpty) {
    QOVA_Capability a;
    QOVA_Capability b;
    b.passThrough = "x";
    expect_unequal(a, b);
}

TEST(CapabilityEquality, IsDecidedByTheTextsAloneWhenBothHaveOne) {
    QOVA_Capability a;
    QOVA_Capability b;
    a.passThrough = b.passThrough = "the same";
    append(a, QOVA_Media::MT_AUDIO);
    expect_equal(a, b);
    append(b, QOVA_Media::MT_FAX);
    expect_equal(a, b);
    append(b, QOVA_Media::MT_FAX);
    expect_equal(a, b);
    b.passThrough = "the samf";
    expect_unequal(a, b);
}

TEST(CapabilityEquality, ComparesEveryByteOfTheTexts) {
    QOVA_Capability a;
    QOVA_Capability b;
    a.passThrough = std::string("a\0b", 3);
    b.passThrough = std::string("a\0c", 3);
    expect_unequal(a, b);
    b.passThrough = "a";
    expect_unequal(a, b);
    b.passThrough = std::string("a\0b\0", 4);
    expect_unequal(a, b);
    b.passThrough = std::string("a\0b", 3);
    expect_equal(a, b);
}

TEST(CapabilityEquality, TakesATextOfOneNulForAText) {
    QOVA_Capability a;
    QOVA_Capability b;
    b.passThrough = std::string(1, '\0');
    expect_unequal(a, b);
    a.passThrough = std::string(1, '\0');
    append(a, QOVA_Media::MT_AUDIO);
    expect_equal(a, b);
}

TEST(CapabilityEquality, HoldsBetweenEqualMedia) {
    QOVA_Capability a;
    QOVA_Capability b;
    for (QOVA_Capability* const capability : {&a, &b}) {
        append_audio(drop_parameters(append(*capability, QOVA_Media::MT_AUDIO)), CODEC_G729);
        append_fax(drop_parameters(append(*capability, QOVA_Media::MT_FAX)), FT_T38_UDPTL);
    }
    expect_equal(a, b);
}

TEST(CapabilityEquality, SeesADifferenceInAnyMedia) {
    QOVA_Capability a;
    QOVA_Capability b;
    for (QOVA_Capability* const capability : {&a, &b}) {
        for (int i = 0; i < 3; ++i) {
            drop_parameters(append(*capability, QOVA_Media::MT_AUDIO));
        }
    }
    for (QOVA_Media* const media : b.filteredMedia) {
        media->rcvPort = 1;
        expect_unequal(a, b);
        media->rcvPort = 0;
    }
    expect_equal(a, b);
}

TEST(CapabilityEquality, WantsTheMediaInTheSameOrder) {
    QOVA_Capability a;
    QOVA_Capability b;
    drop_parameters(append(a, QOVA_Media::MT_AUDIO));
    drop_parameters(append(a, QOVA_Media::MT_FAX));
    drop_parameters(append(b, QOVA_Media::MT_FAX));
    drop_parameters(append(b, QOVA_Media::MT_AUDIO));
    expect_unequal(a, b);
}

// Unlike the lists within a media.
TEST(CapabilityEquality, WantsAsManyMedia) {
    QOVA_Capability a;
    QOVA_Capability b;
    drop_parameters(append(a, QOVA_Media::MT_AUDIO));
    expect_unequal(a, b);
    drop_parameters(append(b, QOVA_Media::MT_AUDIO));
    expect_equal(a, b);
    drop_parameters(append(b, QOVA_Media::MT_AUDIO));
    expect_unequal(a, b);
}

// The copies of the media have parameter objects of their own.
TEST(CapabilityEquality, DoesNotHoldWithACopyThatHasMedia) {
    QOVA_Capability capability;
    append(capability, QOVA_Media::MT_AUDIO);
    const QOVA_Capability copy(capability);
    expect_unequal(capability, copy);
    QOVA_Capability target;
    target = capability;
    expect_unequal(capability, target);
}

TEST(CapabilityEquality, HoldsWithACopyThatHasMediaAndText) {
    QOVA_Capability capability;
    fill(capability);
    const QOVA_Capability copy(capability);
    expect_equal(capability, copy);
}

TEST(CapabilityEquality, HoldsWithACopyWithoutMedia) {
    QOVA_Capability capability;
    capability.offer = true;
    const QOVA_Capability copy(capability);
    expect_equal(capability, copy);
}

// ---- Searches ----

TEST(EmptyCapability, FindsNothing) {
    const QOVA_Capability capability;
    EXPECT_EQ(capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN), MediaList());
    EXPECT_EQ(capability.find(QOVA_Media::MT_NIL, QOVA_Media::MS_ACCEPTED), MediaList());
    EXPECT_EQ(capability.find(CODEC_NIL), nullptr);
    EXPECT_EQ(capability.find(FT_NIL), nullptr);
    EXPECT_EQ(capability.find_mf(CODEC_NIL), nullptr);
}

TEST(EmptyCapability, IsNotMute) {
    EXPECT_FALSE(QOVA_Capability().isMute());
}

TEST(EmptyCapability, IsNotChangedByBulkEdits) {
    QOVA_Capability capability;
    capability.rejectMedia(QOVA_Media::MT_AUDIO);
    capability.ClearMediaDirection();
    capability.setPublicAddrPort(endpoint("192.0.2.1"), 40000, 7000);
    capability.setLocalAddrPort(endpoint("192.0.2.1"), 40000, 7000);
    EXPECT_EQ(std::string(capability), "Capability(answer, Not Hold, silenceSuppSdp=no)");
    expect_equal(capability, QOVA_Capability());
}

class SearchByKindAndStatus : public testing::Test {
protected:
    QOVA_Capability capability;
    QOVA_Media& accepted = append(capability, QOVA_Media::MT_AUDIO);
    QOVA_Media& fax = append(capability, QOVA_Media::MT_FAX);
    QOVA_Media& rejected = append(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_REJECTED);
    QOVA_Media& unknown = append(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN);
    QOVA_Media& accepted_too = append(capability, QOVA_Media::MT_AUDIO);
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
    fax.mediaType = static_cast<QOVA_Media::e_MediaType>(77);
    fax.mediaStatus = static_cast<QOVA_Media::e_MediaStatus>(-3);
    EXPECT_EQ(capability.find(static_cast<QOVA_Media::e_MediaType>(77),
                              static_cast<QOVA_Media::e_MediaStatus>(-3)),
              MediaList{&fax});
    EXPECT_EQ(capability.find(static_cast<QOVA_Media::e_MediaType>(77), QOVA_Media::MS_UNKNOWN),
              MediaList{&fax});
}

TEST_F(SearchByKindAndStatus, LeavesTheMediaToTheCapability) {
    const std::string before = capability;
    {
        MediaList found = capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN);
        found.clear();
    }
    EXPECT_EQ(capability.filteredMedia.size(), 5U);
    EXPECT_EQ(std::string(capability), before);
}

TEST(CapabilitySearch, ByCodecGivesTheFirstAudioMediaThatHasIt) {
    QOVA_Capability capability;
    append_audio(append(capability, QOVA_Media::MT_AUDIO), CODEC_G723);
    auto& first = append(capability, QOVA_Media::MT_AUDIO);
    append_audio(first, CODEC_OPUS);
    append_audio(first, CODEC_G729);
    auto& second = append(capability, QOVA_Media::MT_AUDIO);
    append_audio(second, CODEC_G729);
    append_audio(second, CODEC_G722);
    EXPECT_EQ(capability.find(CODEC_G729), &first);
    EXPECT_EQ(capability.find(CODEC_G722), &second);
    EXPECT_EQ(capability.find(CODEC_G711_ALAW), nullptr);
}

TEST(CapabilitySearch, ByCodecIgnoresMediaOfOtherKinds) {
    QOVA_Capability capability;
    for (const auto type :
         {QOVA_Media::MT_NIL, QOVA_Media::MT_VIDEO, QOVA_Media::MT_FAX, QOVA_Media::MT_DATA}) {
        append_audio(append(capability, type), CODEC_G729, CODEC_G729);
    }
    EXPECT_EQ(capability.find(CODEC_G729), nullptr);
    EXPECT_EQ(capability.find_mf(CODEC_G729), nullptr);
    auto& audio = append(capability, QOVA_Media::MT_AUDIO);
    const auto& attribute = append_audio(audio, CODEC_G729, CODEC_G729);
    EXPECT_EQ(capability.find(CODEC_G729), &audio);
    EXPECT_EQ(capability.find_mf(CODEC_G729), &attribute);
}

TEST(CapabilitySearch, ByTransportGivesTheFirstFaxMediaThatHasIt) {
    QOVA_Capability capability;
    append_fax(append(capability, QOVA_Media::MT_FAX), FT_T38_TCP);
    auto& first = append(capability, QOVA_Media::MT_FAX);
    append_fax(first, FT_T38_UDPTL);
    append_fax(append(capability, QOVA_Media::MT_FAX), FT_T38_UDPTL);
    EXPECT_EQ(capability.find(FT_T38_UDPTL), &first);
    EXPECT_EQ(capability.find(FT_NIL), nullptr);
}

TEST(CapabilitySearch, ByTransportIgnoresMediaOfOtherKinds) {
    QOVA_Capability capability;
    for (const auto type :
         {QOVA_Media::MT_NIL, QOVA_Media::MT_AUDIO, QOVA_Media::MT_VIDEO, QOVA_Media::MT_DATA}) {
        append_fax(append(capability, type), FT_T38_UDPTL);
    }
    EXPECT_EQ(capability.find(FT_T38_UDPTL), nullptr);
    auto& fax = append(capability, QOVA_Media::MT_FAX);
    append_fax(fax, FT_T38_UDPTL);
    EXPECT_EQ(capability.find(FT_T38_UDPTL), &fax);
}

TEST(CapabilitySearch, ByToneCodecGivesTheFirstAttribute) {
    QOVA_Capability capability;
    append_audio(append(capability, QOVA_Media::MT_AUDIO), CODEC_G722, CODEC_G723);
    auto& audio = append(capability, QOVA_Media::MT_AUDIO);
    append_audio(audio, CODEC_G722, CODEC_G729);
    const auto& first = append_audio(audio, CODEC_NIL, CODEC_G722);
    append_audio(audio, CODEC_NIL, CODEC_G722);
    append_audio(append(capability, QOVA_Media::MT_AUDIO), CODEC_NIL, CODEC_G722);
    EXPECT_EQ(capability.find_mf(CODEC_G722), &first);
    EXPECT_EQ(capability.find_mf(CODEC_OPUS), nullptr);
}

// Status plays no part in these searches.
TEST(CapabilitySearch, FindsRejectedMediaToo) {
    QOVA_Capability capability;
    auto& audio = append(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_REJECTED);
    const auto& attribute = append_audio(audio, CODEC_G729, CODEC_G722);
    auto& fax = append(capability, QOVA_Media::MT_FAX, QOVA_Media::MS_REJECTED);
    append_fax(fax, FT_T38_TCP);
    EXPECT_EQ(capability.find(CODEC_G729), &audio);
    EXPECT_EQ(capability.find_mf(CODEC_G722), &attribute);
    EXPECT_EQ(capability.find(FT_T38_TCP), &fax);
}

// ---- Mute test ----

QOVA_Media& append_audible(QOVA_Capability& capability, QOVA_Media::e_MediaType type) {
    auto& media = append(capability, type);
    set_address(media, "10.0.0.1");
    media.rcvPort = 5000;
    return media;
}

TEST(CapabilityMute, IsThereWithOneMuteAudioMedia) {
    QOVA_Capability capability;
    append_audible(capability, QOVA_Media::MT_AUDIO);
    EXPECT_FALSE(capability.isMute());
    auto& second = append_audible(capability, QOVA_Media::MT_AUDIO);
    append_audible(capability, QOVA_Media::MT_AUDIO);
    EXPECT_FALSE(capability.isMute());
    second.rcvPort = 0;
    EXPECT_TRUE(capability.isMute());
    second.rcvPort = 5000;
    set_address(second, "0.0.0.0");
    EXPECT_TRUE(capability.isMute());
}

TEST(CapabilityMute, IgnoresMediaOfOtherKinds) {
    QOVA_Capability capability;
    append(capability, QOVA_Media::MT_NIL);
    append(capability, QOVA_Media::MT_VIDEO);
    append(capability, QOVA_Media::MT_FAX);
    append(capability, QOVA_Media::MT_DATA);
    EXPECT_FALSE(capability.isMute());
    append_audible(capability, QOVA_Media::MT_AUDIO);
    EXPECT_FALSE(capability.isMute());
}

// ---- Bulk edits ----

TEST(RejectMedia, ClearsTheFirstPortsOfTheFirstMediaOfAKind) {
    QOVA_Capability capability;
    auto& fax = append(capability, QOVA_Media::MT_FAX);
    auto& first = append(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_MODIFIED);
    auto& second = append(capability, QOVA_Media::MT_AUDIO);
    for (QOVA_Media* const media : capability.filteredMedia) {
        set_ports(*media, {1, 2, 3, 4});
    }
    const std::string text_of_fax = fax;
    const std::string text_of_second = second;

    capability.rejectMedia(QOVA_Media::MT_AUDIO);

    EXPECT_EQ(ports_of(first), (Ports{0, 0, 3, 4}));
    EXPECT_EQ(first.mediaStatus, QOVA_Media::MS_MODIFIED);
    EXPECT_EQ(std::string(first),
              "\t-> media(Audio)/Modified @0.0.0.0/snd=0~3/rcv=0~4/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n");
    EXPECT_EQ(std::string(fax), text_of_fax);
    EXPECT_EQ(std::string(second), text_of_second);
}

// It does not go on to the second media when the first has been rejected before.
TEST(RejectMedia, MeetsTheSameMediaWhenRepeated) {
    QOVA_Capability capability;
    append(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_REJECTED);
    auto& second = append(capability, QOVA_Media::MT_AUDIO);
    set_ports(second, {1, 2, 3, 4});
    capability.rejectMedia(QOVA_Media::MT_AUDIO);
    capability.rejectMedia(QOVA_Media::MT_AUDIO);
    EXPECT_EQ(ports_of(second), (Ports{1, 2, 3, 4}));
}

TEST(RejectMedia, TakesAnyKind) {
    for (const int type : {0, 1, 2, 3, 4, 77}) {
        QOVA_Capability capability;
        auto& media = append(capability, static_cast<QOVA_Media::e_MediaType>(type));
        set_ports(media, {1, 2, 3, 4});
        capability.rejectMedia(static_cast<QOVA_Media::e_MediaType>(type));
        EXPECT_EQ(ports_of(media), (Ports{0, 0, 3, 4})) << type;
    }
}

TEST(RejectMedia, OfAKindThatIsNotThereChangesNothing) {
    QOVA_Capability capability;
    fill(capability);
    capability.rejectMedia(QOVA_Media::MT_VIDEO);
    capability.rejectMedia(QOVA_Media::MT_NIL);
    EXPECT_EQ(std::string(capability), text_of_filled);
}

TEST(ClearMediaDirection, ClearsBothDirectionsOfEveryAudioMediaOnly) {
    QOVA_Capability capability;
    std::list<const QOVA_Media*> audio;
    std::list<const QOVA_Media*> others;
    for (int i = 0; i < 2; ++i) {
        audio.push_back(&append(capability, QOVA_Media::MT_AUDIO));
        audio.push_back(&append(capability, QOVA_Media::MT_AUDIO, QOVA_Media::MS_REJECTED));
        others.push_back(&append(capability, QOVA_Media::MT_NIL));
        others.push_back(&append(capability, QOVA_Media::MT_VIDEO));
        others.push_back(&append(capability, QOVA_Media::MT_FAX));
        others.push_back(&append(capability, QOVA_Media::MT_DATA));
    }
    for (QOVA_Media* const media : capability.filteredMedia) {
        set_ports(*media, {1, 2, 3, 4});
    }
    capability.ClearMediaDirection();
    for (const QOVA_Media* const media : audio) {
        EXPECT_FALSE(media->bsnd);
        EXPECT_FALSE(media->brcv);
        EXPECT_EQ(ports_of(*media), (Ports{1, 2, 3, 4}));
    }
    for (const QOVA_Media* const media : others) {
        EXPECT_TRUE(media->bsnd);
        EXPECT_TRUE(media->brcv);
    }
}

TEST(ClearMediaDirection, LeavesDirectionsThatAreClear) {
    QOVA_Capability capability;
    auto& audio = append(capability, QOVA_Media::MT_AUDIO);
    audio.bsnd = false;
    auto& video = append(capability, QOVA_Media::MT_VIDEO);
    video.brcv = false;
    capability.ClearMediaDirection();
    EXPECT_FALSE(audio.bsnd);
    EXPECT_FALSE(audio.brcv);
    EXPECT_TRUE(video.bsnd);
    EXPECT_FALSE(video.brcv);
}

// ---- Port plans ----

TEST(PortPlan, MovesToThePublicPlanAndBack) {
    QOVA_Capability capability;
    auto& audio = append(capability, QOVA_Media::MT_AUDIO);
    auto& fax = append(capability, QOVA_Media::MT_FAX);
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

TEST(PortPlan, WrapsAroundInsteadOfStoppingAtTheEnds) {
    QOVA_Capability capability;
    auto& high = append(capability, QOVA_Media::MT_AUDIO);
    auto& low = append(capability, QOVA_Media::MT_AUDIO);
    set_ports(high, {32000, 32000, 32000, 32000});
    set_ports(low, {100, 100, 100, 100});
    capability.setPublicAddrPort(endpoint("192.0.2.1"), 1000, 6666);
    EXPECT_EQ(ports_of(high), (Ports{1000, 1000, 1000, 1000}));
    EXPECT_EQ(ports_of(low), (Ports{34636, 34636, 34636, 34636}));
    capability.setLocalAddrPort(endpoint("192.0.2.1"), 1000, 6666);
    EXPECT_EQ(ports_of(high), (Ports{32000, 32000, 32000, 32000}));
    EXPECT_EQ(ports_of(low), (Ports{100, 100, 100, 100}));
}

TEST(PortPlan, ShiftsPortZeroLikeAnyOther) {
    QOVA_Capability capability;
    auto& audio = append(capability, QOVA_Media::MT_AUDIO);
    auto& fax = append(capability, QOVA_Media::MT_FAX);
    capability.setPublicAddrPort(endpoint("192.0.2.1"), 32001, 6665);
    EXPECT_EQ(ports_of(audio), (Ports{1, 1, 1, 1}));
    EXPECT_EQ(ports_of(fax), (Ports{65535, 65535, 65535, 65535}));
}

TEST(PortPlan, ShiftsTheOtherWayToTheLocalPlan) {
    QOVA_Capability capability;
    auto& audio = append(capability, QOVA_Media::MT_AUDIO);
    auto& fax = append(capability, QOVA_Media::MT_FAX);
    capability.setLocalAddrPort(endpoint("192.0.2.1"), 32001, 6665);
    EXPECT_EQ(ports_of(audio), (Ports{65535, 65535, 65535, 65535}));
    EXPECT_EQ(ports_of(fax), (Ports{1, 1, 1, 1}));
}

TEST(PortPlan, ComesBackFromEveryBase) {
    QOVA_Capability capability;
    auto& audio = append(capability, QOVA_Media::MT_AUDIO);
    auto& fax = append(capability, QOVA_Media::MT_FAX);
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

using PortMove = void (QOVA_Capability::*)(const UDPAddr&, unsigned short, unsigned short);

class EitherPortPlan : public testing::TestWithParam<PortMove> {
protected:
    void move(const UDPAddr& to, unsigned short audio_port, unsigned short fax_port) {
        (capability.*GetParam())(to, audio_port, fax_port);
    }

    QOVA_Capability capability;
};

const auto either_plan =
    testing::Values(&QOVA_Capability::setPublicAddrPort, &QOVA_Capability::setLocalAddrPort);
const auto name_of_plan = [](const auto& plan) {
    return plan.param == &QOVA_Capability::setPublicAddrPort ? "Public" : "Local";
};
INSTANTIATE_TEST_SUITE_P(To, EitherPortPlan, either_plan, name_of_plan);
INSTANTIATE_TEST_SUITE_P(To, FailedPortMove, either_plan, name_of_plan);

TEST_P(EitherPortPlan, GivesOtherKindsTheAddressAndLeavesTheirPorts) {
    for (const int type : {0, 2, 4, 5, -1}) {
        set_ports(append(capability, static_cast<QOVA_Media::e_MediaType>(type)), {1, 2, 3, 4});
    }
    move(endpoint("192.0.2.1"), 40000, 7000);
    for (const QOVA_Media* const media : capability.filteredMedia) {
        EXPECT_EQ(media->address->ToString(), "192.0.2.1");
        EXPECT_EQ(ports_of(*media), (Ports{1, 2, 3, 4}));
    }
}

TEST_P(EitherPortPlan, LeavesRejectedMediaTheirAddressObjectAndPorts) {
    for (const auto type : {QOVA_Media::MT_AUDIO, QOVA_Media::MT_FAX, QOVA_Media::MT_VIDEO}) {
        auto& media = append(capability, type, QOVA_Media::MS_REJECTED);
        set_ports(media, {1, 2, 3, 4});
        set_address(media, "10.0.0.1");
    }
    std::list<const INetAddress*> addresses;
    for (const QOVA_Media* const media : capability.filteredMedia) {
        addresses.push_back(media->address);
    }
    move(endpoint("192.0.2.1"), 40000, 7000);
    for (const QOVA_Media* const media : capability.filteredMedia) {
        EXPECT_EQ(media->address, addresses.front());
        addresses.pop_front();
        EXPECT_EQ(media->address->ToString(), "10.0.0.1");
        EXPECT_EQ(ports_of(*media), (Ports{1, 2, 3, 4}));
    }
}

TEST_P(EitherPortPlan, MovesMediaOfEveryOtherStatus) {
    for (const int status : {0, 1, 3, 4, -1}) {
        append(capability, QOVA_Media::MT_AUDIO, static_cast<QOVA_Media::e_MediaStatus>(status));
    }
    move(endpoint("192.0.2.1"), 32000 + 5, 6666);
    const unsigned short shifted =
        GetParam() == &QOVA_Capability::setPublicAddrPort ? 5 : 65536 - 5;
    for (const QOVA_Media* const media : capability.filteredMedia) {
        EXPECT_EQ(media->address->ToString(), "192.0.2.1");
        EXPECT_EQ(ports_of(*media), (Ports{shifted, shifted, shifted, shifted}));
    }
}

TEST_P(EitherPortPlan, LeavesPortsWhereTheBasesAreTheLocalOnes) {
    auto& audio = append(capability, QOVA_Media::MT_AUDIO);
    auto& fax = append(capability, QOVA_Media::MT_FAX);
    set_ports(audio, {1, 2, 3, 4});
    set_ports(fax, {5, 6, 7, 8});
    move(endpoint("192.0.2.1"), 32000, 6666);
    EXPECT_EQ(ports_of(audio), (Ports{1, 2, 3, 4}));
    EXPECT_EQ(ports_of(fax), (Ports{5, 6, 7, 8}));
}

TEST_P(EitherPortPlan, GivesEachMediaACopyOfTheAddress) {
    append(capability, QOVA_Media::MT_AUDIO);
    append(capability, QOVA_Media::MT_AUDIO);
    {
        const UDPAddr to = endpoint("2001:db8::1");
        move(to, 40000, 7000);
        EXPECT_NE(capability.filteredMedia.front()->address, to.ipAddress);
        EXPECT_NE(capability.filteredMedia.back()->address, to.ipAddress);
    }
    EXPECT_NE(capability.filteredMedia.front()->address, capability.filteredMedia.back()->address);
    EXPECT_EQ(capability.filteredMedia.front()->address->ToString(), "2001:db8::1");
    EXPECT_EQ(capability.filteredMedia.back()->address->ToString(), "2001:db8::1");
}

TEST_P(EitherPortPlan, FillsANullAddress) {
    auto& media = append(capability, QOVA_Media::MT_AUDIO);
    delete media.address;
    media.address = nullptr;
    move(endpoint("192.0.2.1"), 40000, 7000);
    ASSERT_NE(media.address, nullptr);
    EXPECT_EQ(media.address->ToString(), "192.0.2.1");
}

TEST_P(EitherPortPlan, DoesNotUseThePortOfTheEndpoint) {
    auto& audio = append(capability, QOVA_Media::MT_AUDIO);
    move(UDPAddr(address("192.0.2.1"), 9999), 32000, 6666);
    EXPECT_EQ(ports_of(audio), (Ports{0, 0, 0, 0}));
}

TEST_P(EitherPortPlan, ChangesNothingElse) {
    fill(capability);
    auto& audio = *capability.filteredMedia.front();
    move(endpoint("10.0.0.1"), 32000, 6666);
    EXPECT_EQ(std::string(capability), text_of_filled);
    EXPECT_EQ(capability.find(CODEC_G729), &audio);
}

// ---- Log text ----

TEST(CapabilityText, OfAnEmptyCapability) {
    EXPECT_EQ(std::string(QOVA_Capability()), "Capability(answer, Not Hold, silenceSuppSdp=no)");
}

TEST(CapabilityText, OfAFilledCapability) {
    QOVA_Capability capability;
    fill(capability);
    EXPECT_EQ(std::string(capability), text_of_filled);
}

class FlagsInText : public testing::TestWithParam<Row<Change<QOVA_Capability>>> {};

TEST_P(FlagsInText, StandInTheSummary) {
    QOVA_Capability capability;
    GetParam().value.apply(capability);
    EXPECT_EQ(std::string(capability), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    With, FlagsInText,
    testing::Values(
        Row<Change<QOVA_Capability>>{"Marked", flags[0],
                                     "Capability(answer, Not Hold, silenceSuppSdp=no)'"},
        Row<Change<QOVA_Capability>>{"Offer", flags[1],
                                     "Capability(offer, Not Hold, silenceSuppSdp=no)"},
        Row<Change<QOVA_Capability>>{"Hold", flags[2],
                                     "Capability(answer, Hold, silenceSuppSdp=no)"},
        Row<Change<QOVA_Capability>>{"Spare1", flags[3],
                                     "Capability(answer, Not Hold, silenceSuppSdp=no)"},
        Row<Change<QOVA_Capability>>{"Spare2", flags[4],
                                     "Capability(answer, Not Hold, silenceSuppSdp=no)"},
        Row<Change<QOVA_Capability>>{"Spare3", flags[5],
                                     "Capability(answer, Not Hold, silenceSuppSdp=no)"},
        Row<Change<QOVA_Capability>>{"SilenceSuppression", flags[6],
                                     "Capability(answer, Not Hold, silenceSuppSdp=yes)"}),
    name_of_row);

TEST(CapabilityText, EndsWithTheLastMediaWithoutAPassThroughText) {
    QOVA_Capability capability;
    fill(capability);
    capability.passThrough.clear();
    EXPECT_EQ(std::string(capability),
              "Capability(offer, Hold, silenceSuppSdp=yes)'\n"
              "\tFiltered=\n" +
                  media_of_filled);
}

TEST(CapabilityText, HasNoMediaHeaderWithoutMedia) {
    QOVA_Capability capability;
    capability.passThrough = "P";
    EXPECT_EQ(std::string(capability),
              "Capability(answer, Not Hold, silenceSuppSdp=no)\n"
              "\tPass-through=\n"
              "P\n");
}

TEST(CapabilityText, PutsNothingBetweenMedia) {
    QOVA_Capability capability;
    append(capability, QOVA_Media::MT_AUDIO);
    append(capability, QOVA_Media::MT_VIDEO);
    append(capability, QOVA_Media::MT_AUDIO);
    EXPECT_EQ(std::string(capability),
              "Capability(answer, Not Hold, silenceSuppSdp=no)\n"
              "\tFiltered=\n"
              "\t-> media(Audio)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n"
              "\t-> media(Video)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n"
              "\t-> media(Audio)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n");
}

TEST(CapabilityText, CopiesEveryByteOfThePassThroughText) {
    QOVA_Capability capability;
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    capability.passThrough = bytes + "\n\n";
    EXPECT_EQ(std::string(capability),
              "Capability(answer, Not Hold, silenceSuppSdp=no)\n"
              "\tPass-through=\n" +
                  bytes + "\n\n\n");
}

TEST(CapabilityText, ShowsAPassThroughTextOfOneNul) {
    QOVA_Capability capability;
    capability.passThrough = std::string(1, '\0');
    EXPECT_EQ(std::string(capability),
              "Capability(answer, Not Hold, silenceSuppSdp=no)\n"
              "\tPass-through=\n" +
                  std::string("\0\n", 2));
}

}  // namespace
