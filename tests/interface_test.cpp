// The binary interface: one line for each fact. A change to any of them breaks compiled programs.
// Of two numbers, the first is for 32-bit PowerPC and the second for x86-64. tests/symbols.txt
// lists the symbols.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <list>
#include <new>
#include <string>
#include <type_traits>
#ifndef __clang__
#include <tr2/type_traits>
#endif

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "socket/address.h"

#pragma GCC diagnostic error "-Wswitch"              // finds a missing ENUMERATOR
#pragma GCC diagnostic ignored "-Winvalid-offsetof"  // the Itanium C++ ABI defines all offsets

namespace {

constexpr std::size_t on(std::size_t powerpc, std::size_t x86_64) {
    return sizeof(void*) == 4 ? powerpc : x86_64;
}

template <class Type>
constexpr bool has_size(std::size_t powerpc, std::size_t x86_64) {
    return sizeof(Type) == on(powerpc, x86_64);
}

// Only GCC can list base classes.
#ifndef __clang__
template <class Class, class... Bases>
constexpr bool has_bases = std::is_same_v<typename std::tr2::direct_bases<Class>::type,
                                          std::tr2::__reflection_typelist<Bases...>>;
#else
template <class Class, class... Bases>
constexpr bool has_bases = (std::is_base_of_v<Bases, Class> && ...);
#endif

// A class that can be assigned and is aligned like a pointer: its bases and its sizes.
template <class Class, class... Bases>
constexpr bool is_class(std::size_t powerpc, std::size_t x86_64) {
    return has_bases<Class, Bases...> && has_size<Class>(powerpc, x86_64) &&
           alignof(Class) == alignof(void*) && std::is_copy_assignable_v<Class>;
}

// A data member: its class, its name, its type and its offsets.
#define MEMBER(Class, member, Type, powerpc, x86_64)              \
    static_assert(std::is_same_v<decltype(Class::member), Type>); \
    static_assert(offsetof(Class, member) == on(powerpc, x86_64))

// A member function: its class, its name and the exact type of its address.
#define FUNCTION(Class, name, Type) static_assert(is_member<Class, Type, &Class::name>)
template <class Class, class Type, Type Class::*address>
constexpr bool is_member = true;

// A free function, a static function or a static object: its name and its type.
#define STATIC(name, Type) static_assert(is_static<Type, &name>)
template <class Type, Type* address>
constexpr bool is_static = true;

// An enumerator in a switch over its enumeration: its name and its value.
#define ENUMERATOR(name, value) \
    case name:                  \
        static_assert(name == (value))

// The index of a function in the virtual table. A pointer to a virtual member function holds the
// offset of its slot plus 1. Returns -1 for other functions.
template <class Function>
std::ptrdiff_t slot(Function function) {
    std::ptrdiff_t parts[2];
    static_assert(sizeof(function) == sizeof(parts));
    std::memcpy(parts, &function, sizeof(parts));
    return parts[0] % 2 == 1 ? parts[0] / static_cast<std::ptrdiff_t>(sizeof(void*)) : -1;
}

// The number of slots: the first function that a derived class adds gets the next slot. The
// destructor, whose address cannot be taken, has the remaining two slots.
template <class Class>
std::ptrdiff_t slots() {
    struct Derived : Class {
        virtual void added() {}
    };
    return slot(&Derived::added);
}

// The number of bytes that the constructor does not write, and which are therefore not members.
template <class Class>
std::size_t padding() {
    alignas(Class) unsigned char memory[2][sizeof(Class)];
    std::memset(memory[0], 0x5a, sizeof(Class));
    std::memset(memory[1], 0xa5, sizeof(Class));
    for (unsigned char* place : {memory[0], memory[1]}) {
        asm volatile("" : : "r"(place) : "memory");  // keeps the fill above
        new (place) Class;
        asm volatile("" : : "r"(place) : "memory");
    }
    std::size_t count = 0;
    for (std::size_t i = 0; i < sizeof(Class); ++i) {
        count += memory[0][i] == 0x5a && memory[1][i] == 0xa5 ? 1 : 0;
    }
    return count;
}

// Types of the members

static_assert(has_size<bool>(1, 1));
static_assert(has_size<unsigned short>(2, 2));
static_assert(has_size<int>(4, 4));
static_assert(has_size<std::list<int>>(12, 24));
static_assert(has_size<std::string>(24, 32));

// Enumerations

template <class... Enumerations>
constexpr bool are_ints = (std::is_same_v<std::underlying_type_t<Enumerations>, int> && ...) &&
                          (std::is_convertible_v<Enumerations, int> && ...);
static_assert(are_ints<QOVA_Codec, QOVA_FaxTransport, QOVA_EarlyMedia, QOVA_FaxRateMgt,
                       QOVA_Media::e_MediaType, QOVA_Media::e_MediaStatus,
                       QOVA_Media::e_AttributeType, g_crypto_suite>);

using PortBase = decltype(QOVA_Capability::AUDIO_PORT_BASE);
static_assert(std::is_same_v<std::underlying_type_t<PortBase>, unsigned short>);

[[maybe_unused]] void enumerators(QOVA_Codec codec, QOVA_FaxTransport transport,
                                  QOVA_EarlyMedia direction, QOVA_FaxRateMgt management,
                                  QOVA_Media::e_MediaType media, QOVA_Media::e_MediaStatus status,
                                  QOVA_Media::e_AttributeType attribute, g_crypto_suite suite,
                                  PortBase base) {
    switch (codec) {
        ENUMERATOR(CODEC_NIL, 0);
        ENUMERATOR(CODEC_G711_ALAW, 1);
        ENUMERATOR(CODEC_G711_ULAW, 2);
        ENUMERATOR(CODEC_G723, 3);
        ENUMERATOR(CODEC_G729, 4);
        ENUMERATOR(CODEC_G729A, 5);
        ENUMERATOR(CODEC_G711_NIL, 6);
        ENUMERATOR(CODEC_G729_NIL, 7);
        ENUMERATOR(CODEC_G722, 8);
        ENUMERATOR(CODEC_G722_2, 9);
        ENUMERATOR(CODEC_OPUS, 10);
    }
    switch (transport) {
        ENUMERATOR(FT_NIL, 0);
        ENUMERATOR(FT_T38_UDPTL, 1);
        ENUMERATOR(FT_T38_TCP, 2);
    }
    switch (direction) {
        ENUMERATOR(EM_NIL, 0);
        ENUMERATOR(EM_SENDRECV, 1);
        ENUMERATOR(EM_SENDONLY, 2);
        ENUMERATOR(EM_RECVONLY, 3);
        ENUMERATOR(EM_INACTIVE, 4);
    }
    switch (management) {
        ENUMERATOR(RM_NIL, 0);
        ENUMERATOR(RM_TRFTCF, 1);
        ENUMERATOR(RM_LOCALTCF, 2);
    }
    switch (media) {
        ENUMERATOR(QOVA_Media::MT_NIL, 0);
        ENUMERATOR(QOVA_Media::MT_AUDIO, 1);
        ENUMERATOR(QOVA_Media::MT_VIDEO, 2);
        ENUMERATOR(QOVA_Media::MT_FAX, 3);
        ENUMERATOR(QOVA_Media::MT_DATA, 4);
    }
    switch (status) {
        ENUMERATOR(QOVA_Media::MS_UNKNOWN, 0);
        ENUMERATOR(QOVA_Media::MS_ACCEPTED, 1);
        ENUMERATOR(QOVA_Media::MS_REJECTED, 2);
        ENUMERATOR(QOVA_Media::MS_MODIFIED, 3);
    }
    switch (attribute) {
        ENUMERATOR(QOVA_Media::AT_NIL, 0);
        ENUMERATOR(QOVA_Media::AT_AUDIO, 1);
        ENUMERATOR(QOVA_Media::AT_VIDEO, 2);
        ENUMERATOR(QOVA_Media::AT_FAX, 3);
        ENUMERATOR(QOVA_Media::AT_DATA, 4);
    }
    switch (suite) {
        ENUMERATOR(CS_NIL, 0);
        ENUMERATOR(CS_AES_CM_128_HMAC_SHA1_80, 1);
        ENUMERATOR(CS_AES_CM_128_HMAC_SHA1_32, 2);
        ENUMERATOR(CS_F8_128_HMAC_SHA1_80, 3);
        ENUMERATOR(CS_SEED_CTR_128_HMAC_SHA1_80, 4);
        ENUMERATOR(CS_SEED_128_CCM_80, 5);
        ENUMERATOR(CS_SEED_128_GCM_96, 6);
        ENUMERATOR(CS_AES_192_CM_HMAC_SHA1_80, 7);
        ENUMERATOR(CS_AES_192_CM_HMAC_SHA1_32, 8);
        ENUMERATOR(CS_AES_256_CM_HMAC_SHA1_80, 9);
        ENUMERATOR(CS_AES_256_CM_HMAC_SHA1_32, 10);
        ENUMERATOR(CS_AEAD_AES_128_GCM, 11);
        ENUMERATOR(CS_AEAD_AES_256_GCM, 12);
    }
    switch (base) {
        ENUMERATOR(QOVA_Capability::AUDIO_PORT_BASE, 32000);
        ENUMERATOR(QOVA_Capability::FAX_PORT_BASE, 6666);
    }
}

STATIC(ToString, std::string(QOVA_Codec));
STATIC(ToString, std::string(QOVA_EarlyMedia));

// Attributes. The derived classes override every virtual function and add none.

static_assert(is_class<QOVA_MediaAttribute>(12, 16) && std::is_abstract_v<QOVA_MediaAttribute>);
MEMBER(QOVA_MediaAttribute, status, QOVA_Media::e_MediaStatus, 4, 8);
MEMBER(QOVA_MediaAttribute, attributeType, QOVA_Media::e_AttributeType, 8, 12);
FUNCTION(QOVA_MediaAttribute, clone, QOVA_MediaAttribute*() const);
FUNCTION(QOVA_MediaAttribute, operator const std::string, const std::string() const);
FUNCTION(QOVA_MediaAttribute, operator==, bool(const QOVA_MediaAttribute&) const);

static_assert(is_class<QOVA_AudioAttribute, QOVA_MediaAttribute>(32, 40));
MEMBER(QOVA_AudioAttribute, codec, QOVA_Codec, 12, 16);
MEMBER(QOVA_AudioAttribute, framing, int, 16, 20);
MEMBER(QOVA_AudioAttribute, vad, bool, 20, 24);
MEMBER(QOVA_AudioAttribute, echo, bool, 21, 25);
MEMBER(QOVA_AudioAttribute, mxFraming, int, 24, 28);
MEMBER(QOVA_AudioAttribute, mf, QOVA_Codec, 28, 32);
FUNCTION(QOVA_AudioAttribute, clone, QOVA_MediaAttribute*() const);
FUNCTION(QOVA_AudioAttribute, operator const std::string, const std::string() const);
FUNCTION(QOVA_AudioAttribute, operator==, bool(const QOVA_MediaAttribute&) const);

static_assert(is_class<QOVA_VideoAttribute, QOVA_MediaAttribute>(12, 16));
FUNCTION(QOVA_VideoAttribute, clone, QOVA_MediaAttribute*() const);
FUNCTION(QOVA_VideoAttribute, operator const std::string, const std::string() const);
FUNCTION(QOVA_VideoAttribute, operator==, bool(const QOVA_MediaAttribute&) const);

static_assert(is_class<QOVA_FaxAttribute, QOVA_MediaAttribute>(48, 56));
MEMBER(QOVA_FaxAttribute, red, unsigned int, 12, 16);
MEMBER(QOVA_FaxAttribute, depth, unsigned int, 16, 20);
MEMBER(QOVA_FaxAttribute, mxRate, unsigned int, 20, 24);
MEMBER(QOVA_FaxAttribute, rateMgt, QOVA_FaxRateMgt, 24, 28);
MEMBER(QOVA_FaxAttribute, transport, QOVA_FaxTransport, 28, 32);
MEMBER(QOVA_FaxAttribute, fillBit, bool, 32, 36);
MEMBER(QOVA_FaxAttribute, transMMR, bool, 33, 37);
MEMBER(QOVA_FaxAttribute, transJBIG, bool, 34, 38);
MEMBER(QOVA_FaxAttribute, mxBuffer, unsigned int, 36, 40);
MEMBER(QOVA_FaxAttribute, mxDgram, unsigned int, 40, 44);
MEMBER(QOVA_FaxAttribute, errCorr, unsigned int, 44, 48);
FUNCTION(QOVA_FaxAttribute, clone, QOVA_MediaAttribute*() const);
FUNCTION(QOVA_FaxAttribute, operator const std::string, const std::string() const);
FUNCTION(QOVA_FaxAttribute, operator==, bool(const QOVA_MediaAttribute&) const);

static_assert(is_class<QOVA_DataAttribute, QOVA_MediaAttribute>(16, 24));
MEMBER(QOVA_DataAttribute, type, int, 12, 16);
FUNCTION(QOVA_DataAttribute, clone, QOVA_MediaAttribute*() const);
FUNCTION(QOVA_DataAttribute, operator const std::string, const std::string() const);
FUNCTION(QOVA_DataAttribute, operator==, bool(const QOVA_MediaAttribute&) const);

// Crypto lines

static_assert(has_size<QOVA_CryptoKey>(60, 60) && alignof(QOVA_CryptoKey) == 4);
static_assert(std::is_trivial_v<QOVA_CryptoKey> && std::is_aggregate_v<QOVA_CryptoKey>);
MEMBER(QOVA_CryptoKey, lifetime, unsigned int, 0, 0);
MEMBER(QOVA_CryptoKey, mkiSize, unsigned char, 4, 4);
MEMBER(QOVA_CryptoKey, mki, unsigned char[8], 5, 5);
MEMBER(QOVA_CryptoKey, key, unsigned char[46], 13, 13);

static_assert(is_class<QOVA_Crypto>(24, 40));
MEMBER(QOVA_Crypto, tag, unsigned int, 4, 8);
MEMBER(QOVA_Crypto, algo, g_crypto_suite, 8, 12);
MEMBER(QOVA_Crypto, keys, std::list<QOVA_CryptoKey>, 12, 16);
FUNCTION(QOVA_Crypto, clone, QOVA_Crypto*() const);
FUNCTION(QOVA_Crypto, operator==, bool(const QOVA_Crypto&) const);
FUNCTION(QOVA_Crypto, operator const std::string, const std::string() const);

// Media

static_assert(is_class<QOVA_Media>(64, 112));
MEMBER(QOVA_Media, mediaStatus, QOVA_Media::e_MediaStatus, 4, 8);
MEMBER(QOVA_Media, mediaType, QOVA_Media::e_MediaType, 8, 12);
MEMBER(QOVA_Media, attributes, std::list<QOVA_MediaAttribute*>, 12, 16);
MEMBER(QOVA_Media, address, INetAddress*, 24, 40);
MEMBER(QOVA_Media, bsnd, bool, 28, 48);
MEMBER(QOVA_Media, brcv, bool, 29, 49);
MEMBER(QOVA_Media, sndPort, unsigned short, 30, 50);
MEMBER(QOVA_Media, rcvPort, unsigned short, 32, 52);
MEMBER(QOVA_Media, sndPort2, unsigned short, 34, 54);
MEMBER(QOVA_Media, rcvPort2, unsigned short, 36, 56);
MEMBER(QOVA_Media, amrwbParam, Sdp::Sdp_Amrwb_Param*, 40, 64);
MEMBER(QOVA_Media, opusParam, Sdp::Sdp_Opus_Param*, 44, 72);
MEMBER(QOVA_Media, cryptoCount, unsigned int, 48, 80);
MEMBER(QOVA_Media, cryptos, std::list<QOVA_Crypto*>, 52, 88);
FUNCTION(QOVA_Media, clone, QOVA_Media*() const);
FUNCTION(QOVA_Media, operator=, QOVA_Media&(const QOVA_Media&));
FUNCTION(QOVA_Media, operator==, bool(const QOVA_Media&) const);
FUNCTION(QOVA_Media, find, QOVA_AudioAttribute*(QOVA_Codec) const);
FUNCTION(QOVA_Media, find, QOVA_FaxAttribute*(QOVA_FaxTransport) const);
FUNCTION(QOVA_Media, find_mf, QOVA_AudioAttribute*(QOVA_Codec) const);
FUNCTION(QOVA_Media, find,
         QOVA_MediaAttribute*(QOVA_Media::e_AttributeType, QOVA_Media::e_MediaStatus) const);
FUNCTION(QOVA_Media, isMute, bool() const);
FUNCTION(QOVA_Media, operator const std::string, const std::string() const);
STATIC(QOVA_Media::ToString, std::string(QOVA_Media::e_MediaStatus));
STATIC(QOVA_Media::ToString, std::string(QOVA_Media::e_MediaType));

// Capability

static_assert(is_class<QOVA_Capability>(48, 72) && !std::is_polymorphic_v<QOVA_Capability>);
MEMBER(QOVA_Capability, filteredMedia, std::list<QOVA_Media*>, 0, 0);
MEMBER(QOVA_Capability, marked, bool, 12, 24);
MEMBER(QOVA_Capability, offer, bool, 13, 25);
MEMBER(QOVA_Capability, passThrough, std::string, 16, 32);
MEMBER(QOVA_Capability, hold, bool, 40, 64);
MEMBER(QOVA_Capability, spare1, unsigned char, 41, 65);
MEMBER(QOVA_Capability, spare2, unsigned char, 42, 66);
MEMBER(QOVA_Capability, spare3, unsigned char, 43, 67);
MEMBER(QOVA_Capability, silenceSuppSdp, bool, 44, 68);
FUNCTION(QOVA_Capability, operator=, QOVA_Capability&(const QOVA_Capability&));
FUNCTION(QOVA_Capability, operator==, bool(const QOVA_Capability&) const);
FUNCTION(QOVA_Capability, find,
         std::list<QOVA_Media*>(QOVA_Media::e_MediaType, QOVA_Media::e_MediaStatus) const);
FUNCTION(QOVA_Capability, find, QOVA_Media*(QOVA_Codec) const);
FUNCTION(QOVA_Capability, find, QOVA_Media*(QOVA_FaxTransport) const);
FUNCTION(QOVA_Capability, find_mf, QOVA_AudioAttribute*(QOVA_Codec) const);
FUNCTION(QOVA_Capability, isMute, bool() const);
FUNCTION(QOVA_Capability, rejectMedia, void(QOVA_Media::e_MediaType));
FUNCTION(QOVA_Capability, ClearMediaDirection, void());
FUNCTION(QOVA_Capability, setPublicAddrPort, void(const UDPAddr&, unsigned short, unsigned short));
FUNCTION(QOVA_Capability, setLocalAddrPort, void(const UDPAddr&, unsigned short, unsigned short));
FUNCTION(QOVA_Capability, operator const std::string, const std::string() const);

// The parts of the companion that libqova uses

static_assert(is_class<INetAddress>(4, 8) && std::is_abstract_v<INetAddress>);
STATIC(INetAddress::Clone, INetAddress*(const INetAddress*));
FUNCTION(INetAddress, ToString, std::string() const);
FUNCTION(INetAddress, IsEqual, bool(const std::string&) const);
FUNCTION(INetAddress, operator!=, bool(const std::string&) const);
FUNCTION(INetAddress, IsAny, int() const);

static_assert(has_bases<IPAddress, INetAddress>);
STATIC(IPAddress::IpAddressAny, const IPAddress);

MEMBER(UDPAddr, ipAddress, INetAddress*, 0, 0);

static_assert(is_class<Sdp::Sdp_Amrwb_Param>(56, 80));
MEMBER(Sdp::Sdp_Amrwb_Param, octetAlign, int, 4, 8);
MEMBER(Sdp::Sdp_Amrwb_Param, modeSet, std::list<int>, 8, 16);
MEMBER(Sdp::Sdp_Amrwb_Param, modeChangePeriod, int, 20, 40);
MEMBER(Sdp::Sdp_Amrwb_Param, modeChangeCapability, int, 24, 44);
MEMBER(Sdp::Sdp_Amrwb_Param, modeChangeNeighbor, int, 28, 48);
MEMBER(Sdp::Sdp_Amrwb_Param, crc, int, 32, 52);
MEMBER(Sdp::Sdp_Amrwb_Param, robustSorting, int, 36, 56);
MEMBER(Sdp::Sdp_Amrwb_Param, interleaving, int, 40, 60);
MEMBER(Sdp::Sdp_Amrwb_Param, channels, int, 44, 64);
MEMBER(Sdp::Sdp_Amrwb_Param, maxRed, int, 48, 68);
MEMBER(Sdp::Sdp_Amrwb_Param, payloadType, int, 52, 72);
FUNCTION(Sdp::Sdp_Amrwb_Param, operator const std::string, const std::string() const);

static_assert(is_class<Sdp::Sdp_Opus_Param>(24, 32));
MEMBER(Sdp::Sdp_Opus_Param, maxPlaybackRate, int, 4, 8);
MEMBER(Sdp::Sdp_Opus_Param, spropMaxCaptureRate, unsigned short, 8, 12);
MEMBER(Sdp::Sdp_Opus_Param, maxAverageBitrate, int, 12, 16);
MEMBER(Sdp::Sdp_Opus_Param, stereo, bool, 16, 20);
MEMBER(Sdp::Sdp_Opus_Param, cbr, bool, 17, 21);
MEMBER(Sdp::Sdp_Opus_Param, useInbandFec, bool, 18, 22);
MEMBER(Sdp::Sdp_Opus_Param, useDtx, bool, 19, 23);
MEMBER(Sdp::Sdp_Opus_Param, maxPtime, unsigned short, 20, 24);
MEMBER(Sdp::Sdp_Opus_Param, spropStereo, bool, 22, 26);
FUNCTION(Sdp::Sdp_Opus_Param, operator const std::string, const std::string() const);

STATIC(Sdp::CryptoParser::enumToAlgo, std::string(const g_crypto_suite&));

// Classes without move operations: these would not throw

static_assert(!std::is_nothrow_move_constructible_v<QOVA_Crypto>);
static_assert(!std::is_nothrow_move_constructible_v<QOVA_Media>);
static_assert(!std::is_nothrow_move_constructible_v<QOVA_Capability>);

// There are no other data members. These lists compile only if they name all members. A list
// cannot name the members of a class and of its base, so the test counts the remaining bytes.

[[maybe_unused]] void other_members(QOVA_MediaAttribute& attribute, QOVA_CryptoKey& entry,
                                    QOVA_Crypto& crypto, QOVA_Media& media,
                                    QOVA_Capability& capability, Sdp::Sdp_Amrwb_Param& amrwb,
                                    Sdp::Sdp_Opus_Param& opus) {
    [[maybe_unused]] auto& [status, attributeType] = attribute;
    [[maybe_unused]] auto& [lifetime, mkiSize, mki, key] = entry;
    [[maybe_unused]] auto& [tag, algo, keys] = crypto;
    [[maybe_unused]] auto& [mediaStatus, mediaType, attributes, address, bsnd, brcv, sndPort,
                            rcvPort, sndPort2, rcvPort2, amrwbParam, opusParam, cryptoCount,
                            cryptos] = media;
    [[maybe_unused]] auto& [filteredMedia, marked, offer, passThrough, hold, spare1, spare2, spare3,
                            silenceSuppSdp] = capability;
    [[maybe_unused]] auto& [octetAlign, modeSet, modeChangePeriod, modeChangeCapability,
                            modeChangeNeighbor, crc, robustSorting, interleaving, channels, maxRed,
                            payloadType] = amrwb;
    [[maybe_unused]] auto& [maxPlaybackRate, spropMaxCaptureRate, maxAverageBitrate, stereo, cbr,
                            useInbandFec, useDtx, maxPtime, spropStereo] = opus;
}

TEST(Interface, AttributesHaveNoOtherMembers) {
    EXPECT_EQ(padding<QOVA_AudioAttribute>(), on(2, 6));
    EXPECT_EQ(padding<QOVA_FaxAttribute>(), on(1, 5));
    EXPECT_EQ(padding<QOVA_DataAttribute>(), on(0, 4));
}

TEST(Interface, VirtualTables) {
    EXPECT_EQ(slot(&QOVA_MediaAttribute::clone), 2);
    EXPECT_EQ(slot(&QOVA_MediaAttribute::operator const std::string), 3);
    EXPECT_EQ(slot(&QOVA_MediaAttribute::operator==), 4);
    EXPECT_EQ(slots<QOVA_MediaAttribute>(), 5);
    EXPECT_EQ(slots<QOVA_AudioAttribute>(), 5);
    EXPECT_EQ(slots<QOVA_VideoAttribute>(), 5);
    EXPECT_EQ(slots<QOVA_FaxAttribute>(), 5);
    EXPECT_EQ(slots<QOVA_DataAttribute>(), 5);

    EXPECT_EQ(slot(&QOVA_Crypto::clone), 2);
    EXPECT_EQ(slots<QOVA_Crypto>(), 3);

    EXPECT_EQ(slot(&QOVA_Media::clone), 0);
    EXPECT_EQ(slots<QOVA_Media>(), 3);
}

TEST(Interface, VirtualTablesOfTheCompanion) {
    EXPECT_EQ(slot(&INetAddress::ToString), 3);
    EXPECT_EQ(slot(&INetAddress::IsEqual), 9);
    EXPECT_EQ(slot(&INetAddress::operator!=), 10);
    EXPECT_EQ(slot(&INetAddress::IsAny), 12);
    EXPECT_EQ(slots<INetAddress>(), 13);
    EXPECT_EQ(slots<Sdp::Sdp_Amrwb_Param>(), 2);
    EXPECT_EQ(slots<Sdp::Sdp_Opus_Param>(), 2);
}

}  // namespace
