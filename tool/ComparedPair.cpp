#include "tool/ComparedPair.h"

#include <algorithm>

namespace tool {

ExitStatus ComparedPair::status() const {
    if (!failure.empty()) return unusable;
    const bool isForbidden =
        std::any_of(comparison.findings.begin(), comparison.findings.end(),
                    [](const VELHLSFinding& finding) { return finding.severity > VELHLSFinding::Note; });
    if (isForbidden) return forbidden;
    return comparison.changes.empty() ? success : rejected;
}

void SeriesSummary::add(const ComparedPair& pair) {
    switch (pair.status()) {
        case success:
            ++unchanged;
            break;
        case rejected:
            ++changed;
            break;
        case unusable:
            ++failed;
            break;
        case tool::forbidden:
            ++forbidden;
            break;
    }
    for (const VELHLSFinding& finding : pair.comparison.findings) {
        const std::size_t count = finding.suppressed + 1;
        rules[finding.ruleId] += count;
        if (finding.severity == VELHLSFinding::Error) errors += count;
        if (finding.severity == VELHLSFinding::Warning) warnings += count;
        if (finding.severity == VELHLSFinding::Note) notes += count;
    }
}

ExitStatus SeriesSummary::status() const {
    if (failed > 0) return unusable;
    if (forbidden > 0) return tool::forbidden;
    return changed > 0 ? rejected : success;
}

}  // namespace tool
