// A program that links to this has its global allocation functions from here, as it would have them
// from libstdc++: in a shared library, and for one test more the same to everybody.

#include "replay.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace {

// A block that was allocated, or one that was freed, whose size is 0.
using Event = std::pair<void*, std::size_t>;

std::vector<Event>* record = nullptr;

void note(void* block, std::size_t size) {
    std::vector<Event>* const events = std::exchange(record, nullptr);  // which allocates too
    events->emplace_back(block, size);
    record = events;
}

}  // namespace

void* operator new(std::size_t size) {
    void* const block = std::malloc(size);
    if (__builtin_expect(block == nullptr, false)) {
        throw std::bad_alloc();
    }
    if (__builtin_expect(record != nullptr, false)) {
        note(block, size);
    }
    return block;
}

// The sized one stays libstdc++'s, which hands on to this.
void operator delete(void* block) noexcept {
    if (__builtin_expect(record != nullptr && block != nullptr, false)) {
        note(block, 0);
    }
    std::free(block);
}

Replay::Replay(const std::function<void()>& operation) {
    std::unordered_map<void*, std::uint32_t> numbers;
    std::vector<std::uint32_t> before;
    for (int run = 0; run < 3; ++run) {
        std::vector<Event> recorded;
        record = &recorded;
        operation();
        record = nullptr;
        before = std::exchange(events, {});
        std::uint32_t count = 0;
        for (const auto& [block, size] : recorded) {
            if (size != 0) {
                numbers[block] = count++;
                events.push_back(2 * static_cast<std::uint32_t>(size));
            } else {
                events.push_back(2 * numbers.at(block) + 1);
            }
        }
    }
    if (events != before) {
        throw std::logic_error("an operation that allocates something else each time");
    }
    for (const std::uint32_t event : events) {
        if (event % 2 == 0) {
            sources.push_back(std::memset(operator new(event / 2), 1, event / 2));
        }
    }
    blocks.resize(sources.size());
    (*this)();
}

Replay::~Replay() {
    std::vector<void*> live(blocks.size());
    std::size_t next = 0;
    for (const std::uint32_t event : events) {
        if (event % 2 == 0) {
            live[next] = blocks[next];
            ++next;
        } else {
            live[event / 2] = nullptr;
        }
    }
    for (std::size_t number = 0; number < blocks.size(); ++number) {
        operator delete(live[number]);
        operator delete(sources[number]);
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
