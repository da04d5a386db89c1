// However a stream hands its text out, in one piece, in small ones that lie in the same memory, or byte by byte
// without showing any, the same playlist is read, and the same is left unread.
#include "tests/support/StreamBuffers.h"

#include <cstddef>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/Outcome.h"
#include "tests/support/Parses.h"
#include "tests/support/PlaylistText.h"

namespace {

using stream_buffer::Hidden;
using stream_buffer::PieceByPiece;

template <typename Parse>
std::string outcomeOf(std::istream& input, Parse parse) {
    return playlist::outcomeWithStream(input, parse, playlist::kindAndMessageOf);
}

template <typename Parse>
void expectTheSameFromEveryBuffer(const std::string& text, Parse parse) {
    std::istringstream whole(text);
    const std::string expected = outcomeOf(whole, parse);
    Hidden hidden(text);
    std::istream hiddenInput(&hidden);
    EXPECT_EQ(outcomeOf(hiddenInput, parse), expected) << text;
    constexpr std::size_t sizes[] = {1, 2, 3, 7, 16, 64, 1000, 1030};
    for (const std::size_t size : sizes) {
        PieceByPiece pieces(text, size);
        std::istream input(&pieces);
        EXPECT_EQ(outcomeOf(input, parse), expected) << "pieces of " << size << ":\n" << text;
    }
    std::ostringstream tied;
    std::istringstream tiedInput(text);
    tiedInput.tie(&tied);
    EXPECT_EQ(outcomeOf(tiedInput, parse), expected) << "tied:\n" << text;
}

/// The model that a parse of the text makes, or that there is none, however it is rejected.
template <typename Playlist>
std::string modelOf(const std::shared_ptr<Playlist>& parsed) {
    return parsed == nullptr ? "none" : playlist::describe(*parsed);
}

template <typename Parse>
std::string modelFromStream(const std::string& text, Parse parse) {
    std::istringstream input(text);
    try {
        return modelOf(parse(input, nullptr));
    } catch (const std::logic_error&) {
        return "none";
    }
}

void expectTheSameFromEveryBuffer(const std::string& text) {
    expectTheSameFromEveryBuffer(text, playlist::parseMedia);
    expectTheSameFromEveryBuffer(text, playlist::parseMaster);
    EXPECT_EQ(modelOf(VELHLSMediaStream::parseMediaStream(text)), modelFromStream(text, playlist::parseMedia))
        << text;
    EXPECT_EQ(modelOf(VELHLSParsedManifest::parseManifest(text)),
              modelFromStream(text, playlist::parseMaster))
        << text;
}

std::string withCarriageReturns(const std::string& text) {
    std::string result;
    for (const char character : text) {
        if (character == '\n') result += '\r';
        result += character;
    }
    return result;
}

TEST(StreamBuffers, EveryExampleIsReadTheSame) {
    for (const char* name : {"master-adaptive", "master-radio", "master-small", "media-ad-break",
                             "media-encrypted-ranges", "media-live", "media-pattern", "media-vod"}) {
        SCOPED_TRACE(name);
        const std::string text =
            playlist::contentOf(std::string(VELHLS_EXAMPLE_PLAYLISTS) + "/" + name + ".m3u8");
        ASSERT_FALSE(text.empty());
        expectTheSameFromEveryBuffer(text);
        expectTheSameFromEveryBuffer(withCarriageReturns(text));
    }
}

TEST(StreamBuffers, EndsOfTheInputAreReadTheSame) {
    const std::string text = "#EXTM3U\n#EXTINF:4,Title\nfirst.ts\n#EXT-X-ENDLIST\nafter\n";
    for (std::size_t length = 0; length <= text.size(); ++length)
        expectTheSameFromEveryBuffer(text.substr(0, length));
}

/// Lines of many lengths, some with carriage returns far apart from each other.
TEST(StreamBuffers, RandomLinesAreReadTheSame) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string text = "#EXTM3U\n";
        for (int line = 0; line < 20; ++line) {
            text += "#EXTINF:4," + std::string(random() % 200, 't') + (random() % 8 == 0 ? "\r\n" : "\n");
            if (random() % 8 == 0) text += "# a comment" + std::string(random() % 2000, 'c') + "\n";
            text += "segment" + std::string(random() % 40, 'u') + (random() % 8 == 0 ? "\rv" : "") + ".ts\n";
        }
        if (random() % 4 == 0) text.pop_back();
        expectTheSameFromEveryBuffer(text, playlist::parseMedia);
    }
}

/// The tags before a pattern are part of it, wherever the stream's buffer ends between them.
TEST(StreamBuffers, TagsBeforeAPatternAreReadTheSame) {
    std::string tags;
    for (int count = 0; count < 20; ++count) {
        const std::string text =
            "#EXTM3U\n#EXT-X-DEFINE:NAME=\"n\",VALUE=\"10\"\n" + tags +
            "#ZOR-PATTERN_START:p\n#EXTINF:4,\nsegment{$n}.ts\n#ZOR-DEFINE_INCREMENT:n,1\n"
            "#ZOR-PATTERN_END:p\n#ZOR-PATTERN_REPEAT:p,2\n#EXT-X-ENDLIST\n";
        expectTheSameFromEveryBuffer(text, playlist::parseMedia);
        expectTheSameFromEveryBuffer(withCarriageReturns(text), playlist::parseMedia);
        tags +=
            count % 3 == 0 ? "#EXT-X-DISCONTINUITY\n" : "#EXT-X-BYTERANGE:" + std::to_string(count) + "@1\n";
        if (count % 5 == 0) tags += "# a\rcomment\n";
    }
}

/// A number that throws leaves the stream after the line at fault.
TEST(StreamBuffers, ThrowingLinesLeaveTheSameUnread) {
    expectTheSameFromEveryBuffer(
        "#EXTM3U\n#EXTINF:4,\nfirst.ts\n#EXTINF:four,\nsecond.ts\n#EXTINF:4,\nthird.ts\n");
    expectTheSameFromEveryBuffer("#EXTM3U\n#EXT-X-VERSION:one\n#EXT-X-STREAM-INF:BANDWIDTH=1\nvideo.m3u8\n");
}

TEST(StreamBuffers, TiedStreamIsFlushedBeforeReading) {
    class Flushes : public std::stringbuf {
      public:
        int count = 0;

      protected:
        int sync() override { return ++count, 0; }
    };
    Flushes flushes;
    std::ostream output(&flushes);
    std::istringstream input("#EXTM3U\n#EXTINF:4,\nfirst.ts\n");
    input.tie(&output);
    ASSERT_NE(VELHLSMediaStream::parseMediaStream(input, nullptr), nullptr);
    EXPECT_GE(flushes.count, 3);
}

}  // namespace
