#pragma once

#include "tool/Compare.h"

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

/// Adds `velhls compare`, which takes its options into the request, and sets the status.
void addCompareCommand(CLI::App& app, CompareRequest& request, ExitStatus& status);

}  // namespace tool
