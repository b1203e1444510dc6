#include "allocations.h"

#include <cstdlib>
#include <new>

// glibc's own names of the functions that are replaced below.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* block, std::size_t size);

namespace {

std::size_t made = 0;
std::vector<allocations::Event>* record = nullptr;
bool watched = false;

void note(void* block, std::size_t size) {
    watched = false;  // the record allocates too
    made += size != 0 ? 1 : 0;
    if (record != nullptr) {
        record->push_back({block, size});
    }
    watched = true;
}

inline void* noted(void* block, std::size_t size) {
    if (__builtin_expect(watched, false)) {
        note(block, size);
    }
    return block;
}

inline void* allocate(std::size_t size) {
    void* const block = __libc_malloc(size);
    if (__builtin_expect(block == nullptr, false)) {
        throw std::bad_alloc();
    }
    return noted(block, size);
}

inline void release(void* block) {
    noted(block, 0);
    std::free(block);
}

}  // namespace

std::size_t allocations::made_by(const std::function<void()>& operation) {
    made = 0;
    watched = true;
    operation();
    watched = false;
    return made;
}

std::vector<allocations::Event> allocations::events_of(const std::function<void()>& operation) {
    std::vector<Event> events;
    record = &events;
    watched = true;
    operation();
    watched = false;
    record = nullptr;
    return events;
}

void* operator new(std::size_t size) {
    return allocate(size);
}
// The sized one stays libstdc++'s, which hands on to this.
void operator delete(void* block) noexcept {
    release(block);
}

extern "C" void* malloc(std::size_t size) {
    return noted(__libc_malloc(size), size);
}
extern "C" void* calloc(std::size_t count, std::size_t size) {
    return noted(__libc_calloc(count, size), count * size);
}
extern "C" void* realloc(void* block, std::size_t size) {
    return noted(__libc_realloc(block, size), size);
}
