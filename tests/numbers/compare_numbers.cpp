// Compares how the library reads and writes doubles with glibc's strtod and libstdc++'s std::to_chars, bit for bit and byte
// for byte: see scripts/compare-numbers.
//
//     velhls_compare_numbers COUNT SEED
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

#include "velhls/common/NumberReading.h"
#include "velhls/common/NumberWriting.h"

namespace {

using Random = std::mt19937_64;
using Text = std::array<char, 2048>;

std::uint64_t bitsOf(double number) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

double doubleOf(std::uint64_t bits) {
    double number = 0.0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

/// What reading comes to: the bits of a double, or why there is none.
struct Outcome {
    enum Kind { number, none, outOfRange } kind;
    std::uint64_t bits = 0;

    bool operator==(const Outcome& other) const { return kind == other.kind && bits == other.bits; }
};

/// The process is in the "C" locale.
Outcome readByStrtod(const char* text) {
    char* end = nullptr;
    errno = 0;
    const double number = std::strtod(text, &end);
    if (end == text) return {Outcome::none};
    if (errno == ERANGE) return {Outcome::outOfRange};
    return {Outcome::number, bitsOf(number)};
}

Outcome read(std::string_view text) {
    try {
        return {Outcome::number, bitsOf(velhls::toDouble(text))};
    } catch (const std::invalid_argument&) {
        return {Outcome::none};
    } catch (const std::out_of_range&) {
        return {Outcome::outOfRange};
    }
}

[[noreturn]] void fail(const std::string& what) {
    std::cerr << "broken: " << what << "\n";
    std::exit(1);
}

void compareReading(const Text& text, std::size_t length) {
    if (read({text.data(), length}) == readByStrtod(text.data())) return;
    fail("read " + std::string(text.data(), length));
}

void compareWriting(double number, const char* how, std::string_view written, std::string_view expected) {
    if (written == expected) return;
    std::array<char, 64> exactly;
    std::snprintf(exactly.data(), exactly.size(), "%a", number);
    fail("write " + std::string(exactly.data()) + " " + how + "\nexpected: " + std::string(expected) +
         "\nseen:     " + std::string(written));
}

void compareWriting(double number) {
    Text written;
    Text expected;
    const auto compare = [&](const char* how, const char* end, const char* expectedEnd) {
        compareWriting(number, how, {written.data(), static_cast<std::size_t>(end - written.data())},
                       {expected.data(), static_cast<std::size_t>(expectedEnd - expected.data())});
    };
    for (const int decimals : {3, 6}) {
        compare(decimals == 3 ? "with 3 decimals" : "with 6 decimals",
                velhls::writeFixed(written.data(), number, decimals),
                std::to_chars(expected.data(), expected.data() + expected.size(), number,
                              std::chars_format::fixed, decimals)
                    .ptr);
    }
    // The writer refuses what is not finite, and writes both zeros as "0".
    if (!std::isfinite(number) || bitsOf(number) == bitsOf(-0.0)) return;
    compare(
        "shortest", velhls::writeShortest(written.data(), number),
        std::to_chars(expected.data(), expected.data() + expected.size(), number, std::chars_format::fixed)
            .ptr);
}

/// Of all doubles, of those that playlists hold, and of those at the limits of the conversions.
double anyDouble(Random& random) {
    const std::uint64_t bits = random();
    switch (random() % 8) {
        case 0:
        case 1:
            return doubleOf(bits);
        case 2: {
            // A decimal number, and what calculations make of one.
            const auto decimal = static_cast<double>(bits % 1000000000000) / std::pow(10.0, bits >> 60);
            return doubleOf(bitsOf(decimal) + bits / 7 % 5 - 2);
        }
        case 3:
            // From 2^-30 to 2^66.
            return std::ldexp(static_cast<double>(bits >> 11 | std::uint64_t{1} << 52),
                              static_cast<int>(bits % 97) - 83);
        case 4:
            // About a power of two.
            return doubleOf(((bits >> 12) % 2047 << 52) + bits % 5 - 2);
        case 5:
            // Few bits.
            return std::ldexp(static_cast<double>(bits >> 44), static_cast<int>(bits % 2100) - 1080);
        case 6:
            // Below the normal ones.
            return doubleOf(bits >> (12 + bits % 52));
        default:
            // The middle between two with six decimals.
            return (static_cast<double>(bits % 1000000000) * 2 + 1) / 2e6;
    }
}

/// A form of a number, long or short, exact or near the middle between two doubles.
std::size_t writeForm(double number, Random& random, Text& text) {
    const std::uint64_t choice = random();
    const int precision = static_cast<int>(choice >> 8) % 25;
    const auto print = [&](const char* format, int digits) {
        return static_cast<std::size_t>(std::snprintf(text.data(), text.size(), format, digits, number));
    };
    switch (choice % 8) {
        case 0:
        case 1: {
            char* const end = std::to_chars(text.data(), text.data() + text.size() - 1, number).ptr;
            *end = '\0';
            return static_cast<std::size_t>(end - text.data());
        }
        case 2:
            return print("%.*g", precision);
        case 3:
            return print("%.*e", 17);
        case 4:
            return print("%.*a", precision);
        case 5:
            return print("%.*f", precision);
        case 6:
            // All digits.
            return (choice >> 16) % 64 == 0 ? print("%.*e", 770) : print("%.*g", 25);
        default: {
            // The middle between this and the next double, exactly or almost.
            if (!std::isfinite(number) || std::abs(number) > 1e300) return print("%.*g", 17);
            const auto next = static_cast<long double>(std::nextafter(number, 1e308));
            const long double middle = (static_cast<long double>(number) + next) / 2;
            const int digits = (choice >> 16) % 64 == 0 ? 800 : 20 + precision;
            return static_cast<std::size_t>(std::snprintf(text.data(), text.size(), "%.*Le", digits, middle));
        }
    }
}

/// One character becomes another, or the text ends there.
std::size_t mutate(Text& text, std::size_t length, Random& random) {
    constexpr std::string_view characters = "0123456789.+-eEpPxXinfatyINFATY() _";
    const std::uint64_t choice = random();
    const std::size_t at = choice % length;
    if ((choice >> 32) % 4 == 0) {
        text[at] = '\0';
        return at;
    }
    text[at] = characters[(choice >> 40) % characters.size()];
    return length;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return 2;
    const std::uint64_t doubles = std::strtoull(arguments[1], nullptr, 10);
    Random random(std::strtoull(arguments[2], nullptr, 10));
    Text text;
    for (std::uint64_t done = 0; done < doubles; ++done) {
        const double number = anyDouble(random);
        compareWriting(number);
        std::size_t length = writeForm(number, random, text);
        compareReading(text, length);
        length = mutate(text, length, random);
        compareReading(text, length);
    }
    std::cout << doubles
              << " doubles are read as strtod reads them and written as std::to_chars writes them\n";
}
