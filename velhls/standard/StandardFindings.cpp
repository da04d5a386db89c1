#include "velhls/standard/StandardFindings.h"

#include <algorithm>
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
    std::stable_sort(findings_.begin(), findings_.end(),
                     [](const VELHLSFinding& left, const VELHLSFinding& right) {
                         return std::tie(left.line, left.column) < std::tie(right.line, right.column);
                     });
    counts_.clear();
    return std::exchange(findings_, {});
}

}  // namespace velhls
