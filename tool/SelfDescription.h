#pragma once

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

/// Adds the hidden option --self-description=man|bash|zsh|fish, with which the build has the command write its manual
/// page and its completions: so there is one description of the command line. To be called last.
void addSelfDescription(CLI::App& app);

}  // namespace tool
