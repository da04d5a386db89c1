#pragma once

#include <ctime>

/// The C library's UTC calendar, under the names that it has on each system.
namespace calendar {

/// False where the calendar does not hold the time.
inline bool read(std::time_t sinceEpoch, std::tm& date) {
#if defined(_WIN32)
    return gmtime_s(&date, &sinceEpoch) == 0;
#else
    return gmtime_r(&sinceEpoch, &date) != nullptr;
#endif
}

/// -1 where the calendar does not hold the date; elsewhere errno is left as it is then.
inline std::time_t secondsOf(std::tm& date) {
#if defined(_WIN32)
    return _mkgmtime(&date);
#else
    return timegm(&date);
#endif
}

}  // namespace calendar
