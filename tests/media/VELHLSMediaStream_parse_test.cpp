#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/MediaRoundTrip.h"
#include "tests/support/Outcome.h"
#include "tests/support/Parses.h"
#include "tests/support/PlaylistText.h"

namespace {

using playlist::lines;
using namespace std::string_literals;

using Stream = std::shared_ptr<VELHLSMediaStream>;
using Entry = Stream (*)(std::istream&, VELHLSParsingStatus*);

static_assert(std::is_same_v<decltype(VELHLSMediaStream::hasExtM3U), bool>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::version), std::int32_t>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::targetDuration), double>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::playlistType), VELHLSMediaStream::PlaylistType>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::mediaSequence), std::int64_t>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::discontinuitySequence), std::int64_t>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::endList), bool>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::iFramesOnly), bool>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::independentSegments), bool>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::startTimeOffset), double>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::startPrecise), bool>);
static_assert(
    std::is_same_v<decltype(VELHLSMediaStream::segments), std::vector<std::shared_ptr<VELHLSMediaSegment>>>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::discontinuitySeen), bool>);
static_assert(std::is_same_v<decltype(VELHLSMediaStream::hlsDefineMap), std::shared_ptr<VELHLSDefineMap>>);
static_assert(std::is_same_v<std::underlying_type_t<VELHLSMediaStream::PlaylistType>, std::int32_t>);
static_assert(VELHLSMediaStream::None == 0 && VELHLSMediaStream::Event == 1 && VELHLSMediaStream::Vod == 2);
static_assert(std::is_same_v<std::underlying_type_t<VELHLSParsingError>, std::int32_t>);
static_assert(!std::is_polymorphic_v<VELHLSMediaStream>);
static_assert(std::is_same_v<decltype(static_cast<Entry>(&VELHLSMediaStream::parseMediaStream)), Entry>);
static_assert(std::is_same_v<decltype(&VELHLSMediaStream::internalParseMediaStream), Entry>);
static_assert(std::is_same_v<decltype(&VELHLSMediaStream::validate), bool (VELHLSMediaStream::*)() const>);

constexpr auto errorBefore = static_cast<VELHLSParsingError>(42);
constexpr std::string_view messageBefore = "before the parse";
/// Beyond every buffer on the way.
constexpr std::size_t longLine = 20000;
constexpr std::size_t mebibyte = std::size_t{1} << 20U;

VELHLSParsingStatus statusBefore() {
    VELHLSParsingStatus status;
    status.error = errorBefore;
    status.message = messageBefore;
    return status;
}

bool hasOutcomeOfBefore(const VELHLSParsingStatus& status) {
    return status.error == errorBefore && status.message == messageBefore;
}

/// "accepted", "rejected" or the exact exception.
std::string outcomeThrough(Entry entry, const std::string& text, VELHLSParsingStatus* status) {
    std::istringstream input(text);
    return playlist::outcomeOf(
        [&] { return std::string(entry(input, status) == nullptr ? "rejected" : "accepted"); });
}

/// What a parse comes to: "accepted", "rejected", "pattern error: " and the line, or the exact exception. On
/// the way it checks what holds for every parse: the outcome is the same without a status and without timing;
/// the metrics are there but for an exception; error and message change only as documented.
std::string outcomeOf(const std::string& text) {
    VELHLSParsingStatus status = statusBefore();
    const std::string outcome = outcomeThrough(playlist::parseMedia, text, &status);
    EXPECT_EQ(outcomeThrough(playlist::parseMedia, text, nullptr), outcome);
    EXPECT_EQ(outcomeThrough(VELHLSMediaStream::internalParseMediaStream, text, nullptr), outcome);

    VELHLSParsingStatus untimed = statusBefore();
    EXPECT_EQ(outcomeThrough(VELHLSMediaStream::internalParseMediaStream, text, &untimed), outcome);
    EXPECT_EQ(untimed.metrics, nullptr);
    EXPECT_EQ(untimed.error, status.error);
    EXPECT_EQ(untimed.message, status.message);
    EXPECT_EQ(untimed.hasMediaPatterns, status.hasMediaPatterns);

    const bool returned = outcome == "accepted" || outcome == "rejected";
    EXPECT_EQ(status.metrics != nullptr, returned);
    if (outcome == "accepted") {
        EXPECT_EQ(status.error, VELHLSParsingErrorNone);
        EXPECT_EQ(status.message, messageBefore);
        return outcome;
    }
    if (outcome == "rejected" && status.error == VELHLSParsingErrorMediaPattern) {
        EXPECT_TRUE(status.hasMediaPatterns);
        return "pattern error: " + status.message;
    }
    EXPECT_TRUE(hasOutcomeOfBefore(status)) << status.error << ' ' << status.message;
    return outcome;
}

/// A playlist that must parse.
VELHLSMediaStream streamOf(const std::string& text) {
    const Stream stream = playlist::parsedMedia(text);
    if (stream == nullptr) {
        ADD_FAILURE() << "rejected: " << testing::PrintToString(text.substr(0, 200));
        return VELHLSMediaStream();
    }
    return *stream;
}

std::string urisOf(const VELHLSMediaStream& stream) {
    std::string uris;
    for (const auto& segment : stream.segments) {
        if (!uris.empty()) uris += ' ';
        uris += segment->uri;
    }
    return uris;
}

/// What stays in the input after a parse.
std::string unreadAfterParsing(const std::string& text) {
    std::istringstream input(text);
    static_cast<void>(VELHLSMediaStream::parseMediaStream(input, nullptr));
    input.clear();
    std::ostringstream rest;
    rest << input.rdbuf();
    return rest.str();
}

struct Row {
    std::string text;
    std::string outcome;
};

/// A line between the segments, before them and at the end of the input comes to the same.
void expectOutcomesOfLines(const std::vector<Row>& rows) {
    for (const auto& [line, outcome] : rows) {
        SCOPED_TRACE(testing::PrintToString(line.substr(0, 80)));
        EXPECT_EQ(outcomeOf(line), outcome);
        EXPECT_EQ(outcomeOf(line + "\n"), outcome);
        EXPECT_EQ(outcomeOf(line + "\r\n"), outcome);
        EXPECT_EQ(outcomeOf("#EXTM3U\n#EXTINF:4,\nfirst.ts\n" + line + "\n#EXTINF:4,\nsecond.ts\n"), outcome);
    }
}

/// Lines among the tags of a segment.
void expectOutcomesInSegment(const std::vector<Row>& rows) {
    for (const auto& [text, outcome] : rows) {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 80)));
        EXPECT_EQ(outcomeOf("#EXTINF:4,\n" + text + "\nsegment.ts\n"), outcome);
        EXPECT_EQ(outcomeOf("#EXTM3U\n#EXTINF:4,\nfirst.ts\n#EXT-X-DISCONTINUITY\n#EXTINF:4,\n" + text +
                            "\nsegment.ts\n#EXT-X-ENDLIST\n"),
                  outcome);
    }
}

const std::string exampleHead = "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"\n";
const std::string examplePattern =
    lines({"#ZOR-PATTERN_START:p", "#EXTINF:4,", "seg{$n}.ts", "#ZOR-DEFINE_INCREMENT:n,1",
           "#ZOR-PATTERN_END:p", "#ZOR-PATTERN_REPEAT:p,2"});

TEST(VELHLSMediaStreamParse, StartsWithTheDefaultsOfTheFormat) {
    const VELHLSMediaStream stream;
    EXPECT_FALSE(stream.hasExtM3U);
    EXPECT_EQ(stream.version, 1);
    EXPECT_EQ(stream.targetDuration, 0.0);
    EXPECT_EQ(stream.playlistType, VELHLSMediaStream::None);
    EXPECT_EQ(stream.mediaSequence, 0);
    EXPECT_EQ(stream.discontinuitySequence, 0);
    EXPECT_FALSE(stream.endList);
    EXPECT_FALSE(stream.iFramesOnly);
    EXPECT_FALSE(stream.independentSegments);
    EXPECT_EQ(stream.startTimeOffset, 0.0);
    EXPECT_FALSE(stream.startPrecise);
    EXPECT_TRUE(stream.segments.empty());
    EXPECT_FALSE(stream.discontinuitySeen);
    ASSERT_NE(stream.hlsDefineMap, nullptr);
    EXPECT_TRUE(stream.hlsDefineMap->empty());
    EXPECT_NE(VELHLSMediaStream().hlsDefineMap, VELHLSMediaStream().hlsDefineMap);
}

TEST(VELHLSMediaStreamParse, ReadsHeaderSegmentsAndEnd) {
    const VELHLSMediaStream stream = streamOf(
        lines({"#EXTM3U", "#EXT-X-VERSION:6", "#EXT-X-TARGETDURATION:6", "#EXT-X-PLAYLIST-TYPE:VOD",
               "#EXT-X-MEDIA-SEQUENCE:100", "#EXT-X-DISCONTINUITY-SEQUENCE:3", "#EXT-X-INDEPENDENT-SEGMENTS",
               "#EXT-X-I-FRAMES-ONLY", "#EXT-X-START:TIME-OFFSET=-12.5,PRECISE=YES",
               "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"", "#EXTINF:6.006,Intro", "segment100.ts", "#EXTINF:4,",
               "segment101.ts", "#EXT-X-ENDLIST"}));
    EXPECT_TRUE(stream.hasExtM3U);
    EXPECT_EQ(stream.version, 6);
    EXPECT_EQ(stream.targetDuration, 6.0);
    EXPECT_EQ(stream.playlistType, VELHLSMediaStream::Vod);
    EXPECT_EQ(stream.mediaSequence, 100);
    EXPECT_EQ(stream.discontinuitySequence, 3);
    EXPECT_TRUE(stream.independentSegments);
    EXPECT_TRUE(stream.iFramesOnly);
    EXPECT_EQ(stream.startTimeOffset, -12.5);
    EXPECT_TRUE(stream.startPrecise);
    EXPECT_EQ(*stream.hlsDefineMap, (VELHLSDefineMap{{"n", "1"}}));
    EXPECT_TRUE(stream.endList);
    EXPECT_FALSE(stream.discontinuitySeen);
    ASSERT_EQ(urisOf(stream), "segment100.ts segment101.ts");
    EXPECT_EQ(stream.segments[0]->duration, 6.006);
    EXPECT_EQ(stream.segments[0]->title, ",Intro");
    EXPECT_EQ(stream.segments[0]->startTime, 0.0);
    EXPECT_EQ(stream.segments[0]->mediaSequenceNumber, 100U);
    EXPECT_EQ(stream.segments[0]->discontinuitySequenceNumber, 3U);
    EXPECT_EQ(stream.segments[1]->startTime, 6.006);
    EXPECT_EQ(stream.segments[1]->mediaSequenceNumber, 101U);
    EXPECT_EQ(stream.segments[1]->discontinuitySequenceNumber, 3U);
}

TEST(VELHLSMediaStreamParse, ReadsNothingAsAnEmptyPlaylist) {
    for (const std::string text : {"", "\n", "\r\n", "\n\n\n", " ", " \t\r\n \n", "#", "# comment"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(outcomeOf(text), "accepted");
        const VELHLSMediaStream stream = streamOf(text);
        EXPECT_EQ(stream.version, 1);
        EXPECT_TRUE(stream.segments.empty());
        EXPECT_FALSE(stream.hasExtM3U);
    }
}

TEST(VELHLSMediaStreamParse, TellsBlankLinesCommentsAndOtherText) {
    expectOutcomesOfLines({
        {"", "accepted"},
        {"   ", "accepted"},
        {" \t \t", "accepted"},
        {"\r \r", "accepted"},
        {"#", "accepted"},
        {"##", "accepted"},
        {"#E", "accepted"},
        {"#EX", "accepted"},
        {"# comment", "accepted"},
        {"# comment: with a colon", "accepted"},
        {"#ext-x-targetduration:x", "accepted"},
        {"# EXT-X-TARGETDURATION:x", "accepted"},
        {"#\0"s, "accepted"},
        {"#" + std::string(longLine, 'x'), "accepted"},
        {"segment.ts", "rejected"},
        {" segment.ts", "rejected"},
        {" #EXTM3U", "rejected"},
        {"\t#EXTM3U", "rejected"},
        {"\xEF\xBB\xBF#EXTM3U", "rejected"},
        {"\v", "rejected"},
        {"\f", "rejected"},
        {"\0"s, "rejected"},
        {" \0 "s, "rejected"},
        {"\xC2\xA0", "rejected"},
        {"EXTM3U", "rejected"},
        {std::string(longLine, ' '), "accepted"},
        {std::string(longLine, ' ') + "x", "rejected"},
    });
}

TEST(VELHLSMediaStreamParse, IgnoresTagsThatItDoesNotKnowBetweenSegments) {
    const std::vector<std::string> ignored = {
        "#EXT",
        "#EXT:",
        "#EXTM3U8",
        "#EXTM3U:",
        "#EXTM3U ",
        "#EXTINF",
        "#EXT-X-UNKNOWN:1",
        "#EXT-X-UNKNOWN",
        "#EXT-X-GAP",
        "#EXT-X-CUE-IN",
        "#EXT-X-CUE-IN:",
        "#EXT-X-CUE-OUT",
        "#EXT-X-CUE-OUT-CONT",
        "#EXT-X-KEY",
        "#EXT-X-MAP",
        "#EXT-X-BYTERANGE",
        "#EXT-X-VERSION",
        "#EXT-X-VERSION :x",
        "#EXT-X-TARGETDURATION",
        "#EXT-X-TARGETDURATIONS:x",
        "#EXT-X-TARGETDURATIO:x",
        "#EXT-X-MEDIA-SEQUENCE",
        "#EXT-X-PLAYLIST-TYPE",
        "#EXT-X-START",
        "#EXT-X-DEFINE",
        "#EXT-X-ENDLIST ",
        "#EXT-X-ENDLIST:",
        "#EXT-X-DISCONTINUITY ",
        "#EXT-X-DISCONTINUITY:",
        "#EXT-X-I-FRAMES-ONLY:YES",
        "#EXT-X-INDEPENDENT-SEGMENTS:",
        "#EXT-x-TARGETDURATION:x",
        "#EXTinf:4,",
        "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=1",
        "#ZOR-PATTERN_END:p",
        "#ZOR-PATTERN_REPEAT:p,2",
        "#ZOR-DEFINE_INCREMENT:n,1",
        "#ZOR-PATTERN_STAR",
        "#zor-pattern_start:p",
    };
    for (const std::string& line : ignored) {
        SCOPED_TRACE(line);
        EXPECT_EQ(outcomeOf(line), "accepted");
        const VELHLSMediaStream stream =
            streamOf("#EXTINF:4,\nfirst.ts\n" + line + "\n#EXTINF:4,\nsecond.ts\n");
        EXPECT_EQ(urisOf(stream), "first.ts second.ts");
        EXPECT_FALSE(stream.hasExtM3U || stream.endList || stream.iFramesOnly || stream.independentSegments ||
                     stream.discontinuitySeen);
        VELHLSParsingStatus status;
        std::istringstream input(line + "\n");
        static_cast<void>(VELHLSMediaStream::parseMediaStream(input, &status));
        EXPECT_FALSE(status.hasMediaPatterns);
    }
}

TEST(VELHLSMediaStreamParse, DropsACueInBetweenSegmentsAndKeepsOneAmongTheTagsOfASegment) {
    const VELHLSMediaStream stream =
        streamOf(lines({"#EXTINF:4,", "first.ts", "#EXT-X-CUE-IN", "#EXTINF:4,", "second.ts", "#EXTINF:4,",
                        "#EXT-X-CUE-IN", "third.ts"}));
    ASSERT_EQ(urisOf(stream), "first.ts second.ts third.ts");
    EXPECT_FALSE(stream.segments[0]->cueIn);
    EXPECT_FALSE(stream.segments[1]->cueIn);
    EXPECT_TRUE(stream.segments[2]->cueIn);
}

TEST(VELHLSMediaStreamParse, ReadsBareTags) {
    EXPECT_TRUE(streamOf("#EXTM3U").hasExtM3U);
    EXPECT_TRUE(streamOf("#EXT-X-ENDLIST").endList);
    EXPECT_TRUE(streamOf("#EXT-X-I-FRAMES-ONLY").iFramesOnly);
    EXPECT_TRUE(streamOf("#EXT-X-INDEPENDENT-SEGMENTS").independentSegments);
}

TEST(VELHLSMediaStreamParse, RemovesCarriageReturnsWhereverTheyStand) {
    const VELHLSMediaStream stream = streamOf(
        "\r#EXT\rM3U\r\r\n#EXT-X-VERSI\rON:1\r2\r\n#EXTINF:4,Ti\rtle\r\nseg\rment.ts\r\n#EXT-X-ENDLIST\r\n");
    EXPECT_TRUE(stream.hasExtM3U);
    EXPECT_EQ(stream.version, 12);
    EXPECT_TRUE(stream.endList);
    ASSERT_EQ(urisOf(stream), "segment.ts");
    EXPECT_EQ(stream.segments[0]->title, ",Title");
}

TEST(VELHLSMediaStreamParse, ReadsCrlfLikeLf) {
    const std::string text =
        lines({"#EXTM3U", "#EXT-X-VERSION:4", "#EXT-X-TARGETDURATION:10", "#EXT-X-PLAYLIST-TYPE:EVENT",
               "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"", "#EXTINF:9.5,Intro", "#EXT-X-BYTERANGE:100@0",
               "first.ts", "#EXT-X-DISCONTINUITY", "#EXTINF:4,", "second.ts", "#EXT-X-ENDLIST"});
    std::string crlf;
    for (const char character : text)
        crlf += character == '\n' ? "\r\n"s : std::string(1, character);
    EXPECT_EQ(playlist::renderedMedia(streamOf(crlf)), playlist::renderedMedia(streamOf(text)));
}

struct Version {
    std::string text;
    std::int32_t version;
};

TEST(VELHLSMediaStreamParse, ReadsTheVersion) {
    const std::vector<Version> rows = {
        {"3", 3},
        {" 4", 4},
        {"3abc", 3},
        {"+7", 7},
        {"-1", -1},
        {"007", 7},
        {"1", 1},
        {"0", 0},
        {"6.9", 6},
        {"6:1", 6},
        {"\t\v\f 5", 5},
        {"3 4", 3},
        {"0x10", 0},
        {"3\0004"s, 3},
        {"2147483647", 2147483647},
        {"-2147483648", std::numeric_limits<std::int32_t>::min()},
    };
    for (const auto& [text, version] : rows) {
        EXPECT_EQ(streamOf("#EXT-X-VERSION:" + text + "\n").version, version) << testing::PrintToString(text);
    }
    expectOutcomesOfLines({
        {"#EXT-X-VERSION:", "invalid_argument"},
        {"#EXT-X-VERSION: ", "invalid_argument"},
        {"#EXT-X-VERSION:x3", "invalid_argument"},
        {"#EXT-X-VERSION:+", "invalid_argument"},
        {"#EXT-X-VERSION:-", "invalid_argument"},
        {"#EXT-X-VERSION:+-3", "invalid_argument"},
        {"#EXT-X-VERSION:.3", "invalid_argument"},
        {"#EXT-X-VERSION:\0003"s, "invalid_argument"},
        {"#EXT-X-VERSION:2147483648", "out_of_range"},
        {"#EXT-X-VERSION:-2147483649", "out_of_range"},
        {"#EXT-X-VERSION:99999999999999999999", "out_of_range"},
        {"#EXT-X-VERSION:" + std::string(longLine, '9'), "out_of_range"},
    });
}

struct Seconds {
    std::string text;
    double seconds;
};

TEST(VELHLSMediaStreamParse, ReadsTheTargetDuration) {
    const std::vector<Seconds> rows = {
        {"10", 10.0}, {"10.5", 10.5}, {"0", 0.0},     {"6.006", 6.006},
        {".5", 0.5},  {"5.", 5.0},    {"1.2.3", 1.2}, {"007", 7.0},
    };
    for (const auto& [text, seconds] : rows) {
        EXPECT_EQ(streamOf("#EXT-X-TARGETDURATION:" + text + "\n").targetDuration, seconds) << text;
    }
    expectOutcomesOfLines({
        {"#EXT-X-TARGETDURATION:10", "accepted"},
        {"#EXT-X-TARGETDURATION:", "rejected"},
        {"#EXT-X-TARGETDURATION:10s", "rejected"},
        {"#EXT-X-TARGETDURATION: 10", "rejected"},
        {"#EXT-X-TARGETDURATION:10 ", "rejected"},
        {"#EXT-X-TARGETDURATION:+10", "rejected"},
        {"#EXT-X-TARGETDURATION:-10", "rejected"},
        {"#EXT-X-TARGETDURATION:1e3", "rejected"},
        {"#EXT-X-TARGETDURATION:1,5", "rejected"},
        {"#EXT-X-TARGETDURATION::10", "rejected"},
        {"#EXT-X-TARGETDURATION:10\0"s, "rejected"},
        {"#EXT-X-TARGETDURATION:inf", "rejected"},
        {"#EXT-X-TARGETDURATION:.", "invalid_argument"},
        {"#EXT-X-TARGETDURATION:..", "invalid_argument"},
        {"#EXT-X-TARGETDURATION:..5", "invalid_argument"},
        {"#EXT-X-TARGETDURATION:" + std::string(400, '9'), "out_of_range"},
        {"#EXT-X-TARGETDURATION:0." + std::string(400, '0') + "1", "out_of_range"},
        {"#EXT-X-TARGETDURATION:" + std::string(longLine, '9'), "out_of_range"},
    });
}

struct Count {
    std::string text;
    std::int64_t count;
};

TEST(VELHLSMediaStreamParse, ReadsTheSequenceNumbers) {
    const std::vector<Count> rows = {
        {"0", 0},
        {"7", 7},
        {"007", 7},
        {"4294967296", 4294967296},
        {"9223372036854775807", 9223372036854775807},
    };
    for (const auto& [text, count] : rows) {
        EXPECT_EQ(streamOf("#EXT-X-MEDIA-SEQUENCE:" + text + "\n").mediaSequence, count) << text;
        EXPECT_EQ(streamOf("#EXT-X-DISCONTINUITY-SEQUENCE:" + text + "\n").discontinuitySequence, count)
            << text;
    }
    for (const std::string tag : {"#EXT-X-MEDIA-SEQUENCE:", "#EXT-X-DISCONTINUITY-SEQUENCE:"}) {
        expectOutcomesOfLines({
            {tag + "1", "accepted"},
            {tag, "rejected"},
            {tag + "-1", "rejected"},
            {tag + "+1", "rejected"},
            {tag + " 1", "rejected"},
            {tag + "1 ", "rejected"},
            {tag + "1.0", "rejected"},
            {tag + "x", "rejected"},
            {tag + ":1", "rejected"},
            {tag + "1\0"s, "rejected"},
            {tag + "9223372036854775808", "out_of_range"},
            {tag + "18446744073709551615", "out_of_range"},
            {tag + std::string(longLine, '9'), "out_of_range"},
        });
    }
}

TEST(VELHLSMediaStreamParse, CountsSegmentsBeyondTheLargestSequenceNumberWithoutASign) {
    const VELHLSMediaStream stream =
        streamOf("#EXT-X-MEDIA-SEQUENCE:9223372036854775807\n#EXTINF:4,\nfirst.ts\n#EXTINF:4,\nsecond.ts\n");
    ASSERT_EQ(stream.segments.size(), 2U);
    EXPECT_EQ(stream.segments[0]->mediaSequenceNumber, 9223372036854775807U);
    EXPECT_EQ(stream.segments[1]->mediaSequenceNumber, 9223372036854775808U);
}

TEST(VELHLSMediaStreamParse, ReadsThePlaylistType) {
    EXPECT_EQ(streamOf("#EXT-X-PLAYLIST-TYPE:EVENT\n").playlistType, VELHLSMediaStream::Event);
    EXPECT_EQ(streamOf("#EXT-X-PLAYLIST-TYPE:VOD\n").playlistType, VELHLSMediaStream::Vod);
    const std::string tag = "#EXT-X-PLAYLIST-TYPE:";
    expectOutcomesOfLines({
        {tag + "EVENT", "accepted"},
        {tag + "VOD", "accepted"},
        {tag, "rejected"},
        {tag + "vod", "rejected"},
        {tag + "Event", "rejected"},
        {tag + "VOD ", "rejected"},
        {tag + " VOD", "rejected"},
        {tag + "VOD\0"s, "rejected"},
        {tag + "\"VOD\"", "rejected"},
        {tag + "LIVE", "rejected"},
        {tag + "NONE", "rejected"},
        {tag + "V", "rejected"},
        {tag + "EVENTS", "rejected"},
    });
}

struct Start {
    std::string attributes;
    double timeOffset;
    bool precise;
};

TEST(VELHLSMediaStreamParse, ReadsTheStartOffset) {
    const std::vector<Start> rows = {
        {"TIME-OFFSET=-12.5,PRECISE=YES", -12.5, true},
        {"PRECISE=YES,TIME-OFFSET=-12.5", -12.5, true},
        {"TIME-OFFSET=12.5", 12.5, false},
        {"TIME-OFFSET=+3", 3.0, false},
        {"TIME-OFFSET=0,PRECISE=YES", 0.0, true},
        {"TIME-OFFSET=1,PRECISE=NO", 1.0, false},
        {"TIME-OFFSET=1,PRECISE=yes", 1.0, false},
        {"TIME-OFFSET=1,PRECISE=YES ", 1.0, false},
        {"TIME-OFFSET=1,PRECISE=TRUE", 1.0, false},
        {"TIME-OFFSET=1,PRECISE=\"YES\"", 1.0, true},
        {"TIME-OFFSET=1,PRECISE=\"\"", 1.0, false},
        {"TIME-OFFSET=\"2.5\"", 2.5, false},
        {"TIME-OFFSET=1-2", 1.0, false},
        {"TIME-OFFSET=.5", 0.5, false},
        {"TIME-OFFSET=-.5", -0.5, false},
        {"TIME-OFFSET=1.5.5", 1.5, false},
        {"TIME-OFFSET=1,TIME-OFFSET=2", 1.0, false},
        {"X=1,TIME-OFFSET=1,Y=\"2,3\"", 1.0, false},
    };
    for (const auto& [attributes, timeOffset, precise] : rows) {
        const VELHLSMediaStream stream = streamOf("#EXT-X-START:" + attributes + "\n");
        EXPECT_EQ(stream.startTimeOffset, timeOffset) << attributes;
        EXPECT_EQ(stream.startPrecise, precise) << attributes;
    }
    const std::string tag = "#EXT-X-START:";
    expectOutcomesOfLines({
        {tag, "rejected"},
        {tag + "PRECISE=YES", "rejected"},
        {tag + "TIME-OFFSET", "rejected"},
        {tag + "TIME-OFFSET=", "rejected"},
        {tag + "TIME-OFFSET=\"\"", "rejected"},
        {tag + "TIME-OFFSET=1,", "rejected"},
        {tag + "TIME-OFFSET=1,PRECISE", "rejected"},
        {tag + "TIME-OFFSET=1,PRECISE=", "rejected"},
        {tag + "TIME-OFFSET=1e3", "rejected"},
        {tag + "TIME-OFFSET= 1", "rejected"},
        {tag + "TIME-OFFSET=1 ", "rejected"},
        {tag + " TIME-OFFSET=1", "rejected"},
        {tag + "time-offset=1", "rejected"},
        {tag + "TIME-OFFSET=nan", "rejected"},
        {tag + "TIME-OFFSET=x", "rejected"},
        {tag + "TIME-OFFSET=1\0"s, "rejected"},
        {tag + "TIME-OFFSET=+", "invalid_argument"},
        {tag + "TIME-OFFSET=-", "invalid_argument"},
        {tag + "TIME-OFFSET=.", "invalid_argument"},
        {tag + "TIME-OFFSET=+-", "invalid_argument"},
        {tag + "TIME-OFFSET=--1", "invalid_argument"},
        {tag + "TIME-OFFSET=" + std::string(400, '9'), "out_of_range"},
    });
}

TEST(VELHLSMediaStreamParse, DoesNotTakePreciseBack) {
    const VELHLSMediaStream stream =
        streamOf("#EXT-X-START:TIME-OFFSET=1,PRECISE=YES\n#EXT-X-START:TIME-OFFSET=2,PRECISE=NO\n");
    EXPECT_EQ(stream.startTimeOffset, 2.0);
    EXPECT_TRUE(stream.startPrecise);
}

TEST(VELHLSMediaStreamParse, ReadsVariables) {
    const VELHLSMediaStream stream = streamOf(
        lines({"#EXT-X-DEFINE:NAME=\"a\",VALUE=\"old\"", "#EXT-X-DEFINE:VALUE=\"{$a}, b\",NAME=\"b\",OTHER=1",
               "#EXT-X-DEFINE:NAME=\"a\",VALUE=\"new\"", "#EXT-X-DEFINE:NAME=c,VALUE=3",
               "#EXT-X-DEFINE:NAME=\"\",VALUE=\"\"", "#EXT-X-DEFINE:NAME=\"d\",VALUE=\"1\",VALUE=\"2\""}));
    EXPECT_EQ(*stream.hlsDefineMap,
              (VELHLSDefineMap{{"a", "new"}, {"b", "{$a}, b"}, {"c", "3"}, {"", ""}, {"d", "1"}}));
    const std::string tag = "#EXT-X-DEFINE:";
    expectOutcomesOfLines({
        {tag + "NAME=\"a\",VALUE=\"b\"", "accepted"},
        {tag, "rejected"},
        {tag + "NAME=\"a\"", "rejected"},
        {tag + "VALUE=\"a\"", "rejected"},
        {tag + "IMPORT=\"a\"", "rejected"},
        {tag + "NAME=\"a\",value=\"b\"", "rejected"},
        {tag + "NAME=\"a\", VALUE=\"b\"", "rejected"},
        {tag + "NAME=\"a\",VALUE=\"b\",", "rejected"},
        {tag + "NAME=\"a\",VALUE=", "rejected"},
        {tag + "NAME=\"a\",VALUE", "rejected"},
        {tag + "x", "rejected"},
    });
}

TEST(VELHLSMediaStreamParse, ReadsVariablesAmongTheTagsOfASegment) {
    EXPECT_EQ(*streamOf("#EXTINF:4,\n#EXT-X-DEFINE:NAME=\"a\",VALUE=\"b\"\nsegment.ts\n").hlsDefineMap,
              (VELHLSDefineMap{{"a", "b"}}));
}

TEST(VELHLSMediaStreamParse, SubstitutesNothingOutsideOfPatterns) {
    const VELHLSMediaStream stream = streamOf(
        "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"\n#EXT-X-KEY:METHOD=AES-128,URI=\"k{$n}\"\n#EXTINF:4,{$n}\nseg{$"
        "n}.ts\n");
    ASSERT_EQ(urisOf(stream), "seg{$n}.ts");
    EXPECT_EQ(stream.segments[0]->title, ",{$n}");
    EXPECT_EQ(stream.segments[0]->protectionData->uri, "k{$n}");
}

TEST(VELHLSMediaStreamParse, LetsTheLastHeaderTagHoldAnywhere) {
    const VELHLSMediaStream stream =
        streamOf(lines({"#EXT-X-VERSION:3", "#EXT-X-TARGETDURATION:10", "#EXT-X-MEDIA-SEQUENCE:5",
                        "#EXT-X-DISCONTINUITY-SEQUENCE:2", "#EXT-X-PLAYLIST-TYPE:EVENT", "#EXTINF:4,",
                        "first.ts", "#EXT-X-MEDIA-SEQUENCE:50", "#EXT-X-DISCONTINUITY-SEQUENCE:20",
                        "#EXT-X-VERSION:7", "#EXTINF:4,", "second.ts", "#EXT-X-TARGETDURATION:11",
                        "#EXT-X-PLAYLIST-TYPE:VOD", "#EXT-X-I-FRAMES-ONLY", "#EXTM3U"}));
    EXPECT_EQ(stream.version, 7);
    EXPECT_EQ(stream.targetDuration, 11.0);
    EXPECT_EQ(stream.mediaSequence, 50);
    EXPECT_EQ(stream.discontinuitySequence, 20);
    EXPECT_EQ(stream.playlistType, VELHLSMediaStream::Vod);
    EXPECT_TRUE(stream.iFramesOnly);
    EXPECT_TRUE(stream.hasExtM3U);
    // A segment counts on from the one before it.
    ASSERT_EQ(stream.segments.size(), 2U);
    EXPECT_EQ(stream.segments[0]->mediaSequenceNumber, 5U);
    EXPECT_EQ(stream.segments[1]->mediaSequenceNumber, 6U);
    EXPECT_EQ(stream.segments[0]->discontinuitySequenceNumber, 2U);
    EXPECT_EQ(stream.segments[1]->discontinuitySequenceNumber, 2U);
}

TEST(VELHLSMediaStreamParse, DoesNotNumberTheFirstSegmentByATagAfterIt) {
    const VELHLSMediaStream stream = streamOf("#EXTINF:4,\nfirst.ts\n#EXT-X-MEDIA-SEQUENCE:50\n");
    EXPECT_EQ(stream.mediaSequence, 50);
    EXPECT_EQ(stream.segments.at(0)->mediaSequenceNumber, 0U);
}

TEST(VELHLSMediaStreamParse, StopsAfterTheEndWhenTheHeaderWasRead) {
    const std::string rest = "#EXTINF:10,\nb.ts is not read\n\nno playlist";
    const std::string text =
        lines({"#EXTM3U", "#EXT-X-TARGETDURATION:10", "#EXTINF:10,", "first.ts", "#EXT-X-ENDLIST"});
    EXPECT_EQ(outcomeOf(text + rest), "accepted");
    EXPECT_EQ(urisOf(streamOf(text + rest)), "first.ts");
    EXPECT_EQ(unreadAfterParsing(text + rest), rest);
}

TEST(VELHLSMediaStreamParse, StopsAtALateHeaderWhenTheEndWasRead) {
    const std::string text = "#EXT-X-ENDLIST\n#EXTINF:4,\nfirst.ts\n#EXTM3U\n";
    EXPECT_EQ(urisOf(streamOf(text + "rest")), "first.ts");
    EXPECT_EQ(unreadAfterParsing(text + "rest"), "rest");
}

TEST(VELHLSMediaStreamParse, ReadsOnAfterTheEndWithoutTheHeader) {
    const std::string text = "#EXTINF:4,\nfirst.ts\n#EXT-X-ENDLIST\n#EXTINF:4,\nsecond.ts\n";
    const VELHLSMediaStream stream = streamOf(text);
    EXPECT_TRUE(stream.endList);
    EXPECT_FALSE(stream.hasExtM3U);
    EXPECT_EQ(urisOf(stream), "first.ts second.ts");
    EXPECT_EQ(unreadAfterParsing(text), "");
    EXPECT_EQ(outcomeOf(text + "no playlist\n"), "rejected");
}

TEST(VELHLSMediaStreamParse, DoesNotCountTheHeaderAmongTheTagsOfASegment) {
    const VELHLSMediaStream stream =
        streamOf(lines({"#EXTINF:4,", "#EXTM3U", "first.ts", "#EXT-X-ENDLIST", "#EXTINF:4,", "second.ts"}));
    EXPECT_FALSE(stream.hasExtM3U);
    EXPECT_EQ(urisOf(stream), "first.ts second.ts");
}

TEST(VELHLSMediaStreamParse, OpensASegmentWithEachOfItsTags) {
    const std::vector<std::string> opening = {
        "#EXT-X-BYTERANGE:100@0",      "#EXT-X-KEY:METHOD=NONE",
        "#EXT-X-MAP:URI=\"init.mp4\"", "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:00Z",
        "#EXT-X-CUE-OUT:30",           "#EXT-X-CUE-OUT:",
        "#EXT-X-CUE-OUT-CONT:1/30",    "#EXT-X-DISCONTINUITY",
    };
    for (const std::string& line : opening) {
        SCOPED_TRACE(line);
        EXPECT_EQ(urisOf(streamOf(line + "\n#EXTINF:4,\nsegment.ts\n")), "segment.ts");
        EXPECT_EQ(urisOf(streamOf("#EXTINF:4,\n" + line + "\nsegment.ts\n")), "segment.ts");
        EXPECT_EQ(outcomeOf(line + "\nsegment.ts\n"), "rejected");
        EXPECT_EQ(outcomeOf(line + "\n#EXTINF:4,\n"), "rejected");
        EXPECT_EQ(outcomeOf(line + "\n"), "rejected");
        EXPECT_EQ(outcomeOf(line), "rejected");
        EXPECT_EQ(outcomeOf(line + "\n#EXT-X-VERSION:3\n#EXTINF:4,\nsegment.ts\n"), "rejected");
    }
}

TEST(VELHLSMediaStreamParse, RejectsThePlaylistWithASegmentThatDoesNotParse) {
    expectOutcomesInSegment({
        {"# comment", "accepted"},
        {"", "accepted"},
        {" \t\r", "accepted"},
        {"#EXTM3U", "accepted"},
        {"#EXT-X-CUE-IN", "accepted"},
        {"#ZOR-STREAM-INF:x", "accepted"},
        {"#ZOR-PATTERN_END", "accepted"},
        {"#EXTINF:5,", "accepted"},
        {"#EXTINF:-5,", "accepted"},
        {"#EXTINF:0,", "rejected"},
        {"#EXTINF:,", "rejected"},
        {"#EXTINF:,5", "rejected"},
        {"#EXTINF:", "invalid_argument"},
        {"#EXTINF:x", "invalid_argument"},
        {"#EXTINF: ,", "invalid_argument"},
        {"#EXTINF:1e999,", "out_of_range"},
        {"#EXTINF:" + std::string(longLine, '9') + ",", "out_of_range"},
        {"#EXT-X-BYTERANGE:", "rejected"},
        {"#EXT-X-BYTERANGE:@5", "rejected"},
        {"#EXT-X-BYTERANGE:-5", "rejected"},
        {"#EXT-X-BYTERANGE:9223372036854775808", "out_of_range"},
        {"#EXT-X-KEY:", "rejected"},
        {"#EXT-X-KEY:METHOD=AES-128", "rejected"},
        {"#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=1", "rejected"},
        {"#EXT-X-KEY:METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"1/\"", "invalid_argument"},
        {"#EXT-X-KEY:METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"99999999999\"", "out_of_range"},
        {"#EXT-X-MAP:", "rejected"},
        {"#EXT-X-MAP:URI=\"\"", "rejected"},
        {"#EXT-X-MAP:BYTERANGE=\"720@0\"", "rejected"},
        {"#EXT-X-PROGRAM-DATE-TIME:", "rejected"},
        {"#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:00", "rejected"},
        {"#EXT-X-PROGRAM-DATE-TIME:1960-01-01T00:00:00Z", "rejected"},
        {"#EXT-X-PROGRAM-DATE-TIME:2020-xx-01T00:00:00Z", "invalid_argument"},
        {"#EXT-X-DEFINE:", "rejected"},
        {"#EXT-X-DEFINE:NAME=\"a\"", "rejected"},
        {"#EXT-X-CUE-OUT", "rejected"},
        {"#EXT-X-CUE-IN:", "rejected"},
        {"#EXT-X-ENDLIST", "rejected"},
        {"#EXT-X-GAP", "rejected"},
        {"#EXT-X-VERSION:3", "rejected"},
        {"#EXT-X-TARGETDURATION:4", "rejected"},
        {"#EXT-X-DISCONTINUITY-SEQUENCE:4", "rejected"},
        {"#EXT-X-UNKNOWN:1", "rejected"},
        {"#EXT", "rejected"},
        {"#EXT:", "rejected"},
        {"#ZOR-PATTERN_START", "rejected"},
        {"#ZOR-PATTERN_STARTED", "rejected"},
        {"#ZOR-PATTERN_END:p", "pattern error: #ZOR-PATTERN_END:p"},
        {"#ZOR-PATTERN_REPEAT:p,2", "pattern error: #ZOR-PATTERN_REPEAT:p,2"},
        {"#ZOR-DEFINE_INCREMENT:n,1", "pattern error: #ZOR-DEFINE_INCREMENT:n,1"},
        {"#ZOR-PATTERN_STARTED:p", "pattern error: #ZOR-PATTERN_STARTED:p"},
        {"#ZOR-PATTERN_END:\r", "pattern error: #ZOR-PATTERN_END:"},
    });
}

TEST(VELHLSMediaStreamParse, RejectsALastUriWithoutLineFeed) {
    EXPECT_EQ(outcomeOf("#EXTM3U\n#EXTINF:4,\nsegment.ts"), "rejected");
    EXPECT_EQ(outcomeOf("#EXTM3U\n#EXTINF:4,\nsegment.ts\n#EXT-X-ENDLIST"), "accepted");
}

TEST(VELHLSMediaStreamParse, ThrowsForASegmentUriOfFewerThanSixCharacters) {
    const std::vector<Row> rows = {
        {"a", "out_of_range"},          {"a.ts", "out_of_range"}, {"10.ts", "out_of_range"},
        {" 1.ts \t\r", "out_of_range"}, {"100.ts", "accepted"},   {"./1.ts", "accepted"},
    };
    for (const auto& [uri, outcome] : rows) {
        SCOPED_TRACE(uri);
        EXPECT_EQ(outcomeOf("#EXTM3U\n#EXTINF:4,\n" + uri + "\n#EXT-X-ENDLIST\n"), outcome);
        EXPECT_EQ(outcomeOf("#EXTM3U\n#EXTINF:4,\n#EXT-X-BYTERANGE:9@0\n" + uri + "\n#EXT-X-ENDLIST\n"),
                  "accepted");
    }
}

TEST(VELHLSMediaStreamParse, TakesTheByteRangeOfTheUri) {
    const VELHLSMediaStream stream = streamOf("#EXTINF:4,\nv/range/1000-1999\n#EXTINF:4,\nabcdef42\n");
    ASSERT_EQ(stream.segments.size(), 2U);
    EXPECT_EQ(stream.segments[0]->byteRange->length, 1000);
    EXPECT_EQ(stream.segments[0]->byteRange->offset, 1000);
    EXPECT_EQ(stream.segments[1]->byteRange->length, 42);
    EXPECT_EQ(stream.segments[1]->byteRange->offset, -1);
    EXPECT_EQ(outcomeOf("#EXTINF:4,\nv/range/200-100\n"), "rejected");
    EXPECT_EQ(outcomeOf("#EXTINF:4,\nv/range/9223372036854775808\n"), "out_of_range");
}

TEST(VELHLSMediaStreamParse, NotesADiscontinuityThatOpensASegment) {
    const VELHLSMediaStream stream = streamOf("#EXT-X-DISCONTINUITY\n#EXTINF:4,\nsecond.ts\n");
    EXPECT_TRUE(stream.discontinuitySeen);
    ASSERT_EQ(stream.segments.size(), 1U);
    EXPECT_TRUE(stream.segments[0]->discontinuity);
    EXPECT_EQ(stream.segments[0]->discontinuitySequenceNumber, 1U);
    EXPECT_TRUE(
        streamOf("#EXT-X-DISCONTINUITY\n#EXTINF:4,\nfirst.ts\n#EXTINF:4,\nsecond.ts\n").discontinuitySeen);
}

TEST(VELHLSMediaStreamParse, DoesNotNoteADiscontinuityAfterAnotherTag) {
    const VELHLSMediaStream stream = streamOf("#EXTINF:4,\n#EXT-X-DISCONTINUITY\nsegment.ts\n");
    EXPECT_FALSE(stream.discontinuitySeen);
    ASSERT_EQ(stream.segments.size(), 1U);
    EXPECT_TRUE(stream.segments[0]->discontinuity);
}

TEST(VELHLSMediaStreamParse, DoesNotNoteADiscontinuityThatOpensAPattern) {
    const VELHLSMediaStream stream = streamOf(exampleHead + "#EXT-X-DISCONTINUITY\n" + examplePattern);
    EXPECT_FALSE(stream.discontinuitySeen);
    ASSERT_EQ(urisOf(stream), "seg1.ts seg2.ts seg3.ts");
    EXPECT_EQ(stream.segments[0]->discontinuitySequenceNumber, 1U);
    EXPECT_EQ(stream.segments[2]->discontinuitySequenceNumber, 3U);
    EXPECT_TRUE(stream.segments[2]->discontinuity);
}

TEST(VELHLSMediaStreamParse, LetsSegmentsShareKeyAndMap) {
    const VELHLSMediaStream stream =
        streamOf(lines({"#EXTINF:4,", "clear.ts", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"",
                        "#EXT-X-MAP:URI=\"init.mp4\"", "#EXTINF:4,", "first.ts", "#EXT-X-DISCONTINUITY",
                        "#EXTINF:4,", "second.ts", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"", "#EXTINF:4,",
                        "third.ts", "#EXT-X-KEY:METHOD=NONE", "#EXTINF:4,", "fourth.ts"}));
    ASSERT_EQ(stream.segments.size(), 5U);
    EXPECT_EQ(stream.segments[0]->protectionData, nullptr);
    EXPECT_EQ(stream.segments[0]->misMap, nullptr);
    ASSERT_NE(stream.segments[1]->protectionData, nullptr);
    EXPECT_EQ(stream.segments[2]->protectionData, stream.segments[1]->protectionData);
    EXPECT_NE(stream.segments[3]->protectionData, stream.segments[2]->protectionData);
    EXPECT_EQ(stream.segments[4]->protectionData->method, VELHLSProtectionData::None);
    for (std::size_t index = 2; index < 5; ++index) {
        EXPECT_EQ(stream.segments[index]->misMap, stream.segments[1]->misMap);
    }
}

TEST(VELHLSMediaStreamParse, CarriesDatesForwardAlsoFromNone) {
    const VELHLSMediaStream stream = streamOf(
        "#EXTINF:10,\nfirst.ts\n#EXTINF:10,\nsecond.ts\n#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:00Z\n"
        "#EXTINF:10,\nthird.ts\n#EXTINF:10,\nfourth.ts\n");
    ASSERT_EQ(stream.segments.size(), 4U);
    EXPECT_EQ(stream.segments[0]->programDateTime, 0.0);
    EXPECT_EQ(stream.segments[1]->programDateTime, 10.0);
    EXPECT_EQ(stream.segments[2]->programDateTime, 1577836800.0);
    EXPECT_EQ(stream.segments[3]->programDateTime, 1577836810.0);
}

TEST(VELHLSMediaStreamParse, KeepsSegmentsAliveBeyondThePlaylist) {
    Stream stream = playlist::parsedMedia("#EXTINF:4,\nsegment.ts\n");
    ASSERT_NE(stream, nullptr);
    const std::weak_ptr<VELHLSMediaStream> watched = stream;
    const std::shared_ptr<VELHLSMediaSegment> segment = stream->segments.at(0);
    stream.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(segment->uri, "segment.ts");
    EXPECT_EQ(segment.use_count(), 1);
}

TEST(VELHLSMediaStreamParse, AppendsTheSegmentsOfAPattern) {
    std::istringstream input(exampleHead + "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n#EXTINF:6,\nfirst.ts\n" +
                             examplePattern + "#EXTINF:5,\nlast{$n}.ts\n");
    VELHLSParsingStatus status = statusBefore();
    const Stream stream = VELHLSMediaStream::parseMediaStream(input, &status);
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(status.hasMediaPatterns);
    EXPECT_EQ(status.error, VELHLSParsingErrorNone);
    EXPECT_EQ(status.message, messageBefore);
    ASSERT_EQ(urisOf(*stream), "first.ts seg1.ts seg2.ts seg3.ts last{$n}.ts");
    for (std::size_t index = 0; index < 5; ++index) {
        EXPECT_EQ(stream->segments[index]->mediaSequenceNumber, index);
        EXPECT_EQ(stream->segments[index]->protectionData, stream->segments[0]->protectionData);
    }
    EXPECT_EQ(stream->segments[3]->startTime, 14.0);
    EXPECT_EQ(stream->segments[4]->startTime, 18.0);
    EXPECT_EQ(stream->segments[4]->programDateTime, 18.0);
    EXPECT_EQ(*stream->hlsDefineMap, (VELHLSDefineMap{{"n", "4"}}));
}

TEST(VELHLSMediaStreamParse, StartsWithAPatternAtTheSequenceNumbersOfTheHeader) {
    const VELHLSMediaStream stream = streamOf(
        exampleHead + "#EXT-X-MEDIA-SEQUENCE:100\n#EXT-X-DISCONTINUITY-SEQUENCE:7\n" + examplePattern);
    ASSERT_EQ(stream.segments.size(), 3U);
    EXPECT_EQ(stream.segments[0]->mediaSequenceNumber, 100U);
    EXPECT_EQ(stream.segments[2]->mediaSequenceNumber, 102U);
    EXPECT_EQ(stream.segments[2]->discontinuitySequenceNumber, 7U);
}

TEST(VELHLSMediaStreamParse, GoesOnCountingFromPatternToPattern) {
    const VELHLSMediaStream stream = streamOf(exampleHead + examplePattern + examplePattern);
    EXPECT_EQ(urisOf(stream), "seg1.ts seg2.ts seg3.ts seg4.ts seg5.ts seg6.ts");
    EXPECT_EQ(*stream.hlsDefineMap, (VELHLSDefineMap{{"n", "7"}}));
    EXPECT_EQ(urisOf(streamOf(exampleHead + examplePattern + "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"70\"\n" +
                              examplePattern)),
              "seg1.ts seg2.ts seg3.ts seg70.ts seg71.ts seg72.ts");
}

TEST(VELHLSMediaStreamParse, RepeatsTheTagsBeforeAPatternWithIt) {
    const std::string pattern = "#ZOR-PATTERN_START:p\n#EXTINF:4,\nseg1.ts\n#ZOR-PATTERN_REPEAT:p,1\n";
    const VELHLSMediaStream stream = streamOf("#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n# comment\n" +
                                              "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:00Z\n"s + pattern);
    ASSERT_EQ(urisOf(stream), "seg1.ts seg1.ts");
    EXPECT_EQ(stream.segments[0]->programDateTime, 1577836800.0);
    EXPECT_EQ(stream.segments[1]->programDateTime, 1577836800.0);
    EXPECT_NE(stream.segments[0]->protectionData, stream.segments[1]->protectionData);
    // A blank line among those tags becomes a URI that expands to nothing.
    EXPECT_EQ(outcomeOf("#EXT-X-KEY:METHOD=NONE\n\n" + pattern), "rejected");
    EXPECT_EQ(outcomeOf("#EXT-X-KEY:METHOD=NONE\n" + pattern), "accepted");
}

TEST(VELHLSMediaStreamParse, ReadsPatternsWithCarriageReturnsWhereTheyDoNotMatter) {
    const VELHLSMediaStream stream = streamOf(
        "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"\r\n#ZOR-PATTERN_START:p\r\n#EXTINF:4,\r\nseg{$n}.ts\r\n"
        "#ZOR-DEFINE_INCREMENT:n,1\r\n#ZOR-PATTERN_REPEAT:p,2\r\n#EXT-X-ENDLIST\r\n");
    EXPECT_EQ(urisOf(stream), "seg1.ts seg2.ts seg3.ts");
    EXPECT_TRUE(stream.endList);
}

TEST(VELHLSMediaStreamParse, TellsWhatFailsInAPattern) {
    const std::string start = "#ZOR-PATTERN_START:p\n";
    const std::string body = "#EXTINF:4,\nsegment.ts\n";
    const std::string repeat = "#ZOR-PATTERN_REPEAT:p,2\n";
    const std::vector<Row> rows = {
        {start + body + repeat, "accepted"},
        {start + body + "#ZOR-PATTERN_END:p\n" + repeat, "accepted"},
        {start + body, "accepted"},
        {"#ZOR-PATTERN_START:p", "rejected"},
        {"#ZOR-PATTERN_START", "rejected"},
        {"#ZOR-PATTERN_START\n", "rejected"},
        {"#ZOR-PATTERN_STARTED\n" + body + repeat, "rejected"},
        {"#ZOR-PATTERN_STARTED:p\n" + body + repeat, "pattern error: #ZOR-PATTERN_STARTED:p"},
        {start + start + body + repeat, "pattern error: #ZOR-PATTERN_START:p"},
        {start + body + "#ZOR-PATTERN_REPEAT:q,3\n", "pattern error: #ZOR-PATTERN_REPEAT:q,3"},
        {start + body + "#ZOR-PATTERN_REPEAT:p\n", "pattern error: #ZOR-PATTERN_REPEAT:p"},
        {start + body + "#ZOR-PATTERN_END:q\n" + repeat, "pattern error: #ZOR-PATTERN_END:q"},
        {start + body + "#ZOR-PATTERN_END:p\r\n" + repeat, "pattern error: #ZOR-PATTERN_END:p\r"},
        {start + "#EXT-X-DISCONTINUITY\r\n" + body + repeat, "pattern error: #EXT-X-DISCONTINUITY\r"},
        {start + "#EXT-X-DISCONTINUITY\n" + body + repeat, "accepted"},
        {start + "# comment\n" + body + repeat, "pattern error: # comment"},
        {start + body + "#EXT-X-ENDLIST\n", "pattern error: #EXT-X-ENDLIST"},
        {start + "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"\n" + body + repeat,
         "pattern error: #EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\""},
        {start + body + "\n" + repeat, "rejected"},
        {start + "#EXTINF:4,\n" + repeat, "rejected"},
        {start + "segment.ts\n" + repeat, "rejected"},
        {start + "#EXTINF:4,\nseg{$n}.ts\n" + repeat, "rejected"},
        {start + body + "#ZOR-DEFINE_INCREMENT:n,1\n" + repeat, "rejected"},
        {start + "#EXTINF:4,\n#EXT-X-KEY:\nsegment.ts\n" + repeat, "rejected"},
        {start + body + "#ZOR-PATTERN_REPEAT:p,-1\n", "rejected"},
        {start + body + "#ZOR-PATTERN_REPEAT:p,9223372036854775807\n", "rejected"},
        {start + "#ZOR-DEFINE_INCREMENT:n,0\n#ZOR-PATTERN_REPEAT:p,9223372036854775807\n", "rejected"},
        {start + body + "#ZOR-PATTERN_REPEAT:p,9223372036854775808\n", "out_of_range"},
        {start + body + "#ZOR-PATTERN_REPEAT:p,x\n", "invalid_argument"},
        {start + body + "#ZOR-PATTERN_REPEAT:p,\n", "invalid_argument"},
        {start + "#EXTINF:x,\nsegment.ts\n" + repeat, "invalid_argument"},
        {start + "#EXTINF:4,\ns.ts\n" + repeat, "out_of_range"},
        {exampleHead + start + body + "#ZOR-DEFINE_INCREMENT:n,x\n" + repeat, "invalid_argument"},
        {exampleHead + start + body + "#ZOR-DEFINE_INCREMENT:n,2147483648\n" + repeat, "out_of_range"},
        {exampleHead + start + body + "#ZOR-DEFINE_INCREMENT:n,2147483647\n#ZOR-PATTERN_REPEAT:p,0\n",
         "accepted"},
        {exampleHead + start + body + "#ZOR-DEFINE_INCREMENT:n,2147483647\n#ZOR-PATTERN_REPEAT:p,1\n",
         "out_of_range"},
    };
    for (const auto& [text, outcome] : rows) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(outcomeOf(text), outcome);
        EXPECT_EQ(outcomeOf("#EXTM3U\n#EXTINF:4,\nin-front.ts\n" + text), outcome);
        // Tags before the pattern open a segment, whose lines the pattern takes over.
        EXPECT_EQ(outcomeOf("#EXT-X-KEY:METHOD=NONE\n" + text), outcome);
    }
}

TEST(VELHLSMediaStreamParse, TakesAPatternWithoutABodyAsNoSegments) {
    const std::string start = "#ZOR-PATTERN_START:p\n";
    EXPECT_EQ(outcomeOf(start), "accepted");
    EXPECT_EQ(outcomeOf(start + "#ZOR-PATTERN_REPEAT:p,9223372036854775807\n"), "accepted");
    EXPECT_EQ(outcomeOf(start + "#ZOR-PATTERN_REPEAT:p,-1\n"), "accepted");
    EXPECT_TRUE(streamOf(start).segments.empty());
    // The tags before it would be its body, and they have no URI.
    EXPECT_EQ(outcomeOf("#EXTINF:4,\n" + start), "rejected");
}

TEST(VELHLSMediaStreamParse, NotesEveryPatternThatASegmentMeets) {
    for (const std::string text :
         {"#ZOR-PATTERN_START:p\n", "#ZOR-PATTERN_START\n", "#ZOR-PATTERN_STARTED:p\n",
          "#EXTINF:4,\n#ZOR-PATTERN_START:p\n", "#EXTINF:4,\n#ZOR-PATTERN_START\n",
          "#EXTINF:4,\n#ZOR-PATTERN_END:p\n", "#EXTINF:4,\n#ZOR-PATTERN_REPEAT:p,2\n",
          "#EXTINF:4,\n#ZOR-DEFINE_INCREMENT:n,1\n"}) {
        VELHLSParsingStatus status;
        std::istringstream input(text);
        static_cast<void>(VELHLSMediaStream::parseMediaStream(input, &status));
        EXPECT_TRUE(status.hasMediaPatterns) << text;
    }
}

TEST(VELHLSMediaStreamParse, NeverClearsTheNoteOfPatterns) {
    VELHLSParsingStatus status;
    status.hasMediaPatterns = true;
    std::istringstream input("#EXTM3U\n");
    ASSERT_NE(VELHLSMediaStream::parseMediaStream(input, &status), nullptr);
    EXPECT_TRUE(status.hasMediaPatterns);
}

TEST(VELHLSMediaStreamParse, LeavesTheLinesAfterARejectedPatternLineUnread) {
    const std::string after = "#EXTINF:4,\nafter.ts\n";
    EXPECT_EQ(unreadAfterParsing("#ZOR-PATTERN_START:p\n#ZOR-PATTERN_REPEAT:q,2\n" + after), after);
    EXPECT_EQ(unreadAfterParsing("#EXTINF:4,\n#ZOR-PATTERN_END:p\n" + after), after);
}

/// A pattern of one pass whose body has so many bytes.
std::string patternOf(std::size_t bytes) {
    const std::string head = "#EXTINF:4,\n";
    return "#ZOR-PATTERN_START:p\n" + head + std::string(bytes - head.size() - 1, 'u') +
           "\n#ZOR-PATTERN_REPEAT:p,0\n";
}

std::string repeated(std::size_t count, const std::string& text) {
    std::string all;
    all.reserve(count * text.size());
    for (std::size_t copy = 0; copy < count; ++copy)
        all += text;
    return all;
}

TEST(VELHLSMediaStreamParse, BoundsThePatternsOfOnePlaylistTogether) {
    const std::size_t patternBytes = 4 * mebibyte;
    const std::size_t fitting = VELHLSMediaPattern::maximumExpansionBytesOfPlaylist / patternBytes;
    const std::string pattern = patternOf(patternBytes);
    VELHLSParsingStatus status = statusBefore();
    {
        std::istringstream input(repeated(fitting, pattern));
        const Stream stream = VELHLSMediaStream::parseMediaStream(input, &status);
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(stream->segments.size(), fitting);
    }
    status = statusBefore();
    std::istringstream input(repeated(fitting, pattern) + patternOf(100));
    EXPECT_EQ(VELHLSMediaStream::parseMediaStream(input, &status), nullptr);
    EXPECT_TRUE(hasOutcomeOfBefore(status));
    EXPECT_TRUE(status.hasMediaPatterns);
    EXPECT_NE(status.metrics, nullptr);
}

TEST(VELHLSMediaStreamParse, BoundsManySmallPatternsWithManyPassesTogether) {
    // Each of them makes 8 MiB of text out of less than a hundred bytes.
    const std::string pattern =
        "#ZOR-PATTERN_START:p\n#EXTINF:4,\n" + std::string(1012, 'u') + "\n#ZOR-PATTERN_REPEAT:p,8191\n";
    EXPECT_EQ(streamOf(repeated(2, pattern)).segments.size(), 2U * 8192U);
    EXPECT_EQ(playlist::parsedMedia(repeated(1000, pattern)), nullptr);
}

/// A pattern that makes so many segments of little text.
std::string patternOfSegments(std::size_t count) {
    return "#ZOR-PATTERN_START:p\n#EXTINF:4,\nabcdef\n#ZOR-PATTERN_REPEAT:p," + std::to_string(count - 1) +
           "\n";
}

TEST(VELHLSMediaStreamParse, BoundsTheSegmentsOfPatternsTogether) {
    constexpr std::size_t most = VELHLSMediaPattern::maximumExpansionSegments;
    EXPECT_EQ(streamOf(patternOfSegments(most)).segments.size(), most);
    EXPECT_EQ(playlist::parsedMedia(patternOfSegments(most + 1)), nullptr);
    EXPECT_EQ(playlist::parsedMedia(patternOfSegments(most) + patternOfSegments(1)), nullptr);
    const std::string segment = "#EXTINF:4,\nabcdef\n";
    EXPECT_EQ(streamOf(segment + patternOfSegments(most) + segment).segments.size(), most + 2);
}

TEST(VELHLSMediaStreamParse, DoesNotBoundPlaylistsWithoutPatterns) {
    const std::string segment = "#EXTINF:4,\n" + std::string(4 * mebibyte, 'u') + "\n";
    EXPECT_EQ(streamOf(repeated(18, segment)).segments.size(), 18U);
}

TEST(VELHLSMediaStreamParse, ReadsADayOfOneSecondSegmentsFromAPattern) {
    const VELHLSMediaStream stream =
        streamOf(lines({"#EXTM3U", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"0\"", "#ZOR-PATTERN_START:day",
                        "#EXTINF:1,", "segment{$n}.ts", "#ZOR-DEFINE_INCREMENT:n,1", "#ZOR-PATTERN_END:day",
                        "#ZOR-PATTERN_REPEAT:day,86399", "#EXT-X-ENDLIST"}));
    ASSERT_EQ(stream.segments.size(), 86400U);
    EXPECT_EQ(stream.segments.back()->uri, "segment86399.ts");
    EXPECT_EQ(stream.segments.back()->startTime, 86399.0);
    EXPECT_EQ(stream.segments.back()->mediaSequenceNumber, 86399U);
    EXPECT_TRUE(stream.endList);
}

TEST(VELHLSMediaStreamParse, ReadsAsManySegmentsAsThereAre) {
    constexpr std::size_t count = 200000;
    std::string text = "#EXTM3U\n#EXT-X-MEDIA-SEQUENCE:5\n";
    for (std::size_t index = 0; index < count; ++index) {
        text += "#EXTINF:2,\nsegment" + std::to_string(index) + ".ts\n";
    }
    const VELHLSMediaStream stream = streamOf(text + "#EXT-X-ENDLIST\n");
    ASSERT_EQ(stream.segments.size(), count);
    EXPECT_EQ(stream.segments.back()->uri, "segment199999.ts");
    EXPECT_EQ(stream.segments.back()->startTime, 2.0 * (count - 1));
    EXPECT_EQ(stream.segments.back()->mediaSequenceNumber, count + 4);
    EXPECT_TRUE(stream.endList);
}

TEST(VELHLSMediaStreamParse, ReadsMegabyteLinesAndNulBytes) {
    const std::string longText(mebibyte, 'x');
    const VELHLSMediaStream stream =
        streamOf("#EXTM3U\n#" + longText + "\n#EXTINF:4," + longText + "\n#" + longText + "\n" + longText +
                 "\n" + "#EXTINF:4\0.5,Ti\0tle\nseg\0ment.ts\n"s);
    ASSERT_EQ(stream.segments.size(), 2U);
    EXPECT_EQ(stream.segments[0]->title, "," + longText);
    EXPECT_EQ(stream.segments[0]->uri, longText);
    EXPECT_EQ(stream.segments[1]->duration, 4.0);
    EXPECT_EQ(stream.segments[1]->title, ",Ti\0tle"s);
    EXPECT_EQ(stream.segments[1]->uri, "seg\0ment.ts"s);
    EXPECT_EQ(outcomeOf("#EXT-X-TARGETDURATION:" + std::string(mebibyte, '9')), "out_of_range");
    EXPECT_EQ(outcomeOf("#EXTINF:" + std::string(mebibyte, '9') + ",\nsegment.ts\n"), "out_of_range");
    EXPECT_EQ(outcomeOf(longText + "\n"), "rejected");
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:p\n#" + longText + "\n"), "pattern error: #" + longText);
}

/// The spans of a playlist that end with a line feed, with what the playlist comes to when it ends within:
/// after the first colon of a tag, up to and including the byte before its line feed.
std::string expectedOfCut(std::string_view cut) {
    const std::string_view lastLine = cut.substr(cut.rfind('\n') + 1);
    const bool inSegment = cut.rfind("#EXTINF:") != std::string_view::npos &&
                           cut.find(".ts\n", cut.rfind("#EXTINF:")) == std::string_view::npos;
    if (inSegment) return "rejected";
    if (lastLine == "#EXT-X-VERSION:") return "invalid_argument";
    if (lastLine == "#EXT-X-TARGETDURATION:" || lastLine == "#EXT-X-MEDIA-SEQUENCE:") return "rejected";
    const bool hasPartOfType =
        lastLine.rfind("#EXT-X-PLAYLIST-TYPE:", 0) == 0 && lastLine.substr(21) != "VOD";
    return hasPartOfType ? "rejected" : "accepted";
}

TEST(VELHLSMediaStreamParse, ReadsEveryPrefixOfAPlaylist) {
    const std::string text =
        lines({"#EXTM3U", "#EXT-X-VERSION:3", "#EXT-X-TARGETDURATION:10.5", "#EXT-X-MEDIA-SEQUENCE:10",
               "#EXT-X-PLAYLIST-TYPE:VOD", "# comment", "", "#EXTINF:10,Title", "first0.ts", "#EXT-X-CUE-IN",
               "#EXTINF:4.5", "second.ts", "#EXT-X-ENDLIST"});
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const std::string cut = text.substr(0, length);
        EXPECT_EQ(outcomeOf(cut), expectedOfCut(cut)) << cut;
    }
}

TEST(VELHLSMediaStreamParse, WritesTheSuccessOverWhateverTheErrorWas) {
    for (const std::int32_t before : {0, 1, -1, 7}) {
        VELHLSParsingStatus status;
        status.error = static_cast<VELHLSParsingError>(before);
        std::istringstream input("#EXTM3U\n");
        ASSERT_NE(VELHLSMediaStream::parseMediaStream(input, &status), nullptr);
        EXPECT_EQ(status.error, VELHLSParsingErrorNone);
        EXPECT_EQ(static_cast<std::int32_t>(status.error), -1);
    }
}

TEST(VELHLSMediaStreamParse, UsesTheMetricsOfTheCaller) {
    VELHLSParsingStatus status;
    status.metrics = std::make_shared<VELHLSParsingMetrics>();
    const auto metrics = status.metrics;
    for (const std::string text : {"#EXTM3U\n", "no playlist\n"}) {
        metrics->parseDuration = -1.0;
        std::istringstream input(text);
        static_cast<void>(VELHLSMediaStream::parseMediaStream(input, &status));
        EXPECT_EQ(status.metrics, metrics);
        EXPECT_GE(metrics->parseDuration, 0.0);
        EXPECT_LT(metrics->parseDuration, 60.0);
    }
}

TEST(VELHLSMediaStreamParse, DoesNotWriteTheMetricsWhenAnExceptionLeaves) {
    VELHLSParsingStatus status = statusBefore();
    status.metrics = std::make_shared<VELHLSParsingMetrics>();
    status.metrics->parseDuration = -1.0;
    std::istringstream input("#EXTINF:4,\na.ts\n");
    EXPECT_THROW(static_cast<void>(VELHLSMediaStream::parseMediaStream(input, &status)), std::out_of_range);
    EXPECT_EQ(status.metrics->parseDuration, -1.0);
    EXPECT_TRUE(hasOutcomeOfBefore(status));
}

TEST(VELHLSMediaStreamParse, ReadsAStreamThatIsNotGoodAsAnEmptyPlaylist) {
    for (const std::ios_base::iostate state : {std::ios::eofbit, std::ios::failbit, std::ios::badbit}) {
        std::istringstream input("no playlist\n");
        input.setstate(state);
        VELHLSParsingStatus status = statusBefore();
        const Stream stream = VELHLSMediaStream::parseMediaStream(input, &status);
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(stream->version, 1);
        EXPECT_TRUE(stream->segments.empty());
        EXPECT_EQ(status.error, VELHLSParsingErrorNone);
        EXPECT_NE(status.metrics, nullptr);
        EXPECT_EQ(input.rdstate(), state);
        input.clear();
        EXPECT_EQ(input.tellg(), std::streampos(0));
    }
}

TEST(VELHLSMediaStreamParse, LetsTheExceptionOfAStreamPass) {
    std::istringstream input("#EXTM3U\n");
    input.exceptions(std::ios::failbit);
    VELHLSParsingStatus status = statusBefore();
    EXPECT_THROW(static_cast<void>(VELHLSMediaStream::parseMediaStream(input, &status)),
                 std::ios_base::failure);
    EXPECT_TRUE(hasOutcomeOfBefore(status));
    EXPECT_EQ(status.metrics, nullptr);
}

/// Hands its text out byte by byte. After it comes the end, or a broken connection.
class ByteByByte : public std::streambuf {
  public:
    ByteByByte(std::string text, bool breaks) : text_(std::move(text)), breaks_(breaks) {}

    [[nodiscard]] std::size_t handedOut() const { return position_; }

  protected:
    int_type underflow() override {
        if (position_ == text_.size()) {
            if (breaks_) throw std::runtime_error("connection lost");
            return traits_type::eof();
        }
        character_ = text_[position_++];
        setg(&character_, &character_, &character_ + 1);
        return traits_type::to_int_type(character_);
    }

  private:
    std::string text_;
    bool breaks_;
    std::size_t position_ = 0;
    char character_ = 0;
};

TEST(VELHLSMediaStreamParse, AsksForNoByteAfterTheEndOfThePlaylist) {
    // Else a parse would wait for the next bytes of a connection that stays open.
    const std::string text = exampleHead + "#EXTM3U\n" + examplePattern + "#EXT-X-ENDLIST\n";
    ByteByByte bytes(text + "more", true);
    std::istream input(&bytes);
    const Stream stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(urisOf(*stream), "seg1.ts seg2.ts seg3.ts");
    EXPECT_EQ(bytes.handedOut(), text.size());
    EXPECT_TRUE(input.good());
}

std::string outcomeOfBrokenInput(const std::string& text) {
    ByteByByte bytes(text, true);
    std::istream input(&bytes);
    const bool isAccepted = VELHLSMediaStream::parseMediaStream(input, nullptr) != nullptr;
    EXPECT_TRUE(input.bad());
    return isAccepted ? "accepted" : "rejected";
}

TEST(VELHLSMediaStreamParse, ReadsABrokenStreamAsFarAsItGoes) {
    EXPECT_EQ(outcomeOfBrokenInput(""), "accepted");
    EXPECT_EQ(outcomeOfBrokenInput("#EXTM3U\n#EXT-X-TARGETDURATION:10"), "accepted");
    EXPECT_EQ(outcomeOfBrokenInput("#EXTM3U\n#EXTINF:4,\nfirst.ts\n"), "accepted");
    EXPECT_EQ(outcomeOfBrokenInput("#EXTM3U\n#EXTINF:4,\nfirst"), "rejected");
    EXPECT_EQ(outcomeOfBrokenInput("#EXTM3U\n#EXTINF:4,\n"), "rejected");
    EXPECT_EQ(outcomeOfBrokenInput("#EXTM3U\n#EXTINF:4"), "rejected");
}

TEST(VELHLSMediaStreamParse, GivesTheSameByteByByte) {
    const std::string text = exampleHead + "#EXTINF:6,\r\nfirst.ts\r\n" + examplePattern + "#EXT-X-VERSION:3";
    ByteByByte bytes(text, false);
    std::istream input(&bytes);
    const Stream stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(playlist::renderedMedia(*stream), playlist::renderedMedia(streamOf(text)));
}

TEST(VELHLSMediaStreamParse, ReadsSeveralPlaylistsFromOneStream) {
    std::istringstream input(
        "#EXTM3U\n#EXTINF:4,\nfirst.ts\n#EXT-X-ENDLIST\n#EXTM3U\n#EXTINF:4,\nsecond.ts\n");
    const Stream first = VELHLSMediaStream::parseMediaStream(input, nullptr);
    const Stream second = VELHLSMediaStream::parseMediaStream(input, nullptr);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(urisOf(*first), "first.ts");
    EXPECT_EQ(urisOf(*second), "second.ts");
    EXPECT_NE(first->hlsDefineMap, second->hlsDefineMap);
}

TEST(VELHLSMediaStreamParse, ReadsOnTwoThreadsAtOnce) {
    std::string text = exampleHead;
    for (int pattern = 0; pattern < 50; ++pattern)
        text += examplePattern + "#EXT-X-DISCONTINUITY\n#EXTINF:4.5,\nbetween.ts\n";
    const std::string expected = playlist::renderedMedia(streamOf(text));
    std::vector<std::string> seen(2);
    std::vector<std::thread> threads;
    for (std::string& result : seen) {
        threads.emplace_back([&result, &text] {
            for (int round = 0; round < 10; ++round) {
                VELHLSParsingStatus status;
                std::istringstream input(text);
                const Stream stream = VELHLSMediaStream::parseMediaStream(input, &status);
                result = stream == nullptr ? "rejected" : playlist::renderedMedia(*stream);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(seen[0], expected);
    EXPECT_EQ(seen[1], expected);
}

std::shared_ptr<VELHLSMediaSegment> segmentOf(double duration, const std::string& uri) {
    return std::make_shared<VELHLSMediaSegment>(duration, 0.0, 0, 0, "", nullptr, false, 0.0, nullptr,
                                                nullptr, uri, false, "", "");
}

TEST(VELHLSMediaStreamParse, ValidatesWhenEverySegmentDoes) {
    VELHLSMediaStream stream;
    EXPECT_TRUE(stream.validate());
    stream.version = -1;
    stream.targetDuration = -1.0;
    stream.mediaSequence = -1;
    EXPECT_TRUE(stream.validate());
    stream.segments = {segmentOf(4.0, "first.ts"), segmentOf(-4.0, "second.ts")};
    EXPECT_TRUE(stream.validate());
    for (const auto& bad :
         {segmentOf(0.0, "third.ts"), segmentOf(4.0, ""), std::shared_ptr<VELHLSMediaSegment>()}) {
        for (std::size_t place = 0; place <= 2; ++place) {
            VELHLSMediaStream invalid = stream;
            invalid.segments.insert(invalid.segments.begin() + static_cast<std::ptrdiff_t>(place), bad);
            EXPECT_FALSE(invalid.validate()) << place;
        }
    }
}

TEST(VELHLSMediaStreamParse, SharesTheDefineMapOfTheCaller) {
    VELHLSMediaStream first;
    VELHLSMediaStream second;
    const auto map = std::make_shared<VELHLSDefineMap>();
    first.setHLSDefineMap(map);
    second.setHLSDefineMap(map);
    EXPECT_EQ(first.hlsDefineMap, map);
    EXPECT_EQ(second.hlsDefineMap, map);
    first.setHLSDefineMap(nullptr);
    EXPECT_EQ(first.hlsDefineMap, nullptr);
    EXPECT_EQ(second.hlsDefineMap, map);
    EXPECT_TRUE(first.validate());
}

/// A playlist of so many segments, with URIs that need memory of their own.
Stream streamOfSegments(std::size_t count) {
    std::string text;
    for (std::size_t index = 0; index < count; ++index)
        text += "#EXTINF:4,\na/segment/with/a/long/uri/" + std::to_string(index) + ".ts\n";
    return playlist::parsedMedia(text);
}

TEST(VELHLSMediaStreamParse, EachSegmentLivesAsLongAsItIsHeld) {
    Stream stream = streamOfSegments(300);
    ASSERT_NE(stream, nullptr);
    std::vector<std::weak_ptr<VELHLSMediaSegment>> watched(stream->segments.begin(), stream->segments.end());
    const std::shared_ptr<VELHLSMediaSegment> held = stream->segments[150];
    EXPECT_EQ(held.use_count(), 2);
    stream = nullptr;
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(held->uri, "a/segment/with/a/long/uri/150.ts");
    for (std::size_t index = 0; index < watched.size(); ++index)
        EXPECT_EQ(watched[index].expired(), index != 150) << index;
}

TEST(VELHLSMediaStreamParse, SegmentsMayBeReleasedInAnyOrderFromAnyThread) {
    constexpr std::size_t counts[] = {1, 2, 4, 5, 12, 63, 64, 65, 1000};
    for (const std::size_t count : counts) {
        Stream stream = streamOfSegments(count);
        ASSERT_NE(stream, nullptr);
        auto segments = std::move(stream->segments);
        stream = nullptr;
        std::shuffle(segments.begin(), segments.end(), std::mt19937(3));
        const auto middle = segments.begin() + static_cast<std::ptrdiff_t>(count / 2);
        std::vector<std::shared_ptr<VELHLSMediaSegment>> others(std::make_move_iterator(middle),
                                                                std::make_move_iterator(segments.end()));
        segments.erase(middle, segments.end());
        std::thread other([&others] { others.clear(); });
        segments.clear();
        other.join();
    }
}

/// Dates of a few days, back and forth, some of them in forms that are not usual.
TEST(VELHLSMediaStreamParse, ReadsEachDateAsItIsReadAlone) {
    std::mt19937 random(11);
    const std::vector<std::string> days = {"2026-11-21", "2026-11-22", "2026-12-01", "2024-02-29",
                                           "2023-02-29", "1970-01-01", "9999-12-31", "2026-1-2",
                                           "2026-99-99", "0x7f-01-01"};
    const std::vector<std::string> seconds = {"00", "05.25",     "59.9996", "7",
                                              "61", "123456789", "1e1",     "00.123456789012345"};
    const std::vector<std::string> zones = {"Z", "+02:00", "-11:30", "+2:0", "Zulu", "+0200:0"};
    for (int round = 0; round < 300; ++round) {
        std::vector<double> expected;
        std::string text;
        for (int segment = 0; segment < 6; ++segment) {
            const std::string date = days[random() % days.size()] + "T" + std::to_string(10 + random() % 20) +
                                     ":" + std::to_string(10 + random() % 60) + ":" +
                                     seconds[random() % seconds.size()] + zones[random() % zones.size()];
            const double alone = VELHLSUtility::parseTimestamp(date);
            if (alone < 0.0) continue;
            expected.push_back(alone);
            text += "#EXT-X-PROGRAM-DATE-TIME:" + date + "\n#EXTINF:4,\nsegment.ts\n";
        }
        const Stream stream = playlist::parsedMedia(text);
        ASSERT_NE(stream, nullptr) << text;
        ASSERT_EQ(stream->segments.size(), expected.size());
        for (std::size_t index = 0; index < expected.size(); ++index)
            EXPECT_EQ(stream->segments[index]->programDateTime, expected[index]) << text;
    }
}

}  // namespace
