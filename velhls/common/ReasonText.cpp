#include "velhls/common/ReasonText.h"

#include <cstddef>

#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/Utf8.h"

namespace velhls {
namespace {

/// "EXT-X-KEY: " for a line with that tag, nothing for others.
std::string tagPrefix(std::string_view line) {
    if (!isStandardTag(line) && !isVendorTag(line)) return {};
    constexpr std::size_t longest = 40;
    const std::string_view name = withoutTrailing(TagLine(line).name, lineEnds);
    return name.size() > longest ? std::string() : std::string(name) + ": ";
}

/// "METHOD: " when the value of that attribute begins at the position, nothing otherwise.
std::string attributePrefix(std::string_view line, std::size_t position) {
    std::string_view before = line.substr(0, position);
    if (!before.empty() && before.back() == '"') before.remove_suffix(1);
    if (before.empty() || before.back() != '=') return {};
    before.remove_suffix(1);
    constexpr std::size_t longest = 40;
    const std::string_view name = before.substr(before.find_last_of(",:") + 1);
    return name.empty() || name.size() > longest ? std::string() : std::string(name) + ": ";
}

}  // namespace

std::string quoted(std::string_view text) {
    constexpr std::size_t longest = 80;
    const std::size_t length = utf8::lengthOfWholeCharacters(text, longest);
    std::string quotedText = "\"";
    quotedText += text.substr(0, length);
    quotedText += length < text.size() ? "...\"" : "\"";
    return quotedText;
}

std::string messageOf(std::string_view line, const Place& place, std::string_view expected,
                      std::string_view seen) {
    std::string message = tagPrefix(line);
    if (!message.empty()) message += attributePrefix(line, place.column - 1);
    message += "expected ";
    message += expected;
    message += ", seen ";
    if (!seen.empty()) return message.append(seen);
    return message + (place.length == 0 ? "nothing" : quoted(line.substr(place.column - 1, place.length)));
}

std::string_view lineOf(std::string_view text, std::size_t number) {
    std::string_view line = nextLine(text);
    for (std::size_t current = 1; current < number && !text.empty(); ++current)
        line = nextLine(text);
    return line;
}

VELHLSReason reasonOf(std::string_view text, const Rejection& rejection) {
    const ReasonRow row = rowOf(rejection.rule);
    const std::string_view line = lineOf(text, rejection.place.line);
    return {std::string(row.id), rejection.place.line, rejection.place.column, rejection.place.length,
            messageOf(line, rejection.place, row.expected, rejection.seen)};
}

}  // namespace velhls
