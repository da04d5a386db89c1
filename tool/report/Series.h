#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tool/ComparedPair.h"
#include "tool/report/Drawing.h"
#include "tool/report/Markup.h"
#include "tool/report/PageNames.h"

namespace tool::report {

/// Segments whose media sequence numbers follow each other.
struct Run {
    std::uint64_t first = 0;
    std::uint64_t count = 0;
};

/// A version of a playlist, and what makes it another one than the version before it.
struct Version {
    std::string path;
    /// The media sequence numbers of its segments; none of a master playlist.
    Run segments;
    bool hasEnded = false;
    std::vector<Run> came;
    std::vector<Run> went;
    std::vector<Run> changed;
    /// All changes in lines, at most mostChanges of them.
    std::vector<std::string> changes;
    std::size_t changeCount = 0;
};

/// Reads a version, and takes from the comparison with the one before what changed; null for the first.
[[nodiscard]] Version readVersionRow(const std::string& path, const VELHLSDocument& document,
                                     const VELHLSComparison* comparison);

/// The versions one below the other over their media sequence numbers. Nothing where none has a segment.
[[nodiscard]] std::optional<Drawing> drawSeries(const std::vector<Version>& versions, const PageNames& names);

/// The picture, which has the id, and a table of the versions.
void appendSeries(Markup& page, const std::string& id, const std::vector<Version>& versions,
                  std::size_t versionsLeftOut, const PageNames& names);

}  // namespace tool::report
