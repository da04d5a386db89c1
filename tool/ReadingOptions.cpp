#include "tool/ReadingOptions.h"

#include <string>

#include <CLI/CLI.hpp>

#include "tool/Printable.h"

namespace tool {
namespace {

/// Makes bytes of a size such as "10k"; says why that cannot be done.
std::string makeBytes(std::string& size) {
    const std::string given = size;
    const bool isNumber = !size.empty() && size.front() >= '0' && size.front() <= '9';
    if (isNumber && CLI::AsSizeValue(false)(size).empty()) return {};
    return "expected a number of bytes, as 10k, seen " + quotedExcerpt(given);
}

}  // namespace

void addReadingOptions(CLI::App& command, PlaylistKind& kind, std::size_t& mostBytes) {
    command
        .add_option_function<std::string>(
            "--kind", [&kind](const std::string& name) { kind = kindNamed(name); }, "What to read it as")
        ->check(CLI::IsMember({"auto", "master", "media"}))
        ->default_str("auto");
    addMaxBytesOption(command, mostBytes);
}

void addMaxBytesOption(CLI::App& command, std::size_t& mostBytes) {
    command
        .add_option("--max-bytes", mostBytes,
                    "Read no playlist that has more bytes; 10k is 10,240, and m and g are more")
        ->type_name("BYTES")
        ->transform(CLI::Validator(makeBytes, ""))
        ->capture_default_str();
}

}  // namespace tool
