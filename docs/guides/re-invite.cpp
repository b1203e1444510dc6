// The code of re-invite.md: finds out whether a re-INVITE changed something.

#include <cstring>
#include <iostream>
#include <string>

#include "netconf/sdp.h"
#include "ownership.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"

namespace {

// [aside]
// Takes a media's parameter objects out of the way for as long as it lives.
class ParametersAside {
public:
    explicit ParametersAside(QOVA_Media& of) : media(of), amrwb(of.amrwbParam), opus(of.opusParam) {
        media.amrwbParam = nullptr;
        media.opusParam = nullptr;
    }
    ~ParametersAside() {
        media.amrwbParam = amrwb;
        media.opusParam = opus;
    }
    ParametersAside(const ParametersAside&) = delete;
    ParametersAside& operator=(const ParametersAside&) = delete;

private:
    QOVA_Media& media;
    Sdp::Sdp_Amrwb_Param* amrwb;
    Sdp::Sdp_Opus_Param* opus;
};
// [aside]

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

// [media]
bool same_media(QOVA_Media& left, QOVA_Media& right) {
    // What operator== leaves out: how long the lists are, the parameters, the keys.
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

void report(const char* what, bool equal, bool changed) {
    std::cout << what << ": " << (equal ? "==" : "not ==") << ", "
              << (changed ? "changed" : "unchanged") << '\n';
}

}  // namespace

int main() {
    QOVA_Capability before;
    QOVA_Media& audio = append<QOVA_Media>(before.filteredMedia);
    audio.mediaType = QOVA_Media::MT_AUDIO;
    append<QOVA_AudioAttribute>(audio.attributes).codec = CODEC_G722;
    append<QOVA_Crypto>(audio.cryptos).keys.push_back({});

    report("the same object", before == before, changed(before, before));

    {
        QOVA_Capability now(before);
        report("a copy", before == now, changed(before, now));
    }
    {
        QOVA_Capability now(before);
        now.filteredMedia.front()->bsnd = false;
        report("another direction", before == now, changed(before, now));
    }
    {
        // Neither has parameter objects while they are compared.
        QOVA_Media longer(audio);
        append<QOVA_AudioAttribute>(longer.attributes);
        const bool same = same_media(audio, longer);
        const ParametersAside audio_aside(audio);
        const ParametersAside longer_aside(longer);
        report("one more codec, parameters aside", audio == longer, !same);
    }
    {
        QOVA_Media keyed(audio);
        keyed.cryptos.front()->keys.front().key[0] = 1;
        const bool same = same_media(audio, keyed);
        const ParametersAside audio_aside(audio);
        const ParametersAside keyed_aside(keyed);
        report("another key, parameters aside", audio == keyed, !same);
    }
    {
        QOVA_Capability left;
        QOVA_Capability right(before);
        left.passThrough = right.passThrough = "m=text 11000 RTP/AVP 98\r\n";
        report("equal pass-through, other media", left == right, changed(left, right));
    }
}
