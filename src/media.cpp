#include "qova/media.h"

#include "exact_class.h"
#include "netconf/sdp.h"
#include "owned_list.h"
#include "qova/attributes.h"
#include "qova/crypto.h"
#include "socket/address.h"
#include "text.h"

namespace {

// Returns the first match among the attributes of `Class` and of derived classes, or null.
template <class Class, class Match>
Class* find_attribute(const std::list<QOVA_MediaAttribute*>& attributes, Match matches) {
    for (QOVA_MediaAttribute* attribute : attributes) {
        Class* const candidate = qova::as<Class>(attribute);
        if (candidate != nullptr && matches(*candidate)) {
            return candidate;
        }
    }
    return nullptr;
}

void copy_directions_and_ports(QOVA_Media& to, const QOVA_Media& from) {
    to.bsnd = from.bsnd;
    to.brcv = from.brcv;
    to.sndPort = from.sndPort;
    to.rcvPort = from.rcvPort;
    to.sndPort2 = from.sndPort2;
    to.rcvPort2 = from.rcvPort2;
}

// Replaces an owned object by a copy. Frees the old one first; the pointer is null if the copy
// throws.
template <class T>
void replace(T*& owned, const T& source) {
    delete owned;
    owned = nullptr;
    owned = new T(source);
}

}  // namespace

QOVA_Media::QOVA_Media() : QOVA_Media(Unfilled()) {
    address = INetAddress::Clone(&IPAddress::IpAddressAny);
    amrwbParam = new Sdp::Sdp_Amrwb_Param;
    opusParam = new Sdp::Sdp_Opus_Param;
}

QOVA_Media::QOVA_Media(const QOVA_Media& other) : QOVA_Media(Unfilled()) {
    mediaStatus = other.mediaStatus;
    mediaType = other.mediaType;
    address = INetAddress::Clone(other.address);
    copy_directions_and_ports(*this, other);
    cryptoCount = other.cryptoCount;
    qova::append_clones(attributes, other.attributes);
    amrwbParam = new Sdp::Sdp_Amrwb_Param(*other.amrwbParam);
    opusParam = new Sdp::Sdp_Opus_Param(*other.opusParam);
    qova::append_clones(cryptos, other.cryptos);
}

QOVA_Media::~QOVA_Media() {
    delete address;
    qova::free_all(attributes);
    delete amrwbParam;
    delete opusParam;
    qova::free_all(cryptos);
}

// Not copy-and-swap: callers can observe that the old objects are freed first, in this order.
QOVA_Media& QOVA_Media::operator=(const QOVA_Media& other) {
    if (this == &other) {
        return *this;
    }
    qova::free_all(attributes);
    qova::free_all(cryptos);
    delete address;
    address = nullptr;
    mediaStatus = other.mediaStatus;
    mediaType = other.mediaType;
    address = INetAddress::Clone(other.address);
    copy_directions_and_ports(*this, other);
    replace(amrwbParam, *other.amrwbParam);
    replace(opusParam, *other.opusParam);
    qova::append_clones(attributes, other.attributes);
    cryptoCount = other.cryptoCount;
    qova::append_clones(cryptos, other.cryptos);
    return *this;
}

QOVA_Media* QOVA_Media::clone() const {
    return new QOVA_Media(*this);
}

bool QOVA_Media::operator==(const QOVA_Media& other) const {
    if (mediaStatus != other.mediaStatus || mediaType != other.mediaType) {
        return false;
    }
    if (*address != other.address->ToString()) {
        return false;
    }
    return bsnd == other.bsnd && brcv == other.brcv && sndPort == other.sndPort &&
           rcvPort == other.rcvPort && sndPort2 == other.sndPort2 && rcvPort2 == other.rcvPort2 &&
           amrwbParam == other.amrwbParam &&
           opusParam == other.opusParam &&  // by identity: a promise of the header
           cryptoCount == other.cryptoCount &&
           qova::equal_side_by_side(attributes, other.attributes, qova::equal_objects) &&
           qova::equal_side_by_side(cryptos, other.cryptos, qova::equal_objects);
}

QOVA_AudioAttribute* QOVA_Media::find(QOVA_Codec codec) const {
    return find_attribute<QOVA_AudioAttribute>(
        attributes, [=](const QOVA_AudioAttribute& audio) { return audio.codec == codec; });
}

QOVA_FaxAttribute* QOVA_Media::find(QOVA_FaxTransport transport) const {
    return find_attribute<QOVA_FaxAttribute>(
        attributes, [=](const QOVA_FaxAttribute& fax) { return fax.transport == transport; });
}

QOVA_AudioAttribute* QOVA_Media::find_mf(QOVA_Codec codec) const {
    return find_attribute<QOVA_AudioAttribute>(
        attributes, [=](const QOVA_AudioAttribute& audio) { return audio.mf == codec; });
}

QOVA_MediaAttribute* QOVA_Media::find(e_AttributeType type, e_MediaStatus status) const {
    for (QOVA_MediaAttribute* attribute : attributes) {
        if (attribute->attributeType == type &&
            (status == MS_UNKNOWN || attribute->status == status)) {
            return attribute;
        }
    }
    return nullptr;
}

bool QOVA_Media::isMute() const {
    return address->IsAny() != 0 || rcvPort == 0;
}

void qova::append_text(std::string& text, const QOVA_Media& media) {
    append(text, "\t-> media(", media.mediaType, ")/", media.mediaStatus, " @");
    text += media.address->ToString();
    append(text, "/snd=", media.sndPort, "~", media.sndPort2, "/rcv=", media.rcvPort, "~",
           media.rcvPort2, "/bsnd=", media.bsnd, "/brcv=", media.brcv);
    // c_str(): a parameter text ends at its first NUL. The address is appended in full length.
    text += static_cast<const std::string>(*media.amrwbParam).c_str();
    text += static_cast<const std::string>(*media.opusParam).c_str();
    append(text, "\n\t   Attributes :");
    for (const QOVA_MediaAttribute* attribute : media.attributes) {
        append_text(text, *attribute);
    }
    append(text, "\t   Crypto attributes (", media.cryptoCount, ") :\n");
    for (const QOVA_Crypto* crypto : media.cryptos) {
        append_text(text, *crypto);
    }
}

QOVA_Media::operator const std::string() const {
    std::string text;
    text.reserve(qova::usual_media_length);
    qova::append_text(text, *this);
    return text;
}
