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

/// Each fix that is offered where the rule is first broken: its class, its sentence, and the lines that are new.
std::string offersOf(const std::string& text, std::string_view ruleId) {
    std::string offers = "not broken";
    for (const Profile profile : {Profile::library, Profile::rfc8216}) {
        VELHLSDiagnostics::Options options;
        options.profiles = {profile};
        options.fixes = true;
        for (const VELHLSFinding& finding : VELHLSDiagnostics::check(text, options).findings) {
            if (finding.ruleId != ruleId || offers != "not broken") continue;
            offers = "";
            for (const VELHLSFix& fix : finding.fixes) {
                offers += std::string(VELHLSFix::textOf(fix.fixClass)) + ": " + fix.sentence;
                const VELHLSDocument now(VELHLSDocument(text).apply(fix.edits).text);
                for (const VELHLSLine line : now.lines()) {
                    if (("\n" + text).find("\n" + std::string(line.text) + "\n") == std::string::npos)
                        offers += " => " + std::string(line.text);
                }
                offers += "\n";
            }
        }
    }
    return offers;
}

TEST(VELHLSFixes, OfferWhatTheySayInTheirWords) {
    struct Row {
        const char* rule;
        std::string text;
        std::string offers;
    };
    const std::string header = "#EXTM3U\n";
    const std::string variant = "#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n";
    const std::vector<Row> rows = {
        {"key-method-missing", head + "#EXT-X-KEY:URI=\"k\"\n" + segment,
         lines({"guess: gives the key METHOD=AES-128 => #EXT-X-KEY:URI=\"k\",METHOD=AES-128"})},
        {"key-method-missing", head + "#EXT-X-KEY:IV=0x1\n" + segment,
         lines({"guess: gives the key METHOD=NONE => #EXT-X-KEY:IV=0x1,METHOD=NONE"})},
        {"key-method-missing", header + "#EXT-X-SESSION-KEY:URI=\"k\"\n" + variant,
         lines({"guess: gives the key METHOD=AES-128 => #EXT-X-SESSION-KEY:URI=\"k\",METHOD=AES-128",
                "lossy: removes \"#EXT-X-SESSION-KEY:URI=\"k\"\": the key is lost until a media playlist "
                "names it"})},
        {"key-method-missing", header + "#EXT-X-SESSION-KEY:IV=0x1\n" + variant,
         lines({"lossy: removes \"#EXT-X-SESSION-KEY:IV=0x1\": the key is lost until a media playlist names "
                "it"})},
        {"key-method-unknown", head + "#EXT-X-KEY:METHOD=none\n" + segment,
         lines({"guess: writes METHOD=NONE for \"none\" => #EXT-X-KEY:METHOD=NONE"})},
        {"key-method-unknown", head + "#EXT-X-KEY:METHOD=aes-128,URI=\"k\"\n" + segment,
         lines({"guess: writes METHOD=AES-128 for \"aes-128\" => #EXT-X-KEY:METHOD=AES-128,URI=\"k\""})},
        {"key-method-unknown", head + "#EXT-X-KEY:METHOD=SAMPLE-AES-CTR,URI=\"k\"\n" + segment,
         lines({"guess: writes METHOD=SAMPLE-AES for \"SAMPLE-AES-CTR\" => "
                "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"k\""})},
        {"key-method-unknown", head + "#EXT-X-KEY:METHOD=AES,URI=\"k\"\n" + segment, ""},
        {"key-method-unknown", header + "#EXT-X-SESSION-KEY:METHOD=AES-128X,URI=\"k\"\n" + variant,
         lines({"lossy: removes \"#EXT-X-SESSION-KEY:METHOD=AES-128X,URI=\"k\"\": the key is lost until a "
                "media playlist names it"})},
        {"key-iv-too-short", head + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0x1F\n" + segment,
         lines({"safe: writes 0x0000000000000000000000000000001F, the same number => "
                "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0x0000000000000000000000000000001F"})},
        {"key-iv-too-long",
         head + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0X0000AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\n" + segment,
         lines({"safe: writes 0xAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA, the same number => "
                "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0xAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"})},
        {"key-iv-too-long",
         head + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0x1AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\n" + segment,
         lines({"lossy: removes IV: \"0x1AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\" is lost => "
                "#EXT-X-KEY:METHOD=AES-128,URI=\"k\""})},
        {"key-none-with-attributes", head + "#EXT-X-KEY:METHOD=NONE,URI=\"k\"\n" + segment,
         lines(
             {"safe: removes the attributes that mean nothing with METHOD=NONE => #EXT-X-KEY:METHOD=NONE"})},
        {"key-without-uri", head + "#EXT-X-KEY:METHOD=AES-128\n" + segment,
         lines({"guess: says that nothing is encrypted from here on => #EXT-X-KEY:METHOD=NONE"})},
        {"session-key-method-none", header + "#EXT-X-SESSION-KEY:METHOD=NONE\n" + variant,
         lines({"lossy: removes \"#EXT-X-SESSION-KEY:METHOD=NONE\": it names no key"})},
        {"session-key-repeated",
         header +
             "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"\n#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"\n" +
             variant,
         lines({"safe: removes the tag, which repeats another one"})},
        {"session-key-repeated",
         header +
             "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"\n#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\",X-A="
             "1\n" +
             variant,
         lines({"lossy: removes \"#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\",X-A=1\": another one names the "
                "same key"})},
        {"rendition-type-unknown", header + "#EXT-X-MEDIA:TYPE=audio,GROUP-ID=\"a\",NAME=\"n\"\n" + variant,
         lines({"guess: writes TYPE=AUDIO => #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\"",
                "lossy: removes \"#EXT-X-MEDIA:TYPE=audio,GROUP-ID=\"a\",NAME=\"n\"\": the rendition is "
                "lost"})},
        {"rendition-type-unknown", header + "#EXT-X-MEDIA:TYPE=Video,GROUP-ID=\"a\",NAME=\"n\"\n" + variant,
         lines({"guess: writes TYPE=VIDEO => #EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"a\",NAME=\"n\"",
                "lossy: removes \"#EXT-X-MEDIA:TYPE=Video,GROUP-ID=\"a\",NAME=\"n\"\": the rendition is "
                "lost"})},
        {"rendition-type-unknown",
         header + "#EXT-X-MEDIA:TYPE=subtitles,GROUP-ID=\"a\",NAME=\"n\"\n" + variant,
         lines({"guess: writes TYPE=SUBTITLES => #EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"a\",NAME=\"n\"",
                "lossy: removes \"#EXT-X-MEDIA:TYPE=subtitles,GROUP-ID=\"a\",NAME=\"n\"\": the rendition is "
                "lost"})},
        {"rendition-type-unknown",
         header + "#EXT-X-MEDIA:TYPE=closed-captions,GROUP-ID=\"a\",NAME=\"n\"\n" + variant,
         lines({"guess: writes TYPE=CLOSED-CAPTIONS => "
                "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"a\",NAME=\"n\"",
                "lossy: removes \"#EXT-X-MEDIA:TYPE=closed-captions,GROUP-ID=\"a\",NAME=\"n\"\": the "
                "rendition is lost"})},
        {"rendition-type-unknown", header + "#EXT-X-MEDIA:TYPE=TEXT,GROUP-ID=\"a\",NAME=\"n\"\n" + variant,
         lines(
             {"lossy: removes \"#EXT-X-MEDIA:TYPE=TEXT,GROUP-ID=\"a\",NAME=\"n\"\": the rendition is lost"})},
        {"rendition-flag-invalid",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",AUTOSELECT=true\n" + variant,
         lines({"guess: writes AUTOSELECT=YES => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",AUTOSELECT=YES",
                "lossy: removes AUTOSELECT: \"true\" is lost => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\""})},
        {"rendition-flag-invalid",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",AUTOSELECT=1\n" + variant,
         lines({"guess: writes AUTOSELECT=YES => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",AUTOSELECT=YES",
                "lossy: removes AUTOSELECT: \"1\" is lost => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\""})},
        {"rendition-flag-invalid",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",AUTOSELECT=y\n" + variant,
         lines({"guess: writes AUTOSELECT=YES => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",AUTOSELECT=YES",
                "lossy: removes AUTOSELECT: \"y\" is lost => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\""})},
        {"rendition-flag-invalid",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",AUTOSELECT=yes\n" + variant,
         lines({"guess: writes AUTOSELECT=YES => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",AUTOSELECT=YES",
                "lossy: removes AUTOSELECT: \"yes\" is lost => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\""})},
        {"rendition-flag-invalid",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=no\n" + variant,
         lines({"guess: writes DEFAULT=NO => #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=NO",
                "lossy: removes DEFAULT: \"no\" is lost => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\""})},
        {"rendition-flag-invalid",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=False\n" + variant,
         lines({"guess: writes DEFAULT=NO => #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=NO",
                "lossy: removes DEFAULT: \"False\" is lost => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\""})},
        {"rendition-flag-invalid",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=0\n" + variant,
         lines(
             {"guess: writes DEFAULT=NO => #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=NO",
              "lossy: removes DEFAULT: \"0\" is lost => #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\""})},
        {"rendition-flag-invalid",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=N\n" + variant,
         lines(
             {"guess: writes DEFAULT=NO => #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=NO",
              "lossy: removes DEFAULT: \"N\" is lost => #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\""})},
        {"rendition-flag-invalid",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=2\n" + variant,
         lines(
             {"lossy: removes DEFAULT: \"2\" is lost => #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\""})},
        {"rendition-name-missing",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",LANGUAGE=\"en\"\n" + variant,
         lines({"guess: names the rendition after its LANGUAGE => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",LANGUAGE=\"en\",NAME=\"en\"",
                "lossy: removes \"#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",LANGUAGE=\"en\"\": the rendition is "
                "lost"})},
        {"rendition-name-missing",
         header +
             "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\"\n#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a\"\nlow.m3u8\n",
         lines({"guess: names the rendition after its GROUP-ID => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"a\"",
                "lossy: removes \"#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\"\": the rendition is lost, and its "
                "group with it => #EXT-X-STREAM-INF:BANDWIDTH=1"})},
        {"rendition-instream-id-missing",
         header +
             "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"a\",INSTREAM-ID=\"CC1\"\n#EXT-X-MEDIA:"
             "TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"b\"\n" +
             variant,
         lines({"guess: takes the channel CC2 => "
                "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"b\",INSTREAM-ID=\"CC2\"",
                "lossy: removes \"#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"b\"\": the "
                "rendition is lost"})},
        {"rendition-instream-id-missing",
         header +
             "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"1\",INSTREAM-ID=\"CC1\"\n#EXT-X-MEDIA:"
             "TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"2\",INSTREAM-ID=\"CC2\"\n#EXT-X-MEDIA:TYPE=CLOSED-"
             "CAPTIONS,GROUP-ID=\"c\",NAME=\"3\",INSTREAM-ID=\"CC3\"\n#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,"
             "GROUP-ID=\"c\",NAME=\"4\",INSTREAM-ID=\"CC4\"\n#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID="
             "\"c\",NAME=\"b\"\n" +
             variant,
         lines({"lossy: removes \"#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"b\"\": the "
                "rendition is lost"})},
        {"rendition-instream-id-missing",
         header +
             "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"CC0\",INSTREAM-ID=\"CC0\"\n#EXT-X-"
             "MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"CC2\",INSTREAM-ID=\"CC2\"\n#EXT-X-MEDIA:TYPE="
             "CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"CC5\",INSTREAM-ID=\"CC5\"\n#EXT-X-MEDIA:TYPE=CLOSED-"
             "CAPTIONS,GROUP-ID=\"c\",NAME=\"CC12\",INSTREAM-ID=\"CC12\"\n#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,"
             "GROUP-ID=\"c\",NAME=\"SERVICE1\",INSTREAM-ID=\"SERVICE1\"\n#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,"
             "GROUP-ID=\"c\",NAME=\"b\"\n" +
             variant,
         lines({"guess: takes the channel CC1 => "
                "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"b\",INSTREAM-ID=\"CC1\"",
                "lossy: removes \"#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"b\"\": the "
                "rendition is lost"})},
        {"rendition-default-not-selected",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=YES,AUTOSELECT=NO\n" + variant,
         lines({"lossy: says AUTOSELECT=YES, as DEFAULT=YES does => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=YES,AUTOSELECT=YES"})},
        {"rendition-forced-unexpected",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",FORCED=YES\n" + variant,
         lines({"lossy: removes FORCED: \"YES\" is lost => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\""})},
        {"variant-uri-attribute-missing",
         header +
             "#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1\niframes.m3u8\n",
         lines({"guess: takes the line after it for its URI => "
                "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"iframes.m3u8\"",
                "lossy: removes \"#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1\": it names no playlist"})},
        {"variant-bandwidth-missing", header + "#EXT-X-STREAM-INF:AVERAGE-BANDWIDTH=700\nlow.m3u8\n",
         lines({"guess: writes BANDWIDTH=700, its AVERAGE-BANDWIDTH => "
                "#EXT-X-STREAM-INF:AVERAGE-BANDWIDTH=700,BANDWIDTH=700"})},
        {"variant-bandwidth-missing", header + "#EXT-X-STREAM-INF:RESOLUTION=640x360\nlow.m3u8\n",
         lines({"guess: writes BANDWIDTH=691200, as is usual for its RESOLUTION => "
                "#EXT-X-STREAM-INF:RESOLUTION=640x360,BANDWIDTH=691200"})},
        {"variant-bandwidth-missing", header + "#EXT-X-STREAM-INF:RESOLUTION=100001x360\nlow.m3u8\n",
         lines({"guess: writes BANDWIDTH=1000000, since nothing tells => "
                "#EXT-X-STREAM-INF:RESOLUTION=100001x360,BANDWIDTH=1000000"})},
        {"variant-uri-missing",
         header + "#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=2\n",
         lines({"lossy: removes EXT-X-STREAM-INF, which no URI follows: the variant is lost"})},
        {"variant-uri-missing", header + "#EXT-X-STREAM-INF:BANDWIDTH=2\n\nlow.m3u8\n",
         lines({"safe: moves EXT-X-STREAM-INF to its URI"})},
        {"session-data-id-missing", header + "#EXT-X-SESSION-DATA:DATA-ID=\"d\",VALUE=\"v\"\n" + variant,
         lines({"safe: puts the attribute X-SPARE=YES first, where the library reads none => "
                "#EXT-X-SESSION-DATA:X-SPARE=YES,DATA-ID=\"d\",VALUE=\"v\""})},
        {"session-data-id-missing", header + "#EXT-X-SESSION-DATA:X=1,VALUE=\"v\"\n" + variant,
         lines(
             {"lossy: removes \"#EXT-X-SESSION-DATA:X=1,VALUE=\"v\"\": it says of what it tells to nobody"})},
        {"session-data-value-missing", header + "#EXT-X-SESSION-DATA:VALUE=\"v\",DATA-ID=\"d\"\n" + variant,
         lines({"safe: puts the attribute X-SPARE=YES first, where the library reads none => "
                "#EXT-X-SESSION-DATA:X-SPARE=YES,VALUE=\"v\",DATA-ID=\"d\""})},
        {"session-data-value-missing", header + "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"d\"\n" + variant,
         lines({"lossy: removes \"#EXT-X-SESSION-DATA:X=1,DATA-ID=\"d\"\": it has no value"})},
        {"session-data-value-and-uri",
         header + "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"d\",VALUE=\"v\",URI=\"u\"\n" + variant,
         lines({"lossy: removes URI: \"u\" is lost => #EXT-X-SESSION-DATA:X=1,DATA-ID=\"d\",VALUE=\"v\""})},
        {"attribute-equals-missing", header + "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=avc1,mp4a\nlow.m3u8\n",
         lines({"guess: puts \"avc1,mp4a\" in quotes, as one value => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"avc1,mp4a\"",
                "lossy: removes \"mp4a\", which says nothing that can be read => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=avc1"})},
        {"attribute-equals-missing",
         header + "#EXT-X-STREAM-INF:BANDWIDTH=1,RESOLUTION=1x1,mp4a,b\nlow.m3u8\n",
         lines({"lossy: removes \"mp4a\", which says nothing that can be read => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1,RESOLUTION=1x1,b"})},
        {"attribute-equals-missing", header + "#EXT-X-STREAM-INF:BANDWIDTH=1,X=a,b,c,Y=d\nlow.m3u8\n",
         lines({"guess: puts \"a,b,c\" in quotes, as one value => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1,X=\"a,b,c\",Y=d",
                "lossy: removes \"b\", which says nothing that can be read => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1,X=a,c,Y=d"})},
        {"attribute-equals-missing", header + "#EXT-X-STREAM-INF:BANDWIDTH=1,,CODECS=\"a\"\nlow.m3u8\n",
         lines({"safe: removes white space and commas that divide nothing from the attributes => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\""})},
        {"attribute-equals-missing", header + "#EXT-X-STREAM-INF:junk,BANDWIDTH=1\nlow.m3u8\n",
         lines({"lossy: removes \"junk\", which says nothing that can be read => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1"})},
        {"attribute-name-empty", header + "#EXT-X-STREAM-INF:BANDWIDTH=1,=5\nlow.m3u8\n",
         lines({"lossy: removes \"=5\", which says nothing that can be read => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1"})},
        {"attribute-value-empty", header + "#EXT-X-STREAM-INF:BANDWIDTH=1,X=\nlow.m3u8\n",
         lines({"lossy: removes \"X=\", which says nothing that can be read => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1"})},
        {"attribute-text-after-quote", header + "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\" ,X=1\nlow.m3u8\n",
         lines({"safe: removes white space and commas that divide nothing from the attributes => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\",X=1"})},
        {"attribute-text-after-quote",
         header + "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\"X=1,Y=2\nlow.m3u8\n",
         lines({"guess: puts a comma before \"X=1\" => #EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\",X=1,Y=2",
                "lossy: removes \"X=1\" after the closing quote => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\",Y=2"})},
        {"attribute-text-after-quote",
         header + "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\"junk,X=1\nlow.m3u8\n",
         lines({"lossy: removes \"junk\" after the closing quote => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\",X=1"})},
        {"attribute-quote-unclosed", header + "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a,X=1\nlow.m3u8\n",
         lines({"guess: closes the quote after \"a\" => #EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\",X=1"})},
        {"attribute-white-space", header + "#EXT-X-STREAM-INF:BANDWIDTH = 1 , CODECS=\"a\",\nlow.m3u8\n",
         lines({"safe: removes white space and commas that divide nothing from the attributes => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\""})},
        {"byte-order-mark", "\xEF\xBB\xBF" + head + segment,
         lines({"safe: removes the byte order mark => #EXTM3U"})},
        {"media-sequence-malformed", head + "#EXT-X-MEDIA-SEQUENCE:x\n" + segment,
         lines({"lossy: removes \"#EXT-X-MEDIA-SEQUENCE:x\": the numbers begin at 0"})},
        {"media-sequence-malformed", head + "#EXT-X-MEDIA-SEQUENCE: 7\n" + segment,
         lines({"safe: removes the white space around the value => #EXT-X-MEDIA-SEQUENCE:7"})},
        {"playlist-type-unknown", head + "#EXT-X-PLAYLIST-TYPE:vod\n" + segment,
         lines({"guess: writes VOD => #EXT-X-PLAYLIST-TYPE:VOD",
                "lossy: removes \"#EXT-X-PLAYLIST-TYPE:vod\": what it says is no type"})},
        {"playlist-type-unknown", head + "#EXT-X-PLAYLIST-TYPE: VOD \n" + segment,
         lines({"safe: removes the white space around the value => #EXT-X-PLAYLIST-TYPE:VOD"})},
        {"playlist-type-unknown", head + "#EXT-X-PLAYLIST-TYPE:LIVE\n" + segment,
         lines({"lossy: removes \"#EXT-X-PLAYLIST-TYPE:LIVE\": what it says is no type"})},
        {"target-duration-malformed", header + "#EXT-X-TARGETDURATION:x\n" + segment,
         lines({"guess: writes 6, which the longest segment wants => #EXT-X-TARGETDURATION:6"})},
        {"start-time-offset-missing", head + "#EXT-X-START:PRECISE=YES\n" + segment,
         lines({"lossy: removes \"#EXT-X-START:PRECISE=YES\": where to start is lost"})},
        {"uri-without-tag", head + "#EXTINF:6,\nfirst.ts\nfirst-again.ts\n",
         lines({"guess: gives the URI a duration: #EXTINF:6,"})},
        {"uri-without-tag", head + "#EXTINF:6,\nfirst.ts\nEXT-X-ENDLIST\n",
         lines({"guess: makes a tag of the line => #EXT-X-ENDLIST"})},
        {"uri-without-tag", head + "#EXTINF:6,\nfirst.ts\nsome words\n",
         lines({"guess: removes the line \"some words\""})},
        {"uri-without-tag",
         header + "#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"i."
                  "m3u8\"\ni.m3u8\n",
         lines({"lossy: removes the line, which repeats the URI of the tag before it"})},
        {"master-bare-tag-unknown", header + "#EXT-X-STREAM-INF\nlow.m3u8\n",
         lines({"guess: writes EXT-X-STREAM-INF:BANDWIDTH=1000000, since nothing tells => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1000000",
                "lossy: removes the variant, of which nothing is told but its URI"})},
        {"master-bare-tag-unknown", header + "#EXT-X-ENDLIST\n" + variant,
         lines({"lossy: removes \"#EXT-X-ENDLIST\": it says nothing that a master playlist has"})},
        {"define-value-missing", head + "#EXT-X-DEFINE:NAME=\"n\"\n" + segment,
         lines({"guess: gives the variable an empty value => #EXT-X-DEFINE:NAME=\"n\",VALUE=\"\"",
                "lossy: removes \"#EXT-X-DEFINE:NAME=\"n\"\": the variable is lost"})},
        {"define-name-missing", head + "#EXT-X-DEFINE:IMPORT=\"n\"\n" + segment,
         lines({"guess: says that the variable \"n\" is empty => #EXT-X-DEFINE:NAME=\"n\",VALUE=\"\"",
                "lossy: removes \"#EXT-X-DEFINE:IMPORT=\"n\"\": the variable is lost"})},
        {"number-missing", header + "#EXT-X-VERSION:x\n#EXT-X-TARGETDURATION:6\n" + segment,
         lines({"guess: writes 1, which the tags need => #EXT-X-VERSION:1"})},
        {"number-missing", header + "#EXT-X-STREAM-INF:BANDWIDTH=x\nlow.m3u8\n",
         lines({"guess: writes BANDWIDTH=1000000, since nothing tells => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1000000"})},
        {"number-missing", header + "#EXT-X-STREAM-INF:BANDWIDTH=1,AVERAGE-BANDWIDTH=x\nlow.m3u8\n",
         lines({"lossy: removes AVERAGE-BANDWIDTH: \"x\" is lost => #EXT-X-STREAM-INF:BANDWIDTH=1"})},
        {"header-missing", "#EXT-X-TARGETDURATION:6\n" + segment,
         lines({"safe: writes #EXTM3U in the first line => #EXTM3U"})},
        {"target-duration-too-small", head + "#EXTINF:9,\nfirst.ts\n",
         lines({"safe: writes EXT-X-TARGETDURATION:9, which the longest segment wants => "
                "#EXT-X-TARGETDURATION:9"})},
        {"target-duration-missing", header + "#EXTINF:9,\nfirst.ts\n",
         lines({"guess: writes EXT-X-TARGETDURATION:9, which the longest segment wants => "
                "#EXT-X-TARGETDURATION:9"})},
        {"segment-duration-zero", head + "#EXTINF:0,\nfirst.ts\n",
         lines({"guess: writes the duration 1 => #EXTINF:1,"})},
        {"segment-duration-zero",
         header + "#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXTINF:0,Title\nfirst.ts\n",
         lines({"guess: writes the duration 0.001 => #EXTINF:0.001,Title"})},
        {"segment-duration-empty", head + "#EXTINF:,Title\nfirst.ts\n",
         lines({"guess: writes the duration 6 => #EXTINF:6,Title"})},
        {"segment-duration-missing", head + "#EXT-X-DISCONTINUITY\nfirst.ts\n",
         lines({"guess: gives the segment a duration: #EXTINF:6, => #EXTINF:6,"})},
        {"segment-uri-missing", head + "#EXTINF:6,\nfirst.ts\n#EXT-X-DISCONTINUITY\n#EXTINF:6,\n",
         lines({"lossy: removes the tags at the end, which no URI follows: EXT-X-DISCONTINUITY, EXTINF are "
                "lost"})},
        {"segment-uri-too-short", head + "#EXTINF:6,\na.ts\n",
         lines({"safe: writes \"./a.ts\", the same resource => ./a.ts"})},
        {"segment-uri-without-line-feed", head + "#EXTINF:6,\nfirst.ts",
         lines({"safe: puts a line feed after the last line => first.ts"})},
        {"extinf-comma-missing", head + "#EXTINF:6\nfirst.ts\n",
         lines({"safe: puts a comma after the duration => #EXTINF:6,"})},
        {"byte-range-malformed", head + "#EXT-X-BYTERANGE:x@1\n" + segment,
         lines({"lossy: removes \"#EXT-X-BYTERANGE:x@1\": the range is lost"})},
        {"byte-range-malformed", head + "#EXT-X-BYTERANGE: 10@1\n" + segment,
         lines({"safe: removes the white space around the range => #EXT-X-BYTERANGE:10@1"})},
        {"map-uri-missing", head + "#EXT-X-MAP:BYTERANGE=\"10@0\"\n" + segment,
         lines({"lossy: removes \"#EXT-X-MAP:BYTERANGE=\"10@0\"\": it names no resource"})},
        {"group-missing", header + "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a\"\nlow.m3u8\n",
         lines({"lossy: removes AUDIO, since no rendition is in \"a\" => #EXT-X-STREAM-INF:BANDWIDTH=1"})},
        {"group-rendition-missing",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\"\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\","
                  "NAME=\"m\"\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"b\",NAME=\"n\"\n#EXT-X-STREAM-INF:"
                  "BANDWIDTH=1,AUDIO=\"a\"\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=2,AUDIO=\"b\"\nhigh.m3u8\n",
         lines(
             {"guess: copies \"m\" into the group \"b\" => #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"b\",NAME=\"m\"",
              "lossy: removes \"m\", which the group \"b\" lacks"})},
        {"group-rendition-different",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",LANGUAGE=\"en\"\n#EXT-X-MEDIA:TYPE="
                  "AUDIO,GROUP-ID=\"b\",NAME=\"n\",LANGUAGE=\"de\"\n#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO="
                  "\"a\"\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=2,AUDIO=\"b\"\nhigh.m3u8\n",
         lines({"lossy: writes LANGUAGE as in the first group => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"b\",NAME=\"n\",LANGUAGE=\"en\""})},
        {"group-rendition-different",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",LANGUAGE=\"en\",AUTOSELECT=YES\n#EXT-X-"
                  "MEDIA:TYPE=AUDIO,GROUP-ID=\"b\",NAME=\"n\"\n#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO="
                  "\"a\"\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=2,AUDIO=\"b\"\nhigh.m3u8\n",
         lines({"lossy: writes LANGUAGE, AUTOSELECT as in the first group => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"b\",NAME=\"n\",LANGUAGE=\"en\",AUTOSELECT=YES"})},
        {"group-rendition-unmatched",
         header + "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\"\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"b\","
                  "NAME=\"n\"\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"b\",NAME=\"m\"\n#EXT-X-STREAM-INF:"
                  "BANDWIDTH=1,AUDIO=\"a\"\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=2,AUDIO=\"b\"\nhigh.m3u8\n",
         lines(
             {"guess: copies \"m\" into the group \"a\" => #EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"m\"",
              "lossy: removes \"m\", which the group \"a\" lacks"})},
        {"group-default-repeated",
         header +
             "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=YES\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-"
             "ID=\"a\",NAME=\"m\",DEFAULT=YES\n#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a\"\nlow.m3u8\n",
         lines({"lossy: says DEFAULT=NO, since another rendition of the group is the default => "
                "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",DEFAULT=NO"})},
        {"attribute-list-empty", header + "#EXT-X-SESSION-KEY:\n" + variant,
         lines({"lossy: removes \"#EXT-X-SESSION-KEY:\": it says nothing"})},
        {"header-not-first", "#EXT-X-TARGETDURATION:6\n#EXTM3U\n" + segment,
         lines({"safe: moves #EXTM3U to the first line"})},
        {"version-too-low", head + "#EXTINF:6.5,\nfirst.ts\n",
         lines({"safe: writes EXT-X-VERSION:3, which the tags need => #EXT-X-VERSION:3"})},
        {"white-space", head + " #EXTINF:6,\nfirst.ts \n",
         lines({"safe: removes the white space around lines => #EXTINF:6, => first.ts"})},
        {"number-out-of-range", header + "#EXT-X-STREAM-INF:BANDWIDTH=99999999999999999999\nlow.m3u8\n",
         lines({"guess: writes BANDWIDTH=1000000, since nothing tells => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1000000"})},
        {"number-out-of-range",
         header + "#EXT-X-STREAM-INF:BANDWIDTH=1,AVERAGE-BANDWIDTH=99999999999999999999\nlow.m3u8\n",
         lines({"lossy: removes AVERAGE-BANDWIDTH: \"99999999999999999999\" is lost => "
                "#EXT-X-STREAM-INF:BANDWIDTH=1"})},
        {"number-out-of-range", head + "#EXT-X-MEDIA-SEQUENCE:99999999999999999999\n" + segment,
         lines({"lossy: removes \"#EXT-X-MEDIA-SEQUENCE:99999999999999999999\": the numbers begin at 0"})},
        {"key-iv-malformed", head + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=1F\n" + segment,
         lines({"guess: writes 0x0000000000000000000000000000001F => "
                "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0x0000000000000000000000000000001F",
                "lossy: removes IV: \"1F\" is lost => #EXT-X-KEY:METHOD=AES-128,URI=\"k\""})},
        {"key-iv-malformed", head + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0xZZ\n" + segment,
         lines({"lossy: removes IV: \"0xZZ\" is lost => #EXT-X-KEY:METHOD=AES-128,URI=\"k\""})},
        {"date-time-without-zone", head + "#EXT-X-PROGRAM-DATE-TIME:2024-02-29T12:00:00.000\n" + segment,
         lines({"guess: writes 2024-02-29T12:00:00.000Z => #EXT-X-PROGRAM-DATE-TIME:2024-02-29T12:00:00.000Z",
                "lossy: removes \"#EXT-X-PROGRAM-DATE-TIME:2024-02-29T12:00:00.000\": the date is lost"})},
        {"date-time-malformed", head + "#EXT-X-PROGRAM-DATE-TIME:20240229T120000Z\n" + segment,
         lines({"safe: writes 2024-02-29T12:00:00Z, the same time => "
                "#EXT-X-PROGRAM-DATE-TIME:2024-02-29T12:00:00Z",
                "lossy: removes \"#EXT-X-PROGRAM-DATE-TIME:20240229T120000Z\": the date is lost"})},
        {"extinf-duration-malformed", head + "#EXTINF: 6 ,\nfirst.ts\n",
         lines({"safe: removes the white space around the duration => #EXTINF:6,"})},
        {"extinf-duration-malformed", head + "#EXTINF:six,\nfirst.ts\n",
         lines({"guess: writes the duration 6 => #EXTINF:6,"})},
        {"date-time-malformed", head + "#EXT-X-PROGRAM-DATE-TIME:20240229T1200Z\n" + segment,
         lines({"lossy: removes \"#EXT-X-PROGRAM-DATE-TIME:20240229T1200Z\": the date is lost"})},
        {"date-time-malformed", head + "#EXT-X-PROGRAM-DATE-TIME:20240229T120000,5+01\n" + segment,
         lines({"guess: writes 2024-02-29T12:00:00.5+01:00 => "
                "#EXT-X-PROGRAM-DATE-TIME:2024-02-29T12:00:00.5+01:00",
                "lossy: removes \"#EXT-X-PROGRAM-DATE-TIME:20240229T120000,5+01\": the date is lost"})},
    };
    for (const Row& row : rows)
        EXPECT_EQ(offersOf(row.text, row.rule), row.offers) << row.rule << "\n" << row.text;
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
