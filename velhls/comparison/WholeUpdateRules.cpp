#include <algorithm>
#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/comparison/CheckedUpdate.h"
#include "velhls/comparison/Values.h"
#include "velhls/document/FormatTables.h"

namespace velhls {
namespace {

constexpr std::size_t mediaSequence = tagIndexOf<tag::mediaSequence>;

bool isAnew(const CheckedUpdate& update) {
    return update.match.relation == SegmentMatch::anew;
}

/// A packager that begins anew says so: by a discontinuity before its first segment, or by dates that go on.
bool isRestart(const CheckedUpdate& update) {
    if (!isAnew(update)) return false;
    constexpr std::size_t discontinuity = tagIndexOf<tag::discontinuity>;
    if (update.now.countOf(discontinuity, 0) > 0 && update.before.countOf(discontinuity, 0) == 0) return true;
    const auto date = update.now.segment(0).date;
    const auto last = update.before.segment(update.before.segmentCount() - 1).date;
    return date && last && *date > *last;
}

void findRestart(const CheckedUpdate& update, const Tell& tell) {
    if (!isRestart(update)) return;
    update.tell(tell, CheckedUpdate::spotOfSegment(update.now, 0),
                CheckedUpdate::spotOf(update.before, mediaSequence), {},
                "one that begins anew with " + update.now.pathOf(0),
                "it listed segments from number " + std::to_string(update.before.firstNumber()) + " on");
}

void findBack(const CheckedUpdate& update, const Tell& tell) {
    if (!update.wentBack() || isRestart(update)) return;
    const std::string seen =
        std::to_string(update.now.windowStart()) + " after " + std::to_string(update.before.windowStart());
    update.tell(tell, CheckedUpdate::spotOf(update.now, mediaSequence),
                CheckedUpdate::spotOf(update.before, mediaSequence), {}, seen, "the number before");
}

/// A whole list of other segments is told once.
void findOtherUris(const CheckedUpdate& update, const Tell& tell) {
    if (update.wentBack() || isRestart(update) || update.match.pairs.empty()) return;
    const SegmentPair& first = update.match.pairs.front();
    const std::string expected = "the URI that " + update.now.pathOf(first.now) + " had";
    const std::string seen = "another one, as of all " + std::to_string(update.match.pairs.size()) +
                             " segments that both versions list";
    update.tell(tell, CheckedUpdate::spotOfSegment(update.now, first.now),
                CheckedUpdate::spotOfSegment(update.before, first.before), expected, seen, "the URI before");
}

void findOtherUri(const CheckedUpdate& update, const Tell& tell) {
    if (isAnew(update)) return findOtherUris(update, tell);
    forEachOf(update, Aspect::segmentUri, [&](const Difference& difference) {
        const std::string expected =
            "the URI that " + difference.change.path + " had, " + quoted(difference.change.oldText);
        update.tell(tell, difference.now, difference.before, expected, {}, saidBefore(difference));
    });
}

void findOtherVod(const CheckedUpdate& update, const Tell& tell) {
    if (!update.before.isOfType(fixed::vod) || update.differences.empty()) return;
    const Difference& first = update.differences.front();
    const std::size_t others = update.differences.size() - 1;
    const std::string seen = "a change of " + first.change.path +
                             (others == 0 ? std::string() : " and " + std::to_string(others) + " more");
    update.tell(tell, first.now, first.before, {}, seen, saidBefore(first));
}

void findChangeAfterEnd(const CheckedUpdate& update, const Tell& tell) {
    if (!update.before.isEnded()) return;
    const Spot end = CheckedUpdate::spotOf(update.before, tagIndexOf<tag::endList>);
    const bool isAdded = !isAnew(update) && update.addedAtEnd > 0 && update.now.segmentCount() > 0;
    if (update.now.isEnded() && !isAdded) return;
    const std::string_view seen = isAdded ? "a new segment" : "no EXT-X-ENDLIST any more";
    update.tell(tell,
                isAdded ? CheckedUpdate::spotOfSegment(update.now, update.now.segmentCount() - 1) : Spot(),
                end, {}, seen, "the end that was told");
}

// clang-format off
constexpr UpdateEntry rules[] = {
    {{{"segment-uri-changed", error, "A listed segment has another URI than before.",
       "the URI that it had", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findOtherUri},
    {{{"media-sequence-decreased", error, "EXT-X-MEDIA-SEQUENCE is lower than before.",
       "a media sequence number that does not decrease", "RFC 8216, section 6.2.2", false}, "MUST NOT"}, findBack},
    {{{"playlist-restarted", note, "The playlist has begun anew, with other segments and their numbers from the start, and says so.",
       "a playlist that goes on where it was", "RFC 8216, section 6.2.2", false}, "MUST NOT"}, findRestart},
    {{{"vod-changed", error, "A playlist of type VOD has changed.",
       "no change of a playlist of type VOD", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findOtherVod},
    {{{"changed-after-end", error, "A segment was added after EXT-X-ENDLIST, or EXT-X-ENDLIST went.",
       "no new segment after EXT-X-ENDLIST", "RFC 8216, section 4.3.3.4", false}, "SYN"}, findChangeAfterEnd},
};
// clang-format on

}  // namespace

StandardTable<CheckedUpdate> wholeUpdateRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
