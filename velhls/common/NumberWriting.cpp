#include "velhls/common/NumberWriting.h"

#include <array>
#include <charconv>
#include <string_view>

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

/// Prints with integers what printf prints, digit for digit, in less than half the time of std::to_chars.
///
/// The fraction of a double from 1 on is a whole number of 2^-52. Times ten to the power of the decimals that
/// is `bits` times five to that power, in units of 2^-(52 - decimals): it is computed in two halves, since
/// it can take 66 bits, and rounded to the nearest whole number, a tie to the even one.
template <int decimals>
char* writeWithDecimals(char* to, double number) {
    constexpr std::uint64_t scale = power(10, decimals);
    constexpr int halfWidth = 26;
    constexpr std::uint64_t lowHalf = (std::uint64_t{1} << halfWidth) - 1;
    constexpr int upperWidth = 52 - decimals - halfWidth;

    auto whole = static_cast<std::uint64_t>(number);
    const auto bits = static_cast<std::uint64_t>((number - static_cast<double>(whole)) * 0x1p52);
    const std::uint64_t low = (bits & lowHalf) * power(5, decimals);
    const std::uint64_t upper = (bits >> halfWidth) * power(5, decimals) + (low >> halfWidth);
    std::uint64_t fraction = upper >> upperWidth;
    const std::uint64_t rest = upper & ((std::uint64_t{1} << upperWidth) - 1);
    constexpr std::uint64_t half = std::uint64_t{1} << (upperWidth - 1);
    const bool isTie = rest == half && (low & lowHalf) == 0;
    if (isTie ? (fraction & 1) != 0 : rest >= half) ++fraction;
    if (fraction == scale) {
        fraction = 0;
        ++whole;
    }

    to = writeWhole(to, whole);
    to = writeText(to, '.');
    static_assert(decimals == 3 || decimals == 6);
    if (decimals == 6) to = writeThreeDigits(to, static_cast<std::uint32_t>(fraction / 1000));
    return writeThreeDigits(to, static_cast<std::uint32_t>(fraction % 1000));
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
    // Of numbers with no more than 15 digits no two are read as one. So where the nearest one with six decimals is read
    // as this number, it is the shortest once the zeros at its end are gone.
    constexpr std::int64_t million = 1000000;
    const bool isPlain = number >= 0.0 && number < 1e9;
    const std::int64_t millionths = isPlain ? nearestWhole(number * static_cast<double>(million)) : 0;
    if (!isPlain || static_cast<double>(millionths) / static_cast<double>(million) != number) {
        return std::to_chars(to, to + mostShortestBytes, number, std::chars_format::fixed).ptr;
    }
    to = writeWhole(to, static_cast<std::uint64_t>(millionths / million));
    const auto decimals = static_cast<std::uint32_t>(millionths % million);
    if (decimals == 0) return to;
    to = writeText(to, '.');
    to = writeThreeDigits(to, decimals / 1000);
    if (decimals % 1000 != 0) to = writeThreeDigits(to, decimals % 1000);
    while (to[-1] == '0')
        --to;
    return to;
}

char* writeFixed(char* to, double number, int decimals) {
    // Below 1 a double has more bits after the point than are counted with, and from 2^53 on none.
    const bool isPlain = number >= 1.0 && number < 9007199254740992.0;
    if (isPlain && decimals == 3) return writeWithDecimals<3>(to, number);
    if (isPlain && decimals == 6) return writeWithDecimals<6>(to, number);
    return std::to_chars(to, to + mostFixedBytes, number, std::chars_format::fixed, decimals).ptr;
}

}  // namespace velhls
