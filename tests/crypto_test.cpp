// SRTP crypto lines: copies, equality, text.

#include "qova/crypto.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <list>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "allocations.h"
#include "equality.h"
#include "grouping_locale.h"
#include "netconf/sdp.h"
#include "rows.h"

namespace {

static_assert(std::is_trivially_copyable_v<QOVA_CryptoKey>);
static_assert(std::is_trivially_destructible_v<QOVA_CryptoKey>);
static_assert(std::is_standard_layout_v<QOVA_CryptoKey>);
static_assert(std::is_same_v<decltype(QOVA_CryptoKey::lifetime), std::uint32_t>);
static_assert(std::is_same_v<decltype(QOVA_CryptoKey::mkiSize), unsigned char>);
static_assert(std::is_same_v<decltype(QOVA_CryptoKey::mki), unsigned char[8]>);
static_assert(std::is_same_v<decltype(QOVA_CryptoKey::key), unsigned char[46]>);

static_assert(std::is_polymorphic_v<QOVA_Crypto>);
static_assert(std::has_virtual_destructor_v<QOVA_Crypto>);
static_assert(std::is_same_v<decltype(QOVA_Crypto::tag), std::uint32_t>);
static_assert(std::is_same_v<decltype(QOVA_Crypto::algo), g_crypto_suite>);
static_assert(std::is_same_v<decltype(QOVA_Crypto::keys), std::list<QOVA_CryptoKey>>);
static_assert(std::is_same_v<decltype(std::declval<const QOVA_Crypto&>().clone()), QOVA_Crypto*>);

using Owned = std::unique_ptr<QOVA_Crypto>;

// A key whose material starts with the letter and counts on from there.
QOVA_CryptoKey key_of(unsigned int lifetime, unsigned char first_byte_of_mki, char material) {
    QOVA_CryptoKey key = {};
    key.lifetime = lifetime;
    key.mkiSize = 1;
    key.mki[0] = first_byte_of_mki;
    for (std::size_t i = 0; i < sizeof key.key; ++i) {
        key.key[i] = static_cast<unsigned char>(static_cast<unsigned char>(material) + i);
    }
    return key;
}

const QOVA_CryptoKey K1 = key_of(1048576, 1, 'a');
const QOVA_CryptoKey K2 = key_of(2097152, 2, 'A');

QOVA_Crypto crypto_of(const std::list<QOVA_CryptoKey>& keys) {
    QOVA_Crypto crypto;
    crypto.tag = 1;
    crypto.algo = CS_AES_CM_128_HMAC_SHA1_80;
    crypto.keys = keys;
    return crypto;
}

QOVA_CryptoKey changed(QOVA_CryptoKey key, void (*change)(QOVA_CryptoKey& key)) {
    change(key);
    return key;
}

void expect_same_record(const QOVA_CryptoKey& left, const QOVA_CryptoKey& right) {
    EXPECT_EQ(left.lifetime, right.lifetime);
    EXPECT_EQ(left.mkiSize, right.mkiSize);
    EXPECT_EQ(std::memcmp(left.mki, right.mki, sizeof left.mki), 0);
    EXPECT_EQ(std::memcmp(left.key, right.key, sizeof left.key), 0);
}

TEST(Crypto, StartsEmpty) {
    const QOVA_Crypto crypto;
    EXPECT_EQ(crypto.tag, 0u);
    EXPECT_EQ(crypto.algo, 0);
    EXPECT_TRUE(crypto.keys.empty());
}

TEST(Crypto, StartsWithoutAllocating) {
    const std::size_t before = allocations::made();
    const QOVA_Crypto crypto;
    EXPECT_EQ(allocations::made(), before);
}

// Copies and clones.

TEST(CryptoCopy, HasTagAndSuite) {
    QOVA_Crypto source;
    source.tag = UINT_MAX;
    source.algo = CS_AEAD_AES_256_GCM;
    const QOVA_Crypto copy(source);
    EXPECT_EQ(copy.tag, UINT_MAX);
    EXPECT_EQ(copy.algo, CS_AEAD_AES_256_GCM);
    EXPECT_TRUE(copy.keys.empty());
}

TEST(CryptoCopy, HasASuiteWithoutAName) {
    QOVA_Crypto source;
    source.algo = static_cast<g_crypto_suite>(-1);
    const QOVA_Crypto copy(source);
    EXPECT_EQ(copy.algo, -1);
}

TEST(CryptoCopy, HasEveryKeyInOrderWithItsMaterial) {
    const QOVA_Crypto source = crypto_of({K2, K1, K2});
    const QOVA_Crypto copy(source);
    ASSERT_EQ(copy.keys.size(), 3u);
    auto key = copy.keys.begin();
    expect_same_record(*key++, K2);
    expect_same_record(*key++, K1);
    expect_same_record(*key++, K2);
}

TEST(CryptoCopy, KeepsItsKeysWhenTheSourceLosesThem) {
    QOVA_Crypto source = crypto_of({K1, K2});
    const QOVA_Crypto copy(source);
    source.keys.clear();
    ASSERT_EQ(copy.keys.size(), 2u);
    expect_same_record(copy.keys.front(), K1);
    expect_same_record(copy.keys.back(), K2);
}

TEST(CryptoCopy, LeavesTheSourceAsItIsWhenItChanges) {
    const QOVA_Crypto source = crypto_of({K1, K2});
    QOVA_Crypto copy(source);
    copy.tag = 2;
    copy.algo = CS_NIL;
    copy.keys.front() = QOVA_CryptoKey();
    copy.keys.pop_back();
    EXPECT_EQ(source.tag, 1u);
    EXPECT_EQ(source.algo, CS_AES_CM_128_HMAC_SHA1_80);
    ASSERT_EQ(source.keys.size(), 2u);
    expect_same_record(source.keys.front(), K1);
    expect_same_record(source.keys.back(), K2);
}

TEST(CryptoCopy, AllocatesOneNodeForEachKey) {
    const QOVA_Crypto source = crypto_of({K1, K2, K1});
    const std::size_t before = allocations::made();
    const QOVA_Crypto copy(source);
    EXPECT_EQ(allocations::made(), before + 3);
}

TEST(CryptoCopy, FreesItsFirstKeysWhenMemoryRunsOut) {
    const QOVA_Crypto source = crypto_of({K1, K2, K1});
    const std::size_t before = allocations::live();
    {
        const allocations::Failure failure(3);
        EXPECT_THROW(const QOVA_Crypto copy(source), std::bad_alloc);
    }
    EXPECT_EQ(allocations::live(), before);
}

TEST(CryptoClone, IsANewObjectOfTheSameClass) {
    const QOVA_Crypto source = crypto_of({K1});
    const Owned clone(source.clone());
    EXPECT_NE(clone.get(), &source);
    const QOVA_Crypto& cloned = *clone;
    EXPECT_EQ(typeid(cloned), typeid(QOVA_Crypto));
}

TEST(CryptoClone, HasEverything) {
    const QOVA_Crypto source = crypto_of({K1, K2});
    const Owned clone(source.clone());
    EXPECT_EQ(clone->tag, 1u);
    EXPECT_EQ(clone->algo, CS_AES_CM_128_HMAC_SHA1_80);
    ASSERT_EQ(clone->keys.size(), 2u);
    expect_same_record(clone->keys.front(), K1);
    expect_same_record(clone->keys.back(), K2);
    expect_equal(*clone, source);
}

TEST(CryptoClone, KeepsItsKeysWhenTheSourceLosesThem) {
    QOVA_Crypto source = crypto_of({K1, K2});
    const Owned clone(source.clone());
    source.keys.clear();
    ASSERT_EQ(clone->keys.size(), 2u);
    expect_same_record(clone->keys.front(), K1);
    expect_same_record(clone->keys.back(), K2);
}

TEST(CryptoClone, OutlivesItsSource) {
    auto source = std::make_unique<QOVA_Crypto>(crypto_of({K1, K2}));
    const std::string text = *source;
    const Owned clone(source->clone());
    source.reset();
    EXPECT_EQ(std::string(*clone), text);
}

TEST(CryptoClone, IsFreedWithAllItsKeys) {
    const QOVA_Crypto source = crypto_of({K1, K2});
    const std::size_t before = allocations::live();
    const QOVA_Crypto* const clone = source.clone();
    EXPECT_EQ(allocations::live(), before + 3) << "itself and two keys";
    delete clone;
    EXPECT_EQ(allocations::live(), before);
}

TEST(CryptoClone, IsFreedAgainWhenMemoryRunsOut) {
    const QOVA_Crypto source = crypto_of({K1, K2});
    const std::size_t before = allocations::live();
    {
        const allocations::Failure failure(3);
        EXPECT_THROW(source.clone(), std::bad_alloc);
    }
    EXPECT_EQ(allocations::live(), before);
}

class TrackedCrypto : public QOVA_Crypto {
public:
    explicit TrackedCrypto(int* counter) : destroyed(counter) {}
    ~TrackedCrypto() override { ++*destroyed; }
    QOVA_Crypto* clone() const override { return new TrackedCrypto(*this); }

private:
    int* destroyed;
};

TEST(CryptoClone, IsVirtualAndSoIsTheDestructor) {
    int destroyed = 0;
    {
        const Owned crypto(new TrackedCrypto(&destroyed));
        const Owned clone(crypto->clone());
        const QOVA_Crypto& cloned = *clone;
        EXPECT_EQ(typeid(cloned), typeid(TrackedCrypto));
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 2);
}

// Equality.

TEST(CryptoEquality, HoldsWithItselfAndForTheDefaults) {
    const QOVA_Crypto crypto = crypto_of({K1, K2});
    expect_equal(crypto, crypto);
    expect_equal(crypto, crypto_of({K1, K2}));
    expect_equal(QOVA_Crypto(), QOVA_Crypto());
}

TEST(CryptoEquality, OfTheDefaultsHoldsWithAnyNumberOfKeys) {
    QOVA_Crypto crypto;
    for (const QOVA_CryptoKey& key : {K1, K2, K1}) {
        crypto.keys.push_back(key);
        expect_equal(QOVA_Crypto(), crypto);
    }
}

TEST(CryptoEquality, OfNoKeysHoldsWithAnyKeys) {
    expect_equal(crypto_of({}), crypto_of({K1}));
    expect_equal(crypto_of({}), crypto_of({K1, K2}));
}

TEST(CryptoEquality, LooksNoFurtherThanTheShorterList) {
    expect_equal(crypto_of({K1}), crypto_of({K1, K2}));
    expect_equal(crypto_of({K1, K2}), crypto_of({K1, K2, K1}));
}

TEST(CryptoEquality, LooksAsFarAsTheShorterList) {
    expect_unequal(crypto_of({K2}), crypto_of({K1, K2}));
    expect_unequal(crypto_of({K1, K1}), crypto_of({K1, K2, K1}));
}

TEST(CryptoEquality, ComparesKeysInTheirOrder) {
    expect_unequal(crypto_of({K1, K2}), crypto_of({K2, K1}));
}

using CryptoChange = Change<QOVA_Crypto>;

constexpr CryptoChange crypto_changes[] = {
    {"tag", [](QOVA_Crypto& c) { c.tag ^= 1u; }},
    {"tag_highest_bit", [](QOVA_Crypto& c) { c.tag ^= 0x80000000u; }},
    {"algo", [](QOVA_Crypto& c) { c.algo = CS_AES_CM_128_HMAC_SHA1_32; }},
    {"algo_none", [](QOVA_Crypto& c) { c.algo = CS_NIL; }},
    {"algo_without_a_name",
     [](QOVA_Crypto& c) { c.algo = static_cast<g_crypto_suite>(c.algo + INT_MIN); }},
};

class CryptoEqualityOf : public testing::TestWithParam<CryptoChange> {};

TEST_P(CryptoEqualityOf, IsCompared) {
    for (const std::list<QOVA_CryptoKey>& keys : {std::list<QOVA_CryptoKey>{}, {K1}, {K1, K2}}) {
        QOVA_Crypto other = crypto_of(keys);
        GetParam().apply(other);
        expect_unequal(crypto_of(keys), other);
        expect_unequal(crypto_of({}), other);
    }
}

INSTANTIATE_TEST_SUITE_P(Member, CryptoEqualityOf, testing::ValuesIn(crypto_changes), name_of_row);

using KeyChange = Change<QOVA_CryptoKey>;

constexpr KeyChange key_changes[] = {
    {"lifetime", [](QOVA_CryptoKey& k) { k.lifetime ^= 1u; }},
    {"lifetime_highest_bit", [](QOVA_CryptoKey& k) { k.lifetime ^= 0x80000000u; }},
    {"mkiSize", [](QOVA_CryptoKey& k) { k.mkiSize ^= 1; }},
    {"mkiSize_highest_bit", [](QOVA_CryptoKey& k) { k.mkiSize ^= 0x80; }},
    {"mki_0", [](QOVA_CryptoKey& k) { k.mki[0] ^= 0x80; }},
    {"mki_1", [](QOVA_CryptoKey& k) { k.mki[1] ^= 1; }},
    {"mki_2", [](QOVA_CryptoKey& k) { k.mki[2] ^= 0x80; }},
    {"mki_3", [](QOVA_CryptoKey& k) { k.mki[3] ^= 1; }},
    {"mki_4", [](QOVA_CryptoKey& k) { k.mki[4] ^= 0x80; }},
    {"mki_5", [](QOVA_CryptoKey& k) { k.mki[5] ^= 1; }},
    {"mki_6", [](QOVA_CryptoKey& k) { k.mki[6] ^= 0x80; }},
    {"mki_7", [](QOVA_CryptoKey& k) { k.mki[7] ^= 1; }},
};

class CryptoKeyEqualityOf : public testing::TestWithParam<KeyChange> {};

TEST_P(CryptoKeyEqualityOf, IsComparedInTheOnlyKey) {
    expect_unequal(crypto_of({K1}), crypto_of({changed(K1, GetParam().apply)}));
}

TEST_P(CryptoKeyEqualityOf, IsComparedInTheFirstKey) {
    expect_unequal(crypto_of({K1, K2}), crypto_of({changed(K1, GetParam().apply), K2}));
}

TEST_P(CryptoKeyEqualityOf, IsComparedInTheLastKey) {
    expect_unequal(crypto_of({K1, K2}), crypto_of({K1, changed(K2, GetParam().apply)}));
}

TEST_P(CryptoKeyEqualityOf, IsComparedInALastKeyThatTheLongerListFollows) {
    expect_unequal(crypto_of({K1, K2, K1}), crypto_of({K1, changed(K2, GetParam().apply)}));
}

TEST_P(CryptoKeyEqualityOf, IsNotComparedBeyondTheShorterList) {
    const QOVA_CryptoKey other = changed(K2, GetParam().apply);
    expect_equal(crypto_of({K1}), crypto_of({K1, other}));
    expect_equal(crypto_of({}), crypto_of({other}));
}

TEST_P(CryptoKeyEqualityOf, IsComparedWhateverTheSizeOfTheMki) {
    for (const unsigned char size : std::initializer_list<unsigned char>{0, 1, 7, 8, 200}) {
        QOVA_CryptoKey one = {};
        one.mkiSize = size;
        expect_unequal(crypto_of({one}), crypto_of({changed(one, GetParam().apply)}));
    }
}

INSTANTIATE_TEST_SUITE_P(Field, CryptoKeyEqualityOf, testing::ValuesIn(key_changes), name_of_row);

TEST(CryptoEquality, NeverLooksAtKeyMaterial) {
    for (std::size_t place = 0; place < sizeof K1.key; ++place) {
        QOVA_CryptoKey other = K1;
        other.key[place] ^= 0xff;
        expect_equal(crypto_of({K1}), crypto_of({other}));
        expect_equal(crypto_of({K2, K1}), crypto_of({K2, other}));
    }
}

// The right operand has to be exactly a QOVA_Crypto; the left one is not asked.
class DerivedCrypto : public QOVA_Crypto {
public:
    explicit DerivedCrypto(const QOVA_Crypto& crypto) : QOVA_Crypto(crypto) {}
};

TEST(CryptoEquality, FailsWithADerivedObjectOnTheRight) {
    const QOVA_Crypto plain = crypto_of({K1});
    const DerivedCrypto derived(plain);
    EXPECT_FALSE(plain == derived);
}

TEST(CryptoEquality, HoldsWithADerivedObjectOnTheLeft) {
    const QOVA_Crypto plain = crypto_of({K1});
    const DerivedCrypto derived(plain);
    EXPECT_TRUE(derived == plain);
}

TEST(CryptoEquality, OfADerivedObjectFailsEvenWithItself) {
    const DerivedCrypto derived(crypto_of({K1}));
    const QOVA_Crypto& crypto = derived;
    expect_unequal(crypto, crypto);
}

TEST(CryptoEquality, AllocatesNothing) {
    const QOVA_Crypto one = crypto_of({K1, K2});
    const QOVA_Crypto other = crypto_of({K1, K2});
    const std::size_t before = allocations::made();
    const bool equal = one == other;
    const std::size_t after = allocations::made();
    EXPECT_TRUE(equal);
    EXPECT_EQ(after, before);
}

// Texts, byte for byte.

TEST(CryptoText, OfTheDefaults) {
    EXPECT_EQ(std::string(QOVA_Crypto()), "\t\ttag=0, algo=NIL\n");
}

TEST(CryptoText, WithoutKeys) {
    EXPECT_EQ(std::string(crypto_of({})), "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80\n");
}

TEST(CryptoText, WithTwoKeys) {
    QOVA_CryptoKey first = key_of(1048576, 0, 'a');
    first.mki[7] = 1;
    first.mkiSize = 4;
    QOVA_CryptoKey second = key_of(0, 12, 'A');
    second.mki[1] = 3;
    second.mkiSize = 2;
    EXPECT_EQ(std::string(crypto_of({first, second})),
              "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80"
              ", key=(lifetime=1048576 / mki=00000001 / mkiSize=4)"
              ", key=(lifetime=0 / mki=123000000 / mkiSize=2)\n");
}

TEST(CryptoText, WithTheGreatestNumbers) {
    QOVA_CryptoKey key = {};
    key.lifetime = UINT_MAX;
    key.mkiSize = 255;
    std::fill(std::begin(key.mki), std::end(key.mki), static_cast<unsigned char>(255));
    QOVA_Crypto crypto = crypto_of({key});
    crypto.tag = UINT_MAX;
    EXPECT_EQ(std::string(crypto),
              "\t\ttag=4294967295, algo=AES_CM_128_HMAC_SHA1_80"
              ", key=(lifetime=4294967295 / mki=255255255255255255255255 / mkiSize=255)\n");
}

TEST(CryptoText, OfAZeroMkiIsEightZerosWhateverItsSize) {
    for (const unsigned char size : std::initializer_list<unsigned char>{0, 1, 8, 255}) {
        QOVA_CryptoKey key = {};
        key.mkiSize = size;
        EXPECT_EQ(std::string(crypto_of({key})),
                  "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80"
                  ", key=(lifetime=0 / mki=00000000 / mkiSize=" +
                      std::to_string(size) + ")\n");
    }
}

TEST(CryptoText, HasBytesAsNumbersAndNotAsCharacters) {
    QOVA_CryptoKey key = {};
    const unsigned char bytes[] = {0, 9, 10, 48, 65, 99, 128, 255};
    std::copy(std::begin(bytes), std::end(bytes), std::begin(key.mki));
    key.mkiSize = '\n';
    EXPECT_EQ(std::string(crypto_of({key})),
              "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80"
              ", key=(lifetime=0 / mki=0910486599128255 / mkiSize=10)\n");
}

TEST(CryptoText, HasEveryByteValueAsItsNumber) {
    for (unsigned int value = 0; value <= 255; ++value) {
        QOVA_CryptoKey key = {};
        key.mki[0] = static_cast<unsigned char>(value);
        key.mkiSize = static_cast<unsigned char>(value);
        EXPECT_EQ(std::string(crypto_of({key})),
                  "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80"
                  ", key=(lifetime=0 / mki=" +
                      std::to_string(value) + "0000000 / mkiSize=" + std::to_string(value) + ")\n");
    }
}

TEST(CryptoText, CanBeTheSameForDifferentMkis) {
    const auto with = [](unsigned char first, unsigned char second) {
        QOVA_CryptoKey key = {};
        key.mki[0] = first;
        key.mki[1] = second;
        return crypto_of({key});
    };
    EXPECT_EQ(std::string(with(12, 3)),
              "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80"
              ", key=(lifetime=0 / mki=123000000 / mkiSize=0)\n");
    EXPECT_EQ(std::string(with(1, 23)), std::string(with(12, 3)));
    expect_unequal(with(1, 23), with(12, 3));
}

TEST(CryptoText, NeverFollowsTheKeyMaterial) {
    const QOVA_CryptoKey bare =
        changed(K1, [](QOVA_CryptoKey& k) { std::fill(std::begin(k.key), std::end(k.key), '\0'); });
    const std::string text = crypto_of({bare, K2});
    EXPECT_EQ(std::string(crypto_of({K1, K2})), text);
    for (std::size_t place = 0; place < sizeof bare.key; ++place) {
        QOVA_CryptoKey other = bare;
        other.key[place] = 'k';
        EXPECT_EQ(std::string(crypto_of({other, K2})), text);
    }
}

TEST(CryptoText, KeepsTheOrderOfManyKeys) {
    std::list<QOVA_CryptoKey> keys;
    std::string text = "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80";
    for (unsigned int lifetime = 0; lifetime < 100; ++lifetime) {
        keys.push_back(key_of(lifetime, 7, 'a'));
        text += ", key=(lifetime=" + std::to_string(lifetime) + " / mki=70000000 / mkiSize=1)";
    }
    EXPECT_EQ(std::string(crypto_of(keys)), text + "\n");
}

TEST(CryptoText, HasTheCompanionsNameOfEverySuite) {
    for (const int number : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, -1, INT_MIN, INT_MAX}) {
        QOVA_Crypto crypto;
        crypto.algo = static_cast<g_crypto_suite>(number);
        EXPECT_EQ(std::string(crypto),
                  "\t\ttag=0, algo=" + Sdp::CryptoParser::enumToAlgo(crypto.algo) + "\n");
    }
}

TEST(CryptoText, IsOneLineAndLeavesTheObjectAsItIs) {
    const QOVA_Crypto crypto = crypto_of({K1, K2});
    const std::string text = crypto;
    EXPECT_EQ(text.find('\n'), text.size() - 1);
    EXPECT_EQ(std::string(crypto), text);
    EXPECT_EQ(crypto.tag, 1u);
    EXPECT_EQ(crypto.algo, CS_AES_CM_128_HMAC_SHA1_80);
    ASSERT_EQ(crypto.keys.size(), 2u);
    expect_same_record(crypto.keys.front(), K1);
    expect_same_record(crypto.keys.back(), K2);
}

TEST(CryptoText, HasUngroupedDigitsInAnyGlobalLocale) {
    QOVA_Crypto crypto = crypto_of({K1});
    crypto.tag = 1234567;
    const GroupingLocale locale;
    EXPECT_EQ(std::string(crypto),
              "\t\ttag=1234567, algo=AES_CM_128_HMAC_SHA1_80"
              ", key=(lifetime=1048576 / mki=10000000 / mkiSize=1)\n");
}

}  // namespace
