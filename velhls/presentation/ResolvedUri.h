// Internal to the library, not installed: what a relative URI names.
#pragma once

#include <string>
#include <string_view>

namespace velhls {

/// The reference as seen from the base (RFC 3986, section 5.2), without a fragment. The base may be relative itself, as a
/// path is; then what comes out is relative to the same place.
[[nodiscard]] std::string resolvedUri(std::string_view base, std::string_view reference);

}  // namespace velhls
