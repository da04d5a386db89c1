// Internal to the libraries, not installed: where a byte range stands in a URI (vendor extension).
#pragma once

#include <cstddef>
#include <string_view>

namespace velhls {

inline constexpr std::string_view uriRangeMarker = "/range/";

/// A range in a URI is looked for from here on where nothing marks it, one less than the length of the marker:
/// what "not found" plus that length wraps around to. Kept as it is: which URIs are read as ranges, and that
/// shorter ones throw, is part of the interface.
inline constexpr std::size_t shortestUriWithoutRange = uriRangeMarker.size() - 1;

/// Where a range in a URI of at least six characters begins, if it has one.
[[nodiscard]] inline std::size_t startOfRangeInUri(std::string_view uri) {
    const std::size_t position = uri.rfind(uriRangeMarker);
    return position != std::string_view::npos ? position + uriRangeMarker.size() : shortestUriWithoutRange;
}

}  // namespace velhls
