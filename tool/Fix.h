#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "velhls/VELHLSCheck.h"

#include "tool/Failure.h"
#include "tool/InputFile.h"
#include "tool/InputNames.h"

namespace tool {

/// What `velhls fix` is asked for.
struct FixRequest {
    InputNames inputs;
    /// What to read them as, whose findings to mend, and which fixes to take.
    VELHLSFixes::Options options;
    /// Replace the files, and write no difference.
    bool inPlace = false;
    /// Where to write the whole text of the one input; nothing to write what changes.
    std::optional<std::string> output;
    /// Do not say what is left.
    bool quiet = false;
    /// The most that is read of each file.
    std::size_t mostBytes = usualLargestInput;
};

/// Mends all files: writes what changes to standard output as a unified diff, or the files themselves; and to standard error
/// what is left. The exit status is the worst of all files: rejected for one that has an error left, or a finding with a fix
/// that was not taken. Throws a Failure for what the request cannot mean, with nothing written.
[[nodiscard]] ExitStatus fix(const FixRequest& request);

}  // namespace tool
