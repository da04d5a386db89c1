#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "velhls/VELHLSCheck.h"

namespace tool::report {

/// What a media playlist says of a moment.
enum class MarkKind : std::uint8_t { Discontinuity, Key, Map, Date, Gap };
inline constexpr std::array<MarkKind, 5> markKinds = {MarkKind::Discontinuity, MarkKind::Key, MarkKind::Map,
                                                      MarkKind::Date, MarkKind::Gap};

/// "discontinuity", "key", "map", "date" or "gap".
[[nodiscard]] std::string_view nameOf(MarkKind kind);

/// A tag at the start of a segment, or several of one kind that lie near each other.
struct Mark {
    /// Seconds since the start of the playlist.
    double time = 0.0;
    /// The line of the (first) tag.
    std::size_t line = 0;
    std::size_t count = 1;
    /// What follows the tag's name.
    std::string value;
};

/// A stretch of time that cue markers or a date range name, or several that lie near each other.
struct Break {
    double start = 0.0;
    double end = 0.0;
    std::size_t line = 0;
    std::size_t count = 1;
    /// "cue 30", "date range ad-1".
    std::string name;
    /// Whether nothing tells its end.
    bool isOpen = false;
};

/// What is listed of a mark or a break.
struct Event {
    double time = 0.0;
    std::size_t line = 0;
    /// "key", "cue 30", "discontinuity × 3".
    std::string what;
    std::string value;
};

/// The segments that one bar stands for.
struct Column {
    double start = 0.0;
    double duration = 0.0;
    std::size_t segments = 0;
    double longest = 0.0;
    bool hasGap = false;
};

/// What a media playlist says of its time.
struct Timeline {
    /// The playlist, as messages name it.
    std::string path;
    /// What the master playlist names it for: "variant, 1280x720", "AUDIO, English"; empty where there is none.
    std::string role;
    bool isVariant = false;
    /// Where the first segment stands on the axis: seconds.
    double offset = 0.0;
    std::optional<std::int64_t> firstDate;
    std::string firstDateText;

    bool hasEnded = false;
    std::uint64_t firstSequence = 0;
    std::optional<double> targetDuration;
    double duration = 0.0;
    double shortest = 0.0;
    double longest = 0.0;
    std::size_t segmentCount = 0;
    /// How many segments are longer than the target duration, rounded.
    std::size_t tooLong = 0;

    /// Where segments begin.
    std::vector<double> starts;
    /// All of a kind, in the order of their lines.
    std::array<std::vector<Mark>, markKinds.size()> marks;
    std::vector<Break> breaks;
    /// Date ranges that cannot be placed, since the playlist has no dates.
    std::size_t unplacedRanges = 0;

    std::vector<Column> columns;
    /// All marks and breaks that are shown, in the order of their times.
    std::vector<Event> events;

    [[nodiscard]] const std::vector<Mark>& of(MarkKind kind) const {
        return marks[static_cast<std::size_t>(kind)];
    }
    [[nodiscard]] bool isSummed() const { return columns.size() < segmentCount; }
};

/// Reads the timeline of a media playlist that shares its axis with so many, itself among them. Takes time linear in the text but for
/// sorting.
[[nodiscard]] Timeline readTimeline(const std::string& path, const VELHLSDocument& document,
                                    std::size_t timelinesOfAxis);

/// The marks that are drawn and listed: at most mostMarks, of more each stands for those of one part of the time.
[[nodiscard]] std::vector<Mark> shownMarks(const Timeline& timeline, MarkKind kind);
[[nodiscard]] std::vector<Break> shownBreaks(const Timeline& timeline);

/// The place of the first timeline that has the same events at the same times, its own if no other has: they are listed once.
[[nodiscard]] std::size_t firstWithEventsOf(const std::vector<Timeline>& timelines, std::size_t place);

/// What the times of an axis are counted from.
enum class AxisOrigin : std::uint8_t {
    FirstSegments,  ///< all playlists begin at 0
    Dates,          ///< the earliest date of all
    Sequence        ///< segments with one media sequence number stand at one place
};

/// Puts the timelines on one axis: by their dates where all have some, and live ones by their media sequence numbers.
AxisOrigin align(std::vector<Timeline>& timelines);

}  // namespace tool::report
