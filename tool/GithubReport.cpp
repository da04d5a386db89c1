#include "tool/GithubReport.h"

#include <string_view>

#include "tool/CharacterPlace.h"
#include "tool/Escaping.h"
#include "tool/InputFile.h"
#include "tool/OutputFile.h"
#include "tool/Printable.h"

namespace tool {
namespace {

/// The characters that mean something there as "%3A", as the workflow undoes it.
std::string escaped(std::string_view text, std::string_view special) {
    return percentEncoded(
        text, [special](char character) { return special.find(character) == std::string_view::npos; });
}

/// The name that the file has, as far as a log can show it.
std::string propertyOf(std::string_view value) {
    return printable(escaped(value, "%\r\n:,"));
}

/// In a message a colon or a comma means nothing, and would stay escaped.
std::string messageOf(std::string_view text) {
    return escaped(printable(text), "%\r\n");
}

/// Standard input is no file that could be annotated.
std::string fileProperty(const std::string& path) {
    return path == standardInput ? "" : "file=" + propertyOf(path) + ",";
}

std::string_view commandOf(VELHLSFinding::Severity severity) {
    return severity == VELHLSFinding::Note ? "notice" : VELHLSFinding::textOf(severity);
}

std::string suppressedNote(const VELHLSFinding& finding) {
    if (finding.suppressed == 0) return {};
    return " (" + std::to_string(finding.suppressed) + " more are not listed)";
}

/// The first of the other places that a finding speaks of.
std::string relatedNote(const std::string& path, const VELHLSFinding& finding) {
    if (finding.related.empty()) return {};
    const VELHLSRelatedPlace& place = finding.related.front();
    const std::string& file = place.uri.empty() ? path : place.uri;
    return "; " + file + ":" + std::to_string(place.line) + ": " + place.message;
}

/// What is annotated.
struct Note {
    std::string_view command;
    std::size_t line;
    CharacterPlace place;
    std::string title;
    std::string message;
};

std::string annotationOf(const std::string& path, const Note& note) {
    return "::" + std::string(note.command) + " " + fileProperty(path) + "line=" + std::to_string(note.line) +
           ",col=" + std::to_string(note.place.column) +
           ",endColumn=" + std::to_string(note.place.column + note.place.length) +
           ",title=" + propertyOf(note.title) + "::" + messageOf(note.message) + "\n";
}

Note noteOf(const std::string& path, const VELHLSFinding& finding, CharacterPlaces& places) {
    return {commandOf(finding.severity), finding.line,
            places.of(finding.line, finding.column, finding.length), finding.ruleId,
            finding.message + relatedNote(path, finding) + suppressedNote(finding)};
}

Note noteOf(const VELHLSReason& reason, CharacterPlaces& places) {
    return {"notice", reason.line, places.of(reason.line, reason.column, reason.length),
            "rejected: " + reason.ruleId, reason.message};
}

std::string failureAnnotation(const CheckedFile& file) {
    return "::error " + fileProperty(file.path) + "title=not read::" + messageOf(file.failure) + "\n";
}

}  // namespace

void GithubReport::add(const CheckedFile& file) {
    if (!file.failure.empty()) return writeToStandardOutput(failureAnnotation(file));
    CharacterPlaces places(file.text);
    std::string report;
    for (const VELHLSFinding& finding : file.findings)
        report += annotationOf(file.path, noteOf(file.path, finding, places));
    if (file.rejected) report += annotationOf(file.path, noteOf(*file.rejected, places));
    writeToStandardOutput(report);
}

void GithubReport::end(const CheckSummary& /*summary*/) {}

}  // namespace tool
