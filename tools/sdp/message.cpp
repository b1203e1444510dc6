#include "sdp/message.h"

#include <sofia-sip/msg.h>
#include <sofia-sip/msg_addr.h>
#include <sofia-sip/msg_header.h>
#include <sofia-sip/sip.h>
#include <sofia-sip/sip_header.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "sdp/diagnostics.h"
#include "sdp/strings.h"

namespace sdp {
namespace {

constexpr int max_depth = 8;  // of bodies inside bodies

// Returns the offset of the next line.
std::size_t next_line(std::string_view text, std::size_t at) {
    const std::size_t end = text.find('\n', at);
    return end == std::string_view::npos ? text.size() : end + 1;
}

// Counts lines as Description does.
std::size_t count_lines(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' || (text[i] == '\r' && text.substr(i + 1, 1) != "\n")) {
            ++count;
        }
    }
    return count;
}

// Returns the headers before a body, with the empty line after them.
std::string_view head_of(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size() && !first_line(text.substr(at)).empty()) {
        at = next_line(text, at);
    }
    return text.substr(0, next_line(text, at));
}

// What headers say about their body.
struct Content {
    bool is_of_message = false;  // the headers of a SIP request or response
    std::string type;
    std::string boundary;
    std::optional<std::size_t> length;
};

Content content_of(const std::string& head) {
    Content content;
    const std::unique_ptr<msg_t, void (*)(msg_t*)> message(
        msg_make(sip_default_mclass(), 0, head.data(), static_cast<ssize_t>(head.size())),
        msg_destroy);
    const sip_t* const sip = message ? sip_object(message.get()) : nullptr;
    if (sip == nullptr) {
        return content;
    }
    content.is_of_message = sip->sip_request != nullptr || sip->sip_status != nullptr;
    if (const sip_content_type_t* const type = sip->sip_content_type) {
        content.type = type->c_type;
        const char* const boundary = msg_params_find(type->c_params, "boundary=");
        content.boundary = boundary == nullptr ? "" : boundary;
        content.boundary.erase(std::remove(content.boundary.begin(), content.boundary.end(), '"'),
                               content.boundary.end());
    }
    if (sip->sip_content_length != nullptr) {
        content.length = sip->sip_content_length->l_length;
    }
    return content;
}

// Returns the parts of a multipart body (RFC 2046). sofia-sip's parser for these aborts the program
// at a header that it cannot parse.
std::vector<std::string_view> parts_of(std::string_view body, const std::string& boundary) {
    const std::string delimiter = "--" + boundary;
    std::vector<std::string_view> parts;
    std::optional<std::size_t> begin;
    for (std::size_t at = 0; at < body.size();) {
        const std::size_t next = next_line(body, at);
        const std::string_view line = trimmed(first_line(body.substr(at)));
        const bool is_last = line == delimiter + "--";
        if (is_last || line == delimiter) {
            if (begin) {  // the line ending before the delimiter belongs to it
                std::string_view part = body.substr(*begin, at - *begin);
                for (const char end : {'\n', '\r'}) {
                    part.remove_suffix(!part.empty() && part.back() == end ? 1 : 0);
                }
                parts.push_back(part);
            }
            if (is_last) {
                return parts;
            }
            begin = next;
        }
        at = next;
    }
    if (begin) {
        parts.push_back(body.substr(*begin));
    }
    return parts;
}

// Returns the description in a body; nullopt if there is none.
std::optional<std::string_view> find_in(const Content& content, std::string_view body, int depth) {
    if (same(content.type, "application/sdp")) {
        return body;
    }
    if (!starts_with(content.type, "multipart/") || content.boundary.empty() ||
        depth == max_depth) {
        return std::nullopt;
    }
    for (const std::string_view part : parts_of(body, content.boundary)) {
        const std::string_view head = head_of(part);
        const Content of_part = content_of("SIP/2.0 200 OK\r\n" + std::string(head));
        if (const auto found = find_in(of_part, part.substr(head.size()), depth + 1)) {
            return found;
        }
    }
    return std::nullopt;
}

}  // namespace

Found find_description(const std::string& text) {
    const std::string_view first = trimmed(first_line(text));
    const std::string_view version = "SIP/2.0";
    Content content;
    std::string_view body = text;
    if (starts_with(first, "--")) {
        content = {false, "multipart/mixed", std::string(first.substr(2)), std::nullopt};
    } else if (starts_with(first, version) ||
               same(first.substr(first.size() - std::min(first.size(), version.size())), version)) {
        // Without the body: if Content-Length is too large, the parser returns no body.
        const std::string_view head = head_of(text);
        content = content_of(std::string(head));
        refuse_if(!content.is_of_message, 1, "cannot parse the SIP message");
        body.remove_prefix(head.size());
        const std::string_view whole = body.substr(0, content.length.value_or(body.size()));
        // More text can follow the body. A length that cuts a line is wrong.
        body = !whole.empty() && whole.back() != '\n' ? body : whole;
    } else {
        return {text};
    }
    const auto part = find_in(content, body, 0);
    refuse_if(!part, 0, "no body of type application/sdp");
    const auto at = static_cast<std::size_t>(part->data() - text.data());
    return {std::string(*part), count_lines(std::string_view(text).substr(0, at)), true};
}

}  // namespace sdp
