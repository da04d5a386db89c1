#include "tests/heap/Heap.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <malloc.h>
#include <new>

namespace {

constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

std::atomic<std::size_t> blocks{0};
std::atomic<std::size_t> bytes{0};
std::atomic<std::size_t> mostBytes{0};
std::atomic<std::size_t> granted{never};
std::atomic<bool> failsFromThereOn{false};
std::atomic<bool> hasFailed{false};

bool isGranted() {
    if (granted == never) return true;
    if (granted > 0) {
        --granted;
        return true;
    }
    if (!hasFailed.exchange(true)) return false;
    return !failsFromThereOn;
}

/// What a block takes from the heap: its usable bytes and malloc's own word before them.
std::size_t sizeOf(void* block) {
    return malloc_usable_size(block) + sizeof(std::size_t);
}

/// The block, counted; null stays null.
void* counted(void* block) noexcept {
    if (block == nullptr) return nullptr;
    ++blocks;
    const std::size_t now = bytes += sizeOf(block);
    if (now > mostBytes) mostBytes = now;
    return block;
}

void* take(std::size_t size) noexcept {
    return isGranted() ? counted(std::malloc(size)) : nullptr;
}

void* take(std::size_t size, std::align_val_t alignment) noexcept {
    const auto multiple = static_cast<std::size_t>(alignment);
    if (size > std::numeric_limits<std::size_t>::max() - multiple) return nullptr;
    const std::size_t whole = (size + multiple - 1) / multiple * multiple;
    return isGranted() ? counted(std::aligned_alloc(multiple, whole)) : nullptr;
}

void* orThrow(void* block) {
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void give(void* block) noexcept {
    if (block == nullptr) return;
    --blocks;
    bytes -= sizeOf(block);
    std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
    return orThrow(take(size));
}
void* operator new[](std::size_t size) {
    return orThrow(take(size));
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return take(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return take(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return orThrow(take(size, alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return orThrow(take(size, alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept {
    return take(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept {
    return take(size, alignment);
}

void operator delete(void* block) noexcept {
    give(block);
}
void operator delete[](void* block) noexcept {
    give(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    give(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    give(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    give(block);
}
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
    give(block);
}
void operator delete(void* block, std::align_val_t /*alignment*/) noexcept {
    give(block);
}
void operator delete[](void* block, std::align_val_t /*alignment*/) noexcept {
    give(block);
}
void operator delete(void* block, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    give(block);
}
void operator delete[](void* block, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    give(block);
}
void operator delete(void* block, std::align_val_t /*alignment*/, const std::nothrow_t& /*tag*/) noexcept {
    give(block);
}
void operator delete[](void* block, std::align_val_t /*alignment*/, const std::nothrow_t& /*tag*/) noexcept {
    give(block);
}

namespace heap {

std::size_t blocksInUse() {
    return blocks;
}

std::size_t bytesInUse() {
    return bytes;
}

std::size_t mostBytesInUse() {
    return mostBytes;
}

void forgetTheMost() {
    mostBytes = bytes.load();
}

RunsOut::RunsOut(std::size_t allocations, Failure failure) {
    failsFromThereOn = failure == Failure::fromThereOn;
    hasFailed = false;
    granted = allocations;
}

RunsOut::~RunsOut() {
    granted = never;
}

bool RunsOut::happened() const {
    return hasFailed;
}

}  // namespace heap
