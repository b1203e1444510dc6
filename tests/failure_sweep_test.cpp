// Every operation that allocates, with every allocation failing in turn: the caller gets
// std::bad_alloc, nothing leaks, the source stays as it was, and the target can be assigned again
// and destroyed.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <typeinfo>
#include <vector>

#include "allocations.h"
#include "building_blocks.h"
#include "derived.h"
#include "describe.h"

namespace {

using allocations::Failure;

// ---- The sweep ----

// The functions keep the objects that they use alive.
struct Operation {
    std::function<void()> run;
    std::function<std::string()> source = [] { return std::string(); };  // never changes
    std::function<bool()> is_complete = [] { return true; };             // after a success
};

std::string run_failing(const Operation& operation, bool again, bool& reached, std::size_t nth,
                        Failure::Extent extent) {
    const std::string source = operation.source();
    std::string thrown;
    try {
        const Failure failure(nth, extent);
        operation.run();
    } catch (const std::exception& exception) {
        thrown = typeid(exception).name();
    }
    reached = Failure::consumed();
    // Exactly the allocator's exception: another one could reveal what the operation was copying.
    if (thrown != (reached ? typeid(allocations::Refusal).name() : "")) {
        return thrown.empty() ? "the failure is swallowed" : "another exception: " + thrown;
    }
    if (reached && again) {
        operation.run();
    }
    if (operation.source() != source) {
        return "the source is changed";
    }
    return (again || !reached) && !operation.is_complete() ? "the target is not complete" : "";
}

struct Findings {
    std::vector<std::size_t> blocks;  // the sizes of the failed allocations, in order
    std::vector<std::string> complaints;
};

// Makes the first allocation fail, then the second and so on, until the operation makes fewer
// allocations. Either only this allocation fails, or all later ones fail, too. Each run has new
// objects, and destroys them at once or after it repeats the operation successfully.
template <class Make>
Findings sweep(Make make) {
    Findings findings;
    bool reached = true;
    for (std::size_t nth = 1; reached; ++nth) {
        for (const auto extent : {Failure::ONCE, Failure::FROM_THERE_ON}) {
            for (const bool again : {false, true}) {
                const std::size_t before = allocations::live();
                std::string complaint = run_failing(make(), again, reached, nth, extent);
                if (complaint.empty() && allocations::live() != before) {
                    complaint = "blocks leak";
                }
                if (!complaint.empty()) {
                    findings.complaints.push_back(std::to_string(nth) + ": " + complaint);
                }
            }
        }
        if (reached) {
            findings.blocks.push_back(Failure::size());
        }
    }
    return findings;
}

template <class Make>
void expect_clean(const char* name, Make make) {
    const Findings findings = sweep(make);
    EXPECT_FALSE(findings.blocks.empty()) << name << " allocates nothing";
    for (const std::string& complaint : findings.complaints) {
        ADD_FAILURE() << name << ", allocation " << complaint;
    }
}

// ---- Objects and operations ----

template <class Object>
std::shared_ptr<Object> fullest() {
    return full<Object>();
}

template <>
std::shared_ptr<QOVA_Media> fullest() {
    std::shared_ptr<QOVA_Media> media = full<QOVA_Media>();
    qova::append<OwnAttribute>(media->attributes);
    fill(qova::append<Derived<QOVA_Crypto>>(media->cryptos));
    return media;
}

template <>
std::shared_ptr<QOVA_Capability> fullest() {
    std::shared_ptr<QOVA_Capability> capability = full<QOVA_Capability>();
    qova::append<QOVA_Media>(capability->filteredMedia) = *fullest<QOVA_Media>();
    return capability;
}

template <>
std::shared_ptr<UDPAddr> fullest() {
    return std::make_shared<UDPAddr>(endpoint("192.0.2.1"));
}

template <class Call>
auto making(Call call) {
    return [=] { return Operation{[=] { call(); }}; };
}

template <class Object, class Call>
auto reading(Call call) {
    return [=] {
        const std::shared_ptr<const Object> object = fullest<Object>();
        return Operation{[=] { call(*object); }, [=] { return describe(*object, PLACES); }};
    };
}

template <class Object>
auto assigning(const std::shared_ptr<Object>& old) {
    return [=] {
        const auto source = fullest<Object>();
        const auto target = std::make_shared<Object>(*old);
        return Operation{[=] { *target = *source; }, [=] { return describe(*source, PLACES); },
                         [=] { return describe(*target) == describe(*source); }};
    };
}

// Assigns before each move, because an assignment repairs a capability after a partial move.
template <class Move>
auto moving(Move move) {
    return [=] {
        const auto before = fullest<QOVA_Capability>();
        const auto moved = std::make_shared<QOVA_Capability>();
        const auto move_it = [=, to = endpoint("192.0.2.1")] {
            *moved = *before;
            (*moved.*move)(to, 40000, 7000);
        };
        move_it();
        const std::string after = describe(*moved);
        return Operation{move_it, [=] { return describe(*before, PLACES); },
                         [=] { return describe(*moved) == after; }};
    };
}

constexpr auto copy = [](const auto& object) { const auto made(object); };
constexpr auto text = [](const auto& object) { const std::string made(object); };
constexpr auto clone = [](const auto& object) { delete object.clone(); };
constexpr auto equal = [](const auto& object) { static_cast<void>(object == object); };

TEST(FailureSweep, AttributesAndCryptoLines) {
    expect_clean("clone of audio", reading<QOVA_AudioAttribute>(clone));
    expect_clean("clone of fax", reading<QOVA_FaxAttribute>(clone));
    expect_clean("clone of video", reading<QOVA_VideoAttribute>(clone));
    expect_clean("clone of data", reading<QOVA_DataAttribute>(clone));
    expect_clean("clone of crypto", reading<QOVA_Crypto>(clone));
    expect_clean("copy of crypto", reading<QOVA_Crypto>(copy));
    expect_clean("text of audio", reading<QOVA_AudioAttribute>(text));
    expect_clean("text of fax", reading<QOVA_FaxAttribute>(text));
    expect_clean("text of video", reading<QOVA_VideoAttribute>(text));
    expect_clean("text of data", reading<QOVA_DataAttribute>(text));
    expect_clean("text of crypto", reading<QOVA_Crypto>(text));
}

TEST(FailureSweep, Media) {
    expect_clean("construction", making([] { const QOVA_Media made; }));
    expect_clean("copy", reading<QOVA_Media>(copy));
    expect_clean("clone", reading<QOVA_Media>(clone));
    expect_clean("assignment to a new one", assigning(std::make_shared<QOVA_Media>()));
    expect_clean("assignment to a full one", assigning(fullest<QOVA_Media>()));
    expect_clean("equality", reading<QOVA_Media>(equal));
    expect_clean("text", reading<QOVA_Media>(text));
}

TEST(FailureSweep, Capabilities) {
    using Capability = QOVA_Capability;
    expect_clean("copy", reading<Capability>(copy));
    expect_clean("assignment to a new one", assigning(std::make_shared<Capability>()));
    expect_clean("assignment to a full one", assigning(fullest<Capability>()));
    expect_clean("equality", making([] {
                     Capability capability;
                     fill(qova::append<QOVA_Media>(capability.filteredMedia));
                     equal(capability);
                 }));
    expect_clean("find", reading<Capability>([](const Capability& capability) {
                     capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN);
                 }));
    expect_clean("setPublicAddrPort", moving(&Capability::setPublicAddrPort));
    expect_clean("setLocalAddrPort", moving(&Capability::setLocalAddrPort));
    expect_clean("text", reading<Capability>(text));
}

TEST(FailureSweep, Companion) {
    const IPAddress address = ip("2001:db8:1111:2222:3333:4444:5555:6666");
    expect_clean("Clone", making([=] { delete INetAddress::Clone(&address); }));
    expect_clean("ToString", making([=] { return address.ToString(); }));
    expect_clean("endpoint", making([=] { const UDPAddr made(address, 5060); }));
    expect_clean("copy of an endpoint", reading<UDPAddr>(copy));
    expect_clean("assignment of an endpoint",
                 assigning(std::make_shared<UDPAddr>(endpoint("192.0.2.2"))));
    using Amrwb = Sdp::Sdp_Amrwb_Param;
    expect_clean("copy of AMR-WB", reading<Amrwb>(copy));
    expect_clean("assignment of AMR-WB", assigning(std::make_shared<Amrwb>()));
    expect_clean("text of AMR-WB", reading<Amrwb>(text));
    expect_clean("text of Opus", reading<Sdp::Sdp_Opus_Param>(text));
    expect_clean("suite's name",
                 making([] { return Sdp::CryptoParser::enumToAlgo(CS_AES_CM_128_HMAC_SHA1_80); }));
}

// ---- The state after a failure, as capability.h describes it ----

TEST(FailedAssignment, LeavesSomeOfTheMedia) {
    const auto source = fullest<QOVA_Capability>();
    for (std::size_t nth = 1;; ++nth) {
        QOVA_Capability target;
        try {
            const Failure failure(nth);
            target = *source;
            return;
        } catch (const std::bad_alloc&) {
            const bool has_text = target.passThrough == source->passThrough;
            EXPECT_EQ(target.spare1, source->spare1);
            EXPECT_EQ(target.spare2, has_text ? source->spare2 : 0);
            EXPECT_EQ(target.spare3, has_text ? source->spare3 : 0);
            ASSERT_LT(target.filteredMedia.size(), has_text ? source->filteredMedia.size() : 1);
            auto media = source->filteredMedia.begin();
            for (const QOVA_Media* const assigned : target.filteredMedia) {
                EXPECT_EQ(describe(*assigned), describe(**media++));
            }
        }
    }
}

TEST(FailedMove, LeavesAMediaWithoutAddress) {
    const auto capability = fullest<QOVA_Capability>();
    const UDPAddr to = endpoint("192.0.2.1");
    const Failure failure(2);
    EXPECT_THROW(capability->setPublicAddrPort(to, 40000, 7000), std::bad_alloc);
    std::string missing;
    for (const QOVA_Media* const media : capability->filteredMedia) {
        missing += media->address == nullptr ? '-' : '+';
    }
    EXPECT_EQ(missing, "++-");
    EXPECT_EQ(capability->filteredMedia.back()->sndPort, 4000) << "moved before its address";
}

// ---- The order of allocations, recognised by their sizes ----

TEST(AllocationOrder, OfAMediaAndItsCopy) {
    const std::vector<std::size_t> blocks = {sizeof(IPAddress), sizeof(Sdp::Sdp_Amrwb_Param),
                                             sizeof(Sdp::Sdp_Opus_Param)};
    EXPECT_EQ(sweep(making([] { const QOVA_Media made; })).blocks, blocks);
    const QOVA_Media source;
    EXPECT_EQ(sweep(making([&] { copy(source); })).blocks, blocks);
}

TEST(AllocationOrder, CopyBeginsWithPassThrough) {
    QOVA_Capability source;
    append_media(source, QOVA_Media::MT_AUDIO);
    source.passThrough.assign(999, 'x');
    EXPECT_EQ(sweep(making([&] { copy(source); })).blocks.front(), 1000U);
}

// ---- The sweep itself ----

TEST(FailureSweepItself, CatchesALeak) {
    std::vector<void*> leaked;
    leaked.reserve(100);
    const Findings findings = sweep(making([&] {
        leaked.push_back(operator new(1));
        operator delete(operator new(1));
        operator delete(leaked.back());
        leaked.pop_back();
    }));
    EXPECT_EQ(findings.complaints, std::vector<std::string>(4, "2: blocks leak"));
    for (void* const block : leaked) {
        operator delete(block);
    }
}

TEST(FailureSweepItself, CatchesASwallowedFailure) {
    const Findings findings = sweep(making([] {
        try {
            operator delete(operator new(1));
        } catch (const std::bad_alloc&) {
        }
    }));
    EXPECT_EQ(findings.complaints, std::vector<std::string>(4, "1: the failure is swallowed"));
}

}  // namespace
