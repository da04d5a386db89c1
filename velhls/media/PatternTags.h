// Internal to the library, not installed: how the first line of a media pattern is told (vendor extension).
#pragma once

#include <string_view>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"

namespace velhls {

/// True when "#ZOR-PATTERN_START" begins the line; anything may follow.
[[nodiscard]] constexpr bool startsPattern(std::string_view line) {
    return startsWith(line, "#") && startsWith(line.substr(1), tag::zorPatternStart);
}

}  // namespace velhls
