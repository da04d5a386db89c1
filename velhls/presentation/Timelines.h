// Internal to the library, not installed: what two media playlists say of the same time.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "velhls/presentation/PresentationPlaylist.h"

namespace velhls {

/// How the segments of two playlists are brought together.
enum class Alignment : std::uint8_t {
    none,       ///< there is nothing to go by
    byStart,    ///< both have their first segments
    byDate,     ///< both have dates
    bySequence  ///< the segments of one media sequence number last as long: so they seem to be the same
};

[[nodiscard]] Alignment alignmentOf(const PresentationPlaylist& left, const PresentationPlaylist& right);

/// The places of segments of two playlists.
struct SegmentPair {
    std::size_t left = 0;
    std::size_t right = 0;
};

/// The first segments that cover the same time, for longer than what both leave uncertain, and have other discontinuity
/// sequence numbers.
[[nodiscard]] std::optional<SegmentPair> findOtherDiscontinuity(const PresentationPlaylist& left,
                                                                const PresentationPlaylist& right,
                                                                Alignment alignment);

/// Seconds that one of them has and the other has not: at the beginning or at the end, whichever is longer. Nothing where
/// that is not known.
[[nodiscard]] std::optional<double> contentOfOneAlone(const PresentationPlaylist& left,
                                                      const PresentationPlaylist& right, Alignment alignment);

/// The first segment of the right one whose date is not that of the left one at the same time, by more than what is
/// uncertain.
[[nodiscard]] std::optional<SegmentPair> findOtherDate(const PresentationPlaylist& left,
                                                       const PresentationPlaylist& right,
                                                       Alignment alignment);

/// The segment that starts nearest to a time in seconds since the start of the playlist, which must have one.
[[nodiscard]] std::size_t nearestSegment(const PresentationPlaylist& playlist, double time);

}  // namespace velhls
