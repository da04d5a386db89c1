#pragma once

#include <string_view>

namespace tool {

/// The page of the rule with this id, as docs/rules has it; empty for an unknown one.
[[nodiscard]] std::string_view pageOf(std::string_view ruleId);

}  // namespace tool
