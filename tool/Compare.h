#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tool/Failure.h"
#include "tool/InputFile.h"

namespace tool {

/// What `velhls compare` is asked for.
struct CompareRequest {
    /// The versions, the older ones first. Of a series a path may be a folder.
    std::vector<std::string> paths;
    bool isSeries = false;
    /// Seconds between a version and the next one.
    std::optional<double> elapsedSeconds;
    std::string format = "text";
    /// Whether the changes are left out of the text.
    bool quiet = false;
    std::size_t mostBytes = usualLargestInput;
};

/// Compares the versions and writes what is found to standard output. Throws a Failure when two versions cannot be
/// compared; in a series that is told, and the others are.
ExitStatus compare(const CompareRequest& request);

}  // namespace tool
