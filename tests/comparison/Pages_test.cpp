// Each rule of updates has a page in docs/comparison, which says what its table says, and whose playlists are true.
#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "tests/comparison/Updates.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/RulePage.h"

namespace comparison_test {
namespace {

const std::string folder = VELHLS_SOURCE "/docs/comparison/";

std::string pageOf(const VELHLSRule& rule) {
    return playlist::contentOf(folder + std::string(rule.id) + ".md");
}

/// The seconds of "- Elapsed: 9 seconds".
std::optional<double> elapsedIn(const std::string& page) {
    const std::string opening = "\n- Elapsed: ";
    const std::size_t start = page.find(opening);
    if (start == std::string::npos) return std::nullopt;
    return std::stod(page.substr(start + opening.size()));
}

std::set<std::string> rulesFound(const std::string& page, const std::string& block) {
    const Versions versions = {rule_page::blockOf(page, "before"), rule_page::blockOf(page, block),
                               elapsedIn(page)};
    std::set<std::string> found;
    for (const VELHLSFinding& finding : compared(versions).findings)
        found.insert(finding.ruleId);
    return found;
}

TEST(ComparisonPages, SayWhatTheTablesSay) {
    for (const VELHLSRule& rule : VELHLSComparison::rules()) {
        const std::string head = "# " + std::string(rule.id) + "\n\n" + std::string(rule.summary) +
                                 "\n\n- Severity: " + std::string(VELHLSFinding::textOf(rule.severity)) +
                                 "\n- Source: " + std::string(rule.source) +
                                 "\n- Level: " + std::string(rule.level) + "\n- Profile: rfc8216\n";
        EXPECT_EQ(pageOf(rule).substr(0, head.size()), head);
    }
}

TEST(ComparisonPages, ShowVersionsThatBreakTheRule) {
    for (const VELHLSRule& rule : VELHLSComparison::rules()) {
        const std::string page = pageOf(rule);
        std::set<std::string> expected = rule_page::companionsOf(page);
        expected.insert(std::string(rule.id));
        EXPECT_EQ(rulesFound(page, "failing"), expected) << rule.id;
    }
}

TEST(ComparisonPages, ShowVersionsThatKeepEveryRule) {
    for (const VELHLSRule& rule : VELHLSComparison::rules())
        EXPECT_EQ(rulesFound(pageOf(rule), "good"), std::set<std::string>()) << rule.id;
}

TEST(ComparisonPages, AreThoseOfTheRules) {
    std::set<std::string> pages;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        pages.insert(entry.path().stem().string());
    std::set<std::string> rules;
    for (const VELHLSRule& rule : VELHLSComparison::rules())
        EXPECT_TRUE(rules.insert(std::string(rule.id)).second) << rule.id;
    EXPECT_EQ(pages, rules);
}

/// A name tells of one rule, whoever has it.
TEST(ComparisonPages, HaveNamesThatNoOtherRuleHas) {
    std::set<std::string> others;
    for (const VELHLSRule& rule : VELHLSStandard::rules(VELHLSStandard::Profile::rfc8216bis))
        others.insert(std::string(rule.id));
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules(VELHLSDiagnostics::Profile::library))
        others.insert(std::string(rule.id));
    for (const VELHLSRule& rule : VELHLSComparison::rules())
        EXPECT_EQ(others.count(std::string(rule.id)), 0U) << rule.id;
}

}  // namespace
}  // namespace comparison_test
