#include "velhls/standard/StandardFindings.h"

#include <utility>

namespace velhls {

void StandardFindings::add(const StandardRule& rule, const VELHLSLine& line, std::string_view piece,
                           const FindingWords& words) {
    const BoundedFindings::Key key = {rule.rule.id, profile_};
    if (findings_.isFull(key)) return;

    const std::string_view expected = words.expected.empty() ? rule.rule.expected : words.expected;
    VELHLSFinding finding = findingOf(rule.rule, line.text, {line.number, line.column(piece), piece.size()},
                                      expected, words.seen);
    if (!words.source.empty()) finding.source = words.source;
    finding.profile = profile_;
    finding.clause = clauseOf(finding.source);
    finding.level = words.level.empty() ? rule.level : words.level;
    if (words.related != nullptr) finding.related.push_back(*words.related);
    findings_.add(key, std::move(finding));
}

}  // namespace velhls
