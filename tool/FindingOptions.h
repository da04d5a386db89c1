#pragma once

#include <string>
#include <vector>

#include "velhls/VELHLSCheck.h"

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

struct FindingChoice;

/// Adds --profile, which may be repeated; what was in the list is the default.
void addProfileOption(CLI::App& command, std::vector<VELHLSDiagnostics::Profile>& profiles,
                      const std::string& what);

/// Adds what the commands that find something have in common: --severity, --fail-on, --disable and --severity-of.
void addFindingOptions(CLI::App& command, FindingChoice& choice);

/// --color.
void addColourOption(CLI::App& command, std::string& colour);

}  // namespace tool
