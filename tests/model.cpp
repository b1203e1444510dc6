#include "model.h"

#include <algorithm>
#include <initializer_list>
#include <tuple>

namespace model {

namespace {

enum : int { AUDIO = 1, FAX = 3, REJECTED = 2, ANY_STATUS = 0 };

std::string decimal(unsigned value) {
    return std::to_string(value);
}
std::string decimal(int value) {
    return std::to_string(value);
}
std::string digit(bool value) {
    return value ? "1" : "0";
}

std::string pick(std::initializer_list<const char*> names, int value, const char* otherwise) {
    const auto place = static_cast<unsigned>(value);
    return place < names.size() ? names.begin()[place] : otherwise;
}

std::string payload_text(const Audio& audio, int status) {
    return "\t\t -> " + codec_name(audio.codec) + " / " + status_name(status) +
           " / framing=" + decimal(audio.framing) + " / vad=" + digit(audio.vad) +
           " / echo=" + digit(audio.echo) + " / mxFraming=" + decimal(audio.max_framing) +
           " / MF=" + decimal(audio.tone_codec) + "\n";
}

std::string payload_text(const Fax& fax, int /*status*/) {
    return "\t\t -> fax / transport=" + pick({"NIL", "T38udptl", "T38tcp"}, fax.transport, "NIL") +
           " / red=" + decimal(fax.redundancy) + " / depth=" + decimal(fax.depth) +
           " / mxRate=" + decimal(fax.max_rate) +
           "\n\t\t    rateMgt=" + pick({"NIL", "TRFTCF", "LocalTCF"}, fax.rate_management, "NIL") +
           " / fillBit=" + digit(fax.fill_bit) + " / transMMR=" + digit(fax.transcode_mmr) +
           " / transJBIG=" + digit(fax.transcode_jbig) +
           "\n\t\t    mxBuffer=" + decimal(fax.max_buffer) +
           "/ mxDgram=" + decimal(fax.max_datagram) +
           " / errCorr=" + decimal(fax.error_correction) + "\n";
}

std::string payload_text(const Video& /*video*/, int /*status*/) {
    return "\t\t -> video : not implemented\n";
}

std::string payload_text(const Data& /*data*/, int /*status*/) {
    return "\t\t -> Data / type=NIL\n";
}

std::string payload_text(const Stranger& /*stranger*/, int /*status*/) {
    return "stranger";
}

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

// Appends "name=value" to a list in parentheses that opens with its first entry.
void add_parameter(std::string& list, const std::string& format, const std::string& name,
                   const std::string& value) {
    list += list.empty() ? " " + format + "(" : "; ";
    list += name + "=" + value;
}

std::string closed(const std::string& list) {
    return list.empty() ? list : list + ")";
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
    for (unsigned* const port :
         {&media.send_port, &media.receive_port, &media.send_port_2, &media.receive_port_2}) {
        *port = (*port + shift) % 65536;
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

std::string codec_name(int codec) {
    if (codec >= 96 && codec <= 127) {
        return "DYN(" + decimal(codec) + ")";
    }
    return pick({"NIL", "G711alaw", "G711ulaw", "G723", "G729", "G729a", "G711nil", "G729nil",
                 "G722", "G722.2", "OPUS"},
                codec, "NIL");
}

std::string early_media_name(int direction) {
    return pick({"nil", "sendrecv", "sendonly", "recvonly", "inactive"}, direction, "unknown???");
}

std::string media_type_name(int type) {
    return pick({"Nil", "Audio", "Video", "Fax", "Data"}, type, "Nil");
}

std::string status_name(int status) {
    return pick({"Unknown", "Accepted", "Rejected", "Modified"}, status, "Unknown");
}

std::string suite_name(int suite) {
    return pick({"NIL", "AES_CM_128_HMAC_SHA1_80", "AES_CM_128_HMAC_SHA1_32", "F8_128_HMAC_SHA1_80",
                 "SEED_CTR_128_HMAC_SHA1_80", "SEED_128_CCM_80", "SEED_128_GCM_96",
                 "AES_192_CM_HMAC_SHA1_80", "AES_192_CM_HMAC_SHA1_32", "AES_256_CM_HMAC_SHA1_80",
                 "AES_256_CM_HMAC_SHA1_32", "AEAD_AES_128_GCM", "AEAD_AES_256_GCM"},
                suite, "NIL");
}

std::string text(const Attribute& attribute) {
    const std::string own =
        std::visit([&](const auto& payload) { return payload_text(payload, attribute.status); },
                   attribute.payload);
    return attribute.derived ? "derived" + own : own;
}

std::string text(const Crypto& crypto) {
    std::string line = "\t\ttag=" + decimal(crypto.tag) + ", algo=" + suite_name(crypto.suite);
    for (const Key& key : crypto.keys) {
        line += ", key=(lifetime=" + decimal(key.lifetime) + " / mki=";
        for (const unsigned byte : key.mki) {
            line += decimal(byte);
        }
        line += " / mkiSize=" + decimal(unsigned{key.mki_size}) + ")";
    }
    return line + "\n";
}

std::string text(const AmrWb& parameters) {
    static constexpr std::array<const char*, 8> names = {"mode-change-period",
                                                         "mode-change-capability",
                                                         "mode-change-neighbor",
                                                         "crc",
                                                         "robust-sorting",
                                                         "interleaving",
                                                         "channels",
                                                         "max-red"};
    std::string list;
    if (parameters.payload_type != 0) {
        add_parameter(list, "AMR-WB", "payload-type", decimal(parameters.payload_type));
    }
    if (parameters.octet_align != 255) {
        add_parameter(list, "AMR-WB", "octet-align", decimal(parameters.octet_align));
    }
    std::string modes;
    for (const int mode : parameters.mode_set) {
        modes += (modes.empty() ? "" : ",") + decimal(mode);
    }
    if (!modes.empty()) {
        add_parameter(list, "AMR-WB", "mode-set", modes);
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (parameters.further[i] != 255) {
            add_parameter(list, "AMR-WB", names[i], decimal(parameters.further[i]));
        }
    }
    return closed(list);
}

std::string text(const Opus& parameters) {
    static constexpr std::array<const char*, 9> names = {"maxplaybackrate",
                                                         "sprop-maxcapturerate",
                                                         "maxaveragebitrate",
                                                         "stereo",
                                                         "cbr",
                                                         "useinbandfec",
                                                         "usedtx",
                                                         "maxptime",
                                                         "sprop-stereo"};
    std::string list;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (parameters.values[i] != 0) {
            add_parameter(list, "opus", names[i], decimal(parameters.values[i]));
        }
    }
    return closed(list);
}

std::string text(const Media& media) {
    std::string result =
        "\t-> media(" + media_type_name(media.type) + ")/" + status_name(media.status) + " @" +
        media.address + "/snd=" + decimal(media.send_port) + "~" + decimal(media.send_port_2) +
        "/rcv=" + decimal(media.receive_port) + "~" + decimal(media.receive_port_2) +
        "/bsnd=" + digit(media.sends) + "/brcv=" + digit(media.receives) + text(media.amr_wb) +
        text(media.opus) + "\n\t   Attributes :";
    for (const Attribute& attribute : media.attributes) {
        result += text(attribute);
    }
    result += "\t   Crypto attributes (" + decimal(media.crypto_count) + ") :\n";
    for (const Crypto& crypto : media.cryptos) {
        result += text(crypto);
    }
    return result;
}

std::string text(const Capability& capability) {
    std::string result = "Capability(";
    result += capability.offer ? "offer, " : "answer, ";
    result += capability.hold ? "Hold, " : "Not Hold, ";
    result += capability.silence_suppression ? "silenceSuppSdp=yes)" : "silenceSuppSdp=no)";
    result += capability.marked ? "'" : "";
    if (!capability.media.empty()) {
        result += "\n\tFiltered=\n";
        for (const Media& media : capability.media) {
            result += text(media);
        }
    }
    if (!capability.pass_through.empty()) {
        result += "\n\tPass-through=\n" + capability.pass_through + "\n";
    }
    return result;
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
