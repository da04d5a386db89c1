// Internal to the library, not installed: long texts made of many small pieces.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace velhls {

/// Copies so many bytes from the start and from the end of a piece that is at least as long, and at most twice.
template <std::size_t bytes>
void copyBothEnds(char* to, const char* piece, std::size_t size) {
    std::memcpy(to, piece, bytes);
    std::memcpy(to + size - bytes, piece + size - bytes, bytes);
}

/// Copies a piece of text and returns the place after it. There must be room.
///
/// Most pieces are short: two moves, of which the second one may overlap the first, save a call.
inline char* writeText(char* to, std::string_view piece) {
    const std::size_t size = piece.size();
    if (size > 32) {
        std::memcpy(to, piece.data(), size);
    } else if (size >= 16) {
        copyBothEnds<16>(to, piece.data(), size);
    } else if (size >= 8) {
        copyBothEnds<8>(to, piece.data(), size);
    } else if (size >= 4) {
        copyBothEnds<4>(to, piece.data(), size);
    } else if (size >= 2) {
        copyBothEnds<2>(to, piece.data(), size);
    } else if (size == 1) {
        *to = piece.front();
    }
    return to + size;
}

inline char* writeText(char* to, char character) {
    *to = character;
    return to + 1;
}

/// A text that grows. Unlike std::string it asks for room once for all the pieces of a segment, and does not
/// fill that room with zeros first: writing is mostly copying, and these two are half of its cost.
class TextBuffer {
  public:
    /// A place at the text's end with room for so many bytes.
    [[nodiscard]] char* room(std::size_t bytes) {
        if (capacity_ - size_ < bytes) grow(bytes);
        return text_.get() + size_;
    }

    /// What was written into the room ends here.
    void endAt(const char* end) { size_ = static_cast<std::size_t>(end - text_.get()); }

    [[nodiscard]] std::string_view text() const { return {text_.get(), size_}; }
    void clear() { size_ = 0; }

  private:
    void grow(std::size_t bytes) {
        const std::size_t capacity = std::max(2 * capacity_, size_ + bytes);
        std::unique_ptr<char[]> text(new char[capacity]);
        if (size_ > 0) std::memcpy(text.get(), text_.get(), size_);
        text_ = std::move(text);
        capacity_ = capacity;
    }

    std::unique_ptr<char[]> text_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace velhls
