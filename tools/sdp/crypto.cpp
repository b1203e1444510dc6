#include "sdp/crypto.h"

#include <sofia-sip/base64.h>

#include <algorithm>
#include <climits>

#include "sdp/strings.h"

namespace sdp {
namespace {

constexpr std::string_view method = "inline:";

// The size of a suite's master key and salt in bytes.
struct KeySize {
    g_crypto_suite suite;
    std::size_t min;
    std::size_t max;
};
constexpr KeySize key_sizes[] = {
    {CS_AES_CM_128_HMAC_SHA1_80, 30, 30}, {CS_AES_CM_128_HMAC_SHA1_32, 30, 30},
    {CS_F8_128_HMAC_SHA1_80, 30, 30},     {CS_SEED_CTR_128_HMAC_SHA1_80, 30, 30},
    {CS_SEED_128_CCM_80, 28, 30},  // salts of 12 and of 14 bytes are in use
    {CS_SEED_128_GCM_96, 28, 30},         {CS_AES_192_CM_HMAC_SHA1_80, 38, 38},
    {CS_AES_192_CM_HMAC_SHA1_32, 38, 38}, {CS_AES_256_CM_HMAC_SHA1_80, 46, 46},
    {CS_AES_256_CM_HMAC_SHA1_32, 46, 46}, {CS_AEAD_AES_128_GCM, 28, 28},
    {CS_AEAD_AES_256_GCM, 44, 44},
};

// Returns sizes of 0 for an unknown suite.
KeySize key_size_of(g_crypto_suite suite) {
    const auto* const found =
        std::find_if(std::begin(key_sizes), std::end(key_sizes),
                     [suite](const KeySize& candidate) { return candidate.suite == suite; });
    return found == std::end(key_sizes) ? KeySize{suite, 0, 0} : *found;
}

// Names have any letter case, and offers often transpose those with 256-bit keys.
g_crypto_suite suite_of(std::string_view name) {
    constexpr std::string_view transposed = "AES_CM_256_";
    std::string suite(name);
    for (char& c : suite) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    if (starts_with(suite, transposed)) {
        suite.replace(0, transposed.size(), "AES_256_CM_");
    }
    return Sdp::CryptoParser::algoToEnum(suite);
}

// Decodes base64 (RFC 4648), with or without padding. Returns the number of bytes; nullopt if the
// text is not base64 or is too long. The decoder itself skips unknown characters.
std::optional<std::size_t> decode_key(std::string_view text, QOVA_CryptoKey& key) {
    constexpr const char* alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const std::size_t digits = std::min(text.find_first_not_of(alphabet), text.size());
    const std::string_view padding = text.substr(digits);
    const bool is_padded = (padding == "=" || padding == "==") && text.size() % 4 == 0;
    if (digits % 4 == 1 || (!padding.empty() && !is_padded) || digits * 3 / 4 > sizeof key.key) {
        return std::nullopt;
    }
    return base64_d(reinterpret_cast<char*>(key.key), sizeof key.key, std::string(text).c_str());
}

// NUMBER or 2^NUMBER, at most 2^48 (RFC 3711); the model holds 32 bits.
unsigned int lifetime_of(const Line& line, std::string_view text) {
    constexpr unsigned max_power = 48;
    unsigned long long packets = number(text, 1ULL << max_power).value_or(0);
    if (text.substr(0, 2) == "2^") {
        const auto power = number(text.substr(2), max_power);
        packets = power ? 1ULL << *power : 0;
    }
    refuse_if(packets == 0, line.number, "a=crypto: expected a lifetime of 1 to 2^48 packets");
    return static_cast<unsigned int>(std::min<unsigned long long>(packets, UINT_MAX));
}

// VALUE:LENGTH
void read_mki(const Line& line, const std::vector<std::string_view>& parts, QOVA_CryptoKey& key) {
    key.mkiSize = required<unsigned char>(line.number, "a=crypto: expected an MKI length", parts[1],
                                          1, sizeof key.mki);
    const auto value = number(parts[0], ULLONG_MAX >> (64 - 8 * key.mkiSize));
    refuse_if(!value, line.number, "a=crypto: the MKI is not a number of that length");
    for (unsigned i = 0; i < key.mkiSize; ++i) {
        key.mki[i] = static_cast<unsigned char>(*value >> 8 * (key.mkiSize - 1 - i));
    }
}

// inline:KEY[|LIFETIME][|MKI]
QOVA_CryptoKey read_key(const Line& line, std::string_view text, g_crypto_suite suite) {
    refuse_if(!starts_with(text, method), line.number, "a=crypto: expected an inline key");
    const std::vector<std::string_view> fields = split(text.substr(method.size()), "|");
    QOVA_CryptoKey key = {};
    const auto size = decode_key(fields[0], key);
    refuse_if(!size, line.number, "a=crypto: a key is not base64 or is too long");
    const KeySize sizes = key_size_of(suite);
    refuse_if(*size < sizes.min || *size > sizes.max, line.number,
              "a=crypto: wrong key length for this suite");
    std::size_t next = 1;
    const auto is_next = [&](bool has_colon) {
        return next < fields.size() && (split(fields[next], ":").size() > 1) == has_colon;
    };
    if (is_next(false)) {
        key.lifetime = lifetime_of(line, fields[next++]);
    }
    if (is_next(true)) {
        read_mki(line, split(fields[next++], ":", 2), key);
    }
    refuse_if(next != fields.size(), line.number, "a=crypto: unexpected text after a key");
    return key;
}

// Returns the number of bytes before the key material of a line. The attribute with the keys can be
// inside another one (RFC 3407, RFC 5939).
std::size_t size_before_keys(std::string_view content) {
    for (std::size_t at = 0; at < content.size(); ++at) {
        const std::string_view rest = content.substr(at);
        const bool begins_word =
            at == 0 || std::string_view(" \t:;").find(content[at - 1]) != std::string_view::npos;
        if (begins_word && starts_with(rest, "k=")) {
            return at + 2;
        }
        for (const std::string_view name : {"crypto", "key-mgmt", "ice-pwd", "3GE2AE", "inline:"}) {
            if (starts_with(rest, name)) {
                const std::size_t end = at + name.size();
                const std::size_t next = content.find_first_not_of(blanks, end);
                return next != std::string_view::npos && content[next] == ':' ? next + 1 : end;
            }
        }
    }
    return content.size();
}

}  // namespace

// TAG SUITE KEY[;KEY]... [SESSION-PARAMETER]...
std::unique_ptr<QOVA_Crypto> read_crypto(const Line& line) {
    const std::vector<std::string_view> fields = tokens(line.value);
    refuse_if(fields.size() < 3, line.number, "a=crypto needs a tag, a suite and a key");
    auto crypto = std::make_unique<QOVA_Crypto>();
    crypto->tag = required(line.number, "a=crypto tag: expected a number", fields[0], 0, 999999999);
    crypto->algo = suite_of(fields[1]);
    if (crypto->algo != CS_NIL) {
        for (const std::string_view key : split(fields[2], ";")) {
            crypto->keys.push_back(read_key(line, key, crypto->algo));
        }
    }
    return crypto;
}

bool needs_session_parameter(const Line& line) {
    const std::vector<std::string_view> fields = tokens(line.value);
    return fields.size() > 3 && std::any_of(fields.begin() + 3, fields.end(), [](auto parameter) {
               return parameter.front() != '-';  // an optional one
           });
}

std::string crypto_value(const QOVA_Crypto& crypto, const Section& offer) {
    std::string suite = Sdp::CryptoParser::enumToAlgo(crypto.algo);
    for (const Line* const line : attributes(offer, "crypto")) {
        const std::vector<std::string_view> fields = tokens(line->value);
        if (fields.size() > 2 && suite_of(fields[1]) == crypto.algo &&
            number(fields[0], UINT_MAX) == crypto.tag) {
            suite = fields[1];
            break;
        }
    }
    char text[2 * sizeof QOVA_CryptoKey::key];
    base64_e(text, sizeof text, const_cast<unsigned char*>(crypto.keys.front().key),
             static_cast<isize_t>(key_size(crypto.algo)));
    return std::to_string(crypto.tag) + " " + suite + " " + std::string(method) + text;
}

std::size_t key_size(g_crypto_suite suite) {
    return key_size_of(suite).min;
}

std::string without_keys(const Section& section) {
    std::string text;
    for (const Line& line : section) {
        const std::string_view shown = line.text.substr(0, size_before_keys(line.text));
        text.append(shown).append(shown.size() == line.text.size() ? "" : "(withheld)");
        text.append(line.ending);
    }
    return text;
}

}  // namespace sdp
