#include "velhls/common/Timestamps.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "velhls/common/CivilTime.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/TextBuffer.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

constexpr double noTimestamp = -1.0;
constexpr std::size_t absent = std::string_view::npos;

/// Where the fields of a date and time are separated.
struct Separators {
    std::size_t yearEnd = absent;
    std::size_t monthEnd = absent;
    /// The "T". It is not demanded: "not found" plus one wraps around to 0, and so without it the searches
    /// for the colons, and the hour, start at the beginning of the text.
    std::size_t dayEnd = absent;
    std::size_t hourEnd = absent;
    std::size_t minuteEnd = absent;
    /// The "Z", or the sign of the UTC offset.
    std::size_t zone = absent;
    /// The colon of the UTC offset; none for "Z".
    std::size_t offsetHourEnd = absent;
};

std::optional<Separators> findSeparators(std::string_view text) {
    Separators at;
    at.yearEnd = text.find('-');
    if (at.yearEnd == absent) return std::nullopt;
    at.monthEnd = text.find('-', at.yearEnd + 1);
    if (at.monthEnd == absent) return std::nullopt;
    at.dayEnd = text.find('T', at.monthEnd + 1);
    at.hourEnd = text.find(':', at.dayEnd + 1);
    if (at.hourEnd == absent) return std::nullopt;
    at.minuteEnd = text.find(':', at.hourEnd + 1);
    if (at.minuteEnd == absent || at.minuteEnd + 1 == text.size()) return std::nullopt;

    at.zone = text.find_first_of("-+", at.minuteEnd + 1);
    if (at.zone == absent) {
        at.zone = text.find('Z', at.minuteEnd + 1);
        if (at.zone == absent) return std::nullopt;
    } else {
        at.offsetHourEnd = text.find(':', at.zone + 1);
        if (at.offsetHourEnd == absent) return std::nullopt;
    }
    return at;
}

/// The text after position `before` and before position `after`.
std::string_view between(std::string_view text, std::size_t before, std::size_t after) {
    const std::size_t start = before + 1;
    return text.substr(start, after - start);
}

double rejected(Reason& why, Rule rule, std::string_view text) {
    why(rule, text);
    return noTimestamp;
}

/// Reads the offset as numbers, so that what is none throws. The offset does not change a timestamp.
void readOffset(std::string_view text, const Separators& at, Reason& why) {
    const std::string_view hours = between(text, at.zone, at.offsetHourEnd);
    static_cast<void>(toInt32(hours, why));
    std::size_t end = at.offsetHourEnd + 1;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    static_cast<void>(toInt32(between(text, at.offsetHourEnd, end), why));
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

/// "5.250+00:00"
char* writeSeconds(char* to, double secondOfMinute) {
    to = writeFixed(to, secondOfMinute, 3);
    return writeText(to, std::string_view("+00:00"));
}

constexpr std::int64_t secondsOfMinute = 60;
constexpr std::size_t usualDateLength = std::string_view("2026-11-21T").size();
constexpr std::size_t hourAndMinuteLength = std::string_view("10:05:").size();

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

/// The number of two digits at a position; negative when they are not.
std::int32_t twoDigitsAt(std::string_view text, std::size_t position) {
    const auto tens = static_cast<std::uint32_t>(text[position] - '0');
    const auto ones = static_cast<std::uint32_t>(text[position + 1] - '0');
    return tens <= 9 && ones <= 9 ? static_cast<std::int32_t>(tens * 10 + ones) : -1;
}

bool isUsualZone(std::string_view zone) {
    if (zone.size() == 1) return zone[0] == 'Z';
    return zone.size() == 6 && (zone[0] == '+' || zone[0] == '-') && zone[3] == ':' &&
           twoDigitsAt(zone, 1) >= 0 && twoDigitsAt(zone, 4) >= 0;
}

/// The pieces of a date and time as nearly all are written, "2026-11-21T10:00:05.250Z" or with an offset such as
/// "+02:00" instead of the "Z": of the usual widths, with nothing after them. The day is not looked at.
struct UsualForm {
    std::string_view day;
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    LeadingNumber<double> seconds;

    static constexpr std::size_t dayLength = std::string_view("2026-11-21").size();
    static constexpr std::size_t secondsStart = std::string_view("2026-11-21T10:00:").size();

    /// False for a text of any other form.
    bool read(std::string_view text) {
        if (text.size() <= secondsStart) return false;
        const bool isSeparated =
            text[4] == '-' && text[7] == '-' && text[10] == 'T' && text[13] == ':' && text[16] == ':';
        if (!isSeparated || !isDigit(text[secondsStart])) return false;
        const std::string_view rest = withoutFirst(text, secondsStart);
        day = firstOf(text, dayLength);
        hour = twoDigitsAt(text, 11);
        minute = twoDigitsAt(text, 14);
        seconds = leadingDecimal(rest);
        return hour >= 0 && minute >= 0 && seconds.length > 0 &&
               isUsualZone(withoutFirst(rest, seconds.length));
    }
};

/// Seconds with their fraction after a count of whole ones, or the value for none. The text is what both were read
/// from.
double timestampOf(std::string_view text, double seconds, std::int32_t wholeSeconds, std::int64_t sinceEpoch,
                   Reason& why) {
    const double result = (seconds - wholeSeconds) + static_cast<double>(sinceEpoch);
    if (result < 0.0) why(Rule::dateTimeBefore1970, text);
    return result;
}

/// Reads each field as a number, wherever its separators stand.
double timestampByFields(std::string_view text, Reason& why) {
    const std::optional<Separators> at = findSeparators(text);
    if (!at) return rejected(why, Rule::dateTimeMalformed, text);
    CivilTime time;
    time.year = toInt32(text.substr(0, at->yearEnd), why);
    time.month = toInt32(between(text, at->yearEnd, at->monthEnd), why);
    time.day = toInt32(between(text, at->monthEnd, at->dayEnd), why);
    time.hour = toInt32(between(text, at->dayEnd, at->hourEnd), why);
    time.minute = toInt32(between(text, at->hourEnd, at->minuteEnd), why);
    const double seconds = toDouble(between(text, at->minuteEnd, at->zone), why);
    if (at->offsetHourEnd != absent) readOffset(text, *at, why);
    const std::optional<std::int32_t> whole = wholeSeconds(seconds);
    if (!whole) return rejected(why, Rule::dateTimeBefore1970, text);
    time.second = *whole;
    const std::optional<std::int64_t> sinceEpoch = secondsSinceEpoch(time);
    if (!sinceEpoch) return rejected(why, Rule::dateTimeBefore1970, text);
    return timestampOf(text, seconds, *whole, *sinceEpoch, why);
}

}  // namespace

double TimestampReader::read(std::string_view text, Reason& why) {
    UsualForm usual;
    if (!usual.read(text) || !readDay(usual.day)) return timestampByFields(text, why);
    const std::optional<std::int32_t> whole = wholeSeconds(usual.seconds.number);
    if (!whole) return timestampByFields(text, why);
    const std::int64_t sinceEpoch =
        dayStart_ + std::int64_t{usual.hour} * 3600 + std::int64_t{usual.minute} * 60 + *whole;
    return timestampOf(text, usual.seconds.number, *whole, sinceEpoch, why);
}

/// False when the day is none of four, two and two digits.
bool TimestampReader::readDay(std::string_view day) {
    if (day == std::string_view(day_.data(), day_.size())) return true;
    const std::int32_t century = twoDigitsAt(day, 0);
    const std::int32_t yearOfCentury = twoDigitsAt(day, 2);
    const std::int32_t month = twoDigitsAt(day, 5);
    const std::int32_t dayOfMonth = twoDigitsAt(day, 8);
    if (century < 0 || yearOfCentury < 0 || month < 0 || dayOfMonth < 0) return false;
    CivilTime time;
    time.year = century * 100 + yearOfCentury;
    time.month = month;
    time.day = dayOfMonth;
    // Years of four digits are all in the calendar.
    dayStart_ = secondsSinceEpoch(time).value_or(0);
    day.copy(day_.data(), day_.size());
    return true;
}

char* TimestampWriter::write(char* to, double seconds) {
    const std::int64_t whole = limitedToCalendar(truncated(seconds));
    const double fraction = seconds - static_cast<double>(whole);
    // The difference is no fraction where the time was not a number or beyond what the calendar holds.
    const bool hasFraction = fraction > -1.0 && fraction < 1.0;

    if (whole < minuteStart_ || whole - minuteStart_ >= secondsOfMinute) beginMinute(whole);
    const double secondOfMinute = (hasFraction ? fraction : 0.0) + static_cast<double>(whole - minuteStart_);
    // The text of a year of four digits is never longer than there is room for.
    if (dateLength_ == usualDateLength) {
        const std::string_view minute(minute_.data(), usualDateLength + hourAndMinuteLength);
        return writeSeconds(writeText(to, minute), secondOfMinute);
    }
    std::array<char, mostFixedBytes + 64> text;
    const std::string_view minute(minute_.data(), dateLength_ + hourAndMinuteLength);
    const char* const end = writeSeconds(writeText(text.data(), minute), secondOfMinute);
    const auto length = static_cast<std::size_t>(end - text.data());
    return writeText(to, std::string_view(text.data(), std::min(length, mostTimestampBytes)));
}

void TimestampWriter::beginMinute(std::int64_t second) {
    if (second < dayStart_ || second - dayStart_ >= secondsOfDay) {
        dayStart_ = startOfDay(second);
        dateLength_ = dateText(dateOf(second)).copy(minute_.data(), minute_.size() - hourAndMinuteLength);
    }
    const auto minuteOfDay = static_cast<std::uint32_t>((second - dayStart_) / secondsOfMinute);
    minuteStart_ = dayStart_ + minuteOfDay * secondsOfMinute;
    char* to = writeTwoDigits(minute_.data() + dateLength_, minuteOfDay / 60);
    to = writeTwoDigits(writeText(to, ':'), minuteOfDay % 60);
    static_cast<void>(writeText(to, ':'));
}

}  // namespace velhls
