#include "tool/EditCommand.h"

#include <string>

#include <CLI/CLI.hpp>

#include "tool/Edit.h"
#include "tool/ReadingOptions.h"

namespace tool {
namespace {

void addOutputOptions(CLI::App& command, EditRequest& request) {
    CLI::Option* const output =
        command.add_option("-o,--output", request.output, "Where to write; - for standard output")
            ->capture_default_str();
    command
        .add_flag("--apply", request.inPlace, "Replace the file, wholly or not at all, if anything changes")
        ->excludes(output);
    command.add_flag("--diff", request.asDiff, "Write what changes as a unified diff, and not the text");
}

void addUriOptions(CLI::App& command, EditRequest& request) {
#ifdef VELHLS_HAS_URIPARSER
    command
        .add_option("--base", request.base,
                    "Make every relative URI absolute, as one of the playlist at this URL")
        ->type_name("URL");
#endif
    command
        .add_option("--append-query", request.query,
                    "Append this, as NAME=VALUE, to the query of each URI that is relative, http or https")
        ->type_name("QUERY");
}

void addVariantOptions(CLI::App& command, EditRequest& request) {
    command
        .add_option(
            "--min-bandwidth", request.leastBandwidth,
            "Drop variants with a lower BANDWIDTH, in bits per second, and renditions that no variant "
            "names any more")
        ->type_name("BITS");
    command.add_option("--max-bandwidth", request.mostBandwidth, "Likewise with a higher one")
        ->type_name("BITS");
    command
        .add_option("--drop-codec", request.droppedCodecs,
                    "Likewise with a codec that begins so; may be repeated")
        ->type_name("PREFIX")
        ->allow_extra_args(false);
}

void addTagOptions(CLI::App& command, EditRequest& request) {
    command
        .add_option("--set", request.set,
                    "TAG:NAME=VALUE: set the attribute of every such tag, with quotes if it is known to have "
                    "them and as given otherwise; may be repeated")
        ->type_name("ASSIGNMENT")
        ->allow_extra_args(false);
    command
        .add_option("--remove", request.removed,
                    "TAG or TAG:NAME: remove every such tag, or its attribute; may be repeated")
        ->type_name("TARGET")
        ->allow_extra_args(false);
    command
        .add_option("--insert-before", request.inserted,
                    "Insert the line before the line with this number of the input; may be repeated")
        ->type_name("N LINE")
        ->allow_extra_args(false);
}

}  // namespace

void addEditCommand(CLI::App& app, EditRequest& request) {
    CLI::App* const command =
        app.add_subcommand("edit", "Change a playlist without touching another byte of it");
    std::string footer =
        "Exit status: 0 done, 1 an edit is refused, 2 bad usage or a file that cannot be read or written.\n"
        "What is refused changes nothing.";
#ifndef VELHLS_HAS_URIPARSER
    footer += "\nThis build has no --base, since it was made without uriparser.";
#endif
    command->footer(footer);
    command->add_option("FILE", request.input, "The playlist; - for standard input")->capture_default_str();
    addMaxBytesOption(*command, request.mostBytes);
    addOutputOptions(*command, request);
    addUriOptions(*command, request);
    addVariantOptions(*command, request);
    addTagOptions(*command, request);
    command->callback([&request] { edit(request); });
}

}  // namespace tool
