// Internal to the library, not installed: the one place where lines are read from a stream.
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace velhls {

/// Reads lines as std::getline does: up to the stream's own line feed, which is dropped; the last line of the
/// input may lack it. The stream's state after each line, and what is left unread, are what std::getline
/// leaves; but std::bad_alloc is passed on.
///
/// A line comes back as a view, good until the next one is read. Where a stream buffer shows a whole line in
/// its get area, as string and file streams nearly always do, the view looks right into it and nothing is
/// copied: that is most of the speed of reading. Everything else goes through std::getline.
class LineReader {
  public:
    explicit LineReader(std::istream& input) : input_(input), lineFeed_(input.widen('\n')) {}

    /// The next line as it stands; empty when nothing is left or the stream was not good.
    [[nodiscard]] std::string_view nextRaw();

    /// The same, and removes every carriage return from the line, wherever it stands.
    [[nodiscard]] std::string_view next();

    /// False once the stream has any state bit set.
    [[nodiscard]] bool good() const { return input_.good(); }

  private:
    void getLine();
    [[nodiscard]] std::optional<std::string_view> lineInGetArea();
    [[nodiscard]] bool holdsCarriageReturn(std::string_view line);

    std::istream& input_;
    char lineFeed_;
    /// Holds the lines that cannot be views.
    std::string line_;
    /// The part of the get area that is known to hold no carriage return: from the last line on up to
    /// `clearEnd_`. Most playlists hold none, so looking ahead in one go saves a search in every line.
    const char* clearEnd_ = nullptr;
    const char* getAreaEnd_ = nullptr;
};

}  // namespace velhls
