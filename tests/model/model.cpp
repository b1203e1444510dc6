#include "model/model.h"

#include <algorithm>
#include <tuple>

namespace model {

namespace {

enum : int { AUDIO = 1, FAX = 3, REJECTED = 2, ANY_STATUS = 0 };

bool payloads_equal(const Audio& a, const Audio& b) {
    return std::tie(a.codec, a.framing, a.vad, a.echo, a.max_framing, a.tone_codec) ==
           std::tie(b.codec, b.framing, b.vad, b.echo, b.max_framing, b.tone_codec);
}

bool payloads_equal(const Fax& a, const Fax& b) {
    const auto fields = [](const Fax& fax) {
        return std::tie(fax.redundancy, fax.depth, fax.max_rate, fax.rate_management, fax.transport,
                        fax.fill_bit, fax.transcode_mmr, fax.transcode_jbig, fax.max_buffer,
                        fax.max_datagram, fax.error_correction);
    };
    return fields(a) == fields(b);
}

bool payloads_equal(const Video& /*a*/, const Video& /*b*/) {
    return true;
}

bool payloads_equal(const Data& a, const Data& b) {
    return a.type == b.type;
}

// Two different kinds, or two strangers.
template <class A, class B>
bool payloads_equal(const A& /*a*/, const B& /*b*/) {
    return false;
}

// Compares two lists side by side until the shorter one ends.
template <class Element, class Equal>
bool equal_side_by_side(const std::vector<Element>& left, const std::vector<Element>& right,
                        Equal equal) {
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (!equal(left[i], right[i])) {
            return false;
        }
    }
    return true;
}

bool keys_equal(const Key& left, const Key& right) {
    return left.lifetime == right.lifetime && left.mki_size == right.mki_size &&
           left.mki == right.mki;
}

template <class Payload, class Match>
Place find_payload(const Media& media, Match match) {
    for (std::size_t i = 0; i < media.attributes.size(); ++i) {
        const Payload* const payload = std::get_if<Payload>(&media.attributes[i].payload);
        if (payload != nullptr && match(*payload)) {
            return i;
        }
    }
    return std::nullopt;
}

void shift_ports(Media& media, unsigned shift) {
    for (unsigned short* const port :
         {&media.send_port, &media.receive_port, &media.send_port_2, &media.receive_port_2}) {
        *port = static_cast<unsigned short>((*port + shift) % 65536);
    }
}

void move(Capability& capability, const std::string& address, unsigned audio_shift,
          unsigned fax_shift) {
    for (Media& media : capability.media) {
        if (media.status == REJECTED) {
            continue;
        }
        media.address = address;
        if (media.type == AUDIO) {
            shift_ports(media, audio_shift);
        }
        if (media.type == FAX) {
            shift_ports(media, fax_shift);
        }
    }
}

constexpr unsigned local_audio_port = 32000;
constexpr unsigned local_fax_port = 6666;

}  // namespace

Identity fresh_identity() {
    static Identity last = 0;
    return ++last;
}

bool equal(const Attribute& left, const Attribute& right) {
    return !right.derived &&
           std::visit([](const auto& a, const auto& b) { return payloads_equal(a, b); },
                      left.payload, right.payload);
}

bool equal(const Crypto& left, const Crypto& right) {
    return !right.derived && equal_side_by_side(left.keys, right.keys, keys_equal) &&
           left.tag == right.tag && left.suite == right.suite;
}

bool equal(const Media& left, const Media& right) {
    const auto scalars = [](const Media& media) {
        return std::tie(media.status, media.type, media.address, media.sends, media.receives,
                        media.send_port, media.receive_port, media.send_port_2,
                        media.receive_port_2, media.amr_wb.identity, media.opus.identity,
                        media.crypto_count);
    };
    const auto pair_equal = [](const auto& a, const auto& b) { return equal(a, b); };
    return scalars(left) == scalars(right) &&
           equal_side_by_side(left.attributes, right.attributes, pair_equal) &&
           equal_side_by_side(left.cryptos, right.cryptos, pair_equal);
}

bool equal(const Capability& left, const Capability& right) {
    if (left.offer != right.offer || left.hold != right.hold ||
        left.silence_suppression != right.silence_suppression) {
        return false;
    }
    if (!left.pass_through.empty() || !right.pass_through.empty()) {
        return left.pass_through == right.pass_through;
    }
    return left.media.size() == right.media.size() &&
           equal_side_by_side(left.media, right.media,
                              [](const Media& a, const Media& b) { return equal(a, b); });
}

Media copied(const Media& source) {
    Media copy = cloned(source);
    copy.derived = false;
    return copy;
}

Media cloned(const Media& source) {
    Media copy = source;
    copy.amr_wb.identity = fresh_identity();
    copy.opus.identity = fresh_identity();
    return copy;
}

Capability copied(const Capability& source) {
    Capability copy = source;
    copy.media.clear();
    for (const Media& media : source.media) {
        copy.media.push_back(cloned(media));
    }
    return copy;
}

void assign(Media& target, const Media& source) {
    if (&target == &source) {
        return;
    }
    const bool derived = target.derived;
    target = copied(source);
    target.derived = derived;
}

void assign(Capability& target, const Capability& source) {
    // The target's media go first, which empties the source when both are one.
    target.media.clear();
    const std::vector<Media> from = source.media;
    target = source;
    target.media.clear();
    for (const Media& media : from) {
        target.media.push_back(copied(media));
    }
}

Place find_codec(const Media& media, int codec) {
    return find_payload<Audio>(media, [codec](const Audio& audio) { return audio.codec == codec; });
}

Place find_transport(const Media& media, int transport) {
    return find_payload<Fax>(media,
                             [transport](const Fax& fax) { return fax.transport == transport; });
}

Place find_tone_codec(const Media& media, int codec) {
    return find_payload<Audio>(media,
                               [codec](const Audio& audio) { return audio.tone_codec == codec; });
}

Place find_attribute(const Media& media, int type, int status) {
    for (std::size_t i = 0; i < media.attributes.size(); ++i) {
        const Attribute& attribute = media.attributes[i];
        if (attribute.type == type && (status == ANY_STATUS || attribute.status == status)) {
            return i;
        }
    }
    return std::nullopt;
}

bool is_mute(const Media& media) {
    return media.address == "0.0.0.0" || media.address == "::" || media.receive_port == 0;
}

std::vector<std::size_t> find_media(const Capability& capability, int type, int status) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < capability.media.size(); ++i) {
        const Media& media = capability.media[i];
        if (media.type == type && (status == ANY_STATUS || media.status == status)) {
            found.push_back(i);
        }
    }
    return found;
}

Place find_codec(const Capability& capability, int codec) {
    for (const std::size_t i : find_media(capability, AUDIO, ANY_STATUS)) {
        if (find_codec(capability.media[i], codec)) {
            return i;
        }
    }
    return std::nullopt;
}

Place find_transport(const Capability& capability, int transport) {
    for (const std::size_t i : find_media(capability, FAX, ANY_STATUS)) {
        if (find_transport(capability.media[i], transport)) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<std::pair<std::size_t, std::size_t>> find_tone_codec(const Capability& capability,
                                                                   int codec) {
    for (const std::size_t i : find_media(capability, AUDIO, ANY_STATUS)) {
        if (const Place place = find_tone_codec(capability.media[i], codec)) {
            return std::pair(i, *place);
        }
    }
    return std::nullopt;
}

bool is_mute(const Capability& capability) {
    const std::vector<std::size_t> audio = find_media(capability, AUDIO, ANY_STATUS);
    return std::any_of(audio.begin(), audio.end(),
                       [&](std::size_t i) { return is_mute(capability.media[i]); });
}

void reject(Capability& capability, int type) {
    for (Media& media : capability.media) {
        if (media.type == type) {
            media.send_port = 0;
            media.receive_port = 0;
            return;
        }
    }
}

void clear_directions(Capability& capability) {
    for (Media& media : capability.media) {
        if (media.type == AUDIO) {
            media.sends = false;
            media.receives = false;
        }
    }
}

void move_to_public(Capability& capability, const std::string& address, unsigned audio_port,
                    unsigned fax_port) {
    move(capability, address, 65536 + audio_port - local_audio_port,
         65536 + fax_port - local_fax_port);
}

void move_to_local(Capability& capability, const std::string& address, unsigned audio_port,
                   unsigned fax_port) {
    move(capability, address, 65536 + local_audio_port - audio_port,
         65536 + local_fax_port - fax_port);
}

}  // namespace model
