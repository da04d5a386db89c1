#include "tool/report/LadderTables.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "tool/Describe.h"
#include "tool/report/HtmlTable.h"
#include "tool/report/LadderDrawing.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

Cell lineCell(const Ladder& ladder, std::size_t line, const std::string& text, const PageNames& names) {
    Markup content;
    names.appendLine(content, ladder.path, line, text);
    return {content};
}

Cell linkCell(const Link& link, const PageNames& names) {
    Markup content;
    if (!link.path.empty() && names.has(link.path)) {
        content.leaf("a", link.uri, {{"href", "#" + names.sourceAnchor(link.path)}});
    } else {
        content.text(link.uri);
    }
    return {content};
}

Cell whyNotCell(const Link& link) {
    return {link.whyNot, link.path.empty() ? "missing" : ""};
}

Cell rateCell(std::optional<double> rate) {
    return rate ? numberCell(rateText(*rate)) : Cell("missing", "missing");
}

Cell measuredCell(const Rung& rung, double VELHLSPresentation::MeasuredRates::*rate) {
    if (!rung.measured) return {""};
    return numberCell(rateText(*rung.measured.*rate) + (rung.measured->isWhole ? "" : " or more"));
}

std::string groupsOf(const Rung& rung) {
    std::vector<std::string> groups;
    for (const auto& [type, id] : rung.groups)
        groups.push_back(std::string(type).append(" ").append(id));
    return joined(groups);
}

Cell ratioCell(const std::vector<Rung>& rungs, std::size_t place) {
    const auto ratio = ratioToNext(rungs, place);
    return ratio ? numberCell(decimal(std::round(*ratio * 100) / 100)) : Cell("");
}

void appendVariants(Markup& page, const Ladder& ladder, const PageNames& names) {
    HtmlTable table("Variants", {"Line", "RESOLUTION", "FRAME-RATE", "CODECS", "VIDEO-RANGE", "BANDWIDTH",
                                 "AVERAGE-BANDWIDTH", "Times next", "Measured peak", "Measured average",
                                 "Groups", "URI", "Not read"});
    for (std::size_t place = 0; place < ladder.rungs.size(); ++place) {
        const Rung& rung = ladder.rungs[place];
        // Neither sound alone nor I-frames have all of these.
        const bool hasPicture = rung.resolution || rung.frameRate || !rung.codecs;
        table.addRow(
            {lineCell(ladder, rung.line, std::to_string(rung.line) + (rung.isIFrames ? ", I-frames" : ""),
                      names),
             hasPicture ? neededCell(rung.resolution) : Cell(""),
             hasPicture && !rung.isIFrames ? neededCell(rung.frameRate) : optionalCell(rung.frameRate),
             neededCell(rung.codecs), optionalCell(rung.videoRange), rateCell(rung.peak),
             rateCell(rung.average), ratioCell(ladder.rungs, place),
             measuredCell(rung, &VELHLSPresentation::MeasuredRates::peak),
             measuredCell(rung, &VELHLSPresentation::MeasuredRates::average), groupsOf(rung),
             linkCell(rung.link, names), whyNotCell(rung.link)});
    }
    table.appendTo(page);
}

void appendRenditions(Markup& page, const Ladder& ladder, const PageNames& names) {
    HtmlTable table("Renditions", {"Line", "TYPE", "GROUP-ID", "NAME", "LANGUAGE", "CHANNELS", "Flags",
                                   "CHARACTERISTICS", "URI", "Not read"});
    for (const Rendition& rendition : ladder.renditions) {
        const bool needsChannels = rendition.type == "AUDIO";
        table.addRow({lineCell(ladder, rendition.line, std::to_string(rendition.line), names), rendition.type,
                      rendition.group, neededCell(rendition.name), neededCell(rendition.language),
                      needsChannels ? neededCell(rendition.channels) : optionalCell(rendition.channels),
                      rendition.flags, rendition.characteristics,
                      rendition.link ? linkCell(*rendition.link, names) : Cell("in the variants", "soft"),
                      rendition.link ? whyNotCell(*rendition.link) : Cell("")});
    }
    table.appendTo(page);
}

void appendGroups(Markup& page, const Ladder& ladder) {
    HtmlTable table("Groups", {"Group", "Renditions", "Languages", "Variants that use it"});
    for (const Group& group : ladder.groups) {
        table.addRow({group.type + " " + group.id,
                      group.members == 0 ? Cell("none", "missing") : numberCell(grouped(group.members)),
                      joined(group.languages),
                      group.users == 0 ? Cell("none", "missing") : numberCell(grouped(group.users))});
    }
    table.appendTo(page);
}

/// Which languages are heard, and which can be read.
void appendLanguages(Markup& page, const Ladder& ladder) {
    std::map<std::string, std::map<std::string, std::size_t>> byLanguage;
    for (const Rendition& rendition : ladder.renditions) {
        if (rendition.language) ++byLanguage[*rendition.language][rendition.type];
    }
    HtmlTable table("Languages", {"LANGUAGE", "AUDIO", "SUBTITLES", "CLOSED-CAPTIONS", "VIDEO"});
    for (const auto& [language, counts] : byLanguage) {
        std::vector<Cell> cells = {language};
        for (const char* const type : {"AUDIO", "SUBTITLES", "CLOSED-CAPTIONS", "VIDEO"}) {
            const auto count = counts.find(type);
            cells.push_back(count == counts.end() ? Cell("none", "soft")
                                                  : numberCell(grouped(count->second)));
        }
        table.addRow(std::move(cells));
    }
    table.appendTo(page);
}

}  // namespace

void appendLadder(Markup& page, const std::string& id, const Ladder& ladder, const PageNames& names) {
    if (const auto drawing = drawLadder(ladder, names.nameOf(ladder.path))) appendFigure(page, id, *drawing);
    appendVariants(page, ladder, names);
    appendRenditions(page, ladder, names);
    appendGroups(page, ladder);
    appendLanguages(page, ladder);
}

}  // namespace tool::report
