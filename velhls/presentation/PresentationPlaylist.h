// Internal to the library, not installed: a media playlist of a presentation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "velhls/document/VELHLSStructure.h"
#include "velhls/presentation/PresentationPlace.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {

/// Where a segment stands in its playlist.
struct TimedSegment {
    /// Seconds since the start of the playlist.
    double start = 0.0;
    double duration = 0.0;
    /// Discontinuity sequence number.
    std::uint64_t discontinuity = 0;
    /// Microseconds since the Unix epoch.
    std::optional<std::int64_t> date;
    /// The line of its URI.
    std::uint32_t line = 0;

    [[nodiscard]] double end() const { return start + duration; }
};

/// What the sizes of all segments come to.
struct SegmentRates {
    /// Bits per second. Nothing when no segments last as long as the peak is measured over.
    std::optional<double> peak;
    double average = 0.0;
    /// The first of the segments that the peak was measured over, and their number.
    std::size_t peakSegment = 0;
    std::size_t peakCount = 0;
    /// Whether sizes are those of EXT-X-BITRATE, which may be wrong by a tenth.
    bool isEstimated = false;
};

/// A media playlist that was given, and what rules ask of it.
class PresentationPlaylist {
  public:
    explicit PresentationPlaylist(const PresentationText& text);
    PresentationPlaylist(const PresentationPlaylist&) = delete;
    PresentationPlaylist& operator=(const PresentationPlaylist&) = delete;

    /// What the master playlist names it for.
    struct Roles {
        bool isVariant = false;
        bool isIFrameVariant = false;
        bool isAudio = false;
        bool isVideo = false;
        bool isSubtitles = false;
    };
    Roles roles;

    [[nodiscard]] const PresentationText& text() const { return text_; }
    [[nodiscard]] const CheckedPlaylist& tags() const { return tags_; }
    [[nodiscard]] const VELHLSStructure& structure() const { return structure_; }
    [[nodiscard]] bool has(std::size_t tag) const { return tags_.has(tag); }

    [[nodiscard]] bool hasEnded() const;
    [[nodiscard]] bool isIFrames() const;
    /// A playlist of subtitles or I-frames.
    [[nodiscard]] bool isBesideTheOthers() const { return isIFrames() || roles.isSubtitles; }
    /// EXT-X-PLAYLIST-TYPE, or empty.
    [[nodiscard]] std::string_view type() const;
    /// Whether no segment of it was removed, as far as it tells.
    [[nodiscard]] bool holdsItsStart() const;

    /// The segments with a URI; none where it is not known how long one of them is.
    [[nodiscard]] const std::vector<TimedSegment>& segments() const { return segments_; }
    /// The place after the last of the segments that follow this one without a discontinuity.
    [[nodiscard]] std::size_t runEnd(std::size_t segment) const;
    /// All that it lasts.
    [[nodiscard]] double duration() const { return segments_.empty() ? 0.0 : segments_.back().end(); }
    [[nodiscard]] double targetDuration() const;
    /// How far the start of a segment may be from what is written, since durations are rounded: seconds.
    [[nodiscard]] double roundingAt(std::size_t segment) const {
        constexpr double ofWholeNumbers = 0.5;
        constexpr double ofMilliseconds = 0.0005;
        return (hasWholeDurations_ ? ofWholeNumbers : ofMilliseconds) * static_cast<double>(segment);
    }
    /// Whether durations are written without decimals, and so rounded by up to half a second.
    [[nodiscard]] bool hasWholeDurations() const { return hasWholeDurations_; }
    [[nodiscard]] bool hasDates() const { return !segments_.empty() && segments_.front().date.has_value(); }

    /// Nothing unless the size of each segment is known.
    [[nodiscard]] const std::optional<SegmentRates>& rates() const { return rates_; }

    /// Its first line, for what is missing.
    [[nodiscard]] PresentationPlace top() const;
    /// The value of the first such tag, which must be there.
    [[nodiscard]] PresentationPlace valueOfTag(std::size_t tag) const;
    /// The name of the first such tag, which must be there.
    [[nodiscard]] PresentationPlace nameOfTag(std::size_t tag) const;
    /// The last EXT-X-PROGRAM-DATE-TIME up to a segment, or the segment's URI where there is none.
    [[nodiscard]] PresentationPlace dateOf(std::size_t segment) const;
    /// The URI of a segment.
    [[nodiscard]] PresentationPlace uriOf(const TimedSegment& segment) const;

  private:
    void findSegments();
    void findRates();

    const PresentationText& text_;
    VELHLSStructure structure_;
    CheckedPlaylist tags_;
    std::vector<TimedSegment> segments_;
    bool hasWholeDurations_ = true;
    std::optional<SegmentRates> rates_;
};

}  // namespace velhls
