#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "velhls/VELHLS.h"

#include "tool/PlaylistKind.h"

namespace tool {

/// A playlist that the library accepted.
struct Playlist {
    /// One of the two, never null.
    std::variant<std::shared_ptr<VELHLSParsedManifest>, std::shared_ptr<VELHLSMediaStream>> model;
    /// What the parse reported.
    VELHLSParsingStatus status;
};

/// Reads the file ("-" for standard input) and parses it as the kind that was asked for, or else as the kind
/// that its tags tell. Throws a Failure when it cannot be read or is rejected: "file:line: error: reason",
/// with the line where the reader stopped.
[[nodiscard]] Playlist readPlaylist(const std::string& path, std::optional<PlaylistKind> askedKind);

/// The playlist's clean text.
[[nodiscard]] std::string cleanText(const Playlist& playlist);

}  // namespace tool
