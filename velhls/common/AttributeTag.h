// Internal to the library, not installed: tags that are nothing without at least one attribute.
#pragma once

#include <string_view>

#include "velhls/common/AttributeList.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"

namespace velhls {

/// Reads the attributes of a tag line, whose trailing line ends are left out of it. False when they are malformed or
/// when there are none.
[[nodiscard]] inline bool parseNonEmptyAttributes(std::string_view line, AttributeList& attributes,
                                                  Recorder* recorder) {
    const TagLine tagLine(withoutTrailing(line, lineEnds));
    if (!attributes.parse(tagLine.value, recorder)) return false;
    if (attributes.empty()) return rejectMissing(recorder, Rule::attributeListEmpty, tagLine.name);
    if (recorder != nullptr) recorder->attributesRead(tagLine.name, attributes);
    return true;
}

}  // namespace velhls
