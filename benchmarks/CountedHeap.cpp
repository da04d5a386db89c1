#include "CountedHeap.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::size_t> bytesNow{0};
std::atomic<std::size_t> bytesMost{0};

/// What a block takes from the heap: its usable bytes and malloc's own word in front of them.
std::size_t sizeOf(void* block) {
    return malloc_usable_size(block) + sizeof(std::size_t);
}

}  // namespace

void* operator new(std::size_t size) {
    void* block = std::malloc(size);
    if (block == nullptr) throw std::bad_alloc();
    const std::size_t now = bytesNow += sizeOf(block);
    if (now > bytesMost) bytesMost = now;
    return block;
}

void operator delete(void* block) noexcept {
    if (block == nullptr) return;
    bytesNow -= sizeOf(block);
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    operator delete(block);
}

namespace heap {

std::size_t bytesHeld() {
    return bytesNow;
}

std::size_t mostBytesHeld() {
    return bytesMost;
}

void forgetTheMost() {
    bytesMost = bytesNow.load();
}

}  // namespace heap
