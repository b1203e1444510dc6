#include "socket/address.h"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <charconv>
#include <utility>

INetAddress* INetAddress::Clone(const INetAddress* address) {
    return address == nullptr ? nullptr : address->Copy();
}

const IPAddress IPAddress::IpAddressAny;

bool IPAddress::Parse(const std::string& text, IPAddress& address) {
    IPAddress parsed;
    parsed.isV6 = text.find(':') != std::string::npos;
    // inet_pton stops at the first NUL, even inside the text.
    if (text.find('\0') != std::string::npos ||
        inet_pton(parsed.Family(), text.c_str(), parsed.bytes.data()) != 1) {
        return false;
    }
    address = parsed;
    return true;
}

INetAddress* IPAddress::Copy() const {
    return new IPAddress(*this);
}

std::string IPAddress::ToString() const {
    char text[INET6_ADDRSTRLEN];
    if (isV6) {
        return inet_ntop(AF_INET6, bytes.data(), text, sizeof text);
    }
    // Comparing media makes the text of each address; inet_ntop would make that much slower.
    char* end = text;
    for (std::size_t i = 0; i < 4; ++i) {
        end = std::to_chars(end, std::end(text), bytes[i]).ptr;
        *end++ = '.';
    }
    return std::string(text, end - 1);
}

int IPAddress::Family() const {
    return isV6 ? AF_INET6 : AF_INET;
}

std::size_t IPAddress::Size() const {
    return isV6 ? 16 : 4;
}

const unsigned char* IPAddress::Bytes() const {
    return bytes.data();
}

bool IPAddress::IsLoopback() const {
    if (isV6) {
        return IsEqual("::1");
    }
    return bytes[0] == 127;
}

bool IPAddress::IsMulticast() const {
    return isV6 ? bytes[0] == 0xff : (bytes[0] & 0xf0U) == 0xe0;
}

bool IPAddress::IsEqual(const std::string& text) const {
    if (!isV6) {
        return ToString() == text;  // an IPv4 address has only one spelling
    }
    IPAddress other;
    return Parse(text, other) && other.isV6 && other.bytes == bytes;
}

bool IPAddress::IsPrivate() const {
    return isV6 ? (bytes[0] & 0xfeU) == 0xfc
                : bytes[0] == 10 || (bytes[0] == 172 && (bytes[1] & 0xf0U) == 16) ||
                      (bytes[0] == 192 && bytes[1] == 168);
}

int IPAddress::IsAny() const {
    return bytes == IpAddressAny.bytes;
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
