// Rows of tables that a parameterised test walks: a name for the test, a value, and its text.

#ifndef QOVA_TESTS_ROWS_H
#define QOVA_TESTS_ROWS_H

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>

template <typename Value>
struct Row {
    const char* name;  // letters, digits and underscores
    Value value;
    const char* text;
};

template <typename Value>
void PrintTo(const Row<Value>& row, std::ostream* out) {
    *out << row.name;
}

// A field of a class, and a change to it.
template <typename Class>
struct Change {
    const char* name;
    void (*apply)(Class& object);
};

template <typename Class>
void PrintTo(const Change<Class>& change, std::ostream* out) {
    *out << change.name;
}

// A way to copy an object.
template <typename Class>
struct CopyPath {
    const char* name;
    std::unique_ptr<Class> (*copy)(const Class& source);
};

template <typename Class>
void PrintTo(const CopyPath<Class>& path, std::ostream* out) {
    *out << path.name;
}

// For INSTANTIATE_TEST_SUITE_P.
inline constexpr auto name_of_row = [](const auto& info) { return std::string(info.param.name); };

#endif
