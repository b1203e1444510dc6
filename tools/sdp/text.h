// A session description as text: its lines, where their fields stand, and what is wrong with them.
//
// The reader and the mover share this. Everything here points into the description's text, so that
// a field can be found, changed in its place, or named by its line.

#ifndef QOVA_TOOLS_SDP_TEXT_H
#define QOVA_TOOLS_SDP_TEXT_H

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "socket/address.h"

namespace sdp {

// Why a description is refused, or a line of it. The message quotes nothing of the description,
// whose lines may hold keys.
class Refusal : public std::runtime_error {
public:
    Refusal(std::size_t in_line, const std::string& message)
        : std::runtime_error(message), line(in_line) {}

    std::size_t line;  // counted from 1; 0: the description as a whole
};

// A refusal of an address because it is a host name.
class HostName : public Refusal {
public:
    explicit HostName(std::size_t in_line) : Refusal(in_line, "host names are not looked up") {}
};

// A line whose value the model does not take, and why. The message quotes nothing either.
struct Warning {
    std::size_t line;
    std::string message;
};

// Where a value is refused, its member keeps its default, and a warning says why.
// Returns whether the value was taken.
template <class Reason = Refusal, class Call>
bool tolerate(std::vector<Warning>& warnings, Call call) {
    try {
        call();
        return true;
    } catch (const Reason& reason) {
        warnings.push_back({reason.line, reason.what()});
        return false;
    }
}

// Case counts for none of SDP's names here; the host's locale plays no part.
bool same(std::string_view left, std::string_view right);

constexpr std::string_view blanks = " \t";

std::string_view trimmed(std::string_view text);

// What stands between separators, at most so many pieces: the last one is the rest of the text.
std::vector<std::string_view> split(std::string_view text, std::string_view separators,
                                    std::size_t most = std::string_view::npos);

// What stands between blanks, however many.
std::vector<std::string_view> tokens(std::string_view text);

// A decimal number of digits only; nothing when the text is another thing or exceeds the greatest.
std::optional<unsigned long long> number(std::string_view digits, unsigned long long greatest);

// The same where a line has to have one. Throws Refusal, which says what is no number.
unsigned long long needed_number(std::size_t line, const std::string& what, std::string_view digits,
                                 unsigned long long greatest);

// The payload type of an attribute. Throws Refusal, which says of what it is none.
unsigned needed_payload_type(std::size_t line, const std::string& what, std::string_view digits);

// One line. Blank lines are passed over, but counted.
struct Line {
    std::size_t number;      // from 1, as an editor counts
    std::size_t begin;       // offset of the line in the text
    std::size_t end;         // offset of its line ending
    std::size_t next;        // offset after its line ending; the same where the text just ends
    char type;               // the letter before "="
    std::string_view name;   // of an attribute (a=); else empty
    std::string_view value;  // after "name:" of an attribute, else after "="; no outer blanks
};

using Section = std::vector<Line>;

class Description {
public:
    // The text must outlive this object. Lines end with LF, CR LF or CR.
    // Throws Refusal where the text does not have the outer form of one description.
    explicit Description(const std::string& whole);

    std::string_view text;
    std::vector<Section> sections;  // the session's, then one for each m= line, which opens it

    // A line as it came, and what ends it.
    std::string_view content(const Line& line) const;
    std::string_view ending(const Line& line) const;

    // Where a piece of the text stands in it.
    std::size_t offset(std::string_view piece) const;

    // The number of the line that an offset falls in.
    std::size_t line_at(std::size_t offset) const;
};

// The first c= line of a section, or null.
const Line* first_connection(const Section& section);

// m=<kind> <port>[/<count>] <transport> <format> ...
struct MediaLine {
    std::string_view kind;
    std::string_view port_digits;
    unsigned long port = 0;
    unsigned long more_ports = 0;  // that follow on the first, where a count asks for them
    std::string_view transport;
    bool is_rtp = false;
    std::vector<std::string_view> formats;
};
MediaLine media_line(const Line& line);

// Whether a transport such as UDP/TLS/UDPTL ends in a given one.
bool ends_in(std::string_view transport, std::string_view last);

// <nettype> <addrtype> <address>[/<suffix>], as in c=, o= and a=rtcp. What reads one throws
// HostName for a host name, Refusal where there is no address.
struct AddressField {
    std::size_t line = 0;
    std::string_view label;  // IP4 or IP6
    std::string_view text;   // without the suffix
    bool suffix = false;     // a TTL or a number of addresses: multicast
    IPAddress address;
};
AddressField connection_address(const Line& line);
AddressField origin_address(const Line& line);

// a=rtcp:<port> [<nettype> <addrtype> <address>] (RFC 3605)
struct RtcpLine {
    std::string_view port_digits;
    unsigned short port = 0;
};
RtcpLine rtcp_line(const Line& line);
std::optional<AddressField> rtcp_address(const Line& line);

// The a=rtcp line of a section that counts: the first with a port; or null.
const Line* rtcp_of(const Section& section);

}  // namespace sdp

#endif
