// Internal to the library, not installed: the date ranges of a playlist.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "velhls/document/VELHLSDocument.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {

/// An attribute of a date range, by one of its tags.
struct DateRangeValue {
    std::string_view name;
    std::string_view value;
    std::uint32_t line;
};

/// What all tags with one ID say.
struct DateRange {
    /// Of a tag without an ID its whole value.
    std::string_view id;
    std::uint32_t firstLine = 0;
    std::size_t tagCount = 0;
    /// In the order of their names, those with one name in that of their lines.
    std::vector<DateRangeValue> values;

    /// Null when no tag has the attribute.
    [[nodiscard]] const DateRangeValue* find(std::string_view name) const;
    [[nodiscard]] bool has(std::string_view name) const { return find(name) != nullptr; }
    /// Microseconds since the epoch, and of a duration.
    [[nodiscard]] std::optional<std::int64_t> dateOf(std::string_view name) const;
    [[nodiscard]] std::optional<std::int64_t> durationOf(std::string_view name) const;
    [[nodiscard]] bool endsOnNext() const;
};

/// The date ranges of a version, in the order of their IDs.
class DateRanges {
  public:
    explicit DateRanges(const CheckedPlaylist& playlist);

    [[nodiscard]] const std::vector<DateRange>& all() const { return all_; }
    /// Null for none.
    [[nodiscard]] const DateRange* find(std::string_view id) const;
    [[nodiscard]] const VELHLSDocument& document() const { return document_; }

  private:
    const VELHLSDocument& document_;
    std::vector<DateRange> all_;
};

}  // namespace velhls
