// Internal to the libraries, not installed: eight bytes of a text as one number, to look at all of them at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velhls {

/// The first of the bytes is the lowest of the number, on every machine and wherever in memory they are. Compilers make
/// one load of this.
[[nodiscard]] constexpr std::uint64_t eightBytesAt(const char* bytes) {
    const auto byte = [bytes](unsigned position) {
        return std::uint64_t{static_cast<unsigned char>(bytes[position])} << (8 * position);
    };
    return byte(0) | byte(1) | byte(2) | byte(3) | byte(4) | byte(5) | byte(6) | byte(7);
}

/// The last bytes of a text that has eight, of fewer than eight from a position on. What would stand after the end is 0.
[[nodiscard]] constexpr std::uint64_t lastBytesFrom(std::string_view text, std::size_t position) {
    const std::uint64_t lastEight = eightBytesAt(text.data() + text.size() - 8);
    const std::size_t left = text.size() - position;
    return left == 0 ? 0 : lastEight >> (8 * (8 - left));
}

inline constexpr std::uint64_t oneInEachByte = 0x0101010101010101;
inline constexpr std::uint64_t highBits = oneInEachByte << 7;

/// The high bit of each byte that is below a number up to 128, and no other bit. A byte after the first of them may be marked
/// though it is not below.
[[nodiscard]] constexpr std::uint64_t markBelow(std::uint64_t bytes, unsigned char number) {
    return (bytes - oneInEachByte * number) & ~bytes & highBits;
}

/// The same of the bytes that are this ASCII character.
[[nodiscard]] constexpr std::uint64_t markEqual(std::uint64_t bytes, char character) {
    return markBelow(bytes ^ (oneInEachByte * static_cast<unsigned char>(character)), 1);
}

/// How many bytes are marked.
[[nodiscard]] constexpr std::size_t markedCount(std::uint64_t marks) {
    // The highest byte of the product is the sum of all bytes.
    return static_cast<std::size_t>((marks >> 7) * oneInEachByte >> 56);
}

/// Which byte is the first that is marked. One is.
[[nodiscard]] constexpr std::size_t firstMarked(std::uint64_t marks) {
    // The number of each byte stands as many bytes below the highest: the multiplication brings it there.
    constexpr std::uint64_t numbers = 0x0001020304050607;
    const std::uint64_t first = marks & (~marks + 1);
    return static_cast<std::size_t>((first >> 7) * numbers >> 56);
}

}  // namespace velhls
