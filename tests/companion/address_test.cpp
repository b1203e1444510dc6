// The companion's addresses: what the model asks of any address, and what IPAddress answers.

#include "socket/address.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "building_blocks.h"
#include "rows.h"

namespace {

static_assert(std::is_abstract_v<INetAddress>);
static_assert(std::has_virtual_destructor_v<INetAddress>);
static_assert(std::is_convertible_v<IPAddress*, INetAddress*>);

using Owned = std::unique_ptr<INetAddress>;

std::vector<unsigned char> bytes_of(const INetAddress& address) {
    return {address.Bytes(), address.Bytes() + address.Size()};
}

// An address of another class: it has a name for address, and counts its destructors' calls.
class NamedAddress : public INetAddress {
public:
    NamedAddress(std::string text, int* counter) : name(std::move(text)), destroyed(counter) {}
    ~NamedAddress() override { ++*destroyed; }

    INetAddress* Copy() const override { return new NamedAddress(*this); }
    std::string ToString() const override { return name; }
    int Family() const override { return AF_UNSPEC; }
    std::size_t Size() const override { return 0; }
    const unsigned char* Bytes() const override { return nullptr; }
    bool IsLoopback() const override { return false; }
    bool IsMulticast() const override { return false; }
    bool IsEqual(const std::string& text) const override { return text == name; }
    bool IsPrivate() const override { return false; }
    int IsAny() const override { return 0; }

private:
    std::string name;
    int* destroyed;
};

// Says of every text that it spells the address, and that it differs.
class Contradiction : public NamedAddress {
public:
    using NamedAddress::NamedAddress;
    bool IsEqual(const std::string& /*text*/) const override { return true; }
    bool operator!=(const std::string& /*text*/) const override { return true; }
};

TEST(AddressClone, KeepsAClassOfAnotherLibrary) {
    int destroyed = 0;
    const NamedAddress source("gateway", &destroyed);
    {
        const Owned clone(INetAddress::Clone(&source));
        const INetAddress& address = *clone;
        EXPECT_EQ(typeid(address), typeid(NamedAddress));
        EXPECT_EQ(address.ToString(), "gateway");
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1) << "freed through its virtual destructor";
}

TEST(AddressClone, IsADistinctObjectOfTheSameClassThatOutlivesItsSource) {
    for (const char* const text : {"192.0.2.1", "2001:db8::1"}) {
        Owned source(new IPAddress(ip(text)));
        const Owned clone(INetAddress::Clone(source.get()));
        EXPECT_NE(clone, source);
        source.reset();
        const INetAddress& address = *clone;
        EXPECT_EQ(typeid(address), typeid(IPAddress));
        EXPECT_EQ(address.ToString(), text);
    }
}

TEST(AddressClone, OfNullIsNull) {
    EXPECT_EQ(INetAddress::Clone(nullptr), nullptr);
}

TEST(AddressDifference, IsTheNegationOfIsEqual) {
    const char* const texts[] = {
        "192.0.2.1", "192.0.2.2",        "2001:db8::1",      "2001:DB8:0::1",
        "::",        "::ffff:192.0.2.1", "0.0.0.0",          "",
        "gateway",   "192.0.2.1 ",       "::ffff:c000:0201",
    };
    for (const char* const own : {"192.0.2.1", "2001:db8::1", "::ffff:192.0.2.1", "0.0.0.0"}) {
        const IPAddress address = ip(own);
        for (const char* const text : texts) {
            EXPECT_EQ(address != text, !address.IsEqual(text)) << own << " and " << text;
        }
    }
}

TEST(AddressDifference, AsksTheIsEqualOfTheConcreteClass) {
    int destroyed = 0;
    const NamedAddress named("gateway", &destroyed);
    const INetAddress& address = named;
    EXPECT_FALSE(address != "gateway");
    EXPECT_TRUE(address != "192.0.2.1");
}

TEST(AddressDifference, CanBeOverridden) {
    int destroyed = 0;
    const Contradiction contradiction("gateway", &destroyed);
    const INetAddress& address = contradiction;
    EXPECT_TRUE(address.IsEqual("gateway"));
    EXPECT_TRUE(address != "gateway");
}

TEST(IpAddressAny, IsTheUnspecifiedIPv4Address) {
    EXPECT_EQ(IPAddress::IpAddressAny.ToString(), "0.0.0.0");
    EXPECT_EQ(IPAddress::IpAddressAny.Family(), AF_INET);
    EXPECT_NE(IPAddress::IpAddressAny.IsAny(), 0);
}

TEST(IpAddressAny, IsWhatADefaultAddressEquals) {
    const IPAddress address;
    EXPECT_EQ(address.ToString(), "0.0.0.0");
    EXPECT_FALSE(address != IPAddress::IpAddressAny.ToString());
}

TEST(IpAddressFamily, OfIPv4HasFourBytesInNetworkOrder) {
    const IPAddress address = ip("192.0.2.255");
    EXPECT_EQ(address.Family(), AF_INET);
    ASSERT_EQ(address.Size(), 4u);
    EXPECT_EQ(bytes_of(address), (std::vector<unsigned char>{192, 0, 2, 255}));
}

TEST(IpAddressFamily, OfIPv6HasSixteenBytesInNetworkOrder) {
    const IPAddress address = ip("2001:db8:102:304:506:708:90a:b0c");
    EXPECT_EQ(address.Family(), AF_INET6);
    ASSERT_EQ(address.Size(), 16u);
    EXPECT_EQ(bytes_of(address), (std::vector<unsigned char>{0x20, 0x01, 0x0d, 0xb8, 1, 2, 3, 4, 5,
                                                             6, 7, 8, 9, 10, 11, 12}));
}

// A spelling, and the one spelling in which it is printed.
using Spelling = Row<const char*>;

constexpr Spelling spellings[] = {
    {"v4", "192.0.2.1", "192.0.2.1"},
    {"v4_zeros", "0.0.0.0", "0.0.0.0"},
    {"v4_all_ones", "255.255.255.255", "255.255.255.255"},
    {"v4_of_one_two_and_three_digits", "9.10.99.100", "9.10.99.100"},
    {"v4_around_the_digit_limits", "199.200.249.250", "199.200.249.250"},

    {"unspecified", "::", "::"},
    {"unspecified_in_full", "0:0:0:0:0:0:0:0", "::"},
    {"loopback", "::1", "::1"},
    {"loopback_in_full", "0:0:0:0:0:0:0:1", "::1"},
    {"leading_zeros", "2001:0db8::0001", "2001:db8::1"},
    {"leading_zeros_within_digits", "0a0b:000c:0d0e::", "a0b:c:d0e::"},
    {"no_zero_group", "1:2:3:4:5:6:7:8", "1:2:3:4:5:6:7:8"},
    {"all_ones", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff",
     "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"},
    {"lower_case", "2001:DB8:ABCD:EF::Ab", "2001:db8:abcd:ef::ab"},
    {"run_at_the_start", "0:0:1:2:3:4:5:6", "::1:2:3:4:5:6"},
    {"run_at_the_end", "1:2:3:4:5:6:0:0", "1:2:3:4:5:6::"},
    {"run_of_seven_at_the_start", "0:0:0:0:0:0:0:8", "::8"},
    {"run_of_seven_at_the_end", "1:0:0:0:0:0:0:0", "1::"},
    {"run_in_the_middle", "2001:db8:0:0:0:0:2:1", "2001:db8::2:1"},
    {"longest_run", "2001:0:0:1:0:0:0:1", "2001:0:0:1::1"},
    {"longest_run_first", "2001:0:0:0:1:0:0:1", "2001::1:0:0:1"},
    {"longest_run_at_the_end", "0:0:1:2:3:0:0:0", "0:0:1:2:3::"},
    {"first_of_ties", "2001:db8:0:0:1:0:0:1", "2001:db8::1:0:0:1"},
    {"first_of_ties_from_the_second_spelling", "2001:db8:0:0:1::1", "2001:db8::1:0:0:1"},
    {"first_of_ties_at_both_ends", "0:0:1:2:3:4:0:0", "::1:2:3:4:0:0"},
    {"single_zero_group_is_not_shortened", "2001:db8:0:1:1:1:1:1", "2001:db8:0:1:1:1:1:1"},
    {"single_zero_group_at_the_start", "0:2:3:4:5:6:7:8", "0:2:3:4:5:6:7:8"},
    {"single_zero_group_at_the_end", "1:2:3:4:5:6:7:0", "1:2:3:4:5:6:7:0"},
    {"single_zero_groups_alternating", "1:0:3:0:5:0:7:0", "1:0:3:0:5:0:7:0"},
    {"colons_for_a_single_group", "2001:db8::1:1:1:1:1", "2001:db8:0:1:1:1:1:1"},
    {"colons_for_the_first_group", "::2:3:4:5:6:7:8", "0:2:3:4:5:6:7:8"},
    {"colons_for_the_last_group", "1:2:3:4:5:6:7::", "1:2:3:4:5:6:7:0"},
    {"colons_beside_zero_groups", "1:0::0:2", "1::2"},

    {"mapped", "::ffff:192.0.2.1", "::ffff:192.0.2.1"},
    {"mapped_in_hexadecimal", "::ffff:c000:0201", "::ffff:192.0.2.1"},
    {"mapped_in_capitals", "::FFFF:C000:201", "::ffff:192.0.2.1"},
    {"mapped_in_full", "0:0:0:0:0:ffff:192.0.2.1", "::ffff:192.0.2.1"},
    {"mapped_zeros", "::ffff:0:0", "::ffff:0.0.0.0"},
    {"mapped_all_ones", "::ffff:ffff:ffff", "::ffff:255.255.255.255"},
    {"nearly_mapped_by_the_mark", "::fffe:c000:201", "::fffe:c000:201"},
    {"nearly_mapped_by_the_place", "::ffff:0:c000:201", "::ffff:0:c000:201"},
    {"nearly_mapped_by_the_first_group", "1::ffff:c000:201", "1::ffff:c000:201"},
    {"dotted_end_of_any_prefix", "2001:db8::192.0.2.1", "2001:db8::c000:201"},
    {"dotted_end_after_six_groups", "1:2:3:4:5:6:192.0.2.1", "1:2:3:4:5:6:c000:201"},
};

class AddressSpelling : public testing::TestWithParam<Spelling> {};

TEST_P(AddressSpelling, IsReadAndPrintedInItsOneForm) {
    EXPECT_EQ(ip(GetParam().value).ToString(), GetParam().text);
}

TEST_P(AddressSpelling, IsEqualToItsPrintedForm) {
    EXPECT_TRUE(ip(GetParam().value).IsEqual(GetParam().text));
    EXPECT_TRUE(ip(GetParam().text).IsEqual(GetParam().value));
}

TEST_P(AddressSpelling, SurvivesACloneAndItsText) {
    const IPAddress address = ip(GetParam().value);
    const Owned clone(INetAddress::Clone(&address));
    EXPECT_EQ(bytes_of(*clone), bytes_of(address));
    EXPECT_EQ(bytes_of(ip(clone->ToString())), bytes_of(address));
}

INSTANTIATE_TEST_SUITE_P(All, AddressSpelling, testing::ValuesIn(spellings), name_of_row);

// A text that is no address. Embedded null bytes need a std::string.
struct Junk {
    const char* name;
    std::string text;

    friend void PrintTo(const Junk& junk, std::ostream* out) { *out << junk.name; }
};

const Junk junk[] = {
    {"nothing", ""},
    {"blank", " "},
    {"word", "gateway"},
    {"v4_leading_zero", "192.0.2.01"},
    {"v4_leading_zero_in_front", "010.0.0.1"},
    {"v4_double_zero", "00.0.0.0"},
    {"v4_256", "256.0.0.1"},
    {"v4_256_at_the_end", "192.0.2.256"},
    {"v4_300", "192.300.2.1"},
    {"v4_four_digits", "192.0.2.1000"},
    {"v4_too_large_for_an_int", "192.0.2.4294967297"},
    {"v4_three_numbers", "192.0.2"},
    {"v4_two_numbers", "127.1"},
    {"v4_one_number", "3221225985"},
    {"v4_five_numbers", "192.0.2.1.1"},
    {"v4_empty_number", "192..2.1"},
    {"v4_dot_in_front", ".192.0.2.1"},
    {"v4_dot_at_the_end", "192.0.2.1."},
    {"v4_hexadecimal", "0xc0.0.2.1"},
    {"v4_letter", "192.0.2.a"},
    {"v4_minus", "192.0.2.-1"},
    {"v4_plus", "+192.0.2.1"},
    {"v4_blank_in_front", " 192.0.2.1"},
    {"v4_blank_at_the_end", "192.0.2.1 "},
    {"v4_newline_at_the_end", "192.0.2.1\n"},
    {"v4_port", "192.0.2.1:5060"},
    {"v4_prefix_length", "192.0.2.0/24"},
    {"v4_null_byte_at_the_end", std::string("192.0.2.1\0", 10)},
    {"v4_null_byte_and_more", std::string("192.0.2.1\0junk", 14)},
    {"v4_null_byte_within", std::string("192.0\0.2.1", 10)},

    {"v6_colon", ":"},
    {"v6_three_colons", ":::"},
    {"v6_three_colons_within", "1:::2"},
    {"v6_two_gaps", "1::2::3"},
    {"v6_two_gaps_at_the_ends", "::1::"},
    {"v6_seven_groups", "1:2:3:4:5:6:7"},
    {"v6_one_group", "2001"},
    {"v6_nine_groups", "1:2:3:4:5:6:7:8:9"},
    {"v6_gap_for_no_group", "1:2:3:4::5:6:7:8"},
    {"v6_gap_for_no_group_in_front", "::1:2:3:4:5:6:7:8"},
    {"v6_gap_for_no_group_at_the_end", "1:2:3:4:5:6:7:8::"},
    {"v6_colon_in_front", ":1:2:3:4:5:6:7:8"},
    {"v6_colon_in_front_of_seven", ":2:3:4:5:6:7:8"},
    {"v6_colon_at_the_end", "1:2:3:4:5:6:7:8:"},
    {"v6_colon_at_the_end_of_seven", "1:2:3:4:5:6:7:"},
    {"v6_colon_at_the_end_of_a_gap", "1::2:"},
    {"v6_five_digits", "12345::"},
    {"v6_five_digits_of_zero", "00001::"},
    {"v6_letter_after_f", "g::"},
    {"v6_minus", "-1::"},
    {"v6_hexadecimal_mark", "0x1::"},
    {"v6_blank_in_front", " ::1"},
    {"v6_blank_at_the_end", "::1 "},
    {"v6_brackets", "[::1]"},
    {"v6_zone", "fe80::1%eth0"},
    {"v6_prefix_length", "2001:db8::/32"},
    {"v6_null_byte_at_the_end", std::string("::1\0", 4)},
    {"v6_null_byte_and_more", std::string("::1\0junk", 8)},

    {"dotted_end_with_leading_zero", "::ffff:192.0.2.01"},
    {"dotted_end_with_256", "::ffff:256.0.2.1"},
    {"dotted_end_of_three_numbers", "::ffff:192.0.2"},
    {"dotted_end_of_five_numbers", "::ffff:192.0.2.1.1"},
    {"dotted_end_with_blank", "::ffff:192.0.2.1 "},
    {"dotted_end_with_letter", "::ffff:c0.0.2.1"},
    {"dotted_end_after_seven_groups", "1:2:3:4:5:6:7:192.0.2.1"},
    {"dotted_end_after_five_groups", "1:2:3:4:5:192.0.2.1"},
    {"dotted_part_in_front", "192.0.2.1::"},
    {"dotted_part_within", "::192.0.2.1:1"},
    {"dotted_end_after_a_gap_for_no_group", "1:2:3:4:5:6::192.0.2.1"},
};

class JunkText : public testing::TestWithParam<Junk> {};

TEST_P(JunkText, IsNotReadAndTheTargetIsUnchanged) {
    IPAddress address = ip("2001:db8::1");
    EXPECT_FALSE(IPAddress::Parse(GetParam().text, address));
    EXPECT_EQ(address.ToString(), "2001:db8::1");
}

TEST_P(JunkText, EqualsNoAddress) {
    for (const char* const text :
         {"0.0.0.0", "192.0.2.1", "::", "::1", "::ffff:192.0.2.1", "1:2:3:4:5:6:7:8"}) {
        const IPAddress address = ip(text);
        EXPECT_FALSE(address.IsEqual(GetParam().text)) << text;
        EXPECT_TRUE(address != GetParam().text) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(All, JunkText, testing::ValuesIn(junk), name_of_row);

TEST(AddressParse, ReplacesAnAddressOfTheOtherFamily) {
    IPAddress address = ip("2001:db8:1:2:3:4:5:6");
    EXPECT_TRUE(IPAddress::Parse("192.0.2.1", address));
    EXPECT_EQ(address.ToString(), "192.0.2.1");
    EXPECT_EQ(address.Family(), AF_INET);
    EXPECT_TRUE(IPAddress::Parse("::", address));
    EXPECT_EQ(address.ToString(), "::");
    EXPECT_EQ(address.Family(), AF_INET6);
}

TEST(AddressIsEqual, KnowsEverySpellingOfAnIPv6Address) {
    const IPAddress address = ip("2001:db8::a:1");
    for (const char* const text :
         {"2001:db8::a:1", "2001:DB8::A:1", "2001:0db8::000a:0001", "2001:db8:0:0:0:0:a:1",
          "2001:0db8:0000:0000:0000:0000:000A:0001", "2001:db8:0::a:1", "2001:db8::0:a:1",
          "2001:db8::0.10.0.1"}) {
        EXPECT_TRUE(address.IsEqual(text)) << text;
        EXPECT_FALSE(address != text) << text;
    }
}

TEST(AddressIsEqual, KnowsEverySpellingOfAMappedAddress) {
    const IPAddress address = ip("::ffff:192.0.2.1");
    for (const char* const text : {"::ffff:192.0.2.1", "::FFFF:192.0.2.1", "::ffff:c000:201",
                                   "0:0:0:0:0:ffff:c000:201", "0::FfFf:192.0.2.1"}) {
        EXPECT_TRUE(address.IsEqual(text)) << text;
    }
}

TEST(AddressIsEqual, TellsAMappedAddressFromTheAddressInIt) {
    EXPECT_FALSE(ip("::ffff:192.0.2.1").IsEqual("192.0.2.1"));
    EXPECT_FALSE(ip("192.0.2.1").IsEqual("::ffff:192.0.2.1"));
    EXPECT_FALSE(ip("0.0.0.0").IsEqual("::ffff:0.0.0.0"));
}

TEST(AddressIsEqual, TellsTheFamiliesApart) {
    EXPECT_FALSE(ip("0.0.0.0").IsEqual("::"));
    EXPECT_FALSE(ip("::").IsEqual("0.0.0.0"));
    EXPECT_FALSE(ip("192.0.2.1").IsEqual("c000:201::"));
    EXPECT_FALSE(ip("c000:201::").IsEqual("192.0.2.1"));
}

TEST(AddressIsEqual, ComparesEveryByte) {
    const IPAddress v4 = ip("1.2.3.4");
    for (const char* const text : {"9.2.3.4", "1.9.3.4", "1.2.9.4", "1.2.3.9"}) {
        EXPECT_FALSE(v4.IsEqual(text)) << text;
    }
    const IPAddress v6 = ip("101:101:101:101:101:101:101:101");
    for (std::size_t place = 0; place < 8; ++place) {
        for (const char* const group : {"901", "109"}) {
            std::string text = "101:101:101:101:101:101:101:101";
            text.replace(4 * place, 3, group);
            EXPECT_FALSE(v6.IsEqual(text)) << text;
        }
    }
}

// An address, and all that is said of it.
using Kind = Row<const char*>;

std::string kinds_of(const INetAddress& address) {
    std::string kinds;
    kinds += address.IsAny() != 0 ? "any " : "";
    kinds += address.IsLoopback() ? "loopback " : "";
    kinds += address.IsMulticast() ? "multicast " : "";
    kinds += address.IsPrivate() ? "private " : "";
    return kinds;
}

constexpr Kind kinds[] = {
    {"v4_any", "0.0.0.0", "any "},
    {"v4_after_any", "0.0.0.1", ""},
    {"v4_any_but_for_the_first_byte", "1.0.0.0", ""},
    {"v4_before_loopback", "126.255.255.255", ""},
    {"v4_first_loopback", "127.0.0.0", "loopback "},
    {"v4_usual_loopback", "127.0.0.1", "loopback "},
    {"v4_last_loopback", "127.255.255.255", "loopback "},
    {"v4_after_loopback", "128.0.0.0", ""},
    {"v4_before_multicast", "223.255.255.255", ""},
    {"v4_first_multicast", "224.0.0.0", "multicast "},
    {"v4_last_multicast", "239.255.255.255", "multicast "},
    {"v4_after_multicast", "240.0.0.0", ""},
    {"v4_before_net_10", "9.255.255.255", ""},
    {"v4_first_of_net_10", "10.0.0.0", "private "},
    {"v4_last_of_net_10", "10.255.255.255", "private "},
    {"v4_after_net_10", "11.0.0.0", ""},
    {"v4_before_net_172_16", "172.15.255.255", ""},
    {"v4_first_of_net_172_16", "172.16.0.0", "private "},
    {"v4_last_of_net_172_16", "172.31.255.255", "private "},
    {"v4_after_net_172_16", "172.32.0.0", ""},
    {"v4_beside_net_172_16", "173.16.0.0", ""},
    {"v4_before_net_192_168", "192.167.255.255", ""},
    {"v4_first_of_net_192_168", "192.168.0.0", "private "},
    {"v4_last_of_net_192_168", "192.168.255.255", "private "},
    {"v4_after_net_192_168", "192.169.0.0", ""},
    {"v4_beside_net_192_168", "193.168.0.0", ""},
    {"v4_with_the_first_byte_of_a_private_v6", "252.0.0.1", ""},
    {"v4_broadcast_with_the_first_byte_of_a_multicast_v6", "255.255.255.255", ""},

    {"v6_any", "::", "any "},
    {"v6_any_but_for_the_first_bit", "8000::", ""},
    {"v6_any_after_four_bytes", "0:0:1::", ""},
    {"v6_loopback", "::1", "loopback "},
    {"v6_after_loopback", "::2", ""},
    {"v6_loopback_but_for_the_first_bit", "8000::1", ""},
    {"v6_before_multicast", "feff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", ""},
    {"v6_first_multicast", "ff00::", "multicast "},
    {"v6_last_multicast", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", "multicast "},
    {"v6_before_private", "fbff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", ""},
    {"v6_first_private", "fc00::", "private "},
    {"v6_last_private", "fdff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", "private "},
    {"v6_after_private", "fe00::", ""},
    {"v6_link_local", "fe80::1", ""},
    {"v6_with_the_first_byte_of_a_v4_loopback", "7f00::1", ""},
    {"v6_with_the_first_byte_of_a_v4_multicast", "e000::1", ""},
    {"v6_with_the_first_byte_of_net_10", "a00::1", ""},
    {"v6_with_the_first_bytes_of_net_192_168", "c0a8::1", ""},
    {"mapped_any", "::ffff:0.0.0.0", ""},
    {"mapped_loopback", "::ffff:127.0.0.1", ""},
    {"mapped_multicast", "::ffff:224.0.0.1", ""},
    {"mapped_private", "::ffff:10.0.0.1", ""},
};

class AddressKind : public testing::TestWithParam<Kind> {};

TEST_P(AddressKind, IsKnown) {
    EXPECT_EQ(kinds_of(ip(GetParam().value)), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(All, AddressKind, testing::ValuesIn(kinds), name_of_row);

TEST(UdpAddress, OwnsACopyOfItsAddressOfTheSameClass) {
    int destroyed = 0;
    const NamedAddress source("gateway", &destroyed);
    {
        const UDPAddr holder(source, 65535);
        const INetAddress& address = *holder.ipAddress;
        EXPECT_NE(&address, &source);
        EXPECT_EQ(typeid(address), typeid(NamedAddress));
        EXPECT_EQ(address.ToString(), "gateway");
        EXPECT_EQ(holder.port, 65535);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(UdpAddress, CopiesHaveAnAddressOfTheirOwn) {
    auto source = std::make_unique<UDPAddr>(ip("2001:db8::1"), static_cast<unsigned short>(1));
    const UDPAddr copy(*source);
    EXPECT_NE(copy.ipAddress, source->ipAddress);
    source.reset();
    EXPECT_EQ(copy.ipAddress->ToString(), "2001:db8::1");
    EXPECT_EQ(copy.port, 1);
}

TEST(UdpAddress, AssignmentTakesOverACopyAndFreesTheOldAddress) {
    int destroyed = 0;
    UDPAddr target(NamedAddress("gateway", &destroyed), 1);
    destroyed = 0;
    {
        const UDPAddr source = endpoint("192.0.2.1");
        UDPAddr& result = target = source;
        EXPECT_EQ(&result, &target);
        EXPECT_NE(target.ipAddress, source.ipAddress);
    }
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(target.ipAddress->ToString(), "192.0.2.1");
    EXPECT_EQ(target.port, 5060);
}

TEST(UdpAddress, AssignmentToItselfChangesNothing) {
    UDPAddr address = endpoint("192.0.2.1");
    const UDPAddr& itself = address;
    address = itself;
    EXPECT_EQ(address.ipAddress->ToString(), "192.0.2.1");
    EXPECT_EQ(address.port, 5060);
}

TEST(UdpAddress, CanBeDestroyedWhenItsAddressWasTakenAway) {
    UDPAddr address = endpoint("192.0.2.1");
    const std::unique_ptr<INetAddress> taken(address.ipAddress);
    address.ipAddress = nullptr;
    EXPECT_EQ(taken->ToString(), "192.0.2.1");
}

}  // namespace
