#pragma once

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

/// Adds the subcommands `rules` and `explain`.
void addRuleCommands(CLI::App& app);

}  // namespace tool
