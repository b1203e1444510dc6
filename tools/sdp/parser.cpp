#include "sdp/parser.h"

#include <sofia-sip/sdp.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "sdp/strings.h"

namespace sdp {
namespace {

// The reader decides about missing addresses and about directions.
constexpr int parser_flags = sdp_f_c_missing | sdp_f_mode_manual;

using Parser = std::unique_ptr<sdp_parser_t, void (*)(sdp_parser_t*)>;

Parser parse_text(std::string_view text, int flags = parser_flags) {
    return {sdp_parse(nullptr, text.data(), static_cast<issize_t>(text.size()), flags),
            sdp_parser_free};
}

std::string refusal_of(const Line& line) {
    return std::string("the SDP parser refuses this ") + line.type + "= line";
}

using Lines = std::set<const Line*>;

// a=rtpmap:<payload type> <name>/<clock rate>[/<parameters>]
void check_rtpmap(const Line& line) {
    const std::vector<std::string_view> fields = split(line.value, blanks, 2);
    required(line.number, "a=rtpmap: expected a payload type", fields[0], 0, max_payload_type);
    refuse_if(fields.size() != 2, line.number, "a=rtpmap: the encoding name is missing");
    const std::vector<std::string_view> parts = split(fields[1], "/", 3);
    const std::vector<std::string_view> rate =
        tokens(parts.size() == 1 ? std::string_view() : parts[1]);
    refuse_if(rate.empty(), line.number, "a=rtpmap: the clock rate is missing");
    required(line.number, "a=rtpmap clock rate: expected a number", rate[0], 0, UINT_MAX);
}

// Throws Refusal if the parser refuses a line on its own.
void check_alone(const Line& line, bool in_media) {
    std::string text = "v=0\r\no=- 1 1 IN IP4 0.0.0.0\r\ns=-\r\nt=0 0\r\n";
    text += in_media ? "m=audio 9 RTP/AVP 0\r\n" : "";
    text.append(trimmed(line.text)).append("\r\n");
    if (sdp_session(parse_text(text).get()) == nullptr) {
        throw Refusal(line.number, refusal_of(line));
    }
}

// Ignores the lines that a check refuses, with a warning.
template <class Check>
void ignore(const Description& description, Parsed& parsed, Lines& ignored, Check check) {
    for (std::size_t i = 0; i < description.sections.size(); ++i) {
        const Section& section = description.sections[i];
        for (const Line& line : section) {
            if (ignored.count(&line) == 0 &&
                !warn_of_refusal(parsed.warnings[i], [&] { check(line, section); })) {
                ignored.insert(&line);
            }
        }
    }
}

struct Input {
    std::string text;
    std::vector<std::pair<const Line*, std::size_t>> ends;  // each line, and where its text ends
};

// The text for the parser has no blank lines, because the parser stops at them without an error,
// and no blanks at the ends of lines. Every RTP profile becomes RTP/AVP: the parser reads the
// payloads of few others.
Input parser_input(const Description& description, const Lines& ignored) {
    Input input;
    for (const Section& section : description.sections) {
        for (const Line& line : section) {
            if (ignored.count(&line) != 0) {
                continue;
            }
            const std::string_view content = trimmed(line.text);
            const std::size_t begin = input.text.size();
            input.text.append(content).append("\r\n");
            if (line.type == 'm') {
                const MediaLine media = media_line(line);
                if (media.is_rtp) {
                    const auto at =
                        static_cast<std::size_t>(media.transport.data() - content.data());
                    input.text.replace(begin + at, media.transport.size(), "RTP/AVP");
                }
            }
            input.ends.emplace_back(&line, input.text.size());
        }
    }
    return input;
}

// The parser does not name the line: it is the last one of the shortest text that is refused.
[[noreturn]] void refuse(const Input& input) {
    const auto refused =
        std::partition_point(input.ends.begin(), input.ends.end(), [&input](const auto& end) {
            const Parser part = parse_text(std::string_view(input.text).substr(0, end.second),
                                           parser_flags | sdp_f_insane);
            return sdp_session(part.get()) != nullptr;
        });
    refuse_if(refused == input.ends.end(), 0, "the SDP parser refuses the description");
    const Line& line = *refused->first;
    const std::size_t fields = tokens(line.value).size();
    if (line.type == 'o' && fields != 6) {
        throw Refusal(line.number, "o= needs six fields and has " + std::to_string(fields));
    }
    if (line.type == 'c') {
        address_of(line);  // throws the cause, if it knows it
    }
    throw Refusal(line.number, refusal_of(line));
}

std::string text_of(const char* text) {
    return text == nullptr ? "" : text;
}

std::vector<Payload> payloads_of(const sdp_media_t& media) {
    std::vector<Payload> payloads;
    for (const sdp_rtpmap_t* map = media.m_rtpmaps; map != nullptr; map = map->rm_next) {
        if (std::none_of(payloads.begin(), payloads.end(),
                         [map](const Payload& earlier) { return earlier.type == map->rm_pt; })) {
            payloads.push_back({map->rm_pt, text_of(map->rm_encoding), map->rm_rate,
                                text_of(map->rm_params), map->rm_predef == 0});
        }
    }
    return payloads;
}

}  // namespace

Parsed parse(const Description& description) {
    Parsed parsed = {};
    parsed.warnings.resize(description.sections.size());
    Lines ignored;
    ignore(description, parsed, ignored, [](const Line& line, const Section& section) {
        if (same(line.name, "rtpmap") && section.front().type == 'm' &&
            media_line(section.front()).is_rtp) {
            check_rtpmap(line);
        }
    });
    Parser parser = parse_text(parser_input(description, ignored).text);
    if (sdp_session(parser.get()) == nullptr) {
        ignore(description, parsed, ignored, [&](const Line& line, const Section& section) {
            // The model needs the other types of lines, or the parser accepts any such line.
            if (std::string_view("abkrtz").find(line.type) != std::string_view::npos) {
                check_alone(line, section.front().type == 'm');
            }
        });
        const Input input = parser_input(description, ignored);
        parser = parse_text(input.text);
        if (sdp_session(parser.get()) == nullptr) {
            refuse(input);
        }
    }
    const sdp_session_t& session = *sdp_session(parser.get());
    parsed.origin = {session.sdp_origin->o_id, session.sdp_origin->o_version};
    const sdp_mode_t session_mode = sdp_attribute_mode(session.sdp_attributes, sdp_sendrecv);
    const sdp_media_t* media = session.sdp_media;
    for (auto section = description.sections.begin() + 1; section != description.sections.end();
         ++section, media = media->m_next) {
        const Line& line = section->front();
        refuse_if(media == nullptr || media->m_port != media_line(line).port, line.number,
                  "the SDP parser disagrees about this line");
        const unsigned mode = sdp_attribute_mode(media->m_attributes, session_mode);
        parsed.media.push_back(
            {(mode & sdp_sendonly) != 0, (mode & sdp_recvonly) != 0, payloads_of(*media)});
    }
    return parsed;
}

}  // namespace sdp
