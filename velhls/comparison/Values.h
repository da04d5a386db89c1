// Internal to the library, not installed: when two values mean the same.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/comparison/Difference.h"
#include "velhls/document/VELHLSAttribute.h"
#include "velhls/document/VELHLSLine.h"

namespace velhls {

/// The same text, number or moment.
[[nodiscard]] bool isSameValue(std::string_view left, std::string_view right);

/// The attributes in the order of their names, those with one name in their order.
[[nodiscard]] std::vector<VELHLSAttribute> sortedAttributes(const VELHLSLine& line);

/// Whether two keys or two maps, given by what follows their colon, say the same: the order of attributes and those that have
/// their default do not count.
[[nodiscard]] bool isSameList(std::string_view left, std::string_view right);

/// Adds what the attributes of two lines differ in.
void compareAttributes(const VELHLSLine& before, const VELHLSLine& now, Aspect aspect,
                       const std::string& path, Differences& differences);

/// "2026-11-21T10:00:05.250Z" for microseconds since the epoch.
[[nodiscard]] std::string dateText(std::int64_t microseconds);

/// "6.006": at most six decimals.
[[nodiscard]] std::string secondsText(double seconds);

}  // namespace velhls
