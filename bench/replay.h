// The floor of an operation that allocates and frees.

#ifndef QOVA_BENCH_REPLAY_H
#define QOVA_BENCH_REPLAY_H

#include <cstdint>
#include <functional>
#include <vector>

// The allocations and frees of an operation, as bare as they can be made: same sizes, same order,
// and a block of the same size to copy into each new one.
class Replay {
public:
    // Records what the operation does when it is repeated. What it leaves allocated it must free
    // when it is run again, as an assignment does.
    explicit Replay(const std::function<void()>& operation);
    ~Replay();
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

    void operator()();

private:
    std::vector<std::uint32_t> events;  // an allocation: 2 * size; a free: 2 * number + 1
    std::vector<void*> blocks;          // by the number of their allocation, as are these:
    std::vector<void*> sources;         // what is copied into a block
};

#endif
