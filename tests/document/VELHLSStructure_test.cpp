#include "velhls/document/VELHLSStructure.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"

namespace {

using playlist::lines;
using testing::ElementsAre;

/// A document and its structure.
struct Read {
    explicit Read(const std::string& text) : document(text), structure(document) {}

    VELHLSDocument document;
    VELHLSStructure structure;
};

std::vector<std::size_t> keyLines(const VELHLSStructure::InForce& inForce) {
    return {inForce.keyLines.begin(), inForce.keyLines.end()};
}

std::string without(const Read& read, std::size_t segment) {
    return read.document.apply(read.structure.remove(read.structure.segment(segment))).text;
}

TEST(VELHLSStructure, OfAnEmptyTextIsEmpty) {
    const Read read("");
    EXPECT_EQ(read.structure.segmentCount(), 0U);
    EXPECT_TRUE(read.structure.variants().empty());
    EXPECT_TRUE(read.structure.segments().empty());
    EXPECT_FALSE(read.structure.segmentOf(1));
    EXPECT_FALSE(read.structure.variantOf(1));
    EXPECT_THROW(static_cast<void>(read.structure.segment(0)), std::out_of_range);
    EXPECT_EQ(read.structure.inForceAt(1).mapLine, 0U);
}

TEST(VELHLSStructure, FindsTheLinesOfSegments) {
    const Read read(lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "", "#EXT-X-DISCONTINUITY", "# comment",
                           "#EXTINF:6.5,title", "#EXT-X-TARGETDURATION:6", "#EXT-X-BYTERANGE:10@5",
                           "#EXT-X-OTHER", "a.ts", "b.ts", "#EXTINF:2,", "c.ts", "#EXT-X-ENDLIST"}));
    ASSERT_EQ(read.structure.segmentCount(), 3U);
    const VELHLSStructure::Segment first = read.structure.segment(0);
    EXPECT_EQ(first.firstLine, 4U);
    EXPECT_EQ(first.lastLine, 10U);
    EXPECT_EQ(first.uriLine, 10U);
    EXPECT_EQ(first.durationLine, 6U);
    EXPECT_EQ(first.rangeLine, 8U);
    EXPECT_EQ(first.dateLine, 0U);
    EXPECT_EQ(first.duration, 6.5);
    EXPECT_EQ(first.rangeOffset, 5U);
    EXPECT_THAT(read.structure.linesOf(first), ElementsAre(4, 6, 8, 9, 10));
    EXPECT_EQ(read.structure.segmentOf(9), 0U);
    for (const std::size_t line : {3U, 5U, 7U, 14U, 15U})
        EXPECT_FALSE(read.structure.segmentOf(line)) << line;

    const VELHLSStructure::Segment bare = read.structure.segment(1);
    EXPECT_EQ(bare.firstLine, 11U);
    EXPECT_EQ(bare.uriLine, 11U);
    EXPECT_EQ(bare.durationLine, 0U);
    EXPECT_EQ(bare.duration, 0.0);
    EXPECT_EQ(bare.startTime, 6.5);
    EXPECT_EQ(read.structure.segment(2).startTime, 6.5);
}

TEST(VELHLSStructure, KeepsTagsThatNoUriFollows) {
    const Read read(lines({"#EXTINF:6,", "a.ts", "#EXT-X-PART:DURATION=1,URI=\"p\"", "#EXT-X-ENDLIST"}));
    ASSERT_EQ(read.structure.segmentCount(), 2U);
    const VELHLSStructure::Segment open = read.structure.segment(1);
    EXPECT_EQ(open.firstLine, 3U);
    EXPECT_EQ(open.lastLine, 3U);
    EXPECT_EQ(open.uriLine, 0U);
    EXPECT_THAT(read.structure.linesOf(open), ElementsAre(3));
}

TEST(VELHLSStructure, FindsVariants) {
    const Read read(lines({"#EXT-X-STREAM-INF:BANDWIDTH=1", "# comment", "", "a.m3u8", "stray.m3u8",
                           "#EXT-X-STREAM-INF:BANDWIDTH=2", "#EXT-X-STREAM-INF:BANDWIDTH=3", "c.m3u8",
                           "#EXT-X-STREAM-INF:BANDWIDTH=4"}));
    const auto& variants = read.structure.variants();
    ASSERT_EQ(variants.size(), 4U);
    EXPECT_EQ(variants[0].tagLine, 1U);
    EXPECT_EQ(variants[0].uriLine, 4U);
    EXPECT_EQ(variants[1].uriLine, 0U);
    EXPECT_EQ(variants[2].uriLine, 8U);
    EXPECT_EQ(variants[3].uriLine, 0U);
    EXPECT_EQ(read.structure.variantOf(4), 0U);
    EXPECT_EQ(read.structure.variantOf(6), 1U);
    EXPECT_FALSE(read.structure.variantOf(2));
    EXPECT_FALSE(read.structure.variantOf(5));
    EXPECT_EQ(read.structure.segmentOf(5), 0U);
    EXPECT_EQ(read.document.apply(read.structure.remove(variants[0])).text.substr(0, 12), "# comment\n\ns");
}

TEST(VELHLSStructure, CountsSequenceNumbers) {
    const Read read(
        lines({"#EXT-X-MEDIA-SEQUENCE:100", "#EXT-X-DISCONTINUITY-SEQUENCE:7", "#EXTINF:6,", "a",
               "#EXT-X-DISCONTINUITY", "#EXTINF:6,", "b", "#EXT-X-MEDIA-SEQUENCE:5", "#EXTINF:6,", "c"}));
    EXPECT_EQ(read.structure.segment(0).mediaSequence, 100U);
    EXPECT_EQ(read.structure.segment(0).discontinuitySequence, 7U);
    EXPECT_EQ(read.structure.segment(1).mediaSequence, 101U);
    EXPECT_EQ(read.structure.segment(1).discontinuitySequence, 8U);
    EXPECT_EQ(read.structure.segment(2).mediaSequence, 102U);
    const Read skipped(lines({"#EXT-X-SKIP:SKIPPED-SEGMENTS=30", "#EXT-X-MEDIA-SEQUENCE:100", "a"}));
    EXPECT_EQ(skipped.structure.segment(0).mediaSequence, 130U);
}

TEST(VELHLSStructure, CountsFromNothingWhereASequenceNumberCannotBeRead) {
    const Read read(lines({"#EXT-X-MEDIA-SEQUENCE:x", "#EXT-X-DISCONTINUITY-SEQUENCE:-7",
                           "#EXT-X-SKIP:SKIPPED-SEGMENTS=many", "#EXTINF:6,", "a", "b"}));
    EXPECT_EQ(read.structure.segment(0).mediaSequence, 0U);
    EXPECT_EQ(read.structure.segment(0).discontinuitySequence, 0U);
    EXPECT_EQ(read.structure.segment(1).mediaSequence, 1U);
}

TEST(VELHLSStructure, KnowsWhereRangesBegin) {
    const Read read(lines({"#EXT-X-BYTERANGE:10@5", "a", "#EXT-X-BYTERANGE:20", "a", "#EXT-X-BYTERANGE:1",
                           "a", "#EXT-X-BYTERANGE:1", "b", "#EXT-X-BYTERANGE:1@0", "b", "b",
                           "#EXT-X-BYTERANGE:1", "b", "#EXT-X-BYTERANGE:x", "b",
                           "#EXT-X-BYTERANGE:18446744073709551615@5", "c", "#EXT-X-BYTERANGE:1", "c"}));
    std::vector<std::uint64_t> offsets;
    for (const auto& segment : read.structure.segments())
        offsets.push_back(segment.rangeOffset.value_or(999));
    EXPECT_THAT(offsets, ElementsAre(5, 15, 35, 999, 0, 999, 999, 999, 5, 999));
}

TEST(VELHLSStructure, KnowsTheKeysInForce) {
    const Read read(lines(
        {"a", "#EXT-X-KEY:METHOD=AES-128,URI=\"1\"", "b", "#EXT-X-KEY:METHOD=AES-128,URI=\"2\"", "c",
         "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"3\",KEYFORMAT=\"f\"", "d",
         "#EXT-X-KEY:METHOD=AES-128,URI=\"4\",KEYFORMAT=\"identity\"", "e", "#EXT-X-KEY:METHOD=NONE", "f"}));
    const auto keys = [&](std::size_t segment) { return keyLines(read.structure.segment(segment).inForce); };
    EXPECT_THAT(keys(0), ElementsAre());
    EXPECT_THAT(keys(1), ElementsAre(2));
    EXPECT_THAT(keys(2), ElementsAre(4));
    EXPECT_THAT(keys(3), ElementsAre(4, 6));
    EXPECT_THAT(keys(4), ElementsAre(6, 8));
    EXPECT_THAT(keys(5), ElementsAre());
    EXPECT_THAT(keyLines(read.structure.inForceAt(1)), ElementsAre());
    EXPECT_THAT(keyLines(read.structure.inForceAt(2)), ElementsAre(2));
    EXPECT_THAT(keyLines(read.structure.inForceAt(1000)), ElementsAre());
}

TEST(VELHLSStructure, LetsTheOldestKeyGoWhenTheFormatsAreTooMany) {
    std::string text;
    constexpr std::size_t formats = VELHLSStructure::maximumKeys + 1;
    for (std::size_t format = 1; format <= formats; ++format)
        text += "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"k\",KEYFORMAT=\"" + std::to_string(format) + "\"\n";
    const Read read(text + "a\n");
    const std::vector<std::size_t> keys = keyLines(read.structure.segment(0).inForce);
    EXPECT_EQ(keys.size(), VELHLSStructure::maximumKeys);
    EXPECT_EQ(keys.front(), 2U);
    EXPECT_EQ(keys.back(), formats);
}

TEST(VELHLSStructure, KnowsMapsAndDates) {
    const Read read(lines(
        {"#EXTINF:1,", "a", "#EXT-X-MAP:URI=\"m\"", "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:10Z",
         "#EXTINF:1.5,", "b", "#EXTINF:2,", "c", "#EXT-X-PROGRAM-DATE-TIME:never", "#EXTINF:1,", "d",
         "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:00Z", "e", "#EXT-X-PROGRAM-DATE-TIME:1970-01-02", "f"}));
    const auto date = [&](std::size_t segment) { return read.structure.segment(segment).date.value_or(-1); };
    EXPECT_EQ(date(0), -1);
    EXPECT_EQ(date(1), 10000000);
    EXPECT_EQ(date(2), 11500000);
    EXPECT_EQ(date(3), -1);
    EXPECT_EQ(date(4), 0);
    // A day is no moment.
    EXPECT_EQ(date(5), -1);
    EXPECT_EQ(read.structure.segment(1).dateLine, 4U);
    EXPECT_EQ(read.structure.segment(3).dateLine, 9U);
    EXPECT_EQ(read.structure.segment(3).inForce.dateLine, 9U);
    EXPECT_EQ(read.structure.segment(0).inForce.mapLine, 0U);
    EXPECT_EQ(read.structure.segment(3).inForce.mapLine, 3U);
}

TEST(VELHLSStructure, RemovesASegmentAndKeepsWhatHoldsForOthers) {
    const Read read(lines({"#EXTM3U", "#EXT-X-KEY:METHOD=NONE", "#EXT-X-DISCONTINUITY", "#EXT-X-CUE-OUT:30",
                           "# comment", "#EXTINF:6,", "#EXT-X-OTHER", "a.ts", "#EXTINF:7,", "b.ts"}));
    EXPECT_EQ(without(read, 0), lines({"#EXTM3U", "#EXT-X-KEY:METHOD=NONE", "#EXT-X-DISCONTINUITY",
                                       "# comment", "#EXTINF:7,", "b.ts"}));
    EXPECT_EQ(without(read, 1),
              lines({"#EXTM3U", "#EXT-X-KEY:METHOD=NONE", "#EXT-X-DISCONTINUITY", "#EXT-X-CUE-OUT:30",
                     "# comment", "#EXTINF:6,", "#EXT-X-OTHER", "a.ts"}));
    EXPECT_EQ(read.structure.remove(read.structure.segment(1)).size(), 1U);
}

TEST(VELHLSStructure, BearsNumbersThatAreTooLarge) {
    const Read read(
        lines({"#EXT-X-MEDIA-SEQUENCE:18446744073709551615", "#EXT-X-PROGRAM-DATE-TIME:9999-12-31T23:59:59Z",
               "#EXTINF:" + std::string(400, '9') + ",", "a", "#EXTINF:1,", "b"}));
    EXPECT_EQ(read.structure.segment(1).mediaSequence, 0U);
    EXPECT_TRUE(read.structure.segment(1).date);
}

}  // namespace
