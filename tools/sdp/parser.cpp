#include "sdp/parser.h"

#include <algorithm>
#include <climits>
#include <set>
#include <string>

namespace sdp {

namespace {

// That every line has an address, and which direction, the reader decides.
constexpr int parser_flags = sdp_f_c_missing | sdp_f_mode_manual;

using Parser = std::unique_ptr<sdp_parser_t, FreeParser>;

Parser parse_text(std::string_view text, int flags) {
    return Parser(sdp_parse(nullptr, text.data(), static_cast<issize_t>(text.size()), flags));
}

std::string refusal_of(const Line& line) {
    return std::string("the SDP parser refuses this ") + line.type + "= line";
}

// --- Lines that are left out --------------------------------------------------------------------

using LeftOut = std::set<const Line*>;

// a=rtpmap:<payload type> <name>/<clock rate>[/<parameters>]
void check_rtpmap(const Line& line) {
    const std::vector<std::string_view> fields = split(line.value, blanks, 2);
    needed_payload_type(line.number, "a=rtpmap", fields[0]);
    if (fields.size() != 2) {
        throw Refusal(line.number, "a=rtpmap: the name is missing");
    }
    const std::vector<std::string_view> parts = split(fields[1], "/", 3);
    const std::vector<std::string_view> rate =
        tokens(parts.size() == 1 ? std::string_view() : parts[1]);
    if (rate.empty()) {
        throw Refusal(line.number, "a=rtpmap: the clock rate is missing");
    }
    needed_number(line.number, "a=rtpmap: clock rate", rate[0], UINT_MAX);
}

// Whether the parser takes a line without the others around it. Throws Refusal.
void check_alone(const Line& line, std::string_view content, bool in_media) {
    std::string text = "v=0\r\no=- 1 1 IN IP4 0.0.0.0\r\ns=-\r\nt=0 0\r\n";
    text += in_media ? "m=audio 9 RTP/AVP 0\r\n" : "";
    text.append(content).append("\r\n");
    if (sdp_session(parse_text(text, parser_flags).get()) == nullptr) {
        throw Refusal(line.number, refusal_of(line));
    }
}

// Where the check of a line throws, the line is left out, with a warning.
template <class Check>
void leave_out(const Description& description, Parsed& parsed, LeftOut& left_out, Check check) {
    for (std::size_t i = 0; i < description.sections.size(); ++i) {
        const Section& section = description.sections[i];
        for (const Line& line : section) {
            if (left_out.count(&line) == 0 &&
                !tolerate(parsed.warnings[i], [&] { check(line, section); })) {
                left_out.insert(&line);
            }
        }
    }
}

// --- The text for the parser --------------------------------------------------------------------

struct LineEnd {
    const Line* line;
    std::size_t size;  // of the text up to here
};

struct Input {
    std::string text;
    std::vector<LineEnd> ends;
};

// The text as the parser gets it: no blank lines, at which it would stop in silence, no outer
// blanks, and every RTP profile called RTP/AVP, as it reads payloads of few others.
Input parser_input(const Description& description, const LeftOut& left_out) {
    Input input;
    for (const Section& section : description.sections) {
        for (const Line& line : section) {
            if (left_out.count(&line) != 0) {
                continue;
            }
            const std::string_view content = trimmed(description.content(line));
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
            input.ends.push_back({&line, input.text.size()});
        }
    }
    return input;
}

// The parser names no line: it is the one that ends the shortest refused part of the text.
[[noreturn]] void refuse(const Input& input) {
    const auto refused =
        std::partition_point(input.ends.begin(), input.ends.end(), [&input](const LineEnd& end) {
            const Parser part = parse_text(std::string_view(input.text).substr(0, end.size),
                                           parser_flags | sdp_f_insane);
            return sdp_session(part.get()) != nullptr;
        });
    if (refused == input.ends.end()) {
        throw Refusal(0, "the SDP parser refuses the description as a whole");
    }
    const Line& line = *refused->line;
    const std::size_t fields = tokens(line.value).size();
    if (line.type == 'o' && fields != 6) {
        throw Refusal(line.number, "o= needs six fields and has " + std::to_string(fields));
    }
    if (line.type == 'c') {
        connection_address(line);  // throws too, and may name the cause
    }
    throw Refusal(line.number, refusal_of(line));
}

}  // namespace

Parsed parse(const Description& description) {
    Parsed parsed;
    parsed.warnings.resize(description.sections.size());
    LeftOut left_out;
    leave_out(description, parsed, left_out, [](const Line& line, const Section& section) {
        if (same(line.name, "rtpmap") && section.front().type == 'm' &&
            media_line(section.front()).is_rtp) {
            check_rtpmap(line);
        }
    });
    const auto parse_input = [&] {
        Input input = parser_input(description, left_out);
        parsed.parser = parse_text(input.text, parser_flags);
        return input;
    };
    parse_input();
    if (sdp_session(parsed.parser.get()) == nullptr) {
        leave_out(description, parsed, left_out, [&](const Line& line, const Section& section) {
            // The model needs the other kinds of lines, or the parser takes any such line.
            if (std::string_view("abkrtz").find(line.type) != std::string_view::npos) {
                check_alone(line, trimmed(description.content(line)), section.front().type == 'm');
            }
        });
        const Input input = parse_input();
        if (sdp_session(parsed.parser.get()) == nullptr) {
            refuse(input);
        }
    }
    const sdp_media_t* media = sdp_session(parsed.parser.get())->sdp_media;
    for (auto section = description.sections.begin() + 1; section != description.sections.end();
         ++section) {
        const Line& line = section->front();
        if (media == nullptr || media->m_port != media_line(line).port) {
            throw Refusal(line.number, "the SDP parser reads this line otherwise");
        }
        media = media->m_next;
    }
    return parsed;
}

std::string_view text_of(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

std::vector<const sdp_rtpmap_t*> payloads_of(const sdp_media_t& media) {
    std::vector<const sdp_rtpmap_t*> payloads;
    for (const sdp_rtpmap_t* map = media.m_rtpmaps; map != nullptr; map = map->rm_next) {
        if (std::none_of(payloads.begin(), payloads.end(), [map](const sdp_rtpmap_t* earlier) {
                return earlier->rm_pt == map->rm_pt;
            })) {
            payloads.push_back(map);
        }
    }
    return payloads;
}

}  // namespace sdp
