// What fills the lists of a capability and its media, which own their elements.

#ifndef QOVA_TOOLS_SDP_MEDIA_H
#define QOVA_TOOLS_SDP_MEDIA_H

#include <list>
#include <memory>

#include "qova/attributes.h"
#include "qova/media.h"
#include "socket/address.h"

namespace sdp {

template <class T, class Base>
T& append(std::list<Base*>& list, std::unique_ptr<T> object) {
    list.push_back(object.get());
    return *object.release();
}

template <class T>
T& append_attribute(QOVA_Media& media, QOVA_Media::e_AttributeType type) {
    T& attribute = append(media.attributes, std::make_unique<T>());
    attribute.attributeType = type;
    attribute.status = media.mediaStatus;
    return attribute;
}

// Replaces the address that a media owns.
inline void set_address(QOVA_Media& media, const INetAddress& address) {
    INetAddress* const copy = address.Copy();
    delete media.address;
    media.address = copy;
}

}  // namespace sdp

#endif
