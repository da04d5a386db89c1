// What RFC 8216 lets a server do, and what monitors must not be woken for.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/comparison/Updates.h"

namespace comparison_test {
namespace {

struct Allowed {
    std::string what;
    Versions versions;
};

std::string segment(const std::string& uri) {
    return "#EXTINF:6,\n" + uri + ".ts\n";
}

std::string header(const std::string& number) {
    return "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:" + number + "\n";
}

std::string segments(const std::vector<std::string>& uris) {
    std::string text;
    for (const std::string& uri : uris)
        text += segment(uri);
    return text;
}

std::string withCarriageReturns(const std::string& text) {
    std::string changed;
    for (const char character : text)
        changed += character == '\n' ? std::string("\r\n") : std::string(1, character);
    return changed;
}

const std::string four = segments({"a", "b", "c", "d"});
const std::string date = "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:";
const std::string ad = "#EXT-X-DATERANGE:ID=\"ad\",START-DATE=\"2026-11-21T10:00:06Z\"";

std::vector<Allowed> allowedOfSegments() {
    const std::string key = "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0x1\n";
    const std::string none = "#EXT-X-KEY:METHOD=NONE\n";
    return {
        {"a window that slides", plain},
        {"a window that slides with all that there is", live},
        {"songs that follow each other", songs},
        {"an event that grows", event},
        {"an event that ends", changed(event, "4.ts\n", "4.ts\n#EXT-X-ENDLIST\n")},
        {"a VOD that stays", vod},
        {"a window that moved beyond the old one",
         {header("100") + four, header("150") + segments({"w", "x", "y", "z"})}},
        {"a window that begins where the old one ended",
         {header("100") + four, header("104") + segments({"w", "x", "y", "z"})}},
        {"names that come again far away",
         {header("100") + four, header("140") + segments({"c", "d", "a", "b"})}},
        {"names that come again with other durations",
         {header("100") + four,
          header("140") + "#EXTINF:5.9,\na.ts\n#EXTINF:6,\nb.ts\n" + segments({"c", "d"})}},
        {"a restart whose numbers go on",
         {header("100") + four, header("104") + "#EXT-X-DISCONTINUITY\n" + segments({"0", "1", "2"})}},
        {"a slate that is listed again and again",
         {header("7") + segments({"s", "s", "s", "s"}), header("8") + segments({"s", "s", "s", "s"})}},
        {"an advertisement that is listed again",
         {header("7") + segments({"a", "b", "a", "b", "a"}),
          header("8") + segments({"b", "a", "b", "a", "b"})}},
        {"the end", {header("7") + four, header("7") + four + "#EXT-X-ENDLIST\n"}},
        {"the end with a last segment",
         {header("7") + four, header("8") + segments({"b", "c", "d", "e"}) + "#EXT-X-ENDLIST\n"}},
        {"what is left after the end may be short",
         {header("7") + four, header("9") + segments({"c", "d"}) + "#EXT-X-ENDLIST\n"}},
        {"the first segments", {header("0"), header("0") + segments({"a"})}},
        {"nothing yet", {header("0"), header("0")}},
        {"no new segment yet", {header("7") + four, header("7") + four, 8.9}},
        {"a new segment in time", {header("7") + four, header("7") + four + segment("e"), 6.0}},
        {"three new segments in three target durations",
         {header("7") + four, header("10") + segments({"d", "e", "f", "g"}), 18.0}},
        {"a window that moved beyond the old one in its time",
         {header("100") + four, header("150") + segments({"w", "x", "y", "z"}), 300.0}},
        {"a date range that is told before the next segment",
         {header("7") + date + "00Z\n" + four, header("7") + date + "00Z\n" + four + ad + "\n", 4.0}},
        {"durations that are written otherwise",
         {header("7") + four, header("7") + "#EXTINF:6.000,\na.ts\n#EXTINF:6\nb.ts\n#EXTINF: 6 ,\nc.ts\n" +
                                  segments({"d", "e"})}},
        {"a key that is repeated at the start",
         {header("7") + key + four, header("8") + key + segments({"b", "c", "d", "e"})}},
        {"a key that is written otherwise",
         {header("7") + key + four,
          header("8") + "#EXT-X-KEY:IV=0x1,KEYFORMAT=\"identity\",METHOD=AES-128,URI=\"k\"\n" +
              segments({"b", "c", "d", "e"})}},
        {"a key that is repeated for each segment",
         {header("7") + key + four,
          header("8") + key + segment("b") + key + segment("c") + key + segment("d") + segment("e")}},
        {"METHOD=NONE that went with the segments that it followed",
         {header("7") + key + segment("a") + none + segments({"b", "c", "d"}),
          header("8") + segments({"b", "c", "d", "e"})}},
        {"another key for new segments",
         {header("7") + four, header("8") + segments({"b", "c", "d"}) + key + segment("e")}},
        {"a key and a discontinuity that wait for the next segment",
         {header("7") + four + "#EXT-X-DISCONTINUITY\n" + key,
          header("7") + four + "#EXT-X-DISCONTINUITY\n" + key + segment("e")}},
        {"a map that is repeated at the start",
         {header("7") + "#EXT-X-MAP:URI=\"i\"\n" + four,
          header("8") + "#EXT-X-MAP:URI=\"i\"\n" + segments({"b", "c", "d", "e"})}},
        {"a date that is written anew at the start",
         {header("7") + date + "00.000Z\n" + four,
          header("8") + date + "06.004Z\n" + segments({"b", "c", "d", "e"})}},
        {"a date that is written otherwise",
         {header("7") + date + "00.000Z\n" + four, header("7") + date + "00+00:00\n" + four + segment("e")}},
        {"a discontinuity that is counted as soon as its segment is the first one",
         {header("7") + segment("a") + "#EXT-X-DISCONTINUITY\n" + segments({"b", "c", "d"}),
          header("8") + "#EXT-X-DISCONTINUITY-SEQUENCE:1\n" + segments({"b", "c", "d", "e"})}},
        {"a discontinuity that stays with the first segment",
         {header("7") + "#EXT-X-DISCONTINUITY-SEQUENCE:3\n" + segment("a") + "#EXT-X-DISCONTINUITY\n" +
              segments({"b", "c", "d"}),
          header("8") + "#EXT-X-DISCONTINUITY-SEQUENCE:3\n#EXT-X-DISCONTINUITY\n" +
              segments({"b", "c", "d", "e"})}},
        {"byte ranges that follow each other",
         {header("7") + "#EXTINF:6,\n#EXT-X-BYTERANGE:10@0\na.ts\n#EXTINF:6,\n#EXT-X-BYTERANGE:20\na.ts\n" +
              segments({"c", "d"}),
          header("8") + "#EXTINF:6,\n#EXT-X-BYTERANGE:20@10\na.ts\n" + segments({"c", "d", "e"})}},
        {"what is left is three target durations, rounded",
         {"#EXTM3U\n#EXT-X-TARGETDURATION:8\n#EXTINF:8,\n0\n#EXTINF:7.975,\n1\n#EXTINF:7.941,\n2\n",
          "#EXTM3U\n#EXT-X-TARGETDURATION:8\n#EXT-X-MEDIA-SEQUENCE:1\n#EXTINF:7.975,\n1\n#EXTINF:7.941,\n2\n#"
          "EXTINF:7.975,\n3\n"}},
    };
}

std::vector<Allowed> allowedOfTags() {
    const std::string cues = "#EXT-X-CUE-OUT:DURATION=12\n";
    const std::string dated = header("7") + date + "00Z\n";
    const std::string later = header("8") + date + "06Z\n";
    const std::string next = segments({"b", "c", "d", "e"});
    const std::string lowLatency =
        "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-PART-INF:PART-TARGET=2\n#EXT-X-MEDIA-SEQUENCE:7\n" + four;
    return {
        {"cues that move with their segments",
         {header("7") + segment("a") + cues + segments({"b", "c"}) + "#EXT-X-CUE-IN\n" + segment("d"),
          header("8") + cues + segments({"b", "c"}) + "#EXT-X-CUE-IN\n" + segments({"d", "e"})}},
        {"a cue that goes on at the start of the window",
         {header("7") + cues + four, header("8") + "#EXT-X-CUE-OUT-CONT:6/12\n" + next}},
        {"a vendor's tag with the time",
         {"#EXTM3U\n#EXT-X-NOW:1\n" + header("7").substr(8) + four,
          "#EXTM3U\n#EXT-X-NOW:2\n" + header("8").substr(8) + next}},
        {"a date range that is told later", {dated + four, later + next + ad + "\n"}},
        {"a date range whose end is told by a second tag",
         {dated + ad + ",PLANNED-DURATION=6\n" + four,
          later + ad + ",PLANNED-DURATION=6\n" + next + ad + ",DURATION=6\n"}},
        {"a date range whose end is written into its tag",
         {dated + ad + ",PLANNED-DURATION=6\n" + four,
          later + ad + ",PLANNED-DURATION=6,DURATION=6\n" + next}},
        {"two tags of a date range that become one",
         {dated + ad + ",PLANNED-DURATION=6\n" + ad + ",DURATION=6\n" + four,
          later + ad + ",PLANNED-DURATION=6,DURATION=6\n" + next}},
        {"a date range that stands elsewhere", {dated + ad + "\n" + four, later + next + ad + "\n"}},
        {"a date range that is written otherwise",
         {dated + ad + ",DURATION=6\n" + four,
          later + "#EXT-X-DATERANGE:DURATION=6.000,START-DATE=\"2026-11-21T10:00:06.000Z\",ID=\"ad\"\n" +
              next}},
        {"a date range that went after its end",
         {header("7") + date + "00Z\n" + ad + ",DURATION=6\n" + four,
          header("9") + date + "12Z\n" + segments({"c", "d", "e"})}},
        {"an instant that went with its segment",
         {header("7") + date + "00Z\n" + ad + ",DURATION=0\n" + four,
          header("9") + date + "12Z\n" + segments({"c", "d", "e"})}},
        {"comments and blank lines",
         {header("7") + four, header("7") + "\n# now\n" + four + segment("e") + "## end\n"}},
        {"other line ends", {header("7") + four, withCarriageReturns(header("7") + four + segment("e"))}},
        {"parts of the next segment", {lowLatency, lowLatency + "#EXT-X-PART:DURATION=2,URI=\"e.0\"\n"}},
        {"parts that went, and a hint for another one",
         {lowLatency + "#EXT-X-PART:DURATION=2,URI=\"e.0\"\n#EXT-X-PRELOAD-HINT:TYPE=PART,URI=\"e.1\"\n",
          lowLatency + segment("e") + "#EXT-X-PRELOAD-HINT:TYPE=PART,URI=\"f.0\"\n"}},
        {"a report of another rendition",
         {lowLatency + "#EXT-X-RENDITION-REPORT:URI=\"o\",LAST-MSN=10\n",
          lowLatency + segment("e") + "#EXT-X-RENDITION-REPORT:URI=\"o\",LAST-MSN=11\n"}},
        {"a delta update",
         {header("7") + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n" + date + "00Z\n" + ad + "\n" + four,
          header("8") + "#EXT-X-SKIP:SKIPPED-SEGMENTS=2\n" + segments({"d", "e"})}},
    };
}

std::vector<Allowed> allAllowed() {
    std::vector<Allowed> all = allowedOfSegments();
    const std::vector<Allowed> others = allowedOfTags();
    all.insert(all.end(), others.begin(), others.end());
    return all;
}

TEST(AllowedUpdates, AreNotFound) {
    for (const Allowed& allowed : allAllowed()) {
        const VELHLSComparison comparison = compared(allowed.versions);
        EXPECT_EQ(shown(comparison.findings), "") << allowed.what << "\n" << allowed.versions.now;
    }
}

TEST(AllowedUpdates, OfAMasterPlaylistAreAll) {
    const Versions versions = {"#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n",
                               "#EXTM3U\n#EXT-X-VERSION:4\n#EXT-X-STREAM-INF:BANDWIDTH=2\nhigh.m3u8\n",
                               100.0};
    EXPECT_EQ(shown(compared(versions).findings), "");
}

}  // namespace
}  // namespace comparison_test
