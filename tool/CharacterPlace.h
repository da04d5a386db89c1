#pragma once

#include <cstddef>
#include <string_view>

#include "velhls/VELHLSCheck.h"

namespace tool {

/// Where a finding stands in its line, for formats that count characters and not bytes.
struct CharacterPlace {
    std::size_t column = 1;
    std::size_t length = 0;
};

/// Finds the places of a text's findings: quick where each stands in the line of the one before it, or after that.
class CharacterPlaces {
  public:
    /// The text must live as long as this.
    explicit CharacterPlaces(std::string_view text) : text_(text) {}

    [[nodiscard]] CharacterPlace of(const VELHLSFinding& finding);

  private:
    [[nodiscard]] std::string_view lineNumbered(std::size_t number);

    std::string_view text_;
    std::size_t line_ = 1;
    std::size_t start_ = 0;
};

}  // namespace tool
