// What a call stack does with an installed libqova: it builds a capability, moves it to a public
// address and logs it.
#include <iostream>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "socket/address.h"

int main() {
    QOVA_Media* const audio = new QOVA_Media;
    audio->mediaType = QOVA_Media::MT_AUDIO;
    audio->sndPort = audio->rcvPort = QOVA_Capability::AUDIO_PORT_BASE;
    audio->opusParam->useInbandFec = true;

    QOVA_AudioAttribute* const opus = new QOVA_AudioAttribute;
    opus->codec = CODEC_OPUS;
    opus->framing = 20;
    audio->attributes.push_back(opus);

    QOVA_Crypto* const crypto = new QOVA_Crypto;
    crypto->tag = 1;
    crypto->algo = CS_AES_CM_128_HMAC_SHA1_80;
    audio->cryptos.push_back(crypto);
    audio->cryptoCount = 1;

    QOVA_Capability offer;
    offer.offer = true;
    offer.filteredMedia.push_back(audio);

    IPAddress address;
    if (!IPAddress::Parse("2001:db8::7", address)) {
        return 1;
    }
    offer.setPublicAddrPort(UDPAddr(address, 5060), 40000, 7000);

    std::cout << "libqova " << QOVA_VERSION_MAJOR << '.' << QOVA_VERSION_MINOR << '.'
              << QOVA_VERSION_PATCH << '\n'
              << static_cast<const std::string&>(QOVA_Capability(offer));
}
