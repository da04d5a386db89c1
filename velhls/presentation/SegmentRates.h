// Internal to the library, not installed: the bit rates of a media playlist, as far as its text tells.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace velhls {

/// What a segment lasts and holds.
struct SizedSegment {
    /// Seconds.
    double duration = 0.0;
    double bits = 0.0;
};

/// A set of segments that follow each other.
struct SegmentWindow {
    std::size_t first = 0;
    /// The one after the last.
    std::size_t end = 0;
    /// Bits per second.
    double rate = 0.0;
};

/// The peak segment bit rate (RFC 8216, section 4.1): that of the fastest set of segments that follow each other and last
/// between 0.5 and 1.5 target durations. Nothing where there is no such set.
[[nodiscard]] std::optional<SegmentWindow> findPeakRate(const std::vector<SizedSegment>& segments,
                                                        double targetDuration);

}  // namespace velhls
