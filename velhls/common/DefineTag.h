// Internal to the library, not installed: EXT-X-DEFINE, which may stand between segments and among their
// tags.
#pragma once

#include "velhls/common/Recorder.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/VELHLSUtility.h"

namespace velhls {

/// Reads the attributes of the tag and sets the variable, replacing an earlier value. False, with
/// the map as it was, when it is no attribute list or lacks NAME or VALUE.
[[nodiscard]] bool takeDefineTag(const TagLine& tagLine, VELHLSDefineMap& defines, Recorder* recorder);

}  // namespace velhls
