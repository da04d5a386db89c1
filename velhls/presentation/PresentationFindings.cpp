#include "velhls/presentation/PresentationFindings.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "velhls/common/ReasonText.h"

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
    Count& count = counts_[{&rule, profile}];
    if (count.kept == mostOfOneRule) {
        ++entries_[count.last].finding.suppressed;
        return;
    }
    ++count.kept;
    count.last = entries_.size();

    const PresentationPlace& first = broken.places.front().place;
    const Place place = {first.line.number, columnOf(first), first.piece.size()};
    VELHLSFinding finding;
    finding.severity = rule.rule.severity;
    finding.ruleId = rule.rule.id;
    finding.uri = first.text->uri;
    finding.line = place.line;
    finding.column = place.column;
    finding.length = place.length;
    const std::string_view expected = words.expected.empty() ? rule.rule.expected : words.expected;
    finding.message = messageOf(first.line.text, place, expected, seenIn(broken));
    finding.source = words.source.empty() ? rule.rule.source : words.source;
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
    entries_.push_back({std::move(finding), first.text->order});
}

std::vector<VELHLSFinding> PresentationFindings::takeAll() {
    const auto orderOf = [](const Entry& entry) {
        return std::make_tuple(entry.text, entry.finding.line, entry.finding.column);
    };
    std::stable_sort(entries_.begin(), entries_.end(), [orderOf](const Entry& left, const Entry& right) {
        return orderOf(left) < orderOf(right);
    });
    std::vector<VELHLSFinding> findings;
    findings.reserve(entries_.size());
    for (Entry& entry : entries_)
        findings.push_back(std::move(entry.finding));
    entries_.clear();
    counts_.clear();
    return findings;
}

std::string durationText(double seconds) {
    const long long milliseconds = std::llround(std::min(std::fabs(seconds), 1e12) * 1000.0);
    std::string fraction = std::to_string(1000 + milliseconds % 1000).substr(1);
    fraction.erase(fraction.find_last_not_of('0') + 1);
    std::string text = (seconds < 0.0 ? "-" : "") + std::to_string(milliseconds / 1000);
    if (!fraction.empty()) text += "." + fraction;
    return text + (text == "1" ? " second" : " seconds");
}

std::string rateText(double rate) {
    return std::to_string(std::llround(std::min(rate, 1e18))) + " bit/s";
}

}  // namespace velhls
