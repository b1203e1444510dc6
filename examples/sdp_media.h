// What fills the lists of a capability and its media, which own their elements.

#ifndef QOVA_EXAMPLES_SDP_MEDIA_H
#define QOVA_EXAMPLES_SDP_MEDIA_H

#include <list>
#include <memory>

#include "qova/attributes.h"
#include "qova/media.h"

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

}  // namespace sdp

#endif
