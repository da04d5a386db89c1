// What stops the check of a text that was made to be costly, beside the bounds of the parse: it goes on after what the
// parse would have rejected.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/hostile/HostileInputs.h"
#include "tests/support/LibraryFindings.h"

namespace {

std::vector<std::size_t> linesWith(const std::string& ruleId, const std::string& text) {
    std::vector<std::size_t> lines;
    for (const VELHLSFinding& finding : library::findingsIn(text, VELHLSDiagnostics::Media)) {
        if (finding.ruleId == ruleId) lines.push_back(finding.line);
    }
    return lines;
}

/// A variable whose substitution puts in a megabyte, and does not fit in the end.
std::string largeVariable() {
    constexpr std::size_t length = 4096;
    constexpr std::size_t enough = VELHLSUtility::maximumSubstitutedBytes / length + 1;
    return "#EXT-X-DEFINE:NAME=\"piece\",VALUE=\"" + std::string(length, 'z') +
           "\"\n#EXT-X-DEFINE:NAME=\"large\",VALUE=\"" + hostile::times(enough, "{$piece}") + "\"\n";
}

TEST(BoundedCost, PatternsThatComeToNothingUseUpWhatAllPatternsMayRead) {
    const std::string costly = hostile::patternOf("#EXTINF:6,\nsegment{$large}.ts\n", "0");
    const std::string cheap = hostile::patternOf("#EXTINF:6,\nsegment1.ts\n", "0");
    const auto isCheapOneTooLargeAfter = [&](std::size_t patterns) {
        const std::string before = largeVariable() + hostile::times(patterns, costly);
        const auto line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
        const std::vector<std::size_t> lines = linesWith("pattern-too-large", before + cheap);
        return std::count(lines.begin(), lines.end(), line) == 1;
    };
    EXPECT_FALSE(isCheapOneTooLargeAfter(1));
    EXPECT_FALSE(isCheapOneTooLargeAfter(30));
    EXPECT_TRUE(isCheapOneTooLargeAfter(80));
}

/// As many names as the hash of the standard library puts in one place, which is what the hash map is slow with.
TEST(BoundedCost, VariablesWhoseHashesMeetAreRejected) {
    constexpr std::size_t most = VELHLSUtility::maximumCollidingNames;
    const auto isRead = [](const std::vector<std::string>& names) {
        std::istringstream input(hostile::definesOf(names));
        return VELHLSMediaStream::parseMediaStream(input, nullptr) != nullptr;
    };
    std::vector<std::string> names = hostile::crowdedNames(most + 1, most + 1);
    EXPECT_FALSE(isRead(names));
    EXPECT_EQ(linesWith("define-names-collide", hostile::definesOf(names)),
              std::vector<std::size_t>{most + 1});
    names.resize(most);
    EXPECT_TRUE(isRead(names));
    // Of a name that is there already only the value changes.
    names.insert(names.end(), names.begin(), names.end());
    EXPECT_TRUE(isRead(names));
    EXPECT_TRUE(isRead(hostile::crowdedNames(hostile::manyRecords, most / 2)));
}

/// Otherwise each of them would be compared with all that are there.
TEST(BoundedCost, VariablesThatWereRejectedAreForgottenByACheck) {
    constexpr std::size_t most = VELHLSUtility::maximumCollidingNames;
    std::vector<std::string> names = hostile::crowdedNames(most + 1, most + 1);
    names.push_back(names.back());
    EXPECT_EQ(linesWith("define-names-collide", hostile::definesOf(names)),
              std::vector<std::size_t>{most + 1});
}

/// Names that meet only when the map has grown: with the last of these it does.
TEST(BoundedCost, VariablesWhoseHashesWillMeetAreRejectedWhenTheyDo) {
    constexpr std::size_t count = 1024;
    std::vector<std::string> names;
    VELHLSDefineMap grown;
    for (std::size_t index = 0; names.empty(); ++index) {
        const std::size_t before = grown.bucket_count();
        grown[std::to_string(index)] = "";
        const bool hasGrown = index > count && grown.bucket_count() != before;
        if (hasGrown) names = hostile::crowdedNames(index + 1, index + 1);
    }
    const std::string text = hostile::definesOf(names);
    std::istringstream input(text);
    EXPECT_EQ(VELHLSMediaStream::parseMediaStream(input, nullptr), nullptr);
    EXPECT_EQ(linesWith("define-names-collide", text), std::vector<std::size_t>{names.size()});
}

TEST(BoundedCost, ManyVariablesWithOrdinaryNamesAreRead) {
    constexpr std::size_t count = 50000;
    std::istringstream input(hostile::counted(count, "#EXT-X-DEFINE:NAME=\"~\",VALUE=\"1\"\n"));
    const auto stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->hlsDefineMap->size(), count);
}

/// A caller who asks for large buckets has them.
TEST(BoundedCost, BucketsOfTheCallersOwnMapMayBeLarger) {
    constexpr std::size_t count = 1000;
    const std::string text =
        hostile::counted(count, "#EXT-X-DEFINE:NAME=\"~\",VALUE=\"1\"\n") + hostile::segment;
    const auto definedIn = [&text](const std::shared_ptr<VELHLSDefineMap>& defines) {
        std::istringstream input(text);
        std::string first;
        std::getline(input, first);
        std::shared_ptr<VELHLSMediaPattern> pattern;
        const auto segment =
            VELHLSMediaSegment::parseNextSegment(nullptr, first, input, pattern, 0, 0, defines, nullptr);
        return segment == nullptr ? 0 : defines->size();
    };
    const auto large = std::make_shared<VELHLSDefineMap>();
    large->max_load_factor(static_cast<float>(count));
    EXPECT_EQ(definedIn(large), count);
    EXPECT_EQ(definedIn(std::make_shared<VELHLSDefineMap>()), count);
}

}  // namespace
