// Lists of owning pointers: freeing, copying and comparing them.

#ifndef QOVA_SRC_OWNED_LIST_H
#define QOVA_SRC_OWNED_LIST_H

#include <list>
#include <memory>

namespace qova {

// Frees every element with its node, in list order. Accepts null elements.
template <class T>
void free_all(std::list<T*>& list) {
    while (!list.empty()) {
        delete list.front();
        list.pop_front();
    }
}

// Appends a copy of each element. A unique_ptr holds the copy until its list node exists.
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

// Compares the objects behind two pointers.
inline constexpr auto equal_objects = [](const auto* left, const auto* right) {
    return *left == *right;
};

// Compares pair by pair until the shorter list ends.
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
