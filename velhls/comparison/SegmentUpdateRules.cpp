#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/comparison/CheckedUpdate.h"
#include "velhls/comparison/Values.h"
#include "velhls/document/FormatTables.h"
#include "velhls/document/SecondsText.h"

namespace velhls {
namespace {

using Kind = VELHLSChange::Kind;

void findOtherDuration(const CheckedUpdate& update, const Tell& tell) {
    forEachOf(update, Aspect::segmentDuration, [&](const Difference& difference) {
        const std::string expected =
            "the duration that " + difference.change.path + " had, " + difference.change.oldText;
        update.tell(tell, difference.now, difference.before, expected, {}, saidBefore(difference));
    });
}

std::string newTagText(const VELHLSChange& change) {
    if (change.kind == Kind::Removed) return "no " + change.what;
    const std::string text = (change.kind == Kind::Added ? "a new " : "another ") + change.what;
    return change.what == "discontinuity" ? text : text + ", " + quoted(change.newText);
}

/// Where the new version has a tag that says something else, or that was not there.
void findOtherTag(const CheckedUpdate& update, const Tell& tell) {
    for (const Difference& difference : update.differences) {
        const bool isInForce = difference.aspect == Aspect::key || difference.aspect == Aspect::map;
        const bool isNew =
            difference.aspect == Aspect::discontinuity && difference.change.kind == Kind::Added;
        const bool isOther = isInForce && difference.change.kind != Kind::Removed;
        if (difference.aspect != Aspect::segmentTag && !isNew && !isOther) continue;
        const std::string expected = "the tags that " + difference.change.path + " had";
        const std::string seen = newTagText(difference.change);
        update.tell(tell, difference.now, difference.before, expected, seen, saidBefore(difference));
    }
}

template <Aspect aspect>
void findRemovedTag(const CheckedUpdate& update, const Tell& tell) {
    forEachOf(update, aspect, [&](const Difference& difference) {
        if (difference.change.kind != Kind::Removed) return;
        update.tell(tell, difference.now, difference.before, {},
                    quoted(difference.change.newText) + " for " + difference.change.path,
                    saidBefore(difference));
    });
}

void findOtherDate(const CheckedUpdate& update, const Tell& tell) {
    forEachOf(update, Aspect::date, [&](const Difference& difference) {
        const std::string expected =
            "the date that " + difference.change.path + " had, " + quoted(difference.change.oldText);
        const std::string seen =
            difference.change.newText.empty() ? "none" : quoted(difference.change.newText);
        update.tell(tell, difference.now, difference.before, expected, seen, saidBefore(difference));
    });
}

/// The discontinuities of the first segment may go before it does, if the sequence number counts them.
bool isCounted(const CheckedUpdate& update, const Difference& difference) {
    if (update.match.pairs.empty() || update.match.pairs.front().now != 0) return false;
    const bool isFirst = difference.now.line == update.now.uriLine(0).number;
    const std::size_t index = update.match.pairs.front().before;
    return isFirst &&
           update.now.segment(0).discontinuitySequence == update.before.segment(index).discontinuitySequence;
}

void findDiscontinuityRemoved(const CheckedUpdate& update, const Tell& tell) {
    forEachOf(update, Aspect::discontinuity, [&](const Difference& difference) {
        if (difference.change.kind != Kind::Removed || isCounted(update, difference)) return;
        const Spot place = {difference.now.line, update.now.document().line(difference.now.line).value};
        update.tell(tell, place, difference.before, {}, "none before " + difference.change.path,
                    "one before this segment");
    });
}

/// The segment that follows where an old one was.
Spot spotAfter(const CheckedUpdate& update, std::size_t old) {
    const auto& pairs = update.match.pairs;
    const auto next =
        std::lower_bound(pairs.begin(), pairs.end(), old,
                         [](const SegmentPair& pair, std::size_t index) { return pair.before < index; });
    if (next != pairs.end()) return CheckedUpdate::spotOfSegment(update.now, next->now);
    return CheckedUpdate::spotOfSegment(update.now, update.now.segmentCount() - 1);
}

void findRemovedFromMiddle(const CheckedUpdate& update, const Tell& tell) {
    for (const std::size_t old : update.removedElsewhere) {
        update.tell(tell, spotAfter(update, old), CheckedUpdate::spotOfSegment(update.before, old), {},
                    update.before.pathOf(old) + " removed while one before it is listed",
                    "the segment that is gone");
    }
}

void findInserted(const CheckedUpdate& update, const Tell& tell) {
    for (const std::size_t index : update.inserted) {
        const std::size_t last = update.before.segmentCount() - 1;
        update.tell(tell, CheckedUpdate::spotOfSegment(update.now, index),
                    CheckedUpdate::spotOfSegment(update.before, last), {}, "one before a listed segment",
                    "the last segment before");
    }
}

/// Rounded as a segment's duration is when it is compared with the target duration (section 4.3.3.1).
double roundedDuration(const MediaVersion& version) {
    double duration = 0.0;
    for (std::size_t index = 0; index < version.segmentCount(); ++index) {
        const double seconds = version.segment(index).duration;
        duration += std::max(seconds, std::round(seconds));
    }
    return duration;
}

void findTooShort(const CheckedUpdate& update, const Tell& tell) {
    const auto target = update.now.playlist().targetDuration();
    const bool isPartly = update.now.skipsSegments() || update.before.skipsSegments();
    if (!update.hasRemoved() || update.now.isEnded() || !target || isPartly) return;
    const double least = 3.0 * static_cast<double>(*target);
    if (roundedDuration(update.now) >= least) return;
    const std::string seen =
        secondsText(update.now.playlist().duration()) + " seconds against " + secondsText(least);
    const std::size_t old = update.removedAtStart > 0 ? 0 : update.removedElsewhere.front();
    update.tell(tell, CheckedUpdate::spotOf(update.now, tagIndexOf<tag::targetDuration>),
                CheckedUpdate::spotOfSegment(update.before, old), {}, seen, "a segment that is gone");
}

// clang-format off
constexpr UpdateEntry rules[] = {
    {{{"segment-duration-changed", error, "A listed segment has another duration than before.",
       "the duration that it had", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findOtherDuration},
    {{{"segment-tag-changed", error, "A listed segment has other tags than before, or others apply to it.",
       "the tags that it had", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findOtherTag},
    {{{"segment-date-changed", error, "A listed segment has another date than before.",
       "the date that it had", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findOtherDate},
    {{{"segment-inserted", error, "A segment was put before ones that were listed.",
       "new segments after those that were listed", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findInserted},
    {{{"segment-removed-out-of-order", error, "A segment went before one that was listed earlier.",
       "segments removed in their order", "RFC 8216, section 6.2.2", false}, "MUST"}, findRemovedFromMiddle},
    {{{"segment-removed-early", error, "A segment went, and what is left is shorter than three target durations.",
       "at least three target durations after a segment was removed", "RFC 8216, section 6.2.2", false}, "MUST NOT"}, findTooShort},
    {{{"discontinuity-removed", error, "An EXT-X-DISCONTINUITY went before its segment did.",
       "EXT-X-DISCONTINUITY as long as its segment is listed", "RFC 8216, section 6.2.2", false}, "MUST"}, findDiscontinuityRemoved},
    {{{"key-removed", error, "An EXT-X-KEY went while it applied to a listed segment.",
       "the EXT-X-KEY that applied", "RFC 8216, section 6.2.3", false}, "MUST NOT"}, findRemovedTag<Aspect::key>},
    {{{"map-removed", error, "An EXT-X-MAP went while it applied to a listed segment.",
       "the EXT-X-MAP that applied", "RFC 8216, section 3.3", false}, "MUST"}, findRemovedTag<Aspect::map>},
};
// clang-format on

}  // namespace

StandardTable<CheckedUpdate> segmentUpdateRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
