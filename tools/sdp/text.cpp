#include "sdp/text.h"

#include <sys/socket.h>

#include <algorithm>
#include <charconv>
#include <climits>

namespace sdp {

namespace {

constexpr unsigned long long greatest_port = 65535;
constexpr unsigned greatest_payload_type = 127;
constexpr std::size_t most_formats = 128;  // RTP has no room for more payloads

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Whether a text holds nothing but the characters of RFC 4566's tokens and given others.
bool consists_of_tokens(std::string_view text, std::string_view others) {
    return std::all_of(text.begin(), text.end(), [others](char c) {
        const bool is_printable = c > ' ' && c < '\x7f';
        const bool is_separator =
            std::string_view("\"(),/:;<=>?@[\\]").find(c) != std::string_view::npos;
        return (is_printable && !is_separator) || others.find(c) != std::string_view::npos;
    });
}

// Reads the line whose bytes are content, and that starts and ends at the given offsets.
Line make_line(std::size_t number, std::size_t begin, std::size_t end, std::string_view content) {
    if (content.size() < 2 || content[1] != '=') {
        throw Refusal(number, "the line is not of the form x=value");
    }
    Line line{number, begin, end, end, content[0], {}, content.substr(2)};
    if (std::string_view("vosiuepcbtrzkam").find(line.type) == std::string_view::npos) {
        throw Refusal(number, "SDP has no such kind of line");
    }
    if (line.type == 'a') {
        std::vector<std::string_view> parts = split(line.value, ":", 2);
        parts.resize(2);
        line.name = trimmed(parts[0]);
        line.value = parts[1];
    }
    line.value = trimmed(line.value);
    return line;
}

// What the parser would pass over in silence, or read in a way of its own.
void check_order(const std::vector<Section>& sections) {
    bool has_origin = false;
    bool has_connection = false;
    for (const Section& section : sections) {
        for (const Line& line : section) {
            const bool in_session = &section == &sections.front();
            if (line.type == 'v' && &line != &sections.front().front()) {
                throw Refusal(line.number, "a second description begins here");
            }
            if (line.type == 'o' && (has_origin || !in_session)) {
                throw Refusal(line.number, "o= stands once, before the media");
            }
            if (line.type == 'c' && in_session && has_connection) {
                throw Refusal(line.number, "the session has a second c= line");
            }
            has_origin = has_origin || line.type == 'o';
            has_connection = has_connection || (line.type == 'c' && in_session);
        }
    }
    if (!has_origin) {
        throw Refusal(sections.front().front().number, "no o= line follows");
    }
}

// Labels of letters, digits, hyphens and underscores; a last one of digits would be part of an IPv4
// address.
bool is_host_name(std::string_view text) {
    const std::vector<std::string_view> labels = split(text, ".");
    return !number(labels.back(), ULLONG_MAX) &&
           std::all_of(labels.begin(), labels.end(), [](std::string_view label) {
               return !label.empty() && label.front() != '-' &&
                      std::all_of(label.begin(), label.end(), [](char c) {
                          return (lower(c) >= 'a' && lower(c) <= 'z') || (c >= '0' && c <= '9') ||
                                 c == '-' || c == '_';
                      });
           });
}

AddressField address_field(std::size_t line, const std::string_view* fields) {
    AddressField field;
    field.line = line;
    field.label = fields[1];
    const std::vector<std::string_view> parts = split(fields[2], "/", 2);
    field.text = parts[0];
    field.suffix = parts.size() == 2;
    const bool is_v6 = same(field.label, "IP6");
    if (!same(fields[0], "IN") || (!is_v6 && !same(field.label, "IP4"))) {
        throw Refusal(line, "the address is neither IN IP4 nor IN IP6");
    }
    if (!IPAddress::Parse(std::string(field.text), field.address)) {
        if (is_host_name(field.text)) {
            throw HostName(line);
        }
        throw Refusal(line, "the address is neither an IP address nor a host name");
    }
    if ((field.address.Family() == AF_INET6) != is_v6) {
        throw Refusal(line, "the address is of another family than its label says");
    }
    return field;
}

}  // namespace

bool same(std::string_view left, std::string_view right) {
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(),
                      [](char l, char r) { return lower(l) == lower(r); });
}

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const std::size_t last = text.find_last_not_of(blanks);
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::vector<std::string_view> split(std::string_view text, std::string_view separators,
                                    std::size_t most) {
    std::vector<std::string_view> pieces;
    std::size_t end = text.find_first_of(separators);
    while (end != std::string_view::npos && pieces.size() + 1 < most) {
        pieces.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
        end = text.find_first_of(separators);
    }
    pieces.push_back(text);
    return pieces;
}

std::vector<std::string_view> tokens(std::string_view text) {
    std::vector<std::string_view> pieces = split(text, blanks);
    pieces.erase(std::remove(pieces.begin(), pieces.end(), ""), pieces.end());
    return pieces;
}

std::optional<unsigned long long> number(std::string_view digits, unsigned long long greatest) {
    unsigned long long value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || stop != end || value > greatest) {
        return std::nullopt;
    }
    return value;
}

unsigned long long needed_number(std::size_t line, const std::string& what, std::string_view digits,
                                 unsigned long long greatest) {
    const auto value = number(digits, greatest);
    if (!value) {
        throw Refusal(line,
                      what + ": the value is no number from 0 to " + std::to_string(greatest));
    }
    return *value;
}

unsigned needed_payload_type(std::size_t line, const std::string& what, std::string_view digits) {
    const auto value = number(digits, ULLONG_MAX);
    if (!value || *value > greatest_payload_type) {
        throw Refusal(line, what + (value ? ": the payload type is above 127"
                                          : ": the payload type is no number"));
    }
    return static_cast<unsigned>(*value);
}

Description::Description(const std::string& whole) : text(whole), sections(1) {
    if (text.substr(0, 3) == "\xef\xbb\xbf") {
        throw Refusal(1, "a byte-order mark stands before v=");
    }
    std::size_t line_number = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        ++line_number;
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        const std::size_t next =
            std::min(end + (text.substr(end, 2) == "\r\n" ? 2 : 1), text.size());
        std::string_view content = text.substr(begin, end - begin);
        content.remove_prefix(std::min(content.find_first_not_of(blanks), content.size()));
        if (!content.empty()) {
            const bool is_first = sections.front().empty();
            if (is_first && trimmed(content) != "v=0") {
                throw Refusal(line_number, "no session description: it does not begin with v=0");
            }
            if (content.find('\0') != std::string_view::npos) {
                throw Refusal(line_number, "the line holds a NUL byte");
            }
            Line line = make_line(line_number, begin, end, content);
            line.next = next;
            if (line.type == 'm') {
                sections.emplace_back();
            }
            sections.back().push_back(line);
        }
        begin = next;
    }
    if (sections.front().empty()) {
        throw Refusal(0, "no session description: there is nothing in it");
    }
    check_order(sections);
}

std::string_view Description::content(const Line& line) const {
    return text.substr(line.begin, line.end - line.begin);
}

std::string_view Description::ending(const Line& line) const {
    return text.substr(line.end, line.next - line.end);
}

std::size_t Description::offset(std::string_view piece) const {
    return static_cast<std::size_t>(piece.data() - text.data());
}

std::size_t Description::line_at(std::size_t offset) const {
    std::size_t found = 1;
    for (const Section& section : sections) {
        for (const Line& line : section) {
            if (line.begin <= offset) {
                found = line.number;
            }
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
    if (fields.size() < 3) {
        throw Refusal(line.number, "m= needs a kind, a port, a transport and formats");
    }
    // At other characters the parser may loop until memory runs out.
    if (!consists_of_tokens(fields[0], "") || !consists_of_tokens(fields[2], "/") ||
        !std::all_of(fields.begin() + 3, fields.end(),
                     [](std::string_view format) { return consists_of_tokens(format, ""); })) {
        throw Refusal(line.number,
                      "the kind, the transport or a format is not made of token characters");
    }
    MediaLine media;
    media.kind = fields[0];
    const std::vector<std::string_view> ports = split(fields[1], "/", 2);
    media.port_digits = ports[0];
    const auto port = number(media.port_digits, greatest_port);
    if (!port) {
        throw Refusal(line.number, "the port is no number from 0 to 65535");
    }
    media.port = static_cast<unsigned long>(*port);
    const auto count = number(ports.size() == 2 ? ports[1] : "1", greatest_port);
    if (!count || *count == 0) {
        throw Refusal(line.number, "the number of ports is out of range");
    }
    media.transport = fields[2];
    media.is_rtp = ends_in(media.transport, "RTP/AVP") || ends_in(media.transport, "RTP/AVPF") ||
                   ends_in(media.transport, "RTP/SAVP") || ends_in(media.transport, "RTP/SAVPF");
    media.more_ports =
        static_cast<unsigned long>(media.is_rtp && *count > 1 ? 2 * *count : *count) - 1;
    media.formats.assign(fields.begin() + 3, fields.end());
    if (media.is_rtp && std::any_of(media.formats.begin(), media.formats.end(), [](auto format) {
            return number(format, ULLONG_MAX).value_or(0) > greatest_payload_type;
        })) {
        throw Refusal(line.number, "a payload type is above 127");
    }
    if (media.formats.size() > most_formats) {
        throw Refusal(line.number, "the media has more than 128 formats");
    }
    return media;
}

AddressField connection_address(const Line& line) {
    const std::vector<std::string_view> fields = tokens(line.value);
    if (fields.size() != 3) {
        throw Refusal(line.number, "c= needs a net type, an address type and an address");
    }
    return address_field(line.number, fields.data());
}

AddressField origin_address(const Line& line) {
    const std::vector<std::string_view> fields = tokens(line.value);
    if (fields.size() < 6) {
        throw Refusal(line.number, "o= needs six fields");
    }
    return address_field(line.number, &fields[3]);
}

RtcpLine rtcp_line(const Line& line) {
    const std::vector<std::string_view> fields = tokens(line.value);
    if (fields.empty()) {
        throw Refusal(line.number, "a=rtcp needs a port");
    }
    RtcpLine rtcp;
    rtcp.port_digits = fields[0];
    const auto port = number(rtcp.port_digits, greatest_port);
    if (!port || *port == 0) {
        throw Refusal(line.number, "the RTCP port is no number from 1 to 65535");
    }
    rtcp.port = static_cast<unsigned short>(*port);
    return rtcp;
}

std::optional<AddressField> rtcp_address(const Line& line) {
    const std::vector<std::string_view> fields = tokens(line.value);
    if (fields.size() == 1) {
        return std::nullopt;
    }
    if (fields.size() != 4) {
        throw Refusal(line.number, "a=rtcp needs a port, or a port and an address");
    }
    return address_field(line.number, &fields[1]);
}

const Line* rtcp_of(const Section& section) {
    const auto found = std::find_if(section.begin(), section.end(), [](const Line& line) {
        const std::vector<std::string_view> fields = tokens(line.value);
        return same(line.name, "rtcp") && !fields.empty() &&
               number(fields[0], greatest_port).value_or(0) != 0;
    });
    return found == section.end() ? nullptr : &*found;
}

}  // namespace sdp
