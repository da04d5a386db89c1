#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "velhls/VELHLSCheck.h"

namespace tool {

/// How many findings there are of each severity, those that are not listed among them.
struct FindingCounts {
    std::array<std::size_t, 3> bySeverity = {};

    void add(const VELHLSFinding& finding);
    void add(const FindingCounts& counts);

    [[nodiscard]] std::size_t of(VELHLSFinding::Severity severity) const {
        return bySeverity[static_cast<std::size_t>(severity)];
    }
};

/// Which findings the user wants to see, how much they weigh, and which of them fail the command.
struct FindingChoice {
    VELHLSFinding::Severity leastShown = VELHLSFinding::Warning;
    /// What is shown makes no difference to this.
    VELHLSFinding::Severity leastFailing = VELHLSFinding::Error;
    std::set<std::string> disabledRules;
    std::map<std::string, VELHLSFinding::Severity> severities;

    /// The findings but for those of disabled rules, each with the severity that was chosen.
    [[nodiscard]] std::vector<VELHLSFinding> chosenOf(std::vector<VELHLSFinding> findings) const;

    /// Those of them that are shown.
    [[nodiscard]] std::vector<VELHLSFinding> shownOf(std::vector<VELHLSFinding> findings) const;

    /// Whether there is one that fails the command.
    [[nodiscard]] bool fails(const FindingCounts& counts) const;
};

/// "error", "warning" or "note".
[[nodiscard]] VELHLSFinding::Severity severityNamed(const std::string& name);

}  // namespace tool
