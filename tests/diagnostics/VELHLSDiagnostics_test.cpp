#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLSCheck.h"

#include "tests/support/LibraryFindings.h"
#include "tests/support/PlaylistText.h"

namespace {

using playlist::lines;

/// "line:column+length rule" of each finding that weighs at least as much, with a space between.
std::string found(const std::string& text, VELHLSDiagnostics::PlaylistKind kind = VELHLSDiagnostics::Detect,
                  VELHLSFinding::Severity least = VELHLSFinding::Error) {
    std::string list;
    for (const VELHLSFinding& finding : library::findingsIn(text, kind)) {
        if (finding.severity < least) continue;
        list += (list.empty() ? "" : " ") + std::to_string(finding.line) + ":" +
                std::to_string(finding.column) + "+" + std::to_string(finding.length) + " " + finding.ruleId;
    }
    return list;
}

/// What the finding of the rule says that was seen; nothing when there is none.
std::string seenBy(const std::string& ruleId, const std::string& text,
                   VELHLSDiagnostics::PlaylistKind kind = VELHLSDiagnostics::Master) {
    for (const VELHLSFinding& finding : library::findingsIn(text, kind)) {
        if (finding.ruleId == ruleId) return finding.message.substr(finding.message.find(", seen ") + 7);
    }
    return {};
}

/// The same of what RFC 8216 finds.
std::string seenByStandard(const std::string& ruleId, const std::string& text) {
    const VELHLSDiagnostics::Options options = {VELHLSDiagnostics::Master,
                                                {VELHLSDiagnostics::Profile::rfc8216}};
    for (const VELHLSFinding& finding : VELHLSDiagnostics::check(text, options).findings) {
        if (finding.ruleId == ruleId) return finding.message.substr(finding.message.find(", seen ") + 7);
    }
    return {};
}

TEST(VELHLSDiagnostics, TellsWhatWasExpectedAndSeenAndTheSource) {
    const auto findings =
        library::findingsIn(lines({"#EXTM3U", "#EXT-X-STREAM-INF:CLOSED-CAPTIONS=NONE,BANDWIDTH=0", "a"}));
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[1].ruleId, "variant-bandwidth-zero");
    EXPECT_EQ(findings[1].severity, VELHLSFinding::Error);
    EXPECT_EQ(findings[1].message, "EXT-X-STREAM-INF: BANDWIDTH: expected a BANDWIDTH above 0, seen \"0\"");
    EXPECT_EQ(findings[1].source, "library behaviour");
    EXPECT_EQ(findings[1].profile, "library");
    EXPECT_EQ(findings[1].clause, "");
    EXPECT_EQ(findings[1].suppressed, 0U);
}

TEST(VELHLSDiagnostics, GoesOnAfterWhatIsRejected) {
    EXPECT_EQ(found(lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=audio", "#EXT-X-STREAM-INF:BANDWIDTH=x", "a",
                           "stray", "#EXT-X-ENDLIST", "#EXT-X-STREAM-INF:BANDWIDTH=1", "b"})),
              "2:19+5 rendition-type-unknown 3:29+1 number-missing 5:1+5 uri-without-tag "
              "6:2+13 master-bare-tag-unknown");
    EXPECT_EQ(found(lines({"#EXTM3U", "#EXT-X-TARGETDURATION:x", "#EXTINF:y,", "#EXT-X-BYTERANGE:z",
                           "first.ts", "#EXTINF:6,", "0.ts", "#EXTINF:6,"})),
              "2:23+1 target-duration-malformed 3:9+1 number-missing 4:18+1 byte-range-malformed "
              "7:1+4 segment-uri-too-short 8:2+6 segment-uri-missing");
}

TEST(VELHLSDiagnostics, LeavesOutWhatFollowsFromAnEarlierError) {
    EXPECT_EQ(found(lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=0", "a"})),
              "2:29+1 variant-bandwidth-zero");
    EXPECT_EQ(found(lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\"",
                           "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a\"", "a"})),
              "2:2+11 rendition-name-missing");
}

TEST(VELHLSDiagnostics, GivesErrorsBetweenRecordsAfterThoseOfReading) {
    EXPECT_EQ(found(lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a\"", "a", "stray"})),
              "4:1+5 uri-without-tag 2:38+1 group-missing");
}

TEST(VELHLSDiagnostics, TellsEachGroupOnceWhatItLacks) {
    EXPECT_EQ(found(lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"1\"",
                           "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"2\"",
                           "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"b\",NAME=\"3\"",
                           "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"c\",NAME=\"1\"",
                           "#EXT-X-STREAM-INF:BANDWIDTH=1", "a"})),
              "4:35+1 group-rendition-missing 5:35+1 group-rendition-missing");
}

TEST(VELHLSDiagnostics, NamesTheGroupThatAnotherIsComparedWith) {
    const auto ofGroups = [](const std::string& ofB) {
        return lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"b\"," + ofB,
                      "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"1\"", "#EXT-X-STREAM-INF:BANDWIDTH=1",
                      "a"});
    };
    EXPECT_EQ(seenBy("group-rendition-missing", ofGroups("NAME=\"2\"")),
              "no rendition \"1\", which group \"a\" has");
    EXPECT_EQ(seenBy("group-rendition-different", ofGroups("NAME=\"1\",LANGUAGE=\"en\"")),
              "\"1\", which has others in group \"a\"");
    EXPECT_EQ(seenBy("group-rendition-unmatched",
                     ofGroups("NAME=\"1\"\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"b\",NAME=\"2\"")),
              "\"2\", which group \"a\" lacks");
}

TEST(VELHLSDiagnostics, TellsOfAMissingUriOfASegmentThatAnUnknownTagRejects) {
    const std::string segment = "#EXTM3U\n#EXTINF:6,\n#EXT-X-NEW:1\n";
    EXPECT_EQ(found(segment), "3:2+9 segment-tag-unknown 3:13+0 segment-uri-missing");
    EXPECT_EQ(found(segment + "# the end\n"), "3:2+9 segment-tag-unknown 4:10+0 segment-uri-missing");
    EXPECT_EQ(found(segment + "first.ts"), "3:2+9 segment-tag-unknown 4:1+8 segment-uri-without-line-feed");
    EXPECT_EQ(found(segment + "first.ts\n"), "3:2+9 segment-tag-unknown");
    // Tags of later segments may stand at the end.
    EXPECT_EQ(found("#EXTM3U\n#EXT-X-KEY:METHOD=NONE\n#EXT-X-NEW:1\n"), "3:2+9 segment-tag-unknown");
}

TEST(VELHLSDiagnostics, TellsOfIndentedLinesThatFollowEachOtherOnce) {
    EXPECT_EQ(found("#EXTM3U\n  #EXTINF:6,\n  a.ts\n\t#EXTINF:6,\n\tb.ts\n# by hand\nc.ts\n"),
              "2:1+12 uri-without-tag 7:1+4 uri-without-tag");
    EXPECT_EQ(seenBy("uri-without-tag", "#EXTM3U\n\t#EXTINF:6,\n\ta.ts\n", VELHLSDiagnostics::Media),
              "\"\t#EXTINF:6,\", a tag with white space before it");
}

TEST(VELHLSDiagnostics, SaysWhatHidesAnAttribute) {
    const auto ofVariant = [](const std::string& list) {
        return lines({"#EXTM3U", "#EXT-X-STREAM-INF:" + list, "a"});
    };
    EXPECT_EQ(seenBy("variant-bandwidth-missing", ofVariant("CODECS=\"avc1\", BANDWIDTH=1")),
              "\" BANDWIDTH\", a name with white space");
    EXPECT_EQ(seenBy("variant-bandwidth-missing", ofVariant("BANDWIDTH =1")),
              "\"BANDWIDTH \", a name with white space");
    EXPECT_EQ(seenBy("variant-bandwidth-missing", ofVariant("CODECS=\"avc1\",\r BANDWIDTH=1")),
              "\" BANDWIDTH\", a name with white space");
    EXPECT_EQ(seenBy("variant-bandwidth-missing", ofVariant("CODECS=\"avc1\"")), "none");
    EXPECT_EQ(seenBy("attribute-ignored", ofVariant("BANDWIDTH=1, CODECS=\"avc1\"")),
              "\" CODECS\", a name with white space");
    EXPECT_EQ(seenBy("attribute-equals-missing", ofVariant("BANDWIDTH=1,")), "nothing after the last comma");
    EXPECT_EQ(seenBy("attribute-equals-missing", ofVariant(",BANDWIDTH=1")),
              "nothing before the first comma");
    EXPECT_EQ(seenBy("attribute-equals-missing", ofVariant("BANDWIDTH=1,,A=1")),
              "nothing between two commas");
    EXPECT_EQ(seenBy("attribute-equals-missing", ofVariant("BANDWIDTH=1,A")), "\"A\"");
}

TEST(VELHLSDiagnostics, SaysWhereAnIvHasAStrayQuote) {
    const auto ofKey = [](const std::string& iv) {
        return seenBy("key-iv-malformed", "#EXTM3U\n#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\",IV=" + iv +
                                              "\n#EXT-X-STREAM-INF:BANDWIDTH=1\na\n");
    };
    EXPECT_EQ(ofKey("0x00112233445566778899AABBCCDDEEFF\""), "nothing after a quote inside of the value");
    EXPECT_EQ(ofKey("0x0011\"2233"), "\"2233\" after a quote inside of the value");
    EXPECT_EQ(ofKey("\"0x0011\""), "\"0x0011\"");
}

TEST(VELHLSDiagnostics, NamesTheFormOfADefinitionThatTheLibraryDoesNotRead) {
    const auto ofDefinition = [](const std::string& list) {
        return seenBy("define-name-missing", "#EXTM3U\n#EXT-X-DEFINE:" + list + "\n#EXTINF:6,\nfirst.ts\n",
                      VELHLSDiagnostics::Media);
    };
    EXPECT_EQ(ofDefinition("IMPORT=\"a\""), "IMPORT, which the library does not read");
    EXPECT_EQ(ofDefinition("QUERYPARAM=\"a\""), "QUERYPARAM, which the library does not read");
    EXPECT_EQ(ofDefinition("VALUE=\"a\""), "none");
}

TEST(VELHLSDiagnostics, CountsColumnsInTheTextWithItsCarriageReturns) {
    EXPECT_EQ(found("#EXTM3U\r\n#EXT-X-STREAM-INF:BAND\rWIDTH=0\r\na\r\n"), "2:30+1 variant-bandwidth-zero");
}

TEST(VELHLSDiagnostics, PlacesErrorsOfExpandedPatternsInTheirBodies) {
    EXPECT_EQ(found(lines({"#EXTM3U", "#ZOR-PATTERN_START:p", "#EXTINF:6,", "first.ts", "#EXTINF:0,",
                           "second.ts", "#ZOR-PATTERN_REPEAT:p,3"})),
              "5:9+1 segment-duration-zero");
    EXPECT_EQ(found(lines({"#EXTM3U", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"x\"", "#ZOR-PATTERN_START:p",
                           "#EXTINF:6,", "{$n}.ts", "#ZOR-PATTERN_END:p", "#ZOR-PATTERN_REPEAT:p,1"})),
              "5:1+7 segment-uri-too-short");
    EXPECT_EQ(
        found(lines({"#EXTM3U", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"x\"", "#ZOR-PATTERN_START:p", "#EXTINF:6,",
                     "first{$n}.ts", "#ZOR-DEFINE_INCREMENT:n,1", "#ZOR-PATTERN_REPEAT:p,1"})),
        "6:1+25 number-missing");
}

TEST(VELHLSDiagnostics, DropsTheSegmentsThatARejectedPatternMadeBefore) {
    const std::string text =
        lines({"#EXTM3U", "#EXT-X-TARGETDURATION:1", "#ZOR-PATTERN_START:p", "#EXTINF:9,", "first.ts",
               "#EXTINF:0,", "second.ts", "#ZOR-PATTERN_REPEAT:p,1"});
    EXPECT_EQ(seenBy("segment-duration-zero", text, VELHLSDiagnostics::Media), "\"0\"");
    EXPECT_EQ(seenBy("target-duration-too-small", text, VELHLSDiagnostics::Media), "");
}

TEST(VELHLSDiagnostics, TellsOfVariablesThatStayInKeysAndMaps) {
    const auto reference = [](const std::string& tag) {
        return seenBy("variable-not-replaced", lines({"#EXTM3U", tag, "#EXTINF:6,", "segment.ts"}),
                      VELHLSDiagnostics::Media);
    };
    EXPECT_EQ(reference("#EXT-X-MAP:URI=\"init{$n}.mp4\",BYTERANGE=\"9@0\""), "\"{$n}.mp4\"");
    EXPECT_EQ(reference("#EXT-X-KEY:METHOD=AES-128,URI=\"key{$n}\""), "\"{$n}\"");
    EXPECT_EQ(reference("#EXT-X-MAP:URI=\"init.mp4\""), "");
    const std::string pattern =
        lines({"#EXTM3U", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"", "#ZOR-PATTERN_START:p",
               "#EXT-X-MAP:URI=\"init{$n}.mp4\"", "#EXTINF:6,", "segment{$n}.ts", "#ZOR-PATTERN_REPEAT:p,3"});
    EXPECT_EQ(
        found(pattern, VELHLSDiagnostics::Media, VELHLSFinding::Warning).find("variable-not-replaced"),
        found(pattern, VELHLSDiagnostics::Media, VELHLSFinding::Warning).rfind("variable-not-replaced"));
    EXPECT_EQ(seenBy("variable-not-replaced", pattern, VELHLSDiagnostics::Media), "\"{$n}.mp4\"");
}

TEST(VELHLSDiagnostics, TellsOfVariablesThatStayInMasterPlaylists) {
    const auto seenOf = [](const std::string& tag, const std::string& uri) {
        return seenBy("master-variable-not-replaced",
                      lines({"#EXTM3U", tag, "#EXT-X-STREAM-INF:BANDWIDTH=1", uri}),
                      VELHLSDiagnostics::Master);
    };
    const std::string audio = "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"1\"";
    EXPECT_EQ(seenOf(audio + ",URI=\"a/{$n}.m3u8\"", "low.m3u8"), "\"{$n}.m3u8\"");
    EXPECT_EQ(seenOf("#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"{$n}\"", "low.m3u8"), "\"{$n}\"");
    EXPECT_EQ(seenOf("", "low/{$n}.m3u8"), "\"{$n}.m3u8\"");
    EXPECT_EQ(seenOf(audio, "low.m3u8"), "");
    EXPECT_EQ(seenOf("# {$n}", "low.m3u8"), "");
    // Of what is rejected the error is told alone.
    EXPECT_EQ(seenOf("#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"{$n}\"", "low.m3u8"), "");
}

TEST(VELHLSDiagnostics, TellsOfVariablesThatLoseTheirLeadingZeros) {
    const auto seenOf = [](const std::string& defines, const std::string& increments) {
        return seenBy("pattern-leading-zeros-dropped",
                      "#EXTM3U\n" + defines + "#ZOR-PATTERN_START:p\n#EXTINF:6,\nsegment.ts\n" + increments +
                          "#ZOR-PATTERN_REPEAT:p,1\n",
                      VELHLSDiagnostics::Media);
    };
    const auto define = [](const std::string& value) {
        return "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"" + value + "\"\n";
    };
    const std::string increment = "#ZOR-DEFINE_INCREMENT:n,2\n";
    EXPECT_EQ(seenOf(define("0008"), increment), "\"0008\", counted on as 10");
    EXPECT_EQ(seenOf(define("+8"), increment), "\"+8\", counted on as 10");
    EXPECT_EQ(seenOf(define("-01"), increment), "\"-01\", counted on as 1");
    for (const char* const plain : {"8", "10008", "0", "-8"})
        EXPECT_EQ(seenOf(define(plain), increment), "") << plain;
    // Of an increment the first, of a definition the last.
    EXPECT_EQ(seenOf(define("08"), increment + increment), "\"08\", counted on as 10");
    EXPECT_EQ(seenOf(define("08") + define("8"), increment), "");
    EXPECT_EQ(seenOf(define("8") + define("08"), increment), "\"08\", counted on as 10");
    // What is not counted on keeps them, and what is rejected is another rule's.
    EXPECT_EQ(seenOf(define("08"), ""), "");
    EXPECT_EQ(seenOf(define("08"), "#ZOR-DEFINE_INCREMENT:other,1\n"), "");
    EXPECT_EQ(seenOf(define("08"), "#ZOR-DEFINE_INCREMENT:n\n"), "");
    EXPECT_EQ(seenOf(define("08"), "#ZOR-DEFINE_INCREMENT:n,x\n"), "");
}

TEST(VELHLSDiagnostics, TellsOfAMapThatIsWrittenAfterAKeyThatItStoodBefore) {
    const std::string key = "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"";
    const std::string map = "#EXT-X-MAP:URI=\"init.mp4\"";
    const auto isFound = [](const std::vector<std::string>& tags, const std::string& later) {
        std::string text = "#EXTM3U\n";
        for (const std::string& tag : tags)
            text += tag + "\n";
        text += "#EXTINF:6,\nfirst.ts\n" + later + "#EXTINF:6,\nsecond.ts\n";
        return !seenBy("map-before-key", text, VELHLSDiagnostics::Media).empty();
    };
    EXPECT_TRUE(isFound({map, key}, ""));
    EXPECT_TRUE(isFound({map}, key + "\n"));
    EXPECT_TRUE(isFound({key, map, key}, ""));
    EXPECT_FALSE(isFound({key, map}, ""));
    EXPECT_FALSE(isFound({map, key, map}, ""));
    EXPECT_FALSE(isFound({key}, map + "\n"));
    EXPECT_FALSE(isFound({key}, key + "\n"));
    EXPECT_FALSE(isFound({map}, ""));
}

TEST(VELHLSDiagnostics, AsksForTheTagThatIsNearlyWritten) {
    const auto seenOf = [](const std::string& rule, const std::string& line) {
        return seenBy(rule, lines({"#EXTM3U", line, "#EXTINF:6,", "segment.ts"}), VELHLSDiagnostics::Media);
    };
    EXPECT_EQ(seenOf("tag-ignored", "#EXT-X-END-LIST"), "\"EXT-X-END-LIST\", did you mean EXT-X-ENDLIST?");
    EXPECT_EQ(seenOf("tag-ignored", "#EXT_X_Endlist"), "\"EXT_X_Endlist\", did you mean EXT-X-ENDLIST?");
    EXPECT_EQ(seenOf("tag-ignored", "#EXT-X-SOMETHING"), "\"EXT-X-SOMETHING\"");
    EXPECT_EQ(seenOf("comment-not-written", "#ext-x-targetduration:6"),
              "\"#ext-x-targetduration:6\", did you mean EXT-X-TARGETDURATION?");
    EXPECT_EQ(seenOf("comment-not-written", "# a comment"), "\"# a comment\"");
    EXPECT_EQ(seenOf("comment-not-written", "#"), "\"#\"");
}

TEST(VELHLSDiagnostics, KnowsATagAfterTheEndByWhatItWouldBeReadAs) {
    const auto seenAfterEnd = [](const std::string& line) {
        return seenBy("content-after-end", "#EXTM3U\n#EXT-X-ENDLIST\n" + line, VELHLSDiagnostics::Media);
    };
    EXPECT_EQ(seenAfterEnd("#EX\rT-X-GAP"), "\"#EX\rT-X-GAP\"");
    EXPECT_EQ(seenAfterEnd("# a comment\r\n\r\n"), "");
}

TEST(VELHLSDiagnostics, TellsWhatAMapDoesNotKeep) {
    const auto seenOf = [](const std::string& ruleId, const std::string& list) {
        return seenBy(ruleId, lines({"#EXTM3U", "#EXT-X-MAP:" + list, "#EXTINF:6,", "segment.ts"}),
                      VELHLSDiagnostics::Media);
    };
    EXPECT_EQ(seenOf("attribute-ignored", "URI=\"i\",BYTERANGE=\"1@0\""), "");
    EXPECT_EQ(seenOf("attribute-ignored", "URI=\"i\",X=\"1\""), "\"X\"");
    EXPECT_EQ(seenOf("byte-range-malformed", "URI=\"i\",BYTERANGE=\"1@0\""), "");
    EXPECT_EQ(seenOf("byte-range-malformed", "URI=\"i\",BYTERANGE=\"1@\""), "\"1@\"");
}

TEST(VELHLSDiagnostics, TellsOfARepeatedLineOnce) {
    EXPECT_EQ(found(lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#ZOR-PATTERN_START:p", "#EXTINF:7,Title",
                           "first.ts", "#ZOR-PATTERN_REPEAT:p,50"}),
                    VELHLSDiagnostics::Media, VELHLSFinding::Warning),
              "3:2+17 pattern-not-written 4:2+6 version-made-too-low 4:11+5 segment-title-gains-comma");
}

TEST(VELHLSDiagnostics, ListsABoundedNumberOfEachRule) {
    std::string text = "#EXTM3U\n";
    for (int count = 0; count < 5000; ++count)
        text += "stray\n#EXT-X-ENDLIST\n";
    const auto findings = library::findingsIn(text, VELHLSDiagnostics::Master);
    std::map<std::string, std::size_t> listed;
    std::map<std::string, std::size_t> suppressed;
    for (const VELHLSFinding& finding : findings) {
        ++listed[finding.ruleId];
        suppressed[finding.ruleId] += finding.suppressed;
    }
    EXPECT_EQ(listed["uri-without-tag"], VELHLSDiagnostics::maximumFindingsPerRule);
    EXPECT_EQ(suppressed["uri-without-tag"], 5000 - VELHLSDiagnostics::maximumFindingsPerRule);
    EXPECT_EQ(suppressed["master-bare-tag-unknown"], 5000 - VELHLSDiagnostics::maximumFindingsPerRule);
}

TEST(VELHLSDiagnostics, ShortensWhatItQuotes) {
    const std::string longName(100000, 'x');
    for (const VELHLSFinding& finding :
         library::findingsIn("#EXTM3U\n" + longName + "\n", VELHLSDiagnostics::Master)) {
        EXPECT_LT(finding.message.size(), 300U) << finding.ruleId;
    }
}

TEST(VELHLSDiagnostics, CutsWhatItQuotesBetweenCharacters) {
    const auto seenOf = [](const std::string& uri) { return seenBy("uri-without-tag", uri + "\n"); };
    const std::string before(76, 'x');
    EXPECT_EQ(seenOf(before + "1234"), "\"" + before + "1234\"");
    EXPECT_EQ(seenOf(before + "12345"), "\"" + before + "1234...\"");
    for (const std::string character : {"\xC2\x80", "\xE2\x82\xAC", "\xF0\x9F\x8E\xAC"}) {
        for (std::size_t first = 76; first < 80; ++first) {
            const std::size_t whole = (80 - first) / character.size() * character.size();
            const std::string characters = character + character + character;
            EXPECT_EQ(seenOf(std::string(first, 'x') + characters + "tail"),
                      "\"" + std::string(first, 'x') + characters.substr(0, whole) + "...\"");
        }
    }
    // Bytes that go on without an end are no character, and are cut anywhere.
    EXPECT_EQ(seenOf(std::string(100, '\x80')), "\"" + std::string(80, '\x80') + "...\"");
}

TEST(VELHLSDiagnostics, NamesTheAttributeUnlessItsNameIsEmptyOrLong) {
    const auto messageFor = [](const std::string& name) {
        const auto findings =
            VELHLSDiagnostics::check("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1," + name + "=\"\x01\"\na\n")
                .findings;
        for (const VELHLSFinding& finding : findings) {
            if (finding.ruleId == "control-character")
                return finding.message.substr(0, finding.message.find("expected"));
        }
        return std::string("none");
    };
    EXPECT_EQ(messageFor("X"), "EXT-X-STREAM-INF: X: ");
    EXPECT_EQ(messageFor(std::string(40, 'X')), "EXT-X-STREAM-INF: " + std::string(40, 'X') + ": ");
    EXPECT_EQ(messageFor(std::string(41, 'X')), "EXT-X-STREAM-INF: ");
    EXPECT_EQ(messageFor(""), "EXT-X-STREAM-INF: ");
}

TEST(VELHLSDiagnostics, TellsOfAttributesThatTheGrammarReadsOtherwise) {
    const auto seenOf = [](const std::string& list, const std::string& tag = "#EXT-X-STREAM-INF:") {
        return seenBy("attribute-read-otherwise",
                      "#EXTM3U\n" + tag + list + "\n#EXT-X-STREAM-INF:BANDWIDTH=1\na\n",
                      VELHLSDiagnostics::Master);
    };
    const std::string first = "BANDWIDTH=1,";
    const std::string last = ",BANDWIDTH=1";
    const struct {
        std::string list;
        std::string seen;
    } rows[] = {
        {first + "X=x\"y\"", R"("x"y"", read as "y")"},
        {first + "X=x\"y,z\"" + ",Y=1", R"("x"y,z"", read as "y,z")"},
        {first + "X=\"y\"z", R"(""y"z", read as "y")"},
        {first + "X=\"y\" ", R"(""y" ", read as "y")"},
        {first + "X=\"y", R"(""y", read as "y")"},
        {first + "X=\"", R"(""", read as "")"},
        {"X= \"y\"" + last, R"(" "y"", read as "y")"},
        {"X= y" + last, R"(" y", read with its white space)"},
        {"X=y " + last, R"("y ", read with its white space)"},
        {first + "X=y ", R"("y ", read with its white space)"},
        {first + " X=y", R"(" X", read with its white space)"},
        {"X\t=\"y\"" + last, "\"X\t\", read with its white space"},
        // Against the grammar, and read alike.
        {"x=y" + last, ""},
        {"X=a b" + last, ""},
        {"X=y,X=z" + last, ""},
        {"X=\"\",Y=1" + last, ""},
        {"X==" + last, ""},
        // Rejected.
        {"X=\"y\"z" + last, ""},
        {",X=1" + last, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(seenOf(row.list), row.seen) << row.list;
    const std::string data = "#EXT-X-SESSION-DATA:";
    EXPECT_EQ(seenOf("LANGUAGE=\"en\",DATA-ID=\"a.b\",VALUE=\"c\"", data), "");
    EXPECT_EQ(seenOf("LANGUAGE=x\"en\",DATA-ID=\"a.b\",VALUE=\"c\"", data), R"("x"en"", read as "en")");
    EXPECT_EQ(seenOf("= x,DATA-ID=\"a.b\",VALUE=\"c\"", data), R"(" x", read with its white space)");
}

TEST(VELHLSDiagnostics, TellsOfARepeatedAttributeAmongFewAndAmongMany) {
    for (const int count : {1, 15, 16, 17, 40}) {
        std::string list = "BANDWIDTH=1";
        for (int index = 0; index < count; ++index)
            list += ",X-" + std::to_string(index) + "=1";
        std::size_t repeated = 0;
        for (const VELHLSFinding& finding :
             library::findingsIn("#EXTM3U\n#EXT-X-STREAM-INF:" + list + ",X-0=2\na\n"))
            repeated += finding.ruleId == "attribute-repeated" ? 1 : 0;
        EXPECT_EQ(repeated, 1U) << count;
    }
}

TEST(VELHLSDiagnostics, WarningsDoNotMoveTheErrorsBetweenRecords) {
    EXPECT_EQ(found(lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a\"", "a",
                           "#EXT-X-STREAM-INF:BANDWIDTH=2,FRAME-RATE=25", "b"}),
                    VELHLSDiagnostics::Master, VELHLSFinding::Warning),
              "1:1+0 start-added 2:38+1 group-missing 4:31+10 attribute-ignored");
}

TEST(VELHLSDiagnostics, KnowsWhichBytesAreUtf8) {
    const auto isToldOf = [](const std::string& bytes) {
        return !seenByStandard("not-utf-8", "#EXTM3U\n#" + bytes + "\n").empty();
    };
    for (const std::string bytes :
         {"\x7F", "\xC2\x80", "\xC2\xA0", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
          "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF3\xBF\xBF\xBF", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_FALSE(isToldOf(bytes)) << bytes;
        EXPECT_FALSE(isToldOf(bytes + "x" + bytes)) << bytes;
        const std::string cut = bytes.substr(0, bytes.size() - 1);
        EXPECT_EQ(isToldOf(cut), !cut.empty()) << bytes;
        EXPECT_EQ(isToldOf(cut + "x"), !cut.empty()) << bytes;
    }
    for (const std::string bytes : {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF",
                                    "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF",
                                    "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"})
        EXPECT_TRUE(isToldOf(bytes)) << bytes;
}

TEST(VELHLSDiagnostics, KnowsWhichCharactersAreControls) {
    const auto isToldOf = [](const std::string& character) {
        return !seenByStandard("control-character", "#EXTM3U\n#" + character + "\n").empty();
    };
    for (const std::string control : {"\x01", "\x1F", "\x7F", "\xC2\x80", "\xC2\x9F"})
        EXPECT_TRUE(isToldOf(control)) << control;
    for (const std::string character : {" ", "~", "\xC2\xA0", "\xC3\x80", "\xE2\x80\x80"})
        EXPECT_FALSE(isToldOf(character)) << character;
}

TEST(VELHLSDiagnostics, KnowsTheClosedCaptionsOfTheStandard) {
    const auto isToldOf = [](const std::string& id) {
        const std::string list = "TYPE=CLOSED-CAPTIONS,GROUP-ID=\"a\",NAME=\"b\",INSTREAM-ID=\"" + id + "\"";
        return !seenByStandard("rendition-instream-id-unknown", "#EXTM3U\n#EXT-X-MEDIA:" + list + "\n")
                    .empty();
    };
    for (const std::string id :
         {"CC1", "CC2", "CC3", "CC4", "SERVICE1", "SERVICE9", "SERVICE10", "SERVICE63"})
        EXPECT_FALSE(isToldOf(id)) << id;
    for (const std::string id : {"CC0", "CC5", "CC", "SERVICE", "SERVICE0", "SERVICE01", "SERVICE64",
                                 "SERVICE100", "SERVICE6x", "SERVICEx", "service1"})
        EXPECT_TRUE(isToldOf(id)) << id;
}

TEST(VELHLSDiagnostics, KnowsTheValuesThatAreDefaults) {
    const auto isToldOf = [](const std::string& attribute) {
        return !seenBy("default-not-written", "#EXTM3U\n#EXT-X-I-FRAME-STREAM-INF:" + attribute + "\n")
                    .empty();
    };
    for (const std::string attribute :
         {"DEFAULT=NO", "AUTOSELECT=NO", "FORCED=NO", "PRECISE=NO", "KEYFORMATVERSIONS=\"1\"",
          "AVERAGE-BANDWIDTH=0", "AVERAGE-BANDWIDTH=00", "PROGRAM-ID=0"})
        EXPECT_TRUE(isToldOf(attribute)) << attribute;
    for (const std::string attribute :
         {"DEFAULT=YES", "AUTOSELECT=N", "FORCED=no", "PRECISE=YES", "KEYFORMATVERSIONS=\"2\"",
          "KEYFORMATVERSIONS=\"1/2\"", "AVERAGE-BANDWIDTH=1", "AVERAGE-BANDWIDTH=10", "PROGRAM-ID=1",
          "BANDWIDTH=0", "X=NO"})
        EXPECT_FALSE(isToldOf(attribute)) << attribute;
}

TEST(VELHLSDiagnostics, ReadsWhatIsLeftOfAStream) {
    std::istringstream input("stray\n#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=0\na\n");
    std::string first;
    std::getline(input, first);
    const auto findings =
        VELHLSDiagnostics::check(input, library::optionsFor(VELHLSDiagnostics::Detect)).findings;
    EXPECT_EQ(findings.back().ruleId, "variant-bandwidth-zero");
    EXPECT_EQ(findings.back().line, 2U);
    EXPECT_EQ(found("", VELHLSDiagnostics::Master), "1:1+0 variants-missing");
    EXPECT_EQ(VELHLSDiagnostics::check(input, library::optionsFor(VELHLSDiagnostics::Master)).findings.size(),
              2U);
}

TEST(VELHLSDiagnostics, SaysWhatATextIsThatIsNoPlaylist) {
    const std::string unknownKind = "no tag that only a master or only a media playlist has";
    const struct {
        std::string text;
        std::string seen;
    } rows[] = {
        {"", "an empty text"},
        {"<!doctype html>", "HTML"},
        {"\r\n\t <!DOCTYPE HTML>", "HTML"},
        {"<!doctype htm", "markup"},
        {"<html", "HTML"},
        {"<HTML>", "HTML"},
        {"<htm", "markup"},
        {"<", "markup"},
        {"{", "JSON"},
        {" [", "JSON"},
        {std::string(4095, 'x') + '\0', "binary data"},
        {std::string("\x1F\x8B\x08\0", 4), "data compressed with gzip (gzip -dc unpacks it)"},
        {std::string("\xFF\xFE#\0E\0", 6), "text in UTF-16 (iconv -f UTF-16 -t UTF-8 converts it)"},
        {std::string("\xFE\xFF\0#\0E", 6), "text in UTF-16 (iconv -f UTF-16 -t UTF-8 converts it)"},
        {std::string("#\0E\0X\0T\0", 8), "text in UTF-16 (iconv -f UTF-16 -t UTF-8 converts it)"},
        {std::string("\0#\0E\0X\0T", 8), "text in UTF-16 (iconv -f UTF-16 -t UTF-8 converts it)"},
        {std::string(4096, 'x') + '\0', "no tag"},
        {"x", "no tag"},
        {"#extm3u\n#extinf:6,\nsegment.ts\n", "\"#extm3u\", did you mean EXTM3U?"},
        {"\r\n#ExtInf:6,\r\nsegment.ts\n", "\"#ExtInf:6,\", did you mean EXTINF?"},
        {"EXTM3U\n", "no tag"},
        {" \n", "no tag"},
        {"#EXTM3U", unknownKind},
        {"x\n#EXTM3U", unknownKind},
        {"#EXTM3U\n#EXTINF:-1,\na\n", "an IPTV list"},
        {"#EXTINF: -1,\na\n", ""},
        {"#EXTINF:4 tvg-id=\"a\",\na\n", "an IPTV list"},
        {"#EXTGRP:a\n", "an IPTV list"},
        {"#EXTVLCOPT:a\n", "an IPTV list"},
        {"#KODIPROP:a\n", "an IPTV list"},
        {"#EXTGRP:a\nx\n# a comment\n", "an IPTV list"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(seenBy("not-a-playlist", row.text, VELHLSDiagnostics::Detect), row.seen) << row.text;
}

TEST(VELHLSDiagnostics, DetectsTheKindByTheTags) {
    const auto kindOf = [](const std::string& text) {
        const auto detection = VELHLSDiagnostics::detectKind(text);
        return detection ? detection->tag + " in " + std::to_string(detection->line) : "none";
    };
    EXPECT_EQ(kindOf("#EXTM3U\r\n#EXT-X-ENDLIST\r\n"), "EXT-X-ENDLIST in 2");
    EXPECT_EQ(kindOf("#EXTINF:4,\na\n#EXT-X-STREAM-INF:BANDWIDTH=1\nb\n"), "EXTINF in 1");
    EXPECT_EQ(kindOf("#EXTINF:4,\na\n#EXT-X-STREAM-INF:BANDWIDTH=1\nb\n#EXT-X-I-FRAME-STREAM-INF:A=1\n"),
              "EXT-X-STREAM-INF in 3");
    EXPECT_EQ(kindOf("#EXT-X-MEDIA:A=1\n#EXTINF:4,\na\n"), "EXTINF in 2");
    EXPECT_EQ(kindOf("#EXTINF:4,\na\n"), "EXTINF in 1");
    EXPECT_EQ(kindOf("#EXTM3U\n#EXTINF:-1,\na\n"), "none");
    EXPECT_EQ(kindOf("#EXT-X-VERSION:3\n#EXTINF:-1,\na\n"), "EXTINF in 2");
    EXPECT_EQ(kindOf("#EXTM3U\n"), "none");
    EXPECT_EQ(kindOf(""), "none");
}

TEST(VELHLSDiagnostics, DetectionIsOfNoKindWhenNew) {
    const VELHLSDiagnostics::Detection detection;
    EXPECT_EQ(detection.kind, VELHLSDiagnostics::Detect);
    EXPECT_EQ(detection.tag, "");
    EXPECT_EQ(detection.line, 1U);
}

TEST(VELHLSDiagnostics, EachTagOfOneKindTellsTheKind) {
    const std::vector<std::string> ofMaster = {
        "EXT-X-STREAM-INF",  "EXT-X-I-FRAME-STREAM-INF", "EXT-X-MEDIA",   "EXT-X-SESSION-DATA",
        "EXT-X-SESSION-KEY", "EXT-X-CONTENT-STEERING",   "ZOR-STREAM-INF"};
    const std::vector<std::string> ofMedia = {"EXTINF",
                                              "EXT-X-TARGETDURATION",
                                              "EXT-X-MEDIA-SEQUENCE",
                                              "EXT-X-DISCONTINUITY-SEQUENCE",
                                              "EXT-X-ENDLIST",
                                              "EXT-X-PLAYLIST-TYPE",
                                              "EXT-X-I-FRAMES-ONLY",
                                              "EXT-X-BYTERANGE",
                                              "EXT-X-DISCONTINUITY",
                                              "EXT-X-KEY",
                                              "EXT-X-MAP",
                                              "EXT-X-PROGRAM-DATE-TIME",
                                              "EXT-X-DATERANGE",
                                              "EXT-X-GAP",
                                              "EXT-X-BITRATE",
                                              "EXT-X-PART",
                                              "EXT-X-PART-INF",
                                              "EXT-X-SERVER-CONTROL",
                                              "EXT-X-SKIP",
                                              "EXT-X-CUE-IN",
                                              "EXT-X-CUE-OUT",
                                              "EXT-X-CUE-OUT-CONT",
                                              "ZOR-PATTERN_START",
                                              "ZOR-PATTERN_END",
                                              "ZOR-PATTERN_REPEAT",
                                              "ZOR-DEFINE_INCREMENT"};
    const auto kindOf = [](const std::string& tag) {
        const auto detection = VELHLSDiagnostics::detectKind("#" + tag + ":4\n");
        return detection ? detection->kind : VELHLSDiagnostics::Detect;
    };
    for (const std::string& tag : ofMaster)
        EXPECT_EQ(kindOf(tag), VELHLSDiagnostics::Master) << tag;
    for (const std::string& tag : ofMedia)
        EXPECT_EQ(kindOf(tag), VELHLSDiagnostics::Media) << tag;
    for (const std::string tag :
         {"", "EXTM3U", "EXT-X-VERSION", "EXT-X-START", "EXT-X-INDEPENDENT-SEGMENTS", "EXT-X-DEFINE",
          "EXT-X-STREAM-IN", "EXT-X-MEDI", "EXT-X-SKI", "EXT-X-SERVER-CONTRO"})
        EXPECT_EQ(kindOf(tag), VELHLSDiagnostics::Detect) << tag;
}

}  // namespace
