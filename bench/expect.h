#ifndef QOVA_BENCH_EXPECT_H
#define QOVA_BENCH_EXPECT_H

#include <cstdio>
#include <cstdlib>

// Ends the program when what is about to be measured is not what it is meant to be.
inline void expect(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "not what was to be measured: %s\n", what);
        std::abort();
    }
}

#endif
