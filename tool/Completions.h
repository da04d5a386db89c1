#pragma once

#include <string>

#include "tool/CommandOutline.h"

namespace tool {

/// Completions of the command for bash: subcommands, options, and the values of options.
[[nodiscard]] std::string bashCompletion(const CommandOutline& command);

/// The same for zsh, with descriptions.
[[nodiscard]] std::string zshCompletion(const CommandOutline& command);

/// The same for fish, with descriptions.
[[nodiscard]] std::string fishCompletion(const CommandOutline& command);

}  // namespace tool
