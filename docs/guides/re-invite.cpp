// The code of re-invite.md: finds out whether a re-INVITE changed something.

#include <iostream>
#include <string>

#include "answer/changes.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/ownership.h"

namespace {

using sdp::changed;
using sdp::ParametersAside;
using sdp::same_media;

void report(const char* what, bool equal, bool changed) {
    std::cout << what << ": " << (equal ? "==" : "not ==") << ", "
              << (changed ? "changed" : "unchanged") << '\n';
}

}  // namespace

int main() {
    QOVA_Capability before;
    QOVA_Media& audio = qova::append<QOVA_Media>(before.filteredMedia);
    audio.mediaType = QOVA_Media::MT_AUDIO;
    qova::append<QOVA_AudioAttribute>(audio.attributes).codec = CODEC_G722;
    qova::append<QOVA_Crypto>(audio.cryptos).keys.push_back({});

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
        qova::append<QOVA_AudioAttribute>(longer.attributes);
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
