// Internal to the library, not installed: every form of a double that the C library's strtod reads in the "C" locale, in any
// locale and with any C library.
#pragma once

#include <string_view>

#include "velhls/common/ExactDecimal.h"

namespace velhls {

struct LeadingDouble {
    /// Whether a number begins the text.
    bool isNumber = false;
    NearestDouble nearest;
};

/// The longest number that the text begins with, without white space before it:
///
///     -12.5    .5    1e3    0x1.8p-3    inf    Infinity    nan    nan(0x7)
///
/// The number in the parentheses of "nan" is kept in the bits of the result, as glibc keeps it, and may be out of range too.
[[nodiscard]] LeadingDouble leadingDouble(std::string_view text);

}  // namespace velhls
