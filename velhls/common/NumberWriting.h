// Internal to the libraries, not installed: the one set of conversions from numbers to text. None of them looks at the
// process locale: the decimal point is always ".".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "velhls/common/PrivateExport.h"

namespace velhls {

void appendDecimal(std::string& out, std::int64_t number);

/// The most bytes that writeDecimal and writeFixed write: the largest double has 309 digits before its point.
inline constexpr std::size_t mostDecimalBytes = 20;
inline constexpr std::size_t mostFixedBytes = 320;

/// Writes a number below 100, with a zero before it where it is below 10, and returns the place after it.
[[nodiscard]] char* writeTwoDigits(char* to, std::uint32_t number);

/// Writes the number to where there is room for it, and returns the place after it.
[[nodiscard]] char* writeDecimal(char* to, std::int64_t number);
[[nodiscard]] char* writeDecimal(char* to, std::uint64_t number);

/// The same in fixed notation with up to six decimals, as printf's "%.*f" in the "C" locale writes it: "nan"
/// and "inf" for what is no number.
[[nodiscard]] VELHLS_PRIVATE_API char* writeFixed(char* to, double number, int decimals);

/// The nearest whole number of one from 0 to below 2^63; of a half the upper one.
[[nodiscard]] inline std::int64_t nearestWhole(double number) {
    const auto whole = static_cast<std::int64_t>(number);
    return number - static_cast<double>(whole) < 0.5 ? whole : whole + 1;
}

/// The most bytes that writeShortest writes: the smallest double has 323 zeros after its point, and then up to 17 digits.
inline constexpr std::size_t mostShortestBytes = 350;

/// Writes a finite number in fixed notation, with the fewest digits that are read back as the same number.
[[nodiscard]] char* writeShortest(char* to, double number);

}  // namespace velhls
