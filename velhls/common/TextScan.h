// Internal to the library, not installed: the small questions that the readers ask about a piece of text.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace velhls {

/// A set of characters that can be asked for each at once.
class CharacterSet {
  public:
    constexpr explicit CharacterSet(std::string_view characters) {
        for (const char character : characters)
            members_[static_cast<unsigned char>(character)] = true;
    }

    [[nodiscard]] constexpr bool holds(char character) const {
        return members_[static_cast<unsigned char>(character)];
    }

  private:
    std::array<bool, 256> members_ = {};
};

inline constexpr CharacterSet digits("0123456789");
inline constexpr CharacterSet digitsAndPoint("0123456789.");
inline constexpr CharacterSet digitsAndSlash("0123456789/");
inline constexpr CharacterSet digitsPointAndSigns("+-0123456789.");
inline constexpr CharacterSet hexadecimalDigits("0123456789ABCDEFabcdef");
inline constexpr CharacterSet blanks(" \t\n\r");
inline constexpr CharacterSet lineEnds("\n\r");
/// What begins a reference to a variable.
inline constexpr CharacterSet referenceStarts("{$");

[[nodiscard]] constexpr bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

[[nodiscard]] constexpr bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// The text after its first characters. There must be so many: unlike std::string_view::substr this asks nothing,
/// since in the readers' hot paths a comparison has just shown it.
[[nodiscard]] constexpr std::string_view withoutFirst(std::string_view text, std::size_t count) {
    text.remove_prefix(count);
    return text;
}

/// The first characters of the text. There must be so many.
[[nodiscard]] constexpr std::string_view firstOf(std::string_view text, std::size_t count) {
    return {text.data(), count};
}

/// True of an empty text too.
[[nodiscard]] constexpr bool holdsOnly(std::string_view text, const CharacterSet& allowed) {
    for (const char character : text) {
        if (!allowed.holds(character)) return false;
    }
    return true;
}

[[nodiscard]] constexpr bool holdsNone(std::string_view text, const CharacterSet& unwanted) {
    for (const char character : text) {
        if (unwanted.holds(character)) return false;
    }
    return true;
}

/// The first line of a text, which is taken off it together with its line feed. LineReader does the same for whole
/// playlists, and VELHLSDocument knows where all lines begin.
[[nodiscard]] inline std::string_view nextLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
    return line;
}

[[nodiscard]] constexpr bool isBlank(std::string_view text) {
    return holdsOnly(text, blanks);
}

/// The text less the trailing characters that are in `dropped`.
[[nodiscard]] constexpr std::string_view withoutTrailing(std::string_view text, const CharacterSet& dropped) {
    while (!text.empty() && dropped.holds(text.back()))
        text.remove_suffix(1);
    return text;
}

}  // namespace velhls
