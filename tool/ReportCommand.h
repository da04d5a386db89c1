#pragma once

#include <optional>
#include <string>

#include "tool/Check.h"

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

/// What the command line of `velhls report` fills.
struct ReportOptions {
    /// What is read and checked.
    CheckRequest request;
    /// Whether the files are versions of one playlist.
    bool isSeries = false;
    /// Seconds from one version to the next, if that is known.
    std::optional<double> elapsedSeconds;
    /// Where to write.
    std::string output = standardInput;
    /// "html" or "svg".
    std::string format = "html";
    /// The file with options; nothing for the nearest.
    std::optional<std::string> config;
};

/// Adds the subcommand `report`, which fills the options, runs, and leaves its exit status.
void addReportCommand(CLI::App& app, ReportOptions& options, ExitStatus& status);

}  // namespace tool
