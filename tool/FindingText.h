#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

namespace tool {

/// "file:line:column: error: message [rule]", with control characters made visible.
[[nodiscard]] std::string describe(const std::string& name, const VELHLSFinding& finding);

/// "file:line:column: rejected: message [rule]"
[[nodiscard]] std::string describeRejection(const std::string& name, const VELHLSReason& reason);

/// "file:line: error: message [rule]"
[[nodiscard]] std::string describeByLine(const std::string& name, const VELHLSFinding& finding);

/// "file:line:column: error: message [rule]" for a terminal: in colours when they are asked for, with the line
/// of the text and a caret below the place. Every line ends in a line feed.
[[nodiscard]] std::string describeWithLine(const std::string& name, const VELHLSFinding& finding,
                                           std::string_view line, bool inColour);

/// How findings are shown.
struct FindingStyle {
    /// With the line of the text, and a caret below the place.
    bool hasLines = false;
    bool inColour = false;
};

/// What "auto", "always" and "never" ask for: lines and colours for a terminal, or always; never colours, or not where the
/// environment has NO_COLOR.
[[nodiscard]] FindingStyle findingStyleOf(const std::string& colour);

/// The findings of the file's text, a line each or more.
[[nodiscard]] std::string describeAll(const std::string& name, std::string_view text,
                                      const std::vector<VELHLSFinding>& findings, FindingStyle style);

}  // namespace tool
