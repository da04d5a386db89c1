// Internal to the library, not installed: ISO 8601 dates and times.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

#include "velhls/common/Reason.h"

namespace velhls {

/// Reads the dates and times of segments that follow each other: most of them are of one day, whose first second is
/// kept.
class TimestampReader {
  public:
    /// See VELHLSUtility::parseTimestamp. What gives -1 has a reason.
    [[nodiscard]] double read(std::string_view text, Reason& why);

  private:
    [[nodiscard]] bool readDay(std::string_view day);

    /// "2026-11-21", and its first second. A text that is no date before any was read.
    std::array<char, 10> day_ = {};
    std::int64_t dayStart_ = 0;
};

/// See VELHLSUtility::parseTimestamp.
[[nodiscard]] inline double readTimestamp(std::string_view text, Reason& why) {
    return TimestampReader().read(text, why);
}

inline constexpr std::size_t mostTimestampBytes = 31;

/// Writes the dates and times of segments that follow each other: most of them are of one minute, whose text
/// is kept. See VELHLSUtility::renderTimestamp.
class TimestampWriter {
  public:
    /// Writes the text to where there is room for `mostTimestampBytes`, and returns the place after it.
    [[nodiscard]] char* write(char* to, double seconds);

  private:
    void beginMinute(std::int64_t second);

    /// The first seconds of the day and of the minute that `minute_` tells.
    std::int64_t dayStart_ = std::numeric_limits<std::int64_t>::max();
    std::int64_t minuteStart_ = std::numeric_limits<std::int64_t>::max();
    /// "2026-11-21T10:05:". A year may have up to eleven characters.
    std::array<char, 24> minute_;
    /// How many of them are the date's, the "T" included.
    std::size_t dateLength_ = 0;
};

}  // namespace velhls
