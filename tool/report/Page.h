#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tool/Report.h"
#include "tool/report/Ladder.h"
#include "tool/report/Series.h"
#include "tool/report/Source.h"
#include "tool/report/Timeline.h"

namespace tool::report {

/// What belongs together: a master playlist and the media playlists that came with it, or media playlists alone.
struct Part {
    std::optional<Ladder> ladder;
    std::vector<Timeline> timelines;
};

/// All that a page shows.
struct Page {
    /// Of a series the versions, the last mostVersions, and how many there are before these.
    std::vector<Version> versions;
    std::size_t versionsLeftOut = 0;
    std::vector<Part> parts;
    /// Of all playlists, in the order in which they were checked.
    std::vector<Source> sources;
    CheckSummary summary;
};

/// The page as one file of HTML that loads nothing and runs nothing.
[[nodiscard]] std::string pageAsHtml(const Page& page);

/// The ladders and timelines as one SVG. Throws a Failure when there is nothing to draw.
[[nodiscard]] std::string pageAsSvg(const Page& page);

}  // namespace tool::report
