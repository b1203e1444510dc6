#include "replay.h"

#include <cstring>
#include <new>
#include <unordered_map>

#include "allocations.h"
#include "expect.h"

Replay::Replay(const std::function<void()>& operation) {
    std::unordered_map<void*, std::uint32_t> numbers;
    std::uint32_t count = 0;
    for (const allocations::Event& event : allocations::events_of(operation)) {
        if (event.size != 0) {
            numbers[event.block] = count++;
        } else {
            numbers.erase(event.block);
        }
    }
    blocks.resize(count);
    stays.resize(count);
    for (const auto& block : numbers) {
        stays[block.second] = true;
    }

    std::vector<bool> live = stays;
    std::uint32_t next = 0;
    for (const allocations::Event& event : allocations::events_of(operation)) {
        if (event.size != 0) {
            expect(next < count && !live[next], "allocations that are the same each time");
            live[next] = true;
            numbers[event.block] = next++;
            events.push_back(2 * event.size & UINT32_MAX);
            sources.push_back(std::memset(operator new(event.size), 1, event.size));
        } else if (event.block != nullptr) {
            const auto block = numbers.find(event.block);
            expect(block != numbers.end() && live[block->second], "frees of what was allocated");
            live[block->second] = false;
            events.push_back(2 * block->second + 1);
        }
    }
    expect(next == count && live == stays, "an operation that leaves as much as it finds");
    // After all sources, for the two to lie in memory as an object and its copy do.
    next = 0;
    for (const std::uint32_t event : events) {
        if (event % 2 == 0) {
            if (stays[next]) {
                blocks[next] = operator new(event / 2);
            }
            ++next;
        }
    }
}

Replay::~Replay() {
    for (std::size_t number = 0; number < blocks.size(); ++number) {
        operator delete(sources[number]);
        if (stays[number]) {
            operator delete(blocks[number]);
        }
    }
}

void Replay::operator()() {
    void** const all = blocks.data();
    void** next = all;
    void* const* source = sources.data();
    for (const std::uint32_t event : events) {
        if (event % 2 == 0) {
            *next = operator new(event / 2);
            std::memcpy(*next++, *source++, event / 2);
        } else {
            operator delete(all[event / 2]);
        }
    }
}
