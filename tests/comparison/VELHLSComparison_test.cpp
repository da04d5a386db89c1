// What changed, by meaning.
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tests/comparison/Updates.h"

namespace comparison_test {
namespace {

std::string changesOf(const std::string& before, const std::string& now) {
    return shownChanges(compared({before, now}).changes);
}

std::string media(const std::string& lines) {
    return "#EXTM3U\n#EXT-X-TARGETDURATION:6\n" + lines;
}

std::string master(const std::string& lines) {
    return "#EXTM3U\n" + lines;
}

TEST(VELHLSComparison, IsNothingForTextsOfDifferentKinds) {
    const VELHLSDocument mediaText(media("#EXTINF:6,\na.ts\n"));
    const VELHLSDocument masterText(master("#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n"));
    const VELHLSDocument neither("hello\n");
    const VELHLSDocument empty("");
    EXPECT_FALSE(VELHLSComparison::compare(mediaText, masterText));
    EXPECT_FALSE(VELHLSComparison::compare(masterText, mediaText));
    EXPECT_FALSE(VELHLSComparison::compare(mediaText, neither));
    EXPECT_FALSE(VELHLSComparison::compare(neither, neither));
    EXPECT_FALSE(VELHLSComparison::compare(empty, empty));
    EXPECT_TRUE(VELHLSComparison::compare(mediaText, mediaText));
}

TEST(VELHLSComparison, TellsWhatBecameOfSegmentsByTheirNumbers) {
    EXPECT_EQ(shownChanges(compared(live).changes),
              "EXT-X-MEDIA-SEQUENCE: 100 -> 101\n"
              "EXT-X-DISCONTINUITY-SEQUENCE: 4 -> 5\n"
              "- segment 100: 6 100.m4s\n"
              "+ segment 105: 6 105.m4s\n");
}

TEST(VELHLSComparison, TellsEachPartOfASegment) {
    EXPECT_EQ(
        changesOf(
            media("#EXT-X-MEDIA-SEQUENCE:7\n"
                  "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n#EXTINF:6,Film\n#EXT-X-BYTERANGE:9@0\na.ts\n"
                  "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00Z\n#EXT-X-CUE-OUT:12\n#EXTINF:6,\nb.ts\n"),
            media("#EXT-X-MEDIA-SEQUENCE:7\n"
                  "#EXTINF:5.5,Advertisement\n#EXT-X-BYTERANGE:10@0\na.ts\n"
                  "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:01Z\n#EXT-X-DISCONTINUITY\n"
                  "#EXT-X-CUE-OUT:18\n#EXTINF:6,\nc.ts\n")),
        "segment 7: duration 6 -> 5.5\n"
        "segment 7: title Film -> Advertisement\n"
        "segment 7: byte range 9@0 -> 10@0\n"
        "segment 7: key METHOD=AES-128,URI=\"k\" -> none\n"
        "segment 8: uri b.ts -> c.ts\n");
    EXPECT_EQ(
        changesOf(
            media("#EXT-X-MAP:URI=\"i\"\n#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00Z\n"
                  "#EXT-X-CUE-OUT:12\n#EXTINF:6,\nb.ts\n#EXTINF:6,\nc.ts\n"),
            media(
                "#EXT-X-MAP:URI=\"j\"\n#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:01Z\n"
                "#EXT-X-DISCONTINUITY\n#EXT-X-CUE-OUT:18\n#EXT-X-FOO\n#EXTINF:6,\nb.ts\n#EXTINF:6,\nc.ts\n")),
        "segment 0: discontinuity 0 -> 1\n"
        "segment 0: EXT-X-CUE-OUT 12 -> 18\n"
        "segment 0: EXT-X-FOO  -> \n"
        "segment 0: map URI=\"i\" -> URI=\"j\"\n"
        "segment 0: date 2026-11-21T10:00:00Z -> 2026-11-21T10:00:01Z\n");
}

TEST(VELHLSComparison, TellsADateThatFollowsFromOthers) {
    EXPECT_EQ(
        changesOf(
            media("#EXT-X-PROGRAM-DATE-TIME:2026-11-21T23:59:55Z\n#EXTINF:6.25,\na.ts\n#EXTINF:6,\nb.ts\n"),
            media("#EXT-X-PROGRAM-DATE-TIME:2026-11-21T23:59:55Z\n#EXTINF:6.25,\na.ts\n"
                  "#EXT-X-PROGRAM-DATE-TIME:2026-11-22T01:00:00Z\n#EXTINF:6,\nb.ts\n")),
        "segment 1: date 2026-11-22T00:00:01.250Z -> 2026-11-22T01:00:00Z\n");
}

TEST(VELHLSComparison, TellsTagsOfThePlaylistByNameAndAttribute) {
    EXPECT_EQ(
        changesOf(
            media("#EXT-X-VERSION:3\n#EXT-X-START:TIME-OFFSET=1,PRECISE=YES\n#EXTINF:6,\na.ts\n"),
            media("#EXT-X-START:PRECISE=NO,TIME-OFFSET=1.0\n#EXT-X-INDEPENDENT-SEGMENTS\n#EXTINF:6,\na.ts\n"
                  "#EXT-X-ENDLIST\n")),
        "- EXT-X-VERSION: 3\n"
        "+ EXT-X-ENDLIST: \n"
        "+ EXT-X-INDEPENDENT-SEGMENTS: \n"
        "EXT-X-START: PRECISE YES -> NO\n");
    EXPECT_EQ(
        changesOf(media("#EXT-X-DEFINE:NAME=\"a\",VALUE=\"1\"\n#EXT-X-DEFINE:NAME=\"b\",VALUE=\"2\"\n"),
                  media("#EXT-X-DEFINE:NAME=\"b\",VALUE=\"3\"\n#EXT-X-DEFINE:NAME=\"c\",VALUE=\"4\"\n")),
        "- EXT-X-DEFINE: NAME=\"a\",VALUE=\"1\"\n"
        "EXT-X-DEFINE: VALUE 2 -> 3\n"
        "+ EXT-X-DEFINE: NAME=\"c\",VALUE=\"4\"\n");
}

TEST(VELHLSComparison, TellsDateRangesByIdAndAttribute) {
    const std::string start = "#EXT-X-DATERANGE:ID=\"b\",START-DATE=\"2026-11-21T10:00:00Z\"";
    EXPECT_EQ(
        changesOf(
            media("#EXT-X-DATERANGE:ID=\"a\"\n" + start + ",DURATION=6,CLASS=\"x\"\n#EXTINF:6,\na.ts\n"),
            media(start + ",DURATION=7,X-A=\"1\"\n#EXT-X-DATERANGE:ID=\"c\"\n#EXTINF:6,\na.ts\n")),
        "- date range a: ID=\"a\"\n"
        "date range b: CLASS x -> \n"
        "date range b: DURATION 6 -> 7\n"
        "date range b: X-A  -> 1\n"
        "+ date range c: ID=\"c\"\n");
}

TEST(VELHLSComparison, TellsVariantsByUriThenByTheirAttributes) {
    const std::string low = "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"aac\"\nlow.m3u8\n";
    const std::string lowToo = "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"ac3\"\nlow.m3u8\n";
    const std::string high = "#EXT-X-STREAM-INF:BANDWIDTH=9\nhigh.m3u8\n";
    EXPECT_EQ(changesOf(master(low + lowToo + high),
                        master("#EXT-X-STREAM-INF:BANDWIDTH=2,AUDIO=\"ac3\"\nlow.m3u8\n" + low + high)),
              "variant low.m3u8: BANDWIDTH 1 -> 2\n"
              "variants: order low.m3u8 -> low.m3u8\n");
    EXPECT_EQ(changesOf(master(low + high), master(low + "#EXT-X-STREAM-INF:BANDWIDTH=9\nother.m3u8\n")),
              "variant other.m3u8: uri high.m3u8 -> other.m3u8\n");
    EXPECT_EQ(changesOf(master(low + high), master(high + low)), "variants: order low.m3u8 -> high.m3u8\n");
    EXPECT_EQ(changesOf(master(low), master(high)),
              "+ variant high.m3u8: BANDWIDTH=9\n"
              "- variant low.m3u8: BANDWIDTH=1,AUDIO=\"aac\"\n");
}

TEST(VELHLSComparison, TellsWhatElseAMasterPlaylistLists) {
    const std::string media = "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"aac\",NAME=\"English\"";
    EXPECT_EQ(
        changesOf(master(media + ",URI=\"a\"\n#EXT-X-SESSION-DATA:DATA-ID=\"t\",VALUE=\"1\"\n"
                                 "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"i\"\n"
                                 "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"\n"),
                  master(media + ",URI=\"b\",DEFAULT=YES\n#EXT-X-SESSION-DATA:DATA-ID=\"t\",VALUE=\"2\"\n"
                                 "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=2,URI=\"i\"\n"
                                 "#EXT-X-SESSION-KEY:METHOD=SAMPLE-AES,URI=\"k\"\n")),
        "I-frame variant i: BANDWIDTH 1 -> 2\n"
        "rendition AUDIO aac English: DEFAULT  -> YES\n"
        "rendition AUDIO aac English: URI a -> b\n"
        "session data t: VALUE 1 -> 2\n"
        "session key k: METHOD AES-128 -> SAMPLE-AES\n");
}

TEST(VELHLSComparison, TellsNothingOfHowALineIsLaidOut) {
    EXPECT_EQ(changesOf(master("#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\"\nlow.m3u8\n"),
                        master("\n# here\r\n#EXT-X-STREAM-INF:CODECS=\"a\",BANDWIDTH=1\r\n\r\nlow.m3u8\r\n")),
              "");
    EXPECT_EQ(changesOf(media("#EXTINF:6,\na.ts\n"), media("#EXTINF:6.0\r\n\r\na.ts")), "");
}

TEST(VELHLSComparison, TellsNothingOfACommaTooMany) {
    const std::string plain = master("#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\"\nlow.m3u8\n");
    EXPECT_EQ(changesOf(plain, master("#EXT-X-STREAM-INF:BANDWIDTH=1,,CODECS=\"a\",\nlow.m3u8\n")), "");
    EXPECT_EQ(changesOf(plain, master("#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\",=7\nlow.m3u8\n")),
              "variant low.m3u8: (no name)  -> 7\n");
}

TEST(VELHLSComparison, GivesTheLinesOfBothVersions) {
    const auto changes = compared(changed(plain, "#EXTINF:6,\n3", "#EXTINF:5,\n3")).changes;
    ASSERT_EQ(changes.size(), 4U);
    EXPECT_EQ(changes[0].kind, VELHLSChange::Added);
    EXPECT_EQ(changes[0].oldLine, 0U);
    EXPECT_EQ(changes[0].newLine, 3U);
    EXPECT_EQ(changes[1].kind, VELHLSChange::Removed);
    EXPECT_EQ(changes[1].oldLine, 4U);
    EXPECT_EQ(changes[1].newLine, 0U);
    EXPECT_EQ(changes[2].kind, VELHLSChange::Changed);
    EXPECT_EQ(changes[2].oldLine, 9U);
    EXPECT_EQ(changes[2].newLine, 8U);
    EXPECT_EQ(changes[3].kind, VELHLSChange::Added);
}

TEST(VELHLSComparison, HasAWordForEachKindOfChange) {
    EXPECT_EQ(VELHLSChange::textOf(VELHLSChange::Added), "added");
    EXPECT_EQ(VELHLSChange::textOf(VELHLSChange::Removed), "removed");
    EXPECT_EQ(VELHLSChange::textOf(VELHLSChange::Changed), "changed");
    EXPECT_EQ(VELHLSChange::textOf(static_cast<VELHLSChange::Kind>(9)), "");
}

TEST(VELHLSComparison, ListsAtMostAHundredFindingsOfOneRule) {
    std::string before = media("");
    std::string now = media("");
    for (int number = 0; number < 250; ++number) {
        const std::string uri = std::to_string(number) + ".ts\n";
        before += "#EXTINF:6,\n" + uri;
        now += "#EXTINF:5,\n" + uri;
    }
    now += "#EXTINF:6,\nlast.ts\n";
    const VELHLSComparison comparison = compared({before, now});
    ASSERT_EQ(comparison.findings.size(), 100U);
    EXPECT_EQ(comparison.findings.back().suppressed, 150U);
    EXPECT_EQ(comparison.changes.size(), 251U);
}

}  // namespace
}  // namespace comparison_test
