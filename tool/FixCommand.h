#pragma once

#include <optional>
#include <string>

#include "tool/Fix.h"

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

/// What the command line of `velhls fix` fills.
struct FixOptions {
    FixRequest request;
    /// The file with options; nothing for the nearest.
    std::optional<std::string> config;
};

/// Adds the subcommand `fix`, which fills the options, runs, and leaves its exit status.
void addFixCommand(CLI::App& app, FixOptions& options, ExitStatus& status);

}  // namespace tool
