#include <cmath>
#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"
#include "velhls/standard/UriSuffix.h"

namespace velhls {
namespace {

VELHLSLine rangeLine(const CheckedSegment& checked) {
    return checked.playlist.document().line(checked.segment.rangeLine);
}

/// EXT-X-SKIP stands for segments that are not there.
bool isFirstKnown(const CheckedSegment& checked) {
    return checked.previous == nullptr && !checked.playlist.has(tagIndex("EXT-X-SKIP"));
}

void findDurationMissing(const CheckedSegment& checked, const Tell& tell) {
    if (checked.segment.durationLine == 0)
        tell(checked.uri, checked.uri.value, {{}, "a URI without one", {}});
}

void findTooLong(const CheckedSegment& checked, const Tell& tell) {
    const auto target = checked.playlist.targetDuration();
    if (!target || std::round(checked.segment.duration) <= static_cast<double>(*target)) return;
    const std::string expected =
        "no more than the target duration, rounded: " + std::to_string(*target) + " seconds";
    const VELHLSLine line = checked.durationLine();
    tell(line, line.value.substr(0, line.value.find(',')), {expected, {}, {}});
}

/// Only the one that begins with the offset of nothing is told: those after it follow it.
void findOffsetMissing(const CheckedSegment& checked, const Tell& tell) {
    // Most have an offset, or go on after the range before.
    if (checked.segment.rangeLine == 0 || checked.segment.rangeOffset) return;
    const VELHLSLine line = rangeLine(checked);
    const auto range = VELHLSSyntax::readByteRange(trimmed(line.value));
    if (!range || range->offset) return;
    const bool followsRange = checked.previous != nullptr && checked.previous->rangeLine != 0 &&
                              checked.previousUri == checked.uri.value;
    if (followsRange || (checked.previous == nullptr && !isFirstKnown(checked))) return;
    const std::string_view seen = checked.previous == nullptr ? "none, and no segment before"
                                  : checked.previous->rangeLine == 0
                                      ? "none, after a segment without a range"
                                      : "none, after a range of another resource";
    tell(line, trimmed(line.value), {{}, seen, {}});
}

void findMapMissing(const CheckedSegment& checked, const Tell& tell) {
    const bool isFragment = checked.format == SegmentFormat::fragmentedMp4;
    constexpr std::size_t skip = tagIndex("EXT-X-SKIP");
    if (isFragment && checked.segment.inForce.mapLine == 0 && !checked.playlist.has(skip))
        tell(checked.uri, checked.uri.value, {{}, "none", {}});
}

void findFormatChange(const CheckedSegment& checked, const Tell& tell) {
    if (checked.previous == nullptr || checked.followsDiscontinuity) return;
    const SegmentFormat format = checked.format;
    const SegmentFormat before = checked.previousFormat;
    if (format != before && format != SegmentFormat::unknown && before != SegmentFormat::unknown)
        tell(checked.uri, checked.uri.value, {{}, "none", {}});
}

void findMapChange(const CheckedSegment& checked, const Tell& tell) {
    if (checked.previous == nullptr || checked.followsDiscontinuity) return;
    const std::size_t before = checked.previous->inForce.mapLine;
    const std::size_t now = checked.segment.inForce.mapLine;
    if (before == 0 || now == before) return;
    const VELHLSLine line = checked.playlist.document().line(now);
    if (line.value != checked.playlist.document().line(before).value) tell(line, line.name, {{}, "none", {}});
}

void findInitializationInRange(const CheckedSegment& checked, const Tell& tell) {
    const bool isIFrame = checked.playlist.has(tagIndexOf<tag::iFramesOnly>);
    if (!isIFrame || checked.segment.inForce.mapLine != 0 || checked.segment.rangeOffset != 0) return;
    const VELHLSLine line = rangeLine(checked);
    tell(line, trimmed(line.value));
}

void findDateMissing(const CheckedSegment& checked, const Tell& tell) {
    const bool hasDates = checked.playlist.has(tagIndexOf<tag::programDateTime>);
    if (hasDates && checked.followsDiscontinuity && checked.segment.dateLine == 0)
        tell(checked.uri, checked.uri.value, {{}, "none", {}});
}

/// A date at or before that of the segment before: both are then at one date.
void findDateAmbiguous(const CheckedSegment& checked, const Tell& tell) {
    if (checked.segment.dateLine == 0 || checked.previous == nullptr || !checked.previous->date) return;
    const bool isRead = checked.segment.inForce.dateLine == checked.segment.dateLine;
    if (!isRead || !checked.segment.date || checked.previous->duration <= 0.0) return;
    if (*checked.segment.date > *checked.previous->date) return;
    const VELHLSLine line = checked.playlist.document().line(checked.segment.dateLine);
    tell(line, trimmed(line.value));
}

/// Tags of segments may stand after the last URI of a live playlist, but not the one that says how long a segment is.
void findUriMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMedia() || playlist.segmentCount() == playlist.structure().segmentCount()) return;
    const VELHLSStructure::Segment last = playlist.structure().segment(playlist.segmentCount());
    if (last.durationLine == 0) return;
    const VELHLSLine line = playlist.document().line(last.durationLine);
    tell(line, line.name, {{}, "none", {}});
}

// clang-format off
constexpr SegmentEntry rules[] = {
    {{{"extinf-missing", error, "A segment has no EXTINF.",
       "EXTINF before the URI", "RFC 8216, section 4.3.2.1", false}, "REQUIRED"}, findDurationMissing},
    {{{"target-duration-too-small", error, "A segment is longer than the target duration.",
       "no more than the target duration", "RFC 8216, section 4.3.3.1", false}, "MUST"}, findTooLong},
    {{{"byte-range-offset-missing", error, "A byte range without an offset follows no range of the same resource.",
       "an offset", "RFC 8216, section 4.3.2.2", false}, "MUST"}, findOffsetMissing},
    {{{"map-missing", warning, "A segment seems to be fragmented MP4, and no EXT-X-MAP applies to it.",
       "EXT-X-MAP before a segment of fragmented MP4", "RFC 8216, section 3.3", false}, "MUST"}, findMapMissing},
    {{{"discontinuity-missing-where-format-changes", warning, "The format of the segments seems to change without EXT-X-DISCONTINUITY.",
       "EXT-X-DISCONTINUITY where the file format changes", "RFC 8216, section 4.3.2.3", false}, "MUST"}, findFormatChange},
    {{{"discontinuity-missing-where-map-changes", warning, "Another EXT-X-MAP applies without EXT-X-DISCONTINUITY.",
       "EXT-X-DISCONTINUITY where the encoding changes", "RFC 8216, section 4.3.2.3", false}, "SHOULD"}, findMapChange},
    {{{"i-frame-range-with-initialization", warning, "The range of an I-frame begins where its resource does, and no EXT-X-MAP is there.",
       "a range without the initialization section", "RFC 8216, section 4.3.3.6", false}, "MUST NOT"}, findInitializationInRange},
    {{{"date-time-missing-after-discontinuity", warning, "A segment after EXT-X-DISCONTINUITY has no date, and others have.",
       "EXT-X-PROGRAM-DATE-TIME after EXT-X-DISCONTINUITY", "RFC 8216, section 6.2.1", false}, "SHOULD"}, findDateMissing},
    {{{"date-time-ambiguous", error, "The date of a segment is not after that of the segment before.",
       "a date after that of the segment before", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findDateAmbiguous},
};

constexpr PlaylistEntry ofLast[] = {
    {{{"segment-without-uri", error, "The playlist ends after an EXTINF, before its URI.",
       "a URI line after EXTINF", "RFC 8216, section 4.3.2.1", false}, "SYN"}, findUriMissing},
};
// clang-format on

}  // namespace

StandardTable<CheckedPlaylist> lastSegmentRules() {
    return {ofLast, std::size(ofLast)};
}

StandardTable<CheckedSegment> segmentRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
