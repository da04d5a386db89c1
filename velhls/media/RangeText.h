// Internal to the library, not installed: byte ranges read from pieces of text.
#pragma once

#include <memory>
#include <string_view>

#include "velhls/media/VELHLSByteRange.h"

namespace velhls {

/// See VELHLSByteRange::parse. False when the text is no range; `range` is then left as it was.
[[nodiscard]] bool parseRange(std::string_view text, char separator, bool inclusiveRange,
                              VELHLSByteRange& range);

/// See getByteRangeFromUri.
[[nodiscard]] std::shared_ptr<VELHLSByteRange> rangeInUri(std::string_view uri);

}  // namespace velhls
