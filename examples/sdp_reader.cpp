#include "sdp_reader.h"

#include <sofia-sip/sdp.h>

#include <algorithm>
#include <climits>
#include <new>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/crypto.h"
#include "qova/media.h"

namespace sdp {

namespace {

// Where RTP has no room for more, nobody has.
constexpr std::size_t most_formats = 128;

// --- The parser ---------------------------------------------------------------------------------

class Parser {
public:
    Parser(std::string_view text, int flags)
        : home(static_cast<su_home_t*>(su_home_new(sizeof(su_home_t)))) {
        if (home == nullptr) {
            throw std::bad_alloc();
        }
        parser = sdp_parse(home, text.data(), static_cast<issize_t>(text.size()), flags);
    }
    ~Parser() {
        sdp_parser_free(parser);
        su_home_unref(home);
    }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    // Null when the parser refused the text.
    const sdp_session_t* session() const { return sdp_session(parser); }

private:
    su_home_t* home;
    sdp_parser_t* parser = nullptr;
};

// That every line has an address, and which direction, is decided here.
constexpr int parser_flags = sdp_f_c_missing | sdp_f_mode_manual;

// The text as the parser gets it: no blank lines, at which it would stop in silence, no outer
// blanks, and every RTP profile called RTP/AVP, as it reads payloads of few others.
class ParserText {
public:
    explicit ParserText(const Description& description) {
        for (const Section& section : description.sections) {
            for (const Line& line : section) {
                const std::string_view content =
                    trimmed(description.text.substr(line.begin, line.end - line.begin));
                if (line.type == 'm' && media_line(line).is_rtp) {
                    const std::string_view transport = media_line(line).transport;
                    const std::size_t at =
                        description.offset(transport) - description.offset(content);
                    text.append(content.substr(0, at)).append("RTP/AVP");
                    text.append(content.substr(at + transport.size()));
                } else {
                    text += content;
                }
                text += "\r\n";
                lines.push_back({line.number, line.type, text.size()});
            }
        }
    }

    // The parser names no line: it is the one that ends the shortest refused part of the text.
    [[noreturn]] void refuse() const {
        const auto accepts = [this](const End& line) {
            const Parser part(std::string_view(text).substr(0, line.size),
                              parser_flags | sdp_f_insane);
            return part.session() != nullptr;
        };
        const auto refused = std::partition_point(lines.begin(), lines.end(), accepts);
        if (refused == lines.end()) {
            throw Refusal(0, "the SDP parser refuses the description as a whole");
        }
        throw Refusal(refused->number,
                      std::string("the SDP parser refuses this ") + refused->type + "= line");
    }

    std::string text;

private:
    struct End {
        std::size_t number;
        char type;
        std::size_t size;  // of the text up to here
    };
    std::vector<End> lines;
};

// --- Small things -------------------------------------------------------------------------------

template <class T, class Base>
T& append(std::list<Base*>& list, std::unique_ptr<T> object) {
    list.push_back(object.get());
    return *object.release();
}

template <class T>
T& append_attribute(QOVA_Media& media, QOVA_Media::e_AttributeType type) {
    T& attribute = append(media.attributes, std::make_unique<T>());
    attribute.attributeType = type;
    attribute.status = media.mediaStatus;
    return attribute;
}

template <class Number>
void read_number(const Line& line, std::string_view digits, Number& to, const char* what,
                 unsigned long long greatest) {
    const auto value = number(digits, greatest);
    if (!value) {
        throw Refusal(line.number, std::string(what) + ": the value is no number from 0 to " +
                                       std::to_string(greatest));
    }
    to = static_cast<Number>(*value);
}

const Line* last_attribute(const Section& section, std::string_view name) {
    const auto found = std::find_if(section.rbegin(), section.rend(), [name](const Line& line) {
        return line.type == 'a' && same(line.name, name);
    });
    return found == section.rend() ? nullptr : &*found;
}

// a=silenceSupp (RFC 3108); its first value says whether it is on.
std::optional<bool> silence_suppression(const Section& section) {
    const Line* const line = last_attribute(section, "silenceSupp");
    if (line == nullptr) {
        return std::nullopt;
    }
    const std::vector<std::string_view> values = tokens(line->value);
    if (!values.empty() && same(values[0], "on")) {
        return true;
    }
    if (!values.empty() && same(values[0], "off")) {
        return false;
    }
    return std::nullopt;
}

// --- Audio --------------------------------------------------------------------------------------

struct CodecName {
    std::string_view encoding;
    unsigned long rate;
    QOVA_Codec codec;
};
constexpr CodecName codec_names[] = {
    {"PCMA", 8000, CODEC_G711_ALAW}, {"PCMU", 8000, CODEC_G711_ULAW}, {"G723", 8000, CODEC_G723},
    {"G729", 8000, CODEC_G729},      {"G729A", 8000, CODEC_G729A},    {"G722", 8000, CODEC_G722},
    {"G722", 16000, CODEC_G722},     {"AMR-WB", 16000, CODEC_G722_2}, {"opus", 48000, CODEC_OPUS},
};

std::string_view text_of(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

QOVA_Codec codec_of(const sdp_rtpmap_t& payload) {
    for (const CodecName& name : codec_names) {
        if (same(text_of(payload.rm_encoding), name.encoding) && payload.rm_rate == name.rate) {
            return name.codec;
        }
    }
    const unsigned first_dynamic = 96;
    // A static number could be mistaken for an enumerator.
    return payload.rm_pt >= first_dynamic ? static_cast<QOVA_Codec>(payload.rm_pt) : CODEC_NIL;
}

// The payloads of an m= line; one that stands there twice counts once.
std::vector<const sdp_rtpmap_t*> payloads_of(const sdp_media_t& parsed) {
    std::vector<const sdp_rtpmap_t*> payloads;
    for (const sdp_rtpmap_t* map = parsed.m_rtpmaps; map != nullptr; map = map->rm_next) {
        if (std::none_of(payloads.begin(), payloads.end(), [map](const sdp_rtpmap_t* earlier) {
                return earlier->rm_pt == map->rm_pt;
            })) {
            payloads.push_back(map);
        }
    }
    return payloads;
}

// One a=fmtp line.
struct Fmtp {
    const Line* line;
    unsigned payload;
    std::string_view parameters;
};

std::vector<Fmtp> fmtps_of(const Section& section) {
    std::vector<Fmtp> found;
    for (const Line& line : section) {
        if (line.type != 'a' || !same(line.name, "fmtp")) {
            continue;
        }
        const std::size_t blank = std::min(line.value.find_first_of(" \t"), line.value.size());
        const auto payload = number(line.value.substr(0, blank), 127);
        if (!payload || blank == line.value.size()) {
            throw Refusal(line.number, "a=fmtp needs a payload type from 0 to 127 and parameters");
        }
        found.push_back(
            {&line, static_cast<unsigned>(*payload), trimmed(line.value.substr(blank))});
    }
    return found;
}

// Calls read(name, value) for each "name=value" or "name" between semicolons.
template <class Read>
void for_each_parameter(std::string_view parameters, Read read) {
    while (!parameters.empty()) {
        const std::size_t semicolon = std::min(parameters.find(';'), parameters.size());
        const std::string_view parameter = trimmed(parameters.substr(0, semicolon));
        const std::size_t equals = std::min(parameter.find('='), parameter.size());
        read(trimmed(parameter.substr(0, equals)),
             trimmed(parameter.substr(std::min(equals + 1, parameter.size()))));
        parameters.remove_prefix(std::min(semicolon + 1, parameters.size()));
    }
}

void read_mode_set(const Line& line, std::string_view value, std::list<int>& modes) {
    modes.clear();
    for (std::size_t begin = 0; begin <= value.size();) {
        const std::size_t comma = std::min(value.find(',', begin), value.size());
        read_number(line, trimmed(value.substr(begin, comma - begin)), modes.emplace_back(),
                    "mode-set", 8);
        begin = comma + 1;
    }
}

void read_amrwb(const Fmtp& fmtp, Sdp::Sdp_Amrwb_Param& amrwb) {
    using Param = Sdp::Sdp_Amrwb_Param;
    static constexpr struct {
        const char* name;
        int Param::*member;
        unsigned greatest;
    } numbers[] = {
        {"octet-align", &Param::octetAlign, 1},
        {"mode-change-period", &Param::modeChangePeriod, 2},
        {"mode-change-capability", &Param::modeChangeCapability, 2},
        {"mode-change-neighbor", &Param::modeChangeNeighbor, 1},
        {"crc", &Param::crc, 1},
        {"robust-sorting", &Param::robustSorting, 1},
        {"interleaving", &Param::interleaving, 65535},
        {"channels", &Param::channels, 6},
        {"max-red", &Param::maxRed, 65535},
    };
    for_each_parameter(fmtp.parameters, [&](std::string_view name, std::string_view value) {
        if (same(name, "mode-set")) {
            read_mode_set(*fmtp.line, value, amrwb.modeSet);
        }
        for (const auto& known : numbers) {
            if (same(name, known.name)) {
                read_number(*fmtp.line, value, amrwb.*known.member, known.name, known.greatest);
            }
        }
    });
}

void read_opus(const Fmtp& fmtp, Sdp::Sdp_Opus_Param& opus) {
    using Param = Sdp::Sdp_Opus_Param;
    static constexpr struct {
        const char* name;
        bool Param::*member;
    } flags[] = {
        {"stereo", &Param::stereo},
        {"cbr", &Param::cbr},
        {"useinbandfec", &Param::useInbandFec},
        {"usedtx", &Param::useDtx},
        {"sprop-stereo", &Param::spropStereo},
    };
    static constexpr struct {
        const char* name;
        int Param::*member;
    } numbers[] = {
        {"maxplaybackrate", &Param::maxPlaybackRate},
        {"maxaveragebitrate", &Param::maxAverageBitrate},
    };
    static constexpr struct {
        const char* name;
        unsigned short Param::*member;
    } short_numbers[] = {
        {"sprop-maxcapturerate", &Param::spropMaxCaptureRate},
        {"maxptime", &Param::maxPtime},
    };
    for_each_parameter(fmtp.parameters, [&](std::string_view name, std::string_view value) {
        for (const auto& known : flags) {
            if (same(name, known.name)) {
                read_number(*fmtp.line, value, opus.*known.member, known.name, 1);
            }
        }
        for (const auto& known : numbers) {
            if (same(name, known.name)) {
                read_number(*fmtp.line, value, opus.*known.member, known.name, INT_MAX);
            }
        }
        for (const auto& known : short_numbers) {
            if (same(name, known.name)) {
                read_number(*fmtp.line, value, opus.*known.member, known.name, USHRT_MAX);
            }
        }
    });
}

// Voice activity detection as G.729 (annexb) and G.723.1 (annexa) say it.
void read_annex(const Fmtp& fmtp, const char* annex, bool& vad) {
    for_each_parameter(fmtp.parameters, [&](std::string_view name, std::string_view value) {
        if (!same(name, annex)) {
            return;
        }
        if (!same(value, "yes") && !same(value, "no")) {
            throw Refusal(fmtp.line->number, std::string(annex) + " is neither yes nor no");
        }
        vad = same(value, "yes");
    });
}

// The parameters of one payload; those of AMR-WB and Opus go to the line if none went there yet.
void read_fmtps(const std::vector<Fmtp>& fmtps, const sdp_rtpmap_t& payload, QOVA_Codec codec,
                QOVA_Media& media, bool& vad, bool is_first_of_codec) {
    for (const Fmtp& fmtp : fmtps) {
        if (fmtp.payload != payload.rm_pt) {
            continue;
        }
        if (codec == CODEC_G729 || codec == CODEC_G729A) {
            read_annex(fmtp, "annexb", vad);
        } else if (codec == CODEC_G723) {
            read_annex(fmtp, "annexa", vad);
        } else if (codec == CODEC_G722_2 && is_first_of_codec) {
            read_amrwb(fmtp, *media.amrwbParam);
        } else if (codec == CODEC_OPUS && is_first_of_codec) {
            read_opus(fmtp, *media.opusParam);
        }
    }
}

bool is_tone_event(const sdp_rtpmap_t& payload) {
    return same(text_of(payload.rm_encoding), "telephone-event");
}

// The payload type of the tone events with the clock rate of a payload.
QOVA_Codec tone_events_for(const sdp_rtpmap_t& payload,
                           const std::vector<const sdp_rtpmap_t*>& payloads) {
    const auto found =
        std::find_if(payloads.begin(), payloads.end(), [&payload](const sdp_rtpmap_t* candidate) {
            return is_tone_event(*candidate) && candidate->rm_rate == payload.rm_rate;
        });
    return found == payloads.end() ? CODEC_NIL : static_cast<QOVA_Codec>((*found)->rm_pt);
}

void read_audio(const sdp_media_t& parsed, const Section& section, std::optional<bool> silence,
                QOVA_Media& media) {
    int framing = 0;
    int max_framing = 0;
    for (const Line& line : section) {
        if (line.type == 'a' && same(line.name, "ptime")) {
            read_number(line, line.value, framing, "a=ptime", INT_MAX);
        } else if (line.type == 'a' && same(line.name, "maxptime")) {
            read_number(line, line.value, max_framing, "a=maxptime", INT_MAX);
        }
    }
    const std::vector<Fmtp> fmtps = fmtps_of(section);
    const std::vector<const sdp_rtpmap_t*> payloads = payloads_of(parsed);
    for (const sdp_rtpmap_t* payload : payloads) {
        if (is_tone_event(*payload)) {
            continue;
        }
        const QOVA_Codec codec = codec_of(*payload);
        const bool is_first_of_codec = media.find(codec) == nullptr;
        auto& audio = append_attribute<QOVA_AudioAttribute>(media, QOVA_Media::AT_AUDIO);
        audio.codec = codec;
        audio.framing = framing;
        audio.mxFraming = max_framing;
        audio.mf = tone_events_for(*payload, payloads);
        const bool has_annex = codec == CODEC_G729 || codec == CODEC_G729A || codec == CODEC_G723;
        audio.vad = silence.value_or(has_annex);
        if (codec == CODEC_G722_2 && is_first_of_codec) {
            media.amrwbParam->payloadType = static_cast<int>(payload->rm_pt);
            if (const auto channels = number(text_of(payload->rm_params), 6)) {
                media.amrwbParam->channels = static_cast<int>(*channels);
            }
        }
        read_fmtps(fmtps, *payload, codec, media, audio.vad, is_first_of_codec);
    }
}

// --- Fax, video, data ---------------------------------------------------------------------------

QOVA_FaxTransport fax_transport(std::string_view transport) {
    if (ends_in(transport, "udptl")) {
        return FT_T38_UDPTL;
    }
    return same(transport, "tcp") || same(transport, "tcptl") ? FT_T38_TCP : FT_NIL;
}

void read_fax(std::string_view transport, const Section& section, QOVA_Media& media) {
    using Fax = QOVA_FaxAttribute;
    static constexpr struct {
        const char* name;
        unsigned int Fax::*member;
    } numbers[] = {
        {"T38MaxBitRate", &Fax::mxRate},
        {"T38FaxMaxBuffer", &Fax::mxBuffer},
        {"T38FaxMaxDatagram", &Fax::mxDgram},
    };
    static constexpr struct {
        const char* name;
        bool Fax::*member;
    } flags[] = {
        {"T38FaxFillBitRemoval", &Fax::fillBit},
        {"T38FaxTranscodingMMR", &Fax::transMMR},
        {"T38FaxTranscodingJBIG", &Fax::transJBIG},
    };
    static constexpr struct {
        const char* name;
        QOVA_FaxRateMgt value;
    } managements[] = {{"transferredTCF", RM_TRFTCF}, {"localTCF", RM_LOCALTCF}};
    static constexpr const char* corrections[] = {"t38UDPNoEC", "t38UDPRedundancy", "t38UDPFEC"};

    auto& fax = append_attribute<Fax>(media, QOVA_Media::AT_FAX);
    fax.transport = fax_transport(transport);
    for (const Line& line : section) {
        if (line.type != 'a') {
            continue;
        }
        for (const auto& known : numbers) {
            if (same(line.name, known.name)) {
                read_number(line, line.value, fax.*known.member, known.name, UINT_MAX);
            }
        }
        for (const auto& known : flags) {
            if (same(line.name, known.name)) {
                fax.*known.member = true;
                if (!line.value.empty()) {
                    read_number(line, line.value, fax.*known.member, known.name, 1);
                }
            }
        }
        if (same(line.name, "T38FaxRateManagement")) {
            const auto found =
                std::find_if(std::begin(managements), std::end(managements),
                             [&line](const auto& known) { return same(line.value, known.name); });
            if (found == std::end(managements)) {
                throw Refusal(line.number, "the rate management is neither of T.38's two");
            }
            fax.rateMgt = found->value;
        }
        if (same(line.name, "T38FaxUdpEC")) {
            const auto found =
                std::find_if(std::begin(corrections), std::end(corrections),
                             [&line](const char* known) { return same(line.value, known); });
            if (found == std::end(corrections)) {
                throw Refusal(line.number, "the error correction is none of T.38's three");
            }
            fax.errCorr = static_cast<unsigned int>(found - std::begin(corrections));
        }
    }
}

void read_video(const sdp_media_t& parsed, const Section& section, QOVA_Media& media) {
    fmtps_of(section);  // which refuses broken ones
    for (std::size_t i = payloads_of(parsed).size(); i != 0; --i) {
        append_attribute<QOVA_VideoAttribute>(media, QOVA_Media::AT_VIDEO);
    }
}

void read_data(const sdp_media_t& parsed, QOVA_Media& media) {
    for (const sdp_rtpmap_t* payload : payloads_of(parsed)) {
        append_attribute<QOVA_DataAttribute>(media, QOVA_Media::AT_DATA).type =
            static_cast<int>(payload->rm_pt);
    }
    for (const sdp_list_t* format = parsed.m_format; format != nullptr; format = format->l_next) {
        append_attribute<QOVA_DataAttribute>(media, QOVA_Media::AT_DATA);
    }
}

// --- Crypto -------------------------------------------------------------------------------------

// Master key and salt of a suite, in bytes.
struct KeySize {
    g_crypto_suite suite;
    std::size_t least;
    std::size_t most;
};
constexpr KeySize key_sizes[] = {
    {CS_AES_CM_128_HMAC_SHA1_80, 30, 30}, {CS_AES_CM_128_HMAC_SHA1_32, 30, 30},
    {CS_F8_128_HMAC_SHA1_80, 30, 30},     {CS_SEED_CTR_128_HMAC_SHA1_80, 30, 30},
    {CS_SEED_128_CCM_80, 28, 30},  // salts of 12 and of 14 bytes are in use
    {CS_SEED_128_GCM_96, 28, 30},         {CS_AES_192_CM_HMAC_SHA1_80, 38, 38},
    {CS_AES_192_CM_HMAC_SHA1_32, 38, 38}, {CS_AES_256_CM_HMAC_SHA1_80, 46, 46},
    {CS_AES_256_CM_HMAC_SHA1_32, 46, 46}, {CS_AEAD_AES_128_GCM, 28, 28},
    {CS_AEAD_AES_256_GCM, 44, 44},
};

// Base64 (RFC 4648), with or without its padding, into a field. The number of bytes; nothing when
// the text is none, or too long.
std::optional<std::size_t> decode_base64(std::string_view text, unsigned char* to,
                                         std::size_t room) {
    static constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const std::size_t digits = std::min(text.find('='), text.size());
    const std::size_t padding = text.size() - digits;
    if (digits % 4 == 1 || text.find_first_not_of('=', digits) != std::string_view::npos ||
        (padding != 0 && (padding > 2 || text.size() % 4 != 0))) {
        return std::nullopt;
    }
    std::size_t size = 0;
    unsigned bits = 0;
    unsigned bit_count = 0;
    for (const char digit : text.substr(0, digits)) {
        const std::size_t value = alphabet.find(digit);
        if (value == std::string_view::npos) {
            return std::nullopt;
        }
        bits = (bits << 6U | static_cast<unsigned>(value)) & 0xfffU;
        bit_count += 6;
        if (bit_count >= 8) {
            bit_count -= 8;
            if (size == room) {
                return std::nullopt;
            }
            to[size++] = static_cast<unsigned char>(bits >> bit_count);
        }
    }
    return size;
}

// <number> or 2^<number>, at most SRTP's 2^48; the model holds 32 bits of it.
unsigned int lifetime_of(const Line& line, std::string_view text) {
    constexpr unsigned greatest_power = 48;
    std::optional<unsigned long long> packets;
    if (text.substr(0, 2) == "2^") {
        if (const auto power = number(text.substr(2), greatest_power)) {
            packets = 1ULL << *power;
        }
    } else {
        packets = number(text, 1ULL << greatest_power);
    }
    if (!packets || *packets == 0) {
        throw Refusal(line.number, "a=crypto: the lifetime is no number of packets up to 2^48");
    }
    return static_cast<unsigned int>(std::min<unsigned long long>(*packets, UINT_MAX));
}

// <value>:<length>
void read_mki(const Line& line, std::string_view text, QOVA_CryptoKey& key) {
    const std::size_t colon = text.find(':');
    const auto size = number(text.substr(colon + 1), sizeof key.mki);
    if (!size || *size == 0) {
        throw Refusal(line.number, "a=crypto: the MKI's length is no number from 1 to 8");
    }
    const unsigned unused_bits = 64 - 8 * static_cast<unsigned>(*size);
    const auto value = number(text.substr(0, colon), ULLONG_MAX >> unused_bits);
    if (!value) {
        throw Refusal(line.number, "a=crypto: the MKI is no number of that length");
    }
    key.mkiSize = static_cast<unsigned char>(*size);
    for (unsigned i = 0; i < key.mkiSize; ++i) {
        key.mki[i] = static_cast<unsigned char>(*value >> 8 * (key.mkiSize - 1 - i));
    }
}

// inline:<key>["|"<lifetime>]["|"<MKI>]
QOVA_CryptoKey read_key(const Line& line, std::string_view text, g_crypto_suite suite) {
    constexpr std::string_view method = "inline:";
    if (!same(text.substr(0, method.size()), method)) {
        throw Refusal(line.number, "a=crypto: a key is not given inline");
    }
    std::vector<std::string_view> fields;
    for (std::size_t begin = method.size(); begin <= text.size();) {
        const std::size_t bar = std::min(text.find('|', begin), text.size());
        fields.push_back(text.substr(begin, bar - begin));
        begin = bar + 1;
    }
    QOVA_CryptoKey key = {};
    const auto size = decode_base64(fields[0], key.key, sizeof key.key);
    if (!size) {
        throw Refusal(line.number, "a=crypto: a key is not base64, or too long");
    }
    const auto* const sizes =
        std::find_if(std::begin(key_sizes), std::end(key_sizes),
                     [suite](const KeySize& candidate) { return candidate.suite == suite; });
    if (*size < sizes->least || *size > sizes->most) {
        throw Refusal(line.number, "a=crypto: a key has not the length that the suite asks for");
    }
    std::size_t next = 1;
    if (next < fields.size() && fields[next].find(':') == std::string_view::npos) {
        key.lifetime = lifetime_of(line, fields[next++]);
    }
    if (next < fields.size() && fields[next].find(':') != std::string_view::npos) {
        read_mki(line, fields[next++], key);
    }
    if (next != fields.size()) {
        throw Refusal(line.number, "a=crypto: something follows a key's lifetime and MKI");
    }
    return key;
}

// <tag> <suite> <key>[;<key>]... [<session parameter>]...
void read_crypto(const Line& line, QOVA_Media& media) {
    const std::vector<std::string_view> fields = tokens(line.value);
    if (fields.size() < 3) {
        throw Refusal(line.number, "a=crypto needs a tag, a suite and a key");
    }
    QOVA_Crypto& crypto = append(media.cryptos, std::make_unique<QOVA_Crypto>());
    ++media.cryptoCount;
    read_number(line, fields[0], crypto.tag, "a=crypto: tag", 999999999);
    crypto.algo = Sdp::CryptoParser::algoToEnum(std::string(fields[1]));
    if (crypto.algo == CS_NIL) {
        return;
    }
    for (std::size_t begin = 0; begin <= fields[2].size();) {
        const std::size_t semicolon = std::min(fields[2].find(';', begin), fields[2].size());
        crypto.keys.push_back(
            read_key(line, fields[2].substr(begin, semicolon - begin), crypto.algo));
        begin = semicolon + 1;
    }
}

// --- Media --------------------------------------------------------------------------------------

QOVA_Media::e_MediaType kind_of(const MediaLine& line, const sdp_media_t& parsed) {
    const auto is_t38 = [&parsed] {
        for (const sdp_list_t* format = parsed.m_format; format != nullptr;
             format = format->l_next) {
            if (same(text_of(format->l_text), "t38")) {
                return true;
            }
        }
        return false;
    };
    switch (parsed.m_type) {
        case sdp_media_audio:
            return line.is_rtp ? QOVA_Media::MT_AUDIO : QOVA_Media::MT_NIL;
        case sdp_media_video:
            return line.is_rtp ? QOVA_Media::MT_VIDEO : QOVA_Media::MT_NIL;
        case sdp_media_image:
            return fax_transport(line.transport) != FT_NIL && is_t38() ? QOVA_Media::MT_FAX
                                                                       : QOVA_Media::MT_NIL;
        case sdp_media_application:
        case sdp_media_message:
        case sdp_media_data:
            return QOVA_Media::MT_DATA;
        default:
            return QOVA_Media::MT_NIL;
    }
}

void read_ports(const MediaLine& media_line, const Section& section, QOVA_Media& media) {
    media.mediaStatus = media_line.port == 0 ? QOVA_Media::MS_REJECTED : QOVA_Media::MS_ACCEPTED;
    if (media_line.port == 0) {
        return;
    }
    unsigned long rtcp_port = media_line.port == USHRT_MAX ? 0 : media_line.port + 1;
    const Line* seen = nullptr;
    for (const Line& attribute : section) {
        if (attribute.type == 'a' && same(attribute.name, "rtcp")) {
            if (seen != nullptr) {
                throw Refusal(attribute.number, "the media has a second a=rtcp line");
            }
            seen = &attribute;
            rtcp_port = rtcp_line(attribute).port;
        }
    }
    if (media_line.port + media_line.more_ports > USHRT_MAX) {
        throw Refusal(section.front().number, "the ports run beyond 65535");
    }
    media.sndPort = media.rcvPort = static_cast<unsigned short>(media_line.port);
    media.sndPort2 = media.rcvPort2 = static_cast<unsigned short>(rtcp_port);
}

void read_address(const Line* of_session, const Section& section, QOVA_Media& media) {
    const Line* const own = first_connection(section);
    const Line* const line = own != nullptr ? own : of_session;
    if (line == nullptr) {
        if (media.mediaStatus == QOVA_Media::MS_REJECTED) {
            return;
        }
        throw Refusal(section.front().number, "no c= line gives this media an address");
    }
    INetAddress* const address = connection_address(*line).address.Copy();
    delete media.address;
    media.address = address;
}

// What the session says for the lines that do not say it themselves.
struct SessionDefaults {
    const Line* connection;
    std::optional<bool> silence;
    sdp_mode_t mode;
};

// Reads a line of a known kind; the media is new.
void read_media(const SessionDefaults& defaults, const MediaLine& line, const Section& section,
                const sdp_media_t& parsed, QOVA_Media& media) {
    read_ports(line, section, media);
    read_address(defaults.connection, section, media);
    const unsigned mode = sdp_attribute_mode(parsed.m_attributes, defaults.mode);
    media.bsnd = (mode & sdp_sendonly) != 0;
    media.brcv = (mode & sdp_recvonly) != 0;
    if (media.mediaType == QOVA_Media::MT_AUDIO) {
        const std::optional<bool> silence = silence_suppression(section);
        read_audio(parsed, section, silence ? silence : defaults.silence, media);
    } else if (media.mediaType == QOVA_Media::MT_FAX) {
        read_fax(line.transport, section, media);
    } else if (media.mediaType == QOVA_Media::MT_VIDEO) {
        read_video(parsed, section, media);
    } else {
        read_data(parsed, media);
    }
    for (const Line& attribute : section) {
        if (attribute.type == 'a' && same(attribute.name, "crypto")) {
            read_crypto(attribute, media);
        }
    }
}

bool is_on_hold(const QOVA_Capability& capability) {
    const std::list<QOVA_Media*> audio =
        capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_ACCEPTED);
    return !audio.empty() && std::all_of(audio.begin(), audio.end(), [](const QOVA_Media* media) {
        return !media->brcv || media->address->IsAny() != 0;
    });
}

// --- Pass-through -------------------------------------------------------------------------------

// How many bytes of a line may be shown: all, or those before key material.
std::size_t size_before_keys(const Description& description, const Line& line) {
    if (line.type == 'k') {
        return 2;
    }
    for (const std::string_view secret : {"crypto", "key-mgmt", "ice-pwd"}) {
        if (line.type == 'a' && same(line.name, secret)) {
            return description.text.find(':', line.begin) - line.begin + 1;
        }
    }
    const std::string_view content = description.text.substr(line.begin, line.end - line.begin);
    constexpr std::string_view method = "inline:";
    for (std::size_t at = 0; at + method.size() <= content.size(); ++at) {
        if (same(content.substr(at, method.size()), method)) {
            return at + method.size();
        }
    }
    return content.size();
}

void pass_through(const Description& description, const Section& section, std::string& to) {
    for (const Line& line : section) {
        const std::size_t shown =
            std::min(size_before_keys(description, line), line.end - line.begin);
        to += description.text.substr(line.begin, shown);
        if (line.begin + shown != line.end) {
            to += "(withheld)";
        }
        to += description.text.substr(line.end, line.next - line.end);
    }
}

}  // namespace

Reading read(const Description& description, Role role) {
    std::vector<MediaLine> media_lines;
    for (auto section = description.sections.begin() + 1; section != description.sections.end();
         ++section) {
        media_lines.push_back(media_line(section->front()));
        if (media_lines.back().format_count > most_formats) {
            throw Refusal(section->front().number, "the media has more than 128 formats");
        }
    }
    const ParserText text(description);
    const Parser parser(text.text, parser_flags);
    const sdp_session_t* const parsed = parser.session();
    if (parsed == nullptr) {
        text.refuse();
    }

    const Section& session = description.sections.front();
    const SessionDefaults defaults = {first_connection(session), silence_suppression(session),
                                      sdp_attribute_mode(parsed->sdp_attributes, sdp_sendrecv)};
    Reading reading;
    reading.capability = std::make_unique<QOVA_Capability>();
    QOVA_Capability& capability = *reading.capability;
    capability.offer = role == Role::OFFER;
    capability.silenceSuppSdp = defaults.silence.value_or(false);
    const sdp_media_t* parsed_media = parsed->sdp_media;
    for (std::size_t i = 0; i < media_lines.size(); ++i, parsed_media = parsed_media->m_next) {
        const Section& section = description.sections[i + 1];
        if (parsed_media == nullptr || parsed_media->m_port != media_lines[i].port) {
            throw Refusal(section.front().number, "the SDP parser reads this line otherwise");
        }
        if (silence_suppression(section).value_or(false)) {
            capability.silenceSuppSdp = true;
        }
        const QOVA_Media::e_MediaType kind = kind_of(media_lines[i], *parsed_media);
        if (kind == QOVA_Media::MT_NIL) {
            pass_through(description, section, capability.passThrough);
            reading.media.push_back(nullptr);
        } else {
            QOVA_Media& media = append(capability.filteredMedia, std::make_unique<QOVA_Media>());
            media.mediaType = kind;
            read_media(defaults, media_lines[i], section, *parsed_media, media);
            reading.media.push_back(&media);
        }
    }
    capability.hold = is_on_hold(capability);
    return reading;
}

Result<Reading> read(const std::string& text, Role role) {
    return result_of([&] { return read(Description(text), role); });
}

}  // namespace sdp
