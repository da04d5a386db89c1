#include "velhls/common/Numbers.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <limits>
#include <locale.h>
#include <new>
#include <stdexcept>
#include <stdlib.h>
#include <system_error>

#include "velhls/common/TextBuffer.h"
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

/// The text from its number on, in the form that std::from_chars reads: it knows no "+".
std::string_view withoutSpaceAndPlus(std::string_view text) {
    const std::size_t start = text.find_first_not_of(whiteSpace);
    if (start == std::string_view::npos) return {};
    text.remove_prefix(start);
    const bool plusBeforeDigit = text.size() > 1 && text[0] == '+' && isDigit(text[1]);
    if (plusBeforeDigit) text.remove_prefix(1);
    return text;
}

/// Goes on with a number over the digits from a position on, and returns where they end. Of more than 19 digits the
/// number is worth nothing.
const char* readDigits(const char* position, const char* end, std::uint64_t& number) {
    for (; position < end; ++position) {
        const auto digit = static_cast<std::uint32_t>(*position - '0');
        if (digit > 9) break;
        number = number * 10 + digit;
    }
    return position;
}

/// A double holds so many digits exactly, and the power of ten that they are divided by.
constexpr std::size_t mostExactDigits = 15;
constexpr std::array<double, mostExactDigits + 1> powersOfTen = {
    1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

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

/// strtod under the "C" locale, whatever locale the process or the thread is in.
class ClassicLocale {
  public:
    ClassicLocale() : locale_(::newlocale(LC_ALL_MASK, "C", nullptr)) {
        if (locale_ == nullptr) throw std::bad_alloc();
    }
    ~ClassicLocale() { ::freelocale(locale_); }
    ClassicLocale(const ClassicLocale&) = delete;
    ClassicLocale& operator=(const ClassicLocale&) = delete;

    double toDouble(const char* text, char** end) const { return ::strtod_l(text, end, locale_); }

  private:
    locale_t locale_;
};

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
    if (digitCount == 0 || digitCount > mostExactDigits) return {};
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
    const std::string terminated(text);
    const ClassicLocale classic;
    char* end = nullptr;
    const int savedErrno = errno;
    errno = 0;
    const double number = classic.toDouble(terminated.c_str(), &end);
    const bool outOfRange = errno == ERANGE;
    errno = savedErrno;
    if (end == terminated.c_str()) throwNoNumber(text);
    if (outOfRange) throwOutOfRange(text);
    return number;
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
