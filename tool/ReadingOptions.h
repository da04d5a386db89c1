#pragma once

#include <cstddef>

#include "tool/PlaylistKind.h"

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

/// Adds --kind and --max-bytes, which the commands that read playlists have in common.
void addReadingOptions(CLI::App& command, PlaylistKind& kind, std::size_t& mostBytes);

/// Adds --max-bytes alone.
void addMaxBytesOption(CLI::App& command, std::size_t& mostBytes);

}  // namespace tool
