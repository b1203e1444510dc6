// The test program replaces the global allocation functions: it counts, and fails on request.

#ifndef QOVA_TESTS_ALLOCATIONS_H
#define QOVA_TESTS_ALLOCATIONS_H

#include <cstddef>
#include <new>

namespace allocations {

// Blocks that were allocated and not freed yet.
std::size_t live();

// Allocations made so far, failed ones not counted.
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

    // Whether the n-th allocation was asked for, and so refused.
    static bool consumed();

    // The size of the block that was refused last.
    static std::size_t size();
};

}  // namespace allocations

#endif
