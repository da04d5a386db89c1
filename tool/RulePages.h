#pragma once

#include <string>
#include <string_view>

#include "velhls/VELHLSCheck.h"

namespace tool {

/// The page of the rule with this id in docs/standard or docs/comparison, or docs/rules for those of the library; empty for
/// an unknown one.
[[nodiscard]] std::string_view pageOfStandard(std::string_view ruleId);
[[nodiscard]] std::string_view pageOfLibrary(std::string_view ruleId);

/// The page of the rule, which knows its profile.
[[nodiscard]] inline std::string_view pageOf(const VELHLSRule& rule) {
    return rule.profile == "library" ? pageOfLibrary(rule.id) : pageOfStandard(rule.id);
}

}  // namespace tool
