#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// The characters of UTF-8 (RFC 3629), for all that the command shows and counts. The libraries have a reader of their own,
/// velhls/common/Utf8.h: it is no part of their interface, and the command uses nothing else of them.
namespace tool::utf8 {

/// A byte that continues a character, and so begins none.
constexpr bool continues(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// How many characters begin in a text: its columns on a terminal, and in formats that count characters.
inline std::size_t countCharacters(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !continues(byte); }));
}

/// A character: how many bytes it takes, and its number.
struct Character {
    std::size_t length = 0;
    std::uint32_t number = 0;
};

/// The character at the start of a text that is not empty; of length 0 where the bytes are none.
inline Character firstCharacter(std::string_view text) {
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

}  // namespace tool::utf8
