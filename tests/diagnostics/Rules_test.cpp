#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLSCheck.h"

#include "tests/support/LibraryFindings.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/RulePage.h"

namespace {

using playlist::contentOf;
using rule_page::blockOf;
using rule_page::companionsOf;

std::string pagePath(std::string_view id) {
    return VELHLS_RULE_PAGES "/" + std::string(id) + ".md";
}

std::set<std::string> rulesFound(const std::string& text, VELHLSFinding::Severity least) {
    std::set<std::string> found;
    for (const VELHLSFinding& finding : library::findingsIn(text)) {
        if (finding.severity >= least) found.insert(finding.ruleId);
    }
    return found;
}

TEST(Rules, HaveIdsThatAreUnique) {
    std::set<std::string_view> ids;
    for (const VELHLSRule& rule : library::rules())
        EXPECT_TRUE(ids.insert(rule.id).second) << rule.id;
}

TEST(Rules, AreFoundByTheirIds) {
    for (const VELHLSRule& rule : library::rules()) {
        const auto found = VELHLSDiagnostics::ruleNamed(std::string(rule.id));
        ASSERT_TRUE(found.has_value());
        EXPECT_EQ(found->id, rule.id);
    }
    EXPECT_FALSE(VELHLSDiagnostics::ruleNamed("no-such-rule").has_value());
    EXPECT_FALSE(VELHLSDiagnostics::ruleNamed("").has_value());
}

TEST(Rules, HavePagesThatSayWhatTheTableSays) {
    for (const VELHLSRule& rule : library::rules()) {
        SCOPED_TRACE(rule.id);
        const std::string page = contentOf(pagePath(rule.id));
        std::string words = page;
        std::replace(words.begin(), words.end(), '\n', ' ');
        const std::string head = "# " + std::string(rule.id) + "  " + std::string(rule.summary) +
                                 "  - Severity: " + std::string(VELHLSFinding::textOf(rule.severity)) +
                                 " - Source: " + std::string(rule.source) + " ";
        EXPECT_EQ(words.substr(0, head.size()), head);
        const bool saysLost =
            page.find("\n- What the library writes does not hold it any more.\n") != std::string::npos;
        EXPECT_EQ(saysLost, rule.isLostWhenWritten);
    }
}

TEST(Rules, HaveNoPagesWithoutThem) {
    std::set<std::string> pages;
    for (const auto& entry : std::filesystem::directory_iterator(VELHLS_RULE_PAGES))
        pages.insert(entry.path().stem().string());
    pages.erase("README");
    for (const VELHLSRule& rule : library::rules())
        pages.erase(std::string(rule.id));
    EXPECT_EQ(pages, std::set<std::string>());
}

TEST(Rules, AreListedInTheIndexInTheirOrder) {
    const std::string index = contentOf(pagePath("README"));
    std::size_t position = 0;
    for (const VELHLSRule& rule : library::rules()) {
        const std::string id(rule.id);
        const std::string row = "| [" + id + "](" + id + ".md) | " +
                                std::string(VELHLSFinding::textOf(rule.severity)) + " | " +
                                std::string(rule.summary) + " |\n";
        const std::size_t found = index.find(row, position);
        ASSERT_NE(found, std::string::npos) << row;
        position = found + row.size();
    }
    EXPECT_EQ(position, index.size());
}

/// Of a warning's and an error's page nothing else is found that weighs as much as a warning; of a note's page
/// nothing else at all.
TEST(Rules, AreAllThatIsFoundInTheFailingPlaylistsOfTheirPages) {
    for (const VELHLSRule& rule : library::rules()) {
        SCOPED_TRACE(rule.id);
        const std::string page = contentOf(pagePath(rule.id));
        std::set<std::string> expected = companionsOf(page);
        expected.insert(std::string(rule.id));
        const auto least = std::min(rule.severity, VELHLSFinding::Warning);
        EXPECT_EQ(rulesFound(blockOf(page, "failing"), least), expected) << blockOf(page, "failing");
    }
}

TEST(Rules, AreNotFoundInTheGoodPlaylistsOfTheirPages) {
    for (const VELHLSRule& rule : library::rules()) {
        SCOPED_TRACE(rule.id);
        const std::string good = blockOf(contentOf(pagePath(rule.id)), "good");
        EXPECT_NE(good, "no block");
        const std::set<std::string> found = rulesFound(good, VELHLSFinding::Note);
        EXPECT_EQ(found.count(std::string(rule.id)), 0U) << good;
        for (const std::string& id : found) {
            EXPECT_NE(VELHLSDiagnostics::ruleNamed(id)->severity, VELHLSFinding::Error) << id;
        }
    }
}

TEST(Rules, HaveTheFailingPlaylistsOfTheirPagesAmongTheExamples) {
    for (const VELHLSRule& rule : library::rules()) {
        const std::string example = VELHLS_EXAMPLE_FINDINGS "/" + std::string(rule.id) + ".m3u8";
        EXPECT_EQ(contentOf(example), blockOf(contentOf(pagePath(rule.id)), "failing")) << rule.id;
    }
}

}  // namespace
