// Internal to the library, not installed: the one table of what mends which rule.
#pragma once

#include <string_view>
#include <vector>

#include "velhls/document/VELHLSDocument.h"
#include "velhls/document/VELHLSFinding.h"

namespace velhls {

/// Gives each finding its fixes, but for those of one line that has very many: the first of them have theirs. They must be of this document, and in the order of their places but for those between
/// records: then it takes time linear in the text, but for sorting.
void addFixes(const VELHLSDocument& document, VELHLSDocument::Kind kind,
              std::vector<VELHLSFinding>& findings);

/// What the fixes of a rule do, each after its class; empty for a rule that has none.
[[nodiscard]] std::string_view whatFixesDo(std::string_view ruleId);

}  // namespace velhls
