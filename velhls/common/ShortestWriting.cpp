#include "velhls/common/ShortestWriting.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "velhls/common/ExactDecimal.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/TextBuffer.h"

namespace velhls {
namespace {

/// The decimal number with the fewest digits whose nearest double is this one. The place is that of its last digit.
struct ShortestDecimal {
    ExactDecimal digits;
    std::int64_t lastPlace;

    explicit ShortestDecimal(double number) {
        const ExactDecimal exact(number);
        // With so many digits no two decimal numbers have the same nearest double, unless it is below the normal ones: the
        // shortest one is not shorter but for zeros.
        constexpr std::int64_t distinctDigits = std::numeric_limits<double>::digits10;
        const bool isNormal = number >= std::numeric_limits<double>::min();
        lastPlace = exact.firstPlace() - (isNormal ? distinctDigits - 1 : 0);
        while (!find(exact, number))
            --lastPlace;
    }

  private:
    bool find(const ExactDecimal& exact, double number) {
        digits = exact;
        digits.roundTo(lastPlace);
        if (ExactDecimal(digits).nearest().number == number) return true;
        // Below a power of two doubles stand closer: where the nearest number is too far below, the next may do.
        digits.increaseAt(lastPlace);
        return ExactDecimal(digits).nearest().number == number;
    }
};

/// A text with a point, without the zeros at its end.
char* withoutFinalZeros(char* end) {
    while (end[-1] == '0')
        --end;
    return end[-1] == '.' ? end - 1 : end;
}

/// Of a number from 0 on.
char* writeShortestExactly(char* to, double number) {
    if (number >= firstWithoutDecimals) return ExactDecimal(number).write(to, 0);
    const ShortestDecimal shortest(number);
    if (shortest.lastPlace >= 0) return shortest.digits.write(to, 0);
    return withoutFinalZeros(shortest.digits.write(to, -shortest.lastPlace));
}

struct Product {
    std::uint64_t upper;
    std::uint64_t lower;
};

/// All bits of the product of two numbers below 2^63.
Product product(std::uint64_t first, std::uint64_t second) {
    constexpr std::uint64_t half = 0xffffffff;
    const std::uint64_t lowest = (first & half) * (second & half);
    const std::uint64_t middle = (first >> 32) * (second & half) + (lowest >> 32);
    const std::uint64_t other = (first & half) * (second >> 32) + (middle & half);
    return {(first >> 32) * (second >> 32) + (middle >> 32) + (other >> 32), other << 32 | (lowest & half)};
}

/// Does what writeShortestExactly does in a tenth of the time, for a number from 0.1 to 1e9 that is no power of two.
///
/// Numbers closer than half a unit of its last bit are read back as this one. Counted in those halves, and times the power of
/// ten that leaves 17 digits before the point, the number is `scaled`, and a half is that power. Of the 17 digits the last
/// two, the last one or none can be rounded away.
char* writeShortestUsual(char* to, double number) {
    int decimals = 17;
    std::uint64_t scale = 100000000000000000;
    for (auto left = static_cast<std::uint64_t>(number); left != 0; left /= 10) {
        --decimals;
        scale /= 10;
    }
    int exponent = 0;
    const auto bits = static_cast<std::uint64_t>(std::frexp(number, &exponent) * 0x1p53);
    const int fractionBits = 54 - exponent;
    const Product scaled = product(2 * bits, scale);
    const std::uint64_t whole = scaled.upper << (64 - fractionBits) | scaled.lower >> fractionBits;
    const std::uint64_t fraction = scaled.lower & ((std::uint64_t{1} << fractionBits) - 1);

    std::uint64_t digits = 0;
    for (std::uint64_t unit = 100; unit != 0; unit /= 10) {
        const std::uint64_t below = (whole % unit << fractionBits) + fraction;
        const std::uint64_t above = (unit << fractionBits) - below;
        const bool isOdd = whole / unit % 2 != 0;
        const bool isAbove = above < below || (above == below && isOdd);
        digits = whole - whole % unit + (isAbove ? unit : 0);
        const std::uint64_t distance = std::min(below, above);
        if (distance < scale || (distance == scale && bits % 2 == 0)) break;
    }

    char* const point = writeDecimal(to, static_cast<std::int64_t>(digits / scale));
    char* const end = point + 1 + decimals;
    for (char* pair = end; pair > point + 1; digits /= 100) {
        pair -= 2;
        static_cast<void>(writeTwoDigits(pair, static_cast<std::uint32_t>(digits % 100)));
    }
    // Last, since half a pair may stand there.
    *point = '.';
    return withoutFinalZeros(end);
}

}  // namespace

char* writeAnyShortest(char* to, double number) {
    if (number < 0.0) return writeShortest(writeText(to, '-'), -number);
    return number >= 0.1 && number < 1e9 ? writeShortestUsual(to, number) : writeShortestExactly(to, number);
}

}  // namespace velhls
