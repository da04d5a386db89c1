#pragma once

#include <cstddef>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "tool/Failure.h"
#include "tool/FindingChoice.h"
#include "tool/InputNames.h"
#include "tool/Presentation.h"
#include "tool/Report.h"

namespace tool {

/// What `velhls check` is asked for.
struct CheckRequest {
    InputNames inputs;
    /// What to read them as, and by whose rules.
    VELHLSDiagnostics::Options options;
    FollowRequest follow;
    FindingChoice choice;
    ReportStyle style;
    /// The most that is read of each file.
    std::size_t mostBytes = usualLargestInput;
};

/// Checks all files and writes what was found to standard output; files that cannot be read are told of on
/// standard error. The exit status is the worst of all files. One file at a time is held in memory, or one presentation.
///
/// Master playlists that are followed come first, each before its playlists; after them what none of them named.
[[nodiscard]] ExitStatus check(const CheckRequest& request);

/// The same with a report of the caller's, whatever format the request asks for.
[[nodiscard]] ExitStatus check(const CheckRequest& request, Report& report);

/// Gives the file those of the findings that are chosen, and counts them.
void choose(CheckedFile& file, std::vector<VELHLSFinding> findings, const FindingChoice& choice);

}  // namespace tool
