#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tool/Failure.h"
#include "tool/FindingChoice.h"
#include "tool/PlaylistKind.h"
#include "tool/Presentation.h"

namespace tool {

/// What was found in one file.
struct CheckedFile {
    /// The path as it was given or found, and as messages name it.
    std::string path;
    std::string name;
    /// Why the file could not be read, a whole message; empty when it was.
    std::string failure;
    std::string text;
    PlaylistKind kind = PlaylistKind::Detect;
    /// What is shown.
    std::vector<VELHLSFinding> findings;
    /// What was found, shown or not.
    FindingCounts counts;
    /// What came of the URIs of a master playlist that was followed.
    std::optional<FollowedUris> followed;
    /// The presentation of a master playlist that was followed, and of each file that was read for it; null for others.
    const PresentationFiles* presentation = nullptr;
    /// Why the models reject the playlist, if they do, whatever was found.
    std::optional<VELHLSReason> rejected;
};

/// What was found in all files.
struct CheckSummary {
    std::size_t filesRead = 0;
    std::size_t filesNotRead = 0;
    std::size_t filesRejected = 0;
    std::size_t linksLeftOut = 0;
    /// URIs of playlists that were followed.
    std::size_t urisOfNetwork = 0;
    std::size_t urisWithVariables = 0;
    FindingCounts counts;
    ExitStatus status = success;
};

/// Writes to standard output what was found, each file as soon as it was checked.
class Report {
  public:
    Report() = default;
    virtual ~Report() = default;
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    virtual void add(const CheckedFile& file) = 0;

    /// To be called once, after all files.
    virtual void end(const CheckSummary& summary) = 0;
};

/// How a report is to be written.
struct ReportStyle {
    /// "text", "json", "jsonl", "sarif" or "github".
    std::string format = "text";
    /// When a text has colours: "auto", "always" or "never".
    std::string colour = "auto";
};

struct CheckRequest;

/// The report of what is asked for.
[[nodiscard]] std::unique_ptr<Report> reportOf(const CheckRequest& request);

}  // namespace tool
