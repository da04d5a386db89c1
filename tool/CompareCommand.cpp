#include "tool/CompareCommand.h"

#include <CLI/CLI.hpp>

#include "tool/ReadingOptions.h"

namespace tool {

void addCompareCommand(CLI::App& app, CompareRequest& request, ExitStatus& status) {
    CLI::App* const command = app.add_subcommand(
        "compare", "Say what changed between two versions of a playlist, and what of it RFC 8216 forbids");
    command->footer(
        "Exit status: 0 nothing changed, 1 something changed, 2 bad usage or versions that cannot be "
        "compared, 3 "
        "a change is forbidden.\n"
        "A note alone does not change the exit status.");
    command
        ->add_option(
            "FILE", request.paths,
            "The old version and the new one, - for standard input; with --series any number of them, "
            "and folders")
        ->required();
    command->add_flag(
        "--series", request.isSeries,
        "Compare each version with the one before it: in the order given, and of a folder in that of names");
    command
        ->add_option(
            "--elapsed", request.elapsedSeconds,
            "How many seconds passed from one version to the next; without it nothing is said of time")
        ->type_name("SECONDS")
        ->check(CLI::Validator(CLI::NonNegativeNumber).description(""));
    command->add_option("--format", request.format, "How to write what is found")
        ->check(CLI::IsMember({"text", "json"}))
        ->capture_default_str();
    command->add_flag("--quiet", request.quiet,
                      "Leave the changes out of the text, and write the findings alone");
    addMaxBytesOption(*command, request.mostBytes);
    command->callback([&request, &status] { status = compare(request); });
}

}  // namespace tool
