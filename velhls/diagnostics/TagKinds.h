// Internal to the library, not installed: which kind of playlist a tag belongs to.
#pragma once

#include <string_view>

namespace velhls {

/// EXT-X-STREAM-INF and EXT-X-I-FRAME-STREAM-INF, which no media playlist has.
[[nodiscard]] bool isVariantTag(std::string_view name);

/// A tag that only master playlists have.
[[nodiscard]] bool isMasterTag(std::string_view name);

/// A tag that only media playlists have, those of later documents than RFC 8216 included.
[[nodiscard]] bool isMediaTag(std::string_view name);

}  // namespace velhls
