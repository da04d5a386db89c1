#pragma once

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

struct EditRequest;

/// Adds the subcommand `edit`, which fills the request and runs it.
void addEditCommand(CLI::App& app, EditRequest& request);

}  // namespace tool
