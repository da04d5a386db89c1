#include "velhls/common/DoubleReading.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <system_error>

#include "velhls/common/ExactDecimal.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

constexpr CharacterSet nanCharacters("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz");

constexpr char lowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// Takes the word off the text where it begins with it, in upper or lower case.
bool take(std::string_view& text, std::string_view word) {
    const bool begins = text.size() >= word.size() &&
                        std::equal(word.begin(), word.end(), text.begin(),
                                   [](char expected, char seen) { return expected == lowerCase(seen); });
    if (begins) text.remove_prefix(word.size());
    return begins;
}

/// Takes all that the text begins with and that is in the set.
std::string_view takeAll(std::string_view& text, const CharacterSet& set) {
    std::size_t length = 0;
    while (length < text.size() && set.holds(text[length]))
        ++length;
    const std::string_view taken = firstOf(text, length);
    text.remove_prefix(length);
    return taken;
}

bool takeMinus(std::string_view& text) {
    const bool isNegative = take(text, "-");
    if (!isNegative) take(text, "+");
    return isNegative;
}

/// "1.5e3" in its parts.
struct Parts {
    std::string_view whole;
    std::string_view decimals;
    std::int64_t exponent = 0;

    Parts(std::string_view text, const CharacterSet& digits, std::string_view exponentLetter)
        : whole(takeAll(text, digits)) {
        if (take(text, ".")) decimals = takeAll(text, digits);
        if (take(text, exponentLetter)) readExponent(text);
    }

    [[nodiscard]] bool hasDigits() const { return !whole.empty() || !decimals.empty(); }

  private:
    void readExponent(std::string_view text) {
        const bool isNegative = takeMinus(text);
        // Far beyond the length of any text, which the exponent might make up for.
        constexpr std::int64_t most = 100000000000000000;
        for (const char digit : takeAll(text, digits))
            exponent = std::min(exponent * 10 + (digit - '0'), most);
        if (isNegative) exponent = -exponent;
    }
};

NearestDouble decimalNumber(const Parts& parts) {
    ExactDecimal number;
    std::int64_t place = static_cast<std::int64_t>(parts.whole.size()) - 1 + parts.exponent;
    for (const std::string_view part : {parts.whole, parts.decimals}) {
        const std::size_t zeros = std::min(part.find_first_not_of('0'), part.size());
        const std::string_view digits = part.substr(zeros);
        const std::int64_t firstPlace = place - static_cast<std::int64_t>(zeros);
        if (!digits.empty() && firstPlace > ExactDecimal::highestPlace) {
            return {std::numeric_limits<double>::infinity(), false};
        }
        number.putDigits(firstPlace, digits);
        place -= static_cast<std::int64_t>(part.size());
    }
    return number.nearest();
}

std::uint64_t hexadecimalValue(char digit) {
    return static_cast<std::uint64_t>(isDigit(digit) ? digit - '0' : lowerCase(digit) - 'a' + 10);
}

NearestDouble hexadecimalNumber(const Parts& parts) {
    std::uint64_t significand = 0;
    std::int64_t exponent = 4 * static_cast<std::int64_t>(parts.whole.size()) + parts.exponent;
    bool isExact = true;
    for (const std::string_view part : {parts.whole, parts.decimals}) {
        for (const char digit : part) {
            if (significand >> 60 == 0) {
                significand = significand * 16 + hexadecimalValue(digit);
                exponent -= 4;
            } else if (digit != '0') {
                isExact = false;
            }
        }
    }
    for (; significand != 0 && significand >> 63 == 0; significand *= 2)
        --exponent;
    return nearestDouble(significand, exponent, isExact);
}

/// The number in the parentheses, as strtoull reads it with any base; 0 where it is none.
std::optional<std::uint64_t> payloadOfNan(std::string_view text) {
    if (!take(text, "(")) return 0;
    std::string_view digits = takeAll(text, nanCharacters);
    if (!take(text, ")")) return 0;
    int base = 10;
    if (take(digits, "0x")) {
        base = 16;
    } else if (startsWith(digits, "0")) {
        base = 8;
    }
    std::uint64_t payload = 0;
    const char* const end = digits.data() + digits.size();
    const std::from_chars_result result = std::from_chars(digits.data(), end, payload, base);
    if (result.ec == std::errc::result_out_of_range) return std::nullopt;
    return result.ptr == end ? payload : 0;
}

NearestDouble nanNumber(std::string_view text) {
    const std::optional<std::uint64_t> payload = payloadOfNan(text);
    constexpr std::uint64_t quietNan = 0x7ff8000000000000;
    constexpr std::uint64_t payloadBits = 0x0007ffffffffffff;
    const std::uint64_t bits = quietNan | (payload.value_or(0) & payloadBits);
    double number = 0.0;
    std::memcpy(&number, &bits, sizeof number);
    return {number, payload.has_value()};
}

/// A number without a sign.
LeadingDouble magnitude(std::string_view text) {
    if (take(text, "inf")) return {true, {std::numeric_limits<double>::infinity(), true}};
    if (take(text, "nan")) return {true, nanNumber(text)};
    std::string_view afterPrefix = text;
    if (take(afterPrefix, "0x")) {
        const Parts hexadecimal(afterPrefix, hexadecimalDigits, "p");
        if (hexadecimal.hasDigits()) return {true, hexadecimalNumber(hexadecimal)};
    }
    const Parts decimal(text, digits, "e");
    if (!decimal.hasDigits()) return {};
    return {true, decimalNumber(decimal)};
}

}  // namespace

LeadingDouble leadingDouble(std::string_view text) {
    const bool isNegative = takeMinus(text);
    LeadingDouble read = magnitude(text);
    if (isNegative) read.nearest.number = -read.nearest.number;
    return read;
}

}  // namespace velhls
