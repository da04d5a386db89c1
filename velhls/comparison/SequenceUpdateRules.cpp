#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/comparison/CheckedUpdate.h"
#include "velhls/document/FormatTables.h"

namespace velhls {
namespace {

constexpr std::size_t mediaSequence = tagIndexOf<tag::mediaSequence>;
constexpr std::size_t discontinuity = tagIndexOf<tag::discontinuity>;
constexpr std::size_t discontinuitySequence = tagIndexOf<tag::discontinuitySequence>;

void findNumberMissing(const CheckedUpdate& update, const Tell& tell) {
    if (!update.lacksNumber()) return;
    update.tell(tell, {}, CheckedUpdate::spotOfSegment(update.before, 0), {},
                "none after segments were removed", "a segment that is gone");
}

/// Whether the number is right for the segments that went out of their order too, or wrong for what was put before others.
bool isExplained(const CheckedUpdate& update) {
    const std::uint64_t removed = update.removedAtStart + update.removedElsewhere.size();
    const bool countsAll = update.now.windowStart() == update.before.windowStart() + removed;
    return (countsAll && !update.removedElsewhere.empty()) || update.match.pairs.front().now > 0;
}

void findMiscount(const CheckedUpdate& update, const Tell& tell) {
    if (update.match.pairs.empty() || update.lacksNumber() || update.wentBack()) return;
    const SegmentPair& first = update.match.pairs.front();
    if (update.before.numberOf(first.before) == update.now.numberOf(first.now) || isExplained(update)) return;
    const std::string seen = std::to_string(update.now.windowStart()) + " after " +
                             std::to_string(update.before.windowStart()) + ", with " +
                             std::to_string(update.removedAtStart) + " removed";
    update.tell(tell, CheckedUpdate::spotOf(update.now, mediaSequence),
                CheckedUpdate::spotOf(update.before, mediaSequence), {}, seen, "the number before");
}

/// The discontinuities of all segments, or of the first ones.
std::uint64_t discontinuitiesIn(const MediaVersion& version, std::size_t count) {
    std::uint64_t found = 0;
    for (std::size_t index = 0; index < count; ++index)
        found += version.countOf(discontinuity, index);
    return found;
}

bool isDiscontinuityNumberMissing(const CheckedUpdate& update) {
    const bool isKnown = !update.before.skipsSegments() && !update.now.skipsSegments();
    return isKnown && update.hasRemoved() && !update.now.playlist().has(discontinuitySequence) &&
           discontinuitiesIn(update.before, update.before.segmentCount()) > 0;
}

void findDiscontinuityNumberMissing(const CheckedUpdate& update, const Tell& tell) {
    if (!isDiscontinuityNumberMissing(update)) return;
    const VELHLSLine line = update.before.playlist().firstLine(discontinuity);
    update.tell(tell, {}, {line.number, line.name}, {}, "none after segments were removed",
                "a discontinuity");
}

bool isDiscontinuityNumberLower(const CheckedUpdate& update) {
    return update.now.discontinuitySequence() < update.before.discontinuitySequence();
}

void findDiscontinuityNumberBack(const CheckedUpdate& update, const Tell& tell) {
    if (isDiscontinuityNumberMissing(update) || !isDiscontinuityNumberLower(update)) return;
    const std::string seen = std::to_string(update.now.discontinuitySequence()) + " after " +
                             std::to_string(update.before.discontinuitySequence());
    update.tell(tell, CheckedUpdate::spotOf(update.now, discontinuitySequence),
                CheckedUpdate::spotOf(update.before, discontinuitySequence), {}, seen, "the number before");
}

/// The numbers that are right: all discontinuities of segments that are gone are counted, and those of the first one that is listed
/// may be, if they are gone too.
bool isDiscontinuityNumberRight(const CheckedUpdate& update) {
    const std::uint64_t before = update.before.discontinuitySequence();
    const std::uint64_t now = update.now.discontinuitySequence();
    if (update.match.pairs.empty()) {
        if (update.before.segmentCount() == 0 || update.now.segmentCount() == 0) return true;
        const auto last = update.before.segment(update.before.segmentCount() - 1);
        return update.now.segment(0).discontinuitySequence >= last.discontinuitySequence;
    }
    const SegmentPair& first = update.match.pairs.front();
    const std::uint64_t counted = before + discontinuitiesIn(update.before, first.before);
    if (now == counted) return true;
    const std::uint64_t own = update.before.countOf(discontinuity, first.before);
    const std::uint64_t left = update.now.countOf(discontinuity, first.now);
    return left < own && now == counted + own - left;
}

void findDiscontinuityMiscount(const CheckedUpdate& update, const Tell& tell) {
    const bool isPartly = update.before.skipsSegments() || update.now.skipsSegments();
    const bool isExplained = isPartly || !update.removedElsewhere.empty() || update.wentBack();
    if (isExplained || isDiscontinuityNumberMissing(update) || isDiscontinuityNumberLower(update)) return;
    if (isDiscontinuityNumberRight(update)) return;
    const std::string seen = std::to_string(update.now.discontinuitySequence()) + " after " +
                             std::to_string(update.before.discontinuitySequence());
    update.tell(tell, CheckedUpdate::spotOf(update.now, discontinuitySequence),
                CheckedUpdate::spotOf(update.before, discontinuitySequence), {}, seen, "the number before");
}

// clang-format off
constexpr UpdateEntry rules[] = {
    {{{"media-sequence-missing", error, "Segments were removed, and the playlist has no EXT-X-MEDIA-SEQUENCE.",
       "EXT-X-MEDIA-SEQUENCE where segments are removed", "RFC 8216, section 6.2.2", false}, "MUST"}, findNumberMissing},
    {{{"media-sequence-miscounted", error, "EXT-X-MEDIA-SEQUENCE has not grown by the number of segments that went.",
       "a media sequence number that grows by 1 for each segment that is removed", "RFC 8216, section 6.2.2", false}, "MUST"}, findMiscount},
    {{{"discontinuity-sequence-missing-after-removal", error, "Segments were removed from a playlist with EXT-X-DISCONTINUITY, and it has no EXT-X-DISCONTINUITY-SEQUENCE.",
       "EXT-X-DISCONTINUITY-SEQUENCE where segments are removed from a playlist with EXT-X-DISCONTINUITY", "RFC 8216, section 6.2.2", false}, "MUST"}, findDiscontinuityNumberMissing},
    {{{"discontinuity-sequence-decreased", error, "EXT-X-DISCONTINUITY-SEQUENCE is lower than before.",
       "a discontinuity sequence number that does not decrease", "RFC 8216, section 6.2.2", false}, "MUST NOT"}, findDiscontinuityNumberBack},
    {{{"discontinuity-sequence-miscounted", error, "EXT-X-DISCONTINUITY-SEQUENCE has not grown by the number of EXT-X-DISCONTINUITY tags that went.",
       "a discontinuity sequence number that grows by 1 for each EXT-X-DISCONTINUITY that is removed", "RFC 8216, section 6.2.2", false}, "MUST"}, findDiscontinuityMiscount},
};
// clang-format on

}  // namespace

StandardTable<CheckedUpdate> sequenceUpdateRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
