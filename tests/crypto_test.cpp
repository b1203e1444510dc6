// SRTP crypto lines: copies, equality, text.

#include "qova/crypto.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <list>
#include <memory>
#include <string>
#include <type_traits>

#include "allocations.h"
#include "building_blocks.h"
#include "equality.h"
#include "rows.h"

namespace {

static_assert(std::is_trivially_copyable_v<QOVA_CryptoKey>);
static_assert(std::is_trivially_destructible_v<QOVA_CryptoKey>);
static_assert(std::is_standard_layout_v<QOVA_CryptoKey>);
static_assert(std::has_virtual_destructor_v<QOVA_Crypto>);

using Owned = std::unique_ptr<QOVA_Crypto>;
using Keys = std::list<QOVA_CryptoKey>;

const QOVA_CryptoKey K1 = key_of(1048576, 1, 'a');
const QOVA_CryptoKey K2 = key_of(2097152, 2, 'A');

template <class Crypto = QOVA_Crypto>
Crypto crypto_of(const Keys& keys) {
    Crypto crypto;
    crypto.tag = 1;
    crypto.algo = CS_AES_CM_128_HMAC_SHA1_80;
    crypto.keys = keys;
    return crypto;
}

QOVA_CryptoKey changed(QOVA_CryptoKey key, void (*change)(QOVA_CryptoKey& key)) {
    change(key);
    return key;
}

TEST(Crypto, StartsEmptyWithoutAllocating) {
    const std::size_t before = allocations::made();
    const QOVA_Crypto crypto;
    EXPECT_EQ(allocations::made(), before);
    EXPECT_EQ(crypto.tag, 0u);
    EXPECT_EQ(crypto.algo, 0);
    EXPECT_TRUE(crypto.keys.empty());
}

// ---- Copies ----

Owned construct(const QOVA_Crypto& source) {
    return std::make_unique<QOVA_Crypto>(source);
}

Owned clone(const QOVA_Crypto& source) {
    return Owned(source.clone());
}

class CryptoCopy : public testing::TestWithParam<CopyPath<QOVA_Crypto>> {
protected:
    CryptoCopy() { fill(*source); }

    Owned copy() const { return GetParam().copy(*source); }

    Owned source = std::make_unique<QOVA_Crypto>();
    const std::string before = members(*full<QOVA_Crypto>());
};

INSTANTIATE_TEST_SUITE_P(Path, CryptoCopy,
                         testing::Values(CopyPath<QOVA_Crypto>{"Constructor", construct},
                                         CopyPath<QOVA_Crypto>{"Clone", clone}),
                         name_of_row);

TEST_P(CryptoCopy, HasEveryMemberWithItsKeyMaterial) {
    EXPECT_EQ(members(*copy()), before);
    EXPECT_EQ(members(*source), before);
    expect_equal(*copy(), *source);
}

TEST_P(CryptoCopy, HasASuiteWithoutAName) {
    source->algo = static_cast<g_crypto_suite>(-1);
    EXPECT_EQ(copy()->algo, -1);
}

TEST_P(CryptoCopy, KeepsItsKeysWhenTheSourceLosesThem) {
    const Owned result = copy();
    source->keys.clear();
    EXPECT_EQ(members(*result), before);
    source.reset();
    EXPECT_EQ(members(*result), before);
}

TEST_P(CryptoCopy, LeavesTheSourceAsItIsWhenItChanges) {
    const Owned result = copy();
    result->tag = 2;
    result->algo = CS_NIL;
    result->keys.front() = QOVA_CryptoKey();
    result->keys.pop_back();
    EXPECT_EQ(members(*source), before);
}

TEST_P(CryptoCopy, IsOneBlockAndOneForEachKeyWhichFreeingGivesBack) {
    const std::size_t made = allocations::made();
    const std::size_t live = allocations::live();
    Owned result = copy();
    EXPECT_EQ(allocations::made(), made + 4);
    result.reset();
    EXPECT_EQ(allocations::live(), live);
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
        EXPECT_EQ(members(*clone), members(*crypto));
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 2);
}

// ---- Equality ----

TEST(CryptoEquality, HoldsWithItselfAndForTheDefaults) {
    const QOVA_Crypto crypto = crypto_of({K1, K2});
    expect_equal(crypto, crypto);
    expect_equal(crypto, crypto_of({K1, K2}));
    expect_equal(QOVA_Crypto(), QOVA_Crypto());
}

TEST(CryptoEquality, OfNoKeysHoldsWithAnyKeys) {
    QOVA_Crypto default_with_keys;
    for (const QOVA_CryptoKey& key : {K1, K2, K1}) {
        default_with_keys.keys.push_back(key);
        expect_equal(QOVA_Crypto(), default_with_keys);
        expect_equal(crypto_of({}), crypto_of(default_with_keys.keys));
    }
}

TEST(CryptoEquality, LooksAsFarAsTheShorterListAndNoFurther) {
    expect_equal(crypto_of({K1}), crypto_of({K1, K2}));
    expect_equal(crypto_of({K1, K2}), crypto_of({K1, K2, K1}));
    expect_unequal(crypto_of({K2}), crypto_of({K1, K2}));
    expect_unequal(crypto_of({K1, K1}), crypto_of({K1, K2, K1}));
}

TEST(CryptoEquality, ComparesKeysInTheirOrder) {
    expect_unequal(crypto_of({K1, K2}), crypto_of({K2, K1}));
}

constexpr Change<QOVA_Crypto> crypto_changes[] = {
    {"tag", [](QOVA_Crypto& c) { c.tag ^= 1u; }},
    {"tag_highest_bit", [](QOVA_Crypto& c) { c.tag ^= 0x80000000u; }},
    {"algo", [](QOVA_Crypto& c) { c.algo = CS_AES_CM_128_HMAC_SHA1_32; }},
    {"algo_none", [](QOVA_Crypto& c) { c.algo = CS_NIL; }},
    {"algo_without_a_name",
     [](QOVA_Crypto& c) { c.algo = static_cast<g_crypto_suite>(c.algo + INT_MIN); }},
};

class CryptoEqualityOf : public testing::TestWithParam<Change<QOVA_Crypto>> {};

TEST_P(CryptoEqualityOf, IsCompared) {
    for (const Keys& keys : {Keys{}, {K1}, {K1, K2}}) {
        QOVA_Crypto other = crypto_of(keys);
        GetParam().apply(other);
        expect_unequal(crypto_of(keys), other);
        expect_unequal(crypto_of({}), other);
    }
}

INSTANTIATE_TEST_SUITE_P(Member, CryptoEqualityOf, testing::ValuesIn(crypto_changes), name_of_row);

constexpr Change<QOVA_CryptoKey> key_changes[] = {
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

class CryptoKeyEqualityOf : public testing::TestWithParam<Change<QOVA_CryptoKey>> {
protected:
    const QOVA_CryptoKey other1 = changed(K1, GetParam().apply);
    const QOVA_CryptoKey other2 = changed(K2, GetParam().apply);
};

TEST_P(CryptoKeyEqualityOf, IsComparedInEachKeyOfTheShorterList) {
    expect_unequal(crypto_of({K1}), crypto_of({other1}));
    expect_unequal(crypto_of({K1, K2}), crypto_of({other1, K2}));
    expect_unequal(crypto_of({K1, K2}), crypto_of({K1, other2}));
    expect_unequal(crypto_of({K1, K2, K1}), crypto_of({K1, other2}));
}

TEST_P(CryptoKeyEqualityOf, IsNotComparedBeyondTheShorterList) {
    expect_equal(crypto_of({K1}), crypto_of({K1, other2}));
    expect_equal(crypto_of({}), crypto_of({other2}));
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
TEST(CryptoEquality, FailsWithADerivedObjectOnTheRightOnly) {
    const QOVA_Crypto plain = crypto_of({K1});
    const auto derived = crypto_of<Derived<QOVA_Crypto>>({K1});
    EXPECT_FALSE(plain == derived);
    EXPECT_TRUE(derived == plain);
    expect_unequal(derived, derived);
}

// ---- Texts, byte for byte ----

const std::string tag_and_suite = "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80";

TEST(CryptoText, OfTheDefaults) {
    EXPECT_EQ(std::string(QOVA_Crypto()), "\t\ttag=0, algo=NIL\n");
}

TEST(CryptoText, WithoutKeys) {
    EXPECT_EQ(std::string(crypto_of({})), "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80\n");
}

TEST(CryptoText, IsOneLineWithTheKeysInTheirOrder) {
    EXPECT_EQ(std::string(*full<QOVA_Crypto>()),
              "\t\ttag=4294967295, algo=AES_CM_128_HMAC_SHA1_80"
              ", key=(lifetime=1048576 / mki=10000000 / mkiSize=1)"
              ", key=(lifetime=2097152 / mki=20000000 / mkiSize=1)"
              ", key=(lifetime=4294967295 / mki=30000000 / mkiSize=1)\n");
}

TEST(CryptoText, OfAZeroMkiIsEightZerosWhateverItsSize) {
    for (const unsigned char size : std::initializer_list<unsigned char>{0, 1, 8, 255}) {
        QOVA_CryptoKey key = {};
        key.mkiSize = size;
        EXPECT_EQ(std::string(crypto_of({key})),
                  tag_and_suite +
                      ", key=(lifetime=0 / mki=00000000 / mkiSize=" + std::to_string(size) + ")\n");
    }
}

TEST(CryptoText, HasBytesAsNumbersAndNotAsCharacters) {
    QOVA_CryptoKey key = {};
    const unsigned char bytes[] = {0, 9, 10, 48, 65, 99, 128, 255};
    std::copy(std::begin(bytes), std::end(bytes), std::begin(key.mki));
    key.mkiSize = '\n';
    EXPECT_EQ(std::string(crypto_of({key})),
              tag_and_suite + ", key=(lifetime=0 / mki=0910486599128255 / mkiSize=10)\n");
}

TEST(CryptoText, CanBeTheSameForDifferentMkis) {
    const auto with = [](unsigned char first, unsigned char second) {
        QOVA_CryptoKey key = {};
        key.mki[0] = first;
        key.mki[1] = second;
        return crypto_of({key});
    };
    EXPECT_EQ(std::string(with(12, 3)),
              tag_and_suite + ", key=(lifetime=0 / mki=123000000 / mkiSize=0)\n");
    EXPECT_EQ(std::string(with(1, 23)), std::string(with(12, 3)));
    expect_unequal(with(1, 23), with(12, 3));
}

TEST(CryptoText, NeverFollowsTheKeyMaterial) {
    const std::string text = crypto_of({K1, K2});
    for (std::size_t place = 0; place < sizeof K1.key; ++place) {
        QOVA_CryptoKey other = K1;
        other.key[place] ^= 0xff;
        EXPECT_EQ(std::string(crypto_of({other, K2})), text);
    }
}

TEST(CryptoText, HasTheCompanionsNameOfEverySuite) {
    for (const int number : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, -1, INT_MIN, INT_MAX}) {
        QOVA_Crypto crypto;
        crypto.algo = static_cast<g_crypto_suite>(number);
        EXPECT_EQ(std::string(crypto),
                  "\t\ttag=0, algo=" + Sdp::CryptoParser::enumToAlgo(crypto.algo) + "\n");
    }
}

TEST(CryptoText, LeavesTheObjectAsItIs) {
    const auto crypto = full<QOVA_Crypto>();
    const std::string text = *crypto;
    EXPECT_EQ(std::string(*crypto), text);
    EXPECT_EQ(members(*crypto), members(*full<QOVA_Crypto>()));
}

}  // namespace
