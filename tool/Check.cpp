#include "tool/Check.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tool/FindingText.h"
#include "tool/InputFile.h"
#include "tool/JsonReport.h"
#include "tool/OutputFile.h"
#include "tool/SarifReport.h"

namespace tool {
namespace {

CheckedFile checkFile(const std::string& path, const CheckRequest& request) {
    CheckedFile file;
    file.path = path;
    file.name = nameInMessages(path);
    try {
        file.text = contentOf(path, request.mostBytes);
    } catch (const Failure& failure) {
        file.failure = failure.what();
        return file;
    }
    VELHLSDiagnostics::Report report = VELHLSDiagnostics::check(file.text, {request.kind, request.profiles});
    file.kind = report.kind;
    file.rejected = std::move(report.rejected);
    for (VELHLSFinding& finding : report.findings) {
        if (request.disabledRules.count(finding.ruleId) != 0) continue;
        const bool isWarning = finding.severity == VELHLSFinding::Warning;
        if (request.warningsAreErrors && isWarning) finding.severity = VELHLSFinding::Error;
        if (finding.severity == VELHLSFinding::Error) file.hasErrors = true;
        if (finding.severity >= request.least) file.findings.push_back(std::move(finding));
    }
    return file;
}

ExitStatus statusOf(const CheckedFile& file) {
    if (!file.failure.empty()) return unusable;
    return file.hasErrors ? rejected : success;
}

/// The start of every line, to find one by its number.
std::vector<std::size_t> lineStarts(std::string_view text) {
    std::vector<std::size_t> starts = {0};
    for (std::size_t feed = text.find('\n'); feed != std::string_view::npos; feed = text.find('\n', feed + 1))
        starts.push_back(feed + 1);
    return starts;
}

bool isForTerminal(const CheckRequest& request) {
    if (request.colour == "always") return true;
    return ::isatty(STDOUT_FILENO) == 1;
}

/// NO_COLOR holds when it is set and not empty, as users of other commands expect.
bool isInColour(const CheckRequest& request) {
    if (request.colour == "always") return true;
    if (request.colour == "never") return false;
    const char* const noColour = std::getenv("NO_COLOR");
    const bool isUnwanted = noColour != nullptr && noColour[0] != '\0';
    return !isUnwanted && isForTerminal(request);
}

std::string reportWithLines(const CheckedFile& file, bool inColour) {
    const std::vector<std::size_t> starts = lineStarts(file.text);
    std::string report;
    for (const VELHLSFinding& finding : file.findings) {
        const std::string_view rest = std::string_view(file.text).substr(starts[finding.line - 1]);
        report += describeWithLine(file.name, finding, rest.substr(0, rest.find('\n')), inColour);
    }
    if (file.rejected) report += describeRejection(file.name, *file.rejected) + "\n";
    return report;
}

std::string textReport(const CheckedFile& file, const CheckRequest& request) {
    if (isForTerminal(request)) return reportWithLines(file, isInColour(request));
    std::string report;
    for (const VELHLSFinding& finding : file.findings)
        report += describe(file.name, finding) + "\n";
    if (file.rejected) report += describeRejection(file.name, *file.rejected) + "\n";
    return report;
}

}  // namespace

ExitStatus check(const CheckRequest& request) {
    JsonReport json;
    SarifReport sarif(request.profiles);
    ExitStatus status = success;
    for (const std::string& path : request.paths) {
        const CheckedFile file = checkFile(path, request);
        status = std::max(status, statusOf(file));
        if (!file.failure.empty()) static_cast<void>(std::fprintf(stderr, "%s\n", file.failure.c_str()));
        if (request.format == "json") {
            json.add(file);
        } else if (request.format == "sarif") {
            sarif.add(file);
        } else {
            writeToStandardOutput(textReport(file, request));
        }
    }
    if (request.format == "json") writeToStandardOutput(json.text());
    if (request.format == "sarif") writeToStandardOutput(sarif.text(status));
    return status;
}

}  // namespace tool
