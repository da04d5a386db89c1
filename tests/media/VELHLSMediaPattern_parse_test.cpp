#include <cstdint>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/Outcome.h"
#include "tests/support/PlaylistText.h"

namespace {

using playlist::lines;
using namespace std::string_literals;

static_assert(std::is_same_v<decltype(VELHLSMediaPattern::name), std::string>);
static_assert(std::is_same_v<decltype(VELHLSMediaPattern::body), std::string>);
static_assert(std::is_same_v<decltype(VELHLSMediaPattern::repeatCount), std::uint64_t>);
static_assert(!std::is_polymorphic_v<VELHLSMediaPattern>);
static_assert(std::is_constructible_v<VELHLSMediaPattern, std::string, std::string, std::uint64_t>);
static_assert(std::is_same_v<decltype(&VELHLSMediaPattern::parseMediaPattern),
                             std::shared_ptr<VELHLSMediaPattern> (*)(const std::string&, std::istream&,
                                                                     std::istream&, VELHLSParsingStatus*)>);

constexpr auto errorBefore = static_cast<VELHLSParsingError>(42);
constexpr std::string_view messageBefore = "before the pattern";

VELHLSParsingStatus statusBefore() {
    VELHLSParsingStatus status;
    status.error = errorBefore;
    status.message = messageBefore;
    return status;
}

/// A pattern that was read, or not, and what it left unread.
struct Reading {
    std::shared_ptr<VELHLSMediaPattern> pattern;
    VELHLSParsingStatus status = statusBefore();
    std::string unread;
};

std::string restOf(std::istream& input) {
    input.clear();
    std::ostringstream rest;
    rest << input.rdbuf();
    return rest.str();
}

/// Reads a pattern from the text, whose first line is the start line, after the given lines of its segment.
Reading readingOf(const std::string& text, const std::string& prefix = "") {
    std::istringstream input(text);
    std::string startLine;
    std::getline(input, startLine);
    std::istringstream prefixInput(prefix);
    Reading reading;
    reading.pattern = VELHLSMediaPattern::parseMediaPattern(startLine, prefixInput, input, &reading.status);
    reading.unread = restOf(input);
    return reading;
}

bool isUntouched(const VELHLSParsingStatus& status) {
    return status.error == errorBefore && status.message == messageBefore && !status.hasMediaPatterns &&
           status.metrics == nullptr;
}

/// What a reading came to: the name and the repeat count of the pattern with its body below them, or
/// "rejected: " and the line.
std::string described(const Reading& reading) {
    EXPECT_EQ(reading.status.metrics, nullptr);
    EXPECT_FALSE(reading.status.hasMediaPatterns);
    if (reading.pattern == nullptr) {
        EXPECT_EQ(reading.status.error, VELHLSParsingErrorMediaPattern);
        return "rejected: " + reading.status.message;
    }
    EXPECT_TRUE(isUntouched(reading.status));
    return reading.pattern->name + " +" + std::to_string(reading.pattern->repeatCount) + "\n" +
           reading.pattern->body;
}

/// The same with and without a status.
std::string outcomeOf(const std::string& text, const std::string& prefix = "") {
    const Reading reading = readingOf(text, prefix);
    std::istringstream input(text);
    std::string startLine;
    std::getline(input, startLine);
    std::istringstream prefixInput(prefix);
    const auto pattern = VELHLSMediaPattern::parseMediaPattern(startLine, prefixInput, input, nullptr);
    EXPECT_EQ(pattern == nullptr, reading.pattern == nullptr);
    return described(reading);
}

/// The outcome of a line in the body of the open pattern "p".
std::string outcomeInPattern(const std::string& line) {
    return outcomeOf("#ZOR-PATTERN_START:p\n" + line + "\n#ZOR-PATTERN_REPEAT:p,2\n");
}

TEST(VELHLSMediaPatternParse, StoresTheArgumentsOfItsConstructor) {
    const VELHLSMediaPattern pattern("p", "not checked", std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(pattern.name, "p");
    EXPECT_EQ(pattern.body, "not checked");
    EXPECT_EQ(pattern.repeatCount, std::numeric_limits<std::uint64_t>::max());
}

TEST(VELHLSMediaPatternParse, ReadsNameBodyAndRepeatCount) {
    const Reading reading =
        readingOf(lines({"#ZOR-PATTERN_START:p", "#EXTINF:4,", "seg{$n}.ts", "#ZOR-DEFINE_INCREMENT:n,1",
                         "#ZOR-PATTERN_END:p", "#ZOR-PATTERN_REPEAT:p,2", "#EXTINF:4,", "after.ts"}));
    ASSERT_NE(reading.pattern, nullptr);
    EXPECT_EQ(reading.pattern->name, "p");
    EXPECT_EQ(reading.pattern->body, "#EXTINF:4,\nseg{$n}.ts\n#ZOR-DEFINE_INCREMENT:n,1\n");
    EXPECT_EQ(reading.pattern->repeatCount, 2U);
    EXPECT_EQ(reading.unread, "#EXTINF:4,\nafter.ts\n");
    EXPECT_TRUE(isUntouched(reading.status));
}

TEST(VELHLSMediaPatternParse, ReadsPatternWithoutEndLine) {
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:p\n#EXTINF:4,\nseg{$n}.ts\n#ZOR-PATTERN_REPEAT:p,2\n"),
              "p +2\n#EXTINF:4,\nseg{$n}.ts\n");
}

TEST(VELHLSMediaPatternParse, BeginsTheBodyWithTheLinesOfThePrefix) {
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:p\n#EXTINF:4,\nseg.ts\n#ZOR-PATTERN_REPEAT:p,1\n",
                        "#EXT-X-KEY:METHOD=NONE\n#EXT-X-DISCONTINUITY\n"),
              "p +1\n#EXT-X-KEY:METHOD=NONE\n#EXT-X-DISCONTINUITY\n#EXTINF:4,\nseg.ts\n");
}

TEST(VELHLSMediaPatternParse, TakesThePrefixAsItStandsWithoutLookingAtIt) {
    const std::string prefix = "# note\n#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"\n#ZOR-PATTERN_END:q\r\nx\0y"s;
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:p\n#ZOR-PATTERN_REPEAT:p,0\n", prefix), "p +0\n" + prefix);
}

TEST(VELHLSMediaPatternParse, ReadsThePrefixToItsEnd) {
    std::istringstream prefix("#EXT-X-KEY:METHOD=NONE\n");
    std::istringstream input("#ZOR-PATTERN_REPEAT:p,0\n");
    ASSERT_NE(VELHLSMediaPattern::parseMediaPattern("#ZOR-PATTERN_START:p", prefix, input, nullptr), nullptr);
    EXPECT_EQ(restOf(prefix), "");
}

TEST(VELHLSMediaPatternParse, TakesAllAfterTheFirstColonAsTheName) {
    for (const std::string name :
         {"p", "P", "p:q", " p", "p ", "p q", "#p", "{$p}", "p\"q", "p\r", "\xC3\xA9"}) {
        SCOPED_TRACE(name);
        const Reading reading =
            readingOf("#ZOR-PATTERN_START:" + name + "\nseg.ts\n#ZOR-PATTERN_END:" + name +
                      "\n#ZOR-PATTERN_REPEAT:" + name + ",3\nafter\n");
        EXPECT_EQ(described(reading), name + " +3\nseg.ts\n");
        EXPECT_EQ(reading.unread, "after\n");
    }
}

TEST(VELHLSMediaPatternParse, MatchesAnEmptyName) {
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:\nseg.ts\n#ZOR-PATTERN_END:\n#ZOR-PATTERN_REPEAT:,3\n"),
              " +3\nseg.ts\n");
}

TEST(VELHLSMediaPatternParse, KeepsNameWithNulBytes) {
    const std::string name = "p\0q"s;
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:" + name + "\n#ZOR-PATTERN_REPEAT:" + name + ",3\n"),
              name + " +3\n");
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:" + name + "\n#ZOR-PATTERN_REPEAT:p,3\n"),
              "rejected: #ZOR-PATTERN_REPEAT:p,3");
}

TEST(VELHLSMediaPatternParse, NeverMatchesRepeatOfNameWithComma) {
    // The name of a repeat line ends at its first comma.
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:p,q\n#ZOR-PATTERN_END:p,q\n#ZOR-PATTERN_REPEAT:p,q,2\n"),
              "rejected: #ZOR-PATTERN_REPEAT:p,q,2");
}

TEST(VELHLSMediaPatternParse, KeepsLinesThatMayStandInABody) {
    const std::vector<std::string> kept = {
        "seg.ts",
        "seg{$n}.ts",
        "",
        " ",
        "  seg.ts \t",
        " #EXT-X-ENDLIST",
        "\r",
        "seg.ts\r",
        "seg\0.ts"s,
        "\xEF\xBB\xBF#EXTM3U",
        "ZOR-PATTERN_END:q",
        "#EXT-X-DISCONTINUITY",
        "#EXTINF:4,",
        "#EXTINF:4,\r",
        "#EXTINF:",
        "#EXTINF:not a number",
        "#EXT-X-BYTERANGE:100@0",
        "#EXT-X-BYTERANGE:",
        "#EXT-X-KEY:METHOD=NONE",
        "#EXT-X-KEY:",
        "#EXT-X-MAP:URI=\"init.mp4\"",
        "#EXT-X-MAP:",
        "#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:00Z",
        "#EXT-X-PROGRAM-DATE-TIME:",
        "#EXT-X-CUE-OUT:30",
        "#EXT-X-CUE-OUT:",
        "#EXT-X-CUE-OUT-CONT:10/30",
        "#EXT-X-CUE-OUT-CONT:",
        "#ZOR-DEFINE_INCREMENT:n,1",
        "#ZOR-DEFINE_INCREMENT:n",
        "#ZOR-DEFINE_INCREMENT:",
        "#ZOR-DEFINE_INCREMENT:n,1:2",
    };
    for (const std::string& line : kept) {
        EXPECT_EQ(outcomeInPattern(line), "p +2\n" + line + "\n") << testing::PrintToString(line);
    }
}

TEST(VELHLSMediaPatternParse, RejectsLinesThatMayNotStandInABody) {
    const std::vector<std::string> rejected = {
        "#",
        "##",
        "#:",
        "#:p",
        "# comment",
        "# comment: with a colon",
        "#EXT",
        "#EXTM3U",
        "#EXTM3U:",
        "#EXTINF",
        "#EXTINF ",
        "#extinf:4,",
        "#EXTINF :4,",
        "# EXTINF:4,",
        "##EXTINF:4,",
        "#EXTINFO:4,",
        "#EXT-X-BYTERANGE",
        "#EXT-X-KEY",
        "#EXT-X-MAP",
        "#EXT-X-PROGRAM-DATE-TIME",
        "#EXT-X-CUE-OUT",
        "#EXT-X-CUE-OUT-CONT",
        "#EXT-X-CUE-IN",
        "#EXT-X-CUE-IN:",
        "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"",
        "#EXT-X-ENDLIST",
        "#EXT-X-GAP",
        "#EXT-X-VERSION:3",
        "#EXT-X-DISCONTINUITY:",
        "#EXT-X-DISCONTINUITY ",
        "#EXT-X-DISCONTINUITY\r",
        "#EXT-X-DISCONTINUITY\0"s,
        "#EXT-X-DISCONTINUIT",
        "#EXT-X-DISCONTINUITY-SEQUENCE:1",
        "#ZOR-DEFINE_INCREMENT",
        "#ZOR-DEFINE_INCREMENTS:n,1",
        "#ZOR-PATTERN",
        "#ZOR-PATTERN_START",
        "#ZOR-PATTERN_START:p",
        "#ZOR-PATTERN_START:q",
        "#ZOR-PATTERN_START:",
        "#ZOR-PATTERN_STARTED:p",
        "#ZOR-PATTERN_END",
        "#ZOR-PATTERN_END:",
        "#ZOR-PATTERN_END:q",
        "#ZOR-PATTERN_END:P",
        "#ZOR-PATTERN_END:p ",
        "#ZOR-PATTERN_END: p",
        "#ZOR-PATTERN_END:pp",
        "#ZOR-PATTERN_END:p\r",
        "#ZOR-PATTERN_END:p\0"s,
        "#ZOR-PATTERN_END:p:p",
        "#ZOR-PATTERN_REPEAT",
        "#ZOR-PATTERN_REPEAT:",
        "#ZOR-PATTERN_REPEAT:p",
        "#ZOR-PATTERN_REPEAT:p;2",
        "#ZOR-PATTERN_REPEAT:,2",
        "#ZOR-PATTERN_REPEAT:q,3",
        "#ZOR-PATTERN_REPEAT:P,3",
        "#ZOR-PATTERN_REPEAT:p ,3",
        "#ZOR-PATTERN_REPEAT: p,3",
        "#ZOR-PATTERN_REPEAT:pp,3",
        "#ZOR-PATTERN_REPEAT:q,not a number",
        "#ZOR-PATTERN_REPEAT\r:p,3",
        "#zor-pattern_repeat:p,3",
        "#" + std::string(1U << 20U, 'x'),
    };
    for (const std::string& line : rejected) {
        EXPECT_EQ(outcomeInPattern(line), "rejected: " + line) << testing::PrintToString(line.substr(0, 80));
    }
}

TEST(VELHLSMediaPatternParse, LeavesTheLinesAfterARejectedOneUnread) {
    const Reading reading = readingOf(
        "#ZOR-PATTERN_START:p\n#EXTINF:4,\n#ZOR-PATTERN_REPEAT:q,3\nafter\n#ZOR-PATTERN_REPEAT:p,3\n");
    EXPECT_EQ(described(reading), "rejected: #ZOR-PATTERN_REPEAT:q,3");
    EXPECT_EQ(reading.unread, "after\n#ZOR-PATTERN_REPEAT:p,3\n");
}

TEST(VELHLSMediaPatternParse, RejectsAStartLineThatIsNone) {
    for (const std::string line : {"#ZOR-PATTERN_START", "#ZOR-PATTERN_STARTED:p", "#ZOR-PATTERN_END:p",
                                   "#ZOR-PATTERN_REPEAT:p,1", "# comment"}) {
        SCOPED_TRACE(line);
        const Reading reading = readingOf(line + "\n#EXTINF:4,\n");
        EXPECT_EQ(described(reading), "rejected: " + line);
        EXPECT_EQ(reading.unread, "#EXTINF:4,\n");
    }
}

TEST(VELHLSMediaPatternParse, GathersLinesAfterTheEndLineToo) {
    EXPECT_EQ(
        outcomeOf(lines({"#ZOR-PATTERN_START:p", "#EXTINF:4,", "first.ts", "#ZOR-PATTERN_END:p", "#EXTINF:5,",
                         "second.ts", "#ZOR-PATTERN_END:p", "third.ts", "#ZOR-PATTERN_REPEAT:p,2"})),
        "p +2\n#EXTINF:4,\nfirst.ts\n#EXTINF:5,\nsecond.ts\nthird.ts\n");
}

TEST(VELHLSMediaPatternParse, ChecksLinesAfterTheEndLineLikeTheOthers) {
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:p\n#ZOR-PATTERN_END:p\n# comment\n#ZOR-PATTERN_REPEAT:p,2\n"),
              "rejected: # comment");
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:p\n#ZOR-PATTERN_END:p\n#ZOR-PATTERN_START:q\n"),
              "rejected: #ZOR-PATTERN_START:q");
}

TEST(VELHLSMediaPatternParse, ReadsToTheEndOfTheInputWithoutARepeatLine) {
    const Reading reading =
        readingOf("#ZOR-PATTERN_START:p\n#EXTINF:4,\nfirst.ts\n#ZOR-PATTERN_END:p\n#EXTINF:4,\nsecond.ts\n");
    EXPECT_EQ(described(reading), "p +0\n#EXTINF:4,\nfirst.ts\n#EXTINF:4,\nsecond.ts\n");
    EXPECT_EQ(reading.unread, "");
}

TEST(VELHLSMediaPatternParse, TakesTheStartLineOfAnInputThatHoldsNothingMore) {
    std::istringstream prefix("#EXTINF:4,\n");
    std::istringstream input;
    const auto pattern =
        VELHLSMediaPattern::parseMediaPattern("#ZOR-PATTERN_START:p", prefix, input, nullptr);
    ASSERT_NE(pattern, nullptr);
    EXPECT_EQ(pattern->name, "p");
    EXPECT_EQ(pattern->body, "#EXTINF:4,\n");
    EXPECT_EQ(pattern->repeatCount, 0U);
}

TEST(VELHLSMediaPatternParse, DoesNotLookAtALastLineWithoutLineFeed) {
    const std::string head = "#ZOR-PATTERN_START:p\n#EXTINF:4,\n";
    for (const std::string line : {"seg.ts", "#ZOR-PATTERN_REPEAT:p,2", "#ZOR-PATTERN_REPEAT:q,2",
                                   "#ZOR-PATTERN_REPEAT:p,x", "# comment", "#ZOR-PATTERN_START:q"}) {
        SCOPED_TRACE(line);
        const Reading reading = readingOf(head + line);
        EXPECT_EQ(described(reading), "p +0\n#EXTINF:4,\n");
        EXPECT_EQ(reading.unread, "");
    }
}

TEST(VELHLSMediaPatternParse, LooksAtNothingWhenTheInputIsNotGood) {
    for (const std::ios_base::iostate state : {std::ios::eofbit, std::ios::failbit, std::ios::badbit}) {
        std::istringstream prefix("#EXTINF:4,\n");
        std::istringstream input("#ZOR-PATTERN_REPEAT:p,2\n");
        input.setstate(state);
        VELHLSParsingStatus status = statusBefore();
        const auto pattern = VELHLSMediaPattern::parseMediaPattern("# no start line", prefix, input, &status);
        ASSERT_NE(pattern, nullptr);
        EXPECT_EQ(pattern->name, "");
        EXPECT_EQ(pattern->body, "#EXTINF:4,\n");
        EXPECT_EQ(pattern->repeatCount, 0U);
        EXPECT_TRUE(isUntouched(status));
        EXPECT_EQ(restOf(input), "#ZOR-PATTERN_REPEAT:p,2\n");
    }
}

TEST(VELHLSMediaPatternParse, RejectsEndLineWithCarriageReturn) {
    const Reading reading = readingOf(
        "#ZOR-PATTERN_START:p\n#EXTINF:4,\r\nseg.ts\r\n#ZOR-PATTERN_END:p\r\n#ZOR-PATTERN_REPEAT:p,2\r\n");
    EXPECT_EQ(described(reading), "rejected: #ZOR-PATTERN_END:p\r");
    EXPECT_EQ(reading.unread, "#ZOR-PATTERN_REPEAT:p,2\r\n");
}

TEST(VELHLSMediaPatternParse, KeepsTheCarriageReturnsOfOtherLines) {
    EXPECT_EQ(outcomeOf("#ZOR-PATTERN_START:p\n#EXTINF:4,\r\nseg.ts\r\n\r\n#ZOR-PATTERN_REPEAT:p,2\r\n"),
              "p +2\n#EXTINF:4,\r\nseg.ts\r\n\r\n");
}

struct RepeatCount {
    std::string text;
    std::uint64_t count;
};

TEST(VELHLSMediaPatternParse, ConvertsTheRepeatCountAsASignedNumber) {
    const std::vector<RepeatCount> counts = {
        {"0", 0},
        {"2", 2},
        {"002", 2},
        {"+4", 4},
        {" 3", 3},
        {"\t\v\f\r 3", 3},
        {"5x", 5},
        {"5 6", 5},
        {"2,7", 2},
        {"2.9", 2},
        {"2\r", 2},
        {"0x10", 0},
        {"2\0"s
         "3",
         2},
        {std::string(1U << 20U, '0') + "7", 7},
        {"4294967296", 4294967296U},
        {"9223372036854775807", 9223372036854775807U},
        {"-1", 18446744073709551615U},
        {"-0", 0},
        {"-9223372036854775808", 9223372036854775808U},
    };
    for (const auto& [text, count] : counts) {
        const Reading reading =
            readingOf("#ZOR-PATTERN_START:p\nseg.ts\n#ZOR-PATTERN_REPEAT:p," + text + "\nafter\n");
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 80)));
        EXPECT_EQ(described(reading), "p +" + std::to_string(count) + "\nseg.ts\n");
        EXPECT_EQ(reading.unread, "after\n");
    }
}

std::string thrownByRepeatCount(const std::string& text, VELHLSParsingStatus* status) {
    std::istringstream prefix;
    std::istringstream input("#ZOR-PATTERN_REPEAT:p," + text + "\nafter\n");
    return playlist::thrownBy([&] {
        static_cast<void>(
            VELHLSMediaPattern::parseMediaPattern("#ZOR-PATTERN_START:p", prefix, input, status));
    });
}

TEST(VELHLSMediaPatternParse, LetsTheExceptionOfABadRepeatCountPass) {
    const std::vector<std::vector<std::string>> rows = {
        {"", "invalid_argument"},
        {" ", "invalid_argument"},
        {"x", "invalid_argument"},
        {"x2", "invalid_argument"},
        {"+", "invalid_argument"},
        {"-", "invalid_argument"},
        {"+-2", "invalid_argument"},
        {"--2", "invalid_argument"},
        {"- 2", "invalid_argument"},
        {",2", "invalid_argument"},
        {".5", "invalid_argument"},
        {"{$n}", "invalid_argument"},
        {"\0"s
         "2",
         "invalid_argument"},
        {"9223372036854775808", "out_of_range"},
        {"-9223372036854775809", "out_of_range"},
        {"18446744073709551615", "out_of_range"},
        {"99999999999999999999x", "out_of_range"},
        {std::string(1U << 20U, '9'), "out_of_range"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row[0].substr(0, 80)));
        VELHLSParsingStatus status = statusBefore();
        EXPECT_EQ(thrownByRepeatCount(row[0], &status), row[1]);
        EXPECT_TRUE(isUntouched(status));
        EXPECT_EQ(thrownByRepeatCount(row[0], nullptr), row[1]);
    }
}

TEST(VELHLSMediaPatternParse, ReadsEveryPrefixOfAPattern) {
    // A tag that is cut before its colon is none; an open pattern is closed by the end of the input.
    const std::string text =
        "#EXTINF:4,\nseg.ts\n#ZOR-DEFINE_INCREMENT:n,1\n#ZOR-PATTERN_END:p\n#ZOR-PATTERN_REPEAT:p,2";
    for (std::size_t length = 0; length < text.size(); ++length) {
        const std::string cut = text.substr(0, length);
        SCOPED_TRACE(testing::PrintToString(cut));
        const std::string lastLine = cut.substr(cut.rfind('\n') + 1);
        const bool isTag = !lastLine.empty() && lastLine[0] == '#';
        const bool isAccepted = !isTag || lastLine.rfind("#EXTINF:", 0) == 0 ||
                                lastLine.rfind("#ZOR-DEFINE_INCREMENT:", 0) == 0 ||
                                lastLine == "#ZOR-PATTERN_END:p";
        if (lastLine == "#ZOR-PATTERN_REPEAT:p,") continue;  // no number: see above
        const std::string outcome = outcomeOf("#ZOR-PATTERN_START:p\n" + cut + "\n");
        EXPECT_EQ(outcome.substr(0, outcome.find('\n')), isAccepted ? "p +0" : "rejected: " + lastLine);
    }
}

TEST(VELHLSMediaPatternParse, ReadsManyLinesAndLongOnes) {
    std::string body;
    for (int line = 0; line < 100000; ++line)
        body += "#EXTINF:4,\nseg{$n}.ts\n";
    body += std::string(1U << 20U, 'u') + "\n";
    const Reading reading = readingOf("#ZOR-PATTERN_START:p\n" + body + "#ZOR-PATTERN_REPEAT:p,2\n");
    ASSERT_NE(reading.pattern, nullptr);
    EXPECT_EQ(reading.pattern->body, body);
}

}  // namespace
