// What is measured. An operation is made for a number of lines, and then run as often in a row as a
// program asks for.

#ifndef QOVA_BENCH_OPERATIONS_H
#define QOVA_BENCH_OPERATIONS_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "offer.h"

namespace operations {

// ONE_OBJECT: the cost has nothing to do with the number of lines.
enum Extent { ALL_LINES, ONE_OBJECT };

using Run = std::function<void(std::size_t times)>;

struct Operation {
    std::string name;  // what is done, a slash, and by whom
    Extent extent;
    std::function<Run(int lines)> make;
};

// The library's, each with its floor and the literal renderer beside it; and sofia-sip's.
std::vector<Operation> of_library();
std::vector<Operation> of_sofia();

// Makes the compiler believe that somebody looks at a value.
template <class T>
void keep(const T& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

// Ends the program when what is about to be measured is not what it is meant to be.
inline void expect(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "not what was to be measured: %s\n", what);
        std::abort();
    }
}

template <class Body>
Run repeat(Body body) {
    return [body = std::move(body)](std::size_t times) mutable {
        for (; times > 0; --times) {
            body();
        }
    };
}

// Two offers to compare.
template <class Compare>
auto on_two_offers(bool equal, Compare compare) {
    return [equal, compare](int lines) {
        const auto left = offer::make(lines, false);
        const auto right = offer::make(lines, false);
        if (!equal) {
            offer::change_last_member(*right);
        }
        return compare(left, right);
    };
}

}  // namespace operations

#endif
