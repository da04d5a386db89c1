#include "tool/FindingChoice.h"

#include <algorithm>
#include <utility>

namespace tool {

void FindingCounts::add(const VELHLSFinding& finding) {
    bySeverity[static_cast<std::size_t>(finding.severity)] += 1 + finding.suppressed;
}

void FindingCounts::add(const FindingCounts& counts) {
    for (std::size_t severity = 0; severity < bySeverity.size(); ++severity)
        bySeverity[severity] += counts.bySeverity[severity];
}

std::vector<VELHLSFinding> FindingChoice::chosenOf(std::vector<VELHLSFinding> findings) const {
    const auto isDisabled = [this](const VELHLSFinding& finding) {
        return disabledRules.count(finding.ruleId) != 0;
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isDisabled), findings.end());
    for (VELHLSFinding& finding : findings) {
        const auto severity = severities.find(finding.ruleId);
        if (severity != severities.end()) finding.severity = severity->second;
    }
    return findings;
}

std::vector<VELHLSFinding> FindingChoice::shownOf(std::vector<VELHLSFinding> findings) const {
    const auto isHidden = [this](const VELHLSFinding& finding) { return finding.severity < leastShown; };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isHidden), findings.end());
    return findings;
}

bool FindingChoice::fails(const FindingCounts& counts) const {
    for (const auto severity : {VELHLSFinding::Note, VELHLSFinding::Warning, VELHLSFinding::Error}) {
        if (severity >= leastFailing && counts.of(severity) != 0) return true;
    }
    return false;
}

VELHLSFinding::Severity severityNamed(const std::string& name) {
    if (name == "error") return VELHLSFinding::Error;
    return name == "warning" ? VELHLSFinding::Warning : VELHLSFinding::Note;
}

}  // namespace tool
