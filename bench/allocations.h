// The benchmark programs replace the global allocation functions, and put the C ones of the other
// libraries under the same watch. Unwatched, an allocation costs what it always costs and one test,
// the same for everybody: like libstdc++'s, these functions stand in a shared library.

#ifndef QOVA_BENCH_ALLOCATIONS_H
#define QOVA_BENCH_ALLOCATIONS_H

#include <cstddef>
#include <functional>
#include <vector>

namespace allocations {

// The allocations that an operation makes.
std::size_t made_by(const std::function<void()>& operation);

// A block that was allocated, or one that was freed, whose size is 0.
struct Event {
    void* block;
    std::size_t size;
};

// What an operation allocates and frees, in order.
std::vector<Event> events_of(const std::function<void()>& operation);

}  // namespace allocations

#endif
