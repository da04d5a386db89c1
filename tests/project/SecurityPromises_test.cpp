// SECURITY.md promises what tests show: that they exist, and that the bounds are those of the headers.
#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/support/PlaylistText.h"
#include "tool/InputFile.h"

namespace {

const std::filesystem::path sources = VELHLS_SOURCE;

std::string policy() {
    return playlist::contentOf((sources / "SECURITY.md").string());
}

/// What the first group of the expression matches in the text, each once.
std::set<std::string> allIn(const std::string& text, const char* expression) {
    const std::regex pattern(expression);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match)
        found.insert((*match)[1].str());
    return found;
}

/// "Suite.Name" of each test in the sources of the tests, "test_file.test_name" of those in Python, and the files of those in
/// JavaScript, whose names are sentences.
std::set<std::string> testsThatExist() {
    const std::regex test(R"(\bTEST(?:_F)?\(\s*(\w+),\s*(\w+)\))");
    std::set<std::string> names;
    const std::filesystem::path python = sources / "bindings/python/tests/test_velhls.py";
    for (const std::string& name : allIn(playlist::contentOf(python.string()), "\ndef (test_\\w+)"))
        names.insert(python.stem().string() + "." + name);
    for (const char* folder : {"bindings/npm/tests", "docs/playground"}) {
        for (const auto& entry : std::filesystem::directory_iterator(sources / folder))
            names.insert(entry.path().filename().string());
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(sources / "tests")) {
        if (entry.path().extension() != ".cpp") continue;
        const std::string text = playlist::contentOf(entry.path().string());
        for (std::sregex_iterator match(text.begin(), text.end(), test), end; match != end; ++match)
            names.insert((*match)[1].str() + "." + (*match)[2].str());
    }
    return names;
}

/// "67,108,864"
std::string withCommas(std::size_t number) {
    std::string text = std::to_string(number);
    for (std::size_t length = text.size(); length > 3; length -= 3)
        text.insert(length - 3, ",");
    return text;
}

TEST(SecurityPromises, AreShownByTestsThatExist) {
    const std::set<std::string> promised =
        allIn(policy(), "`([A-Z]\\w+\\.[A-Z]\\w+|test_\\w+\\.test_\\w+|\\w+\\.test\\.mjs)`");
    EXPECT_GT(promised.size(), 30U);
    std::vector<std::string> missing;
    const std::set<std::string> existing = testsThatExist();
    std::set_difference(promised.begin(), promised.end(), existing.begin(), existing.end(),
                        std::back_inserter(missing));
    EXPECT_EQ(missing, std::vector<std::string>());
}

TEST(SecurityPromises, NameATestInEachRow) {
    const std::regex row("\\n\\| [^\\n]*\\|");
    const std::string text = policy();
    for (std::sregex_iterator match(text.begin(), text.end(), row), end; match != end; ++match) {
        const std::string line = match->str();
        const bool isHeading = line.find("| shown by |") != std::string::npos;
        const bool namesTest = std::regex_search(line, std::regex("`\\w+\\.(\\w+|test\\.mjs)`|the same \\|"));
        EXPECT_TRUE(isHeading || namesTest) << line;
    }
}

TEST(SecurityPromises, BoundsAreThoseOfTheHeaders) {
    const std::map<std::string, std::size_t> bounds = {
        {"VELHLSUtility::maximumSubstitutedBytes", VELHLSUtility::maximumSubstitutedBytes},
        {"VELHLSUtility::maximumCollidingNames", VELHLSUtility::maximumCollidingNames},
        {"VELHLSMediaPattern::maximumExpansionBytes", VELHLSMediaPattern::maximumExpansionBytes},
        {"VELHLSMediaPattern::maximumExpansionBytesOfPlaylist",
         VELHLSMediaPattern::maximumExpansionBytesOfPlaylist},
        {"VELHLSMediaPattern::maximumExpansionSegments", VELHLSMediaPattern::maximumExpansionSegments},
        {"VELHLSDocument::maximumBytes", VELHLSDocument::maximumBytes},
        {"VELHLSStructure::maximumKeys", VELHLSStructure::maximumKeys},
        {"VELHLSDiagnostics::maximumFindingsPerRule", VELHLSDiagnostics::maximumFindingsPerRule},
        {"VELHLSFixes::maximumRounds", VELHLSFixes::maximumRounds},
        {"--max-bytes", tool::usualLargestInput},
    };
    const std::string text = policy();
    for (const auto& [name, value] : bounds) {
        const std::string row = "| `" + name + "` | " + withCommas(value) + " |";
        EXPECT_NE(text.find(row), std::string::npos) << row;
    }
    // A bound that a header has anew needs its row here and in SECURITY.md.
    for (const auto& entry : std::filesystem::recursive_directory_iterator(sources / "velhls")) {
        const std::string name = entry.path().stem().string();
        if (entry.path().extension() != ".h" || name.find("VELHLS") != 0) continue;
        const std::string header = playlist::contentOf(entry.path().string());
        for (const std::string& bound : allIn(header, "constexpr [\\w:]+ (maximum\\w+) ="))
            EXPECT_EQ(bounds.count(name + "::" + bound), 1U) << name << "::" << bound;
    }
}

}  // namespace
