#include "tool/report/Timeline.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "tool/report/Limits.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

constexpr std::array<std::string_view, markKinds.size()> tagNames = {
    "EXT-X-DISCONTINUITY", "EXT-X-KEY", "EXT-X-MAP", "EXT-X-PROGRAM-DATE-TIME", "EXT-X-GAP"};

/// A sum of segments that is drawn and compared: of hostile durations the sum may be infinite.
constexpr double mostSeconds = 1e12;

double bounded(double seconds) {
    return std::isnan(seconds) ? 0.0 : std::clamp(seconds, -mostSeconds, mostSeconds);
}

/// The number of the first such tag; nothing where there is none.
std::optional<std::uint64_t> numberOf(const VELHLSDocument& document, std::string_view tag) {
    const std::vector<VELHLSLine> lines = document.linesNamed(tag);
    return lines.empty() ? std::nullopt : VELHLSSyntax::readDecimalInteger(lines.front().value);
}

class TimelineReader {
  public:
    TimelineReader(Timeline& timeline, const VELHLSDocument& document, std::size_t timelinesOfAxis)
        : timeline_(timeline),
          document_(document),
          mostColumns_(std::clamp(mostColumnsOfAxis / timelinesOfAxis, leastColumns, mostColumns)) {}

    void read() {
        readHeader();
        readSegments();
        for (const MarkKind kind : markKinds)
            readMarks(kind);
        readColumns();
        readCues();
        readDateRanges();
    }

  private:
    void readHeader() {
        timeline_.hasEnded = !document_.linesNamed("EXT-X-ENDLIST").empty();
        if (const auto target = numberOf(document_, "EXT-X-TARGETDURATION"))
            timeline_.targetDuration = bounded(static_cast<double>(*target));
    }

    void readSegments() {
        const VELHLSStructure structure(document_);
        for (const VELHLSStructure::Segment& segment : structure.segments()) {
            if (segment.uriLine == 0) break;
            if (lastLines_.empty()) {
                timeline_.firstSequence = segment.mediaSequence;
                timeline_.firstDate = segment.date;
                if (segment.date) timeline_.firstDateText = document_.line(segment.dateLine).value;
            }
            const double duration = std::max(0.0, bounded(segment.duration));
            lastLines_.push_back(segment.lastLine);
            durations_.push_back(duration);
            if (segment.date) dates_.emplace_back(*segment.date, timeline_.duration);
            timeline_.starts.push_back(timeline_.duration);
            timeline_.duration = bounded(timeline_.duration + duration);
            if (timeline_.targetDuration && std::round(duration) > *timeline_.targetDuration)
                ++timeline_.tooLong;
        }
        timeline_.segmentCount = durations_.size();
        if (durations_.empty()) return;
        const auto [shortest, longest] = std::minmax_element(durations_.begin(), durations_.end());
        timeline_.shortest = *shortest;
        timeline_.longest = *longest;
    }

    /// The segment that a line before its URI belongs to; the number of segments after the last.
    [[nodiscard]] std::size_t segmentAt(std::size_t line) const {
        return static_cast<std::size_t>(std::lower_bound(lastLines_.begin(), lastLines_.end(), line) -
                                        lastLines_.begin());
    }

    [[nodiscard]] double timeAt(std::size_t line) const {
        const std::size_t segment = segmentAt(line);
        return segment < timeline_.starts.size() ? timeline_.starts[segment] : timeline_.duration;
    }

    void readMarks(MarkKind kind) {
        const auto index = static_cast<std::size_t>(kind);
        for (const VELHLSLine& line : document_.linesNamed(tagNames.at(index)))
            timeline_.marks.at(index).push_back(
                {timeAt(line.number), line.number, 1, cut(line.value, mostTextBytes)});
    }

    void readColumns() {
        std::vector<bool> isGap(durations_.size());
        for (const Mark& gap : timeline_.of(MarkKind::Gap)) {
            if (const std::size_t segment = segmentAt(gap.line); segment < isGap.size())
                isGap[segment] = true;
        }
        const std::size_t perColumn = (durations_.size() + mostColumns_ - 1) / mostColumns_;
        for (std::size_t index = 0; index < durations_.size(); ++index) {
            if (index % perColumn == 0) timeline_.columns.push_back({timeline_.starts[index]});
            Column& column = timeline_.columns.back();
            ++column.segments;
            column.duration = bounded(column.duration + durations_[index]);
            column.longest = std::max(column.longest, durations_[index]);
            column.hasGap = column.hasGap || isGap[index];
        }
    }

    /// From each cue out to the next cue in; one that is not closed lasts as long as it says, or to the end.
    void readCues() {
        std::vector<VELHLSLine> cues = document_.linesNamed("EXT-X-CUE-OUT");
        const std::vector<VELHLSLine> ends = document_.linesNamed("EXT-X-CUE-IN");
        for (std::size_t index = 0; index < cues.size(); ++index) {
            const VELHLSLine& cue = cues[index];
            const std::size_t next = index + 1 < cues.size() ? cues[index + 1].number : SIZE_MAX;
            const auto end =
                std::upper_bound(ends.begin(), ends.end(), cue.number,
                                 [](std::size_t line, const VELHLSLine& each) { return line < each.number; });
            Break found = {timeAt(cue.number), 0.0, cue.number, 1, "cue " + cut(cue.value, mostTextBytes)};
            found.isOpen = end == ends.end() || end->number > next;
            found.end = found.isOpen ? std::min(openEnd(cue, found.start),
                                                next == SIZE_MAX ? timeline_.duration : timeAt(next))
                                     : timeAt(end->number);
            timeline_.breaks.push_back(std::move(found));
        }
    }

    [[nodiscard]] double openEnd(const VELHLSLine& cue, double start) const {
        const std::string_view word = cue.value.substr(cue.value.find('=') + 1);
        const auto duration = VELHLSSyntax::readDecimalFloatingPoint(word);
        return duration ? std::min(timeline_.duration, bounded(start + *duration)) : timeline_.duration;
    }

    /// All tags with one ID make one range.
    void readDateRanges() {
        struct Range {
            std::size_t line = 0;
            std::optional<std::int64_t> start;
            std::optional<std::int64_t> end;
            std::optional<double> duration;
        };
        std::map<std::string_view, Range> ranges;
        std::vector<std::string_view> order;
        for (const VELHLSLine& line : document_.linesNamed("EXT-X-DATERANGE")) {
            std::string_view id;
            Range said = {line.number, {}, {}, {}};
            for (const VELHLSAttribute& attribute : line.attributes()) {
                if (attribute.name == "ID") id = attribute.value;
                if (attribute.name == "START-DATE") said.start = momentOf(attribute.value);
                if (attribute.name == "END-DATE") said.end = momentOf(attribute.value);
                const bool isDuration =
                    attribute.name == "DURATION" || (attribute.name == "PLANNED-DURATION" && !said.duration);
                if (isDuration) said.duration = VELHLSSyntax::readDecimalFloatingPoint(attribute.value);
            }
            const auto [place, isNew] = ranges.emplace(id, said);
            if (isNew) order.push_back(id);
            if (!place->second.end) place->second.end = said.end;
            if (!place->second.duration) place->second.duration = said.duration;
        }
        for (const std::string_view id : order) {
            const Range& range = ranges.at(id);
            if (!range.start || dates_.empty()) {
                ++timeline_.unplacedRanges;
                continue;
            }
            Break found = {timeOf(*range.start), 0.0, range.line, 1, "date range " + cut(id, mostTextBytes)};
            found.isOpen = !range.end && !range.duration;
            found.end = range.end        ? timeOf(*range.end)
                        : range.duration ? bounded(found.start + *range.duration)
                                         : found.start;
            if (found.start > timeline_.duration || found.end < 0.0) continue;
            found.start = std::max(0.0, found.start);
            found.end = std::clamp(found.end, found.start, timeline_.duration);
            timeline_.breaks.push_back(std::move(found));
        }
    }

    static std::optional<std::int64_t> momentOf(std::string_view text) {
        const auto date = VELHLSSyntax::readDateTime(text);
        return date ? std::optional(date->microseconds) : std::nullopt;
    }

    /// Where a date stands: counted from the last segment that does not begin after it.
    [[nodiscard]] double timeOf(std::int64_t date) const {
        auto after =
            std::upper_bound(dates_.begin(), dates_.end(), date,
                             [](std::int64_t moment, const auto& each) { return moment < each.first; });
        if (after != dates_.begin()) --after;
        constexpr double microsecondsOfSecond = 1e6;
        return bounded(after->second + (static_cast<double>(date) - static_cast<double>(after->first)) /
                                           microsecondsOfSecond);
    }

    Timeline& timeline_;
    const VELHLSDocument& document_;
    std::size_t mostColumns_;
    std::vector<std::size_t> lastLines_;
    std::vector<double> durations_;
    /// Of the segments that have one: the date, and the seconds since the start.
    std::vector<std::pair<std::int64_t, double>> dates_;
};

/// At most mostMarks of them: of more, the first of each of as many parts of the time.
template <typename Item, typename TimeOf>
std::vector<Item> thinned(const std::vector<Item>& items, double duration, TimeOf timeOf) {
    if (items.size() <= mostMarks) return items;
    std::map<std::size_t, Item> parts;
    for (const Item& item : items) {
        const double part = duration > 0.0 ? timeOf(item) / duration * static_cast<double>(mostMarks) : 0.0;
        const auto place =
            static_cast<std::size_t>(std::clamp(part, 0.0, static_cast<double>(mostMarks - 1)));
        const auto [kept, isNew] = parts.emplace(place, item);
        if (!isNew) kept->second.count += item.count;
    }
    std::vector<Item> kept;
    for (auto& [place, item] : parts)
        kept.push_back(std::move(item));
    return kept;
}

std::vector<Event> eventsOf(const Timeline& timeline) {
    constexpr std::size_t mostBytes = 80;
    const auto times = [](std::size_t count) { return count == 1 ? "" : " \xC3\x97 " + grouped(count); };
    std::vector<Event> events;
    for (const MarkKind kind : markKinds) {
        for (const Mark& mark : shownMarks(timeline, kind))
            events.push_back({mark.time, mark.line, std::string(nameOf(kind)) + times(mark.count),
                              mark.count == 1 ? cut(mark.value, mostBytes) : ""});
    }
    for (const Break& each : shownBreaks(timeline))
        events.push_back({each.start, each.line, cut(each.name, mostBytes) + times(each.count),
                          "to " + timeText(each.end) + (each.isOpen ? ", without an end" : "")});
    std::stable_sort(events.begin(), events.end(),
                     [](const Event& left, const Event& right) { return left.time < right.time; });
    return events;
}

bool areAllDated(const std::vector<Timeline>& timelines) {
    return std::all_of(timelines.begin(), timelines.end(),
                       [](const Timeline& timeline) { return timeline.firstDate.has_value(); });
}

bool areAllLive(const std::vector<Timeline>& timelines) {
    return std::all_of(timelines.begin(), timelines.end(), [](const Timeline& timeline) {
        return !timeline.hasEnded && !timeline.starts.empty();
    });
}

AxisOrigin alignByDates(std::vector<Timeline>& timelines) {
    std::int64_t earliest = *timelines.front().firstDate;
    for (const Timeline& timeline : timelines)
        earliest = std::min(earliest, *timeline.firstDate);
    for (Timeline& timeline : timelines)
        timeline.offset =
            bounded((static_cast<double>(*timeline.firstDate) - static_cast<double>(earliest)) / 1e6);
    return AxisOrigin::Dates;
}

/// The one that reaches back furthest tells where the others begin, if it reaches to them.
AxisOrigin alignBySequence(std::vector<Timeline>& timelines) {
    const auto first = std::min_element(
        timelines.begin(), timelines.end(),
        [](const auto& left, const auto& right) { return left.firstSequence < right.firstSequence; });
    const std::vector<double> starts = first->starts;
    const std::uint64_t firstSequence = first->firstSequence;
    for (Timeline& timeline : timelines) {
        const std::uint64_t place = timeline.firstSequence - firstSequence;
        if (place >= starts.size()) {
            for (Timeline& each : timelines)
                each.offset = 0.0;
            return AxisOrigin::FirstSegments;
        }
        timeline.offset = starts[place];
    }
    return AxisOrigin::Sequence;
}

}  // namespace

std::string_view nameOf(MarkKind kind) {
    constexpr std::array<std::string_view, markKinds.size()> names = {"discontinuity", "key", "map", "date",
                                                                      "gap"};
    return names.at(static_cast<std::size_t>(kind));
}

Timeline readTimeline(const std::string& path, const VELHLSDocument& document, std::size_t timelinesOfAxis) {
    Timeline timeline;
    timeline.path = path;
    TimelineReader(timeline, document, timelinesOfAxis).read();
    timeline.events = eventsOf(timeline);
    return timeline;
}

std::vector<Mark> shownMarks(const Timeline& timeline, MarkKind kind) {
    return thinned(timeline.of(kind), timeline.duration, [](const Mark& mark) { return mark.time; });
}

std::vector<Break> shownBreaks(const Timeline& timeline) {
    return thinned(timeline.breaks, timeline.duration, [](const Break& each) { return each.start; });
}

std::size_t firstWithEventsOf(const std::vector<Timeline>& timelines, std::size_t place) {
    const auto isSame = [](const Event& left, const Event& right) {
        return timeText(left.time) == timeText(right.time) && left.what == right.what &&
               left.value == right.value;
    };
    const std::vector<Event>& events = timelines[place].events;
    for (std::size_t other = 0; other < std::min(place, mostTimelines); ++other) {
        const std::vector<Event>& others = timelines[other].events;
        if (std::equal(events.begin(), events.end(), others.begin(), others.end(), isSame)) return other;
    }
    return place;
}

AxisOrigin align(std::vector<Timeline>& timelines) {
    if (timelines.empty()) return AxisOrigin::FirstSegments;
    if (areAllDated(timelines)) return alignByDates(timelines);
    return timelines.size() > 1 && areAllLive(timelines) ? alignBySequence(timelines)
                                                         : AxisOrigin::FirstSegments;
}

}  // namespace tool::report
