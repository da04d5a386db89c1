#include "tool/ReportCommand.h"

#include <memory>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "tool/ConfigFile.h"
#include "tool/FindingOptions.h"
#include "tool/InputOptions.h"
#include "tool/OutputFile.h"
#include "tool/ReadingOptions.h"
#include "tool/Versions.h"
#include "tool/report/PageReport.h"

namespace tool {
namespace {

void write(const ReportOptions& options, const std::string& text) {
    if (options.output == standardInput) return writeToStandardOutput(text);
    replaceFile(options.output, text);
}

/// Compares each version with the one before it, and checks the last one.
class SeriesRun {
  public:
    SeriesRun(const ReportOptions& options, report::PageReport& report)
        : options_(options), request_(options.request), report_(report) {}

    /// Throws a Failure when a version cannot be read or compared.
    ExitStatus run() {
        const std::vector<std::string> paths = versionsOf(request_.inputs.paths);
        for (std::size_t place = 0; place < paths.size(); ++place)
            take(paths[place], place + 1 == paths.size());
        report_.end(summary_);
        return summary_.status;
    }

  private:
    void take(const std::string& path, bool isLast) {
        auto now = readVersion(path, request_.mostBytes);
        CheckedFile file;
        file.path = path;
        file.name = nameInMessages(path);
        VELHLSDiagnostics::Report checked;
        if (isLast) checked = VELHLSDiagnostics::check(now->text(), request_.options);
        std::optional<VELHLSComparison> comparison;
        if (before_ != nullptr) comparison = compareWithBefore(path, *now);
        std::vector<VELHLSFinding> findings = std::move(checked.findings);
        if (comparison)
            findings.insert(findings.end(), comparison->findings.begin(), comparison->findings.end());
        choose(file, std::move(findings), request_.choice);
        summary_.counts.add(file.counts);
        if (request_.choice.fails(file.counts)) summary_.status = rejected;
        if (!isLast) {
            report_.addVersion(file, *now, comparison ? &*comparison : nullptr);
        } else {
            addLast(std::move(file), *now, checked, comparison ? &*comparison : nullptr);
        }
        before_ = std::move(now);
        beforePath_ = path;
    }

    VELHLSComparison compareWithBefore(const std::string& path, const VELHLSDocument& now) const {
        ComparedPair pair = comparePair(beforePath_, *before_, path, now, options_.elapsedSeconds);
        if (!pair.failure.empty()) throw Failure(unusable, pair.failure);
        for (VELHLSFinding& finding : pair.comparison.findings) {
            for (VELHLSRelatedPlace& place : finding.related)
                place.uri = beforePath_;
        }
        return std::move(pair.comparison);
    }

    /// Its row has no findings: these stand beside its lines.
    void addLast(CheckedFile file, const VELHLSDocument& document, const VELHLSDiagnostics::Report& checked,
                 const VELHLSComparison* comparison) {
        CheckedFile row;
        row.path = file.path;
        report_.addVersion(row, document, comparison);
        file.text = document.text();
        file.kind = checked.kind;
        file.rejected = checked.rejected;
        summary_.filesRejected = checked.rejected ? 1 : 0;
        report_.add(file);
    }

    const ReportOptions& options_;
    const CheckRequest& request_;
    report::PageReport& report_;
    CheckSummary summary_;
    std::unique_ptr<VELHLSDocument> before_;
    std::string beforePath_;
};

/// Nothing is written when an input cannot be read.
ExitStatus run(CLI::App& command, ReportOptions& options) {
    readConfig(command, options.config);
    CheckRequest& request = options.request;
    if (request.inputs.paths.empty() && !request.inputs.list)
        request.inputs.paths.emplace_back(standardInput);
    request.options.fixes = true;
    report::PageReport report;
    const ExitStatus status = options.isSeries ? SeriesRun(options, report).run() : check(request, report);
    if (status == unusable) return status;
    write(options, options.format == "svg" ? pageAsSvg(report.page()) : pageAsHtml(report.page()));
    return status;
}

}  // namespace

void addReportCommand(CLI::App& app, ReportOptions& options, ExitStatus& status) {
    CLI::App* const command = app.add_subcommand(
        "report", "Show playlists as a page to look at: ladder, timeline, and findings beside the lines");
    command->footer(
        "Exit status: 0 nothing found at or above --fail-on, 1 something found, 2 bad usage or a file that "
        "cannot be read or written.\n"
        "The page is one file that loads nothing and runs nothing.");
    CheckRequest& request = options.request;
    addInputOptions(*command, request.inputs);
    command
        ->add_option("-o,--output", options.output,
                     "Where to write, wholly or not at all; - for standard output")
        ->capture_default_str()
        ->configurable(false);
    command->add_option("--format", options.format, "The page, or its ladder and timeline alone")
        ->check(CLI::IsMember({"html", "svg"}))
        ->capture_default_str();
    CLI::Option* const series = command->add_flag(
        "--series", options.isSeries,
        "The files are versions of one playlist, in the order given, and of a folder in that of names: show "
        "what came, went and changed, and the last one whole");
    series->configurable(false)->excludes(command->get_option("--files-from"));
    command
        ->add_option(
            "--elapsed", options.elapsedSeconds,
            "How many seconds passed from one version to the next; without it nothing is said of time")
        ->needs(series)
        ->type_name("SECONDS")
        ->check(CLI::Validator(CLI::NonNegativeNumber).description(""))
        ->configurable(false);
    addFollowOptions(
        *command, request.follow,
        "Show also the local playlists that a master playlist names, and what all together break");
    series->excludes(command->get_option("--follow"));
    addReadingOptions(*command, request.options.kind, request.mostBytes);
    addProfileOption(*command, request.options.profiles,
                     "By whose rules to check, rfc8216 unless told otherwise");
    addFindingOptions(*command, request.choice);
    addConfigOption(*command, options.config);
    command->callback([command, &options, &status] { status = run(*command, options); });
}

}  // namespace tool
