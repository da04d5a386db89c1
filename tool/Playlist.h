#pragma once

#include <memory>
#include <string>
#include <variant>

#include "velhls/VELHLS.h"

#include "tool/PlaylistKind.h"

namespace tool {

/// A playlist that the library accepted.
struct Playlist {
    /// Its name in messages, its text as it was read, and what it was read as.
    std::string name;
    std::string text;
    PlaylistKind kind = PlaylistKind::Detect;
    /// One of the two, never null.
    std::variant<std::shared_ptr<VELHLSParsedManifest>, std::shared_ptr<VELHLSMediaStream>> model;
    /// What the parse reported.
    VELHLSParsingStatus status;
};

/// Reads the file ("-" for standard input) and parses it as the kind that was asked for, or else as the kind
/// that its tags tell. Throws a Failure when it cannot be read, has more than so many bytes, or is rejected:
/// then with all errors, as "file:line: error: message [rule]".
[[nodiscard]] Playlist readPlaylist(const std::string& path, PlaylistKind askedKind, std::size_t mostBytes);

/// How the text of a playlist is written: as the models render it, or as RFC 8216 wants it.
enum class Writing { Rendered, Conformant };

/// The playlist's clean text. Throws a Failure when it cannot be written.
[[nodiscard]] std::string cleanText(const Playlist& playlist, Writing writing);

/// What the clean text no longer holds, a line for each rule; empty when it holds all.
[[nodiscard]] std::string describeLosses(const Playlist& playlist, Writing writing);

}  // namespace tool
