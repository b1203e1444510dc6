#include "sdp/reader.h"

#include <algorithm>
#include <climits>

#include "qova/attributes.h"
#include "qova/media.h"
#include "sdp/audio.h"
#include "sdp/crypto.h"
#include "sdp/formats.h"
#include "sdp/media.h"
#include "sdp/parser.h"

namespace sdp {

namespace {

// a=silenceSupp (RFC 3108); its first value says whether it is on. The last such line counts.
std::optional<bool> silence_suppression(const Section& section) {
    std::optional<bool> found;
    for (const Line& line : section) {
        if (same(line.name, "silenceSupp")) {
            const std::string_view value = split(line.value, blanks).front();
            const bool on = same(value, "on");
            if (on || same(value, "off")) {
                found = on;
            } else {
                found.reset();
            }
        }
    }
    return found;
}

// --- Fax, video, data ---------------------------------------------------------------------------

QOVA_FaxTransport fax_transport(std::string_view transport) {
    if (ends_in(transport, "udptl")) {
        return FT_T38_UDPTL;
    }
    return same(transport, "tcp") || same(transport, "tcptl") ? FT_T38_TCP : FT_NIL;
}

void read_fax(std::string_view transport, const Section& section, QOVA_Media& media,
              std::vector<Warning>& warnings) {
    auto& fax = append_attribute<QOVA_FaxAttribute>(media, QOVA_Media::AT_FAX);
    fax.transport = fax_transport(transport);
    for (const Line& line : section) {
        tolerate(warnings, [&] { read_t38({line.number, line.name, line.value}, fax); });
    }
}

void read_video(const sdp_media_t& parsed, const Section& section, QOVA_Media& media,
                std::vector<Warning>& warnings) {
    fmtps_of(section, warnings);
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

// --- Media --------------------------------------------------------------------------------------

QOVA_Media::e_MediaType kind_of(const MediaLine& line, sdp_media_e type) {
    const auto is_t38 = [](std::string_view format) { return same(format, "t38"); };
    switch (type) {
        case sdp_media_audio:
            return line.is_rtp ? QOVA_Media::MT_AUDIO : QOVA_Media::MT_NIL;
        case sdp_media_video:
            return line.is_rtp ? QOVA_Media::MT_VIDEO : QOVA_Media::MT_NIL;
        case sdp_media_image:
            return fax_transport(line.transport) != FT_NIL &&
                           std::any_of(line.formats.begin(), line.formats.end(), is_t38)
                       ? QOVA_Media::MT_FAX
                       : QOVA_Media::MT_NIL;
        case sdp_media_application:
        case sdp_media_message:
        case sdp_media_data:
            return QOVA_Media::MT_DATA;
        default:
            return QOVA_Media::MT_NIL;
    }
}

void read_ports(const MediaLine& media_line, const Section& section, QOVA_Media& media,
                std::vector<Warning>& warnings) {
    media.mediaStatus = media_line.port == 0 ? QOVA_Media::MS_REJECTED : QOVA_Media::MS_ACCEPTED;
    if (media_line.port == 0) {
        return;
    }
    unsigned long rtcp_port = media_line.port == USHRT_MAX ? 0 : media_line.port + 1;
    const Line* const rtcp = rtcp_of(section);
    if (rtcp != nullptr) {
        rtcp_port = rtcp_line(*rtcp).port;
    }
    for (const Line& attribute : section) {
        if (same(attribute.name, "rtcp")) {
            tolerate(warnings, [&] {
                rtcp_line(attribute);
                rtcp_address(attribute);
                if (&attribute != rtcp) {
                    throw Refusal(attribute.number, "the media has a second a=rtcp line");
                }
            });
        }
    }
    if (media_line.port + media_line.more_ports > USHRT_MAX) {
        throw Refusal(section.front().number, "the ports run beyond 65535");
    }
    media.sndPort = media.rcvPort = static_cast<unsigned short>(media_line.port);
    media.sndPort2 = media.rcvPort2 = static_cast<unsigned short>(rtcp_port);
}

// Throws HostName for a host name; the address stays unspecified then.
void read_address(const Line* of_session, const Section& section, QOVA_Media& media) {
    const Line* const own = first_connection(section);
    const Line* const line = own != nullptr ? own : of_session;
    if (line == nullptr) {
        if (media.mediaStatus == QOVA_Media::MS_REJECTED) {
            return;
        }
        throw Refusal(section.front().number, "no c= line gives this media an address");
    }
    set_address(media, connection_address(*line).address);
}

// What the session says for the lines that do not say it themselves.
struct SessionDefaults {
    const Line* connection;
    std::optional<bool> silence;
    sdp_mode_t mode;
};

// Reads a line of a known kind; the media is new.
void read_media(const SessionDefaults& defaults, const MediaLine& line, const Section& section,
                const sdp_media_t& parsed, ReadLine& to, std::vector<Warning>& warnings) {
    QOVA_Media& media = *to.media;
    read_ports(line, section, media, warnings);
    const bool has_address =
        tolerate<HostName>(warnings, [&] { read_address(defaults.connection, section, media); });
    const unsigned mode = sdp_attribute_mode(parsed.m_attributes, defaults.mode);
    media.bsnd = (mode & sdp_sendonly) != 0;
    media.brcv = (mode & sdp_recvonly) != 0;
    if (media.mediaType == QOVA_Media::MT_AUDIO) {
        const std::optional<bool> silence = silence_suppression(section);
        to.payloads =
            read_audio(parsed, section, silence ? silence : defaults.silence, media, warnings);
    } else if (media.mediaType == QOVA_Media::MT_FAX) {
        read_fax(line.transport, section, media, warnings);
    } else if (media.mediaType == QOVA_Media::MT_VIDEO) {
        read_video(parsed, section, media, warnings);
    } else {
        read_data(parsed, media);
    }
    for (const Line& attribute : section) {
        if (same(attribute.name, "crypto")) {
            tolerate(warnings, [&] {
                const QOVA_Crypto& crypto = append(media.cryptos, read_crypto(attribute));
                ++media.cryptoCount;
                if (!needs_session_parameter(attribute)) {
                    to.cryptos.push_back(&crypto);
                }
            });
        }
    }
    // At the discard port no candidate is known yet (RFC 8838, RFC 8840), or the line will connect
    // (RFC 4145).
    constexpr unsigned short discard_port = 9;
    to.holds = !media.brcv ||
               (has_address && media.address->IsAny() != 0 && media.rcvPort != discard_port);
}

// By their lines, each once: several media may read the same line of the session.
void sort(std::vector<Warning>& warnings) {
    std::stable_sort(
        warnings.begin(), warnings.end(),
        [](const Warning& left, const Warning& right) { return left.line < right.line; });
    const auto is_same = [](const Warning& left, const Warning& right) {
        return left.line == right.line && left.message == right.message;
    };
    warnings.erase(std::unique(warnings.begin(), warnings.end(), is_same), warnings.end());
}

}  // namespace

Reading read(const Description& description, Role role, Strictness strictness) {
    Parsed parsed = parse(description);
    const std::shared_ptr<sdp_parser_t> parser = std::move(parsed.parser);
    const Section& session = description.sections.front();
    Reading reading;
    reading.session = {parser, sdp_session(parser.get())};
    const SessionDefaults defaults = {
        first_connection(session), silence_suppression(session),
        sdp_attribute_mode(reading.session->sdp_attributes, sdp_sendrecv)};
    reading.suppresses_silence = defaults.silence.value_or(false);
    reading.warnings = std::move(parsed.warnings.front());
    reading.capability = std::make_unique<QOVA_Capability>();
    QOVA_Capability& capability = *reading.capability;
    capability.offer = role == Role::OFFER;
    capability.silenceSuppSdp = reading.suppresses_silence;
    bool has_audio = false;
    bool is_held = true;
    const sdp_media_t* parsed_media = reading.session->sdp_media;
    for (auto section = description.sections.begin() + 1; section != description.sections.end();
         ++section, parsed_media = parsed_media->m_next) {
        const MediaLine line = media_line(section->front());
        ReadLine& to = reading.lines.emplace_back();
        to.number = section->front().number;
        to.kind = line.kind;
        to.transport = line.transport;
        to.is_rejected = line.port == 0;
        to.formats.assign(line.formats.begin(), line.formats.end());
        to.suppresses_silence = silence_suppression(*section).value_or(false);
        capability.silenceSuppSdp |= to.suppresses_silence;
        const QOVA_Media::e_MediaType kind = kind_of(line, parsed_media->m_type);
        if (kind == QOVA_Media::MT_NIL) {
            capability.passThrough += without_keys(description, *section);
            continue;
        }
        QOVA_Media& media = append(capability.filteredMedia, std::make_unique<QOVA_Media>());
        media.mediaType = kind;
        to.media = &media;
        std::vector<Warning>& warnings =
            parsed.warnings[static_cast<std::size_t>(section - description.sections.begin())];
        read_media(defaults, line, *section, *parsed_media, to, warnings);
        if (media.mediaStatus == QOVA_Media::MS_REJECTED) {
            continue;  // its attributes carry no meaning
        }
        reading.warnings.insert(reading.warnings.end(), warnings.begin(), warnings.end());
        if (kind == QOVA_Media::MT_AUDIO) {
            has_audio = true;
            is_held = is_held && to.holds;
        }
    }
    capability.hold = has_audio && is_held;
    sort(reading.warnings);
    if (strictness == Strictness::STRICT && !reading.warnings.empty()) {
        throw Refusal(reading.warnings.front().line, reading.warnings.front().message);
    }
    return reading;
}

}  // namespace sdp
