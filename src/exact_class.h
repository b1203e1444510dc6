// The two questions about an object's class.

#ifndef QOVA_SRC_EXACT_CLASS_H
#define QOVA_SRC_EXACT_CLASS_H

#include <typeinfo>

namespace qova {

// The object, if it is of a class and not of one derived from it; else null.
template <class Class, class Object>
const Class* exactly(const Object& object) {
    return typeid(object) == typeid(Class) ? static_cast<const Class*>(&object) : nullptr;
}

// The object, if it is of a class or of one derived from it; else null, as for null. Nearly always
// it is of the very class, which the address of the type_info tells at once; dynamic_cast, which is
// slow, has the last word.
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
