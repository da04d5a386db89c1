#pragma once

#include <cerrno>
#include <cstdint>
#include <ctime>

/// The UTC calendar of the C library; that of Windows ends in the year 3000, and has a plain form here instead.
namespace calendar {

#if defined(_WIN32)
inline bool isLeap(std::int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

inline std::int64_t daysOfMonth(std::int64_t year, int month) {
    constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return days[month] + (month == 1 && isLeap(year) ? 1 : 0);
}

/// Every 400 years have as many days.
constexpr std::int64_t daysOfCycle = 146097;
constexpr std::int64_t secondsOfDay = 86400;

inline std::int64_t quotientDown(std::int64_t number, std::int64_t divisor) {
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

/// False where the calendar does not hold the time.
inline bool read(std::time_t sinceEpoch, std::tm& date) {
    std::int64_t days = quotientDown(sinceEpoch, secondsOfDay);
    const std::int64_t second = sinceEpoch - days * secondsOfDay;
    const std::int64_t cycles = quotientDown(days, daysOfCycle);
    days -= cycles * daysOfCycle;
    std::int64_t year = 1970 + cycles * 400;
    for (; days >= (isLeap(year) ? 366 : 365); ++year)
        days -= isLeap(year) ? 366 : 365;
    int month = 0;
    for (; days >= daysOfMonth(year, month); ++month)
        days -= daysOfMonth(year, month);
    date = {};
    date.tm_year = static_cast<int>(year - 1900);
    date.tm_mon = month;
    date.tm_mday = static_cast<int>(days) + 1;
    date.tm_hour = static_cast<int>(second / 3600);
    date.tm_min = static_cast<int>(second / 60 % 60);
    date.tm_sec = static_cast<int>(second % 60);
    return date.tm_year == year - 1900;
}
/// -1 and EOVERFLOW where the calendar does not hold the date.
inline std::time_t secondsOf(const std::tm& date) {
    const std::int64_t carried = quotientDown(date.tm_mon, 12);
    const std::int64_t year = std::int64_t{date.tm_year} + 1900 + carried;
    const std::int64_t cycles = quotientDown(year - 1970, 400);
    std::int64_t days = cycles * daysOfCycle + date.tm_mday - 1;
    for (std::int64_t before = 1970; before < year - cycles * 400; ++before)
        days += isLeap(before) ? 366 : 365;
    for (int month = 0; month < date.tm_mon - carried * 12; ++month)
        days += daysOfMonth(year, month);
    const std::time_t sinceEpoch = days * secondsOfDay + std::int64_t{date.tm_hour} * 3600 +
                                   std::int64_t{date.tm_min} * 60 + date.tm_sec;
    std::tm normalised = {};
    if (read(sinceEpoch, normalised)) return sinceEpoch;
    errno = EOVERFLOW;
    return -1;
}

#else
/// False where the calendar does not hold the time.
inline bool read(std::time_t sinceEpoch, std::tm& date) {
    return gmtime_r(&sinceEpoch, &date) != nullptr;
}

/// -1 and EOVERFLOW where the calendar does not hold the date.
inline std::time_t secondsOf(std::tm& date) {
    return timegm(&date);
}
#endif

}  // namespace calendar
