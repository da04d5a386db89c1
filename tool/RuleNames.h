#pragma once

#include <string>
#include <vector>

namespace tool {

/// The ids of all rules of all profiles, each once.
[[nodiscard]] std::vector<std::string> ruleIds();

/// The ids of the rules that the user may have meant, the nearest first: those that hold the text, and those that few
/// letters make of it. Few, or none.
[[nodiscard]] std::vector<std::string> rulesNear(const std::string& text);

/// Empty for the id of a rule; for any other text what to tell the user, with the rules that are near.
[[nodiscard]] std::string whyNoRule(const std::string& id);

}  // namespace tool
