// Addresses that are kept as text. Only what libqova calls has the names of the other companion.

#ifndef OTHER_COMPANION_SOCKET_ADDRESS_H
#define OTHER_COMPANION_SOCKET_ADDRESS_H

#include <string>

#include "counted.h"

class INetAddress {
public:
    virtual ~INetAddress() = default;
    virtual void Unused2() const = 0;
    virtual std::string ToString() const = 0;
    virtual void Unused4() const = 0;
    virtual void Unused5() const = 0;
    virtual void Unused6() const = 0;
    virtual void Unused7() const = 0;
    virtual void Unused8() const = 0;
    virtual bool IsEqual(const std::string& text) const = 0;
    virtual bool operator!=(const std::string& text) const { return !IsEqual(text); }
    virtual INetAddress* MakeAnother() const = 0;
    virtual int IsAny() const = 0;

    static INetAddress* Clone(const INetAddress* address);
};

// Ends the program when libqova calls what it must not call.
class TextAddress : public INetAddress {
public:
    void Unused2() const override;
    void Unused4() const override;
    void Unused5() const override;
    void Unused6() const override;
    void Unused7() const override;
    void Unused8() const override;
    bool IsEqual(const std::string& text) const override;
};

class IPAddress : public TextAddress {
public:
    std::string ToString() const override;
    INetAddress* MakeAnother() const override;
    int IsAny() const override;

    static const IPAddress IpAddressAny;

private:
    char text[16] = "nowhere";
};

// A name may hold a NUL, and letter case is all the same to it.
class HostName : public TextAddress {
public:
    explicit HostName(std::string host_name);

    std::string ToString() const override;
    bool IsEqual(const std::string& text) const override;
    INetAddress* MakeAnother() const override;
    int IsAny() const override;

private:
    std::string name;
    Counted counted;
};

// Borrows its address.
class UDPAddr {
public:
    unsigned short port;
    const INetAddress* ipAddress;
};

#endif
