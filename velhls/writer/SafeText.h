// Internal to the library, not installed: whether a text can be written without breaking the line that it is written to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace velhls {

/// Whether the text holds one of the characters. Looks at eight bytes at once, since every URI is asked.
template <char... characters>
[[nodiscard]] bool holdsAny(std::string_view text) {
    constexpr std::uint64_t ones = 0x0101010101010101;
    // Not 0 exactly when a byte of the word is 0.
    const auto zeroBytes = [](std::uint64_t word) { return (word - ones) & ~word & (ones << 7); };
    const auto isAnyAt = [&](const char* bytes) {
        std::uint64_t word;
        std::memcpy(&word, bytes, sizeof word);
        return (zeroBytes(word ^ (ones * characters)) | ...) != 0;
    };
    constexpr std::size_t width = sizeof(std::uint64_t);
    if (text.size() < width) {
        for (const char character : text) {
            if (((character == characters) || ...)) return true;
        }
        return false;
    }
    for (std::size_t position = 0; position + width < text.size(); position += width) {
        if (isAnyAt(text.data() + position)) return true;
    }
    return isAnyAt(text.data() + text.size() - width);
}

[[nodiscard]] inline bool holdsLineEnd(std::string_view text) {
    return holdsAny<'\n', '\r'>(text);
}

/// Why the text cannot stand as a URI on a line of its own; empty when it can. A reader that trims its lines must not
/// find a tag either.
[[nodiscard]] inline std::string_view whyNoUriLine(std::string_view text) {
    if (holdsLineEnd(text)) return "holds a line end";
    // Nearly every URI begins beyond.
    if (!text.empty() && text.front() > '#') return {};
    const std::size_t start = text.find_first_not_of(" \t\v\f");
    if (start == std::string_view::npos) return "is blank";
    return text[start] == '#' ? "begins with \"#\"" : std::string_view();
}

/// Why the text cannot stand in quotes; empty when it can.
[[nodiscard]] inline std::string_view whyNotQuoted(std::string_view text) {
    if (!holdsAny<'\n', '\r', '"'>(text)) return {};
    return holdsLineEnd(text) ? "holds a line end" : "holds a quote";
}

}  // namespace velhls
