// Each rule of the standard has a page in docs/standard, which says what its table says, and whose playlists are true.
#include <algorithm>
#include <filesystem>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "velhls/VELHLSCheck.h"

#include "tests/support/PlaylistText.h"
#include "tests/support/RulePage.h"

namespace {

using Profile = VELHLSStandard::Profile;

const std::string folder = VELHLS_SOURCE "/docs/standard/";

/// The rules that the profile adds to those of RFC 8216, where it stands upon these.
std::vector<VELHLSRule> ownRulesOf(Profile profile) {
    std::vector<VELHLSRule> rules = VELHLSStandard::rules(profile);
    if (profile != Profile::rfc8216bis) return rules;
    std::set<std::string_view> ofRfc8216;
    for (const VELHLSRule& rule : VELHLSStandard::rules(Profile::rfc8216))
        ofRfc8216.insert(rule.id);
    rules.erase(std::remove_if(rules.begin(), rules.end(),
                               [&](const VELHLSRule& rule) { return ofRfc8216.count(rule.id) != 0; }),
                rules.end());
    return rules;
}

std::set<std::string> rulesFound(const std::string& text, Profile profile, VELHLSFinding::Severity least) {
    std::set<std::string> found;
    for (const VELHLSFinding& finding : VELHLSStandard::check(VELHLSDocument(text), profile)) {
        if (finding.severity >= least) found.insert(finding.ruleId);
    }
    return found;
}

class StandardPages : public testing::TestWithParam<Profile> {};

TEST_P(StandardPages, SayWhatTheTablesSay) {
    for (const VELHLSRule& rule : ownRulesOf(GetParam())) {
        std::string words = playlist::contentOf(folder + std::string(rule.id) + ".md");
        std::replace(words.begin(), words.end(), '\n', ' ');
        const std::string head = "# " + std::string(rule.id) + "  " + std::string(rule.summary) +
                                 "  - Severity: " + std::string(VELHLSFinding::textOf(rule.severity)) +
                                 " - Source: " + std::string(rule.source) +
                                 " - Level: " + std::string(rule.level) +
                                 " - Profile: " + std::string(VELHLSStandard::nameOf(GetParam())) + " ";
        EXPECT_EQ(words.substr(0, head.size()), head);
    }
}

TEST_P(StandardPages, ShowAPlaylistThatBreaksTheRule) {
    for (const VELHLSRule& rule : ownRulesOf(GetParam())) {
        SCOPED_TRACE(rule.id);
        const std::string page = playlist::contentOf(folder + std::string(rule.id) + ".md");
        std::set<std::string> expected = rule_page::companionsOf(page);
        expected.insert(std::string(rule.id));
        const auto least = std::min(rule.severity, VELHLSFinding::Warning);
        EXPECT_EQ(rulesFound(rule_page::blockOf(page, "failing"), GetParam(), least), expected);
    }
}

TEST_P(StandardPages, ShowAPlaylistThatKeepsTheRule) {
    for (const VELHLSRule& rule : ownRulesOf(GetParam())) {
        const std::string page = playlist::contentOf(folder + std::string(rule.id) + ".md");
        const std::string good = rule_page::blockOf(page, "good");
        EXPECT_EQ(rulesFound(good, GetParam(), VELHLSFinding::Note).count(std::string(rule.id)), 0U)
            << rule.id;
    }
}

INSTANTIATE_TEST_SUITE_P(OfEachProfile, StandardPages,
                         testing::Values(Profile::rfc8216, Profile::rfc8216bis, Profile::apple),
                         [](const testing::TestParamInfo<Profile>& profile) {
                             return std::string(VELHLSStandard::nameOf(profile.param));
                         });

TEST(StandardPages, AreThoseOfTheRules) {
    std::set<std::string> pages;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        pages.insert(entry.path().stem().string());
    std::set<std::string> rules;
    for (const Profile profile : {Profile::rfc8216, Profile::rfc8216bis, Profile::apple}) {
        for (const VELHLSRule& rule : VELHLSStandard::rules(profile))
            rules.insert(std::string(rule.id));
        for (const VELHLSRule& rule : VELHLSPresentation::rules(profile))
            rules.insert(std::string(rule.id));
    }
    EXPECT_EQ(pages, rules);
}

}  // namespace
