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

void compareWriting(double number, Random& random) {
    Text written;
    Text expected;
    const auto compare = [&](const char* how, const char* end, const char* expectedEnd) {
        compareWriting(number, how, {written.data(), static_cast<std::size_t>(end - written.data())},
                       {expected.data(), static_cast<std::size_t>(expectedEnd - expected.data())});
    };
    char* const end = expected.data() + expected.size();
    const int decimals = random() % 2 == 0 ? 3 : 6;
    compare(decimals == 3 ? "with 3 decimals" : "with 6 decimals",
            velhls::writeFixed(written.data(), number, decimals),
            std::to_chars(expected.data(), end, number, std::chars_format::fixed, decimals).ptr);
    // The writer refuses what is not finite, and writes both zeros as "0".
    if (!std::isfinite(number) || bitsOf(number) == bitsOf(-0.0)) return;
    compare("shortest", velhls::writeShortest(written.data(), number),
            std::to_chars(expected.data(), end, number, std::chars_format::fixed).ptr);
}

/// Most are such as playlists hold or might hold; each sixteenth one is any other, since these take long.
double anyDouble(Random& random) {
    const std::uint64_t bits = random();
    switch (random() % 64) {
        case 0:
            return doubleOf(bits);
        case 1:
            // About a power of two.
            return doubleOf(((bits >> 12) % 2047 << 52) + bits % 5 - 2);
        case 2:
            // Few bits.
            return std::ldexp(static_cast<double>(bits >> 44), static_cast<int>(bits % 2100) - 1080);
        case 3:
            // Below the normal ones.
            return doubleOf(bits >> (12 + bits % 52));
        default:
            break;
    }
    switch (bits % 4) {
        case 0:
            // From 2^-30 to 2^66.
            return std::ldexp(static_cast<double>(bits >> 11 | std::uint64_t{1} << 52),
                              static_cast<int>(bits / 4 % 97) - 83);
        case 1:
            // The middle between two with six decimals.
            return (static_cast<double>(bits / 4 % 1000000000) * 2 + 1) / 2e6;
        default: {
            // A decimal number, and what calculations make of one.
            constexpr std::array<double, 8> powersOfTen = {1e0, 1e1, 1e3, 1e5, 1e6, 1e7, 1e8, 1e9};
            const auto decimal = static_cast<double>(1 + bits / 4 % 1000000000000) / powersOfTen[bits >> 61];
            return doubleOf(bitsOf(decimal) + bits / 4 % 5 - 2);
        }
    }
}

/// A form of a number, long or short, exact or near the middle between two doubles.
std::size_t writeForm(double number, Random& random, Text& text) {
    const std::uint64_t choice = random();
    const auto precision = static_cast<int>((choice >> 8) % 25);
    const auto printed = [&](auto... how) {
        char* const end = std::to_chars(text.data(), text.data() + text.size() - 1, number, how...).ptr;
        *end = '\0';
        return static_cast<std::size_t>(end - text.data());
    };
    switch (choice % 64) {
        case 0:
            return printed(std::chars_format::scientific, 770);
        case 1: {
            // The middle between this and the next double, exactly or almost.
            if (!std::isfinite(number) || std::abs(number) > 1e300) return printed();
            const auto next = static_cast<long double>(std::nextafter(number, 1e308));
            const long double middle = (static_cast<long double>(number) + next) / 2;
            const int digits = (choice >> 16) % 16 == 0 ? 800 : 20 + precision;
            return static_cast<std::size_t>(std::snprintf(text.data(), text.size(), "%.*Le", digits, middle));
        }
        case 2:
            return static_cast<std::size_t>(
                std::snprintf(text.data(), text.size(), "%.*a", precision, number));
        default:
            break;
    }
    switch (choice >> 16 & 3) {
        case 0:
            return printed(std::chars_format::fixed, precision);
        case 1:
            return printed(std::chars_format::general, precision);
        default:
            return printed();
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
        if (done % 2 == 0) {
            compareWriting(number, random);
            continue;
        }
        std::size_t length = writeForm(number, random, text);
        if (done % 4 == 1) length = mutate(text, length, random);
        compareReading(text, length);
    }
    std::cout
        << doubles
        << " doubles: half of them read as strtod reads them, half written as std::to_chars writes them\n";
}
