// Internal to the library, not installed: the one table of the reasons for which the models reject what they read.
#pragma once

#include <cstddef>
#include <string_view>

#include "velhls/common/PrivateExport.h"
#include "velhls/common/Rule.h"

namespace velhls {

/// The number of enumerators of Rule.
inline constexpr std::size_t ruleCount = static_cast<std::size_t>(Rule::patternTooLarge) + 1;

/// What is to be said of a rule. See VELHLSRule.
struct ReasonRow {
    std::string_view id;
    std::string_view source;
    std::string_view expected;
    std::string_view summary;
};

[[nodiscard]] VELHLS_PRIVATE_API ReasonRow rowOf(Rule rule);

}  // namespace velhls
