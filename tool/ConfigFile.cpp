#include "tool/ConfigFile.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <sstream>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include "tool/Failure.h"
#include "tool/InputFile.h"
#include "tool/Path.h"
#include "tool/Printable.h"

namespace tool {
namespace {

constexpr char configOption[] = "--config";
constexpr std::size_t largestConfig = std::size_t{1} << 20;

/// Empty when no folder has one.
std::string nearestConfig() {
    std::error_code unknown;
    for (std::filesystem::path folder = std::filesystem::current_path(unknown); !folder.empty();
         folder = folder.parent_path()) {
        const std::filesystem::path file = folder / configName;
        if (std::filesystem::is_regular_file(file, unknown)) return textOf(file);
        if (folder == folder.parent_path()) break;
    }
    return {};
}

/// The line with spaces in place of what stands in quotes.
std::string withBlankTexts(std::string line) {
    char quote = '\0';
    for (char& character : line) {
        const bool isQuote = character == '"' || character == '\'';
        if (quote == '\0' && isQuote) {
            quote = character;
        } else if (character == quote) {
            quote = '\0';
        } else if (quote != '\0') {
            character = ' ';
        }
    }
    return line;
}

/// How many more arrays begin in the text than end.
std::ptrdiff_t openArraysIn(const std::string& text) {
    return std::count(text.begin(), text.end(), '[') - std::count(text.begin(), text.end(), ']');
}

/// The file in the lines that CLI11 reads: it knows neither an array that goes on after its bracket in the next line, nor a
/// comment in an array or after a section's name.
std::string linesForParser(const std::string& content) {
    std::istringstream input(content);
    std::string lines;
    std::ptrdiff_t depth = 0;
    for (std::string line; std::getline(input, line);) {
        std::string bare = withBlankTexts(line);
        bare.erase(std::min(bare.find('#'), bare.size()));
        lines += (depth > 0 ? " " : "\n") + line.substr(0, bare.size());
        const std::size_t sign = bare.find('=');
        if (depth > 0 || sign != std::string::npos) depth += openArraysIn(bare.substr(depth > 0 ? 0 : sign));
    }
    return lines;
}

/// The option that a file may set; null when the command has none.
CLI::Option* optionNamed(CLI::App& command, const std::string& name) {
    CLI::Option* const option = command.get_option_no_throw("--" + name);
    return option != nullptr && option->get_configurable() ? option : nullptr;
}

/// Whether any command that reads such files has the option, or, for the name of a section, is the command.
bool isKnown(CLI::App& command, const CLI::ConfigItem& item) {
    for (CLI::App* const other : command.get_parent()->get_subcommands({})) {
        if (other->get_option_no_throw(configOption) == nullptr) continue;
        if (item.parents.empty() && optionNamed(*other, item.name) != nullptr) return true;
        if (!item.parents.empty() && item.parents.front() == other->get_name()) return true;
    }
    return false;
}

/// Marks where a section begins or ends.
bool isBracket(const CLI::ConfigItem& item) {
    return item.name == "++" || item.name == "--";
}

void give(CLI::Option& option, const CLI::ConfigItem& item) {
    if (!option.empty() || item.inputs.empty()) return;
    option.add_result(item.inputs);
    option.run_callback();
}

void refuse(const std::string& reason) {
    throw CLI::ConfigError(reason);
}

void readSection(CLI::App& command, const std::vector<CLI::ConfigItem>& items,
                 const std::vector<std::string>& section) {
    for (const CLI::ConfigItem& item : items) {
        if (item.parents != section || isBracket(item)) continue;
        CLI::Option* const option = optionNamed(command, item.name);
        if (option != nullptr) {
            give(*option, item);
        } else if (!section.empty() || !isKnown(command, item)) {
            refuse("there is no option " + quotedExcerpt(item.name));
        }
    }
}

void refuseUnknownSections(CLI::App& command, const std::vector<CLI::ConfigItem>& items) {
    for (const CLI::ConfigItem& item : items) {
        if (!item.parents.empty() && (item.parents.size() > 1 || !isKnown(command, item)))
            refuse("there is no section " + quotedExcerpt(item.parents.front()));
    }
}

}  // namespace

void addConfigOption(CLI::App& command, std::optional<std::string>& path) {
    command
        .add_option(configOption, path,
                    std::string("Take options from this file, and not from the nearest ") + configName +
                        " of the working directory and the folders above it")
        ->configurable(false);
}

void readConfig(CLI::App& command, const std::optional<std::string>& path) {
    const std::string file = path ? *path : nearestConfig();
    if (file.empty() && !path) return;
    std::istringstream text(linesForParser(contentOf(file, largestConfig)));
    try {
        const std::vector<CLI::ConfigItem> items = CLI::ConfigTOML().from_config(text);
        refuseUnknownSections(command, items);
        readSection(command, items, {command.get_name()});
        readSection(command, items, {});
    } catch (const CLI::ParseError& error) {
        throw Failure(unusable, nameInMessages(file) + ": error: " + printable(error.what()));
    }
}

}  // namespace tool
