// Internal to the library, not installed: where the segments of a playlist get their memory from.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "velhls/media/VELHLSByteRange.h"
#include "velhls/media/VELHLSMediaSegment.h"

namespace velhls {

/// Memory for a run of segments and the control blocks of their shared pointers. It lives as long as one of
/// its blocks is in use or can still be taken; the segments themselves come and go one by one.
class SegmentSlab;

/// Makes segments and their byte ranges, one after the other, out of slabs: a fraction of the calls to the heap, and
/// neighbours in the playlist are neighbours in memory. The first slab is small, since most playlists that
/// are parsed are a live window of a few segments; the next ones grow.
///
/// Used by one thread; the segments may be released by any.
class SegmentMaker {
  public:
    SegmentMaker() = default;
    ~SegmentMaker();
    SegmentMaker(const SegmentMaker&) = delete;
    SegmentMaker& operator=(const SegmentMaker&) = delete;

    /// A segment with this title and URI, and all else empty.
    [[nodiscard]] std::shared_ptr<VELHLSMediaSegment> make(std::string_view title, std::string_view uri);

    [[nodiscard]] std::shared_ptr<VELHLSByteRange> make(const VELHLSByteRange& range);

    /// A segment with memory of its own.
    [[nodiscard]] static std::shared_ptr<VELHLSMediaSegment> makeAlone(std::string_view title,
                                                                       std::string_view uri);

  private:
    SegmentSlab* slabWithRoom();

    SegmentSlab* slab_ = nullptr;
    /// How many segments the slabs that were made so far had room for.
    std::size_t room_ = 0;
};

}  // namespace velhls
