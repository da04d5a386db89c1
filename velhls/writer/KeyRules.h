// Internal to the library, not installed: which keys can be written, and what they need.
#pragma once

#include <cstdint>
#include <string_view>

#include "velhls/media/VELHLSProtectionData.h"

namespace velhls {

/// Why the key cannot be written; empty when it can.
[[nodiscard]] std::string_view whyNoKey(const VELHLSProtectionData& key);

/// The lowest protocol version that has the key's attributes (RFC 8216, section 7).
[[nodiscard]] std::int32_t versionNeededBy(const VELHLSProtectionData& key);

}  // namespace velhls
