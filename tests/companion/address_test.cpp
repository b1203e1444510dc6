// The companion's addresses: reading, printing, comparing, kinds and ownership.

#include "socket/address.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "building_blocks.h"

namespace {

using namespace std::string_literals;

static_assert(std::is_abstract_v<INetAddress>);
static_assert(std::has_virtual_destructor_v<INetAddress>);

std::vector<std::string> words(const char* text) {
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), {}};
}

// ---- Reading, printing and comparing ----

// Each spelling, and how the address is printed.
constexpr std::pair<const char*, const char*> spellings[] = {
    {"192.0.2.1", "192.0.2.1"},
    {"0.0.0.0", "0.0.0.0"},
    {"255.255.255.255", "255.255.255.255"},
    {"9.10.99.100", "9.10.99.100"},
    {"1:2:3:4:5:6:7:8", "1:2:3:4:5:6:7:8"},
    {"2001:0DB8:ABCD:00EF::0001", "2001:db8:abcd:ef::1"},
    {"0:0:0:0:0:0:0:0", "::"},
    {"0:0:0:0:0:0:0:1", "::1"},
    {"1:0:0:0:0:0:0:0", "1::"},
    {"2001:0:0:1:0:0:0:1", "2001:0:0:1::1"},     // "::" for the longest run of zeros
    {"2001:db8:0:0:1::1", "2001:db8::1:0:0:1"},  // for the first of two
    {"1::3:4:5:6:7:8", "1:0:3:4:5:6:7:8"},       // and not for a single one
    {"::ffff:c000:201", "::ffff:192.0.2.1"},
    {"0:0:0:0:0:FFFF:192.0.2.1", "::ffff:192.0.2.1"},
    {"::ffff:0:0", "::ffff:0.0.0.0"},
    {"::c000:201", "::192.0.2.1"},
    {"2001:db8::192.0.2.1", "2001:db8::c000:201"},
};

TEST(Address, AcceptsEverySpelling) {
    for (const auto& [text, printed] : spellings) {
        EXPECT_EQ(ip(text).ToString(), printed);
        EXPECT_TRUE(ip(printed).IsEqual(text)) << text;
    }
}

TEST(AddressParse, ReadsBothFamiliesInNetworkOrder) {
    const auto bytes_of = [](const INetAddress& address) {
        return std::vector<int>(address.Bytes(), address.Bytes() + address.Size());
    };
    IPAddress address = ip("2001:db8:102:304:506:708:90a:b0c");
    EXPECT_EQ(address.Family(), AF_INET6);
    EXPECT_EQ(bytes_of(address),
              (std::vector<int>{0x20, 1, 0x0d, 0xb8, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    ASSERT_TRUE(IPAddress::Parse("192.0.2.255", address)) << "into an address of another family";
    EXPECT_EQ(address.Family(), AF_INET);
    EXPECT_EQ(bytes_of(address), (std::vector<int>{192, 0, 2, 255}));
}

TEST(AddressParse, RejectsOtherTexts) {
    std::vector<std::string> texts = words(
        "gateway 192.0.2.01 256.0.2.1 192.0.2 192.0.2.1.1 3221225985 0xc0.0.2.1 192..2.1 "
        "192.0.2.-1 192.0.2.1:5060 192.0.2.0/24 : ::: 1::2::3 1:2:3:4:5:6:7 1:2:3:4:5:6:7: "
        "1:2:3:4:5:6:7:8:9 12345:: g:: [::1] fe80::1%eth0 2001:db8::/32 "
        "192.0.2.1:: ::ffff:192.0.2.01 ::ffff:192.0.2 1:2:3:4:5:6:7:192.0.2.1");
    for (const std::string& text : {"192.0.2.1"s, "::1"s, ""s}) {
        for (const std::string& junk : {" "s, "\n"s, "\0"s, "\0junk"s}) {
            texts.insert(texts.end(), {text + junk, junk + text});
        }
    }
    texts.emplace_back();
    for (const std::string& text : texts) {
        IPAddress address = ip("2001:db8::1");
        EXPECT_FALSE(IPAddress::Parse(text, address)) << text;
        EXPECT_EQ(address.ToString(), "2001:db8::1") << "changed by " << text;
        for (const char* const other : {"192.0.2.1", "0.0.0.0", "::1", "::"}) {
            EXPECT_FALSE(ip(other).IsEqual(text)) << other << " and " << text;
        }
    }
}

TEST(IpAddressAny, IsTheDefaultAddress) {
    EXPECT_EQ(IPAddress::IpAddressAny.ToString(), "0.0.0.0");
    EXPECT_EQ(IPAddress().ToString(), "0.0.0.0");
}

TEST(AddressIsEqual, ComparesEveryByte) {
    for (const std::string text : {"1.1.1.1", "101:101:101:101:101:101:101:101"}) {
        for (std::size_t place = 0; place < text.size(); place += 2) {
            std::string other = text;
            other[place] = '2';
            EXPECT_FALSE(ip(text).IsEqual(other)) << other;
        }
    }
}

TEST(AddressIsEqual, DistinguishesTheFamilies) {
    EXPECT_FALSE(ip("192.0.2.1").IsEqual("::ffff:192.0.2.1"));
    EXPECT_FALSE(ip("::ffff:192.0.2.1").IsEqual("192.0.2.1"));
    EXPECT_FALSE(ip("192.0.2.1").IsEqual("c000:201::"));
    EXPECT_FALSE(ip("c000:201::").IsEqual("192.0.2.1"));
}

// ---- Kinds of addresses ----

constexpr std::pair<const char*, const char*> kinds[] = {
    {"any", "0.0.0.0 ::"},
    {"loopback", "127.0.0.0 127.255.255.255 ::1"},
    {"multicast", "224.0.0.0 239.255.255.255 ff00:: ffff:ffff::"},
    {"private",
     "10.0.0.0 10.255.255.255 172.16.0.0 172.31.255.255 192.168.0.0 192.168.255.255 "
     "fc00:: fdff:ffff::"},
    // The neighbours of these ranges.
    {"",
     "0.0.0.1 1.0.0.0 126.255.255.255 128.0.0.0 223.255.255.255 240.0.0.0 9.255.255.255 "
     "11.0.0.0 172.15.255.255 172.32.0.0 173.16.0.0 192.167.255.255 192.169.0.0 193.168.0.0 "
     "0:0:1:: 8000:: ::2 8000::1 feff:ffff:: fbff:ffff:: fe00::"},
    // Addresses with the same bytes in the other family.
    {"",
     "252.0.0.1 255.0.0.0 7f00::1 e000::1 a00::1 ac10::1 c0a8::1 ::ffff:0.0.0.0 "
     "::ffff:127.0.0.1 ::ffff:224.0.0.1 ::ffff:10.0.0.1"},
};

TEST(AddressKind, DependsOnTheRange) {
    for (const auto& [kind, addresses] : kinds) {
        for (const std::string& text : words(addresses)) {
            const IPAddress address = ip(text);
            std::string found = address.IsAny() != 0 ? "any" : "";
            found += address.IsLoopback() ? "loopback" : "";
            found += address.IsMulticast() ? "multicast" : "";
            found += address.IsPrivate() ? "private" : "";
            EXPECT_EQ(found, kind) << text;
        }
    }
}

// ---- Other classes, and owners ----

// An address of another class. Even operator!= is virtual.
class Gateway : public IPAddress {
public:
    INetAddress* Copy() const override { return new Gateway(*this); }
    std::string ToString() const override { return "gateway"; }
    bool IsEqual(const std::string& text) const override { return text == "gateway"; }
    bool operator!=(const std::string& text) const override { return IPAddress::operator!=(text); }
};

void expect_copy(const INetAddress& copy, const INetAddress& source) {
    EXPECT_NE(&copy, &source);
    EXPECT_EQ(typeid(copy), typeid(source));
    EXPECT_EQ(copy.ToString(), source.ToString());
}

TEST(AddressDifference, NegatesTheDynamicIsEqual) {
    const Gateway gateway;
    const INetAddress& address = gateway;
    EXPECT_FALSE(address != "gateway");
    EXPECT_TRUE(address != "0.0.0.0");
    EXPECT_FALSE(ip("::1") != "0::1");
    EXPECT_TRUE(ip("::1") != "::2");
}

TEST(AddressClone, KeepsTheDynamicClass) {
    const Gateway gateway;
    expect_copy(*std::unique_ptr<INetAddress>(INetAddress::Clone(&gateway)), gateway);
    const IPAddress address = ip("2001:db8::1");
    expect_copy(*std::unique_ptr<INetAddress>(INetAddress::Clone(&address)), address);
    EXPECT_EQ(INetAddress::Clone(nullptr), nullptr);
}

TEST(UdpAddress, OwnsACopyOfItsAddress) {
    const Gateway gateway;
    const UDPAddr source(gateway, 65535);
    expect_copy(*source.ipAddress, gateway);
    EXPECT_EQ(source.port, 65535);
    const UDPAddr copy(source);
    expect_copy(*copy.ipAddress, *source.ipAddress);
    EXPECT_EQ(copy.port, 65535);
}

TEST(UdpAddress, AssignmentReplacesItsAddress) {
    const UDPAddr source(ip("192.0.2.1"), 5060);
    UDPAddr target(Gateway(), 1);
    for (const UDPAddr* const from : {&source, &std::as_const(target)}) {
        EXPECT_EQ(&(target = *from), &target);
        expect_copy(*target.ipAddress, *source.ipAddress);
        EXPECT_EQ(target.port, 5060);
    }
}

TEST(UdpAddress, DestructorAcceptsANullAddress) {
    UDPAddr address(ip("192.0.2.1"), 5060);
    const std::unique_ptr<INetAddress> taken(std::exchange(address.ipAddress, nullptr));
    EXPECT_EQ(taken->ToString(), "192.0.2.1");
}

}  // namespace
