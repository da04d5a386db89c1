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
        EXPECT_FALSE(first->level.empty());
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
    EXPECT_EQ(
        found->message,
        "EXT-X-STREAM-INF: expected no white space around commas and equals signs, seen white space after "
        "a comma");
    EXPECT_EQ(found->line, 2U);
    EXPECT_EQ(found->column, 31U);
    EXPECT_EQ(found->length, 1U);
    EXPECT_EQ(found->source, "RFC 8216, section 4.2");
    EXPECT_EQ(found->clause, "4.2");
    EXPECT_EQ(found->level, "MUST NOT");
    EXPECT_EQ(found->profile, "rfc8216");
}

/// What is said of errors: "2:5 EXT-X-KEY: expected …" for each, with line feeds between them.
std::string errorsIn(const std::string& text) {
    std::string said;
    for (const VELHLSFinding& finding : findingsIn(text, StandardProfile::rfc8216)) {
        if (finding.severity != VELHLSFinding::Error) continue;
        said += (said.empty() ? "" : "\n") + std::to_string(finding.line) + ":" +
                std::to_string(finding.column) + " " + finding.message;
    }
    return said;
}

TEST(StandardRules, SayTheKeyWordOfTheClauseThatIsBroken) {
    const auto levelOf = [](const char* playlist, const std::string& text, const std::string& replacement) {
        const auto findings =
            findingsIn(Breach{"", playlist, text, replacement, "", 0}.broken(), StandardProfile::rfc8216);
        const auto worst = std::max_element(
            findings.begin(), findings.end(),
            [](const auto& left, const auto& right) { return left.severity < right.severity; });
        return worst == findings.end() ? std::string() : worst->clause + " " + worst->level;
    };
    EXPECT_EQ(levelOf(master, "BANDWIDTH=2560000,", ""), "4.3.4.2 MUST");
    EXPECT_EQ(levelOf(master, ",URI=\"i-frames.m3u8\"", ""), "4.3.4.3 MUST");
    EXPECT_EQ(levelOf(master, "TYPE=SUBTITLES,", ""), "4.3.4.1 REQUIRED");
    EXPECT_EQ(levelOf(master, "\"A title\"", "\"A \"title\""), "4.2 MUST NOT");
    EXPECT_EQ(levelOf(master, "\"A title\"", "\"A title\"x"), "4.2 SYN");
    EXPECT_EQ(levelOf(dateRanges, "DURATION=1\n", "DURATION=-1\n"), "4.3.2.7 MUST NOT");
    EXPECT_EQ(levelOf(dateRanges, "\"A song\"", "SONG"), "4.3.2.7 MUST");
    EXPECT_EQ(levelOf(dateRanges, "END-ON-NEXT=YES", "END-ON-NEXT=NO"), "4.3.2.7 MUST");
    EXPECT_EQ(levelOf(dateRanges, "SCTE35-OUT=0xFC", "SCTE35-OUT=FC"), "4.3.2.7 MUST");
    EXPECT_EQ(levelOf(dateRanges, "X-COM-EXAMPLE-TITLE", "X-COM-EXAMPLE-Title"), "4.3.2.7 MUST");
    EXPECT_EQ(levelOf(live, "100.ts", "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n100.ts"),
              "6.2.1 MUST NOT");
    EXPECT_EQ(levelOf(fragments, "METHOD=AES-128", "METHOD=AES-256"), "4.3.2.4 SYN");
}

TEST(StandardRules, OfferTheWordsThatATagOrAnAttributeMayHave) {
    EXPECT_EQ(errorsIn("#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-PLAYLIST-TYPE:LIVE\n"
                       "#EXT-X-KEY:METHOD=AES-256,URI=\"k\"\n#EXTINF:6,\na.ts\n#EXT-X-ENDLIST\n"),
              "3:22 EXT-X-PLAYLIST-TYPE: expected EVENT or VOD, seen \"LIVE\"\n"
              "4:19 EXT-X-KEY: METHOD: expected NONE, AES-128 or SAMPLE-AES, seen \"AES-256\"");
}

TEST(StandardRules, NameTheGroupThatAnotherIsComparedWithAndTheMember) {
    const std::string rendition = "#EXT-X-MEDIA:TYPE=AUDIO,CHANNELS=\"2\",";
    EXPECT_EQ(
        errorsIn("#EXTM3U\n" + rendition + "GROUP-ID=\"z\",NAME=\"B\",LANGUAGE=\"en\"\n" + rendition +
                 "GROUP-ID=\"z\",NAME=\"A\"\n" + rendition + "GROUP-ID=\"a\",NAME=\"B\",LANGUAGE=\"de\"\n" +
                 rendition + "GROUP-ID=\"a\",NAME=\"C\"\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n"),
        "4:60 EXT-X-MEDIA: expected LANGUAGE as \"B\" has it in group \"z\" in line 2, seen "
        "\"LANGUAGE=\"de\"\"\n"
        "5:2 EXT-X-MEDIA: expected in group \"a\" the same members as in group \"z\", which line 2 "
        "begins, seen \"C\", which is not there");
}

TEST(StandardRules, TellOfLinesThatAreAllIndentedOnce) {
    EXPECT_EQ(
        errorsIn("#EXTM3U\n  #EXT-X-TARGETDURATION:6\n\n  #EXTINF:6,\n  a.ts\n#EXTINF:6,\n\tb.ts\n"),
        "2:1 expected no white space, seen white space before a tag, and before all tags and URIs up to "
        "line 5\n"
        "7:1 expected no white space, seen white space before a URI");
    // What else is wrong of an indented line is told.
    EXPECT_EQ(
        errorsIn("#EXTM3U\n #EXT-X-TARGETDURATION:6\n #EXTINF:6,\n a b.ts\n"),
        "2:1 expected no white space, seen white space before a tag, and before all tags and URIs up to "
        "line 4\n"
        "4:3 expected no white space, seen white space inside a URI");
}

TEST(StandardRules, SayWhichCommaOrQuoteOrBlankOfAListIsOneTooMany) {
    const auto ofList = [](const std::string& list) {
        return errorsIn("#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-KEY:METHOD=AES-128,URI=\"k\"" + list +
                        "\n#EXT-X-VERSION:2\n#EXTINF:6,\na.ts\n#EXT-X-ENDLIST\n");
    };
    EXPECT_EQ(ofList(","), "3:34 EXT-X-KEY: expected no comma at the end of the list, seen one");
    EXPECT_EQ(ofList(",,A=1"), "3:34 EXT-X-KEY: expected an attribute between two commas, seen one");
    EXPECT_EQ(ofList(",=1"), "3:35 EXT-X-KEY: expected a name, seen nothing");
    EXPECT_EQ(ofList(",A"), "3:36 EXT-X-KEY: expected an equals sign after A, seen nothing");
    EXPECT_EQ(ofList(",A="), "3:37 EXT-X-KEY: A: expected a value after A=, seen nothing");
    EXPECT_EQ(ofList(",IV=0x00112233445566778899AABBCCDDEEFF\""),
              "3:72 EXT-X-KEY: expected no quote inside of IV, which has none before its value, seen one");
    EXPECT_EQ(ofList(",A=\"b"), "3:37 EXT-X-KEY: A: expected a second quote, which closes A, seen \"\"\"");
    EXPECT_EQ(ofList(",A=\"b\"c"),
              "3:40 EXT-X-KEY: expected a comma after the closing quote of A, seen \"c\"");
    const std::string blanks = "EXT-X-KEY: expected no white space around commas and equals signs, seen ";
    EXPECT_EQ(ofList(", A=1"), "3:35 " + blanks + "white space after a comma");
    EXPECT_EQ(ofList(",A =1"), "3:36 " + blanks + "white space at an equals sign");
    EXPECT_EQ(ofList(",A= 1"), "3:37 EXT-X-KEY: A" + blanks.substr(9) + "white space at an equals sign");
    EXPECT_EQ(ofList(",A=1 ,B=1"), "3:38 " + blanks + "white space before a comma");
    EXPECT_EQ(ofList(",A=1 1"), "3:38 " + blanks + "white space inside of a value");
    EXPECT_EQ(errorsIn("#EXTM3U\n#EXT-X-STREAM-INF:,BANDWIDTH=1\nlow.m3u8\n"),
              "2:19 EXT-X-STREAM-INF: expected no comma at the beginning of the list, seen one");
}

}  // namespace
}  // namespace standard_test
