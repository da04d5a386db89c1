// Each rule of presentations has a page in docs/rules, which says what its table says, and whose presentations are true.
#include <algorithm>
#include <deque>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "velhls/VELHLSCheck.h"

#include "tests/support/PlaylistText.h"
#include "tests/support/PresentationPage.h"
#include "tests/support/RulePage.h"

namespace {

using Profile = VELHLSStandard::Profile;
using Texts = std::vector<std::pair<std::string, std::string>>;

std::string pageOf(const VELHLSRule& rule) {
    return playlist::contentOf(VELHLS_SOURCE "/docs/rules/" + std::string(rule.id) + ".md");
}

/// What the master playlist names and the page does not show is not there.
std::set<std::string> rulesFound(const Texts& texts, Profile profile, VELHLSFinding::Severity least) {
    std::set<std::string> found;
    if (texts.empty()) return {"no blocks"};
    std::deque<VELHLSDocument> documents;
    std::vector<VELHLSPresentation::Resource> resources;
    for (const auto& [uri, text] : texts) {
        documents.emplace_back(text);
        resources.push_back({uri, &documents.back()});
    }
    for (const VELHLSPresentation::Reference& reference : VELHLSPresentation::references(documents.front())) {
        const bool leadsOut = reference.uri.substr(0, 3) == "../";
        resources.push_back(
            {std::string(reference.uri), nullptr, leadsOut ? "it leads out of the folder" : ""});
    }
    for (const VELHLSFinding& finding : VELHLSPresentation::check(resources.front(), resources, {profile})) {
        if (finding.severity >= least) found.insert(finding.ruleId);
    }
    return found;
}

class PresentationPages : public testing::TestWithParam<Profile> {};

TEST_P(PresentationPages, SayWhatTheTablesSay) {
    for (const VELHLSRule& rule : VELHLSPresentation::rules(GetParam())) {
        std::string words = pageOf(rule);
        std::replace(words.begin(), words.end(), '\n', ' ');
        std::string head = "# " + std::string(rule.id) + "  " + std::string(rule.summary) +
                           "  - Severity: " + std::string(VELHLSFinding::textOf(rule.severity)) +
                           " - Source: " + std::string(rule.source) + " ";
        if (!rule.level.empty()) {
            head += "- Level: " + std::string(rule.level) +
                    " - Profile: " + std::string(VELHLSStandard::nameOf(GetParam())) + " ";
        }
        EXPECT_EQ(words.substr(0, head.size()), head);
    }
}

TEST_P(PresentationPages, ShowAPresentationThatBreaksTheRule) {
    for (const VELHLSRule& rule : VELHLSPresentation::rules(GetParam())) {
        SCOPED_TRACE(rule.id);
        const std::string page = pageOf(rule);
        std::set<std::string> expected = rule_page::companionsOf(page);
        expected.insert(std::string(rule.id));
        const auto least = std::min(rule.severity, VELHLSFinding::Warning);
        EXPECT_EQ(rulesFound(rule_page::textsOf(page, "failing"), GetParam(), least), expected);
    }
}

TEST_P(PresentationPages, ShowAPresentationThatKeepsTheRule) {
    for (const VELHLSRule& rule : VELHLSPresentation::rules(GetParam())) {
        const Texts good = rule_page::textsOf(pageOf(rule), "good");
        const auto found = rulesFound(good, GetParam(), VELHLSFinding::Warning);
        EXPECT_EQ(found, std::set<std::string>()) << rule.id;
        EXPECT_EQ(rulesFound(good, GetParam(), VELHLSFinding::Note).count(std::string(rule.id)), 0U)
            << rule.id;
    }
}

INSTANTIATE_TEST_SUITE_P(OfEachProfile, PresentationPages, testing::Values(Profile::rfc8216, Profile::apple),
                         [](const testing::TestParamInfo<Profile>& profile) {
                             return std::string(VELHLSStandard::nameOf(profile.param));
                         });

}  // namespace
