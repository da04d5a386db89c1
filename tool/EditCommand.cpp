#include "tool/EditCommand.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "velhls/VELHLSCheck.h"

#include "tool/Edit.h"
#include "tool/Printable.h"
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

/// Bits per second, as 2500000, 2500k or 2.5M: units are of ten here, as in the names of bit rates everywhere.
std::optional<std::uint64_t> bitsPerSecond(std::string_view text) {
    constexpr std::string_view units = "kmg";
    std::size_t zeros = 0;
    if (!text.empty()) {
        const char unit = text.back() >= 'A' && text.back() <= 'Z'
                              ? static_cast<char>(text.back() - 'A' + 'a')
                              : text.back();
        const std::size_t place = units.find(unit);
        if (place != std::string_view::npos) {
            zeros = 3 * (place + 1);
            text.remove_suffix(1);
        }
    }
    std::string digits(text);
    const std::size_t point = digits.find('.');
    if (point != std::string::npos) {
        const std::size_t decimals = digits.size() - point - 1;
        if (point == 0 || decimals == 0 || decimals > zeros) return std::nullopt;
        digits.erase(point, 1);
        zeros -= decimals;
    }
    if (digits.empty()) return std::nullopt;
    return VELHLSSyntax::readDecimalInteger(digits.append(zeros, '0'));
}

void addBandwidthOption(CLI::App& command, const std::string& name, std::optional<std::uint64_t>& bandwidth,
                        const std::string& description) {
    const auto read = [&bandwidth, name](const std::string& text) {
        bandwidth = bitsPerSecond(text);
        if (!bandwidth) {
            throw CLI::ValidationError(
                name, "expected bits per second, as 2500000, 2500k or 2.5M, seen " + quotedExcerpt(text));
        }
    };
    command.add_option_function<std::string>(name, read, description)->type_name("BITS");
}

void addVariantOptions(CLI::App& command, EditRequest& request) {
    addBandwidthOption(
        command, "--min-bandwidth", request.leastBandwidth,
        "Drop variants with a lower BANDWIDTH, in bits per second (2500k is 2500000, and M and "
        "G are more), and renditions that no variant names any more");
    addBandwidthOption(command, "--max-bandwidth", request.mostBandwidth, "Likewise with a higher one");
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
