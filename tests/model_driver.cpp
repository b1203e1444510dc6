#include "model_driver.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <list>
#include <memory>
#include <new>
#include <typeinfo>
#include <utility>
#include <variant>
#include <vector>

#include "allocations.h"
#include "model.h"
#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "socket/address.h"

namespace {

unsigned long long operation_count = 0;
unsigned long long failure_count = 0;

// What the library did otherwise than the model.
struct Difference {
    std::string what;
};

void expect(bool agreed, const char* what) {
    if (!agreed) {
        throw Difference{what};
    }
}

void expect_text(const std::string& real, const std::string& ideal) {
    if (real != ideal) {
        throw Difference{"the text is\n" + real + "\nand should be\n" + ideal};
    }
}

// Classes that a user of the library might derive.

template <class Base>
class Derived : public Base {
public:
    Derived* clone() const override { return new Derived(*this); }
};

template <class Base>
class DerivedAttribute : public Base {
public:
    DerivedAttribute* clone() const override { return new DerivedAttribute(*this); }
    operator const std::string() const override {
        return "derived" + Base::operator const std::string();
    }
};

class Stranger : public QOVA_MediaAttribute {
public:
    Stranger* clone() const override { return new Stranger(*this); }
    operator const std::string() const override { return "stranger"; }
};

// The input. Behind its end all is zero.
class Bytes {
public:
    Bytes(const unsigned char* data, std::size_t size) : at(data), end(data + size) {}

    bool empty() const { return at == end; }
    unsigned byte() { return empty() ? 0 : *at++; }
    std::size_t below(std::size_t bound) { return byte() % bound; }
    bool flag() { return byte() % 2 != 0; }

    // A small value, one from the edge of a range, or any.
    unsigned word() {
        static constexpr unsigned edges[] = {95,    96,    127,        128,        255,
                                             6666,  32000, 65535,      48000,      101,
                                             65536, 99999, 0x7fffffff, 0x80000000, 0xffffffff};
        const unsigned choice = byte();
        if (choice < 128) {
            return choice % (choice < 64 ? 4 : 16);
        }
        if (choice < 248) {
            return edges[choice % std::size(edges)];
        }
        unsigned value = 0;
        for (int i = 0; i < 4; ++i) {
            value = value << 8U | byte();
        }
        return value;
    }

    int number() { return static_cast<int>(word()); }
    unsigned short port() { return static_cast<unsigned short>(word()); }
    unsigned char octet() { return static_cast<unsigned char>(byte()); }

    // Often empty.
    std::string text() {
        std::string result;
        const std::size_t length = below(64);
        while (length <= 40 && result.size() < length) {
            result += static_cast<char>(byte());
        }
        return result;
    }

    std::string address() {
        static constexpr const char* known[] = {"0.0.0.0",
                                                "10.0.0.1",
                                                "255.255.255.255",
                                                "::",
                                                "::1",
                                                "2001:db8::1",
                                                "fe80::1:0:0:1",
                                                "::ffff:192.0.2.1",
                                                "2001:db8:1:2:3:4:5:6",
                                                "ff02::fb"};
        const unsigned choice = byte();
        if (choice < 200) {
            return known[choice % std::size(known)];
        }
        std::string result = std::to_string(byte());
        for (int i = 0; i < 3; ++i) {
            result += "." + std::to_string(byte());
        }
        return result;
    }

private:
    const unsigned char* at;
    const unsigned char* end;
};

// From the model's values to the library's objects.

void fill(QOVA_AudioAttribute& real, const model::Audio& ideal) {
    real.codec = static_cast<QOVA_Codec>(ideal.codec);
    real.framing = ideal.framing;
    real.vad = ideal.vad;
    real.echo = ideal.echo;
    real.mxFraming = ideal.max_framing;
    real.mf = static_cast<QOVA_Codec>(ideal.tone_codec);
}

void fill(QOVA_FaxAttribute& real, const model::Fax& ideal) {
    real.red = ideal.redundancy;
    real.depth = ideal.depth;
    real.mxRate = ideal.max_rate;
    real.rateMgt = static_cast<QOVA_FaxRateMgt>(ideal.rate_management);
    real.transport = static_cast<QOVA_FaxTransport>(ideal.transport);
    real.fillBit = ideal.fill_bit;
    real.transMMR = ideal.transcode_mmr;
    real.transJBIG = ideal.transcode_jbig;
    real.mxBuffer = ideal.max_buffer;
    real.mxDgram = ideal.max_datagram;
    real.errCorr = ideal.error_correction;
}

void fill(QOVA_DataAttribute& real, const model::Data& ideal) {
    real.type = ideal.type;
}

void fill(QOVA_VideoAttribute& /*real*/, const model::Video& /*ideal*/) {}
void fill(Stranger& /*real*/, const model::Stranger& /*ideal*/) {}

// Which class stands for which payload.
template <class Payload>
struct ClassOf;
template <>
struct ClassOf<model::Audio> {
    using Type = QOVA_AudioAttribute;
};
template <>
struct ClassOf<model::Video> {
    using Type = QOVA_VideoAttribute;
};
template <>
struct ClassOf<model::Fax> {
    using Type = QOVA_FaxAttribute;
};
template <>
struct ClassOf<model::Data> {
    using Type = QOVA_DataAttribute;
};
template <>
struct ClassOf<model::Stranger> {
    using Type = Stranger;
};

// Calls visitor(object as its payload's class, payload).
template <class Attribute, class Visitor>
void with_class(Attribute& real, const model::Attribute& ideal, Visitor visitor) {
    std::visit(
        [&](const auto& payload) {
            using Class = typename ClassOf<std::decay_t<decltype(payload)>>::Type;
            using Same = std::conditional_t<std::is_const_v<Attribute>, const Class, Class>;
            visitor(dynamic_cast<Same&>(real), payload);
        },
        ideal.payload);
}

void fill(QOVA_MediaAttribute& real, const model::Attribute& ideal) {
    real.status = static_cast<QOVA_Media::e_MediaStatus>(ideal.status);
    real.attributeType = static_cast<QOVA_Media::e_AttributeType>(ideal.type);
    with_class(real, ideal, [](auto& object, const auto& payload) { fill(object, payload); });
}

std::unique_ptr<QOVA_MediaAttribute> make(const model::Attribute& ideal) {
    std::unique_ptr<QOVA_MediaAttribute> real;
    std::visit(
        [&](const auto& payload) {
            using Class = typename ClassOf<std::decay_t<decltype(payload)>>::Type;
            if (ideal.derived) {
                real = std::make_unique<DerivedAttribute<Class>>();
            } else {
                real = std::make_unique<Class>();
            }
        },
        ideal.payload);
    fill(*real, ideal);
    return real;
}

void fill(QOVA_Crypto& real, const model::Crypto& ideal) {
    real.tag = ideal.tag;
    real.algo = static_cast<g_crypto_suite>(ideal.suite);
    real.keys.clear();
    for (const model::Key& key : ideal.keys) {
        QOVA_CryptoKey entry = {};
        entry.lifetime = key.lifetime;
        entry.mkiSize = key.mki_size;
        std::copy(key.mki.begin(), key.mki.end(), entry.mki);
        std::copy(key.key.begin(), key.key.end(), entry.key);
        real.keys.push_back(entry);
    }
}

constexpr int Sdp::Sdp_Amrwb_Param::*further_members[] = {
    &Sdp::Sdp_Amrwb_Param::modeChangePeriod,   &Sdp::Sdp_Amrwb_Param::modeChangeCapability,
    &Sdp::Sdp_Amrwb_Param::modeChangeNeighbor, &Sdp::Sdp_Amrwb_Param::crc,
    &Sdp::Sdp_Amrwb_Param::robustSorting,      &Sdp::Sdp_Amrwb_Param::interleaving,
    &Sdp::Sdp_Amrwb_Param::channels,           &Sdp::Sdp_Amrwb_Param::maxRed};

void fill(Sdp::Sdp_Amrwb_Param& real, const model::AmrWb& ideal) {
    real.octetAlign = ideal.octet_align;
    real.modeSet.assign(ideal.mode_set.begin(), ideal.mode_set.end());
    for (std::size_t i = 0; i < ideal.further.size(); ++i) {
        real.*further_members[i] = ideal.further[i];
    }
    real.payloadType = ideal.payload_type;
}

std::array<int, 9> values(const Sdp::Sdp_Opus_Param& real) {
    return {
        real.maxPlaybackRate, real.spropMaxCaptureRate, real.maxAverageBitrate, int{real.stereo},
        int{real.cbr},        int{real.useInbandFec},   int{real.useDtx},       real.maxPtime,
        int{real.spropStereo}};
}

void fill(Sdp::Sdp_Opus_Param& real, const model::Opus& ideal) {
    real.maxPlaybackRate = ideal.values[0];
    real.spropMaxCaptureRate = static_cast<unsigned short>(ideal.values[1]);
    real.maxAverageBitrate = ideal.values[2];
    real.stereo = ideal.values[3] != 0;
    real.cbr = ideal.values[4] != 0;
    real.useInbandFec = ideal.values[5] != 0;
    real.useDtx = ideal.values[6] != 0;
    real.maxPtime = static_cast<unsigned short>(ideal.values[7]);
    real.spropStereo = ideal.values[8] != 0;
}

// Without what it owns.
void fill(QOVA_Media& real, const model::Media& ideal) {
    real.mediaStatus = static_cast<QOVA_Media::e_MediaStatus>(ideal.status);
    real.mediaType = static_cast<QOVA_Media::e_MediaType>(ideal.type);
    real.bsnd = ideal.sends;
    real.brcv = ideal.receives;
    real.sndPort = static_cast<unsigned short>(ideal.send_port);
    real.rcvPort = static_cast<unsigned short>(ideal.receive_port);
    real.sndPort2 = static_cast<unsigned short>(ideal.send_port_2);
    real.rcvPort2 = static_cast<unsigned short>(ideal.receive_port_2);
    real.cryptoCount = ideal.crypto_count;
}

// Without its media.
void fill(QOVA_Capability& real, const model::Capability& ideal) {
    real.marked = ideal.marked;
    real.offer = ideal.offer;
    real.hold = ideal.hold;
    real.spare1 = ideal.spare[0];
    real.spare2 = ideal.spare[1];
    real.spare3 = ideal.spare[2];
    real.silenceSuppSdp = ideal.silence_suppression;
    real.passThrough = ideal.pass_through;
}

// The library's objects, member by member, against the model's values. Video attributes and
// strangers have no members of their own.

template <class Real, class Payload>
void compare_payload(const Real& /*real*/, const Payload& /*ideal*/) {}

void compare_payload(const QOVA_AudioAttribute& real, const model::Audio& ideal) {
    expect(real.codec == ideal.codec && real.framing == ideal.framing && real.vad == ideal.vad &&
               real.echo == ideal.echo && real.mxFraming == ideal.max_framing &&
               real.mf == ideal.tone_codec,
           "a member of an audio attribute");
}

void compare_payload(const QOVA_FaxAttribute& real, const model::Fax& ideal) {
    expect(real.red == ideal.redundancy && real.depth == ideal.depth &&
               real.mxRate == ideal.max_rate && real.rateMgt == ideal.rate_management &&
               real.transport == ideal.transport && real.fillBit == ideal.fill_bit &&
               real.transMMR == ideal.transcode_mmr && real.transJBIG == ideal.transcode_jbig &&
               real.mxBuffer == ideal.max_buffer && real.mxDgram == ideal.max_datagram &&
               real.errCorr == ideal.error_correction,
           "a member of a fax attribute");
}

void compare_payload(const QOVA_DataAttribute& real, const model::Data& ideal) {
    expect(real.type == ideal.type, "the type of a data attribute");
}

void compare(const QOVA_MediaAttribute& real, const model::Attribute& ideal) {
    expect(real.status == ideal.status && real.attributeType == ideal.type,
           "a member of an attribute's base");
    std::visit(
        [&](const auto& payload) {
            using Class = typename ClassOf<std::decay_t<decltype(payload)>>::Type;
            expect(
                typeid(real) == (ideal.derived ? typeid(DerivedAttribute<Class>) : typeid(Class)),
                "the class of an attribute");
            compare_payload(static_cast<const Class&>(real), payload);
        },
        ideal.payload);
}

void compare(const QOVA_Crypto& real, const model::Crypto& ideal) {
    expect(typeid(real) == (ideal.derived ? typeid(Derived<QOVA_Crypto>) : typeid(QOVA_Crypto)),
           "the class of a crypto line");
    expect(real.tag == ideal.tag && real.algo == ideal.suite, "a member of a crypto line");
    expect(std::equal(real.keys.begin(), real.keys.end(), ideal.keys.begin(), ideal.keys.end(),
                      [](const QOVA_CryptoKey& left, const model::Key& right) {
                          return left.lifetime == right.lifetime &&
                                 left.mkiSize == right.mki_size &&
                                 std::equal(std::begin(left.mki), std::end(left.mki),
                                            right.mki.begin(), right.mki.end()) &&
                                 std::equal(std::begin(left.key), std::end(left.key),
                                            right.key.begin(), right.key.end());
                      }),
           "a key entry");
}

void compare(const Sdp::Sdp_Amrwb_Param* real, const model::AmrWb& ideal) {
    expect((real == nullptr) == (ideal.identity == 0), "whether there are AMR-WB parameters");
    if (real == nullptr) {
        return;
    }
    bool same = real->octetAlign == ideal.octet_align && real->payloadType == ideal.payload_type &&
                std::equal(real->modeSet.begin(), real->modeSet.end(), ideal.mode_set.begin(),
                           ideal.mode_set.end());
    for (std::size_t i = 0; i < ideal.further.size(); ++i) {
        same = same && real->*further_members[i] == ideal.further[i];
    }
    expect(same, "an AMR-WB parameter");
}

void compare(const Sdp::Sdp_Opus_Param* real, const model::Opus& ideal) {
    expect((real == nullptr) == (ideal.identity == 0), "whether there are Opus parameters");
    expect(real == nullptr || values(*real) == ideal.values, "an Opus parameter");
}

void compare(const QOVA_Media& real, const model::Media& ideal);

template <class RealList, class IdealList>
void compare_lists(const RealList& real, const IdealList& ideal) {
    expect(real.size() == ideal.size(), "the length of a list");
    auto right = ideal.begin();
    for (const auto* const left : real) {
        compare(*left, *right++);
    }
}

void compare(const QOVA_Media& real, const model::Media& ideal) {
    expect(typeid(real) == (ideal.derived ? typeid(Derived<QOVA_Media>) : typeid(QOVA_Media)),
           "the class of a media");
    expect(real.mediaStatus == ideal.status && real.mediaType == ideal.type,
           "status or type of a media");
    expect(real.bsnd == ideal.sends && real.brcv == ideal.receives, "a direction of a media");
    expect(real.sndPort == ideal.send_port && real.rcvPort == ideal.receive_port &&
               real.sndPort2 == ideal.send_port_2 && real.rcvPort2 == ideal.receive_port_2,
           "a port of a media");
    expect(real.cryptoCount == ideal.crypto_count, "the crypto count of a media");
    expect(real.address != nullptr && real.address->ToString() == ideal.address,
           "the address of a media");
    compare_lists(real.attributes, ideal.attributes);
    compare(real.amrwbParam, ideal.amr_wb);
    compare(real.opusParam, ideal.opus);
    compare_lists(real.cryptos, ideal.cryptos);
}

void compare(const QOVA_Capability& real, const model::Capability& ideal) {
    expect(real.marked == ideal.marked && real.offer == ideal.offer && real.hold == ideal.hold &&
               real.silenceSuppSdp == ideal.silence_suppression,
           "a flag of a capability");
    expect(real.spare1 == ideal.spare[0] && real.spare2 == ideal.spare[1] &&
               real.spare3 == ideal.spare[2],
           "a spare member of a capability");
    expect(real.passThrough == ideal.pass_through, "the pass-through text");
    compare_lists(real.filteredMedia, ideal.media);
}

// The same place in the library's list and in the model's.
template <class Real, class Ideal>
struct Both {
    Real& real;
    Ideal& ideal;
};
using Media = Both<QOVA_Media, model::Media>;
using Capability = Both<QOVA_Capability, model::Capability>;
using Attribute = Both<QOVA_MediaAttribute, model::Attribute>;
using Crypto = Both<QOVA_Crypto, model::Crypto>;

template <class Element>
Element* element(const std::list<Element*>& list, std::size_t place) {
    return *std::next(list.begin(), static_cast<std::ptrdiff_t>(place));
}

template <class Element>
const Element* element(const std::list<Element*>& list, const model::Place& place) {
    return place ? element(list, *place) : nullptr;
}

template <class Element>
void append(std::list<Element*>& list, std::unique_ptr<Element> object) {
    list.push_back(object.get());
    object.release();
}

template <class RealList, class IdealList>
void erase(RealList& real, IdealList& ideal, std::size_t place) {
    const auto node = std::next(real.begin(), static_cast<std::ptrdiff_t>(place));
    delete *node;
    real.erase(node);
    ideal.erase(ideal.begin() + static_cast<std::ptrdiff_t>(place));
}

class World {
public:
    World(const unsigned char* data, std::size_t size) : input(data, size) {
        for (auto& capability : reals) {
            capability = std::make_unique<QOVA_Capability>();
        }
    }

    ~World() {
        for (std::size_t i = 0; i < count; ++i) {
            if (reals[i] != nullptr) {
                clear(i);
            }
        }
    }

    World(const World&) = delete;
    World& operator=(const World&) = delete;

    // Returns the first difference, or nothing.
    std::string run();

    // After a difference nobody knows who owns what.
    void leak() {
        for (auto& capability : reals) {
            capability.release();
        }
    }

private:
    static constexpr std::size_t count = 3;
    static constexpr std::size_t longest_list = 5;

    struct Operation {
        const char* name;
        void (World::*carry_out)();
    };
    static const Operation operations[];

    Bytes input;
    std::array<std::unique_ptr<QOVA_Capability>, count> reals;
    std::array<model::Capability, count> ideals;
    std::size_t failing_allocation = 0;  // 0: none
    allocations::Failure::Extent failure_extent = allocations::Failure::ONCE;

    // --- choosing ---

    std::size_t some_place() { return input.below(count); }

    Capability at(std::size_t place) { return {*reals[place], ideals[place]}; }
    Capability some_capability() { return at(some_place()); }

    static Media media_at(const Capability& capability, std::size_t place) {
        return {*element(capability.real.filteredMedia, place), capability.ideal.media[place]};
    }

    // Makes a media where there is none.
    Media some_media() {
        const Capability capability = some_capability();
        if (capability.ideal.media.empty()) {
            add_media(capability, false);
        }
        return media_at(capability, input.below(capability.ideal.media.size()));
    }

    static Attribute attribute_at(const Media& media, std::size_t place) {
        return {*element(media.real.attributes, place), media.ideal.attributes[place]};
    }

    Attribute some_attribute() {
        const Media media = some_media();
        if (media.ideal.attributes.empty()) {
            add_attribute(media);
        }
        return attribute_at(media, input.below(media.ideal.attributes.size()));
    }

    static Crypto crypto_at(const Media& media, std::size_t place) {
        return {*element(media.real.cryptos, place), media.ideal.cryptos[place]};
    }

    Crypto some_crypto() {
        const Media media = some_media();
        if (media.ideal.cryptos.empty()) {
            add_crypto(media);
        }
        return crypto_at(media, input.below(media.ideal.cryptos.size()));
    }

    // --- parameter objects: the last media that holds one frees it ---

    template <class Parameters>
    bool shared(Parameters model::Media::*parameters, model::Identity identity) const {
        std::size_t holders = 0;
        for (const model::Capability& capability : ideals) {
            for (const model::Media& media : capability.media) {
                holders += (media.*parameters).identity == identity ? 1U : 0U;
            }
        }
        return holders > 1;
    }

    // Frees the object unless another media holds it too.
    template <class Object, class Parameters>
    void drop(Object*& object, const Media& media, Parameters model::Media::*parameters) {
        Parameters& ideal = media.ideal.*parameters;
        if (!shared(parameters, ideal.identity)) {
            delete object;
        }
        object = nullptr;
        ideal = Parameters();
    }

    // Leaves to the media only what it alone holds, so that it may be freed or assigned to.
    void let_go(const Media& media) {
        if (shared(&model::Media::amr_wb, media.ideal.amr_wb.identity)) {
            drop(media.real.amrwbParam, media, &model::Media::amr_wb);
        }
        if (shared(&model::Media::opus, media.ideal.opus.identity)) {
            drop(media.real.opusParam, media, &model::Media::opus);
        }
    }

    void let_go(const Capability& capability) {
        for (std::size_t i = 0; i < capability.ideal.media.size(); ++i) {
            let_go(media_at(capability, i));
        }
    }

    // Gives the media the parameter objects without which it must not be copied or rendered.
    void make_whole(const Media& media) {
        if (media.real.amrwbParam == nullptr) {
            media.real.amrwbParam = new Sdp::Sdp_Amrwb_Param;
            media.ideal.amr_wb.identity = model::fresh_identity();
        }
        if (media.real.opusParam == nullptr) {
            media.real.opusParam = new Sdp::Sdp_Opus_Param;
            media.ideal.opus.identity = model::fresh_identity();
        }
    }

    void make_whole(const Capability& capability) {
        for (std::size_t i = 0; i < capability.ideal.media.size(); ++i) {
            make_whole(media_at(capability, i));
        }
    }

    // --- failing allocations ---

    // Makes a call, under the failure that was asked for. Returns whether it went through.
    template <class Call>
    bool attempt(Call call) {
        bool failed = false;
        bool refused = false;
        const std::size_t before = allocations::made();
        {
            const allocations::Failure failure(failing_allocation, failure_extent);
            try {
                call();
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            refused = allocations::Failure::consumed();
        }
        expect(failed == refused, failed ? "a failure without a cause" : "a failure was swallowed");
        if (failed) {
            failing_allocation = 0;
            ++failure_count;
        } else if (failing_allocation != 0) {
            failing_allocation -= allocations::made() - before;
        }
        return !failed;
    }

    // As attempt(), for calls that change nothing: what fails leaves no block behind.
    template <class Call>
    bool attempt_unchanging(Call call) {
        const std::size_t before = allocations::live();
        const bool succeeded = attempt(call);
        expect(succeeded || allocations::live() == before, "a failed operation leaks");
        return succeeded;
    }

    static bool renderable(const QOVA_Capability& capability) {
        return std::all_of(capability.filteredMedia.begin(), capability.filteredMedia.end(),
                           [](const QOVA_Media* media) { return renderable(*media); });
    }

    static bool renderable(const QOVA_Media& media) {
        return media.address != nullptr && media.amrwbParam != nullptr &&
               media.opusParam != nullptr;
    }

    void clear(std::size_t place) {
        let_go(at(place));
        reals[place] = std::make_unique<QOVA_Capability>();
        ideals[place] = model::Capability();
    }

    // --- building ---

    void add_media(const Capability& capability, bool derived) {
        std::unique_ptr<QOVA_Media> real;
        if (!attempt_unchanging([&] {
                if (derived) {
                    real = std::make_unique<Derived<QOVA_Media>>();
                } else {
                    real = std::make_unique<QOVA_Media>();
                }
            })) {
            real = std::make_unique<QOVA_Media>();
            derived = false;
        }
        model::Media ideal;
        ideal.derived = derived;
        ideal.type = 1 + input.number() % 4;
        ideal.status = input.number() % 4;
        fill(*real, ideal);
        append(capability, std::move(real), ideal);
    }

    void append(const Capability& capability, std::unique_ptr<QOVA_Media> real,
                const model::Media& ideal) {
        if (capability.ideal.media.size() == longest_list) {
            let_go(media_at(capability, 0));
            erase(capability.real.filteredMedia, capability.ideal.media, 0);
        }
        ::append(capability.real.filteredMedia, std::move(real));
        capability.ideal.media.push_back(ideal);
    }

    template <class Real, class Ideal>
    static void append(std::list<Real*>& reals, std::unique_ptr<Real> real,
                       std::vector<Ideal>& ideals, const Ideal& ideal) {
        if (ideals.size() == longest_list) {
            erase(reals, ideals, 0);
        }
        ::append(reals, std::move(real));
        ideals.push_back(ideal);
    }

    void set(int& value) { value = input.number(); }
    void set(unsigned& value) { value = input.word(); }
    void set(unsigned char& value) { value = input.octet(); }
    void set(bool& value) { value = input.flag(); }
    void set(std::string& value) { value = input.text(); }

    template <class... Values>
    void set_one_of(Values&... values) {
        std::size_t choice = input.below(sizeof...(values));
        ((choice-- == 0 ? set(values) : void()), ...);
    }

    void edit(model::Audio& audio) {
        set_one_of(audio.codec, audio.framing, audio.vad, audio.echo, audio.max_framing,
                   audio.tone_codec);
    }

    void edit(model::Fax& fax) {
        set_one_of(fax.redundancy, fax.depth, fax.max_rate, fax.rate_management, fax.transport,
                   fax.fill_bit, fax.transcode_mmr, fax.transcode_jbig, fax.max_buffer,
                   fax.max_datagram, fax.error_correction);
    }

    void edit(model::Data& data) { set(data.type); }
    void edit(model::Video& /*video*/) {}
    void edit(model::Stranger& /*stranger*/) {}

    void edit(model::Attribute& attribute) {
        if (input.flag()) {
            set_one_of(attribute.status, attribute.type);
        } else {
            std::visit([this](auto& payload) { edit(payload); }, attribute.payload);
        }
    }

    void add_attribute(const Media& media) {
        model::Attribute ideal;
        switch (input.below(12)) {
            case 0:
                ideal.payload = model::Video();
                break;
            case 1:
                ideal.payload = model::Data();
                break;
            case 2:
                ideal.payload = model::Stranger();
                break;
            case 3:
            case 4:
            case 5:
            case 6:
                ideal.payload = model::Fax();
                break;
            default:
                ideal.payload = model::Audio();
        }
        ideal.derived = input.below(16) == 1;
        edit(ideal);
        append(media.real.attributes, make(ideal), media.ideal.attributes, ideal);
    }

    void edit(model::Crypto& crypto) {
        if (crypto.keys.size() == longest_list) {
            crypto.keys.pop_back();
        } else if (crypto.keys.empty() || input.below(4) == 0) {
            crypto.keys.emplace_back();
        }
        model::Key& key = crypto.keys[input.below(crypto.keys.size())];
        unsigned char& mki_byte = key.mki[input.below(key.mki.size())];
        unsigned char& key_byte = key.key[input.below(key.key.size())];
        set_one_of(crypto.tag, crypto.suite, key.lifetime, key.mki_size, mki_byte, key_byte);
    }

    void add_crypto(const Media& media) {
        model::Crypto ideal;
        ideal.derived = input.below(16) == 1;
        ideal.tag = input.word();
        std::unique_ptr<QOVA_Crypto> real;
        if (ideal.derived) {
            real = std::make_unique<Derived<QOVA_Crypto>>();
        } else {
            real = std::make_unique<QOVA_Crypto>();
        }
        fill(*real, ideal);
        append(media.real.cryptos, std::move(real), media.ideal.cryptos, ideal);
    }

    void edit(const Capability& capability) {
        model::Capability& ideal = capability.ideal;
        set_one_of(ideal.marked, ideal.offer, ideal.hold, ideal.silence_suppression, ideal.spare[0],
                   ideal.spare[1], ideal.spare[2], ideal.pass_through);
        fill(capability.real, ideal);
    }

    void edit(const Media& media) {
        model::Media& ideal = media.ideal;
        set_one_of(ideal.status, ideal.type, ideal.sends, ideal.receives, ideal.send_port,
                   ideal.receive_port, ideal.send_port_2, ideal.receive_port_2, ideal.crypto_count);
        for (unsigned* const port :
             {&ideal.send_port, &ideal.receive_port, &ideal.send_port_2, &ideal.receive_port_2}) {
            *port %= 65536;
        }
        fill(media.real, ideal);
    }

    void edit(const Attribute& attribute) {
        edit(attribute.ideal);
        fill(attribute.real, attribute.ideal);
    }

    void edit(const Crypto& crypto) {
        edit(crypto.ideal);
        fill(crypto.real, crypto.ideal);
    }

    // One change somewhere in a copy that borrows parameter objects, or none.
    void alter(const Capability& capability) {
        if (capability.ideal.media.empty() || input.below(4) == 0) {
            edit(capability);
            return;
        }
        const std::size_t place = input.below(capability.ideal.media.size());
        const Media media = media_at(capability, place);
        const std::size_t attributes = media.ideal.attributes.size();
        const std::size_t cryptos = media.ideal.cryptos.size();
        const std::size_t choice = input.below(8);
        if (choice == 0) {
            set_address(media, input.address());
        } else if (choice == 1) {
            give_back(media.real);
            erase(capability.real.filteredMedia, capability.ideal.media, place);
        } else if (choice == 2 && attributes != 0) {
            erase(media.real.attributes, media.ideal.attributes, attributes - 1);
        } else if (choice == 3 && cryptos != 0) {
            erase(media.real.cryptos, media.ideal.cryptos, cryptos - 1);
        } else if (choice < 6 && attributes != 0) {
            edit(attribute_at(media, input.below(attributes)));
        } else if (choice < 7 && cryptos != 0) {
            edit(crypto_at(media, input.below(cryptos)));
        } else {
            edit(media);
        }
    }

    static void set_address(const Media& media, const std::string& text) {
        auto address = std::make_unique<IPAddress>();
        expect(IPAddress::Parse(text, *address), "an address is not read");
        delete media.real.address;
        media.real.address = address.release();
        media.ideal.address = text;
    }

    // --- the operations ---

    void edit_capability() { edit(some_capability()); }

    void add_media() {
        const Capability capability = some_capability();
        add_media(capability, input.below(4) == 1);
    }

    void remove_media() {
        const Capability capability = some_capability();
        if (!capability.ideal.media.empty()) {
            const std::size_t place = input.below(capability.ideal.media.size());
            let_go(media_at(capability, place));
            erase(capability.real.filteredMedia, capability.ideal.media, place);
        }
    }

    void edit_media() { edit(some_media()); }

    void change_address() {
        const Media media = some_media();
        set_address(media, input.address());
    }

    void add_attribute() { add_attribute(some_media()); }

    void remove_attribute() {
        const Media media = some_media();
        if (!media.ideal.attributes.empty()) {
            erase(media.real.attributes, media.ideal.attributes,
                  input.below(media.ideal.attributes.size()));
        }
    }

    void edit_attribute() { edit(some_attribute()); }

    void add_crypto() { add_crypto(some_media()); }

    void remove_crypto() {
        const Media media = some_media();
        if (!media.ideal.cryptos.empty()) {
            erase(media.real.cryptos, media.ideal.cryptos, input.below(media.ideal.cryptos.size()));
        }
    }

    void edit_crypto() { edit(some_crypto()); }

    void edit_amr_wb() {
        const Media media = some_media();
        if (shared(&model::Media::amr_wb, media.ideal.amr_wb.identity)) {
            drop(media.real.amrwbParam, media, &model::Media::amr_wb);
        }
        make_whole(media);
        model::AmrWb& ideal = media.ideal.amr_wb;
        if (ideal.mode_set.size() == longest_list) {
            ideal.mode_set.clear();
        }
        if (input.below(4) == 0) {
            ideal.mode_set.push_back(input.number());
        } else {
            int& further = ideal.further[input.below(ideal.further.size())];
            set_one_of(ideal.octet_align, ideal.payload_type, further);
        }
        fill(*media.real.amrwbParam, ideal);
    }

    void edit_opus() {
        const Media media = some_media();
        if (shared(&model::Media::opus, media.ideal.opus.identity)) {
            drop(media.real.opusParam, media, &model::Media::opus);
        }
        make_whole(media);
        model::Opus& ideal = media.ideal.opus;
        const std::size_t place = input.below(ideal.values.size());
        int& value = ideal.values[place];
        if (place == 0 || place == 2) {
            value = input.number();
        } else if (place == 1 || place == 7) {
            value = input.port();
        } else {
            value = input.flag() ? 1 : 0;
        }
        fill(*media.real.opusParam, ideal);
    }

    // One object for two media, null for one, or a new object.
    template <class Object, class Parameters>
    void exchange(Object* QOVA_Media::*object, Parameters model::Media::*parameters) {
        const Media media = some_media();
        const Media other = some_media();
        switch (input.below(3)) {
            case 0:
                // An object that both hold already stays.
                if (media.real.*object != other.real.*object) {
                    drop(media.real.*object, media, parameters);
                    media.real.*object = other.real.*object;
                    media.ideal.*parameters = other.ideal.*parameters;
                }
                break;
            case 1:
                drop(media.real.*object, media, parameters);
                break;
            default:
                drop(media.real.*object, media, parameters);
                media.real.*object = new Object;
                (media.ideal.*parameters).identity = model::fresh_identity();
        }
    }

    void exchange_amr_wb() { exchange(&QOVA_Media::amrwbParam, &model::Media::amr_wb); }
    void exchange_opus() { exchange(&QOVA_Media::opusParam, &model::Media::opus); }

    void copy_capability() {
        const std::size_t source = some_place();
        const std::size_t target = some_place();
        make_whole(at(source));
        std::unique_ptr<QOVA_Capability> copy;
        if (attempt_unchanging([&] { copy = std::make_unique<QOVA_Capability>(*reals[source]); })) {
            model::Capability ideal = model::copied(ideals[source]);
            let_go(at(target));
            reals[target] = std::move(copy);
            ideals[target] = std::move(ideal);
        }
    }

    void assign_capability() {
        const std::size_t source = some_place();
        assign(source, some_place());
    }

    void assign_capability_to_itself() {
        const std::size_t place = some_place();
        assign(place, place);
    }

    void assign(std::size_t source, std::size_t target) {
        make_whole(at(source));
        let_go(at(target));
        const auto assignment = [&] {
            expect(&(*reals[target] = *reals[source]) == reals[target].get(),
                   "the result of an assignment");
        };
        if (!attempt(assignment)) {
            ideals[target] = model::Capability();
            if (renderable(*reals[target])) {
                expect(!std::string(*reals[target]).empty(), "the text of a half assigned target");
            }
            if (input.flag()) {
                reals[target] = std::make_unique<QOVA_Capability>();
                return;
            }
            assignment();
        }
        model::assign(ideals[target], ideals[source]);
    }

    void copy_media() {
        const Media source = some_media();
        make_whole(source);
        std::unique_ptr<QOVA_Media> copy;
        if (attempt_unchanging([&] { copy = std::make_unique<QOVA_Media>(source.real); })) {
            const model::Media ideal = model::copied(source.ideal);
            append(some_capability(), std::move(copy), ideal);
        }
    }

    void clone_media() {
        const Media source = some_media();
        make_whole(source);
        std::unique_ptr<QOVA_Media> copy;
        if (attempt_unchanging([&] { copy.reset(source.real.clone()); })) {
            const model::Media ideal = model::cloned(source.ideal);
            append(some_capability(), std::move(copy), ideal);
        }
    }

    void assign_media() {
        // The first choice stays where it is: the second makes a media only where there is none.
        const Media target = some_media();
        const Media source = some_media();
        assign(target, source);
    }

    void assign_media_to_itself() {
        const Media media = some_media();
        assign(media, media);
    }

    void assign(const Media& target, const Media& source) {
        make_whole(source);
        if (&target.real != &source.real) {
            let_go(target);
        }
        const auto assignment = [&] {
            expect(&(target.real = source.real) == &target.real, "the result of an assignment");
        };
        if (!attempt(assignment)) {
            if (renderable(target.real)) {
                expect(!std::string(target.real).empty(), "the text of a half assigned target");
            }
            assignment();
        }
        model::assign(target.ideal, source.ideal);
    }

    void clone_attribute() {
        const auto source = some_attribute();
        std::unique_ptr<QOVA_MediaAttribute> copy;
        if (attempt_unchanging([&] { copy.reset(source.real.clone()); })) {
            const model::Attribute ideal = source.ideal;
            const Media media = some_media();
            append(media.real.attributes, std::move(copy), media.ideal.attributes, ideal);
        }
    }

    void copy_crypto() {
        const auto source = some_crypto();
        std::unique_ptr<QOVA_Crypto> copy;
        const bool virtually = input.flag();
        if (attempt_unchanging([&] {
                if (virtually) {
                    copy.reset(source.real.clone());
                } else {
                    copy = std::make_unique<QOVA_Crypto>(source.real);
                }
            })) {
            model::Crypto ideal = source.ideal;
            ideal.derived = ideal.derived && virtually;
            const Media media = some_media();
            append(media.real.cryptos, std::move(copy), media.ideal.cryptos, ideal);
        }
    }

    template <class Real, class Ideal>
    void compare_with_model(const Both<Real, Ideal>& left, const Both<Real, Ideal>& right) {
        bool equal = false;
        if (attempt_unchanging([&] { equal = left.real == right.real; })) {
            expect(equal == model::equal(left.ideal, right.ideal), "equality");
        }
    }

    void compare_capabilities() {
        const Capability left = some_capability();
        compare_with_model(left, some_capability());
    }

    // A copy that borrows the parameter objects of its source equals it, until it is altered.
    void compare_with_altered_copy() {
        const Capability source = some_capability();
        make_whole(source);
        if (input.flag()) {
            source.real.passThrough = source.ideal.pass_through = "";
        }
        // After a difference it leaks, as it must not free what it borrowed.
        auto* const real = new QOVA_Capability(source.real);
        model::Capability ideal = model::copied(source.ideal);
        const Capability copy = {*real, ideal};
        for (std::size_t i = 0; i < ideal.media.size(); ++i) {
            const Media lender = media_at(source, i);
            const Media borrower = media_at(copy, i);
            delete borrower.real.amrwbParam;
            delete borrower.real.opusParam;
            borrower.real.amrwbParam = lender.real.amrwbParam;
            borrower.real.opusParam = lender.real.opusParam;
            borrower.ideal.amr_wb = lender.ideal.amr_wb;
            borrower.ideal.opus = lender.ideal.opus;
        }
        alter(copy);
        compare_with_model(source, copy);
        compare_with_model(copy, source);
        for (QOVA_Media* const media : real->filteredMedia) {
            give_back(*media);
        }
        delete real;
    }

    static void give_back(QOVA_Media& borrower) {
        borrower.amrwbParam = nullptr;
        borrower.opusParam = nullptr;
    }

    void compare_media() {
        const Media left = some_media();
        compare_with_model(left, some_media());
    }

    void compare_attributes() {
        const auto left = some_attribute();
        compare_with_model(left, some_attribute());
    }

    void compare_cryptos() {
        const auto left = some_crypto();
        compare_with_model(left, some_crypto());
    }

    void search_capability() {
        const Capability capability = some_capability();
        const std::list<QOVA_Media*>& media = capability.real.filteredMedia;
        const int wanted = input.number();
        const auto codec = static_cast<QOVA_Codec>(wanted);
        const auto transport = static_cast<QOVA_FaxTransport>(wanted);
        QOVA_Media* with_codec = nullptr;
        QOVA_Media* with_transport = nullptr;
        QOVA_AudioAttribute* with_tones = nullptr;
        bool mute = false;
        expect(attempt([&] {
                   with_codec = capability.real.find(codec);
                   with_transport = capability.real.find(transport);
                   with_tones = capability.real.find_mf(codec);
                   mute = capability.real.isMute();
               }),
               "a search allocates");
        expect(with_codec == element(media, model::find_codec(capability.ideal, wanted)),
               "find(QOVA_Codec)");
        expect(with_transport == element(media, model::find_transport(capability.ideal, wanted)),
               "find(QOVA_FaxTransport)");
        const auto tones = model::find_tone_codec(capability.ideal, wanted);
        expect(
            with_tones == (tones ? element(element(media, tones->first)->attributes, tones->second)
                                 : nullptr),
            "find_mf");
        expect(mute == model::is_mute(capability.ideal), "isMute");
    }

    void search_media_of_capability() {
        const Capability capability = some_capability();
        const int type = input.number();
        const int status = input.number();
        std::list<QOVA_Media*> found;
        if (attempt_unchanging([&] {
                found = capability.real.find(static_cast<QOVA_Media::e_MediaType>(type),
                                             static_cast<QOVA_Media::e_MediaStatus>(status));
            })) {
            std::list<QOVA_Media*> expected;
            for (const std::size_t place : model::find_media(capability.ideal, type, status)) {
                expected.push_back(element(capability.real.filteredMedia, place));
            }
            expect(found == expected, "find(e_MediaType, e_MediaStatus)");
        }
    }

    void search_media() {
        const Media media = some_media();
        const std::list<QOVA_MediaAttribute*>& attributes = media.real.attributes;
        const int wanted = input.number();
        const int status = input.number();
        const auto codec = static_cast<QOVA_Codec>(wanted);
        const auto transport = static_cast<QOVA_FaxTransport>(wanted);
        QOVA_AudioAttribute* with_codec = nullptr;
        QOVA_FaxAttribute* with_transport = nullptr;
        QOVA_AudioAttribute* with_tones = nullptr;
        QOVA_MediaAttribute* with_type = nullptr;
        bool mute = false;
        expect(attempt([&] {
                   with_codec = media.real.find(codec);
                   with_transport = media.real.find(transport);
                   with_tones = media.real.find_mf(codec);
                   with_type = media.real.find(static_cast<QOVA_Media::e_AttributeType>(wanted),
                                               static_cast<QOVA_Media::e_MediaStatus>(status));
                   mute = media.real.isMute();
               }),
               "a search allocates");
        expect(with_codec == element(attributes, model::find_codec(media.ideal, wanted)),
               "find(QOVA_Codec)");
        expect(with_transport == element(attributes, model::find_transport(media.ideal, wanted)),
               "find(QOVA_FaxTransport)");
        expect(with_tones == element(attributes, model::find_tone_codec(media.ideal, wanted)),
               "find_mf");
        expect(with_type == element(attributes, model::find_attribute(media.ideal, wanted, status)),
               "find(e_AttributeType, e_MediaStatus)");
        expect(mute == model::is_mute(media.ideal), "isMute");
    }

    void reject_media() {
        const Capability capability = some_capability();
        const int type = input.number();
        expect(attempt([&] {
                   capability.real.rejectMedia(static_cast<QOVA_Media::e_MediaType>(type));
               }),
               "rejectMedia allocates");
        model::reject(capability.ideal, type);
    }

    void clear_directions() {
        const Capability capability = some_capability();
        expect(attempt([&] { capability.real.ClearMediaDirection(); }),
               "ClearMediaDirection allocates");
        model::clear_directions(capability.ideal);
    }

    void move() {
        const std::size_t place = some_place();
        const std::string text = input.address();
        const unsigned short audio_port = input.port();
        const unsigned short fax_port = input.port();
        const bool to_public = input.flag();
        IPAddress ip;
        expect(IPAddress::Parse(text, ip), "an address is not read");
        const UDPAddr address(ip, input.port());
        QOVA_Capability& real = *reals[place];
        if (attempt([&] {
                if (to_public) {
                    real.setPublicAddrPort(address, audio_port, fax_port);
                } else {
                    real.setLocalAddrPort(address, audio_port, fax_port);
                }
            })) {
            const auto ideal_move = to_public ? model::move_to_public : model::move_to_local;
            ideal_move(ideals[place], text, audio_port, fax_port);
            return;
        }
        if (renderable(real)) {
            expect(!std::string(real).empty(), "the text of a half moved capability");
        }
        // One media is without an address now.
        if (input.flag()) {
            clear(place);
        } else {
            assign((place + 1) % count, place);
        }
    }

    template <class Real, class Ideal>
    void render(const Both<Real, Ideal>& object) {
        std::string text;
        if (attempt_unchanging([&] {
                const std::string whole(object.real);
                text = whole;
            })) {
            expect_text(text, model::text(object.ideal));
        }
    }

    void render_capability() {
        const Capability capability = some_capability();
        make_whole(capability);
        render(capability);
    }

    void render_media() {
        const Media media = some_media();
        make_whole(media);
        render(media);
    }

    void render_attribute() { render(some_attribute()); }
    void render_crypto() { render(some_crypto()); }

    void name_values() {
        const int value = input.number();
        expect_text(ToString(static_cast<QOVA_Codec>(value)), model::codec_name(value));
        expect_text(ToString(static_cast<QOVA_EarlyMedia>(value)), model::early_media_name(value));
        expect_text(QOVA_Media::ToString(static_cast<QOVA_Media::e_MediaType>(value)),
                    model::media_type_name(value));
        expect_text(QOVA_Media::ToString(static_cast<QOVA_Media::e_MediaStatus>(value)),
                    model::status_name(value));
        expect_text(Sdp::CryptoParser::enumToAlgo(static_cast<g_crypto_suite>(value)),
                    model::suite_name(value));
    }

    // One of the library's next allocations fails.
    void ask_for_failure() {
        failing_allocation = 1 + input.below(16);
        failure_extent =
            input.flag() ? allocations::Failure::FROM_THERE_ON : allocations::Failure::ONCE;
    }

    // --- comparing all ---

    void compare_all() {
        struct Holder {
            const void* object;
            model::Identity identity;
        };
        Holder holders[2][count * longest_list];
        std::size_t held = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const Capability capability = at(i);
            compare(capability.real, capability.ideal);
            auto ideal = capability.ideal.media.begin();
            for (const QOVA_Media* const media : capability.real.filteredMedia) {
                holders[0][held] = {media->amrwbParam, ideal->amr_wb.identity};
                holders[1][held] = {media->opusParam, ideal->opus.identity};
                ++held;
                ++ideal;
            }
        }
        for (const auto& kind : holders) {
            for (std::size_t i = 0; i < held; ++i) {
                for (std::size_t j = 0; j < i; ++j) {
                    expect((kind[i].object == kind[j].object) ==
                               (kind[i].identity == kind[j].identity),
                           "the identity of a parameter object");
                }
            }
        }
    }
};

const World::Operation World::operations[] = {
    {"edit a capability", &World::edit_capability},
    {"add a media", &World::add_media},
    {"remove a media", &World::remove_media},
    {"edit a media", &World::edit_media},
    {"change an address", &World::change_address},
    {"add an attribute", &World::add_attribute},
    {"remove an attribute", &World::remove_attribute},
    {"edit an attribute", &World::edit_attribute},
    {"add a crypto line", &World::add_crypto},
    {"remove a crypto line", &World::remove_crypto},
    {"edit a crypto line", &World::edit_crypto},
    {"edit AMR-WB parameters", &World::edit_amr_wb},
    {"edit Opus parameters", &World::edit_opus},
    {"exchange AMR-WB parameters", &World::exchange_amr_wb},
    {"exchange Opus parameters", &World::exchange_opus},
    {"copy a capability", &World::copy_capability},
    {"assign a capability", &World::assign_capability},
    {"assign a capability to itself", &World::assign_capability_to_itself},
    {"copy a media", &World::copy_media},
    {"clone a media", &World::clone_media},
    {"assign a media", &World::assign_media},
    {"assign a media to itself", &World::assign_media_to_itself},
    {"clone an attribute", &World::clone_attribute},
    {"copy a crypto line", &World::copy_crypto},
    {"compare capabilities", &World::compare_capabilities},
    {"compare with an altered copy", &World::compare_with_altered_copy},
    {"compare media", &World::compare_media},
    {"compare attributes", &World::compare_attributes},
    {"compare crypto lines", &World::compare_cryptos},
    {"search a capability", &World::search_capability},
    {"search the media of a capability", &World::search_media_of_capability},
    {"search a media", &World::search_media},
    {"reject a media", &World::reject_media},
    {"clear directions", &World::clear_directions},
    {"move", &World::move},
    {"render a capability", &World::render_capability},
    {"render a media", &World::render_media},
    {"render an attribute", &World::render_attribute},
    {"render a crypto line", &World::render_crypto},
    {"name values", &World::name_values},
    {"ask for a failure", &World::ask_for_failure},
};

std::string World::run() {
    while (!input.empty()) {
        const Operation& operation = operations[input.below(std::size(operations))];
        try {
            (this->*operation.carry_out)();
            ++operation_count;
            compare_all();
        } catch (const Difference& difference) {
            return std::string(operation.name) + ": " + difference.what;
        }
    }
    return "";
}

}  // namespace

std::string model_driver::run(const unsigned char* data, std::size_t size) {
    const std::size_t before = allocations::live();
    {
        World world(data, size);
        std::string difference = world.run();
        if (!difference.empty()) {
            world.leak();
            return difference;
        }
    }
    return allocations::live() == before ? "" : "blocks are still alive at the end";
}

unsigned long long model_driver::operations() {
    return operation_count;
}

unsigned long long model_driver::failed_operations() {
    return failure_count;
}
