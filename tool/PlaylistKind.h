#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tool {

enum class PlaylistKind { master, media };

/// "master" or "media".
[[nodiscard]] std::string_view nameOf(PlaylistKind kind);

/// What a text was taken for, and why.
struct KindDecision {
    PlaylistKind kind;
    /// For a person: "because of EXT-X-STREAM-INF in line 3".
    std::string reason;
};

/// Decides by the tags that only one kind of playlist has (RFC 8216, sections 4.3.2 to 4.3.4). Where both are
/// there a variant makes it a master playlist, since no media playlist has one; otherwise the first such tag
/// decides. Nothing when there is no such tag.
[[nodiscard]] std::optional<KindDecision> detectKind(std::string_view text);

}  // namespace tool
