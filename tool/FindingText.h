#pragma once

#include <string>
#include <string_view>

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

}  // namespace tool
