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
[[nodiscard]] inline std::optional<AttributeList> parseNonEmptyAttributes(std::string_view line,
                                                                          Recorder* recorder) {
    const TagLine tagLine(withoutTrailing(line, lineEnds));
    std::optional<AttributeList> attributes = AttributeList::parse(tagLine.value, recorder);
    if (!attributes) return std::nullopt;
    if (attributes->empty()) {
        tellMissing(recorder, Rule::attributeListEmpty, tagLine.name);
        return std::nullopt;
    }
    if (recorder != nullptr) recorder->attributesRead(tagLine.name, *attributes);
    return attributes;
}

}  // namespace velhls
