// Internal to the library, not installed: the lines of one media pattern.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "velhls/common/LineReader.h"
#include "velhls/common/Recorder.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/media/VELHLSMediaPattern.h"

namespace velhls {

/// Reads a pattern from its start line on. `head` is what its body begins with. See
/// VELHLSMediaPattern::parseMediaPattern.
[[nodiscard]] std::shared_ptr<VELHLSMediaPattern> readPattern(std::string_view startLine, std::string head,
                                                              LineReader& lines, VELHLSParsingStatus* status,
                                                              Recorder* recorder);

}  // namespace velhls
