#pragma once

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

struct InputNames;

/// Adds FILE, --files-from and --null, which the commands that read many playlists have in common.
void addInputOptions(CLI::App& command, InputNames& inputs);

}  // namespace tool
