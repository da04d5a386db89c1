#include "tool/report/Page.h"

#include <algorithm>
#include <utility>

#include "tool/Failure.h"
#include "tool/InputFile.h"
#include "tool/report/FindingTables.h"
#include "tool/report/LadderDrawing.h"
#include "tool/report/LadderTables.h"
#include "tool/report/Limits.h"
#include "tool/report/PageNames.h"
#include "tool/report/Styles.h"
#include "tool/report/TimelineDrawing.h"
#include "tool/report/TimelineTables.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

TimeChart chartOf(const Part& part, const PageNames& names) {
    TimeChart chart;
    chart.timelines = part.timelines;
    chart.origin = align(chart.timelines);
    for (const Timeline& timeline : chart.timelines)
        chart.names.push_back(names.nameOf(timeline.path));
    chart.differences = differencesOf(chart.timelines);
    return chart;
}

std::string titleOf(const Page& page, const PageNames& names) {
    if (!page.versions.empty()) {
        return cut(names.nameOf(page.versions.back().path), mostTextBytes) + ", " +
               numberOf(page.versions.size() + page.versionsLeftOut, "version");
    }
    if (page.sources.empty()) return "nothing";
    const std::string first = cut(names.nameOf(page.sources.front().path), mostTextBytes);
    const std::size_t others = page.sources.size() - 1;
    return others == 0 ? first : first + " and " + numberOf(others, "other playlist");
}

class PageWriter {
  public:
    explicit PageWriter(const Page& page) : page_(page), names_(page.sources) {}

    std::string write() {
        out_.verbatim("<!DOCTYPE html>\n").open("html", {{"lang", "en"}});
        writeHead();
        out_.open("body").open("header");
        out_.leaf("h1", titleOf(page_, names_)).leaf("p", summary());
        writeNavigation();
        out_.close().open("main").verbatim("\n");
        writeVersions();
        writeParts();
        writeFindings();
        out_.close().open("footer");
        out_.leaf("p", "Written by velhls " VELHLS_TOOL_VERSION
                       ". Control characters, and bytes that are not UTF-8, are shown as \\xNN.");
        return out_.close().close().close().string() + "\n";
    }

  private:
    void writeHead() {
        const std::string policy = "default-src 'none'; style-src '" + std::string(pictureStyle.hash) +
                                   "' '" + std::string(pageStyle.hash) +
                                   "'; base-uri 'none'; form-action 'none'";
        out_.open("head").empty("meta", {{"charset", "utf-8"}}).verbatim("\n");
        out_.empty("meta", {{"http-equiv", "Content-Security-Policy"}, {"content", policy}}).verbatim("\n");
        out_.empty("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}});
        out_.empty("meta", {{"name", "referrer"}, {"content", "no-referrer"}}).verbatim("\n");
        out_.leaf("title", "velhls report: " + titleOf(page_, names_)).verbatim("\n");
        out_.open("style").verbatim(pictureStyle.text).close();
        out_.open("style").verbatim(pageStyle.text).close().close().verbatim("\n");
    }

    [[nodiscard]] std::string summary() const {
        std::string text = page_.versions.empty()
                               ? numberOf(page_.sources.size(), "playlist")
                               : numberOf(page_.versions.size() + page_.versionsLeftOut, "version");
        for (const auto severity : {VELHLSFinding::Error, VELHLSFinding::Warning, VELHLSFinding::Note})
            text += ", " + numberOf(page_.summary.counts.of(severity), VELHLSFinding::textOf(severity));
        if (page_.summary.filesRejected > 0)
            text += "; the library rejects " + grouped(page_.summary.filesRejected);
        return text + ".";
    }

    [[nodiscard]] bool hasFindings() const {
        return std::any_of(page_.sources.begin(), page_.sources.end(),
                           [](const Source& source) { return !source.rules.empty(); });
    }

    void writeNavigation() {
        out_.open("nav", {{"aria-label", "Parts of this page"}}).open("ul");
        const auto item = [this](const std::string& anchor, const std::string& word) {
            out_.open("li").leaf("a", word, {{"href", "#" + anchor}}).close();
        };
        if (!page_.versions.empty()) item("versions", "Versions");
        for (std::size_t place = 0; place < page_.parts.size(); ++place) {
            if (page_.parts[place].ladder) item(ladderAnchor(place), "Ladder" + numbered(place));
            if (!page_.parts[place].timelines.empty())
                item(timelineAnchor(place), "Timeline" + numbered(place));
        }
        item("findings", "Findings");
        item("sources", "Playlists");
        if (hasFindings()) item("rules", "Rules");
        out_.close().close();
    }

    /// Only several parts need numbers.
    [[nodiscard]] std::string numbered(std::size_t place) const {
        return page_.parts.size() == 1 ? "" : " " + std::to_string(place + 1);
    }
    static std::string ladderAnchor(std::size_t place) { return "ladder" + std::to_string(place + 1); }
    static std::string timelineAnchor(std::size_t place) { return "timeline" + std::to_string(place + 1); }

    void writeVersions() {
        if (page_.versions.empty()) return;
        beginSection("versions", "Versions");
        appendSeries(out_, "versions.picture", page_.versions, page_.versionsLeftOut, names_);
        out_.close();
    }

    void writeParts() {
        for (std::size_t place = 0; place < page_.parts.size(); ++place) {
            const Part& part = page_.parts[place];
            if (part.ladder) {
                beginSection(ladderAnchor(place), "Ladder" + numbered(place));
                appendLadder(out_, ladderAnchor(place) + ".picture", *part.ladder, names_);
                out_.close();
            }
            if (!part.timelines.empty()) {
                beginSection(timelineAnchor(place), "Timeline" + numbered(place));
                appendTimelines(out_, timelineAnchor(place) + ".picture", chartOf(part, names_), names_);
                out_.close();
            }
        }
    }

    void beginSection(const std::string& anchor, const std::string& heading) {
        out_.open("section", {{"id", anchor}}).leaf("h2", heading).verbatim("\n");
    }

    void writeFindings() {
        beginSection("findings", "Findings");
        if (!hasFindings()) out_.leaf("p", "Nothing was found that is shown.");
        appendFindings(out_, page_.sources, names_);
        out_.close();
        beginSection("sources", "Playlists");
        appendSources(out_, page_.sources, names_);
        out_.close();
        if (!hasFindings()) return;
        beginSection("rules", "Rules");
        appendRules(out_, page_.sources);
        out_.close();
    }

    const Page& page_;
    PageNames names_;
    Markup out_;
};

}  // namespace

std::string pageAsHtml(const Page& page) {
    return PageWriter(page).write();
}

std::string pageAsSvg(const Page& page) {
    const PageNames names(page.sources);
    std::vector<Drawing> drawings;
    const auto add = [&drawings](std::optional<Drawing> drawing) {
        if (drawing) drawings.push_back(std::move(*drawing));
    };
    if (!page.versions.empty()) add(drawSeries(page.versions, names));
    for (const Part& part : page.parts) {
        if (part.ladder) add(drawLadder(*part.ladder, names.nameOf(part.ladder->path)));
        add(drawTimelines(chartOf(part, names)));
    }
    if (drawings.empty()) {
        const std::string name = page.sources.empty() ? "velhls" : nameInMessages(page.sources.front().path);
        throw Failure(rejected,
                      name + ": error: there is nothing to draw: no variant with a bit rate, and no segment");
    }
    return standaloneSvg(drawings);
}

}  // namespace tool::report
