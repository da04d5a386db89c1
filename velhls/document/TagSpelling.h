// Internal to the library, not installed: tags that are nearly written.
#pragma once

#include <string>
#include <string_view>

#include "velhls/document/VELHLSTagDefinition.h"

namespace velhls {

/// The tag whose name this is but for the case of its letters, its hyphens, its underscores and blanks; null for any other
/// name, and for the tag's own.
[[nodiscard]] const VELHLSTagDefinition* tagSpelledLike(std::string_view name);

/// ", did you mean EXT-X-ENDLIST?" where there is such a tag; nothing for any other name.
[[nodiscard]] std::string didYouMean(std::string_view name);

}  // namespace velhls
