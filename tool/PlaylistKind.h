#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "velhls/VELHLSCheck.h"

namespace tool {

using PlaylistKind = VELHLSDiagnostics::PlaylistKind;

/// "master" or "media".
[[nodiscard]] std::string_view nameOf(PlaylistKind kind);

/// What "auto", "master" and "media" ask for.
[[nodiscard]] PlaylistKind kindNamed(std::string_view name);

/// What a text is read as: what was asked for, or else what its tags tell. Detect when they tell nothing.
[[nodiscard]] PlaylistKind decideKind(const std::string& text, PlaylistKind asked);

}  // namespace tool
