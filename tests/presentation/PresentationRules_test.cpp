#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/presentation/Presented.h"

namespace presentation_test {
namespace {

using Profile = VELHLSStandard::Profile;

std::map<std::string, VELHLSRule> rulesById(Profile profile) {
    std::map<std::string, VELHLSRule> rules;
    for (const VELHLSRule& rule : VELHLSPresentation::rules(profile))
        EXPECT_TRUE(rules.emplace(rule.id, rule).second) << rule.id;
    return rules;
}

/// "a,b" of "b,a".
std::string sorted(const std::string& joined) {
    std::set<std::string> parts;
    std::istringstream stream(joined);
    for (std::string part; std::getline(stream, part, ',');)
        parts.insert(part);
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : ",") + part;
    return text;
}

/// Each breach is found by its rules and by no other.
void expectFound(const std::vector<Breach>& breaches, Profile profile) {
    const auto rules = rulesById(profile);
    for (const Breach& breach : breaches) {
        SCOPED_TRACE(breach.what);
        const auto findings = findingsIn(breach.broken(), profile);
        EXPECT_EQ(rulesIn(findings, VELHLSFinding::Note), sorted(breach.rules)) << shown(findings);
        ASSERT_FALSE(findings.empty());
        const VELHLSFinding& first = findings.front();
        EXPECT_EQ(first.uri, breach.foundIn) << shown(findings);
        EXPECT_EQ(first.line, breach.line) << shown(findings);
        ASSERT_EQ(rules.count(first.ruleId), 1U);
        const VELHLSRule& rule = rules.at(first.ruleId);
        EXPECT_EQ(first.severity, rule.severity);
        EXPECT_EQ(first.profile, VELHLSStandard::nameOf(profile));
        EXPECT_EQ(first.level, rule.level);
        EXPECT_EQ(first.clause, rule.source.substr(rule.source.rfind(' ') + 1));
        if (breach.relatedLine == 0) {
            EXPECT_TRUE(first.related.empty()) << shown(findings);
            continue;
        }
        ASSERT_FALSE(first.related.empty()) << shown(findings);
        EXPECT_EQ(first.related.front().uri, breach.related) << shown(findings);
        EXPECT_EQ(first.related.front().line, breach.relatedLine) << shown(findings);
    }
}

TEST(PresentationRules, FindWhatIsAgainstRfc8216) {
    expectFound(breachesOfRfc8216(), Profile::rfc8216);
}

TEST(PresentationRules, FindTheSameByItsSuccessor) {
    expectFound(breachesOfRfc8216(), Profile::rfc8216bis);
}

TEST(PresentationRules, FindWhatIsAgainstTheAuthoringRules) {
    expectFound(breachesOfAuthoringRules(), Profile::apple);
}

TEST(PresentationRules, SayNothingOfPresentationsThatKeepThem) {
    for (const auto presentation : {onDemand, measured, estimated, live, liveWithoutDates}) {
        const auto findings = findingsIn(presentation());
        EXPECT_EQ(shown(findings), "");
        // And neither have the texts by themselves anything above a note.
        for (const auto& [uri, text] : presentation()) {
            if (uri == "lyrics.json") continue;
            const auto ofText = VELHLSStandard::check(VELHLSDocument(text), Profile::rfc8216);
            EXPECT_EQ(rulesIn(ofText, VELHLSFinding::Warning), "") << uri << "\n" << shown(ofText) << text;
        }
    }
    for (const auto presentation : {authored, authoredLive})
        EXPECT_EQ(shown(findingsIn(presentation(), Profile::apple)), "");
}

TEST(PresentationRules, HaveABreachEach) {
    const auto brokenBy = [](const std::vector<Breach>& breaches) {
        std::set<std::string> broken;
        for (const Breach& breach : breaches) {
            std::istringstream stream(breach.rules);
            for (std::string rule; std::getline(stream, rule, ',');)
                broken.insert(rule);
        }
        return broken;
    };
    const std::set<std::string> ofRfc8216 = brokenBy(breachesOfRfc8216());
    const std::set<std::string> ofApple = brokenBy(breachesOfAuthoringRules());
    // These need resources that were not read: see VELHLSPresentation_test.cpp.
    const std::set<std::string> unread = {"playlist-missing", "session-data-missing", "resource-not-read"};
    for (const auto& [id, rule] : rulesById(Profile::rfc8216))
        EXPECT_EQ(ofRfc8216.count(id) + unread.count(id), 1U) << id;
    for (const auto& [id, rule] : rulesById(Profile::apple))
        EXPECT_EQ(ofApple.count(id) + unread.count(id), 1U) << id;
}

TEST(PresentationRules, WeighAsTheirClauseDoes) {
    for (const Profile profile : {Profile::rfc8216, Profile::rfc8216bis, Profile::apple}) {
        for (const auto& [id, rule] : rulesById(profile)) {
            const bool isWeak = rule.level == "SHOULD" || rule.level == "SHOULD NOT";
            EXPECT_FALSE(isWeak && rule.severity == VELHLSFinding::Error) << id;
            EXPECT_EQ(rule.summary.back(), '.') << id;
            EXPECT_FALSE(rule.expected.empty()) << id;
        }
    }
}

}  // namespace
}  // namespace presentation_test
