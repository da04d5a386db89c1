// Internal to the library, not installed: EXT-X-DEFINE, which may stand between segments and among their
// tags.
#pragma once

#include "velhls/common/Recorder.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/VELHLSUtility.h"

namespace velhls {

/// Reads the attributes of the tag and sets the variable, replacing an earlier value. False, with
/// the map as it was, when it is no attribute list, lacks NAME or VALUE, or has a NAME that meets too many others
/// (VELHLSUtility::maximumCollidingNames).
[[nodiscard]] bool takeDefineTag(const TagLine& tagLine, VELHLSDefineMap& defines, Recorder* recorder);

}  // namespace velhls
