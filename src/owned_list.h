// Lists of owned pointers, and the comparison of two lists.

#ifndef QOVA_SRC_OWNED_LIST_H
#define QOVA_SRC_OWNED_LIST_H

#include <list>
#include <memory>

namespace qova {

// Frees every element, in list order, each with its node. Null elements are passed over.
template <class T>
void free_all(std::list<T*>& list) {
    while (!list.empty()) {
        delete list.front();
        list.pop_front();
    }
}

// Appends what `copy` makes of each element; the guard holds it until its node exists.
template <class T, class Copy>
void append_copies(std::list<T*>& to, const std::list<T*>& from, Copy copy) {
    for (const T* element : from) {
        std::unique_ptr<T> made(copy(*element));
        to.push_back(made.get());
        made.release();
    }
}

template <class T>
void append_clones(std::list<T*>& to, const std::list<T*>& from) {
    append_copies(to, from, [](const T& element) { return element.clone(); });
}

// Compares what two pointers point to.
inline constexpr auto equal_objects = [](const auto* left, const auto* right) {
    return *left == *right;
};

// Compares side by side until one list ends: a list equals any that starts with it.
template <class T, class Equal>
bool equal_side_by_side(const std::list<T>& left, const std::list<T>& right, Equal equal) {
    for (auto l = left.begin(), r = right.begin(); l != left.end() && r != right.end(); ++l, ++r) {
        if (!equal(*l, *r)) {
            return false;
        }
    }
    return true;
}

}  // namespace qova

#endif
