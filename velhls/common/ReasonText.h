// Internal to the library, not installed: what is said of a place in a text.
#pragma once

#include <string>
#include <string_view>

#include "velhls/common/PrivateExport.h"
#include "velhls/common/Reading.h"
#include "velhls/common/VELHLSReason.h"

namespace velhls {

/// The text in double quotes, for messages; of a long one its start.
[[nodiscard]] VELHLS_PRIVATE_API std::string quoted(std::string_view text);

/// "EXT-X-STREAM-INF: BANDWIDTH: expected a BANDWIDTH above 0, seen "0"" for a place in a line of the text. Where it is not
/// said what was seen it is the text of the place.
[[nodiscard]] VELHLS_PRIVATE_API std::string messageOf(std::string_view line, const Place& place,
                                                       std::string_view expected, std::string_view seen);

/// The line with this number, without its line feed; the last one for a larger number.
[[nodiscard]] std::string_view lineOf(std::string_view text, std::size_t number);

/// What a caller is told of a rejection in the text.
[[nodiscard]] VELHLSReason reasonOf(std::string_view text, const Rejection& rejection);

}  // namespace velhls
