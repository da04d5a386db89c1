#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/hostile/HostileInputs.h"
#include "tests/support/Corpus.h"
#include "tests/support/Mutations.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/RecordLinesOracle.h"
#include "tests/support/WholePlaylists.h"

namespace {

using playlist::lines;

template <typename Record>
std::string linesOf(const VELHLSRecordLines& lines, const Record& record) {
    const auto found = lines.of(record);
    return found ? std::to_string(found->first) + "-" + std::to_string(found->last) : "none";
}

/// "3-4 5-6": the lines of each segment.
std::string segmentLines(const std::string& text) {
    const VELHLSDocument document(text);
    VELHLSRecordLines lines;
    VELHLSReason reason;
    const auto stream = lines.parseMediaStream(document, &reason);
    if (stream == nullptr) return reason.message;
    std::string seen;
    for (const auto& segment : stream->segments)
        seen += (seen.empty() ? "" : " ") + linesOf(lines, *segment);
    return seen;
}

/// The same of each variant, by bandwidth.
std::string variantLines(const std::string& text) {
    const VELHLSDocument document(text);
    VELHLSRecordLines lines;
    VELHLSReason reason;
    const auto manifest = lines.parseManifest(document, &reason);
    if (manifest == nullptr) return reason.message;
    std::string seen;
    for (const auto& [bandwidth, variant] : manifest->variants)
        seen += (seen.empty() ? "" : " ") + linesOf(lines, *variant);
    return seen;
}

TEST(VELHLSRecordLines, OfAVariantAreItsTagAndItsUri) {
    EXPECT_EQ(variantLines(lines({"#EXTM3U", "# by hand", "#EXT-X-STREAM-INF:BANDWIDTH=9", "high.m3u8", "",
                                  "#EXT-X-STREAM-INF:BANDWIDTH=2", "low.m3u8"})),
              "6-7 3-4");
}

TEST(VELHLSRecordLines, OfAnIFrameVariantAreItsTag) {
    EXPECT_EQ(variantLines(lines({"#EXTM3U", "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=2,URI=\"i.m3u8\""})),
              "2-2");
}

TEST(VELHLSRecordLines, AreThoseOfTheDocumentWithReturnsAndWithoutAFinalLineEnd) {
    EXPECT_EQ(variantLines("#EXTM3U\r\n\r\n#EXT-X-STREAM-INF:BANDWIDTH=9\r\nhi\rgh.m3u8"), "3-4");
}

TEST(VELHLSRecordLines, OfTheOtherRecordsOfAMasterPlaylistAreTheirTags) {
    const VELHLSDocument document(whole::master);
    VELHLSRecordLines lines;
    const auto manifest = lines.parseManifest(document);
    ASSERT_NE(manifest, nullptr);
    const auto lineOf = [&](const auto& record) {
        const auto found = lines.of(record);
        if (!found || found->first != found->last) return std::string("none");
        return std::string(document.line(found->first).text);
    };
    const auto& audio = manifest->renditions[VELHLSMediaStreamRendition::Audio];
    const auto& surround = *audio.at("audio-in-surround-ac3").begin()->second;
    EXPECT_NE(lineOf(surround).find("URI=\"audio/surround/index.m3u8\""), std::string::npos);
    EXPECT_NE(lineOf(*manifest->sessionData.back()).find("com.example.programme.credits"), std::string::npos);
    EXPECT_EQ(lineOf(*manifest->sessionKeys.front()).substr(0, 19), "#EXT-X-SESSION-KEY:");
}

TEST(VELHLSRecordLines, OfTwoRenditionsWithOneNameAreThoseOfTheFirst) {
    const VELHLSDocument document(
        lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",URI=\"first\"",
               "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",URI=\"second\"",
               "#EXT-X-STREAM-INF:BANDWIDTH=9,AUDIO=\"a\"", "high.m3u8"}));
    VELHLSRecordLines lines;
    const auto manifest = lines.parseManifest(document);
    ASSERT_NE(manifest, nullptr);
    const auto& rendition = *manifest->renditions[VELHLSMediaStreamRendition::Audio]["a"]["n"];
    EXPECT_EQ(rendition.uri, "first");
    EXPECT_EQ(linesOf(lines, rendition), "2-2");
}

TEST(VELHLSRecordLines, OfASegmentGoFromItsFirstTagToItsUri) {
    EXPECT_EQ(segmentLines(lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6,", "first.ts", "# between",
                                  "#EXT-X-KEY:METHOD=NONE", "# within", "", "#EXTINF:6,", "second.ts",
                                  "#EXT-X-ENDLIST"})),
              "3-4 6-10");
}

TEST(VELHLSRecordLines, OfAPatternsSegmentsAreThoseOfItsBodyInEachPass) {
    EXPECT_EQ(segmentLines(lines({"#EXTM3U", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"", "#ZOR-PATTERN_START:p",
                                  "#EXTINF:6,", "first_{$n}.ts", "#EXTINF:6,", "second_{$n}.ts",
                                  "#ZOR-DEFINE_INCREMENT:n,1", "#ZOR-PATTERN_END:p",
                                  "#ZOR-PATTERN_REPEAT:p,2", "#EXTINF:6,", "last.ts"})),
              "4-5 6-7 4-5 6-7 4-5 6-7 11-12");
}

TEST(VELHLSRecordLines, OfATextThatIsRejectedAreNone) {
    const VELHLSDocument good(lines({"#EXTM3U", "#EXTINF:6,", "first.ts"}));
    const VELHLSDocument bad(lines({"#EXTM3U", "#EXTINF:6,", "first.ts", "#EXTINF:0,", "second.ts"}));
    VELHLSRecordLines lines;
    const auto stream = lines.parseMediaStream(good);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(linesOf(lines, *stream->segments[0]), "2-3");

    VELHLSReason reason;
    EXPECT_EQ(lines.parseMediaStream(bad, &reason), nullptr);
    EXPECT_EQ(reason.ruleId, "segment-duration-zero");
    EXPECT_EQ(reason.line, 4U);
    EXPECT_EQ(linesOf(lines, *stream->segments[0]), "none");
    EXPECT_EQ(lines.parseManifest(bad), nullptr);
}

TEST(VELHLSRecordLines, OfANumberThatCannotBeConvertedAreNoneAndAReason) {
    const VELHLSDocument document(lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=x", "a.m3u8"}));
    VELHLSRecordLines lines;
    VELHLSReason reason;
    EXPECT_EQ(lines.parseManifest(document, &reason), nullptr);
    EXPECT_EQ(reason.line, 2U);
    EXPECT_EQ(reason.message, "EXT-X-STREAM-INF: BANDWIDTH: expected a number, seen \"x\"");
}

TEST(VELHLSRecordLines, OfARecordThatTheParseDidNotMakeAreNone) {
    const VELHLSDocument document(
        lines({"#EXTM3U", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"", "#EXTINF:6,", "first.ts"}));
    VELHLSRecordLines lines;
    EXPECT_EQ(linesOf(lines, VELHLSMediaVariant()), "none");
    const auto stream = lines.parseMediaStream(document);
    const auto other = VELHLSRecordLines().parseMediaStream(document);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(linesOf(lines, *stream->segments[0]), "2-4");
    EXPECT_EQ(linesOf(lines, *stream->segments[0]->protectionData), "none");
    EXPECT_EQ(linesOf(lines, *other->segments[0]), "none");
    EXPECT_EQ(linesOf(lines, VELHLSMediaVariant()), "none");
}

TEST(VELHLSRecordLines, OfAnEmptyTextAreNone) {
    EXPECT_EQ(segmentLines(""), "");
    EXPECT_EQ(variantLines(""),
              "expected at least one EXT-X-STREAM-INF or EXT-X-I-FRAME-STREAM-INF, seen none");
}

void expectPromises(const std::string& text) {
    EXPECT_EQ(oracle::RecordLinesPromises(text).broken(), "") << text;
}

TEST(VELHLSRecordLines, AreInTheDocumentAndSayWhatTheirRecordHolds) {
    std::vector<std::string> texts = corpus::texts();
    texts.push_back(whole::master);
    texts.push_back(whole::media);
    for (const std::string& text : texts)
        expectPromises(text);
    mutation::Mutator mutator(1313);
    for (std::uint64_t round = corpus::numberOfMutations(3000); round > 0; --round)
        expectPromises(mutator.mutated(texts));
}

TEST(VELHLSRecordLines, AreThereForHostileInputs) {
    for (const hostile::Input& input : hostile::inputs()) {
        SCOPED_TRACE(input.name);
        EXPECT_EQ(oracle::RecordLinesPromises(input.text(64)).broken(), "");
    }
}

}  // namespace
