#include "velhls/document/VELHLSSyntax.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

TEST(VELHLSSyntax, ReadsDecimalIntegers) {
    EXPECT_EQ(VELHLSSyntax::readDecimalInteger("0"), 0U);
    EXPECT_EQ(VELHLSSyntax::readDecimalInteger("007"), 7U);
    EXPECT_EQ(VELHLSSyntax::readDecimalInteger("9999999999999999999"), 9999999999999999999U);
    EXPECT_EQ(VELHLSSyntax::readDecimalInteger("18446744073709551615"), 18446744073709551615U);
    EXPECT_EQ(VELHLSSyntax::readDecimalInteger("00000000000000000001"), 1U);
}

/// A comma for the point is allowed, and not the usual form: so the two ways of reading must agree.
TEST(VELHLSSyntax, ReadsTheUsualFormOfADateAsAllOthers) {
    const std::string characters = "0123456789-:TZ. /";
    for (const std::string usual :
         {"2010-02-19T14:54:23.031Z", "0000-01-01T00:00:00.000Z", "1969-12-28T23:59:59.999Z",
          "2024-02-28T00:00:00.001Z", "2024-02-29T24:00:00.000Z", "9999-12-31T23:59:60.500Z"}) {
        for (std::size_t place = 0; place < usual.size(); ++place) {
            for (const char character : characters) {
                std::string text = usual;
                text[place] = character;
                std::string other = text;
                if (other[19] == '.') other[19] = ',';
                const auto read = VELHLSSyntax::readDateTime(text);
                const auto expected = VELHLSSyntax::readDateTime(other);
                ASSERT_EQ(read.has_value(), expected.has_value()) << text;
                if (!read) continue;
                EXPECT_EQ(read->microseconds, expected->microseconds) << text;
                EXPECT_EQ(read->hasTime, expected->hasTime) << text;
                EXPECT_EQ(read->hasZone, expected->hasZone) << text;
                EXPECT_EQ(read->fractionDigits, expected->fractionDigits) << text;
            }
        }
    }
}

TEST(VELHLSSyntax, ReadsNothingElseAsDecimalInteger) {
    for (const char* text : {"", "-1", "+1", "1.0", "1 ", " 1", "1a", "0x1", "18446744073709551616",
                             "18446744073709551620", "99999999999999999999", "000000000000000000001"}) {
        EXPECT_FALSE(VELHLSSyntax::readDecimalInteger(text)) << text;
    }
    EXPECT_FALSE(VELHLSSyntax::readDecimalInteger("1\0"s));
}

TEST(VELHLSSyntax, ReadsHexadecimalSequences) {
    EXPECT_EQ(VELHLSSyntax::readHexadecimalSequence("0x0123456789ABCDEF"), "0123456789ABCDEF");
    EXPECT_EQ(VELHLSSyntax::readHexadecimalSequence("0XF"), "F");
    for (const char* text : {"", "0", "0x", "0X", "x1", "1", "0xabc", "0xG", "0x1 ", "-0x1", "0x1x"})
        EXPECT_FALSE(VELHLSSyntax::readHexadecimalSequence(text)) << text;
}

TEST(VELHLSSyntax, ReadsDecimalFloatingPoint) {
    const std::vector<std::pair<std::string, double>> rows = {{"0", 0.0},
                                                              {"6", 6.0},
                                                              {"6.006", 6.006},
                                                              {"6.", 6.0},
                                                              {".5", 0.5},
                                                              {"0.1", 0.1},
                                                              {"29.970", 29.97},
                                                              {"123456789.125", 123456789.125},
                                                              {"0000.25", 0.25},
                                                              {"9007199254740993", 9007199254740993.0},
                                                              {"1" + std::string(20, '0'), 1e20},
                                                              {"0." + std::string(30, '0') + "1", 1e-31}};
    for (const auto& [text, number] : rows) {
        const auto read = VELHLSSyntax::readDecimalFloatingPoint(text);
        ASSERT_TRUE(read) << text;
        EXPECT_DOUBLE_EQ(*read, number) << text;
    }
}

TEST(VELHLSSyntax, ReadsFifteenDigitsExactly) {
    for (int number = 0; number < 100000; number += 7) {
        std::string digits = std::to_string(number);
        digits.insert(0, 6 - std::min<std::size_t>(6, digits.size()), '0');
        const std::string text = digits.substr(0, digits.size() - 3) + "." + digits.substr(digits.size() - 3);
        EXPECT_EQ(VELHLSSyntax::readDecimalFloatingPoint(text), std::stod(text)) << text;
    }
}

TEST(VELHLSSyntax, ReadsNothingElseAsDecimalFloatingPoint) {
    for (const char* text :
         {"", ".", "-1", "+1", "1e3", "1..2", "1.2.3", "1,5", "inf", "nan", "0x1", " 1", "1 "})
        EXPECT_FALSE(VELHLSSyntax::readDecimalFloatingPoint(text)) << text;
}

TEST(VELHLSSyntax, ReadsSignedDecimalFloatingPoint) {
    EXPECT_EQ(VELHLSSyntax::readSignedDecimalFloatingPoint("-12.5"), -12.5);
    EXPECT_EQ(VELHLSSyntax::readSignedDecimalFloatingPoint("12.5"), 12.5);
    for (const char* text : {"", "-", "+1", "--1", "1-", "-.", "- 1"})
        EXPECT_FALSE(VELHLSSyntax::readSignedDecimalFloatingPoint(text)) << text;
}

TEST(VELHLSSyntax, ReadsResolutions) {
    const auto resolution = VELHLSSyntax::readDecimalResolution("1920x1080");
    ASSERT_TRUE(resolution);
    EXPECT_EQ(resolution->width, 1920U);
    EXPECT_EQ(resolution->height, 1080U);
    for (const char* text :
         {"", "x", "640x", "x360", "640X360", "640.5x360", "640x360x1", "640x-1", "640 x360"})
        EXPECT_FALSE(VELHLSSyntax::readDecimalResolution(text)) << text;
}

TEST(VELHLSSyntax, TellsWordsAndQuotableTexts) {
    EXPECT_TRUE(VELHLSSyntax::isEnumeratedString("AES-128"));
    for (const char* text : {"", "a b", "a,b", "a\"b", "a\tb", "a\n"})
        EXPECT_FALSE(VELHLSSyntax::isEnumeratedString(text)) << text;
    EXPECT_TRUE(VELHLSSyntax::isQuotable(""));
    EXPECT_TRUE(VELHLSSyntax::isQuotable("a, b=\xC3\xA4"));
    for (const char* text : {"\"", "a\nb", "a\r"})
        EXPECT_FALSE(VELHLSSyntax::isQuotable(text)) << text;
    EXPECT_TRUE(VELHLSSyntax::isAttributeName("X-COM-EXAMPLE-2"));
    for (const char* text : {"", "a", "A B", "A=", "NOMINAL_RATE"})
        EXPECT_FALSE(VELHLSSyntax::isAttributeName(text)) << text;
}

TEST(VELHLSSyntax, ReadsByteRanges) {
    const auto range = VELHLSSyntax::readByteRange("1024@0");
    ASSERT_TRUE(range);
    EXPECT_EQ(range->length, 1024U);
    EXPECT_EQ(range->offset, 0U);
    const auto next = VELHLSSyntax::readByteRange("5");
    ASSERT_TRUE(next);
    EXPECT_EQ(next->length, 5U);
    EXPECT_FALSE(next->offset);
    for (const char* text : {"", "@", "@5", "5@", "5@-1", "0-99", "5@1@2", "5 @1", "a"})
        EXPECT_FALSE(VELHLSSyntax::readByteRange(text)) << text;
}

struct DateRow {
    std::string text;
    std::int64_t microseconds;
    bool hasTime;
    bool hasZone;
    std::size_t fractionDigits;
};

TEST(VELHLSSyntax, ReadsDates) {
    const std::vector<DateRow> rows = {
        {"1970-01-01T00:00:00Z", 0, true, true, 0},
        {"1970-01-01", 0, false, false, 0},
        {"1970-01-01T00:00", 0, true, false, 0},
        {"2010-02-19T14:54:23.031+08:00", 1266562463031000, true, true, 3},
        {"2010-02-19T14:54:23.031+0800", 1266562463031000, true, true, 3},
        {"2010-02-19T14:54:23,031+08", 1266562463031000, true, true, 3},
        {"2010-02-19T14:54:23.0310009Z", 1266591263031000, true, true, 7},
        {"2020-02-29T23:59:60Z", 1583020800000000, true, true, 0},
        {"2020-12-31T24:00:00Z", 1609459200000000, true, true, 0},
        {"1969-12-31T23:59:59.999999Z", -1, true, true, 6},
        {"0000-03-01T00:00:00Z", -62162035200000000, true, true, 0},
        {"9999-12-31T23:59:59-23:59", 253402387139000000, true, true, 0},
    };
    for (const DateRow& row : rows) {
        const auto date = VELHLSSyntax::readDateTime(row.text);
        ASSERT_TRUE(date) << row.text;
        EXPECT_EQ(date->microseconds, row.microseconds) << row.text;
        EXPECT_EQ(date->hasTime, row.hasTime) << row.text;
        EXPECT_EQ(date->hasZone, row.hasZone) << row.text;
        EXPECT_EQ(date->fractionDigits, row.fractionDigits) << row.text;
    }
}

std::string twoDigits(int number) {
    return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

/// Each day is the one after the day before it, and no month has one more.
TEST(VELHLSSyntax, ReadsEveryDayOfAYear) {
    constexpr std::int64_t day = 86400000000;
    for (const auto& [year, days] : std::vector<std::pair<std::string, std::int64_t>>{
             {"1900", 365}, {"1970", 365}, {"2000", 366}, {"2001", 365}, {"2024", 366}}) {
        const auto first = VELHLSSyntax::readDateTime(year + "-01-01");
        ASSERT_TRUE(first);
        std::int64_t seen = 0;
        for (int month = 0; month <= 13; ++month) {
            for (int ofMonth = 0; ofMonth <= 33; ++ofMonth) {
                const std::string text = year + "-" + twoDigits(month) + "-" + twoDigits(ofMonth);
                const auto date = VELHLSSyntax::readDateTime(text);
                if (!date) continue;
                EXPECT_EQ(date->microseconds, first->microseconds + day * seen) << text;
                ++seen;
            }
        }
        EXPECT_EQ(seen, days) << year;
    }
}

TEST(VELHLSSyntax, ReadsNothingElseAsDate) {
    const std::string whole = "2010-02-19T14:54:23.031+08:00";
    const std::vector<std::size_t> dates = {10, 16, 19, 21, 22, 23, 26, 29};
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const bool isDate = std::find(dates.begin(), dates.end(), length) != dates.end();
        EXPECT_EQ(VELHLSSyntax::readDateTime(whole.substr(0, length)).has_value(), isDate) << length;
    }
    for (const char* text : {"2010-13-01T00:00:00Z",
                             "2010-00-01T00:00:00Z",
                             "2010-02-30T00:00:00Z",
                             "2011-02-29T00:00:00Z",
                             "1900-02-29T00:00:00Z",
                             "2010-01-00T00:00:00Z",
                             "2010-01-01T25:00:00Z",
                             "2010-01-01T24:00:01Z",
                             "2010-01-01T00:60:00Z",
                             "2010-01-01T00:00:61Z",
                             "2010-01-01 00:00:00Z",
                             "2010-01-01t00:00:00Z",
                             "2010-01-01T00:00:00z",
                             "2010-01-01T00:00:00.Z",
                             "2010-01-01T00:00:00Z ",
                             "2010-01-01T00:00:00+24:00",
                             "2010-01-01T00:00:00+01:60",
                             "10-01-01T00:00:00Z",
                             "-2010-01-01T00:00:00Z",
                             "2010/01/01",
                             "now"}) {
        EXPECT_FALSE(VELHLSSyntax::readDateTime(text)) << text;
    }
}

}  // namespace
