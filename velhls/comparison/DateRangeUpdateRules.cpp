#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/comparison/CheckedUpdate.h"
#include "velhls/comparison/Values.h"
#include "velhls/document/FormatTables.h"

namespace velhls {
namespace {

constexpr std::int64_t forever = std::numeric_limits<std::int64_t>::max();

/// The dates of a segment: microseconds since the epoch, the end not among them.
struct Span {
    std::int64_t start;
    std::int64_t end;
    std::size_t index;
};

/// The dates that the listed segments have.
class Coverage {
  public:
    explicit Coverage(const MediaVersion& version) {
        for (std::size_t index = 0; index < version.segmentCount(); ++index) {
            const VELHLSStructure::Segment segment = version.segment(index);
            constexpr double most = 1e9;
            const double seconds = std::min(segment.duration, most);
            if (segment.date)
                spans_.push_back(
                    {*segment.date, *segment.date + static_cast<std::int64_t>(seconds * 1e6), index});
        }
        std::sort(spans_.begin(), spans_.end(),
                  [](const Span& left, const Span& right) { return left.start < right.start; });
        // From here on each ends where the last one up to it does, so that the ends rise too.
        for (std::size_t place = 1; place < spans_.size(); ++place)
            spans_[place].end = std::max(spans_[place].end, spans_[place - 1].end);
    }

    /// The first segment that has a date of the range. Durations are rounded, so that a tenth of a second is none.
    [[nodiscard]] std::optional<std::size_t> segmentIn(std::int64_t start, std::int64_t end) const {
        constexpr std::int64_t rounding = 100000;
        const bool isInstant = end <= start || end - start <= 2 * rounding;
        const std::int64_t last = isInstant ? start : end == forever ? forever : end - rounding;
        const std::int64_t first = isInstant ? start : start + rounding;
        const auto span =
            std::upper_bound(spans_.begin(), spans_.end(), first,
                             [](std::int64_t date, const Span& other) { return date < other.end; });
        if (span == spans_.end() || span->start > last) return std::nullopt;
        return span->index;
    }

  private:
    std::vector<Span> spans_;
};

/// A date range that is one of a class.
struct Member {
    std::string_view category;
    std::int64_t start;
    bool endsOnNext;
    std::uint32_t line;
};

bool isBefore(const Member& left, const Member& right) {
    return std::tie(left.category, left.start, right.endsOnNext) <
           std::tie(right.category, right.start, left.endsOnNext);
}

void appendMembers(const DateRanges& ranges, std::vector<Member>& members) {
    for (const DateRange& range : ranges.all()) {
        const DateRangeValue* const category = range.find("CLASS");
        const auto start = range.dateOf("START-DATE");
        if (category != nullptr && start)
            members.push_back({category->value, *start, range.endsOnNext(), range.firstLine});
    }
}

/// In the order of their classes and dates; of those with one date the ones that end on the next come first.
std::vector<Member> membersOf(std::initializer_list<const DateRanges*> lists) {
    std::vector<Member> members;
    for (const DateRanges* const ranges : lists)
        appendMembers(*ranges, members);
    std::sort(members.begin(), members.end(), isBefore);
    return members;
}

/// The first one of the class that starts later.
std::vector<Member>::const_iterator followingOf(const std::vector<Member>& members, std::string_view category,
                                                std::int64_t start) {
    return std::upper_bound(members.begin(), members.end(), std::tie(category, start),
                            [](const auto& wanted, const Member& member) {
                                return wanted < std::tie(member.category, member.start);
                            });
}

/// Where the range ends, as far as it is said: its start where nothing is.
std::int64_t endOf(const DateRange& range, std::int64_t start, const std::vector<Member>& members) {
    if (const auto end = range.dateOf("END-DATE")) return *end;
    if (const auto duration = range.durationOf("DURATION")) return start + *duration;
    const DateRangeValue* const category = range.find("CLASS");
    if (range.endsOnNext() && category != nullptr) {
        const auto next = followingOf(members, category->value, start);
        return next == members.end() || next->category != category->value ? forever : next->start;
    }
    return start + range.durationOf("PLANNED-DURATION").value_or(0);
}

/// A range of the old version, and the segment of the new one that has a date of it.
class Removals {
  public:
    explicit Removals(const CheckedUpdate& update)
        : update_(update),
          coverage_(update.now),
          members_(membersOf({&update.rangesBefore, &update.rangesNow})) {}

    [[nodiscard]] std::optional<std::size_t> segmentIn(const DateRange& range) const {
        const auto start = range.dateOf("START-DATE");
        if (!start) return std::nullopt;
        return coverage_.segmentIn(*start, endOf(range, *start, members_));
    }

    /// Whether a tag is gone, and with it something that it said.
    [[nodiscard]] bool isLessened(const DateRange& range) const {
        const DateRange* const now = update_.rangesNow.find(range.id);
        if (now == nullptr) return true;
        if (now->tagCount >= range.tagCount) return false;
        return std::any_of(range.values.begin(), range.values.end(),
                           [now](const DateRangeValue& value) { return !now->has(value.name); });
    }

  private:
    const CheckedUpdate& update_;
    Coverage coverage_;
    std::vector<Member> members_;
};

bool isPartly(const CheckedUpdate& update) {
    return update.before.skipsSegments() || update.now.skipsSegments();
}

Spot spotOf(const DateRanges& ranges, const DateRange& range) {
    return {range.firstLine, ranges.document().line(range.firstLine).value};
}

void findRemovedEarly(const CheckedUpdate& update, const Tell& tell) {
    if (isPartly(update) || update.rangesBefore.all().empty()) return;
    const Removals removals(update);
    for (const DateRange& range : update.rangesBefore.all()) {
        const auto segment = removals.isLessened(range) ? removals.segmentIn(range) : std::nullopt;
        if (!segment) continue;
        update.tell(
            tell, CheckedUpdate::spotOfSegment(update.now, *segment), spotOf(update.rangesBefore, range), {},
            "none for " + quoted(range.id) + " at " + update.now.pathOf(*segment), "the tag that is gone");
    }
}

void findReused(const CheckedUpdate& update, const Tell& tell) {
    forEachOf(update, Aspect::dateRangeReused, [&](const Difference& difference) {
        update.tell(tell, difference.now, difference.before, {},
                    quoted(difference.change.newText) + " for " + difference.change.path,
                    saidBefore(difference));
    });
}

void findOtherValue(const CheckedUpdate& update, const Tell& tell) {
    forEachOf(update, Aspect::dateRangeValue, [&](const Difference& difference) {
        if (difference.change.kind == VELHLSChange::Added) return;
        const DateRange* const before = update.rangesBefore.find(difference.id);
        const DateRange* const now = update.rangesNow.find(difference.id);
        const bool isGone = difference.change.kind == VELHLSChange::Removed;
        // A whole tag that went is another matter.
        if (isGone && (isPartly(update) || now->tagCount < before->tagCount)) return;
        const std::string seen =
            (isGone ? "no " : quoted(difference.change.newText) + " for ") + difference.change.what;
        update.tell(tell, difference.now, difference.before, {}, seen, saidBefore(difference));
    });
}

void findPutBetween(const CheckedUpdate& update, const Tell& tell) {
    const std::vector<Member> members = membersOf({&update.rangesBefore});
    for (const DateRange& range : update.rangesNow.all()) {
        const DateRangeValue* const category = range.find("CLASS");
        const auto start = range.dateOf("START-DATE");
        if (category == nullptr || !start || update.rangesBefore.find(range.id) != nullptr) continue;
        const auto next = followingOf(members, category->value, *start);
        const auto last = std::lower_bound(members.begin(), members.end(), std::tie(category->value, *start),
                                           [](const Member& member, const auto& wanted) {
                                               return std::tie(member.category, member.start) < wanted;
                                           });
        const bool hasNext = next != members.end() && next->category == category->value;
        const bool hasLast = last != members.begin() && (last - 1)->category == category->value;
        if (!hasNext || !hasLast) continue;
        // The one that ends on the next comes first among those of one date.
        const auto first = std::lower_bound(members.begin(), members.end(),
                                            std::tie((last - 1)->category, (last - 1)->start),
                                            [](const Member& member, const auto& wanted) {
                                                return std::tie(member.category, member.start) < wanted;
                                            });
        if (!first->endsOnNext) continue;
        const VELHLSLine line = update.before.document().line(next->line);
        update.tell(tell, spotOf(update.rangesNow, range), {line.number, line.value}, {},
                    quoted(range.id) + " between the two", "the Following Range");
    }
}

/// Of a range that is gone with what it was planned to be: whether it has ended was never told.
void findEndUntold(const CheckedUpdate& update, const Tell& tell) {
    if (isPartly(update) || update.match.pairs.empty()) return;
    const Removals removals(update);
    for (const DateRange& range : update.rangesBefore.all()) {
        const bool hasEnd = range.has("DURATION") || range.has("END-DATE") || range.endsOnNext();
        if (!range.has("PLANNED-DURATION") || hasEnd || update.rangesNow.find(range.id) != nullptr) continue;
        if (removals.segmentIn(range)) continue;
        update.tell(tell, {}, spotOf(update.rangesBefore, range), {},
                    "no end of " + quoted(range.id) + ", which is gone", "what it was planned to be");
    }
}

// clang-format off
constexpr UpdateEntry rules[] = {
    {{{"date-range-removed-early", error, "An EXT-X-DATERANGE went while a segment was listed that has a date of the range.",
       "EXT-X-DATERANGE as long as a listed segment has a date of the range", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findRemovedEarly},
    {{{"date-range-id-reused", error, "The ID of a date range is that of another one now, which starts at another date.",
       "a new ID for a new date range", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findReused},
    {{{"date-range-put-between", error, "A date range was put between one with END-ON-NEXT=YES and the one that ended it.",
       "no new date range of the class before the Following Range", "RFC 8216, section 6.2.1", false}, "MUST NOT"}, findPutBetween},
    {{{"date-range-end-untold", warning, "A date range with PLANNED-DURATION went, and its end was never told.",
       "DURATION or END-DATE once a planned range has ended", "RFC 8216, section 6.2.1", false}, "SHOULD"}, findEndUntold},
    {{{"date-range-value-changed", error, "An attribute of a date range has another value than before.",
       "the value that it had", "RFC 8216, section 4.3.2.7", false}, "MUST"}, findOtherValue},
};
// clang-format on

}  // namespace

StandardTable<CheckedUpdate> dateRangeUpdateRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
