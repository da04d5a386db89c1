#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <variant>
#include <vector>

#include <CLI/CLI.hpp>

#include "velhls/VELHLS.h"

#include "tool/Check.h"
#include "tool/Failure.h"
#include "tool/InputFile.h"
#include "tool/Inspect.h"
#include "tool/OutputFile.h"
#include "tool/Playlist.h"
#include "tool/PlaylistKind.h"
#include "tool/Printable.h"
#include "tool/RulePages.h"
#include "tool/SelfDescription.h"

namespace {

/// What the command line asks for.
struct Request {
    std::string input = tool::standardInput;
    std::string output = tool::standardInput;
    std::string kind = "auto";
    bool quiet = false;
    bool json = false;
    std::string rule;
    std::string severity = "warning";
    std::vector<std::string> disabledRules;
    tool::CheckRequest check;
};

void render(const Request& request) {
    const tool::Playlist playlist = tool::readPlaylist(request.input, tool::kindNamed(request.kind));
    const std::string text = tool::cleanText(playlist);
    if (request.output == tool::standardInput) {
        tool::writeToStandardOutput(text);
    } else {
        tool::replaceFile(request.output, text);
    }
    if (request.quiet) return;
    static_cast<void>(std::fputs(tool::describeLosses(playlist).c_str(), stderr));
}

VELHLSFinding::Severity severityNamed(const std::string& name) {
    if (name == "error") return VELHLSFinding::Error;
    return name == "warning" ? VELHLSFinding::Warning : VELHLSFinding::Note;
}

/// What CLI11 says of a value that is no rule.
std::string whyNoRule(const std::string& id) {
    if (VELHLSDiagnostics::ruleNamed(id)) return {};
    return "there is no rule " + tool::quotedExcerpt(id);
}

tool::ExitStatus check(const Request& request) {
    tool::CheckRequest asked = request.check;
    if (asked.paths.empty()) asked.paths.emplace_back(tool::standardInput);
    asked.kind = tool::kindNamed(request.kind);
    asked.least = severityNamed(request.severity);
    asked.disabledRules.insert(request.disabledRules.begin(), request.disabledRules.end());
    return tool::check(asked);
}

void explain(const Request& request) {
    tool::writeToStandardOutput(tool::pageOf(request.rule));
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
    const tool::Playlist playlist = tool::readPlaylist(request.input, tool::kindNamed(request.kind));
    tool::writeToStandardOutput(std::visit(Inspection{playlist.status, request.json}, playlist.model));
}

void addKindOption(CLI::App& command, Request& request) {
    command.add_option("--kind", request.kind, "What to read it as")
        ->check(CLI::IsMember({"auto", "master", "media"}))
        ->capture_default_str();
}

void addInputOptions(CLI::App& command, Request& request) {
    command.add_option("FILE", request.input, "The playlist; - for standard input")->capture_default_str();
    addKindOption(command, request);
}

void addCheckCommand(CLI::App& app, Request& request, tool::ExitStatus& status) {
    CLI::App* command = app.add_subcommand(
        "check", "Say what is wrong with playlists, where, and what the library makes of them");
    command->footer(
        "Exit status: 0 nothing found, 1 something found, 2 bad usage or a file that cannot be read.\n"
        "NO_COLOR is respected.");
    command->add_option("FILE", request.check.paths, "The playlists; - for standard input, the default");
    addKindOption(*command, request);
    command->add_option("--format", request.check.format, "How to write what is found")
        ->check(CLI::IsMember({"text", "json", "sarif"}))
        ->capture_default_str();
    command->add_option("--severity", request.severity, "The least severity that is looked at")
        ->check(CLI::IsMember({"error", "warning", "note"}))
        ->capture_default_str();
    command->add_option("--disable", request.disabledRules, "Leave this rule out; may be repeated")
        ->check(CLI::Validator(whyNoRule, "RULE"))
        ->allow_extra_args(false)
        ->delimiter(',');
    command->add_flag("--werror", request.check.warningsAreErrors, "Take warnings for errors");
    command->add_option("--color", request.check.colour, "When to use colours")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->capture_default_str();
    command->callback([&request, &status] { status = check(request); });
}

void addExplainCommand(CLI::App& app, Request& request) {
    CLI::App* command = app.add_subcommand("explain", "Show the page of a rule");
    command->add_option("RULE", request.rule, "The rule, as check names it in brackets")
        ->required()
        ->check(CLI::Validator(whyNoRule, "RULE"));
    command->callback([&request] { explain(request); });
}

int run(int argumentCount, char** arguments) {
    Request request;
    tool::ExitStatus status = tool::success;
    CLI::App app("HTTP Live Streaming playlists: check, clean and look at them", "velhls");
    app.set_version_flag("--version", ZORHLSManifestLibVersionString);
    app.require_subcommand(1);
    app.footer(
        "Exit status: 0 done, 1 the playlist is rejected or something was found, 2 bad usage or a file that "
        "cannot be read or "
        "written.");

    CLI::App* renderCommand = app.add_subcommand("render", "Parse a playlist and write its clean text");
    addInputOptions(*renderCommand, request);
    renderCommand->add_option("-o,--output", request.output, "Where to write; - for standard output")
        ->capture_default_str();
    renderCommand->add_flag("--quiet", request.quiet, "Do not say what the clean text no longer holds");
    renderCommand->callback([&request] { render(request); });

    CLI::App* inspectCommand = app.add_subcommand("inspect", "Parse a playlist and show what is in it");
    addInputOptions(*inspectCommand, request);
    inspectCommand->add_flag("--json", request.json, "Write the whole model as JSON");
    inspectCommand->callback([&request] { inspect(request); });

    tool::addSelfDescription(app);
    addCheckCommand(app, request, status);
    addExplainCommand(app, request);

    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? tool::success : tool::unusable;
    }
    return status;
}

int report(tool::ExitStatus status, const char* message) {
    static_cast<void>(std::fprintf(stderr, "%s\n", message));
    return status;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    // A reader that closes the pipe early is then told of like any other output that cannot be written.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    try {
        return run(argumentCount, arguments);
    } catch (const tool::Failure& failure) {
        return report(failure.exitStatus, failure.what());
    } catch (const std::bad_alloc&) {
        return report(tool::unusable, "velhls: error: out of memory");
    } catch (const std::exception& error) {
        return report(tool::unusable, error.what());
    }
}
