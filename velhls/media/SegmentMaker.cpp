#include "velhls/media/SegmentMaker.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <new>

namespace velhls {
namespace {

/// Gives access to the constructor that a reader needs.
struct ReadSegment : VELHLSMediaSegment {
    ReadSegment(std::string_view title, std::string_view uri) : VELHLSMediaSegment(title, uri) {}
};

/// The most that a segment takes together with the control block in front of it: 24 bytes in libstdc++, 32 in
/// libc++.
constexpr std::size_t blockSize = sizeof(VELHLSMediaSegment) + 32;

constexpr std::size_t aligned(std::size_t size) {
    constexpr std::size_t alignment = alignof(std::max_align_t);
    return (size + alignment - 1) / alignment * alignment;
}

}  // namespace

/// Its memory follows right behind the object.
class SegmentSlab {
  public:
    static SegmentSlab* make(std::size_t segments) {
        const std::size_t bytes = segments * blockSize;
        return ::new (::operator new(aligned(sizeof(SegmentSlab)) + bytes)) SegmentSlab(bytes);
    }

    [[nodiscard]] bool hasRoom() const { return bytesLeft_ >= blockSize; }

    [[nodiscard]] void* take(std::size_t bytes) {
        void* const block = next_;
        next_ += bytes;
        bytesLeft_ -= bytes;
        ++taken_;
        return block;
    }

    /// Called for blocks that are not used any more. With the last one the slab goes.
    void release(std::size_t blocks) {
        if (unreleased_.fetch_sub(blocks, std::memory_order_acq_rel) != blocks) return;
        this->~SegmentSlab();
        ::operator delete(this);
    }

    /// No block is taken from here on.
    void close() { release(beyondAllBlocks - taken_); }

  private:
    explicit SegmentSlab(std::size_t bytes) : bytesLeft_(bytes) {}
    ~SegmentSlab() = default;

    /// While blocks can be taken the count never comes to 0, and taking one costs no atomic operation.
    static constexpr std::size_t beyondAllBlocks = std::numeric_limits<std::size_t>::max();

    char* next_ = reinterpret_cast<char*>(this) + aligned(sizeof(SegmentSlab));
    std::size_t bytesLeft_;
    std::size_t taken_ = 0;
    std::atomic<std::size_t> unreleased_{beyondAllBlocks};
};

namespace {

/// The allocator by which std::allocate_shared takes its one block from a slab, and gives it back.
template <typename Block>
class SlabAllocator {
  public:
    using value_type = Block;

    explicit SlabAllocator(SegmentSlab* slab) : slab_(slab) {}
    template <typename Other>
    SlabAllocator(const SlabAllocator<Other>& other) : slab_(other.slab()) {}

    [[nodiscard]] Block* allocate(std::size_t count) {
        static_assert(sizeof(Block) <= blockSize && alignof(Block) <= alignof(double));
        return static_cast<Block*>(slab_->take(count * sizeof(Block)));
    }
    void deallocate(Block* /*block*/, std::size_t /*count*/) { slab_->release(1); }

    [[nodiscard]] SegmentSlab* slab() const { return slab_; }

  private:
    SegmentSlab* slab_;
};

template <typename Block, typename Other>
bool operator==(const SlabAllocator<Block>& left, const SlabAllocator<Other>& right) {
    return left.slab() == right.slab();
}

template <typename Block, typename Other>
bool operator!=(const SlabAllocator<Block>& left, const SlabAllocator<Other>& right) {
    return !(left == right);
}

}  // namespace

SegmentMaker::~SegmentMaker() {
    if (slab_ != nullptr) slab_->close();
}

std::shared_ptr<VELHLSMediaSegment> SegmentMaker::make(std::string_view title, std::string_view uri) {
    return std::allocate_shared<ReadSegment>(SlabAllocator<ReadSegment>(slabWithRoom()), title, uri);
}

std::shared_ptr<VELHLSByteRange> SegmentMaker::make(const VELHLSByteRange& range) {
    return std::allocate_shared<VELHLSByteRange>(SlabAllocator<VELHLSByteRange>(slabWithRoom()), range);
}

SegmentSlab* SegmentMaker::slabWithRoom() {
    // Up to about a kilobyte a block of the heap is had for next to nothing: two of these make a live window.
    constexpr std::size_t fewestSegments = 3;
    constexpr std::size_t mostSegments = 96;
    if (slab_ != nullptr && slab_->hasRoom()) return slab_;
    const std::size_t segments = std::clamp(room_, fewestSegments, mostSegments);
    SegmentSlab* const slab = SegmentSlab::make(segments);
    if (slab_ != nullptr) slab_->close();
    slab_ = slab;
    room_ += segments;
    return slab_;
}

std::shared_ptr<VELHLSMediaSegment> SegmentMaker::makeAlone(std::string_view title, std::string_view uri) {
    return std::make_shared<ReadSegment>(title, uri);
}

}  // namespace velhls
