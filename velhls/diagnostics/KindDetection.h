// Internal to the library, not installed: which kind of playlist a text is, and why it may be none.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "velhls/diagnostics/VELHLSDiagnostics.h"

namespace velhls {

/// See VELHLSDiagnostics::detectKind.
[[nodiscard]] std::optional<VELHLSDiagnostics::Detection> detectKind(std::string_view text);

/// What a text is for which no kind was detected: "an IPTV list", "HTML", for the message.
[[nodiscard]] std::string describeNoPlaylist(std::string_view text);

}  // namespace velhls
