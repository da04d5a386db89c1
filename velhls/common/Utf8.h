// Internal to the libraries, not installed: the characters of UTF-8 (RFC 3629), in the one place for both of them. The
// command, which uses public headers alone, has its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velhls::utf8 {

/// A byte that continues a character, and so begins none.
[[nodiscard]] constexpr bool continues(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// A character: how many bytes it takes, and its number.
struct Character {
    std::size_t length = 0;
    std::uint32_t number = 0;
};

/// The character at the start of a text; of length 0 where none is: in an empty text, a cut or overlong
/// character, a surrogate, and beyond U+10FFFF.
[[nodiscard]] constexpr Character firstCharacter(std::string_view text) {
    if (text.empty()) return {};
    const std::uint32_t first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) return {1, first};
    if (first < 0xC2 || first > 0xF4) return {};
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (text.size() < length) return {};
    std::uint32_t number = first & (0xFFU >> (length + 1));
    for (std::size_t index = 1; index < length; ++index) {
        if (!continues(text[index])) return {};
        number = number << 6U | (static_cast<unsigned char>(text[index]) & 0x3FU);
    }
    const bool isOverlong = (length == 3 && number < 0x800) || (length == 4 && number < 0x10000);
    const bool isSurrogate = number >= 0xD800 && number <= 0xDFFF;
    if (isOverlong || isSurrogate || number > 0x10FFFF) return {};
    return {length, number};
}

/// The most bytes of a text, of `most` at most, that end where a character does. What is no UTF-8 is cut
/// anywhere.
[[nodiscard]] constexpr std::size_t lengthOfWholeCharacters(std::string_view text, std::size_t most) {
    if (text.size() <= most) return text.size();
    constexpr std::size_t longestCharacter = 4;
    for (std::size_t length = most; length > 0 && most - length < longestCharacter; --length) {
        if (!continues(text[length])) return length;
    }
    return most;
}

}  // namespace velhls::utf8
