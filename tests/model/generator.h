// Makes media descriptions from bytes: first as the model's values, then as the library's objects.
// The same bytes mean the same on every machine.

#ifndef QOVA_TESTS_MODEL_GENERATOR_H
#define QOVA_TESTS_MODEL_GENERATOR_H

#include <cstddef>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "model/model.h"
#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"

namespace model {

std::vector<unsigned char> random_bytes(std::mt19937& random, std::size_t count);

// After the last byte all is zero.
class Bytes {
public:
    Bytes(const unsigned char* data, std::size_t size) : at(data), end(data + size) {}

    bool empty() const { return at == end; }
    unsigned byte() { return empty() ? 0 : *at++; }
    std::size_t below(std::size_t bound) { return byte() % bound; }
    bool flag() { return byte() % 2 != 0; }
    // Small, from the edge of a range, or any.
    unsigned word();
    int number() { return static_cast<int>(word()); }
    unsigned short port() { return static_cast<unsigned short>(word()); }
    // Often empty; of any bytes.
    std::string text();
    std::string address();
    // Of a list: seldom long.
    std::size_t length();

    void set(int& value) { value = number(); }
    void set(unsigned& value) { value = word(); }
    void set(unsigned short& value) { value = port(); }
    void set(unsigned char& value) { value = static_cast<unsigned char>(byte()); }
    void set(bool& value) { value = flag(); }
    void set(std::string& value) { value = text(); }
    void set(std::list<int>& value);

    template <class... Values>
    void set_all(std::tuple<Values&...> values) {
        std::apply([&](Values&... each) { (set(each), ...); }, values);
    }

    template <class... Values>
    void set_one(std::tuple<Values&...> values) {
        if constexpr (sizeof...(Values) != 0) {
            std::size_t choice = below(sizeof...(Values));
            std::apply([&](Values&... each) { ((choice-- == 0 ? set(each) : void()), ...); },
                       values);
        }
    }

    // One or all, so that most values of an object may be defaults.
    template <class... Values>
    void set_some(std::tuple<Values&...> values) {
        flag() ? set_all(values) : set_one(values);
    }

private:
    const unsigned char* at;
    const unsigned char* end;
};

Attribute any_attribute(Bytes& input);
Crypto any_crypto(Bytes& input);
Media any_media(Bytes& input);
Capability any_capability(Bytes& input);

// Classes that a user of the library might derive.

class UnknownAttribute : public QOVA_MediaAttribute {
public:
    UnknownAttribute* clone() const override { return new UnknownAttribute(*this); }
    operator const std::string() const override { return "stranger"; }
};

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

template <class Class>
using DerivedFrom = std::conditional_t<std::is_base_of_v<QOVA_MediaAttribute, Class>,
                                       DerivedAttribute<Class>, Derived<Class>>;

// The library's class for a kind of attribute.
QOVA_AudioAttribute class_for(const Audio& audio);
QOVA_VideoAttribute class_for(const Video& video);
QOVA_FaxAttribute class_for(const Fax& fax);
QOVA_DataAttribute class_for(const Data& data);
UnknownAttribute class_for(const Stranger& stranger);
template <class Payload>
using ClassFor = decltype(class_for(std::declval<const Payload&>()));

// The plain members of an object and those of its model, in the same order.

inline auto members(Audio& a) {
    return std::tie(a.codec, a.framing, a.vad, a.echo, a.max_framing, a.tone_codec);
}
inline auto members(QOVA_AudioAttribute& a) {
    return std::tie(a.codec, a.framing, a.vad, a.echo, a.mxFraming, a.mf);
}

inline auto members(Fax& f) {
    return std::tie(f.redundancy, f.depth, f.max_rate, f.rate_management, f.transport, f.fill_bit,
                    f.transcode_mmr, f.transcode_jbig, f.max_buffer, f.max_datagram,
                    f.error_correction);
}
inline auto members(QOVA_FaxAttribute& f) {
    return std::tie(f.red, f.depth, f.mxRate, f.rateMgt, f.transport, f.fillBit, f.transMMR,
                    f.transJBIG, f.mxBuffer, f.mxDgram, f.errCorr);
}

inline auto members(Data& d) {
    return std::tie(d.type);
}
inline auto members(QOVA_DataAttribute& d) {
    return std::tie(d.type);
}

inline std::tuple<> members(Video& /*video*/) {
    return {};
}
inline std::tuple<> members(QOVA_VideoAttribute& /*video*/) {
    return {};
}
inline std::tuple<> members(Stranger& /*stranger*/) {
    return {};
}
inline std::tuple<> members(UnknownAttribute& /*stranger*/) {
    return {};
}

inline auto members(Attribute& a) {
    return std::tie(a.status, a.type);
}
inline auto members(QOVA_MediaAttribute& a) {
    return std::tie(a.status, a.attributeType);
}

inline auto members(Key& k) {
    return std::tie(k.lifetime, k.mki_size);
}
inline auto members(QOVA_CryptoKey& k) {
    return std::tie(k.lifetime, k.mkiSize);
}

inline auto members(Crypto& c) {
    return std::tie(c.tag, c.suite);
}
inline auto members(QOVA_Crypto& c) {
    return std::tie(c.tag, c.algo);
}

inline auto members(AmrWb& p) {
    return std::tie(p.octet_align, p.mode_set, p.mode_change_period, p.mode_change_capability,
                    p.mode_change_neighbor, p.crc, p.robust_sorting, p.interleaving, p.channels,
                    p.max_red, p.payload_type);
}
inline auto members(Sdp::Sdp_Amrwb_Param& p) {
    return std::tie(p.octetAlign, p.modeSet, p.modeChangePeriod, p.modeChangeCapability,
                    p.modeChangeNeighbor, p.crc, p.robustSorting, p.interleaving, p.channels,
                    p.maxRed, p.payloadType);
}

inline auto members(Opus& p) {
    return std::tie(p.max_playback_rate, p.max_capture_rate, p.max_average_bitrate, p.stereo, p.cbr,
                    p.in_band_fec, p.dtx, p.max_ptime, p.sends_stereo);
}
inline auto members(Sdp::Sdp_Opus_Param& p) {
    return std::tie(p.maxPlaybackRate, p.spropMaxCaptureRate, p.maxAverageBitrate, p.stereo, p.cbr,
                    p.useInbandFec, p.useDtx, p.maxPtime, p.spropStereo);
}

inline auto members(Media& m) {
    return std::tie(m.status, m.type, m.sends, m.receives, m.send_port, m.receive_port,
                    m.send_port_2, m.receive_port_2, m.crypto_count);
}
inline auto members(QOVA_Media& m) {
    return std::tie(m.mediaStatus, m.mediaType, m.bsnd, m.brcv, m.sndPort, m.rcvPort, m.sndPort2,
                    m.rcvPort2, m.cryptoCount);
}

inline auto members(Capability& c) {
    return std::tie(c.marked, c.offer, c.pass_through, c.hold, c.spare[0], c.spare[1], c.spare[2],
                    c.silence_suppression);
}
inline auto members(QOVA_Capability& c) {
    return std::tie(c.marked, c.offer, c.passThrough, c.hold, c.spare1, c.spare2, c.spare3,
                    c.silenceSuppSdp);
}

// Gives an object the plain members of its model.
template <class Real, class Ideal>
void set_members(Real& real, Ideal& ideal) {
    const auto assign = [](auto& to, const auto& from) {
        if constexpr (std::is_enum_v<std::remove_reference_t<decltype(to)>>) {
            to = static_cast<std::remove_reference_t<decltype(to)>>(from);
        } else {
            to = from;
        }
    };
    std::apply(
        [&](auto&... to) {
            std::apply([&](auto&... from) { (assign(to, from), ...); }, members(ideal));
        },
        members(real));
}

// Give an object all that its model has; a media must be new.
void fill(QOVA_MediaAttribute& real, Attribute& ideal);
void fill(QOVA_Crypto& real, Crypto& ideal);
void fill(QOVA_Media& real, Media& ideal);

void set_address(QOVA_Media& real, const std::string& address);

template <class Class>
std::unique_ptr<Class> make_default(bool derived) {
    if (derived) {
        return std::make_unique<DerivedFrom<Class>>();
    }
    return std::make_unique<Class>();
}

std::unique_ptr<QOVA_MediaAttribute> make(Attribute ideal);
std::unique_ptr<QOVA_Crypto> make(Crypto ideal);
std::unique_ptr<QOVA_Media> make(Media ideal);
std::unique_ptr<QOVA_Capability> make(Capability ideal);

}  // namespace model

#endif
