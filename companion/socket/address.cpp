#include "socket/address.h"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t v4_size = 4;
constexpr std::size_t v6_size = 16;

// IPv4 is written by hand and from a table, as equality of media asks for the text of every
// address: inet_ntop alone would make it several times slower.
struct Octet {
    char text[4];  // in decimal, followed by a dot
    unsigned char length;
};

constexpr std::array<Octet, 256> make_octets() {
    std::array<Octet, 256> table = {};
    for (unsigned value = 0; value < table.size(); ++value) {
        Octet& octet = table[value];
        for (unsigned unit = 100; unit != 0; unit /= 10) {
            if (value >= unit || unit == 1) {
                octet.text[octet.length++] = static_cast<char>('0' + value / unit % 10);
            }
        }
        octet.text[octet.length++] = '.';
    }
    return table;
}

constexpr std::array<Octet, 256> octets = make_octets();

// The longest IPv4 address and the dot after it, which is written, but does not count.
constexpr std::size_t v4_room = v4_size * sizeof Octet::text;

char* write_v4(char* to, const unsigned char* bytes) {
    for (std::size_t i = 0; i < v4_size; ++i) {
        const Octet& octet = octets[bytes[i]];
        std::memcpy(to, octet.text, sizeof octet.text);
        to += octet.length;
    }
    return to - 1;
}

bool parse_v4(const std::string& text, unsigned char* bytes) {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (std::size_t i = 0; i < v4_size; ++i) {
        if (i != 0 && (at == end || *at++ != '.')) {
            return false;
        }
        const char* const first = at;
        unsigned value = 0;
        while (at != end && *at >= '0' && *at <= '9' && value <= 255) {
            value = value * 10 + static_cast<unsigned>(*at++ - '0');
        }
        // A leading zero is refused: some readers take it for octal.
        if (at == first || value > 255 || (*first == '0' && at - first > 1)) {
            return false;
        }
        bytes[i] = static_cast<unsigned char>(value);
    }
    return at == end;
}

bool parse_v6(const std::string& text, unsigned char* bytes) {
    // inet_pton would stop at a NUL inside the text.
    return text.find('\0') == std::string::npos && inet_pton(AF_INET6, text.c_str(), bytes) == 1;
}

bool is_v4_mapped(const unsigned char* bytes) {
    static constexpr unsigned char prefix[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
    return std::memcmp(bytes, prefix, sizeof prefix) == 0;
}

// RFC 5952: lower case, no leading zeros, "::" for the first longest run of two zero groups or
// more, and dotted decimal for the last four bytes of an IPv4-mapped address.
char* write_v6(char* to, const unsigned char* bytes) {
    if (is_v4_mapped(bytes)) {
        static constexpr char prefix[] = "::ffff:";
        return write_v4(std::copy(prefix, prefix + sizeof prefix - 1, to), bytes + 12);
    }
    constexpr std::size_t groups = v6_size / 2;
    const auto group = [bytes](std::size_t i) {
        return unsigned{bytes[2 * i]} << 8U | bytes[2 * i + 1];
    };
    std::size_t run_start = groups;
    std::size_t run_length = 1;
    for (std::size_t i = 0; i < groups; ++i) {
        std::size_t length = 0;
        while (i + length < groups && group(i + length) == 0) {
            ++length;
        }
        if (length > run_length) {
            run_start = i;
            run_length = length;
        }
    }
    for (std::size_t i = 0; i < groups; ++i) {
        if (i == run_start) {
            *to++ = ':';
            i += run_length - 1;
            if (i == groups - 1) {
                *to++ = ':';
            }
            continue;
        }
        if (i != 0) {
            *to++ = ':';
        }
        const unsigned value = group(i);
        for (int shift = 12; shift >= 0; shift -= 4) {
            if (shift == 0 || value >> static_cast<unsigned>(shift) != 0) {
                *to++ = "0123456789abcdef"[value >> static_cast<unsigned>(shift) & 0xfU];
            }
        }
    }
    return to;
}

}  // namespace

INetAddress* INetAddress::Clone(const INetAddress* address) {
    return address == nullptr ? nullptr : address->Copy();
}

const IPAddress IPAddress::IpAddressAny;

bool IPAddress::Parse(const std::string& text, IPAddress& address) {
    IPAddress parsed;
    if (!parse_v4(text, parsed.bytes)) {
        if (!parse_v6(text, parsed.bytes)) {
            return false;
        }
        parsed.isV6 = true;
    }
    address = parsed;
    return true;
}

INetAddress* IPAddress::Copy() const {
    return new IPAddress(*this);
}

std::string IPAddress::ToString() const {
    char text[INET6_ADDRSTRLEN];
    char* const end = isV6 ? write_v6(text, bytes) : write_v4(text, bytes);
    return std::string(text, static_cast<std::size_t>(end - text));
}

int IPAddress::Family() const {
    return isV6 ? AF_INET6 : AF_INET;
}

std::size_t IPAddress::Size() const {
    return isV6 ? v6_size : v4_size;
}

const unsigned char* IPAddress::Bytes() const {
    return bytes;
}

bool IPAddress::IsLoopback() const {
    static constexpr unsigned char v6_loopback[v6_size] = {0, 0, 0, 0, 0, 0, 0, 0,
                                                           0, 0, 0, 0, 0, 0, 0, 1};
    return isV6 ? std::memcmp(bytes, v6_loopback, v6_size) == 0 : bytes[0] == 127;
}

bool IPAddress::IsMulticast() const {
    return isV6 ? bytes[0] == 0xff : (bytes[0] & 0xf0U) == 0xe0;
}

bool IPAddress::IsEqual(const std::string& text) const {
    if (isV6) {
        unsigned char other[v6_size];
        return parse_v6(text, other) && std::memcmp(bytes, other, v6_size) == 0;
    }
    // An IPv4 address has one spelling only.
    char own[v4_room];
    const char* const end = write_v4(own, bytes);
    return std::string_view(own, static_cast<std::size_t>(end - own)) == text;
}

bool IPAddress::IsPrivate() const {
    if (isV6) {
        return (bytes[0] & 0xfeU) == 0xfc;
    }
    return bytes[0] == 10 || (bytes[0] == 172 && (bytes[1] & 0xf0U) == 16) ||
           (bytes[0] == 192 && bytes[1] == 168);
}

int IPAddress::IsAny() const {
    const auto is_zero = [](unsigned char byte) { return byte == 0; };
    return std::all_of(bytes, bytes + v6_size, is_zero) ? 1 : 0;
}

UDPAddr::UDPAddr(const INetAddress& ip, unsigned short udp_port)
    : ipAddress(INetAddress::Clone(&ip)), port(udp_port) {}

UDPAddr::UDPAddr(const UDPAddr& other) : UDPAddr(*other.ipAddress, other.port) {}

UDPAddr& UDPAddr::operator=(const UDPAddr& other) {
    UDPAddr copy(other);
    std::swap(ipAddress, copy.ipAddress);
    port = copy.port;
    return *this;
}

UDPAddr::~UDPAddr() {
    delete ipAddress;
}
