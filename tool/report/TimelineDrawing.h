#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tool/report/Differences.h"
#include "tool/report/Drawing.h"
#include "tool/report/Timeline.h"

namespace tool::report {

/// Media playlists on one axis of time.
struct TimeChart {
    std::vector<Timeline> timelines;
    /// As a page names each.
    std::vector<std::string> names;
    AxisOrigin origin = AxisOrigin::FirstSegments;
    std::vector<Difference> differences;
};

/// "128 segments, 12:48, target 6 s, longest 6.006 s".
[[nodiscard]] std::string summaryOf(const Timeline& timeline);

/// "Times are counted from the earliest date, …".
[[nodiscard]] std::string axisNote(const TimeChart& chart);

/// The timelines one below the other. Nothing where no playlist has a segment.
[[nodiscard]] std::optional<Drawing> drawTimelines(const TimeChart& chart);

}  // namespace tool::report
