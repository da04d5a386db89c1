#pragma once

#include <optional>
#include <string>

#include "tool/Check.h"

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

/// What the command line of `velhls check` fills.
struct CheckOptions {
    CheckRequest request;
    /// The file with options; nothing for the nearest.
    std::optional<std::string> config;
};

/// Adds the subcommand `check`, which fills the options, runs, and leaves its exit status.
void addCheckCommand(CLI::App& app, CheckOptions& options, ExitStatus& status);

}  // namespace tool
