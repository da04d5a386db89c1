// Internal to the library, not installed: how a tag line is told from others, cut, and begun.
#pragma once

#include <string>
#include <string_view>

#include "velhls/common/TextBuffer.h"
#include "velhls/common/TextScan.h"

namespace velhls {

/// A tag line cut at its first colon. Both views look into the line that was cut.
struct TagLine {
    TagLine() = default;
    /// Cuts a line that begins with "#".
    explicit TagLine(std::string_view line) {
        const std::size_t colon = line.find(':');
        hasColon = colon != std::string_view::npos;
        name = withoutFirst(firstOf(line, hasColon ? colon : line.size()), 1);
        if (hasColon) value = withoutFirst(line, colon + 1);
    }

    /// The text between the "#" and the first colon; without a colon, all after the "#".
    std::string_view name;
    /// The text after the first colon; empty without one.
    std::string_view value;
    bool hasColon = false;
};

[[nodiscard]] constexpr bool isTagOrComment(std::string_view line) {
    return startsWith(line, "#");
}

[[nodiscard]] constexpr bool isStandardTag(std::string_view line) {
    return startsWith(line, "#EXT");
}

[[nodiscard]] constexpr bool isVendorTag(std::string_view line) {
    return startsWith(line, "#ZOR");
}

/// The length of "#", the tag's name and ":".
[[nodiscard]] constexpr std::size_t tagLength(std::string_view tag) {
    return tag.size() + 2;
}

/// True when the line begins with "#", the tag's name and ":".
[[nodiscard]] constexpr bool isTagLine(std::string_view line, std::string_view tag) {
    return line.size() >= tagLength(tag) && line[0] == '#' && line.substr(1, tag.size()) == tag &&
           line[tag.size() + 1] == ':';
}

/// What a value follows: "#", the tag's name and ":".
inline void appendTagStart(std::string& out, std::string_view tag) {
    out += '#';
    out += tag;
    out += ':';
}

/// The same, written to where there is room for it. Returns the place after it.
[[nodiscard]] inline char* writeTagStart(char* to, std::string_view tag) {
    to = writeText(to, '#');
    to = writeText(to, tag);
    return writeText(to, ':');
}

}  // namespace velhls
