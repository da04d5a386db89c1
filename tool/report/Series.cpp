#include "tool/report/Series.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "tool/CompareReport.h"
#include "tool/report/HtmlTable.h"
#include "tool/report/Limits.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

/// The number in "segment 268433", as VELHLSChange names segments.
std::optional<std::uint64_t> segmentOf(std::string_view path) {
    constexpr std::string_view before = "segment ";
    if (path.substr(0, before.size()) != before) return std::nullopt;
    return VELHLSSyntax::readDecimalInteger(path.substr(before.size()));
}

std::vector<Run> runsOf(const std::set<std::uint64_t>& numbers) {
    std::vector<Run> runs;
    for (const std::uint64_t number : numbers) {
        const bool follows = !runs.empty() && runs.back().first + runs.back().count == number;
        if (follows) {
            ++runs.back().count;
        } else {
            runs.push_back({number, 1});
        }
    }
    return runs;
}

void takeChanges(Version& version, const VELHLSComparison& comparison) {
    std::set<std::uint64_t> came;
    std::set<std::uint64_t> went;
    std::set<std::uint64_t> changed;
    for (const VELHLSChange& change : comparison.changes) {
        ++version.changeCount;
        if (version.changes.size() < mostChanges) version.changes.push_back(changeAsText(change));
        const auto number = segmentOf(change.path);
        if (!number) continue;
        const bool isWhole = change.what.empty();
        if (isWhole && change.kind == VELHLSChange::Added)
            came.insert(*number);
        else if (isWhole && change.kind == VELHLSChange::Removed)
            went.insert(*number);
        else
            changed.insert(*number);
    }
    version.came = runsOf(came);
    version.went = runsOf(went);
    version.changed = runsOf(changed);
}

std::uint64_t countOf(const std::vector<Run>& runs) {
    std::uint64_t count = 0;
    for (const Run& run : runs)
        count += run.count;
    return count;
}

std::string spanOf(const Run& run) {
    if (run.count == 0) return {};
    return run.count == 1 ? grouped(run.first)
                          : grouped(run.first) + " to " + grouped(run.first + run.count - 1);
}

std::string spansOf(const std::vector<Run>& runs) {
    std::string text;
    for (std::size_t place = 0; place < std::min(runs.size(), mostPlaces); ++place)
        text += (text.empty() ? "" : ", ") + spanOf(runs[place]);
    if (runs.size() > mostPlaces) text += " and others, " + grouped(countOf(runs)) + " in all";
    return text;
}

constexpr double plotLeft = 250.0;
constexpr double plotRight = drawingWidth - 6;
constexpr double headHeight = 44.0;
constexpr double rowHeight = 18.0;

/// From the first number to the one after the last, of what came, stayed and went.
class SequenceAxis {
  public:
    explicit SequenceAxis(const std::vector<Version>& versions) {
        for (const Version& version : versions) {
            take(version.segments);
            for (const auto* const runs : {&version.came, &version.went}) {
                for (const Run& run : *runs)
                    take(run);
            }
        }
    }

    [[nodiscard]] bool isEmpty() const { return end_ <= first_; }

    [[nodiscard]] double at(std::uint64_t number) const {
        const double part = (static_cast<double>(number) - first_) / (end_ - first_);
        return plotLeft + std::clamp(part, 0.0, 1.0) * (plotRight - plotLeft);
    }

    [[nodiscard]] std::vector<std::uint64_t> ticks() const {
        constexpr double most = 8.0;
        double step = 1.0;
        for (int index = 0; (end_ - first_) / step > most; ++index)
            step *= index % 3 == 1 ? 2.5 : 2.0;
        std::vector<std::uint64_t> ticks;
        while (ticks.size() <= static_cast<std::size_t>(most)) {
            const double tick = first_ + step * static_cast<double>(ticks.size());
            if (tick >= end_) break;
            ticks.push_back(static_cast<std::uint64_t>(tick));
        }
        return ticks;
    }

  private:
    void take(const Run& run) {
        if (run.count == 0) return;
        const auto first = static_cast<double>(run.first);
        const double end = first + static_cast<double>(run.count);
        first_ = isEmpty() ? first : std::min(first_, first);
        end_ = std::max(end_, end);
    }

    double first_ = 0.0;
    double end_ = 0.0;
};

void drawRuns(Markup& out, const SequenceAxis& axis, std::string_view style, const std::vector<Run>& runs,
              double middle, double height, std::string_view word) {
    constexpr std::size_t mostRuns = 50;
    for (std::size_t place = 0; place < std::min(runs.size(), mostRuns); ++place) {
        const Run& run = runs[place];
        const double left = axis.at(run.first);
        const double width = std::max(2.0, axis.at(run.first + run.count) - left - 1);
        drawRectangle(out, style, left, middle - height / 2, width, height,
                      std::string(word) + ": " + spanOf(run));
    }
}

void drawVersion(Markup& out, const SequenceAxis& axis, const Version& version, const std::string& name,
                 double top) {
    const double middle = top + rowHeight / 2;
    drawText(out, "label", 0, middle + 4, cut(name, 36) + (version.hasEnded ? ", ended" : ""));
    if (version.segments.count > 0) drawRuns(out, axis, "kept", {version.segments}, middle, 8, "there");
    drawRuns(out, axis, "went", version.went, middle, 6, "went");
    drawRuns(out, axis, "came", version.came, middle, 13, "came");
    for (const Run& run : version.changed) {
        const double x = (axis.at(run.first) + axis.at(run.first + run.count)) / 2;
        drawPath(out, "changed", signPath(Sign::Cross, x, middle), "changed: " + spanOf(run));
    }
}

}  // namespace

Version readVersionRow(const std::string& path, const VELHLSDocument& document,
                       const VELHLSComparison* comparison) {
    Version version;
    version.path = path;
    const VELHLSStructure structure(document);
    if (document.kind() == VELHLSDocument::Media && structure.segmentCount() > 0)
        version.segments = {structure.segment(0).mediaSequence, structure.segmentCount()};
    version.hasEnded = !document.linesNamed("EXT-X-ENDLIST").empty();
    if (comparison != nullptr) takeChanges(version, *comparison);
    return version;
}

std::optional<Drawing> drawSeries(const std::vector<Version>& versions, const PageNames& names) {
    const SequenceAxis axis(versions);
    if (axis.isEmpty()) return std::nullopt;
    Drawing drawing;
    drawing.height = headHeight + rowHeight * static_cast<double>(versions.size()) + 4;
    Markup& out = drawing.content;
    drawLegend(out, 12,
               {{Sign::Bar, "kept", "segments"},
                {Sign::Bar, "came", "came"},
                {Sign::Bar, "went", "went"},
                {Sign::Cross, "changed", "changed"}});
    for (const std::uint64_t tick : axis.ticks()) {
        const double x = axis.at(tick);
        drawText(out, "small", x, 34, grouped(tick));
        drawLine(out, "grid", x, 38, x, drawing.height);
    }
    double top = headHeight;
    for (const Version& version : versions) {
        drawVersion(out, axis, version, names.nameOf(version.path), top);
        top += rowHeight;
    }
    drawing.title = "Versions of " + cut(names.nameOf(versions.back().path), mostTextBytes);
    drawing.description =
        numberOf(versions.size(), "version") +
        ", each with its segments over their media sequence numbers: those that came, went and "
        "changed since the one before. The table of versions has the same.";
    return drawing;
}

void appendSeries(Markup& page, const std::string& id, const std::vector<Version>& versions,
                  std::size_t versionsLeftOut, const PageNames& names) {
    if (const auto drawing = drawSeries(versions, names)) appendFigure(page, id, *drawing);
    if (versionsLeftOut > 0)
        page.leaf("p", numberOf(versionsLeftOut, "version") + " before these not shown.",
                  {{"class", "soft"}});
    HtmlTable table("Versions",
                    {"Version", "Segments", "Ended", "Came", "Went", "Changed", "All changes", "Changes"});
    for (const Version& version : versions) {
        Markup name;
        names.appendName(name, version.path);
        std::string changes;
        for (const std::string& change : version.changes)
            changes += (changes.empty() ? "" : "; ") + change;
        if (version.changeCount > version.changes.size())
            changes += "; and " + grouped(version.changeCount - version.changes.size()) + " more";
        table.addRow({Cell(name), spanOf(version.segments), version.hasEnded ? "yes" : "",
                      spansOf(version.came), spansOf(version.went), spansOf(version.changed),
                      numberCell(grouped(version.changeCount)), changes});
    }
    table.appendTo(page);
}

}  // namespace tool::report
