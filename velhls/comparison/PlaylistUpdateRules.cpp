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

constexpr std::size_t playlistType = tagIndexOf<tag::playlistType>;

std::string newTextOf(const Difference& difference) {
    if (difference.change.kind == VELHLSChange::Removed) return "none";
    return difference.change.newText.empty() ? "one" : quoted(difference.change.newText);
}

/// "8", and where the message does not begin with the tag, "none for EXT-X-TARGETDURATION".
void tellOf(const CheckedUpdate& update, const Difference& difference, const Tell& tell) {
    const VELHLSChange& change = difference.change;
    const bool isNamed = change.kind != VELHLSChange::Removed && change.what.empty();
    const std::string what = change.what.empty() ? "" : ": " + change.what;
    const std::string seen = newTextOf(difference) + (isNamed ? "" : " for " + change.path + what);
    update.tell(tell, difference.now, difference.before, {}, seen, saidBefore(difference));
}

void findOtherHeader(const CheckedUpdate& update, const Tell& tell) {
    forEachOf(update, Aspect::headerTag,
              [&](const Difference& difference) { tellOf(update, difference, tell); });
}

template <const std::string_view& name>
void findOtherTag(const CheckedUpdate& update, const Tell& tell) {
    forEachOf(update, Aspect::numberedTag, [&](const Difference& difference) {
        if (difference.change.path == name) tellOf(update, difference, tell);
    });
}

/// What an EVENT playlist no longer has. The tags that have rules of their own are told by these.
bool isLoss(const Difference& difference) {
    if (difference.aspect == Aspect::segmentUri) return true;
    return difference.change.kind == VELHLSChange::Removed && difference.aspect != Aspect::numberedTag;
}

void findEventLoss(const CheckedUpdate& update, const Tell& tell) {
    if (!update.before.isOfType(fixed::event)) return;
    const auto first = std::find_if(update.differences.begin(), update.differences.end(), isLoss);
    if (first == update.differences.end() || first->aspect == Aspect::segmentUri) return;
    const std::string seen = first->change.path + " without " +
                             (first->change.what.empty() ? "a trace of it" : "its " + first->change.what);
    update.tell(tell, first->now, first->before, {}, seen, saidBefore(*first));
}

void findRemovalFromTyped(const CheckedUpdate& update, const Tell& tell) {
    if (!update.hasRemoved() || !update.now.playlist().has(playlistType)) return;
    const std::size_t old = update.removedAtStart > 0 ? 0 : update.removedElsewhere.front();
    update.tell(tell, CheckedUpdate::spotOf(update.now, playlistType),
                CheckedUpdate::spotOfSegment(update.before, old), {}, "it after segments were removed",
                "a segment that is gone");
}

double targetDurations(const CheckedUpdate& update) {
    const auto target = update.now.playlist().targetDuration();
    return target && *target > 0 ? *update.elapsedSeconds / static_cast<double>(*target) : 0.0;
}

/// A new version later than this after the last one is late.
constexpr double latest = 1.5;
constexpr double earliest = 0.5;

/// Lines may be appended while the time for the next segment has not come.
bool mayHaveAppended(const CheckedUpdate& update) {
    if (!update.elapsedSeconds || targetDurations(update) >= latest) return false;
    return std::all_of(
        update.differences.begin(), update.differences.end(),
        [](const Difference& difference) { return difference.change.kind == VELHLSChange::Added; });
}

/// What low latency adds between segments.
bool hasParts(const CheckedUpdate& update) {
    return update.now.playlist().has(tagIndex("EXT-X-PART")) ||
           update.now.playlist().has(tagIndex("EXT-X-PRELOAD-HINT"));
}

void findNoNewSegment(const CheckedUpdate& update, const Tell& tell) {
    if (!update.isLive() || update.addedAtEnd > 0 || update.differences.empty() || hasParts(update)) return;
    const bool isOlder =
        update.wentBack() || (!update.removedElsewhere.empty() &&
                              update.removedElsewhere.back() + 1 == update.before.segmentCount());
    if (isOlder || update.now.segmentCount() == 0 || mayHaveAppended(update)) return;
    update.tell(tell, CheckedUpdate::spotOfSegment(update.now, update.now.segmentCount() - 1),
                CheckedUpdate::spotOfSegment(update.before, update.before.segmentCount() - 1), {},
                "none after " + update.now.pathOf(update.now.segmentCount() - 1), "the last segment before");
}

void findLate(const CheckedUpdate& update, const Tell& tell) {
    if (!update.elapsedSeconds || !update.isLive() || update.wentBack()) return;
    const double versions = std::floor(targetDurations(update) / latest + 1e-9);
    if (static_cast<double>(update.addedAtEnd) >= versions) return;
    const Spot place = CheckedUpdate::spotOf(update.now, tagIndexOf<tag::targetDuration>);
    const std::string seen = std::to_string(update.addedAtEnd) +
                             (update.addedAtEnd == 1 ? " new segment in " : " new segments in ") +
                             secondsText(*update.elapsedSeconds) + " seconds";
    update.tell(tell, place, CheckedUpdate::spotOf(update.before, tagIndexOf<tag::targetDuration>), {}, seen,
                "the version before");
}

void findEarly(const CheckedUpdate& update, const Tell& tell) {
    if (!update.elapsedSeconds || !update.isLive() || update.addedAtEnd == 0 ||
        update.before.segmentCount() == 0)
        return;
    const bool isKnown = update.now.playlist().targetDuration().value_or(0) > 0;
    if (!isKnown || targetDurations(update) >= earliest) return;
    const Spot place = CheckedUpdate::spotOf(update.now, tagIndexOf<tag::targetDuration>);
    update.tell(tell, place, CheckedUpdate::spotOf(update.before, tagIndexOf<tag::targetDuration>), {},
                "a new segment after " + secondsText(*update.elapsedSeconds) + " seconds",
                "the version before");
}

// clang-format off
constexpr UpdateEntry rules[] = {
    {{{"header-tag-changed", error, "A tag of the whole playlist has changed, come or gone.",
       "the tags of the playlist as they were", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findOtherHeader},
    {{{"target-duration-changed", error, "EXT-X-TARGETDURATION has changed.",
       "the target duration that it had", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findOtherTag<tag::targetDuration>},
    {{{"playlist-type-changed", error, "EXT-X-PLAYLIST-TYPE was put in, changed or removed.",
       "the type that it had", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findOtherTag<tag::playlistType>},
    {{{"event-part-removed", error, "A playlist of type EVENT has lost something.",
       "all parts of a playlist of type EVENT", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findEventLoss},
    {{{"removed-from-typed-playlist", error, "Segments were removed from a playlist with EXT-X-PLAYLIST-TYPE.",
       "no EXT-X-PLAYLIST-TYPE where segments are removed", "RFC 8216, section 6.2.2", false}, "MUST NOT"}, findRemovalFromTyped},
    {{{"new-segment-missing", error, "A playlist without EXT-X-ENDLIST has changed, and has no new segment.",
       "a new segment in a new version", "RFC 8216, section 6.2.1", false}, "MUST"}, findNoNewSegment},
    {{{"new-version-late", warning, "A live playlist lacks new segments for the time that has passed.",
       "a new version no later than 1.5 target durations after the last", "RFC 8216, section 6.2.1", false}, "MUST"}, findLate},
    {{{"new-version-early", note, "A live playlist has a new segment after less than half a target duration, if the version before was new.",
       "a new version no earlier than half a target duration after the last", "RFC 8216, section 6.2.1", false}, "MUST"}, findEarly},
};
// clang-format on

}  // namespace

StandardTable<CheckedUpdate> playlistUpdateRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
