#include "tool/Printable.h"

#include <cstddef>

namespace tool {
namespace {

/// Control characters of ASCII, and those that UTF-8 writes as C2 80 to C2 9F.
bool isControl(std::string_view text, std::size_t position) {
    const auto byte = static_cast<unsigned char>(text[position]);
    if (byte < 0x20 || byte == 0x7F) return true;
    if (byte != 0xC2 || position + 1 == text.size()) return false;
    return static_cast<unsigned char>(text[position + 1]) < 0xA0;
}

void appendEscaped(std::string& out, char character) {
    constexpr std::string_view hexadecimal = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(character);
    out += "\\x";
    out += hexadecimal[byte / 16];
    out += hexadecimal[byte % 16];
}

}  // namespace

std::string printable(std::string_view text) {
    std::string shown;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (isControl(text, position)) {
            appendEscaped(shown, text[position]);
        } else {
            shown += text[position];
        }
    }
    return shown;
}

std::string quotedExcerpt(std::string_view text) {
    constexpr std::size_t longest = 120;
    std::string quoted = "\"" + printable(text.substr(0, longest));
    quoted += text.size() > longest ? "...\"" : "\"";
    return quoted;
}

}  // namespace tool
