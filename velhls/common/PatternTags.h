// Internal to the library, not installed: how the lines of media patterns are told (vendor extension).
#pragma once

#include <string_view>

#include "velhls/common/Names.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"

namespace velhls {

/// True when "#ZOR-PATTERN_START" begins the line; anything may follow.
[[nodiscard]] constexpr bool startsPattern(std::string_view line) {
    return startsWith(line, "#") && startsWith(line.substr(1), tag::zorPatternStart);
}

/// See VELHLSUtility::isMediaPatternTag.
[[nodiscard]] inline bool isPatternTag(std::string_view line) {
    if (!isTagOrComment(line)) return false;
    const TagLine tagLine(line);
    if (!tagLine.hasColon) return false;
    return tagLine.name == tag::zorPatternStart || tagLine.name == tag::zorPatternEnd ||
           tagLine.name == tag::zorPatternRepeat || tagLine.name == tag::zorDefineIncrement;
}

}  // namespace velhls
