// Every operation of every class, with every allocation failing in turn: the caller gets
// std::bad_alloc, nothing leaks, the source stays as it was, and the target can be used again.

#include "failure_sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <list>
#include <memory>
#include <new>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "building_blocks.h"

namespace {

using failure_sweep::Findings;
using failure_sweep::Make;
using failure_sweep::Operation;

// ---- Objects ----

template <class Object>
std::shared_ptr<Object> copied(const Object& object) {
    return std::make_shared<Object>(object);
}

std::shared_ptr<UDPAddr> copied(const char* address) {
    return std::make_shared<UDPAddr>(endpoint(address));
}

// Full, and with objects of derived classes, which have no equal.
template <class Object>
std::shared_ptr<Object> fullest() {
    return full<Object>();
}

template <>
std::shared_ptr<QOVA_Media> fullest() {
    std::shared_ptr<QOVA_Media> media = full<QOVA_Media>();
    append<OwnAttribute>(media->attributes);
    fill(append<Derived<QOVA_Crypto>>(media->cryptos));
    return media;
}

template <>
std::shared_ptr<QOVA_Capability> fullest() {
    std::shared_ptr<QOVA_Capability> capability = full<QOVA_Capability>();
    for (QOVA_Media* const media : capability->filteredMedia) {
        *media = *fullest<QOVA_Media>();
    }
    append<QOVA_Media>(capability->filteredMedia) = *fullest<QOVA_Media>();
    capability->filteredMedia.back()->mediaType = QOVA_Media::MT_FAX;
    return capability;
}

// ---- What a failure leaves half done ----

// The parts of an object, as texts, in the order in which an operation does them.
using Parts = std::vector<std::string>;

template <class Owned>
std::string part(const Owned* owned) {
    return owned == nullptr ? "" : members(*owned) + '}';
}

template <class Owned>
std::string part(const std::list<Owned*>& list) {
    std::string text;
    for (const Owned* const owned : list) {
        text += part(owned);
    }
    return text;
}

std::string part(std::initializer_list<long long> numbers) {
    return testing::PrintToString(std::vector<long long>(numbers));
}

std::string part(const INetAddress* address) {
    return address == nullptr ? "" : address->ToString();
}

std::string directions_and_ports(const QOVA_Media& media) {
    return part(
        {media.bsnd, media.brcv, media.sndPort, media.rcvPort, media.sndPort2, media.rcvPort2});
}

Parts parts(const QOVA_Media& media) {
    return {part({media.mediaStatus, media.mediaType}),
            part(media.address),
            directions_and_ports(media),
            part(media.amrwbParam),
            part(media.opusParam),
            part(media.attributes),
            part({media.cryptoCount}),
            part(media.cryptos)};
}

Parts parts(const QOVA_Capability& set) {
    return {part({set.marked, set.offer, set.hold, set.spare1, set.silenceSuppSdp}),
            set.passThrough, part({set.spare2, set.spare3}), part(set.filteredMedia)};
}

Parts parts(const UDPAddr& address) {
    return {part(address.ipAddress)};
}

// Of the others, nothing is promised.
template <class Object>
Parts parts(const Object& /*object*/) {
    return {};
}

Parts moved_parts(const QOVA_Capability& set) {
    Parts result;
    for (const QOVA_Media* const media : set.filteredMedia) {
        result.push_back(part(media->address));
        result.push_back(directions_and_ports(*media));
    }
    return result;
}

// What became of each part: n for new, o for old, - for gone or not all there.
std::string states(const Parts& now, const Parts& after, const Parts& before) {
    std::string result;
    for (std::size_t i = 0; i < now.size(); ++i) {
        const bool begun = after[i].compare(0, now[i].size(), now[i]) == 0;
        result += now[i] == after[i] ? 'n' : begun ? '-' : now[i] == before[i] ? 'o' : '?';
    }
    return result;
}

using Stages = std::set<std::string>;

std::string complaint_about(const std::string& state, const Stages& stages) {
    return stages.count(state) != 0 ? "" : "it stops at " + state;
}

// Changes what is copied, lest old and new be the same.
void change(QOVA_Media& media) {
    media.mediaType = QOVA_Media::MT_DATA;
    set_address(media, "192.0.2.1");
    media.rcvPort2 = 1;
    media.amrwbParam->crc = 0;
    media.opusParam->maxPtime = 1;
    media.cryptoCount = 1;
}

void change(QOVA_Capability& capability) {
    capability.offer = false;
    capability.spare3 = 1;
}

template <class Object>
void change(Object& /*object*/) {}

// ---- Operations ----

// Makes an object, and looks at none.
template <class Call>
Make making(Call call) {
    return [=] {
        Operation operation;
        operation.run = [=] { call(); };
        return operation;
    };
}

// Reads an object.
template <class Object, class Call>
Make reading(Call call, std::shared_ptr<Object> (*make)() = fullest<Object>) {
    return [=] {
        const auto object = make();
        Operation operation;
        operation.run = [=] { call(*object); };
        operation.source = [=] { return members(*object, PLACES); };
        return operation;
    };
}

// Changes an object of its own, and looks at none.
template <class Object, class Call>
Make editing(Call call) {
    return [=] {
        Operation operation;
        operation.run = [=, object = fullest<Object>()] { call(*object); };
        return operation;
    };
}

// Assigns one object to another.
template <class Object>
Make assigning(std::shared_ptr<Object> from, std::shared_ptr<Object> old,
               const Stages& stages = {""}) {
    return [=] {
        const auto to = copied(*old);
        Operation operation;
        operation.run = [=] { *to = *from; };
        operation.source = [=] { return members(*from, PLACES); };
        operation.after_failure = [=] {
            return complaint_about(states(parts(*to), parts(*from), parts(*old)), stages);
        };
        operation.result = [=] {
            return members(*to) == members(*from) ? "" : "the target differs from the source";
        };
        return operation;
    };
}

// Moves a capability of three media.
Make moving(void (QOVA_Capability::*move)(const UDPAddr&, unsigned short, unsigned short)) {
    return [=] {
        const auto before = fullest<QOVA_Capability>();
        const auto after = copied(*before);
        const auto moved = copied(*before);
        const auto to = copied("2001:db8:6666:7777:8888:9999:0:1");
        (*after.*move)(*to, 40000, 7000);
        Operation operation;
        operation.run = [=] { (*moved.*move)(*to, 40000, 7000); };
        operation.source = [=] { return members(*to, PLACES); };
        operation.after_failure = [=] {
            return complaint_about(
                states(moved_parts(*moved), moved_parts(*after), moved_parts(*before)),
                {"-ooooo", "nn-ooo", "nnnn-o"});
        };
        operation.recover = [=] { *moved = *before; };
        operation.result = [=] {
            return members(*moved) == members(*after) ? "" : "not every media is moved";
        };
        return operation;
    };
}

// ---- The sweeps ----

class FailureSweep : public testing::Test {
protected:
    // An operation that allocates must have been seen to fail, and no other may have failed.
    enum Expected { ALLOCATES_NOTHING, ALLOCATES };

    static void TearDownTestSuite() { std::cout << "failure points in all: " << total << '\n'; }

    static void check(Expected expected, const std::string& name, const Make& operation) {
        const Findings findings = failure_sweep::sweep(operation);
        std::cout << "failure points of " << name << ": " << findings.points << '\n';
        total += findings.points;
        EXPECT_EQ(findings.points != 0, expected == ALLOCATES) << name;
        for (const std::string& complaint : findings.complaints) {
            ADD_FAILURE() << name << ", " << complaint;
        }
    }

    template <class Object>
    static void check_construction(Expected expected, const std::string& name) {
        check(expected, name + " construction", making([] { Object made; }));
    }

    template <class Object>
    static void check_copy(Expected expected, const std::string& name) {
        check(expected, name + " copy",
              reading<Object>([](const Object& object) { const Object copy(object); }));
    }

    template <class Object>
    static void check_clone(const std::string& name) {
        check(ALLOCATES, name + " clone", reading<Object>([](const Object& object) {
                  const std::unique_ptr<const Object> copy(
                      dynamic_cast<const Object*>(object.clone()));
              }));
    }

    template <class Object>
    static void check_assignments(Expected into_empty, Expected into_full, const std::string& name,
                                  const Stages& stages = {""}) {
        check(into_empty, name + " assignment into an empty target",
              assigning(fullest<Object>(), std::make_shared<Object>(), stages));
        const auto old = fullest<Object>();
        change(*old);
        check(into_full, name + " assignment into a full target",
              assigning(fullest<Object>(), old, stages));
    }

    // Compares with itself, to the end, an object that holds nothing without an equal.
    template <class Object>
    static void check_equality(const std::string& name, std::shared_ptr<Object> (*make)()) {
        const auto equals_itself = [](const Object& object) { return object == object; };
        EXPECT_TRUE(equals_itself(*make())) << name;
        check(ALLOCATES, name, reading<Object>(equals_itself, make));
    }

    template <class Object>
    static void check_text(const std::string& name) {
        check(ALLOCATES, name + " text",
              reading<Object>([](const Object& object) { const std::string text(object); }));
    }

    template <class Attribute>
    static void check_attribute(const std::string& name) {
        check_construction<Attribute>(ALLOCATES_NOTHING, name);
        check_copy<Attribute>(ALLOCATES_NOTHING, name);
        check_clone<Attribute>(name);
        check_assignments<Attribute>(ALLOCATES_NOTHING, ALLOCATES_NOTHING, name);
        check(ALLOCATES_NOTHING, name + " equality",
              reading<Attribute>([](const QOVA_MediaAttribute& object) {
                  const Attribute other;
                  return object == object || object == other;
              }));
        check_text<Attribute>(name);
    }

private:
    static std::size_t total;
};

std::size_t FailureSweep::total = 0;

TEST_F(FailureSweep, NamesOfEnumerations) {
    // The longest of them fit into a string's own room.
    check(ALLOCATES_NOTHING, "codec name", making([] { return ToString(payload_type(127)); }));
    check(ALLOCATES_NOTHING, "early-media name",
          making([] { return ToString(static_cast<QOVA_EarlyMedia>(-1)); }));
    check(ALLOCATES_NOTHING, "media-type name",
          making([] { return QOVA_Media::ToString(QOVA_Media::MT_AUDIO); }));
    check(ALLOCATES_NOTHING, "media-status name",
          making([] { return QOVA_Media::ToString(QOVA_Media::MS_ACCEPTED); }));
}

TEST_F(FailureSweep, Attributes) {
    check_attribute<QOVA_AudioAttribute>("audio attribute");
    check_attribute<QOVA_FaxAttribute>("fax attribute");
    check_attribute<QOVA_VideoAttribute>("video attribute");
    check_attribute<QOVA_DataAttribute>("data attribute");
}

TEST_F(FailureSweep, CryptoLines) {
    using Crypto = QOVA_Crypto;
    check_construction<Crypto>(ALLOCATES_NOTHING, "crypto");
    check_copy<Crypto>(ALLOCATES, "crypto");
    check_clone<Crypto>("crypto");
    check(ALLOCATES_NOTHING, "crypto equality",
          reading<Crypto>([](const Crypto& object) { return object == object; }));
    check_text<Crypto>("crypto");
    check(ALLOCATES, "empty crypto text", making([] { const std::string text{Crypto()}; }));
}

TEST_F(FailureSweep, Media) {
    using Media = QOVA_Media;
    check_construction<Media>(ALLOCATES, "media");
    check_copy<Media>(ALLOCATES, "media");
    check_clone<Media>("media");
    check_assignments<Media>(ALLOCATES, ALLOCATES, "media",
                             {"n-ooo-o-", "nnn-o-o-", "nnnn--o-", "nnnnn-o-", "nnnnnnn-"});
    check(ALLOCATES_NOTHING, "media self-assignment",
          editing<Media>([](Media& object) { object = static_cast<const Media&>(object); }));
    check_equality<Media>("media equality", [] { return std::shared_ptr<Media>(full<Media>()); });
    check(ALLOCATES_NOTHING, "media searches", reading<Media>([](const Media& object) {
              return object.find(CODEC_OPUS) != nullptr || object.find(FT_T38_TCP) != nullptr ||
                     object.find_mf(CODEC_OPUS) != nullptr ||
                     object.find(Media::AT_DATA, Media::MS_UNKNOWN) != nullptr || object.isMute();
          }));
    check_text<Media>("media");
}

TEST_F(FailureSweep, Capabilities) {
    using Set = QOVA_Capability;
    check_construction<Set>(ALLOCATES_NOTHING, "capability");
    check_copy<Set>(ALLOCATES, "capability");
    check_assignments<Set>(ALLOCATES, ALLOCATES, "capability", {"n-o-", "nnn-"});
    check(ALLOCATES_NOTHING, "capability self-assignment",
          editing<Set>([](Set& object) { object = static_cast<const Set&>(object); }));
    check_equality<Set>("capability equality by media", [] {
        const auto capability = std::make_shared<Set>();
        for (int i = 0; i < 3; ++i) {
            fill(append<QOVA_Media>(capability->filteredMedia));
        }
        return capability;
    });
    check(ALLOCATES_NOTHING, "capability equality by pass-through text",
          reading<Set>([](const Set& object) { return object == object; }));
    check(ALLOCATES, "capability find by type and status", reading<Set>([](const Set& object) {
              return object.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN);
          }));
    check(ALLOCATES_NOTHING, "capability searches", reading<Set>([](const Set& object) {
              return object.find(CODEC_OPUS) != nullptr || object.find(FT_T38_TCP) != nullptr ||
                     object.find_mf(CODEC_OPUS) != nullptr || object.isMute();
          }));
    check_text<Set>("capability");
    check(ALLOCATES, "empty capability text", making([] { const std::string text{Set()}; }));
}

TEST_F(FailureSweep, BulkEditsOfCapabilities) {
    check(ALLOCATES_NOTHING, "capability rejectMedia",
          editing<QOVA_Capability>(
              [](QOVA_Capability& object) { object.rejectMedia(QOVA_Media::MT_FAX); }));
    check(ALLOCATES_NOTHING, "capability ClearMediaDirection",
          editing<QOVA_Capability>([](QOVA_Capability& object) { object.ClearMediaDirection(); }));
    check(ALLOCATES, "capability setPublicAddrPort", moving(&QOVA_Capability::setPublicAddrPort));
    check(ALLOCATES, "capability setLocalAddrPort", moving(&QOVA_Capability::setLocalAddrPort));
}

TEST_F(FailureSweep, Addresses) {
    check(ALLOCATES, "IPv4 address Clone",
          making([] { delete INetAddress::Clone(&IPAddress::IpAddressAny); }));
    const std::string text = "2001:db8:1111:2222:3333:4444:5555:6666";
    const std::string wrong = text + "000";
    const IPAddress v6 = ip(text);
    check(ALLOCATES, "IPv6 address Clone", making([=] { delete INetAddress::Clone(&v6); }));
    check(ALLOCATES_NOTHING, "IPv4 address ToString",
          making([] { return ip("255.255.255.255").ToString(); }));
    check(ALLOCATES, "IPv6 address ToString", making([=] { return v6.ToString(); }));
    check(ALLOCATES_NOTHING, "address comparison and Parse", making([&] {
              IPAddress parsed;
              return v6.IsEqual(text) && !(static_cast<const INetAddress&>(v6) != text) &&
                     IPAddress::Parse(text, parsed) && !IPAddress::Parse(wrong, parsed);
          }));
    check(ALLOCATES, "UDP address construction", making([=] { const UDPAddr made(v6, 5060); }));
    check(ALLOCATES, "UDP address copy",
          reading<UDPAddr>([](const UDPAddr& object) { const UDPAddr copy(object); },
                           [] { return copied("192.0.2.1"); }));
    check(ALLOCATES, "UDP address assignment",
          assigning(copied("192.0.2.1"), copied("192.0.2.2"), {"o"}));
}

TEST_F(FailureSweep, SdpParameters) {
    using AmrWb = Sdp::Sdp_Amrwb_Param;
    using Opus = Sdp::Sdp_Opus_Param;
    check_construction<AmrWb>(ALLOCATES_NOTHING, "AMR-WB");
    check_copy<AmrWb>(ALLOCATES, "AMR-WB");
    // The list of the target keeps its nodes.
    check_assignments<AmrWb>(ALLOCATES, ALLOCATES_NOTHING, "AMR-WB");
    check_text<AmrWb>("AMR-WB");
    check_construction<Opus>(ALLOCATES_NOTHING, "Opus");
    check_copy<Opus>(ALLOCATES_NOTHING, "Opus");
    check_assignments<Opus>(ALLOCATES_NOTHING, ALLOCATES_NOTHING, "Opus");
    check_text<Opus>("Opus");
    check(ALLOCATES, "crypto suite's name",
          making([] { return Sdp::CryptoParser::enumToAlgo(CS_AES_CM_128_HMAC_SHA1_80); }));
    const std::string name = "AES_CM_128_HMAC_SHA1_80";
    check(ALLOCATES_NOTHING, "crypto suite of a name",
          making([&] { return Sdp::CryptoParser::algoToEnum(name); }));
}

// ---- The order of blocks, which tells what is made before what ----

using Sizes = std::vector<std::size_t>;

const Sizes blocks_of_a_default_media = {sizeof(IPAddress), sizeof(Sdp::Sdp_Amrwb_Param),
                                         sizeof(Sdp::Sdp_Opus_Param)};

TEST(OrderOfBlocks, OfADefaultMediaIsAddressAmrwbOpus) {
    EXPECT_EQ(failure_sweep::sweep(making([] { QOVA_Media(); })).sizes, blocks_of_a_default_media);
}

TEST(OrderOfBlocks, OfACopyOfAMediaIsTheSame) {
    const QOVA_Media source;
    EXPECT_EQ(failure_sweep::sweep(making([&] { QOVA_Media copy(source); })).sizes,
              blocks_of_a_default_media);
}

// ---- The sweep itself: it finds what it is there to find ----

struct Free {
    void operator()(void* block) const { operator delete(block); }
};
// Not made by an expression that a compiler may leave out.
using Block = std::unique_ptr<void, Free>;

Block block(std::size_t size) {
    return Block(operator new(size));
}

struct OwnException : std::bad_alloc {};

// Makes and frees two blocks; `fault` runs when there is no memory for the second.
Operation control(const std::function<void(Block& first)>& fault) {
    Operation operation;
    operation.run = [=] {
        Block first = block(1);
        try {
            block(2);
        } catch (const std::bad_alloc&) {
            fault(first);
        }
    };
    return operation;
}

void expect_complaint(const Make& make, const std::string& expected) {
    const std::vector<std::string> complaints = failure_sweep::sweep(make).complaints;
    EXPECT_EQ(std::count(complaints.begin(), complaints.end(), expected) != 0, true)
        << testing::PrintToString(complaints);
}

void fail(const Block& /*first*/) {
    throw;
}

TEST(FailureSweepItself, CountsEveryAllocationTwice) {
    const Findings findings = failure_sweep::sweep([] { return control(fail); });
    EXPECT_EQ(findings.points, 4U);
    EXPECT_EQ(findings.sizes, (Sizes{1, 2}));
    EXPECT_TRUE(findings.complaints.empty());
}

TEST(FailureSweepItself, CatchesALeak) {
    std::list<Block> leaks;  // kept, to be freed
    expect_complaint(
        [&] {
            return control([&](Block& first) {
                leaks.emplace_back();
                leaks.back() = std::move(first);
                throw std::bad_alloc();
            });
        },
        "allocation 2: blocks leak");
}

TEST(FailureSweepItself, CatchesASwallowedFailure) {
    expect_complaint([] { return control([](Block&) {}); },
                     "allocation 2: the failure is swallowed");
}

// A stream takes the exception for itself and cuts its text short.
TEST(FailureSweepItself, CatchesATextThatAStreamCutShort) {
    expect_complaint(making([] {
                         std::ostringstream out;
                         for (int i = 0; i < 100; ++i) {
                             out << "a line of a text that grows and grows\n";
                         }
                         return out.str();
                     }),
                     "allocation 1: the failure is swallowed");
}

TEST(FailureSweepItself, CatchesAChangedSource) {
    expect_complaint(
        [] {
            const auto changed = std::make_shared<bool>(false);
            Operation operation = control([=](const Block& first) {
                *changed = true;
                fail(first);
            });
            operation.source = [=] { return *changed ? "after" : "before"; };
            return operation;
        },
        "allocation 2: the source is changed");
}

TEST(FailureSweepItself, CatchesAnotherException) {
    const std::string complaint = "allocation 2: another exception than bad_alloc";
    expect_complaint([] { return control([](Block&) { throw std::runtime_error("no memory"); }); },
                     complaint);
    expect_complaint([] { return control([](Block&) { throw OwnException(); }); }, complaint);
}

TEST(FailureSweepItself, CatchesAnOperationThatCannotBeRepeated) {
    expect_complaint(
        [] {
            const auto failed = std::make_shared<bool>(false);
            Operation operation;
            operation.run = [=] {
                if (*failed) {
                    throw std::bad_alloc();
                }
                *failed = true;
                block(1);
            };
            return operation;
        },
        "allocation 1: it fails for good");
}

TEST(FailureSweepItself, CatchesABrokenTarget) {
    expect_complaint(
        [] {
            Operation operation = control(fail);
            operation.after_failure = [] { return "broken"; };
            return operation;
        },
        "allocation 1: broken");
}

TEST(FailureSweepItself, CatchesAWrongResult) {
    expect_complaint(
        [] {
            Operation operation = control(fail);
            operation.result = [] { return "wrong"; };
            return operation;
        },
        "allocation 3: wrong");
}

}  // namespace
