#include "tool/report/TimelineDrawing.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "tool/Describe.h"
#include "tool/report/Limits.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

constexpr double plotLeft = 8.0;
constexpr double plotRight = drawingWidth - 10;
constexpr double headHeight = 46.0;
constexpr double labelHeight = 18.0;
constexpr double marksHeight = 16.0;
constexpr double barsHeight = 40.0;
constexpr double breaksHeight = 16.0;
constexpr double rowHeight = labelHeight + marksHeight + barsHeight + breaksHeight + 12;

struct MarkStyle {
    Sign sign;
    std::string_view style;
};

MarkStyle styleOf(MarkKind kind) {
    switch (kind) {
        case MarkKind::Discontinuity:
            return {Sign::TriangleDown, "discontinuity"};
        case MarkKind::Key:
            return {Sign::Diamond, "key"};
        case MarkKind::Map:
            return {Sign::Square, "map"};
        case MarkKind::Date:
            return {Sign::Circle, "date"};
        case MarkKind::Gap:
            return {Sign::Cross, "gap"};
    }
    return {Sign::Circle, "date"};
}

/// A difference between two places in a path, which are rounded first: so no error adds up.
std::string step(double from, double to) {
    return pixels(std::round(to * 10) / 10 - std::round(from * 10) / 10);
}

class TimeAxis {
  public:
    explicit TimeAxis(const std::vector<Timeline>& timelines) {
        for (const Timeline& timeline : timelines)
            end_ = std::max(end_, timeline.offset + timeline.duration);
    }

    [[nodiscard]] double at(double time) const {
        return end_ > 0.0 ? plotLeft + std::clamp(time / end_, 0.0, 1.0) * (plotRight - plotLeft) : plotLeft;
    }

    /// At most ten, at round times.
    [[nodiscard]] std::vector<double> ticks() const {
        constexpr double most = 10.0;
        double step = 86400.0;
        for (const double each : {1.0, 2.0, 5.0, 10.0, 15.0, 30.0, 60.0, 120.0, 300.0, 600.0, 900.0, 1800.0,
                                  3600.0, 7200.0, 14400.0, 43200.0, 86400.0}) {
            if (end_ / each > most) continue;
            step = each;
            break;
        }
        while (end_ / step > most)
            step *= 2;
        std::vector<double> ticks;
        for (int place = 0; place * step <= end_ && place <= static_cast<int>(most); ++place)
            ticks.push_back(place * step);
        return ticks;
    }

  private:
    double end_ = 0.0;
};

class TimelineDrawer {
  public:
    TimelineDrawer(Markup& out, const TimeAxis& axis, const Timeline& timeline, double top)
        : out_(out),
          axis_(axis),
          timeline_(timeline),
          marks_(top + labelHeight + marksHeight / 2),
          base_(top + labelHeight + marksHeight + barsHeight) {
        tallest_ = std::max(timeline.longest, timeline.targetDuration.value_or(0.0));
    }

    void draw(const std::string& name, double labelY) {
        drawText(out_, "name", plotLeft, labelY,
                 cut(name, 48) + (timeline_.role.empty() ? "" : ": " + cut(timeline_.role, 40)));
        drawText(out_, "small end", plotRight, labelY, summaryOf(timeline_));
        drawBars();
        for (const MarkKind kind : markKinds)
            drawMarks(kind);
        drawBreaks();
    }

    void drawDifference(const Difference& difference) {
        drawPath(out_, "differs", signPath(Sign::TriangleUp, axis_.at(difference.time), base_ + 6),
                 timeText(difference.time) + ": " + difference.what);
    }

  private:
    [[nodiscard]] double xOf(double time) const { return axis_.at(timeline_.offset + time); }

    [[nodiscard]] double heightOf(double duration) const {
        return tallest_ > 0.0 ? std::max(1.0, duration / tallest_ * barsHeight) : 1.0;
    }

    [[nodiscard]] bool isOver(const Column& column) const {
        return timeline_.targetDuration && std::round(column.longest) > *timeline_.targetDuration;
    }

    void drawBars() {
        drawLine(out_, "grid", xOf(0.0), base_, xOf(timeline_.duration), base_);
        drawColumns("bar", [this](const Column& column) { return !column.hasGap && !isOver(column); });
        drawColumns("over", [this](const Column& column) { return !column.hasGap && isOver(column); });
        drawColumns("hollow", [](const Column& column) { return column.hasGap; });
        if (!timeline_.targetDuration || *timeline_.targetDuration <= 0.0) return;
        const double y = base_ - heightOf(*timeline_.targetDuration);
        drawLine(out_, "target", xOf(0.0), y, xOf(timeline_.duration), y);
    }

    /// One path for all bars of a style, each a part of its own.
    template <typename Claim>
    void drawColumns(std::string_view style, Claim claim) {
        std::string path;
        double before = 0.0;
        for (const Column& column : timeline_.columns) {
            if (!claim(column)) continue;
            const double left = xOf(column.start);
            const double end = xOf(column.start + column.duration);
            const double right = std::max(left + 0.4, end - std::min(1.0, (end - left) / 5));
            path += path.empty() ? "M" + pixels(left) + " " + pixels(base_) : "m" + step(before, left) + " 0";
            const double height = std::round(heightOf(column.longest));
            path += "v-" + pixels(height) + "h" + step(left, right) + "v" + pixels(height);
            before = right;
        }
        if (!path.empty()) drawPath(out_, style, path);
    }

    void drawMarks(MarkKind kind) {
        const auto [sign, style] = styleOf(kind);
        for (const Mark& mark : shownMarks(timeline_, kind)) {
            const double x = xOf(mark.time);
            if (kind == MarkKind::Discontinuity) drawLine(out_, "seam", x, marks_, x, base_);
            const double free = beside(x);
            const std::string times = mark.count == 1 ? "" : " \xC3\x97 " + grouped(mark.count);
            drawPath(out_, style, signPath(sign, free, marks_),
                     timeText(mark.time) + ": " + std::string(nameOf(kind)) + times);
        }
    }

    /// Marks of one moment stand side by side, as far as that keeps them near it.
    double beside(double x) {
        constexpr double width = 10.0;
        constexpr int mostSteps = 4;
        for (int step = 0; step < mostSteps; ++step) {
            const double free = x + step * width;
            if (taken_.insert(std::lround(free / width)).second) return free;
        }
        return x;
    }

    void drawBreaks() {
        constexpr double perCharacter = 6.2;
        for (const Break& each : shownBreaks(timeline_)) {
            const double left = xOf(each.start);
            const double width = std::max(3.0, xOf(each.end) - left);
            drawRectangle(out_, "break", left, base_ + 2, width, breaksHeight - 3,
                          each.name + ": " + timeText(each.start) + " to " + timeText(each.end));
            const auto room = static_cast<std::size_t>(std::max(0.0, width / perCharacter - 1));
            if (room >= 6) drawText(out_, "small", left + 3, base_ + breaksHeight - 4, cut(each.name, room));
        }
    }

    Markup& out_;
    const TimeAxis& axis_;
    const Timeline& timeline_;
    double marks_;
    double base_;
    double tallest_ = 0.0;
    /// Where marks are, in widths of one.
    std::set<long> taken_;
};

/// Only what is there is explained.
std::vector<LegendEntry> legendOf(const TimeChart& chart) {
    const auto any = [&chart](auto claim) {
        return std::any_of(chart.timelines.begin(), chart.timelines.end(), claim);
    };
    std::vector<LegendEntry> legend = {{Sign::Bar, "bar", "segment"}};
    if (any([](const Timeline& each) { return each.isSummed(); }))
        legend.front().word = "longest of several segments";
    if (any([](const Timeline& each) { return each.tooLong > 0; }))
        legend.push_back({Sign::Bar, "over", "longer than the target"});
    for (const MarkKind kind : markKinds) {
        const auto [sign, style] = styleOf(kind);
        if (any([kind](const Timeline& each) { return !each.of(kind).empty(); }))
            legend.push_back({sign, style, nameOf(kind)});
    }
    if (any([](const Timeline& each) { return !each.breaks.empty(); }))
        legend.push_back({Sign::Bar, "break", "ad break or date range"});
    if (!chart.differences.empty()) legend.push_back({Sign::TriangleUp, "differs", "differs"});
    return legend;
}

}  // namespace

std::string summaryOf(const Timeline& timeline) {
    std::string text = numberOf(timeline.segmentCount, "segment") + ", " + timeText(timeline.duration);
    if (timeline.targetDuration) text += ", target " + decimal(*timeline.targetDuration) + " s";
    if (timeline.segmentCount > 0)
        text +=
            ", " +
            (decimal(timeline.shortest) == decimal(timeline.longest) ? "each "
                                                                     : decimal(timeline.shortest) + " to ") +
            decimal(timeline.longest) + " s";
    if (timeline.tooLong > 0) text += ", " + grouped(timeline.tooLong) + " too long";
    return text + (timeline.hasEnded ? "" : ", live");
}

std::string axisNote(const TimeChart& chart) {
    std::string text;
    if (chart.origin == AxisOrigin::Dates) {
        const auto first = std::find_if(chart.timelines.begin(), chart.timelines.end(),
                                        [](const Timeline& each) { return each.offset == 0.0; });
        text = "Times are counted from the earliest date of all, " + cut(first->firstDateText, 40) + ".";
    } else if (chart.origin == AxisOrigin::Sequence) {
        text =
            "Segments with one media sequence number stand below each other; times are counted from the "
            "first of all.";
    } else {
        text = "Times are counted from the first segment of each playlist.";
    }
    std::size_t perBar = 1;
    for (const Timeline& timeline : chart.timelines) {
        if (!timeline.columns.empty()) perBar = std::max(perBar, timeline.columns.front().segments);
    }
    if (perBar > 1)
        text +=
            " A bar is as high as the longest of up to " + numberOf(perBar, "segment") + " that it sums up.";
    return text;
}

std::optional<Drawing> drawTimelines(const TimeChart& chart) {
    const TimeAxis axis(chart.timelines);
    const std::size_t count = std::min(chart.timelines.size(), mostTimelines);
    const bool hasSegments = std::any_of(chart.timelines.begin(), chart.timelines.end(),
                                         [](const Timeline& each) { return each.segmentCount > 0; });
    if (!hasSegments) return std::nullopt;
    Drawing drawing;
    drawing.height = headHeight + static_cast<double>(count) * rowHeight;
    Markup& out = drawing.content;
    drawLegend(out, 12, legendOf(chart));
    for (const double tick : axis.ticks()) {
        const double x = axis.at(tick);
        const bool isAtEnd = x > plotRight - 24;
        drawText(out, tick == 0.0 ? "small" : isAtEnd ? "small end" : "small middle", x, 36, timeText(tick));
        drawLine(out, "grid", x, headHeight - 6, x, drawing.height);
    }
    for (std::size_t place = 0; place < count; ++place) {
        const double top = headHeight + static_cast<double>(place) * rowHeight;
        TimelineDrawer drawer(out, axis, chart.timelines[place], top);
        drawer.draw(chart.names[place], top + 13);
        for (const Difference& difference : chart.differences) {
            if (difference.timeline == place) drawer.drawDifference(difference);
        }
        out.verbatim("\n");
    }
    drawing.title =
        "Timeline of " + (chart.timelines.size() == 1 ? cut(chart.names.front(), mostTextBytes)
                                                      : numberOf(chart.timelines.size(), "media playlist"));
    drawing.description =
        "Segments as bars as high as they last, below them ad breaks and date ranges, above them "
        "discontinuities, keys, maps, dates and gaps. The tables of events have the same.";
    return drawing;
}

}  // namespace tool::report
