#include "answer/changes.h"

#include <cstring>
#include <string>

#include "netconf/sdp.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"

namespace sdp {
namespace {

// [keys]
bool same_keys(const QOVA_Crypto& left, const QOVA_Crypto& right) {
    auto other = right.keys.begin();
    for (const QOVA_CryptoKey& key : left.keys) {
        if (other == right.keys.end() || std::memcmp(key.key, other->key, sizeof key.key) != 0) {
            return false;
        }
        ++other;
    }
    return other == right.keys.end();
}
// [keys]

}  // namespace

// [media]
bool same_media(QOVA_Media& left, QOVA_Media& right) {
    if (left.mediaStatus == QOVA_Media::MS_REJECTED &&
        right.mediaStatus == QOVA_Media::MS_REJECTED) {
        return left.mediaType == right.mediaType;  // the rest of a rejected line is meaningless
    }
    // operator== does not compare the lengths of the lists, the parameters and the keys.
    if (left.attributes.size() != right.attributes.size() ||
        left.cryptos.size() != right.cryptos.size() ||
        static_cast<const std::string&>(*left.amrwbParam) !=
            static_cast<const std::string&>(*right.amrwbParam) ||
        static_cast<const std::string&>(*left.opusParam) !=
            static_cast<const std::string&>(*right.opusParam)) {
        return false;
    }
    auto other = right.cryptos.begin();
    for (const QOVA_Crypto* crypto : left.cryptos) {
        if (!same_keys(*crypto, **other++)) {
            return false;
        }
    }
    const ParametersAside left_aside(left);
    const ParametersAside right_aside(right);
    return left == right;
}
// [media]

// [capability]
bool changed(QOVA_Capability& before, QOVA_Capability& now) {
    if (before.hold != now.hold || before.silenceSuppSdp != now.silenceSuppSdp ||
        before.passThrough != now.passThrough ||
        before.filteredMedia.size() != now.filteredMedia.size()) {
        return true;
    }
    auto other = now.filteredMedia.begin();
    for (QOVA_Media* media : before.filteredMedia) {
        if (!same_media(*media, **other++)) {
            return true;
        }
    }
    return false;
}
// [capability]

}  // namespace sdp
