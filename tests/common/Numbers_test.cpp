// Durations are read as strtod reads them and written as printf writes them, to the last bit and digit.
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

namespace {

double durationRead(const std::string& text) {
    std::shared_ptr<VELHLSMediaPattern> pattern;
    std::istringstream lines("segment.ts\n");
    const auto segment = VELHLSMediaSegment::parseNextSegment(nullptr, "#EXTINF:" + text + ",", lines,
                                                              pattern, 0, 0, nullptr, nullptr);
    return segment == nullptr ? 0.0 : segment->duration;
}

std::string durationWritten(double duration) {
    const VELHLSMediaSegment segment(duration, 0.0, 0, 0, "", nullptr, false, 0.0, nullptr, nullptr, "u",
                                     false, "", "");
    std::string text;
    EXPECT_EQ(segment.render(text, true, true), 0);
    return text;
}

std::string durationPrinted(double duration) {
    std::array<char, 400> text;
    std::snprintf(text.data(), text.size(), "#EXTINF:%.6f\nu\n", duration);
    return text.data();
}

TEST(Numbers, DurationsAreReadAsStrtodReadsThem) {
    const std::vector<std::string> texts = {
        "1",
        "1.",
        ".5",
        "0.1",
        "00012.500",
        "6.006",
        "9.9999999",
        "1.5.5",
        "123456789012345",
        "1234567890123456",
        "0.00000000000001",
        "0.000000000000001",
        "9007199254740993",
        "0.3333333333333333333333",
        "1e3",
        "0x10",
        "  7",
        "+7",
        "-7",
        "7s",
        "99999999999999.9",
        "999999999999.999",
        "inf",
    };
    for (const std::string& text : texts)
        EXPECT_EQ(durationRead(text), std::strtod(text.c_str(), nullptr)) << text;
}

TEST(Numbers, RandomDecimalsAreReadAsStrtodReadsThem) {
    std::mt19937_64 random(11);
    for (int round = 0; round < 200000; ++round) {
        std::string text = std::to_string(random() >> (random() % 60));
        if (random() % 4 != 0) text.insert(random() % (text.size() + 1), ".");
        ASSERT_EQ(durationRead(text), std::strtod(text.c_str(), nullptr)) << text;
    }
}

TEST(Numbers, DurationsAreWrittenAsPrintfWritesThem) {
    const std::vector<double> durations = {
        1.0,
        0.5,
        0.9999995,
        0.9999994,
        1.9999995,
        1.9999994999,
        9.9999995,
        99999.9999995,
        6.006,
        1e15,
        4503599627370495.5,
        9007199254740991.0,
        9007199254740992.0,
        1e16,
        1e300,
        1e-300,
        -6.006,
        -0.25,
        5e-7,
        4.9e-7,
        1.0000005,
        1.0000015,
    };
    for (const double duration : durations)
        EXPECT_EQ(durationWritten(duration), durationPrinted(duration));
}

/// Odd multiples of 2^-7 lie exactly between two numbers of six decimals: printf writes the even one.
TEST(Numbers, TiesAreWrittenAsPrintfWritesThem) {
    for (int numerator = 129; numerator < 200000; numerator += 2) {
        const double duration = numerator / 128.0;
        ASSERT_EQ(durationWritten(duration), durationPrinted(duration)) << numerator;
    }
}

TEST(Numbers, RandomDurationsAreWrittenAsPrintfWritesThem) {
    std::mt19937_64 random(12);
    std::uniform_real_distribution<double> exponent(-2.0, 54.0);
    for (int round = 0; round < 200000; ++round) {
        const double duration = std::exp2(exponent(random));
        ASSERT_EQ(durationWritten(duration), durationPrinted(duration)) << duration;
        const double nearDecimal = std::round(duration * 1e6) / 1e6 + 5e-7;
        ASSERT_EQ(durationWritten(nearDecimal), durationPrinted(nearDecimal)) << nearDecimal;
    }
}

void expectWrittenAsToStringWritesIt(std::int64_t number) {
    std::string range;
    ASSERT_EQ((VELHLSByteRange{number, number}.render(range)), 0);
    EXPECT_EQ(range, std::to_string(number) + "@" + std::to_string(number));
}

void expectWrittenAsToStringWritesIt(std::uint64_t bandwidth) {
    const VELHLSMediaVariant variant(bandwidth, 0, "", "", "uri", nullptr, false, 0);
    std::string text;
    ASSERT_EQ(variant.render(text), 0);
    EXPECT_EQ(text.substr(0, text.find(',')), "#EXT-X-STREAM-INF:BANDWIDTH=" + std::to_string(bandwidth));
}

TEST(Numbers, IntegersOfAllLengthsAreWrittenAsToStringWritesThem) {
    constexpr std::uint64_t largestSigned = std::numeric_limits<std::int64_t>::max();
    std::mt19937_64 random(5);
    std::vector<std::uint64_t> numbers = {largestSigned, largestSigned + 1,
                                          std::numeric_limits<std::uint64_t>::max()};
    std::uint64_t power = 1;
    for (int exponent = 0; exponent < 20; ++exponent) {
        for (const std::uint64_t number :
             {power - 1, power, power + 1, power + random() % power, 7 * (power / 10)})
            numbers.push_back(number);
        power *= 10;
    }
    for (const std::uint64_t number : numbers) {
        if (number <= largestSigned) expectWrittenAsToStringWritesIt(static_cast<std::int64_t>(number));
        if (number != 0) expectWrittenAsToStringWritesIt(number);
    }
}

/// What the exception says that a duration leaves the parse with.
std::string messageFor(const std::string& text) {
    try {
        durationRead(text);
    } catch (const std::logic_error& error) {
        return error.what();
    }
    return "none";
}

TEST(Numbers, ExceptionsQuoteTheStartOfTheText) {
    EXPECT_EQ(messageFor("x"), "no number at the start of \"x\"");
    EXPECT_EQ(messageFor(std::string(40, 'x')), "no number at the start of \"" + std::string(40, 'x') + "\"");
    EXPECT_EQ(messageFor(std::string(41, 'x')),
              "no number at the start of \"" + std::string(40, 'x') + "...\"");
    EXPECT_EQ(messageFor("1e999"), "number out of range: \"1e999\"");
}

}  // namespace
