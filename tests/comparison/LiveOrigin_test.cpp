// An origin that keeps all rules over hundreds of versions, and each fault planted into one of them.
#include "tests/comparison/LiveOrigin.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/comparison/Updates.h"

namespace comparison_test {
namespace {

using live_origin::Style;
using live_origin::Version;
using live_origin::versionAt;

std::vector<Style> styles() {
    std::vector<Style> all;
    for (const std::size_t window : {5U, 12U}) {
        for (const bool first : {false, true}) {
            for (const bool second : {false, true})
                all.push_back({window, first, second, first != second, second});
        }
    }
    return all;
}

std::string findingsBetween(const std::string& before, const std::string& now, double seconds) {
    return shown(compared({before, now, seconds}).findings);
}

TEST(LiveOrigin, IsNotFoundToDoWrongOverHundredsOfVersions) {
    for (const Style& style : styles()) {
        std::string before = versionAt(0, style).text();
        for (std::size_t number = 1; number < 300; ++number) {
            const std::string now = versionAt(number, style).text();
            ASSERT_EQ(findingsBetween(before, now, 6.0), "") << before << "\n" << now;
            before = now;
        }
    }
}

TEST(LiveOrigin, IsNotFoundToDoWrongWhenVersionsAreMissed) {
    const Style style;
    for (const std::size_t step : {2U, 3U, 5U, 7U, 8U, 9U, 30U}) {
        for (std::size_t number = 10; number < 100; ++number) {
            const std::string before = versionAt(number, style).text();
            const std::string now = versionAt(number + step, style).text();
            ASSERT_EQ(findingsBetween(before, now, 6.0 * static_cast<double>(step)), "") << before << "\n"
                                                                                         << now;
        }
    }
}

TEST(LiveOrigin, IsNotFoundToDoWrongWhenItEnds) {
    for (std::size_t number = 20; number < 60; ++number) {
        Version ended = versionAt(number + 1, Style());
        ended.isEnded = true;
        EXPECT_EQ(findingsBetween(versionAt(number, Style()).text(), ended.text(), 6.0), "");
    }
}

/// What goes wrong in one version.
struct Fault {
    std::string rules;
    std::function<void(Version&)> plant;
    Style style = {};
};

std::string oneMore(const std::string& number) {
    return std::to_string(std::stoul(number) + 1);
}

std::vector<Fault> faults() {
    Style sparse;
    sparse.datesEverySegment = false;
    return {
        {"segment-uri-changed", [](Version& version) { version.segments[3].uri += "?token"; }},
        {"segment-duration-changed", [](Version& version) { version.segments[2].duration = "5.999"; }},
        {"segment-duration-changed", [](Version& version) { version.segments[2].duration = "5"; }, sparse},
        {"segment-tag-changed", [](Version& version) { version.segments[2].title = "A film"; }},
        {"segment-tag-changed",
         [](Version& version) { version.segments[2].key = "METHOD=AES-128,URI=\"other\""; }},
        {"segment-tag-changed", [](Version& version) { version.segments[2].map = "URI=\"other.mp4\""; }},
        {"segment-date-changed",
         [](Version& version) { version.segments[0].date = "2026-11-30T00:00:00.000Z"; }},
        {"segment-date-changed",
         [](Version& version) {
             for (live_origin::Segment& segment : version.segments)
                 segment.date.replace(8, 2, "30");
         },
         {6}},
        {"header-tag-changed", [](Version& version) { version.version = "7"; }},
        {"target-duration-changed", [](Version& version) { version.targetDuration = "7"; }},
        {"playlist-type-changed,removed-from-typed-playlist",
         [](Version& version) { version.type = "EVENT"; }},
        {"media-sequence-missing", [](Version& version) { version.mediaSequence.clear(); }},
        {"media-sequence-miscounted",
         [](Version& version) { version.mediaSequence = oneMore(version.mediaSequence); }},
        {"media-sequence-decreased", [](Version& version) { version.mediaSequence = "1"; }},
        {"discontinuity-sequence-miscounted",
         [](Version& version) { version.discontinuitySequence = oneMore(version.discontinuitySequence); }},
        {"discontinuity-sequence-decreased", [](Version& version) { version.discontinuitySequence = "0"; }},
        {"segment-removed-out-of-order",
         [](Version& version) { version.segments.erase(version.segments.begin() + 2); }},
        {"segment-inserted",
         [](Version& version) {
             live_origin::Segment segment = version.segments[2];
             segment.uri = "new.m4s";
             segment.date.clear();
             segment.isDiscontinuous = false;
             segment.cue.clear();
             version.segments.insert(version.segments.begin() + 2, segment);
         }},
        {"new-segment-missing", [](Version& version) { version.segments.pop_back(); }},
        {"segment-removed-early",
         [](Version& version) {
             version.segments.erase(version.segments.begin(), version.segments.end() - 2);
             version.mediaSequence = std::to_string(version.segments.front().number);
             const Version right = versionAt(version.segments.back().number, {2});
             version.discontinuitySequence = right.discontinuitySequence;
         }},
    };
}

TEST(LiveOrigin, IsFoundToDoWrongWhereAFaultIsPlanted) {
    for (const Fault& fault : faults()) {
        for (std::size_t number = 30; number < 60; ++number) {
            const std::string before = versionAt(number - 1, fault.style).text();
            Version wrong = versionAt(number, fault.style);
            fault.plant(wrong);
            const auto findings = compared({before, wrong.text(), 6.0}).findings;
            ASSERT_EQ(rulesIn(findings), fault.rules) << shown(findings) << before << "\n" << wrong.text();
        }
    }
}

/// Faults that only some versions can have.
TEST(LiveOrigin, IsFoundToDoWrongWithItsDateRangesAndDiscontinuities) {
    std::size_t removed = 0;
    std::size_t discontinuous = 0;
    for (std::size_t number = 30; number < 90; ++number) {
        const Version right = versionAt(number, Style());
        const Version before = versionAt(number - 1, Style());
        if (!before.dateRanges.empty() && !right.dateRanges.empty() &&
            before.dateRanges.front().substr(0, 9) == right.dateRanges.front().substr(0, 9)) {
            Version wrong = right;
            wrong.dateRanges.clear();
            const auto findings = compared({before.text(), wrong.text(), 6.0}).findings;
            ASSERT_EQ(rulesIn(findings), "date-range-removed-early") << shown(findings) << wrong.text();
            wrong = right;
            wrong.dateRanges.front().replace(wrong.dateRanges.front().find("CLASS=\"ads\""), 11,
                                             "CLASS=\"new\"");
            EXPECT_EQ(rulesIn(compared({before.text(), wrong.text(), 6.0}).findings),
                      "date-range-value-changed");
            ++removed;
        }
        for (std::size_t place = 1; place + 1 < right.segments.size(); ++place) {
            if (!right.segments[place].isDiscontinuous) continue;
            Version wrong = right;
            wrong.segments[place].isDiscontinuous = false;
            const auto findings = compared({before.text(), wrong.text(), 6.0}).findings;
            ASSERT_EQ(rulesIn(findings), "discontinuity-removed") << shown(findings) << wrong.text();
            wrong = right;
            wrong.discontinuitySequence.clear();
            EXPECT_EQ(rulesIn(compared({before.text(), wrong.text(), 6.0}).findings),
                      "discontinuity-sequence-missing-after-removal");
            ++discontinuous;
        }
    }
    EXPECT_GT(removed, 20U);
    EXPECT_GT(discontinuous, 20U);
}

}  // namespace
}  // namespace comparison_test
