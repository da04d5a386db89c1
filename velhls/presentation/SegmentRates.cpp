#include "velhls/presentation/SegmentRates.h"

#include <cmath>

namespace velhls {
namespace {

/// Where segments begin and end: in seconds and in bits since the first one.
struct Sums {
    std::vector<double> seconds = {0.0};
    std::vector<double> bits = {0.0};
};

Sums sumsOf(const std::vector<SizedSegment>& segments) {
    Sums sums;
    for (const SizedSegment& segment : segments) {
        sums.seconds.push_back(sums.seconds.back() + segment.duration);
        sums.bits.push_back(sums.bits.back() + segment.bits);
    }
    return sums;
}

/// Of the sets that last so long, the one that has the most bits beyond what `rate` lets one expect. Those that a set may
/// begin with wait in a queue, the best one first: so each is looked at once.
std::optional<SegmentWindow> findAbove(const Sums& sums, double rate, double least, double most) {
    const auto excess = [&](std::size_t place) { return sums.bits[place] - rate * sums.seconds[place]; };
    std::vector<std::size_t> starts;
    std::size_t firstStart = 0;
    std::size_t nextStart = 0;
    std::optional<SegmentWindow> best;
    double bestExcess = 0.0;
    for (std::size_t end = 1; end < sums.seconds.size(); ++end) {
        for (; nextStart < end && sums.seconds[end] - sums.seconds[nextStart] >= least; ++nextStart) {
            while (starts.size() > firstStart && excess(starts.back()) >= excess(nextStart))
                starts.pop_back();
            starts.push_back(nextStart);
        }
        while (starts.size() > firstStart && sums.seconds[end] - sums.seconds[starts[firstStart]] > most)
            ++firstStart;
        if (starts.size() == firstStart) continue;
        const std::size_t start = starts[firstStart];
        const double found = excess(end) - excess(start);
        if (best && found <= bestExcess) continue;
        bestExcess = found;
        best = {start, end, (sums.bits[end] - sums.bits[start]) / (sums.seconds[end] - sums.seconds[start])};
    }
    return best;
}

}  // namespace

std::optional<SegmentWindow> findPeakRate(const std::vector<SizedSegment>& segments, double targetDuration) {
    const Sums sums = sumsOf(segments);
    if (!(targetDuration > 0.0) || !std::isfinite(sums.seconds.back()) || !std::isfinite(sums.bits.back()))
        return std::nullopt;
    // Durations are written rounded.
    constexpr double rounding = 1e-6;
    const double least = 0.5 * targetDuration - rounding;
    const double most = 1.5 * targetDuration + rounding;
    // Each set that has more bits than the last one's rate lets one expect is faster. The rates rise to the highest in a
    // few steps.
    constexpr int mostSteps = 50;
    std::optional<SegmentWindow> fastest = findAbove(sums, 0.0, least, most);
    for (int step = 0; fastest && step < mostSteps; ++step) {
        const std::optional<SegmentWindow> faster = findAbove(sums, fastest->rate, least, most);
        constexpr double noticeably = 1.0 + 1e-9;
        if (!(faster->rate > fastest->rate * noticeably)) break;
        fastest = faster;
    }
    return fastest;
}

}  // namespace velhls
