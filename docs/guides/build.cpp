// The code of build.md: builds an offer by hand.

#include <iostream>
#include <memory>
#include <string>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/ownership.h"
#include "socket/address.h"

namespace {

// [crypto]
void add_crypto(QOVA_Media& media) {
    QOVA_Crypto& crypto = qova::append<QOVA_Crypto>(media.cryptos);
    crypto.tag = 1;
    crypto.algo = CS_AES_CM_128_HMAC_SHA1_80;
    QOVA_CryptoKey key = {};  // all zero: equality looks at all eight MKI bytes
    key.lifetime = 1048576;   // 2^20 packets
    key.mkiSize = 1;
    key.mki[0] = 1;
    crypto.keys.push_back(key);  // a real key also has master key and salt in key.key
    media.cryptoCount = 1;       // the owner maintains it
}
// [crypto]

}  // namespace

int main() {
    // [media]
    QOVA_Capability offer;
    offer.offer = true;

    QOVA_Media& audio = qova::append<QOVA_Media>(offer.filteredMedia);
    audio.mediaType = QOVA_Media::MT_AUDIO;
    audio.sndPort = audio.rcvPort = QOVA_Capability::AUDIO_PORT_BASE;  // RTP
    audio.sndPort2 = audio.rcvPort2 = audio.rcvPort + 1;               // RTCP
    IPAddress address;
    if (!IPAddress::Parse("192.168.1.20", address)) {
        return 1;
    }
    qova::replace(audio.address, std::unique_ptr<IPAddress>(new IPAddress(address)));
    // [media]

    // [attributes]
    QOVA_AudioAttribute& alaw = qova::append<QOVA_AudioAttribute>(audio.attributes);
    alaw.attributeType = QOVA_Media::AT_AUDIO;
    alaw.codec = CODEC_G711_ALAW;
    alaw.framing = 20;                       // a=ptime, in ms
    alaw.mf = static_cast<QOVA_Codec>(101);  // telephone-event has payload type 101

    QOVA_AudioAttribute& opus = qova::append<QOVA_AudioAttribute>(audio.attributes);
    opus.attributeType = QOVA_Media::AT_AUDIO;
    opus.codec = CODEC_OPUS;
    opus.framing = 20;
    audio.opusParam->useInbandFec = true;  // a=fmtp, for the whole line
    // [attributes]

    add_crypto(audio);

    std::cout << static_cast<const std::string&>(offer);
}
