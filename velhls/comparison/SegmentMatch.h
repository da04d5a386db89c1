// Internal to the library, not installed: which segments of two versions are the same.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "velhls/comparison/MediaVersion.h"

namespace velhls {

/// A segment of both versions, by its places in them.
struct SegmentPair {
    std::size_t before;
    std::size_t now;
};

/// The segments that two versions have in common.
struct SegmentMatch {
    /// How the new version stands to the old one.
    enum Relation : std::uint8_t {
        overlapping,  ///< both have segments that the other one has too
        beyond,  ///< all segments of the new version come after those of the old one, as far as it is known
        anew,    ///< the numbers overlap or went back, and no segment is the same: another playlist has begun
    };

    Relation relation = beyond;
    /// In the order of both. A segment that only one version has is in none. The URIs of a pair may differ: then the segment of
    /// that number was replaced.
    std::vector<SegmentPair> pairs;
};

/// By number where all segments agree; else by what is common to both versions, in its order, with what is left between two such
/// segments taken for each other where it is as much. Takes time linear in the segments but for sorting.
[[nodiscard]] SegmentMatch matchSegments(const MediaVersion& before, const MediaVersion& now);

}  // namespace velhls
