#include "tool/CommandOutline.h"

#include <sstream>
#include <utility>

#include <CLI/CLI.hpp>

#include "tool/RuleNames.h"

namespace tool {

namespace {

/// The pieces of "auto,master,media", the list between the braces of a value's type.
std::vector<std::string> choicesIn(const std::string& typeName) {
    const std::size_t opening = typeName.find('{');
    const std::size_t closing = typeName.rfind('}');
    std::vector<std::string> choices;
    if (opening == std::string::npos || closing == std::string::npos) return choices;
    std::istringstream list(typeName.substr(opening + 1, closing - opening - 1));
    for (std::string choice; std::getline(list, choice, ',');)
        choices.push_back(choice);
    return choices;
}

/// "TEXT" of "TEXT" and of "TEXT:{auto,master}", and "RULE" of "TEXT:RULE".
std::string valueNameIn(const std::string& typeName) {
    const std::size_t colon = typeName.find(':');
    if (colon == std::string::npos || typeName[colon + 1] == '{') return typeName.substr(0, colon);
    return typeName.substr(colon + 1);
}

/// The names that a value called "RULE" may be, and the choices of any other.
std::vector<std::string> offeredFor(const OptionOutline& option) {
    return option.valueName == "RULE" ? ruleIds() : option.choices;
}

OptionOutline outlineOf(const CLI::Option& option) {
    OptionOutline outline;
    for (const std::string& name : option.get_snames())
        outline.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        outline.names.push_back("--" + name);
    outline.isArgument = outline.names.empty();
    if (outline.isArgument) outline.names.push_back(option.get_name());
    outline.takesValue = option.get_items_expected_max() > 0;
    outline.repeats = option.get_items_expected_max() > 1;
    const std::string typeName = option.get_type_name();
    outline.choices = choicesIn(typeName);
    outline.valueName = valueNameIn(typeName);
    outline.offered = offeredFor(outline);
    outline.defaultValue = option.get_default_str();
    outline.description = option.get_description();
    return outline;
}

std::vector<std::string> namesOf(const std::vector<CommandOutline>& commands) {
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const CommandOutline& command : commands)
        names.push_back(command.name);
    return names;
}

}  // namespace

CommandOutline outlineOf(const CLI::App& app) {
    CommandOutline outline{app.get_name(), app.get_description(), app.get_footer(), {}, {}};
    const auto isShown = [](const CLI::Option* option) { return !option->get_group().empty(); };
    for (const CLI::Option* option : app.get_options(isShown))
        outline.options.push_back(outlineOf(*option));
    const auto isNamed = [](const CLI::App* command) {
        return !command->get_name().empty() && !command->get_group().empty();
    };
    for (const CLI::App* command : app.get_subcommands(isNamed))
        outline.subcommands.push_back(outlineOf(*command));
    for (CommandOutline& subcommand : outline.subcommands) {
        for (OptionOutline& option : subcommand.options) {
            if (option.valueName == "COMMAND") option.offered = namesOf(outline.subcommands);
        }
    }
    return outline;
}

}  // namespace tool
