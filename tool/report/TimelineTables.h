#pragma once

#include "tool/report/Markup.h"
#include "tool/report/PageNames.h"
#include "tool/report/TimelineDrawing.h"

namespace tool::report {

/// The picture of the timelines, which has the id, and its tables: playlists, differences, events.
void appendTimelines(Markup& page, const std::string& id, const TimeChart& chart, const PageNames& names);

}  // namespace tool::report
