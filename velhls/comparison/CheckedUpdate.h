// Internal to the library, not installed: what the rules of updates look at.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/comparison/DateRanges.h"
#include "velhls/comparison/Difference.h"
#include "velhls/comparison/MediaVersion.h"
#include "velhls/comparison/SegmentMatch.h"
#include "velhls/standard/StandardFindings.h"
#include "velhls/standard/StandardRule.h"

namespace velhls {

/// Two versions of a media playlist, and what became of the segments.
class CheckedUpdate {
  public:
    /// All must outlive it.
    CheckedUpdate(const MediaVersion& before, const MediaVersion& now, const SegmentMatch& match,
                  const DateRanges& rangesBefore, const DateRanges& rangesNow,
                  const std::vector<Difference>& differences, std::optional<double> elapsedSeconds);

    const MediaVersion& before;
    const MediaVersion& now;
    const SegmentMatch& match;
    const DateRanges& rangesBefore;
    const DateRanges& rangesNow;
    const std::vector<Difference>& differences;
    std::optional<double> elapsedSeconds;

    /// How many segments went from the start of the old version, and, by their places in it, which others did.
    std::size_t removedAtStart = 0;
    std::vector<std::size_t> removedElsewhere;
    /// The segments that stand before ones that were listed, by their places in the new version.
    std::vector<std::size_t> inserted;
    /// How many segments come after those that were listed.
    std::uint64_t addedAtEnd = 0;

    [[nodiscard]] bool hasRemoved() const { return removedAtStart > 0 || !removedElsewhere.empty(); }
    /// EXT-X-MEDIA-SEQUENCE is lower than it was, or gone though nothing was removed.
    [[nodiscard]] bool wentBack() const;
    /// Segments went, and the new version has no EXT-X-MEDIA-SEQUENCE to say so.
    [[nodiscard]] bool lacksNumber() const;
    /// More segments may be added to the new version.
    [[nodiscard]] bool isLive() const;

    /// Tells at a place of the new version, and at one of the old version with what is said of that. Where a line is 0 the first one
    /// stands for it.
    void tell(const Tell& tell, const Spot& place, const Spot& old, std::string_view expected,
              std::string_view seen, std::string_view oldMessage) const;

    /// The tag in the version, if it is there; else the first line.
    [[nodiscard]] static Spot spotOf(const MediaVersion& version, std::size_t tag);
    /// The URI of a segment.
    [[nodiscard]] static Spot spotOfSegment(const MediaVersion& version, std::size_t index);

  private:
    void countSegments();
};

/// Calls `visit` for each change of one aspect.
template <typename Visit>
void forEachOf(const CheckedUpdate& update, Aspect aspect, Visit visit) {
    for (const Difference& difference : update.differences) {
        if (difference.aspect == aspect) visit(difference);
    }
}

/// What is said of the old place of a change: "duration "6.006" before".
[[nodiscard]] std::string saidBefore(const Difference& difference);

using UpdateEntry = StandardEntry<CheckedUpdate>;

// The tables. Each stands beside its functions, in the file of its name.
/// Those that are asked of every update, even of one that has nothing in common with what was before.
[[nodiscard]] StandardTable<CheckedUpdate> wholeUpdateRules();
[[nodiscard]] StandardTable<CheckedUpdate> segmentUpdateRules();
[[nodiscard]] StandardTable<CheckedUpdate> sequenceUpdateRules();
[[nodiscard]] StandardTable<CheckedUpdate> playlistUpdateRules();
[[nodiscard]] StandardTable<CheckedUpdate> dateRangeUpdateRules();

}  // namespace velhls
