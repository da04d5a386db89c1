#include "tool/FindingText.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "tool/CharacterPlace.h"
#include "tool/InputFile.h"
#include "tool/Printable.h"
#include "tool/Process.h"
#include "tool/Utf8.h"

namespace tool {
namespace {

constexpr std::string_view bold = "\x1B[1m";
constexpr std::string_view plain = "\x1B[0m";
constexpr std::string_view green = "\x1B[1;32m";

std::string_view colourOf(VELHLSFinding::Severity severity) {
    if (severity == VELHLSFinding::Error) return "\x1B[1;31m";
    return severity == VELHLSFinding::Warning ? "\x1B[1;35m" : "\x1B[1;36m";
}

std::string coloured(std::string_view text, std::string_view colour, bool inColour) {
    if (!inColour) return std::string(text);
    return std::string(colour) + std::string(text) + std::string(plain);
}

std::string lineOf(const std::string& name, const VELHLSFinding& finding) {
    return name + ":" + std::to_string(finding.line) + ":";
}

std::string placeOf(const std::string& name, const VELHLSFinding& finding) {
    return lineOf(name, finding) + std::to_string(finding.column) + ":";
}

/// The part of the line around the place, which may be far to the right of a long one.
struct Window {
    std::string_view before;
    std::string_view place;
    std::string_view after;
    bool isCut = false;
};

Window windowOf(std::string_view line, const VELHLSFinding& finding) {
    constexpr std::size_t mostBefore = 60;
    constexpr std::size_t mostPlace = 60;
    constexpr std::size_t mostAfter = 40;
    const std::size_t position = std::min(finding.column - 1, line.size());
    std::size_t start = position > mostBefore ? position - mostBefore : 0;
    while (start < position && utf8::continues(line[start]))
        ++start;
    Window window;
    window.isCut = start != 0;
    window.before = line.substr(start, position - start);
    window.place = line.substr(position, std::min(finding.length, mostPlace));
    std::string_view after = line.substr(position + window.place.size());
    if (!after.empty() && after.back() == '\r') after.remove_suffix(1);
    window.after = after.substr(0, mostAfter);
    return window;
}

std::string suppressedNote(const std::string& name, const VELHLSFinding& finding) {
    if (finding.suppressed == 0) return {};
    return name + ": note: " + std::to_string(finding.suppressed) + " more of [" + finding.ruleId +
           "] are not listed\n";
}

/// The other places that a finding speaks of, a line each.
std::string relatedNotes(const std::string& name, const VELHLSFinding& finding) {
    std::string text;
    for (const VELHLSRelatedPlace& place : finding.related) {
        text += (place.uri.empty() ? name : nameInMessages(place.uri)) + ":" + std::to_string(place.line) +
                ":" + std::to_string(place.column) + ": note: " + printable(place.message) + "\n";
    }
    return text;
}

/// What mends a finding, a line each.
std::string fixNotes(const std::string& name, const VELHLSFinding& finding) {
    std::string text;
    for (const VELHLSFix& fix : finding.fixes) {
        text += placeOf(name, finding) + " fix: " + std::string(VELHLSFix::textOf(fix.fixClass)) + ": " +
                printable(fix.sentence) + "\n";
    }
    return text;
}

/// The text that the first fix makes of the place, where it changes no other.
std::string proposedText(const VELHLSFinding& finding, std::string_view line, std::size_t start) {
    if (finding.fixes.empty() || finding.fixes.front().edits.size() != 1) return {};
    const VELHLSEdit& edit = finding.fixes.front().edits.front();
    const bool isInLine = edit.offset >= start && edit.offset + edit.length <= start + line.size();
    const bool isShort = edit.replacement.size() <= 120;
    const bool isLine = edit.replacement.find('\n') != std::string::npos;
    if (!isInLine || !isShort || isLine) return {};
    constexpr std::size_t most = 160;
    std::string text(line);
    text.replace(edit.offset - start, edit.length, edit.replacement);
    while (!text.empty() && text.back() == '\r')
        text.pop_back();
    return text.size() > most ? std::string() : printable(text);
}

std::string describeAt(const std::string& place, const std::string& name, const VELHLSFinding& finding) {
    std::string text = place + " " + std::string(VELHLSFinding::textOf(finding.severity)) + ": " +
                       printable(finding.message) + " [" + finding.ruleId + "]";
    const std::string note = suppressedNote(name, finding);
    if (!note.empty()) text += "\n" + note.substr(0, note.size() - 1);
    return text;
}

std::string describeAllWithLines(const std::string& name, std::string_view text,
                                 const std::vector<VELHLSFinding>& findings, bool inColour) {
    CharacterPlaces lines(text);
    std::string report;
    for (const VELHLSFinding& finding : findings) {
        const std::string_view line = lines.lineNumbered(finding.line);
        report += describeWithLine(name, finding, line, inColour);
        const auto start = static_cast<std::size_t>(line.data() - text.data());
        const std::string proposed = proposedText(finding, line, start);
        if (!proposed.empty()) report += "    " + coloured(proposed, green, inColour) + "\n";
        report += fixNotes(name, finding);
    }
    return report;
}

/// NO_COLOR holds when it is set and not empty, as users of other commands expect.
bool isColourUnwanted() {
    const char* const noColour = std::getenv("NO_COLOR");
    return noColour != nullptr && noColour[0] != '\0';
}

}  // namespace

std::string describe(const std::string& name, const VELHLSFinding& finding) {
    return describeAt(placeOf(name, finding), name, finding);
}

std::string describeRejection(const std::string& name, const VELHLSReason& reason) {
    return name + ":" + std::to_string(reason.line) + ":" + std::to_string(reason.column) +
           ": rejected: " + printable(reason.message) + " [" + reason.ruleId + "]";
}

std::string describeByLine(const std::string& name, const VELHLSFinding& finding) {
    return describeAt(lineOf(name, finding), name, finding);
}

std::string describeWithLine(const std::string& name, const VELHLSFinding& finding, std::string_view line,
                             bool inColour) {
    const std::string_view colour = colourOf(finding.severity);
    std::string text =
        coloured(placeOf(name, finding), bold, inColour) + " " +
        coloured(std::string(VELHLSFinding::textOf(finding.severity)) + ":", colour, inColour) + " " +
        printable(finding.message) + " [" + finding.ruleId + "]\n";
    const Window window = windowOf(line, finding);
    const std::string before = (window.isCut ? "..." : "") + printable(window.before);
    const std::string place = printable(window.place);
    const std::size_t width = std::max<std::size_t>(1, utf8::countCharacters(place));
    text += "    " + before + coloured(place, colour, inColour) + printable(window.after) + "\n";
    text += "    " + std::string(utf8::countCharacters(before), ' ') +
            coloured("^" + std::string(width - 1, '~'), green, inColour) + "\n";
    return text + relatedNotes(name, finding) + suppressedNote(name, finding);
}

FindingStyle findingStyleOf(const std::string& colour) {
    if (colour == "always") return {true, true};
    const bool isTerminal = isOutputATerminal();
    return {isTerminal, isTerminal && colour == "auto" && !isColourUnwanted()};
}

std::string describeAll(const std::string& name, std::string_view text,
                        const std::vector<VELHLSFinding>& findings, FindingStyle style) {
    if (style.hasLines) return describeAllWithLines(name, text, findings, style.inColour);
    std::string report;
    for (const VELHLSFinding& finding : findings)
        report += describe(name, finding) + "\n" + relatedNotes(name, finding) + fixNotes(name, finding);
    return report;
}

}  // namespace tool
