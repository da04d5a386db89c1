#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/media/VELHLSMediaPattern.h"
#include "velhls/media/VELHLSMediaSegment.h"

#include "tests/support/PlaylistText.h"

namespace {

using namespace std::string_literals;
using playlist::lines;
using Segment = std::shared_ptr<VELHLSMediaSegment>;
using Pattern = std::shared_ptr<VELHLSMediaPattern>;

constexpr std::uint64_t largestSequenceNumber = std::numeric_limits<std::uint64_t>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// An error that no parse stores.
constexpr auto earlierError = static_cast<VELHLSParsingError>(77);

static_assert(std::is_same_v<decltype(VELHLSMediaSegment::parseNextSegment(
                                 std::declval<const Segment&>(), std::declval<const std::string&>(),
                                 std::declval<std::istream&>(), std::declval<Pattern&>(), std::uint64_t(),
                                 std::uint64_t(), std::shared_ptr<VELHLSDefineMap>(),
                                 std::declval<VELHLSParsingStatus*>())),
                             Segment>);

/// One call of parseNextSegment: what goes in, and what the call changes.
struct Call {
    Call() {
        status.error = earlierError;
        status.message = "earlier";
    }

    /// Reads the text: its first line, without the line feed, as the line that was read already, the rest as
    /// the stream.
    Segment read(const std::string& text) {
        const std::size_t firstEnd = text.find('\n');
        input.str(firstEnd == std::string::npos ? "" : text.substr(firstEnd + 1));
        return readLine(text.substr(0, firstEnd));
    }

    Segment readLine(const std::string& line) {
        return VELHLSMediaSegment::parseNextSegment(previous, line, input, pattern, firstMediaSequenceNumber,
                                                    firstDiscontinuitySequenceNumber, defines, &status);
    }

    /// What the call has left in the stream; only the first time.
    std::string unread() {
        using Characters = std::istreambuf_iterator<char>;
        return std::string(Characters(input.rdbuf()), Characters());
    }

    Segment previous;
    std::istringstream input;
    Pattern pattern;
    std::uint64_t firstMediaSequenceNumber = 0;
    std::uint64_t firstDiscontinuitySequenceNumber = 0;
    std::shared_ptr<VELHLSDefineMap> defines = std::make_shared<VELHLSDefineMap>();
    VELHLSParsingStatus status;
};

void expectStatusUntouched(const Call& call) {
    EXPECT_FALSE(call.status.hasMediaPatterns);
    EXPECT_EQ(call.status.error, earlierError);
    EXPECT_EQ(call.status.message, "earlier");
    EXPECT_EQ(call.status.metrics, nullptr);
}

void expectPatternError(const Call& call, const std::string& line) {
    EXPECT_TRUE(call.status.hasMediaPatterns);
    EXPECT_EQ(call.status.error, VELHLSParsingErrorMediaPattern);
    EXPECT_EQ(call.status.message, line);
    EXPECT_EQ(call.status.metrics, nullptr);
}

/// The segment that the text gives without one before it, and with a status and defines that are left as they
/// are.
Segment segmentOf(const std::string& text) {
    SCOPED_TRACE(testing::PrintToString(text.substr(0, 200)));
    Call call;
    Segment segment = call.read(text);
    EXPECT_EQ(call.pattern, nullptr);
    EXPECT_TRUE(call.defines->empty());
    expectStatusUntouched(call);
    return segment;
}

/// The segments of the text, each with the one before it as its previous one; null for the one that fails,
/// which is the last.
std::vector<Segment> segmentsOf(const std::string& text) {
    Call call;
    std::vector<Segment> segments = {call.read(text)};
    std::string line;
    while (segments.back() != nullptr && std::getline(call.input, line)) {
        call.previous = segments.back();
        segments.push_back(call.readLine(line));
    }
    return segments;
}

std::string rendered(const Segment& segment) {
    std::string out;
    if (segment == nullptr || segment->render(out, true, true) != 0) return "-1";
    return out;
}

std::string written(const std::shared_ptr<VELHLSByteRange>& range) {
    if (range == nullptr) return "none";
    return std::to_string(range->length) + "@" + std::to_string(range->offset);
}

/// A segment before the one that is read, with everything in it.
Segment fullSegment() {
    auto range = std::make_shared<VELHLSByteRange>();
    range->length = 5;
    auto key = std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::AES128, "k", "", "",
                                                      std::vector<std::int32_t>());
    auto map = std::make_shared<VELHLSMISMap>();
    map->uri = "init.mp4";
    return std::make_shared<VELHLSMediaSegment>(6.5, 20.0, 10, 3, ",title", range, true, 1000.0, key, map,
                                                "previous.ts", true, "30", "10/30");
}

/// Expects null for the line, as the first of a segment and as a later one, with nothing read after it and
/// nothing recorded.
void expectEndsSegment(const std::string& line) {
    SCOPED_TRACE(testing::PrintToString(line.substr(0, 200)));
    const std::string after = "#EXTINF:5,\nsegment.ts\n";
    Call first;
    EXPECT_EQ(first.read(line + "\n" + after), nullptr);
    EXPECT_EQ(first.unread(), after);
    EXPECT_EQ(first.pattern, nullptr);
    EXPECT_TRUE(first.defines->empty());
    expectStatusUntouched(first);

    Call later;
    EXPECT_EQ(later.read("#EXTINF:5,\n" + line + "\n" + after), nullptr);
    EXPECT_EQ(later.unread(), after);
    EXPECT_EQ(later.pattern, nullptr);
    EXPECT_TRUE(later.defines->empty());
    expectStatusUntouched(later);
}

/// Expects that the line throws, as the first of a segment and as a later one, and records nothing.
template <typename Exception>
void expectThrows(const std::string& line) {
    SCOPED_TRACE(testing::PrintToString(line.substr(0, 200)));
    Call first;
    EXPECT_THROW(first.read(line + "\nsegment.ts\n"), Exception);
    EXPECT_EQ(first.unread(), "segment.ts\n");
    EXPECT_EQ(first.pattern, nullptr);
    expectStatusUntouched(first);

    Call later;
    EXPECT_THROW(later.read("#EXT-X-CUE-IN\n" + line + "\nsegment.ts\n"), Exception);
    EXPECT_EQ(later.unread(), "segment.ts\n");
    EXPECT_EQ(later.pattern, nullptr);
    expectStatusUntouched(later);
}

// --- The whole

TEST(VELHLSMediaSegmentParse, ReadsDurationTitleAndUri) {
    EXPECT_EQ(rendered(segmentOf("#EXTINF:10,\nseg.ts\n")), "#EXTINF:10.000000,,\nseg.ts\n");
}

TEST(VELHLSMediaSegmentParse, FillsEveryMember) {
    const Segment segment =
        segmentOf(lines({"#EXT-X-DISCONTINUITY", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"",
                         "#EXT-X-MAP:URI=\"init.mp4\"", "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:15.250Z",
                         "#EXT-X-CUE-OUT:30", "#EXT-X-CUE-OUT-CONT:10/30", "#EXT-X-CUE-IN",
                         "#EXTINF:6.006,Intro", "#EXT-X-BYTERANGE:1024@2048", "seg1.ts"}));
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->duration, 6.006);
    EXPECT_EQ(segment->startTime, 0.0);
    EXPECT_EQ(segment->mediaSequenceNumber, 0U);
    EXPECT_EQ(segment->discontinuitySequenceNumber, 1U);
    EXPECT_EQ(segment->title, ",Intro");
    EXPECT_EQ(written(segment->byteRange), "1024@2048");
    EXPECT_TRUE(segment->discontinuity);
    ASSERT_NE(segment->protectionData, nullptr);
    EXPECT_EQ(segment->protectionData->method, VELHLSProtectionData::AES128);
    EXPECT_EQ(segment->protectionData->uri, "k");
    ASSERT_NE(segment->misMap, nullptr);
    EXPECT_EQ(segment->misMap->uri, "init.mp4");
    EXPECT_EQ(segment->programDateTime, 1577872815.25);
    EXPECT_EQ(segment->uri, "seg1.ts");
    EXPECT_TRUE(segment->cueIn);
    EXPECT_EQ(segment->cueOut, "30");
    EXPECT_EQ(segment->cueOutCont, "10/30");
}

TEST(VELHLSMediaSegmentParse, LeavesTheRestEmpty) {
    const Segment segment = segmentOf("#EXTINF:10\nseg.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->startTime, 0.0);
    EXPECT_EQ(segment->mediaSequenceNumber, 0U);
    EXPECT_EQ(segment->discontinuitySequenceNumber, 0U);
    EXPECT_EQ(segment->title, "");
    EXPECT_EQ(segment->byteRange, nullptr);
    EXPECT_FALSE(segment->discontinuity);
    EXPECT_EQ(segment->protectionData, nullptr);
    EXPECT_EQ(segment->misMap, nullptr);
    EXPECT_EQ(segment->programDateTime, 0.0);
    EXPECT_FALSE(segment->cueIn);
    EXPECT_EQ(segment->cueOut, "");
    EXPECT_EQ(segment->cueOutCont, "");
}

TEST(VELHLSMediaSegmentParse, ReadsTheTagsInAnyOrder) {
    std::vector<std::string> tags = {"#EXT-X-BYTERANGE:1024@0",
                                     "#EXT-X-CUE-IN",
                                     "#EXT-X-DISCONTINUITY",
                                     "#EXT-X-KEY:METHOD=NONE",
                                     "#EXT-X-MAP:URI=\"i\"",
                                     "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:15Z",
                                     "#EXTINF:10"};
    std::string expected;
    for (std::size_t rotation = 0; rotation < tags.size(); ++rotation) {
        std::string text;
        for (std::size_t position = 0; position < tags.size(); ++position)
            text += tags[(position + rotation) % tags.size()] + "\n";
        const std::string out = rendered(segmentOf(text + "seg.ts\n"));
        if (rotation == 0) expected = out;
        EXPECT_EQ(out, expected) << text;
    }
    EXPECT_EQ(expected, lines({"#EXT-X-DISCONTINUITY", "#EXT-X-KEY:METHOD=NONE", "#EXT-X-MAP:URI=\"i\"",
                               "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:15.000+00:00", "#EXTINF:10.000000",
                               "#EXT-X-BYTERANGE:1024@0", "seg.ts"}));
}

TEST(VELHLSMediaSegmentParse, StopsAfterTheUri) {
    Call call;
    ASSERT_NE(call.read("#EXTINF:10,\nsegment.ts\n#EXT-X-ENDLIST\nmore\n"), nullptr);
    EXPECT_TRUE(call.input.good());
    EXPECT_EQ(call.unread(), "#EXT-X-ENDLIST\nmore\n");
}

TEST(VELHLSMediaSegmentParse, StopsAfterAUriThatEndsTheInput) {
    Call call;
    ASSERT_NE(call.read("#EXTINF:10,\nsegment.ts\n"), nullptr);
    EXPECT_TRUE(call.input.good());
    EXPECT_EQ(call.unread(), "");
}

TEST(VELHLSMediaSegmentParse, ReadsWithNullStatusAndNullDefines) {
    const Segment none;
    Pattern pattern;
    std::istringstream input("#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"\n#EXT-X-CUE-IN\nsegment.ts\n");
    const Segment segment =
        VELHLSMediaSegment::parseNextSegment(none, "#EXTINF:10,", input, pattern, 4, 5, nullptr, nullptr);
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->mediaSequenceNumber, 4U);
    EXPECT_EQ(segment->discontinuitySequenceNumber, 5U);
    EXPECT_EQ(segment->uri, "segment.ts");
    EXPECT_EQ(pattern, nullptr);
}

TEST(VELHLSMediaSegmentParse, FailsWithNullStatusAndNullDefines) {
    for (const char* line : {"#EXT-X-ENDLIST", "#EXTINF:,", "#EXT-X-DEFINE:", "#EXT-X-DEFINE:NAME=\"n\"",
                             "#ZOR-PATTERN_START", "#ZOR-PATTERN_END:p", "#ZOR-DEFINE_INCREMENT:x", "uri"}) {
        SCOPED_TRACE(line);
        Pattern pattern;
        std::istringstream input("unread");
        EXPECT_EQ(VELHLSMediaSegment::parseNextSegment(nullptr, line, input, pattern, 0, 0, nullptr, nullptr),
                  nullptr);
        EXPECT_EQ(pattern, nullptr);
    }
}

TEST(VELHLSMediaSegmentParse, RecordsNothingOnSuccess) {
    Call call;
    const auto metrics = std::make_shared<VELHLSParsingMetrics>();
    call.status.metrics = metrics;
    call.status.hasMediaPatterns = true;
    ASSERT_NE(call.read("#EXTINF:10,\nsegment.ts\n"), nullptr);
    EXPECT_TRUE(call.status.hasMediaPatterns);
    EXPECT_EQ(call.status.error, earlierError);
    EXPECT_EQ(call.status.message, "earlier");
    EXPECT_EQ(call.status.metrics, metrics);
}

TEST(VELHLSMediaSegmentParse, LeavesThePatternOfTheCallerWhereThereIsNone) {
    const auto earlier = std::make_shared<VELHLSMediaPattern>("earlier", "", 0);
    for (const char* text : {"#EXTINF:10,\nsegment.ts\n", "#EXT-X-ENDLIST\n", "#ZOR-PATTERN_START\n",
                             "#ZOR-PATTERN_END:p\n", "segment.ts\n", ""}) {
        Call call;
        call.pattern = earlier;
        static_cast<void>(call.read(text));
        EXPECT_EQ(call.pattern, earlier) << text;
    }
}

// --- The stream

TEST(VELHLSMediaSegmentParse, LooksAtNothingWhenTheStreamIsNotGood) {
    const auto earlier = std::make_shared<VELHLSMediaPattern>("earlier", "", 0);
    for (const auto state : {std::ios::eofbit, std::ios::failbit, std::ios::badbit}) {
        for (const char* line :
             {"#EXTINF:10,", "#EXTINF:abc,", "segment.ts", "#ZOR-PATTERN_START:p", "#ZOR-PATTERN_START",
              "#ZOR-PATTERN_END:p", "#ZOR-DEFINE_INCREMENT:n,1", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"",
              "#EXT-X-BYTERANGE:9999999999999999999"}) {
            SCOPED_TRACE(line);
            Call call;
            call.pattern = earlier;
            call.input.str("segment.ts\n");
            call.input.setstate(state);
            EXPECT_EQ(call.readLine(line), nullptr);
            EXPECT_EQ(call.input.rdstate(), state);
            EXPECT_EQ(call.unread(), "segment.ts\n");
            EXPECT_EQ(call.pattern, earlier);
            EXPECT_TRUE(call.defines->empty());
            expectStatusUntouched(call);
        }
    }
}

TEST(VELHLSMediaSegmentParse, DoesNotLookAtALastLineWithoutLineFeed) {
    for (const char* text :
         {"#EXTINF:10,\nsegment.ts", "#EXTINF:10,\nsegment.ts\r", "#EXTINF:10,\n#EXT-X-ENDLIST",
          "#EXTINF:10,\n#EXTINF:abc,", "#EXTINF:10,\n#ZOR-PATTERN_START:p", "#EXTINF:10,\n#ZOR-PATTERN_END:p",
          "#EXTINF:10,\n#EXT-X-DEFINE:NAME=n,VALUE=1", "#EXTINF:10,\na.ts", "#EXTINF:10,\n", "#EXTINF:10,"}) {
        SCOPED_TRACE(text);
        Call call;
        EXPECT_EQ(call.read(text), nullptr);
        EXPECT_TRUE(call.input.eof());
        EXPECT_EQ(call.unread(), "");
        EXPECT_EQ(call.pattern, nullptr);
        EXPECT_TRUE(call.defines->empty());
        expectStatusUntouched(call);
    }
}

TEST(VELHLSMediaSegmentParse, ReachesTheEndWithoutAUri) {
    for (const char* text :
         {"#EXTINF:10,\n", "#EXTINF:10,\n#EXT-X-CUE-IN\n", "#EXTINF:10,\n\n\n", "#EXTINF:10,\n   \n",
          "#EXTINF:10,\n# comment\n", "#EXT-X-DISCONTINUITY\n", "\n", ""}) {
        SCOPED_TRACE(text);
        Call call;
        EXPECT_EQ(call.read(text), nullptr);
        EXPECT_TRUE(call.input.eof());
        expectStatusUntouched(call);
    }
}

TEST(VELHLSMediaSegmentParse, ReadsLinesWithCarriageReturnsLikeLinesWithout) {
    const std::string text =
        "#EXTINF:6,Intro\n#EXT-X-DISCONTINUITY\n#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n"
        "#EXT-X-CUE-OUT:30\n#EXT-X-BYTERANGE:5@1\n\nsegment.ts\n";
    std::string withReturns = text;
    for (std::size_t at = withReturns.find('\n'); at != std::string::npos;
         at = withReturns.find('\n', at + 2))
        withReturns.insert(at, 1, '\r');
    // The caller has taken the first line's carriage return.
    withReturns.erase(withReturns.find('\r'), 1);
    EXPECT_EQ(rendered(segmentOf(withReturns)), rendered(segmentOf(text)));
    EXPECT_EQ(segmentOf(withReturns)->cueOut, "30");
}

TEST(VELHLSMediaSegmentParse, RemovesCarriageReturnsAnywhereInTheLinesItReads) {
    const Segment segment = segmentOf(
        "#EXT-X-CUE-IN\n\r#EXT-X-DISCON\rTINUITY\r\r\n#EXT\rINF:1\r0,ti\rtle\r\n\r\nse\rgment\r.ts\r\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_TRUE(segment->discontinuity);
    EXPECT_EQ(segment->duration, 10.0);
    EXPECT_EQ(segment->title, ",title");
    EXPECT_EQ(segment->uri, "segment.ts");
}

TEST(VELHLSMediaSegmentParse, TakesTheFirstLineAsItIs) {
    EXPECT_EQ(segmentOf("#EXTINF:10,ti\rtle\r\nsegment.ts\n")->title, ",ti\rtle\r");
    EXPECT_EQ(segmentOf("#EXT-X-DISCONTINUITY\r\n#EXTINF:10,\nsegment.ts\n"), nullptr);
}

TEST(VELHLSMediaSegmentParse, KeepsNullBytes) {
    const Segment segment =
        segmentOf("#EXTINF:10\0.5,a\0b\n#EXT-X-CUE-OUT:c\0d\n#EXT-X-MAP:URI=\"e\0f\"\nsegment\0.ts\n"s);
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->duration, 10.0);
    EXPECT_EQ(segment->title, ",a\0b"s);
    EXPECT_EQ(segment->cueOut, "c\0d"s);
    EXPECT_EQ(segment->misMap->uri, "e\0f"s);
    EXPECT_EQ(segment->uri, "segment\0.ts"s);
}

TEST(VELHLSMediaSegmentParse, TellsTagsWithNullBytesFromTags) {
    expectEndsSegment("#EXTINF\0:10,"s);
    expectEndsSegment("#EXT-X-DISCONTINUITY\0"s);
    expectEndsSegment("#EXT\0"s);
    EXPECT_EQ(segmentOf("#EXTINF:10,\n\0#EXTINF:20,\n"s)->uri, "\0#EXTINF:20,"s);
}

TEST(VELHLSMediaSegmentParse, ReadsLinesOfAMegabyte) {
    const std::string longText(1 << 20, 'x');
    const Segment segment =
        segmentOf("#EXTINF:10," + longText + "\n# " + longText + "\n#EXT-X-CUE-OUT:" + longText +
                  "\n#EXT-X-KEY:METHOD=" + "AES-128,URI=\"" + longText + "\"\n" + std::string(1 << 20, ' ') +
                  "\n" + longText + "\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_TRUE(segment->title == "," + longText);
    EXPECT_TRUE(segment->cueOut == longText);
    EXPECT_TRUE(segment->protectionData->uri == longText);
    EXPECT_TRUE(segment->uri == longText);
    EXPECT_EQ(segment->byteRange, nullptr);
    expectEndsSegment("#EXT" + longText);
    expectEndsSegment("#EXT:" + longText);
}

// --- The URI

struct UriRow {
    std::string line;
    std::string uri;
};

TEST(VELHLSMediaSegmentParse, TakesTheUriWithoutTrailingBlanks) {
    const std::vector<UriRow> rows = {
        {"segment.ts", "segment.ts"},
        {"segment.ts ", "segment.ts"},
        {"segment.ts \r", "segment.ts"},
        {"segment.ts \t \r \t", "segment.ts"},
        {"  segment.ts", "  segment.ts"},
        {"\tsegment.ts\t", "\tsegment.ts"},
        {"seg ment.ts", "seg ment.ts"},
        {"segment.ts\v", "segment.ts\v"},
        {"segment.ts\f ", "segment.ts\f"},
        {" #EXTINF:10,", " #EXTINF:10,"},
        {"EXTINF:10,", "EXTINF:10,"},
        {"segment{$n}.ts", "segment{$n}.ts"},
        {"segment.ts#EXT", "segment.ts#EXT"},
        {"\xEF\xBB\xBF#EXTM3U", "\xEF\xBB\xBF#EXTM3U"},
        {"\v     ", "\v"},
    };
    for (const UriRow& row : rows) {
        // The byte range is explicit so that short URIs are none of this test's concern.
        const Segment segment = segmentOf("#EXTINF:10,\n#EXT-X-BYTERANGE:5@1\n" + row.line + "\n");
        ASSERT_NE(segment, nullptr) << testing::PrintToString(row.line);
        EXPECT_EQ(segment->uri, row.uri);
    }
}

TEST(VELHLSMediaSegmentParse, DoesNotSubstituteVariables) {
    Call call;
    const Segment segment =
        call.read(lines({"#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"", "#EXTINF:10,{$n}", "#EXT-X-CUE-OUT:{$n}",
                         "#EXT-X-MAP:URI=\"{$n}\"", "segment{$n}.ts"}));
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->uri, "segment{$n}.ts");
    EXPECT_EQ(segment->title, ",{$n}");
    EXPECT_EQ(segment->cueOut, "{$n}");
    EXPECT_EQ(segment->misMap->uri, "{$n}");
}

TEST(VELHLSMediaSegmentParse, SkipsBlankLines) {
    for (const char* blank : {"", " ", "   ", "\t", "\r", " \t\r ", "\n\n"}) {
        const Segment segment =
            segmentOf("#EXTINF:10,\n"s + blank + "\n#EXT-X-DISCONTINUITY\n" + blank + "\nsegment.ts\n");
        ASSERT_NE(segment, nullptr) << testing::PrintToString(blank);
        EXPECT_EQ(segment->uri, "segment.ts");
        EXPECT_TRUE(segment->discontinuity);
    }
}

TEST(VELHLSMediaSegmentParse, SkipsABlankFirstLine) {
    for (const char* blank : {"", "  ", "\t", "\r"}) {
        EXPECT_NE(segmentOf(blank + "\n#EXTINF:10,\nsegment.ts\n"s), nullptr)
            << testing::PrintToString(blank);
    }
}

TEST(VELHLSMediaSegmentParse, GivesNullForAUriWithoutDuration) {
    for (const char* first : {"segment.ts", "a", "{$n}"}) {
        Call call;
        EXPECT_EQ(call.read(first + "\n#EXTINF:10,\nsegment.ts\n"s), nullptr) << first;
        EXPECT_EQ(call.unread(), "#EXTINF:10,\nsegment.ts\n");
        expectStatusUntouched(call);
    }
    EXPECT_EQ(segmentOf("#EXT-X-BYTERANGE:5@1\nsegment.ts\n"), nullptr);
    EXPECT_EQ(segmentOf("#EXT-X-DISCONTINUITY\nsegment.ts\n#EXTINF:10,\n"), nullptr);
}

TEST(VELHLSMediaSegmentParse, ThrowsForAShortUriWithoutByteRange) {
    for (const char* uri : {"a", "a.ts", "00.ts", "12345", "a.ts            ", "ab.ts\r"}) {
        SCOPED_TRACE(testing::PrintToString(uri));
        Call call;
        EXPECT_THROW(call.read("#EXTINF:10,\n"s + uri + "\n#EXT-X-ENDLIST\n"), std::out_of_range);
        EXPECT_EQ(call.unread(), "#EXT-X-ENDLIST\n");
        EXPECT_EQ(call.pattern, nullptr);
        expectStatusUntouched(call);
    }
}

TEST(VELHLSMediaSegmentParse, ReadsAShortUriWithByteRange) {
    for (const std::string& uri : {"a"s, "a.ts"s, "12345"s}) {
        const Segment segment = segmentOf("#EXTINF:10,\n#EXT-X-BYTERANGE:5@1\n" + uri + "\n");
        ASSERT_NE(segment, nullptr) << uri;
        EXPECT_EQ(segment->uri, uri);
        EXPECT_EQ(written(segment->byteRange), "5@1");
    }
}

TEST(VELHLSMediaSegmentParse, ReadsAUriOfSixCharacters) {
    const Segment segment = segmentOf("#EXTINF:10,\nseg.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->byteRange, nullptr);
}

TEST(VELHLSMediaSegmentParse, DoesNotLookAtAShortUriWithoutDuration) {
    EXPECT_EQ(segmentOf("#EXTINF:0,\na.ts\n"), nullptr);
    EXPECT_EQ(segmentOf("a.ts\n"), nullptr);
}

// --- EXTINF

struct DurationRow {
    std::string text;
    double duration;
};

TEST(VELHLSMediaSegmentParse, ReadsTheDurationUpToTheFirstComma) {
    const std::vector<DurationRow> rows = {
        {"10", 10.0},
        {"6.006", 6.006},
        {"10.5abc", 10.5},
        {" 10", 10.0},
        {"+10", 10.0},
        {"-4", -4.0},
        {"0x10", 16.0},
        {"0x1.8p1", 3.0},
        {"1e3", 1000.0},
        {"1E3", 1000.0},
        {"1e-3", 0.001},
        {"1e", 1.0},
        {"1e+", 1.0},
        {".5", 0.5},
        {"5.", 5.0},
        {"10 ", 10.0},
        {"1 0", 1.0},
        {"\t10", 10.0},
        {"\v\f10", 10.0},
        {"10;5", 10.0},
        {"00010", 10.0},
        {"1.2.3", 1.2},
        {"10:5", 10.0},
        {"10\"", 10.0},
        {"10\0007"s, 10.0},
        {"1e308", 1e308},
        {"inf", infinity},
        {"-inf", -infinity},
        {"INFINITY", infinity},
        {"infinite", infinity},
        {"0.1", 0.1},
        {"9.2233720368547758e18", 9223372036854775808.0},
        {std::string(1 << 20, '0') + "7", 7.0},
    };
    for (const DurationRow& row : rows) {
        for (const char* title : {"", ",", ",Intro"}) {
            SCOPED_TRACE(testing::PrintToString(row.text.substr(0, 50) + title));
            const Segment segment = segmentOf("#EXTINF:" + row.text + title + "\nsegment.ts\n");
            ASSERT_NE(segment, nullptr);
            EXPECT_EQ(segment->duration, row.duration);
            EXPECT_EQ(segment->title, title);
        }
    }
}

TEST(VELHLSMediaSegmentParse, ReadsADurationThatIsNotANumber) {
    for (const char* text : {"nan", "NaN", "nan(123)", "nanosecond"}) {
        const Segment segment = segmentOf("#EXTINF:"s + text + ",\nsegment.ts\n");
        ASSERT_NE(segment, nullptr) << text;
        EXPECT_TRUE(std::isnan(segment->duration)) << text;
        EXPECT_EQ(rendered(segment), "#EXTINF:nan,,\nsegment.ts\n");
    }
}

TEST(VELHLSMediaSegmentParse, RendersAnInfiniteDurationThatItRead) {
    EXPECT_EQ(rendered(segmentOf("#EXTINF:inf\nsegment.ts\n")), "#EXTINF:inf\nsegment.ts\n");
    EXPECT_EQ(rendered(segmentOf("#EXTINF:-inf\nsegment.ts\n")), "#EXTINF:-inf\nsegment.ts\n");
}

TEST(VELHLSMediaSegmentParse, GivesNullForADurationOfZero) {
    for (const char* text :
         {"0", "0.0", "-0", "+0", "0abc", "0x", "0x0", "0e5", ".0", "00000", " 0", "0e999"}) {
        for (const char* title : {"", ",", ",Intro"}) {
            Call call;
            EXPECT_EQ(call.read("#EXTINF:"s + text + title + "\nsegment.ts\n#EXT-X-ENDLIST\n"), nullptr)
                << text;
            EXPECT_EQ(call.unread(), "#EXT-X-ENDLIST\n");
            expectStatusUntouched(call);
        }
    }
}

TEST(VELHLSMediaSegmentParse, GivesNullForAnEmptyDurationBeforeAComma) {
    for (const char* line : {"#EXTINF:,", "#EXTINF:,x", "#EXTINF:,10", "#EXTINF:,,"}) {
        expectEndsSegment(line);
    }
}

TEST(VELHLSMediaSegmentParse, ThrowsForADurationThatDoesNotBeginWithANumber) {
    for (const std::string& text : {""s,
                                    " "s,
                                    "."s,
                                    "+"s,
                                    "-"s,
                                    "-."s,
                                    "+-1"s,
                                    "--4"s,
                                    "abc"s,
                                    "e5"s,
                                    ":5"s,
                                    "\"10\""s,
                                    "$1"s,
                                    "in"s,
                                    "na"s,
                                    "\0"s,
                                    "\00010"s,
                                    ";10"s,
                                    "{$n}"s,
                                    "\xC2\xA0"
                                    "10"s,
                                    std::string(1 << 20, 'x')}) {
        expectThrows<std::invalid_argument>("#EXTINF:" + text);
        if (!text.empty()) expectThrows<std::invalid_argument>("#EXTINF:" + text + ",Intro");
    }
}

TEST(VELHLSMediaSegmentParse, ThrowsForADurationOutOfRange) {
    for (const std::string& text :
         {"1e999"s, "-1e999"s, "1e-999"s, "1e309"s, "0x1p99999"s, std::string(1 << 20, '9')}) {
        expectThrows<std::out_of_range>("#EXTINF:" + text);
        expectThrows<std::out_of_range>("#EXTINF:" + text + ",Intro");
    }
}

struct TitleRow {
    std::string value;
    std::string title;
};

TEST(VELHLSMediaSegmentParse, TheTitleBeginsAtTheFirstCommaWhateverStandsAfterTheNumber) {
    for (int byte = 1; byte < 256; ++byte) {
        const char character = static_cast<char>(byte);
        if (std::string_view(",\r\n").find(character) != std::string_view::npos) continue;
        std::istringstream input("segment.ts\n");
        std::shared_ptr<VELHLSMediaPattern> pattern;
        const auto segment = VELHLSMediaSegment::parseNextSegment(
            nullptr, std::string("#EXTINF:6") + character + ",Title", input, pattern, 0, 0, nullptr, nullptr);
        ASSERT_NE(segment, nullptr) << byte;
        EXPECT_EQ(segment->title, ",Title") << byte;
    }
}

TEST(VELHLSMediaSegmentParse, KeepsTheCommaOfTheTitle) {
    const std::vector<TitleRow> rows = {
        {"10", ""},
        {"10,", ","},
        {"10,Intro", ",Intro"},
        {"10, Intro ", ", Intro "},
        {"10,,", ",,"},
        {"10,a,b", ",a,b"},
        {"10,a:b", ",a:b"},
        {"10,#EXTINF:5", ",#EXTINF:5"},
        {"10 ,x", ",x"},
        {"10,\"x\"", ",\"x\""},
        {"10x", ""},
        {"10,\xE2\x82\xAC", ",\xE2\x82\xAC"},
    };
    for (const TitleRow& row : rows) {
        const Segment segment = segmentOf("#EXTINF:" + row.value + "\nsegment.ts\n");
        ASSERT_NE(segment, nullptr) << row.value;
        EXPECT_EQ(segment->title, row.title) << row.value;
        EXPECT_EQ(rendered(segment),
                  "#EXTINF:10.000000" + (row.title.empty() ? "" : "," + row.title) + "\nsegment.ts\n");
    }
}

TEST(VELHLSMediaSegmentParse, ReplacesDurationAndTitleByLaterOnes) {
    EXPECT_EQ(rendered(segmentOf("#EXTINF:10,Intro\n#EXTINF:5\nsegment.ts\n")),
              "#EXTINF:5.000000\nsegment.ts\n");
    EXPECT_EQ(rendered(segmentOf("#EXTINF:0,\n#EXTINF:5,x\nsegment.ts\n")),
              "#EXTINF:5.000000,,x\nsegment.ts\n");
    EXPECT_EQ(segmentOf("#EXTINF:5,x\n#EXTINF:0,\nsegment.ts\n"), nullptr);
}

// --- EXT-X-BYTERANGE

TEST(VELHLSMediaSegmentParse, ReadsAByteRange) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"1024@0", "1024@0"},
        {"1024", "1024@-1"},
        {"0", "0@-1"},
        {"0@7", "0@7"},
        {"9223372036854775807@1", "9223372036854775807@1"},
    };
    for (const auto& row : rows) {
        const Segment segment = segmentOf("#EXTINF:10\n#EXT-X-BYTERANGE:" + row.first + "\nsegment.ts\n");
        ASSERT_NE(segment, nullptr) << row.first;
        EXPECT_EQ(written(segment->byteRange), row.second);
    }
}

TEST(VELHLSMediaSegmentParse, GivesNullForAMalformedByteRange) {
    for (const char* value :
         {"", "@", "@5", "10@", "10@5@6", "1 024", "10-20", "-1", "x", "10@x", " 10", "10 "}) {
        expectEndsSegment("#EXT-X-BYTERANGE:"s + value);
    }
}

TEST(VELHLSMediaSegmentParse, ThrowsForAByteRangeBeyondSixtyFourBits) {
    expectThrows<std::out_of_range>("#EXT-X-BYTERANGE:9223372036854775808");
    expectThrows<std::out_of_range>("#EXT-X-BYTERANGE:1@9223372036854775808");
}

TEST(VELHLSMediaSegmentParse, ReplacesTheByteRangeByALaterOne) {
    const Segment segment = segmentOf("#EXTINF:10\n#EXT-X-BYTERANGE:5@1\n#EXT-X-BYTERANGE:7\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(written(segment->byteRange), "7@-1");
}

TEST(VELHLSMediaSegmentParse, TakesTheByteRangeOfTheUriWithoutTheTag) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"v/range/1000-1999", "1000@1000"},
        {"v/range/500", "500@-1"},
        {"v/range/0-99/seg.ts", "none"},
        {"v/range/0-99 \t", "100@0"},
        {"abcdef42", "42@-1"},
        {"video_10", "10@-1"},
        {"v/range/200-199", "0@200"},
        {"v/range/1-2/range/3-3", "1@3"},
        {"segment.ts", "none"},
    };
    for (const auto& row : rows) {
        const Segment segment = segmentOf("#EXTINF:10\n" + row.first + "\n");
        ASSERT_NE(segment, nullptr) << row.first;
        EXPECT_EQ(written(segment->byteRange), row.second) << row.first;
    }
}

TEST(VELHLSMediaSegmentParse, PrefersTheTagToTheByteRangeOfTheUri) {
    for (const char* uri : {"v/range/0-99", "v/range/200-100", "v/range/9223372036854775808"}) {
        const Segment segment = segmentOf("#EXTINF:10\n#EXT-X-BYTERANGE:5@1\n"s + uri + "\n");
        ASSERT_NE(segment, nullptr) << uri;
        EXPECT_EQ(written(segment->byteRange), "5@1") << uri;
    }
}

TEST(VELHLSMediaSegmentParse, DropsASegmentWhoseUriHasItsLastByteBeforeItsFirst) {
    EXPECT_EQ(segmentOf("#EXTINF:10\nv/range/200-100\n"), nullptr);
}

TEST(VELHLSMediaSegmentParse, ThrowsForAByteRangeOfTheUriBeyondSixtyFourBits) {
    Call call;
    EXPECT_THROW(call.read("#EXTINF:10\nv/range/9223372036854775808\nafter\n"), std::out_of_range);
    EXPECT_EQ(call.unread(), "after\n");
    expectStatusUntouched(call);
}

// --- EXT-X-KEY and EXT-X-MAP

TEST(VELHLSMediaSegmentParse, ReplacesTheKeyByALaterOne) {
    const Segment segment =
        segmentOf(lines({"#EXT-X-KEY:METHOD=AES-128,URI=\"first\",KEYFORMAT=\"f\"",
                         "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"second\"", "#EXTINF:10", "segment.ts"}));
    EXPECT_EQ(rendered(segment),
              "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"second\"\n#EXTINF:10.000000\nsegment.ts\n");
}

TEST(VELHLSMediaSegmentParse, ReadsAKeyWithColonsInItsUri) {
    const Segment segment =
        segmentOf("#EXT-X-KEY:METHOD=AES-128,URI=\"http://a:1/k\"\n#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->protectionData->uri, "http://a:1/k");
    EXPECT_EQ(segment->protectionData->keyFormatVersions, std::vector<std::int32_t>{1});
}

TEST(VELHLSMediaSegmentParse, GivesNullForAMalformedKey) {
    for (const char* value :
         {"", "METHOD", "METHOD=", "METHOD=AES-128", "METHOD=aes-128,URI=\"k\"", "URI=\"k\"",
          "METHOD=AES-128,URI=\"\"", "METHOD=AES-128,URI=\"k\",", "METHOD=NONE,",
          "METHOD=AES-128,URI=\"k\",IV=0x12", "METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"a\""}) {
        expectEndsSegment("#EXT-X-KEY:"s + value);
    }
}

TEST(VELHLSMediaSegmentParse, DoesNotTakeASessionKey) {
    expectEndsSegment("#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"");
}

TEST(VELHLSMediaSegmentParse, ThrowsForKeyFormatVersionsThatAreNoNumbers) {
    expectThrows<std::invalid_argument>("#EXT-X-KEY:METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"1/\"");
    expectThrows<std::invalid_argument>("#EXT-X-KEY:METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"\"");
    expectThrows<std::out_of_range>("#EXT-X-KEY:METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"2147483648\"");
}

TEST(VELHLSMediaSegmentParse, ReplacesTheMapByALaterOne) {
    const Segment segment = segmentOf(lines({"#EXT-X-MAP:URI=\"first\",BYTERANGE=\"5@1\"",
                                             "#EXT-X-MAP:URI=\"second\"", "#EXTINF:10", "segment.ts"}));
    EXPECT_EQ(rendered(segment), "#EXT-X-MAP:URI=\"second\"\n#EXTINF:10.000000\nsegment.ts\n");
    EXPECT_EQ(segment->misMap->byteRange, nullptr);
}

TEST(VELHLSMediaSegmentParse, GivesNullForAMalformedMap) {
    for (const char* value : {"", "URI", "URI=", "uri=\"i\"", "BYTERANGE=\"5@1\"", "URI=\"i\",",
                              "URI=\"i\",BYTERANGE=\"7x\"", "URI=\"i\",BYTERANGE=\"\""}) {
        expectEndsSegment("#EXT-X-MAP:"s + value);
    }
}

TEST(VELHLSMediaSegmentParse, ThrowsForAByteRangeOfTheMapBeyondSixtyFourBits) {
    expectThrows<std::out_of_range>("#EXT-X-MAP:URI=\"i\",BYTERANGE=\"9223372036854775808\"");
}

TEST(VELHLSMediaSegmentParse, DropsASegmentWhoseMapHasAnEmptyUri) {
    Call call;
    EXPECT_EQ(call.read("#EXT-X-MAP:URI=\"\"\n#EXTINF:10\nsegment.ts\nafter\n"), nullptr);
    EXPECT_EQ(call.unread(), "after\n");
    expectStatusUntouched(call);
    EXPECT_NE(segmentOf("#EXT-X-MAP:URI=\"\"\n#EXT-X-MAP:URI=\"i\"\n#EXTINF:10\nsegment.ts\n"), nullptr);
}

// --- EXT-X-PROGRAM-DATE-TIME

struct DateRow {
    std::string text;
    double seconds;
};

TEST(VELHLSMediaSegmentParse, ReadsAProgramDateTime) {
    const std::vector<DateRow> rows = {
        {"2020-01-01T00:00:00Z", 1577836800.0},
        {"2020-01-01T00:00:00.500Z", 1577836800.5},
        {"2020-01-01T00:00:00+05:30", 1577836800.0},
        {"2020-01-01T10:00:5.500+00:00", 1577872805.5},
        {"1970-01-01T00:00:00Z", 0.0},
    };
    for (const DateRow& row : rows) {
        const Segment segment =
            segmentOf("#EXT-X-PROGRAM-DATE-TIME:" + row.text + "\n#EXTINF:10\nsegment.ts\n");
        ASSERT_NE(segment, nullptr) << row.text;
        EXPECT_EQ(segment->programDateTime, row.seconds) << row.text;
    }
}

TEST(VELHLSMediaSegmentParse, GivesNullForAProgramDateTimeThatIsNoneOrBeforeTheEpoch) {
    for (const char* value : {"", "2020", "2020-01-01", "2020-01-01T00:00:00", "2020-01-01T00:00Z", "today",
                              "1969-12-31T23:59:59Z", "1969-12-31T23:59:59.5Z", "1900-01-01T00:00:00Z"}) {
        expectEndsSegment("#EXT-X-PROGRAM-DATE-TIME:"s + value);
    }
}

TEST(VELHLSMediaSegmentParse, ThrowsForAProgramDateTimeWithAFieldThatIsNoNumber) {
    expectThrows<std::invalid_argument>("#EXT-X-PROGRAM-DATE-TIME:2020-xx-01T10:00:00Z");
    expectThrows<std::invalid_argument>("#EXT-X-PROGRAM-DATE-TIME:--T::Z");
    expectThrows<std::out_of_range>("#EXT-X-PROGRAM-DATE-TIME:99999999999-01-01T10:00:00Z");
}

TEST(VELHLSMediaSegmentParse, ReplacesTheProgramDateTimeByALaterOne) {
    const Segment segment = segmentOf(
        "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:00Z\n"
        "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:07Z\n#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->programDateTime, 7.0);
}

// --- Cue markers

TEST(VELHLSMediaSegmentParse, KeepsTheTextOfCueMarkers) {
    for (const std::string& text : {""s, "30"s, " 30 "s, "DURATION=30:x,y"s, "\"q\""s}) {
        const Segment segment = segmentOf("#EXT-X-CUE-OUT:" + text + "\n#EXT-X-CUE-OUT-CONT:c" + text +
                                          "\n#EXTINF:10\nsegment.ts\n");
        ASSERT_NE(segment, nullptr) << text;
        EXPECT_EQ(segment->cueOut, text);
        EXPECT_EQ(segment->cueOutCont, "c" + text);
        EXPECT_FALSE(segment->cueIn);
    }
}

TEST(VELHLSMediaSegmentParse, ReplacesCueMarkersByLaterOnes) {
    const Segment segment = segmentOf(
        lines({"#EXT-X-CUE-OUT:30", "#EXT-X-CUE-OUT-CONT:10/30", "#EXT-X-CUE-OUT:15",
               "#EXT-X-CUE-OUT-CONT:", "#EXT-X-CUE-IN", "#EXT-X-CUE-IN", "#EXTINF:10", "segment.ts"}));
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->cueOut, "15");
    EXPECT_EQ(segment->cueOutCont, "");
    EXPECT_TRUE(segment->cueIn);
}

TEST(VELHLSMediaSegmentParse, DoesNotWriteCueMarkersBack) {
    EXPECT_EQ(rendered(segmentOf(
                  "#EXT-X-CUE-OUT:30\n#EXT-X-CUE-OUT-CONT:1\n#EXT-X-CUE-IN\n#EXTINF:10\nsegment.ts\n")),
              "#EXTINF:10.000000\nsegment.ts\n");
}

// --- EXT-X-DEFINE

TEST(VELHLSMediaSegmentParse, StoresDefinitionsInTheSharedMap) {
    Call call;
    *call.defines = {{"kept", "k"}, {"replaced", "old"}};
    ASSERT_NE(call.read(lines({"#EXT-X-DEFINE:NAME=\"replaced\",VALUE=\"new\"",
                               "#EXT-X-DEFINE:NAME=\"twice\",VALUE=\"1\"", "#EXTINF:10",
                               "#EXT-X-DEFINE:VALUE=\"2\",OTHER=x,NAME=\"twice\"",
                               "#EXT-X-DEFINE:NAME=\"\",VALUE=\"\"",
                               "#EXT-X-DEFINE:NAME=a,NAME=b,VALUE=\"{$c},:\"", "segment.ts"})),
              nullptr);
    const VELHLSDefineMap expected = {
        {"kept", "k"}, {"replaced", "new"}, {"twice", "2"}, {"", ""}, {"a", "{$c},:"}};
    EXPECT_EQ(*call.defines, expected);
    expectStatusUntouched(call);
}

TEST(VELHLSMediaSegmentParse, StoresADefinitionThatIsTheFirstLine) {
    Call call;
    ASSERT_NE(call.read("#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"\n#EXTINF:10\nsegment.ts\n"), nullptr);
    EXPECT_EQ(*call.defines, (VELHLSDefineMap{{"n", "1"}}));
}

TEST(VELHLSMediaSegmentParse, GivesNullForADefinitionWithoutNameOrValue) {
    for (const char* value : {"", " ", "NAME", "NAME=", "NAME=\"n\"", "VALUE=\"1\"", "NAME=\"n\",VALUE=",
                              "NAME=\"n\",VALUE=\"1\",", "name=\"n\",VALUE=\"1\"", "NAME=\"n\",value=\"1\"",
                              "NAME=\"n\", VALUE=\"1\"", "IMPORT=\"n\"", "NAME=\"n\"x,VALUE=\"1\""}) {
        expectEndsSegment("#EXT-X-DEFINE:"s + value);
    }
}

TEST(VELHLSMediaSegmentParse, KeepsDefinitionsWhenTheSegmentFails) {
    Call rejected;
    EXPECT_EQ(rejected.read("#EXT-X-DEFINE:NAME=n,VALUE=1\n#EXT-X-DEFINE:NAME=n\n"), nullptr);
    EXPECT_EQ(*rejected.defines, (VELHLSDefineMap{{"n", "1"}}));
    Call thrown;
    EXPECT_THROW(thrown.read("#EXT-X-DEFINE:NAME=n,VALUE=1\n#EXTINF:x\n"), std::invalid_argument);
    EXPECT_EQ(*thrown.defines, (VELHLSDefineMap{{"n", "1"}}));
    Call withoutUri;
    EXPECT_EQ(withoutUri.read("#EXT-X-DEFINE:NAME=n,VALUE=1\n"), nullptr);
    EXPECT_EQ(*withoutUri.defines, (VELHLSDefineMap{{"n", "1"}}));
}

TEST(VELHLSMediaSegmentParse, MakesADefineMapOfItsOwnWhereTheCallerHasNone) {
    Call call;
    call.defines = nullptr;
    EXPECT_NE(
        call.read("#EXT-X-DEFINE:NAME=n,VALUE=1\n#EXT-X-DEFINE:NAME=m,VALUE=2\n#EXTINF:10\nsegment.ts\n"),
        nullptr);
    EXPECT_EQ(call.defines, nullptr);
}

// --- Other lines

TEST(VELHLSMediaSegmentParse, ReadsTagsWithoutColon) {
    const Segment segment =
        segmentOf("#EXTM3U\n#EXT-X-DISCONTINUITY\n#EXTM3U\n#EXT-X-CUE-IN\n#EXTINF:10\n#EXTM3U\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_TRUE(segment->discontinuity);
    EXPECT_TRUE(segment->cueIn);
    EXPECT_EQ(segment->discontinuitySequenceNumber, 1U);
}

TEST(VELHLSMediaSegmentParse, CountsADiscontinuityThatComesTwiceOnce) {
    const Segment segment = segmentOf("#EXT-X-DISCONTINUITY\n#EXT-X-DISCONTINUITY\n#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->discontinuitySequenceNumber, 1U);
}

TEST(VELHLSMediaSegmentParse, GivesNullForAnyOtherTagWithoutColon) {
    for (const char* line : {"#EXT",
                             "#EXT-X-ENDLIST",
                             "#EXT-X-GAP",
                             "#EXT-X-CUE-OUT",
                             "#EXT-X-CUE-OUT-CONT",
                             "#EXT-X-CUE",
                             "#EXT-X-I-FRAMES-ONLY",
                             "#EXT-X-INDEPENDENT-SEGMENTS",
                             "#EXTINF",
                             "#EXT-X-BYTERANGE",
                             "#EXT-X-KEY",
                             "#EXT-X-MAP",
                             "#EXT-X-PROGRAM-DATE-TIME",
                             "#EXT-X-DEFINE",
                             "#EXTM3U ",
                             "#EXTM3U8",
                             "#EXTM3",
                             "#EXT-X-DISCONTINUITY ",
                             "#EXT-X-DISCONTINUITYS",
                             "#EXT-X-DISCONTINUIT",
                             "#EXT-X-CUE-IN ",
                             "#EXT-X-CUE-INN",
                             "#EXT-X-cue-in",
                             "#EXTRA words",
                             "#EXTm3u",
                             "#EXT-X-VENDOR"}) {
        expectEndsSegment(line);
    }
}

TEST(VELHLSMediaSegmentParse, GivesNullForAnyOtherTagWithColon) {
    for (const char* line : {"#EXT:",
                             "#EXT:1",
                             "#EXTM3U:",
                             "#EXT-X-DISCONTINUITY:",
                             "#EXT-X-CUE-IN:",
                             "#EXT-X-ENDLIST:",
                             "#EXT-X-GAP:",
                             "#EXT-X-VERSION:3",
                             "#EXT-X-TARGETDURATION:10",
                             "#EXT-X-MEDIA-SEQUENCE:1",
                             "#EXT-X-DISCONTINUITY-SEQUENCE:1",
                             "#EXT-X-PLAYLIST-TYPE:VOD",
                             "#EXT-X-START:TIME-OFFSET=1",
                             "#EXT-X-DATERANGE:ID=\"x\"",
                             "#EXT-X-BITRATE:1",
                             "#EXT-X-PART:DURATION=1,URI=\"p\"",
                             "#EXTINF :10,",
                             "#EXTINF2:10,",
                             "#EXTIN:10,",
                             "#EXTinf:10,",
                             "#EXT-X-BYTERANGES:1",
                             "#EXT-X-byterange:1",
                             "#EXT-X-KEY :METHOD=NONE",
                             "#EXT-X-KEYS:METHOD=NONE",
                             "#EXT-X-MAP :URI=\"i\"",
                             "#EXT-X-PROGRAM-DATE-TIM:2020-01-01T00:00:00Z",
                             "#EXT-X-CUE-OUT :30",
                             "#EXT-X-CUE-OUT-CON:30",
                             "#EXT-X-CUE-OUT-CONTI:30",
                             "#EXT-X-DEFINES:NAME=n,VALUE=1",
                             "#EXTRA words: more",
                             "#EXT-ZOR-PATTERN_START:p"}) {
        expectEndsSegment(line);
    }
}

TEST(VELHLSMediaSegmentParse, SkipsComments) {
    for (const char* line : {"#",
                             "##",
                             "# comment",
                             "#comment: with colon",
                             "#EX",
                             "#EXINF:abc,",
                             "#extinf:abc,",
                             "#Ext-X-ENDLIST",
                             "# EXTINF:abc,",
                             "##EXTINF:abc,",
                             "#ZOR",
                             "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=1",
                             "#ZOR-PATTERN",
                             "#ZOR-PATTERN:p",
                             "#ZOR-PATTERN_STAR:p",
                             "#zor-pattern_start:p",
                             "# ZOR-PATTERN_START:p",
                             "#ZOR-PATTERN_END",
                             "#ZOR-PATTERN_REPEAT",
                             "#ZOR-DEFINE_INCREMENT",
                             "#ZOR-PATTERN_END :p",
                             "#ZOR-PATTERN_ENDS:p",
                             "#ZOR-PATTERN_REPEATS:p,1",
                             "#ZOR-DEFINE_INCREMENTS:n,1",
                             "#-EXT"}) {
        EXPECT_EQ(rendered(segmentOf("#EXTINF:10\n"s + line + "\nsegment.ts\n")),
                  "#EXTINF:10.000000\nsegment.ts\n")
            << line;
        EXPECT_EQ(rendered(segmentOf(line + "\n#EXTINF:10\nsegment.ts\n"s)),
                  "#EXTINF:10.000000\nsegment.ts\n")
            << line;
    }
}

// --- Media patterns

TEST(VELHLSMediaSegmentParse, HandsOutAPatternInsteadOfASegment) {
    Call call;
    EXPECT_EQ(
        call.read(lines({"#ZOR-PATTERN_START:p", "#EXTINF:4,", "seg{$n}.ts", "#ZOR-DEFINE_INCREMENT:n,1",
                         "#ZOR-PATTERN_END:p", "#ZOR-PATTERN_REPEAT:p,2", "#EXT-X-ENDLIST"})),
        nullptr);
    ASSERT_NE(call.pattern, nullptr);
    EXPECT_EQ(call.pattern->name, "p");
    EXPECT_EQ(call.pattern->body, lines({"#EXTINF:4,", "seg{$n}.ts", "#ZOR-DEFINE_INCREMENT:n,1"}));
    EXPECT_EQ(call.pattern->repeatCount, 2U);
    EXPECT_EQ(call.unread(), "#EXT-X-ENDLIST\n");
    EXPECT_TRUE(call.status.hasMediaPatterns);
    EXPECT_EQ(call.status.error, earlierError);
    EXPECT_EQ(call.status.message, "earlier");
    EXPECT_TRUE(call.defines->empty());
}

TEST(VELHLSMediaSegmentParse, PutsTheLinesBeforeAPatternIntoItsBody) {
    Call call;
    EXPECT_EQ(
        call.read("#EXT-X-KEY:METHOD=NONE\n#EXTM3U\r\n\r\n  \n# comment: c\r\n#EXT-X-DEFINE:NAME=n,VALUE=1\n"
                  "#ZOR-PATTERN_END\n#EXT-X-DISCONTINUITY\r\n"
                  "#ZOR-PATTERN_START:p\r\n#EXTINF:4,\r\nuri\n#ZOR-PATTERN_REPEAT:p,1\nafter\n"),
        nullptr);
    ASSERT_NE(call.pattern, nullptr);
    EXPECT_EQ(call.pattern->name, "p");
    EXPECT_EQ(call.pattern->body,
              "#EXT-X-KEY:METHOD=NONE\n#EXTM3U\n\n  \n# comment: c\n#EXT-X-DEFINE:NAME=n,VALUE=1\n"
              "#ZOR-PATTERN_END\n#EXT-X-DISCONTINUITY\n#EXTINF:4,\r\nuri\n");
    EXPECT_EQ(call.pattern->repeatCount, 1U);
    EXPECT_EQ(*call.defines, (VELHLSDefineMap{{"n", "1"}}));
    EXPECT_EQ(call.unread(), "after\n");
}

TEST(VELHLSMediaSegmentParse, ReplacesThePatternOfTheCaller) {
    Call call;
    const auto earlier = std::make_shared<VELHLSMediaPattern>("earlier", "", 0);
    call.pattern = earlier;
    EXPECT_EQ(call.read("#ZOR-PATTERN_START:p\n#ZOR-PATTERN_REPEAT:p,1\n"), nullptr);
    ASSERT_NE(call.pattern, nullptr);
    EXPECT_NE(call.pattern, earlier);
    EXPECT_EQ(call.pattern->name, "p");
}

TEST(VELHLSMediaSegmentParse, TakesAnUnendedPatternToTheEndOfTheInput) {
    Call call;
    EXPECT_EQ(call.read("#ZOR-PATTERN_START:p\n#EXTINF:4,\nuri\nlast"), nullptr);
    ASSERT_NE(call.pattern, nullptr);
    EXPECT_EQ(call.pattern->body, "#EXTINF:4,\nuri\n");
    EXPECT_EQ(call.pattern->repeatCount, 0U);
    EXPECT_TRUE(call.input.eof());
    EXPECT_TRUE(call.status.hasMediaPatterns);
    EXPECT_EQ(call.status.error, earlierError);
}

TEST(VELHLSMediaSegmentParse, HandsOutAPatternWithNullStatusAndNullDefines) {
    Pattern pattern;
    std::istringstream input("#ZOR-PATTERN_REPEAT:p,3\n");
    EXPECT_EQ(VELHLSMediaSegment::parseNextSegment(nullptr, "#ZOR-PATTERN_START:p", input, pattern, 0, 0,
                                                   nullptr, nullptr),
              nullptr);
    ASSERT_NE(pattern, nullptr);
    EXPECT_EQ(pattern->repeatCount, 3U);
}

TEST(VELHLSMediaSegmentParse, HandsOutNullForAMalformedPattern) {
    struct PatternRow {
        std::string text;
        std::string offendingLine;
    };
    const std::vector<PatternRow> rows = {
        {"#ZOR-PATTERN_START:p\n#EXTM3U\nafter\n", "#EXTM3U"},
        {"#ZOR-PATTERN_START:p\n#EXT-X-DISCONTINUITY\r\nafter\n", "#EXT-X-DISCONTINUITY\r"},
        {"#ZOR-PATTERN_START:p\n#ZOR-PATTERN_START:q\nafter\n", "#ZOR-PATTERN_START:q"},
        {"#ZOR-PATTERN_START:p\n#ZOR-PATTERN_REPEAT:q,3\nafter\n", "#ZOR-PATTERN_REPEAT:q,3"},
        {"#ZOR-PATTERN_START:p\n#ZOR-PATTERN_REPEAT:p\nafter\n", "#ZOR-PATTERN_REPEAT:p"},
        {"#EXTINF:10\n#ZOR-PATTERN_START:p\n#ZOR-PATTERN_END:q\nafter\n", "#ZOR-PATTERN_END:q"},
        {"#ZOR-PATTERN_STARTED:p\nafter\n", "#ZOR-PATTERN_STARTED:p"},
        {"#ZOR-PATTERN_START_:p\nafter\n", "#ZOR-PATTERN_START_:p"},
        {"#ZOR-PATTERN_START :p\nafter\n", "#ZOR-PATTERN_START :p"},
    };
    for (const PatternRow& row : rows) {
        SCOPED_TRACE(row.text);
        Call call;
        call.pattern = std::make_shared<VELHLSMediaPattern>("earlier", "", 0);
        EXPECT_EQ(call.read(row.text), nullptr);
        EXPECT_EQ(call.pattern, nullptr);
        EXPECT_EQ(call.unread(), "after\n");
        expectPatternError(call, row.offendingLine);
    }
}

TEST(VELHLSMediaSegmentParse, ThrowsForARepeatCountThatIsNoNumber) {
    Call call;
    EXPECT_THROW(call.read("#ZOR-PATTERN_START:p\n#ZOR-PATTERN_REPEAT:p,x\nafter\n"), std::invalid_argument);
    EXPECT_EQ(call.pattern, nullptr);
    EXPECT_TRUE(call.status.hasMediaPatterns);
    EXPECT_EQ(call.status.error, earlierError);
    EXPECT_EQ(call.status.message, "earlier");
    EXPECT_EQ(call.unread(), "after\n");
}

TEST(VELHLSMediaSegmentParse, RecordsNoErrorForAPatternStartWithoutColon) {
    for (const char* line : {"#ZOR-PATTERN_START", "#ZOR-PATTERN_STARTED", "#ZOR-PATTERN_START p"}) {
        for (const char* before : {"", "#EXTINF:10\n"}) {
            SCOPED_TRACE(line);
            Call call;
            EXPECT_EQ(call.read(before + std::string(line) + "\n#EXTINF:10\nsegment.ts\n"), nullptr);
            EXPECT_EQ(call.pattern, nullptr);
            EXPECT_TRUE(call.status.hasMediaPatterns);
            EXPECT_EQ(call.status.error, earlierError);
            EXPECT_EQ(call.status.message, "earlier");
            EXPECT_EQ(call.unread(), "#EXTINF:10\nsegment.ts\n");
        }
    }
}

TEST(VELHLSMediaSegmentParse, RecordsAnErrorForAnyOtherPatternTagOutsideAPattern) {
    for (const char* line : {"#ZOR-PATTERN_END:p", "#ZOR-PATTERN_END:", "#ZOR-PATTERN_REPEAT:p,2",
                             "#ZOR-PATTERN_REPEAT:", "#ZOR-DEFINE_INCREMENT:x", "#ZOR-DEFINE_INCREMENT:n,1",
                             "#ZOR-DEFINE_INCREMENT: a:b "}) {
        for (const char* before : {"", "#EXTINF:10\n"}) {
            SCOPED_TRACE(line);
            Call call;
            *call.defines = {{"n", "1"}};
            EXPECT_EQ(call.read(before + std::string(line) + "\n#EXTINF:10\nsegment.ts\n"), nullptr);
            EXPECT_EQ(call.pattern, nullptr);
            EXPECT_EQ(*call.defines, (VELHLSDefineMap{{"n", "1"}}));
            EXPECT_EQ(call.unread(), "#EXTINF:10\nsegment.ts\n");
            expectPatternError(call, line);
        }
    }
}

TEST(VELHLSMediaSegmentParse, RecordsTheLineWithoutItsCarriageReturns) {
    Call call;
    EXPECT_EQ(call.read("#EXTINF:10\n#ZOR-PATTERN\r_END:p\r\n"), nullptr);
    expectPatternError(call, "#ZOR-PATTERN_END:p");
}

TEST(VELHLSMediaSegmentParse, NeverClearsTheMarkOfPatterns) {
    for (const char* text : {"#EXTINF:10\nsegment.ts\n", "#EXT-X-ENDLIST\n", "#ZOR-PATTERN_START\n"}) {
        Call call;
        call.status.hasMediaPatterns = true;
        static_cast<void>(call.read(text));
        EXPECT_TRUE(call.status.hasMediaPatterns) << text;
    }
}

// --- Numbers

TEST(VELHLSMediaSegmentParse, StartsAtTheGivenNumbers) {
    struct NumberRow {
        std::uint64_t firstDiscontinuity;
        std::string tag;
        std::uint64_t discontinuity;
    };
    const std::vector<NumberRow> rows = {{0, "#EXTM3U", 0},
                                         {0, "#EXT-X-DISCONTINUITY", 1},
                                         {41, "#EXTM3U", 41},
                                         {41, "#EXT-X-DISCONTINUITY", 42},
                                         {largestSequenceNumber, "#EXTM3U", largestSequenceNumber},
                                         {largestSequenceNumber, "#EXT-X-DISCONTINUITY", 0}};
    for (const NumberRow& row : rows) {
        Call call;
        call.firstMediaSequenceNumber = largestSequenceNumber;
        call.firstDiscontinuitySequenceNumber = row.firstDiscontinuity;
        const Segment segment = call.read(row.tag + "\n#EXTINF:10\nsegment.ts\n");
        ASSERT_NE(segment, nullptr);
        EXPECT_EQ(segment->mediaSequenceNumber, largestSequenceNumber);
        EXPECT_EQ(segment->discontinuitySequenceNumber, row.discontinuity) << row.tag;
        EXPECT_EQ(segment->startTime, 0.0);
    }
}

TEST(VELHLSMediaSegmentParse, CountsOnFromThePreviousSegment) {
    Call call;
    call.previous = fullSegment();
    call.firstMediaSequenceNumber = 500;
    call.firstDiscontinuitySequenceNumber = 600;
    const Segment segment = call.read("#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->mediaSequenceNumber, 11U);
    EXPECT_EQ(segment->discontinuitySequenceNumber, 3U);
    EXPECT_EQ(segment->startTime, 26.5);
    EXPECT_EQ(segment->programDateTime, 1006.5);
}

TEST(VELHLSMediaSegmentParse, CountsADiscontinuityOnFromThePreviousSegment) {
    Call call;
    call.previous = fullSegment();
    const Segment segment = call.read("#EXT-X-DISCONTINUITY\n#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->discontinuitySequenceNumber, 4U);
    EXPECT_EQ(rendered(segment).rfind("#EXT-X-DISCONTINUITY\n", 0), 0U);
}

TEST(VELHLSMediaSegmentParse, WrapsTheNumbersToZero) {
    Call call;
    call.previous = fullSegment();
    call.previous->mediaSequenceNumber = largestSequenceNumber;
    call.previous->discontinuitySequenceNumber = largestSequenceNumber;
    const Segment segment = call.read("#EXT-X-DISCONTINUITY\n#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->mediaSequenceNumber, 0U);
    EXPECT_EQ(segment->discontinuitySequenceNumber, 0U);
}

TEST(VELHLSMediaSegmentParse, CountsTimesAndNumbersThroughAPlaylist) {
    const std::vector<Segment> segments = segmentsOf(
        "#EXTINF:10\n000.ts\n#EXT-X-DISCONTINUITY\n#EXTINF:2.5\n001.ts\n#EXTINF:-1\n002.ts\n#EXTINF:4\n003."
        "ts\n");
    ASSERT_EQ(segments.size(), 4U);
    ASSERT_NE(segments.back(), nullptr);
    const std::vector<double> starts = {0.0, 10.0, 12.5, 11.5};
    for (std::size_t index = 0; index < segments.size(); ++index) {
        EXPECT_EQ(segments[index]->mediaSequenceNumber, index);
        EXPECT_EQ(segments[index]->startTime, starts[index]);
        EXPECT_EQ(segments[index]->discontinuitySequenceNumber, index == 0 ? 0U : 1U);
        EXPECT_EQ(segments[index]->discontinuity, index == 1);
    }
}

TEST(VELHLSMediaSegmentParse, DatesSegmentsFromZeroWithoutAnyDate) {
    const std::vector<Segment> segments =
        segmentsOf("#EXTINF:10\n000.ts\n#EXTINF:10\n001.ts\n#EXTINF:10\n002.ts\n");
    ASSERT_EQ(segments.size(), 3U);
    EXPECT_EQ(rendered(segments[0]), "#EXTINF:10.000000\n000.ts\n");
    EXPECT_EQ(rendered(segments[1]),
              "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:10.000+00:00\n#EXTINF:10.000000\n001.ts\n");
    EXPECT_EQ(rendered(segments[2]),
              "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:20.000+00:00\n#EXTINF:10.000000\n002.ts\n");
}

TEST(VELHLSMediaSegmentParse, PrefersTheDateOfTheTag) {
    for (const auto& row : {std::pair("2020-01-01T00:00:00Z", 1577836800.0), {"1970-01-01T00:00:00Z", 0.0}}) {
        Call call;
        call.previous = fullSegment();
        const Segment segment =
            call.read("#EXT-X-PROGRAM-DATE-TIME:"s + row.first + "\n#EXTINF:10\nsegment.ts\n");
        ASSERT_NE(segment, nullptr) << row.first;
        EXPECT_EQ(segment->programDateTime, row.second) << row.first;
    }
}

// --- Inheritance

TEST(VELHLSMediaSegmentParse, SharesKeyAndMapWithThePreviousSegment) {
    Call call;
    call.previous = fullSegment();
    const Segment segment = call.read("#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->protectionData, call.previous->protectionData);
    EXPECT_EQ(segment->misMap, call.previous->misMap);
}

TEST(VELHLSMediaSegmentParse, InheritsNothingElse) {
    Call call;
    call.previous = fullSegment();
    const Segment segment = call.read("#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->title, "");
    EXPECT_EQ(segment->byteRange, nullptr);
    EXPECT_FALSE(segment->discontinuity);
    EXPECT_FALSE(segment->cueIn);
    EXPECT_EQ(segment->cueOut, "");
    EXPECT_EQ(segment->cueOutCont, "");
}

TEST(VELHLSMediaSegmentParse, DoesNotInheritADuration) {
    Call call;
    call.previous = fullSegment();
    EXPECT_EQ(call.read("#EXT-X-CUE-IN\nsegment.ts\n"), nullptr);
}

TEST(VELHLSMediaSegmentParse, TakesKeyAndMapOfItsOwnOneByOne) {
    Call ownKey;
    ownKey.previous = fullSegment();
    const Segment keyed = ownKey.read("#EXT-X-KEY:METHOD=NONE\n#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(keyed, nullptr);
    EXPECT_EQ(keyed->protectionData->method, VELHLSProtectionData::None);
    EXPECT_EQ(keyed->misMap, ownKey.previous->misMap);
    EXPECT_EQ(ownKey.previous->protectionData->uri, "k");

    Call ownMap;
    ownMap.previous = fullSegment();
    const Segment mapped = ownMap.read("#EXT-X-MAP:URI=\"new\"\n#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(mapped->protectionData, ownMap.previous->protectionData);
    EXPECT_EQ(mapped->misMap->uri, "new");
    EXPECT_EQ(ownMap.previous->misMap->uri, "init.mp4");
}

TEST(VELHLSMediaSegmentParse, DoesNotShareAKeyThatWasWrittenAgain) {
    const std::vector<Segment> segments = segmentsOf(
        "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n#EXTINF:1\n000.ts\n"
        "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n#EXTINF:1\n001.ts\n");
    ASSERT_EQ(segments.size(), 2U);
    EXPECT_NE(segments[0]->protectionData, segments[1]->protectionData);
}

TEST(VELHLSMediaSegmentParse, SharesKeyAndMapThroughAPlaylist) {
    const std::vector<Segment> segments =
        segmentsOf(lines({"#EXTINF:1", "000.ts", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"",
                          "#EXT-X-MAP:URI=\"i\"", "#EXTINF:1", "001.ts", "#EXTINF:1", "002.ts", "#EXTINF:1",
                          "003.ts", "#EXT-X-KEY:METHOD=NONE", "#EXTINF:1", "004.ts", "#EXTINF:1", "005.ts"}));
    ASSERT_EQ(segments.size(), 6U);
    ASSERT_NE(segments.back(), nullptr);
    EXPECT_EQ(segments[0]->protectionData, nullptr);
    EXPECT_EQ(segments[0]->misMap, nullptr);
    ASSERT_NE(segments[1]->protectionData, nullptr);
    EXPECT_EQ(segments[2]->protectionData, segments[1]->protectionData);
    EXPECT_EQ(segments[3]->protectionData, segments[1]->protectionData);
    EXPECT_EQ(segments[4]->protectionData->method, VELHLSProtectionData::None);
    EXPECT_EQ(segments[5]->protectionData, segments[4]->protectionData);
    for (std::size_t index = 2; index < segments.size(); ++index)
        EXPECT_EQ(segments[index]->misMap, segments[1]->misMap) << index;
}

TEST(VELHLSMediaSegmentParse, LeavesThePreviousSegmentAsItIs) {
    Call call;
    call.previous = fullSegment();
    const std::string before = rendered(call.previous);
    ASSERT_NE(call.read("#EXT-X-DISCONTINUITY\n#EXT-X-KEY:METHOD=NONE\n#EXT-X-MAP:URI=\"n\"\n#EXTINF:10,x\n"
                        "#EXT-X-BYTERANGE:1@2\nsegment.ts\n"),
              nullptr);
    EXPECT_EQ(rendered(call.previous), before);
    EXPECT_EQ(call.previous->mediaSequenceNumber, 10U);
    EXPECT_EQ(call.previous->discontinuitySequenceNumber, 3U);
    EXPECT_EQ(call.previous.use_count(), 1);
}

TEST(VELHLSMediaSegmentParse, DropsASegmentThatInheritsABrokenKeyOrMap) {
    Call brokenKey;
    brokenKey.previous = fullSegment();
    brokenKey.previous->protectionData->uri.clear();
    EXPECT_EQ(brokenKey.read("#EXTINF:10\nsegment.ts\nafter\n"), nullptr);
    EXPECT_EQ(brokenKey.unread(), "after\n");
    expectStatusUntouched(brokenKey);

    Call brokenMap;
    brokenMap.previous = fullSegment();
    brokenMap.previous->misMap->uri.clear();
    EXPECT_EQ(brokenMap.read("#EXTINF:10\nsegment.ts\nafter\n"), nullptr);
    EXPECT_EQ(brokenMap.unread(), "after\n");
    expectStatusUntouched(brokenMap);
}

TEST(VELHLSMediaSegmentParse, DoesNotLookAtThePreviousSegmentsOwnValidity) {
    Call call;
    call.previous = std::make_shared<VELHLSMediaSegment>(0.0, 0.0, 0, 0, "", nullptr, false, 0.0, nullptr,
                                                         nullptr, "", false, "", "");
    const Segment segment = call.read("#EXTINF:10\nsegment.ts\n");
    ASSERT_NE(segment, nullptr);
    EXPECT_EQ(segment->mediaSequenceNumber, 1U);
}

// --- Relations

TEST(VELHLSMediaSegmentParse, GivesOnlySegmentsThatValidateAndRender) {
    for (const char* text : {"#EXTINF:10,\nsegment.ts\n", "#EXTINF:-4,\nv/range/1-0\n",
                             "#EXTINF:nan,\nv/range/0-9223372036854775807\n",
                             "#EXT-X-KEY:METHOD=NONE,IV=0x1\n#EXTINF:1e308\nsegment.ts\n"}) {
        const Segment segment = segmentOf(text);
        ASSERT_NE(segment, nullptr) << text;
        EXPECT_TRUE(segment->validate()) << text;
        EXPECT_NE(rendered(segment), "-1") << text;
    }
}

TEST(VELHLSMediaSegmentParse, ReadsWhatASegmentRenders) {
    const Segment previous = fullSegment();
    previous->title.clear();
    const std::string text = rendered(previous);
    EXPECT_EQ(rendered(segmentOf(text)), text);
}

TEST(VELHLSMediaSegmentParse, GivesNullForEachTextThatIsCutInsideItsLastLine) {
    const std::string text = "#EXTINF:10,Intro\n#EXT-X-BYTERANGE:5@1\nsegment.ts\n";
    for (std::size_t length = std::string("#EXTINF:1").size(); length < text.size(); ++length) {
        EXPECT_EQ(segmentOf(text.substr(0, length)), nullptr) << text.substr(0, length);
    }
    EXPECT_NE(segmentOf(text), nullptr);
}

}  // namespace
