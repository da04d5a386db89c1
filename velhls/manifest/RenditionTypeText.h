// Internal to the library, not installed: rendition types as the master playlist writes them, as the TYPE of
// a rendition and as the name of a variant's group reference.
#pragma once

#include <optional>
#include <string_view>

#include "velhls/manifest/VELHLSMediaStreamRendition.h"

namespace velhls {

/// Nothing for a text that names no type.
[[nodiscard]] std::optional<VELHLSMediaStreamRendition::RenditionType> renditionTypeNamed(
    std::string_view text);

}  // namespace velhls
