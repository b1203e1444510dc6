#include "qova/crypto.h"

#include <cstring>
#include <type_traits>

#include "exact_class.h"
#include "owned_list.h"
#include "text.h"

static_assert(std::is_trivially_copyable<QOVA_CryptoKey>::value, "copied as one block of bytes");

namespace {

// Ignores QOVA_CryptoKey::key: lines that differ only in key material are equal.
bool equal_keys(const QOVA_CryptoKey& left, const QOVA_CryptoKey& right) {
    return left.lifetime == right.lifetime && left.mkiSize == right.mkiSize &&
           std::memcmp(left.mki, right.mki, sizeof left.mki) == 0;
}

}  // namespace

QOVA_Crypto::QOVA_Crypto() = default;

QOVA_Crypto::QOVA_Crypto(const QOVA_Crypto& other) = default;

QOVA_Crypto::~QOVA_Crypto() = default;

QOVA_Crypto* QOVA_Crypto::clone() const {
    return new QOVA_Crypto(*this);
}

bool QOVA_Crypto::operator==(const QOVA_Crypto& other) const {
    return qova::exactly<QOVA_Crypto>(other) != nullptr &&
           qova::equal_side_by_side(keys, other.keys, equal_keys) && tag == other.tag &&
           algo == other.algo;
}

void qova::append_text(std::string& text, const QOVA_Crypto& crypto) {
    append(text, "\t\ttag=", crypto.tag, ", algo=");
    text += Sdp::CryptoParser::enumToAlgo(crypto.algo);
    for (const QOVA_CryptoKey& key : crypto.keys) {
        append(text, ", key=(lifetime=", key.lifetime, " / mki=", key.mki,
               " / mkiSize=", static_cast<unsigned int>(key.mkiSize), ")");
    }
    text += "\n";
}

QOVA_Crypto::operator const std::string() const {
    std::string text;
    text.reserve(qova::usual_crypto_length);
    qova::append_text(text, *this);
    return text;
}
