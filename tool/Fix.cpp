#include "tool/Fix.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tool/FindingText.h"
#include "tool/OutputFile.h"
#include "tool/Printable.h"
#include "tool/UnifiedDiff.h"

namespace tool {
namespace {

[[noreturn]] void failUsage(const std::string& reason) {
    throw Failure(unusable, "velhls: error: " + reason + "\nRun velhls with --help for more information.");
}

void tell(const std::string& text) {
    static_cast<void>(std::fputs(text.c_str(), stderr));
}

/// How many there are of each class.
using ClassCounts = std::array<std::size_t, 3>;

std::string described(const ClassCounts& counts) {
    std::string text;
    for (const auto fixClass : {VELHLSFix::Safe, VELHLSFix::Lossy, VELHLSFix::Guess}) {
        const std::size_t count = counts.at(static_cast<std::size_t>(fixClass));
        if (count == 0) continue;
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " " +
                std::string(VELHLSFix::textOf(fixClass));
    }
    return text.empty() ? "nothing" : text;
}

/// What became of all files.
struct FixSummary {
    std::size_t filesRead = 0;
    std::size_t filesNotRead = 0;
    std::size_t filesMended = 0;
    ClassCounts mended = {};
    /// Fixes that were not taken, by their first class.
    ClassCounts notTaken = {};
    std::size_t errorsWithoutFix = 0;
    ExitStatus status = success;
};

std::string described(const FixSummary& summary) {
    std::string text = std::to_string(summary.filesRead) + (summary.filesRead == 1 ? " file" : " files") +
                       ": mended " + described(summary.mended);
    const bool isAllTaken = summary.notTaken == ClassCounts{};
    if (!isAllTaken) text += "; not taken " + described(summary.notTaken);
    if (summary.errorsWithoutFix != 0)
        text += "; " + std::to_string(summary.errorsWithoutFix) +
                (summary.errorsWithoutFix == 1 ? " error" : " errors") + " without a fix";
    if (summary.filesNotRead != 0)
        text += "; " + std::to_string(summary.filesNotRead) + " not read or written";
    return text + "\n";
}

bool isLeft(const VELHLSFinding& finding) {
    return finding.severity == VELHLSFinding::Error || !finding.fixes.empty();
}

class FixRun {
  public:
    explicit FixRun(const FixRequest& request) : request_(request) {}

    ExitStatus run() {
        InputWalk walk(request_.inputs);
        while (const std::optional<Input> input = walk.next())
            mend(*input);
        if (!request_.quiet) tell(described(summary_));
        return summary_.status;
    }

  private:
    void mend(const Input& input) {
        try {
            if (!input.failure.empty()) throw Failure(unusable, input.failure);
            const std::string text = contentOf(input.path, request_.mostBytes, input.kind);
            if (text.size() > VELHLSDocument::maximumBytes) {
                throw Failure(unusable,
                              nameInMessages(input.path) + ": error: cannot be mended: larger than 4 GiB");
            }
            const VELHLSFixes::Result result = VELHLSFixes::apply(text, request_.options);
            write(input.path, text, result);
            ++summary_.filesRead;
            tellOf(input.path, result);
        } catch (const Failure& failure) {
            ++summary_.filesNotRead;
            summary_.status = std::max(summary_.status, failure.exitStatus);
            tell(std::string(failure.what()) + "\n");
        }
    }

    void write(const std::string& path, const std::string& text, const VELHLSFixes::Result& result) const {
        if (request_.output) {
            if (*request_.output == standardInput) return writeToStandardOutput(result.text);
            return replaceFile(*request_.output, result.text);
        }
        if (result.text == text) return;
        if (request_.inPlace) return replaceFile(path, result.text);
        writeToStandardOutput(
            unifiedDiff(VELHLSDocument(text), result.edits, printable(nameInMessages(path))));
    }

    void tellOf(const std::string& path, const VELHLSFixes::Result& result) {
        if (!result.done.empty()) ++summary_.filesMended;
        for (const VELHLSFixes::Done& done : result.done)
            ++summary_.mended.at(static_cast<std::size_t>(done.fixClass));
        std::vector<VELHLSFinding> left;
        for (const VELHLSFinding& finding : result.left.findings) {
            if (!isLeft(finding)) continue;
            const std::size_t count = 1 + finding.suppressed;
            if (finding.fixes.empty()) {
                summary_.errorsWithoutFix += count;
            } else {
                summary_.notTaken.at(static_cast<std::size_t>(finding.fixes.front().fixClass)) += count;
            }
            left.push_back(finding);
        }
        if (left.empty()) return;
        summary_.status = std::max(summary_.status, rejected);
        if (!request_.quiet) tell(describeAll(nameInMessages(path), result.text, left, {}));
    }

    const FixRequest& request_;
    FixSummary summary_;
};

bool namesOneFile(const InputNames& inputs) {
    return inputs.paths.size() == 1 && !inputs.list;
}

}  // namespace

ExitStatus fix(const FixRequest& request) {
    const auto& paths = request.inputs.paths;
    const bool readsStandardInput = std::find(paths.begin(), paths.end(), standardInput) != paths.end();
    if (request.inPlace && readsStandardInput) failUsage("--apply: standard input cannot be replaced");
    if (request.output && !namesOneFile(request.inputs)) failUsage("--output: expected one FILE");
    return FixRun(request).run();
}

}  // namespace tool
