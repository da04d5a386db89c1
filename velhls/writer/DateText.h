// Internal to the library, not installed: dates and times as RFC 8216 shows them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

#include "velhls/common/NumberWriting.h"

namespace velhls {

/// A time to the millisecond, as it is written and as the library reads it back.
class Milliseconds {
  public:
    /// The nearest one. The seconds since the epoch must be those of a year up to 9999, and not negative.
    explicit Milliseconds(double secondsSinceEpoch)
        : second_(static_cast<std::int64_t>(secondsSinceEpoch)),
          millisecond_(nearestWhole((secondsSinceEpoch - static_cast<double>(second_)) * 1000.0)) {
        if (millisecond_ < 1000) return;
        millisecond_ = 0;
        ++second_;
    }

    [[nodiscard]] std::int64_t second() const { return second_; }
    [[nodiscard]] std::int64_t millisecond() const { return millisecond_; }

    /// The number that the reader makes of the text: it adds the fraction of the minute's seconds to the whole ones.
    [[nodiscard]] double asRead() const {
        const std::int64_t ofMinute = second_ % 60;
        const double seconds = static_cast<double>(ofMinute * 1000 + millisecond_) / 1000.0;
        return (seconds - static_cast<double>(ofMinute)) + static_cast<double>(second_);
    }

    [[nodiscard]] bool operator==(const Milliseconds& other) const {
        return second_ == other.second_ && millisecond_ == other.millisecond_;
    }

  private:
    std::int64_t second_;
    std::int64_t millisecond_;
};

/// The first second of the year 10000.
inline constexpr double endOfDates = 253402300800.0;

/// Writes "2026-11-21T10:00:05.250Z": the text of the day is kept, since most dates that follow each other are of one.
class DateWriter {
  public:
    static constexpr std::size_t length = std::string_view("2026-11-21T10:00:05.250Z").size();

    /// Writes the text to where there is room for it, and returns the place after it.
    [[nodiscard]] char* write(char* to, const Milliseconds& time);

  private:
    static constexpr std::size_t dayLength = std::string_view("2026-11-21T").size();

    std::int64_t dayStart_ = std::numeric_limits<std::int64_t>::max();
    std::array<char, dayLength> day_ = {};
};

}  // namespace velhls
