#include "sdp_parser.h"

#include <algorithm>
#include <string>

namespace sdp {

namespace {

// That every line has an address, and which direction, the reader decides.
constexpr int parser_flags = sdp_f_c_missing | sdp_f_mode_manual;

Parsed parse_text(std::string_view text, int flags) {
    return Parsed(sdp_parse(nullptr, text.data(), static_cast<issize_t>(text.size()), flags));
}

struct LineEnd {
    const Line* line;
    std::size_t size;  // of the text up to here
};

// The text as the parser gets it: no blank lines, at which it would stop in silence, no outer
// blanks, and every RTP profile called RTP/AVP, as it reads payloads of few others.
std::string parser_text(const Description& description, std::vector<LineEnd>& ends) {
    std::string text;
    for (const Section& section : description.sections) {
        for (const Line& line : section) {
            const std::string_view content = trimmed(description.content(line));
            const std::size_t begin = text.size();
            text.append(content).append("\r\n");
            if (line.type == 'm') {
                const MediaLine media = media_line(line);
                if (media.is_rtp) {
                    const auto at =
                        static_cast<std::size_t>(media.transport.data() - content.data());
                    text.replace(begin + at, media.transport.size(), "RTP/AVP");
                }
            }
            ends.push_back({&line, text.size()});
        }
    }
    return text;
}

// The parser names no line: it is the one that ends the shortest refused part of the text.
[[noreturn]] void refuse(std::string_view text, const std::vector<LineEnd>& ends) {
    const auto refused = std::partition_point(ends.begin(), ends.end(), [text](const LineEnd& end) {
        const Parsed part = parse_text(text.substr(0, end.size), parser_flags | sdp_f_insane);
        return sdp_session(part.get()) != nullptr;
    });
    if (refused == ends.end()) {
        throw Refusal(0, "the SDP parser refuses the description as a whole");
    }
    throw Refusal(refused->line->number,
                  std::string("the SDP parser refuses this ") + refused->line->type + "= line");
}

}  // namespace

Parsed parse(const Description& description) {
    std::vector<LineEnd> ends;
    const std::string text = parser_text(description, ends);
    Parsed parsed = parse_text(text, parser_flags);
    const sdp_session_t* const session = sdp_session(parsed.get());
    if (session == nullptr) {
        refuse(text, ends);
    }
    const sdp_media_t* media = session->sdp_media;
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
