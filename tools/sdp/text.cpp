#include "sdp/text.h"

#include <sys/socket.h>

#include <algorithm>
#include <climits>

#include "sdp/strings.h"

namespace sdp {
namespace {

constexpr std::size_t max_formats = 128;  // as many as RTP has payload types

// Returns true if all characters are token characters (RFC 4566) or in `others`.
bool consists_of_tokens(std::string_view text, std::string_view others) {
    return std::all_of(text.begin(), text.end(), [others](char c) {
        const bool is_printable = c > ' ' && c < '\x7f';
        const bool is_separator =
            std::string_view("\"(),/:;<=>?@[\\]").find(c) != std::string_view::npos;
        return (is_printable && !is_separator) || others.find(c) != std::string_view::npos;
    });
}

Line make_line(std::size_t number, std::string_view text, std::string_view ending) {
    const std::string_view content = trimmed(text);
    refuse_if(content.find('\0') != std::string_view::npos, number, "the line contains a NUL byte");
    refuse_if(content.size() < 2 || content[1] != '=', number,
              "expected a line of the form x=value");
    Line line{number, text, ending, content[0], {}, trimmed(content.substr(2))};
    refuse_if(std::string_view("vosiuepcbtrzkam").find(line.type) == std::string_view::npos, number,
              "unknown type of line");
    if (line.type == 'a') {
        std::vector<std::string_view> parts = split(line.value, ":", 2);
        parts.resize(2);
        line.name = trimmed(parts[0]);
        line.value = trimmed(parts[1]);
    }
    return line;
}

// Refuses repeated lines, which the parser ignores or reads in its own way.
void check_order(const std::vector<Section>& sections) {
    bool has_origin = false;
    bool has_connection = false;
    for (const Section& section : sections) {
        for (const Line& line : section) {
            const bool in_session = &section == &sections.front();
            refuse_if(line.type == 'v' && &line != &sections.front().front(), line.number,
                      "a second description starts here");
            refuse_if(line.type == 'o' && (has_origin || !in_session), line.number,
                      "o= is allowed once, before the media lines");
            refuse_if(line.type == 'c' && in_session && has_connection, line.number,
                      "the session has a second c= line");
            has_origin = has_origin || line.type == 'o';
            has_connection = has_connection || (line.type == 'c' && in_session);
        }
    }
    refuse_if(!has_origin, sections.front().front().number, "the o= line is missing");
}

// A last label of digits would be part of an IPv4 address.
bool is_host_name(std::string_view text) {
    const std::vector<std::string_view> labels = split(text, ".");
    return !number(labels.back(), ULLONG_MAX) &&
           std::all_of(labels.begin(), labels.end(), [](std::string_view label) {
               return !label.empty() && label.front() != '-' &&
                      std::all_of(label.begin(), label.end(), [](char c) {
                          return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                 (c >= '0' && c <= '9') || c == '-' || c == '_';
                      });
           });
}

}  // namespace

Description::Description(const std::string& whole) : text(whole), sections(1) {
    refuse_if(text.substr(0, 3) == "\xef\xbb\xbf", 1, "unexpected byte-order mark before v=");
    std::string_view rest = text;
    for (std::size_t number = 1; !rest.empty(); ++number) {
        const std::string_view content = first_line(rest);
        rest.remove_prefix(content.size());
        const std::string_view ending = rest.substr(0, rest.substr(0, 2) == "\r\n" ? 2 : 1);
        rest.remove_prefix(ending.size());
        if (trimmed(content).empty()) {
            continue;
        }
        refuse_if(sections.front().empty() && trimmed(content) != "v=0", number,
                  "not a session description: the first line is not v=0");
        const Line line = make_line(number, content, ending);
        if (line.type == 'm') {
            sections.emplace_back();
        }
        sections.back().push_back(line);
    }
    refuse_if(sections.front().empty(), 0, "the description is empty");
    check_order(sections);
}

std::vector<const Line*> attributes(const Section& section, std::string_view name) {
    std::vector<const Line*> found;
    for (const Line& line : section) {
        if (same(line.name, name)) {
            found.push_back(&line);
        }
    }
    return found;
}

std::size_t Description::line_at(std::size_t offset) const {
    std::size_t found = 1;
    for (const Section& section : sections) {
        for (const Line& line : section) {
            found = line.text.data() <= text.data() + offset ? line.number : found;
        }
    }
    return found;
}

const Line* first_connection(const Section& section) {
    const auto found = std::find_if(section.begin(), section.end(),
                                    [](const Line& line) { return line.type == 'c'; });
    return found == section.end() ? nullptr : &*found;
}

bool ends_in(std::string_view transport, std::string_view last) {
    if (transport.size() < last.size()) {
        return false;
    }
    const std::size_t begin = transport.size() - last.size();
    return same(transport.substr(begin), last) && (begin == 0 || transport[begin - 1] == '/');
}

MediaLine media_line(const Line& line) {
    const std::vector<std::string_view> fields = tokens(line.value);
    refuse_if(fields.size() < 3, line.number,
              "m= needs a media type, a port, a transport and formats");
    for (std::size_t i = 0; i < fields.size(); ++i) {
        // At other characters the parser can loop until memory runs out.
        refuse_if(i != 1 && !consists_of_tokens(fields[i], i == 2 ? "/" : ""), line.number,
                  "invalid character in the media type, the transport or a format");
    }
    MediaLine media;
    media.type = fields[0];
    const std::vector<std::string_view> ports = split(fields[1], "/", 2);
    media.port_digits = ports[0];
    media.port = required(line.number, "m=: expected a port", media.port_digits, 0, max_port);
    const auto count = required(line.number, "m=: expected a number of ports",
                                ports.size() == 2 ? ports[1] : "1", 1, max_port);
    media.transport = fields[2];
    media.is_rtp = ends_in(media.transport, "RTP/AVP") || ends_in(media.transport, "RTP/AVPF") ||
                   ends_in(media.transport, "RTP/SAVP") || ends_in(media.transport, "RTP/SAVPF");
    media.more_ports = (media.is_rtp && count > 1 ? 2 * count : count) - 1;
    media.formats.assign(fields.begin() + 3, fields.end());
    for (const std::string_view format : media.formats) {
        refuse_if(media.is_rtp && number(format, ULLONG_MAX).value_or(0) > max_payload_type,
                  line.number, "m=: expected payload types from 0 to 127");
    }
    refuse_if(media.formats.size() > max_formats, line.number, "m= has more than 128 formats");
    return media;
}

std::optional<AddressField> address_of(const Line& line) {
    const std::vector<std::string_view> fields = tokens(line.value);
    const std::size_t first = line.type == 'o' ? 3 : line.type == 'a' ? 1 : 0;
    if (line.type == 'a' && fields.size() == 1) {
        return std::nullopt;
    }
    refuse_if(line.type == 'o' ? fields.size() < 6 : fields.size() != first + 3, line.number,
              line.type == 'o'   ? "o= needs six fields"
              : line.type == 'c' ? "c= needs a network type, an address type and an address"
                                 : "a=rtcp needs a port, or a port and an address");
    AddressField field;
    field.line = line.number;
    field.label = fields[first + 1];
    const std::vector<std::string_view> parts = split(fields[first + 2], "/", 2);
    field.text = parts[0];
    field.suffix = parts.size() == 2;
    const bool is_v6 = same(field.label, "IP6");
    refuse_if(!same(fields[first], "IN") || (!is_v6 && !same(field.label, "IP4")), line.number,
              "expected an address of type IN IP4 or IN IP6");
    if (!IPAddress::Parse(std::string(field.text), field.address)) {
        refuse_if(!is_host_name(field.text), line.number, "expected an IP address or a host name");
        throw HostName(line.number);
    }
    refuse_if((field.address.Family() == AF_INET6) != is_v6, line.number,
              "the address does not match its type, IP4 or IP6");
    return field;
}

unsigned short rtcp_port(const Line& line) {
    const std::vector<std::string_view> fields = tokens(line.value);
    refuse_if(fields.empty(), line.number, "a=rtcp needs a port");
    return required<unsigned short>(line.number, "a=rtcp: expected a port", fields[0], 1, max_port);
}

const Line* rtcp_of(const Section& section) {
    for (const Line* const line : attributes(section, "rtcp")) {
        const std::vector<std::string_view> fields = tokens(line->value);
        if (!fields.empty() && number(fields[0], max_port).value_or(0) != 0) {
            return line;
        }
    }
    return nullptr;
}

}  // namespace sdp
