#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iomanip>
#include <limits>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/MediaRoundTrip.h"
#include "tests/support/PlaylistText.h"

namespace {

using playlist::differencesAfterRoundTrip;
using playlist::lines;
using playlist::parsedMedia;
using playlist::renderedMedia;

static_assert(
    std::is_same_v<decltype(std::declval<const VELHLSMediaStream&>().render(std::declval<std::ostream&>())),
                   std::int32_t>);

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

std::shared_ptr<VELHLSMediaSegment> segmentOf(double duration, const std::string& uri) {
    return std::make_shared<VELHLSMediaSegment>(duration, 0.0, 0, 0, "", nullptr, false, 0.0, nullptr,
                                                nullptr, uri, false, "", "");
}

/// The text of a playlist that was changed in one way.
template <typename Change>
std::string renderedWith(Change change) {
    VELHLSMediaStream stream;
    change(stream);
    return renderedMedia(stream);
}

/// The text of what the text holds.
std::string renderedAgain(const std::string& text) {
    const auto stream = parsedMedia(text);
    return stream == nullptr ? "rejected" : renderedMedia(*stream);
}

TEST(VELHLSMediaStreamRender, TypesHaveTheTextsThatPlaylistsWrite) {
    EXPECT_EQ(VELHLSMediaStream::textOf(VELHLSMediaStream::Event), "EVENT");
    EXPECT_EQ(VELHLSMediaStream::textOf(VELHLSMediaStream::Vod), "VOD");
    EXPECT_EQ(VELHLSMediaStream::textOf(VELHLSMediaStream::None), "");
    EXPECT_EQ(VELHLSMediaStream::textOf(static_cast<VELHLSMediaStream::PlaylistType>(3)), "");
}

TEST(VELHLSMediaStreamRender, WritesAnEmptyPlaylist) {
    EXPECT_EQ(renderedMedia(VELHLSMediaStream()), "#EXTM3U\n#EXT-X-TARGETDURATION:0\n");
}

TEST(VELHLSMediaStreamRender, WritesHeaderSegmentsAndEnd) {
    VELHLSMediaStream stream;
    stream.version = 3;
    stream.targetDuration = 6.006;
    stream.playlistType = VELHLSMediaStream::Vod;
    stream.segments = {segmentOf(6.006, "first.ts"), segmentOf(4.0, "second.ts")};
    stream.endList = true;
    EXPECT_EQ(renderedMedia(stream),
              lines({"#EXTM3U", "#EXT-X-VERSION:3", "#EXT-X-TARGETDURATION:6", "#EXT-X-PLAYLIST-TYPE:VOD",
                     "#EXTINF:6.006000", "first.ts", "#EXTINF:4.000000", "second.ts", "#EXT-X-ENDLIST"}));
}

TEST(VELHLSMediaStreamRender, WritesEveryLineInItsOrder) {
    VELHLSMediaStream stream;
    stream.version = 7;
    stream.targetDuration = 10.0;
    stream.mediaSequence = 100;
    stream.discontinuitySequence = 3;
    stream.playlistType = VELHLSMediaStream::Event;
    stream.iFramesOnly = true;
    stream.independentSegments = true;
    stream.startTimeOffset = -2.5;
    stream.startPrecise = true;
    stream.segments = {segmentOf(10.0, "first.ts")};
    stream.endList = true;
    EXPECT_EQ(renderedMedia(stream),
              lines({"#EXTM3U", "#EXT-X-VERSION:7", "#EXT-X-TARGETDURATION:10", "#EXT-X-MEDIA-SEQUENCE:100",
                     "#EXT-X-DISCONTINUITY-SEQUENCE:3", "#EXT-X-PLAYLIST-TYPE:EVENT", "#EXT-X-I-FRAMES-ONLY",
                     "#EXT-X-INDEPENDENT-SEGMENTS", "#EXT-X-START:TIME-OFFSET=-2.5,PRECISE=YES",
                     "#EXTINF:10.000000", "first.ts", "#EXT-X-ENDLIST"}));
}

struct Written {
    std::string line;
    std::function<void(VELHLSMediaStream&)> change;
};

TEST(VELHLSMediaStreamRender, WritesOneLineForEachHeaderValue) {
    using Stream = VELHLSMediaStream;
    const std::vector<Written> rows = {
        {"", [](Stream& stream) { stream.version = 1; }},
        {"#EXT-X-VERSION:0\n", [](Stream& stream) { stream.version = 0; }},
        {"#EXT-X-VERSION:-2147483648\n",
         [](Stream& stream) { stream.version = std::numeric_limits<std::int32_t>::min(); }},
        {"", [](Stream& stream) { stream.hasExtM3U = true; }},
        {"", [](Stream& stream) { stream.discontinuitySeen = true; }},
        {"", [](Stream& stream) { stream.startPrecise = true; }},
        {"", [](Stream& stream) { stream.startTimeOffset = -0.0; }},
        {"", [](Stream& stream) { stream.setHLSDefineMap(nullptr); }},
        {"", [](Stream& stream) { stream.hlsDefineMap->emplace("n", "1"); }},
    };
    for (const auto& [line, change] : rows) {
        VELHLSMediaStream stream;
        change(stream);
        EXPECT_EQ(renderedMedia(stream), "#EXTM3U\n" + line + "#EXT-X-TARGETDURATION:0\n");
    }
    const std::vector<Written> rowsAfter = {
        {"", [](Stream& stream) { stream.mediaSequence = 0; }},
        {"#EXT-X-MEDIA-SEQUENCE:1\n", [](Stream& stream) { stream.mediaSequence = 1; }},
        {"#EXT-X-MEDIA-SEQUENCE:-1\n", [](Stream& stream) { stream.mediaSequence = -1; }},
        {"#EXT-X-MEDIA-SEQUENCE:9223372036854775807\n",
         [](Stream& stream) { stream.mediaSequence = std::numeric_limits<std::int64_t>::max(); }},
        {"#EXT-X-MEDIA-SEQUENCE:-9223372036854775808\n",
         [](Stream& stream) { stream.mediaSequence = std::numeric_limits<std::int64_t>::min(); }},
        {"#EXT-X-DISCONTINUITY-SEQUENCE:1\n", [](Stream& stream) { stream.discontinuitySequence = 1; }},
        {"#EXT-X-DISCONTINUITY-SEQUENCE:-1\n", [](Stream& stream) { stream.discontinuitySequence = -1; }},
        {"#EXT-X-PLAYLIST-TYPE:VOD\n", [](Stream& stream) { stream.playlistType = Stream::Vod; }},
        {"#EXT-X-PLAYLIST-TYPE:EVENT\n", [](Stream& stream) { stream.playlistType = Stream::Event; }},
        {"", [](Stream& stream) { stream.playlistType = Stream::None; }},
        {"", [](Stream& stream) { stream.playlistType = static_cast<Stream::PlaylistType>(3); }},
        {"#EXT-X-I-FRAMES-ONLY\n", [](Stream& stream) { stream.iFramesOnly = true; }},
        {"#EXT-X-INDEPENDENT-SEGMENTS\n", [](Stream& stream) { stream.independentSegments = true; }},
        {"#EXT-X-ENDLIST\n", [](Stream& stream) { stream.endList = true; }},
    };
    for (const auto& [line, change] : rowsAfter) {
        VELHLSMediaStream stream;
        change(stream);
        EXPECT_EQ(renderedMedia(stream), "#EXTM3U\n#EXT-X-TARGETDURATION:0\n" + line);
    }
}

struct TargetDuration {
    double seconds;
    std::string text;
};

TEST(VELHLSMediaStreamRender, CutsTheTargetDurationToWholeSeconds) {
    const std::vector<TargetDuration> rows = {
        {0.0, "0"},
        {-0.0, "0"},
        {10.0, "10"},
        {10.9, "10"},
        {6.006, "6"},
        {0.999, "0"},
        {-0.999, "0"},
        {-10.9, "-10"},
        {2147483646.9, "2147483646"},
        {2147483647.0, "2147483647"},
        {2147483647.9, "2147483647"},
        {2147483648.0, "2147483647"},
        {1e300, "2147483647"},
        {infinity, "2147483647"},
        {-2147483647.5, "-2147483647"},
        {-2147483648.0, "-2147483648"},
        {-2147483649.0, "-2147483648"},
        {-1e300, "-2147483648"},
        {-infinity, "-2147483648"},
        {notANumber, "0"},
        {-notANumber, "0"},
    };
    for (const auto& [seconds, text] : rows) {
        EXPECT_EQ(
            renderedWith([value = seconds](VELHLSMediaStream& stream) { stream.targetDuration = value; }),
            "#EXTM3U\n#EXT-X-TARGETDURATION:" + text + "\n");
    }
}

/// The line of a start offset, written to the stream as it is set up.
std::string startLine(std::ostringstream& out, double offset, bool precise = false) {
    VELHLSMediaStream stream;
    stream.startTimeOffset = offset;
    stream.startPrecise = precise;
    EXPECT_EQ(stream.render(out), 0);
    const std::string head = "#EXTM3U\n#EXT-X-TARGETDURATION:0\n";
    const std::string text = out.str();
    EXPECT_EQ(text.substr(0, head.size()), head);
    return text.substr(std::min(head.size(), text.size()));
}

struct Offset {
    double seconds;
    std::string text;
};

TEST(VELHLSMediaStreamRender, WritesTheStartOffsetWithSixSignificantDigits) {
    const std::vector<Offset> rows = {
        {12.5, "12.5"},        {-3.0, "-3"},        {1234567.0, "1.23457e+06"}, {123456.0, "123456"},
        {0.1, "0.1"},          {0.0001, "0.0001"},  {0.00001, "1e-05"},         {-2.5, "-2.5"},
        {1.0 / 3, "0.333333"}, {999999.5, "1e+06"}, {-1e300, "-1e+300"},        {5e-324, "4.94066e-324"},
        {infinity, "inf"},     {-infinity, "-inf"}, {notANumber, "nan"},
    };
    for (const auto& [seconds, text] : rows) {
        std::ostringstream out;
        EXPECT_EQ(startLine(out, seconds), "#EXT-X-START:TIME-OFFSET=" + text + "\n");
        std::ostringstream precise;
        EXPECT_EQ(startLine(precise, seconds, true), "#EXT-X-START:TIME-OFFSET=" + text + ",PRECISE=YES\n");
    }
}

TEST(VELHLSMediaStreamRender, FollowsThePrecisionAndFloatingPointFlagsOfTheStream) {
    std::ostringstream precise;
    precise << std::setprecision(12);
    EXPECT_EQ(startLine(precise, 1234567.125), "#EXT-X-START:TIME-OFFSET=1234567.125\n");
    std::ostringstream fixed;
    fixed << std::fixed << std::setprecision(3);
    EXPECT_EQ(startLine(fixed, 12.5), "#EXT-X-START:TIME-OFFSET=12.500\n");
    std::ostringstream scientific;
    scientific << std::scientific << std::setprecision(1) << std::uppercase;
    EXPECT_EQ(startLine(scientific, 12.5), "#EXT-X-START:TIME-OFFSET=1.2E+01\n");
    std::ostringstream showing;
    showing << std::showpos << std::showpoint;
    EXPECT_EQ(startLine(showing, 12.5), "#EXT-X-START:TIME-OFFSET=+12.5000\n");
}

/// Thousands in groups of three, and a comma for the decimal point.
class CommaPunctuation : public std::numpunct<char> {
  protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

VELHLSMediaStream streamOfLargeNumbers() {
    VELHLSMediaStream stream;
    stream.version = 12345;
    stream.targetDuration = 1234567.9;
    stream.mediaSequence = 1234567;
    stream.discontinuitySequence = 7654321;
    stream.startTimeOffset = 1234.5;
    stream.segments = {segmentOf(123456.5, "first.ts")};
    stream.segments[0]->byteRange = std::make_shared<VELHLSByteRange>();
    stream.segments[0]->byteRange->length = 1234567;
    stream.segments[0]->byteRange->offset = 7654321;
    stream.segments[0]->programDateTime = 1577836800.25;
    return stream;
}

TEST(VELHLSMediaStreamRender, WritesTheSameBytesInEveryLocale) {
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new CommaPunctuation));
    EXPECT_EQ(streamOfLargeNumbers().render(out), 0);
    EXPECT_EQ(out.str(), renderedMedia(streamOfLargeNumbers()));
    EXPECT_NE(out.str().find("#EXT-X-START:TIME-OFFSET=1234.5\n"), std::string::npos);
}

TEST(VELHLSMediaStreamRender, WritesTheSameBytesInEveryGlobalLocale) {
    const std::string expected = renderedMedia(streamOfLargeNumbers());
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
    const std::string seen = renderedMedia(streamOfLargeNumbers());
    std::locale::global(before);
    EXPECT_EQ(seen, expected);
}

TEST(VELHLSMediaStreamRender, WritesDecimalNumbersWhateverTheStreamsIntegerFormat) {
    std::ostringstream out;
    out << std::hex << std::showbase << std::setw(40) << std::setfill('*') << std::left;
    EXPECT_EQ(streamOfLargeNumbers().render(out), 0);
    EXPECT_EQ(out.str(), renderedMedia(streamOfLargeNumbers()));
}

TEST(VELHLSMediaStreamRender, LeavesTheFormatOfTheStreamAlone) {
    std::ostringstream out;
    out << std::hex << std::fixed << std::setprecision(3) << std::setfill('*');
    const std::ios_base::fmtflags flags = out.flags();
    EXPECT_EQ(streamOfLargeNumbers().render(out), 0);
    EXPECT_EQ(out.flags(), flags);
    EXPECT_EQ(out.precision(), 3);
    EXPECT_EQ(out.fill(), '*');
}

/// Counts how often it is flushed, and what had been written by then.
class CountingBuffer : public std::stringbuf {
  public:
    [[nodiscard]] const std::vector<std::string>& flushed() const { return flushed_; }

  protected:
    int sync() override {
        flushed_.push_back(str());
        return std::stringbuf::sync();
    }

  private:
    std::vector<std::string> flushed_;
};

TEST(VELHLSMediaStreamRender, FlushesEachLineOfTheHeaderAndTheEnd) {
    VELHLSMediaStream stream;
    stream.version = 3;
    stream.mediaSequence = 1;
    stream.startTimeOffset = 1.0;
    stream.segments = {segmentOf(4.0, "first.ts"), segmentOf(4.0, "second.ts")};
    stream.endList = true;
    CountingBuffer buffer;
    std::ostream out(&buffer);
    EXPECT_EQ(stream.render(out), 0);
    std::string header;
    std::vector<std::string> expected;
    for (const std::string line : {"#EXTM3U\n", "#EXT-X-VERSION:3\n", "#EXT-X-TARGETDURATION:0\n",
                                   "#EXT-X-MEDIA-SEQUENCE:1\n", "#EXT-X-START:TIME-OFFSET=1\n"}) {
        header += line;
        expected.push_back(header);
    }
    expected.push_back(renderedMedia(stream));
    EXPECT_EQ(buffer.flushed(), expected);
}

/// Widens the line feed to a bar.
class BarForLineFeed : public std::ctype<char> {
  protected:
    char do_widen(char character) const override { return character == '\n' ? '|' : character; }
    const char* do_widen(const char* low, const char* high, char* widened) const override {
        for (; low != high; ++low)
            *widened++ = do_widen(*low);
        return high;
    }
};

TEST(VELHLSMediaStreamRender, EndsHeaderLinesWithTheLineFeedOfTheStream) {
    VELHLSMediaStream stream;
    stream.segments = {segmentOf(4.0, "first.ts")};
    stream.endList = true;
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new BarForLineFeed));
    EXPECT_EQ(stream.render(out), 0);
    EXPECT_EQ(out.str(), "#EXTM3U|#EXT-X-TARGETDURATION:0|#EXTINF:4.000000\nfirst.ts\n#EXT-X-ENDLIST|");
}

TEST(VELHLSMediaStreamRender, AppendsToWhatTheStreamHolds) {
    std::ostringstream out;
    out << "before";
    EXPECT_EQ(VELHLSMediaStream().render(out), 0);
    EXPECT_EQ(VELHLSMediaStream().render(out), 0);
    EXPECT_EQ(out.str(), "before#EXTM3U\n#EXT-X-TARGETDURATION:0\n#EXTM3U\n#EXT-X-TARGETDURATION:0\n");
}

TEST(VELHLSMediaStreamRender, DoesNotLookAtTheStateOfTheStream) {
    const VELHLSMediaStream stream = streamOfLargeNumbers();
    for (const std::ios_base::iostate state : {std::ios::eofbit, std::ios::failbit, std::ios::badbit}) {
        std::ostringstream out;
        out.setstate(state);
        EXPECT_EQ(stream.render(out), 0);
        EXPECT_EQ(out.str(), "");
        EXPECT_TRUE((out.rdstate() & state) != 0);
    }
    std::ostream nowhere(nullptr);
    EXPECT_EQ(stream.render(nowhere), 0);
    EXPECT_TRUE(nowhere.bad());
}

/// Takes so many bytes and no more.
class FullBuffer : public std::streambuf {
  public:
    explicit FullBuffer(std::size_t space) : space_(space) {}

  protected:
    int_type overflow(int_type character) override {
        if (space_ == 0) return traits_type::eof();
        --space_;
        return traits_type::not_eof(character);
    }

  private:
    std::size_t space_;
};

TEST(VELHLSMediaStreamRender, DoesNotReportWriteErrors) {
    const VELHLSMediaStream stream = streamOfLargeNumbers();
    const std::size_t length = renderedMedia(stream).size();
    for (std::size_t space = 0; space < length; ++space) {
        FullBuffer buffer(space);
        std::ostream out(&buffer);
        EXPECT_EQ(stream.render(out), 0) << space;
        EXPECT_TRUE(out.bad()) << space;
    }
    FullBuffer buffer(length);
    std::ostream out(&buffer);
    EXPECT_EQ(stream.render(out), 0);
    EXPECT_TRUE(out.good());
}

std::shared_ptr<VELHLSMediaSegment> with(const std::function<void(VELHLSMediaSegment&)>& change) {
    auto segment = segmentOf(4.0, "segment.ts");
    change(*segment);
    return segment;
}

TEST(VELHLSMediaStreamRender, WritesNothingWhenASegmentDoesNotValidate) {
    const std::vector<std::shared_ptr<VELHLSMediaSegment>> bad = {
        nullptr,
        segmentOf(0.0, "segment.ts"),
        segmentOf(-0.0, "segment.ts"),
        segmentOf(4.0, ""),
        with([](VELHLSMediaSegment& segment) {
            segment.byteRange = std::make_shared<VELHLSByteRange>();
            segment.byteRange->length = -1;
        }),
        with([](VELHLSMediaSegment& segment) { segment.misMap = std::make_shared<VELHLSMISMap>(); }),
        with([](VELHLSMediaSegment& segment) {
            segment.protectionData = std::make_shared<VELHLSProtectionData>(
                VELHLSProtectionData::AES128, "", "", "", std::vector<std::int32_t>());
        }),
    };
    for (const auto& segment : bad) {
        for (std::size_t place = 0; place <= 2; ++place) {
            VELHLSMediaStream stream;
            stream.segments = {segmentOf(4.0, "first.ts"), segmentOf(4.0, "second.ts")};
            stream.segments.insert(stream.segments.begin() + static_cast<std::ptrdiff_t>(place), segment);
            EXPECT_FALSE(stream.validate());
            EXPECT_EQ(renderedMedia(stream), "status -1: ");
            CountingBuffer buffer;
            std::ostream out(&buffer);
            EXPECT_EQ(stream.render(out), -1);
            EXPECT_TRUE(buffer.flushed().empty());
        }
    }
}

TEST(VELHLSMediaStreamRender, RepeatsKeyAndMapBeforeEverySegment) {
    EXPECT_EQ(
        renderedAgain(lines({"#EXTM3U", "#EXT-X-TARGETDURATION:4", "#EXTINF:4,", "clear.ts",
                             "#EXT-X-MAP:URI=\"init.mp4\"", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"",
                             "#EXTINF:4,", "first.ts", "#EXT-X-DISCONTINUITY", "#EXTINF:4", "second.ts"})),
        lines({"#EXTM3U", "#EXT-X-TARGETDURATION:4", "#EXTINF:4.000000,,", "clear.ts",
               "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"", "#EXT-X-MAP:URI=\"init.mp4\"",
               "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:4.000+00:00", "#EXTINF:4.000000,,", "first.ts",
               "#EXT-X-DISCONTINUITY", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"", "#EXT-X-MAP:URI=\"init.mp4\"",
               "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:8.000+00:00", "#EXTINF:4.000000", "second.ts"}));
}

TEST(VELHLSMediaStreamRender, WritesWhatWasReadInItsOwnForm) {
    EXPECT_EQ(renderedAgain(lines({"#EXT-X-ENDLIST", "#EXT-X-START:TIME-OFFSET=+12.50", "#EXT-X-VERSION: 1",
                                   "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"", "#EXT-X-MEDIA-SEQUENCE:007",
                                   "#EXT-X-TARGETDURATION:10.9", "# comment", "#EXT-X-CUE-OUT:30",
                                   "#EXTINF:9.5,Intro", "v/range/0-99"})),
              lines({"#EXTM3U", "#EXT-X-TARGETDURATION:10", "#EXT-X-MEDIA-SEQUENCE:7",
                     "#EXT-X-START:TIME-OFFSET=12.5", "#EXTINF:9.500000,,Intro", "#EXT-X-BYTERANGE:100@0",
                     "v/range/0-99", "#EXT-X-ENDLIST"}));
}

// Negative ones are written as they are, and this is the longest number of all.
TEST(VELHLSMediaStreamRender, WritesTheLongestSequenceNumbers) {
    const std::string text = renderedWith([](VELHLSMediaStream& stream) {
        stream.mediaSequence = std::numeric_limits<std::int64_t>::min();
        stream.discontinuitySequence = std::numeric_limits<std::int64_t>::min();
    });
    EXPECT_EQ(text, lines({"#EXTM3U", "#EXT-X-TARGETDURATION:0", "#EXT-X-MEDIA-SEQUENCE:-9223372036854775808",
                           "#EXT-X-DISCONTINUITY-SEQUENCE:-9223372036854775808"}));
}

TEST(VELHLSMediaStreamRender, WritesDatesOnBothSidesOfMidnight) {
    const std::string segment = lines({"#EXTINF:43200,", "segment.ts"});
    const std::string text = renderedAgain("#EXT-X-PROGRAM-DATE-TIME:2020-02-28T12:00:00Z\n" + segment +
                                           segment + segment + segment);
    std::string dates;
    for (std::size_t tag = text.find("TIME:"); tag != std::string::npos; tag = text.find("TIME:", tag + 1))
        dates += text.substr(tag + 5, 16) + " ";
    EXPECT_EQ(dates, "2020-02-28T12:00 2020-02-29T00:00 2020-02-29T12:00 2020-03-01T00:00 ");
}

TEST(VELHLSMediaStreamRender, WritesTheSegmentsOfAPatternOneByOne) {
    EXPECT_EQ(
        renderedAgain(
            lines({"#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"", "#ZOR-PATTERN_START:p", "#EXTINF:4,", "seg{$n}.ts",
                   "#ZOR-DEFINE_INCREMENT:n,1", "#ZOR-PATTERN_END:p", "#ZOR-PATTERN_REPEAT:p,2"})),
        lines({"#EXTM3U", "#EXT-X-TARGETDURATION:0", "#EXTINF:4.000000,,", "seg1.ts",
               "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:4.000+00:00", "#EXTINF:4.000000,,", "seg2.ts",
               "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:8.000+00:00", "#EXTINF:4.000000,,", "seg3.ts"}));
}

TEST(VELHLSMediaStreamRender, WritesExactlyWhatItsSegmentsRender) {
    const auto stream = parsedMedia(
        "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n#EXT-X-MAP:URI=\"m\"\n#EXTINF:4,a\nfirst.ts\n#EXTINF:5,"
        "\nsecond.ts\n");
    ASSERT_NE(stream, nullptr);
    std::string expected = "#EXTM3U\n#EXT-X-TARGETDURATION:0\n";
    for (const auto& segment : stream->segments)
        EXPECT_EQ(segment->render(expected, true, true), 0);
    EXPECT_EQ(renderedMedia(*stream), expected);
}

TEST(VELHLSMediaStreamRender, ChangesNothingInThePlaylist) {
    const auto stream = parsedMedia("#EXTM3U\n#EXT-X-TARGETDURATION:9.5\n#EXTINF:4,a\nfirst.ts\n");
    ASSERT_NE(stream, nullptr);
    const std::string first = renderedMedia(*stream);
    EXPECT_EQ(renderedMedia(*stream), first);
    EXPECT_EQ(stream->targetDuration, 9.5);
    EXPECT_EQ(stream->segments.at(0)->title, ",a");
}

TEST(VELHLSMediaStreamRender, WritesOnePlaylistOnTwoThreadsAtOnce) {
    std::string text = "#EXTM3U\n";
    for (int index = 0; index < 1000; ++index)
        text += "#EXTINF:4,\nsegment" + std::to_string(index) + ".ts\n";
    const auto stream = parsedMedia(text);
    ASSERT_NE(stream, nullptr);
    const std::string expected = renderedMedia(*stream);
    std::vector<std::string> seen(2);
    std::vector<std::thread> threads;
    for (std::string& result : seen) {
        threads.emplace_back([&result, &stream] { result = renderedMedia(*stream); });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(seen[0], expected);
    EXPECT_EQ(seen[1], expected);
}

/// Playlists that hold all that there is to write, and what is not written.
const std::vector<std::string> playlists = {
    "",
    "#EXTM3U\n#EXT-X-ENDLIST\n",
    lines({"#EXTM3U", "#EXT-X-VERSION:6", "#EXT-X-TARGETDURATION:6.5", "#EXT-X-PLAYLIST-TYPE:VOD",
           "#EXT-X-MEDIA-SEQUENCE:100", "#EXT-X-DISCONTINUITY-SEQUENCE:3", "#EXT-X-INDEPENDENT-SEGMENTS",
           "#EXT-X-I-FRAMES-ONLY", "#EXT-X-START:TIME-OFFSET=-12.5,PRECISE=YES", "#EXTINF:6.006,Intro",
           "segment100.ts", "#EXTINF:4", "segment101.ts", "#EXTINF:0.0000006,", "segment102.ts",
           "#EXT-X-ENDLIST"}),
    lines({"#EXTM3U", "#EXT-X-START:TIME-OFFSET=0,PRECISE=YES", "#EXT-X-PLAYLIST-TYPE:EVENT"}),
    lines({"#EXT-X-START:TIME-OFFSET=123456.789", "#EXT-X-MEDIA-SEQUENCE:9223372036854775807", "#EXTINF:-4,",
           "backwards.ts", "#EXTINF:3,", "segment.ts"}),
    lines({"#EXTM3U", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0x0123456789ABCDEFabcdef0123456789",
           "#EXTINF:4,", "first.ts", "#EXTINF:4,", "second.ts",
           "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"k2\",KEYFORMAT=\"identity\",KEYFORMATVERSIONS=\"1/2\"",
           "#EXTINF:4,", "third.ts", "#EXT-X-KEY:METHOD=NONE", "#EXTINF:4,", "fourth.ts"}),
    lines({"#EXTM3U", "#EXT-X-MAP:URI=\"init.mp4\",BYTERANGE=\"720@0\"", "#EXTINF:4,",
           "#EXT-X-BYTERANGE:100@720", "all.mp4", "#EXTINF:4,", "#EXT-X-BYTERANGE:200", "all.mp4",
           "#EXT-X-MAP:URI=\"init2.mp4\"", "#EXTINF:4,", "v/range/1000-1999", "#EXTINF:4,",
           "#EXT-X-BYTERANGE:0@5", "empty.mp4", "#EXT-X-MAP:URI=\"init3.mp4\",BYTERANGE=\"0\"", "#EXTINF:4,",
           "last.mp4"}),
    lines({"#EXTM3U", "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:59.9994Z", "#EXTINF:4.0004,", "first.ts",
           "#EXTINF:4,", "second.ts", "#EXT-X-PROGRAM-DATE-TIME:2026-02-28T23:59:58.123+05:30", "#EXTINF:4,",
           "third.ts"}),
    lines({"#EXTM3U", "#EXTINF:4,", "#EXT-X-DISCONTINUITY", "first.ts", "#EXT-X-CUE-OUT:30",
           "#EXT-X-CUE-OUT-CONT:0/30", "#EXTINF:4,", "second.ts", "#EXT-X-CUE-OUT-CONT:4/30",
           "#EXT-X-DISCONTINUITY", "#EXT-X-CUE-IN", "#EXTINF:4,", "third.ts"}),
    lines({"#EXTM3U", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"", "#EXT-X-DISCONTINUITY",
           "#EXT-X-KEY:METHOD=NONE", "#ZOR-PATTERN_START:p", "#EXTINF:4.5,Title", "seg{$n}.ts",
           "#ZOR-DEFINE_INCREMENT:n,1", "#ZOR-PATTERN_END:p", "#ZOR-PATTERN_REPEAT:p,2", "#EXTINF:2,",
           "after{$n}.ts", "#EXT-X-ENDLIST"}),
};

TEST(VELHLSMediaStreamRender, WritesTextThatReadsAsAnEqualPlaylist) {
    for (const std::string& text : playlists) {
        const auto stream = parsedMedia(text);
        ASSERT_NE(stream, nullptr) << text;
        EXPECT_EQ(differencesAfterRoundTrip(*stream), "") << text;
    }
}

/// The text without the commas that titles gather.
std::string withoutCommasOfTitles(std::string text) {
    for (std::size_t comma = text.find(",,"); comma != std::string::npos; comma = text.find(",,", comma)) {
        text.erase(comma, 1);
    }
    return text;
}

TEST(VELHLSMediaStreamRender, WritesItsOwnTextAgainButForTheCommasOfTitles) {
    for (const std::string& text : playlists) {
        const std::string once = renderedAgain(text);
        const std::string twice = renderedAgain(once);
        EXPECT_EQ(withoutCommasOfTitles(twice), withoutCommasOfTitles(once)) << text;
    }
}

TEST(VELHLSMediaStreamRender, AddsOneCommaToATitleEachTime) {
    const std::string first = renderedAgain("#EXTINF:4,Intro\nsegment.ts\n");
    EXPECT_EQ(first, "#EXTM3U\n#EXT-X-TARGETDURATION:0\n#EXTINF:4.000000,,Intro\nsegment.ts\n");
    EXPECT_EQ(renderedAgain(first),
              "#EXTM3U\n#EXT-X-TARGETDURATION:0\n#EXTINF:4.000000,,,Intro\nsegment.ts\n");
}

TEST(VELHLSMediaStreamRender, WritesSomeValuesInAFormThatItsReaderRejects) {
    const std::string head = "#EXTM3U\n#EXT-X-TARGETDURATION:0\n";
    const std::string none = renderedAgain("#EXTINF:0.0000004,\nsegment.ts\n");
    EXPECT_EQ(none, head + "#EXTINF:0.000000,,\nsegment.ts\n");
    EXPECT_EQ(parsedMedia(none), nullptr);
    const std::string late = renderedAgain("#EXT-X-START:TIME-OFFSET=1234567\n");
    EXPECT_EQ(late, head + "#EXT-X-START:TIME-OFFSET=1.23457e+06\n");
    EXPECT_EQ(parsedMedia(late), nullptr);
    const std::string early = renderedAgain("#EXT-X-START:TIME-OFFSET=-0.00001\n");
    EXPECT_EQ(early, head + "#EXT-X-START:TIME-OFFSET=-1e-05\n");
    EXPECT_EQ(parsedMedia(early), nullptr);
}

struct Unreadable {
    std::string text;
    std::string reason;
};

/// All the reasons why the library rejects what it rendered itself. Everything else that parses comes back.
const std::vector<Unreadable> unreadable = {
    {"#EXTINF:0.0000004,\nsegment.ts\n", "a duration that is rounded to 0"},
    {"#EXT-X-START:TIME-OFFSET=1234567\n", "a start offset with an exponent"},
    {"#EXT-X-START:TIME-OFFSET=-0.00001\n", "a start offset with an exponent"},
    {"#EXT-X-PROGRAM-DATE-TIME:10000000-01-01T00:00:15Z\n#EXTINF:4\nsegment.ts\n", "a date that is cut off"},
    {"#EXT-X-PROGRAM-DATE-TIME:100000000-01-01T00:00:15Z\n#EXTINF:4\nsegment.ts\n", "a date that is cut off"},
    {"#EXTINF:4\n#EXT-X-BYTERANGE:0\na.ts\n", "an empty byte range, and a URI that throws"},
    {"#EXTINF:4\n#EXT-X-BYTERANGE:0\nv/range/9-5\n", "an empty byte range, and a negative one in the URI"},
    {"#ZOR-PATTERN_START:p\n#EXT-X-KEY:METHOD=AES-128,URI=\"\r\"\n#EXTINF:4\nsegment.ts\n"
     "#ZOR-PATTERN_REPEAT:p,0\n",
     "a key's URI of carriage returns"},
    {"#ZOR-PATTERN_START:p\n#EXT-X-MAP:URI=\"\r\"\n#EXTINF:4\nsegment.ts\n#ZOR-PATTERN_REPEAT:p,0\n",
     "a map's URI of carriage returns"},
};

TEST(VELHLSMediaStreamRender, WritesNothingElseThatItsReaderRejects) {
    for (const Unreadable& row : unreadable) {
        const auto stream = parsedMedia(row.text);
        ASSERT_NE(stream, nullptr) << row.text;
        EXPECT_EQ(playlist::reasonNotToBeRead(*stream), row.reason) << row.text;
        // The comparison looks whether it is rejected indeed.
        EXPECT_EQ(differencesAfterRoundTrip(*stream), "") << row.text;
    }
}

TEST(VELHLSMediaStreamRender, WritesASixtiethSecondThatReadsAsTheNextMinute) {
    const std::string once =
        renderedAgain("#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:59.9996Z\n#EXTINF:4\nsegment.ts\n");
    EXPECT_NE(once.find("#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:60.000+00:00\n"), std::string::npos);
    EXPECT_NE(renderedAgain(once).find("#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:01:0.000+00:00\n"),
              std::string::npos);
}

TEST(VELHLSMediaStreamRender, ComparesEveryValueOfTheRoundTrip) {
    // What would be lost would be seen: each change of the playlist that was read again is a difference.
    const auto stream = parsedMedia(playlists.at(6));
    ASSERT_NE(stream, nullptr);
    const std::string text = renderedMedia(*stream);
    const std::vector<std::function<void(VELHLSMediaStream&)>> changes = {
        [](VELHLSMediaStream& reread) { reread.hasExtM3U = false; },
        [](VELHLSMediaStream& reread) { reread.version = 9; },
        [](VELHLSMediaStream& reread) { reread.targetDuration = 1.0; },
        [](VELHLSMediaStream& reread) { reread.playlistType = VELHLSMediaStream::Vod; },
        [](VELHLSMediaStream& reread) { reread.mediaSequence = 1; },
        [](VELHLSMediaStream& reread) { reread.discontinuitySequence = 1; },
        [](VELHLSMediaStream& reread) { reread.endList = true; },
        [](VELHLSMediaStream& reread) { reread.iFramesOnly = true; },
        [](VELHLSMediaStream& reread) { reread.independentSegments = true; },
        [](VELHLSMediaStream& reread) { reread.startTimeOffset = notANumber; },
        [](VELHLSMediaStream& reread) { reread.startPrecise = true; },
        [](VELHLSMediaStream& reread) { reread.discontinuitySeen = true; },
        [](VELHLSMediaStream& reread) { reread.hlsDefineMap->emplace("n", "1"); },
        [](VELHLSMediaStream& reread) { reread.segments.pop_back(); },
        [](VELHLSMediaStream& reread) { reread.segments[0]->duration += 1e-5; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->startTime += 1e-5; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->programDateTime += 0.002; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->mediaSequenceNumber = 7; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->discontinuitySequenceNumber = 7; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->title = ","; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->discontinuity = true; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->uri += "x"; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->cueIn = true; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->cueOut = "x"; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->cueOutCont = "x"; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->byteRange = nullptr; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->byteRange->offset = 7; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->misMap = nullptr; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->misMap->uri = "x"; },
        [](VELHLSMediaStream& reread) { reread.segments[0]->misMap->byteRange->length = 7; },
        [](VELHLSMediaStream& reread) {
            reread.segments[0]->protectionData = std::make_shared<VELHLSProtectionData>(
                VELHLSProtectionData::None, "", "", "", std::vector<std::int32_t>());
        },
    };
    for (std::size_t index = 0; index < changes.size(); ++index) {
        const auto reread = parsedMedia(text);
        ASSERT_NE(reread, nullptr);
        EXPECT_EQ(playlist::RoundTripComparison(*stream, *reread).differences(), "");
        changes[index](*reread);
        EXPECT_NE(playlist::RoundTripComparison(*stream, *reread).differences(), "") << index;
    }
}

}  // namespace
