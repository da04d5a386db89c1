#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tool/report/Timeline.h"

namespace tool::report {

/// Where a timeline is not what the one is that it is compared with.
struct Difference {
    /// The place of the timeline among those of its axis.
    std::size_t timeline = 0;
    /// Seconds on the axis.
    double time = 0.0;
    /// "a discontinuity is missing", "an ad break begins".
    std::string what;
    /// How many more of the same kind follow it.
    std::size_t more = 0;
};

/// The place of the timeline that all others are compared with: the first variant, or else the first of all.
[[nodiscard]] std::size_t referenceOf(const std::vector<Timeline>& timelines);

/// Where timelines differ from the reference by more than half a second, in the time that both cover: discontinuities, ad breaks,
/// gaps, their ends if both have ended, and of variants keys, maps and where segments begin. The first of each kind, with the
/// number of those that follow.
[[nodiscard]] std::vector<Difference> differencesOf(const std::vector<Timeline>& timelines);

}  // namespace tool::report
