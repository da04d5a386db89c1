// Each rule has a page in docs/rules, which says what its table says, and whose playlists are true.
#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLSCheck.h"

#include "tests/support/PlaylistText.h"
#include "tests/support/RulePage.h"

namespace {

using playlist::contentOf;
using rule_page::blockOf;
using rule_page::companionsOf;
using Profile = VELHLSDiagnostics::Profile;

/// Those of presentations, whose pages have several playlists, and tests of their own.
std::set<std::string_view> idsOfPresentations() {
    std::set<std::string_view> ids;
    for (const auto profile : {VELHLSStandard::Profile::rfc8216, VELHLSStandard::Profile::rfc8216bis,
                               VELHLSStandard::Profile::apple}) {
        for (const VELHLSRule& rule : VELHLSPresentation::rules(profile))
            ids.insert(rule.id);
    }
    return ids;
}

/// Of a rule that several profiles have, that of the first.
std::vector<VELHLSRule> allRules() {
    std::vector<VELHLSRule> all;
    std::set<std::string_view> ids;
    for (const Profile profile : VELHLSDiagnostics::profiles()) {
        for (const VELHLSRule& rule : VELHLSDiagnostics::rules(profile)) {
            if (ids.insert(rule.id).second) all.push_back(rule);
        }
    }
    return all;
}

std::vector<VELHLSRule> rulesOfOnePlaylist() {
    std::vector<VELHLSRule> rules = allRules();
    const std::set<std::string_view> others = idsOfPresentations();
    rules.erase(std::remove_if(rules.begin(), rules.end(),
                               [&](const VELHLSRule& rule) { return others.count(rule.id) != 0; }),
                rules.end());
    return rules;
}

std::string pagePath(std::string_view id) {
    return VELHLS_RULE_PAGES "/" + std::string(id) + ".md";
}

std::set<std::string> rulesFound(const std::string& text, const VELHLSRule& rule,
                                 VELHLSFinding::Severity least) {
    std::set<std::string> found;
    const VELHLSDiagnostics::Options options = {VELHLSDiagnostics::Detect,
                                                {*VELHLSDiagnostics::profileNamed(rule.profile)}};
    for (const VELHLSFinding& finding : VELHLSDiagnostics::check(text, options).findings) {
        if (finding.severity >= least) found.insert(finding.ruleId);
    }
    return found;
}

TEST(Rules, HaveIdsThatAreUniqueInEachProfile) {
    for (const Profile profile : VELHLSDiagnostics::profiles()) {
        std::set<std::string_view> ids;
        for (const VELHLSRule& rule : VELHLSDiagnostics::rules(profile))
            EXPECT_TRUE(ids.insert(rule.id).second) << rule.id;
    }
}

TEST(Rules, OfTheLibraryHaveIdsThatTheStandardsHaveNot) {
    std::set<std::string_view> ids;
    for (const Profile profile : {Profile::rfc8216, Profile::rfc8216bis, Profile::apple}) {
        for (const VELHLSRule& rule : VELHLSDiagnostics::rules(profile))
            ids.insert(rule.id);
    }
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules(Profile::library))
        EXPECT_EQ(ids.count(rule.id), rule.id == "not-a-playlist" ? 1U : 0U) << rule.id;
}

TEST(Rules, OfTheLibraryNameNoStandardAsTheirSource) {
    for (const VELHLSRule& rule : VELHLSDiagnostics::rules(Profile::library))
        EXPECT_TRUE(rule.source == "library behaviour" || rule.source == "vendor extension") << rule.id;
}

TEST(Rules, AreFoundByTheirIds) {
    for (const VELHLSRule& rule : allRules()) {
        const auto found = VELHLSDiagnostics::ruleNamed(rule.id);
        ASSERT_TRUE(found.has_value());
        EXPECT_EQ(found->summary, rule.summary);
        EXPECT_EQ(found->profile, rule.profile);
    }
    EXPECT_FALSE(VELHLSDiagnostics::ruleNamed("no-such-rule").has_value());
    EXPECT_FALSE(VELHLSDiagnostics::ruleNamed("").has_value());
}

TEST(Rules, HavePagesThatSayWhatTheTableSays) {
    for (const VELHLSRule& rule : rulesOfOnePlaylist()) {
        SCOPED_TRACE(rule.id);
        const std::string page = contentOf(pagePath(rule.id));
        std::string words = page;
        std::replace(words.begin(), words.end(), '\n', ' ');
        const std::string level = rule.level.empty() ? "" : " - Level: " + std::string(rule.level);
        const std::string head = "# " + std::string(rule.id) + "  " + std::string(rule.summary) +
                                 "  - Severity: " + std::string(VELHLSFinding::textOf(rule.severity)) +
                                 " - Source: " + std::string(rule.source) + level +
                                 " - Profile: " + std::string(rule.profile) + " ";
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
    for (const VELHLSRule& rule : allRules())
        pages.erase(std::string(rule.id));
    EXPECT_EQ(pages, std::set<std::string>());
}

TEST(Rules, AreListedInTheIndexInTheirOrder) {
    const std::string index = contentOf(pagePath("README"));
    std::size_t position = 0;
    for (const VELHLSRule& rule : allRules()) {
        const std::string id(rule.id);
        const std::string row = "| [" + id + "](" + id + ".md) | " + std::string(rule.profile) + " | " +
                                std::string(VELHLSFinding::textOf(rule.severity)) + " | " +
                                std::string(rule.summary) + " |\n";
        const std::size_t found = index.find(row, position);
        ASSERT_NE(found, std::string::npos) << row;
        position = found + row.size();
    }
    EXPECT_EQ(position, index.size());
}

/// Which names of variables meet in one place of a map is up to the standard library: those of the page do in GNU's of 64 bits.
bool hasExampleForAnother(const VELHLSRule& rule) {
#ifdef __GLIBCXX__
    constexpr bool isAnother = sizeof(std::size_t) < 8;
#else
    constexpr bool isAnother = true;
#endif
    return isAnother && rule.id == "define-names-collide";
}

/// Of a warning's and an error's page nothing else is found that weighs as much as a warning; of a note's page
/// nothing else at all.
TEST(Rules, AreAllThatIsFoundInTheFailingPlaylistsOfTheirPages) {
    for (const VELHLSRule& rule : rulesOfOnePlaylist()) {
        if (hasExampleForAnother(rule)) continue;
        SCOPED_TRACE(rule.id);
        const std::string page = contentOf(pagePath(rule.id));
        std::set<std::string> expected = companionsOf(page);
        expected.insert(std::string(rule.id));
        const auto least = std::min(rule.severity, VELHLSFinding::Warning);
        EXPECT_EQ(rulesFound(blockOf(page, "failing"), rule, least), expected) << blockOf(page, "failing");
    }
}

TEST(Rules, AreNotFoundInTheGoodPlaylistsOfTheirPages) {
    for (const VELHLSRule& rule : rulesOfOnePlaylist()) {
        SCOPED_TRACE(rule.id);
        const std::string good = blockOf(contentOf(pagePath(rule.id)), "good");
        EXPECT_NE(good, "no block");
        const std::set<std::string> found = rulesFound(good, rule, VELHLSFinding::Note);
        EXPECT_EQ(found.count(std::string(rule.id)), 0U) << good;
        const std::set<std::string> errors = rulesFound(good, rule, VELHLSFinding::Error);
        EXPECT_EQ(errors, std::set<std::string>()) << good;
    }
}

TEST(Rules, HaveTheFailingPlaylistsOfTheirPagesAmongTheExamples) {
    for (const VELHLSRule& rule : rulesOfOnePlaylist()) {
        const std::string example = VELHLS_EXAMPLE_FINDINGS "/" + std::string(rule.id) + ".m3u8";
        EXPECT_EQ(contentOf(example), blockOf(contentOf(pagePath(rule.id)), "failing")) << rule.id;
    }
}

}  // namespace
