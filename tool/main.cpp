#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "velhls/VELHLS.h"

#include "tool/Failure.h"
#include "tool/InputFile.h"
#include "tool/Inspect.h"
#include "tool/OutputFile.h"
#include "tool/Playlist.h"
#include "tool/PlaylistKind.h"
#include "tool/SelfDescription.h"

namespace {

/// What the command line asks for.
struct Request {
    std::string input = tool::standardInput;
    std::string output = tool::standardInput;
    std::string kind = "auto";
};

std::optional<tool::PlaylistKind> askedKind(const Request& request) {
    if (request.kind == "master") return tool::PlaylistKind::master;
    if (request.kind == "media") return tool::PlaylistKind::media;
    return std::nullopt;
}

void render(const Request& request) {
    const std::string text = tool::cleanText(tool::readPlaylist(request.input, askedKind(request)));
    if (request.output == tool::standardInput) {
        tool::writeToStandardOutput(text);
    } else {
        tool::replaceFile(request.output, text);
    }
}

struct Inspection {
    const VELHLSParsingStatus& status;
    std::string operator()(const std::shared_ptr<VELHLSParsedManifest>& manifest) const {
        return tool::inspectMaster(*manifest);
    }
    std::string operator()(const std::shared_ptr<VELHLSMediaStream>& stream) const {
        return tool::inspectMedia(*stream, status);
    }
};

void inspect(const Request& request) {
    const tool::Playlist playlist = tool::readPlaylist(request.input, askedKind(request));
    tool::writeToStandardOutput(std::visit(Inspection{playlist.status}, playlist.model));
}

void addInputOptions(CLI::App& command, Request& request) {
    command.add_option("FILE", request.input, "The playlist; - for standard input")->capture_default_str();
    command.add_option("--kind", request.kind, "What to read it as")
        ->check(CLI::IsMember({"auto", "master", "media"}))
        ->capture_default_str();
}

int run(int argumentCount, char** arguments) {
    Request request;
    CLI::App app("HTTP Live Streaming playlists: check, clean and look at them", "velhls");
    app.set_version_flag("--version", ZORHLSManifestLibVersionString);
    app.require_subcommand(1);
    app.footer(
        "Exit status: 0 done, 1 the playlist is rejected, 2 bad usage or a file that cannot be read or "
        "written.");

    CLI::App* renderCommand = app.add_subcommand("render", "Parse a playlist and write its clean text");
    addInputOptions(*renderCommand, request);
    renderCommand->add_option("-o,--output", request.output, "Where to write; - for standard output")
        ->capture_default_str();
    renderCommand->callback([&request] { render(request); });

    CLI::App* inspectCommand = app.add_subcommand("inspect", "Parse a playlist and show what is in it");
    addInputOptions(*inspectCommand, request);
    inspectCommand->callback([&request] { inspect(request); });

    tool::addSelfDescription(app);
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? tool::success : tool::unusable;
    }
    return tool::success;
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
