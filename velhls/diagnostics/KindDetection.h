// Internal to the library, not installed: which kind of playlist a text is, and why it may be none.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "velhls/diagnostics/VELHLSDiagnostics.h"
#include "velhls/document/VELHLSDocument.h"

namespace velhls {

/// Master or Media; Detect for a text that is neither.
[[nodiscard]] VELHLSDiagnostics::PlaylistKind kindOf(const VELHLSDocument& document);

/// See VELHLSDiagnostics::detectKind.
[[nodiscard]] std::optional<VELHLSDiagnostics::Detection> detectKind(std::string_view text);

/// Of a text that is neither kind of playlist: whether there is nothing to be said of its lines.
[[nodiscard]] bool isNoPlaylist(const VELHLSDocument& document);

/// What a text is for which no kind was detected: "an IPTV list", "HTML", for the message.
[[nodiscard]] std::string describeNoPlaylist(std::string_view text);

}  // namespace velhls
