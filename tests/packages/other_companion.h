// Another companion, for socket/address.h and for netconf/sdp.h. Its classes have other members,
// and other names wherever libqova does not need a certain name.

#ifndef QOVA_OTHER_COMPANION_H
#define QOVA_OTHER_COMPANION_H

#include <cstdlib>
#include <list>
#include <string>

class INetAddress {
public:
    virtual ~INetAddress() = default;
    virtual void Slot2() const { std::abort(); }
    virtual std::string ToString() const = 0;
    virtual void Slot4() const { std::abort(); }
    virtual void Slot5() const { std::abort(); }
    virtual void Slot6() const { std::abort(); }
    virtual void Slot7() const { std::abort(); }
    virtual void Slot8() const { std::abort(); }
    virtual bool IsEqual(const std::string& text) const = 0;
    virtual bool operator!=(const std::string& text) const { return !IsEqual(text); }
    virtual INetAddress* MakeAnother() const = 0;
    virtual int IsAny() const = 0;

    static INetAddress* Clone(const INetAddress* address) { return address->MakeAnother(); }
};

// The text of an address is logged in full, including the NUL.
class IPAddress : public INetAddress {
public:
    static bool Parse(const std::string& text, IPAddress& address) {
        address.name = text + '\0' + "room 7";
        return true;
    }

    std::string ToString() const override { return name; }
    bool IsEqual(const std::string& text) const override { return name == text; }
    INetAddress* MakeAnother() const override { return new IPAddress(*this); }
    int IsAny() const override { return name.empty() ? 256 : 0; }  // a byte would lose the 256

    static const IPAddress IpAddressAny;

private:
    std::string name;
};

inline const IPAddress IPAddress::IpAddressAny;

class UDPAddr {
public:
    UDPAddr(const INetAddress& address, unsigned short number)
        : port(number), ipAddress(&address) {}

    unsigned short port;
    const INetAddress* ipAddress;
};

enum g_crypto_suite { CS_NIL, CS_AES_CM_128_HMAC_SHA1_80 = 13 };

namespace Sdp {

// Parameters are logged up to the first NUL.
class Sdp_Amrwb_Param {
public:
    virtual ~Sdp_Amrwb_Param() = default;
    operator const std::string() const { return " AMR-WB(mode-set=0,2)" + unlogged; }

    std::string unlogged = std::string(1, '\0') + "unlogged";
    std::list<int> modeSet;
};

class Sdp_Opus_Param {
public:
    virtual ~Sdp_Opus_Param() = default;
    operator const std::string() const { return unlogged; }

    std::string unlogged = std::string(1, '\0') + "unlogged";
};

// The name of a suite is logged in full.
class CryptoParser {
public:
    static std::string enumToAlgo(const g_crypto_suite& suite) {
        return suite == CS_AES_CM_128_HMAC_SHA1_80 ? std::string("A\0NUL", 5) : "NIL";
    }
};

}  // namespace Sdp

#endif
