#include "tool/Printable.h"

#include <cstddef>
#include <cstdint>

namespace tool {
namespace {

std::uint32_t byteAt(std::string_view text, std::size_t position) {
    return static_cast<unsigned char>(text[position]);
}

/// A character of UTF-8: how many bytes it takes, and its number. Bytes that are none have no length.
struct Character {
    std::size_t length = 0;
    std::uint32_t number = 0;
};

Character characterAt(std::string_view text, std::size_t position) {
    const std::uint32_t first = byteAt(text, position);
    if (first < 0x80) return {1, first};
    if (first < 0xC2 || first > 0xF4) return {};
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (text.size() - position < length) return {};
    std::uint32_t number = first & (0xFFU >> (length + 1));
    for (std::size_t index = 1; index < length; ++index) {
        const std::uint32_t byte = byteAt(text, position + index);
        if ((byte & 0xC0) != 0x80) return {};
        number = number << 6 | (byte & 0x3F);
    }
    const bool isOverlong = (length == 3 && number < 0x800) || (length == 4 && number < 0x10000);
    const bool isSurrogate = number >= 0xD800 && number <= 0xDFFF;
    if (isOverlong || isSurrogate || number > 0x10FFFF) return {};
    return {length, number};
}

/// Control characters, and what ends a line or turns the direction of what follows.
bool steersTheTerminal(std::uint32_t character) {
    if (character < 0x20 || (character >= 0x7F && character < 0xA0)) return true;
    const bool isMark = character == 0x061C || character == 0x200E || character == 0x200F;
    const bool endsLineOrEmbeds = character >= 0x2028 && character <= 0x202E;
    return isMark || endsLineOrEmbeds || (character >= 0x2066 && character <= 0x2069);
}

void appendEscaped(std::string& out, std::string_view bytes) {
    constexpr std::string_view hexadecimal = "0123456789ABCDEF";
    for (std::size_t position = 0; position < bytes.size(); ++position) {
        out += "\\x";
        out += hexadecimal[byteAt(bytes, position) / 16];
        out += hexadecimal[byteAt(bytes, position) % 16];
    }
}

}  // namespace

std::string printable(std::string_view text) {
    std::string shown;
    for (std::size_t position = 0; position < text.size();) {
        const Character character = characterAt(text, position);
        const std::string_view bytes = text.substr(position, character.length == 0 ? 1 : character.length);
        if (character.length == 0 || steersTheTerminal(character.number)) {
            appendEscaped(shown, bytes);
        } else {
            shown += bytes;
        }
        position += bytes.size();
    }
    return shown;
}

std::string quotedExcerpt(std::string_view text) {
    constexpr std::size_t longest = 120;
    std::size_t length = text.size() < longest ? text.size() : longest;
    // A character is not cut.
    while (length > 0 && length < text.size() && (byteAt(text, length) & 0xC0) == 0x80)
        --length;
    std::string quoted = "\"" + printable(text.substr(0, length));
    quoted += length < text.size() ? "...\"" : "\"";
    return quoted;
}

}  // namespace tool
