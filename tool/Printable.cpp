#include "tool/Printable.h"

#include <cstddef>
#include <cstdint>

#include "tool/Escaping.h"
#include "tool/Utf8.h"

namespace tool {
namespace {

/// Control characters, and what ends a line or turns the direction of what follows; and what no XML may hold.
bool steersTheTerminal(std::uint32_t character) {
    if (character < 0x20 || (character >= 0x7F && character < 0xA0)) return true;
    const bool isMark = character == 0x061C || character == 0x200E || character == 0x200F;
    const bool endsLineOrEmbeds = character >= 0x2028 && character <= 0x202E;
    const bool isNone = character == 0xFFFE || character == 0xFFFF;
    return isMark || endsLineOrEmbeds || isNone || (character >= 0x2066 && character <= 0x2069);
}

void appendEscaped(std::string& out, std::string_view bytes) {
    for (const char character : bytes) {
        out += "\\x";
        appendHexadecimal(out, character);
    }
}

}  // namespace

std::string printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const utf8::Character character = utf8::firstCharacter(text);
        const std::string_view bytes = text.substr(0, character.length == 0 ? 1 : character.length);
        if (character.length == 0 || steersTheTerminal(character.number)) {
            appendEscaped(shown, bytes);
        } else {
            shown += bytes;
        }
        text.remove_prefix(bytes.size());
    }
    return shown;
}

std::string quotedExcerpt(std::string_view text) {
    constexpr std::size_t longest = 120;
    std::size_t length = text.size() < longest ? text.size() : longest;
    // A character is not cut.
    while (length > 0 && length < text.size() && utf8::continues(text[length]))
        --length;
    std::string quoted = "\"" + printable(text.substr(0, length));
    quoted += length < text.size() ? "...\"" : "\"";
    return quoted;
}

}  // namespace tool
