#pragma once

#include <string>
#include <vector>

#include "velhls/VELHLSCheck.h"

namespace tool {

/// What the edits do to the document as a unified diff with three lines around each change; empty when they change nothing.
/// They must not overlap. The name stands for both files. The lines are as they are, whatever they hold.
[[nodiscard]] std::string unifiedDiff(const VELHLSDocument& document, const std::vector<VELHLSEdit>& edits,
                                      const std::string& name);

}  // namespace tool
