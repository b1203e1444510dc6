// The test for an object's exact class.

#ifndef QOVA_SRC_EXACT_CLASS_H
#define QOVA_SRC_EXACT_CLASS_H

#include <typeinfo>

namespace qova {

// Whether two type_info of different addresses stand for one class all the same, as those of a
// class that two libraries define apart do.
bool same_class(const std::type_info& left, const std::type_info& right);

// Whether an object is of a class, and not of one derived from it.
template <class Class, class Object>
bool is_exactly(const Object& object) {
    return &typeid(object) == &typeid(Class) || same_class(typeid(object), typeid(Class));
}

}  // namespace qova

#endif
