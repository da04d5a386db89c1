// Internal to the library, not installed: byte ranges read from pieces of text.
#pragma once

#include <memory>
#include <string_view>

#include "velhls/common/Numbers.h"
#include "velhls/common/Recorder.h"
#include "velhls/media/VELHLSByteRange.h"

namespace velhls {

/// See VELHLSByteRange::parse. False when the text is no range; `range` is then left as it was.
[[nodiscard]] bool parseRange(std::string_view text, char separator, bool inclusiveRange,
                              VELHLSByteRange& range, Recorder* recorder);

inline constexpr std::size_t mostRangeBytes = 2 * mostDecimalBytes + 1;

/// Puts the text of a range of no negative length to where there is room for `mostRangeBytes`, and returns
/// the place behind it. See VELHLSByteRange::render.
[[nodiscard]] char* putRange(char* to, const VELHLSByteRange& range);

/// See getByteRangeFromUri.
[[nodiscard]] std::shared_ptr<VELHLSByteRange> rangeInUri(std::string_view uri, Recorder* recorder);

}  // namespace velhls
