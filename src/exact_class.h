// Checks and casts by the dynamic class of an object.

#ifndef QOVA_SRC_EXACT_CLASS_H
#define QOVA_SRC_EXACT_CLASS_H

#include <typeinfo>

namespace qova {

// Returns the object if its dynamic type is exactly `Class`, and null otherwise.
template <class Class, class Object>
const Class* exactly(const Object& object) {
    return typeid(object) == typeid(Class) ? static_cast<const Class*>(&object) : nullptr;
}

// Like `dynamic_cast<Class*>`, with a fast path for the usual case that the object is exactly a
// `Class`: comparing the addresses of the `type_info`s is much cheaper.
template <class Class, class Object>
Class* as(Object* pointer) {
    if (pointer == nullptr) {
        return nullptr;
    }
    const Object& object = *pointer;  // typeid(*pointer) would test for null again
    return __builtin_expect(&typeid(object) == &typeid(Class), true)
               ? static_cast<Class*>(pointer)
               : dynamic_cast<Class*>(pointer);
}

}  // namespace qova

#endif
