// The code of public-address.md: moves an offer behind a public address and back.

#include <iostream>
#include <string>

#include "qova/capability.h"
#include "qova/ownership.h"
#include "socket/address.h"

namespace {

void add_media(QOVA_Capability& capability, QOVA_Media::e_MediaType type, unsigned short port) {
    QOVA_Media& media = qova::append<QOVA_Media>(capability.filteredMedia);
    media.mediaType = type;
    media.mediaStatus = port == 0 ? QOVA_Media::MS_REJECTED : QOVA_Media::MS_ACCEPTED;
    media.sndPort = media.rcvPort = port;
}

// [fits]
// Returns true if a port stays in the range 1 to 65535 when its base moves.
bool fits(unsigned short port, unsigned short from, unsigned short to) {
    const int moved = port - from + to;
    return moved >= 1 && moved <= 65535;
}
// [fits]

}  // namespace

int main() {
    // A line for voice, one for fax, and one for voice that was rejected.
    QOVA_Capability offer;
    offer.offer = true;
    add_media(offer, QOVA_Media::MT_AUDIO, 32010);
    add_media(offer, QOVA_Media::MT_FAX, 6666);
    add_media(offer, QOVA_Media::MT_AUDIO, 0);

    // [endpoints]
    IPAddress public_ip;
    IPAddress local_ip;
    if (!IPAddress::Parse("203.0.113.5", public_ip) || !IPAddress::Parse("10.0.0.7", local_ip)) {
        return 1;
    }
    const UDPAddr outside(public_ip, 0);  // the port is not used
    const UDPAddr inside(local_ip, 0);
    // [endpoints]

    offer.setLocalAddrPort(inside, QOVA_Capability::AUDIO_PORT_BASE,
                           QOVA_Capability::FAX_PORT_BASE);
    std::cout << static_cast<const std::string&>(offer) << "--\n";

    // [move]
    const unsigned short audio_base = 40000;  // forwarded to 32000 and up
    const unsigned short fax_base = 7000;     // forwarded to 6666 and up

    const QOVA_Media& audio = *offer.filteredMedia.front();
    if (!fits(audio.rcvPort, QOVA_Capability::AUDIO_PORT_BASE, audio_base)) {
        return 1;  // the port would wrap around
    }
    offer.setPublicAddrPort(outside, audio_base, fax_base);
    // [move]
    std::cout << static_cast<const std::string&>(offer) << "--\n";

    // [back]
    offer.setLocalAddrPort(inside, audio_base, fax_base);
    // [back]
    std::cout << static_cast<const std::string&>(offer);
}
