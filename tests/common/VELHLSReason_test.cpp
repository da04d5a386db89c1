#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/PlaylistText.h"

namespace {

using playlist::lines;

/// "line:column+length rule: message", or "accepted".
std::string described(bool isAccepted, const VELHLSReason& reason) {
    if (isAccepted) return "accepted";
    return std::to_string(reason.line) + ":" + std::to_string(reason.column) + "+" +
           std::to_string(reason.length) + " " + reason.ruleId + ": " + reason.message;
}

std::string reasonOfMaster(std::string_view text) {
    VELHLSReason reason;
    const bool isAccepted = VELHLSParsedManifest::parseManifest(text, &reason) != nullptr;
    return described(isAccepted, reason);
}

std::string reasonOfMedia(std::string_view text) {
    VELHLSReason reason;
    const bool isAccepted = VELHLSMediaStream::parseMediaStream(text, &reason) != nullptr;
    return described(isAccepted, reason);
}

struct Row {
    std::string text;
    std::string reason;
};

TEST(VELHLSReason, TellsWhereAMasterPlaylistIsRejectedAndWhy) {
    const std::vector<Row> rows = {
        {lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=0", "low.m3u8"}),
         "2:29+1 variant-bandwidth-zero: EXT-X-STREAM-INF: BANDWIDTH: expected a BANDWIDTH above 0, seen "
         "\"0\""},
        {lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=x", "low.m3u8"}),
         "2:29+1 number-missing: EXT-X-STREAM-INF: BANDWIDTH: expected a number, seen \"x\""},
        {lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=99999999999999999999", "low.m3u8"}),
         "2:29+20 number-out-of-range: EXT-X-STREAM-INF: BANDWIDTH: expected a number that fits, seen "
         "\"99999999999999999999\""},
        {"#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1",
         "2:2+16 variant-uri-missing: EXT-X-STREAM-INF: expected a URI in the line after EXT-X-STREAM-INF, "
         "seen none"},
        {"",
         "1:1+0 variants-missing: expected at least one EXT-X-STREAM-INF or EXT-X-I-FRAME-STREAM-INF, seen "
         "none"},
        {lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\"",
                "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"b\"", "low.m3u8"}),
         "3:38+1 group-missing: EXT-X-STREAM-INF: AUDIO: expected the GROUP-ID of an EXT-X-MEDIA tag of this "
         "type, seen \"b\""},
        {"\xEF\xBB\xBF#EXTM3U\n",
         "1:1+3 byte-order-mark: expected no byte order mark before the first tag, seen one"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(reasonOfMaster(row.text), row.reason) << row.text;
}

TEST(VELHLSReason, TellsWhereAMediaPlaylistIsRejectedAndWhy) {
    const std::vector<Row> rows = {
        {lines({"#EXTM3U", "#EXTINF:6,", "0.ts"}),
         "3:1+4 segment-uri-too-short: expected a URI of at least 6 characters, or EXT-X-BYTERANGE, seen "
         "\"0.ts\""},
        {"#EXTM3U\n#EXTINF:6,\nfirst.ts",
         "3:1+8 segment-uri-without-line-feed: expected a line feed after the last URI, seen \"first.ts\""},
        {"#EXTM3U\n#EXT-X-DISCONTINUITY\n#EXTINF:6,\n",
         "2:2+19 segment-uri-missing: EXT-X-DISCONTINUITY: expected a URI line after the segment's tags, "
         "seen "
         "the end of the playlist"},
        {lines({"#EXTM3U", "#EXTINF:0,Title", "first.ts"}),
         "2:9+1 segment-duration-zero: EXTINF: expected a duration other than 0, seen \"0\""},
        {lines({"#EXTM3U", "#EXT-X-MAP:URI=\"\"", "#EXTINF:6,", "first.ts"}),
         "2:12+6 map-uri-empty: EXT-X-MAP: expected a URI that is not empty, seen \"URI=\"\"\""},
        {lines({"#EXTM3U", "stray"}),
         "2:1+5 uri-without-tag: expected a tag, a comment or a blank line: a URI stands after the tags that "
         "describe it, seen \"stray\""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(reasonOfMedia(row.text), row.reason) << row.text;
}

TEST(VELHLSReason, TellsTheLineOfThePatternWhereItsExpansionIsRejected) {
    EXPECT_EQ(reasonOfMedia(lines({"#EXTM3U", "#ZOR-PATTERN_START:p", "#EXTINF:6,", "first.ts", "#EXTINF:0,",
                                   "second.ts", "#ZOR-PATTERN_REPEAT:p,3"})),
              "5:9+1 segment-duration-zero: EXTINF: expected a duration other than 0, seen \"0\"");
    EXPECT_EQ(reasonOfMedia(lines({"#EXTM3U", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"x\"", "#ZOR-PATTERN_START:p",
                                   "#EXTINF:6,", "first{$n}.ts", "#ZOR-DEFINE_INCREMENT:n,1",
                                   "#ZOR-PATTERN_REPEAT:p,1"})),
              "6:1+25 number-missing: ZOR-DEFINE_INCREMENT: expected a number, seen \"x\"");
    EXPECT_EQ(reasonOfMedia(lines({"#EXTM3U", "#ZOR-PATTERN_START:p", "#EXTINF:6,", "first.ts",
                                   "#ZOR-PATTERN_REPEAT:p,9999999"})),
              "2:20+1 pattern-too-large: ZOR-PATTERN_START: expected an expansion within 64 MiB and 524288 "
              "segments, seen more");
}

TEST(VELHLSReason, CountsColumnsInTheTextWithItsCarriageReturns) {
    EXPECT_EQ(reasonOfMaster("#EXTM3U\r\n#EXT-X-STREAM-INF:BAND\rWIDTH=0\r\na\r\n").substr(0, 29),
              "2:30+1 variant-bandwidth-zero");
    EXPECT_EQ(reasonOfMedia("#EXTM3U\r\n#EXT\rINF:\r0,\r\nfir\rst.ts\r\n").substr(0, 28),
              "2:11+1 segment-duration-zero");
}

TEST(VELHLSReason, StaysAsItWasWhenThePlaylistIsAccepted) {
    VELHLSReason reason;
    reason.ruleId = "mine";
    EXPECT_NE(VELHLSMediaStream::parseMediaStream("#EXTM3U\n", &reason), nullptr);
    EXPECT_EQ(reason.ruleId, "mine");
}

TEST(VELHLSReason, NeedNotBeAskedFor) {
    EXPECT_EQ(VELHLSMediaStream::parseMediaStream("#EXTINF:x,\nfirst.ts\n"), nullptr);
    EXPECT_EQ(VELHLSParsedManifest::parseManifest("#EXT-X-VERSION:x\n"), nullptr);
    EXPECT_EQ(VELHLSParsedManifest::parseManifest(std::string_view()), nullptr);
    EXPECT_NE(VELHLSMediaStream::parseMediaStream(std::string_view()), nullptr);
}

TEST(VELHLSReason, HoldsBytesOfThePlaylistAsTheyAre) {
    using namespace std::string_literals;
    EXPECT_EQ(reasonOfMedia("a\0b\n"s).substr(0, 22), "1:1+3 uri-without-tag:");
    EXPECT_NE(reasonOfMedia("a\0b\n"s).find("\"a\0b\""s), std::string::npos);
}

TEST(VELHLSReason, TheTextNeedNotOutliveThePlaylist) {
    auto text = std::make_unique<std::string>("#EXTM3U\n#EXTINF:6,Title\nfirst-segment.ts\n");
    const auto stream = VELHLSMediaStream::parseMediaStream(*text);
    text = nullptr;
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->segments.at(0)->uri, "first-segment.ts");
    EXPECT_EQ(stream->segments.at(0)->title, ",Title");
}

}  // namespace
