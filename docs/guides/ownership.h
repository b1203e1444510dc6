// What all guides use to build media by hand.

#ifndef QOVA_GUIDES_OWNERSHIP_H
#define QOVA_GUIDES_OWNERSHIP_H

#include <list>
#include <memory>

#include "qova/media.h"
#include "socket/address.h"

// [append]
// Appends a new object, and frees it if there is no memory for the list's node.
template <class T, class Element>
T& append(std::list<Element*>& list) {
    std::unique_ptr<T> object(new T);
    list.push_back(object.get());
    return *object.release();
}
// [append]

// [address]
// Replaces an owned object: makes the new one, frees the old one.
inline void set_address(QOVA_Media& media, const INetAddress& address) {
    INetAddress* const copy = INetAddress::Clone(&address);
    delete media.address;
    media.address = copy;
}
// [address]

#endif
