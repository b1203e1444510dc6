// The program of every consumer: C++11 and later, with any companion. It fills and reads public
// members, derives from an attribute, and passes texts and lists in both directions.

#include <cstdio>
#include <list>
#include <string>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/ownership.h"
#include "socket/address.h"

#ifdef STANDARD
static_assert(__cplusplus / 100 % 100 == STANDARD, "libqova changes the language version");
#endif

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "false: %s\n", what);
        ++failures;
    }
}

// The library calls these functions through its virtual tables.
class OwnAttribute : public QOVA_AudioAttribute {
public:
    QOVA_MediaAttribute* clone() const override { return new OwnAttribute(*this); }
    operator const std::string() const override { return "\t\t -> the consumer's own\n"; }
    bool operator==(const QOVA_MediaAttribute& other) const override {
        asked = this;
        return QOVA_AudioAttribute::operator==(other);
    }

    static const QOVA_MediaAttribute* asked;
};

const QOVA_MediaAttribute* OwnAttribute::asked = nullptr;

void copy_move_and_log() {
    QOVA_Capability capability;
    {
        QOVA_Capability source;
        QOVA_Media& media = qova::append<QOVA_Media>(source.filteredMedia);
        media.mediaType = QOVA_Media::MT_AUDIO;
        media.sndPort = media.rcvPort = QOVA_Capability::AUDIO_PORT_BASE;
        media.amrwbParam->modeSet = {0, 2};
        qova::append<QOVA_AudioAttribute>(media.attributes).codec = CODEC_G722_2;
        expect(media.isMute(), "a media without a destination is mute");
        expect(media == media, "a media equals itself");
        qova::append<OwnAttribute>(media.attributes);
        QOVA_Crypto& crypto = qova::append<QOVA_Crypto>(media.cryptos);
        crypto.algo = CS_AES_CM_128_HMAC_SHA1_80;
        crypto.keys.push_back(QOVA_CryptoKey());
        crypto.keys.back().lifetime = 7;
        capability = QOVA_Capability(source);
    }
    IPAddress address;
    expect(IPAddress::Parse("203.0.113.5", address), "the address is valid");
    capability.setPublicAddrPort(UDPAddr(address, 0), 40000, 7000);
    expect(
        capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN) == capability.filteredMedia,
        "a search finds the media");

    const std::string golden_text =
        "Capability(answer, Not Hold, silenceSuppSdp=no)\n\tFiltered=\n"
        "\t-> media(Audio)/Accepted @" +
        address.ToString() +
        "/snd=40000~8000/rcv=40000~8000/bsnd=1/brcv=1 AMR-WB(mode-set=0,2)\n\t   Attributes :"
        "\t\t -> G722.2 / Unknown / framing=0 / vad=0 / echo=0 / mxFraming=0 / MF=0\n"
        "\t\t -> the consumer's own\n\t   Crypto attributes (0) :\n\t\ttag=0, algo=" +
        Sdp::CryptoParser::enumToAlgo(CS_AES_CM_128_HMAC_SHA1_80) +
        ", key=(lifetime=7 / mki=00000000 / mkiSize=0)\n";
    const std::string text = capability;
    std::fwrite(text.data(), 1, text.size(), stdout);
    expect(text == golden_text, "the text is as expected");
}

// The comparisons that compile without a warning in C++20, too: see qova/attributes.h.
void compare_attributes() {
    const OwnAttribute left;
    const OwnAttribute right;
    const QOVA_MediaAttribute& left_base = left;
    const QOVA_MediaAttribute& right_base = right;
    expect(!left.operator==(right) && OwnAttribute::asked == &left, "a.operator==(b) calls a");
    expect(!(right_base == left_base) && OwnAttribute::asked == &right, "base == base calls left");
    expect(!(left_base == right) && OwnAttribute::asked == (__cplusplus < 202002L ? &left : &right),
           "base == derived calls right since C++20");
#ifdef LOUD
    expect(!(left == right), "two objects of the same derived class");
#endif
}

}  // namespace

int main() {
    copy_move_and_log();
    compare_attributes();
    return failures == 0 ? 0 : 1;
}
