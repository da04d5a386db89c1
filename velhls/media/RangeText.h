// Internal to the library, not installed: byte ranges read from pieces of text.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "velhls/common/NumberWriting.h"
#include "velhls/common/Reason.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/UriRange.h"
#include "velhls/media/VELHLSByteRange.h"

namespace velhls {

/// See VELHLSByteRange::parse. False when the text is no range; `range` is then left as it was.
[[nodiscard]] bool readRange(std::string_view text, char separator, bool inclusiveRange,
                             VELHLSByteRange& range, Reason& why);

inline constexpr std::size_t mostRangeBytes = 2 * mostDecimalBytes + 1;

/// Writes a range whose length is not negative to where there is room for `mostRangeBytes`, and returns the place after
/// it. See VELHLSByteRange::render.
[[nodiscard]] char* writeRange(char* to, const VELHLSByteRange& range);

/// False for most URIs: then there is no byte range in this one, and readRangeInUri need not be asked. Every range
/// ends in a digit; what is too short is for readRangeInUri to throw for.
[[nodiscard]] inline bool mayHoldRange(std::string_view uri) {
    return uri.size() < shortestUriWithoutRange || isDigit(uri.back());
}

/// See getByteRangeFromUri. False when there is no range; `range` is then left as it was. One of a negative length, and
/// a URI that is too short, which throws, have a reason.
[[nodiscard]] bool readRangeInUri(std::string_view uri, VELHLSByteRange& range, Reason& why);

}  // namespace velhls
