// SRTP crypto lines: defaults, copies, partial equality, log text.

#include "qova/crypto.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <iterator>
#include <list>
#include <memory>
#include <string>

#include "building_blocks.h"
#include "derived.h"
#include "describe.h"
#include "equality.h"
#include "rows.h"

namespace {

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

TEST(CryptoDefaults, AreZeroAndEmpty) {
    EXPECT_EQ(describe(*Owned(new QOVA_Crypto)), "QOVA_Crypto tag=0 algo=0");
}

// ---- Copies ----

class CryptoCopy : public testing::TestWithParam<CopyPath<QOVA_Crypto>> {
protected:
    Owned copy() const { return GetParam().copy(*source); }

    Owned source = full<QOVA_Crypto>();
    const std::string full_description = describe(*source);
};

constexpr CopyPath<QOVA_Crypto> paths[] = {
    {"Constructor",
     [](const QOVA_Crypto& source) { return std::make_unique<QOVA_Crypto>(source); }},
    {"Clone", [](const QOVA_Crypto& source) { return Owned(source.clone()); }},
};
INSTANTIATE_TEST_SUITE_P(By, CryptoCopy, testing::ValuesIn(paths), name_of_row);

TEST_P(CryptoCopy, HasEveryMemberAndAllKeyBytes) {
    EXPECT_EQ(describe(*copy()), full_description);
    EXPECT_EQ(describe(*source), full_description);
}

TEST_P(CryptoCopy, IsIndependent) {
    const Owned result = copy();
    source->keys.clear();
    EXPECT_EQ(describe(*result), full_description);
    source = full<QOVA_Crypto>();
    result->keys.front().key[0] ^= 1;
    EXPECT_EQ(describe(*source), full_description);
}

TEST(CryptoClone, IsVirtual) {
    const Owned derived = full<Derived<QOVA_Crypto>>();
    EXPECT_EQ(describe(*Owned(derived->clone())), describe(*derived));
    const Owned without_override = full<WithoutClone<QOVA_Crypto>>();
    EXPECT_EQ(describe(*Owned(without_override->clone())), describe(*full<QOVA_Crypto>()));
}

// ---- Equality ----

TEST(CryptoEquality, IsTrueForEqualMembers) {
    expect_equal(crypto_of({K1, K2}), crypto_of({K1, K2}));
    expect_equal(QOVA_Crypto(), QOVA_Crypto());
}

TEST(CryptoEquality, EmptyListOfKeysEqualsAnyList) {
    expect_equal(crypto_of({}), crypto_of({K1, K2}));
}

TEST(CryptoEquality, StopsAtTheShorterList) {
    expect_equal(crypto_of({K1}), crypto_of({K1, K2}));
    expect_unequal(crypto_of({K2}), crypto_of({K1, K2}));
    expect_unequal(crypto_of({K1, K1}), crypto_of({K1, K2, K1}));
}

TEST(CryptoEquality, IgnoresKeyMaterial) {
    for (std::size_t place = 0; place < sizeof K1.key; ++place) {
        QOVA_CryptoKey other = K1;
        other.key[place] ^= 0xff;
        expect_equal(crypto_of({K1}), crypto_of({other}));
    }
}

// The right operand must be exactly a QOVA_Crypto; the left one may be derived.
TEST(CryptoEquality, IsAsymmetricWithADerivedClass) {
    const QOVA_Crypto plain = crypto_of({K1});
    const auto derived = crypto_of<Derived<QOVA_Crypto>>({K1});
    EXPECT_FALSE(plain == derived);
    EXPECT_TRUE(derived == plain);
    expect_unequal(derived, derived);
}

class CryptoField : public testing::TestWithParam<Change<QOVA_Crypto>> {};

TEST_P(CryptoField, IsCompared) {
    for (const Keys& keys : {Keys{}, {K1}}) {
        QOVA_Crypto other = crypto_of(keys);
        GetParam().apply(other);
        expect_unequal(crypto_of(keys), other);
    }
}

constexpr Change<QOVA_Crypto> crypto_fields[] = {
    {"tag", flip_highest_bit<&QOVA_Crypto::tag>},
    {"algo", flip_highest_bit<&QOVA_Crypto::algo>},
};
INSTANTIATE_TEST_SUITE_P(Equality, CryptoField, testing::ValuesIn(crypto_fields), name_of_row);

class CryptoKeyField : public testing::TestWithParam<Change<QOVA_CryptoKey>> {};

TEST_P(CryptoKeyField, IsComparedInEveryPair) {
    QOVA_CryptoKey other = K2;
    GetParam().apply(other);
    expect_unequal(crypto_of({K2, K1}), crypto_of({other, K1}));
    expect_unequal(crypto_of({K1, K2}), crypto_of({K1, other}));
    expect_equal(crypto_of({K1}), crypto_of({K1, other}));
}

template <int place>
void change_mki(QOVA_CryptoKey& key) {
    key.mki[place] ^= 0x80;
}

// Equality looks at all eight MKI bytes, here beyond an mkiSize of 1.
constexpr Change<QOVA_CryptoKey> key_fields[] = {
    {"lifetime", flip_highest_bit<&QOVA_CryptoKey::lifetime>},
    {"mkiSize", flip_highest_bit<&QOVA_CryptoKey::mkiSize>},
    {"mki0", change_mki<0>},
    {"mki1", change_mki<1>},
    {"mki7", change_mki<7>},
};
INSTANTIATE_TEST_SUITE_P(Equality, CryptoKeyField, testing::ValuesIn(key_fields), name_of_row);

// ---- Log text ----

TEST(CryptoText, WithoutKeys) {
    EXPECT_EQ(std::string(crypto_of({})), "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80\n");
}

TEST(CryptoText, HasOneLineForAllKeys) {
    EXPECT_EQ(std::string(*full<QOVA_Crypto>()),
              "\t\ttag=4294967295, algo=AES_CM_128_HMAC_SHA1_80"
              ", key=(lifetime=1048576 / mki=10000000 / mkiSize=1)"
              ", key=(lifetime=2097152 / mki=20000000 / mkiSize=1)"
              ", key=(lifetime=4294967295 / mki=30000000 / mkiSize=1)\n");
}

// So different MKIs can have the same text: 12, 3 and 1, 23.
TEST(CryptoText, PrintsMkiWithoutSeparators) {
    QOVA_CryptoKey key = {};
    const unsigned char bytes[] = {0, 9, 10, 48, 65, 99, 128, 255};
    std::copy(std::begin(bytes), std::end(bytes), std::begin(key.mki));
    key.mkiSize = '\n';
    EXPECT_EQ(std::string(crypto_of({key})),
              "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80"
              ", key=(lifetime=0 / mki=0910486599128255 / mkiSize=10)\n");
}

TEST(CryptoText, UsesTheCompanionsNameOfTheSuite) {
    for (const int number : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, -1, INT_MIN, INT_MAX}) {
        QOVA_Crypto crypto;
        crypto.algo = static_cast<g_crypto_suite>(number);
        EXPECT_EQ(std::string(crypto),
                  "\t\ttag=0, algo=" + Sdp::CryptoParser::enumToAlgo(crypto.algo) + "\n");
    }
}

}  // namespace
