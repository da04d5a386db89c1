// Internal to the library, not installed: the one set of conversions between numbers and text.
//
// The readers keep the rules of std::stoi, std::stoll and std::stod to the letter: leading white space and a
// sign are accepted, text after the number is ignored, std::invalid_argument is thrown when no number stands
// at the start and std::out_of_range when the type cannot hold it. Unlike those they never look at the
// process locale: the decimal point is always ".".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "velhls/common/PrivateExport.h"
#include "velhls/common/Reason.h"

namespace velhls {

/// std::stoi in base 10.
[[nodiscard]] std::int32_t toInt32(std::string_view text);

/// std::stoll in base 10.
[[nodiscard]] VELHLS_PRIVATE_API std::int64_t toInt64(std::string_view text);

/// std::stoll in base 10, stored as unsigned: bandwidths and bit rates, where "-1" becomes 2^64 - 1.
[[nodiscard]] std::uint64_t toInt64AsUnsigned(std::string_view text);

/// std::stod: also exponents, hexadecimal floats, "inf" and "nan".
[[nodiscard]] VELHLS_PRIVATE_API double toDouble(std::string_view text);

/// The same, with the reason written before an exception is thrown.
[[nodiscard]] std::int32_t toInt32(std::string_view text, Reason& why);
[[nodiscard]] std::int64_t toInt64(std::string_view text, Reason& why);
[[nodiscard]] std::uint64_t toInt64AsUnsigned(std::string_view text, Reason& why);
[[nodiscard]] double toDouble(std::string_view text, Reason& why);

/// A number at the start of a text, and how many characters of it are the number's: 0 when there is none.
template <typename Number>
struct LeadingNumber {
    Number number = 0;
    std::size_t length = 0;

    /// Whether nothing follows the number in the text that it was read from.
    [[nodiscard]] bool isAllOf(std::string_view text) const { return length > 0 && length == text.size(); }
};

/// The number that a text begins with when it is nothing but digits and at most one point, as most are: in one walk
/// that also finds its end. None for all others, and for those of more digits than are exact.
///
/// What follows the number may be the rest of one that is not plain, such as an exponent: the caller must know
/// that it is not.
[[nodiscard]] LeadingNumber<double> leadingDecimal(std::string_view text);

/// The same for digits only. No digit follows.
[[nodiscard]] LeadingNumber<std::int64_t> leadingInteger(std::string_view text);

void appendDecimal(std::string& out, std::int64_t number);
void appendDecimal(std::string& out, std::uint64_t number);

/// The most bytes that writeDecimal and writeFixed write: the largest double has 309 digits before its point.
inline constexpr std::size_t mostDecimalBytes = 20;
inline constexpr std::size_t mostFixedBytes = 320;

/// Writes a number below 100, with a zero before it where it is below 10, and returns the place after it.
[[nodiscard]] char* writeTwoDigits(char* to, std::uint32_t number);

/// Writes the number to where there is room for it, and returns the place after it.
[[nodiscard]] char* writeDecimal(char* to, std::int64_t number);

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
