#include "tool/FixCommand.h"

#include <CLI/CLI.hpp>

#include "tool/ConfigFile.h"
#include "tool/FindingOptions.h"
#include "tool/InputOptions.h"
#include "tool/ReadingOptions.h"

namespace tool {
namespace {

void addOutputOptions(CLI::App& command, FixRequest& request) {
    CLI::Option* const output = command
                                    .add_option("-o,--output", request.output,
                                                "Write the whole text of the one FILE here, mended or not; - "
                                                "for standard output")
                                    ->configurable(false);
    command.add_flag("--apply", request.inPlace, "Replace each file that changes, wholly or not at all")
        ->excludes(output)
        ->configurable(false);
    command.add_flag("--quiet", request.quiet, "Do not say what is left");
}

ExitStatus run(CLI::App& command, FixOptions& options) {
    readConfig(command, options.config);
    FixRequest& request = options.request;
    if (request.inputs.paths.empty() && !request.inputs.list)
        request.inputs.paths.emplace_back(standardInput);
    return fix(request);
}

}  // namespace

void addFixCommand(CLI::App& app, FixOptions& options, ExitStatus& status) {
    CLI::App* const command =
        app.add_subcommand("fix", "Mend what is wrong with playlists: show what would change, or change it");
    command->footer(
        "Exit status: 0 nothing to mend or all mended, 1 something is left, 2 bad usage or a file that "
        "cannot "
        "be read or written.\n"
        "Safe fixes leave the playlist's meaning as it is. What is left is an error, or a finding whose fix "
        "was not taken.");
    FixRequest& request = options.request;
    addInputOptions(*command, request.inputs);
    addOutputOptions(*command, request);
    addProfileOption(*command, request.options.profiles,
                     "Whose findings to mend, those of rfc8216 unless told otherwise");
    command->add_flag("--lossy", request.options.lossy,
                      "Take also fixes that take away something that the playlist says");
    command->add_flag("--guess", request.options.guess,
                      "Take also fixes that say something that the playlist does not say");
    addReadingOptions(*command, request.options.kind, request.mostBytes);
    addConfigOption(*command, options.config);
    command->callback([command, &options, &status] { status = run(*command, options); });
}

}  // namespace tool
