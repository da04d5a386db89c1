#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSRows.h"
#include "velhls/document/VELHLSSequence.h"

/// Which lines of a document make its variants and its segments, and what is in force where.
///
///     #EXT-X-KEY:METHOD=AES-128,URI="k"     segment 0: firstLine
///     #EXTINF:6.006,Intro                              durationLine, duration
///     #EXT-X-BYTERANGE:1024@0                          rangeLine, rangeOffset
///     video.ts                                         uriLine (lastLine)
///     #EXTINF:6.006,                        segment 1: the key is in force here too: keyLines
///     #EXT-X-BYTERANGE:2048                            rangeOffset 1024: where the range before ended
///     video.ts
///
/// It never fails, whatever the lines hold: a URI line ends the variant whose EXT-X-STREAM-INF came last, or else a segment,
/// whether or not either has what it must have. It follows RFC 8216: a key holds until the next one of its KEYFORMAT, and
/// METHOD=NONE ends all of them; the order of a segment's tags means nothing. Media patterns are not expanded.
///
/// It refers to the document, which must outlive it, and is never changed. It holds 32 bytes for each segment and for each
/// EXT-X-KEY, EXT-X-MAP and EXT-X-PROGRAM-DATE-TIME, and 8 for each variant. Making it takes time linear in the text.
class VELHLS_CHECK_API VELHLSStructure {
  public:
    /// The most keys of different KEYFORMATs that are in force at once: of more, the oldest is let go. So the structure
    /// stays linear in the text.
    static constexpr std::size_t maximumKeys = 16;

    /// What holds at a line by tags that came before it.
    struct InForce {
        /// The lines of the EXT-X-KEY tags, one for each KEYFORMAT, the one that came last last; none when nothing is
        /// encrypted.
        VELHLSRows<std::uint32_t> keyLines;
        /// The line of the EXT-X-MAP; 0 for none.
        std::size_t mapLine = 0;
        /// The line of the last EXT-X-PROGRAM-DATE-TIME; 0 for none.
        std::size_t dateLine = 0;
    };

    /// A segment: a URI line, and the tags since the one before. Line numbers count from 1, and 0 stands for none.
    struct Segment {
        /// Its place among the segments, counted from 0.
        std::size_t index = 0;
        /// Its first tag, or else its URI. Tags of the playlist, comments and blank lines may lie between its lines:
        /// VELHLSStructure::linesOf leaves these out.
        std::size_t firstLine = 0;
        /// Its URI line, or its last tag.
        std::size_t lastLine = 0;
        /// Its URI line; 0 when the text ends before one.
        std::size_t uriLine = 0;
        /// Its EXTINF, the last one of several.
        std::size_t durationLine = 0;
        /// Its EXT-X-BYTERANGE, the last one of several.
        std::size_t rangeLine = 0;
        /// Its own EXT-X-PROGRAM-DATE-TIME, the last one of several.
        std::size_t dateLine = 0;
        /// What tags say before it and among its own.
        InForce inForce;
        /// Seconds, of EXTINF; 0 when there is none or it cannot be read.
        double duration = 0.0;
        /// The durations of the segments before it, summed up: seconds.
        double startTime = 0.0;
        /// Media sequence number: the segments that EXT-X-SKIP stands for are counted.
        std::uint64_t mediaSequence = 0;
        /// Discontinuity sequence number.
        std::uint64_t discontinuitySequence = 0;
        /// Where its byte range begins in its resource. Nothing without EXT-X-BYTERANGE, and where that gives no offset and
        /// the segment before has no range of the same resource.
        std::optional<std::uint64_t> rangeOffset;
        /// Microseconds since the Unix epoch: its own date, or the last date before it plus the durations since. Nothing
        /// where there is neither, and where that cannot be read.
        std::optional<std::int64_t> date;
    };

    /// A variant: EXT-X-STREAM-INF and the URI line that follows.
    struct Variant {
        /// The line of the tag.
        std::uint32_t tagLine = 0;
        /// The URI line; 0 when there is none before the next such tag or the end.
        std::uint32_t uriLine = 0;
    };

    /// Finds the structure of the document.
    explicit VELHLSStructure(const VELHLSDocument& document);
    explicit VELHLSStructure(VELHLSDocument&&) = delete;

    /// The document.
    [[nodiscard]] const VELHLSDocument& document() const { return document_; }

    /// All variants, in their order. I-frame variants are lines of their own: VELHLSDocument::linesNamed.
    [[nodiscard]] const std::vector<Variant>& variants() const { return variants_; }

    /// The number of segments.
    [[nodiscard]] std::size_t segmentCount() const { return segments_.size(); }

    /// The segment with this place, counted from 0. Takes time in proportion to its lines. Throws std::out_of_range for a
    /// segment that is not there.
    [[nodiscard]] Segment segment(std::size_t index) const;

    /// All segments. The last one may lack its URI.
    [[nodiscard]] VELHLSSequence<VELHLSStructure, Segment, &VELHLSStructure::segment> segments() const {
        return {*this, 0, segmentCount()};
    }

    /// The variant that the line belongs to, by its place; nothing when there is none.
    [[nodiscard]] std::optional<std::size_t> variantOf(std::size_t line) const;

    /// The segment that the line belongs to, by its place; nothing when there is none.
    [[nodiscard]] std::optional<std::size_t> segmentOf(std::size_t line) const;

    /// What holds at a line, by tags before it and by itself.
    [[nodiscard]] InForce inForceAt(std::size_t line) const;

    /// The lines that are the segment's: its tags, vendors' and unknown ones among them, and its URI.
    [[nodiscard]] std::vector<std::size_t> linesOf(const Segment& segment) const;

    /// The lines that are the variant's.
    [[nodiscard]] static std::vector<std::size_t> linesOf(const Variant& variant);

    /// Removes the segment: its URI and those of its tags that hold for it alone. EXT-X-DISCONTINUITY and tags that hold
    /// for the segments after it, like EXT-X-KEY and EXT-X-MAP, stay; so a range without an offset and a sequence number
    /// after it may mean something else.
    [[nodiscard]] std::vector<VELHLSEdit> remove(const Segment& segment) const;

    /// Removes the variant: its tag and its URI.
    [[nodiscard]] std::vector<VELHLSEdit> remove(const Variant& variant) const;

  private:
    /// A segment as it is stored.
    struct Place {
        std::uint32_t firstLine = 0;
        std::uint32_t lastLine = 0;
        /// The number of the changes of what is in force that came before its end.
        std::uint32_t changes = 0;
        std::uint32_t discontinuities = 0;
        double startTime = 0.0;
        /// Where its range begins if the one before ends there.
        std::uint64_t rangeOffset = 0;
    };

    /// A line after which something else is in force.
    struct Change {
        std::uint32_t line = 0;
        std::uint32_t firstKey = 0;
        std::uint32_t keyCount = 0;
        std::uint32_t mapLine = 0;
        std::uint32_t dateLine = 0;
        /// The start time of the segment that has the date.
        double dateStartTime = 0.0;
    };

    class VELHLS_HIDDEN Finder;

    [[nodiscard]] VELHLS_HIDDEN bool belongsToSegment(std::size_t line) const;
    [[nodiscard]] VELHLS_HIDDEN InForce inForce(std::size_t changes) const;
    [[nodiscard]] VELHLS_HIDDEN std::optional<std::uint64_t> rangeOffset(std::size_t line,
                                                                         const Place& place) const;
    [[nodiscard]] VELHLS_HIDDEN std::optional<std::int64_t> date(const Change& change,
                                                                 double startTime) const;
    [[nodiscard]] VELHLS_HIDDEN std::vector<VELHLSEdit> remove(const std::vector<std::size_t>& lines) const;

    const VELHLSDocument& document_;
    std::vector<Variant> variants_;
    std::vector<Place> segments_;
    std::vector<Change> changes_;
    std::vector<std::uint32_t> keyLines_;
    std::uint64_t firstMediaSequence_ = 0;
    std::uint64_t firstDiscontinuitySequence_ = 0;
};
