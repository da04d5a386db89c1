// Internal to the library, not installed: edits upon edits, as edits of the first text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/document/VELHLSEdit.h"

namespace velhls {

/// What became of a text in several rounds of edits: which of its bytes are still there, and what stands between them.
class ComposedEdits {
  public:
    explicit ComposedEdits(std::size_t size);

    /// Edits the text as it is now. They must be in the order in which they are applied, and not overlap.
    void edit(const std::vector<VELHLSEdit>& edits);

    /// The places in the first text of places in the text as it is now, which must be in their order: of what is new, where it
    /// was put in.
    [[nodiscard]] std::vector<std::size_t> placesInFirst(const std::vector<std::size_t>& offsets) const;

    /// The edits that make the text as it is now of the first one.
    [[nodiscard]] std::vector<VELHLSEdit> edits() const;

  private:
    /// Bytes of the first text that stayed, or others that are new.
    struct Piece {
        std::size_t start = 0;
        std::size_t length = 0;
        bool isNew = false;
        std::string text;
    };

    void append(std::vector<Piece>& pieces, Piece piece) const;

    std::size_t size_;
    std::vector<Piece> pieces_;
};

}  // namespace velhls
