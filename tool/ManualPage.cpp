#include "tool/ManualPage.h"

#include <cctype>
#include <sstream>
#include <string_view>

#include "tool/ConfigFile.h"

namespace tool {

namespace {

/// Text as roff takes it: hyphens that can be copied as such, and no line that begins with a control character.
std::string roff(std::string_view text) {
    std::string result;
    for (const char character : text) {
        if (character == '-') {
            result += "\\-";
        } else if (character == '\\') {
            result += "\\e";
        } else if ((character == '.' || character == '\'') && (result.empty() || result.back() == '\n')) {
            result += std::string("\\&") + character;
        } else {
            result += character;
        }
    }
    return result;
}

std::string bold(std::string_view text) {
    return "\\fB" + roff(text) + "\\fR";
}

std::string italic(std::string_view text) {
    return "\\fI" + roff(text) + "\\fR";
}

std::string upperCase(std::string text) {
    for (char& character : text)
        character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    return text;
}

/// "[-o|--output TEXT]" in the synopsis, "[FILE]" for an argument.
std::string synopsisOf(const OptionOutline& option) {
    if (option.isArgument) return "[" + italic(option.names[0]) + (option.repeats ? " ...]" : "]");
    std::string text = "[";
    for (const std::string& name : option.names)
        text += (text.size() > 1 ? "|" : "") + bold(name);
    if (option.takesValue) text += " " + italic(option.valueName);
    return text + "]";
}

void writeSynopsis(std::ostream& out, const CommandOutline& command, const CommandOutline& subcommand) {
    if (&subcommand != &command.subcommands.front()) out << ".br\n";
    out << bold(command.name + " " + subcommand.name);
    for (const OptionOutline& option : subcommand.options)
        out << " " << synopsisOf(option);
    out << "\n";
}

std::string headOf(const OptionOutline& option) {
    if (option.isArgument) return italic(option.names[0]);
    std::string text;
    for (const std::string& name : option.names)
        text += (text.empty() ? "" : ", ") + bold(name);
    return option.takesValue ? text + " " + italic(option.valueName) : text;
}

void writeOption(std::ostream& out, const OptionOutline& option) {
    out << ".TP\n" << headOf(option) << "\n" << roff(option.description) << ".\n";
    if (!option.choices.empty()) {
        out << "One of";
        for (const std::string& choice : option.choices)
            out << (&choice == &option.choices.front() ? " " : ", ") << bold(choice);
        out << ".\n";
    }
    if (!option.defaultValue.empty()) out << "The default is " << bold(option.defaultValue) << ".\n";
}

/// The footer, without the words that the section's heading says already.
std::string exitStatusOf(const CommandOutline& command) {
    const std::string heading = "Exit status: ";
    const std::string& footer = command.footer;
    return footer.compare(0, heading.size(), heading) == 0 ? footer.substr(heading.size()) : footer;
}

struct Example {
    std::string_view what;
    std::string_view commandLine;
};

constexpr Example examples[] = {
    {"What is wrong with a playlist, and where:", "velhls check live.m3u8"},
    {"Errors alone, of all playlists below a folder, for a program to read:",
     "velhls check --severity error --format json vod/"},
    {"The playlists that changed, as annotations of a workflow, which warnings fail, too:",
     "git diff --name-only -z main -- '*.m3u8' | velhls check --files-from - --null --format github "
     "--fail-on warning"},
    {"Why a rule is one, and what to do:", "velhls explain variant-bandwidth-zero"},
    {"The text as RFC 8216 wants it, in place of the file:",
     "velhls render --conformant --output live.m3u8 live.m3u8"},
    {"A token for every URI, and every other byte as it was:",
     "velhls edit --append-query token=1 --apply master.m3u8"},
    {"What changed in a live playlist within six seconds, and what of it is forbidden:",
     "velhls compare --elapsed 6 old.m3u8 new.m3u8"},
    {"What a server delivers:", "curl -s https://example.com/master.m3u8 | velhls inspect"},
    {"The URIs of all segments:", "velhls inspect --json vod.m3u8 | jq -r '.playlist.segments[].uri'"},
};

void writeExamples(std::ostream& out) {
    out << ".SH EXAMPLES\n";
    for (const Example& example : examples) {
        out << ".PP\n"
            << roff(example.what) << "\n.PP\n.RS 4\n.nf\n"
            << roff(example.commandLine) << "\n.fi\n.RE\n";
    }
}

void writeFiles(std::ostream& out) {
    out << ".SH FILES\n.TP\n"
        << bold(configName) << "\n"
        << "Options of the commands that have " << bold("--config")
        << ", for all of them or in a section that has a command's name:\n.PP\n.RS 11\n.nf\n"
        << roff(
               "severity = \"note\"\n\n[check]\ndisable = [\"durations-whole\"]\n"
               "severity-of = [\"version-too-low=warning\"]")
        << "\n.fi\n.RE\n.PP\n.RS 7\n"
        << "It is looked for in the working directory and the folders above it, and the nearest one is read. "
           "What the "
           "command line says of an option takes the place of what the file says of it.\n.RE\n";
}

}  // namespace

std::string manualPage(const CommandOutline& command, const std::string& version) {
    std::ostringstream out;
    out << ".\\\" Made from the command's own description: do not edit.\n"
        << ".TH " << upperCase(command.name) << " 1 \"\" \"" << roff(version) << "\" \"User Commands\"\n"
        << ".SH NAME\n"
        << roff(command.name) << " \\- " << roff(command.description) << "\n.SH SYNOPSIS\n";
    for (const CommandOutline& subcommand : command.subcommands)
        writeSynopsis(out, command, subcommand);
    out << ".SH DESCRIPTION\n"
        << bold(command.name)
        << " reads playlists of HTTP Live Streaming (M3U8, RFC 8216), master playlists and media\n"
        << "playlists alike. Without a file, or with " << bold("-") << ", it reads standard input.\n"
        << bold(command.name + " check")
        << " takes folders, too: all *.m3u8 and *.m3u files below them, links left out.\n"
        << "A playlist that is rejected is told of on standard error as\n"
        << italic("file") << ":" << italic("line") << ": error: " << italic("reason")
        << ".\nAn output file is replaced wholly or not at all.\n.SH COMMANDS\n";
    for (const CommandOutline& subcommand : command.subcommands) {
        out << ".SS " << roff(command.name + " " + subcommand.name) << "\n"
            << roff(subcommand.description) << ".\n";
        for (const OptionOutline& option : subcommand.options)
            writeOption(out, option);
        if (!subcommand.footer.empty() && subcommand.footer != command.footer)
            out << ".PP\n" << roff(subcommand.footer) << "\n";
    }
    out << ".SH OPTIONS\n";
    for (const OptionOutline& option : command.options)
        writeOption(out, option);
    out << ".SH \"EXIT STATUS\"\n" << roff(exitStatusOf(command)) << "\n";
    writeFiles(out);
    writeExamples(out);
    out << ".SH \"SEE ALSO\"\n"
        << bold("curl") << "(1), " << bold("jq") << "(1)\n.PP\n"
        << "RFC 8216, HTTP Live Streaming: https://www.rfc\\-editor.org/rfc/rfc8216\n";
    return out.str();
}

}  // namespace tool
