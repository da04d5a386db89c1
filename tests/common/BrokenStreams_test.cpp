// Streams that break off at every byte. What is written before is the front of the text, and the playlist can be
// written again; what is read before is read as if the stream ended there. Who wants to know asks the stream, or tells
// it to throw.
#include <algorithm>
#include <cstddef>
#include <ios>
#include <istream>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/support/LibraryFindings.h"
#include "tests/support/Outcome.h"
#include "tests/support/Parses.h"
#include "tests/support/WholePlaylists.h"

namespace {

/// What a device throws that is no exception of the standard library's streams.
struct DeviceLost : std::runtime_error {
    DeviceLost() : std::runtime_error("device lost") {}
};

enum class Manner { refuses, throwsOut };

/// Takes so many bytes and no more.
class BrokenSink : public std::streambuf {
  public:
    BrokenSink(std::size_t room, Manner manner) : room_(room), manner_(manner) {}
    [[nodiscard]] const std::string& text() const { return text_; }

  protected:
    int_type overflow(int_type character) override {
        if (text_.size() == room_) return fail();
        text_ += traits_type::to_char_type(character);
        return character;
    }
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        const std::size_t taken = std::min(static_cast<std::size_t>(size), room_ - text_.size());
        text_.append(text, taken);
        if (taken < static_cast<std::size_t>(size)) static_cast<void>(fail());
        return static_cast<std::streamsize>(taken);
    }

  private:
    int_type fail() const {
        if (manner_ == Manner::throwsOut) throw DeviceLost();
        return traits_type::eof();
    }

    std::string text_;
    std::size_t room_;
    Manner manner_;
};

template <typename Playlist>
std::string renderedOf(const Playlist& playlist) {
    std::ostringstream text;
    EXPECT_EQ(playlist.render(text), 0);
    return text.str();
}

/// What happens when the playlist is written to a stream that takes so many bytes: "" when all goes well.
template <typename Playlist>
std::string writtenTo(BrokenSink& sink, const Playlist& playlist, std::ios_base::iostate thrown) {
    std::ostream out(&sink);
    out.exceptions(thrown);
    try {
        EXPECT_EQ(playlist.render(out), 0);
    } catch (const std::ios_base::failure&) {
        EXPECT_TRUE(out.bad());
        return "failure";
    } catch (const DeviceLost&) {
        EXPECT_TRUE(out.bad());
        return "device lost";
    }
    return out.bad() ? "bad" : "";
}

template <typename Playlist>
void expectPlaylistToOutliveBrokenSinks(const Playlist& playlist) {
    const std::string whole = renderedOf(playlist);
    ASSERT_GT(whole.size(), 100U);
    for (std::size_t room = 0; room <= whole.size(); ++room) {
        SCOPED_TRACE(room);
        for (const Manner manner : {Manner::refuses, Manner::throwsOut}) {
            const bool fits = room == whole.size();
            const std::string thrown = manner == Manner::refuses ? "failure" : "device lost";
            BrokenSink quiet(room, manner);
            ASSERT_EQ(writtenTo(quiet, playlist, std::ios_base::goodbit), fits ? "" : "bad");
            ASSERT_EQ(quiet.text(), whole.substr(0, room));
            BrokenSink loud(room, manner);
            ASSERT_EQ(writtenTo(loud, playlist, std::ios_base::badbit), fits ? "" : thrown);
            ASSERT_EQ(loud.text(), whole.substr(0, room));
        }
        ASSERT_EQ(renderedOf(playlist), whole);
    }
}

template <typename Parse>
auto parsed(const std::string& text, Parse parse) {
    std::istringstream input(text);
    return parse(input, nullptr);
}

TEST(BrokenStreams, MasterPlaylistIsWrittenUpToTheByteWhereTheStreamFails) {
    expectPlaylistToOutliveBrokenSinks(*parsed(whole::master, playlist::parseMaster));
}

TEST(BrokenStreams, MediaPlaylistIsWrittenUpToTheByteWhereTheStreamFails) {
    expectPlaylistToOutliveBrokenSinks(*parsed(whole::media, playlist::parseMedia));
}

template <typename Playlist>
void expectWriterToOutliveBrokenSinks(const Playlist& playlist) {
    std::ostringstream out;
    ASSERT_EQ(VELHLSPlaylistWriter::write(playlist, out), std::nullopt);
    const std::string whole = out.str();
    for (std::size_t room = 0; room <= whole.size(); ++room) {
        SCOPED_TRACE(room);
        BrokenSink sink(room, Manner::refuses);
        std::ostream stream(&sink);
        ASSERT_EQ(VELHLSPlaylistWriter::write(playlist, stream), std::nullopt);
        ASSERT_EQ(stream.bad(), room != whole.size());
        ASSERT_EQ(sink.text(), whole.substr(0, room));
    }
}

TEST(BrokenStreams, WriterWritesUpToTheByteWhereTheStreamFails) {
    expectWriterToOutliveBrokenSinks(*parsed(whole::master, playlist::parseMaster));
    expectWriterToOutliveBrokenSinks(*parsed(whole::media, playlist::parseMedia));
}

/// Hands its text out in pieces, and throws where it ends.
class BrokenSource : public std::streambuf {
  public:
    BrokenSource(std::string text, std::size_t piece) : text_(std::move(text)), piece_(piece) {}

  protected:
    int_type underflow() override {
        if (position_ == text_.size()) throw DeviceLost();
        const std::size_t length = std::min(piece_, text_.size() - position_);
        char* const start = text_.data() + position_;
        position_ += length;
        setg(start, start, start + length);
        return traits_type::to_int_type(*start);
    }

  private:
    std::string text_;
    std::size_t piece_;
    std::size_t position_ = 0;
};

template <typename Parse>
std::string outcomeOf(std::istream& input, Parse parse) {
    return playlist::outcomeOfParse(input, parse, playlist::kindAndMessageOf);
}

std::string findingsOf(std::istream& input) {
    std::string text;
    for (const VELHLSFinding& finding :
         VELHLSDiagnostics::check(input, library::optionsFor(VELHLSDiagnostics::Detect)).findings)
        text += std::to_string(finding.line) + ": " + finding.message + "\n";
    return text;
}

template <typename Read>
void expectBrokenSourcesToEndThere(const std::string& text, Read read) {
    for (std::size_t length = 0; length <= text.size(); ++length) {
        SCOPED_TRACE(length);
        const std::string front = text.substr(0, length);
        std::istringstream ended(front);
        const std::string expected = read(ended);
        for (const std::size_t piece : {std::size_t{1}, std::size_t{50}, text.size()}) {
            BrokenSource quiet(front, piece);
            std::istream input(&quiet);
            ASSERT_EQ(read(input), expected);
            // A parse that gives up, or comes to its end, before the place does not meet it.
            const bool isMet = input.bad();
            BrokenSource loud(front, piece);
            std::istream loudInput(&loud);
            loudInput.exceptions(std::ios_base::badbit);
            if (isMet) {
                ASSERT_THROW(static_cast<void>(read(loudInput)), DeviceLost);
            } else {
                ASSERT_EQ(read(loudInput), expected);
            }
            ASSERT_EQ(loudInput.bad(), isMet);
        }
    }
}

TEST(BrokenStreams, MasterPlaylistIsReadUpToTheByteWhereTheStreamFails) {
    expectBrokenSourcesToEndThere(
        whole::master, [](std::istream& input) { return outcomeOf(input, playlist::parseMaster); });
}

TEST(BrokenStreams, MediaPlaylistIsReadUpToTheByteWhereTheStreamFails) {
    expectBrokenSourcesToEndThere(whole::media,
                                  [](std::istream& input) { return outcomeOf(input, playlist::parseMedia); });
}

TEST(BrokenStreams, TextIsCheckedUpToTheByteWhereTheStreamFails) {
    // Findings cost more than reading: the fronts of a shorter text are enough.
    constexpr std::size_t length = 600;
    expectBrokenSourcesToEndThere(whole::media.substr(0, length), findingsOf);
}

TEST(BrokenStreams, PatternTakesTheLinesBeforeItUpToTheByteWhereTheirStreamFails) {
    const std::string front = "#EXTINF:6,\n#EXT-X-KEY:METHOD=NONE\n";
    const std::string body = "segment1.ts\n#ZOR-PATTERN_REPEAT:day,3\n";
    BrokenSource source(front, 5);
    std::istream prefix(&source);
    std::istringstream input(body);
    const auto pattern =
        VELHLSMediaPattern::parseMediaPattern("#ZOR-PATTERN_START:day", prefix, input, nullptr);
    ASSERT_NE(pattern, nullptr);
    EXPECT_EQ(pattern->body, front + "segment1.ts\n");
    EXPECT_TRUE(prefix.bad());
}

/// The stream's other states are told as std::getline tells them.
TEST(BrokenStreams, NothingReadAtAllIsAFailureToo) {
    BrokenSource source("", 1);
    std::istream input(&source);
    const auto stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(input.rdstate(), std::ios_base::badbit | std::ios_base::failbit);

    BrokenSource loudSource("", 1);
    std::istream loud(&loudSource);
    loud.exceptions(std::ios_base::failbit);
    EXPECT_THROW(static_cast<void>(VELHLSMediaStream::parseMediaStream(loud, nullptr)),
                 std::ios_base::failure);
    EXPECT_EQ(loud.exceptions(), std::ios_base::failbit);
}

}  // namespace
