// The peak segment bit rate is that of a plain form, which looks at all sets of segments.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/presentation/Presented.h"

namespace presentation_test {
namespace {

struct Segment {
    /// In thousandths of a second.
    std::uint64_t duration;
    std::uint64_t bytes;
};

/// Bits per second, rounded; 0 when no set lasts long enough.
std::uint64_t plainPeak(const std::vector<Segment>& segments, std::uint64_t targetDuration) {
    double peak = 0.0;
    for (std::size_t first = 0; first < segments.size(); ++first) {
        std::uint64_t duration = 0;
        std::uint64_t bytes = 0;
        for (std::size_t last = first; last < segments.size(); ++last) {
            duration += segments[last].duration;
            bytes += segments[last].bytes;
            if (duration < 500 * targetDuration || duration > 1500 * targetDuration) continue;
            peak = std::max(peak, 8000.0 * static_cast<double>(bytes) / static_cast<double>(duration));
        }
    }
    return static_cast<std::uint64_t>(std::llround(peak));
}

/// As the finding of a BANDWIDTH of 1 tells it; 0 when there is none.
std::uint64_t measuredPeak(const std::vector<Segment>& segments, std::uint64_t targetDuration) {
    std::string text = "#EXTM3U\n#EXT-X-TARGETDURATION:" + std::to_string(targetDuration) + "\n";
    for (const Segment& segment : segments) {
        text += "#EXTINF:" + std::to_string(segment.duration / 1000) + "." +
                std::to_string(1000 + segment.duration % 1000).substr(1) +
                ",\n#EXT-X-BYTERANGE:" + std::to_string(segment.bytes) + "@0\na.ts\n";
    }
    const auto findings = findingsIn({{"master.m3u8", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na.m3u8\n"},
                                      {"a.m3u8", text + "#EXT-X-ENDLIST\n"}});
    const auto found = std::find_if(findings.begin(), findings.end(), [](const VELHLSFinding& finding) {
        return finding.ruleId == "bandwidth-below-peak";
    });
    if (found == findings.end()) return 0;
    const std::string before = "peak segment bit rate, ";
    return std::stoull(found->message.substr(found->message.find(before) + before.size()));
}

TEST(PeakRate, IsThatOfThePlainForm) {
    std::mt19937 random(1);
    const auto below = [&random](std::uint64_t most) { return random() % most; };
    for (int round = 0; round < 1000; ++round) {
        const std::uint64_t targetDuration = 1 + below(10);
        const std::uint64_t longest = 1 + below(2000 * targetDuration);
        std::vector<Segment> segments;
        for (std::uint64_t count = 1 + below(60); count > 0; --count)
            segments.push_back({below(longest), 1000 + below(1000000)});
        const auto measured = static_cast<double>(measuredPeak(segments, targetDuration));
        EXPECT_NEAR(measured, static_cast<double>(plainPeak(segments, targetDuration)), 1.0) << round;
    }
}

TEST(PeakRate, LooksAtSetsOfBetweenAHalfAndOneAndAHalfTargetDurations) {
    // Short segments are looked at together, and long ones not at all.
    EXPECT_EQ(measuredPeak({{2000, 1000}, {2000, 3000}, {2000, 2000}}, 6), 10000U);
    EXPECT_EQ(measuredPeak({{2000, 1000}, {2000, 3000}}, 4), 12000U);
    EXPECT_EQ(measuredPeak({{2000, 1000000}}, 6), 0U);
    EXPECT_EQ(measuredPeak({{10000, 1000000}, {6000, 6000}}, 6), 8000U);
    EXPECT_EQ(measuredPeak({{0, 1000000}, {6000, 6000}}, 6), 1341333U);
}

}  // namespace
}  // namespace presentation_test
