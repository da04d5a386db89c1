#pragma once

#include <set>
#include <string>
#include <vector>

#include "velhls/document/VELHLSFinding.h"

/// Findings as tests expect them.
namespace finding {

/// "version-too-low" for each finding of at least this severity, sorted, each once, with commas between them.
inline std::string rulesIn(const std::vector<VELHLSFinding>& findings,
                           VELHLSFinding::Severity least = VELHLSFinding::Note) {
    std::set<std::string> rules;
    for (const VELHLSFinding& finding : findings) {
        if (finding.severity >= least) rules.insert(finding.ruleId);
    }
    std::string joined;
    for (const std::string& rule : rules)
        joined += (joined.empty() ? "" : ",") + rule;
    return joined;
}

}  // namespace finding
