#include "velhls/comparison/DateRanges.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "velhls/common/Names.h"
#include "velhls/document/FormatTables.h"
#include "velhls/document/VELHLSSyntax.h"

namespace velhls {
namespace {

constexpr std::size_t dateRange = tagIndex("EXT-X-DATERANGE");

struct Tag {
    std::string_view id;
    std::uint32_t line;
};

std::vector<Tag> sortedTags(const CheckedPlaylist& playlist) {
    std::vector<Tag> tags;
    for (const std::uint32_t number : playlist.lines(dateRange)) {
        const VELHLSLine line = playlist.document().line(number);
        tags.push_back({valueOf(line, "ID").value_or(line.value), number});
    }
    std::sort(tags.begin(), tags.end(), [](const Tag& left, const Tag& right) {
        return std::tie(left.id, left.line) < std::tie(right.id, right.line);
    });
    return tags;
}

}  // namespace

const DateRangeValue* DateRange::find(std::string_view name) const {
    const auto found = std::lower_bound(
        values.begin(), values.end(), name,
        [](const DateRangeValue& value, std::string_view wanted) { return value.name < wanted; });
    return found == values.end() || found->name != name ? nullptr : &*found;
}

std::optional<std::int64_t> DateRange::dateOf(std::string_view name) const {
    const DateRangeValue* const value = find(name);
    const auto date = value == nullptr ? std::nullopt : VELHLSSyntax::readDateTime(value->value);
    if (!date) return std::nullopt;
    return date->microseconds;
}

std::optional<std::int64_t> DateRange::durationOf(std::string_view name) const {
    const DateRangeValue* const value = find(name);
    const auto seconds =
        value == nullptr ? std::nullopt : VELHLSSyntax::readDecimalFloatingPoint(value->value);
    constexpr double most = 1e12;
    if (!seconds || *seconds > most) return std::nullopt;
    return static_cast<std::int64_t>(std::llround(*seconds * 1e6));
}

bool DateRange::endsOnNext() const {
    const DateRangeValue* const value = find("END-ON-NEXT");
    return value != nullptr && value->value == fixed::yes;
}

DateRanges::DateRanges(const CheckedPlaylist& playlist) : document_(playlist.document()) {
    for (const Tag& tag : sortedTags(playlist)) {
        if (all_.empty() || all_.back().id != tag.id) {
            all_.emplace_back();
            all_.back().id = tag.id;
            all_.back().firstLine = tag.line;
        }
        ++all_.back().tagCount;
        for (const VELHLSAttribute& attribute : document_.line(tag.line).attributes())
            all_.back().values.push_back({attribute.name, attribute.value, tag.line});
    }
    for (DateRange& range : all_) {
        std::stable_sort(
            range.values.begin(), range.values.end(),
            [](const DateRangeValue& left, const DateRangeValue& right) { return left.name < right.name; });
    }
}

const DateRange* DateRanges::find(std::string_view id) const {
    const auto found =
        std::lower_bound(all_.begin(), all_.end(), id,
                         [](const DateRange& range, std::string_view wanted) { return range.id < wanted; });
    return found == all_.end() || found->id != id ? nullptr : &*found;
}

}  // namespace velhls
