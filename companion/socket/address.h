/// @file
/// Network addresses: a small stand-in for the address classes of the sibling library libsocket.
/// libqova calls nothing here but what docs/companion.md lists.

#ifndef QOVA_COMPANION_SOCKET_ADDRESS_H
#define QOVA_COMPANION_SOCKET_ADDRESS_H

#include <cstddef>
#include <string>

/// A network address. The order of the virtual functions is ABI.
class INetAddress {
public:
    virtual ~INetAddress() = default;

    /// A new copy of the same class.
    /// @return an object that the caller owns
    virtual INetAddress* Copy() const = 0;

    /// The address as text.
    /// @return the text
    virtual std::string ToString() const = 0;

    /// The address family, `AF_INET` or `AF_INET6`.
    /// @return the family
    virtual int Family() const = 0;

    /// The number of bytes of the address: 4 or 16.
    /// @return the number
    virtual std::size_t Size() const = 0;

    /// The address in network byte order.
    /// @return Size() bytes that live as long as the address
    virtual const unsigned char* Bytes() const = 0;

    /// Whether the address is a loopback address.
    /// @return 127.0.0.0/8 or ::1
    virtual bool IsLoopback() const = 0;

    /// Whether the address is a multicast address.
    /// @return 224.0.0.0/4 or ff00::/8
    virtual bool IsMulticast() const = 0;

    /// Whether a text spells this address.
    /// @param text any text
    /// @return false also when the text is no address
    virtual bool IsEqual(const std::string& text) const = 0;

    /// The negation of IsEqual().
    /// @param text any text
    /// @return whether the text does not spell this address
    virtual bool operator!=(const std::string& text) const { return !IsEqual(text); }

    /// Whether the address is private to a site.
    /// @return 10.0.0.0/8, 172.16.0.0/12, 192.168.0.0/16 (RFC 1918) or fc00::/7 (RFC 4193)
    virtual bool IsPrivate() const = 0;

    /// Nonzero when the address designates no destination: 0.0.0.0 or ::.
    /// @return a truth value
    virtual int IsAny() const = 0;

    /// A new copy of an address, of the same class.
    /// @param address the source, or null
    /// @return an object that the caller owns; null for null
    /// @throws std::bad_alloc when memory runs out
    static INetAddress* Clone(const INetAddress* address);
};

/// An IPv4 or IPv6 address.
class IPAddress : public INetAddress {
public:
    /// The unspecified IPv4 address, 0.0.0.0.
    constexpr IPAddress() noexcept : bytes{}, isV6(false) {}

    /// Reads an address: IPv4 in dotted decimal without leading zeros, IPv6 in any form of
    /// RFC 4291. Allocates nothing.
    /// @param text the text; all of it must be the address
    /// @param address where the address goes; unchanged when the text is none
    /// @return whether the text is an address
    static bool Parse(const std::string& text, IPAddress& address);

    /// @copydoc INetAddress::Copy
    INetAddress* Copy() const override;

    /// IPv4 in dotted decimal, IPv6 as RFC 5952 recommends.
    /// @return the text
    std::string ToString() const override;

    /// @copydoc INetAddress::Family
    int Family() const override;

    /// @copydoc INetAddress::Size
    std::size_t Size() const override;

    /// @copydoc INetAddress::Bytes
    const unsigned char* Bytes() const override;

    /// @copydoc INetAddress::IsLoopback
    bool IsLoopback() const override;

    /// @copydoc INetAddress::IsMulticast
    bool IsMulticast() const override;

    /// Whether a text spells this address in any way that Parse() reads. An IPv4-mapped IPv6
    /// address is another address than the IPv4 address in it.
    /// @param text any text
    /// @return false also when the text is no address
    bool IsEqual(const std::string& text) const override;

    /// @copydoc INetAddress::IsPrivate
    bool IsPrivate() const override;

    /// @copydoc INetAddress::IsAny
    int IsAny() const override;

    /// The unspecified IPv4 address.
    static const IPAddress IpAddressAny;

private:
    unsigned char bytes[16];  // IPv4 uses the first four, and the rest stay zero
    bool isV6;
};

/// A UDP endpoint. It owns a copy of its IP address.
class UDPAddr {
public:
    /// An endpoint with a copy of an address.
    /// @param ip the IP address
    /// @param port the UDP port
    /// @throws std::bad_alloc when memory runs out
    UDPAddr(const INetAddress& ip, unsigned short port);

    /// A copy with an address of its own.
    /// @param other the source
    /// @throws std::bad_alloc when memory runs out
    UDPAddr(const UDPAddr& other);

    /// Takes over a copy of the other's address, and its port; unchanged when that throws.
    /// @param other the source
    /// @return this endpoint
    /// @throws std::bad_alloc when memory runs out
    UDPAddr& operator=(const UDPAddr& other);

    ~UDPAddr();

    INetAddress* ipAddress;  ///< The IP address, owned; never null.
    unsigned short port;     ///< The UDP port.
};

#endif
