#pragma once

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

struct FindingChoice;

/// Adds what the commands that find something have in common: --severity, --fail-on, --disable and --severity-of.
void addFindingOptions(CLI::App& command, FindingChoice& choice);

/// --color.
void addColourOption(CLI::App& command, std::string& colour);

}  // namespace tool
