#include "velhls/document/BoundedFindings.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "velhls/common/ReasonText.h"

namespace velhls {

bool BoundedFindings::isFull(const Key& key) {
    const Count& count = counts_[key];
    if (count.kept < most_) return false;
    ++entries_[count.last].finding.suppressed;
    return true;
}

void BoundedFindings::add(const Key& key, VELHLSFinding finding, std::size_t group) {
    Count& count = counts_[key];
    ++count.kept;
    count.last = entries_.size();
    entries_.push_back({std::move(finding), group});
}

void BoundedFindings::addSuppressed(const Key& key, std::size_t count) {
    if (count > 0) entries_[counts_[key].last].finding.suppressed += count;
}

std::vector<VELHLSFinding> BoundedFindings::takeAll() {
    // By their places in the list, since a finding is large.
    std::vector<std::size_t> order(entries_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto placeOf = [this](std::size_t index) {
        const Entry& entry = entries_[index];
        return std::make_tuple(entry.group, entry.finding.line, entry.finding.column, index);
    };
    std::sort(order.begin(), order.end(),
              [placeOf](std::size_t left, std::size_t right) { return placeOf(left) < placeOf(right); });
    std::vector<VELHLSFinding> findings;
    findings.reserve(entries_.size());
    for (const std::size_t index : order)
        findings.push_back(std::move(entries_[index].finding));
    entries_.clear();
    counts_.clear();
    return findings;
}

VELHLSFinding findingOf(const VELHLSRule& rule, std::string_view line, const Place& place,
                        std::string_view expected, std::string_view seen) {
    VELHLSFinding finding;
    finding.severity = rule.severity;
    finding.ruleId = rule.id;
    finding.line = place.line;
    finding.column = place.column;
    finding.length = place.length;
    finding.message = messageOf(line, place, expected, seen);
    finding.source = rule.source;
    return finding;
}

}  // namespace velhls
