#include "tool/report/Source.h"

#include <algorithm>
#include <set>
#include <utility>

#include "tool/Printable.h"
#include "tool/UnifiedDiff.h"
#include "tool/Utf8.h"
#include "tool/report/Limits.h"
#include "tool/report/Words.h"

namespace tool::report {
namespace {

std::size_t widthOf(std::string_view text) {
    return utf8::countCharacters(printable(text));
}

/// The lines of a unified difference that go and come.
FixNote fixNoteOf(const VELHLSDocument& document, const VELHLSFix& fix) {
    FixNote note;
    note.fixClass = VELHLSFix::textOf(fix.fixClass);
    note.sentence = fix.sentence;
    const std::string difference = unifiedDiff(document, fix.edits, "");
    std::size_t headLines = 2;
    for (std::size_t start = 0; start < difference.size();) {
        const std::size_t end = std::min(difference.find('\n', start), difference.size());
        const std::string_view line = std::string_view(difference).substr(start, end - start);
        start = end + 1;
        if (headLines > 0) {
            --headLines;
            continue;
        }
        if (line.empty() || (line.front() != '-' && line.front() != '+')) continue;
        if (note.difference.size() == mostDiffLines) {
            ++note.more;
        } else {
            note.difference.push_back(cut(line, mostTextBytes));
        }
    }
    return note;
}

class SourceReader {
  public:
    SourceReader(Source& source, const VELHLSDocument& document) : source_(source), document_(document) {
        source_.lineCount = document.lineCount();
    }

    void read(const std::vector<VELHLSFinding>& findings, const std::vector<std::size_t>& linked) {
        for (const VELHLSFinding& finding : findings)
            take(finding);
        showAround(1, 0, (source_.lineCount <= linesOfShort ? linesOfShort : linesAtStart) - 1);
        showAround(source_.lineCount, linesAtEnd - 1, 0);
        for (const std::size_t line : linked)
            showAround(line, 0, 0);
        for (const std::size_t number : shown_)
            source_.lines.push_back({number, textOf(number)});
    }

  private:
    void showAround(std::size_t line, std::size_t before, std::size_t after) {
        const std::size_t last = std::min(line + after, source_.lineCount);
        for (std::size_t number = line > before ? line - before : 1; number <= last; ++number)
            shown_.insert(number);
    }

    /// Of a line with a finding beyond its start the part around the first one.
    [[nodiscard]] std::string textOf(std::size_t number) const {
        const std::string_view text = document_.line(number).text;
        const std::size_t start = startOf(number);
        return (start == 0 ? "" : "\xE2\x80\xA6") + cut(text.substr(start), mostTextBytes);
    }

    /// Where the shown part of a line begins.
    [[nodiscard]] std::size_t startOf(std::size_t number) const {
        const auto found = starts_.find(number);
        return found == starts_.end() ? 0 : found->second;
    }

    void chooseStart(const VELHLSFinding& finding, std::string_view text) {
        constexpr std::size_t mostBefore = mostTextBytes / 2;
        std::size_t start = 0;
        if (finding.column + finding.length > mostTextBytes && finding.column > mostBefore)
            start = std::min(finding.column - 1 - mostBefore, text.size());
        while (start > 0 && start < text.size() && utf8::continues(text[start]))
            --start;
        starts_.emplace(finding.line, start);
    }

    void take(const VELHLSFinding& finding) {
        RuleCount& rule = source_.rules[{finding.profile, finding.ruleId}];
        rule.severity = finding.severity;
        rule.count += 1 + finding.suppressed;
        if (rule.lines.size() == mostNotesOfRule) return;
        rule.lines.push_back(finding.line);
        showAround(finding.line, linesAround, linesAround);
        source_.notes.push_back(noteOf(finding));
    }

    [[nodiscard]] Note noteOf(const VELHLSFinding& finding) {
        Note note;
        note.severity = finding.severity;
        note.ruleId = finding.ruleId;
        note.profile = finding.profile;
        note.line = finding.line;
        note.message = finding.message;
        placeCaret(note, finding);
        for (const VELHLSRelatedPlace& place : finding.related) {
            if (note.related.size() < mostPlaces)
                note.related.push_back(
                    {place.uri == source_.path ? "" : place.uri, place.line, place.message});
        }
        for (const VELHLSFix& fix : finding.fixes)
            note.fixes.push_back(fixNoteOf(document_, fix));
        return note;
    }

    /// A text without any line may have a finding on its first.
    void placeCaret(Note& note, const VELHLSFinding& finding) {
        if (finding.line > source_.lineCount) return;
        const std::string_view text = document_.line(finding.line).text;
        chooseStart(finding, text);
        const std::size_t start = startOf(finding.line);
        const std::string_view window = text.substr(start, mostTextBytes);
        const std::size_t before = finding.column - 1 > start ? finding.column - 1 - start : 0;
        note.indent = widthOf(window.substr(0, before)) + (start == 0 ? 0 : 1);
        if (before < window.size())
            note.width = std::max<std::size_t>(1, widthOf(window.substr(before, finding.length)));
    }

    Source& source_;
    const VELHLSDocument& document_;
    std::set<std::size_t> shown_;
    std::map<std::size_t, std::size_t> starts_;
};

}  // namespace

Source readSource(const std::string& path, const VELHLSDocument& document,
                  const std::vector<VELHLSFinding>& findings, const std::vector<std::size_t>& linked) {
    Source source;
    source.path = path;
    SourceReader(source, document).read(findings, linked);
    return source;
}

}  // namespace tool::report
