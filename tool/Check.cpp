#include "tool/Check.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "tool/InputFile.h"

namespace tool {
namespace {

/// Reads the input, unless there is a failure in its place.
void read(CheckedFile& file, const Input& input, std::size_t mostBytes) {
    file.path = input.path;
    file.name = nameInMessages(input.path);
    file.failure = input.failure;
    if (!file.failure.empty()) return;
    try {
        file.text = contentOf(input.path, mostBytes, input.kind);
    } catch (const Failure& failure) {
        file.failure = failure.what();
    }
}

CheckedFile checkInput(const Input& input, const CheckRequest& request) {
    CheckedFile file;
    read(file, input, request.mostBytes);
    if (!file.failure.empty()) return file;
    VELHLSDiagnostics::Report report = VELHLSDiagnostics::check(file.text, request.options);
    file.kind = report.kind;
    file.rejected = std::move(report.rejected);
    file.findings = request.choice.chosenOf(std::move(report.findings));
    for (const VELHLSFinding& finding : file.findings)
        file.counts.add(finding);
    file.findings = request.choice.shownOf(std::move(file.findings));
    return file;
}

ExitStatus statusOf(const CheckedFile& file, const FindingChoice& choice) {
    if (!file.failure.empty()) return unusable;
    return choice.fails(file.counts) ? rejected : success;
}

void add(CheckSummary& summary, const CheckedFile& file, ExitStatus status) {
    ++(file.failure.empty() ? summary.filesRead : summary.filesNotRead);
    if (file.rejected) ++summary.filesRejected;
    summary.counts.add(file.counts);
    summary.status = std::max(summary.status, status);
}

/// Annotations tell of these themselves: on standard error, too, a workflow would look for its commands.
void tellFailure(const CheckedFile& file, const ReportStyle& style) {
    if (file.failure.empty() || style.format == "github") return;
    static_cast<void>(std::fprintf(stderr, "%s\n", file.failure.c_str()));
}

}  // namespace

ExitStatus check(const CheckRequest& request) {
    const std::unique_ptr<Report> report = reportOf(request);
    CheckSummary summary;
    InputWalk walk(request.inputs);
    while (const std::optional<Input> input = walk.next()) {
        const CheckedFile file = checkInput(*input, request);
        add(summary, file, statusOf(file, request.choice));
        tellFailure(file, request.style);
        report->add(file);
    }
    summary.linksLeftOut = walk.linksLeftOut();
    report->end(summary);
    return summary.status;
}

}  // namespace tool
