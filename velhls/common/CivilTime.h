// Internal to the library, not installed: the UTC calendar, as timegm and gmtime_r compute it, for every
// input and without the C library's shared state.
#pragma once

#include <cstdint>
#include <optional>

#include "velhls/common/PrivateExport.h"

namespace velhls {

/// A date and time in UTC. When it is converted to seconds, fields outside their range carry over.
struct CivilTime {
    std::int64_t year = 1970;
    std::int64_t month = 1;
    std::int64_t day = 1;
    std::int64_t hour = 0;
    std::int64_t minute = 0;
    std::int64_t second = 0;
};

/// The first and last year that the platform's std::tm holds: a 32-bit count of years from 1900.
inline constexpr std::int64_t firstYear = INT32_MIN + std::int64_t{1900};
inline constexpr std::int64_t lastYear = INT32_MAX + std::int64_t{1900};

inline constexpr std::int64_t secondsOfDay = 86400;

/// Seconds since 1970-01-01T00:00:00Z. Nothing when the year that was given, or the year that the fields
/// carry over to, is none that std::tm holds. Every field must fit 32 bits.
[[nodiscard]] std::optional<std::int64_t> secondsSinceEpoch(const CivilTime& time);

/// The count of seconds; the nearest one whose year std::tm holds.
[[nodiscard]] std::int64_t limitedToCalendar(std::int64_t secondsSinceEpoch);

/// The first second of the day that a second is of.
[[nodiscard]] VELHLS_PRIVATE_API std::int64_t startOfDay(std::int64_t secondsSinceEpoch);

/// The date of a second that the calendar holds, as a time at the start of that day.
[[nodiscard]] VELHLS_PRIVATE_API CivilTime dateOf(std::int64_t secondsSinceEpoch);

}  // namespace velhls
