#include "tool/Check.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

#include "tool/InputFile.h"
#include "tool/Path.h"

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

/// Checks the text by itself.
std::vector<VELHLSFinding> checkText(CheckedFile& file, const VELHLSDiagnostics::Options& options) {
    VELHLSDiagnostics::Report report = VELHLSDiagnostics::check(file.text, options);
    file.kind = report.kind;
    file.rejected = std::move(report.rejected);
    return std::move(report.findings);
}

/// Takes the findings of a file from those of its presentation.
std::vector<VELHLSFinding> takeOf(const std::string& path, std::vector<VELHLSFinding>& findings) {
    const auto own =
        std::stable_partition(findings.begin(), findings.end(),
                              [&path](const VELHLSFinding& finding) { return finding.uri != path; });
    std::vector<VELHLSFinding> taken(std::make_move_iterator(own), std::make_move_iterator(findings.end()));
    findings.erase(own, findings.end());
    return taken;
}

/// Puts both together, in the order of the places.
std::vector<VELHLSFinding> joined(std::vector<VELHLSFinding> ofText,
                                  std::vector<VELHLSFinding> ofPresentation) {
    if (ofPresentation.empty()) return ofText;
    ofText.insert(ofText.end(), std::make_move_iterator(ofPresentation.begin()),
                  std::make_move_iterator(ofPresentation.end()));
    std::stable_sort(ofText.begin(), ofText.end(), [](const VELHLSFinding& left, const VELHLSFinding& right) {
        return std::tie(left.line, left.column) < std::tie(right.line, right.column);
    });
    return ofText;
}

/// The path without links; empty where there is none.
std::string realPathOf(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path real = std::filesystem::canonical(pathOf(path), failure);
    return failure ? std::string() : textOf(real);
}

ExitStatus statusOf(const CheckedFile& file, const FindingChoice& choice) {
    if (!file.failure.empty()) return unusable;
    return choice.fails(file.counts) ? rejected : success;
}

void add(CheckSummary& summary, const CheckedFile& file, ExitStatus status) {
    ++(file.failure.empty() ? summary.filesRead : summary.filesNotRead);
    if (file.rejected) ++summary.filesRejected;
    if (file.followed) {
        summary.urisOfNetwork += file.followed->network;
        summary.urisWithVariables += file.followed->variable;
    }
    summary.counts.add(file.counts);
    summary.status = std::max(summary.status, status);
}

/// Annotations tell of these themselves: on standard error, too, a workflow would look for its commands.
void tellFailure(const CheckedFile& file, const ReportStyle& style) {
    if (file.failure.empty() || style.format == "github") return;
    static_cast<void>(std::fprintf(stderr, "%s\n", file.failure.c_str()));
}

/// Checks one input after the other, and what is followed from them.
class CheckRun {
  public:
    CheckRun(const CheckRequest& request, Report& report) : request_(request), report_(report) {}

    ExitStatus run() {
        InputWalk walk(request_.inputs);
        while (const std::optional<Input> input = walk.next())
            check(*input);
        for (const Input& input : others_)
            checkByItself(input);
        summary_.linksLeftOut = walk.linksLeftOut();
        report_.end(summary_);
        return summary_.status;
    }

  private:
    /// With --follow other files wait until all master playlists were followed, which may name them.
    void check(const Input& input) {
        if (!request_.follow.isAsked || !input.failure.empty()) return checkByItself(input);
        CheckedFile file;
        read(file, input, request_.mostBytes);
        if (!file.failure.empty()) return tell(file);
        const bool canWait = input.path != standardInput;
        if (canWait && !isMaster(file.text)) {
            others_.push_back(input);
            return;
        }
        const std::string realPath = canWait ? realPathOf(input.path) : std::string();
        if (!realPath.empty() && !checked_.insert(realPath).second) return;
        std::vector<VELHLSFinding> findings = checkText(file, request_.options);
        if (file.kind == PlaylistKind::Master) return follow(std::move(file), std::move(findings));
        choose(file, std::move(findings), request_.choice);
        tell(file);
    }

    [[nodiscard]] bool isMaster(const std::string& text) const {
        if (request_.options.kind != PlaylistKind::Detect)
            return request_.options.kind == PlaylistKind::Master;
        const auto detected = VELHLSDiagnostics::detectKind(text);
        return detected && detected->kind == PlaylistKind::Master;
    }

    void checkByItself(const Input& input) {
        if (request_.follow.isAsked && checked_.count(realPathOf(input.path)) != 0) return;
        CheckedFile file;
        read(file, input, request_.mostBytes);
        if (file.failure.empty()) {
            std::vector<VELHLSFinding> findings = checkText(file, request_.options);
            choose(file, std::move(findings), request_.choice);
        }
        tell(file);
    }

    void follow(CheckedFile file, std::vector<VELHLSFinding> findings) {
        try {
            const PresentationFiles files(file.path, file.text, request_.follow, request_.mostBytes);
            std::vector<VELHLSFinding> ofPresentation = files.findings(request_.options.profiles);
            file.followed = files.uris();
            file.presentation = &files;
            choose(file, joined(std::move(findings), takeOf(file.path, ofPresentation)), request_.choice);
            tell(file);
            for (const PresentationFile& each : files.files()) {
                if (each.use == VELHLSPresentation::Use::Playlist) checkFollowed(each, files, ofPresentation);
            }
        } catch (const Failure& failure) {
            file.failure = failure.what();
            tell(file);
        }
    }

    void checkFollowed(const PresentationFile& followed, const PresentationFiles& files,
                       std::vector<VELHLSFinding>& ofPresentation) {
        CheckedFile file;
        file.presentation = &files;
        file.path = followed.path;
        file.name = nameInMessages(followed.path);
        file.text = followed.document.text();
        VELHLSDiagnostics::Options options = request_.options;
        options.kind = VELHLSDiagnostics::Detect;
        std::vector<VELHLSFinding> findings = checkText(file, options);
        std::vector<VELHLSFinding> own = takeOf(followed.path, ofPresentation);
        // Another presentation has it too.
        const bool isNew = checked_.insert(followed.realPath).second;
        if (!isNew && own.empty()) return;
        if (!isNew) findings.clear();
        choose(file, joined(std::move(findings), std::move(own)), request_.choice);
        tell(file);
    }

    void tell(const CheckedFile& file) {
        add(summary_, file, statusOf(file, request_.choice));
        tellFailure(file, request_.style);
        report_.add(file);
    }

    const CheckRequest& request_;
    Report& report_;
    CheckSummary summary_;
    /// The real paths of what was checked with a master playlist.
    std::set<std::string> checked_;
    /// What is still to be checked.
    std::vector<Input> others_;
};

}  // namespace

void choose(CheckedFile& file, std::vector<VELHLSFinding> findings, const FindingChoice& choice) {
    file.findings = choice.chosenOf(std::move(findings));
    for (const VELHLSFinding& finding : file.findings)
        file.counts.add(finding);
    file.findings = choice.shownOf(std::move(file.findings));
}

ExitStatus check(const CheckRequest& request) {
    return check(request, *reportOf(request));
}

ExitStatus check(const CheckRequest& request, Report& report) {
    return CheckRun(request, report).run();
}

}  // namespace tool
