// What debug.md looks at with gdb.

#include <iostream>
#include <string>

#include "netconf/sdp.h"
#include "ownership.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"

namespace {

void inspect(const QOVA_Capability& capability) {
    std::cout << static_cast<const std::string&>(capability);
}

}  // namespace

int main() {
    QOVA_Capability capability;
    capability.offer = true;

    QOVA_Media& audio = append<QOVA_Media>(capability.filteredMedia);
    audio.mediaType = QOVA_Media::MT_AUDIO;
    audio.sndPort = audio.rcvPort = 32000;
    append<QOVA_AudioAttribute>(audio.attributes).codec = CODEC_G711_ALAW;
    append<QOVA_AudioAttribute>(audio.attributes).codec = static_cast<QOVA_Codec>(101);
    append<QOVA_Crypto>(audio.cryptos).tag = 1;

    append<QOVA_Media>(capability.filteredMedia).mediaType = QOVA_Media::MT_FAX;
    inspect(capability);
}
