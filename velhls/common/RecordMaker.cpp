#include "velhls/common/RecordMaker.h"

#include <algorithm>
#include <new>

namespace velhls {

Slab* Slab::make(std::size_t bytes) {
    return ::new (::operator new(bytes)) Slab(bytes);
}

Slab::Slab(std::size_t bytes)
    : next_(reinterpret_cast<char*>(this) + sizeof(Slab)), bytesLeft_(bytes - sizeof(Slab)) {
    static_assert(sizeof(Slab) % alignof(double) == 0);
}

void Slab::destroy() {
    this->~Slab();
    ::operator delete(this);
}

RecordMaker::~RecordMaker() {
    if (slab_ != nullptr) slab_->close();
}

Slab* RecordMaker::newSlab() {
    // Up to about a kilobyte a block of the heap is had for next to nothing: two of these make a live window.
    constexpr std::size_t fewestBytes = 1000;
    // Room for 96 segments, and nothing left over.
    constexpr std::size_t mostBytes = 24640;
    const std::size_t bytes = std::clamp(madeBytes_, fewestBytes, mostBytes);
    Slab* const slab = Slab::make(bytes);
    if (slab_ != nullptr) slab_->close();
    slab_ = slab;
    madeBytes_ += bytes;
    return slab_;
}

}  // namespace velhls
