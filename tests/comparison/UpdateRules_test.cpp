// What RFC 8216 forbids between two versions: each statement broken alone, and what it allows.
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/comparison/Updates.h"

namespace comparison_test {
namespace {

const std::string date = "2026-11-21T10:00:";

/// Two versions, the rules that find what is wrong between them, and the first places of these.
struct Breach {
    std::string what;
    Versions versions;
    std::string rules;
    std::size_t line;
    std::size_t oldLine;
};

Versions both(Versions versions, const std::string& text, const std::string& replacement) {
    versions = changed(versions, text, replacement);
    const std::size_t place = versions.before.find(text);
    versions.before.replace(place, text.size(), replacement);
    return versions;
}

Versions changedBefore(Versions versions, const std::string& text, const std::string& replacement) {
    versions.before.replace(versions.before.find(text), text.size(), replacement);
    return versions;
}

Versions after(Versions versions, double seconds) {
    versions.elapsedSeconds = seconds;
    return versions;
}

Versions same(const std::string& text) {
    return {text, text};
}

std::string segment(const std::string& uri) {
    return "#EXTINF:6,\n" + uri + ".ts\n";
}

const std::string key2 = "#EXT-X-KEY:METHOD=AES-128,URI=\"key2\",IV=0x000102030405060708090A0B0C0D0E0F\n";
const std::string ad =
    "#EXT-X-DATERANGE:ID=\"ad-1\",START-DATE=\"2026-11-21T10:00:12.000Z\",PLANNED-DURATION=18\n";

std::vector<Breach> breachesOfSegments() {
    return {
        {"another URI", changed(live, "102.m4s", "other.m4s"), "segment-uri-changed", 14, 17},
        {"another query", changed(live, "102.m4s", "102.m4s?token=2"), "segment-uri-changed", 14, 17},
        {"another URI of the first segment", changed(live, "101.m4s", "other.m4s"), "segment-uri-changed", 11,
         14},
        {"another URI of the last segment", changed(live, "104.m4s", "other.m4s"), "segment-uri-changed", 22,
         25},
        {"all other URIs, from one number on",
         {plain.before, "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:1\n" + segment("a") +
                            segment("b") + segment("c") + segment("d") + segment("e")},
         "segment-uri-changed",
         5,
         6},
        {"another duration", changed(live, "#EXTINF:6,\n102", "#EXTINF:5.9,\n102"),
         "segment-duration-changed", 13, 16},
        {"another title", changed(live, "Advertisement", "Film"), "segment-tag-changed", 19, 22},
        {"no title any more", changed(live, "Advertisement", ""), "segment-tag-changed", 19, 22},
        {"another key", changed(live, "key2", "key3"), "segment-tag-changed", 16, 19},
        {"another IV of the key at the start", changed(live, "0E0F", "0E00"), "segment-tag-changed", 7, 7},
        {"a key appears",
         changed(plain, "#EXTINF:6,\n3.ts", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n#EXTINF:6,\n3.ts"),
         "segment-tag-changed", 8, 10},
        {"a key appears at the start",
         changed(plain, "#EXTINF:6,\n1.ts", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n#EXTINF:6,\n1.ts"),
         "segment-tag-changed", 4, 6},
        {"METHOD=NONE appears", changed(live, "#EXTINF:6,\n102", "#EXT-X-KEY:METHOD=NONE\n#EXTINF:6,\n102"),
         "segment-tag-changed", 15, 17},
        {"a map appears", changed(plain, "#EXTINF:6,\n3.ts", "#EXT-X-MAP:URI=\"i\"\n#EXTINF:6,\n3.ts"),
         "segment-tag-changed", 8, 10},
        {"another map", changed(live, "init2.mp4", "init3.mp4"), "segment-tag-changed", 17, 20},
        {"a discontinuity appears", changed(live, "#EXTINF:6,\n102", "#EXT-X-DISCONTINUITY\n#EXTINF:6,\n102"),
         "segment-tag-changed", 15, 17},
        {"a byte range appears", changed(live, "#EXTINF:6,\n102", "#EXTINF:6,\n#EXT-X-BYTERANGE:9@0\n102"),
         "segment-tag-changed", 14, 17},
        {"a date appears",
         changed(plain, "#EXTINF:6,\n3.ts", "#EXT-X-PROGRAM-DATE-TIME:" + date + "00Z\n#EXTINF:6,\n3.ts"),
         "segment-tag-changed", 8, 10},
        {"another date", changed(live, date + "18.000Z\n#", date + "18.500Z\n#"), "segment-date-changed", 18,
         21},
        {"another date of the first segment", changed(live, date + "06.000Z", "2026-11-21T11:00:06.000Z"),
         "segment-date-changed", 9, 14},
        {"no date any more", changed(live, "#EXT-X-PROGRAM-DATE-TIME:" + date + "06.000Z\n", ""),
         "segment-date-changed", 10, 14},
        {"the key went", changed(live, key2, ""), "key-removed", 19, 19},
        {"the key of the start went",
         changed(live, "#EXT-X-KEY:METHOD=AES-128,URI=\"key1\",IV=0x000102030405060708090A0B0C0D0E0F\n", ""),
         "key-removed", 10, 7},
        {"METHOD=NONE went",
         changedBefore(live, "#EXTINF:6,\n102", "#EXT-X-KEY:METHOD=NONE\n#EXTINF:6,\n102"), "key-removed", 14,
         18},
        {"the map went", changed(live, "#EXT-X-MAP:URI=\"init2.mp4\"\n", ""), "map-removed", 19, 20},
        {"the map of the start went", changed(live, "#EXT-X-MAP:URI=\"init1.mp4\"\n", ""), "map-removed", 10,
         8},
        {"a discontinuity went", changed(live, "#EXT-X-DISCONTINUITY\n", ""), "discontinuity-removed", 19,
         23},
        {"a segment was put between others",
         changed(live, "#EXTINF:6,\n102", "#EXTINF:6,\nnew.m4s\n#EXTINF:6,\n102"), "segment-inserted", 14,
         25},
        {"a segment went from the middle", changed(plain, segment("3"), ""), "segment-removed-out-of-order",
         9, 10},
        {"a segment went from the middle, and the number counts it",
         {plain.before, "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:1\n" + segment("0") +
                            segment("1") + segment("3") + segment("4") + segment("5")},
         "segment-removed-out-of-order",
         9,
         8},
        {"the last segment went", changed(changed(plain, segment("4"), ""), segment("5"), ""),
         "segment-removed-out-of-order", 9, 12},
        {"too little is left",
         {plain.before,
          "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:4\n" + segment("4") + segment("5")},
         "segment-removed-early",
         2,
         4},
        {"nothing is left",
         {plain.before, "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:5\n"},
         "segment-removed-early",
         2,
         4},
    };
}

std::vector<Breach> breachesOfNumbers() {
    return {
        {"no media sequence after a removal", changed(plain, "#EXT-X-MEDIA-SEQUENCE:1\n", ""),
         "media-sequence-missing", 1, 4},
        {"the media sequence did not grow", changed(live, "SEQUENCE:101", "SEQUENCE:100"),
         "media-sequence-miscounted", 4, 4},
        {"the media sequence grew by 2", changed(live, "SEQUENCE:101", "SEQUENCE:102"),
         "media-sequence-miscounted", 4, 4},
        {"the media sequence grew by 50", changed(live, "SEQUENCE:101", "SEQUENCE:150"),
         "media-sequence-miscounted", 4, 4},
        {"the media sequence decreased", changed(live, "SEQUENCE:101", "SEQUENCE:99"),
         "media-sequence-decreased", 4, 4},
        {"the media sequence began anew", changed(live, "SEQUENCE:101", "SEQUENCE:0"),
         "media-sequence-decreased", 4, 4},
        {"the media sequence went, and no segment did",
         {plain.now, plain.now.substr(0, 33) + plain.now.substr(57) + segment("6")},
         "media-sequence-decreased",
         1,
         3},
        {"an older version", {plain.now, plain.before}, "media-sequence-decreased", 1, 3},
        {"another playlist from the start, which says so",
         {songs.before,
          "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXT-X-DISCONTINUITY\n" + segment("a") + segment("b")},
         "playlist-restarted",
         5,
         3},
        {"another playlist with the same numbers, which says so",
         {plain.before,
          "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXT-X-DISCONTINUITY\n" + segment("a") + segment("b")},
         "playlist-restarted",
         5,
         1},
        {"another playlist, whose dates go on",
         {songs.before,
          "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:05:00Z\n" + segment("a")},
         "playlist-restarted",
         5,
         3},
        {"another playlist from the start",
         {live.before,
          "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXT-X-MEDIA-SEQUENCE:0\n" + segment("a") + segment("b")},
         "media-sequence-decreased",
         3,
         4},
        {"no discontinuity sequence after a removal", changed(live, "#EXT-X-DISCONTINUITY-SEQUENCE:5\n", ""),
         "discontinuity-sequence-missing-after-removal", 1, 9},
        {"the discontinuity sequence did not grow", changed(live, "SEQUENCE:5", "SEQUENCE:4"),
         "discontinuity-sequence-miscounted", 5, 5},
        {"the discontinuity sequence grew by 2", changed(live, "SEQUENCE:5", "SEQUENCE:6"),
         "discontinuity-sequence-miscounted", 5, 5},
        {"the discontinuity sequence decreased", changed(live, "SEQUENCE:5", "SEQUENCE:3"),
         "discontinuity-sequence-decreased", 5, 5},
    };
}

std::vector<Breach> breachesOfPlaylists() {
    return {
        {"another version", changed(live, "VERSION:6", "VERSION:7"), "header-tag-changed", 2, 2},
        {"no version any more", changed(live, "#EXT-X-VERSION:6\n", ""), "header-tag-changed", 1, 2},
        {"a version", changed(plain, "#EXT-X-TARGET", "#EXT-X-VERSION:3\n#EXT-X-TARGET"),
         "header-tag-changed", 2, 1},
        {"no EXT-X-INDEPENDENT-SEGMENTS any more", changed(live, "#EXT-X-INDEPENDENT-SEGMENTS\n", ""),
         "header-tag-changed", 1, 6},
        {"EXT-X-START", changed(live, "#EXT-X-KEY", "#EXT-X-START:TIME-OFFSET=1\n#EXT-X-KEY"),
         "header-tag-changed", 7, 1},
        {"another target duration", changed(live, "DURATION:6", "DURATION:7"), "target-duration-changed", 3,
         3},
        {"no target duration any more", changed(live, "#EXT-X-TARGETDURATION:6\n", ""),
         "target-duration-changed", 1, 3},
        {"EXT-X-PLAYLIST-TYPE put in",
         {plain.before, changed(plain, "#EXT-X-MEDIA-SEQUENCE:1\n#EXTINF:6,\n1.ts\n",
                                "#EXT-X-PLAYLIST-TYPE:EVENT\n" + segment("0") + segment("1"))
                            .now},
         "playlist-type-changed",
         3,
         1},
        {"EVENT becomes VOD", changed(changed(event, "EVENT", "VOD"), "4.ts\n", "4.ts\n#EXT-X-ENDLIST\n"),
         "playlist-type-changed", 4, 4},
        {"EXT-X-PLAYLIST-TYPE went", changed(event, "#EXT-X-PLAYLIST-TYPE:EVENT\n", ""),
         "playlist-type-changed", 1, 4},
        {"a VOD grew", changed(vod, "#EXT-X-ENDLIST", segment("4") + "#EXT-X-ENDLIST"),
         "changed-after-end,vod-changed", 13, 1},
        {"a VOD changed its URIs", changed(vod, "1.ts", "b.ts"), "segment-uri-changed,vod-changed", 7, 7},
        {"a VOD has another version", changed(vod, "#EXTINF", "#EXT-X-VERSION:3\n#EXTINF"),
         "header-tag-changed,vod-changed", 4, 1},
        {"an EVENT lost its first segment",
         changed(changed(event, "#EXTINF:6,Start\n0.ts\n", ""), "SEQUENCE:0", "SEQUENCE:1"),
         "event-part-removed,removed-from-typed-playlist", 1, 6},
        {"an EVENT lost a title", changed(event, "Start", ""), "event-part-removed,segment-tag-changed", 5,
         5},
        {"an EVENT got a segment in the middle", changed(event, segment("2"), segment("new") + segment("2")),
         "segment-inserted", 10, 12},
        {"no new segment", changed(live, segment("105.m4s").substr(0, 11) + "105.m4s\n", ""),
         "new-segment-missing", 22, 25},
        {"no new segment, but a date range",
         {songs.before, songs.before + "#EXT-X-DATERANGE:ID=\"x\",START-DATE=\"" + date + "20Z\"\n"},
         "new-segment-missing",
         14,
         14},
        {"no new version for 1.5 target durations", after(same(live.before), 9.0), "new-version-late", 3, 3},
        {"one new segment in five target durations", after(live, 30.0), "new-version-late", 3, 3},
        {"a new version at once", after(live, 2.9), "new-version-early", 3, 3},
        {"a segment after the end",
         {vod.before, changed(vod, "#EXT-X-ENDLIST", segment("4") + "#EXT-X-ENDLIST").now},
         "changed-after-end,vod-changed",
         13,
         1},
        {"a segment after the end of a live playlist",
         {plain.before + "#EXT-X-ENDLIST\n", plain.before + segment("5") + "#EXT-X-ENDLIST\n"},
         "changed-after-end",
         14,
         13},
        {"no end any more", {plain.now + "#EXT-X-ENDLIST\n", plain.now}, "changed-after-end", 1, 14},
    };
}

std::vector<Breach> breachesOfDateRanges() {
    const std::string start = "#EXT-X-DATERANGE:ID=\"ad-1\",START-DATE=\"";
    const Versions ended = both(live, "PLANNED-DURATION=18", "DURATION=18");
    return {
        {"a date range went early", changed(live, ad, ""), "date-range-removed-early", 13, 15},
        {"a date range with a duration went early", changed(ended, "#EXT-X-DATERANGE:ID=\"ad-1\"", "#ad"),
         "date-range-removed-early", 14, 15},
        {"an instant went early",
         changed(both(live, ",PLANNED-DURATION=18", ",DURATION=0"), "#EXT-X-DATERANGE:ID=\"ad-1\"", "#ad"),
         "date-range-removed-early", 14, 15},
        {"a range that goes on went early", changed(songs, "#EXT-X-DATERANGE:ID=\"song-2\"", "#song-2"),
         "date-range-removed-early", 10, 6},
        {"one of two tags went early",
         changed(both(live, ad, ad + start + date + "12.000Z\",DURATION=18\n"), ad, ""),
         "date-range-removed-early", 14, 15},
        {"an ID was used again", changed(live, date + "12.000Z", date + "24.000Z"), "date-range-id-reused",
         12, 15},
        {"an ID was used again beside the first one",
         changed(live, "105.m4s\n", "105.m4s\n" + start + date + "40.000Z\"\n"), "date-range-id-reused", 25,
         15},
        {"another duration of a range", changed(live, "PLANNED-DURATION=18", "PLANNED-DURATION=20"),
         "date-range-value-changed", 12, 15},
        {"an attribute of a range went", changed(live, ",PLANNED-DURATION=18", ""),
         "date-range-value-changed", 12, 15},
        {"a range was put between two", changed(songs, date + "28.000Z", date + "08.000Z"),
         "date-range-put-between", 13, 6},
        {"the end of a range was never told",
         changed(both(live, date + "12.000Z", "2026-11-21T09:59:40.000Z"), "#EXT-X-DATERANGE:ID=\"ad-1\"",
                 "#ad"),
         "date-range-end-untold", 1, 15},
    };
}

std::vector<Breach> breaches() {
    std::vector<Breach> all;
    for (const auto& some :
         {breachesOfSegments(), breachesOfNumbers(), breachesOfPlaylists(), breachesOfDateRanges()})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

TEST(UpdateRules, FindWhatRfc8216Forbids) {
    std::map<std::string, VELHLSRule> rules;
    for (const VELHLSRule& rule : VELHLSComparison::rules())
        rules.emplace(rule.id, rule);
    for (const Breach& breach : breaches()) {
        SCOPED_TRACE(breach.what + "\n" + breach.versions.now);
        const VELHLSComparison comparison = compared(breach.versions);
        EXPECT_EQ(rulesIn(comparison.findings), breach.rules) << shown(comparison.findings);
        ASSERT_FALSE(comparison.findings.empty());
        const VELHLSFinding& first = comparison.findings.front();
        const VELHLSRule& rule = rules.at(first.ruleId);
        EXPECT_EQ(first.line, breach.line) << shown(comparison.findings);
        ASSERT_EQ(first.related.size(), 1U);
        EXPECT_EQ(first.related.front().line, breach.oldLine) << shown(comparison.findings);
        EXPECT_EQ(first.profile, "rfc8216");
        EXPECT_EQ(first.severity, rule.severity);
        EXPECT_EQ(first.level, rule.level);
        EXPECT_EQ(first.source, "RFC 8216, section " + first.clause);
    }
}

TEST(UpdateRules, AreEachBrokenInATest) {
    std::set<std::string> found;
    for (const Breach& breach : breaches()) {
        for (const VELHLSFinding& finding : compared(breach.versions).findings)
            found.insert(finding.ruleId);
    }
    for (const VELHLSRule& rule : VELHLSComparison::rules()) {
        EXPECT_EQ(found.count(std::string(rule.id)), 1U) << rule.id;
    }
}

}  // namespace
}  // namespace comparison_test
