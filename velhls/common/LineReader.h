// Internal to the library, not installed: the one place where lines are read, from a stream or from a text in memory.
#pragma once

#include <cstring>
#include <istream>
#include <string>
#include <string_view>

namespace velhls {

class Reading;

/// Reads lines as std::getline does: up to the line feed, which is dropped; the last line of the input may lack it.
/// But std::bad_alloc is passed on.
///
/// A line comes back as a view, good until the next one is read. Of a text, and where a stream buffer shows a whole line
/// in its get area, as string and file streams nearly always do, the view looks right into it and nothing is
/// copied: that is most of the speed of reading. Everything else goes through std::getline.
///
/// While the reader lives the stream is its own. When it goes, also by an exception, the stream's state and what
/// is left unread are what std::getline would have left.
class LineReader {
  public:
    /// Someone who keeps views of lines longer than until the next one is read.
    class ViewKeeper {
      public:
        /// The views of all lines that were read so far are about to end: now is the time to copy them.
        virtual void viewsEnd() = 0;

      protected:
        ~ViewKeeper() = default;
    };

    explicit LineReader(std::istream& input);
    /// The lines of a text, which must outlive the reader. When somebody follows the reading each of them is told to
    /// him, and stays a view into the text or into what he holds. `reading` may be null.
    LineReader(std::string_view text, Reading* reading);
    ~LineReader() { returnGetArea(); }
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// The next line as it stands; empty when nothing is left or the stream was not good.
    [[nodiscard]] std::string_view nextRaw() {
        const char* const lineEnd = nextLineFeed();
        return lineEnd != nullptr ? readUpTo(lineEnd) : nextOfInput();
    }

    /// The same, and removes every carriage return from the line, wherever it stands.
    [[nodiscard]] std::string_view next() {
        const char* const lineEnd = nextLineFeed();
        if (lineEnd != nullptr && lineEnd <= clearEnd_) return readUpTo(lineEnd);
        return withoutCarriageReturns(lineEnd != nullptr ? readUpTo(lineEnd) : nextOfInput());
    }

    /// The keeper is told as long as lines are read.
    void tell(ViewKeeper& keeper) { keeper_ = &keeper; }

    /// False once the stream has any state bit set, or the text has ended: not after a line feed at its end.
    [[nodiscard]] bool good() const { return good_; }

  private:
    void borrowGetArea();
    void returnGetArea();
    [[nodiscard]] std::string_view nextOfInput();
    [[nodiscard]] std::string_view nextOfText();
    [[nodiscard]] std::string_view nextThroughStream();
    void getLine();
    [[nodiscard]] std::string_view withoutCarriageReturns(std::string_view line);
    [[nodiscard]] const char* firstCarriageReturn(std::string_view line);

    /// The end of the next line, where the area shows it.
    [[nodiscard]] const char* nextLineFeed() const {
        const auto left = static_cast<std::size_t>(areaEnd_ - position_);
        return static_cast<const char*>(std::memchr(position_, lineFeed_, left));
    }

    [[nodiscard]] std::string_view readUpTo(const char* lineEnd) {
        const std::string_view line(position_, static_cast<std::size_t>(lineEnd - position_));
        position_ = lineEnd + 1;
        return line;
    }

    /// Null for a text.
    std::istream* input_ = nullptr;
    Reading* reading_ = nullptr;
    char lineFeed_ = '\n';
    /// What the state of the input was after the last line.
    bool good_ = true;
    /// The text, or the unread part of the stream's get area, which the stream itself is not told of line by line. Empty,
    /// and not borrowed, when there is none to be seen. Empty too while the lines of a text are told to somebody: so
    /// each of them comes by nextOfText, and nobody else pays for that.
    const char* position_ = "";
    const char* areaEnd_ = position_;
    const char* textEnd_ = position_;
    bool borrowed_ = false;
    /// The part of the area that is known to hold no carriage return: from the last line on up to here. Most
    /// playlists hold none, so looking ahead in one go saves a search in every line.
    const char* clearEnd_ = nullptr;
    /// Holds the lines that cannot be views.
    std::string line_;
    ViewKeeper* keeper_ = nullptr;
};

}  // namespace velhls
