// Internal to the library, not installed: EXT-X-DEFINE, which may stand between segments and among their
// tags.
#pragma once

#include <string_view>

#include "velhls/common/VELHLSUtility.h"

namespace velhls {

/// Reads what stands behind the tag's colon and sets the variable, replacing an earlier value. False, with
/// the map as it was, when it is no attribute list or lacks NAME or VALUE.
[[nodiscard]] bool takeDefineTag(std::string_view attributes, VELHLSDefineMap& defines);

}  // namespace velhls
