// The code of log.md: a log text with every kind of line that shows fields.

#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/ownership.h"
#include "socket/address.h"

namespace {

void fill(QOVA_Capability& capability) {
    IPAddress address;
    IPAddress::Parse("192.0.2.7", address);

    capability.offer = true;
    capability.marked = true;
    capability.passThrough = "m=text 11000 RTP/AVP 98";

    QOVA_Media& audio = qova::append<QOVA_Media>(capability.filteredMedia);
    audio.mediaType = QOVA_Media::MT_AUDIO;
    qova::replace(audio.address, std::unique_ptr<IPAddress>(new IPAddress(address)));
    audio.sndPort = 32000;
    audio.sndPort2 = 32001;
    audio.rcvPort = 32000;
    audio.rcvPort2 = 32001;
    audio.amrwbParam->octetAlign = 1;
    audio.opusParam->useDtx = true;

    QOVA_AudioAttribute& payload = qova::append<QOVA_AudioAttribute>(audio.attributes);
    payload.codec = CODEC_G722_2;
    payload.status = QOVA_Media::MS_ACCEPTED;
    payload.framing = 20;
    payload.mxFraming = 40;
    payload.mf = static_cast<QOVA_Codec>(101);

    QOVA_Crypto& crypto = qova::append<QOVA_Crypto>(audio.cryptos);
    crypto.tag = 1;
    crypto.algo = CS_AES_CM_128_HMAC_SHA1_80;
    QOVA_CryptoKey key = {};
    key.lifetime = 1048576;
    key.mki[0] = 5;
    key.mkiSize = 1;
    crypto.keys.push_back(key);
    audio.cryptoCount = 1;

    QOVA_Media& fax = qova::append<QOVA_Media>(capability.filteredMedia);
    fax.mediaType = QOVA_Media::MT_FAX;
    fax.mediaStatus = QOVA_Media::MS_REJECTED;
    qova::replace(fax.address, std::unique_ptr<IPAddress>(new IPAddress(address)));
    QOVA_FaxAttribute& t38 = qova::append<QOVA_FaxAttribute>(fax.attributes);
    t38.transport = FT_T38_UDPTL;
    t38.mxRate = 14400;
    t38.rateMgt = RM_TRFTCF;
    t38.mxBuffer = 2000;
    t38.mxDgram = 512;
    t38.errCorr = 1;
}

// [lines]
// Writes one log entry for each line.
void log_lines(const QOVA_Capability& capability) {
    const std::string text = capability;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::cout << "call 7: " << line << '\n';
    }
}
// [lines]

}  // namespace

int main() {
    QOVA_Capability capability;
    fill(capability);

    // [whole]
    const std::string text = capability;
    std::cout << text;
    // [whole]

    std::cout << "--\n";
    log_lines(capability);
}
