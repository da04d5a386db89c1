// Durations are read as strtod reads them and written as printf writes them, to the last bit and digit.
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/Outcome.h"

namespace {

double durationRead(const std::string& text) {
    std::shared_ptr<VELHLSMediaPattern> pattern;
    std::istringstream lines("segment.ts\n");
    const auto segment = VELHLSMediaSegment::parseNextSegment(nullptr, "#EXTINF:" + text + ",", lines,
                                                              pattern, 0, 0, nullptr, nullptr);
    return segment == nullptr ? 0.0 : segment->duration;
}

/// As printf's "%a" has it.
std::string exactly(double number) {
    // Which has no sign for it everywhere.
    if (std::isnan(number)) return std::signbit(number) ? "-nan" : "nan";
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), "%a", number);
    return text.data();
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

struct Form {
    std::string text;
    /// As printf's "%a" has it, or the exception.
    std::string outcome;
};

/// As the C standard has it; what is out of range, as glibc has it. A segment without a duration is none, so that of zeros the
/// sign is not seen.
TEST(Numbers, AllFormsOfDoublesAreRead) {
    const std::vector<Form> forms = {
        // Signs and white space.
        {" \t\n\v\f\r7", "0x1.cp+2"},
        {"-12.5", "-0x1.9p+3"},
        {"+.5x", "0x1p-1"},
        {"+-5", "invalid_argument"},
        {"- 5", "invalid_argument"},
        {" ", "invalid_argument"},
        {".", "invalid_argument"},
        {"-.e5", "invalid_argument"},
        {std::string("\0"
                     "7",
                     2),
         "invalid_argument"},
        {std::string("7\0"
                     "7",
                     3),
         "0x1.cp+2"},
        // Exponents.
        {"1.e3", "0x1.f4p+9"},
        {"125E-3", "0x1p-3"},
        {"5e", "0x1.4p+2"},
        {"5e+", "0x1.4p+2"},
        {"5e-x", "0x1.4p+2"},
        {"0e999999999999999999999", "0x0p+0"},
        {"-0.000e-999999999999999999999", "0x0p+0"},
        {"1e999999999999999999999", "out_of_range"},
        {"1e-999999999999999999999", "out_of_range"},
        {"0." + std::string(100000, '0') + "1e100001", "0x1p+0"},
        {"1" + std::string(100000, '0') + "e-100000", "0x1p+0"},
        // The nearest of two doubles; of a middle the even one.
        {"9007199254740993", "0x1p+53"},
        {"9007199254740993.0000000000000000000000000000000000000001", "0x1.0000000000001p+53"},
        {"9007199254740995", "0x1.0000000000002p+53"},
        {"6.0060060060060065", "0x1.80626703d8063p+2"},
        {"0.1000000000000000055511151231257827021181583404541015625", "0x1.999999999999ap-4"},
        // The largest, and the middle between it and the next power of two.
        {"1.7976931348623157e308", "0x1.fffffffffffffp+1023"},
        {"1.7976931348623158e308", "0x1.fffffffffffffp+1023"},
        {"1.7976931348623159e308", "out_of_range"},
        {"-1e309", "out_of_range"},
        // The smallest normal one, and below it what is exact.
        {"2.2250738585072014e-308", "0x1p-1022"},
        {"2.2250738585072011e-308", "out_of_range"},
        {"5e-324", "out_of_range"},
        {"0x1p-1074", "0x0.0000000000001p-1022"},
        {"0x1.8p-1074", "out_of_range"},
        {"0x1p-1075", "out_of_range"},
        {"0x1.fffffffffffffp-1023", "out_of_range"},
        {"0x1.ffffffffffffep-1023", "0x0.fffffffffffffp-1022"},
        {"0x1.fffffffffffffcp-1023", "0x1p-1022"},
        // Hexadecimal ones.
        {"0x10", "0x1p+4"},
        {"-0XaB.8P-1x", "-0x1.57p+6"},
        {"0x.8", "0x1p-1"},
        {"0x1.", "0x1p+0"},
        {"0x1p", "0x1p+0"},
        {"0x", "0x0p+0"},
        {"-0xg", "0x0p+0"},
        {"0x.p1", "0x0p+0"},
        {"0x0p99999", "0x0p+0"},
        {"0x1.00000000000008p0", "0x1p+0"},
        {"0x1.000000000000080000000000001p0", "0x1.0000000000001p+0"},
        {"0x1.fffffffffffff8p1023", "out_of_range"},
        {"0x0.0000000000000000000000001p100", "0x1p+0"},
        // What is no number, and what has no end.
        {"inf", "inf"},
        {"-InFinity7", "-inf"},
        {"infinit", "inf"},
        {"in", "invalid_argument"},
        {"nan", "nan"},
        {"-NaN(0x7_", "-nan"},
        {"nan(0x8000000000001)", "nan"},
        {"nan(0x10000000000000000)", "out_of_range"},
        {"na", "invalid_argument"},
    };
    for (const Form& form : forms) {
        const std::string seen = playlist::outcomeOf([&] { return exactly(durationRead(form.text)); });
        EXPECT_EQ(seen, form.outcome) << form.text.substr(0, 80);
    }
}

TEST(Numbers, TheParenthesesOfNanAreInItsBits) {
    const auto bitsRead = [](const std::string& text) {
        const double number = durationRead(text);
        std::uint64_t bits = 0;
        std::memcpy(&bits, &number, sizeof bits);
        return bits;
    };
    EXPECT_EQ(bitsRead("nan"), 0x7ff8000000000000);
    EXPECT_EQ(bitsRead("-nan(12)"), 0xfff800000000000c);
    EXPECT_EQ(bitsRead("NAN(0X12)"), 0x7ff8000000000012);
    EXPECT_EQ(bitsRead("nan(012)"), 0x7ff800000000000a);
    EXPECT_EQ(bitsRead("nan(0xffffffffffffffff)"), 0x7fffffffffffffff);
    for (const char* const none : {"nan()", "nan(12", "nan(1 2)", "nan(0x)", "nan(08)", "nan(x)"})
        EXPECT_EQ(bitsRead(none), 0x7ff8000000000000) << none;
}

TEST(Numbers, RandomDecimalsAreReadAsStrtodReadsThem) {
    std::mt19937_64 random(11);
    for (int round = 0; round < 200000; ++round) {
        std::string text = std::to_string(random() >> (random() % 60));
        if (random() % 4 != 0) text.insert(static_cast<std::size_t>(random() % (text.size() + 1)), ".");
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
        0.015625,
        0.0078125,
        0.0000005,
        0.4999995,
        0.99999949999999994,
        1.0 / 3.0,
        std::numeric_limits<double>::max(),
        std::numeric_limits<double>::denorm_min(),
        std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(),
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
