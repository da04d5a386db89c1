// Internal to the library, not installed: tags that are nearly written.
#pragma once

#include <string>
#include <string_view>

namespace velhls {

/// ", did you mean EXT-X-ENDLIST?" for a name that is a known tag's but for the case of its letters, its hyphens, its
/// underscores and blanks; nothing for any other, and for the tag itself.
[[nodiscard]] std::string didYouMean(std::string_view name);

}  // namespace velhls
