// Internal to the library, not installed: the one table of all rules.
#pragma once

#include <array>
#include <cstddef>

#include "velhls/common/Rule.h"
#include "velhls/diagnostics/VELHLSRule.h"

namespace velhls {

/// The number of enumerators of Rule.
inline constexpr std::size_t ruleCount = static_cast<std::size_t>(Rule::patternTooLarge) + 1;

[[nodiscard]] const VELHLSRule& rowOf(Rule rule);

[[nodiscard]] const std::array<VELHLSRule, ruleCount>& ruleTable();

}  // namespace velhls
