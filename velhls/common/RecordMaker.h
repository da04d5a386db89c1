// Internal to the library, not installed: where the records of a playlist get their memory from.
#pragma once

#include <atomic>
#include <cstddef>
#include <limits>
#include <memory>
#include <utility>

namespace velhls {

/// Memory for a run of records and the control blocks of their shared pointers. It lives as long as one of its
/// blocks is in use or can still be taken; the records themselves come and go one by one.
class Slab {
  public:
    /// A slab of so many bytes, its own members included.
    static Slab* make(std::size_t bytes);

    [[nodiscard]] bool hasRoom(std::size_t bytes) const { return bytesLeft_ >= bytes; }

    /// There must be room.
    [[nodiscard]] void* take(std::size_t bytes) {
        void* const block = next_;
        next_ += bytes;
        bytesLeft_ -= bytes;
        ++taken_;
        return block;
    }

    /// Called for blocks that are not used any more. With the last one the slab goes.
    void release(std::size_t blocks) {
        if (unreleased_.fetch_sub(blocks, std::memory_order_acq_rel) == blocks) destroy();
    }

    /// No block is taken from here on.
    void close() { release(beyondAllBlocks - taken_); }

  private:
    explicit Slab(std::size_t bytes);
    ~Slab() = default;
    void destroy();

    /// While blocks can be taken the count never comes to 0, and taking one costs no atomic operation.
    static constexpr std::size_t beyondAllBlocks = std::numeric_limits<std::size_t>::max();

    /// The memory follows right after the object.
    char* next_;
    std::size_t bytesLeft_;
    std::size_t taken_ = 0;
    std::atomic<std::size_t> unreleased_{beyondAllBlocks};
};

/// The allocator by which std::allocate_shared takes its one block from a slab, and gives it back.
template <typename Block>
class SlabAllocator {
  public:
    using value_type = Block;

    explicit SlabAllocator(Slab* slab) : slab_(slab) {}
    template <typename Other>
    SlabAllocator(const SlabAllocator<Other>& other) : slab_(other.slab()) {}

    [[nodiscard]] Block* allocate(std::size_t count) {
        static_assert(alignof(Block) <= alignof(double) && sizeof(Block) % alignof(double) == 0);
        return static_cast<Block*>(slab_->take(count * sizeof(Block)));
    }
    void deallocate(Block* /*block*/, std::size_t /*count*/) { slab_->release(1); }

    [[nodiscard]] Slab* slab() const { return slab_; }

  private:
    Slab* slab_;
};

template <typename Block, typename Other>
bool operator==(const SlabAllocator<Block>& left, const SlabAllocator<Other>& right) {
    return left.slab() == right.slab();
}

template <typename Block, typename Other>
bool operator!=(const SlabAllocator<Block>& left, const SlabAllocator<Other>& right) {
    return !(left == right);
}

/// Makes records, one after the other, out of slabs: a fraction of the calls to the heap, and neighbours in the playlist
/// are neighbours in memory. The first slab is small, since most playlists that are parsed are a live window of a
/// few segments, or a master playlist of a few variants; the next ones grow.
///
/// Used by one thread; the records may be released by any.
class RecordMaker {
  public:
    RecordMaker() = default;
    ~RecordMaker();
    RecordMaker(const RecordMaker&) = delete;
    RecordMaker& operator=(const RecordMaker&) = delete;

    template <typename Record, typename... Arguments>
    [[nodiscard]] std::shared_ptr<Record> make(Arguments&&... arguments) {
        Slab* const slab = slabWithRoom(sizeof(Record) + mostControlBytes);
        return std::allocate_shared<Record>(SlabAllocator<Record>(slab),
                                            std::forward<Arguments>(arguments)...);
    }

  private:
    /// A control block takes 24 bytes in libstdc++, 32 in libc++.
    static constexpr std::size_t mostControlBytes = 32;

    [[nodiscard]] Slab* slabWithRoom(std::size_t bytes) {
        return slab_ != nullptr && slab_->hasRoom(bytes) ? slab_ : newSlab();
    }
    [[nodiscard]] Slab* newSlab();

    Slab* slab_ = nullptr;
    /// The bytes of all slabs that were made so far.
    std::size_t madeBytes_ = 0;
};

/// A record out of the maker's memory; without a maker, with memory of its own.
template <typename Record, typename... Arguments>
[[nodiscard]] std::shared_ptr<Record> makeRecord(RecordMaker* maker, Arguments&&... arguments) {
    return maker != nullptr ? maker->make<Record>(std::forward<Arguments>(arguments)...)
                            : std::make_shared<Record>(std::forward<Arguments>(arguments)...);
}

}  // namespace velhls
