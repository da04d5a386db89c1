#include "velhls/writer/VELHLSPlaylistWriter.h"

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <locale>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/PlaylistText.h"
#include "tests/support/WholePlaylists.h"
#include "tests/support/WriterPromises.h"

namespace {

using playlist::lines;
using writer::readMaster;
using writer::readMedia;
using writer::written;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
/// 2026-01-01T00:00:00Z
constexpr double newYear = 1767225600.0;

const std::string iv = "0x000102030405060708090a0b0c0d0e0f";

std::shared_ptr<VELHLSMediaSegment> segmentOf(double duration, const std::string& uri) {
    auto segment = std::make_shared<VELHLSMediaSegment>();
    segment->duration = duration;
    segment->uri = uri;
    return segment;
}

std::shared_ptr<VELHLSProtectionData> keyOf(VELHLSProtectionData::ProtectionMethod method,
                                            const std::string& uri, const std::string& format = "") {
    auto key = std::make_shared<VELHLSProtectionData>();
    key->method = method;
    key->uri = uri;
    key->keyFormat = format;
    return key;
}

std::shared_ptr<VELHLSMISMap> mapOf(const std::string& uri) {
    auto map = std::make_shared<VELHLSMISMap>();
    map->uri = uri;
    return map;
}

std::shared_ptr<VELHLSByteRange> rangeOf(std::int64_t length, std::int64_t offset) {
    return std::make_shared<VELHLSByteRange>(VELHLSByteRange{length, offset});
}

/// A playlist with so many segments of six seconds, "segment0.ts" and so on.
VELHLSMediaStream playlistOf(std::size_t segments) {
    VELHLSMediaStream stream;
    for (std::size_t index = 0; index < segments; ++index)
        stream.segments.push_back(segmentOf(6.0, "segment" + std::to_string(index) + ".ts"));
    return stream;
}

/// What is written of it between the header of a playlist that needs no version and whose target duration is 6, and its
/// end.
std::string segmentsOf(const VELHLSMediaStream& stream, const VELHLSWriterOptions& options = {}) {
    const std::string text = written(stream, options);
    const std::string tag = "#EXT-X-TARGETDURATION:6\n";
    const std::size_t at = text.find(tag);
    return at == std::string::npos ? text : text.substr(at + tag.size());
}

/// What is written of a playlist with one segment of six seconds that was changed in one way.
std::string segmentWith(const std::function<void(VELHLSMediaSegment&)>& change) {
    VELHLSMediaStream stream = playlistOf(1);
    change(*stream.segments[0]);
    return segmentsOf(stream);
}

std::string mediaWith(const std::function<void(VELHLSMediaStream&)>& change) {
    VELHLSMediaStream stream = playlistOf(1);
    change(stream);
    return written(stream);
}

/// What is written of what the text holds.
std::string writtenAgain(const std::string& text, const VELHLSWriterOptions& options = {}) {
    const auto stream = readMedia(text);
    return stream == nullptr ? "rejected" : written(*stream, options);
}

// --- media playlists: the header

TEST(VELHLSPlaylistWriterMedia, WritesAnEmptyPlaylist) {
    EXPECT_EQ(written(VELHLSMediaStream()), "#EXTM3U\n#EXT-X-TARGETDURATION:0\n");
}

TEST(VELHLSPlaylistWriterMedia, WritesTheHeaderInItsOrder) {
    VELHLSMediaStream stream;
    stream.version = 7;
    stream.targetDuration = 6;
    stream.mediaSequence = 9007199254740993;
    stream.discontinuitySequence = 4;
    stream.playlistType = VELHLSMediaStream::Event;
    stream.iFramesOnly = true;
    stream.independentSegments = true;
    stream.startTimeOffset = -12.5;
    stream.startPrecise = true;
    stream.endList = true;
    EXPECT_EQ(written(stream),
              lines({"#EXTM3U", "#EXT-X-VERSION:7", "#EXT-X-TARGETDURATION:6",
                     "#EXT-X-MEDIA-SEQUENCE:9007199254740993", "#EXT-X-DISCONTINUITY-SEQUENCE:4",
                     "#EXT-X-PLAYLIST-TYPE:EVENT", "#EXT-X-I-FRAMES-ONLY", "#EXT-X-INDEPENDENT-SEGMENTS",
                     "#EXT-X-START:TIME-OFFSET=-12.5,PRECISE=YES", "#EXT-X-ENDLIST"}));
    stream.playlistType = VELHLSMediaStream::Vod;
    EXPECT_NE(written(stream).find("#EXT-X-PLAYLIST-TYPE:VOD\n"), std::string::npos);
}

TEST(VELHLSPlaylistWriterMedia, WritesStartOffsetsThatAreReadBackAsTheSame) {
    const auto start = [](double offset, bool precise) {
        const std::string text = mediaWith([&](VELHLSMediaStream& stream) {
            stream.startTimeOffset = offset;
            stream.startPrecise = precise;
        });
        const std::size_t at = text.find("#EXT-X-START:");
        return at == std::string::npos ? "" : text.substr(at + 13, text.find('\n', at) - at - 13);
    };
    EXPECT_EQ(start(0.0, false), "");
    EXPECT_EQ(start(0.0, true), "TIME-OFFSET=0,PRECISE=YES");
    EXPECT_EQ(start(1234567.0, false), "TIME-OFFSET=1234567");
    EXPECT_EQ(start(-0.1, false), "TIME-OFFSET=-0.1");
    EXPECT_EQ(start(1e-7, false), "TIME-OFFSET=0.0000001");
    EXPECT_EQ(start(0.1 + 0.2, false), "TIME-OFFSET=0.30000000000000004");
}

TEST(VELHLSPlaylistWriterMedia, CoversTheLongestSegmentWithTheTargetDuration) {
    const auto targetOf = [](double target, const std::vector<double>& durations) {
        VELHLSMediaStream stream;
        stream.targetDuration = target;
        for (const double duration : durations)
            stream.segments.push_back(segmentOf(duration, "segment.ts"));
        const std::string text = written(stream);
        const std::size_t at = text.find("DURATION:") + 9;
        return text.substr(at, text.find('\n', at) - at);
    };
    EXPECT_EQ(targetOf(0.0, {6.006}), "6");
    EXPECT_EQ(targetOf(0.0, {6.5}), "7");
    EXPECT_EQ(targetOf(0.0, {6.499999}), "6");
    EXPECT_EQ(targetOf(0.0, {0.49999999999999994}), "0");
    EXPECT_EQ(targetOf(0.0, {0.001}), "0");
    EXPECT_EQ(targetOf(10.0, {4.0, 6.0}), "10");
    EXPECT_EQ(targetOf(5.0, {4.0, 6.6, 2.0}), "7");
    EXPECT_EQ(targetOf(10.9, {4.0}), "11");
    EXPECT_EQ(targetOf(6.006, {6.006}), "6");
    EXPECT_EQ(targetOf(5e9, {4.0}), "5000000000");
}

TEST(VELHLSPlaylistWriterMedia, RaisesTheVersionToWhatIsWritten) {
    const auto versionWith = [](const std::function<void(VELHLSMediaStream&)>& change) {
        const std::string text = mediaWith(change);
        const std::size_t at = text.find("#EXT-X-VERSION:");
        return at == std::string::npos ? "none" : text.substr(at + 15, text.find('\n', at) - at - 15);
    };
    const auto keyed = [](const std::function<void(VELHLSProtectionData&)>& change) {
        return [change](VELHLSMediaStream& stream) {
            const auto key = keyOf(VELHLSProtectionData::AES128, "k");
            change(*key);
            stream.segments[0]->protectionData = key;
        };
    };
    EXPECT_EQ(versionWith([](VELHLSMediaStream&) {}), "none");
    EXPECT_EQ(versionWith(keyed([](VELHLSProtectionData&) {})), "none");
    EXPECT_EQ(versionWith(keyed([](VELHLSProtectionData& key) { key.iv = iv; })), "2");
    EXPECT_EQ(versionWith([](VELHLSMediaStream& stream) { stream.segments[0]->duration = 6.5; }), "3");
    EXPECT_EQ(versionWith([](VELHLSMediaStream& stream) { stream.segments[0]->byteRange = rangeOf(100, 0); }),
              "4");
    EXPECT_EQ(versionWith([](VELHLSMediaStream& stream) { stream.iFramesOnly = true; }), "4");
    EXPECT_EQ(versionWith(keyed([](VELHLSProtectionData& key) { key.keyFormat = "identity"; })), "5");
    EXPECT_EQ(versionWith(keyed([](VELHLSProtectionData& key) { key.keyFormatVersions = {1, 2}; })), "5");
    EXPECT_EQ(versionWith([](VELHLSMediaStream& stream) {
                  stream.iFramesOnly = true;
                  stream.segments[0]->misMap = mapOf("init.mp4");
              }),
              "5");
    EXPECT_EQ(versionWith([](VELHLSMediaStream& stream) { stream.segments[0]->misMap = mapOf("init.mp4"); }),
              "6");
    EXPECT_EQ(versionWith([](VELHLSMediaStream& stream) { stream.version = 12; }), "12");
    EXPECT_EQ(versionWith([](VELHLSMediaStream& stream) { stream.version = 2; }), "2");
    EXPECT_EQ(versionWith([](VELHLSMediaStream& stream) { stream.version = -1; }), "none");
}

TEST(VELHLSPlaylistWriterMedia, SaysTheDiscontinuitySequenceWhereADiscontinuityMayLeave) {
    VELHLSMediaStream stream = playlistOf(2);
    stream.segments[1]->discontinuity = true;
    EXPECT_EQ(segmentsOf(stream), lines({"#EXT-X-DISCONTINUITY-SEQUENCE:0", "#EXTINF:6,", "segment0.ts",
                                         "#EXT-X-DISCONTINUITY", "#EXTINF:6,", "segment1.ts"}));
    stream.playlistType = VELHLSMediaStream::Event;
    EXPECT_EQ(written(stream).find("SEQUENCE"), std::string::npos);
    stream.playlistType = VELHLSMediaStream::None;
    stream.endList = true;
    EXPECT_EQ(written(stream).find("SEQUENCE"), std::string::npos);
}

// --- segments

TEST(VELHLSPlaylistWriterMedia, WritesOneCommaAndTheTitle) {
    const auto titled = [](const std::string& title) {
        return segmentWith([&](VELHLSMediaSegment& segment) { segment.title = title; });
    };
    EXPECT_EQ(titled(""), "#EXTINF:6,\nsegment0.ts\n");
    EXPECT_EQ(titled(","), "#EXTINF:6,\nsegment0.ts\n");
    EXPECT_EQ(titled(",Intro"), "#EXTINF:6,Intro\nsegment0.ts\n");
    EXPECT_EQ(titled("Intro"), "#EXTINF:6,Intro\nsegment0.ts\n");
    EXPECT_EQ(titled(",,Intro"), "#EXTINF:6,,Intro\nsegment0.ts\n");
    EXPECT_EQ(titled("\"Intro\", said he"), "#EXTINF:6,\"Intro\", said he\nsegment0.ts\n");
}

TEST(VELHLSPlaylistWriterMedia, WritesTheFewestDecimalsThatAreReadBackAsTheSameDuration) {
    const auto durationText = [](double duration) {
        const std::string text =
            mediaWith([&](VELHLSMediaStream& stream) { stream.segments[0]->duration = duration; });
        const std::size_t at = text.find("#EXTINF:") + 8;
        return text.substr(at, text.find(',', at) - at);
    };
    EXPECT_EQ(durationText(10.0), "10");
    EXPECT_EQ(durationText(9.0), "9");
    EXPECT_EQ(durationText(6.006), "6.006");
    EXPECT_EQ(durationText(6.5), "6.5");
    EXPECT_EQ(durationText(0.1), "0.1");
    EXPECT_EQ(durationText(10.010010), "10.01001");
    EXPECT_EQ(durationText(3.000001), "3.000001");
    EXPECT_EQ(durationText(3.0000001), "3.0000001");
    EXPECT_EQ(durationText(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(durationText(1e-7), "0.0000001");
    EXPECT_EQ(durationText(1e18), "1000000000000000000");
    EXPECT_EQ(durationText(999999999.999999), "999999999.999999");
    EXPECT_EQ(durationText(1000000000.5), "1000000000.5");
}

TEST(VELHLSPlaylistWriterMedia, WritesDatesWithTwoDigitsEverywhere) {
    const auto dateOf = [](double date) {
        const std::string text =
            segmentWith([&](VELHLSMediaSegment& segment) { segment.programDateTime = date; });
        const std::string tag = "#EXT-X-PROGRAM-DATE-TIME:";
        return text.compare(0, tag.size(), tag) == 0 ? text.substr(tag.size(), text.find('\n') - tag.size())
                                                     : text;
    };
    EXPECT_EQ(dateOf(newYear), "2026-01-01T00:00:00.000Z");
    EXPECT_EQ(dateOf(newYear + 5.5), "2026-01-01T00:00:05.500Z");
    EXPECT_EQ(dateOf(newYear + 9.0625), "2026-01-01T00:00:09.063Z");
    EXPECT_EQ(dateOf(newYear + 36000.25), "2026-01-01T10:00:00.250Z");
    EXPECT_EQ(dateOf(newYear + 59.9996), "2026-01-01T00:01:00.000Z");
    EXPECT_EQ(dateOf(newYear + 59.9994), "2026-01-01T00:00:59.999Z");
    EXPECT_EQ(dateOf(newYear - 0.0001), "2026-01-01T00:00:00.000Z");
    EXPECT_EQ(dateOf(newYear - 0.001), "2025-12-31T23:59:59.999Z");
    EXPECT_EQ(dateOf(951782400.0), "2000-02-29T00:00:00.000Z");
    EXPECT_EQ(dateOf(1.0), "1970-01-01T00:00:01.000Z");
    EXPECT_EQ(dateOf(253402300798.0), "9999-12-31T23:59:58.000Z");
    EXPECT_EQ(dateOf(0.0), "#EXTINF:6,\nsegment0.ts\n");
}

TEST(VELHLSPlaylistWriterMedia, WritesADateOnlyWhereItDoesNotFollow) {
    VELHLSMediaStream stream = playlistOf(5);
    stream.segments[1]->programDateTime = newYear;
    stream.segments[2]->programDateTime = newYear + 6.0004;
    stream.segments[3]->programDateTime = newYear + 12.002;
    stream.segments[4]->programDateTime = newYear + 18.002;
    EXPECT_EQ(segmentsOf(stream),
              lines({"#EXTINF:6,", "segment0.ts", "#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:00.000Z",
                     "#EXTINF:6,", "segment1.ts", "#EXTINF:6,", "segment2.ts",
                     "#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:12.002Z", "#EXTINF:6,", "segment3.ts",
                     "#EXTINF:6,", "segment4.ts"}));
}

TEST(VELHLSPlaylistWriterMedia, WritesEveryKnownDateWhenAskedTo) {
    VELHLSWriterOptions options;
    options.everyDate = true;
    VELHLSMediaStream stream = playlistOf(4);
    stream.segments[1]->programDateTime = newYear;
    stream.segments[2]->programDateTime = newYear + 6.0;
    EXPECT_EQ(segmentsOf(stream, options),
              lines({"#EXTINF:6,", "segment0.ts", "#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:00.000Z",
                     "#EXTINF:6,", "segment1.ts", "#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:06.000Z",
                     "#EXTINF:6,", "segment2.ts", "#EXTINF:6,", "segment3.ts"}));
    const std::string undated = lines(
        {"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6,", "segment0.ts", "#EXTINF:6,", "segment1.ts"});
    EXPECT_EQ(writtenAgain(undated, options), undated);
}

TEST(VELHLSPlaylistWriterMedia, DoesNotLetSmallDifferencesOfDatesAddUp) {
    VELHLSMediaStream stream = playlistOf(4);
    for (std::size_t index = 0; index < 4; ++index)
        stream.segments[index]->programDateTime = newYear + static_cast<double>(index) * 6.0004;
    // The third is 0.8 ms away from what follows from the first.
    EXPECT_EQ(segmentsOf(stream),
              lines({"#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:00.000Z", "#EXTINF:6,", "segment0.ts",
                     "#EXTINF:6,", "segment1.ts", "#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:12.001Z",
                     "#EXTINF:6,", "segment2.ts", "#EXTINF:6,", "segment3.ts"}));
}

TEST(VELHLSPlaylistWriterMedia, WritesAKnownDateAfterADiscontinuity) {
    VELHLSMediaStream stream = playlistOf(2);
    stream.endList = true;
    stream.segments[0]->programDateTime = newYear;
    stream.segments[1]->programDateTime = newYear + 6.0;
    stream.segments[1]->discontinuity = true;
    EXPECT_EQ(segmentsOf(stream),
              lines({"#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:00.000Z", "#EXTINF:6,", "segment0.ts",
                     "#EXT-X-DISCONTINUITY", "#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:06.000Z",
                     "#EXTINF:6,", "segment1.ts", "#EXT-X-ENDLIST"}));
}

TEST(VELHLSPlaylistWriterMedia, WritesNoDateThatWasCountedFrom1970) {
    const std::string undated = lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6,", "segment0.ts",
                                       "#EXTINF:6,", "segment1.ts", "#EXTINF:6,", "segment2.ts"});
    EXPECT_EQ(writtenAgain(undated), undated);
    // Also when the first segment has left, as it does from the window of a live playlist.
    const auto stream = readMedia(undated);
    stream->segments.erase(stream->segments.begin());
    stream->mediaSequence = 1;
    stream->segments.push_back(
        VELHLSMediaSegment::buildNextSegment(stream->segments.back(), 6.0, nullptr, "segment3.ts"));
    EXPECT_EQ(segmentsOf(*stream), lines({"#EXT-X-MEDIA-SEQUENCE:1", "#EXTINF:6,", "segment1.ts",
                                          "#EXTINF:6,", "segment2.ts", "#EXTINF:6,", "segment3.ts"}));
}

TEST(VELHLSPlaylistWriterMedia, WritesOffsetsOfByteRangesWhereTheModelHasThem) {
    VELHLSMediaStream stream = playlistOf(3);
    stream.version = 4;
    for (const auto& segment : stream.segments)
        segment->uri = "video.ts";
    stream.segments[0]->byteRange = rangeOf(100, 0);
    stream.segments[1]->byteRange = rangeOf(200, -1);
    stream.segments[2]->byteRange = rangeOf(0, 300);
    EXPECT_EQ(segmentsOf(stream),
              lines({"#EXTINF:6,", "#EXT-X-BYTERANGE:100@0", "video.ts", "#EXTINF:6,", "#EXT-X-BYTERANGE:200",
                     "video.ts", "#EXTINF:6,", "#EXT-X-BYTERANGE:0@300", "video.ts"}));
}

TEST(VELHLSPlaylistWriterMedia, RefusesAByteRangeWhoseBeginningNobodyKnows) {
    const std::string reason = "the byte range has no offset, and does not follow one of the same URI";
    VELHLSMediaStream stream = playlistOf(3);
    for (const auto& segment : stream.segments)
        segment->uri = "video.ts";
    stream.segments[0]->byteRange = rangeOf(100, -1);
    EXPECT_EQ(written(stream), "refused: segment 1: " + reason);
    stream.segments[0]->byteRange = nullptr;
    stream.segments[1]->byteRange = rangeOf(100, -1);
    EXPECT_EQ(written(stream), "refused: segment 2: " + reason);
    stream.segments[0]->byteRange = rangeOf(100, 0);
    stream.segments[1]->uri = "other.ts";
    EXPECT_EQ(written(stream), "refused: segment 2: " + reason);
    // A range in the URI is none that the next one could follow.
    stream.segments[0]->uri = stream.segments[1]->uri = "v/range/0-99";
    EXPECT_EQ(written(stream), "refused: segment 2: " + reason);
}

TEST(VELHLSPlaylistWriterMedia, WritesNoByteRangeThatTheUriTells) {
    const auto ranged = [](const std::string& uri, std::int64_t length, std::int64_t offset) {
        VELHLSMediaStream stream = playlistOf(1);
        stream.segments[0]->uri = uri;
        stream.segments[0]->byteRange = rangeOf(length, offset);
        const std::string text = written(stream);
        const std::size_t at = text.find("#EXTINF:6,\n") + 11;
        return text.substr(at, text.find('\n', at) - at);
    };
    EXPECT_EQ(ranged("seg/range/1000-1999", 1000, 1000), "seg/range/1000-1999");
    EXPECT_EQ(ranged("seg/range/0-0", 1, 0), "seg/range/0-0");
    EXPECT_EQ(ranged("abcdef42", 42, -1), "abcdef42");
    EXPECT_EQ(ranged("abcdef42", 42, 0), "#EXT-X-BYTERANGE:42@0");
    EXPECT_EQ(ranged("abcdef42", 43, 0), "#EXT-X-BYTERANGE:43@0");
    EXPECT_EQ(ranged("seg/range/1000-1999", 1000, 1001), "#EXT-X-BYTERANGE:1000@1001");
    EXPECT_EQ(ranged("abcd42", 42, 0), "#EXT-X-BYTERANGE:42@0");
    EXPECT_EQ(ranged("42", 42, 0), "#EXT-X-BYTERANGE:42@0");
    const std::int64_t most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(ranged("seg/range/1-2", most, most),
              "#EXT-X-BYTERANGE:9223372036854775807@9223372036854775807");
}

TEST(VELHLSPlaylistWriterMedia, WritesAKeyWhereItChangesAndItsEnd) {
    VELHLSMediaStream stream = playlistOf(6);
    stream.segments[1]->protectionData = keyOf(VELHLSProtectionData::AES128, "k1");
    // Another object of the same value is the same key.
    stream.segments[2]->protectionData = keyOf(VELHLSProtectionData::AES128, "k1");
    stream.segments[3]->protectionData = keyOf(VELHLSProtectionData::AES128, "k2");
    stream.segments[5]->protectionData = std::make_shared<VELHLSProtectionData>();
    EXPECT_EQ(segmentsOf(stream),
              lines({"#EXTINF:6,", "segment0.ts", "#EXT-X-KEY:METHOD=AES-128,URI=\"k1\"", "#EXTINF:6,",
                     "segment1.ts", "#EXTINF:6,", "segment2.ts", "#EXT-X-KEY:METHOD=AES-128,URI=\"k2\"",
                     "#EXTINF:6,", "segment3.ts", "#EXT-X-KEY:METHOD=NONE", "#EXTINF:6,", "segment4.ts",
                     "#EXTINF:6,", "segment5.ts"}));
}

TEST(VELHLSPlaylistWriterMedia, ComparesKeysByEachOfTheirMembers) {
    const auto linesFor = [](const std::function<void(VELHLSProtectionData&)>& change) {
        VELHLSMediaStream stream = playlistOf(2);
        const auto first = keyOf(VELHLSProtectionData::AES128, "k");
        const auto second = std::make_shared<VELHLSProtectionData>(*first);
        change(*second);
        stream.segments[0]->protectionData = first;
        stream.segments[1]->protectionData = second;
        const std::string text = written(stream);
        return text.substr(text.find("segment0.ts\n") + 12);
    };
    const std::string rest = "#EXTINF:6,\nsegment1.ts\n";
    EXPECT_EQ(linesFor([](VELHLSProtectionData&) {}), rest);
    EXPECT_EQ(linesFor([](VELHLSProtectionData& key) { key.uri = "l"; }),
              "#EXT-X-KEY:METHOD=AES-128,URI=\"l\"\n" + rest);
    EXPECT_EQ(linesFor([](VELHLSProtectionData& key) { key.iv = iv; }),
              "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=" + iv + "\n" + rest);
    EXPECT_EQ(linesFor([](VELHLSProtectionData& key) { key.method = VELHLSProtectionData::SampleAES; }),
              "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"k\"\n" + rest);
    EXPECT_EQ(linesFor([](VELHLSProtectionData& key) { key.keyFormatVersions = {2}; }),
              "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"2\"\n" + rest);
    // "identity" is the KEYFORMAT of a key without one.
    EXPECT_EQ(linesFor([](VELHLSProtectionData& key) { key.keyFormat = "identity"; }),
              "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",KEYFORMAT=\"identity\"\n" + rest);
}

TEST(VELHLSPlaylistWriterMedia, EndsAKeyBeforeOneOfAnotherKeyFormat) {
    VELHLSMediaStream stream = playlistOf(2);
    stream.segments[0]->protectionData = keyOf(VELHLSProtectionData::SampleAES, "k1", "com.example.a");
    stream.segments[1]->protectionData = keyOf(VELHLSProtectionData::SampleAES, "k2", "com.example.b");
    EXPECT_EQ(segmentsOf(stream),
              lines({"#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"k1\",KEYFORMAT=\"com.example.a\"", "#EXTINF:6,",
                     "segment0.ts", "#EXT-X-KEY:METHOD=NONE",
                     "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"k2\",KEYFORMAT=\"com.example.b\"", "#EXTINF:6,",
                     "segment1.ts"}));
}

TEST(VELHLSPlaylistWriterMedia, WritesAMethodOfNoneThatStandsBeforeAnyKey) {
    VELHLSMediaStream stream = playlistOf(2);
    stream.segments[0]->protectionData = std::make_shared<VELHLSProtectionData>();
    EXPECT_EQ(segmentsOf(stream),
              lines({"#EXT-X-KEY:METHOD=NONE", "#EXTINF:6,", "segment0.ts", "#EXTINF:6,", "segment1.ts"}));
}

TEST(VELHLSPlaylistWriterMedia, WritesAMapWhereItChanges) {
    VELHLSMediaStream stream = playlistOf(4);
    stream.segments[0]->misMap = mapOf("init0.mp4");
    stream.segments[1]->misMap = mapOf("init0.mp4");
    stream.segments[2]->misMap = mapOf("init0.mp4");
    stream.segments[2]->misMap->byteRange = rangeOf(720, 0);
    stream.segments[3]->misMap = mapOf("init0.mp4");
    stream.segments[3]->misMap->byteRange = rangeOf(0, -1);
    EXPECT_EQ(segmentsOf(stream),
              lines({"#EXT-X-MAP:URI=\"init0.mp4\"", "#EXTINF:6,", "segment0.ts", "#EXTINF:6,", "segment1.ts",
                     "#EXT-X-MAP:URI=\"init0.mp4\",BYTERANGE=\"720@0\"", "#EXTINF:6,", "segment2.ts",
                     "#EXT-X-MAP:URI=\"init0.mp4\",BYTERANGE=\"0\"", "#EXTINF:6,", "segment3.ts"}));
}

TEST(VELHLSPlaylistWriterMedia, ComparesTheByteRangesOfMapsByLengthAndOffset) {
    const auto secondOf = [](std::int64_t length, std::int64_t offset) {
        VELHLSMediaStream stream = playlistOf(2);
        for (const auto& segment : stream.segments)
            segment->misMap = mapOf("init.mp4");
        stream.segments[0]->misMap->byteRange = rangeOf(720, 0);
        stream.segments[1]->misMap->byteRange = rangeOf(length, offset);
        const std::string text = written(stream);
        return text.substr(text.find("segment0.ts\n") + 12);
    };
    const std::string rest = "#EXTINF:6,\nsegment1.ts\n";
    EXPECT_EQ(secondOf(720, 0), rest);
    EXPECT_EQ(secondOf(720, 720), "#EXT-X-MAP:URI=\"init.mp4\",BYTERANGE=\"720@720\"\n" + rest);
    EXPECT_EQ(secondOf(721, 0), "#EXT-X-MAP:URI=\"init.mp4\",BYTERANGE=\"721@0\"\n" + rest);
}

/// The key and map lines of a playlist whose second segment has another key and another map than the first.
std::string keysAndMaps(const std::shared_ptr<VELHLSProtectionData>& first,
                        const std::shared_ptr<VELHLSProtectionData>& second,
                        const VELHLSWriterOptions& options = {}) {
    VELHLSMediaStream stream = playlistOf(2);
    stream.segments[0]->protectionData = first;
    stream.segments[0]->misMap = mapOf("i0");
    stream.segments[1]->protectionData = second;
    stream.segments[1]->misMap = mapOf("i1");
    std::istringstream text(written(stream, options));
    std::string order;
    for (std::string line; std::getline(text, line);) {
        if (line.find("#EXT-X-KEY:METHOD=NONE") == 0) order += "none ";
        if (line.find("URI=\"") == std::string::npos) {
            if (line.find("segment") == 0) order += "| ";
            continue;
        }
        const std::size_t at = line.find("URI=\"") + 5;
        order += line.substr(at, line.find('"', at) - at) + " ";
    }
    return order;
}

TEST(VELHLSPlaylistWriterMedia, WritesAMapAfterTheKeyThatMayEncryptIt) {
    const auto withIv = keyOf(VELHLSProtectionData::AES128, "k");
    withIv->iv = iv;
    EXPECT_EQ(keysAndMaps(withIv, nullptr), "k i0 | none i1 | ");
    EXPECT_EQ(keysAndMaps(nullptr, withIv), "i0 | k i1 | ");
    EXPECT_EQ(keysAndMaps(keyOf(VELHLSProtectionData::SampleAES, "k"), nullptr), "k i0 | none i1 | ");
}

TEST(VELHLSPlaylistWriterMedia, WritesAMapBeforeAKeyThatCannotEncryptIt) {
    const auto withoutIv = keyOf(VELHLSProtectionData::AES128, "k");
    EXPECT_EQ(keysAndMaps(withoutIv, withoutIv), "i0 k | i1 | ");
    EXPECT_EQ(keysAndMaps(withoutIv, keyOf(VELHLSProtectionData::AES128, "l")), "i0 k | i1 l | ");
    EXPECT_EQ(keysAndMaps(withoutIv, nullptr), "i0 k | none i1 | ");
}

TEST(VELHLSPlaylistWriterMedia, WritesClearMapsOutsideOfAllKeysWhenAskedTo) {
    VELHLSWriterOptions options;
    options.clearInitializationSections = true;
    const auto key = keyOf(VELHLSProtectionData::AES128, "k");
    key->iv = iv;
    EXPECT_EQ(keysAndMaps(key, key, options), "i0 k | none i1 k | ");
    EXPECT_EQ(keysAndMaps(key, keyOf(VELHLSProtectionData::AES128, "l"), options), "i0 k | none i1 l | ");
    EXPECT_EQ(keysAndMaps(key, nullptr, options), "i0 k | none i1 | ");
    EXPECT_EQ(keysAndMaps(nullptr, key, options), "i0 | i1 k | ");
}

TEST(VELHLSPlaylistWriterMedia, LeavesAMapWhereItWasWhenOnlyTheKeyChanges) {
    // Written again after the key it would be declared encrypted.
    const std::string text =
        lines({"#EXTM3U", "#EXT-X-VERSION:6", "#EXT-X-TARGETDURATION:6", "#EXT-X-MAP:URI=\"init.mp4\"",
               "#EXTINF:6,", "segment0.mp4", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=" + iv, "#EXTINF:6,",
               "segment1.mp4"});
    EXPECT_EQ(writtenAgain(text), text);
    const std::string clear =
        lines({"#EXTM3U", "#EXT-X-VERSION:6", "#EXT-X-TARGETDURATION:6", "#EXT-X-MAP:URI=\"init.mp4\"",
               "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"", "#EXTINF:6,", "segment0.mp4"});
    EXPECT_EQ(writtenAgain(clear), clear);
}

TEST(VELHLSPlaylistWriterMedia, WritesCueMarkersWhereTheyAreReadBack) {
    VELHLSMediaStream stream = playlistOf(4);
    stream.segments[0]->cueOut = "30";
    stream.segments[1]->cueOutCont = "6/30";
    stream.segments[2]->cueIn = true;
    stream.segments[2]->cueOut = "12";
    stream.segments[3]->cueIn = true;
    stream.segments[3]->protectionData = keyOf(VELHLSProtectionData::AES128, "k");
    EXPECT_EQ(
        segmentsOf(stream),
        lines({"#EXT-X-CUE-OUT:30", "#EXTINF:6,", "segment0.ts", "#EXT-X-CUE-OUT-CONT:6/30", "#EXTINF:6,",
               "segment1.ts", "#EXTINF:6,", "#EXT-X-CUE-IN", "#EXT-X-CUE-OUT:12", "segment2.ts",
               "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"", "#EXT-X-CUE-IN", "#EXTINF:6,", "segment3.ts"}));
    const auto reread = readMedia(written(stream));
    ASSERT_NE(reread, nullptr);
    EXPECT_EQ(reread->segments[0]->cueOut, "30");
    EXPECT_EQ(reread->segments[1]->cueOutCont, "6/30");
    EXPECT_TRUE(reread->segments[2]->cueIn);
    EXPECT_EQ(reread->segments[2]->cueOut, "12");
    EXPECT_TRUE(reread->segments[3]->cueIn);
    VELHLSWriterOptions options;
    options.cueMarkers = false;
    EXPECT_EQ(written(stream, options).find("CUE"), std::string::npos);
}

TEST(VELHLSPlaylistWriterMedia, WritesThePlaylistThatHoldsEveryTag) {
    EXPECT_EQ(writtenAgain(whole::media),
              lines({"#EXTM3U",
                     "#EXT-X-VERSION:7",
                     "#EXT-X-TARGETDURATION:7",
                     "#EXT-X-MEDIA-SEQUENCE:100",
                     "#EXT-X-DISCONTINUITY-SEQUENCE:3",
                     "#EXT-X-PLAYLIST-TYPE:EVENT",
                     "#EXT-X-I-FRAMES-ONLY",
                     "#EXT-X-INDEPENDENT-SEGMENTS",
                     "#EXT-X-START:TIME-OFFSET=-12.5,PRECISE=YES",
                     "#EXT-X-KEY:METHOD=AES-128,URI=\"https://keys.example.com/7f3a/"
                     "0001\",IV=0x0123456789abcdef0123456789abcdef,KEYFORMAT=\"com.example.streaming.key\","
                     "KEYFORMATVERSIONS=\"1/2/5\"",
                     "#EXT-X-MAP:URI=\"the/initialization/section.mp4\",BYTERANGE=\"812@0\"",
                     "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:05.250Z",
                     "#EXT-X-CUE-OUT:DURATION=12,ID=\"the first break\"",
                     "#EXTINF:6.006,The title of a programme",
                     "#EXT-X-BYTERANGE:480000@812",
                     "the/segments/of/the/programme.mp4",
                     "#EXT-X-DISCONTINUITY",
                     "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:11.256Z",
                     "#EXT-X-CUE-OUT-CONT:ElapsedTime=6,Duration=12",
                     "#EXTINF:6.006,",
                     "the/segments/of/the/advert/bytes=1000-2999.mp4",
                     "#EXT-X-KEY:METHOD=NONE",
                     "#EXT-X-CUE-IN",
                     "#EXTINF:6.006,",
                     "the/segments/of/the/programme/0002.mp4",
                     "#EXTINF:6,",
                     "day-march-of-the-year/segment_1001.mp4",
                     "#EXTINF:6,",
                     "second_1001_of_1001.mp4",
                     "#EXTINF:6,",
                     "day-march-of-the-year/segment_1002.mp4",
                     "#EXTINF:6,",
                     "second_1002_of_1002.mp4",
                     "#EXTINF:6,",
                     "day-march-of-the-year/segment_1003.mp4",
                     "#EXTINF:6,",
                     "second_1003_of_1003.mp4",
                     "#EXTINF:6,",
                     "day-march-of-the-year/segment_1004.mp4",
                     "#EXTINF:6,",
                     "second_1004_of_1004.mp4",
                     "#EXT-X-ENDLIST"}));
}

// --- what is refused

TEST(VELHLSPlaylistWriterMedia, RefusesHeadersThatNobodyReads) {
    const auto with = [](const std::function<void(VELHLSMediaStream&)>& change) { return mediaWith(change); };
    using Stream = VELHLSMediaStream;
    EXPECT_EQ(with([](Stream& stream) { stream.targetDuration = -1.0; }),
              "refused: the target duration is negative");
    EXPECT_EQ(with([](Stream& stream) { stream.targetDuration = notANumber; }),
              "refused: the target duration is not a number");
    EXPECT_EQ(with([](Stream& stream) { stream.targetDuration = infinity; }),
              "refused: the target duration is too long");
    EXPECT_EQ(with([](Stream& stream) { stream.targetDuration = 9223372036854775808.0; }),
              "refused: the target duration is too long");
    EXPECT_EQ(with([](Stream& stream) { stream.mediaSequence = -1; }),
              "refused: the media sequence is negative");
    EXPECT_EQ(with([](Stream& stream) { stream.discontinuitySequence = -1; }),
              "refused: the discontinuity sequence is negative");
    for (const double offset : {infinity, -infinity, notANumber}) {
        EXPECT_EQ(with([offset](Stream& stream) { stream.startTimeOffset = offset; }),
                  "refused: the start offset is not a finite number");
    }
}

TEST(VELHLSPlaylistWriterMedia, RefusesSegmentsThatWouldBreakALineOrInjectATag) {
    const auto with = [](const std::function<void(VELHLSMediaSegment&)>& change) {
        return segmentWith(change);
    };
    using Segment = VELHLSMediaSegment;
    for (const char* const uri : {"a.ts\n", "a\n.ts", "a.ts\r", "\n", "\r", "long/enough/to/be\n/words.ts",
                                  "eight_by\nte.ts", "a.ts\r\n#EXT-X-ENDLIST"}) {
        EXPECT_EQ(with([uri](Segment& segment) { segment.uri = uri; }),
                  "refused: segment 1: the URI holds a line end")
            << uri;
    }
    for (const char* const uri : {"", " ", "\t \v\f"}) {
        EXPECT_EQ(with([uri](Segment& segment) { segment.uri = uri; }),
                  "refused: segment 1: the URI is blank");
    }
    for (const char* const uri : {"#EXT-X-ENDLIST", "#", " #EXTINF:6,"}) {
        EXPECT_EQ(with([uri](Segment& segment) { segment.uri = uri; }),
                  "refused: segment 1: the URI begins with \"#\"");
    }
    for (const char* const title : {",\n", ",Intro\r", "Intro\n#EXT-X-ENDLIST", "\n", ",\tIntroduction\n"}) {
        EXPECT_EQ(with([title](Segment& segment) { segment.title = title; }),
                  "refused: segment 1: the title holds a line end");
    }
    EXPECT_EQ(with([](Segment& segment) { segment.cueOut = "30\n"; }),
              "refused: segment 1: a cue marker holds a line end");
    EXPECT_EQ(with([](Segment& segment) { segment.cueOutCont = "\r"; }),
              "refused: segment 1: a cue marker holds a line end");
}

TEST(VELHLSPlaylistWriterMedia, RefusesReferencesToVariablesThatAreNotWritten) {
    using Segment = VELHLSMediaSegment;
    const std::string why = "refers to a variable, and variables are not written";
    for (const char* const uri :
         {"{$n}.ts", "folder/{$folder-of_2}/segment.ts", "a{$}{$b}", "{${$n}}", " {$n}", "#{$n}"}) {
        EXPECT_EQ(segmentWith([uri](Segment& segment) { segment.uri = uri; }),
                  "refused: segment 1: the URI " + why)
            << uri;
    }
    EXPECT_EQ(segmentWith([](Segment& segment) { segment.misMap = mapOf("{$n}.mp4"); }),
              "refused: segment 1: the initialization section's URI " + why);
    EXPECT_EQ(segmentWith([](Segment& segment) {
                  segment.protectionData = keyOf(VELHLSProtectionData::AES128, "https://a/{$key}");
              }),
              "refused: segment 1: the key " + why);
    EXPECT_EQ(segmentWith([](Segment& segment) {
                  segment.protectionData = keyOf(VELHLSProtectionData::AES128, "k");
                  segment.protectionData->keyFormat = "{$format}";
              }),
              "refused: segment 1: the key " + why);
    // What players put no variables into, and what is no reference.
    for (const char* const uri : {"{n}/$n.ts", "segment{$}.ts", "segment{$n", "segment{$a.b}.ts", "{$"}) {
        EXPECT_EQ(writer::isRefused(segmentWith([uri](Segment& segment) { segment.uri = uri; })), false)
            << uri;
    }
    EXPECT_EQ(writer::isRefused(segmentWith([](Segment& segment) { segment.title = "{$n}"; })), false);
}

TEST(VELHLSPlaylistWriterMedia, RefusesNumbersThatAreNoDuration) {
    const auto with = [](double duration) {
        return segmentWith([duration](VELHLSMediaSegment& segment) { segment.duration = duration; });
    };
    EXPECT_EQ(with(0.0), "refused: segment 1: the duration is 0, which stands for none");
    EXPECT_EQ(with(-6.0), "refused: segment 1: the duration is negative");
    EXPECT_EQ(with(-infinity), "refused: segment 1: the duration is negative");
    EXPECT_EQ(with(notANumber), "refused: segment 1: the duration is not a number");
    EXPECT_EQ(with(infinity), "refused: segment 1: the duration is too long");
    EXPECT_EQ(with(9223372036854775808.0), "refused: segment 1: the duration is too long");
}

TEST(VELHLSPlaylistWriterMedia, RefusesDatesThatNobodyReads) {
    const auto with = [](double date) {
        return segmentWith([date](VELHLSMediaSegment& segment) { segment.programDateTime = date; });
    };
    EXPECT_EQ(with(-1.0), "refused: segment 1: the date is before 1970");
    EXPECT_EQ(with(notANumber), "refused: segment 1: the date is not a finite number");
    EXPECT_EQ(with(infinity), "refused: segment 1: the date is not a finite number");
    EXPECT_EQ(with(253402300800.0), "refused: segment 1: the date is after the year 9999");
    EXPECT_EQ(with(1e300), "refused: segment 1: the date is after the year 9999");
}

TEST(VELHLSPlaylistWriterMedia, RefusesKeysAndMapsThatCannotBeWritten) {
    const auto with = [](const std::function<void(VELHLSProtectionData&)>& change) {
        return segmentWith([&change](VELHLSMediaSegment& segment) {
            segment.protectionData = keyOf(VELHLSProtectionData::AES128, "k");
            change(*segment.protectionData);
        });
    };
    const std::string refused = "refused: segment 1: the key ";
    using Key = VELHLSProtectionData;
    EXPECT_EQ(with([](Key& key) { key.uri = ""; }), refused + "has no URI");
    EXPECT_EQ(with([](Key& key) { key.uri = "k\""; }),
              refused + "has a URI that holds a line end or a quote");
    EXPECT_EQ(with([](Key& key) { key.uri = "k\n"; }),
              refused + "has a URI that holds a line end or a quote");
    EXPECT_EQ(with([](Key& key) { key.iv = "0x1"; }),
              refused + "has an IV that is not \"0x\" and 32 hexadecimal digits");
    EXPECT_EQ(with([](Key& key) { key.keyFormat = "a\"b"; }),
              refused + "has a KEYFORMAT that holds a line end or a quote");
    EXPECT_EQ(with([](Key& key) { key.keyFormatVersions = {}; }),
              refused + "has KEYFORMATVERSIONS that are none");
    EXPECT_EQ(with([](Key& key) {
                  key.keyFormatVersions = {1, -2};
              }),
              refused + "has KEYFORMATVERSIONS that are none");
    EXPECT_EQ(with([](Key& key) { key.method = static_cast<Key::ProtectionMethod>(7); }),
              refused + "has no METHOD");

    const auto withMap = [](const std::function<void(VELHLSMISMap&)>& change) {
        return segmentWith([&change](VELHLSMediaSegment& segment) {
            segment.misMap = mapOf("init.mp4");
            change(*segment.misMap);
        });
    };
    const std::string refusedMap = "refused: segment 1: the initialization section's ";
    EXPECT_EQ(withMap([](VELHLSMISMap& map) { map.uri = ""; }), refusedMap + "URI is empty");
    EXPECT_EQ(withMap([](VELHLSMISMap& map) { map.uri = "a\"b"; }), refusedMap + "URI holds a quote");
    EXPECT_EQ(withMap([](VELHLSMISMap& map) { map.uri = "a\rb"; }), refusedMap + "URI holds a line end");
    EXPECT_EQ(withMap([](VELHLSMISMap& map) { map.byteRange = rangeOf(-1, 0); }),
              refusedMap + "byte range is negative");
}

TEST(VELHLSPlaylistWriterMedia, RefusesWhatNoTagCanSay) {
    VELHLSMediaStream stream = playlistOf(3);
    stream.segments[1]->misMap = mapOf("init.mp4");
    EXPECT_EQ(written(stream),
              "refused: segment 3: the initialization section cannot end: give the segment one");
    stream = playlistOf(3);
    stream.segments[1] = nullptr;
    EXPECT_EQ(written(stream), "refused: segment 2: the segment is null");
    stream = playlistOf(1);
    stream.segments[0]->byteRange = rangeOf(-1, 0);
    EXPECT_EQ(written(stream), "refused: segment 1: the byte range is negative");
}

TEST(VELHLSPlaylistWriterMedia, WritesNothingWhenALaterSegmentIsRefused) {
    VELHLSMediaStream stream = playlistOf(2000);
    stream.segments.back()->duration = -1.0;
    std::ostringstream out;
    EXPECT_EQ(VELHLSPlaylistWriter::write(stream, out), "segment 2000: the duration is negative");
    EXPECT_EQ(out.str(), "");
}

TEST(VELHLSPlaylistWriterMedia, WritesAsManySegmentsAsThereAre) {
    constexpr std::size_t many = 20000;
    std::string expected;
    for (std::size_t index = 0; index < many; ++index)
        expected += "#EXTINF:6,\nsegment" + std::to_string(index) + ".ts\n";
    EXPECT_TRUE(segmentsOf(playlistOf(many)) == expected);
}

TEST(VELHLSPlaylistWriterMedia, WritesTheSameWhateverTheStreamsFormatAndLocaleAre) {
    struct Commas : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const auto stream = readMedia(whole::media);
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new Commas));
    out.precision(2);
    out.width(40);
    out.setf(std::ios::fixed | std::ios::hex);
    EXPECT_EQ(VELHLSPlaylistWriter::write(*stream, out), std::nullopt);
    EXPECT_EQ(out.str(), written(*stream));
}

// --- master playlists

std::shared_ptr<VELHLSMediaVariant> variantOf(std::uint64_t bandwidth, const std::string& uri) {
    auto variant = std::make_shared<VELHLSMediaVariant>();
    variant->bandwidth = bandwidth;
    variant->uri = uri;
    return variant;
}

void add(VELHLSParsedManifest& manifest, const std::shared_ptr<VELHLSMediaVariant>& variant) {
    manifest.variants.emplace(variant->bandwidth, variant);
    if (!variant->isIFrame) manifest.streamVariants.push_back(variant);
}

VELHLSParsedManifest smallMaster() {
    VELHLSParsedManifest manifest;
    add(manifest, variantOf(800000, "low.m3u8"));
    return manifest;
}

std::string masterWith(const std::function<void(VELHLSParsedManifest&)>& change,
                       const VELHLSWriterOptions& options = {}) {
    VELHLSParsedManifest manifest = smallMaster();
    change(manifest);
    return written(manifest, options);
}

std::string variantWith(const std::function<void(VELHLSMediaVariant&)>& change) {
    return masterWith([&change](VELHLSParsedManifest& manifest) { change(*manifest.streamVariants[0]); });
}

const std::string smallText = "#EXT-X-STREAM-INF:BANDWIDTH=800000\nlow.m3u8\n";

TEST(VELHLSPlaylistWriterMaster, WritesNothingThatNoOneSet) {
    EXPECT_EQ(written(smallMaster()), "#EXTM3U\n" + smallText);
}

TEST(VELHLSPlaylistWriterMaster, WritesAStartOffsetThatSomeoneSet) {
    const auto start = [](double offset, bool precise) {
        return masterWith([&](VELHLSParsedManifest& manifest) {
            manifest.startTimeOffset = offset;
            manifest.startPrecise = precise;
        });
    };
    EXPECT_EQ(start(-1.0, false), "#EXTM3U\n" + smallText);
    EXPECT_EQ(start(-1.0, true), "#EXTM3U\n#EXT-X-START:TIME-OFFSET=-1,PRECISE=YES\n" + smallText);
    EXPECT_EQ(start(0.0, false), "#EXTM3U\n#EXT-X-START:TIME-OFFSET=0\n" + smallText);
    EXPECT_EQ(start(1234567.25, false), "#EXTM3U\n#EXT-X-START:TIME-OFFSET=1234567.25\n" + smallText);
    EXPECT_EQ(start(notANumber, false), "refused: the start offset is not a finite number");
}

TEST(VELHLSPlaylistWriterMaster, WritesVariantsInTheirOrderAndIFrameVariantsAfterThem) {
    VELHLSParsedManifest manifest;
    const auto iFrame = variantOf(90000, "i.m3u8");
    iFrame->isIFrame = true;
    add(manifest, iFrame);
    add(manifest, variantOf(3000000, "high.m3u8"));
    add(manifest, variantOf(800000, "low.m3u8"));
    EXPECT_EQ(written(manifest), lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=3000000", "high.m3u8",
                                        "#EXT-X-STREAM-INF:BANDWIDTH=800000", "low.m3u8",
                                        "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=90000,URI=\"i.m3u8\""}));
}

TEST(VELHLSPlaylistWriterMaster, WritesAllAttributesOfAVariant) {
    EXPECT_EQ(variantWith([](VELHLSMediaVariant& variant) {
                  variant.averageBandwidth = 700000;
                  variant.programId = 1;
                  variant.codecs = "avc1.64001f,mp4a.40.2";
                  variant.resolution = "1280x720";
              }),
              "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=800000,AVERAGE-BANDWIDTH=700000,PROGRAM-ID=1,"
              "CODECS=\"avc1.64001f,mp4a.40.2\",RESOLUTION=1280x720\nlow.m3u8\n");
}

TEST(VELHLSPlaylistWriterMaster, SaysThatThereAreNoCaptionsOfAllVariantsOrOfNone) {
    VELHLSWriterOptions options;
    options.noClosedCaptions = true;
    VELHLSParsedManifest manifest = smallMaster();
    add(manifest, variantOf(900000, "high.m3u8"));
    const auto iFrame = variantOf(90000, "i.m3u8");
    iFrame->isIFrame = true;
    add(manifest, iFrame);
    EXPECT_EQ(written(manifest, options),
              lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=800000,CLOSED-CAPTIONS=NONE", "low.m3u8",
                     "#EXT-X-STREAM-INF:BANDWIDTH=900000,CLOSED-CAPTIONS=NONE", "high.m3u8",
                     "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=90000,URI=\"i.m3u8\""}));

    auto rendition = std::make_shared<VELHLSMediaStreamRendition>();
    rendition->type = VELHLSMediaStreamRendition::ClosedCaptions;
    rendition->groupId = "cc";
    rendition->name = "English";
    rendition->instreamId = "CC1";
    manifest.renditions[rendition->type]["cc"]["English"] = rendition;
    manifest.streamVariants[1]->groupIds[VELHLSMediaStreamRendition::ClosedCaptions] = "cc";
    EXPECT_EQ(written(manifest, options),
              lines({"#EXTM3U",
                     "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"cc\",NAME=\"English\",INSTREAM-ID=\"CC1\"",
                     "#EXT-X-STREAM-INF:BANDWIDTH=800000", "low.m3u8",
                     "#EXT-X-STREAM-INF:BANDWIDTH=900000,CLOSED-CAPTIONS=\"cc\"", "high.m3u8",
                     "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=90000,URI=\"i.m3u8\""}));
    // A captions service of CEA-708 needs version 7.
    rendition->instreamId = "SERVICE1";
    EXPECT_EQ(written(manifest).substr(0, 26), "#EXTM3U\n#EXT-X-VERSION:7\n#");
}

TEST(VELHLSPlaylistWriterMaster, WritesNominalBitratesWhenAskedTo) {
    VELHLSWriterOptions options;
    options.nominalBitrates = true;
    VELHLSParsedManifest manifest = smallMaster();
    EXPECT_EQ(written(manifest, options), "#EXTM3U\n" + smallText);
    manifest.streamVariants[0]->nominalVideoBitrate = 700000;
    EXPECT_EQ(written(manifest, options),
              "#EXTM3U\n#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=700000\n" + smallText);
    EXPECT_EQ(written(manifest), "#EXTM3U\n" + smallText);
    manifest.streamVariants[0]->nominalVideoBitrate = 0;
    manifest.streamVariants[0]->nominalAudioBitrate = 64000;
    const std::string text = written(manifest, options);
    EXPECT_EQ(text,
              "#EXTM3U\n#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=0,NOMINAL_AUDIO_BITRATE=64000\n" + smallText);
    EXPECT_EQ(readMaster(text)->streamVariants[0]->nominalAudioBitrate, 64000u);
    add(manifest, variantOf(900000, "high.m3u8"));
    EXPECT_EQ(written(manifest, options),
              "refused: variant 2: nominal bit rates stand in some variants and not in all");
}

TEST(VELHLSPlaylistWriterMaster, WritesThePlaylistThatHoldsEveryTag) {
    VELHLSWriterOptions options;
    options.nominalBitrates = true;
    EXPECT_EQ(
        written(*readMaster(whole::master), options),
        lines({"#EXTM3U", "#EXT-X-VERSION:6", "#EXT-X-INDEPENDENT-SEGMENTS",
               "#EXT-X-START:TIME-OFFSET=4.5,PRECISE=YES",
               "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"audio-in-stereo-aac\",NAME=\"English, as it was "
               "recorded\",URI=\"audio/stereo/index.m3u8\",LANGUAGE=\"en\",DEFAULT=YES,AUTOSELECT=YES,"
               "CHARACTERISTICS=\"public.accessibility.describes-video\"",
               "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"audio-in-surround-ac3\",NAME=\"English, as it was "
               "recorded\",URI=\"audio/surround/index.m3u8\",LANGUAGE=\"en\",DEFAULT=YES,AUTOSELECT=YES,"
               "CHARACTERISTICS=\"public.accessibility.describes-video\"",
               "#EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"video-from-the-goal\",NAME=\"The camera after the "
               "goal\",URI=\"video/goal/index.m3u8\",DEFAULT=YES,AUTOSELECT=YES",
               "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"subtitles-of-all-kinds\",NAME=\"Deutsch, nur "
               "Schilder\",URI=\"text/de/index.m3u8\",LANGUAGE=\"de\",ASSOC-LANGUAGE=\"de-AT\","
               "AUTOSELECT=YES,FORCED=YES",
               "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"captions-in-the-video\",NAME=\"English "
               "captions, CEA-608\",LANGUAGE=\"en\",INSTREAM-ID=\"CC1\"",
               "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=6200000,NOMINAL_AUDIO_BITRATE=128000",
               "#EXT-X-STREAM-INF:BANDWIDTH=8188000,AVERAGE-BANDWIDTH=6328000,CODECS=\"avc1.640028,mp4a."
               "40.2\",RESOLUTION=1920x1080,AUDIO=\"audio-in-stereo-aac\",VIDEO=\"video-from-the-goal\","
               "SUBTITLES=\"subtitles-of-all-kinds\",CLOSED-CAPTIONS=\"captions-in-the-video\"",
               "video/1080p/with/stereo/index.m3u8",
               "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=3400000,NOMINAL_AUDIO_BITRATE=384000",
               "#EXT-X-STREAM-INF:BANDWIDTH=4548000,CODECS=\"avc1.64001f,ac-3\",AUDIO=\"audio-in-surround-"
               "ac3\"",
               "video/720p/with/surround/index.m3u8",
               "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=283333,CODECS=\"avc1.64001f\",URI=\"video/720p/iframes/"
               "index.m3u8\"",
               "#EXT-X-SESSION-DATA:DATA-ID=\"com.example.programme.title\",VALUE=\"The programme's "
               "title\"",
               "#EXT-X-SESSION-DATA:DATA-ID=\"com.example.programme.credits\",URI=\"meta/credits/"
               "index.json\"",
               "#EXT-X-SESSION-KEY:METHOD=SAMPLE-AES,URI=\"skd://key.example.com/7f3a/0001\","
               "IV=0x0123456789abcdef0123456789abcdef,KEYFORMAT=\"com.example.streaming.key\","
               "KEYFORMATVERSIONS=\"1/2/5\""}));
}

TEST(VELHLSPlaylistWriterMaster, WritesTheTrackTypeOfARendition) {
    const std::string text =
        lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",AUDIO-TRACK-TYPE=\"x\"",
               "#EXT-X-STREAM-INF:BANDWIDTH=800000,AUDIO=\"a\"", "low.m3u8"});
    EXPECT_EQ(written(*readMaster(text)), text);
}

TEST(VELHLSPlaylistWriterMaster, RaisesTheVersionToThatOfTheSessionKeys) {
    const auto keyed = [](const std::function<void(VELHLSProtectionData&)>& change) {
        return masterWith([&change](VELHLSParsedManifest& manifest) {
                   const auto key = keyOf(VELHLSProtectionData::SampleAES, "k");
                   change(*key);
                   manifest.sessionKeys.push_back(key);
               })
            .substr(8, 17);
    };
    EXPECT_EQ(keyed([](VELHLSProtectionData&) {}), smallText.substr(0, 17));
    EXPECT_EQ(keyed([](VELHLSProtectionData& key) { key.iv = iv; }), "#EXT-X-VERSION:2\n");
    EXPECT_EQ(keyed([](VELHLSProtectionData& key) { key.keyFormat = "a"; }), "#EXT-X-VERSION:5\n");
}

TEST(VELHLSPlaylistWriterMaster, RefusesVariantsThatWouldBreakALineOrInjectATag) {
    using Variant = VELHLSMediaVariant;
    const auto with = variantWith;
    EXPECT_EQ(with([](Variant& variant) { variant.uri = "a\nb"; }),
              "refused: variant 1: URI holds a line end");
    EXPECT_EQ(with([](Variant& variant) { variant.uri = "#EXT-X-MEDIA:"; }),
              "refused: variant 1: URI begins with \"#\"");
    EXPECT_EQ(with([](Variant& variant) { variant.uri = "  "; }), "refused: variant 1: URI is blank");
    EXPECT_EQ(with([](Variant& variant) { variant.uri = ""; }), "refused: variant 1: URI is empty");
    EXPECT_EQ(with([](Variant& variant) { variant.bandwidth = 0; }), "refused: variant 1: BANDWIDTH is 0");
    EXPECT_EQ(with([](Variant& variant) { variant.codecs = "a\"b"; }),
              "refused: variant 1: CODECS holds a quote");
    EXPECT_EQ(with([](Variant& variant) { variant.codecs = "a\r"; }),
              "refused: variant 1: CODECS holds a line end");
    for (const char* const resolution : {"1x1,AUDIO=x", "1x1\n", "\"1x1\""}) {
        EXPECT_EQ(with([resolution](Variant& variant) { variant.resolution = resolution; }),
                  "refused: variant 1: RESOLUTION holds a line end, a quote or a comma");
    }
    EXPECT_EQ(masterWith([](VELHLSParsedManifest& manifest) {
                  const auto iFrame = variantOf(1, "a\"b");
                  iFrame->isIFrame = true;
                  add(manifest, iFrame);
              }),
              "refused: I-frame variant 1: URI holds a quote");
}

TEST(VELHLSPlaylistWriterMaster, RefusesReferencesToVariablesThatAreNotWritten) {
    using Variant = VELHLSMediaVariant;
    const std::string why = " refers to a variable, and variables are not written";
    EXPECT_EQ(variantWith([](Variant& variant) { variant.uri = "{$host}/low.m3u8"; }),
              "refused: variant 1: URI" + why);
    EXPECT_EQ(variantWith([](Variant& variant) { variant.codecs = "{$codecs}"; }),
              "refused: variant 1: CODECS" + why);
    EXPECT_EQ(masterWith([](VELHLSParsedManifest& manifest) {
                  manifest.sessionData.push_back(std::make_shared<VELHLSManifestSessionData>(
                      VELHLSManifestSessionData{"com.example.title", "{$title}", "", ""}));
              }),
              "refused: session data 1: VALUE" + why);
}

TEST(VELHLSPlaylistWriterMaster, RefusesOtherRecordsThatWouldBreakALine) {
    const auto withRendition = [](const std::function<void(VELHLSMediaStreamRendition&)>& change) {
        return masterWith([&change](VELHLSParsedManifest& manifest) {
            auto rendition = std::make_shared<VELHLSMediaStreamRendition>();
            rendition->type = VELHLSMediaStreamRendition::Audio;
            rendition->groupId = "g";
            rendition->name = "n";
            change(*rendition);
            manifest.renditions[rendition->type][rendition->groupId][rendition->name] = rendition;
        });
    };
    using Rendition = VELHLSMediaStreamRendition;
    const std::string refused = "refused: rendition 1: ";
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.groupId = "a\"b"; }),
              refused + "GROUP-ID holds a quote");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.name = "a\nb"; }),
              refused + "NAME holds a line end");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.uri = "a\"b"; }),
              refused + "URI holds a quote");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.language = "a\"b"; }),
              refused + "LANGUAGE holds a quote");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.assocLanguage = "a\"b"; }),
              refused + "ASSOC-LANGUAGE holds a quote");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.audioTrackType = "a\"b"; }),
              refused + "AUDIO-TRACK-TYPE holds a quote");
    EXPECT_EQ(withRendition([](Rendition& rendition) {
                  rendition.characteristics = {"a", "b\""};
              }),
              refused + "CHARACTERISTICS holds a quote");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.name = ""; }), refused + "it has no NAME");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.groupId = ""; }),
              refused + "it has no GROUP-ID");
    EXPECT_EQ(withRendition(
                  [](Rendition& rendition) { rendition.type = static_cast<Rendition::RenditionType>(9); }),
              refused + "it has no TYPE");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.type = Rendition::ClosedCaptions; }),
              refused + "it is of closed captions, and has no INSTREAM-ID");
    EXPECT_EQ(withRendition([](Rendition& rendition) {
                  rendition.type = Rendition::ClosedCaptions;
                  rendition.instreamId = "CC1";
                  rendition.uri = "cc.m3u8";
              }),
              refused + "it is of closed captions, and has a URI");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.instreamId = "CC1"; }),
              refused + "it has an INSTREAM-ID, and is not of closed captions");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.forced = true; }),
              refused + "it has FORCED=YES, and is not of subtitles");
    EXPECT_EQ(withRendition([](Rendition& rendition) { rendition.isDefault = true; }),
              refused + "it has DEFAULT=YES without AUTOSELECT=YES");

    const auto withData = [](const VELHLSManifestSessionData& entry) {
        return masterWith([&entry](VELHLSParsedManifest& manifest) {
            manifest.sessionData.push_back(std::make_shared<VELHLSManifestSessionData>(entry));
        });
    };
    const std::string refusedData = "refused: session data 1: ";
    EXPECT_EQ(withData({"", "v", "", ""}), refusedData + "it has no DATA-ID");
    EXPECT_EQ(withData({"a", "", "", ""}), refusedData + "it has neither VALUE nor URI");
    EXPECT_EQ(withData({"a", "v", "u", ""}), refusedData + "it has both VALUE and URI");
    EXPECT_EQ(withData({"a\"", "v", "", ""}), refusedData + "DATA-ID holds a quote");
    EXPECT_EQ(withData({"a", "v\n", "", ""}), refusedData + "VALUE holds a line end");
    EXPECT_EQ(withData({"a", "", "u\"", ""}), refusedData + "URI holds a quote");
    EXPECT_EQ(withData({"a", "v", "", "\""}), refusedData + "LANGUAGE holds a quote");

    const auto withKey = [](const std::shared_ptr<VELHLSProtectionData>& key) {
        return masterWith([&key](VELHLSParsedManifest& manifest) { manifest.sessionKeys.push_back(key); });
    };
    EXPECT_EQ(withKey(keyOf(VELHLSProtectionData::None, "")), "refused: session key 1: METHOD is NONE");
    EXPECT_EQ(withKey(keyOf(VELHLSProtectionData::AES128, "")), "refused: session key 1: it has no URI");
}

TEST(VELHLSPlaylistWriterMaster, NamesTheRecordAndTheRuleOfAManifestThatDoesNotValidate) {
    using Rendition = VELHLSMediaStreamRendition;
    const auto addAudio = [](VELHLSParsedManifest& manifest, const char* groupId, const char* name,
                             bool isDefault) {
        const auto rendition = std::make_shared<Rendition>();
        rendition->type = Rendition::Audio;
        rendition->groupId = groupId;
        rendition->name = name;
        rendition->isDefault = rendition->autoSelect = isDefault;
        manifest.renditions[rendition->type][groupId][name] = rendition;
    };
    EXPECT_EQ(written(VELHLSParsedManifest()),
              "refused: expected at least one EXT-X-STREAM-INF or EXT-X-I-FRAME-STREAM-INF, seen none "
              "[variants-missing]");
    EXPECT_EQ(
        masterWith([](VELHLSParsedManifest& manifest) {
            const auto second = std::make_shared<VELHLSMediaVariant>(*manifest.streamVariants[0]);
            second->groupIds[Rendition::Audio] = "mp3";
            manifest.streamVariants.push_back(second);
            manifest.variants.emplace(second->bandwidth, second);
        }),
        "refused: variant 2: EXT-X-STREAM-INF: AUDIO: expected the GROUP-ID of an EXT-X-MEDIA tag of this "
        "type, seen \"mp3\" [group-missing]");
    EXPECT_EQ(masterWith([](VELHLSParsedManifest& manifest) {
                  const auto variant = std::make_shared<VELHLSMediaVariant>();
                  variant->isIFrame = true;
                  variant->bandwidth = 1;
                  variant->uri = "i.m3u8";
                  variant->groupIds[Rendition::Video] = "v";
                  manifest.variants.emplace(1, variant);
              }),
              "refused: I-frame variant 1: EXT-X-I-FRAME-STREAM-INF: VIDEO: expected the GROUP-ID of an "
              "EXT-X-MEDIA "
              "tag of this type, seen \"v\" [group-missing]");
    EXPECT_EQ(masterWith([&addAudio](VELHLSParsedManifest& manifest) {
                  addAudio(manifest, "a", "Deutsch", true);
                  addAudio(manifest, "a", "English", true);
              }),
              "refused: rendition 2: EXT-X-MEDIA: DEFAULT: expected one rendition with DEFAULT=YES in a "
              "group, seen "
              "\"YES\" [group-default-repeated]");
    EXPECT_EQ(masterWith([&addAudio](VELHLSParsedManifest& manifest) {
                  addAudio(manifest, "a", "Deutsch", false);
                  addAudio(manifest, "a", "English", false);
                  addAudio(manifest, "b", "Deutsch", false);
              }),
              "refused: rendition 3: EXT-X-MEDIA: GROUP-ID: expected a rendition of every NAME that the "
              "other groups of the type have, seen no rendition \"English\", which group \"a\" has "
              "[group-rendition-missing]");
    EXPECT_EQ(masterWith([&addAudio](VELHLSParsedManifest& manifest) {
                  addAudio(manifest, "a", "Deutsch", false);
                  addAudio(manifest, "b", "Deutsch", true);
              }),
              "refused: rendition 2: EXT-X-MEDIA: NAME: expected the same attributes as in the other groups "
              "of the type, seen \"Deutsch\", which has others in group \"a\" "
              "[group-rendition-different]");
    const auto entry = std::make_shared<VELHLSManifestSessionData>("com.example.a", "v", "", "");
    EXPECT_EQ(
        masterWith([&entry](VELHLSParsedManifest& manifest) {
            manifest.sessionData = {entry, std::make_shared<VELHLSManifestSessionData>(*entry)};
        }),
        "refused: session data 2: EXT-X-SESSION-DATA: DATA-ID: expected a DATA-ID and LANGUAGE that no other "
        "EXT-X-SESSION-DATA has, seen \"com.example.a\" [session-data-repeated]");
    EXPECT_EQ(masterWith([](VELHLSParsedManifest& manifest) {
                  manifest.sessionKeys = {keyOf(VELHLSProtectionData::AES128, "k"),
                                          keyOf(VELHLSProtectionData::AES128, "k")};
              }),
              "refused: session key 2: EXT-X-SESSION-KEY: URI: expected an EXT-X-SESSION-KEY that no other "
              "one equals, "
              "seen \"k\" [session-key-repeated]");
    EXPECT_EQ(masterWith([](VELHLSParsedManifest& manifest) {
                  manifest.sessionKeys = {keyOf(VELHLSProtectionData::AES128, ""),
                                          keyOf(VELHLSProtectionData::AES128, "")};
              }),
              "refused: session key 2: Two EXT-X-SESSION-KEY tags are the same. [session-key-repeated]");
    EXPECT_EQ(masterWith([](VELHLSParsedManifest& manifest) { manifest.sessionKeys.push_back(nullptr); }),
              "refused: the manifest holds a null record");
}

TEST(VELHLSPlaylistWriterMaster, RefusesRenditionsUnderOtherNamesThanTheirOwn) {
    using Rendition = VELHLSMediaStreamRendition;
    const auto under = [](Rendition::RenditionType type, const char* groupId, const char* name) {
        return masterWith([&](VELHLSParsedManifest& manifest) {
            const auto rendition = std::make_shared<Rendition>();
            rendition->type = Rendition::Audio;
            rendition->groupId = "g";
            rendition->name = "n";
            manifest.renditions[type][groupId][name] = rendition;
        });
    };
    const std::string refused = "refused: rendition 1: it ";
    EXPECT_NE(under(Rendition::Audio, "g", "n").find("GROUP-ID=\"g\",NAME=\"n\""), std::string::npos);
    EXPECT_EQ(under(Rendition::Video, "g", "n"), refused + "stands under another TYPE than its own");
    EXPECT_EQ(under(Rendition::Audio, "h", "n"), refused + "stands under another GROUP-ID than its own");
    EXPECT_EQ(under(Rendition::Audio, "g", "m"), refused + "stands under another NAME than its own");
    EXPECT_EQ(masterWith([](VELHLSParsedManifest& manifest) {
                  manifest.renditions[Rendition::Audio]["g"]["n"] = nullptr;
              }),
              refused + "is null");
}

TEST(VELHLSPlaylistWriterMaster, RefusesListsOfVariantsThatDoNotAgree) {
    const std::string refusal = "refused: the manifest has other streamVariants than its variants hold";
    using Manifest = VELHLSParsedManifest;
    EXPECT_EQ(masterWith([](Manifest& manifest) { manifest.streamVariants.clear(); }), refusal);
    EXPECT_EQ(masterWith([](Manifest& manifest) { manifest.streamVariants[0] = variantOf(1, "other.m3u8"); }),
              refusal);
    EXPECT_EQ(masterWith([](Manifest& manifest) { manifest.streamVariants.push_back(nullptr); }), refusal);
    EXPECT_EQ(masterWith([](Manifest& manifest) { manifest.streamVariants[0]->isIFrame = true; }), refusal);
}

TEST(VELHLSPlaylistWriterMaster, WritesNothingWhenALaterRecordIsRefused) {
    VELHLSParsedManifest manifest = smallMaster();
    manifest.sessionKeys.push_back(keyOf(VELHLSProtectionData::None, ""));
    std::ostringstream out;
    EXPECT_EQ(VELHLSPlaylistWriter::write(manifest, out), "session key 1: METHOD is NONE");
    EXPECT_EQ(out.str(), "");
}

}  // namespace
