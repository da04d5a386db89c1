#include "velhls/common/Timestamps.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "velhls/common/CivilTime.h"
#include "velhls/common/Numbers.h"
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

/// The text behind position `before` and in front of position `after`.
std::string_view between(std::string_view text, std::size_t before, std::size_t after) {
    const std::size_t start = before + 1;
    return text.substr(start, after - start);
}

/// Reads the offset as numbers, so that what is none throws. The offset does not change a timestamp.
void readOffset(std::string_view text, const Separators& at) {
    static_cast<void>(toInt32(between(text, at.zone, at.offsetHourEnd)));
    const std::size_t end = text.find_first_not_of(digits, at.offsetHourEnd + 1);
    static_cast<void>(toInt32(between(text, at.offsetHourEnd, std::min(end, text.size()))));
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
    if (width == 2 && number >= 0 && number < 100) {
        out += static_cast<char>('0' + number / 10);
        out += static_cast<char>('0' + number % 10);
        return;
    }
    const std::size_t sign = number < 0 ? 1 : 0;
    if (sign != 0) out += '-';
    const std::size_t start = out.size();
    appendDecimal(out, number < 0 ? -number : number);
    const std::size_t digits = out.size() - start;
    if (digits + sign < width) out.insert(start, width - sign - digits, '0');
}

}  // namespace

double parseTimestamp(std::string_view text) {
    const std::optional<Separators> at = findSeparators(text);
    if (!at) return noTimestamp;
    CivilTime time;
    time.year = toInt32(text.substr(0, at->yearEnd));
    time.month = toInt32(between(text, at->yearEnd, at->monthEnd));
    time.day = toInt32(between(text, at->monthEnd, at->dayEnd));
    time.hour = toInt32(between(text, at->dayEnd, at->hourEnd));
    time.minute = toInt32(between(text, at->hourEnd, at->minuteEnd));
    const double seconds = toDouble(between(text, at->minuteEnd, at->zone));
    if (at->offsetHourEnd != none) readOffset(text, *at);

    const std::optional<std::int32_t> whole = wholeSeconds(seconds);
    if (!whole) return noTimestamp;
    time.second = *whole;
    const std::optional<std::int64_t> sinceEpoch = secondsSinceEpoch(time);
    if (!sinceEpoch) return noTimestamp;
    return (seconds - *whole) + static_cast<double>(*sinceEpoch);
}

void renderTimestamp(double seconds, std::string& out) {
    constexpr std::size_t longest = 31;
    const std::int64_t whole = truncated(seconds);
    const CivilTime time = civilTimeOf(whole);
    const double fraction = seconds - static_cast<double>(whole);
    // The difference is no fraction where the time was not a number or beyond what the calendar holds.
    const bool hasFraction = fraction > -1.0 && fraction < 1.0;

    std::string text;
    appendPadded(text, time.year, 4);
    text += '-';
    appendPadded(text, time.month, 2);
    text += '-';
    appendPadded(text, time.day, 2);
    text += 'T';
    appendPadded(text, time.hour, 2);
    text += ':';
    appendPadded(text, time.minute, 2);
    text += ':';
    appendFixed(text, (hasFraction ? fraction : 0.0) + static_cast<double>(time.second), 3);
    text += "+00:00";
    out.append(text, 0, longest);
}

}  // namespace velhls
