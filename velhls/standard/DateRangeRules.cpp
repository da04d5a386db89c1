#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"
#include "velhls/standard/SpliceSection.h"

namespace velhls {
namespace {

constexpr std::size_t dateRange = tagIndex("EXT-X-DATERANGE");

std::optional<std::int64_t> dateOf(std::optional<std::string_view> text) {
    const auto date = text ? VELHLSSyntax::readDateTime(*text) : std::nullopt;
    if (!date) return std::nullopt;
    return date->microseconds;
}

std::optional<std::int64_t> microsecondsOf(std::optional<std::string_view> text) {
    const auto seconds = text ? VELHLSSyntax::readDecimalFloatingPoint(*text) : std::nullopt;
    constexpr double most = 1e12;
    if (!seconds || *seconds > most) return std::nullopt;
    return static_cast<std::int64_t>(std::llround(*seconds * 1e6));
}

std::optional<std::string_view> valueIn(const CheckedLine& checked, std::string_view name) {
    const VELHLSAttribute* const attribute = checked.find(name);
    if (attribute == nullptr) return std::nullopt;
    return attribute->value;
}

/// The dates of one tag.
struct Dates {
    std::optional<std::int64_t> start;
    std::optional<std::int64_t> end;
    std::optional<std::int64_t> duration;
};

Dates datesOf(const CheckedLine& checked) {
    return {dateOf(valueIn(checked, "START-DATE")), dateOf(valueIn(checked, "END-DATE")),
            microsecondsOf(valueIn(checked, "DURATION"))};
}

bool endsOnNext(const CheckedLine& checked) {
    return valueIn(checked, "END-ON-NEXT") == fixed::yes;
}

void findEndBeforeStart(const CheckedLine& checked, const Tell& tell) {
    const Dates dates = datesOf(checked);
    if (dates.start && dates.end && *dates.end < *dates.start)
        tell(checked.line, checked.find("END-DATE")->value);
}

/// The dates are read to the microsecond; a millisecond is what they are written with.
bool endsElsewhere(const Dates& dates) {
    if (!dates.start || !dates.end || !dates.duration) return false;
    constexpr std::int64_t rounding = 1000;
    const std::int64_t difference = *dates.start + *dates.duration - *dates.end;
    return difference > rounding || difference < -rounding;
}

/// Several tags with one ID are one range: each is looked at with what those before it said.
void findEndElsewhere(const CheckedPlaylist& playlist, const Tell& tell) {
    std::map<std::string_view, Dates> ranges;
    for (const std::uint32_t number : playlist.lines(dateRange)) {
        const VELHLSLine line = playlist.document().line(number);
        const auto id = valueOf(line, "ID");
        const auto end = line.attributes().find("END-DATE");
        const auto duration = line.attributes().find("DURATION");
        Dates dates = id ? ranges[*id] : Dates();
        if (const auto start = dateOf(valueOf(line, "START-DATE"))) dates.start = start;
        if (end) dates.end = dateOf(end->value);
        if (duration) dates.duration = microsecondsOf(duration->value);
        if (id) ranges[*id] = dates;
        if ((end || duration) && endsElsewhere(dates)) tell(line, (end ? end : duration)->value);
    }
}

void findInstant(const CheckedLine& checked, const Tell& tell) {
    const Dates dates = datesOf(checked);
    if (dates.start && dates.start == dates.end && checked.find("DURATION") == nullptr)
        tell(checked.line, checked.find("END-DATE")->value);
}

void findClassMissing(const CheckedLine& checked, const Tell& tell) {
    if (endsOnNext(checked) && checked.find("CLASS") == nullptr)
        tell(checked.line, checked.find("END-ON-NEXT")->text, {{}, "none", {}});
}

void findEndOfOpenRange(const CheckedLine& checked, const Tell& tell) {
    if (!endsOnNext(checked)) return;
    for (const std::string_view name : {"DURATION", "END-DATE"}) {
        if (const VELHLSAttribute* const end = checked.find(name)) tell(checked.line, end->name);
    }
}

/// "X-COM-EXAMPLE-AD-ID" is one: a domain of two labels at least, and a name.
void findPlainName(const CheckedLine& checked, const Tell& tell) {
    for (const VELHLSAttribute& attribute : checked.attributes) {
        const VELHLSAttributeDefinition* const row = checked.line.definition->findAttribute(attribute.name);
        const bool isClients = row != nullptr && row->type == VELHLSAttributeDefinition::ClientValue;
        if (isClients && std::count(attribute.name.begin(), attribute.name.end(), '-') < 3)
            tell(checked.line, attribute.name);
    }
}

void findOtherSplice(const CheckedLine& checked, const Tell& tell) {
    constexpr std::array<std::pair<std::string_view, bool>, 2> attributes = {
        {{"SCTE35-OUT", true}, {"SCTE35-IN", false}}};
    for (const auto& [name, isOut] : attributes) {
        const VELHLSAttribute* const section = checked.find(name);
        const auto goesOut = section == nullptr ? std::nullopt : outOfNetworkOf(section->value);
        if (goesOut && *goesOut != isOut)
            tell(checked.line, section->value, {{}, *goesOut ? "a section with 1" : "a section with 0", {}});
    }
}

void findDateMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMedia() || !playlist.has(dateRange) || playlist.has(tagIndexOf<tag::programDateTime>))
        return;
    const VELHLSLine line = playlist.firstLine(dateRange);
    tell(line, line.name, {{}, "none", {}});
}

/// An attribute of one of several tags with one ID.
struct Shared {
    std::string_view id;
    std::string_view name;
    std::string_view value;
    std::uint32_t line;
};

bool isSame(std::string_view left, std::string_view right) {
    if (left == right) return true;
    const auto number = VELHLSSyntax::readDecimalFloatingPoint(left);
    return number && number == VELHLSSyntax::readDecimalFloatingPoint(right);
}

/// The attributes of all ranges whose ID another one has, with equal names side by side.
std::vector<Shared> sharedAttributes(const CheckedPlaylist& playlist) {
    std::vector<Shared> ids;
    for (const std::uint32_t number : playlist.lines(dateRange)) {
        const auto id = valueOf(playlist.document().line(number), "ID");
        if (id) ids.push_back({*id, {}, {}, number});
    }
    const auto orderOf = [](const Shared& shared) { return std::tie(shared.id, shared.name, shared.line); };
    const auto isBefore = [orderOf](const Shared& left, const Shared& right) {
        return orderOf(left) < orderOf(right);
    };
    std::sort(ids.begin(), ids.end(), isBefore);
    std::vector<Shared> attributes;
    for (std::size_t place = 0; place < ids.size(); ++place) {
        const bool isShared = (place > 0 && ids[place - 1].id == ids[place].id) ||
                              (place + 1 < ids.size() && ids[place + 1].id == ids[place].id);
        if (!isShared) continue;
        for (const VELHLSAttribute& attribute : playlist.document().line(ids[place].line).attributes())
            attributes.push_back({ids[place].id, attribute.name, attribute.value, ids[place].line});
    }
    std::sort(attributes.begin(), attributes.end(), isBefore);
    return attributes;
}

/// Each attribute is compared with that of the first tag that has it.
void findOtherValue(const CheckedPlaylist& playlist, const Tell& tell) {
    const std::vector<Shared> attributes = sharedAttributes(playlist);
    const Shared* first = nullptr;
    for (const Shared& shared : attributes) {
        const bool isFirst = first == nullptr || first->id != shared.id || first->name != shared.name;
        if (isFirst) first = &shared;
        if (first->line == shared.line || isSame(first->value, shared.value)) continue;
        const std::string expected =
            "the value that it has in line " + std::to_string(first->line) + ", for the same ID";
        tell(playlist.document().line(shared.line), shared.value, {expected, {}, {}});
    }
}

/// A range of a class whose ranges must not overlap.
struct Range {
    std::string_view category;
    std::int64_t start;
    /// Nothing where it is not known, or where the next range ends this one.
    std::optional<std::int64_t> end;
    std::string_view id;
    std::uint32_t line;
    bool endsOnNext;
};

std::optional<Range> rangeOf(const VELHLSLine& line) {
    const auto category = valueOf(line, "CLASS");
    const auto start = dateOf(valueOf(line, "START-DATE"));
    if (!category || !start) return std::nullopt;
    std::optional<std::int64_t> end = dateOf(valueOf(line, "END-DATE"));
    const auto duration = microsecondsOf(valueOf(line, "DURATION"));
    if (!end && duration) end = *start + *duration;
    const bool endsOnNext = valueOf(line, "END-ON-NEXT") == fixed::yes;
    return Range{*category,
                 *start,
                 endsOnNext ? std::nullopt : end,
                 valueOf(line, "ID").value_or(""),
                 static_cast<std::uint32_t>(line.number),
                 endsOnNext};
}

/// Of the ranges of one class, in the order of their dates.
void findOverlapOfClass(const CheckedPlaylist& playlist, const Range* first, const Range* last,
                        const Tell& tell) {
    if (std::none_of(first, last, [](const Range& range) { return range.endsOnNext; })) return;
    const Range* longest = first;
    for (const Range* range = first + 1; range < last; ++range) {
        const bool isOther = range->id != longest->id;
        // One that the next one ends lasts beyond its start, and so does one with an end after that.
        const bool lasts = range->endsOnNext || range->end.value_or(range->start) > range->start;
        const bool overlaps = (longest->end && *longest->end > range->start) ||
                              (longest->endsOnNext && longest->start == range->start && lasts);
        if (isOther && overlaps) {
            const VELHLSLine line = playlist.document().line(range->line);
            const std::string seen = "one that overlaps that of line " + std::to_string(longest->line);
            tell(line, line.name, {{}, seen, {}});
        }
        if (range->end.value_or(range->start) >= longest->end.value_or(longest->start)) longest = range;
    }
}

void findOverlap(const CheckedPlaylist& playlist, const Tell& tell) {
    std::vector<Range> ranges;
    for (const std::uint32_t number : playlist.lines(dateRange)) {
        if (const auto range = rangeOf(playlist.document().line(number))) ranges.push_back(*range);
    }
    std::sort(ranges.begin(), ranges.end(), [](const Range& left, const Range& right) {
        return std::tie(left.category, left.start, left.line) <
               std::tie(right.category, right.start, right.line);
    });
    for (std::size_t first = 0; first < ranges.size();) {
        std::size_t last = first;
        while (last < ranges.size() && ranges[last].category == ranges[first].category)
            ++last;
        findOverlapOfClass(playlist, ranges.data() + first, ranges.data() + last, tell);
        first = last;
    }
}

// clang-format off
constexpr LineEntry rules[] = {
    {{{"date-range-ends-before-start", error, "A date range ends before it starts.",
       "a date that is not before START-DATE", "RFC 8216, section 4.3.2.7", false}, "MUST"}, findEndBeforeStart},
    {{{"date-range-instant-without-duration", warning, "A date range ends where it starts, and has no DURATION=0.",
       "DURATION=0 for an instant", "RFC 8216, section 4.3.2.7", false}, "SHOULD"}, findInstant},
    {{{"date-range-class-missing", error, "A date range with END-ON-NEXT=YES has no CLASS.",
       "CLASS with END-ON-NEXT=YES", "RFC 8216, section 4.3.2.7", false}, "MUST"}, findClassMissing},
    {{{"date-range-ends-twice", error, "A date range with END-ON-NEXT=YES has DURATION or END-DATE.",
       "neither DURATION nor END-DATE with END-ON-NEXT=YES", "RFC 8216, section 4.3.2.7", false}, "MUST NOT"}, findEndOfOpenRange},
    {{{"date-range-name-not-reverse-dns", note, "The name of a client's own attribute has no domain in it.",
       "a name like X-COM-EXAMPLE-AD-ID", "RFC 8216, section 4.3.2.7", false}, "SHOULD"}, findPlainName},
    {{{"date-range-splice-of-other-direction", warning, "SCTE35-OUT holds a splice into the network, or SCTE35-IN one out of it.",
       "a section whose out_of_network_indicator is 1 in SCTE35-OUT, and 0 in SCTE35-IN", "RFC 8216, section 4.3.2.7.1", false}, "MUST"}, findOtherSplice},
};

constexpr PlaylistEntry relations[] = {
    {{{"date-range-without-date-time", error, "A playlist has EXT-X-DATERANGE, and no EXT-X-PROGRAM-DATE-TIME.",
       "an EXT-X-PROGRAM-DATE-TIME in the playlist", "RFC 8216, section 4.3.2.7", false}, "MUST"}, findDateMissing},
    {{{"date-range-end-not-start-plus-duration", error, "END-DATE is not START-DATE plus DURATION.",
       "an END-DATE that is START-DATE plus DURATION", "RFC 8216, section 4.3.2.7", false}, "MUST"}, findEndElsewhere},
    {{{"date-range-values-differ", error, "Two date ranges with one ID have other values of one attribute.",
       "the same value for the same ID", "RFC 8216, section 4.3.2.7", false}, "MUST"}, findOtherValue},
    {{{"date-ranges-overlap", error, "Date ranges overlap, and one of their class has END-ON-NEXT=YES.",
       "ranges of the class that do not overlap", "RFC 8216, section 4.3.2.7", false}, "MUST NOT"}, findOverlap},
};
// clang-format on

}  // namespace

StandardTable<CheckedLine> dateRangeRules() {
    return {rules, std::size(rules)};
}

StandardTable<CheckedPlaylist> dateRangeRelationRules() {
    return {relations, std::size(relations)};
}

}  // namespace velhls
