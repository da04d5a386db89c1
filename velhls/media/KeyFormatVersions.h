// Internal to the library, not installed: KEYFORMATVERSIONS as text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/Recorder.h"

namespace velhls {

/// The numbers between the slashes. An empty piece is no number: its conversion throws.
[[nodiscard]] std::vector<std::int32_t> splitKeyFormatVersions(std::string_view text, Recorder* recorder);

/// The numbers in decimal with slashes between them; an empty text for none.
[[nodiscard]] std::string joinKeyFormatVersions(const std::vector<std::int32_t>& versions);

}  // namespace velhls
