#include "velhls/presentation/PresentationFindings.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "velhls/common/ReasonText.h"
#include "velhls/document/SecondsText.h"

namespace velhls {
namespace {

std::size_t columnOf(const PresentationPlace& place) {
    return place.line.column(place.piece);
}

VELHLSRelatedPlace relatedPlace(const PresentationPlace& place, std::string seen,
                                const PresentationText* own) {
    VELHLSRelatedPlace related;
    if (place.text != own) related.uri = place.text->uri;
    related.line = place.line.number;
    related.column = columnOf(place);
    related.length = place.piece.size();
    related.message = seen.empty() ? quoted(place.piece) : std::move(seen);
    return related;
}

/// "8", and of several playlists "8, in 2 of 5 media playlists".
std::string seenIn(const BrokenPlaces& broken) {
    const BrokenPlace& first = broken.places.front();
    std::string seen = first.seen.empty() ? quoted(first.place.piece) : first.seen;
    if (broken.total < 2) return seen;
    seen += ", in " + std::to_string(broken.places.size()) + " of " + std::to_string(broken.total) + " ";
    return seen += broken.what;
}

}  // namespace

void PresentationFindings::add(const StandardRule& rule, StandardProfile profile, const BrokenPlaces& broken,
                               const PresentationWords& words) {
    const BoundedFindings::Key key = {rule.rule.id, VELHLSStandard::nameOf(profile)};
    if (findings_.isFull(key)) return;

    const PresentationPlace& first = broken.places.front().place;
    const Place place = {first.line.number, columnOf(first), first.piece.size()};
    const std::string_view expected = words.expected.empty() ? rule.rule.expected : words.expected;
    VELHLSFinding finding = findingOf(rule.rule, first.line.text, place, expected, seenIn(broken));
    finding.uri = first.text->uri;
    if (!words.source.empty()) finding.source = words.source;
    // What was not read is no matter of a profile.
    finding.profile = rule.level.empty() ? "library" : VELHLSStandard::nameOf(profile);
    if (!rule.level.empty()) {
        finding.clause = clauseOf(finding.source);
        finding.level = rule.level;
    }
    if (words.related.text != nullptr)
        finding.related.push_back(relatedPlace(words.related, words.relatedSeen, first.text));
    const std::size_t named = std::min(broken.places.size(), mostRelated);
    for (std::size_t other = 1; other < named; ++other) {
        const BrokenPlace& each = broken.places[other];
        finding.related.push_back(relatedPlace(each.place, each.seen, first.text));
    }
    findings_.add(key, std::move(finding), first.text->order);
}

std::string durationText(double seconds) {
    const std::string text = secondsText(std::round(seconds * 1000.0) / 1000.0);
    return text + (text == "1" ? " second" : " seconds");
}

std::string rateText(double rate) {
    return std::to_string(std::llround(std::min(rate, 1e18))) + " bit/s";
}

}  // namespace velhls
