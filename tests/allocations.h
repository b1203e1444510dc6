// Replaces the global allocation functions: these count allocations, and fail on request.

#ifndef QOVA_TESTS_ALLOCATIONS_H
#define QOVA_TESTS_ALLOCATIONS_H

#include <cstddef>
#include <new>

namespace allocations {

// Returns the number of blocks that are allocated and not yet freed.
std::size_t live();

// Returns the number of allocations so far, without failed ones.
std::size_t made();

// What a failing allocation throws, as an allocator may throw a class of its own.
class Refusal : public std::bad_alloc {};

// While an object of this class lives, allocations fail with a Refusal: the n-th from now on,
// counted from 1, and either only that one or all from there on. One object at a time.
class Failure {
public:
    enum Extent { ONCE, FROM_THERE_ON };

    explicit Failure(std::size_t nth, Extent extent = ONCE);
    ~Failure();
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;

    // Returns true if the n-th allocation was attempted, and so failed.
    static bool consumed();

    // Returns the size of the last allocation that failed.
    static std::size_t size();
};

}  // namespace allocations

#endif
