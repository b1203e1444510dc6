#include "sdp/reader.h"

#include <algorithm>
#include <climits>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "qova/attributes.h"
#include "qova/ownership.h"
#include "sdp/audio.h"
#include "sdp/crypto.h"
#include "sdp/formats.h"
#include "sdp/parser.h"
#include "sdp/strings.h"

namespace sdp {
namespace {

// Returns true for "on" and false for "off", the first value of a=silenceSupp (RFC 3108). The last
// line counts.
std::optional<bool> silence_suppression(const Section& section) {
    const std::vector<const Line*> lines = attributes(section, "silenceSupp");
    const std::string_view value = lines.empty() ? "" : split(lines.back()->value, blanks).front();
    const bool is_on = same(value, "on");
    return is_on || same(value, "off") ? std::optional(is_on) : std::nullopt;
}

QOVA_FaxTransport fax_transport(std::string_view transport) {
    return ends_in(transport, "udptl")                          ? FT_T38_UDPTL
           : same(transport, "tcp") || same(transport, "tcptl") ? FT_T38_TCP
                                                                : FT_NIL;
}

void read_fax(std::string_view transport, const Section& section, QOVA_Media& media,
              Diagnostics& warnings) {
    auto& fax = qova::append<QOVA_FaxAttribute>(media.attributes);
    fax.transport = fax_transport(transport);
    for (const Line& line : section) {
        warn_of_refusal(warnings, [&] { read_t38({line.number, line.name, line.value}, fax); });
    }
}

void read_video(const ReadLine& line, const Section& section, Diagnostics& warnings) {
    parameters_of(section, warnings);
    for (std::size_t i = line.payloads.size(); i != 0; --i) {
        qova::append<QOVA_VideoAttribute>(line.media->attributes);
    }
}

void read_data(const ReadLine& line) {
    for (const Payload& payload : line.payloads) {
        qova::append<QOVA_DataAttribute>(line.media->attributes).type =
            static_cast<int>(payload.type);
    }
    for (std::size_t i = line.payloads.empty() ? line.formats.size() : 0; i != 0; --i) {
        qova::append<QOVA_DataAttribute>(line.media->attributes);
    }
}

QOVA_Media::e_MediaType type_of(const MediaLine& line) {
    const auto is = [&line](std::string_view type) { return same(line.type, type); };
    const bool is_t38 = fax_transport(line.transport) != FT_NIL &&
                        std::any_of(line.formats.begin(), line.formats.end(),
                                    [](std::string_view format) { return same(format, "t38"); });
    return is("audio") && line.is_rtp                         ? QOVA_Media::MT_AUDIO
           : is("video") && line.is_rtp                       ? QOVA_Media::MT_VIDEO
           : is("image") && is_t38                            ? QOVA_Media::MT_FAX
           : is("application") || is("message") || is("data") ? QOVA_Media::MT_DATA
                                                              : QOVA_Media::MT_NIL;
}

void read_ports(const MediaLine& media_line, const Section& section, QOVA_Media& media,
                Diagnostics& warnings) {
    media.mediaStatus = media_line.port == 0 ? QOVA_Media::MS_REJECTED : QOVA_Media::MS_ACCEPTED;
    if (media_line.port == 0) {
        return;
    }
    std::optional<unsigned short> second_port;
    for (const Line* const rtcp : attributes(section, "rtcp")) {
        warn_of_refusal(warnings, [&] {
            const bool is_duplicate = second_port.has_value();
            const unsigned short port = rtcp_port(*rtcp);
            second_port = second_port.value_or(port);
            address_of(*rtcp);
            refuse_if(is_duplicate, rtcp->number, "duplicate a=rtcp line");
        });
    }
    refuse_if(media_line.port + media_line.more_ports > USHRT_MAX, section.front().number,
              "the ports exceed 65535");
    media.sndPort = media.rcvPort = static_cast<unsigned short>(media_line.port);
    media.sndPort2 = media.rcvPort2 =
        second_port.value_or(static_cast<unsigned short>(media_line.port + 1));
}

// Throws HostName for a host name, and leaves the address unspecified.
void read_address(const Line* of_session, const Section& section, QOVA_Media& media) {
    const Line* const own = first_connection(section);
    const Line* const line = own != nullptr ? own : of_session;
    if (line != nullptr) {
        qova::replace(media.address,
                      std::unique_ptr<INetAddress>(address_of(*line)->address.Copy()));
    } else {
        refuse_if(media.mediaStatus != QOVA_Media::MS_REJECTED, section.front().number,
                  "the media line has no address: c= is missing");
    }
}

// Values of the session, which apply to the media lines without their own.
struct SessionDefaults {
    const Line* connection;
    std::optional<bool> silence_suppression;
};

void read_cryptos(const Section& section, ReadLine& line, Diagnostics& warnings) {
    QOVA_Media& media = *line.media;
    for (const Line* const attribute : attributes(section, "crypto")) {
        warn_of_refusal(warnings, [&] {
            const QOVA_Crypto& crypto = qova::append(media.cryptos, read_crypto(*attribute));
            ++media.cryptoCount;
            if (!needs_session_parameter(*attribute)) {
                line.cryptos.push_back(&crypto);
            }
        });
    }
}

// Fills the new media of a line.
void read_media(const SessionDefaults& defaults, const MediaLine& media_line,
                const Section& section, const ParsedMedia& parsed, ReadLine& line,
                Diagnostics& warnings) {
    QOVA_Media& media = *line.media;
    read_ports(media_line, section, media, warnings);
    const bool has_address = warn_of_refusal<HostName>(
        warnings, [&] { read_address(defaults.connection, section, media); });
    media.bsnd = parsed.sends;
    media.brcv = parsed.receives;
    QOVA_Media::e_AttributeType attribute_type = QOVA_Media::AT_DATA;
    if (media.mediaType == QOVA_Media::MT_AUDIO) {
        attribute_type = QOVA_Media::AT_AUDIO;
        const std::optional<bool> own = silence_suppression(section);
        read_audio(line.payloads, section, own ? own : defaults.silence_suppression, media,
                   warnings);
    } else if (media.mediaType == QOVA_Media::MT_FAX) {
        attribute_type = QOVA_Media::AT_FAX;
        read_fax(media_line.transport, section, media, warnings);
    } else if (media.mediaType == QOVA_Media::MT_VIDEO) {
        attribute_type = QOVA_Media::AT_VIDEO;
        read_video(line, section, warnings);
    } else {
        read_data(line);
    }
    for (QOVA_MediaAttribute* const attribute : media.attributes) {
        attribute->attributeType = attribute_type;
        attribute->status = media.mediaStatus;
    }
    read_cryptos(section, line, warnings);
    // At the discard port no candidate is known yet (RFC 8838, RFC 8840), or the line will connect
    // (RFC 4145).
    constexpr unsigned short discard_port = 9;
    line.holds = !media.brcv ||
                 (has_address && media.address->IsAny() != 0 && media.rcvPort != discard_port);
}

// Sorts the warnings and removes duplicates: several media can read the same line of the session.
void sort_and_merge(Diagnostics& warnings) {
    sort(warnings);
    const auto is_same = [](const Diagnostic& left, const Diagnostic& right) {
        return left.line == right.line && left.message == right.message;
    };
    warnings.erase(std::unique(warnings.begin(), warnings.end(), is_same), warnings.end());
}

ReadLine read_line(const MediaLine& line, const Section& section, std::vector<Payload> payloads) {
    ReadLine result;
    result.number = section.front().number;
    result.type = line.type;
    result.transport = line.transport;
    result.formats.assign(line.formats.begin(), line.formats.end());
    result.payloads = std::move(payloads);
    result.is_rejected = line.port == 0;
    result.suppresses_silence = silence_suppression(section).value_or(false);
    return result;
}

}  // namespace

Reading read(const Description& description, Role role, Strictness strictness) {
    Parsed parsed = parse(description);
    const Section& session = description.sections.front();
    const SessionDefaults defaults = {first_connection(session), silence_suppression(session)};
    Reading reading;
    reading.origin = parsed.origin;
    reading.suppresses_silence = defaults.silence_suppression.value_or(false);
    reading.diagnostics = std::move(parsed.warnings.front());
    reading.capability = std::make_unique<QOVA_Capability>();
    QOVA_Capability& capability = *reading.capability;
    capability.offer = role == Role::OFFER;
    capability.silenceSuppSdp = reading.suppresses_silence;
    bool has_audio = false;
    bool is_held = true;
    for (std::size_t i = 0; i < parsed.media.size(); ++i) {
        const Section& section = description.sections[i + 1];
        const MediaLine parsed_line = media_line(section.front());
        ReadLine& line = reading.lines.emplace_back(
            read_line(parsed_line, section, std::move(parsed.media[i].payloads)));
        capability.silenceSuppSdp |= line.suppresses_silence;
        const QOVA_Media::e_MediaType type = type_of(parsed_line);
        if (type == QOVA_Media::MT_NIL) {
            capability.passThrough += without_keys(section);
            continue;
        }
        line.media = &qova::append<QOVA_Media>(capability.filteredMedia);
        line.media->mediaType = type;
        Diagnostics& warnings = parsed.warnings[i + 1];
        read_media(defaults, parsed_line, section, parsed.media[i], line, warnings);
        if (line.is_rejected) {
            continue;  // its attributes have no meaning
        }
        std::move(warnings.begin(), warnings.end(), std::back_inserter(reading.diagnostics));
        if (type == QOVA_Media::MT_AUDIO) {
            has_audio = true;
            is_held = is_held && line.holds;
        }
    }
    capability.hold = has_audio && is_held;
    sort_and_merge(reading.diagnostics);
    if (strictness == Strictness::STRICT && !reading.diagnostics.empty()) {
        throw Refusal(reading.diagnostics.front().line, reading.diagnostics.front().message);
    }
    return reading;
}

}  // namespace sdp
