// Internal to the library, not installed: the lines of one media pattern.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "velhls/common/LineReader.h"
#include "velhls/common/Reading.h"
#include "velhls/common/Reason.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/media/VELHLSMediaPattern.h"

namespace velhls {

/// Reads a pattern from its start line on. `head` is what its body begins with. Null, with the reason, when it is rejected.
/// See VELHLSMediaPattern::parseMediaPattern. Status and reading may be null.
[[nodiscard]] std::shared_ptr<VELHLSMediaPattern> readPattern(std::string_view startLine, std::string head,
                                                              LineReader& lines, VELHLSParsingStatus* status,
                                                              Reading* reading, Reason& why);

}  // namespace velhls
