#include "velhls/common/ExactDecimal.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "velhls/common/TextBuffer.h"

namespace velhls {
namespace {

constexpr std::uint32_t wordBase = 1000000000;
constexpr std::array<std::uint32_t, 9> unitsOfWord = {1,      10,      100,      1000,     10000,
                                                      100000, 1000000, 10000000, 100000000};

/// The most that a number is multiplied or divided by at once: so many bits and a word fill 64 bits.
constexpr int mostBits = 32;

using Double = std::numeric_limits<double>;
static_assert(Double::is_iec559 && Double::digits == 53, "the conversions are those of IEEE 754 doubles");

/// The number without its last bits, from 1 to 64 of them, rounded to the nearest; of two to the even one.
std::uint64_t withoutLastBits(std::uint64_t number, std::int64_t bits, bool isExact) {
    const std::uint64_t half = std::uint64_t{1} << (bits - 1);
    const std::uint64_t rest = number & (2 * half - 1);
    const std::uint64_t kept = number >> (bits - 1) >> 1;
    const bool isTie = rest == half && isExact;
    return (isTie ? (kept & 1) != 0 : rest >= half) ? kept + 1 : kept;
}

}  // namespace

NearestDouble nearestDouble(std::uint64_t significand, std::int64_t exponent, bool isExact) {
    constexpr std::int64_t usualBits = 64 - Double::digits;
    constexpr std::int64_t exponentOfSmallest = Double::min_exponent - Double::digits;
    constexpr std::int64_t exponentOfLargest = Double::max_exponent - Double::digits;
    constexpr std::uint64_t tooManyBits = std::uint64_t{1} << Double::digits;

    if (significand == 0) return {0.0, isExact};
    exponent += usualBits;
    const std::uint64_t kept = withoutLastBits(significand, usualBits, isExact);
    const std::int64_t carry = kept == tooManyBits ? 1 : 0;
    if (exponent + carry > exponentOfLargest) return {Double::infinity(), false};
    if (exponent + carry >= exponentOfSmallest) {
        return {std::ldexp(static_cast<double>(kept), static_cast<int>(exponent)), true};
    }

    // Below the normal doubles fewer bits are left.
    const std::int64_t lostBits = usualBits + exponentOfSmallest - exponent;
    if (lostBits > 64) return {0.0, false};
    const std::uint64_t left = withoutLastBits(significand, lostBits, isExact);
    // Kept as is: like glibc this overlooks the bit after those of a normal double where it is the last one that is set.
    const std::uint64_t seen = significand & ~(std::uint64_t{1} << (usualBits - 1));
    return {std::ldexp(static_cast<double>(left), exponentOfSmallest),
            isExact && seen << (64 - lostBits) == 0};
}

ExactDecimal::ExactDecimal(double number) {
    int exponent = 0;
    auto bits = static_cast<std::uint64_t>(std::ldexp(std::frexp(number, &exponent), Double::digits));
    exponent -= Double::digits;
    while (bits != 0) {
        words_[--begin_] = static_cast<std::uint32_t>(bits % wordBase);
        bits /= wordBase;
    }
    withoutOuterZeros();
    for (int left = exponent; left > 0; left -= mostBits)
        multiplyByPowerOfTwo(std::min(left, mostBits));
    for (int left = -exponent; left > 0; left -= mostBits)
        divideByPowerOfTwo(std::min(left, mostBits));
}

ExactDecimal::Position ExactDecimal::positionOf(std::int64_t place) {
    const std::int64_t fromHighest = highestPlace - place;
    return {static_cast<std::size_t>(fromHighest / digitsPerWord),
            unitsOfWord[static_cast<std::size_t>(digitsPerWord - 1 - fromHighest % digitsPerWord)]};
}

void ExactDecimal::putDigits(std::int64_t place, std::string_view digits) {
    if (digits.empty()) return;
    const auto room = static_cast<std::size_t>(std::max(place - lowestPlace + 1, std::int64_t{0}));
    const std::string_view held = digits.substr(0, room);
    hasMoreDigits_ = hasMoreDigits_ || digits.find_first_not_of('0', held.size()) != std::string_view::npos;
    if (held.empty()) return;

    Position at = positionOf(place);
    begin_ = std::min(begin_, at.word);
    for (const char digit : held) {
        words_[at.word] += static_cast<std::uint32_t>(digit - '0') * at.unit;
        if (at.unit == 1) at = {at.word + 1, wordBase};
        at.unit /= 10;
    }
    end_ = std::max(end_, positionOf(place - static_cast<std::int64_t>(held.size()) + 1).word + 1);
    withoutOuterZeros();
}

std::uint32_t ExactDecimal::digitAt(std::int64_t place) const {
    const Position at = positionOf(place);
    return words_[at.word] / at.unit % 10;
}

std::int64_t ExactDecimal::firstPlace() const {
    if (begin_ == end_) return 0;
    std::int64_t place = highestPlace - static_cast<std::int64_t>(begin_) * digitsPerWord;
    while (digitAt(place) == 0)
        --place;
    return place;
}

bool ExactDecimal::dropBelow(std::int64_t place) {
    const Position at = positionOf(place);
    const std::uint32_t rest = words_[at.word] % at.unit;
    const bool dropped = rest != 0 || end_ > at.word + 1;
    words_[at.word] -= rest;
    for (; end_ > at.word + 1; --end_)
        words_[end_ - 1] = 0;
    withoutOuterZeros();
    return dropped;
}

void ExactDecimal::roundTo(std::int64_t place) {
    const std::uint32_t next = digitAt(place - 1);
    const bool moreFollows = dropBelow(place - 1);
    dropBelow(place);
    const bool isTie = next == 5 && !moreFollows;
    if (isTie ? digitAt(place) % 2 != 0 : next >= 5) increaseAt(place);
}

void ExactDecimal::increaseAt(std::int64_t place) {
    const Position at = positionOf(place);
    std::size_t word = at.word;
    words_[word] += at.unit;
    while (words_[word] >= wordBase) {
        words_[word] -= wordBase;
        ++words_[--word];
    }
    begin_ = std::min(begin_, word);
    end_ = std::max(end_, at.word + 1);
    withoutOuterZeros();
}

char* ExactDecimal::write(char* to, std::int64_t decimals) const {
    for (std::int64_t place = std::max(firstPlace(), std::int64_t{0}); place >= -decimals; --place) {
        if (place == -1) to = writeText(to, '.');
        to = writeText(to, static_cast<char>('0' + digitAt(place)));
    }
    return to;
}

std::uint64_t ExactDecimal::whole() const {
    std::uint64_t number = 0;
    for (std::size_t word = begin_; word < wholeWords; ++word)
        number = number * wordBase + words_[word];
    return number;
}

bool ExactDecimal::isWhole() const {
    return end_ <= wholeWords && !hasMoreDigits_;
}

/// From 10^19 on, somewhat early.
bool ExactDecimal::isBeyond64Bits() const {
    return begin_ + 3 < wholeWords || (begin_ + 3 == wholeWords && words_[begin_] >= 10);
}

NearestDouble ExactDecimal::nearest() {
    if (begin_ == end_) return nearestDouble(0, 0, isWhole());
    std::int64_t exponent = 0;
    for (; isBeyond64Bits(); exponent += mostBits - 1)
        divideByPowerOfTwo(mostBits - 1);
    // Until the number without its decimals has 64 bits.
    std::uint64_t bits = whole();
    while (bits >> 63 == 0) {
        int unusedBits = bits == 0 ? mostBits : 1;
        while (unusedBits < mostBits && bits << unusedBits >> 63 == 0)
            ++unusedBits;
        multiplyByPowerOfTwo(unusedBits);
        exponent -= unusedBits;
        bits = whole();
    }
    return nearestDouble(bits, exponent, isWhole());
}

void ExactDecimal::multiplyByPowerOfTwo(int exponent) {
    std::uint64_t carry = 0;
    std::size_t word = end_;
    while (word > begin_ || carry != 0) {
        --word;
        const std::uint64_t product = (std::uint64_t{words_[word]} << exponent) + carry;
        words_[word] = static_cast<std::uint32_t>(product % wordBase);
        carry = product / wordBase;
    }
    begin_ = word;
    withoutOuterZeros();
}

void ExactDecimal::divideByPowerOfTwo(int exponent) {
    const std::uint64_t belowOne = (std::uint64_t{1} << exponent) - 1;
    std::uint64_t rest = 0;
    std::size_t word = begin_;
    for (; word < end_ || (rest != 0 && word < wordCount); ++word) {
        const std::uint64_t dividend = rest * wordBase + words_[word];
        words_[word] = static_cast<std::uint32_t>(dividend >> exponent);
        rest = dividend & belowOne;
    }
    end_ = word;
    hasMoreDigits_ = hasMoreDigits_ || rest != 0;
    withoutOuterZeros();
}

void ExactDecimal::withoutOuterZeros() {
    while (begin_ < end_ && words_[begin_] == 0)
        ++begin_;
    while (begin_ < end_ && words_[end_ - 1] == 0)
        --end_;
}

}  // namespace velhls
