/// @file
/// A session description as text: its lines and the values in them.
///
/// Everything here points into the text of the description, which must outlive it, so each field
/// can be changed in place and named by its line. Copying a line copies no text.

#ifndef QOVA_TOOLS_SDP_TEXT_H
#define QOVA_TOOLS_SDP_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdp/diagnostics.h"
#include "sdp/strings.h"
#include "socket/address.h"

namespace sdp {

/// A line that is not blank.
struct Line {
    std::size_t number;       ///< Counted from 1, blank lines included.
    std::string_view text;    ///< The line without its line ending.
    std::string_view ending;  ///< Its line ending; empty if the text ends there.
    char type;                ///< The letter before "=".
    std::string_view name;    ///< The name of an attribute (a=); otherwise empty.
    std::string_view value;   ///< The text after "name:" or "="; no blanks at its ends.
};

/// The lines of the session, or a media line (m=) and the lines after it.
using Section = std::vector<Line>;

/// A description, split into lines.
class Description {
public:
    /// Splits a borrowed text at LF, CR LF or CR. Throws Refusal if it is not one description: if
    /// it does not start with v=0, or has a line that is not of the form x=value, or a repeated o=
    /// or c=.
    explicit Description(const std::string& whole);

    std::string_view text;          ///< The whole text.
    std::vector<Section> sections;  ///< The session's, then one for each media line.

    /// Returns the number of the line at an offset. Linear in the number of lines.
    std::size_t line_at(std::size_t offset) const;
};

/// Returns the attributes of a section with a given name.
std::vector<const Line*> attributes(const Section& section, std::string_view name);

/// Returns the first c= line of a section, or null.
const Line* first_connection(const Section& section);

/// m=TYPE PORT[/COUNT] TRANSPORT FORMAT...
struct MediaLine {
    std::string_view type;                  ///< Such as "audio".
    std::string_view port_digits;           ///< The port in the text.
    unsigned long port = 0;                 ///< 0 to 65535; 0 rejects the line.
    unsigned long more_ports = 0;           ///< Ports after the first; for RTP, COUNT counts pairs.
    std::string_view transport;             ///< Such as "RTP/AVP".
    bool is_rtp = false;                    ///< The transport ends in an RTP profile.
    std::vector<std::string_view> formats;  ///< At most 128; payload types up to 127 for RTP.
};

/// Parses a media line. Throws Refusal.
MediaLine media_line(const Line& line);

/// Returns true if a transport such as UDP/TLS/UDPTL ends in a given one.
bool ends_in(std::string_view transport, std::string_view last);

/// IN IP4 ADDRESS[/SUFFIX] or IN IP6 ADDRESS[/SUFFIX], as in c=, o= and a=rtcp.
struct AddressField {
    std::size_t line = 0;    ///< The number of its line.
    std::string_view label;  ///< IP4 or IP6.
    std::string_view text;   ///< ADDRESS.
    bool suffix = false;     ///< It has a suffix: a TTL or a number of addresses (multicast).
    IPAddress address;       ///< ADDRESS, parsed.
};

/// A Refusal of an address because it is a host name.
class HostName : public Refusal {
public:
    explicit HostName(std::size_t given_line)
        : Refusal(given_line, "host names are not resolved") {}
};

/// Returns the address of a c=, o= or a=rtcp line; nullopt for an a=rtcp line with only a port.
/// Throws HostName, or Refusal if there is no address.
std::optional<AddressField> address_of(const Line& line);

/// Returns the port, 1 to 65535, of a=rtcp:PORT [IN IP4 ADDRESS] (RFC 3605). Throws Refusal.
unsigned short rtcp_port(const Line& line);

/// Returns the a=rtcp line that applies to a section, the first one with a port; or null.
const Line* rtcp_of(const Section& section);

/// A payload of an RTP line, from m= and a=rtpmap or the static payload types (RFC 3551).
struct Payload {
    unsigned type;           ///< 0 to 127.
    std::string encoding;    ///< Such as "PCMA"; empty if unknown.
    unsigned long rate;      ///< Clock rate in Hz; 0 if unknown.
    std::string parameters;  ///< After the clock rate, such as the number of channels.
    bool has_rtpmap;         ///< An a=rtpmap line names it.
};

/// The session and its version, from o=.
struct Origin {
    std::uint64_t id;       ///< The same throughout a call.
    std::uint64_t version;  ///< Rises when the description changes.
};

constexpr unsigned max_port = 65535;        ///< The last port.
constexpr unsigned max_payload_type = 127;  ///< The last payload type of RTP.

/// Parses a decimal number from `min` to `max`. Throws Refusal, whose message starts with
/// `expected`, such as "m=: expected a port".
template <class Number = unsigned>
Number required(std::size_t line, const std::string& expected, std::string_view digits,
                unsigned long long min, unsigned long long max) {
    const auto value = number(digits, max);
    if (!value || *value < min) {
        throw Refusal(line,
                      expected + " from " + std::to_string(min) + " to " + std::to_string(max));
    }
    return static_cast<Number>(*value);
}

}  // namespace sdp

#endif
