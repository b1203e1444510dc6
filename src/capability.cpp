#include "qova/capability.h"

#include <algorithm>

#include "owned_list.h"
#include "qova/attributes.h"
#include "socket/address.h"
#include "text.h"

namespace {

void shift_ports(QOVA_Media& media, unsigned short shift) {
    // Modulo 65536, and for port 0 too, so that the reverse move restores every port.
    for (unsigned short* port :
         {&media.sndPort, &media.rcvPort, &media.sndPort2, &media.rcvPort2}) {
        *port = static_cast<unsigned short>(*port + shift);
    }
}

void move_media(const std::list<QOVA_Media*>& list, const UDPAddr& addr, unsigned short audio_shift,
                unsigned short fax_shift) {
    for (QOVA_Media* media : list) {
        if (media->mediaStatus == QOVA_Media::MS_REJECTED) {
            continue;
        }
        delete media->address;
        media->address = nullptr;
        media->address = INetAddress::Clone(addr.ipAddress);
        if (media->mediaType == QOVA_Media::MT_AUDIO) {
            shift_ports(*media, audio_shift);
        } else if (media->mediaType == QOVA_Media::MT_FAX) {
            shift_ports(*media, fax_shift);
        }
    }
}

// Returns the first media of a kind in which a search succeeds, or null.
template <class Wanted>
QOVA_Media* find_media(const std::list<QOVA_Media*>& list, QOVA_Media::e_MediaType type,
                       Wanted wanted) {
    for (QOVA_Media* media : list) {
        if (media->mediaType == type && media->find(wanted) != nullptr) {
            return media;
        }
    }
    return nullptr;
}

}  // namespace

QOVA_Capability::QOVA_Capability(const QOVA_Capability& other) : QOVA_Capability() {
    marked = other.marked;
    offer = other.offer;
    hold = other.hold;
    spare1 = other.spare1;
    spare2 = other.spare2;
    spare3 = other.spare3;
    silenceSuppSdp = other.silenceSuppSdp;
    passThrough = other.passThrough;
    qova::append_clones(filteredMedia, other.filteredMedia);
}

QOVA_Capability::~QOVA_Capability() {
    qova::free_all(filteredMedia);
}

// Self-assignment empties filteredMedia: a promise of the header, so there is no guard.
QOVA_Capability& QOVA_Capability::operator=(const QOVA_Capability& other) {
    marked = other.marked;
    offer = other.offer;
    hold = other.hold;
    spare1 = other.spare1;
    silenceSuppSdp = other.silenceSuppSdp;
    qova::free_all(filteredMedia);
    passThrough = other.passThrough;
    spare2 = other.spare2;
    spare3 = other.spare3;
    // Not clone(): assignment makes plain media, whatever the class of the source.
    qova::append_copies(filteredMedia, other.filteredMedia,
                        [](const QOVA_Media& media) { return new QOVA_Media(media); });
    return *this;
}

bool QOVA_Capability::operator==(const QOVA_Capability& other) const {
    if (offer != other.offer || hold != other.hold || silenceSuppSdp != other.silenceSuppSdp) {
        return false;
    }
    if (!passThrough.empty() || !other.passThrough.empty()) {
        return passThrough == other.passThrough;  // the media are not compared
    }
    return filteredMedia.size() == other.filteredMedia.size() &&
           std::equal(filteredMedia.begin(), filteredMedia.end(), other.filteredMedia.begin(),
                      qova::equal_objects);
}

std::list<QOVA_Media*> QOVA_Capability::find(QOVA_Media::e_MediaType type,
                                             QOVA_Media::e_MediaStatus status) const {
    std::list<QOVA_Media*> found;
    for (QOVA_Media* media : filteredMedia) {
        if (media->mediaType == type &&
            (status == QOVA_Media::MS_UNKNOWN || media->mediaStatus == status)) {
            found.push_back(media);
        }
    }
    return found;
}

QOVA_Media* QOVA_Capability::find(QOVA_Codec codec) const {
    return find_media(filteredMedia, QOVA_Media::MT_AUDIO, codec);
}

QOVA_Media* QOVA_Capability::find(QOVA_FaxTransport transport) const {
    return find_media(filteredMedia, QOVA_Media::MT_FAX, transport);
}

QOVA_AudioAttribute* QOVA_Capability::find_mf(QOVA_Codec codec) const {
    for (const QOVA_Media* media : filteredMedia) {
        if (media->mediaType == QOVA_Media::MT_AUDIO) {
            if (QOVA_AudioAttribute* const found = media->find_mf(codec)) {
                return found;
            }
        }
    }
    return nullptr;
}

bool QOVA_Capability::isMute() const {
    for (const QOVA_Media* media : filteredMedia) {
        if (media->mediaType == QOVA_Media::MT_AUDIO && media->isMute()) {
            return true;
        }
    }
    return false;
}

void QOVA_Capability::rejectMedia(QOVA_Media::e_MediaType type) {
    for (QOVA_Media* media : filteredMedia) {
        if (media->mediaType == type) {
            media->rcvPort = 0;
            media->sndPort = 0;
            return;
        }
    }
}

void QOVA_Capability::ClearMediaDirection() {
    for (QOVA_Media* media : filteredMedia) {
        if (media->mediaType == QOVA_Media::MT_AUDIO) {
            media->bsnd = false;
            media->brcv = false;
        }
    }
}

void QOVA_Capability::setPublicAddrPort(const UDPAddr& addr, unsigned short audioPort,
                                        unsigned short faxPort) {
    move_media(filteredMedia, addr, static_cast<unsigned short>(audioPort - AUDIO_PORT_BASE),
               static_cast<unsigned short>(faxPort - FAX_PORT_BASE));
}

void QOVA_Capability::setLocalAddrPort(const UDPAddr& addr, unsigned short audioPort,
                                       unsigned short faxPort) {
    move_media(filteredMedia, addr, static_cast<unsigned short>(AUDIO_PORT_BASE - audioPort),
               static_cast<unsigned short>(FAX_PORT_BASE - faxPort));
}

QOVA_Capability::operator const std::string() const {
    std::string text;
    text.reserve(80 + qova::usual_media_length * filteredMedia.size() + passThrough.size());
    text += "Capability(";
    text += offer ? "offer, " : "answer, ";
    text += hold ? "Hold, " : "Not Hold, ";
    text += silenceSuppSdp ? "silenceSuppSdp=yes)" : "silenceSuppSdp=no)";
    if (marked) {
        text += "'";
    }
    if (!filteredMedia.empty()) {
        text += "\n\tFiltered=\n";
        for (const QOVA_Media* media : filteredMedia) {
            qova::append_text(text, *media);
        }
    }
    if (!passThrough.empty()) {
        text += "\n\tPass-through=\n";
        text += passThrough;
        text += "\n";
    }
    return text;
}
