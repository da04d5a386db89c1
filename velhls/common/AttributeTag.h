// Internal to the library, not installed: tags that are nothing without at least one attribute.
#pragma once

#include <optional>
#include <string_view>

#include "velhls/common/AttributeList.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"

namespace velhls {

/// The attributes of a tag line, whose trailing line ends are left out of it. Nothing when they are malformed
/// or when there are none.
[[nodiscard]] inline std::optional<AttributeList> parseNonEmptyAttributes(std::string_view line) {
    std::optional<AttributeList> attributes =
        AttributeList::parse(TagLine(withoutTrailing(line, lineEnds)).value);
    if (attributes && attributes->empty()) return std::nullopt;
    return attributes;
}

}  // namespace velhls
