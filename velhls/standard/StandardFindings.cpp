#include "velhls/standard/StandardFindings.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

#include "velhls/common/Reading.h"
#include "velhls/common/ReasonText.h"

namespace velhls {

void StandardFindings::add(const StandardRule& rule, const VELHLSLine& line, std::string_view piece,
                           const FindingWords& words) {
    Count& count = counts_[&rule];
    if (count.kept == mostOfOneRule) {
        ++findings_[count.last].suppressed;
        return;
    }
    ++count.kept;
    count.last = findings_.size();

    const Place place = {line.number, line.column(piece), piece.size()};
    VELHLSFinding finding;
    finding.severity = rule.rule.severity;
    finding.ruleId = rule.rule.id;
    finding.line = place.line;
    finding.column = place.column;
    finding.length = place.length;
    finding.message =
        messageOf(line.text, place, words.expected.empty() ? rule.rule.expected : words.expected, words.seen);
    finding.source = words.source.empty() ? rule.rule.source : words.source;
    finding.profile = profile_;
    finding.clause = clauseOf(finding.source);
    finding.level = rule.level;
    if (words.related != nullptr) finding.related.push_back(*words.related);
    findings_.push_back(std::move(finding));
}

std::vector<VELHLSFinding> StandardFindings::takeAll() {
    // By their places in the list, since a finding is large.
    std::vector<std::size_t> order(findings_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [this](std::size_t left, std::size_t right) {
        return std::make_tuple(findings_[left].line, findings_[left].column, left) <
               std::make_tuple(findings_[right].line, findings_[right].column, right);
    });
    std::vector<VELHLSFinding> sorted;
    sorted.reserve(findings_.size());
    for (const std::size_t place : order)
        sorted.push_back(std::move(findings_[place]));
    findings_.clear();
    counts_.clear();
    return sorted;
}

}  // namespace velhls
