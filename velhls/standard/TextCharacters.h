// Internal to the library, not installed: which characters a line has.
#pragma once

#include <string_view>

namespace velhls {

/// True when a line holds nothing that a rule of text looks for: printable ASCII, and no blank, but for those inside of a
/// tag's line.
[[nodiscard]] bool isPlain(std::string_view line);

/// True of a text that begins as UTF-16 does: with its byte order mark, or with "#" in two bytes.
[[nodiscard]] bool isUtf16(std::string_view text);

/// The first place of the URI that RFC 3986 does not allow, as much as the text shows: an odd character, a "%" without two digits, a
/// second "#". Empty when there is none. References to variables ("{$name}") are left out when `hasVariables`.
[[nodiscard]] std::string_view oddPartOfUri(std::string_view uri, bool hasVariables);

}  // namespace velhls
