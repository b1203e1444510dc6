#include <iostream>

#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/ownership.h"
#include "socket/address.h"

int main() {
    QOVA_Capability capability;
    capability.offer = true;
    QOVA_Media& audio = qova::append<QOVA_Media>(capability.filteredMedia);
    audio.mediaType = QOVA_Media::MT_AUDIO;
    audio.sndPort = audio.rcvPort = 32000;
    audio.sndPort2 = audio.rcvPort2 = 32001;
    QOVA_AudioAttribute& payload = qova::append<QOVA_AudioAttribute>(audio.attributes);
    payload.codec = CODEC_G711_ALAW;
    payload.framing = 20;
    IPAddress address;
    IPAddress::Parse("203.0.113.5", address);
    capability.setPublicAddrPort(UDPAddr(address, 0), 40000, 7000);
    std::cout << static_cast<const std::string&>(capability);
}
