#include "velhls/common/NumberReading.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <limits>
#include <stdexcept>
#include <string>
#include <system_error>

#include "velhls/common/DoubleReading.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

/// The start of a text that may be a megabyte long, for an exception's message.
std::string quotedStart(std::string_view text) {
    constexpr std::size_t longest = 40;
    std::string quoted = "\"";
    quoted += text.substr(0, longest);
    quoted += text.size() > longest ? "...\"" : "\"";
    return quoted;
}

[[noreturn]] void throwNoNumber(std::string_view text) {
    throw std::invalid_argument("no number at the start of " + quotedStart(text));
}

[[noreturn]] void throwOutOfRange(std::string_view text) {
    throw std::out_of_range("number out of range: " + quotedStart(text));
}

/// What std::isspace accepts in the "C" locale.
constexpr std::string_view whiteSpace = " \t\n\v\f\r";

std::string_view withoutLeadingSpace(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(whiteSpace), text.size()));
}

/// The text from its number on, in the form that std::from_chars reads: it knows no "+".
std::string_view withoutSpaceAndPlus(std::string_view text) {
    text = withoutLeadingSpace(text);
    const bool plusBeforeDigit = text.size() > 1 && text[0] == '+' && isDigit(text[1]);
    if (plusBeforeDigit) text.remove_prefix(1);
    return text;
}

/// Goes on with a number over the digits from a position on, and returns where they end. Of more than 19 digits the
/// number is worth nothing.
const char* readDigits(const char* position, const char* end, std::uint64_t& number) {
    for (; position < end; ++position) {
        const std::uint64_t digit = static_cast<unsigned char>(*position) - std::uint64_t{'0'};
        if (digit > 9) break;
        number = number * 10 + digit;
    }
    return position;
}

static_assert(FLT_EVAL_METHOD == 0,
              "doubles have to be computed as doubles: on 32-bit x86 by -msse2 -mfpmath=sse");

/// Doubles hold all whole numbers of so many bits, and these powers of ten.
constexpr int exactBits = std::numeric_limits<double>::digits;
constexpr std::array<double, 20> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                                                1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};

template <typename Integer>
Integer toInteger(std::string_view text) {
    const LeadingNumber<std::int64_t> plain = leadingInteger(text);
    if (plain.isAllOf(text) && plain.length <= std::numeric_limits<Integer>::digits10) {
        return static_cast<Integer>(plain.number);
    }
    const std::string_view digits = withoutSpaceAndPlus(text);
    Integer number = 0;
    const std::from_chars_result result =
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec == std::errc::invalid_argument) throwNoNumber(text);
    if (result.ec == std::errc::result_out_of_range) throwOutOfRange(text);
    return number;
}

template <typename Number>
Number convertedOrWhy(Number (*convert)(std::string_view), std::string_view text, Reason& why) {
    try {
        return convert(text);
    } catch (const std::invalid_argument&) {
        why(Rule::numberMissing, text);
        throw;
    } catch (const std::out_of_range&) {
        why(Rule::numberOutOfRange, text);
        throw;
    }
}

}  // namespace

LeadingNumber<double> leadingDecimal(std::string_view text) {
    const char* const begin = text.data();
    const char* const textEnd = begin + text.size();
    std::uint64_t number = 0;
    const char* end = readDigits(begin, textEnd, number);
    auto digitCount = static_cast<std::size_t>(end - begin);
    std::size_t decimals = 0;
    if (end < textEnd && *end == '.') {
        const char* const decimalsBegin = end + 1;
        end = readDigits(decimalsBegin, textEnd, number);
        decimals = static_cast<std::size_t>(end - decimalsBegin);
        digitCount += decimals;
    }
    constexpr std::size_t mostDigits = std::numeric_limits<std::uint64_t>::digits10;
    if (digitCount == 0 || digitCount > mostDigits || number >> exactBits != 0) return {};
    // Both are exact, so that the quotient is rounded once, as strtod rounds it.
    const double quotient = static_cast<double>(static_cast<std::int64_t>(number)) / powersOfTen[decimals];
    return {quotient, static_cast<std::size_t>(end - begin)};
}

LeadingNumber<std::int64_t> leadingInteger(std::string_view text) {
    constexpr std::size_t mostDigits = std::numeric_limits<std::int64_t>::digits10;
    const char* const begin = text.data();
    std::uint64_t number = 0;
    const auto length = static_cast<std::size_t>(readDigits(begin, begin + text.size(), number) - begin);
    if (length > mostDigits) return {};
    return {static_cast<std::int64_t>(number), length};
}

std::int32_t toInt32(std::string_view text) {
    return toInteger<std::int32_t>(text);
}

std::int64_t toInt64(std::string_view text) {
    return toInteger<std::int64_t>(text);
}

std::uint64_t toInt64AsUnsigned(std::string_view text) {
    return static_cast<std::uint64_t>(toInt64(text));
}

double toDouble(std::string_view text) {
    const LeadingNumber<double> plain = leadingDecimal(text);
    if (plain.isAllOf(text)) return plain.number;
    const LeadingDouble any = leadingDouble(withoutLeadingSpace(text));
    if (!any.isNumber) throwNoNumber(text);
    if (!any.nearest.isInRange) throwOutOfRange(text);
    return any.nearest.number;
}

std::int32_t toInt32(std::string_view text, Reason& why) {
    return convertedOrWhy<std::int32_t>(toInt32, text, why);
}

std::int64_t toInt64(std::string_view text, Reason& why) {
    return convertedOrWhy<std::int64_t>(toInt64, text, why);
}

std::uint64_t toInt64AsUnsigned(std::string_view text, Reason& why) {
    return convertedOrWhy<std::uint64_t>(toInt64AsUnsigned, text, why);
}

double toDouble(std::string_view text, Reason& why) {
    return convertedOrWhy<double>(toDouble, text, why);
}

}  // namespace velhls
