// Internal to the library, not installed: when two values mean the same.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "velhls/comparison/Difference.h"
#include "velhls/document/VELHLSLine.h"

namespace velhls {

/// The same text, number or moment.
[[nodiscard]] bool isSameValue(std::string_view left, std::string_view right);

/// The same text for two lists that say the same: the order of attributes, and those of a key that have their default, do not
/// count.
[[nodiscard]] std::string canonicalList(std::string_view list);

/// Adds what the attributes of two lines differ in.
void compareAttributes(const VELHLSLine& before, const VELHLSLine& now, Aspect aspect,
                       const std::string& path, Differences& differences);

/// The text, or of a long one its beginning and "...": what is named in many changes must not be long.
[[nodiscard]] std::string shortened(std::string_view text);

/// "2026-11-21T10:00:05.250Z" for microseconds since the epoch.
[[nodiscard]] std::string dateText(std::int64_t microseconds);

}  // namespace velhls
