// Internal to the library, not installed: whether a text is JSON.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace velhls {

/// Where the text stops being JSON (RFC 7159, in UTF-8, with or without a byte order mark); nothing when all of it is. Takes
/// linear time, however deep values are nested.
[[nodiscard]] std::optional<std::size_t> findJsonFault(std::string_view text);

}  // namespace velhls
