#include "tool/CompareReport.h"
#include "tool/FindingText.h"
#include "tool/InputFile.h"
#include "tool/Printable.h"

namespace tool {
namespace {

constexpr std::string_view arrow = " \xE2\x86\x92 ";

/// A text that is long is cut.
std::string excerptOf(const std::string& text) {
    constexpr std::size_t longest = 120;
    if (text.size() <= longest) return printable(text);
    const std::string quoted = quotedExcerpt(text);
    return quoted.substr(1, quoted.size() - 2);
}

std::string textAfter(const std::string& before, const std::string& text) {
    return text.empty() ? before : before + " " + excerptOf(text);
}

std::string relatedAsText(const std::string& path, const VELHLSRelatedPlace& place) {
    return nameInMessages(path) + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) +
           ": note: " + printable(place.message) + "\n";
}

std::string counted(std::size_t count, const std::string& word) {
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

}  // namespace

std::string changeAsText(const VELHLSChange& change) {
    const std::string path = excerptOf(change.path);
    const std::string what = excerptOf(change.what);
    const std::string& text = change.kind == VELHLSChange::Removed ? change.oldText : change.newText;
    const std::string sign = change.kind == VELHLSChange::Removed ? "- " : "+ ";
    if (change.kind == VELHLSChange::Changed) {
        return path + ":" + (what.empty() ? "" : " " + what) + " " + excerptOf(change.oldText) +
               std::string(arrow) + excerptOf(change.newText);
    }
    if (what.empty()) return sign + textAfter(text.empty() ? path : path + ":", text);
    // That there is one more or one less says all.
    return path + ": " + sign + (what == "discontinuity" ? what : textAfter(what, text));
}

std::string comparisonAsText(const ComparedPair& pair, Changes changes) {
    std::string text;
    for (const VELHLSChange& change : pair.comparison.changes) {
        if (changes == Changes::Listed) text += changeAsText(change) + "\n";
    }
    for (const VELHLSFinding& finding : pair.comparison.findings) {
        text += describe(nameInMessages(pair.newPath), finding) + "\n";
        for (const VELHLSRelatedPlace& place : finding.related)
            text += relatedAsText(pair.oldPath, place);
    }
    return text;
}

std::string summaryAsText(const SeriesSummary& summary) {
    std::string text = counted(summary.versions, "version") + ": " + std::to_string(summary.changed) +
                       " changed, " + std::to_string(summary.unchanged) + " unchanged, " +
                       std::to_string(summary.forbidden) + " with forbidden changes";
    if (summary.failed > 0) text += ", " + std::to_string(summary.failed) + " not compared";
    text += "; " + counted(summary.errors, "error") + ", " + counted(summary.warnings, "warning") + ", " +
            counted(summary.notes, "note") + "\n";
    for (const auto& [rule, count] : summary.rules)
        text += "  " + rule + ": " + std::to_string(count) + "\n";
    return text;
}

}  // namespace tool
