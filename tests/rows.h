// Rows of the tables for parameterised tests. Each row has the name of its test.

#ifndef QOVA_TESTS_ROWS_H
#define QOVA_TESTS_ROWS_H

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <type_traits>

// A value, and its text.
template <class Value>
struct Row {
    const char* name;
    Value value;
    const char* text;
};

template <class Value>
void PrintTo(const Row<Value>& row, std::ostream* out) {
    *out << row.name;
}

// A change to an object, and the text after it.
template <class Class>
using TextRow = Row<void (*)(Class& object)>;

// A member, and a change to it.
template <class Class>
struct Change {
    const char* name;
    void (*apply)(Class& object);
};

template <class Class>
void PrintTo(const Change<Class>& change, std::ostream* out) {
    *out << change.name;
}

// Change::apply for a flag, a number or an enumeration. Changes only the highest bit, which a
// comparison of fewer bits does not see.
template <auto member, class Class>
void flip_highest_bit(Class& object) {
    auto& field = object.*member;
    using Field = std::remove_reference_t<decltype(field)>;
    if constexpr (std::is_same_v<Field, bool>) {
        field = !field;
    } else {
        field = static_cast<Field>(static_cast<unsigned>(field) ^ 1U << (8 * sizeof(Field) - 1));
    }
}

// A way to copy an object.
template <class Class>
struct CopyPath {
    const char* name;
    std::unique_ptr<Class> (*copy)(const Class& source);
};

template <class Class>
void PrintTo(const CopyPath<Class>& path, std::ostream* out) {
    *out << path.name;
}

// For INSTANTIATE_TEST_SUITE_P.
inline constexpr auto name_of_row = [](const auto& info) { return std::string(info.param.name); };

#endif
