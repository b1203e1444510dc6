/// @file
/// Helpers for the lists and pointers that own their objects: QOVA_Capability::filteredMedia,
/// QOVA_Media::attributes, QOVA_Media::cryptos, QOVA_Media::address and the two parameter objects.
///
/// A `std::unique_ptr` holds the new object until the model owns it, so nothing leaks when memory
/// runs out. Everything here is inline; libqova exports none of it.

#ifndef QOVA_OWNERSHIP_H
#define QOVA_OWNERSHIP_H

#include <list>
#include <memory>

namespace qova {

/// Appends an object to a list, which owns it from then on. If there is no memory for the list
/// node, throws std::bad_alloc, frees the object and leaves the list as it was.
/// @param list the list of owned objects
/// @param object the object; not null
/// @return the object
template <class Element, class Object>
Object& append(std::list<Element*>& list, std::unique_ptr<Object> object) {
    list.push_back(object.get());
    return *object.release();
}

/// Appends a new, default-constructed object: `append<QOVA_AudioAttribute>(media.attributes)`.
/// Throws std::bad_alloc if memory runs out, and leaves the list as it was.
/// @param list the list of owned objects
/// @return the object
template <class Object, class Element>
Object& append(std::list<Element*>& list) {
    return append(list, std::unique_ptr<Object>(new Object));
}

/// Frees an element and removes it from its list. Never throws.
/// @param list the list of owned objects
/// @param position the element; not the end of the list
/// @return the position of the next element
template <class Element>
typename std::list<Element*>::iterator erase(std::list<Element*>& list,
                                             typename std::list<Element*>::iterator position) {
    delete *position;
    return list.erase(position);
}

/// Replaces an owned object and frees the old one. Never throws: the new object exists before the
/// old one is freed.
///
///     qova::replace(media.address, std::unique_ptr<INetAddress>(INetAddress::Clone(&address)));
///
/// @param owned the pointer, such as QOVA_Media::address; may be null
/// @param object the new object; null if there is none
template <class Owned, class Object>
void replace(Owned*& owned, std::unique_ptr<Object> object) {
    const std::unique_ptr<Owned> old(owned);
    owned = object.release();
}

}  // namespace qova

#endif
