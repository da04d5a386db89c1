// What is wrong is mended, and nothing else is touched.
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/support/Corpus.h"
#include "tests/support/FixOracle.h"
#include "tests/support/Mutations.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/RulePage.h"

namespace {

using playlist::contentOf;
using playlist::lines;
using Profile = VELHLSDiagnostics::Profile;

VELHLSFixes::Options optionsOf(Profile profile, VELHLSFix::Class mostDaring) {
    VELHLSFixes::Options options;
    options.profiles = {profile};
    options.lossy = mostDaring >= VELHLSFix::Lossy;
    options.guess = mostDaring >= VELHLSFix::Guess;
    return options;
}

std::string mended(const std::string& text, Profile profile, VELHLSFix::Class mostDaring = VELHLSFix::Safe) {
    return VELHLSFixes::apply(text, optionsOf(profile, mostDaring)).text;
}

std::string mendedForModels(const std::string& text) {
    return VELHLSFixes::forModels(text).text;
}

struct Mend {
    const char* fault;
    std::string text;
    std::string expected;
};

const std::string head = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n";
const std::string segment = "#EXTINF:6,\nfirst.ts\n";

TEST(VELHLSFixes, MendWhatModelsRejectWithoutChangingWhatItMeans) {
    const std::string variant = "#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n";
    const Mend mends[] = {
        {"no last line feed", head + "#EXTINF:6,\nfirst.ts", head + segment},
        {"no last line feed after carriage returns", "#EXTM3U\r\n#EXTINF:6,\r\nfirst.ts",
         "#EXTM3U\r\n#EXTINF:6,\r\nfirst.ts\r\n"},
        {"a byte order mark", "\xEF\xBB\xBF" + head + segment, head + segment},
        {"a short URI", head + "#EXTINF:6,\n0.ts\n", head + "#EXTINF:6,\n./0.ts\n"},
        {"a shorter one", head + "#EXTINF:6,\na\n", head + "#EXTINF:6,\n./././a\n"},
        {"one that would be read as a range", head + "#EXTINF:6,\nabc12\n", head + "#EXTINF:6,\n././abc12\n"},
        {"one of digits alone", head + "#EXTINF:6,\n12345\n", head + "#EXTINF:6,\n././././12345\n"},
        {"an absolute path", head + "#EXTINF:6,\n/0.ts\n", head + "#EXTINF:6,\n/./0.ts\n"},
        {"an unknown tag", head + "#EXTINF:6,\n#EXT-X-BITRATE:800\nfirst.ts\n",
         head + "#EXT-X-BITRATE:800\n#EXTINF:6,\nfirst.ts\n"},
        {"two of them", head + "#EXTINF:6,\n#EXT-X-GAP\n#EXT-X-BITRATE:8\nfirst.ts\n",
         head + "#EXT-X-GAP\n#EXT-X-BITRATE:8\n#EXTINF:6,\nfirst.ts\n"},
        {"the end in a segment", "#EXTM3U\n#EXTINF:6,\n#EXT-X-ENDLIST\nfirst.ts\n",
         "#EXTM3U\n#EXTINF:6,\nfirst.ts\n#EXT-X-ENDLIST\n"},
        {"white space after a tag", head + "#EXT-X-KEY:METHOD=NONE\n#EXT-X-DISCONTINUITY \n" + segment,
         head + "#EXT-X-KEY:METHOD=NONE\n#EXT-X-DISCONTINUITY\n" + segment},
        {"an IV of few digits", head + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0X1f\n" + segment,
         head + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0x0000000000000000000000000000001f\n" + segment},
        {"an offset without a colon",
         head + "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:00.000+0200\n" + segment,
         head + "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:00.000+02:00\n" + segment},
        {"a date of digits", head + "#EXT-X-PROGRAM-DATE-TIME:20200101T100000Z\n" + segment,
         head + "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:00Z\n" + segment},
        {"a text that is indented",
         "  #EXTM3U\n  # six\n  #EXT-X-TARGETDURATION:6\n  #EXTINF:6,\n  first.ts\n  #EXTINF:6,\n  "
         "first.ts\n",
         "#EXTM3U\n# six\n#EXT-X-TARGETDURATION:6\n" + segment + segment},
        {"no seconds", head + "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00Z\n" + segment,
         head + "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:00Z\n" + segment},
        {"white space in a list", "#EXTM3U\n#EXT-X-STREAM-INF:PROGRAM-ID=1, BANDWIDTH = 1\nlow.m3u8\n",
         "#EXTM3U\n#EXT-X-STREAM-INF:PROGRAM-ID=1,BANDWIDTH=1\nlow.m3u8\n"},
        {"white space before a comma", "#EXTM3U\n#EXT-X-STREAM-INF:CODECS=\"a\" ,BANDWIDTH=1\nlow.m3u8\n",
         "#EXTM3U\n#EXT-X-STREAM-INF:CODECS=\"a\",BANDWIDTH=1\nlow.m3u8\n"},
        {"stray commas", "#EXTM3U\n#EXT-X-STREAM-INF:,PROGRAM-ID=1,, BANDWIDTH=1,\nlow.m3u8\n",
         "#EXTM3U\n#EXT-X-STREAM-INF:PROGRAM-ID=1,BANDWIDTH=1\nlow.m3u8\n"},
        {"DATA-ID first", "#EXTM3U\n#EXT-X-SESSION-DATA:DATA-ID=\"a\",VALUE=\"b\"\n" + variant,
         "#EXTM3U\n#EXT-X-SESSION-DATA:X-SPARE=YES,DATA-ID=\"a\",VALUE=\"b\"\n" + variant},
        {"a line before the URI", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\n# low\nlow.m3u8\n",
         "#EXTM3U\n# low\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n"},
        {"indented tags", "  #EXTM3U\n  #EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n", "#EXTM3U\n" + variant},
        {"a tag with white space after it", "#EXTM3U \n" + variant, "#EXTM3U\n" + variant},
    };
    for (const auto& [fault, text, expected] : mends) {
        SCOPED_TRACE(fault);
        EXPECT_TRUE(VELHLSDiagnostics::check(text).rejected);
        const VELHLSFixes::Result result = VELHLSFixes::forModels(text);
        EXPECT_EQ(result.text, expected);
        EXPECT_FALSE(result.left.rejected) << result.left.rejected->message;
        EXPECT_FALSE(result.done.empty());
    }
}

TEST(VELHLSFixes, LoseOnlyWhenAsked) {
    const std::string variant = "#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n";
    const Mend mends[] = {
        {"a group that is not there", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a\"\nlow.m3u8\n",
         "#EXTM3U\n" + variant},
        {"tags at the end", head + segment + "#EXT-X-DISCONTINUITY\n#EXTINF:6,\n", head + segment},
        {"a line that repeats a URI",
         "#EXTM3U\n" + variant + "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"i.m3u8\"\ni.m3u8\n",
         "#EXTM3U\n" + variant + "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"i.m3u8\"\n"},
        {"a map without a URI", head + "#EXT-X-MAP:BYTERANGE=\"720@0\"\n" + segment, head + segment},
        {"a map with an empty one", head + "#EXT-X-MAP:URI=\"\"\n" + segment, head + segment},
        {"versions that are none",
         head + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"1,2\"\n" + segment,
         head + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n" + segment},
        {"a negative number", "#EXTM3U\n#EXT-X-MEDIA-SEQUENCE:-1\n" + segment, "#EXTM3U\n" + segment},
    };
    for (const auto& [fault, text, expected] : mends) {
        SCOPED_TRACE(fault);
        EXPECT_EQ(mended(text, Profile::library), text);
        EXPECT_EQ(mended(text, Profile::library, VELHLSFix::Lossy), expected);
    }
}

TEST(VELHLSFixes, GuessOnlyWhenAsked) {
    const Mend mends[] = {
        {"no duration", head + "#EXTINF:,Title\nfirst.ts\n", head + "#EXTINF:6,Title\nfirst.ts\n"},
        {"a duration of 0", head + "#EXTINF:0,\nfirst.ts\n", head + "#EXTINF:1,\nfirst.ts\n"},
        {"no EXTINF", head + segment + "second.ts\n", head + segment + "#EXTINF:6,\nsecond.ts\n"},
        {"no bandwidth", "#EXTM3U\n#EXT-X-STREAM-INF:AVERAGE-BANDWIDTH=7\nlow.m3u8\n",
         "#EXTM3U\n#EXT-X-STREAM-INF:AVERAGE-BANDWIDTH=7,BANDWIDTH=7\nlow.m3u8\n"},
        {"a stray line", "#EXTM3U\nstray line\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n",
         "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n"},
        {"an open quote", "#EXTM3U\n#EXT-X-STREAM-INF:CODECS=\"a,BANDWIDTH=1\nlow.m3u8\n",
         "#EXTM3U\n#EXT-X-STREAM-INF:CODECS=\"a\",BANDWIDTH=1\nlow.m3u8\n"},
    };
    for (const auto& [fault, text, expected] : mends) {
        SCOPED_TRACE(fault);
        EXPECT_EQ(mended(text, Profile::library, VELHLSFix::Lossy), text);
        EXPECT_EQ(mended(text, Profile::library, VELHLSFix::Guess), expected);
    }
}

TEST(VELHLSFixes, MendWhatTheStandardDemands) {
    EXPECT_EQ(
        mended("#EXT-X-TARGETDURATION:5\n#EXTINF:6.006,\nfirst.ts\n#EXT-X-ENDLIST\n", Profile::rfc8216),
        "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXTINF:6.006,\nfirst.ts\n#EXT-X-ENDLIST\n");
    EXPECT_EQ(mended(head + "#EXTINF:6\nfirst.ts\n#EXT-X-ENDLIST\n", Profile::rfc8216),
              head + "#EXTINF:6,\nfirst.ts\n#EXT-X-ENDLIST\n");
    EXPECT_EQ(
        mended("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=\"1\",CODECS=avc1.4d401e\nlow.m3u8\n", Profile::rfc8216),
        "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"avc1.4d401e\"\nlow.m3u8\n");
}

TEST(VELHLSFixes, LeaveWhatCannotBeMendedSafelyAsItIs) {
    for (const std::string uri : {"a:b", "//a", "?a=1", "{$a}", "a{b"}) {
        const std::string text = head + "#EXTINF:6,\n" + uri + "\n";
        EXPECT_EQ(mendedForModels(text), text);
    }
    for (const std::string text :
         {"", "\n", "<html>", "#EXTM3U", "#EXTM3U\n#EXTINF:-1 tvg-id=\"a\",A\nhttp://a\n"})
        EXPECT_EQ(mended(text, Profile::library, VELHLSFix::Guess), text);
}

/// A report lists a hundred of them.
TEST(VELHLSFixes, MendAllHoweverMany) {
    std::string text = head;
    std::string expected = head;
    for (int number = 0; number < 5000; ++number) {
        text += "#EXTINF:6,\n0.ts\n";
        expected += "#EXTINF:6,\n./0.ts\n";
    }
    const VELHLSFixes::Result result = VELHLSFixes::forModels(text);
    EXPECT_EQ(result.text, expected);
    EXPECT_EQ(result.done.size(), 5000U);
    EXPECT_EQ(result.done.back().line, 10002U);
}

/// The models find one fault of a line at a time.
TEST(VELHLSFixes, StopAfterTheMostRounds) {
    std::string list = "BANDWIDTH=1";
    for (int number = 0; number < 70; ++number)
        list += ",X-" + std::to_string(number) + "=\"a\"b";
    const std::string text = "#EXTM3U\n#EXT-X-STREAM-INF:" + list + "\nlow.m3u8\n";
    const VELHLSFixes::Options options = optionsOf(Profile::library, VELHLSFix::Lossy);
    const VELHLSFixes::Result result = VELHLSFixes::apply(text, options);
    EXPECT_EQ(result.done.size(), VELHLSFixes::maximumRounds);
    EXPECT_EQ(result.rounds, VELHLSFixes::maximumRounds);
    EXPECT_TRUE(result.left.rejected);
    EXPECT_FALSE(VELHLSFixes::apply(result.text, options).left.rejected);
}

TEST(VELHLSFixes, TellTheLinesOfTheTextThatWasGiven) {
    const std::string text = head + "#EXTINF:6,\n#EXT-X-GAP\n0.ts";
    const VELHLSFixes::Result result = VELHLSFixes::forModels(text);
    EXPECT_EQ(result.text, head + "#EXT-X-GAP\n#EXTINF:6,\n./0.ts\n");
    std::set<std::pair<std::string, std::size_t>> done;
    for (const VELHLSFixes::Done& each : result.done)
        done.emplace(each.ruleId, each.line);
    EXPECT_EQ(done, (std::set<std::pair<std::string, std::size_t>>{{"segment-bare-tag-unknown", 3},
                                                                   {"segment-uri-too-short", 5},
                                                                   {"segment-uri-without-line-feed", 5}}));
}

TEST(VELHLSFixes, StandInFindingsOnlyWhenAsked) {
    VELHLSDiagnostics::Options options;
    options.profiles = {Profile::library};
    const std::string text = head + "#EXTINF:6,\n0.ts\n";
    for (const VELHLSFinding& each : VELHLSDiagnostics::check(text, options).findings)
        EXPECT_TRUE(each.fixes.empty()) << each.ruleId;
    options.fixes = true;
    VELHLSFinding finding;
    for (const VELHLSFinding& each : VELHLSDiagnostics::check(text, options).findings) {
        if (each.ruleId == "segment-uri-too-short") finding = each;
    }
    ASSERT_EQ(finding.fixes.size(), 1U);
    EXPECT_EQ(finding.fixes[0].fixClass, VELHLSFix::Safe);
    EXPECT_EQ(finding.fixes[0].sentence, "writes \"./0.ts\", the same resource");
    ASSERT_EQ(finding.fixes[0].edits.size(), 1U);
    EXPECT_EQ(finding.fixes[0].edits[0].offset, text.find("0.ts"));
    EXPECT_EQ(finding.fixes[0].edits[0].replacement, "./");
}

/// Those that cannot be mended in the example of their page: what they want would break another rule, or the example lacks
/// what the fix needs.
const std::set<std::string> mendedElsewhere = {"attribute-wrong-type", "key-format-versions-malformed",
                                               "map-uri-missing", "map-uri-empty"};

TEST(VELHLSFixes, SilenceTheRuleInTheFailingPlaylistOfItsPage) {
    for (const Profile profile : VELHLSDiagnostics::profiles()) {
        for (const VELHLSRule& rule : VELHLSDiagnostics::rules(profile)) {
            if (rule.fix.empty() || mendedElsewhere.count(std::string(rule.id)) != 0) continue;
            SCOPED_TRACE(rule.id);
            const std::string page = contentOf(VELHLS_RULE_PAGES "/" + std::string(rule.id) + ".md");
            const std::string text = rule_page::blockOf(page, "failing");
            const VELHLSFixes::Result result = VELHLSFixes::apply(text, optionsOf(profile, VELHLSFix::Guess));
            for (const VELHLSFinding& finding : result.left.findings)
                EXPECT_NE(finding.ruleId, rule.id) << result.text;
            if (rule.profile != VELHLSDiagnostics::ruleNamed(rule.id)->profile) continue;
            EXPECT_EQ(result.text, contentOf(VELHLS_EXAMPLE_FINDINGS "/" + std::string(rule.id) + ".mended"));
        }
    }
}

std::vector<VELHLSFixes::Options> allOptions() {
    std::vector<VELHLSFixes::Options> all;
    for (const Profile profile : {Profile::library, Profile::rfc8216, Profile::rfc8216bis}) {
        for (const auto fixClass : {VELHLSFix::Safe, VELHLSFix::Lossy, VELHLSFix::Guess})
            all.push_back(optionsOf(profile, fixClass));
    }
    return all;
}

TEST(VELHLSFixes, KeepTheirPromisesForTheExamples) {
    const std::vector<VELHLSFixes::Options> all = allOptions();
    std::size_t next = 0;
    for (const std::string& text : corpus::texts())
        ASSERT_EQ(oracle::brokenFixPromise(text, all[next++ % all.size()]), "") << text;
}

TEST(VELHLSFixes, KeepTheirPromisesForMutatedPlaylists) {
    const std::vector<std::string> texts = corpus::texts();
    const std::vector<VELHLSFixes::Options> all = allOptions();
    const std::uint64_t count = corpus::numberOfMutations(100);
    mutation::Mutator mutator(20261122);
    for (std::uint64_t done = 0; done < count; ++done) {
        const std::string text = mutator.mutated(texts);
        ASSERT_EQ(oracle::brokenFixPromise(text, all[static_cast<std::size_t>(done % all.size())]), "")
            << text;
    }
}

}  // namespace
