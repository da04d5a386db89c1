// Internal to the library, not installed: EXT-X-DEFINE, which may stand between segments and among their
// tags.
#pragma once

#include "velhls/common/Reason.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/VELHLSUtility.h"

namespace velhls {

/// Reads the attributes of the tag and sets the variable, replacing an earlier value. False, with
/// the reason, when it is no attribute list, lacks NAME or VALUE, or has a NAME that meets too many others
/// (VELHLSUtility::maximumCollidingNames).
[[nodiscard]] bool readDefineTag(const TagLine& tagLine, VELHLSDefineMap& defines, Reason& why);

}  // namespace velhls
