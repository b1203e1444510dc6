#include "allocations.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::size_t live_count = 0;
std::size_t made_count = 0;
std::size_t countdown = 0;  // 0: no failure is requested
bool fail_all = false;
bool refused = false;
std::size_t refused_size = 0;

void* allocate(std::size_t size) {
    if (countdown != 0 && --countdown == 0) {
        refused = true;
        refused_size = size;
        countdown = fail_all ? 1 : 0;
        throw allocations::Refusal();
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    std::memset(block, 0xa5, size);  // reveals members that no constructor sets
    ++live_count;
    ++made_count;
    return block;
}

void release(void* block) noexcept {
    if (block != nullptr) {
        --live_count;
        std::free(block);
    }
}

}  // namespace

std::size_t allocations::live() {
    return live_count;
}

std::size_t allocations::made() {
    return made_count;
}

allocations::Failure::Failure(std::size_t nth, Extent extent) {
    countdown = nth;
    fail_all = extent == FROM_THERE_ON;
    refused = false;
}

allocations::Failure::~Failure() {
    countdown = 0;
}

bool allocations::Failure::consumed() {
    return refused;
}

std::size_t allocations::Failure::size() {
    return refused_size;
}

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    release(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    release(block);
}
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
    release(block);
}
