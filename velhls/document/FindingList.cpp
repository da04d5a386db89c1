#include "velhls/document/FindingList.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "velhls/common/ReasonText.h"

namespace velhls {

bool FindingList::isFull(const VELHLSRule& rule) {
    const Count& count = counts_[rule.id];
    if (count.kept < mostOfOneRule) return false;
    ++entries_[count.lastEntry].finding.suppressed;
    return true;
}

void FindingList::add(const VELHLSRule& rule, const Place& place, std::string_view seen) {
    const bool isError = rule.severity == VELHLSFinding::Error;
    if (isError && !readingEnded_) lineRejected_ = true;
    if (isFull(rule)) return;
    Count& count = counts_[rule.id];
    ++count.kept;
    count.lastEntry = entries_.size();

    Entry entry;
    entry.late = isError && readingEnded_ && lineRejected_;
    entry.finding.severity = rule.severity;
    entry.finding.ruleId = rule.id;
    entry.finding.line = place.line;
    entry.finding.column = place.column;
    entry.finding.length = place.length;
    entry.finding.message = messageOf(lines_.line(place.line), place, rule.expected, seen);
    entry.finding.source = rule.source;
    entry.finding.profile = "library";
    entries_.push_back(std::move(entry));
}

void FindingList::addSuppressed(const VELHLSRule& rule, std::size_t count) {
    if (count > 0) entries_[counts_[rule.id].lastEntry].finding.suppressed += count;
}

std::vector<VELHLSFinding> FindingList::takeAll() {
    const auto orderOf = [](const Entry& entry) {
        return std::make_tuple(entry.late, entry.finding.line, entry.finding.column);
    };
    std::stable_sort(entries_.begin(), entries_.end(), [orderOf](const Entry& left, const Entry& right) {
        return orderOf(left) < orderOf(right);
    });
    std::vector<VELHLSFinding> findings;
    findings.reserve(entries_.size());
    for (Entry& entry : entries_)
        findings.push_back(std::move(entry.finding));
    return findings;
}

}  // namespace velhls
