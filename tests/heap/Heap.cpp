#include "tests/heap/Heap.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <limits>
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

/// In front of each block, and as far in front of it as its alignment asks for.
struct Head {
    void* start;
    std::size_t size;
};

void* take(std::size_t size, std::size_t alignment) noexcept {
    if (!isGranted()) return nullptr;
    const std::size_t room = std::max(alignment, sizeof(Head));
    if (size > std::numeric_limits<std::size_t>::max() - 2 * room) return nullptr;
    const std::size_t whole = (room + size + alignment - 1) / alignment * alignment;
    char* const start = static_cast<char*>(std::aligned_alloc(alignment, whole));
    if (start == nullptr) return nullptr;
    char* const block = start + room;
    reinterpret_cast<Head*>(block)[-1] = {start, size};
    ++blocks;
    const std::size_t now = bytes += size;
    if (now > mostBytes) mostBytes = now;
    return block;
}

void* takeOrThrow(std::size_t size, std::size_t alignment) {
    void* const block = take(size, alignment);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void give(void* block) noexcept {
    if (block == nullptr) return;
    const Head head = static_cast<Head*>(block)[-1];
    --blocks;
    bytes -= head.size;
    std::free(head.start);
}

constexpr std::size_t usual = alignof(std::max_align_t);

}  // namespace

void* operator new(std::size_t size) {
    return takeOrThrow(size, usual);
}
void* operator new[](std::size_t size) {
    return takeOrThrow(size, usual);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return take(size, usual);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return take(size, usual);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return takeOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return takeOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept {
    return take(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept {
    return take(size, static_cast<std::size_t>(alignment));
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
