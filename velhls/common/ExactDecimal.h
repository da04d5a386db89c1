// Internal to the library, not installed: the digits of a double, and the double nearest to digits, exactly. The rare way of
// the number conversions, which have quicker ones for nearly all numbers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velhls {

/// What strtod returns, and whether it does so without reporting ERANGE: it does for a number beyond the largest double, and
/// for one below the smallest normal double that is not a double itself.
struct NearestDouble {
    double number = 0.0;
    bool isInRange = true;
};

/// The double nearest to significand * 2^exponent; of two the even one. The top bit of the significand is set, or it is 0.
/// Where it is not exact the number is a little more than that.
[[nodiscard]] NearestDouble nearestDouble(std::uint64_t significand, std::int64_t exponent, bool isExact);

/// From 2^53 on every double is a whole number.
inline constexpr double firstWithoutDecimals = 9007199254740992.0;

/// A decimal number that is not negative, with room for all digits of each double and of the middle between any two.
///
///     12.5    0 ... 0 | 000000012 . 500000000 | 0 ... 0    nine digits a word
///
/// The place of its ones is 0, that of its tens 1, that of its first decimal -1.
class ExactDecimal {
  public:
    static constexpr std::int64_t highestPlace = 323;
    static constexpr std::int64_t lowestPlace = -1080;

    /// Zero.
    ExactDecimal() = default;

    /// A finite number from 0 on.
    explicit ExactDecimal(double number);

    /// Puts digits from a place on, the first of them at the highest place or below, where there were none. Of digits below
    /// the lowest place it is only known whether they are all zeros, which is all that nearest() asks of them.
    void putDigits(std::int64_t place, std::string_view digits);

    [[nodiscard]] std::uint32_t digitAt(std::int64_t place) const;

    /// The place of the first digit that is not 0; that of the ones for zero.
    [[nodiscard]] std::int64_t firstPlace() const;

    /// Rounds to the nearest number without digits below a place; of two to the even one.
    void roundTo(std::int64_t place);

    /// Writes the number down to the last of so many decimals. There must be room.
    [[nodiscard]] char* write(char* to, std::int64_t decimals) const;

    /// Adds 1 at a place.
    void increaseAt(std::int64_t place);

    /// The double nearest to the number, which is lost on the way.
    [[nodiscard]] NearestDouble nearest();

  private:
    static constexpr std::int64_t digitsPerWord = 9;
    static constexpr std::size_t wholeWords = static_cast<std::size_t>((highestPlace + 1) / digitsPerWord);
    static constexpr std::size_t wordCount =
        wholeWords + static_cast<std::size_t>(-lowestPlace / digitsPerWord);

    /// Where a place is in the words, and what a 1 there is worth in its word.
    struct Position {
        std::size_t word;
        std::uint32_t unit;
    };
    [[nodiscard]] static Position positionOf(std::int64_t place);

    /// The number without its decimals, which must be below 2^64.
    [[nodiscard]] std::uint64_t whole() const;
    [[nodiscard]] bool isWhole() const;
    [[nodiscard]] bool isBeyond64Bits() const;
    void multiplyByPowerOfTwo(int exponent);
    void divideByPowerOfTwo(int exponent);
    /// Returns whether anything but zeros was dropped.
    bool dropBelow(std::int64_t place);
    void withoutOuterZeros();

    std::array<std::uint32_t, wordCount> words_ = {};
    /// The words from the first to the last one that is not 0.
    std::size_t begin_ = wholeWords;
    std::size_t end_ = wholeWords;
    bool hasMoreDigits_ = false;
};

}  // namespace velhls
