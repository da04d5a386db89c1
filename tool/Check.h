#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "tool/Failure.h"
#include "tool/PlaylistKind.h"

namespace tool {

/// What `velhls check` is asked for.
struct CheckRequest {
    std::vector<std::string> paths;
    PlaylistKind kind = PlaylistKind::Detect;
    std::string format = "text";
    /// Findings that weigh less are left out.
    VELHLSFinding::Severity least = VELHLSFinding::Warning;
    std::set<std::string> disabledRules;
    bool warningsAreErrors = false;
    /// By whose rules.
    std::vector<VELHLSDiagnostics::Profile> profiles = {VELHLSDiagnostics::Profile::rfc8216};
    /// "auto", "always" or "never".
    std::string colour = "auto";
    /// The most that is read of each file.
    std::size_t mostBytes = 0;
};

/// What was found in one file.
struct CheckedFile {
    /// The path as it was given, and as messages name it.
    std::string path;
    std::string name;
    /// Why the file could not be read; empty when it was.
    std::string failure;
    std::string text;
    PlaylistKind kind = PlaylistKind::Detect;
    std::vector<VELHLSFinding> findings;
    /// Why the models reject it, if they do.
    std::optional<VELHLSReason> rejected;
    /// Whether there is an error among the findings that were asked for, be they shown or not.
    bool hasErrors = false;
};

/// Checks all files and writes what was found to standard output; files that cannot be read are told of on
/// standard error. The exit status is the worst of all files: it follows the errors found, and not the rejections. The text of one file at a time is held in memory.
[[nodiscard]] ExitStatus check(const CheckRequest& request);

}  // namespace tool
