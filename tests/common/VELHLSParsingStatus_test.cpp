#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/Parses.h"
#include "tests/support/PlaylistText.h"

namespace {

static_assert(std::is_enum_v<VELHLSParsingError>);
static_assert(std::is_same_v<std::underlying_type_t<VELHLSParsingError>, std::int32_t>);
static_assert(std::is_same_v<decltype(VELHLSParsingStatus::hasMediaPatterns), bool>);
static_assert(std::is_same_v<decltype(VELHLSParsingStatus::error), VELHLSParsingError>);
static_assert(std::is_same_v<decltype(VELHLSParsingStatus::message), std::string>);
static_assert(std::is_same_v<decltype(VELHLSParsingStatus::metrics), std::shared_ptr<VELHLSParsingMetrics>>);
static_assert(std::is_same_v<decltype(VELHLSParsingMetrics::parseDuration), double>);

/// A value that the library never stores: what is left of it was not written.
constexpr auto untouched = static_cast<VELHLSParsingError>(77);
constexpr double unmeasured = -5.0;

VELHLSParsingStatus markedStatus() {
    VELHLSParsingStatus status;
    status.error = untouched;
    status.message = "as it was";
    status.metrics = std::make_shared<VELHLSParsingMetrics>();
    status.metrics->parseDuration = unmeasured;
    return status;
}

std::shared_ptr<VELHLSParsedManifest> parsedManifest(const std::string& text, VELHLSParsingStatus* status) {
    std::istringstream input(text);
    return VELHLSParsedManifest::parseManifest(input, status);
}

std::shared_ptr<VELHLSMediaStream> parsedMediaStream(const std::string& text, VELHLSParsingStatus* status) {
    std::istringstream input(text);
    return VELHLSMediaStream::parseMediaStream(input, status);
}

const std::string variant = "#EXT-X-STREAM-INF:BANDWIDTH=800000\nlow.m3u8\n";
const std::string manifest = "#EXTM3U\n" + variant;
const std::string mediaPlaylist = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nsegment1.ts\n";

const std::string patternPlaylist = playlist::lines({
    "#EXTM3U",
    "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"",
    "#ZOR-PATTERN_START:p",
    "#EXTINF:4,",
    "segment{$n}.ts",
    "#ZOR-DEFINE_INCREMENT:n,1",
    "#ZOR-PATTERN_END:p",
    "#ZOR-PATTERN_REPEAT:p,2",
});

TEST(VELHLSParsingError, HasTheValuesMinusOneAndOne) {
    EXPECT_EQ(static_cast<std::int32_t>(VELHLSParsingErrorNone), -1);
    EXPECT_EQ(static_cast<std::int32_t>(VELHLSParsingErrorMediaPattern), 1);
}

TEST(VELHLSParsingMetrics, DurationIsZeroWhenNew) {
    EXPECT_EQ(VELHLSParsingMetrics().parseDuration, 0.0);
}

TEST(VELHLSParsingStatus, IsNeitherSuccessNorFailureWhenNew) {
    const VELHLSParsingStatus status;
    EXPECT_FALSE(status.hasMediaPatterns);
    EXPECT_EQ(static_cast<std::int32_t>(status.error), 0);
    EXPECT_NE(status.error, VELHLSParsingErrorNone);
    EXPECT_NE(status.error, VELHLSParsingErrorMediaPattern);
    EXPECT_EQ(status.message, "");
    EXPECT_EQ(status.metrics, nullptr);
}

TEST(VELHLSParsingStatus, UpdateStoresErrorAndMessageAndNothingElse) {
    for (const VELHLSParsingError error : {VELHLSParsingErrorMediaPattern, VELHLSParsingErrorNone}) {
        VELHLSParsingStatus status = markedStatus();
        status.hasMediaPatterns = true;
        const VELHLSParsingMetrics* const metrics = status.metrics.get();
        VELHLSUtility::updateParsingStatusWithError(&status, error, "#ZOR-PATTERN_END:q");
        EXPECT_EQ(status.error, error);
        EXPECT_EQ(status.message, "#ZOR-PATTERN_END:q");
        EXPECT_TRUE(status.hasMediaPatterns);
        EXPECT_EQ(status.metrics.get(), metrics);
        EXPECT_EQ(metrics->parseDuration, unmeasured);
    }
}

TEST(VELHLSParsingStatus, UpdateReplacesAnEarlierMessage) {
    VELHLSParsingStatus status;
    VELHLSUtility::updateParsingStatusWithError(&status, VELHLSParsingErrorMediaPattern, "first");
    VELHLSUtility::updateParsingStatusWithError(&status, VELHLSParsingErrorMediaPattern, "");
    EXPECT_EQ(status.message, "");
    EXPECT_EQ(status.metrics, nullptr);
    EXPECT_FALSE(status.hasMediaPatterns);
}

TEST(VELHLSParsingStatus, UpdateCopiesTheMessage) {
    VELHLSParsingStatus status;
    std::string line("#ZOR\0!", 6);
    VELHLSUtility::updateParsingStatusWithError(&status, VELHLSParsingErrorMediaPattern, line);
    line = "changed";
    EXPECT_EQ(status.message, std::string("#ZOR\0!", 6));
}

TEST(VELHLSParsingStatus, UpdateOfANullStatusDoesNothing) {
    EXPECT_NO_THROW(
        VELHLSUtility::updateParsingStatusWithError(nullptr, VELHLSParsingErrorMediaPattern, "line"));
}

TEST(VELHLSParsingStatus, SuccessStoresItsValueWhateverWasThereBefore) {
    const VELHLSParsingError before[] = {static_cast<VELHLSParsingError>(0), VELHLSParsingErrorNone,
                                         VELHLSParsingErrorMediaPattern, untouched};
    for (const VELHLSParsingError error : before) {
        SCOPED_TRACE(error);
        VELHLSParsingStatus ofManifest;
        ofManifest.error = error;
        ASSERT_NE(parsedManifest(manifest, &ofManifest), nullptr);
        EXPECT_EQ(ofManifest.error, VELHLSParsingErrorNone);
        VELHLSParsingStatus ofMedia;
        ofMedia.error = error;
        ASSERT_NE(parsedMediaStream(mediaPlaylist, &ofMedia), nullptr);
        EXPECT_EQ(ofMedia.error, VELHLSParsingErrorNone);
    }
}

TEST(VELHLSParsingStatus, SuccessLeavesTheMessage) {
    VELHLSParsingStatus status = markedStatus();
    ASSERT_NE(parsedManifest(manifest, &status), nullptr);
    EXPECT_EQ(status.message, "as it was");
    ASSERT_NE(parsedMediaStream(mediaPlaylist, &status), nullptr);
    EXPECT_EQ(status.message, "as it was");
    ASSERT_NE(parsedMediaStream(patternPlaylist, &status), nullptr);
    EXPECT_EQ(status.message, "as it was");
}

TEST(VELHLSParsingStatus, EmptyMediaPlaylistIsASuccess) {
    VELHLSParsingStatus status = markedStatus();
    ASSERT_NE(parsedMediaStream("", &status), nullptr);
    EXPECT_EQ(status.error, VELHLSParsingErrorNone);
}

const std::string rejectedManifests[] = {
    "",
    "#EXTM3U\n",
    "#EXTM3U\nlow.m3u8\n",
    "#EXTM3U\n#EXT-X-ENDLIST\n" + variant,
    " #EXTM3U\n" + variant,
    "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=800000\n",
    "#EXTM3U\n#EXT-X-STREAM-INF:\nlow.m3u8\n",
    "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=\nlow.m3u8\n",
    "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=800000,AUDIO=\"absent\"\nlow.m3u8\n",
    "#EXTM3U\n#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=800000\n" + variant,
    "#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO\n" + variant,
    "#EXTM3U\n#EXT-X-SESSION-DATA:VALUE=\"v\"\n" + variant,
    "#EXTM3U\n#EXT-X-SESSION-KEY:URI=\"k\"\n" + variant,
    "#EXTM3U\n#EXT-X-START:PRECISE=YES\n" + variant,
    "#EXTM3U\n#EXT-X-START:TIME-OFFSET=abc\n" + variant,
};

TEST(VELHLSParsingStatus, RejectedManifestLeavesErrorAndMessageAndFillsMetrics) {
    for (const std::string& text : rejectedManifests) {
        SCOPED_TRACE(text);
        VELHLSParsingStatus status = markedStatus();
        EXPECT_EQ(parsedManifest(text, &status), nullptr);
        EXPECT_EQ(status.error, untouched);
        EXPECT_EQ(status.message, "as it was");
        EXPECT_FALSE(status.hasMediaPatterns);
        EXPECT_GE(status.metrics->parseDuration, 0.0);

        VELHLSParsingStatus fresh;
        EXPECT_EQ(parsedManifest(text, &fresh), nullptr);
        EXPECT_EQ(static_cast<std::int32_t>(fresh.error), 0);
        EXPECT_EQ(fresh.message, "");
        EXPECT_NE(fresh.metrics, nullptr);
    }
}

const std::string rejectedMediaPlaylists[] = {
    "#EXTM3U\nsegment1.ts\n",
    "#EXT-X-TARGETDURATION:10s\n",
    "#EXT-X-TARGETDURATION:\n",
    "#EXT-X-MEDIA-SEQUENCE:-1\n",
    "#EXT-X-DISCONTINUITY-SEQUENCE:x\n",
    "#EXT-X-PLAYLIST-TYPE:vod\n",
    "#EXT-X-START:PRECISE=YES\n",
    "#EXT-X-DEFINE:NAME=\"a\"\n",
    "#EXTINF:,x\nsegment1.ts\n",
    "#EXTINF:0,\nsegment1.ts\n",
    "#EXTINF:6,\n",
    "#EXTINF:6,\nsegment1.ts",
    "#EXTINF:6,\n#EXT-X-UNKNOWN:1\nsegment1.ts\n",
    "#EXTINF:6,\n#EXT-X-KEY:METHOD=\nsegment1.ts\n",
    "#EXTINF:6,\n#EXT-X-BYTERANGE:x\nsegment1.ts\n",
    "#EXTINF:6,\n#EXT-X-PROGRAM-DATE-TIME:2020-01-01\nsegment1.ts\n",
};

TEST(VELHLSParsingStatus, RejectedMediaPlaylistLeavesErrorAndMessageAndFillsMetrics) {
    for (const std::string& text : rejectedMediaPlaylists) {
        SCOPED_TRACE(text);
        VELHLSParsingStatus status = markedStatus();
        EXPECT_EQ(parsedMediaStream(text, &status), nullptr);
        EXPECT_EQ(status.error, untouched);
        EXPECT_EQ(status.message, "as it was");
        EXPECT_FALSE(status.hasMediaPatterns);
        EXPECT_GE(status.metrics->parseDuration, 0.0);

        VELHLSParsingStatus fresh;
        EXPECT_EQ(parsedMediaStream(text, &fresh), nullptr);
        EXPECT_EQ(static_cast<std::int32_t>(fresh.error), 0);
        EXPECT_NE(fresh.metrics, nullptr);
    }
}

struct OffendingLine {
    std::string before;
    std::string line;
};

const OffendingLine offendingLines[] = {
    {"#EXTINF:4,\n", "#ZOR-DEFINE_INCREMENT:x"},
    {"#EXTINF:4,\n", "#ZOR-PATTERN_END:p"},
    {"#EXT-X-DISCONTINUITY\n", "#ZOR-PATTERN_REPEAT:p,1"},
    {"#EXTM3U\n#EXTINF:4,\nsegment1.ts\n#EXTINF:4,\n", "#ZOR-PATTERN_END:p"},
    {"#ZOR-PATTERN_START:p\n", "#ZOR-PATTERN_START:p"},
    {"#ZOR-PATTERN_START:p\n", "#ZOR-PATTERN_END:q"},
    {"#ZOR-PATTERN_START:p\n#EXTINF:4,\nsegment1.ts\n", "#ZOR-PATTERN_REPEAT:q,3"},
    {"#ZOR-PATTERN_START:p\n#EXTINF:4,\nsegment1.ts\n", "#ZOR-PATTERN_REPEAT:p"},
    {"#ZOR-PATTERN_START:p\n", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\""},
    {"#ZOR-PATTERN_START:p\n", "#EXT-X-ENDLIST"},
    {"#ZOR-PATTERN_START:p\n", "# a comment: with a colon"},
    {"#ZOR-PATTERN_START:p\n", "#EXT-X-DISCONTINUITY\r"},
    {"#EXTINF:4,\n#ZOR-PATTERN_START:p\n", "#EXT-X-TARGETDURATION:6"},
};

TEST(VELHLSParsingStatus, MediaPatternFailureStoresItsValueAndTheOffendingLine) {
    for (const OffendingLine& offending : offendingLines) {
        const std::string text = offending.before + offending.line + "\n#EXTINF:4,\nsegment2.ts\n";
        SCOPED_TRACE(text);
        VELHLSParsingStatus status = markedStatus();
        EXPECT_EQ(parsedMediaStream(text, &status), nullptr);
        EXPECT_EQ(status.error, VELHLSParsingErrorMediaPattern);
        EXPECT_EQ(status.message, offending.line);
        EXPECT_TRUE(status.hasMediaPatterns);
        EXPECT_GE(status.metrics->parseDuration, 0.0);
    }
}

TEST(VELHLSParsingStatus, PatternStartWithoutColonOnlyMarksThatItWasMet) {
    VELHLSParsingStatus status = markedStatus();
    EXPECT_EQ(parsedMediaStream("#ZOR-PATTERN_START\n", &status), nullptr);
    EXPECT_TRUE(status.hasMediaPatterns);
    EXPECT_EQ(status.error, untouched);
    EXPECT_EQ(status.message, "as it was");
}

TEST(VELHLSParsingStatus, ExpandedPatternMarksThatItWasMet) {
    VELHLSParsingStatus status;
    const auto stream = parsedMediaStream(patternPlaylist, &status);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->segments.size(), 3U);
    EXPECT_TRUE(status.hasMediaPatterns);
    EXPECT_EQ(status.error, VELHLSParsingErrorNone);
    EXPECT_EQ(status.message, "");
}

TEST(VELHLSParsingStatus, PlaylistWithoutPatternsNeitherSetsNorClearsTheMark) {
    for (const bool mark : {false, true}) {
        SCOPED_TRACE(mark);
        VELHLSParsingStatus status;
        status.hasMediaPatterns = mark;
        EXPECT_NE(parsedManifest(manifest, &status), nullptr);
        EXPECT_EQ(status.hasMediaPatterns, mark);
        EXPECT_EQ(parsedManifest("low.m3u8\n", &status), nullptr);
        EXPECT_EQ(status.hasMediaPatterns, mark);
        EXPECT_NE(parsedMediaStream(mediaPlaylist, &status), nullptr);
        EXPECT_EQ(status.hasMediaPatterns, mark);
        EXPECT_EQ(parsedMediaStream("segment1.ts\n", &status), nullptr);
        EXPECT_EQ(status.hasMediaPatterns, mark);
    }
}

TEST(VELHLSParsingStatus, ManifestNeverSetsTheMark) {
    VELHLSParsingStatus status;
    EXPECT_NE(parsedManifest("#ZOR-PATTERN_START:p\n#ZOR-PATTERN_END:p\n" + manifest, &status), nullptr);
    EXPECT_FALSE(status.hasMediaPatterns);
    EXPECT_EQ(status.error, VELHLSParsingErrorNone);
}

TEST(VELHLSParsingStatus, NullStatusChangesNoResult) {
    EXPECT_NE(parsedManifest(manifest, nullptr), nullptr);
    EXPECT_NE(parsedMediaStream(mediaPlaylist, nullptr), nullptr);
    EXPECT_NE(parsedMediaStream(patternPlaylist, nullptr), nullptr);
    EXPECT_EQ(parsedMediaStream("#ZOR-PATTERN_START\n", nullptr), nullptr);
    for (const std::string& text : rejectedManifests) {
        EXPECT_EQ(parsedManifest(text, nullptr), nullptr) << text;
    }
    for (const std::string& text : rejectedMediaPlaylists) {
        EXPECT_EQ(parsedMediaStream(text, nullptr), nullptr) << text;
    }
    for (const OffendingLine& offending : offendingLines) {
        EXPECT_EQ(parsedMediaStream(offending.before + offending.line + "\n", nullptr), nullptr)
            << offending.line;
    }
}

TEST(VELHLSParsingStatus, FailureLeavesTheOutcomeOfTheParseBefore) {
    VELHLSParsingStatus status;
    ASSERT_EQ(parsedMediaStream("#EXTINF:4,\n#ZOR-PATTERN_END:p\n", &status), nullptr);
    ASSERT_EQ(parsedManifest("low.m3u8\n", &status), nullptr);
    EXPECT_EQ(status.error, VELHLSParsingErrorMediaPattern);
    EXPECT_EQ(status.message, "#ZOR-PATTERN_END:p");
    ASSERT_NE(parsedManifest(manifest, &status), nullptr);
    ASSERT_EQ(parsedMediaStream("segment1.ts\n", &status), nullptr);
    EXPECT_EQ(status.error, VELHLSParsingErrorNone);
    EXPECT_EQ(status.message, "#ZOR-PATTERN_END:p");
    EXPECT_TRUE(status.hasMediaPatterns);
}

TEST(VELHLSParsingMetrics, AreCreatedByTheFirstParseAndKeptByTheOthers) {
    VELHLSParsingStatus status;
    ASSERT_NE(parsedManifest(manifest, &status), nullptr);
    ASSERT_NE(status.metrics, nullptr);
    const std::shared_ptr<VELHLSParsingMetrics> metrics = status.metrics;
    const auto expectWritten = [&](bool succeeded, bool expected) {
        EXPECT_EQ(succeeded, expected);
        EXPECT_EQ(status.metrics, metrics);
        EXPECT_GE(metrics->parseDuration, 0.0);
        metrics->parseDuration = unmeasured;
    };
    expectWritten(true, true);
    expectWritten(parsedManifest("low.m3u8\n", &status) != nullptr, false);
    expectWritten(parsedMediaStream(mediaPlaylist, &status) != nullptr, true);
    expectWritten(parsedMediaStream("segment1.ts\n", &status) != nullptr, false);
    expectWritten(parsedMediaStream("#EXTINF:4,\n#ZOR-PATTERN_END:p\n", &status) != nullptr, false);
    expectWritten(parsedMediaStream(patternPlaylist, &status) != nullptr, true);
    expectWritten(parsedManifest(manifest, &status) != nullptr, true);
}

/// A source that takes its time before each of its lines.
class SlowText : public std::streambuf {
  public:
    static constexpr auto delay = std::chrono::milliseconds(3);

    explicit SlowText(std::string text) : text_(std::move(text)) {}

  protected:
    int_type underflow() override {
        std::this_thread::sleep_for(delay);
        const std::size_t end = text_.find('\n', position_);
        if (end == std::string::npos) return traits_type::eof();
        setg(&text_[position_], &text_[position_], &text_[end] + 1);
        position_ = end + 1;
        return traits_type::to_int_type(*gptr());
    }

  private:
    std::string text_;
    std::size_t position_ = 0;
};

template <typename Parse>
void expectWholeParseIsMeasured(const std::string& text, Parse parse) {
    SlowText source(text);
    std::istream input(&source);
    VELHLSParsingStatus status = markedStatus();
    const auto before = std::chrono::steady_clock::now();
    static_cast<void>(parse(input, &status));
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - before;
    const std::chrono::duration<double> slept = SlowText::delay;
    EXPECT_GE(status.metrics->parseDuration, slept.count());
    EXPECT_LE(status.metrics->parseDuration, passed.count());
}

TEST(VELHLSParsingMetrics, DurationCoversTheWholeParse) {
    for (const char* const text : {"", "low.m3u8\n", manifest.c_str()}) {
        SCOPED_TRACE(text);
        expectWholeParseIsMeasured(text, playlist::parseMaster);
    }
    for (const char* const text : {"", "segment1.ts\n", mediaPlaylist.c_str()}) {
        SCOPED_TRACE(text);
        expectWholeParseIsMeasured(text, playlist::parseMedia);
    }
}

TEST(VELHLSParsingMetrics, DurationIsThatOfTheLastParseAlone) {
    VELHLSParsingStatus status;
    status.metrics = std::make_shared<VELHLSParsingMetrics>();
    status.metrics->parseDuration = 1e9;
    ASSERT_NE(parsedMediaStream(mediaPlaylist, &status), nullptr);
    EXPECT_LT(status.metrics->parseDuration, 1e6);
}

TEST(VELHLSParsingMetrics, AreNotTouchedByTheParsesWithoutTiming) {
    VELHLSParsingStatus fresh;
    std::istringstream manifestInput(manifest);
    ASSERT_NE(VELHLSParsedManifest::internalParseManifest(manifestInput, &fresh), nullptr);
    std::istringstream mediaInput(mediaPlaylist);
    ASSERT_NE(VELHLSMediaStream::internalParseMediaStream(mediaInput, &fresh), nullptr);
    EXPECT_EQ(fresh.metrics, nullptr);
    EXPECT_EQ(fresh.error, VELHLSParsingErrorNone);

    VELHLSParsingStatus status = markedStatus();
    std::istringstream rejected("segment1.ts\n");
    ASSERT_EQ(VELHLSMediaStream::internalParseMediaStream(rejected, &status), nullptr);
    EXPECT_EQ(status.metrics->parseDuration, unmeasured);
}

template <typename Exception, typename Parse>
void expectThrownWithoutWriting(const std::string& text, Parse parse) {
    SCOPED_TRACE(text);
    VELHLSParsingStatus fresh;
    EXPECT_THROW(static_cast<void>(parse(text, &fresh)), Exception);
    EXPECT_EQ(fresh.metrics, nullptr);
    EXPECT_EQ(static_cast<std::int32_t>(fresh.error), 0);

    VELHLSParsingStatus status = markedStatus();
    EXPECT_THROW(static_cast<void>(parse(text, &status)), Exception);
    EXPECT_EQ(status.metrics->parseDuration, unmeasured);
    EXPECT_EQ(status.error, untouched);
    EXPECT_EQ(status.message, "as it was");

    EXPECT_THROW(static_cast<void>(parse(text, nullptr)), Exception);
}

TEST(VELHLSParsingStatus, ExceptionLeavesItUnwritten) {
    using std::invalid_argument;
    using std::out_of_range;
    expectThrownWithoutWriting<invalid_argument>("#EXT-X-VERSION:x\n" + variant, parsedManifest);
    expectThrownWithoutWriting<out_of_range>("#EXT-X-VERSION:2147483648\n" + variant, parsedManifest);
    expectThrownWithoutWriting<invalid_argument>("#EXT-X-START:TIME-OFFSET=+-\n" + variant, parsedManifest);
    expectThrownWithoutWriting<invalid_argument>("#EXT-X-START:TIME-OFFSET=.\n" + variant, parsedManifest);
    expectThrownWithoutWriting<invalid_argument>("#EXT-X-VERSION:\n", parsedMediaStream);
    expectThrownWithoutWriting<invalid_argument>("#EXT-X-TARGETDURATION:.\n", parsedMediaStream);
    expectThrownWithoutWriting<out_of_range>("#EXT-X-MEDIA-SEQUENCE:9223372036854775808\n",
                                             parsedMediaStream);
    expectThrownWithoutWriting<invalid_argument>("#EXTINF:x,\nsegment1.ts\n", parsedMediaStream);
    expectThrownWithoutWriting<invalid_argument>(
        "#EXTINF:6,\n#EXT-X-PROGRAM-DATE-TIME:2020-xx-01T10:00:00Z\nsegment1.ts\n", parsedMediaStream);
}

TEST(VELHLSParsingStatus, ExceptionAfterAPatternLeavesTheMark) {
    VELHLSParsingStatus status;
    EXPECT_THROW(static_cast<void>(parsedMediaStream(patternPlaylist + "#EXT-X-VERSION:x\n", &status)),
                 std::invalid_argument);
    EXPECT_TRUE(status.hasMediaPatterns);
    EXPECT_EQ(status.metrics, nullptr);
    EXPECT_EQ(static_cast<std::int32_t>(status.error), 0);
}

TEST(VELHLSParsingMetrics, ParseAfterAnExceptionWritesThemAgain) {
    VELHLSParsingStatus status = markedStatus();
    EXPECT_THROW(static_cast<void>(parsedManifest("#EXT-X-VERSION:x\n", &status)), std::invalid_argument);
    ASSERT_NE(parsedManifest(manifest, &status), nullptr);
    EXPECT_GE(status.metrics->parseDuration, 0.0);
    EXPECT_EQ(status.error, VELHLSParsingErrorNone);
}

}  // namespace
