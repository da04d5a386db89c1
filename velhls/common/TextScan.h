// Internal to the library, not installed: the small questions that the readers ask about a piece of text.
#pragma once

#include <string_view>

namespace velhls {

inline constexpr std::string_view digits = "0123456789";
inline constexpr std::string_view digitsAndPoint = "0123456789.";
inline constexpr std::string_view digitsPointAndSigns = "+-0123456789.";
inline constexpr std::string_view hexadecimalDigits = "0123456789ABCDEFabcdef";

[[nodiscard]] constexpr bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

[[nodiscard]] constexpr bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// True of an empty text too.
[[nodiscard]] constexpr bool holdsOnly(std::string_view text, std::string_view allowed) {
    return text.find_first_not_of(allowed) == std::string_view::npos;
}

[[nodiscard]] constexpr bool isBlankCharacter(char character) {
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

[[nodiscard]] constexpr bool isBlank(std::string_view text) {
    for (const char character : text) {
        if (!isBlankCharacter(character)) return false;
    }
    return true;
}

[[nodiscard]] constexpr std::string_view withoutTrailingBlanks(std::string_view text) {
    while (!text.empty() && isBlankCharacter(text.back()))
        text.remove_suffix(1);
    return text;
}

/// The text less the trailing characters that are in `dropped`.
[[nodiscard]] constexpr std::string_view withoutTrailing(std::string_view text, std::string_view dropped) {
    // "Not found" is the largest position, and one more wraps around to 0: nothing is left.
    return text.substr(0, text.find_last_not_of(dropped) + 1);
}

}  // namespace velhls
