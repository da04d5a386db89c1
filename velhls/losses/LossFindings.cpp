#include "velhls/losses/LossFindings.h"

#include <utility>

namespace velhls {

void LossFindings::add(const VELHLSRule& rule, const Place& place, std::string_view seen) {
    const bool isError = rule.severity == VELHLSFinding::Error;
    if (isError && !readingEnded_) lineRejected_ = true;
    if (isFull(rule)) return;

    VELHLSFinding finding = findingOf(rule, lines_.line(place.line), place, rule.expected, seen);
    finding.profile = profile;
    findings_.add(keyOf(rule), std::move(finding), isError && readingEnded_ && lineRejected_ ? late : inTime);
}

}  // namespace velhls
