#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <tuple>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/presentation/Presentation.h"

// The date ranges of several media playlists.

namespace velhls {
namespace {

using Playlists = std::vector<const PresentationPlaylist*>;

/// An EXT-X-DATERANGE with an ID.
struct Range {
    std::string_view id;
    /// The place of its playlist among those that are compared.
    std::size_t playlist = 0;
    std::uint32_t line = 0;
};

/// Sorted by ID, then in the order of the playlists and of their lines.
std::vector<Range> rangesOf(const Playlists& playlists) {
    std::vector<Range> ranges;
    for (std::size_t place = 0; place < playlists.size(); ++place) {
        const CheckedPlaylist& tags = playlists[place]->tags();
        for (const std::uint32_t number : tags.lines(tagIndex("EXT-X-DATERANGE"))) {
            const auto id = valueOf(tags.document().line(number), "ID");
            if (id) ranges.push_back({*id, place, number});
        }
    }
    std::stable_sort(ranges.begin(), ranges.end(), [](const Range& left, const Range& right) {
        return std::tie(left.id, left.playlist) < std::tie(right.id, right.playlist);
    });
    return ranges;
}

/// Goes through the ranges of one ID after the other.
template <typename Visit>
void forEachId(const std::vector<Range>& ranges, Visit visit) {
    for (auto first = ranges.begin(); first != ranges.end();) {
        const auto end =
            std::find_if(first, ranges.end(), [&](const Range& range) { return range.id != first->id; });
        visit(first, end);
        first = end;
    }
}

/// A live playlist shows what is in its window alone, and may have been fetched before its newest segments.
bool mustShow(const PresentationPlaylist& playlist, std::optional<std::int64_t> start) {
    if (playlist.hasEnded()) return true;
    if (!start || !playlist.hasDates()) return false;
    constexpr double microseconds = 1e6;
    const TimedSegment& last = playlist.segments().back();
    const double end = static_cast<double>(last.date.value_or(0)) +
                       (last.duration - playlist.targetDuration()) * microseconds;
    return *start >= *playlist.segments().front().date && static_cast<double>(*start) < end;
}

using Place = std::vector<Range>::const_iterator;

std::optional<std::int64_t> startOf(const Playlists& playlists, Place first, Place end) {
    for (Place range = first; range != end; ++range) {
        const VELHLSLine line = playlists[range->playlist]->text().document.line(range->line);
        const auto start = VELHLSSyntax::readDateTime(valueOf(line, "START-DATE").value_or(""));
        if (start) return start->microseconds;
    }
    return std::nullopt;
}

bool isInAll(const Playlists& playlists, Place first, Place end) {
    std::size_t count = 0;
    for (Place range = first; range != end; ++range) {
        if (range == first || range->playlist != std::prev(range)->playlist) ++count;
    }
    return count == playlists.size();
}

/// The playlists that do not have the ID.
std::vector<std::size_t> lackingOf(const Playlists& playlists, Place first, Place end) {
    const auto start = startOf(playlists, first, end);
    std::vector<std::size_t> lacking;
    for (std::size_t place = 0; place < playlists.size(); ++place) {
        while (first != end && first->playlist < place)
            ++first;
        const bool hasIt = first != end && first->playlist == place;
        if (!hasIt && mustShow(*playlists[place], start)) lacking.push_back(place);
    }
    return lacking;
}

PresentationPlace idOf(const PresentationPlaylist& playlist, std::uint32_t number) {
    const VELHLSLine line = playlist.text().document.line(number);
    return {&playlist.text(), line, valueOf(line, "ID").value_or(line.name)};
}

/// Date ranges that the same playlists lack.
struct Lack {
    PresentationPlace first;
    std::size_t count = 0;
};

/// Once for all ranges that the same playlists lack.
void tellOfLack(const Playlists& playlists, std::string_view what, const TellPresentation& tell) {
    if (playlists.size() < 2) return;
    const std::vector<Range> ranges = rangesOf(playlists);
    // So that many playlists with many ranges take no more time than their length explains.
    std::size_t steps = 64 * (ranges.size() + playlists.size());
    std::map<std::vector<std::size_t>, Lack> lacks;
    forEachId(ranges, [&](Place first, Place end) {
        if (isInAll(playlists, first, end) || steps < playlists.size()) return;
        steps -= playlists.size();
        std::vector<std::size_t> lacking = lackingOf(playlists, first, end);
        if (lacking.empty()) return;
        Lack& lack = lacks[std::move(lacking)];
        if (lack.count++ == 0) lack.first = idOf(*playlists[first->playlist], first->line);
    });
    for (const auto& [lacking, lack] : lacks) {
        BrokenPlaces broken;
        broken.what = what;
        broken.total = playlists.size();
        for (const std::size_t place : lacking)
            broken.add(playlists[place]->top(), "none");
        PresentationWords words;
        words.expected = "the date range " + quoted(lack.first.piece);
        if (lack.count > 1) words.expected += " and " + std::to_string(lack.count - 1) + " more";
        words.related = lack.first;
        tell(broken, words);
    }
}

Playlists ofVariants(const Presentation& presentation) {
    return presentation.playlistsThat(
        [](const PresentationPlaylist& playlist) { return playlist.roles.isVariant; });
}

void findRangeMissing(const Presentation& presentation, const TellPresentation& tell) {
    tellOfLack(ofVariants(presentation), "variants", tell);
}

/// Of renditions and I-frames, beside the first variant.
void findRangeMissingElsewhere(const Presentation& presentation, const TellPresentation& tell) {
    Playlists playlists = ofVariants(presentation);
    playlists.resize(std::min<std::size_t>(playlists.size(), 1));
    if (playlists.empty()) return;
    const Playlists others = presentation.playlistsThat(
        [](const PresentationPlaylist& playlist) { return !playlist.roles.isVariant; });
    playlists.insert(playlists.end(), others.begin(), others.end());
    tellOfLack(playlists, "media playlists", tell);
}

/// An attribute of a range.
struct Attribute {
    std::string_view id;
    std::string_view name;
    std::size_t playlist = 0;
    std::uint32_t line = 0;
    std::string_view value;
};

bool isSame(std::string_view left, std::string_view right) {
    if (left == right) return true;
    const auto number = VELHLSSyntax::readDecimalFloatingPoint(left);
    if (number && number == VELHLSSyntax::readDecimalFloatingPoint(right)) return true;
    const auto leftDate = VELHLSSyntax::readDateTime(left);
    const auto rightDate = VELHLSSyntax::readDateTime(right);
    return leftDate && rightDate && leftDate->microseconds == rightDate->microseconds;
}

/// Of each range that several playlists have, sorted by ID, name and playlist.
std::vector<Attribute> sharedAttributes(const Playlists& playlists, const std::vector<Range>& ranges) {
    std::vector<Attribute> attributes;
    forEachId(ranges, [&](Place first, Place end) {
        if (first->playlist == std::prev(end)->playlist) return;
        for (Place range = first; range != end; ++range) {
            const VELHLSLine line = playlists[range->playlist]->text().document.line(range->line);
            for (const VELHLSAttribute& attribute : line.attributes())
                attributes.push_back(
                    {range->id, attribute.name, range->playlist, range->line, attribute.value});
        }
    });
    std::stable_sort(attributes.begin(), attributes.end(), [](const Attribute& left, const Attribute& right) {
        return std::tie(left.id, left.name, left.playlist) < std::tie(right.id, right.name, right.playlist);
    });
    return attributes;
}

/// The first playlist that has the range and not the attribute, by the range's line there.
std::optional<Range> rangeWithout(const std::vector<Range>& ranges, const Attribute* first,
                                  const Attribute* end) {
    auto range = std::lower_bound(ranges.begin(), ranges.end(), first->id,
                                  [](const Range& each, std::string_view id) { return each.id < id; });
    for (const Attribute* attribute = first; range != ranges.end() && range->id == first->id;) {
        while (attribute != end && attribute->playlist < range->playlist)
            ++attribute;
        if (attribute == end || attribute->playlist != range->playlist) return *range;
        const std::size_t same = range->playlist;
        while (range != ranges.end() && range->id == first->id && range->playlist == same)
            ++range;
    }
    return std::nullopt;
}

PresentationPlace valueAt(const PresentationPlaylist& playlist, const Attribute& attribute) {
    return {&playlist.text(), playlist.text().document.line(attribute.line), attribute.value};
}

/// Of one attribute of one range: what has another value than the first playlist, or lacks it where nothing can be added any
/// more.
void findOtherValue(const Playlists& playlists, const std::vector<Range>& ranges, const Attribute* first,
                    const Attribute* end, const TellPresentation& tell) {
    BrokenPlaces broken;
    PresentationWords words;
    words.expected = std::string(first->name) + " of " + quoted(first->id) + " as in another variant";
    words.related = valueAt(*playlists[first->playlist], *first);
    for (const Attribute* attribute = first; attribute != end; ++attribute) {
        const bool isOther =
            attribute->playlist != first->playlist && !isSame(attribute->value, first->value);
        if (isOther) broken.add(valueAt(*playlists[attribute->playlist], *attribute));
    }
    if (broken.places.empty()) {
        const auto without = rangeWithout(ranges, first, end);
        if (!without || !playlists[without->playlist]->hasEnded()) return;
        broken.add(idOf(*playlists[without->playlist], without->line), "none");
    }
    broken.what = "variants";
    broken.total = playlists.size();
    tell(broken, words);
}

void findOtherAttributes(const Presentation& presentation, const TellPresentation& tell) {
    const Playlists playlists = ofVariants(presentation);
    const std::vector<Range> ranges = rangesOf(playlists);
    const std::vector<Attribute> attributes = sharedAttributes(playlists, ranges);
    const Attribute* const endOfAll = attributes.data() + attributes.size();
    for (const Attribute* first = attributes.data(); first != endOfAll;) {
        const Attribute* const end = std::find_if(first, endOfAll, [first](const Attribute& attribute) {
            return attribute.id != first->id || attribute.name != first->name;
        });
        findOtherValue(playlists, ranges, first, end, tell);
        first = end;
    }
}

// clang-format off
constexpr PresentationEntry rules[] = {
    {{{"date-range-not-everywhere", error, "A variant lacks a date range that another one has.",
       "the date ranges of the other variants", "RFC 8216, section 6.2.4", false}, "MUST"}, findRangeMissing},
    {{{"date-range-missing-in-rendition", note, "A rendition or an I-frame playlist lacks a date range of the variants.",
       "the date ranges of the variants", "RFC 8216, section 6.2.4", false}, "MUST"}, findRangeMissingElsewhere},
    {{{"date-range-attributes-differ", error, "A date range has other attributes in another variant.",
       "the attributes of the date range in other variants", "RFC 8216, section 6.2.4", false}, "MUST"}, findOtherAttributes},
};
// clang-format on

}  // namespace

PresentationTable sharedDateRangeRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
