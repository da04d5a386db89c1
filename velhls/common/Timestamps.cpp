#include "velhls/common/Timestamps.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "velhls/common/CivilTime.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TextBuffer.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

constexpr double noTimestamp = -1.0;
constexpr std::size_t none = std::string_view::npos;

/// Where the fields of a date and time are separated.
struct Separators {
    std::size_t yearEnd = none;
    std::size_t monthEnd = none;
    /// The "T". It is not demanded: "not found" plus one wraps around to 0, and so without it the searches
    /// for the colons, and the hour, start at the beginning of the text.
    std::size_t dayEnd = none;
    std::size_t hourEnd = none;
    std::size_t minuteEnd = none;
    /// The "Z", or the sign of the UTC offset.
    std::size_t zone = none;
    /// The colon of the UTC offset; none for "Z".
    std::size_t offsetHourEnd = none;
};

std::optional<Separators> findSeparators(std::string_view text) {
    Separators at;
    at.yearEnd = text.find('-');
    if (at.yearEnd == none) return std::nullopt;
    at.monthEnd = text.find('-', at.yearEnd + 1);
    if (at.monthEnd == none) return std::nullopt;
    at.dayEnd = text.find('T', at.monthEnd + 1);
    at.hourEnd = text.find(':', at.dayEnd + 1);
    if (at.hourEnd == none) return std::nullopt;
    at.minuteEnd = text.find(':', at.hourEnd + 1);
    if (at.minuteEnd == none || at.minuteEnd + 1 == text.size()) return std::nullopt;

    at.zone = text.find_first_of("-+", at.minuteEnd + 1);
    if (at.zone == none) {
        at.zone = text.find('Z', at.minuteEnd + 1);
        if (at.zone == none) return std::nullopt;
    } else {
        at.offsetHourEnd = text.find(':', at.zone + 1);
        if (at.offsetHourEnd == none) return std::nullopt;
    }
    return at;
}

/// The same for "2026-11-21T10:00:05.250Z" and "2026-11-21T10:00:05.250+02:00", as nearly all are written:
/// fields of the usual widths, known to hold only digits, with nothing behind them. Nothing for all others.
std::optional<Separators> separatorsOfUsualForm(std::string_view text) {
    constexpr std::string_view form = "dddd-dd-ddTdd:dd:d";
    if (text.size() <= form.size()) return std::nullopt;
    for (std::size_t position = 0; position < form.size(); ++position) {
        const bool fits = form[position] == 'd' ? isDigit(text[position]) : text[position] == form[position];
        if (!fits) return std::nullopt;
    }
    Separators at{4, 7, 10, 13, 16, form.size(), none};
    while (at.zone < text.size() && digitsAndPoint.holds(text[at.zone]))
        ++at.zone;
    const std::string_view zone = text.substr(at.zone);
    if (zone == "Z") return at;
    const bool isOffset = zone.size() == 6 && (zone[0] == '+' || zone[0] == '-') && zone[3] == ':' &&
                          holdsOnly(zone.substr(1, 2), digits) && holdsOnly(zone.substr(4, 2), digits);
    if (!isOffset) return std::nullopt;
    at.offsetHourEnd = at.zone + 3;
    return at;
}

/// The text behind position `before` and in front of position `after`.
std::string_view between(std::string_view text, std::size_t before, std::size_t after) {
    const std::size_t start = before + 1;
    return text.substr(start, after - start);
}

/// The number that a few digits make.
std::int32_t numberOfDigits(std::string_view text) {
    std::int32_t number = 0;
    for (const char digit : text)
        number = number * 10 + (digit - '0');
    return number;
}

/// Reads the offset as numbers, so that what is none throws. The offset does not change a timestamp.
void readOffset(std::string_view text, const Separators& at) {
    static_cast<void>(toInt32(between(text, at.zone, at.offsetHourEnd)));
    std::size_t end = at.offsetHourEnd + 1;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    static_cast<void>(toInt32(between(text, at.offsetHourEnd, end)));
}

/// The seconds without their fraction; nothing when they are not a number that fits 32 bits.
std::optional<std::int32_t> wholeSeconds(double seconds) {
    constexpr double beyond = 2147483648.0;
    if (!(seconds > -beyond - 1.0 && seconds < beyond)) return std::nullopt;
    return static_cast<std::int32_t>(seconds);
}

/// Truncated toward zero, limited to what 64 bits hold; 0 for not-a-number.
std::int64_t truncated(double seconds) {
    constexpr double beyond = 9223372036854775808.0;
    if (std::isnan(seconds)) return 0;
    if (seconds >= beyond) return std::numeric_limits<std::int64_t>::max();
    if (seconds < -beyond) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(seconds);
}

/// Written as printf's "%0*d" writes it, where a sign counts as one of the digits.
void appendPadded(std::string& out, std::int64_t number, std::size_t width) {
    const std::size_t sign = number < 0 ? 1 : 0;
    if (sign != 0) out += '-';
    const std::size_t start = out.size();
    appendDecimal(out, number < 0 ? -number : number);
    const std::size_t length = out.size() - start;
    if (length + sign < width) out.insert(start, width - sign - length, '0');
}

/// A number from 0 to 99.
char* putTwoDigits(char* to, std::int64_t number) {
    to[0] = static_cast<char>('0' + number / 10);
    to[1] = static_cast<char>('0' + number % 10);
    return to + 2;
}

/// "2026-11-21T"
std::string dateText(const CivilTime& date) {
    std::string text;
    appendPadded(text, date.year, 4);
    text += '-';
    appendPadded(text, date.month, 2);
    text += '-';
    appendPadded(text, date.day, 2);
    text += 'T';
    return text;
}

}  // namespace

double parseTimestamp(std::string_view text) {
    std::optional<Separators> at = separatorsOfUsualForm(text);
    const bool isUsual = at.has_value();
    if (!isUsual) at = findSeparators(text);
    if (!at) return noTimestamp;
    const auto field = isUsual ? numberOfDigits : toInt32;
    CivilTime time;
    time.year = field(text.substr(0, at->yearEnd));
    time.month = field(between(text, at->yearEnd, at->monthEnd));
    time.day = field(between(text, at->monthEnd, at->dayEnd));
    time.hour = field(between(text, at->dayEnd, at->hourEnd));
    time.minute = field(between(text, at->hourEnd, at->minuteEnd));
    const double seconds = toDouble(between(text, at->minuteEnd, at->zone));
    if (!isUsual && at->offsetHourEnd != none) readOffset(text, *at);

    const std::optional<std::int32_t> whole = wholeSeconds(seconds);
    if (!whole) return noTimestamp;
    time.second = *whole;
    const std::optional<std::int64_t> sinceEpoch = secondsSinceEpoch(time);
    if (!sinceEpoch) return noTimestamp;
    return (seconds - *whole) + static_cast<double>(*sinceEpoch);
}

char* TimestampWriter::put(char* to, double seconds) {
    const std::int64_t whole = limitedToCalendar(truncated(seconds));
    const double fraction = seconds - static_cast<double>(whole);
    // The difference is no fraction where the time was not a number or beyond what the calendar holds.
    const bool hasFraction = fraction > -1.0 && fraction < 1.0;

    if (whole < dayStart_ || whole - dayStart_ >= secondsOfDay) {
        dayStart_ = startOfDay(whole);
        date_ = dateText(dateOf(whole));
    }
    const std::int64_t secondOfDay = whole - dayStart_;
    const double secondOfMinute = static_cast<double>(secondOfDay % 60);

    std::array<char, mostFixedBytes + 64> text;
    char* end = velhls::put(text.data(), date_);
    end = putTwoDigits(end, secondOfDay / 3600);
    end = velhls::put(end, ':');
    end = putTwoDigits(end, secondOfDay % 3600 / 60);
    end = velhls::put(end, ':');
    end = putFixed(end, (hasFraction ? fraction : 0.0) + secondOfMinute, 3);
    end = velhls::put(end, "+00:00");
    const auto length = static_cast<std::size_t>(end - text.data());
    return velhls::put(to, std::string_view(text.data(), std::min(length, mostTimestampBytes)));
}

}  // namespace velhls
