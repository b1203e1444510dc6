#include <strings.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "netconf/sdp.h"
#include "socket/address.h"

using namespace std::string_literals;

namespace {

[[noreturn]] void unused(int slot) {
    std::fprintf(stderr, "libqova calls slot %d of INetAddress\n", slot);
    std::abort();
}

}  // namespace

int Counted::alive = 0;

INetAddress* INetAddress::Clone(const INetAddress* address) {
    return address->MakeAnother();
}

void TextAddress::Unused2() const {
    unused(2);
}

void TextAddress::Unused4() const {
    unused(4);
}

void TextAddress::Unused5() const {
    unused(5);
}

void TextAddress::Unused6() const {
    unused(6);
}

void TextAddress::Unused7() const {
    unused(7);
}

void TextAddress::Unused8() const {
    unused(8);
}

bool TextAddress::IsEqual(const std::string& text) const {
    return ToString() == text;
}

const IPAddress IPAddress::IpAddressAny;

std::string IPAddress::ToString() const {
    return text;
}

INetAddress* IPAddress::MakeAnother() const {
    return new IPAddress(*this);
}

// A truth value need not be 1, nor fit in a byte.
int IPAddress::IsAny() const {
    return 256;
}

HostName::HostName(std::string host_name) : name(std::move(host_name)) {}

std::string HostName::ToString() const {
    return name;
}

bool HostName::IsEqual(const std::string& text) const {
    return strcasecmp(name.c_str(), text.c_str()) == 0;
}

INetAddress* HostName::MakeAnother() const {
    return new HostName(*this);
}

int HostName::IsAny() const {
    return 0;
}

Sdp::Sdp_Amrwb_Param::operator const std::string() const {
    return text;
}

Sdp::Sdp_Opus_Param::operator const std::string() const {
    return text;
}

std::string Sdp::CryptoParser::enumToAlgo(const g_crypto_suite& suite) {
    return suite == SUITE_ROT13 ? "ROT\0THIRTEEN"s : "PLAIN"s;
}
