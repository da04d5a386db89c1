// What the writer prints in a way of its own, beside the plain form of the same: the shortest digits of a duration, and dates.
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/Calendar.h"
#include "tests/support/WriterPromises.h"

namespace {

/// The text of the playlist with one segment between two marks.
std::string writtenBetween(const VELHLSMediaSegment& segment, const std::string& before, char after) {
    VELHLSMediaStream stream;
    stream.segments.push_back(std::make_shared<VELHLSMediaSegment>(segment));
    const std::string text = writer::written(stream);
    const std::size_t at = text.find(before);
    if (at == std::string::npos) return text;
    return text.substr(at + before.size(), text.find(after, at) - at - before.size());
}

std::string durationWritten(double duration) {
    VELHLSMediaSegment segment;
    segment.duration = duration;
    segment.uri = "segment.ts";
    return writtenBetween(segment, "#EXTINF:", ',');
}

std::string shortest(double number) {
    std::array<char, 400> text;
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    return {text.data(), result.ptr};
}

TEST(WriterNumbers, AreTheShortestThatAreReadBackAsTheSame) {
    std::mt19937_64 random(8216);
    for (int run = 0; run < 100000; ++run) {
        const std::uint64_t bits = random();
        const std::uint64_t decimals = bits % 10;
        double scale = 1.0;
        for (std::uint64_t digit = 0; digit < decimals; ++digit)
            scale *= 10.0;
        const auto decimal = static_cast<double>(1 + (bits >> 20) % 100000000000) / scale;
        ASSERT_EQ(durationWritten(decimal), shortest(decimal));
        ASSERT_EQ(durationWritten(std::nextafter(decimal, 0.0)), shortest(std::nextafter(decimal, 0.0)));
        double any = 0.0;
        std::memcpy(&any, &bits, sizeof any);
        any = std::abs(any);
        if (any > 0.0 && any < 9e18) {
            ASSERT_EQ(durationWritten(any), shortest(any));
        }
    }
}

TEST(WriterNumbers, AreTheShortestAtTheirLimits) {
    for (const double number : {1e-6,
                                1e-7,
                                4.9e-7,
                                5e-7,
                                0.9999995,
                                0.99999949999,
                                999999.9999995,
                                999999999.9999999,
                                999999999.5,
                                1e9,
                                1000000000.5,
                                9007199254740991.0,
                                9007199254740993.0,
                                std::numeric_limits<double>::min(),
                                std::numeric_limits<double>::denorm_min(),
                                0.1 + 0.2,
                                1.0 / 3.0,
                                0.1,
                                9.5,
                                1e-5,
                                1e-300,
                                3e-320,
                                5.684341886080802e-14,
                                1.1125369292536007e-308,
                                12345678901234.5,
                                4503599627370497.5}) {
        for (const double near : {number, std::nextafter(number, 0.0), std::nextafter(number, 1e300)}) {
            if (near > 0.0) {
                EXPECT_EQ(durationWritten(near), shortest(near));
            }
        }
    }
}

/// The date as the C library's calendar has it, to the nearest millisecond.
std::string dateByCalendar(double seconds) {
    const auto milliseconds = static_cast<std::int64_t>(std::floor(seconds)) * 1000 +
                              std::llround((seconds - std::floor(seconds)) * 1000.0);
    const auto whole = static_cast<std::time_t>(milliseconds / 1000);
    std::tm date = {};
    EXPECT_TRUE(calendar::read(whole, date));
    std::array<char, 64> text;
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &date);
    std::array<char, 8> fraction;
    std::snprintf(fraction.data(), fraction.size(), ".%03dZ", static_cast<int>(milliseconds % 1000));
    return std::string(text.data()) + fraction.data();
}

TEST(WriterNumbers, DatesAreThoseOfTheCalendar) {
    std::mt19937_64 random(8601);
    for (int run = 0; run < 100000; ++run) {
        const double seconds = 1.0 + static_cast<double>(random() % 2534023007970000) / 10000.0;
        VELHLSMediaSegment segment;
        segment.duration = 6.0;
        segment.uri = "segment.ts";
        segment.programDateTime = seconds;
        ASSERT_EQ(writtenBetween(segment, "#EXT-X-PROGRAM-DATE-TIME:", '\n'), dateByCalendar(seconds))
            << seconds;
    }
}

}  // namespace
