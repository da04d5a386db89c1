#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

/// The name of the file that is looked for.
inline constexpr char configName[] = ".velhls.toml";

/// Adds --config to a command, which names the file that readConfig is to read.
void addConfigOption(CLI::App& command, std::optional<std::string>& path);

/// Gives the options that the command line does not have the values that a file has for them:
///
///     severity = "note"                    for all commands with such an option
///
///     [check]
///     profile = ["rfc8216", "apple"]       for this command
///     disable = ["version-unknown"]
///
/// The file is that of the path, or without one `.velhls.toml` in the working directory or the nearest folder above it that
/// has one. To be called when the command line was read. Throws a Failure for a file that cannot be read, and for options
/// and values that there are not.
void readConfig(CLI::App& command, const std::optional<std::string>& path);

}  // namespace tool
