// Key material stands in QOVA_CryptoKey::key and nowhere else: in no text, in no exception.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "allocations.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "socket/address.h"

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
    QOVA_CryptoKey result = {};
    result.lifetime = 1048576;
    result.mkiSize = 4;
    result.mki[3] = 7;
    if (filling == KEY) {
        const std::string bytes = key_bytes();
        std::copy(bytes.begin(), bytes.end(), result.key);
    }
    return result;
}

// A suite of each length of key, one of no known name, and entries with and without an MKI.
std::list<QOVA_Crypto*> crypto_lines(Filling filling) {
    std::list<QOVA_Crypto*> lines;
    for (const auto suite : {CS_AES_CM_128_HMAC_SHA1_80, CS_AES_192_CM_HMAC_SHA1_32,
                             CS_AES_256_CM_HMAC_SHA1_80, static_cast<g_crypto_suite>(99)}) {
        auto line = std::make_unique<QOVA_Crypto>();
        line->tag = 1;
        line->algo = suite;
        line->keys = {entry(filling), entry(filling)};
        line->keys.back().mkiSize = 0;
        lines.push_back(line.release());
    }
    return lines;
}

std::unique_ptr<QOVA_Media> media(Filling filling) {
    auto result = std::make_unique<QOVA_Media>();
    result->mediaType = QOVA_Media::MT_AUDIO;
    result->attributes = {new QOVA_AudioAttribute, new QOVA_FaxAttribute, new QOVA_VideoAttribute,
                          new QOVA_DataAttribute};
    result->cryptos = crypto_lines(filling);
    result->cryptoCount = 4;
    return result;
}

std::unique_ptr<QOVA_Capability> capability(Filling filling) {
    auto result = std::make_unique<QOVA_Capability>();
    result->filteredMedia = {media(filling).release(), media(filling).release()};
    result->passThrough = "m=application 9 UDP/BFCP *\r\n";
    return result;
}

template <class Object>
void expect_no_trace_of_key(const Object& with_key, const Object& with_zeros) {
    const std::string text = with_key;
    EXPECT_EQ(trace_in(text), "") << text;
    EXPECT_EQ(text, static_cast<std::string>(with_zeros)) << "the text depends on the key";
}

// Lets every allocation of an operation fail in turn, and looks at what is thrown.
template <class Operation>
void expect_no_trace_in_exceptions(Operation operation) {
    bool reached = true;
    std::size_t exceptions = 0;
    for (std::size_t nth = 1; reached; ++nth) {
        std::exception_ptr thrown;
        {
            const allocations::Failure failure(nth);
            try {
                operation();
            } catch (...) {
                thrown = std::current_exception();
            }
            reached = allocations::Failure::consumed();
        }
        if (thrown) {
            ++exceptions;
            try {
                std::rethrow_exception(thrown);
            } catch (const std::exception& exception) {
                EXPECT_EQ(trace_in(exception.what()), "");
            }
        }
    }
    EXPECT_GT(exceptions, 0U);
}

TEST(KeyMaterial, IsInNoTextOfACryptoLine) {
    const auto with_key = media(KEY);
    const auto with_zeros = media(ZEROS);
    auto zeros = with_zeros->cryptos.begin();
    for (const QOVA_Crypto* const line : with_key->cryptos) {
        expect_no_trace_of_key(*line, **zeros++);
    }
}

TEST(KeyMaterial, IsInNoTextOfAMedia) {
    expect_no_trace_of_key(*media(KEY), *media(ZEROS));
}

TEST(KeyMaterial, IsInNoTextOfACapability) {
    expect_no_trace_of_key(*capability(KEY), *capability(ZEROS));
}

TEST(KeyMaterial, IsInNoTextOfACopy) {
    const auto source = capability(KEY);
    const QOVA_Capability copy(*source);
    QOVA_Capability assigned;
    assigned = *source;
    const auto without = capability(ZEROS);
    expect_no_trace_of_key(copy, *without);
    expect_no_trace_of_key(assigned, *without);
}

TEST(KeyMaterial, IsInNoExceptionOfARendering) {
    const auto object = capability(KEY);
    const QOVA_Media& line = *object->filteredMedia.front();
    expect_no_trace_in_exceptions([&] { const std::string text(*line.cryptos.front()); });
    expect_no_trace_in_exceptions([&] { const std::string text(line); });
    expect_no_trace_in_exceptions([&] { const std::string text(*object); });
}

TEST(KeyMaterial, IsInNoExceptionOfACopy) {
    const auto object = capability(KEY);
    const QOVA_Media& line = *object->filteredMedia.front();
    expect_no_trace_in_exceptions([&] { const QOVA_Crypto copy(*line.cryptos.front()); });
    expect_no_trace_in_exceptions([&] { const QOVA_Media copy(line); });
    expect_no_trace_in_exceptions([&] { const QOVA_Capability copy(*object); });
    expect_no_trace_in_exceptions([&] {
        QOVA_Capability target;
        target = *object;
    });
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
