// Internal to the library, not installed: language tags.
#pragma once

#include <string_view>

namespace velhls {

/// True of what is written as RFC 5646, section 2.1, wants it, with a language of two or three letters, "i" or "x": no language of
/// more letters has been registered. Whether it is registered is not asked.
[[nodiscard]] bool isLanguageTag(std::string_view text);

}  // namespace velhls
