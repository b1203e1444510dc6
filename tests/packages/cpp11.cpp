// A consumer in C++11: reads and writes public members, calls through virtual slots, derives from
// an attribute, and hands texts and lists across the library's boundary.

#include <cstdio>
#include <list>
#include <string>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "socket/address.h"

static_assert(__cplusplus == 201103L, "this consumer is to be compiled as C++11");

namespace {

// An attribute of the consumer's own, which the library copies and logs through its virtuals.
class ConsumerAttribute : public QOVA_MediaAttribute {
public:
    QOVA_MediaAttribute* clone() const override { return new ConsumerAttribute(*this); }
    operator const std::string() const override { return "\t\t -> the consumer's own\n"; }
};

const char expected[] =
    "Capability(offer, Not Hold, silenceSuppSdp=no)\n"
    "\tFiltered=\n"
    "\t-> media(Audio)/Accepted @203.0.113.5/snd=40000~40001/rcv=40000~40001/bsnd=1/brcv=1"
    " AMR-WB(mode-set=0,2)\n"
    "\t   Attributes :"
    "\t\t -> G722.2 / Unknown / framing=20 / vad=0 / echo=0 / mxFraming=0 / MF=101\n"
    "\t\t -> the consumer's own\n"
    "\t   Crypto attributes (1) :\n"
    "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80, key=(lifetime=7 / mki=90000000 / mkiSize=1)\n"
    "\n\tPass-through=\nm=application 9 TCP 0\n";

void fill(QOVA_Capability& capability) {
    capability.offer = true;
    capability.passThrough = "m=application 9 TCP 0";
    QOVA_Media* const media = new QOVA_Media;
    capability.filteredMedia.push_back(media);
    media->mediaType = QOVA_Media::MT_AUDIO;
    media->sndPort = media->rcvPort = QOVA_Capability::AUDIO_PORT_BASE;
    media->sndPort2 = media->rcvPort2 = QOVA_Capability::AUDIO_PORT_BASE + 1;
    media->amrwbParam->modeSet = {0, 2};
    QOVA_AudioAttribute* const audio = new QOVA_AudioAttribute;
    media->attributes.push_back(audio);
    audio->codec = CODEC_G722_2;
    audio->framing = 20;
    audio->mf = static_cast<QOVA_Codec>(101);
    media->attributes.push_back(new ConsumerAttribute);
    QOVA_Crypto* const crypto = new QOVA_Crypto;
    media->cryptos.push_back(crypto);
    media->cryptoCount = 1;
    crypto->tag = 1;
    crypto->algo = CS_AES_CM_128_HMAC_SHA1_80;
    QOVA_CryptoKey key = {};
    key.lifetime = 7;
    key.mkiSize = 1;
    key.mki[0] = 9;
    crypto->keys.push_back(key);
}

}  // namespace

int main() {
    QOVA_Capability capability;
    {
        QOVA_Capability source;
        fill(source);
        capability = source;
    }
    IPAddress address;
    IPAddress::Parse("203.0.113.5", address);
    capability.setPublicAddrPort(UDPAddr(address, 0), 40000, 7000);
    const std::list<QOVA_Media*> found =
        capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN);
    const std::string text = capability;
    std::fputs(text.c_str(), stdout);
    const bool agree = text == expected && found.size() == 1 &&
                       capability.find(CODEC_G722_2) == found.front() &&
                       ToString(CODEC_OPUS) == "OPUS" && !capability.isMute();
    if (!agree) {
        std::fprintf(stderr, "should be, with the media found and not mute:\n%s", expected);
    }
    return agree ? 0 : 1;
}
