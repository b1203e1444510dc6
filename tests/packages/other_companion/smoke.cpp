// libqova with the companion of this directory: copies, equality, the bulk edits, the log text.

#include <cstdio>
#include <string>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "socket/address.h"

using namespace std::string_literals;

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "not so: %s\n", what);
        ++failures;
    }
}

void expect_text(const std::string& actual, const std::string& wanted) {
    if (actual != wanted) {
        const std::string report = "the log text is:\n" + actual + "\nand not:\n" + wanted + "\n";
        std::fwrite(report.data(), 1, report.size(), stderr);
        ++failures;
    }
}

// The address's and the suite's text count whole, those of the parameters up to their first NUL.
const std::string before_the_move =
    "Capability(offer, Not Hold, silenceSuppSdp=no)\n"
    "\tFiltered=\n"
    "\t-> media(Audio)/Accepted @media.example\0room seven"
    "/snd=32000~32001/rcv=32002~32003/bsnd=1/brcv=1 amrwb=wide opus=full\n"
    "\t   Attributes :"
    "\t\t -> G711alaw / Unknown / framing=20 / vad=0 / echo=0 / mxFraming=0 / MF=101\n"
    "\t   Crypto attributes (1) :\n"
    "\t\ttag=1, algo=ROT\0THIRTEEN, key=(lifetime=7 / mki=90000000 / mkiSize=1)\n"s;

const std::string behind_the_move =
    "Capability(offer, Not Hold, silenceSuppSdp=no)\n"
    "\tFiltered=\n"
    "\t-> media(Audio)/Accepted @public.example"
    "/snd=40000~40001/rcv=40002~40003/bsnd=1/brcv=1 amrwb=wide opus=full\n"
    "\t   Attributes :"
    "\t\t -> G711alaw / Unknown / framing=20 / vad=0 / echo=0 / mxFraming=0 / MF=101\n"
    "\t   Crypto attributes (1) :\n"
    "\t\ttag=1, algo=ROT\0THIRTEEN, key=(lifetime=7 / mki=90000000 / mkiSize=1)\n"s;

const std::string default_media =
    "\t-> media(Nil)/Accepted @nowhere/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
    "\t   Attributes :"
    "\t   Crypto attributes (0) :\n";

std::string text_of(const QOVA_Capability& capability) {
    return static_cast<const std::string>(capability);
}

std::string text_of(const QOVA_Media& media) {
    return static_cast<const std::string>(media);
}

void give_address(QOVA_Media& media, const std::string& name) {
    delete media.address;
    media.address = nullptr;
    media.address = new HostName(name);
}

void fill(QOVA_Capability& capability) {
    capability.offer = true;
    auto* const media = new QOVA_Media;
    capability.filteredMedia.push_back(media);
    media->mediaType = QOVA_Media::MT_AUDIO;
    give_address(*media, "media.example\0room seven"s);
    media->sndPort = 32000;
    media->sndPort2 = 32001;
    media->rcvPort = 32002;
    media->rcvPort2 = 32003;
    media->amrwbParam->text = " amrwb=wide\0band"s;
    media->opusParam->text = " opus=full\0band"s;
    auto* const audio = new QOVA_AudioAttribute;
    media->attributes.push_back(audio);
    audio->codec = CODEC_G711_ALAW;
    audio->framing = 20;
    audio->mf = static_cast<QOVA_Codec>(101);
    auto* const crypto = new QOVA_Crypto;
    media->cryptos.push_back(crypto);
    media->cryptoCount = 1;
    crypto->tag = 1;
    crypto->algo = SUITE_ROT13;
    QOVA_CryptoKey key = {};
    key.lifetime = 7;
    key.mkiSize = 1;
    key.mki[0] = 9;
    crypto->keys.push_back(key);
}

void copies_are_whole() {
    QOVA_Capability assigned;
    {
        QOVA_Capability source;
        fill(source);
        const QOVA_Capability copy(source);
        expect(copy.filteredMedia.front()->address != source.filteredMedia.front()->address,
               "a copy has an address of its own");
        assigned.filteredMedia.push_back(new QOVA_Media);
        assigned = copy;
    }
    expect_text(text_of(assigned), before_the_move);
}

void ports_move() {
    QOVA_Capability capability;
    fill(capability);
    const HostName there("public.example");
    const HostName here("media.example\0room seven"s);
    capability.setPublicAddrPort(UDPAddr{9, &there}, 40000, 7000);
    expect_text(text_of(capability), behind_the_move);
    capability.setLocalAddrPort(UDPAddr{9, &here}, 40000, 7000);
    expect_text(text_of(capability), before_the_move);
}

void equality_asks_the_address() {
    QOVA_Media left;
    QOVA_Media right;
    delete left.amrwbParam;
    delete left.opusParam;
    left.amrwbParam = right.amrwbParam;
    left.opusParam = right.opusParam;

    expect(left == right, "media that share their parameter objects are equal");
    give_address(left, "Media.Example");
    expect(!(left == right), "media of different addresses are not equal");
    give_address(right, "media.example");
    expect(left == right, "the address says that letter case is all the same");

    left.amrwbParam = nullptr;
    left.opusParam = nullptr;
}

void muteness_asks_the_address() {
    QOVA_Media media;
    expect_text(text_of(media), default_media);
    expect(media.address != &IPAddress::IpAddressAny, "a media has an address of its own");
    expect(media.isMute(), "a media without a receive port is mute");
    media.rcvPort = 1;
    expect(media.isMute(), "a media without a destination is mute");
    give_address(media, "media.example");
    expect(!media.isMute(), "a media with a destination and a receive port is not mute");
}

}  // namespace

int main() {
    copies_are_whole();
    ports_move();
    equality_asks_the_address();
    muteness_asks_the_address();
    expect(Counted::alive == 0, "all objects of the companion are freed, and once");
    if (failures == 0) {
        std::puts("libqova works with another companion");
    }
    return failures == 0 ? 0 : 1;
}
