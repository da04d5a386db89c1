// Internal to the library, not installed: whether a text can be written without breaking the line that it is written to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "velhls/common/EightBytes.h"

namespace velhls {

/// Whether the text holds a byte below the blank, as the line ends are, or one of the characters. Looks at eight bytes at
/// once, since every URI is asked.
template <char... characters>
[[nodiscard]] bool holdsControlOr(std::string_view text) {
    const auto isAnyAt = [](const char* place) {
        const std::uint64_t bytes = eightBytesAt(place);
        return (markBelow(bytes, ' ') | ... | markEqual(bytes, characters)) != 0;
    };
    constexpr std::size_t width = sizeof(std::uint64_t);
    if (text.size() < width) {
        for (const char character : text) {
            const bool isControl = static_cast<unsigned char>(character) < ' ';
            if ((isControl || ... || (character == characters))) return true;
        }
        return false;
    }
    for (std::size_t position = 0; position + width < text.size(); position += width) {
        if (isAnyAt(text.data() + position)) return true;
    }
    return isAnyAt(text.data() + text.size() - width);
}

[[nodiscard]] inline bool holdsLineEnd(std::string_view text) {
    return holdsControlOr<>(text) && text.find_first_of("\r\n") != std::string_view::npos;
}

/// Whether players would look for a variable: "{$name}" (draft-pantos-hls-rfc8216bis, section 4.3).
[[nodiscard]] bool refersToVariable(std::string_view text);

/// See whyNoUriLine: of a text that is not as nearly all are.
[[nodiscard]] std::string_view whyNoOddUriLine(std::string_view text);

/// Why the text cannot stand as a URI on a line of its own; empty when it can. A reader that trims its lines must not
/// find a tag either.
[[nodiscard]] inline std::string_view whyNoUriLine(std::string_view text) {
    const bool isUsual = !text.empty() && text.front() > '#' && !holdsControlOr<'{'>(text);
    return isUsual ? std::string_view() : whyNoOddUriLine(text);
}

/// See whyNotQuoted: of a text that is not as nearly all are.
[[nodiscard]] std::string_view whyNotOddQuoted(std::string_view text);

/// Why the text cannot stand in quotes; empty when it can.
[[nodiscard]] inline std::string_view whyNotQuoted(std::string_view text) {
    return holdsControlOr<'"', '{'>(text) ? whyNotOddQuoted(text) : std::string_view();
}

}  // namespace velhls
