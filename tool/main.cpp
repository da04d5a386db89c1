#include <algorithm>
#include <cstdio>
#include <exception>
#include <functional>
#include <iterator>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <CLI/CLI.hpp>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tool/CheckCommand.h"
#include "tool/CompareCommand.h"
#include "tool/Edit.h"
#include "tool/EditCommand.h"
#include "tool/Failure.h"
#include "tool/FixCommand.h"
#include "tool/InputFile.h"
#include "tool/Inspect.h"
#include "tool/OutputFile.h"
#include "tool/Playlist.h"
#include "tool/PlaylistKind.h"
#include "tool/Printable.h"
#include "tool/Process.h"
#include "tool/ReadingOptions.h"
#include "tool/ReportCommand.h"
#include "tool/RuleCommands.h"
#include "tool/SelfDescription.h"

namespace {

/// What the command line asks for.
struct Request {
    std::string input = tool::standardInput;
    std::string output = tool::standardInput;
    tool::PlaylistKind kind = tool::PlaylistKind::Detect;
    bool quiet = false;
    bool conformant = false;
    bool json = false;
    std::size_t mostBytes = tool::usualLargestInput;
    std::string command;
};

void render(const Request& request) {
    const tool::Playlist playlist = tool::readPlaylist(request.input, request.kind, request.mostBytes);
    const auto writing = request.conformant ? tool::Writing::Conformant : tool::Writing::Rendered;
    const std::string text = tool::cleanText(playlist, writing);
    if (request.output == tool::standardInput) {
        tool::writeToStandardOutput(text);
    } else {
        tool::replaceFile(request.output, text);
    }
    if (request.quiet) return;
    static_cast<void>(std::fputs(tool::describeLosses(playlist, writing).c_str(), stderr));
}

struct Inspection {
    const VELHLSParsingStatus& status;
    bool asJson;
    std::string operator()(const std::shared_ptr<VELHLSParsedManifest>& manifest) const {
        return asJson ? tool::inspectAsJson(*manifest) : tool::inspectMaster(*manifest);
    }
    std::string operator()(const std::shared_ptr<VELHLSMediaStream>& stream) const {
        return asJson ? tool::inspectAsJson(*stream, status) : tool::inspectMedia(*stream, status);
    }
};

void inspect(const Request& request) {
    const tool::Playlist playlist = tool::readPlaylist(request.input, request.kind, request.mostBytes);
    tool::writeToStandardOutput(std::visit(Inspection{playlist.status, request.json}, playlist.model));
}

void addInputOptions(CLI::App& command, Request& request) {
    command.add_option("FILE", request.input, "The playlist; - for standard input")->capture_default_str();
    tool::addReadingOptions(command, request.kind, request.mostBytes);
}

/// The command of this name; null when there is none.
const CLI::App* commandNamed(const CLI::App& app, const std::string& name) {
    const auto found =
        app.get_subcommands([&name](const CLI::App* command) { return command->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

/// `velhls help` and `velhls help COMMAND`.
void addHelpCommand(CLI::App& app, Request& request) {
    const auto whyNoCommand = [&app](const std::string& name) -> std::string {
        if (commandNamed(app, name) != nullptr) return {};
        return "there is no command " + tool::quotedExcerpt(name);
    };
    CLI::App* command = app.add_subcommand("help", "Show this help, or that of a command");
    command->add_option("COMMAND", request.command, "The command; all of them by default")
        ->check(CLI::Validator(whyNoCommand, "COMMAND"));
    command->callback([&app, &request] {
        const CLI::App* asked = request.command.empty() ? &app : commandNamed(app, request.command);
        tool::writeToStandardOutput(app.get_formatter()->make_help(
            asked, asked == &app ? app.get_name() : app.get_name() + " " + asked->get_name(),
            CLI::AppFormatMode::Normal));
    });
}

/// Help and version come as errors, too.
tool::ExitStatus endParsing(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) {
        throw tool::Failure(tool::unusable, "velhls: error: " + tool::printable(error.what()) +
                                                "\nRun velhls with --help for more information.");
    }
    std::ostringstream text;
    app.exit(error, text, text);
    tool::writeToStandardOutput(text.str());
    return tool::success;
}

void addRenderCommand(CLI::App& app, Request& request) {
    CLI::App* command = app.add_subcommand("render", "Parse a playlist and write its clean text");
    addInputOptions(*command, request);
    command->add_option("-o,--output", request.output, "Where to write; - for standard output")
        ->capture_default_str();
    command->add_flag("--conformant", request.conformant,
                      "Write the text as RFC 8216 wants it, not as the library renders it");
    command->add_flag("--quiet", request.quiet, "Do not say what the clean text no longer holds");
    command->callback([&request] { render(request); });
}

void addInspectCommand(CLI::App& app, Request& request) {
    CLI::App* command = app.add_subcommand("inspect", "Parse a playlist and show what is in it");
    addInputOptions(*command, request);
    command->add_flag("--json", request.json, "Write the whole model as JSON");
    command->callback([&request] { inspect(request); });
}

/// What the commands are told, and how the one that ran ended.
struct Commands {
    Request request;
    tool::EditRequest edit;
    tool::FixOptions fix;
    tool::CompareRequest compare;
    tool::CheckOptions check;
    tool::ReportOptions report;
    tool::ExitStatus status = tool::success;

    /// Adds the command of this name, or all of them when there is none. To make the options of all takes five times what
    /// the check of a small playlist does.
    void add(CLI::App& app, std::string_view name) {
        const std::pair<std::string_view, std::function<void()>> all[] = {
            {"render", [&] { addRenderCommand(app, request); }},
            {"inspect", [&] { addInspectCommand(app, request); }},
            {"edit", [&] { tool::addEditCommand(app, edit); }},
            {"fix", [&] { tool::addFixCommand(app, fix, status); }},
            {"compare", [&] { tool::addCompareCommand(app, compare, status); }},
            {"check", [&] { tool::addCheckCommand(app, check, status); }},
            {"report", [&] { tool::addReportCommand(app, report, status); }},
            {"rules", [&] { tool::addRulesCommand(app); }},
            {"explain", [&] { tool::addExplainCommand(app); }},
        };
        const auto one = std::find_if(std::begin(all), std::end(all),
                                      [name](const auto& command) { return command.first == name; });
        if (one != std::end(all)) return one->second();
        for (const auto& command : all)
            command.second();
        addHelpCommand(app, request);
    }
};

int run(const std::vector<std::string>& arguments) {
    Commands commands;
    CLI::App app("HTTP Live Streaming playlists: check, clean and look at them", "velhls");
    app.set_version_flag("--version", ZORHLSManifestLibVersionString);
    app.require_subcommand(1);
    app.footer(
        "Exit status: 0 done, 1 the playlist is rejected or something was found, 2 bad usage or a file that "
        "cannot be read or written.\n"
        "A pipe that is closed early ends the command by the signal SIGPIPE.");
    tool::addSelfDescription(app);
    commands.add(app, arguments.size() > 1 ? std::string_view(arguments[1]) : std::string_view());

    try {
        // The last one first, and without the program's name.
        app.parse(std::vector<std::string>(arguments.rbegin(), std::prev(arguments.rend())));
    } catch (const CLI::ParseError& error) {
        return endParsing(app, error);
    }
    return commands.status;
}

int report(tool::ExitStatus status, const char* message) {
    static_cast<void>(std::fprintf(stderr, "%s\n", message));
    return status;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        return run(tool::startProcess(argumentCount, arguments));
    } catch (const tool::Failure& failure) {
        return report(failure.exitStatus, failure.what());
    } catch (const std::bad_alloc&) {
        return report(tool::unusable, "velhls: error: out of memory");
    } catch (const std::exception& error) {
        return report(tool::unusable, ("velhls: error: " + tool::printable(error.what())).c_str());
    }
}
