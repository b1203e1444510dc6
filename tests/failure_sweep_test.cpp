// Every operation of every class, with every allocation failing in turn: the caller gets
// std::bad_alloc, nothing leaks, the source stays as it was, and the target can be used again.

#include "failure_sweep.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iostream>
#include <iterator>
#include <list>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "socket/address.h"

namespace {

using failure_sweep::Findings;
using failure_sweep::Operation;

// --- all members of an object, as a text; "where" adds the addresses of what it owns ---

enum Where { WITHOUT_PLACES, WITH_PLACES };

void place(std::ostream& out, Where where, const void* object) {
    if (where == WITH_PLACES) {
        out << object;
    }
    out << '{';
}

std::string members(const UDPAddr& address, Where where = WITH_PLACES) {
    std::ostringstream out;
    place(out, where, address.ipAddress);
    out << address.ipAddress->ToString() << ' ' << address.port;
    return out.str();
}

std::string members(const Sdp::Sdp_Amrwb_Param& parameters, Where /*where*/ = WITH_PLACES) {
    return parameters;
}

std::string members(const Sdp::Sdp_Opus_Param& parameters, Where /*where*/ = WITH_PLACES) {
    return parameters;
}

std::string members(const QOVA_MediaAttribute& attribute, Where /*where*/ = WITH_PLACES) {
    std::ostringstream out;
    out << attribute.status << ' ' << attribute.attributeType
        << static_cast<std::string>(attribute);
    if (const auto* const data = dynamic_cast<const QOVA_DataAttribute*>(&attribute)) {
        out << data->type;
    }
    return out.str();
}

std::string members(const QOVA_Crypto& crypto, Where /*where*/ = WITH_PLACES) {
    std::ostringstream out;
    out << static_cast<std::string>(crypto);
    for (const QOVA_CryptoKey& key : crypto.keys) {
        for (const unsigned byte : key.mki) {
            out << byte << ' ';
        }
        for (const unsigned byte : key.key) {
            out << byte << ' ';
        }
    }
    return out.str();
}

std::string members(const QOVA_Media& media, Where where = WITH_PLACES) {
    std::ostringstream out;
    out << static_cast<std::string>(media) << media.mediaStatus << media.mediaType;
    for (const QOVA_MediaAttribute* const attribute : media.attributes) {
        place(out, where, attribute);
        out << members(*attribute);
    }
    for (const QOVA_Crypto* const crypto : media.cryptos) {
        place(out, where, crypto);
        out << members(*crypto);
    }
    place(out, where, media.address);
    place(out, where, media.amrwbParam);
    place(out, where, media.opusParam);
    return out.str();
}

std::string members(const QOVA_Capability& capability, Where where = WITH_PLACES) {
    std::ostringstream out;
    out << static_cast<std::string>(capability);
    for (const int spare : {capability.spare1, capability.spare2, capability.spare3}) {
        out << spare << ' ';
    }
    for (const QOVA_Media* const media : capability.filteredMedia) {
        place(out, where, media);
        out << members(*media, where);
    }
    return out.str();
}

// --- objects that own as much as they can, with texts too long for a string's own room ---

template <class Base>
class Derived : public Base {
public:
    Derived* clone() const override { return new Derived(*this); }
};

class OwnText : public QOVA_AudioAttribute {
public:
    OwnText* clone() const override { return new OwnText(*this); }
    operator const std::string() const override { return "the text of a user's own attribute\n"; }
};

constexpr const char* long_address = "2001:db8:1111:2222:3333:4444:5555:6666";

IPAddress ip(const std::string& text) {
    IPAddress address;
    EXPECT_TRUE(IPAddress::Parse(text, address));
    return address;
}

void fill(QOVA_VideoAttribute& /*video*/) {}

void fill(QOVA_AudioAttribute& audio) {
    audio.status = QOVA_Media::MS_ACCEPTED;
    audio.attributeType = QOVA_Media::AT_AUDIO;
    audio.codec = CODEC_G711_ALAW;
    audio.mf = static_cast<QOVA_Codec>(101);
}

void fill(QOVA_FaxAttribute& fax) {
    fax.attributeType = QOVA_Media::AT_FAX;
    fax.transport = FT_T38_UDPTL;
    fax.mxRate = 14400;
}

void fill(QOVA_DataAttribute& data) {
    data.type = 7;
}

void fill(QOVA_Crypto& crypto) {
    crypto.tag = 4294967295U;
    crypto.algo = CS_AES_CM_128_HMAC_SHA1_80;
    for (unsigned char i = 1; i <= 3; ++i) {
        QOVA_CryptoKey key = {};
        key.lifetime = 1048576U * i;
        key.mkiSize = 4;
        key.mki[3] = i;
        key.key[0] = i;
        crypto.keys.push_back(key);
    }
}

void fill(Sdp::Sdp_Amrwb_Param& parameters) {
    parameters.octetAlign = 1;
    parameters.modeSet = {0, 1, 2};
    parameters.modeChangeCapability = 2;
    parameters.payloadType = 98;
}

void fill(Sdp::Sdp_Opus_Param& parameters) {
    parameters.maxPlaybackRate = 48000;
    parameters.maxAverageBitrate = 64000;
    parameters.useInbandFec = true;
}

void fill(QOVA_Media& media);
void fill(QOVA_Capability& capability);

template <class Object>
std::unique_ptr<Object> full() {
    auto object = std::make_unique<Object>();
    fill(*object);
    return object;
}

void fill(QOVA_Media& media) {
    media.mediaType = QOVA_Media::MT_AUDIO;
    media.attributes = {full<QOVA_AudioAttribute>().release(), full<QOVA_FaxAttribute>().release(),
                        full<QOVA_VideoAttribute>().release(), full<QOVA_DataAttribute>().release(),
                        full<OwnText>().release()};
    delete media.address;
    media.address = new IPAddress(ip(long_address));
    media.sndPort = 32000;
    media.rcvPort = 32001;
    fill(*media.amrwbParam);
    fill(*media.opusParam);
    media.cryptoCount = 2;
    media.cryptos = {full<QOVA_Crypto>().release(), full<Derived<QOVA_Crypto>>().release()};
}

void fill(QOVA_Capability& capability) {
    capability.filteredMedia = {full<QOVA_Media>().release(), full<Derived<QOVA_Media>>().release(),
                                full<QOVA_Media>().release()};
    capability.filteredMedia.back()->mediaType = QOVA_Media::MT_FAX;
    capability.passThrough = "m=application 9 UDP/BFCP *\r\na=floorctrl:c-s\r\n";
    capability.offer = true;
    capability.spare2 = 2;
}

// Objects of derived classes have no equal.
void make_equal_to_itself(QOVA_Media& media) {
    delete media.attributes.back();
    media.attributes.pop_back();
    delete media.cryptos.back();
    media.cryptos.pop_back();
}

void make_equal_to_itself(QOVA_Capability& capability) {
    for (QOVA_Media* const media : capability.filteredMedia) {
        make_equal_to_itself(*media);
    }
    capability.passThrough.clear();
}

template <class Object>
bool is_equal_to_itself(const Object& object) {
    const Object& itself = object;
    return object == itself;
}

// --- operations ---

// Makes an object, and looks at none.
template <class Call>
class Making : public Operation {
public:
    explicit Making(Call made) : call(made) {}

    void run() override { call(); }

private:
    Call call;
};

// Reads an object.
template <class Object, class Call>
class Reading : public Operation {
public:
    Reading(std::unique_ptr<Object> read, Call made) : object(std::move(read)), call(made) {}

    void run() override { call(*object); }
    std::string source() const override { return members(*object); }

private:
    std::unique_ptr<Object> object;
    Call call;
};

// Changes an object of its own.
template <class Object, class Call>
class Editing : public Operation {
public:
    Editing(std::unique_ptr<Object> edited, Call made) : object(std::move(edited)), call(made) {}

    void run() override { call(*object); }

private:
    std::unique_ptr<Object> object;
    Call call;
};

bool renderable(const QOVA_Media& media) {
    return media.address != nullptr && media.amrwbParam != nullptr && media.opusParam != nullptr;
}

bool renderable(const QOVA_Capability& capability) {
    for (const QOVA_Media* const media : capability.filteredMedia) {
        if (!renderable(*media)) {
            return false;
        }
    }
    return true;
}

template <class Object>
bool renderable(const Object& /*object*/) {
    return true;
}

// Assigns one object to another.
template <class Object>
class Assigning : public Operation {
public:
    Assigning(std::unique_ptr<Object> assigned, std::unique_ptr<Object> overwritten)
        : from(std::move(assigned)), to(std::move(overwritten)) {}

    void run() override { *to = *from; }
    std::string source() const override { return members(*from); }

    std::string after_failure() override {
        return renderable(*to) && members(*to).empty() ? "the target has no text" : "";
    }

    std::string result() const override {
        return members(*to, WITHOUT_PLACES) == members(*from, WITHOUT_PLACES)
                   ? ""
                   : "the target differs from the source";
    }

private:
    std::unique_ptr<Object> from;
    std::unique_ptr<Object> to;
};

// Moves a capability to another address.
class Moving : public Operation {
public:
    using Move = void (QOVA_Capability::*)(const UDPAddr&, unsigned short, unsigned short);

    explicit Moving(Move way) : move(way) {
        fill(before);
        recover();
    }

    void run() override { (moved.*move)(address, 40000, 7000); }
    std::string source() const override { return members(address); }

    // Only the media at which the move stopped is without an address.
    std::string after_failure() override {
        std::size_t missing = 0;
        for (const QOVA_Media* const media : moved.filteredMedia) {
            missing += media->address == nullptr ? 1U : 0U;
            if (renderable(*media) && members(*media).empty()) {
                return "a media has no text";
            }
        }
        return missing == 1 ? "" : "not one address is missing, but " + std::to_string(missing);
    }

    void recover() override { moved = before; }

    std::string result() const override {
        for (const QOVA_Media* const media : moved.filteredMedia) {
            if (media->address->ToString() != long_address) {
                return "a media was not moved";
            }
        }
        return "";
    }

private:
    Move move;
    QOVA_Capability before;
    QOVA_Capability moved;
    UDPAddr address{ip(long_address), 5060};
};

// --- the sweeps ---

class FailureSweep : public testing::Test {
protected:
    // An operation that allocates must have been seen to fail, and no other may have failed.
    enum Expected { ALLOCATES_NOTHING, ALLOCATES };

    static void TearDownTestSuite() { std::cout << "failure points in all: " << total << '\n'; }

    static void check(Expected expected, const std::string& name,
                      const failure_sweep::Make& operation) {
        const Findings findings = failure_sweep::sweep(operation);
        std::cout << "failure points of " << name << ": " << findings.points << '\n';
        total += findings.points;
        EXPECT_EQ(findings.points != 0, expected == ALLOCATES) << name;
        for (const std::string& complaint : findings.complaints) {
            ADD_FAILURE() << name << ", " << complaint;
        }
    }

    template <class Call>
    static void check_making(Expected expected, const std::string& name, Call call) {
        check(expected, name, [=] { return std::make_unique<Making<Call>>(call); });
    }

    // Reads a full object.
    template <class Object, class Call>
    static void check_reading(Expected expected, const std::string& name, Call call) {
        check(expected, name,
              [=] { return std::make_unique<Reading<Object, Call>>(full<Object>(), call); });
    }

    // Changes a full object, and allocates nothing.
    template <class Object, class Call>
    static void check_editing(const std::string& name, Call call) {
        check(ALLOCATES_NOTHING, name,
              [=] { return std::make_unique<Editing<Object, Call>>(full<Object>(), call); });
    }

    template <class Object>
    static void check_assignments(Expected into_empty, Expected into_full,
                                  const std::string& name) {
        check(into_empty, name + " assignment into an empty target", [] {
            return std::make_unique<Assigning<Object>>(full<Object>(), std::make_unique<Object>());
        });
        check(into_full, name + " assignment into a full target",
              [] { return std::make_unique<Assigning<Object>>(full<Object>(), full<Object>()); });
    }

    // Compares an object with itself, to the end: it holds nothing that is unequal to itself.
    template <class Object>
    static void check_whole_equality(const std::string& name) {
        const auto make = [] {
            auto object = full<Object>();
            make_equal_to_itself(*object);
            return object;
        };
        EXPECT_TRUE(is_equal_to_itself(*make())) << name;
        const auto compare = [](const Object& object) { return is_equal_to_itself(object); };
        check(ALLOCATES, name, [=] {
            return std::make_unique<Reading<Object, decltype(compare)>>(make(), compare);
        });
    }

    // What every attribute class can do.
    template <class Attribute>
    static void check_attribute(const std::string& name) {
        check_making(ALLOCATES_NOTHING, name + " construction", [] { Attribute made; });
        check_reading<Attribute>(ALLOCATES_NOTHING, name + " copy",
                                 [](const Attribute& object) { Attribute copy(object); });
        check_reading<Attribute>(ALLOCATES, name + " clone", [](const Attribute& object) {
            const std::unique_ptr<QOVA_MediaAttribute> copy(object.clone());
        });
        check_assignments<Attribute>(ALLOCATES_NOTHING, ALLOCATES_NOTHING, name);
        check_reading<Attribute>(ALLOCATES_NOTHING, name + " equality",
                                 [](const QOVA_MediaAttribute& object) {
                                     const Attribute other;
                                     return object == object || object == other;
                                 });
        check_reading<Attribute>(ALLOCATES, name + " text",
                                 [](const Attribute& object) { std::string text(object); });
    }

private:
    static std::size_t total;
};

std::size_t FailureSweep::total = 0;

TEST_F(FailureSweep, NamesOfEnumerations) {
    // The longest of them fit into a string's own room.
    check_making(ALLOCATES_NOTHING, "codec name",
                 [] { return ToString(static_cast<QOVA_Codec>(127)); });
    check_making(ALLOCATES_NOTHING, "early-media name",
                 [] { return ToString(static_cast<QOVA_EarlyMedia>(-1)); });
    check_making(ALLOCATES_NOTHING, "media-type name",
                 [] { return QOVA_Media::ToString(QOVA_Media::MT_AUDIO); });
    check_making(ALLOCATES_NOTHING, "media-status name",
                 [] { return QOVA_Media::ToString(QOVA_Media::MS_ACCEPTED); });
}

TEST_F(FailureSweep, Attributes) {
    check_attribute<QOVA_AudioAttribute>("audio attribute");
    check_attribute<QOVA_FaxAttribute>("fax attribute");
    check_attribute<QOVA_VideoAttribute>("video attribute");
    check_attribute<QOVA_DataAttribute>("data attribute");
}

TEST_F(FailureSweep, CryptoLines) {
    check_making(ALLOCATES_NOTHING, "crypto construction", [] { QOVA_Crypto made; });
    check_reading<QOVA_Crypto>(ALLOCATES, "crypto copy",
                               [](const QOVA_Crypto& object) { QOVA_Crypto copy(object); });
    check_reading<QOVA_Crypto>(ALLOCATES, "crypto clone", [](const QOVA_Crypto& object) {
        const std::unique_ptr<QOVA_Crypto> copy(object.clone());
    });
    check_reading<QOVA_Crypto>(ALLOCATES_NOTHING, "crypto equality",
                               [](const QOVA_Crypto& object) { return object == object; });
    check_reading<QOVA_Crypto>(ALLOCATES, "crypto text",
                               [](const QOVA_Crypto& object) { std::string text(object); });
    check_making(ALLOCATES, "empty crypto text", [] { std::string text{QOVA_Crypto()}; });
}

TEST_F(FailureSweep, Media) {
    using Media = QOVA_Media;
    check_making(ALLOCATES, "media construction", [] { Media made; });
    check_reading<Media>(ALLOCATES, "media copy", [](const Media& object) { Media copy(object); });
    check_reading<Media>(ALLOCATES, "media clone", [](const Media& object) {
        const std::unique_ptr<Media> copy(object.clone());
    });
    check_assignments<Media>(ALLOCATES, ALLOCATES, "media");
    check_editing<Media>("media self-assignment", [](Media& object) {
        const Media& itself = object;
        object = itself;
    });
    check_whole_equality<Media>("media equality");
    check_reading<Media>(ALLOCATES_NOTHING, "media find by codec",
                         [](const Media& object) { return object.find(CODEC_OPUS); });
    check_reading<Media>(ALLOCATES_NOTHING, "media find by fax transport",
                         [](const Media& object) { return object.find(FT_T38_TCP); });
    check_reading<Media>(ALLOCATES_NOTHING, "media find_mf",
                         [](const Media& object) { return object.find_mf(CODEC_OPUS); });
    check_reading<Media>(
        ALLOCATES_NOTHING, "media find by attribute type",
        [](const Media& object) { return object.find(Media::AT_DATA, Media::MS_UNKNOWN); });
    check_reading<Media>(ALLOCATES_NOTHING, "media isMute",
                         [](const Media& object) { return object.isMute(); });
    check_reading<Media>(ALLOCATES, "media text",
                         [](const Media& object) { std::string text(object); });
}

TEST_F(FailureSweep, Capabilities) {
    using Set = QOVA_Capability;
    using Media = QOVA_Media;
    check_making(ALLOCATES_NOTHING, "capability construction", [] { Set made; });
    check_reading<Set>(ALLOCATES, "capability copy", [](const Set& object) { Set copy(object); });
    check_assignments<Set>(ALLOCATES, ALLOCATES, "capability");
    check_editing<Set>("capability self-assignment", [](Set& object) {
        const Set& itself = object;
        object = itself;
    });
    check_whole_equality<Set>("capability equality by media");
    check_reading<Set>(ALLOCATES_NOTHING, "capability equality by pass-through text",
                       is_equal_to_itself<Set>);
    check_reading<Set>(ALLOCATES, "capability find by type and status", [](const Set& object) {
        return object.find(Media::MT_AUDIO, Media::MS_UNKNOWN);
    });
    check_reading<Set>(ALLOCATES_NOTHING, "capability find by codec",
                       [](const Set& object) { return object.find(CODEC_OPUS); });
    check_reading<Set>(ALLOCATES_NOTHING, "capability find by fax transport",
                       [](const Set& object) { return object.find(FT_T38_TCP); });
    check_reading<Set>(ALLOCATES_NOTHING, "capability find_mf",
                       [](const Set& object) { return object.find_mf(CODEC_OPUS); });
    check_reading<Set>(ALLOCATES_NOTHING, "capability isMute",
                       [](const Set& object) { return object.isMute(); });
    check_reading<Set>(ALLOCATES, "capability text",
                       [](const Set& object) { std::string text(object); });
    check_making(ALLOCATES, "empty capability text", [] { std::string text{Set()}; });
}

TEST_F(FailureSweep, BulkEditsOfCapabilities) {
    check_editing<QOVA_Capability>("capability rejectMedia", [](QOVA_Capability& object) {
        object.rejectMedia(QOVA_Media::MT_FAX);
    });
    check_editing<QOVA_Capability>("capability ClearMediaDirection",
                                   [](QOVA_Capability& object) { object.ClearMediaDirection(); });
    check(ALLOCATES, "capability setPublicAddrPort",
          [] { return std::make_unique<Moving>(&QOVA_Capability::setPublicAddrPort); });
    check(ALLOCATES, "capability setLocalAddrPort",
          [] { return std::make_unique<Moving>(&QOVA_Capability::setLocalAddrPort); });
}

TEST_F(FailureSweep, Addresses) {
    check_making(ALLOCATES, "IPv4 address Clone",
                 [] { delete INetAddress::Clone(&IPAddress::IpAddressAny); });
    const IPAddress v6 = ip(long_address);
    check_making(ALLOCATES, "IPv6 address Clone", [=] { delete INetAddress::Clone(&v6); });
    check_making(ALLOCATES_NOTHING, "IPv4 address ToString",
                 [] { return ip("255.255.255.255").ToString(); });
    check_making(ALLOCATES, "IPv6 address ToString", [=] { return v6.ToString(); });
    const std::string text = long_address;
    check_making(ALLOCATES_NOTHING, "address IsEqual", [&] { return v6.IsEqual(text); });
    check_making(ALLOCATES_NOTHING,
                 "address operator!=", [&] { return static_cast<const INetAddress&>(v6) != text; });
    check_making(ALLOCATES_NOTHING, "address Parse", [&] {
        IPAddress parsed;
        return IPAddress::Parse(text, parsed);
    });
    check_making(ALLOCATES, "UDP address construction", [=] { UDPAddr made(v6, 5060); });
    const auto make_udp = [=] { return std::make_unique<UDPAddr>(v6, static_cast<short>(5060)); };
    const auto copy = [](const UDPAddr& object) { UDPAddr copied(object); };
    check(ALLOCATES, "UDP address copy",
          [=] { return std::make_unique<Reading<UDPAddr, decltype(copy)>>(make_udp(), copy); });
    check(ALLOCATES, "UDP address assignment", [=] {
        return std::make_unique<Assigning<UDPAddr>>(
            make_udp(), std::make_unique<UDPAddr>(IPAddress(), static_cast<short>(1)));
    });
}

TEST_F(FailureSweep, SdpParameters) {
    using AmrWb = Sdp::Sdp_Amrwb_Param;
    using Opus = Sdp::Sdp_Opus_Param;
    check_making(ALLOCATES_NOTHING, "AMR-WB construction", [] { AmrWb made; });
    check_reading<AmrWb>(ALLOCATES, "AMR-WB copy", [](const AmrWb& object) { AmrWb copy(object); });
    // The list of the target keeps its nodes.
    check_assignments<AmrWb>(ALLOCATES, ALLOCATES_NOTHING, "AMR-WB");
    check_reading<AmrWb>(ALLOCATES, "AMR-WB text",
                         [](const AmrWb& object) { std::string text(object); });
    check_making(ALLOCATES_NOTHING, "Opus construction", [] { Opus made; });
    check_reading<Opus>(ALLOCATES_NOTHING, "Opus copy",
                        [](const Opus& object) { Opus copy(object); });
    check_assignments<Opus>(ALLOCATES_NOTHING, ALLOCATES_NOTHING, "Opus");
    check_reading<Opus>(ALLOCATES, "Opus text",
                        [](const Opus& object) { std::string text(object); });
    check_making(ALLOCATES, "crypto suite's name",
                 [] { return Sdp::CryptoParser::enumToAlgo(CS_AES_CM_128_HMAC_SHA1_80); });
    const std::string name = "AES_CM_128_HMAC_SHA1_80";
    check_making(ALLOCATES_NOTHING, "crypto suite of a name",
                 [&] { return Sdp::CryptoParser::algoToEnum(name); });
}

// --- the sweep itself: it finds what it is there to find ---

struct Free {
    void operator()(void* block) const { operator delete(block); }
};
// Not made by an expression that a compiler may leave out.
using Block = std::unique_ptr<void, Free>;

// Makes and frees two blocks, in a way that a test chooses.
class Control : public Operation {
public:
    enum Fault {
        NONE,
        LEAK,
        SWALLOW,
        CHANGE_THE_SOURCE,
        OTHER_EXCEPTION,
        FAIL_FOR_GOOD,
        BREAK_THE_TARGET,
        WRONG_RESULT
    };

    // What leaks is kept, so that the test can free it.
    Control(Fault committed, std::list<Block>& kept) : fault(committed), leaks(kept) {}

    void run() override {
        if (failed && fault == FAIL_FOR_GOOD) {
            throw std::bad_alloc();
        }
        Block first(operator new(1));
        try {
            const Block second(operator new(1));
        } catch (const std::bad_alloc&) {
            failed = true;
            if (fault == SWALLOW) {
                return;
            }
            if (fault == CHANGE_THE_SOURCE) {
                text = "after";
            }
            if (fault == OTHER_EXCEPTION) {
                throw std::runtime_error("no memory");
            }
            if (fault == LEAK) {
                leaked = std::move(first);
            }
            throw;
        }
    }

    ~Control() override {
        if (leaked != nullptr) {
            leaks.push_back(std::move(leaked));
        }
    }

    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    std::string source() const override { return text; }
    std::string after_failure() override { return fault == BREAK_THE_TARGET ? "broken" : ""; }
    std::string result() const override { return fault == WRONG_RESULT ? "wrong" : ""; }

private:
    Fault fault;
    std::list<Block>& leaks;
    Block leaked;
    std::string text = "before";
    bool failed = false;
};

std::vector<std::string> complaints_about(Control::Fault fault) {
    std::list<Block> leaks;
    return failure_sweep::sweep([&] { return std::make_unique<Control>(fault, leaks); }).complaints;
}

bool contains(const std::vector<std::string>& complaints, const std::string& expected) {
    for (const std::string& complaint : complaints) {
        if (complaint == expected) {
            return true;
        }
    }
    return false;
}

TEST(FailureSweepItself, CountsEveryAllocationTwice) {
    std::list<Block> leaks;
    const Findings findings =
        failure_sweep::sweep([&] { return std::make_unique<Control>(Control::NONE, leaks); });
    EXPECT_EQ(findings.points, 4U);
    EXPECT_TRUE(findings.complaints.empty());
}

TEST(FailureSweepItself, CatchesALeak) {
    EXPECT_TRUE(contains(complaints_about(Control::LEAK), "allocation 2: blocks leak"));
}

TEST(FailureSweepItself, CatchesASwallowedFailure) {
    EXPECT_TRUE(
        contains(complaints_about(Control::SWALLOW), "allocation 2: the failure is swallowed"));
}

// A stream takes the exception for itself and cuts its text short.
TEST(FailureSweepItself, CatchesATextThatAStreamCutShort) {
    const auto render = [] {
        std::ostringstream out;
        for (int i = 0; i < 100; ++i) {
            out << "a line of a text that grows and grows\n";
        }
        return out.str();
    };
    const std::vector<std::string> complaints =
        failure_sweep::sweep([=] {
            return std::make_unique<Making<decltype(render)>>(render);
        }).complaints;
    EXPECT_TRUE(contains(complaints, "allocation 1: the failure is swallowed"));
}

TEST(FailureSweepItself, CatchesAChangedSource) {
    EXPECT_TRUE(contains(complaints_about(Control::CHANGE_THE_SOURCE),
                         "allocation 2: the source is changed"));
}

TEST(FailureSweepItself, CatchesAnotherException) {
    EXPECT_TRUE(contains(complaints_about(Control::OTHER_EXCEPTION),
                         "allocation 2: another exception than bad_alloc"));
}

TEST(FailureSweepItself, CatchesAnOperationThatCannotBeRepeated) {
    EXPECT_TRUE(
        contains(complaints_about(Control::FAIL_FOR_GOOD), "allocation 2: it fails for good"));
}

TEST(FailureSweepItself, CatchesABrokenTarget) {
    EXPECT_TRUE(contains(complaints_about(Control::BREAK_THE_TARGET), "allocation 1: broken"));
}

TEST(FailureSweepItself, CatchesAWrongResult) {
    EXPECT_TRUE(contains(complaints_about(Control::WRONG_RESULT), "allocation 3: wrong"));
}

}  // namespace
