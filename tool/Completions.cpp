#include "tool/Completions.h"

#include <sstream>
#include <string_view>
#include <vector>

namespace tool {

namespace {

std::string withSpaces(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

/// The names of all options of a command, none of its arguments.
std::string optionNames(const CommandOutline& command) {
    std::vector<std::string> names;
    for (const OptionOutline& option : command.options) {
        if (!option.isArgument) names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return withSpaces(names);
}

std::string subcommandNames(const CommandOutline& command) {
    std::vector<std::string> names;
    for (const CommandOutline& subcommand : command.subcommands)
        names.push_back(subcommand.name);
    return withSpaces(names);
}

/// The text with `escape` before each of the `special` characters.
std::string escaped(std::string_view text, std::string_view special, std::string_view escape) {
    std::string result;
    for (const char character : text) {
        if (special.find(character) != std::string_view::npos) result += escape;
        result += character;
    }
    return result;
}

/// For text between single quotes in a shell.
std::string quoted(std::string_view text, std::string_view quoteInside) {
    std::string result = "'";
    for (const char character : text) {
        if (character == '\'') {
            result += quoteInside;
        } else {
            result += character;
        }
    }
    return result + "'";
}

// --- bash

/// One branch of the case statement over "subcommand,word before" for each option that takes a value.
void writeBashValues(std::ostream& out, const CommandOutline& command, const std::string& subcommand) {
    for (const OptionOutline& option : command.options) {
        if (option.isArgument || !option.takesValue) continue;
        out << "        ";
        for (const std::string& name : option.names)
            out << (&name == &option.names.front() ? "" : "|") << subcommand << "," << name;
        out << ") ";
        if (option.takesFile()) {
            out << "_velhls_files \"$current\"";
        } else {
            out << "_velhls_words \"" << withSpaces(option.offered) << "\" \"$current\"";
        }
        out << "; return ;;\n";
    }
}

/// What stands where neither an option nor an option's value is asked for.
void writeBashArguments(std::ostream& out, const CommandOutline& subcommand) {
    for (const OptionOutline& option : subcommand.options) {
        if (!option.isArgument) continue;
        out << "        " << subcommand.name << ") ";
        if (option.takesFile()) {
            out << "_velhls_files \"$current\"";
        } else {
            out << "_velhls_words \"" << withSpaces(option.offered) << "\" \"$current\"";
        }
        out << " ;;\n";
        return;
    }
}

// --- zsh

std::string zshDescription(const std::string& text) {
    return escaped(text, "[]:\\", "\\");
}

std::string zshAction(const OptionOutline& option) {
    if (!option.offered.empty()) return ":(" + withSpaces(option.offered) + ")";
    return option.takesFile() ? ":_files" : ":";
}

void writeZshOptions(std::ostream& out, const CommandOutline& command, std::string_view indent) {
    for (const OptionOutline& option : command.options) {
        if (option.isArgument) {
            out << " \\\n"
                << indent
                << quoted((option.repeats ? "*:" : "::") + option.names[0] + zshAction(option), "'\\''");
            continue;
        }
        for (const std::string& name : option.names) {
            std::string argument = "(" + withSpaces(option.names) + ")" + name;
            if (option.takesValue && name.compare(0, 2, "--") == 0) argument += "=";
            argument += "[" + zshDescription(option.description) + "]";
            if (option.takesValue) argument += ":" + option.valueName + zshAction(option);
            out << " \\\n" << indent << quoted(argument, "'\\''");
        }
    }
}

// --- fish

void writeFishOptions(std::ostream& out, const CommandOutline& command, const std::string& condition) {
    for (const OptionOutline& option : command.options) {
        if (option.isArgument) {
            if (option.takesFile()) out << "complete -c velhls -n " << condition << " -F\n";
            if (!option.offered.empty()) {
                out << "complete -c velhls -n " << condition << " -x -a "
                    << quoted(withSpaces(option.offered), "\\'") << "\n";
            }
            continue;
        }
        out << "complete -c velhls -n " << condition;
        for (const std::string& name : option.names)
            out << (name.compare(0, 2, "--") == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1));
        if (option.takesFile()) {
            out << " -r -F";
        } else if (option.takesValue) {
            out << " -x -a " << quoted(withSpaces(option.offered), "\\'");
        }
        out << " -d " << quoted(option.description, "\\'") << "\n";
    }
}

}  // namespace

std::string bashCompletion(const CommandOutline& command) {
    std::ostringstream out;
    out << R"(# Completions of velhls for bash, made from the command's own description: do not edit.

_velhls_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2"); }
_velhls_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_velhls() {
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} subcommand= word
    COMPREPLY=()
    # bash cuts "--name=value" at its equals sign.
    if [[ $current == = ]]; then
        current=
    elif [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $word in
        )";
    for (const CommandOutline& subcommand : command.subcommands)
        out << (&subcommand == &command.subcommands.front() ? "" : " | ") << subcommand.name;
    out << ") subcommand=$word; break ;;\n        esac\n    done\n    case $subcommand,$before in\n";
    writeBashValues(out, command, "");
    for (const CommandOutline& subcommand : command.subcommands)
        writeBashValues(out, subcommand, subcommand.name);
    out << "    esac\n    if [[ $current == -* ]]; then\n        case $subcommand in\n";
    for (const CommandOutline& subcommand : command.subcommands)
        out << "        " << subcommand.name << ") _velhls_words \"" << optionNames(subcommand)
            << "\" \"$current\" ;;\n";
    out << "        *) _velhls_words \"" << optionNames(command)
        << "\" \"$current\" ;;\n        esac\n        return\n    fi\n"
        << "    case $subcommand in\n";
    for (const CommandOutline& subcommand : command.subcommands)
        writeBashArguments(out, subcommand);
    out << "        '') _velhls_words \"" << subcommandNames(command) << "\" \"$current\" ;;\n    esac\n}\n"
        << "complete -F _velhls velhls\n";
    return out.str();
}

std::string zshCompletion(const CommandOutline& command) {
    std::ostringstream out;
    out << "#compdef velhls\n# Completions of velhls for zsh, made from the command's own description: do "
           "not edit.\n\n"
        << "_velhls() {\n    local context state state_descr line\n    typeset -A opt_args\n    _arguments "
           "-C";
    writeZshOptions(out, command, "        ");
    out << " \\\n        '1:command:->command' \\\n        '*::argument:->argument'\n"
        << "    case $state in\n    command)\n        local -a subcommands=(\n";
    for (const CommandOutline& subcommand : command.subcommands)
        out << "            " << quoted(subcommand.name + ":" + subcommand.description, "'\\''") << "\n";
    out << "        )\n        _describe command subcommands\n        ;;\n    argument)\n        case "
           "$words[1] in\n";
    for (const CommandOutline& subcommand : command.subcommands) {
        out << "        " << subcommand.name << ")\n            _arguments";
        writeZshOptions(out, subcommand, "                ");
        out << "\n            ;;\n";
    }
    out << "        esac\n        ;;\n    esac\n}\n\n"
        << "# Read by compinit the file is the function's body; sourced it names the function.\n"
        << "if [[ $funcstack[1] == _velhls ]]; then\n    _velhls \"$@\"\nelse\n    compdef _velhls "
           "velhls\nfi\n";
    return out.str();
}

std::string fishCompletion(const CommandOutline& command) {
    std::ostringstream out;
    out << "# Completions of velhls for fish, made from the command's own description: do not edit.\n\n"
        << "complete -c velhls -f\n";
    writeFishOptions(out, command, "__fish_use_subcommand");
    for (const CommandOutline& subcommand : command.subcommands) {
        out << "complete -c velhls -n __fish_use_subcommand -a " << subcommand.name << " -d "
            << quoted(subcommand.description, "\\'") << "\n";
        writeFishOptions(out, subcommand, "'__fish_seen_subcommand_from " + subcommand.name + "'");
    }
    return out.str();
}

}  // namespace tool
