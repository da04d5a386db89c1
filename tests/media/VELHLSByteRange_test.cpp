#include "velhls/media/VELHLSByteRange.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

static_assert(!std::is_polymorphic_v<VELHLSByteRange>);
static_assert(std::is_same_v<decltype(VELHLSByteRange::length), std::int64_t>);
static_assert(std::is_same_v<decltype(VELHLSByteRange::offset), std::int64_t>);
static_assert(std::is_same_v<
              decltype(std::declval<VELHLSByteRange&>().parse(std::declval<const std::string&>(), '@', true)),
              std::int32_t>);
static_assert(
    std::is_same_v<decltype(std::declval<const VELHLSByteRange&>().render(std::declval<std::string&>())),
                   std::int32_t>);
static_assert(std::is_same_v<decltype(getByteRangeFromUri(std::string())), std::shared_ptr<VELHLSByteRange>>);

VELHLSByteRange rangeOf(std::int64_t length, std::int64_t offset) {
    VELHLSByteRange range;
    range.length = length;
    range.offset = offset;
    return range;
}

/// What the record renders after it has parsed the text; "-1" where it does not.
std::string rendered(const std::string& text, char separator = '@', bool inclusiveRange = false) {
    VELHLSByteRange range;
    std::string out;
    const bool good = range.parse(text, separator, inclusiveRange) == 0 && range.render(out) == 0;
    return good ? out : "-1";
}

struct ParseRow {
    std::string text;
    std::int64_t length;
    std::int64_t offset;
};

void expectParses(const std::vector<ParseRow>& rows, char separator, bool inclusiveRange) {
    for (const ParseRow& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        VELHLSByteRange range = rangeOf(77, 88);
        EXPECT_EQ(range.parse(row.text, separator, inclusiveRange), 0);
        EXPECT_EQ(range.length, row.length);
        EXPECT_EQ(range.offset, row.offset);
    }
}

void expectRejects(const std::vector<std::string>& texts, char separator, bool inclusiveRange) {
    for (const std::string& text : texts) {
        SCOPED_TRACE(testing::PrintToString(text));
        VELHLSByteRange range = rangeOf(77, 88);
        EXPECT_EQ(range.parse(text, separator, inclusiveRange), -1);
        EXPECT_EQ(range.length, 77);
        EXPECT_EQ(range.offset, 88);
    }
}

TEST(VELHLSByteRange, StartsEmptyWithoutOffset) {
    const VELHLSByteRange range;
    EXPECT_EQ(range.length, 0);
    EXPECT_EQ(range.offset, -1);
}

TEST(VELHLSByteRange, HoldsLengthBeforeOffset) {
    const VELHLSByteRange range;
    EXPECT_LT(&range.length, &range.offset);
}

TEST(VELHLSByteRange, ReadsLengthAtOffset) {
    EXPECT_EQ(rendered("1024@0"), "1024@0");
}

TEST(VELHLSByteRange, ReadsLengthAlone) {
    EXPECT_EQ(rendered("1024"), "1024");
}

TEST(VELHLSByteRange, ReadsFirstToLastByte) {
    EXPECT_EQ(rendered("100-199", '-', true), "100@100");
}

TEST(VELHLSByteRange, ReadsLengthAndOffsetInDecimal) {
    expectParses({{"1024@0", 1024, 0},
                  {"1024@2048", 1024, 2048},
                  {"1024", 1024, -1},
                  {"0", 0, -1},
                  {"0@0", 0, 0},
                  {"0@7", 0, 7},
                  {"010@007", 10, 7},
                  {"00", 0, -1},
                  {"9223372036854775807", largest, -1},
                  {"9223372036854775807@9223372036854775807", largest, largest},
                  {"00000000000000000000000000001@5", 1, 5}},
                 '@', false);
}

TEST(VELHLSByteRange, ReadsFirstAndLastByteBothInclusive) {
    expectParses({{"100-199", 100, 100},
                  {"0-0", 1, 0},
                  {"7-7", 1, 7},
                  {"1000-1999", 1000, 1000},
                  {"500", 500, -1},
                  {"0010-0019", 10, 10},
                  {"1-9223372036854775807", largest, 1},
                  {"0-9223372036854775806", largest, 0}},
                 '-', true);
}

TEST(VELHLSByteRange, StoresALastByteBeforeTheFirstAsComputed) {
    expectParses({{"200-199", 0, 200},
                  {"200-198", -1, 200},
                  {"200-100", -99, 200},
                  {"9223372036854775807-0", -largest + 1, largest}},
                 '-', true);
}

TEST(VELHLSByteRange, LimitsTheLengthOfAllBytesToTheLargestNumber) {
    expectParses({{"0-9223372036854775807", largest, 0}}, '-', true);
}

TEST(VELHLSByteRange, TakesTheMeaningOfTwoNumbersFromTheFlagNotFromTheSeparator) {
    expectParses({{"100@199", 100, 100}}, '@', true);
    expectParses({{"100-199", 100, 199}}, '-', false);
}

TEST(VELHLSByteRange, TakesAnySeparator) {
    for (const char separator : "@-:,/ x+"s + '\0') {
        SCOPED_TRACE(testing::PrintToString(separator));
        EXPECT_EQ(rendered("10"s + separator + "20", separator), "10@20");
        EXPECT_EQ(rendered("10"s + separator, separator), "-1");
        EXPECT_EQ(rendered(separator + "20"s, separator), "-1");
        EXPECT_EQ(rendered("10"s + separator + separator + "20", separator), "-1");
    }
}

TEST(VELHLSByteRange, RejectsMalformedTextAndKeepsTheRecord) {
    const std::vector<std::string> malformed = {
        "",       "@",     "@5",    "@@",       "10@",      "10@@",           "10@@5", "10@5@",
        "10@5@6", "1 024", " 10",   "10 ",      "10 @5",    "10@ 5",          "10@5 ", "+10",
        "-10",    "10@+5", "10@-5", "0x10",     "1e3",      "10.5",           "ten",   "10-5",
        "10@5a",  "a10@5", "1a0@5", "10:5",     "\t10",     "10\n",           "10\r",  "10@5\r",
        "\"10\"", "10,5",  "@10@5", "10@5@6@7", "\xC2\xB2", "10@\xEF\xBC\x95"};
    expectRejects(malformed, '@', false);
    expectRejects(malformed, '@', true);
}

TEST(VELHLSByteRange, RejectsTheOtherFormsSeparator) {
    expectRejects({"10-20"}, '@', false);
    expectRejects({"10@20"}, '-', true);
}

TEST(VELHLSByteRange, RejectsTheSignOfANumberWhereTheSignIsTheSeparator) {
    expectRejects({"-5", "5-", "--5", "5--6", "5-6-", "5-6-7", "-"}, '-', true);
}

TEST(VELHLSByteRange, RejectsNullBytes) {
    expectRejects({"\0"s, "\0001024@0"s, "10\00024@0"s, "1024\0@0"s, "1024@\0000"s, "1024@0\0"s}, '@', false);
}

TEST(VELHLSByteRange, ReadsEachPrefixForWhatItIs) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", "-1"},
        {"1", "1"},
        {"10", "10"},
        {"102", "102"},
        {"1024", "1024"},
        {"1024@", "-1"},
        {"1024@2", "1024@2"},
        {"1024@20", "1024@20"},
        {"1024@204", "1024@204"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(rendered(row.first), row.second) << row.first;
    }
}

TEST(VELHLSByteRange, AgreesWithTheGrammarOnAllShortTexts) {
    const std::regex grammar("[0-9]+(@[0-9]+)?");
    constexpr std::string_view alphabet = "09@- a";
    std::vector<std::string> texts = {""};
    for (std::size_t begin = 0, length = 0; length < 4; ++length) {
        const std::size_t end = texts.size();
        for (; begin < end; ++begin) {
            for (const char character : alphabet)
                texts.push_back(texts[begin] + character);
        }
    }
    ASSERT_EQ(texts.size(), 1U + 6U + 36U + 216U + 1296U);
    for (const std::string& text : texts) {
        VELHLSByteRange range;
        EXPECT_EQ(range.parse(text, '@', false) == 0, std::regex_match(text, grammar)) << text;
    }
}

TEST(VELHLSByteRange, ThrowsForANumberBeyondSixtyFourBits) {
    const std::vector<std::string> tooLarge = {"9223372036854775808",
                                               "18446744073709551616",
                                               "9223372036854775808@0",
                                               "0@9223372036854775808",
                                               "9223372036854775808@9223372036854775808",
                                               std::string(1 << 20, '9')};
    for (const std::string& text : tooLarge) {
        SCOPED_TRACE(text.substr(0, 50));
        VELHLSByteRange range;
        EXPECT_THROW(static_cast<void>(range.parse(text, '@', false)), std::out_of_range);
        EXPECT_THROW(static_cast<void>(range.parse(text, '@', true)), std::out_of_range);
    }
}

TEST(VELHLSByteRange, KeepsTheRecordWhenOneOfTwoNumbersIsTooLarge) {
    for (const char* text : {"9223372036854775808@5", "5@9223372036854775808"}) {
        SCOPED_TRACE(text);
        VELHLSByteRange range = rangeOf(77, 88);
        EXPECT_THROW(static_cast<void>(range.parse(text, '@', false)), std::out_of_range);
        EXPECT_EQ(range.length, 77);
        EXPECT_EQ(range.offset, 88);
    }
}

TEST(VELHLSByteRange, ChecksTheWholeTextBeforeItConvertsANumber) {
    expectRejects({"9223372036854775808@", "9223372036854775808@5@6", "9223372036854775808@x",
                   "9223372036854775808x", "@9223372036854775808"},
                  '@', false);
}

TEST(VELHLSByteRange, ReadsAMegabyteOfLeadingZeros) {
    const std::string zeros(1 << 20, '0');
    expectParses({{zeros + "12@" + zeros + "34", 12, 34}}, '@', false);
}

TEST(VELHLSByteRange, RejectsAMegabyteOfSeparators) {
    expectRejects({"1" + std::string(1 << 20, '@')}, '@', false);
}

TEST(VELHLSByteRange, ParsesAgainOverAnEarlierOffset) {
    VELHLSByteRange range;
    ASSERT_EQ(range.parse("10@5", '@', false), 0);
    ASSERT_EQ(range.parse("20", '@', false), 0);
    EXPECT_EQ(range.length, 20);
    EXPECT_EQ(range.offset, -1);
}

struct RenderRow {
    std::int64_t length;
    std::int64_t offset;
    std::string text;
};

TEST(VELHLSByteRange, RendersLengthAndAnOffsetThatIsNotNegative) {
    const std::vector<RenderRow> rows = {
        {1024, 0, "1024@0"},
        {1024, 2048, "1024@2048"},
        {1024, -1, "1024"},
        {1024, -2, "1024"},
        {1024, smallest, "1024"},
        {0, -1, "0"},
        {0, 0, "0@0"},
        {largest, largest, "9223372036854775807@9223372036854775807"},
    };
    for (const RenderRow& row : rows) {
        std::string out;
        EXPECT_EQ(rangeOf(row.length, row.offset).render(out), 0) << row.text;
        EXPECT_EQ(out, row.text);
    }
}

TEST(VELHLSByteRange, RendersAfterWhatIsThere) {
    std::string out = "#EXT-X-BYTERANGE:";
    EXPECT_EQ(rangeOf(1024, 0).render(out), 0);
    EXPECT_EQ(out, "#EXT-X-BYTERANGE:1024@0");
}

TEST(VELHLSByteRange, DoesNotRenderANegativeLength) {
    for (const std::int64_t length : {std::int64_t{-1}, std::int64_t{-99}, smallest}) {
        std::string out = "before";
        EXPECT_EQ(rangeOf(length, 200).render(out), -1) << length;
        EXPECT_EQ(out, "before");
    }
}

TEST(VELHLSByteRange, DoesNotRenderALastByteBeforeTheFirst) {
    EXPECT_EQ(rendered("200-199", '-', true), "0@200");
    EXPECT_EQ(rendered("200-198", '-', true), "-1");
    EXPECT_EQ(rendered("200-100", '-', true), "-1");
}

TEST(VELHLSByteRange, ParsesWhatItRenders) {
    for (const std::int64_t length : {std::int64_t{0}, std::int64_t{1}, std::int64_t{4096}, largest}) {
        for (const std::int64_t offset : {std::int64_t{-1}, std::int64_t{0}, std::int64_t{10}, largest}) {
            std::string text;
            ASSERT_EQ(rangeOf(length, offset).render(text), 0);
            expectParses({{text, length, offset}}, '@', false);
        }
    }
}

TEST(VELHLSByteRange, GivesTheSameRangeForBothForms) {
    EXPECT_EQ(rendered("1000-1999", '-', true), rendered("1000@1000"));
    EXPECT_EQ(rendered("500", '-', true), rendered("500"));
}

/// "length@offset" of the range in the URI, with -1 written out; "null" when there is none.
std::string rangeInUri(const std::string& uri) {
    const std::shared_ptr<VELHLSByteRange> range = getByteRangeFromUri(uri);
    if (range == nullptr) return "null";
    return std::to_string(range->length) + "@" + std::to_string(range->offset);
}

struct UriRow {
    std::string uri;
    std::string range;
};

void expectRangesInUris(const std::vector<UriRow>& rows) {
    for (const UriRow& row : rows) {
        EXPECT_EQ(rangeInUri(row.uri), row.range) << testing::PrintToString(row.uri);
    }
}

TEST(GetByteRangeFromUri, ReadsWhatStandsAfterTheLastRangeMarker) {
    expectRangesInUris({{"v/range/1000-1999", "1000@1000"},
                        {"seg/range/0-0", "1@0"},
                        {"https://example.com/v.mp4/range/500", "500@-1"},
                        {"/range/5", "5@-1"},
                        {"/range/5-6", "2@5"},
                        {"v/range/1-2/range/30-39", "10@30"},
                        {"v/range/x/range/30-39", "10@30"},
                        {"/range/range/5", "5@-1"},
                        {"v?/range/5-6", "2@5"},
                        {"v/range/200-199", "0@200"},
                        {"v/range/200-100", "-99@200"},
                        {"v/range/0-9223372036854775807", "9223372036854775807@0"}});
}

TEST(GetByteRangeFromUri, GivesNullForAnyOtherTextAfterTheMarker) {
    expectRangesInUris({{"v/range/", "null"},
                        {"/range/", "null"},
                        {"v/range/0-99/seg.ts", "null"},
                        {"v/range/0-99?x", "null"},
                        {"v/range/0-99 ", "null"},
                        {"v/range/ 0-99", "null"},
                        {"v/range/0@99", "null"},
                        {"v/range/-99", "null"},
                        {"v/range/0-", "null"},
                        {"v/range/0-9-9", "null"},
                        {"v/range/+5", "null"},
                        {"v/range/5/range/", "null"},
                        {"v/range/5/range/x", "null"},
                        {"v/range//5", "null"},
                        {"v/range/5\0"s, "null"}});
}

TEST(GetByteRangeFromUri, ReadsFromIndexSixWithoutTheMarker) {
    expectRangesInUris({{"abcdef42", "42@-1"},
                        {"abcdef10-19", "10@10"},
                        {"abcdef0", "0@-1"},
                        {"video_10", "10@-1"},
                        {"12345678", "78@-1"},
                        {"range/5", "5@-1"},
                        {"/range5-6", "2@5"},
                        {"/RANGE/", "null"},
                        {"v/RANGE/5", "null"},
                        {"v/range", "null"},
                        {"segment.ts", "null"},
                        {"abcdefg42", "null"},
                        {"abcde42", "2@-1"},
                        {"abcdef-19", "null"},
                        {"abcdef10-", "null"},
                        {"abcdef10@19", "null"},
                        {"abc\0ef7"s, "7@-1"}});
}

TEST(GetByteRangeFromUri, GivesNullForAnEmptyUri) {
    EXPECT_EQ(getByteRangeFromUri(""), nullptr);
}

TEST(GetByteRangeFromUri, ThrowsForAUriBelowSixCharacters) {
    for (const char* uri : {"a", "ab", "0.t", "a.ts", "ab.ts", "12345", "/", "     "}) {
        EXPECT_THROW(static_cast<void>(getByteRangeFromUri(uri)), std::out_of_range) << uri;
    }
    EXPECT_THROW(static_cast<void>(getByteRangeFromUri("a\0b\0c"s)), std::out_of_range);
}

TEST(GetByteRangeFromUri, GivesNullForAUriOfSixCharacters) {
    for (const char* uri : {"abc.ts", "123456", "/range", "range/"}) {
        EXPECT_EQ(getByteRangeFromUri(uri), nullptr) << uri;
    }
}

TEST(GetByteRangeFromUri, ThrowsForANumberBeyondSixtyFourBits) {
    for (const char* uri : {"v/range/9223372036854775808", "v/range/0-9223372036854775808",
                            "v/range/9223372036854775808-0", "abcdef9223372036854775808"}) {
        EXPECT_THROW(static_cast<void>(getByteRangeFromUri(uri)), std::out_of_range) << uri;
    }
}

TEST(GetByteRangeFromUri, ReadsAMegabyteOfMarkers) {
    std::string uri;
    for (int count = 0; count < 150000; ++count)
        uri += "/range/";
    EXPECT_EQ(rangeInUri(uri), "null");
    EXPECT_EQ(rangeInUri(uri + "5-6"), "2@5");
    EXPECT_EQ(rangeInUri(std::string(1 << 20, 'a')), "null");
}

TEST(GetByteRangeFromUri, RendersInTheLengthAtOffsetForm) {
    std::string out;
    ASSERT_EQ(getByteRangeFromUri("v/range/1000-1999")->render(out), 0);
    EXPECT_EQ(out, "1000@1000");
}

TEST(GetByteRangeFromUri, MakesANewRecordEachTime) {
    EXPECT_NE(getByteRangeFromUri("v/range/1-2"), getByteRangeFromUri("v/range/1-2"));
}

}  // namespace
