#include "fuzz/Memory.h"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::size_t allocated = 0;
std::size_t peak = 0;

void* counted(std::size_t size) noexcept {
    void* const block = std::malloc(std::max<std::size_t>(size, 1));
    if (block == nullptr) return nullptr;
    allocated += malloc_usable_size(block);
    peak = std::max(peak, allocated);
    return block;
}

void release(void* block) noexcept {
    if (block == nullptr) return;
    allocated -= malloc_usable_size(block);
    std::free(block);
}

}  // namespace

namespace memory {

std::size_t startPeak() {
    peak = allocated;
    return allocated;
}

std::size_t peakSince(std::size_t start) {
    return peak > start ? peak - start : 0;
}

}  // namespace memory

void* operator new(std::size_t size) {
    void* const block = counted(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void* operator new(std::size_t size, const std::nothrow_t& /*unused*/) noexcept {
    return counted(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& /*unused*/) noexcept {
    return counted(size);
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

void operator delete(void* block, const std::nothrow_t& /*unused*/) noexcept {
    release(block);
}

void operator delete[](void* block, const std::nothrow_t& /*unused*/) noexcept {
    release(block);
}
