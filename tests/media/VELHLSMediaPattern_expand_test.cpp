#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/Outcome.h"
#include "tests/support/PlainForms.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/RecordText.h"

namespace {

using playlist::lines;
using playlist::thrownBy;
using namespace std::string_literals;

using Defines = std::shared_ptr<VELHLSDefineMap>;
using Segments = std::shared_ptr<std::vector<std::shared_ptr<VELHLSMediaSegment>>>;

static_assert(std::is_same_v<decltype(std::declval<const VELHLSMediaPattern&>().expandMediaPattern(
                                 std::declval<Defines&>())),
                             std::shared_ptr<std::stringstream>>);
static_assert(
    std::is_same_v<decltype(std::declval<const VELHLSMediaPattern&>().createMediaSegments(
                       std::declval<const std::shared_ptr<VELHLSMediaSegment>&>(), std::uint64_t{},
                       std::uint64_t{}, std::declval<Defines>(), std::declval<VELHLSParsingStatus*>())),
                   Segments>);
static_assert(VELHLSMediaPattern::maximumExpansionBytes == std::size_t{64} * 1024 * 1024);

constexpr std::uint64_t largestCount = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t mebibyte = std::size_t{1} << 20U;

/// What huge counts must stay far below, on a slow machine too.
constexpr std::chrono::seconds quick{5};

Defines defining(const VELHLSDefineMap& variables) {
    return std::make_shared<VELHLSDefineMap>(variables);
}

/// The text of the expansion; "null" when it fails.
std::string expanded(const std::string& body, std::uint64_t repeatCount, const Defines& defines) {
    const VELHLSMediaPattern pattern("p", body, repeatCount);
    const std::shared_ptr<std::stringstream> text = pattern.expandMediaPattern(defines);
    if (text == nullptr) return "null";
    EXPECT_TRUE(text->good());
    return std::string(std::istreambuf_iterator<char>(*text), std::istreambuf_iterator<char>());
}

/// The text of one pass with n = "1".
std::string expandedOnce(const std::string& body) {
    return expanded(body, 0, defining({{"n", "1"}}));
}

std::shared_ptr<VELHLSProtectionData> keyNamed(const std::string& uri) {
    return std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::AES128, uri, "", "",
                                                  std::vector<std::int32_t>());
}

/// A segment before the pattern: number 10 from 20 s on, 6 s long, without a date.
std::shared_ptr<VELHLSMediaSegment> segmentBefore(const std::shared_ptr<VELHLSProtectionData>& key) {
    return std::make_shared<VELHLSMediaSegment>(6.0, 20.0, 10, 3, ",", nullptr, false, 0.0, key, nullptr,
                                                "in-front.ts", false, "", "");
}

Segments segmentsOf(const std::string& body, std::uint64_t repeatCount, const Defines& defines,
                    const std::shared_ptr<VELHLSMediaSegment>& previous = nullptr) {
    return VELHLSMediaPattern("p", body, repeatCount).createMediaSegments(previous, 100, 7, defines, nullptr);
}

std::string urisOf(const Segments& segments) {
    if (segments == nullptr) return "null";
    std::string uris;
    for (const auto& segment : *segments)
        uris += segment->uri + "\n";
    return uris;
}

const std::string exampleBody = "#EXTINF:4,\nseg{$n}.ts\n#ZOR-DEFINE_INCREMENT:n,1\n";

TEST(VELHLSMediaPatternExpand, WritesTheBodyOnceMoreThanTheRepeatCountSays) {
    const Defines defines = defining({{"n", "1"}});
    EXPECT_EQ(expanded(exampleBody, 2, defines),
              "#EXTINF:4,\nseg1.ts\n#EXTINF:4,\nseg2.ts\n#EXTINF:4,\nseg3.ts\n");
    EXPECT_EQ(*defines, (VELHLSDefineMap{{"n", "4"}}));
}

TEST(VELHLSMediaPatternExpand, ExpandsThePatternThatWasRead) {
    std::istringstream prefix;
    std::istringstream input(lines({"#EXTINF:4,", "seg{$n}.ts", "#ZOR-DEFINE_INCREMENT:n,1",
                                    "#ZOR-PATTERN_END:p", "#ZOR-PATTERN_REPEAT:p,2"}));
    const auto pattern =
        VELHLSMediaPattern::parseMediaPattern("#ZOR-PATTERN_START:p", prefix, input, nullptr);
    ASSERT_NE(pattern, nullptr);
    EXPECT_EQ(expanded(pattern->body, pattern->repeatCount, defining({{"n", "1"}})),
              "#EXTINF:4,\nseg1.ts\n#EXTINF:4,\nseg2.ts\n#EXTINF:4,\nseg3.ts\n");
}

TEST(VELHLSMediaPatternExpand, WritesTheBodyOnceForRepeatCountZero) {
    const Defines defines = defining({{"n", "1"}});
    EXPECT_EQ(expanded(exampleBody, 0, defines), "#EXTINF:4,\nseg1.ts\n");
    EXPECT_EQ(*defines, (VELHLSDefineMap{{"n", "2"}}));
}

TEST(VELHLSMediaPatternExpand, GoesOnFromWhatTheLastExpansionLeftInTheMap) {
    const VELHLSMediaPattern pattern("p", exampleBody, 1);
    const Defines defines = defining({{"n", "1"}});
    EXPECT_EQ(pattern.expandMediaPattern(defines)->str(), "#EXTINF:4,\nseg1.ts\n#EXTINF:4,\nseg2.ts\n");
    EXPECT_EQ(pattern.expandMediaPattern(defines)->str(), "#EXTINF:4,\nseg3.ts\n#EXTINF:4,\nseg4.ts\n");
    EXPECT_EQ(pattern.body, exampleBody);
    EXPECT_EQ(pattern.repeatCount, 1U);
}

TEST(VELHLSMediaPatternExpand, WritesNothingForAnEmptyBodyWhateverTheCount) {
    EXPECT_EQ(expanded("", 0, defining({})), "");
    EXPECT_EQ(expanded("", largestCount, defining({})), "");
    EXPECT_EQ(expanded("", largestCount, nullptr), "");
}

struct Line {
    std::string body;
    std::string text;
};

TEST(VELHLSMediaPatternExpand, WritesEachKindOfLine) {
    const std::vector<Line> rows = {
        // A URI: trailing white space goes, variables are replaced.
        {"seg.ts\n", "seg.ts\n"},
        {"seg{$n}.ts\n", "seg1.ts\n"},
        {"{$n}{$n}\n", "11\n"},
        {"seg{$n}.ts \t\r\n", "seg1.ts\n"},
        {"  seg.ts\n", "  seg.ts\n"},
        {"seg.ts\v\n", "seg.ts\v\n"},
        {"se\rg.ts\n", "se\rg.ts\n"},
        {"se\0g{$n}.ts\n"s, "se\0g1.ts\n"s},
        {" #EXTINF:4,\n", " #EXTINF:4,\n"},
        {"ZOR-PATTERN_END:p\n", "ZOR-PATTERN_END:p\n"},
        {"seg{$n}.ts", "seg1.ts\n"},
        // Tags and comments: written as they stand.
        {"#EXTINF:4,\n", "#EXTINF:4,\n"},
        {"#EXTINF:4,title {$n} {$unknown}\n", "#EXTINF:4,title {$n} {$unknown}\n"},
        {"#EXT-X-KEY:METHOD=AES-128,URI=\"{$n}\"\n", "#EXT-X-KEY:METHOD=AES-128,URI=\"{$n}\"\n"},
        {"#EXTINF:4, \t\r\n", "#EXTINF:4, \t\r\n"},
        {"#EXTINF:4,", "#EXTINF:4,\n"},
        {"#\n", "#\n"},
        {"# {$n}\n", "# {$n}\n"},
        {"#ZO\n", "#ZO\n"},
        {"#ZO:R\n", "#ZO:R\n"},
        {"#zor-x:1\n", "#zor-x:1\n"},
        {"# ZOR-X:1\n", "# ZOR-X:1\n"},
        {"##ZOR-X:1\n", "##ZOR-X:1\n"},
        // Vendor tags without a colon: written as they stand.
        {"#ZOR\n", "#ZOR\n"},
        {"#ZORRO\n", "#ZORRO\n"},
        {"#ZOR-DEFINE_INCREMENT\n", "#ZOR-DEFINE_INCREMENT\n"},
        {"#ZOR-DEFINE_INCREMENT n,1 \r\n", "#ZOR-DEFINE_INCREMENT n,1 \r\n"},
        {"#ZOR-PATTERN_START\n", "#ZOR-PATTERN_START\n"},
        // Increments: not written.
        {"#ZOR-DEFINE_INCREMENT:n,1\n", ""},
        {"#ZOR-DEFINE_INCREMENT:n,1", ""},
        {"#ZOR-DEFINE_INCREMENT:n,1\r\nseg{$n}.ts\r\n", "seg2.ts\n"},
        {"seg{$n}.ts\n#ZOR-DEFINE_INCREMENT:n,1\nseg{$n}.ts\n", "seg1.ts\nseg2.ts\n"},
    };
    for (const auto& [body, text] : rows) {
        EXPECT_EQ(expandedOnce(body), text) << testing::PrintToString(body);
    }
}

TEST(VELHLSMediaPatternExpand, FailsOnALineThatExpandsToNothing) {
    const std::vector<std::string> bodies = {
        "\n",
        " \n",
        " \t\r\n",
        "seg.ts\n\n",
        "\nseg.ts\n",
        "{$empty}\n",
        "{$unknown}\n",
        "seg{$unknown}.ts\n",
        "seg{$N}.ts\n",
        "cost$5\n",
        "seg{$n\n",
        "#ZOR:\n",
        "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=1\n",
        "#ZOR-PATTERN_START:q\n",
        "#ZOR-PATTERN_END:p\n",
        "#ZOR-PATTERN_REPEAT:p,2\n",
        "#ZOR-DEFINE_INCREMENTS:n,1\n",
        "#ZOR-DEFINE_INCREMENT :n,1\n",
        "#ZORRO:n,1\n",
        "#ZOR-DEFINE_INCREMENT:\n",
        "#ZOR-DEFINE_INCREMENT:n\n",
        "#ZOR-DEFINE_INCREMENT:n;1\n",
        "#ZOR-DEFINE_INCREMENT:,1\n",
        "#ZOR-DEFINE_INCREMENT:unknown,1\n",
        "#ZOR-DEFINE_INCREMENT:N,1\n",
        "#ZOR-DEFINE_INCREMENT:n ,1\n",
        "#ZOR-DEFINE_INCREMENT: n,1\n",
        "#ZOR-DEFINE_INCREMENT:{$n},1\n",
        "#ZOR-DEFINE_INCREMENT:unknown,no number\n",
    };
    for (const std::string& body : bodies) {
        const Defines defines = defining({{"n", "1"}, {"empty", ""}});
        EXPECT_EQ(expanded(body, 0, defines), "null") << testing::PrintToString(body);
        EXPECT_EQ(*defines, (VELHLSDefineMap{{"n", "1"}, {"empty", ""}})) << testing::PrintToString(body);
        EXPECT_EQ(segmentsOf(body, 0, defines), nullptr) << testing::PrintToString(body);
    }
}

TEST(VELHLSMediaPatternExpand, KeepsTheIncrementsMadeBeforeAFailure) {
    const Defines defines = defining({{"n", "1"}});
    EXPECT_EQ(expanded("#ZOR-DEFINE_INCREMENT:n,5\nseg.ts\n\n#ZOR-DEFINE_INCREMENT:n,70\n", 3, defines),
              "null");
    EXPECT_EQ(*defines, (VELHLSDefineMap{{"n", "6"}}));
}

TEST(VELHLSMediaPatternExpand, DoesNotTrimWhatAVariableInserts) {
    EXPECT_EQ(expanded("seg{$n}\n", 0, defining({{"n", ".ts  "}})), "seg.ts  \n");
    EXPECT_EQ(expanded("{$n}\n", 0, defining({{"n", " "}})), " \n");
}

TEST(VELHLSMediaPatternExpand, ReplacesVariablesInTheValuesOfVariables) {
    const Defines defines = defining({{"n", "1"}, {"file", "seg{$n}.ts"}});
    EXPECT_EQ(expanded("{$file}\n#ZOR-DEFINE_INCREMENT:n,1\n", 2, defines), "seg1.ts\nseg2.ts\nseg3.ts\n");
}

TEST(VELHLSMediaPatternExpand, KeepsReferencesWhenThereAreNoVariablesAtAll) {
    EXPECT_EQ(expanded("seg{$n}.ts \r\n#EXTINF:4,\n", 1, nullptr),
              "seg{$n}.ts\n#EXTINF:4,\nseg{$n}.ts\n#EXTINF:4,\n");
    EXPECT_EQ(expanded("\n", 0, nullptr), "null");
}

TEST(VELHLSMediaPatternExpand, FailsOnIncrementWithoutADefineMap) {
    EXPECT_EQ(expanded(exampleBody, 2, nullptr), "null");
    EXPECT_EQ(segmentsOf(exampleBody, 2, nullptr), nullptr);
}

TEST(VELHLSMediaPatternExpand, IncrementsSeveralVariables) {
    const Defines defines = defining({{"a", "1"}, {"b", "100"}, {"b,c", "0"}, {"", "7"}});
    const std::string body =
        "{$a}-{$b}-{$}\n#ZOR-DEFINE_INCREMENT:a,2\n#ZOR-DEFINE_INCREMENT:b,-30\n#ZOR-DEFINE_INCREMENT:,1\n";
    EXPECT_EQ(expanded(body, 2, defines), "1-100-7\n3-70-8\n5-40-9\n");
    EXPECT_EQ(*defines, (VELHLSDefineMap{{"a", "7"}, {"b", "10"}, {"b,c", "0"}, {"", "10"}}));
}

struct Increment {
    std::string value;
    std::string amount;
    std::string result;
};

TEST(VELHLSMediaPatternExpand, StoresTheDecimalTextOfTheSum) {
    const std::vector<Increment> rows = {
        {"1", "1", "2"},
        {"9", "1", "10"},
        {"1", "0", "1"},
        {"007", "1", "8"},
        {"007", "0", "7"},
        {"-1", "1", "0"},
        {"1", "-3", "-2"},
        {"1", "+3", "4"},
        {" 5", " 6", "11"},
        {"5x", "6y", "11"},
        {"5.9", "1.9", "6"},
        {"0x10", "1", "1"},
        {"1", "2,3", "3"},
        {"1", "2:3", "3"},
        {"1", "1\r", "2"},
        {"2147483647", "1", "2147483648"},
        {"2147483647", "2147483647", "4294967294"},
        {"-2147483648", "-1", "-2147483649"},
        {"-2147483648", "-2147483648", "-4294967296"},
        {"2147483647", "-2147483648", "-1"},
    };
    for (const auto& [value, amount, result] : rows) {
        const Defines defines = defining({{"n", value}});
        EXPECT_EQ(expanded("#ZOR-DEFINE_INCREMENT:n," + amount + "\n", 0, defines), "")
            << value << "+" << amount;
        EXPECT_EQ(defines->at("n"), result) << value << "+" << amount;
    }
}

TEST(VELHLSMediaPatternExpand, LetsTheExceptionOfABadIncrementPass) {
    const std::vector<Increment> rows = {
        {"", "1", "invalid_argument"},
        {" ", "1", "invalid_argument"},
        {"x", "1", "invalid_argument"},
        {"+", "1", "invalid_argument"},
        {"-", "1", "invalid_argument"},
        {"{$m}", "1", "invalid_argument"},
        {"1", "", "invalid_argument"},
        {"1", " ", "invalid_argument"},
        {"1", "x", "invalid_argument"},
        {"1", "+-1", "invalid_argument"},
        {"1", ",1", "invalid_argument"},
        {"1", "{$m}", "invalid_argument"},
        {"2147483648", "1", "out_of_range"},
        {"-2147483649", "1", "out_of_range"},
        {"1", "2147483648", "out_of_range"},
        {"1", "-2147483649", "out_of_range"},
        {"1", "99999999999999999999", "out_of_range"},
        {"99999999999999999999", "1", "out_of_range"},
        {std::string(mebibyte, '9'), "1", "out_of_range"},
    };
    for (const auto& [value, amount, exception] : rows) {
        SCOPED_TRACE(value.substr(0, 40) + "+" + amount);
        const std::string body = "#ZOR-DEFINE_INCREMENT:n," + amount + "\n";
        const Defines defines = defining({{"n", value}, {"m", "1"}});
        const Defines forSegments = defining(*defines);
        EXPECT_EQ(thrownBy([&] { expanded(body, 0, defines); }), exception);
        EXPECT_EQ(thrownBy([&] { segmentsOf(body, 0, forSegments); }), exception);
        EXPECT_EQ(*defines, (VELHLSDefineMap{{"n", value}, {"m", "1"}}));
    }
}

TEST(VELHLSMediaPatternExpand, ThrowsWhenASumBeyond32BitsIsIncrementedAgain) {
    const Defines defines = defining({{"n", "2147483647"}});
    EXPECT_EQ(thrownBy([&] { expanded("#ZOR-DEFINE_INCREMENT:n,1\n", 1, defines); }), "out_of_range");
    EXPECT_EQ(defines->at("n"), "2147483648");
}

template <typename Expand>
std::string outcomeWithDefines(const Defines& defines, Expand expand) {
    std::string outcome = playlist::outcomeOf(expand);
    for (const char* name : {"n", "m", "x"}) {
        const auto define = defines->find(name);
        outcome += "\n" + std::string(name) + "=" + (define == defines->end() ? "none" : define->second);
    }
    return outcome;
}

TEST(VELHLSMediaPatternExpand, AddsToNumbersOfEachLengthAsTheRulesDo) {
    std::vector<std::string> numbers = {"00", "007", "09",        "1x", "x1", "1 ", " 1",
                                        "+1", "-0",  "99999999a", "/9", "9/", ":9", "9:"};
    for (const std::string nines :
         {"", "9", "99", "999", "9999", "99999", "999999", "9999999", "99999999", "999999999"}) {
        for (const char* end : {"0", "1", "5", "8", "9"})
            numbers.push_back(nines + end);
        numbers.push_back("1" + std::string(nines.size(), '0'));
        numbers.push_back("-" + nines + "1");
    }
    for (const std::string& number : numbers) {
        for (const std::string amount : {"0", "1", "2", "9", "10", "11", "90", "999999999", "2147483646",
                                         "2147483647", "01", "-1", "+1"}) {
            SCOPED_TRACE(number + "+" + amount);
            const std::string body = "a{$n}b\n#ZOR-DEFINE_INCREMENT:n," + amount + "\n";
            const Defines one = defining({{"n", number}, {"m", ""}});
            const Defines other = defining(*one);
            EXPECT_EQ(
                outcomeWithDefines(other, [&] { return expanded(body, 2, other); }),
                outcomeWithDefines(one, [&] { return plain::expanded(body, 2, one).value_or("null"); }));
        }
    }
}

TEST(VELHLSMediaPatternExpand, FailsQuicklyOnHugeRepeatCounts) {
    const std::vector<std::string> bodies = {
        exampleBody, "#ZOR-DEFINE_INCREMENT:n,0\n", "#ZOR-DEFINE_INCREMENT:n,0", "#ZOR\n", "#", "seg.ts\n",
        "x"};
    const auto start = std::chrono::steady_clock::now();
    for (const std::string& body : bodies) {
        for (const std::uint64_t count :
             {largestCount, largestCount - 1, std::uint64_t{1} << 63U, (std::uint64_t{1} << 63U) - 1,
              std::uint64_t{1} << 32U, std::uint64_t{1} << 26U, static_cast<std::uint64_t>(-2)}) {
            SCOPED_TRACE(testing::PrintToString(body) + " +" + std::to_string(count));
            EXPECT_EQ(expanded(body, count, defining({{"n", "1"}})), "null");
            EXPECT_EQ(segmentsOf(body, count, defining({{"n", "1"}})), nullptr);
        }
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, quick);
}

/// A line of so many bytes, its line feed included.
std::string uriLineOf(std::size_t bytes) {
    return std::string(bytes - 1, 'u') + "\n";
}

TEST(VELHLSMediaPatternExpand, ExpandsToTheMaximumAndNotBeyond) {
    const VELHLSMediaPattern fitting("p", uriLineOf(mebibyte), 63);
    const auto text = fitting.expandMediaPattern(defining({}));
    ASSERT_NE(text, nullptr);
    text->seekg(0, std::ios::end);
    EXPECT_EQ(static_cast<std::size_t>(text->tellg()), VELHLSMediaPattern::maximumExpansionBytes);

    EXPECT_EQ(VELHLSMediaPattern("p", uriLineOf(mebibyte), 64).expandMediaPattern(defining({})), nullptr);
    EXPECT_EQ(VELHLSMediaPattern("p", uriLineOf(mebibyte + 1), 63).expandMediaPattern(defining({})), nullptr);
}

TEST(VELHLSMediaPatternExpand, CountsABodyOfIncrementsThatWritesNothing) {
    const std::string body = "#ZOR-DEFINE_INCREMENT:n,0" + std::string(mebibyte - 26, ' ') + "\n";
    ASSERT_EQ(body.size(), mebibyte);
    EXPECT_EQ(expanded(body, 63, defining({{"n", "1"}})), "");
    EXPECT_EQ(expanded(body, 64, defining({{"n", "1"}})), "null");
}

TEST(VELHLSMediaPatternExpand, CountsTheValuesThatVariablesInsert) {
    // Almost a mebibyte in each pass, from a body of some 300 bytes.
    std::string body;
    for (int reference = 0; reference < 31; ++reference)
        body += "{$value}";
    body += '\n';
    const Defines defines = defining({{"value", std::string(mebibyte / 32, 'v')}});
    const std::size_t passBytes = 31 * (mebibyte / 32) + 1;
    EXPECT_EQ(expanded(body, 3, defines).size(), 4 * passBytes);
    EXPECT_EQ(expanded(body, VELHLSMediaPattern::maximumExpansionBytes / passBytes, defines), "null");
}

TEST(VELHLSMediaPatternExpand, CountsWhatTheLastLineInsertsWithoutWritingIt) {
    // What the value begins ends after its reference, and comes to nothing.
    constexpr std::size_t bytesOfAPass = 1048000;
    const std::string body = "a{$value}}\n";
    const std::string name(bytesOfAPass - body.size() - 4, 'n');
    const Defines defines = defining({{"value", "{$" + name}, {name, ""}});
    constexpr std::size_t passes = VELHLSMediaPattern::maximumExpansionBytes / bytesOfAPass;
    EXPECT_EQ(expanded(body, passes - 1, defines).size(), 2 * passes);
    EXPECT_EQ(expanded(body, passes, defines), "null");
}

TEST(VELHLSMediaPatternExpand, LetsADefinitionThatLeadsBackToItselfFail) {
    EXPECT_EQ(expanded("{$a}\n", 2, defining({{"a", "{$b}"}, {"b", "{$a}"}})), "null");
}

TEST(VELHLSMediaPatternExpand, MakesSegmentsThatFollowThePreviousOne) {
    const auto key = keyNamed("key.bin");
    const auto previous = segmentBefore(key);
    const Defines defines = defining({{"n", "1"}});
    const Segments segments = segmentsOf(exampleBody, 2, defines, previous);
    ASSERT_NE(segments, nullptr);
    ASSERT_EQ(segments->size(), 3U);
    for (std::size_t index = 0; index < segments->size(); ++index) {
        SCOPED_TRACE(index);
        const VELHLSMediaSegment& segment = *segments->at(index);
        EXPECT_EQ(segment.duration, 4.0);
        EXPECT_EQ(segment.title, ",");
        EXPECT_EQ(segment.uri, "seg" + std::to_string(index + 1) + ".ts");
        EXPECT_EQ(segment.mediaSequenceNumber, 11 + index);
        EXPECT_EQ(segment.discontinuitySequenceNumber, 3U);
        EXPECT_EQ(segment.startTime, 26.0 + 4.0 * static_cast<double>(index));
        EXPECT_EQ(segment.programDateTime, 6.0 + 4.0 * static_cast<double>(index));
        EXPECT_EQ(segment.protectionData, key);
        EXPECT_EQ(segment.misMap, nullptr);
        EXPECT_EQ(segment.byteRange, nullptr);
        EXPECT_FALSE(segment.discontinuity);
    }
    EXPECT_EQ(defines->at("n"), "4");
    EXPECT_EQ(previous->uri, "in-front.ts");
}

TEST(VELHLSMediaPatternExpand, StartsAtTheGivenNumbersWithoutAPreviousSegment) {
    const Segments segments = segmentsOf(exampleBody, 1, defining({{"n", "1"}}));
    ASSERT_NE(segments, nullptr);
    ASSERT_EQ(segments->size(), 2U);
    EXPECT_EQ(segments->at(0)->mediaSequenceNumber, 100U);
    EXPECT_EQ(segments->at(1)->mediaSequenceNumber, 101U);
    EXPECT_EQ(segments->at(0)->discontinuitySequenceNumber, 7U);
    EXPECT_EQ(segments->at(1)->discontinuitySequenceNumber, 7U);
    EXPECT_EQ(segments->at(0)->startTime, 0.0);
    EXPECT_EQ(segments->at(1)->startTime, 4.0);
    EXPECT_EQ(segments->at(0)->programDateTime, 0.0);
    EXPECT_EQ(segments->at(0)->protectionData, nullptr);
}

TEST(VELHLSMediaPatternExpand, MakesNoSegmentsFromAnEmptyExpansion) {
    for (const std::string body : {"", "#ZOR-DEFINE_INCREMENT:n,1\n"}) {
        const Segments segments = segmentsOf(body, 3, defining({{"n", "1"}}));
        ASSERT_NE(segments, nullptr) << body;
        EXPECT_TRUE(segments->empty()) << body;
    }
}

TEST(VELHLSMediaPatternExpand, RepeatsTheTagsOfTheBodyInEachPass) {
    const std::string body = lines({"#EXT-X-DISCONTINUITY", "#EXT-X-KEY:METHOD=AES-128,URI=\"key{$n}\"",
                                    "#EXT-X-MAP:URI=\"init.mp4\",BYTERANGE=\"720@0\"",
                                    "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:00Z", "#EXT-X-CUE-OUT:30",
                                    "#EXT-X-CUE-OUT-CONT:1/30", "#EXTINF:4,Title", "#EXT-X-BYTERANGE:100@0",
                                    "first.ts", "#EXTINF:5", "v/range/0-99"});
    const Segments segments = segmentsOf(body, 1, defining({{"n", "1"}}));
    ASSERT_EQ(urisOf(segments), "first.ts\nv/range/0-99\nfirst.ts\nv/range/0-99\n");
    const VELHLSMediaSegment& first = *segments->at(0);
    const VELHLSMediaSegment& second = *segments->at(1);
    const VELHLSMediaSegment& third = *segments->at(2);
    EXPECT_TRUE(first.discontinuity);
    EXPECT_FALSE(second.discontinuity);
    EXPECT_TRUE(third.discontinuity);
    EXPECT_EQ(first.discontinuitySequenceNumber, 8U);
    EXPECT_EQ(second.discontinuitySequenceNumber, 8U);
    EXPECT_EQ(third.discontinuitySequenceNumber, 9U);
    EXPECT_EQ(first.title, ",Title");
    EXPECT_EQ(second.title, "");
    EXPECT_EQ(first.cueOut, "30");
    EXPECT_EQ(first.cueOutCont, "1/30");
    EXPECT_EQ(second.cueOut, "");
    EXPECT_EQ(first.programDateTime, 1577836800.0);
    EXPECT_EQ(second.programDateTime, 1577836804.0);
    EXPECT_EQ(third.programDateTime, 1577836800.0);
    EXPECT_EQ(third.startTime, 9.0);
    ASSERT_NE(first.byteRange, nullptr);
    EXPECT_EQ(first.byteRange->length, 100);
    EXPECT_EQ(first.byteRange->offset, 0);
    ASSERT_NE(second.byteRange, nullptr);
    EXPECT_EQ(second.byteRange->length, 100);
    EXPECT_EQ(first.protectionData->uri, "key{$n}");
    EXPECT_EQ(first.misMap->byteRange->length, 720);
}

TEST(VELHLSMediaPatternExpand, SharesKeyAndMapWithinAPassAndMakesNewOnesInTheNext) {
    const std::string body = lines({"#EXT-X-KEY:METHOD=AES-128,URI=\"k\"", "#EXT-X-MAP:URI=\"init.mp4\"",
                                    "#EXTINF:4,", "first.ts", "#EXTINF:4,", "second.ts"});
    const Segments segments = segmentsOf(body, 1, defining({}), segmentBefore(keyNamed("before")));
    ASSERT_NE(segments, nullptr);
    ASSERT_EQ(segments->size(), 4U);
    EXPECT_EQ(segments->at(0)->protectionData->uri, "k");
    EXPECT_EQ(segments->at(1)->protectionData, segments->at(0)->protectionData);
    EXPECT_NE(segments->at(2)->protectionData, segments->at(0)->protectionData);
    EXPECT_EQ(segments->at(3)->protectionData, segments->at(2)->protectionData);
    EXPECT_EQ(segments->at(1)->misMap, segments->at(0)->misMap);
    EXPECT_NE(segments->at(2)->misMap, segments->at(0)->misMap);
    EXPECT_EQ(segments->at(3)->misMap, segments->at(2)->misMap);
}

TEST(VELHLSMediaPatternExpand, LeavesThePreviousSegmentsKeyInForce) {
    const auto previous = segmentBefore(keyNamed("before"));
    const Segments segments = segmentsOf("#EXTINF:4,\nsegment.ts\n", 1, nullptr, previous);
    ASSERT_NE(segments, nullptr);
    for (const auto& segment : *segments)
        EXPECT_EQ(segment->protectionData, previous->protectionData);
}

TEST(VELHLSMediaPatternExpand, DefinesVariablesOfTheBodyAfterTheWholeExpansion) {
    // Lines before a pattern become the head of its body. The tag is read with the segments, so it has
    // the last word.
    const Defines defines = defining({{"n", "5"}});
    const std::string body = "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"\n" + exampleBody;
    EXPECT_EQ(urisOf(segmentsOf(body, 1, defines)), "seg5.ts\nseg6.ts\n");
    EXPECT_EQ(*defines, (VELHLSDefineMap{{"n", "1"}}));
}

TEST(VELHLSMediaPatternExpand, ReadsVariableDefinitionsWithoutADefineMap) {
    EXPECT_EQ(
        urisOf(segmentsOf("#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"\n#EXTINF:4,\nsegment.ts\n", 0, nullptr)),
        "segment.ts\n");
}

TEST(VELHLSMediaPatternExpand, GivesNoSegmentsAtAllWhenOneDoesNotParse) {
    const std::vector<std::string> bodies = {
        "segment.ts\n",
        "#EXTINF:4,\n",
        "#EXTINF:4,\nsegment.ts\n#EXTINF:4,\n",
        "#EXTINF:4,\nsegment.ts\nsegment.ts\n",
        "#EXTINF:4,\nsegment.ts\n# a comment at the end\n",
        "#EXTINF:0,\nsegment.ts\n",
        "#EXTINF:,\nsegment.ts\n",
        "#EXTINF:4,\n#EXT-X-KEY:\nsegment.ts\n",
        "#EXTINF:4,\n#EXT-X-MAP:\nsegment.ts\n",
        "#EXTINF:4,\n#EXT-X-BYTERANGE:\nsegment.ts\n",
        "#EXTINF:4,\n#EXT-X-PROGRAM-DATE-TIME:today\nsegment.ts\n",
        "#EXTINF:4,\n#EXT-X-UNKNOWN:1\nsegment.ts\n",
        "#EXTINF:4,\n#EXT-X-GAP\nsegment.ts\n",
        "#EXTINF:4,\n#ZOR-PATTERN_START\nsegment.ts\n",
    };
    for (const std::string& body : bodies) {
        SCOPED_TRACE(testing::PrintToString(body));
        EXPECT_NE(expanded(body, 0, nullptr), "null");
        EXPECT_EQ(segmentsOf(body, 0, nullptr), nullptr);
        EXPECT_EQ(segmentsOf("#EXTINF:4,\nsegment.ts\n" + body, 0, nullptr), nullptr);
    }
}

TEST(VELHLSMediaPatternExpand, ReadsCommentsAndBareVendorTagsAmongTheTagsOfASegment) {
    EXPECT_EQ(
        urisOf(segmentsOf("# note\n#ZOR\n#ZOR-PATTERN_END\n#EXTM3U\n#EXT-X-CUE-IN\n#EXTINF:4,\nsegment.ts\n",
                          0, nullptr)),
        "segment.ts\n");
}

TEST(VELHLSMediaPatternExpand, LetsTheExceptionOfASegmentPass) {
    EXPECT_EQ(thrownBy([] { segmentsOf("#EXTINF:x,\nsegment.ts\n", 0, nullptr); }), "invalid_argument");
    EXPECT_EQ(thrownBy([] { segmentsOf("#EXTINF:1e999,\nsegment.ts\n", 0, nullptr); }), "out_of_range");
    EXPECT_EQ(thrownBy([] {
                  segmentsOf("#EXTINF:4,\ns{$n}.ts\n", 0, defining({{"n", "1"}}));
              }),
              "out_of_range");
}

TEST(VELHLSMediaPatternExpand, ThrowsForAUriThatALaterPassMakesTooShort) {
    // s-1.ts, then s0.ts
    const Defines defines = defining({{"n", "-1"}});
    EXPECT_EQ(thrownBy([&] { segmentsOf("#EXTINF:4,\ns{$n}.ts\n#ZOR-DEFINE_INCREMENT:n,1\n", 1, defines); }),
              "out_of_range");
    EXPECT_EQ(defines->at("n"), "1");
}

TEST(VELHLSMediaPatternExpand, ReadsShortUrisWithAByteRange) {
    EXPECT_EQ(urisOf(segmentsOf("#EXTINF:4,\n#EXT-X-BYTERANGE:9@0\ns{$n}.ts\n", 0, defining({{"n", "1"}}))),
              "s1.ts\n");
}

TEST(VELHLSMediaPatternExpand, KeepsTheCarriageReturnOfASegmentsFirstLine) {
    const Segments segments =
        segmentsOf("#EXTINF:4,One\r\nfirst.ts\r\n#EXTINF:5,Two\r\nsecond.ts\r\n", 0, nullptr);
    ASSERT_EQ(urisOf(segments), "first.ts\nsecond.ts\n");
    EXPECT_EQ(segments->at(0)->title, ",One\r");
    EXPECT_EQ(segments->at(1)->title, ",Two\r");
}

TEST(VELHLSMediaPatternExpand, DoesNotUseTheStatus) {
    for (const std::string body : {"#EXTINF:4,\nsegment.ts\n", "\n", "#EXTINF:0,\nsegment.ts\n",
                                   "#EXTINF:4,\n#ZOR-PATTERN_START\n", "#ZOR-PATTERN_START:p\n"}) {
        SCOPED_TRACE(body);
        VELHLSParsingStatus status;
        status.error = static_cast<VELHLSParsingError>(42);
        status.message = "before";
        static_cast<void>(
            VELHLSMediaPattern("p", body, 0).createMediaSegments(nullptr, 0, 0, defining({}), &status));
        EXPECT_EQ(status.error, static_cast<VELHLSParsingError>(42));
        EXPECT_EQ(status.message, "before");
        EXPECT_FALSE(status.hasMediaPatterns);
        EXPECT_EQ(status.metrics, nullptr);
    }
}

TEST(VELHLSMediaPatternExpand, MakesTheSegmentsOfADay) {
    const Segments segments =
        segmentsOf("#EXTINF:1,\nsegment{$n}.ts\n#ZOR-DEFINE_INCREMENT:n,1\n", 86399, defining({{"n", "0"}}));
    ASSERT_NE(segments, nullptr);
    ASSERT_EQ(segments->size(), 86400U);
    EXPECT_EQ(segments->back()->uri, "segment86399.ts");
    EXPECT_EQ(segments->back()->startTime, 86399.0);
    EXPECT_EQ(segments->back()->mediaSequenceNumber, 100U + 86399U);
}

TEST(VELHLSMediaPatternExpand, GivesTheSegmentsOfItsTextReadOneByOne) {
    const std::string body =
        "#EXTINF:4.5,Title\nseg{$n}.ts\n#ZOR-DEFINE_INCREMENT:n,3\n#EXTINF:2,\nbetween.ts\n";
    const Segments segments = segmentsOf(body, 2, defining({{"n", "1"}}));
    ASSERT_NE(segments, nullptr);
    std::istringstream input(expanded(body, 2, defining({{"n", "1"}})));
    std::shared_ptr<VELHLSMediaSegment> previous;
    std::shared_ptr<VELHLSMediaPattern> pattern;
    for (const auto& segment : *segments) {
        std::string line;
        std::getline(input, line);
        const auto single =
            VELHLSMediaSegment::parseNextSegment(previous, line, input, pattern, 100, 7, nullptr, nullptr);
        ASSERT_NE(single, nullptr);
        std::string expectedText;
        std::string seenText;
        EXPECT_EQ(single->render(expectedText, true, true), 0);
        EXPECT_EQ(segment->render(seenText, true, true), 0);
        EXPECT_EQ(seenText, expectedText);
        EXPECT_EQ(segment->mediaSequenceNumber, single->mediaSequenceNumber);
        EXPECT_EQ(segment->startTime, single->startTime);
        previous = single;
    }
}

TEST(VELHLSMediaPatternExpand, AgreesWithTheRulesOnRandomBodies) {
    const std::vector<std::string> pieces = {
        "#EXTINF:4,\n",
        "seg{$n}.ts\n",
        "{$m}{$n}\n",
        "plain.ts \r\n",
        "a{$x}b\n",
        "{$m}{$m}{$x}c\n",
        "#EXT-X-KEY:{$n}\n",
        "#ZOR-DEFINE_INCREMENT:n,1\n",
        "#ZOR-DEFINE_INCREMENT:m,-7\n",
        "#ZOR-BARE\n",
    };
    const std::vector<std::string> rare = {"#ZOR-DEFINE_INCREMENT:x,1\n",
                                           "#ZOR-DEFINE_INCREMENT:n\n",
                                           "#ZOR-DEFINE_INCREMENT:u,1\n",
                                           "#ZOR-OTHER:1\n",
                                           "\n",
                                           "{$u}\n",
                                           "lone{\n",
                                           "a$\n",
                                           "{$n\n",
                                           "{}\n",
                                           "#ZOR-DEFINE_INCREMENT:n,2147483647\n",
                                           "#ZOR-DEFINE_INCREMENT:n,z\n"};
    const std::vector<std::string> values = {"1", "0",  "",           "{$n}", "{$m}0",
                                             "a", " 9", "2147483600", "$",    "z{$n}z"};
    std::mt19937 random(5);
    const auto pick = [&random](const std::vector<std::string>& from) {
        return from[random() % from.size()];
    };
    int expandedCount = 0;
    for (int round = 0; round < 30000; ++round) {
        std::string body;
        for (std::size_t count = 1 + random() % 6; count > 0; --count)
            body += pick(random() % 12 == 0 ? rare : pieces);
        const std::uint64_t repeatCount = random() % 4;
        const Defines one = defining({{"n", random() % 4 == 0 ? pick(values) : "1"}, {"m", "20"}});
        if (random() % 2 == 0) (*one)["x"] = pick(values);
        const Defines other = std::make_shared<VELHLSDefineMap>(*one);
        const std::string expected =
            outcomeWithDefines(one, [&] { return plain::expanded(body, repeatCount, one).value_or("null"); });
        ASSERT_EQ(outcomeWithDefines(other, [&] { return expanded(body, repeatCount, other); }), expected)
            << body;
        if (expected.find(".ts") != std::string::npos) ++expandedCount;
    }
    EXPECT_GT(expandedCount, 5000);
}

// The lines of a body this long are looked at anew in each pass.
TEST(VELHLSMediaPatternExpand, AgreesWithTheRulesOnABodyOfManyLines) {
    std::string body;
    for (int line = 0; line < 5000; ++line)
        body += "#EXTINF:4,\nseg{$n}.ts\n#ZOR-DEFINE_INCREMENT:n,1\n";
    const std::string expected = plain::expanded(body, 2, defining({{"n", "1"}})).value_or("null");
    EXPECT_TRUE(expanded(body, 2, defining({{"n", "1"}})) == expected);
    EXPECT_NE(expected.find("seg15000.ts"), std::string::npos);
}

}  // namespace
