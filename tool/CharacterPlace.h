#pragma once

#include <cstddef>
#include <string_view>

namespace tool {

/// Where a finding stands in its line, for formats that count characters and not bytes.
struct CharacterPlace {
    std::size_t column = 1;
    std::size_t length = 0;
};

/// Finds the places of a text's findings: in linear time where each stands at or after the one before it.
class CharacterPlaces {
  public:
    /// The text must live as long as this.
    explicit CharacterPlaces(std::string_view text) : text_(text) { goToStart(); }

    /// Of the line, column and length of a finding, in bytes.
    [[nodiscard]] CharacterPlace of(std::size_t line, std::size_t column, std::size_t length);

    /// The line itself, without its line feed.
    [[nodiscard]] std::string_view lineNumbered(std::size_t number);

  private:
    void goToStart();
    void goToLineAt(std::size_t start);

    std::string_view text_;
    std::size_t number_ = 1;
    std::size_t start_ = 0;
    std::string_view line_;
    /// How many characters begin in so many bytes of the line.
    std::size_t countedBytes_ = 0;
    std::size_t countedCharacters_ = 0;
};

}  // namespace tool
