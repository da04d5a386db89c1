#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <initializer_list>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/common/VELHLSUtility.h"

#include "tests/support/Outcome.h"
#include "tests/support/PlainForms.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

double parsed(const std::string& text) {
    return VELHLSUtility::parseTimestamp(text);
}

std::string rendered(double seconds) {
    std::string out;
    VELHLSUtility::renderTimestamp(seconds, out);
    return out;
}

struct ParseRow {
    std::string text;
    double seconds;
};

void expectParsed(const std::vector<ParseRow>& rows) {
    for (const ParseRow& row : rows) {
        EXPECT_EQ(parsed(row.text), row.seconds) << row.text;
    }
}

TEST(VELHLSTimestampParse, ReadsDateAndTime) {
    expectParsed({
        {"1970-01-01T00:00:00Z", 0.0},
        {"1970-01-01T00:00:01Z", 1.0},
        {"2020-01-01T00:00:00Z", 1577836800.0},
        {"2020-01-01T10:00:15Z", 1577872815.0},
        {"2000-02-29T23:59:59Z", 951868799.0},
        {"2038-01-19T03:14:08Z", 2147483648.0},
        {"9999-12-31T23:59:59Z", 253402300799.0},
    });
}

TEST(VELHLSTimestampParse, KeepsTheFractionOfASecond) {
    expectParsed({
        {"2020-01-01T00:00:00.500Z", 1577836800.5},
        {"2020-01-01T10:00:05.250Z", 1577872805.25},
        {"2020-01-01T10:00:5.500+00:00", 1577872805.5},
        {"2020-01-01T00:00:00.Z", 1577836800.0},
        {"2020-01-01T00:00:.5Z", 1577836800.5},
        {"1970-01-01T00:00:00.001Z", 0.001},
        {"1970-01-01T00:00:00.0000000001Z", 1e-10},
    });
}

TEST(VELHLSTimestampParse, TimesBeforeTheEpochAreNegative) {
    expectParsed({
        {"1969-12-31T23:59:59Z", -1.0},
        {"1969-12-31T23:59:58Z", -2.0},
        {"1969-12-31T23:59:58.750Z", -1.25},
        {"1900-01-01T00:00:00Z", -2208988800.0},
        {"0000-01-01T00:00:00Z", -62167219200.0},
        {"0001-01-01T00:00:00Z", -62135596800.0},
    });
}

TEST(VELHLSTimestampParse, OffsetIsReadAndDoesNotChangeTheResult) {
    for (const char* const zone :
         {"Z", "+00:00", "-00:00", "+02:00", "-02:00", "+05:30", "-11:45", "+99:99", "+2:0", "+02:00Z",
          "+02:00 and more", "+ 2x:0x", "+02:00:00", "+-2:00", "-+2:00", "+2147483647:2147483647"}) {
        const std::string text = "2020-01-01T10:00:00" + std::string(zone);
        EXPECT_EQ(parsed(text), 1577872800.0) << text;
    }
}

TEST(VELHLSTimestampParse, FirstSignAfterTheMinuteIsTheZone) {
    expectParsed({
        {"2020-01-01T10:00:00Z+01:00", 1577872800.0},
        {"2020-01-01T10:00:01e+01:00", 1577872801.0},
        {"2020-01-01T10:00:01-02:00+03:00", 1577872801.0},
    });
}

TEST(VELHLSTimestampParse, FieldsMayBeginWithSpaceAndSignAndEndWithText) {
    expectParsed({
        {"+2020-01-01T00:00:00Z", 1577836800.0},
        {" 2020- 01- 01T 00: 00: 00Z", 1577836800.0},
        {"\t2020-01-01T\n00:00:\v00Z", 1577836800.0},
        {"\v2020-\f01-\r01T\n00: \t\v\f\r00:\r00Z", 1577836800.0},
        {"2020-+1-+1T+0:+0:00Z", 1577836800.0},
        {"2020x-01x-01xT00x:00x:00xZ", 1577836800.0},
        {"2020.9-01.9-01.9T00.9:00.9:00Z", 1577836800.0},
        {"02020-001-0000001T000:000:000Z", 1577836800.0},
        {"2020-01-01T-1:00:00Z", 1577833200.0},
        {"2020-01-01T00:-1:00Z", 1577836740.0},
        {"2020-01-01T00:00:00Zulu time", 1577836800.0},
    });
}

TEST(VELHLSTimestampParse, SecondsMayBeOfAnyFormOfNumberWithoutASign) {
    expectParsed({
        {"1970-01-01T00:00:1e1Z", 10.0},
        {"1970-01-01T00:00:1E2Z", 100.0},
        {"1970-01-01T00:00:0x1F.8Z", 31.5},
        {"1970-01-01T00:00:0x1p3Z", 8.0},
        {"1970-01-01T00:00:59.999999999Z", 59.999999999},
        {"1970-01-01T00:00:1,5Z", 1.0},
        {"1970-01-01T00:00:1e9Z", 1e9},
    });
}

TEST(VELHLSTimestampParse, FieldsOutOfTheirRangeCarryOver) {
    expectParsed({
        {"2019-13-01T00:00:00Z", 1577836800.0},
        {"2020-00-01T00:00:00Z", 1575158400.0},
        {"2019-12-32T00:00:00Z", 1577836800.0},
        {"2020-01-00T00:00:00Z", 1577750400.0},
        {"2020-02-30T00:00:00Z", 1583020800.0},
        {"2019-02-29T00:00:00Z", 1551398400.0},
        {"2019-12-31T24:00:00Z", 1577836800.0},
        {"2019-12-31T23:60:00Z", 1577836800.0},
        {"2019-12-31T23:59:60Z", 1577836800.0},
        {"2019-12-31T23:59:60.5Z", 1577836800.5},
        {"1970-25-01T00:00:00Z", 63072000.0},
        {"1970-01-01T00:00:2147483647Z", 2147483647.0},
        {"1970-01-01T2147483647:2147483647:2147483647Z", 2147483647.0 * 3661.0},
    });
}

TEST(VELHLSTimestampParse, WithoutTTheHourIsReadFromTheStartOfTheText) {
    // Both hours are 2020: 84 days and 4 hours after midnight.
    constexpr double hoursLater = 2020.0 * 3600.0;
    expectParsed({
        {"2020-01-01 00:00:00Z", 1577836800.0 + hoursLater},
        {"2020-01-01t00:00:00Z", 1577836800.0 + hoursLater},
        {"1:2:3-4-5:6", -62135596800.0 + 90.0 * 86400.0 + 4.0 * 86400.0 + 3723.0},
    });
}

// A text that ends at any place before the zone has no shape, or has a field without a number.
TEST(VELHLSTimestampParse, PrefixesHaveNoShape) {
    const std::string text = "2020-01-01T10:00:05.250";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const std::string prefix = text.substr(0, length);
        EXPECT_EQ(parsed(prefix), -1.0) << prefix;
    }
    EXPECT_EQ(parsed(text + "Z"), 1577872805.25);
}

TEST(VELHLSTimestampParse, PrefixesOfTheOffset) {
    const std::string time = "2020-01-01T10:00:05";
    EXPECT_EQ(parsed(time + "+"), -1.0);
    EXPECT_EQ(parsed(time + "+0"), -1.0);
    EXPECT_EQ(parsed(time + "+02"), -1.0);
    EXPECT_THROW(static_cast<void>(parsed(time + "+02:")), std::invalid_argument);
    EXPECT_EQ(parsed(time + "+02:0"), 1577872805.0);
    EXPECT_EQ(parsed(time + "+02:00"), 1577872805.0);
}

TEST(VELHLSTimestampParse, ExceptionsNameTheNumberOfTheOffsetAlone) {
    try {
        static_cast<void>(parsed("2020-01-01T10:00:05+02:99999999999 and more"));
        FAIL() << "no exception";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "number out of range: \"99999999999\"");
    }
}

TEST(VELHLSTimestampParse, TextWithoutTheShapeIsMinusOne) {
    for (const char* const text : {
             "",
             "-",
             "--",
             "--T::",
             "T",
             "Z",
             "hello",
             "2020",
             "2020-01-01",
             "2020-01-01T",
             "2020-01-01T10",
             "2020-01-01T10:00",
             "2020-01-01T10:00Z",
             "2020-01-01T10:00:",
             "2020-01-01T10:00:00",
             "2020-01-01T10:00:00z",
             "2020-01-01T10:00:00 UTC",
             "2020-01-01T10:00:00+0200",
             "2020-01-01T10:00:00-02",
             "2020-01-01T10:00:1e-3Z",
             "2020-01-01T10:00:1e+3Z",
             "2020-01-01T10:00:-5Z",
             "20200101T100000Z",
             "2020/01/01T10:00:00Z",
             "2020-01T10:00:00Z",
             "xx-xx-xxTxx:xx:xx",
         }) {
        EXPECT_EQ(parsed(text), -1.0) << text;
    }
}

TEST(VELHLSTimestampParse, FieldWithoutANumberThrowsInvalidArgument) {
    for (const char* const text : {
             "xxxx-01-01T10:00:00Z",
             "2020-xx-01T10:00:00Z",
             "2020-01-xxT10:00:00Z",
             "2020-01-01Txx:00:00Z",
             "2020-01-01T10:xx:00Z",
             "2020-01-01T10:00:xxZ",
             "2020-01-01T10:00:00+xx:00",
             "2020-01-01T10:00:00-xx:00",
             "2020-01-01T10:00:00+02:xx",
             "-01-01T10:00:00Z",
             "2020--01T10:00:00Z",
             "2020-01-T10:00:00Z",
             "2020-01-01T:00:00Z",
             "2020-01-01T10::00Z",
             "2020-01-01T10:00:Z",
             "2020-01-01T10:00:+02:00",
             "2020-01-01T10:00:-02:00",
             "2020-01-01T10:00:00+:00",
             "2020-01-01T10:00:00+02:",
             "2020-01-01T10:00:00+02:-30",
             "2020-01-01T10:00:00+02: 30",
             "2020-01-01T10:00:.Z",
             "2020-01-01T10:00:,5Z",
             "2020-01-01T10:00:eZ",
             "--T::Z",
             " - - T : : Z",
             "++1-01-01T10:00:00Z",
             "-1-01-01T10:00:00Z",
             "2020-01-01T10: :00Z",
         }) {
        EXPECT_THROW(static_cast<void>(parsed(text)), std::invalid_argument) << text;
    }
}

TEST(VELHLSTimestampParse, FieldThatDoesNotFitThrowsOutOfRange) {
    for (const char* const text : {
             "2147483648-01-01T10:00:00Z",
             "2020-2147483648-01T10:00:00Z",
             "2020-01-2147483648T10:00:00Z",
             "2020-01-01T2147483648:00:00Z",
             "2020-01-01T-2147483649:00:00Z",
             "2020-01-01T10:99999999999999999999:00Z",
             "2020-01-01T10:00:1e400Z",
             "2020-01-01T10:00:00+2147483648:00",
             "2020-01-01T10:00:00-2147483648:00",
             "2020-01-01T10:00:00+02:2147483648",
         }) {
        EXPECT_THROW(static_cast<void>(parsed(text)), std::out_of_range) << text;
    }
    const std::string vanishing = "2020-01-01T10:00:0." + std::string(400, '0') + "1Z";
    EXPECT_THROW(static_cast<void>(parsed(vanishing)), std::out_of_range) << vanishing;
}

TEST(VELHLSTimestampParse, FirstFieldInErrorDecidesTheException) {
    EXPECT_THROW(static_cast<void>(parsed("x-2147483648-01T10:00:00Z")), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(parsed("2147483648-x-01T10:00:00Z")), std::out_of_range);
    EXPECT_THROW(static_cast<void>(parsed("2020-01-01T10:00:x+2147483648:00")), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(parsed("2020-01-01T10:00:nan+x:00")), std::invalid_argument);
}

TEST(VELHLSTimestampParse, SecondsThatAreNoNumberOrDoNotFitAreMinusOne) {
    for (const char* const seconds :
         {"nan", "NAN", "nan(1)", "inf", "INF", "infinity", "1e10", "2147483648", "1e300"}) {
        const std::string text = "2020-01-01T10:00:" + std::string(seconds) + "Z";
        EXPECT_EQ(parsed(text), -1.0) << text;
    }
}

// The calendar counts its years from 1900 in 32 bits: the last one is reached by carrying months over.
TEST(VELHLSTimestampParse, DateBeyondTheCalendarIsMinusOne) {
    expectParsed({
        {"2147483647-01-01T00:00:00Z", 67767976201996800.0},
        {"2147483647-22812-31T23:59:59Z", 67768036191676799.0},
        {"2147483647-22812-31T23:59:60Z", -1.0},
        {"2147483647-22812-31T23:59:60.5Z", -1.0},
        {"2147483647-22812-32T00:00:00Z", -1.0},
        {"2147483647-22813-01T00:00:00Z", -1.0},
        {"2147483647-2147483647-2147483647T00:00:00.25Z", -1.0},
    });
}

TEST(VELHLSTimestampParse, ReadsFieldsOfAnyLength) {
    const std::string zeros(std::size_t{1} << 20, '0');
    EXPECT_EQ(parsed(zeros), -1.0);
    EXPECT_EQ(
        parsed(zeros + "2020-" + zeros + "1-" + zeros + "1T" + zeros + ":" + zeros + ":" + zeros + ".5Z"),
        1577836800.5);
    EXPECT_EQ(parsed(std::string(zeros.size(), '-')), -1.0);
    EXPECT_EQ(parsed(std::string(zeros.size(), ':')), -1.0);
}

struct RenderRow {
    double seconds;
    std::string text;
};

void expectRendered(const std::vector<RenderRow>& rows) {
    for (const RenderRow& row : rows) {
        EXPECT_EQ(rendered(row.seconds), row.text) << std::hexfloat << row.seconds;
    }
}

TEST(VELHLSTimestampRender, WritesSecondsBelowTenWithOneDigit) {
    expectRendered({
        {0.0, "1970-01-01T00:00:0.000+00:00"},
        {1577836800.0, "2020-01-01T00:00:0.000+00:00"},
        {1577872805.5, "2020-01-01T10:00:5.500+00:00"},
        {1577872809.75, "2020-01-01T10:00:9.750+00:00"},
        {1577872810.0, "2020-01-01T10:00:10.000+00:00"},
        {1577872815.25, "2020-01-01T10:00:15.250+00:00"},
    });
}

TEST(VELHLSTimestampRender, PadsTheOtherFields) {
    expectRendered({
        {951868799.0, "2000-02-29T23:59:59.000+00:00"},
        {981173106.0, "2001-02-03T04:05:6.000+00:00"},
        {-62167219200.0, "0000-01-01T00:00:0.000+00:00"},
        {-62135596800.0, "0001-01-01T00:00:0.000+00:00"},
        {-30610224000.0, "1000-01-01T00:00:0.000+00:00"},
        {-59011459200.0, "0100-01-01T00:00:0.000+00:00"},
    });
}

TEST(VELHLSTimestampRender, AppendsAndDoesNotClear) {
    std::string out = "#EXT-X-PROGRAM-DATE-TIME:";
    VELHLSUtility::renderTimestamp(1577836800.0, out);
    EXPECT_EQ(out, "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:0.000+00:00");
    VELHLSUtility::renderTimestamp(1.0, out);
    EXPECT_EQ(out, "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:0.000+00:001970-01-01T00:00:1.000+00:00");
}

TEST(VELHLSTimestampRender, RoundsToMillisecondsWithoutCarryingOver) {
    expectRendered({
        {0.0004, "1970-01-01T00:00:0.000+00:00"},
        {0.0006, "1970-01-01T00:00:0.001+00:00"},
        {0.9996, "1970-01-01T00:00:1.000+00:00"},
        {9.9996, "1970-01-01T00:00:10.000+00:00"},
        {59.9994, "1970-01-01T00:00:59.999+00:00"},
        {59.9996, "1970-01-01T00:00:60.000+00:00"},
        {3599.9999, "1970-01-01T00:59:60.000+00:00"},
        {86399.9999, "1970-01-01T23:59:60.000+00:00"},
        {0.0005, "1970-01-01T00:00:0.001+00:00"},
        {0.0625, "1970-01-01T00:00:0.062+00:00"},
        {0.1875, "1970-01-01T00:00:0.188+00:00"},
    });
}

TEST(VELHLSTimestampRender, TakesTheFractionOffTheSecondBeforeTheEpoch) {
    expectRendered({
        {-0.0, "1970-01-01T00:00:0.000+00:00"},
        {-0.0001, "1970-01-01T00:00:-0.000+00:00"},
        {-0.5, "1970-01-01T00:00:-0.500+00:00"},
        {-1.0, "1969-12-31T23:59:59.000+00:00"},
        {-1.25, "1969-12-31T23:59:58.750+00:00"},
        {-60.0, "1969-12-31T23:59:0.000+00:00"},
        {-60.5, "1969-12-31T23:59:-0.500+00:00"},
        {-86400.25, "1969-12-31T00:00:-0.250+00:00"},
    });
}

TEST(VELHLSTimestampRender, CountsTheSignOfANegativeYearAsADigit) {
    expectRendered({
        {-62167219201.0, "-001-12-31T23:59:59.000+00:00"},
        {-65322892800.0, "-100-01-01T00:00:0.000+00:00"},
        {-93724128000.0, "-1000-01-01T00:00:0.000+00:00"},
    });
}

TEST(VELHLSTimestampRender, WritesAtMostThirtyOneCharacters) {
    expectRendered({
        {253402300800.0, "10000-01-01T00:00:0.000+00:00"},
        {253402300815.0, "10000-01-01T00:00:15.000+00:00"},
        {3093527980815.0, "100000-01-01T00:00:15.000+00:00"},
        {31494784780800.0, "1000000-01-01T00:00:0.000+00:00"},
        {31494784780815.0, "1000000-01-01T00:00:15.000+00:0"},
        {315507352780815.0, "10000000-01-01T00:00:15.000+00:"},
        {3155633032780815.0, "100000000-01-01T00:00:15.000+00"},
        {31556889832780816.0, "1000000000-01-01T00:00:16.000+0"},
    });
    std::string out = "before ";
    VELHLSUtility::renderTimestamp(31556889832780816.0, out);
    EXPECT_EQ(out, "before 1000000000-01-01T00:00:16.000+0");
}

TEST(VELHLSTimestampRender, TimeBeyondTheCalendarIsTheNearestSecondThatItHolds) {
    const std::string last = "2147485547-12-31T23:59:59.000+0";
    const std::string first = "-2147481748-01-01T00:00:0.000+0";
    expectRendered({{67768036191676799.0, last},
                    {1e17, last},
                    {9.3e18, last},
                    {1e300, last},
                    {infinity, last},
                    {-67768040609740800.0, first},
                    {-1e17, first},
                    {-9.3e18, first},
                    {-1e300, first},
                    {-infinity, first}});
}

TEST(VELHLSTimestampRender, NotANumberIsTheEpoch) {
    EXPECT_EQ(rendered(notANumber), "1970-01-01T00:00:0.000+00:00");
    EXPECT_EQ(rendered(-notANumber), "1970-01-01T00:00:0.000+00:00");
}

TEST(VELHLSTimestamp, WholeSecondsOfFourDigitYearsReadBackEqual) {
    std::mt19937_64 random(3);
    std::uniform_int_distribution<std::int64_t> seconds(-62167219200, 253402300799);
    for (int round = 0; round < 50000; ++round) {
        const double time = static_cast<double>(seconds(random));
        ASSERT_EQ(parsed(rendered(time)), time) << rendered(time);
    }
}

TEST(VELHLSTimestamp, MillisecondsReadBackToTheMillisecond) {
    std::mt19937_64 random(4);
    std::uniform_int_distribution<std::int64_t> milliseconds(0, 253402300799999);
    for (int round = 0; round < 50000; ++round) {
        const double time = static_cast<double>(milliseconds(random)) / 1000.0;
        ASSERT_NEAR(parsed(rendered(time)), time, 0.0001) << rendered(time);
    }
}

TEST(VELHLSTimestamp, WhatWasReadBackRendersTheSame) {
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> seconds(0.0, 253402300799.0);
    for (int round = 0; round < 50000; ++round) {
        const std::string text = rendered(seconds(random));
        // A second of 60.000 is carried over when it is read.
        if (text.find(":60.000") != std::string::npos) continue;
        ASSERT_EQ(rendered(parsed(text)), text);
    }
}

/// Exactly what a function did: every bit of its result, or the kind of its exception.
template <typename Function>
std::string outcomeOf(Function function, const std::string& text) {
    return playlist::outcomeOf([&] {
        char digits[64];
        std::snprintf(digits, sizeof digits, "%a", function(text));
        return std::string(digits);
    });
}

void expectParsedLikeTheRules(const std::string& text) {
    ASSERT_EQ(outcomeOf(parsed, text), outcomeOf(plain::parsedTimestamp, text)) << text;
}

std::string dateAndTime(std::initializer_list<long long> fields, const std::string& seconds) {
    const char* const separators[] = {"", "-", "-", "T", ":"};
    std::string text;
    std::size_t position = 0;
    for (const long long field : fields)
        text += separators[position++] + std::to_string(field);
    return text + ":" + seconds + "Z";
}

TEST(VELHLSTimestampParse, AgreesWithTheRulesOnEveryDayAndMonthOfCenturies) {
    for (int year = 0; year <= 2801; ++year) {
        if (year > 500 && year < 1500 && year % 100 > 4) continue;
        for (int month = 0; month <= 13; ++month) {
            for (const int day : {0, 1, 28, 29, 30, 31, 32}) {
                expectParsedLikeTheRules(dateAndTime({year, month, day, 12, 30}, "59.125"));
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST(VELHLSTimestampParse, AgreesWithTheRulesOnExtremeFields) {
    const long long extremes[] = {0, 1, 12, 13, 1970, 2147481747, 2147483646, 2147483647, 2147483648};
    for (const long long year : extremes) {
        for (const long long month : extremes) {
            for (const long long day : extremes) {
                for (const long long hour : {0LL, -1LL, -2147483648LL, 2147483647LL}) {
                    for (const char* const seconds : {"0", "59.5", "2147483647", "2147483647.9"}) {
                        expectParsedLikeTheRules(dateAndTime({year, month, day, hour, -hour / 2}, seconds));
                        if (HasFatalFailure()) return;
                    }
                }
            }
        }
    }
}

TEST(VELHLSTimestampParse, AgreesWithTheRulesOnRandomDates) {
    std::mt19937_64 random(19700101);
    const auto upTo = [&](long long least, long long most) {
        return std::uniform_int_distribution<long long>(least, most)(random);
    };
    for (int round = 0; round < 100000; ++round) {
        const bool usual = round % 2 == 0;
        const long long year = usual ? upTo(0, 9999) : upTo(0, 2147483647);
        const long long month = usual ? upTo(1, 12) : upTo(0, 2000000000);
        const long long day = usual ? upTo(1, 31) : upTo(0, 2147483647);
        const long long hour = usual ? upTo(0, 23) : upTo(-2147483648LL, 2147483647);
        const long long minute = usual ? upTo(0, 59) : upTo(-2147483648LL, 2147483647);
        const std::string seconds = std::to_string(usual ? upTo(0, 59) : upTo(0, 2147483647)) + "." +
                                    std::to_string(upTo(0, 999999999));
        expectParsedLikeTheRules(dateAndTime({year, month, day, hour, minute}, seconds));
        if (HasFatalFailure()) return;
    }
}

// Some characters of a well-formed text are replaced, dropped or doubled.
TEST(VELHLSTimestampParse, AgreesWithTheRulesOnDamagedTexts) {
    const std::string texts[] = {"2020-01-01T10:00:05.250Z", "1999-12-31T23:59:59.999+05:30",
                                 "0001-1-1T0:0:0-00:00"};
    constexpr std::string_view alphabet = "0123456789-+:TZ. xe";
    std::mt19937 random(31);
    const auto upTo = [&](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random);
    };
    int numbers = 0;
    for (int round = 0; round < 100000; ++round) {
        std::string text = texts[upTo(2)];
        for (std::size_t damage = upTo(3); damage > 0; --damage) {
            const std::size_t position = upTo(text.size() - 1);
            const std::size_t kind = upTo(2);
            if (kind == 0) text[position] = alphabet[upTo(alphabet.size() - 1)];
            if (kind == 1) text.erase(position, 1);
            if (kind == 2) text.insert(position, 1, alphabet[upTo(alphabet.size() - 1)]);
        }
        expectParsedLikeTheRules(text);
        if (HasFatalFailure()) return;
        const std::string outcome = outcomeOf(parsed, text);
        if (outcome.find("0x") != std::string::npos && outcome != "-0x1p+0") ++numbers;
    }
    EXPECT_GT(numbers, 10000);
    EXPECT_LT(numbers, 90000);
}

TEST(VELHLSTimestampParse, AgreesWithTheRulesOnRandomCharacters) {
    constexpr std::string_view alphabet = "01-:TZ+. ";
    std::mt19937 random(32);
    const auto upTo = [&](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random);
    };
    for (int round = 0; round < 100000; ++round) {
        std::string text(upTo(24), ' ');
        std::generate(text.begin(), text.end(), [&] { return alphabet[upTo(alphabet.size() - 1)]; });
        expectParsedLikeTheRules(text);
        if (HasFatalFailure()) return;
    }
}

void expectRenderedLikeTheRules(double seconds) {
    ASSERT_EQ(rendered(seconds), plain::renderedTimestamp(seconds)) << std::hexfloat << seconds;
}

TEST(VELHLSTimestampRender, AgreesWithTheRulesAroundEveryMonthOfCenturies) {
    for (long long day = -800000; day <= 800000; day += 13) {
        const double midnight = static_cast<double>(day) * 86400.0;
        for (const double offset : {-0.5, -0.0004, 0.0, 0.0006, 9.9996, 59.9996, 86399.9}) {
            expectRenderedLikeTheRules(midnight + offset);
            if (HasFatalFailure()) return;
        }
    }
}

TEST(VELHLSTimestampRender, AgreesWithTheRulesOnRandomTimes) {
    std::mt19937_64 random(33);
    // From millisecond fractions to the ends of the calendar, on both sides of the epoch.
    for (const double reach : {1.0, 100.0, 1e5, 2e9, 3e11, 1e13, 1e15, 6.7e16}) {
        std::uniform_real_distribution<double> times(-reach, reach);
        for (int round = 0; round < 25000; ++round) {
            expectRenderedLikeTheRules(times(random));
            if (HasFatalFailure()) return;
        }
    }
}

TEST(VELHLSTimestampRender, AgreesWithTheRulesNextToEachHalfMillisecond) {
    std::mt19937_64 random(34);
    std::uniform_int_distribution<long long> milliseconds(-4000000000000, 4000000000000);
    for (int round = 0; round < 50000; ++round) {
        const double half = static_cast<double>(milliseconds(random)) / 1000.0 + 0.0005;
        for (const double time : {half, std::nextafter(half, infinity), std::nextafter(half, -infinity)}) {
            expectRenderedLikeTheRules(time);
            if (HasFatalFailure()) return;
        }
    }
}

}  // namespace
