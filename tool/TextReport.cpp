#include "tool/TextReport.h"

#include <string>
#include <string_view>

#include "tool/OutputFile.h"

namespace tool {
namespace {

std::string counted(std::size_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

std::string describeCounts(const FindingCounts& counts, VELHLSFinding::Severity leastShown) {
    std::string text;
    for (const auto severity : {VELHLSFinding::Error, VELHLSFinding::Warning, VELHLSFinding::Note}) {
        if (counts.of(severity) == 0) continue;
        text += (text.empty() ? "" : ", ") + counted(counts.of(severity), VELHLSFinding::textOf(severity));
        if (severity < leastShown) text += " not shown";
    }
    return text.empty() ? "nothing found" : text;
}

std::string describe(const CheckSummary& summary, VELHLSFinding::Severity leastShown) {
    std::string text =
        counted(summary.filesRead, "file") + " checked: " + describeCounts(summary.counts, leastShown);
    if (summary.filesRejected != 0) text += ", " + std::to_string(summary.filesRejected) + " rejected";
    if (summary.filesNotRead != 0) text += ", " + counted(summary.filesNotRead, "input") + " not read";
    if (summary.linksLeftOut != 0) text += ", " + counted(summary.linksLeftOut, "link") + " not followed";
    if (summary.urisOfNetwork != 0) text += ", " + counted(summary.urisOfNetwork, "URI") + " of the network";
    if (summary.urisWithVariables != 0)
        text += ", " + counted(summary.urisWithVariables, "URI") + " with variables";
    const bool hasOthers = summary.urisOfNetwork + summary.urisWithVariables != 0;
    return text + (hasOthers ? " not followed\n" : "\n");
}

}  // namespace

TextReport::TextReport(const std::string& colour, VELHLSFinding::Severity leastShown)
    : findingStyle_(findingStyleOf(colour)), leastShown_(leastShown) {}

void TextReport::add(const CheckedFile& file) {
    std::string text = describeAll(file.name, file.text, file.findings, findingStyle_);
    if (file.rejected) text += describeRejection(file.name, *file.rejected) + "\n";
    writeToStandardOutput(text);
}

void TextReport::end(const CheckSummary& summary) {
    writeToStandardOutput(describe(summary, leastShown_));
}

}  // namespace tool
