#pragma once

#include <optional>
#include <string>
#include <vector>

#include "velhls/VELHLSCheck.h"

#include "tests/support/FindingText.h"

/// What the tests of comparisons share: pairs of versions that RFC 8216 allows, and what breaks one statement of it.
namespace comparison_test {

/// An old and a new version.
struct Versions {
    std::string before;
    std::string now;
    std::optional<double> elapsedSeconds = {};
};

/// A live playlist with keys, maps, dates, a discontinuity and date ranges, and its next version.
extern const Versions live;
/// One that has nothing but segments.
extern const Versions plain;
/// One of type EVENT that grows.
extern const Versions event;
/// One of type VOD, twice the same.
extern const Versions vod;
/// Date ranges with END-ON-NEXT=YES.
extern const Versions songs;

/// The versions with one text replaced in the new version, where it stands first.
[[nodiscard]] Versions changed(Versions versions, const std::string& text, const std::string& replacement);

/// The comparison of the two, which must be of one kind.
[[nodiscard]] VELHLSComparison compared(const Versions& versions);

using finding::rulesIn;

/// One line for each change: "segment 101: duration 6.006 -> 5.005", "+ segment 106: 6.006 106.ts".
[[nodiscard]] std::string shownChanges(const std::vector<VELHLSChange>& changes);

/// The findings one a line, for the message of a test that fails.
[[nodiscard]] std::string shown(const std::vector<VELHLSFinding>& findings);

}  // namespace comparison_test
