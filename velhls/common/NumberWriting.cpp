#include "velhls/common/NumberWriting.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>

#include "velhls/common/ExactDecimal.h"
#include "velhls/common/TextBuffer.h"

namespace velhls {
namespace {

/// "00", "01" and so on to "99".
constexpr std::array<char, 200> makeDigitPairs() {
    std::array<char, 200> pairs = {};
    for (std::size_t number = 0; number < 100; ++number) {
        pairs[2 * number] = static_cast<char>('0' + number / 10);
        pairs[2 * number + 1] = static_cast<char>('0' + number % 10);
    }
    return pairs;
}

constexpr std::array<char, 200> digitPairs = makeDigitPairs();

/// From 2^53 on every double is a whole number.
constexpr double firstWithoutDecimals = 9007199254740992.0;

/// A number below 1,000.
char* writeThreeDigits(char* to, std::uint32_t number) {
    to = writeText(to, static_cast<char>('0' + number / 100));
    return writeTwoDigits(to, number % 100);
}

/// A number below 10,000.
char* writeFourDigits(char* to, std::uint32_t number) {
    to = writeTwoDigits(to, number / 100);
    return writeTwoDigits(to, number % 100);
}

/// The same, less its leading zeros.
char* writeUpToFourDigits(char* to, std::uint32_t number) {
    if (number >= 1000) return writeFourDigits(to, number);
    if (number >= 100) return writeThreeDigits(to, number);
    if (number >= 10) return writeTwoDigits(to, number);
    return writeText(to, static_cast<char>('0' + number));
}

/// Prints what std::to_chars prints, in half the time: it does not count the digits first, and takes four at a time.
char* writeWhole(char* to, std::uint64_t number) {
    constexpr std::uint32_t tenThousand = 10000;
    if (number < tenThousand) return writeUpToFourDigits(to, static_cast<std::uint32_t>(number));
    to = writeWhole(to, number / tenThousand);
    return writeFourDigits(to, static_cast<std::uint32_t>(number % tenThousand));
}

constexpr std::uint64_t power(std::uint64_t base, int exponent) {
    return exponent == 0 ? 1 : base * power(base, exponent - 1);
}

/// Prints what printf prints, digit for digit, of a number from 0 to 2^53, in less than half the time of std::to_chars.
///
/// Of the decimals times a power of ten a float holds the upper bits, the rest is as short: both products are exact, so that
/// the comparison with a half is.
template <int decimals>
char* writeWithDecimals(char* to, double number) {
    constexpr std::uint64_t scale = power(10, decimals);

    auto whole = static_cast<std::uint64_t>(number);
    const double fraction = number - static_cast<double>(whole);
    const double upper = static_cast<double>(static_cast<float>(fraction));
    const double lower = fraction - upper;
    const double scaled = upper * static_cast<double>(scale);
    auto digits = static_cast<std::uint64_t>(scaled);
    const double lessHalf = scaled - static_cast<double>(digits) - 0.5;
    const double restNegated = -lower * static_cast<double>(scale);
    if (lessHalf > restNegated || (lessHalf == restNegated && (digits & 1) != 0)) ++digits;
    if (digits == scale) {
        digits = 0;
        ++whole;
    }

    to = writeWhole(to, whole);
    to = writeText(to, '.');
    static_assert(decimals == 3 || decimals == 6);
    if (decimals == 6) to = writeThreeDigits(to, static_cast<std::uint32_t>(digits / 1000));
    return writeThreeDigits(to, static_cast<std::uint32_t>(digits % 1000));
}

/// The digits down to the last decimal.
char* writeDigits(char* to, const ExactDecimal& number, std::int64_t decimals) {
    for (std::int64_t place = std::max(number.firstPlace(), std::int64_t{0}); place >= -decimals; --place) {
        if (place == -1) to = writeText(to, '.');
        to = writeText(to, static_cast<char>('0' + number.digitAt(place)));
    }
    return to;
}

/// Of a number from 0 on.
char* writeExactly(char* to, double number, int decimals) {
    ExactDecimal digits(number);
    digits.roundTo(-decimals);
    return writeDigits(to, digits, decimals);
}

/// The decimal number with the fewest digits whose nearest double is this one. The place is that of its last digit.
struct ShortestDecimal {
    ExactDecimal digits;
    std::int64_t lastPlace;

    explicit ShortestDecimal(double number) {
        const ExactDecimal exact(number);
        // With so many digits no two decimal numbers have the same nearest double, unless it is below the normal ones: the
        // shortest one is not shorter but for zeros.
        constexpr std::int64_t distinctDigits = std::numeric_limits<double>::digits10;
        const bool isNormal = number >= std::numeric_limits<double>::min();
        lastPlace = exact.firstPlace() - (isNormal ? distinctDigits - 1 : 0);
        while (!find(exact, number))
            --lastPlace;
    }

  private:
    bool find(const ExactDecimal& exact, double number) {
        digits = exact;
        digits.roundTo(lastPlace);
        if (ExactDecimal(digits).nearest().number == number) return true;
        // Below a power of two doubles stand closer: where the nearest number is too far below, the next may do.
        digits.increaseAt(lastPlace);
        return ExactDecimal(digits).nearest().number == number;
    }
};

/// A text with a point, without the zeros at its end.
char* withoutFinalZeros(char* end) {
    while (end[-1] == '0')
        --end;
    return end[-1] == '.' ? end - 1 : end;
}

/// Of a number from 0 on.
char* writeShortestExactly(char* to, double number) {
    if (number >= firstWithoutDecimals) return writeExactly(to, number, 0);
    const ShortestDecimal shortest(number);
    if (shortest.lastPlace >= 0) return writeDigits(to, shortest.digits, 0);
    return withoutFinalZeros(writeDigits(to, shortest.digits, -shortest.lastPlace));
}

struct Product {
    std::uint64_t upper;
    std::uint64_t lower;
};

/// All bits of the product of two numbers below 2^63.
Product product(std::uint64_t first, std::uint64_t second) {
    constexpr std::uint64_t half = 0xffffffff;
    const std::uint64_t lowest = (first & half) * (second & half);
    const std::uint64_t middle = (first >> 32) * (second & half) + (lowest >> 32);
    const std::uint64_t other = (first & half) * (second >> 32) + (middle & half);
    return {(first >> 32) * (second >> 32) + (middle >> 32) + (other >> 32), other << 32 | (lowest & half)};
}

/// Does what writeShortestExactly does in a tenth of the time, for a number from 0.1 to 1e9 that is no power of two.
///
/// Numbers closer than half a unit of its last bit are read back as this one. Counted in those halves, and times the power of
/// ten that leaves 17 digits before the point, the number is `scaled`, and a half is that power. Of the 17 digits the last
/// two, the last one or none can be rounded away.
char* writeShortestUsual(char* to, double number) {
    int decimals = 17;
    std::uint64_t scale = power(10, 17);
    for (auto left = static_cast<std::uint64_t>(number); left != 0; left /= 10) {
        --decimals;
        scale /= 10;
    }
    int exponent = 0;
    const auto bits = static_cast<std::uint64_t>(std::frexp(number, &exponent) * 0x1p53);
    const int fractionBits = 54 - exponent;
    const Product scaled = product(2 * bits, scale);
    const std::uint64_t whole = scaled.upper << (64 - fractionBits) | scaled.lower >> fractionBits;
    const std::uint64_t fraction = scaled.lower & ((std::uint64_t{1} << fractionBits) - 1);

    std::uint64_t digits = 0;
    for (std::uint64_t unit = 100; unit != 0; unit /= 10) {
        const std::uint64_t below = (whole % unit << fractionBits) + fraction;
        const std::uint64_t above = (unit << fractionBits) - below;
        const bool isOdd = whole / unit % 2 != 0;
        const bool isAbove = above < below || (above == below && isOdd);
        digits = whole - whole % unit + (isAbove ? unit : 0);
        const std::uint64_t distance = std::min(below, above);
        if (distance < scale || (distance == scale && bits % 2 == 0)) break;
    }

    char* const point = writeWhole(to, digits / scale);
    char* const end = point + 1 + decimals;
    for (char* pair = end; pair > point + 1; digits /= 100) {
        pair -= 2;
        static_cast<void>(writeTwoDigits(pair, static_cast<std::uint32_t>(digits % 100)));
    }
    // Last, since half a pair may stand there.
    *point = '.';
    return withoutFinalZeros(end);
}

}  // namespace

void appendDecimal(std::string& out, std::int64_t number) {
    std::array<char, mostDecimalBytes> text;
    out.append(text.data(), writeDecimal(text.data(), number));
}

void appendDecimal(std::string& out, std::uint64_t number) {
    std::array<char, mostDecimalBytes> text;
    out.append(text.data(), writeWhole(text.data(), number));
}

char* writeTwoDigits(char* to, std::uint32_t number) {
    const std::string_view pair(digitPairs.data() + std::size_t{2} * number, 2);
    return writeText(to, pair);
}

char* writeDecimal(char* to, std::int64_t number) {
    if (number >= 0) return writeWhole(to, static_cast<std::uint64_t>(number));
    return writeWhole(writeText(to, '-'), 0 - static_cast<std::uint64_t>(number));
}

char* writeShortest(char* to, double number) {
    if (number < 0.0) return writeShortest(writeText(to, '-'), -number);
    if (number >= 1e9) return writeShortestExactly(to, number);
    // Of numbers with no more than 15 digits no two are read as one. So where the nearest one with six decimals is read
    // as this number, it is the shortest once the zeros at its end are gone.
    constexpr std::int64_t million = 1000000;
    const std::int64_t millionths = nearestWhole(number * static_cast<double>(million));
    if (static_cast<double>(millionths) / static_cast<double>(million) != number) {
        return number >= 0.1 ? writeShortestUsual(to, number) : writeShortestExactly(to, number);
    }
    to = writeWhole(to, static_cast<std::uint64_t>(millionths / million));
    const auto decimals = static_cast<std::uint32_t>(millionths % million);
    if (decimals == 0) return to;
    to = writeText(to, '.');
    to = writeThreeDigits(to, decimals / 1000);
    to = writeThreeDigits(to, decimals % 1000);
    return withoutFinalZeros(to);
}

char* writeFixed(char* to, double number, int decimals) {
    if (std::signbit(number)) return writeFixed(writeText(to, '-'), -number, decimals);
    const bool isUsual = number < firstWithoutDecimals;
    if (isUsual && decimals == 3) return writeWithDecimals<3>(to, number);
    if (isUsual && decimals == 6) return writeWithDecimals<6>(to, number);
    if (std::isnan(number)) return writeText(to, std::string_view("nan"));
    if (std::isinf(number)) return writeText(to, std::string_view("inf"));
    return writeExactly(to, number, decimals);
}

}  // namespace velhls
