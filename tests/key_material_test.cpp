// Key material stands in QOVA_CryptoKey::key and nowhere else, in no text. That no exception tells
// it either is shown by the sweep of allocation failures: nothing but a plain bad_alloc is thrown.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "building_blocks.h"

namespace {

// 46 numbers that stand nowhere else in the texts of these tests.
constexpr unsigned char first_key_byte = 200;

std::string key_bytes() {
    std::string bytes;
    for (std::size_t i = 0; i < sizeof QOVA_CryptoKey::key; ++i) {
        bytes += static_cast<char>(first_key_byte + i);
    }
    return bytes;
}

unsigned value(char byte) {
    return static_cast<unsigned char>(byte);
}

// Two bytes in a row: one alone is a syllable of many words.
std::string hexadecimal(const std::string& two_bytes, const char* digits, const char* separator) {
    std::string text;
    for (const char byte : two_bytes) {
        text += text.empty() ? "" : separator;
        text += digits[value(byte) / 16];
        text += digits[value(byte) % 16];
    }
    return text;
}

std::string base64(const std::string& three_bytes) {
    static constexpr char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const unsigned bits =
        value(three_bytes[0]) << 16U | value(three_bytes[1]) << 8U | value(three_bytes[2]);
    return {digits[bits >> 18U], digits[bits >> 12U & 63U], digits[bits >> 6U & 63U],
            digits[bits & 63U]};
}

// Every piece of the key, however short, in every form in which a text might show it.
std::vector<std::string> traces_of_key() {
    const std::string bytes = key_bytes();
    std::vector<std::string> traces;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        traces.push_back(bytes.substr(i, 1));
        traces.push_back(std::to_string(value(bytes[i])));
        traces.push_back(std::to_string(static_cast<signed char>(bytes[i])));
        if (i + 2 <= bytes.size()) {
            for (const char* const digits : {"0123456789abcdef", "0123456789ABCDEF"}) {
                for (const char* const separator :
                     {"", " ", ":", ",", ", ", " 0x", ", 0x", "\\x"}) {
                    traces.push_back(hexadecimal(bytes.substr(i, 2), digits, separator));
                }
            }
        }
        if (i + 3 <= bytes.size()) {
            traces.push_back(base64(bytes.substr(i, 3)));
        }
    }
    return traces;
}

// The first trace of the key in a text; empty when there is none.
std::string trace_in(const std::string& text) {
    for (const std::string& trace : traces_of_key()) {
        if (text.find(trace) != std::string::npos) {
            return trace;
        }
    }
    return "";
}

enum Filling { ZEROS, KEY };

QOVA_CryptoKey entry(Filling filling) {
    QOVA_CryptoKey key = key_of(1048576, 7, first_key_byte);
    if (filling == ZEROS) {
        std::fill(std::begin(key.key), std::end(key.key), static_cast<unsigned char>(0));
    }
    return key;
}

template <class Object>
std::unique_ptr<Object> make(Filling filling);

// A suite of each length of key, one of no known name, and entries with and without an MKI.
template <>
std::unique_ptr<QOVA_Media> make(Filling filling) {
    auto media = std::make_unique<QOVA_Media>();
    append_audio(*media, CODEC_G729);
    for (const auto suite : {CS_AES_CM_128_HMAC_SHA1_80, CS_AES_192_CM_HMAC_SHA1_32,
                             CS_AES_256_CM_HMAC_SHA1_80, static_cast<g_crypto_suite>(99)}) {
        auto& line = append_crypto(*media, 1);
        line.algo = suite;
        line.keys = {entry(filling), entry(filling)};
        line.keys.back().mkiSize = 0;
    }
    return media;
}

template <>
std::unique_ptr<QOVA_Capability> make(Filling filling) {
    auto capability = std::make_unique<QOVA_Capability>();
    for (int i = 0; i < 2; ++i) {
        capability->filteredMedia.push_back(make<QOVA_Media>(filling).release());
    }
    return capability;
}

template <class Object>
void expect_no_trace_of_key(const Object& with_key, const Object& with_zeros) {
    const std::string text = with_key;
    EXPECT_EQ(trace_in(text), "") << text;
    EXPECT_EQ(text, static_cast<std::string>(with_zeros)) << "the text depends on the key";
}

TEST(KeyMaterial, IsInNoTextOfACryptoLine) {
    const auto with_key = make<QOVA_Media>(KEY);
    const auto with_zeros = make<QOVA_Media>(ZEROS);
    auto zeros = with_zeros->cryptos.begin();
    for (const QOVA_Crypto* const line : with_key->cryptos) {
        expect_no_trace_of_key(*line, **zeros++);
    }
}

TEST(KeyMaterial, IsInNoTextOfAMedia) {
    expect_no_trace_of_key(*make<QOVA_Media>(KEY), *make<QOVA_Media>(ZEROS));
}

TEST(KeyMaterial, IsInNoTextOfACapability) {
    expect_no_trace_of_key(*make<QOVA_Capability>(KEY), *make<QOVA_Capability>(ZEROS));
}

TEST(KeyMaterial, IsInNoTextOfACopy) {
    const auto source = make<QOVA_Capability>(KEY);
    const QOVA_Capability copy(*source);
    QOVA_Capability assigned;
    assigned = *source;
    const auto without = make<QOVA_Capability>(ZEROS);
    expect_no_trace_of_key(copy, *without);
    expect_no_trace_of_key(assigned, *without);
}

// The search itself: it finds a key wherever one is shown.

TEST(TraceOfAKey, IsFoundAsBytes) {
    EXPECT_NE(trace_in("key=" + key_bytes()), "");
    EXPECT_NE(trace_in("key=" + key_bytes().substr(45)), "");
}

TEST(TraceOfAKey, IsFoundInHexadecimal) {
    EXPECT_NE(trace_in("key=c8c9ca"), "");
    EXPECT_NE(trace_in("key=F4F5"), "");
    EXPECT_NE(trace_in("key={0xc8, 0xc9}"), "");
}

TEST(TraceOfAKey, IsFoundInDecimal) {
    EXPECT_NE(trace_in("key=200201202"), "");
    EXPECT_NE(trace_in("key=-56"), "");
}

TEST(TraceOfAKey, IsFoundInBase64) {
    EXPECT_NE(trace_in("inline:yMnKy8zNzs/Q"), "");
}

}  // namespace
