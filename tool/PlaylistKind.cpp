#include "tool/PlaylistKind.h"

namespace tool {

std::string_view nameOf(PlaylistKind kind) {
    return kind == PlaylistKind::Master ? "master" : "media";
}

PlaylistKind kindNamed(std::string_view name) {
    if (name == "master") return PlaylistKind::Master;
    return name == "media" ? PlaylistKind::Media : PlaylistKind::Detect;
}

PlaylistKind decideKind(const std::string& text, PlaylistKind asked) {
    if (asked != PlaylistKind::Detect) return asked;
    const auto detection = VELHLSDiagnostics::detectKind(text);
    return detection ? detection->kind : PlaylistKind::Detect;
}

}  // namespace tool
