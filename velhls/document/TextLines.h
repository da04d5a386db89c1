// Internal to the library, not installed: a text and its lines.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace velhls {

/// Where the lines of a text are. The text must outlive it.
class TextLines {
  public:
    explicit TextLines(std::string_view text);

    /// At least 1: an empty text has one empty line. What a last line feed ends is followed by no line.
    [[nodiscard]] std::size_t count() const { return starts_.size(); }

    /// The line with this number, counted from 1, without its line feed and with its carriage returns; the last
    /// one for a larger number.
    [[nodiscard]] std::string_view line(std::size_t number) const;

  private:
    std::string_view text_;
    std::vector<std::size_t> starts_;
};

}  // namespace velhls
