#include "sdp/writer.h"

#include <algorithm>
#include <string_view>

#include "qova/crypto.h"
#include "sdp/audio.h"
#include "sdp/crypto.h"
#include "sdp/strings.h"

namespace sdp {
namespace {

// Appends "TYPE=VALUE" as a line.
void append_line(std::string& text, char type, std::string_view value) {
    text.append(1, type).append("=").append(value).append("\r\n");
}

// Appends the attributes of a section that an answer keeps.
template <class Test>
void append_attributes(std::string& text, const Section& section, Test is_kept) {
    for (const Line& line : section) {
        if (line.type == 'a' && is_kept(line.name)) {
            text.append("a=").append(line.name);
            text.append(line.value.empty() ? "" : ":").append(line.value).append("\r\n");
        }
    }
}

// Appends the times of the session, except broken lines.
void append_times(std::string& text, const Section& session, const Diagnostics& diagnostics) {
    std::string times;
    for (const Line& line : session) {
        const auto found = std::lower_bound(diagnostics.begin(), diagnostics.end(), line.number,
                                            [](const Diagnostic& candidate, std::size_t number) {
                                                return candidate.line < number;
                                            });
        const bool is_broken = found != diagnostics.end() && found->line == line.number;
        if (std::string_view("trz").find(line.type) != std::string_view::npos && !is_broken) {
            append_line(times, line.type, line.value);
        }
    }
    text += starts_with(times, "t=") ? times : "t=0 0\r\n";
}

// The format of a line without payloads. T.38 can have others before it.
std::string format_of(const ReadLine& line) {
    const auto t38 =
        line.media == nullptr || line.media->mediaType != QOVA_Media::MT_FAX
            ? line.formats.end()
            : std::find_if(line.formats.begin(), line.formats.end(),
                           [](const std::string& format) { return same(format, "t38"); });
    return t38 != line.formats.end() ? *t38 : line.formats.empty() ? "0" : line.formats.front();
}

// Appends a=rtpmap and a=fmtp of a payload. Its a=fmtp lines become one.
void append_payload(std::string& text, const Section& section, const Payload& payload) {
    const std::string type = std::to_string(payload.type);
    if (payload.has_rtpmap) {
        append_line(text, 'a',
                    "rtpmap:" + type + " " + payload.encoding + "/" + std::to_string(payload.rate) +
                        (payload.parameters.empty() ? "" : "/") + payload.parameters);
    }
    std::string parameters;
    for (const Line* const line : attributes(section, "fmtp")) {
        const std::vector<std::string_view> fields = split(line->value, blanks, 2);
        if (fields.size() == 2 && number(fields[0], max_payload_type) == payload.type) {
            parameters.append(parameters.empty() ? "" : is_tone_event(payload) ? "," : ";");
            parameters.append(trimmed(fields[1]));
        }
    }
    if (!parameters.empty()) {
        append_line(text, 'a', "fmtp:" + type + " " + parameters);
    }
}

void append_accepted(std::string& text, const Section& section, const ReadLine& line,
                     const std::vector<unsigned>& payloads, const QOVA_Media& answer) {
    std::string formats;
    std::string attributes;
    for (const Payload& payload : line.payloads) {
        if (std::find(payloads.begin(), payloads.end(), payload.type) != payloads.end()) {
            formats += " " + std::to_string(payload.type);
            append_payload(attributes, section, payload);
        }
    }
    append_line(text, 'm',
                line.type + " " + std::to_string(answer.rcvPort) + " " + line.transport +
                    (formats.empty() ? " " + format_of(line) : formats));
    text += attributes;
    if (!answer.bsnd || !answer.brcv) {
        append_line(text, 'a', answer.bsnd ? "sendonly" : answer.brcv ? "recvonly" : "inactive");
    }
    if (!answer.cryptos.empty()) {
        append_line(text, 'a', "crypto:" + crypto_value(*answer.cryptos.front(), section));
    }
    append_attributes(text, section, [&answer](std::string_view name) {
        return answer.mediaType == QOVA_Media::MT_FAX
                   ? starts_with(name, "T38Fax") || same(name, "T38MaxBitRate")
                   : same(name, "ptime") || same(name, "maxptime") || same(name, "silenceSupp");
    });
}

}  // namespace

std::string rejected_line(const ReadLine& line) {
    return "m=" + line.type + " 0 " + line.transport + " " + format_of(line) + "\r\n";
}

std::string write(const Description& offer, const Reading& reading, const QOVA_Capability& answer,
                  const std::vector<std::vector<unsigned>>& payloads, const IPAddress& address,
                  const Origin& origin) {
    const Section& session = offer.sections.front();
    const std::string at = (address.Size() == 4 ? "IN IP4 " : "IN IP6 ") + address.ToString();
    std::string text = "v=0\r\n";
    append_line(text, 'o',
                "- " + std::to_string(origin.id) + " " + std::to_string(origin.version) + " " + at);
    append_line(text, 's', "-");
    append_line(text, 'c', at);
    append_times(text, session, reading.diagnostics);
    append_attributes(text, session,
                      [](std::string_view name) { return same(name, "silenceSupp"); });
    auto media = answer.filteredMedia.begin();
    for (std::size_t i = 0; i < reading.lines.size(); ++i) {
        const ReadLine& line = reading.lines[i];
        const QOVA_Media* const own = line.media == nullptr ? nullptr : *media++;
        if (own == nullptr || own->mediaStatus == QOVA_Media::MS_REJECTED) {
            text += rejected_line(line);
        } else {
            append_accepted(text, offer.sections[i + 1], line, payloads[i], *own);
        }
    }
    return text;
}

}  // namespace sdp
