// Internal to the library, not installed: KEYFORMATVERSIONS as text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/Reason.h"

namespace velhls {

/// The numbers between the slashes. An empty piece is no number: its conversion throws,
/// with the reason.
[[nodiscard]] std::vector<std::int32_t> splitKeyFormatVersions(std::string_view text, Reason& why);

/// The numbers in decimal with slashes between them; an empty text for none.
[[nodiscard]] std::string joinKeyFormatVersions(const std::vector<std::int32_t>& versions);

}  // namespace velhls
