/// @file
/// Network addresses: a small stand-in for the address classes of the sibling library libsocket.
/// libqova uses only what docs/companion.md lists.

#ifndef QOVA_COMPANION_SOCKET_ADDRESS_H
#define QOVA_COMPANION_SOCKET_ADDRESS_H

#include <array>
#include <cstddef>
#include <string>

/// A network address. The order of the virtual functions is ABI.
class INetAddress {
public:
    virtual ~INetAddress() = default;

    /// @return a new copy of the same class, which the caller owns
    virtual INetAddress* Copy() const = 0;

    /// @return the address as text
    virtual std::string ToString() const = 0;

    /// @return `AF_INET` or `AF_INET6`
    virtual int Family() const = 0;

    /// @return the number of bytes of the address: 4 or 16
    virtual std::size_t Size() const = 0;

    /// @return the address in network byte order: Size() bytes that live as long as this object
    virtual const unsigned char* Bytes() const = 0;

    /// @return true for 127.0.0.0/8 and ::1
    virtual bool IsLoopback() const = 0;

    /// @return true for 224.0.0.0/4 and ff00::/8
    virtual bool IsMulticast() const = 0;

    /// @param text any text
    /// @return true if the text spells this address
    virtual bool IsEqual(const std::string& text) const = 0;

    /// @param text any text
    /// @return the negation of IsEqual()
    virtual bool operator!=(const std::string& text) const { return !IsEqual(text); }

    /// @return true for 10.0.0.0/8, 172.16.0.0/12, 192.168.0.0/16 (RFC 1918) and fc00::/7 (RFC
    /// 4193)
    virtual bool IsPrivate() const = 0;

    /// @return nonzero for 0.0.0.0 and ::, which designate no destination
    virtual int IsAny() const = 0;

    /// @param address the source, or null
    /// @return a new copy of the same class, which the caller owns; null for null
    /// @throws std::bad_alloc when memory runs out
    static INetAddress* Clone(const INetAddress* address);
};

/// An IPv4 or IPv6 address.
class IPAddress : public INetAddress {
public:
    /// The unspecified IPv4 address, 0.0.0.0.
    constexpr IPAddress() noexcept : bytes{}, isV6(false) {}

    /// Reads IPv4 in dotted decimal without leading zeros, or IPv6 in any form of RFC 4291.
    /// Allocates nothing.
    /// @param text the text, which must be the address and nothing else
    /// @param address where the address goes; unchanged if the text is not an address
    /// @return true if the text is an address
    static bool Parse(const std::string& text, IPAddress& address);

    INetAddress* Copy() const override;

    /// @return IPv4 in dotted decimal, IPv6 as inet_ntop() writes it (RFC 5952)
    std::string ToString() const override;

    int Family() const override;
    std::size_t Size() const override;
    const unsigned char* Bytes() const override;
    bool IsLoopback() const override;
    bool IsMulticast() const override;

    /// An IPv4-mapped IPv6 address does not equal the IPv4 address in it.
    /// @param text any text
    /// @return true if Parse() reads this address from the text
    bool IsEqual(const std::string& text) const override;

    bool IsPrivate() const override;
    int IsAny() const override;

    /// The unspecified IPv4 address.
    static const IPAddress IpAddressAny;

private:
    std::array<unsigned char, 16> bytes;  // IPv4 uses the first four; the rest are zero
    bool isV6;
};

/// A UDP endpoint. It owns a copy of its IP address.
class UDPAddr {
public:
    /// Makes an endpoint with a copy of an address.
    /// @param ip the IP address
    /// @param port the UDP port
    /// @throws std::bad_alloc when memory runs out
    UDPAddr(const INetAddress& ip, unsigned short port);

    /// Makes a copy with its own address.
    /// @param other the source
    /// @throws std::bad_alloc when memory runs out
    UDPAddr(const UDPAddr& other);

    /// Copies the other's address and port. Unchanged if that throws.
    /// @param other the source
    /// @return this endpoint
    /// @throws std::bad_alloc when memory runs out
    UDPAddr& operator=(const UDPAddr& other);

    ~UDPAddr();

    INetAddress* ipAddress;  ///< The IP address, owned; never null.
    unsigned short port;     ///< The UDP port.
};

#endif
