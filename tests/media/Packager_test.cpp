#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/MediaRoundTrip.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"

namespace {

using playlist::contentOf;

/// The path of the program; empty when PATH does not lead to it.
std::string programNamed(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(path == nullptr ? "" : path);
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::string program = folder + "/" + name;
        if (!folder.empty() && ::access(program.c_str(), X_OK) == 0) return program;
    }
    return "";
}

std::size_t countOf(std::string_view searched, std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(searched); at != std::string_view::npos;
         at = text.find(searched, at + 1)) {
        ++count;
    }
    return count;
}

/// Playlists as a packager writes them, with the media that they name: each is read, written beside the
/// original, read again and played.
class Packager : public testing::Test {
  protected:
    void SetUp() override {
        if (packager_.empty() || player_.empty()) GTEST_SKIP() << "ffmpeg and ffprobe are not on PATH";
    }

    /// Packages six seconds of a test picture in segments of one second. Returns the text of the playlist.
    std::string packaged(const std::vector<std::string>& options) {
        std::vector<std::string> commandLine = {
            packager_,   "-v",         "error", "-nostdin",
            "-f",        "lavfi",      "-i",    "testsrc2=size=160x90:rate=10:duration=6",
            "-c:v",      "mpeg2video", "-g",    "10",
            "-bf",       "0",          "-f",    "hls",
            "-hls_time", "1"};
        commandLine.insert(commandLine.end(), options.begin(), options.end());
        commandLine.push_back(folder_.file("original.m3u8"));
        const command::Outcome outcome = command::run(commandLine);
        EXPECT_EQ(outcome.exitStatus, 0) << outcome.errors;
        const std::string text = contentOf(folder_.file("original.m3u8"));
        EXPECT_NE(text, "");
        return text;
    }

    std::vector<std::string> transportSegments() const {
        return {"-hls_list_size", "0", "-hls_segment_filename", folder_.file("segment_%03d.ts")};
    }

    /// What a player makes of the playlist: its duration, and how many packets it reads.
    std::string played(const std::string& name) {
        const command::Outcome outcome =
            command::run({player_, "-v", "error", "-allowed_extensions", "ALL", "-count_packets",
                          "-show_entries", "format=duration:stream=nb_read_packets", "-of",
                          "default=noprint_wrappers=1", folder_.file(name)});
        EXPECT_EQ(outcome.exitStatus, 0) << name;
        EXPECT_EQ(outcome.errors, "") << name;
        return outcome.output;
    }

    /// Reads the playlist, and expects that its rendered text is an equal playlist to this library and to a
    /// player. Returns the playlist.
    std::shared_ptr<VELHLSMediaStream> expectTheSameAfterTheRoundTrip(const std::string& text) {
        auto stream = playlist::parsedMedia(text);
        if (stream == nullptr) {
            ADD_FAILURE() << "rejected:\n" << text;
            return std::make_shared<VELHLSMediaStream>();
        }
        EXPECT_EQ(stream->segments.size(), countOf("#EXTINF:", text));
        EXPECT_EQ(playlist::differencesAfterRoundTrip(*stream), "") << text;

        const std::string rendered = playlist::renderedMedia(*stream);
        EXPECT_EQ(countOf("#EXTINF:", rendered), countOf("#EXTINF:", text));
        static_cast<void>(folder_.with("rendered.m3u8", rendered));
        const std::string expected = played("original.m3u8");
        EXPECT_NE(expected.find("nb_read_packets=" + std::to_string(10 * stream->segments.size())),
                  std::string::npos)
            << expected;
        EXPECT_EQ(played("rendered.m3u8"), expected) << rendered;
        return stream;
    }

    const command::TemporaryFolder folder_;

  private:
    const std::string packager_ = programNamed("ffmpeg");
    const std::string player_ = programNamed("ffprobe");
};

/// Both lists of options.
std::vector<std::string> operator+(std::vector<std::string> options, const std::vector<std::string>& more) {
    options.insert(options.end(), more.begin(), more.end());
    return options;
}

TEST_F(Packager, WritesTransportStreamSegments) {
    const auto stream = expectTheSameAfterTheRoundTrip(packaged(transportSegments()));
    ASSERT_EQ(stream->segments.size(), 6U);
    EXPECT_TRUE(stream->hasExtM3U);
    EXPECT_TRUE(stream->endList);
    EXPECT_EQ(stream->targetDuration, 1.0);
    EXPECT_EQ(stream->playlistType, VELHLSMediaStream::None);
    EXPECT_EQ(stream->segments[5]->uri, "segment_005.ts");
    EXPECT_EQ(stream->segments[5]->startTime, 5.0);
    EXPECT_EQ(stream->segments[5]->title, ",");
    EXPECT_EQ(stream->segments[5]->misMap, nullptr);
}

TEST_F(Packager, WritesPlaylistTypes) {
    EXPECT_EQ(expectTheSameAfterTheRoundTrip(
                  packaged(transportSegments() + std::vector<std::string>{"-hls_playlist_type", "vod"}))
                  ->playlistType,
              VELHLSMediaStream::Vod);
    EXPECT_EQ(
        expectTheSameAfterTheRoundTrip(
            packaged(transportSegments() + std::vector<std::string>{"-y", "-hls_playlist_type", "event",
                                                                    "-hls_flags", "independent_segments"}))
            ->playlistType,
        VELHLSMediaStream::Event);
}

TEST_F(Packager, WritesASlidingWindow) {
    const auto stream = expectTheSameAfterTheRoundTrip(
        packaged({"-hls_list_size", "3", "-hls_flags", "delete_segments", "-start_number", "100",
                  "-hls_segment_filename", folder_.file("segment_%03d.ts")}));
    ASSERT_EQ(stream->segments.size(), 3U);
    EXPECT_EQ(stream->mediaSequence, 103);
    EXPECT_EQ(stream->segments[2]->mediaSequenceNumber, 105U);
    EXPECT_EQ(stream->segments[2]->uri, "segment_105.ts");
}

TEST_F(Packager, WritesFragmentsWithAnInitializationSection) {
    const auto stream = expectTheSameAfterTheRoundTrip(
        packaged({"-hls_list_size", "0", "-hls_segment_type", "fmp4", "-hls_fmp4_init_filename", "init.mp4",
                  "-hls_segment_filename", folder_.file("fragment_%03d.m4s")}));
    ASSERT_EQ(stream->segments.size(), 6U);
    EXPECT_EQ(stream->version, 7);
    ASSERT_NE(stream->segments[0]->misMap, nullptr);
    EXPECT_EQ(stream->segments[0]->misMap->uri, "init.mp4");
    EXPECT_EQ(stream->segments[5]->misMap, stream->segments[0]->misMap);
}

TEST_F(Packager, WritesEncryptedSegments) {
    const std::string key = folder_.with("segments.key", "sixteen byte key");
    const std::string keyInformation =
        folder_.with("key.info", "segments.key\n" + key + "\n0123456789abcdef0123456789abcdef\n");
    const auto stream = expectTheSameAfterTheRoundTrip(
        packaged(transportSegments() + std::vector<std::string>{"-hls_key_info_file", keyInformation}));
    ASSERT_EQ(stream->segments.size(), 6U);
    for (const auto& segment : stream->segments) {
        ASSERT_NE(segment->protectionData, nullptr);
        EXPECT_EQ(segment->protectionData->method, VELHLSProtectionData::AES128);
        EXPECT_EQ(segment->protectionData->uri, "segments.key");
        EXPECT_EQ(segment->protectionData->iv, "0x0123456789abcdef0123456789abcdef");
    }
}

/// Every byte range follows the one before it in the file.
void expectRangesInTurn(const VELHLSMediaStream& stream, std::int64_t firstOffset, std::int64_t fileBytes) {
    std::int64_t next = firstOffset;
    for (const auto& segment : stream.segments) {
        ASSERT_NE(segment->byteRange, nullptr);
        EXPECT_EQ(segment->byteRange->offset, next);
        EXPECT_GT(segment->byteRange->length, 0);
        next += segment->byteRange->length;
    }
    EXPECT_EQ(next, fileBytes);
}

TEST_F(Packager, WritesByteRangesOfOneFile) {
    const auto stream =
        expectTheSameAfterTheRoundTrip(packaged({"-hls_list_size", "0", "-hls_flags", "single_file",
                                                 "-hls_segment_filename", folder_.file("all-segments.ts")}));
    ASSERT_EQ(stream->segments.size(), 6U);
    expectRangesInTurn(*stream, 0,
                       static_cast<std::int64_t>(contentOf(folder_.file("all-segments.ts")).size()));
}

TEST_F(Packager, WritesAnInitializationSectionAsAByteRange) {
    const auto stream = expectTheSameAfterTheRoundTrip(
        packaged({"-hls_list_size", "0", "-hls_flags", "single_file", "-hls_segment_type", "fmp4",
                  "-hls_segment_filename", folder_.file("all-fragments.mp4")}));
    ASSERT_EQ(stream->segments.size(), 6U);
    const auto map = stream->segments[0]->misMap;
    ASSERT_NE(map, nullptr);
    ASSERT_NE(map->byteRange, nullptr);
    EXPECT_EQ(map->byteRange->offset, 0);
    expectRangesInTurn(*stream, map->byteRange->length,
                       static_cast<std::int64_t>(contentOf(folder_.file("all-fragments.mp4")).size()));
}

TEST_F(Packager, WritesAnIntroducingDiscontinuity) {
    const auto stream = expectTheSameAfterTheRoundTrip(
        packaged(transportSegments() + std::vector<std::string>{"-hls_flags", "discont_start"}));
    ASSERT_EQ(stream->segments.size(), 6U);
    EXPECT_TRUE(stream->discontinuitySeen);
    EXPECT_TRUE(stream->segments[0]->discontinuity);
    EXPECT_FALSE(stream->segments[1]->discontinuity);
    EXPECT_EQ(stream->segments[5]->discontinuitySequenceNumber, 1U);
}

/// The text with ISO 8601 offsets in their extended form: "+0000" becomes "+00:00".
std::string withExtendedOffsets(std::string text) {
    const std::string tag = "#EXT-X-PROGRAM-DATE-TIME:";
    for (std::size_t at = text.find(tag); at != std::string::npos; at = text.find(tag, at + 1)) {
        const std::size_t end = text.find('\n', at);
        if (text[end - 5] == '+' || text[end - 5] == '-') text.insert(end - 2, ":");
    }
    return text;
}

TEST_F(Packager, WritesProgramDateTimes) {
    const std::string text =
        packaged(transportSegments() + std::vector<std::string>{"-hls_flags", "program_date_time"});
    ASSERT_EQ(countOf("#EXT-X-PROGRAM-DATE-TIME:", text), 6U);
    const auto stream = expectTheSameAfterTheRoundTrip(withExtendedOffsets(text));
    ASSERT_EQ(stream->segments.size(), 6U);
    EXPECT_GT(stream->segments[0]->programDateTime, 1577836800.0);
    EXPECT_NEAR(stream->segments[5]->programDateTime - stream->segments[0]->programDateTime, 5.0, 0.002);
}

TEST_F(Packager, WritesOffsetsInABasicFormThatIsNotRead) {
    // "+0000" has no colon, which an offset must have here.
    const std::string text =
        packaged(transportSegments() + std::vector<std::string>{"-hls_flags", "program_date_time"});
    if (withExtendedOffsets(text) == text) GTEST_SKIP() << "this ffmpeg writes another form of dates";
    EXPECT_EQ(playlist::parsedMedia(text), nullptr);
}

TEST_F(Packager, WritesNamesTooShortToBeReadWithoutAByteRange) {
    const std::string text =
        packaged({"-hls_list_size", "0", "-hls_segment_filename", folder_.file("%02d.ts")});
    EXPECT_THROW(playlist::parsedMedia(text), std::out_of_range);
}

TEST_F(Packager, WritesWhatAPatternCanSayInShort) {
    const std::string text =
        packaged({"-hls_list_size", "0", "-hls_segment_filename", folder_.file("segment_%d.ts")});
    const std::string pattern = playlist::lines(
        {"#EXTM3U", "#EXT-X-VERSION:3", "#EXT-X-TARGETDURATION:1", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"0\"",
         "#ZOR-PATTERN_START:p", "#EXTINF:1.000000,", "segment_{$n}.ts", "#ZOR-DEFINE_INCREMENT:n,1",
         "#ZOR-PATTERN_END:p", "#ZOR-PATTERN_REPEAT:p,5", "#EXT-X-ENDLIST"});
    const auto expanded = playlist::parsedMedia(pattern);
    const auto original = expectTheSameAfterTheRoundTrip(text);
    ASSERT_NE(expanded, nullptr);
    EXPECT_EQ(playlist::renderedMedia(*expanded), playlist::renderedMedia(*original));
}

}  // namespace
