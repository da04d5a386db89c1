#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tool {

/// An option or an argument of a command, as the manual page and the completions need it.
struct OptionOutline {
    std::vector<std::string> names;  ///< "-o" and "--output"; for an argument its name alone
    bool isArgument = false;         ///< it stands for itself, after no name
    bool takesValue = false;
    bool repeats = false;              ///< it takes any number of values
    std::string valueName;             ///< what the help calls the value: "TEXT", "RULE"
    std::vector<std::string> choices;  ///< the only values it takes; empty when there is no such list
    std::vector<std::string>
        offered;  ///< what completions offer: the choices, or what else is known of the values
    std::string defaultValue;
    std::string description;

    /// A text without a list of choices and without a name of its own is completed as a file.
    [[nodiscard]] bool takesFile() const {
        return takesValue && choices.empty() && valueName == "TEXT" && (!isArgument || names[0] == "FILE");
    }
};

/// A command or subcommand.
struct CommandOutline {
    std::string name;
    std::string description;
    std::string footer;
    std::vector<OptionOutline> options;
    std::vector<CommandOutline> subcommands;
};

/// Reads the outline from the description that the command line is parsed with, hidden options left out.
[[nodiscard]] CommandOutline outlineOf(const CLI::App& app);

}  // namespace tool
