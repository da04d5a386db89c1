#pragma once

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

/// Adds the subcommand `rules`.
void addRulesCommand(CLI::App& app);

/// Adds the subcommand `explain`.
void addExplainCommand(CLI::App& app);

}  // namespace tool
