#include "velhls/common/CivilTime.h"

#include <algorithm>

namespace velhls {
namespace {

constexpr std::int64_t daysOfFourCenturies = 146097;

constexpr std::int64_t floorDivide(std::int64_t number, std::int64_t divisor) {
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

constexpr std::int64_t floorRemainder(std::int64_t number, std::int64_t divisor) {
    return number - floorDivide(number, divisor) * divisor;
}

/// Days from the first of March of the year 0 to the first of January 1970.
constexpr std::int64_t daysToEpoch = 719468;

/// Days since the epoch of the first day of a month, 1 to 12. The year is taken to begin in March, so that
/// the day of a leap year is its last one.
constexpr std::int64_t daysToFirstOf(std::int64_t year, std::int64_t month) {
    const std::int64_t marchYear = month <= 2 ? year - 1 : year;
    const std::int64_t monthFromMarch = month <= 2 ? month + 9 : month - 3;
    const std::int64_t leapDays =
        floorDivide(marchYear, 4) - floorDivide(marchYear, 100) + floorDivide(marchYear, 400);
    const std::int64_t dayOfYear = (153 * monthFromMarch + 2) / 5;
    return marchYear * 365 + leapDays + dayOfYear - daysToEpoch;
}

constexpr std::int64_t firstSecond = daysToFirstOf(firstYear, 1) * secondsOfDay;
constexpr std::int64_t lastSecond = daysToFirstOf(lastYear + 1, 1) * secondsOfDay - 1;

}  // namespace

std::optional<std::int64_t> secondsSinceEpoch(const CivilTime& time) {
    if (time.year < firstYear || time.year > lastYear) return std::nullopt;
    const std::int64_t year = time.year + floorDivide(time.month - 1, 12);
    const std::int64_t month = floorRemainder(time.month - 1, 12) + 1;
    const std::int64_t days = daysToFirstOf(year, month) + time.day - 1;
    const std::int64_t seconds = days * secondsOfDay + time.hour * 3600 + time.minute * 60 + time.second;
    if (seconds < firstSecond || seconds > lastSecond) return std::nullopt;
    return seconds;
}

std::int64_t limitedToCalendar(std::int64_t secondsSinceEpoch) {
    return std::clamp(secondsSinceEpoch, firstSecond, lastSecond);
}

std::int64_t startOfDay(std::int64_t secondsSinceEpoch) {
    return secondsSinceEpoch - floorRemainder(secondsSinceEpoch, secondsOfDay);
}

CivilTime dateOf(std::int64_t secondsSinceEpoch) {
    const std::int64_t days = floorDivide(secondsSinceEpoch, secondsOfDay) + daysToEpoch;
    const std::int64_t era = floorDivide(days, daysOfFourCenturies);
    const std::int64_t dayOfEra = days - era * daysOfFourCenturies;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / (daysOfFourCenturies - 1)) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    CivilTime date;
    date.day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
    date.month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    date.year = yearOfEra + era * 400 + (date.month <= 2 ? 1 : 0);
    return date;
}

}  // namespace velhls
