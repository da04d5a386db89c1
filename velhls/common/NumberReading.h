// Internal to the libraries, not installed: the one set of conversions from text to numbers.
//
// The readers keep the rules of std::stoi, std::stoll and std::stod to the letter: leading white space and a
// sign are accepted, text after the number is ignored, std::invalid_argument is thrown when no number stands
// at the start and std::out_of_range when the type cannot hold it. Unlike those they never look at the
// process locale: the decimal point is always ".".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "velhls/common/PrivateExport.h"
#include "velhls/common/Reason.h"

namespace velhls {

/// std::stoi in base 10.
[[nodiscard]] VELHLS_PRIVATE_API std::int32_t toInt32(std::string_view text);

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

}  // namespace velhls
