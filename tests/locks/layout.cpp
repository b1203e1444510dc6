// What libabigail does not see of the public types, asserted when this is compiled: the fixed type
// of an enumeration, and a record that only the list of a crypto line holds.

#include <cstddef>
#include <type_traits>

#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"

namespace {

template <class Enumeration>
constexpr bool stores_any_int = std::is_same_v<std::underlying_type_t<Enumeration>, int>;

static_assert(stores_any_int<QOVA_Codec>);
static_assert(stores_any_int<QOVA_FaxTransport>);
static_assert(stores_any_int<QOVA_EarlyMedia>);
static_assert(stores_any_int<QOVA_FaxRateMgt>);
static_assert(stores_any_int<QOVA_Media::e_MediaType>);
static_assert(stores_any_int<QOVA_Media::e_MediaStatus>);
static_assert(stores_any_int<QOVA_Media::e_AttributeType>);
static_assert(stores_any_int<g_crypto_suite>);

template <class Type, class Member>
constexpr bool is_of(Member QOVA_CryptoKey::* /*member*/) {
    return std::is_same_v<Type, Member>;
}

static_assert(sizeof(QOVA_CryptoKey) == 60);
static_assert(is_of<unsigned int>(&QOVA_CryptoKey::lifetime));
static_assert(offsetof(QOVA_CryptoKey, lifetime) == 0);
static_assert(is_of<unsigned char>(&QOVA_CryptoKey::mkiSize));
static_assert(offsetof(QOVA_CryptoKey, mkiSize) == 4);
static_assert(is_of<unsigned char[8]>(&QOVA_CryptoKey::mki));
static_assert(offsetof(QOVA_CryptoKey, mki) == 5);
static_assert(is_of<unsigned char[46]>(&QOVA_CryptoKey::key));
static_assert(offsetof(QOVA_CryptoKey, key) == 13);

}  // namespace
