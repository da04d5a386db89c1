// Internal to the library, not installed: dates and times as text.
#pragma once

#include <string>
#include <string_view>

namespace velhls {

/// See VELHLSUtility::parseTimestamp.
[[nodiscard]] double parseTimestamp(std::string_view text);

/// See VELHLSUtility::renderTimestamp.
void renderTimestamp(double seconds, std::string& out);

}  // namespace velhls
