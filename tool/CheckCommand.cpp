#include "tool/CheckCommand.h"

#include <CLI/CLI.hpp>

#include "tool/ConfigFile.h"
#include "tool/FindingOptions.h"
#include "tool/InputOptions.h"
#include "tool/ReadingOptions.h"

namespace tool {
namespace {

ExitStatus run(CLI::App& command, CheckOptions& options) {
    readConfig(command, options.config);
    CheckRequest& request = options.request;
    if (request.inputs.paths.empty() && !request.inputs.list)
        request.inputs.paths.emplace_back(standardInput);
    return check(request);
}

}  // namespace

void addCheckCommand(CLI::App& app, CheckOptions& options, ExitStatus& status) {
    CLI::App* const command = app.add_subcommand(
        "check",
        "Say what is wrong with playlists, where, by which rule, and which of them the library rejects");
    command->footer(
        "Exit status: 0 nothing found at or above --fail-on, 1 something found, 2 bad usage or an input that "
        "cannot be "
        "read.\n"
        "That the library rejects a playlist makes no difference to it, but for the profile library.\n"
        "NO_COLOR is respected.");
    CheckRequest& request = options.request;
    addInputOptions(*command, request.inputs);
    addFollowOptions(
        *command, request.follow,
        "Check also the local playlists that a master playlist names, and all together as one presentation");
    addReadingOptions(*command, request.options.kind, request.mostBytes);
    addProfileOption(*command, request.options.profiles,
                     "By whose rules to check, rfc8216 unless told otherwise");
    command->add_option("--format", request.style.format, "How to write what is found")
        ->check(CLI::IsMember({"text", "json", "jsonl", "sarif", "github"}))
        ->capture_default_str();
    command->add_flag("--fixes", request.options.fixes,
                      "Say what mends each finding; json, jsonl and sarif hold the edits");
    addFindingOptions(*command, request.choice);
    addColourOption(*command, request.style.colour);
    addConfigOption(*command, options.config);
    command->callback([command, &options, &status] { status = run(*command, options); });
}

}  // namespace tool
