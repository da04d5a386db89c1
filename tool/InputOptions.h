#pragma once

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

struct FollowRequest;
struct InputNames;

/// Adds FILE, --files-from and --null, which the commands that read many playlists have in common.
void addInputOptions(CLI::App& command, InputNames& inputs);

/// Adds --follow, described so, and --root.
void addFollowOptions(CLI::App& command, FollowRequest& follow, const std::string& what);

}  // namespace tool
