#pragma once

#include <string>
#include <string_view>

namespace tool {

/// Appends the byte as two hexadecimal digits.
inline void appendHexadecimal(std::string& out, char character) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(character);
    out += digits[byte / 16];
    out += digits[byte % 16];
}

/// The text with "%3A" for a colon, and so on for every character that is not kept.
template <typename IsKept>
[[nodiscard]] std::string percentEncoded(std::string_view text, IsKept isKept) {
    std::string result;
    for (const char character : text) {
        if (isKept(character)) {
            result += character;
        } else {
            result += '%';
            appendHexadecimal(result, character);
        }
    }
    return result;
}

/// A path as a part of a URI: what means something in a URI, and all beyond ASCII, is escaped.
[[nodiscard]] inline std::string percentEncodedPath(std::string_view path) {
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    return percentEncoded(
        path, [plain](char character) { return plain.find(character) != std::string_view::npos; });
}

}  // namespace tool
