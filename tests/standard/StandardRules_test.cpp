#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/standard/Breach.h"

namespace standard_test {
namespace {

using StandardProfile = VELHLSStandard::Profile;

std::map<std::string, VELHLSRule> rulesById(StandardProfile profile) {
    std::map<std::string, VELHLSRule> rules;
    for (const VELHLSRule& rule : VELHLSStandard::rules(profile))
        EXPECT_TRUE(rules.emplace(rule.id, rule).second) << rule.id;
    return rules;
}

std::set<std::string> split(const std::string& joined) {
    std::set<std::string> parts;
    std::istringstream stream(joined);
    for (std::string part; std::getline(stream, part, ',');)
        parts.insert(part);
    return parts;
}

/// Each breach is found by its rules and, above a note, by no other.
void expectFound(const std::vector<Breach>& breaches, StandardProfile profile) {
    const auto rules = rulesById(profile);
    for (const Breach& breach : breaches) {
        SCOPED_TRACE(breach.what);
        const std::string text = breach.broken();
        const auto findings = findingsIn(text, profile);
        std::set<std::string> serious;
        std::set<std::string> notes;
        for (const std::string& id : split(breach.rules)) {
            ASSERT_EQ(rules.count(id), 1U) << id;
            (rules.at(id).severity == VELHLSFinding::Note ? notes : serious).insert(id);
        }
        EXPECT_EQ(split(rulesIn(findings, VELHLSFinding::Warning)), serious) << shown(findings) << text;
        const auto isNamed = [&](const VELHLSFinding& finding) {
            return serious.count(finding.ruleId) + notes.count(finding.ruleId) > 0;
        };
        const auto first = std::find_if(findings.begin(), findings.end(), isNamed);
        ASSERT_NE(first, findings.end()) << shown(findings) << text;
        EXPECT_EQ(first->line, breach.line) << shown(findings);
        EXPECT_EQ(first->profile, VELHLSStandard::nameOf(profile));
        EXPECT_EQ(first->level, rules.at(first->ruleId).level);
        EXPECT_FALSE(first->clause.empty());
    }
}

/// And the playlists that they break keep all rules.
void expectControls(const std::vector<Breach>& breaches, StandardProfile profile) {
    for (const Breach& breach : breaches) {
        if (breach.text == breach.playlist) continue;
        const auto findings = findingsIn(breach.playlist, profile);
        EXPECT_EQ(rulesIn(findings, VELHLSFinding::Warning), "") << breach.what << "\n"
                                                                 << shown(findings) << breach.playlist;
    }
}

TEST(StandardRules, FindWhatIsAgainstRfc8216) {
    expectFound(breachesOfRfc8216(), StandardProfile::rfc8216);
    expectControls(breachesOfRfc8216(), StandardProfile::rfc8216);
}

TEST(StandardRules, FindWhatIsAgainstItsSuccessor) {
    expectFound(laterBreaches(), StandardProfile::rfc8216bis);
    expectControls(laterBreaches(), StandardProfile::rfc8216bis);
}

TEST(StandardRules, FindWhatIsAgainstTheAuthoringRules) {
    expectFound(authoringBreaches(), StandardProfile::apple);
    expectControls(authoringBreaches(), StandardProfile::apple);
}

TEST(StandardRules, FindTheSameByTheSuccessorWhereItChangesNothing) {
    // It lets INSTREAM-ID stand with every type.
    for (const Breach& breach : breachesOfRfc8216()) {
        if (breach.rules.find("rendition-instream-id-elsewhere") != std::string::npos) continue;
        const auto findings = findingsIn(breach.broken(), StandardProfile::rfc8216bis);
        std::set<std::string> found = split(rulesIn(findings, VELHLSFinding::Note));
        for (const std::string& id : split(breach.rules))
            EXPECT_EQ(found.count(id), 1U) << breach.what << ": " << id << "\n" << shown(findings);
    }
}

TEST(StandardRules, HaveABreachEach) {
    std::set<std::string> broken;
    std::vector<Breach> all = breachesOfRfc8216();
    for (const auto& table : {laterBreaches(), authoringBreaches()})
        all.insert(all.end(), table.begin(), table.end());
    for (const Breach& breach : all) {
        const std::set<std::string> rules = split(breach.rules);
        broken.insert(rules.begin(), rules.end());
    }
    for (const StandardProfile profile :
         {StandardProfile::rfc8216, StandardProfile::rfc8216bis, StandardProfile::apple}) {
        for (const auto& [id, rule] : rulesById(profile))
            EXPECT_EQ(broken.count(id), 1U) << id;
    }
}

TEST(StandardRules, WeighAsTheirClauseDoes) {
    for (const StandardProfile profile :
         {StandardProfile::rfc8216, StandardProfile::rfc8216bis, StandardProfile::apple}) {
        for (const auto& [id, rule] : rulesById(profile)) {
            const bool isWeak = rule.level == "SHOULD" || rule.level == "SHOULD NOT" || rule.level == "REC";
            EXPECT_FALSE(isWeak && rule.severity == VELHLSFinding::Error) << id;
            EXPECT_EQ(rule.summary.back(), '.') << id;
            EXPECT_FALSE(rule.expected.empty()) << id;
            EXPECT_NE(rule.source.find(' '), std::string_view::npos) << id;
        }
    }
}

TEST(StandardRules, KeepOnlySomeFindingsOfOneRuleAndCountTheOthers) {
    std::string text = vod;
    for (int count = 0; count < 250; ++count)
        text += "#EXT-X-ENDLIST\n";
    const auto findings = findingsIn(text, StandardProfile::rfc8216);
    ASSERT_EQ(findings.size(), 100U);
    EXPECT_EQ(findings.front().suppressed, 0U);
    EXPECT_EQ(findings.back().suppressed, 150U);
}

TEST(StandardRules, SayWhatWasExpectedAndSeenAndWhere) {
    const auto findings = findingsIn("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1, CODECS=\"avc1\"\nlow.m3u8\n",
                                     StandardProfile::rfc8216);
    ASSERT_FALSE(findings.empty());
    const auto isSpace = [](const VELHLSFinding& finding) {
        return finding.ruleId == "attribute-white-space";
    };
    const auto found = std::find_if(findings.begin(), findings.end(), isSpace);
    ASSERT_NE(found, findings.end());
    EXPECT_EQ(found->message,
              "EXT-X-STREAM-INF: expected no white space around commas and equals signs, seen white space");
    EXPECT_EQ(found->line, 2U);
    EXPECT_EQ(found->column, 31U);
    EXPECT_EQ(found->length, 1U);
    EXPECT_EQ(found->source, "RFC 8216, section 4.2");
    EXPECT_EQ(found->clause, "4.2");
    EXPECT_EQ(found->level, "MUST NOT");
    EXPECT_EQ(found->profile, "rfc8216");
}

}  // namespace
}  // namespace standard_test
