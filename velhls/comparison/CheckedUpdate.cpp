#include "velhls/comparison/CheckedUpdate.h"

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/comparison/Values.h"
#include "velhls/document/FormatTables.h"

namespace velhls {
namespace {

/// The first line stands for what has none.
VELHLSLine lineOf(const VELHLSDocument& document, const Spot& spot) {
    return document.line(spot.line == 0 ? 1 : spot.line);
}

std::string_view pieceOf(const VELHLSLine& line, const Spot& spot) {
    return spot.line != 0 && spot.isThere() ? spot.text : line.text.substr(0, 0);
}

}  // namespace

CheckedUpdate::CheckedUpdate(const MediaVersion& before, const MediaVersion& now, const SegmentMatch& match,
                             const DateRanges& rangesBefore, const DateRanges& rangesNow,
                             const std::vector<Difference>& differences, std::optional<double> elapsedSeconds)
    : before(before),
      now(now),
      match(match),
      rangesBefore(rangesBefore),
      rangesNow(rangesNow),
      differences(differences),
      elapsedSeconds(elapsedSeconds) {
    if (match.relation != SegmentMatch::anew) countSegments();
}

void CheckedUpdate::countSegments() {
    if (match.pairs.empty()) {
        removedAtStart = before.segmentCount();
        const std::uint64_t step = now.firstNumber() - before.firstNumber();
        const bool isFurther =
            before.segmentCount() > 0 && now.segmentCount() > 0 && step >= before.segmentCount();
        addedAtEnd = isFurther ? step - before.segmentCount() + now.segmentCount() : now.segmentCount();
        return;
    }
    const bool isPartly = before.skipsSegments() || now.skipsSegments();
    removedAtStart = match.pairs.front().before;
    std::size_t old = removedAtStart;
    std::size_t fresh = 0;
    for (const SegmentPair& pair : match.pairs) {
        for (; old < pair.before; ++old)
            removedElsewhere.push_back(old);
        for (; fresh < pair.now; ++fresh)
            inserted.push_back(fresh);
        old = pair.before + 1;
        fresh = pair.now + 1;
    }
    for (; old < before.segmentCount(); ++old)
        removedElsewhere.push_back(old);
    addedAtEnd = now.segmentCount() - fresh;
    if (isPartly) {
        // What EXT-X-SKIP stands for was not removed.
        const std::uint64_t went =
            now.windowStart() > before.firstNumber() ? now.windowStart() - before.firstNumber() : 0;
        if (went < removedAtStart) removedAtStart = static_cast<std::size_t>(went);
        inserted.clear();
    }
    if (wentBack()) {
        // An older version, as it seems: only that is told.
        removedElsewhere.clear();
        inserted.clear();
    }
}

bool CheckedUpdate::lacksNumber() const {
    return removedAtStart > 0 && !now.playlist().has(tagIndexOf<tag::mediaSequence>);
}

bool CheckedUpdate::wentBack() const {
    return now.windowStart() < before.windowStart() && !lacksNumber();
}

bool CheckedUpdate::isLive() const {
    return !now.isEnded() && !before.isEnded() && !now.isOfType(fixed::vod) && !before.isOfType(fixed::vod);
}

void CheckedUpdate::tell(const Tell& tell, const Spot& place, const Spot& old, std::string_view expected,
                         std::string_view seen, std::string_view oldMessage) const {
    const VELHLSLine oldLine = lineOf(before.document(), old);
    const std::string_view oldPiece = pieceOf(oldLine, old);
    VELHLSRelatedPlace related;
    related.line = oldLine.number;
    related.column = oldLine.column(oldPiece);
    related.length = oldPiece.size();
    related.message = oldMessage;
    const VELHLSLine line = lineOf(now.document(), place);
    tell(line, pieceOf(line, place), {expected, seen, {}, &related});
}

Spot CheckedUpdate::spotOf(const MediaVersion& version, std::size_t tag) {
    if (!version.playlist().has(tag)) return {};
    const VELHLSLine line = version.playlist().firstLine(tag);
    const std::string_view value = trimmed(line.value);
    return {line.number, value.empty() ? line.name : value};
}

Spot CheckedUpdate::spotOfSegment(const MediaVersion& version, std::size_t index) {
    const VELHLSLine line = version.uriLine(index);
    return {line.number, line.value};
}

std::string saidBefore(const Difference& difference) {
    const VELHLSChange& change = difference.change;
    if (change.kind == VELHLSChange::Added) return "nothing before";
    const std::string& named = change.what.empty() ? change.path : change.what;
    return change.oldText.empty() ? named + " before" : named + " " + quoted(change.oldText) + " before";
}

}  // namespace velhls
