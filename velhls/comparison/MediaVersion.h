// Internal to the library, not installed: a version of a media playlist.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSStructure.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {

/// What makes a segment the same as another one: where its bytes are.
struct SegmentKey {
    std::string_view uri;
    /// The offset and the length of its byte range, or the most that there is.
    std::uint64_t offset = UINT64_MAX;
    std::uint64_t length = UINT64_MAX;
};

[[nodiscard]] bool operator==(const SegmentKey& left, const SegmentKey& right);
[[nodiscard]] bool operator<(const SegmentKey& left, const SegmentKey& right);

/// A version, and its segments with a URI. The document must outlive it.
class MediaVersion {
  public:
    explicit MediaVersion(const VELHLSDocument& document);

    [[nodiscard]] const VELHLSDocument& document() const { return structure_.document(); }
    [[nodiscard]] const CheckedPlaylist& playlist() const { return playlist_; }

    [[nodiscard]] std::size_t segmentCount() const { return playlist_.segmentCount(); }
    [[nodiscard]] VELHLSStructure::Segment segment(std::size_t index) const {
        return structure_.segment(index);
    }
    [[nodiscard]] VELHLSLine uriLine(std::size_t index) const { return document().line(lastLines_[index]); }
    [[nodiscard]] SegmentKey keyOf(std::size_t index) const;

    /// The first and the last line of what is written for a segment: all lines after the segment before, those of the
    /// playlist and comments among them.
    [[nodiscard]] std::size_t firstLine(std::size_t index) const {
        return index == 0 ? firstLine_ : std::size_t{lastLines_[index - 1]} + 1;
    }
    [[nodiscard]] std::size_t lastLine(std::size_t index) const { return lastLines_[index]; }
    /// That as one text.
    [[nodiscard]] std::string_view textOf(std::size_t index) const;
    /// How often a tag stands there.
    [[nodiscard]] std::size_t countOf(std::size_t tag, std::size_t index) const;

    /// The media sequence number of the first segment that is listed, or that would be.
    [[nodiscard]] std::uint64_t firstNumber() const { return firstNumber_; }
    [[nodiscard]] std::uint64_t numberOf(std::size_t index) const { return firstNumber_ + index; }
    /// That of the first segment that was not removed. Another one than the first number where EXT-X-SKIP stands for segments.
    [[nodiscard]] std::uint64_t windowStart() const { return firstNumber_ - skipped_; }
    [[nodiscard]] bool skipsSegments() const;
    /// EXT-X-DISCONTINUITY-SEQUENCE; 0 without one.
    [[nodiscard]] std::uint64_t discontinuitySequence() const;

    [[nodiscard]] bool isEnded() const;
    [[nodiscard]] bool isOfType(std::string_view type) const;

    /// "segment 268433"
    [[nodiscard]] std::string pathOf(std::size_t index) const;

  private:
    [[nodiscard]] std::size_t startOfFirstSegment() const;

    VELHLSStructure structure_;
    CheckedPlaylist playlist_;
    std::vector<std::uint32_t> lastLines_;
    std::size_t firstLine_ = 1;
    std::uint64_t firstNumber_ = 0;
    std::uint64_t skipped_ = 0;
};

}  // namespace velhls
