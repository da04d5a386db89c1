#include "tool/UnifiedDiff.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace tool {
namespace {

constexpr std::size_t contextLines = 3;

/// Lines of the document that other lines replace. Lines are counted from 0 here.
struct Change {
    std::size_t first;
    std::size_t end;
    /// Each with its end.
    std::vector<std::string> lines;
};

/// The text cut after each line feed.
std::vector<std::string> cutIntoLines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t feed = text.find('\n', start);
        const std::size_t end = feed == std::string::npos ? text.size() : feed + 1;
        lines.push_back(text.substr(start, end - start));
        start = end;
    }
    return lines;
}

/// Turns edits into changes of whole lines, and these into hunks.
class Diff {
  public:
    Diff(const VELHLSDocument& document, std::vector<VELHLSEdit> edits)
        : document_(document), edits_(std::move(edits)) {
        const auto place = [](const VELHLSEdit& edit) { return std::pair(edit.offset, edit.length > 0); };
        std::stable_sort(edits_.begin(), edits_.end(), [&](const VELHLSEdit& left, const VELHLSEdit& right) {
            return place(left) < place(right);
        });
    }

    std::string text() {
        findChanges();
        std::string text;
        std::ptrdiff_t moved = 0;
        for (std::size_t first = 0; first < changes_.size();) {
            std::size_t end = first + 1;
            while (end < changes_.size() && changes_[end].first <= changes_[end - 1].end + 2 * contextLines)
                ++end;
            appendHunk(text, first, end, moved);
            first = end;
        }
        return text;
    }

  private:
    [[nodiscard]] std::string lineText(std::size_t place) const {
        const VELHLSLine line = document_.line(place + 1);
        return std::string(line.text).append(line.ending);
    }

    [[nodiscard]] std::size_t startOf(std::size_t place) const {
        return place < document_.lineCount() ? document_.line(place + 1).offset : document_.text().size();
    }

    /// The lines that an edit touches: none where it inserts whole lines before one.
    [[nodiscard]] std::pair<std::size_t, std::size_t> linesOf(const VELHLSEdit& edit) const {
        const std::size_t offset = edit.offset;
        const std::string& text = document_.text();
        const bool beginsLine = offset == 0 || text[offset - 1] == '\n';
        const std::size_t first =
            beginsLine && offset == text.size() ? document_.lineCount() : document_.lineAt(offset) - 1;
        if (edit.length == 0) {
            const bool isWhole = beginsLine && !edit.replacement.empty() && edit.replacement.back() == '\n';
            return {first, isWhole ? first : std::min(first + 1, document_.lineCount())};
        }
        const bool keepsEnd = edit.replacement.empty() ? !beginsLine : edit.replacement.back() != '\n';
        const std::size_t last = document_.lineAt(edit.offset + edit.length - 1);
        const bool takesNext = keepsEnd && text[edit.offset + edit.length - 1] == '\n';
        return {first, std::min(takesNext ? last + 1 : last, document_.lineCount())};
    }

    void findChanges() {
        for (std::size_t first = 0; first < edits_.size();) {
            auto [start, end] = linesOf(edits_[first]);
            std::size_t after = first + 1;
            // Edits that touch one line, or lie at one place, make one change.
            for (; after < edits_.size(); ++after) {
                const auto [nextStart, nextEnd] = linesOf(edits_[after]);
                if (nextStart > end || (nextStart == end && startOf(end) != edits_[after].offset)) break;
                end = std::max(end, nextEnd);
            }
            addChange(first, after, start, end);
            first = after;
        }
    }

    void addChange(std::size_t firstEdit, std::size_t endEdit, std::size_t start, std::size_t end) {
        const std::string& text = document_.text();
        std::string changed;
        std::size_t done = startOf(start);
        for (std::size_t index = firstEdit; index < endEdit; ++index) {
            changed.append(text, done, edits_[index].offset - done).append(edits_[index].replacement);
            done = edits_[index].offset + edits_[index].length;
        }
        changed.append(text, done, startOf(end) - done);
        Change change = {start, end, cutIntoLines(changed)};
        trim(change);
        if (change.first == change.end && change.lines.empty()) return;
        if (changes_.empty() || changes_.back().end != change.first) return changes_.push_back(change);
        Change& before = changes_.back();
        before.end = change.end;
        before.lines.insert(before.lines.end(), change.lines.begin(), change.lines.end());
    }

    /// Leaves out the lines at both ends that are the same.
    void trim(Change& change) const {
        std::vector<std::string>& lines = change.lines;
        std::size_t same = 0;
        while (same < lines.size() && change.first < change.end && lines[same] == lineText(change.first)) {
            ++same;
            ++change.first;
        }
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(same));
        while (!lines.empty() && change.first < change.end && lines.back() == lineText(change.end - 1)) {
            lines.pop_back();
            --change.end;
        }
    }

    static void appendLine(std::string& text, char mark, const std::string& line) {
        text.append(1, mark).append(line);
        if (line.back() != '\n') text += "\n\\ No newline at end of file\n";
    }

    /// "3,4": the first line counted from 1, and how many. Of no lines, the line before.
    static std::string range(std::size_t first, std::size_t count) {
        const std::string start = std::to_string(count == 0 ? first : first + 1);
        return count == 1 ? start : start + "," + std::to_string(count);
    }

    /// The changes from `first` to `end` with the lines around them. `moved` is how many lines more the new text has before.
    void appendHunk(std::string& text, std::size_t first, std::size_t end, std::ptrdiff_t& moved) const {
        const std::size_t start = changes_[first].first - std::min(changes_[first].first, contextLines);
        const std::size_t stop = std::min(changes_[end - 1].end + contextLines, document_.lineCount());
        std::string body;
        std::size_t place = start;
        const auto newStart = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(start) + moved);
        std::size_t newCount = stop - start;
        for (std::size_t index = first; index < end; ++index) {
            const Change& change = changes_[index];
            for (; place < change.first; ++place)
                appendLine(body, ' ', lineText(place));
            for (; place < change.end; ++place)
                appendLine(body, '-', lineText(place));
            for (const std::string& line : change.lines)
                appendLine(body, '+', line);
            const std::size_t removed = change.end - change.first;
            newCount = newCount + change.lines.size() - removed;
            moved += static_cast<std::ptrdiff_t>(change.lines.size()) - static_cast<std::ptrdiff_t>(removed);
        }
        for (; place < stop; ++place)
            appendLine(body, ' ', lineText(place));
        text.append("@@ -").append(range(start, stop - start)).append(" +").append(range(newStart, newCount));
        text.append(" @@\n").append(body);
    }

    const VELHLSDocument& document_;
    std::vector<VELHLSEdit> edits_;
    std::vector<Change> changes_;
};

}  // namespace

std::string unifiedDiff(const VELHLSDocument& document, const std::vector<VELHLSEdit>& edits,
                        const std::string& name) {
    const std::string hunks = Diff(document, edits).text();
    return hunks.empty() ? hunks : "--- " + name + "\n+++ " + name + "\n" + hunks;
}

}  // namespace tool
