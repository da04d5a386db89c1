// Internal to the library, not installed: the long way of writeShortest (NumberWriting.h).
#pragma once

namespace velhls {

/// Writes a finite number that has more than six decimals, is 1e9 or more, or negative: in fixed notation, with the
/// fewest digits that are read back as the same number, the nearest of those; all digits from 2^53 on.
[[nodiscard]] char* writeAnyShortest(char* to, double number);

}  // namespace velhls
