#include "tool/report/TimelineTables.h"

#include <algorithm>

#include "tool/Describe.h"
#include "tool/report/HtmlTable.h"
#include "tool/report/Limits.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

Cell nameCell(const std::string& path, const PageNames& names) {
    Markup content;
    names.appendName(content, path);
    return {content};
}

Cell countCell(std::size_t count) {
    return count == 0 ? Cell("") : numberCell(grouped(count));
}

void appendPlaylists(Markup& page, const TimeChart& chart, const PageNames& names) {
    HtmlTable table("Media playlists",
                    {"Playlist", "What it is", "Segments", "Duration", "Target", "Shortest", "Longest",
                     "Too long", "First number", "Ended", "Discontinuities", "Keys", "Maps", "Dates", "Gaps",
                     "Ad breaks and date ranges", "Date ranges without a place"});
    for (const Timeline& timeline : chart.timelines) {
        std::vector<Cell> cells = {nameCell(timeline.path, names),
                                   timeline.role,
                                   numberCell(grouped(timeline.segmentCount)),
                                   numberCell(timeText(timeline.duration)),
                                   timeline.targetDuration
                                       ? numberCell(decimal(*timeline.targetDuration) + " s")
                                       : Cell("missing", "missing"),
                                   numberCell(decimal(timeline.shortest) + " s"),
                                   numberCell(decimal(timeline.longest) + " s"),
                                   countCell(timeline.tooLong),
                                   numberCell(grouped(timeline.firstSequence)),
                                   timeline.hasEnded ? "yes" : "no"};
        for (const MarkKind kind : markKinds)
            cells.push_back(countCell(timeline.of(kind).size()));
        cells.push_back(countCell(timeline.breaks.size()));
        cells.push_back(countCell(timeline.unplacedRanges));
        table.addRow(std::move(cells));
    }
    table.appendTo(page);
}

void appendDifferences(Markup& page, const TimeChart& chart, const PageNames& names) {
    if (chart.timelines.size() < 2) return;
    const std::string reference = chart.names[referenceOf(chart.timelines)];
    if (chart.differences.empty()) {
        page.leaf("p", "No playlist differs from " + reference +
                           " in discontinuities, gaps, ad breaks or their ends, nor a variant in keys, maps "
                           "or where segments begin.");
        return;
    }
    HtmlTable table("Differences from " + reference, {"Playlist", "Time", "What", "More of these"});
    for (const Difference& difference : chart.differences)
        table.addRow({nameCell(chart.timelines[difference.timeline].path, names),
                      numberCell(timeText(difference.time)), difference.what, countCell(difference.more)});
    table.appendTo(page);
}

/// Playlists that have the same events are listed together, with the lines of the first.
void appendEvents(Markup& page, const TimeChart& chart, std::size_t place, const PageNames& names) {
    const Timeline& timeline = chart.timelines[place];
    if (timeline.events.empty() || firstWithEventsOf(chart.timelines, place) != place) return;
    std::size_t others = 0;
    for (std::size_t other = place + 1; other < chart.timelines.size(); ++other)
        others += firstWithEventsOf(chart.timelines, other) == place ? 1 : 0;
    const std::string name =
        chart.names[place] + (others == 0 ? "" : " and " + numberOf(others, "playlist") + " with the same");
    HtmlTable table("Events of " + name, {"Time", "Line", "What", "Value"});
    for (const Event& event : timeline.events) {
        Markup line;
        names.appendLine(line, timeline.path, event.line, std::to_string(event.line));
        table.addRow({numberCell(timeText(event.time)), Cell(line), event.what, event.value});
    }
    page.open("details").leaf("summary", numberOf(timeline.events.size(), "event") + " of " + name);
    table.appendTo(page);
    page.close().verbatim("\n");
}

}  // namespace

void appendTimelines(Markup& page, const std::string& id, const TimeChart& chart, const PageNames& names) {
    if (const auto drawing = drawTimelines(chart)) {
        appendFigure(page, id, *drawing);
        page.leaf("p", axisNote(chart), {{"class", "soft"}});
    }
    if (chart.timelines.size() > mostTimelines)
        page.leaf("p", grouped(chart.timelines.size() - mostTimelines) + " more timelines are not drawn.",
                  {{"class", "soft"}});
    appendDifferences(page, chart, names);
    appendPlaylists(page, chart, names);
    for (std::size_t place = 0; place < std::min(chart.timelines.size(), mostTimelines); ++place)
        appendEvents(page, chart, place, names);
}

}  // namespace tool::report
