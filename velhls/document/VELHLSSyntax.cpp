#include "velhls/document/VELHLSSyntax.h"

#include <array>
#include <cstring>
#include <limits>

#include "velhls/common/EightBytes.h"
#include "velhls/common/TextScan.h"

namespace {

constexpr velhls::CharacterSet upperHexadecimalDigits("0123456789ABCDEF");
constexpr velhls::CharacterSet attributeNameCharacters("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-");
constexpr velhls::CharacterSet neverQuoted("\"\n\r");
constexpr velhls::CharacterSet neverEnumerated("\", \t\n\r");

unsigned digitAt(std::string_view text, std::size_t place) {
    return static_cast<unsigned>(text[place] - '0');
}

/// 10^0 to 10^22: those that a double holds exactly.
constexpr auto exactPowersOfTen = [] {
    std::array<double, 23> powers = {};
    double power = 1.0;
    for (double& entry : powers) {
        entry = power;
        power *= 10.0;
    }
    return powers;
}();

/// The number, divided or multiplied by a power of ten: exactly rounded when both are exact.
double scaled(double number, std::size_t places, bool isFraction) {
    constexpr std::size_t most = exactPowersOfTen.size() - 1;
    for (; places > most; places -= most)
        number = isFraction ? number / exactPowersOfTen[most] : number * exactPowersOfTen[most];
    return isFraction ? number / exactPowersOfTen[places] : number * exactPowersOfTen[places];
}

/// Takes the parts of a date from the front of a text.
class DateScanner {
  public:
    explicit DateScanner(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool ended() const { return rest_.empty(); }

    bool take(char character) {
        if (rest_.empty() || rest_.front() != character) return false;
        rest_.remove_prefix(1);
        return true;
    }

    /// So many digits as a number from `least` to `most`.
    std::optional<std::int64_t> number(std::size_t count, std::int64_t least, std::int64_t most) {
        if (rest_.size() < count) return std::nullopt;
        std::int64_t number = 0;
        for (std::size_t place = 0; place < count; ++place) {
            if (!velhls::isDigit(rest_[place])) return std::nullopt;
            number = number * 10 + digitAt(rest_, place);
        }
        rest_.remove_prefix(count);
        if (number < least || number > most) return std::nullopt;
        return number;
    }

    /// All digits that come now.
    std::string_view digits() {
        std::size_t count = 0;
        while (count < rest_.size() && velhls::isDigit(rest_[count]))
            ++count;
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }

  private:
    std::string_view rest_;
};

constexpr bool isLeapYear(std::int64_t year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

std::int64_t daysOfMonth(std::int64_t year, std::int64_t month) {
    constexpr std::array<std::int64_t, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days[static_cast<std::size_t>(month - 1)];
}

/// Days since 1970-01-01 in the Gregorian calendar, whatever the year from 0 on.
std::int64_t daysSinceEpoch(std::int64_t year, std::int64_t month, std::int64_t day) {
    constexpr std::array<std::int64_t, 12> daysBefore = {0,   31,  59,  90,  120, 151,
                                                         181, 212, 243, 273, 304, 334};
    const std::int64_t leapYearsBefore =
        year == 0 ? 0 : (year - 1) / 4 - (year - 1) / 100 + (year - 1) / 400 + 1;
    const std::int64_t leapDay = month > 2 && isLeapYear(year) ? 1 : 0;
    constexpr std::int64_t fromYearZeroToEpoch = 719528;
    return 365 * year + leapYearsBefore + daysBefore[static_cast<std::size_t>(month - 1)] + leapDay + day -
           1 - fromYearZeroToEpoch;
}

constexpr std::int64_t secondMicroseconds = 1000000;

std::optional<std::int64_t> readDate(DateScanner& scanner) {
    const auto year = scanner.number(4, 0, 9999);
    if (!year || !scanner.take('-')) return std::nullopt;
    const auto month = scanner.number(2, 1, 12);
    if (!month || !scanner.take('-')) return std::nullopt;
    const auto day = scanner.number(2, 1, daysOfMonth(*year, *month));
    if (!day) return std::nullopt;
    return daysSinceEpoch(*year, *month, *day) * 86400 * secondMicroseconds;
}

/// Adds what follows the point. False when that is no digit.
bool readFraction(DateScanner& scanner, VELHLSSyntax::DateTime& read) {
    if (!scanner.take('.') && !scanner.take(',')) return true;
    const std::string_view digits = scanner.digits();
    read.fractionDigits = digits.size();
    std::int64_t unit = secondMicroseconds;
    for (std::size_t place = 0; place < digits.size() && unit > 1; ++place) {
        unit /= 10;
        read.microseconds += unit * digitAt(digits, place);
    }
    return !digits.empty();
}

bool readTime(DateScanner& scanner, VELHLSSyntax::DateTime& read) {
    const auto hour = scanner.number(2, 0, 24);
    if (!hour || !scanner.take(':')) return false;
    const auto minute = scanner.number(2, 0, 59);
    if (!minute) return false;
    const std::int64_t startOfDay = read.microseconds;
    read.microseconds += (*hour * 3600 + *minute * 60) * secondMicroseconds;
    if (scanner.take(':')) {
        const auto second = scanner.number(2, 0, 60);
        if (!second) return false;
        read.microseconds += *second * secondMicroseconds;
        if (!readFraction(scanner, read)) return false;
    }
    constexpr std::int64_t day = 86400 * secondMicroseconds;
    return *hour < 24 || read.microseconds - startOfDay == day;
}

bool readZone(DateScanner& scanner, VELHLSSyntax::DateTime& read) {
    read.hasZone = !scanner.ended();
    if (!read.hasZone || scanner.take('Z')) return true;
    const bool isWest = scanner.take('-');
    if (!isWest && !scanner.take('+')) return false;
    const auto hours = scanner.number(2, 0, 23);
    if (!hours) return false;
    std::int64_t seconds = *hours * 3600;
    if (!scanner.ended()) {
        scanner.take(':');
        const auto minutes = scanner.number(2, 0, 59);
        if (!minutes) return false;
        seconds += *minutes * 60;
    }
    read.microseconds += (isWest ? seconds : -seconds) * secondMicroseconds;
    return true;
}

constexpr std::string_view usualDate = "0000-00-00T00:00:00.000Z";

/// Of a text of that length each byte XOR that of the form: where that has a 0, the digit. False when it has another form.
/// Eight bytes at a time: a byte that is too large gets its high bit by what is added.
bool takeUsualDigits(std::string_view text, std::array<unsigned char, usualDate.size()>& digits) {
    constexpr std::size_t width = sizeof(std::uint64_t);
    std::uint64_t odd = 0;
    for (std::size_t place = 0; place < usualDate.size(); place += width) {
        std::array<unsigned char, width> most = {};
        for (std::size_t byte = 0; byte < width; ++byte)
            most[byte] = usualDate[place + byte] == '0' ? 0x7F - 9 : 0x7F;
        std::uint64_t bytes = 0;
        std::uint64_t form = 0;
        std::uint64_t added = 0;
        std::memcpy(&bytes, text.data() + place, width);
        std::memcpy(&form, usualDate.data() + place, width);
        std::memcpy(&added, most.data(), width);
        bytes ^= form;
        odd |= bytes | ((bytes & ~velhls::highBits) + added);
        std::memcpy(digits.data() + place, &bytes, width);
    }
    return (odd & velhls::highBits) == 0;
}

/// Nearly all dates are written "2010-02-19T14:54:23.031Z". Nothing of any other, and of what needs a closer look.
std::optional<VELHLSSyntax::DateTime> readUsualDateTime(std::string_view text) {
    std::array<unsigned char, usualDate.size()> digits;
    if (text.size() != usualDate.size() || !takeUsualDigits(text, digits)) return std::nullopt;
    const auto two = [&digits](std::size_t place) {
        return std::int64_t{digits[place]} * 10 + digits[place + 1];
    };
    const std::int64_t year = two(0) * 100 + two(2);
    const std::int64_t month = two(5);
    const std::int64_t day = two(8);
    const std::int64_t hour = two(11);
    const std::int64_t minute = two(14);
    const std::int64_t second = two(17);
    constexpr std::int64_t inEveryMonth = 28;
    if (month < 1 || month > 12 || day < 1 || day > inEveryMonth) return std::nullopt;
    if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
    const std::int64_t seconds =
        daysSinceEpoch(year, month, day) * 86400 + hour * 3600 + minute * 60 + second;
    const std::int64_t milliseconds = std::int64_t{digits[20]} * 100 + two(21);
    return VELHLSSyntax::DateTime{seconds * secondMicroseconds + milliseconds * 1000, true, true, 3};
}

}  // namespace

std::optional<std::uint64_t> VELHLSSyntax::readDecimalInteger(std::string_view text) {
    constexpr std::size_t mostDigits = 20;
    constexpr std::uint64_t mostBeforeLast = std::numeric_limits<std::uint64_t>::max() / 10;
    constexpr unsigned mostLast = std::numeric_limits<std::uint64_t>::max() % 10;
    if (text.empty() || text.size() > mostDigits) return std::nullopt;
    std::uint64_t number = 0;
    if (text.size() < mostDigits) {
        for (const char character : text) {
            const auto digit = static_cast<unsigned>(static_cast<unsigned char>(character)) - '0';
            if (digit > 9) return std::nullopt;
            number = number * 10 + digit;
        }
        return number;
    }
    std::uint64_t before = 0;
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (!velhls::isDigit(text[place])) return std::nullopt;
        before = number;
        number = number * 10 + digitAt(text, place);
    }
    // Only the last of the most digits can be one too many.
    const bool isTooLarge =
        before > mostBeforeLast || (before == mostBeforeLast && digitAt(text, text.size() - 1) > mostLast);
    if (isTooLarge) return std::nullopt;
    return number;
}

std::optional<std::string_view> VELHLSSyntax::readHexadecimalSequence(std::string_view text) {
    if (!velhls::startsWith(text, "0x") && !velhls::startsWith(text, "0X")) return std::nullopt;
    const std::string_view digits = text.substr(2);
    if (digits.empty() || !velhls::holdsOnly(digits, upperHexadecimalDigits)) return std::nullopt;
    return digits;
}

std::optional<double> VELHLSSyntax::readDecimalFloatingPoint(std::string_view text) {
    // What the digits say without the point; once no more of them fit, only how many there are.
    constexpr std::uint64_t mostBeforeDigit = (std::numeric_limits<std::uint64_t>::max() - 9) / 10;
    std::uint64_t number = 0;
    std::size_t digits = 0;
    std::size_t left = 0;
    std::size_t fraction = 0;
    bool hasPoint = false;
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (text[place] == '.' && !hasPoint) {
            hasPoint = true;
            continue;
        }
        if (!velhls::isDigit(text[place])) return std::nullopt;
        ++digits;
        if (number <= mostBeforeDigit && left == 0) {
            number = number * 10 + digitAt(text, place);
            fraction += hasPoint ? 1 : 0;
        } else {
            left += hasPoint ? 0 : 1;
        }
    }
    if (digits == 0) return std::nullopt;
    const auto exact = static_cast<double>(number);
    return fraction >= left ? scaled(exact, fraction - left, true) : scaled(exact, left - fraction, false);
}

std::optional<double> VELHLSSyntax::readSignedDecimalFloatingPoint(std::string_view text) {
    const bool isNegative = velhls::startsWith(text, "-");
    const auto number = readDecimalFloatingPoint(isNegative ? text.substr(1) : text);
    if (!number || !isNegative) return number;
    return -*number;
}

std::optional<VELHLSSyntax::Resolution> VELHLSSyntax::readDecimalResolution(std::string_view text) {
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) return std::nullopt;
    const auto width = readDecimalInteger(text.substr(0, cross));
    const auto height = readDecimalInteger(text.substr(cross + 1));
    if (!width || !height) return std::nullopt;
    return Resolution{*width, *height};
}

bool VELHLSSyntax::isEnumeratedString(std::string_view text) {
    return !text.empty() && velhls::holdsNone(text, neverEnumerated);
}

bool VELHLSSyntax::isQuotable(std::string_view text) {
    return velhls::holdsNone(text, neverQuoted);
}

bool VELHLSSyntax::isAttributeName(std::string_view text) {
    return !text.empty() && velhls::holdsOnly(text, attributeNameCharacters);
}

std::optional<VELHLSSyntax::ByteRange> VELHLSSyntax::readByteRange(std::string_view text) {
    const std::size_t at = text.find('@');
    const auto length = readDecimalInteger(text.substr(0, at));
    if (!length) return std::nullopt;
    if (at == std::string_view::npos) return ByteRange{*length, std::nullopt};
    const auto offset = readDecimalInteger(text.substr(at + 1));
    if (!offset) return std::nullopt;
    return ByteRange{*length, offset};
}

std::optional<VELHLSSyntax::DateTime> VELHLSSyntax::readDateTime(std::string_view text) {
    if (const auto usual = readUsualDateTime(text)) return usual;
    DateScanner scanner(text);
    const auto day = readDate(scanner);
    if (!day) return std::nullopt;
    DateTime read;
    read.microseconds = *day;
    read.hasTime = scanner.take('T');
    if (read.hasTime && (!readTime(scanner, read) || !readZone(scanner, read))) return std::nullopt;
    if (!scanner.ended()) return std::nullopt;
    return read;
}
