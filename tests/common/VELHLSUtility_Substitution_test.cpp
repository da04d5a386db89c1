#include <algorithm>
#include <cstddef>
#include <ctime>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/common/VELHLSUtility.h"

#include "tests/support/PlainForms.h"

namespace {

using Defines = VELHLSDefineMap;

constexpr std::size_t maximum = VELHLSUtility::maximumSubstitutedBytes;

std::string substituted(const std::string& text, const Defines& defines) {
    return VELHLSUtility::substituteVariables(text, std::make_shared<Defines>(defines));
}

struct Row {
    std::string text;
    Defines defines;
    std::string result;
};

void expectSubstituted(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(substituted(row.text, row.defines), row.result) << row.text;
    }
}

TEST(VELHLSSubstitution, ReplacesReferencesByValues) {
    expectSubstituted({
        {"a{$x}b", {{"x", "1"}}, "a1b"},
        {"{$x}", {{"x", "1"}}, "1"},
        {"{$x}{$x}", {{"x", "1"}}, "11"},
        {"{$x}-{$y}-{$x}", {{"x", "1"}, {"y", "2"}}, "1-2-1"},
        {"seg{$n}.ts", {{"n", "7"}}, "seg7.ts"},
        {"seg{$n}.ts?a={$long-name_1}", {{"n", "7"}, {"long-name_1", "b c"}}, "seg7.ts?a=b c"},
        {"a{$x}b", {{"x", ""}}, "ab"},
        {"{$x}", {{"x", ""}}, ""},
        {"{$x}", {{"x", "\xC3\xA9"}}, "\xC3\xA9"},
        {"{$\xC3\xA9}", {{"\xC3\xA9", "1"}}, "1"},
    });
}

TEST(VELHLSSubstitution, TextWithoutReferenceIsUnchanged) {
    expectSubstituted({
        {"plain", {{"x", "1"}}, "plain"},
        {"plain", {}, "plain"},
        {"x", {{"x", "1"}}, "x"},
        {"}", {{"x", "1"}}, "}"},
        {"}x}", {{"x", "1"}}, "}x}"},
        {"a}b", {}, "a}b"},
    });
}

TEST(VELHLSSubstitution, WithoutDefineMapTextIsUnchanged) {
    const std::string texts[] = {"a{$x}b", "plain", "", "{", "$", "{$x", "cost$5"};
    for (const std::string& text : texts) {
        EXPECT_EQ(VELHLSUtility::substituteVariables(text, nullptr), text) << text;
    }
    const std::string large(2 * maximum, '$');
    EXPECT_TRUE(VELHLSUtility::substituteVariables(large, nullptr) == large);
}

TEST(VELHLSSubstitution, EmptyTextIsEmptyWhateverTheMapHolds) {
    EXPECT_EQ(VELHLSUtility::substituteVariables("", nullptr), "");
    expectSubstituted({{"", {}, ""}, {"", {{"", "1"}}, ""}, {"", {{"x", "1"}}, ""}});
}

TEST(VELHLSSubstitution, OneUnknownNameEmptiesTheWhole) {
    expectSubstituted({
        {"a{$unknown}b", {}, ""},
        {"a{$unknown}b", {{"x", "1"}}, ""},
        {"a{$x}b{$unknown}c", {{"x", "1"}}, ""},
        {"a{$unknown}b{$x}c", {{"x", "1"}}, ""},
        {"{$x}", {{"x", "{$unknown}"}}, ""},
        {"{$X}", {{"x", "1"}}, ""},
        {"{$x }", {{"x", "1"}}, ""},
        {"{$ x}", {{"x", "1"}}, ""},
        {"{$$x}", {{"x", "1"}}, ""},
        {"{$x}", {{"{$x}", "1"}, {"$x", "1"}}, ""},
    });
}

TEST(VELHLSSubstitution, ValuesAreReadForReferencesInTurn) {
    expectSubstituted({
        {"{$x}", {{"x", "{$y}"}, {"y", "2"}}, "2"},
        {"a{$x}b", {{"x", "1{$y}3"}, {"y", "2"}}, "a123b"},
        {"{$x}", {{"x", "{$y}{$y}"}, {"y", "{$z}{$z}"}, {"z", "0"}}, "0000"},
        {"{$x}{$y}", {{"x", "{$y}"}, {"y", "2"}}, "22"},
    });
}

TEST(VELHLSSubstitution, LoneBraceOrDollarBeginsAReferenceToo) {
    expectSubstituted({
        {"cost$5", {{"x", "1"}}, ""},
        {"cost$5}", {{"x", "1"}}, ""},
        {"cost$5x}", {{"x", "1"}}, "cost1"},
        {"a{?x}b", {{"x", "1"}}, "a1b"},
        {"a$?x}b", {{"x", "1"}}, "a1b"},
        {"a$$x}b", {{"x", "1"}}, "a1b"},
        {"a${x}b", {{"x", "1"}}, "a1b"},
        {"a{{x}b", {{"x", "1"}}, "a1b"},
        {"a{x}b", {{"x", "1"}}, ""},
        {"{?{$x}", {{"{$x", "1"}}, "1"},
    });
}

TEST(VELHLSSubstitution, NameGoesUpToTheNextClosingBrace) {
    expectSubstituted({
        {"{$a{$b}c}", {{"a{$b", "1"}}, "1c}"},
        {"{$a$b}", {{"a$b", "1"}}, "1"},
        {"{$a b\n}", {{"a b\n", "1"}}, "1"},
        {"{$x}}", {{"x", "1"}}, "1}"},
    });
}

TEST(VELHLSSubstitution, NameMayBeEmpty) {
    expectSubstituted({
        {"a{$}b", {{"", "1"}}, "a1b"},
        {"a{$}b", {{"x", "1"}}, ""},
        {"a{$}", {{"", "1"}}, "a1"},
    });
}

TEST(VELHLSSubstitution, ValueMayBeginAReferenceThatEndsInTheTextAfterIt) {
    expectSubstituted({
        {"{$x}y}z", {{"x", "{$"}, {"y", "2"}}, "2z"},
        {"{$x}$y}z", {{"x", "{"}, {"y", "2"}}, "2z"},
        {"{$x}?y}z", {{"x", "$"}, {"y", "2"}}, "2z"},
        {"{$x}y}z", {{"x", "{$long-"}, {"long-y", "2"}}, "2z"},
        {"{$x}{$y}}z", {{"x", "{$"}, {"{$y", "2"}}, "2}z"},
        {"{$w}c}d", {{"w", "{$x}b"}, {"x", "{$a"}, {"abc", "2"}}, "2d"},
        {"{$x}y}{$x}z}", {{"x", "{$"}, {"y", "1"}, {"z", "2"}}, "12"},
        {"{$x}x}y}", {{"x", "{$"}, {"y", "2"}}, "2"},
        {"{$x}", {{"x", "{$"}}, ""},
        {"{$x}y", {{"x", "{$"}, {"y", "2"}}, ""},
    });
}

TEST(VELHLSSubstitution, ReferenceWithoutClosingBraceIsLikeAnUnknownName) {
    expectSubstituted({
        {"{$x", {{"x", "1"}}, ""},
        {"a{$x", {{"x", "1"}}, ""},
        {"{$x}{$x", {{"x", "1"}}, ""},
        {"}{$x", {{"x", "1"}}, ""},
        {"cost$5x", {{"x", "1"}}, ""},
        {"{$x", {{"x", ""}}, ""},
        {"{$y}", {{"x", "1"}, {"y", "{$x"}}, ""},
    });
}

TEST(VELHLSSubstitution, ReferenceAmongTheLastTwoCharactersIsLikeAnUnknownName) {
    const Defines defines = {{"", "1"}, {"a", "1"}, {"}", "1"}};
    const std::string texts[] = {"{",  "$",  "a{", "a$",  "{$",  "${",  "$$",
                                 "{{", "{}", "$}", "a{}", "a{a", "ab$}"};
    for (const std::string& text : texts) {
        EXPECT_EQ(substituted(text, defines), "") << text;
    }
}

TEST(VELHLSSubstitution, PrefixesOfAReferenceThatBreakOffEmptyTheText) {
    const std::string text = "a{$xy}b";
    const std::string results[] = {"", "a", "", "", "", "", "a1", "a1b"};
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const std::string prefix = text.substr(0, length);
        EXPECT_EQ(substituted(prefix, {{"xy", "1"}, {"x", "2"}, {"", "3"}}), results[length]) << prefix;
    }
}

TEST(VELHLSSubstitution, DefinitionsThatLeadBackToThemselvesEmptyTheText) {
    expectSubstituted({
        {"{$x}", {{"x", "{$x}"}}, ""},
        {"a{$x}b", {{"x", "1{$x}"}}, ""},
        {"a{$x}b", {{"x", "{$x}1"}}, ""},
        {"{$x}", {{"x", "{$y}"}, {"y", "{$x}"}}, ""},
        {"{$x}", {{"x", "{$y}"}, {"y", "1{$z}2"}, {"z", "{$x}"}}, ""},
        {"{$w}", {{"w", "1{$x}"}, {"x", "{$y}"}, {"y", "{$x}"}}, ""},
        {"{$x}x}", {{"x", "{$x}{$"}}, ""},
        {"{$x}x}", {{"x", "{$"}}, ""},
        {"{$x}}", {{"x", "{$x"}}, ""},
        {"{$x}a}", {{"x", "{$"}, {"a", "{$x}a}"}}, ""},
    });
}

TEST(VELHLSSubstitution, RingThatIsNotReferredToDoesNoHarm) {
    expectSubstituted({{"{$x}", {{"x", "1"}, {"y", "{$z}"}, {"z", "{$y}"}}, "1"}});
}

TEST(VELHLSSubstitution, RepeatedReferenceIsNoRing) {
    expectSubstituted({{"{$x}{$y}{$x}", {{"x", "{$z}"}, {"y", "{$x}{$x}"}, {"z", "1"}}, "1111"}});
}

TEST(VELHLSSubstitution, LeavesTheMapAlone) {
    const Defines defines = {{"x", "{$y}"}, {"y", "2"}};
    const auto shared = std::make_shared<Defines>(defines);
    EXPECT_EQ(VELHLSUtility::substituteVariables("{$x}", shared), "2");
    EXPECT_EQ(VELHLSUtility::substituteVariables("{$z}", shared), "");
    EXPECT_EQ(*shared, defines);
}

TEST(VELHLSSubstitution, ReadsNullBytesLikeAnyOther) {
    const std::string text("a\0{$\0}\0b", 8);
    const std::string name(1, '\0');
    EXPECT_EQ(substituted(text, {{name, "1"}}), std::string("a\0001\0b", 5));
}

std::string written(const Defines& defines) {
    std::string text;
    for (const auto& [name, value] : defines)
        text += " " + name + "=" + value;
    return text;
}

class RandomTexts {
  public:
    explicit RandomTexts(std::vector<std::string> pieces) : pieces_(std::move(pieces)) {}

    std::string text(std::size_t mostPieces) {
        std::string text;
        for (std::size_t count = upTo(mostPieces); count > 0; --count)
            text += pieces_[upTo(pieces_.size() - 1)];
        return text;
    }

    Defines defines(const std::vector<std::string>& names, std::size_t mostPieces) {
        Defines defines;
        for (const std::string& name : names) {
            if (upTo(3) > 0) defines[name] = text(mostPieces);
        }
        return defines;
    }

  private:
    std::size_t upTo(std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random_);
    }

    std::vector<std::string> pieces_;
    std::mt19937 random_{20200101};
};

struct Tally {
    int filled = 0;
    int emptied = 0;
    int endless = 0;
};

void expectAgreement(const std::string& text, const Defines& defines, Tally& tally) {
    const std::optional<std::string> expected = plain::substituted(text, defines);
    const std::string result = substituted(text, defines);
    ASSERT_EQ(result, expected.value_or("")) << text << " with" << written(defines);
    const bool reads = text.find_first_of("{$") != std::string::npos;
    if (!expected) ++tally.endless;
    if (expected && reads) ++(expected->empty() ? tally.emptied : tally.filled);
}

TEST(VELHLSSubstitution, AgreesWithTheRulesOnRandomCharacters) {
    RandomTexts random({"a", "x", "y", "{", "$", "}", "}"});
    Tally tally;
    for (int round = 0; round < 100000; ++round) {
        const Defines defines = random.defines({"a", "x", "y", "xa", "$"}, 5);
        expectAgreement(random.text(9), defines, tally);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(tally.filled, 1000);
    EXPECT_GT(tally.emptied, 1000);
    EXPECT_GT(tally.endless, 0);
}

TEST(VELHLSSubstitution, AgreesWithTheRulesOnRandomReferences) {
    RandomTexts random({"a", "b}", "{$x}", "{$y}", "{$z}", "{$", "{$x", "x}", "y}", "{}", "$?z}", "{$}"});
    Tally tally;
    for (int round = 0; round < 100000; ++round) {
        const Defines defines = random.defines({"x", "y", "z", "xa", "b"}, 3);
        expectAgreement(random.text(4), defines, tally);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(tally.filled, 1000);
    EXPECT_GT(tally.emptied, 1000);
    EXPECT_GT(tally.endless, 1000);
}

// A variable without a name that leads back to itself may run up to the maximum, so these are fewer.
TEST(VELHLSSubstitution, AgreesWithTheRulesOnRandomReferencesWithoutAName) {
    RandomTexts random({"a", "{$x}", "{$}", "{}", "${", "{", "}", "x}"});
    Tally tally;
    for (int round = 0; round < 1000; ++round) {
        const Defines defines = random.defines({"", "x", "}"}, 3);
        expectAgreement(random.text(5), defines, tally);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(tally.filled, 50);
    EXPECT_GT(tally.emptied, 50);
    EXPECT_GT(tally.endless, 10);
}

/// Every map of two variables whose values are made of up to two of the pieces.
TEST(VELHLSSubstitution, AgreesWithTheRulesOnAllSmallMaps) {
    const std::string pieces[] = {"", "a", "{$x}", "{$y}", "{$", "x}", "y}", "}"};
    std::vector<std::string> values;
    for (const std::string& first : pieces) {
        for (const std::string& second : pieces)
            values.push_back(first + second);
    }
    Tally tally;
    for (const std::string& x : values) {
        for (const std::string& y : values) {
            for (const char* const text : {"{$x}", "{$x}y}", "{$x}{$y}a", "{$y}x}y}"}) {
                expectAgreement(text, {{"x", x}, {"y", y}}, tally);
                if (HasFatalFailure()) return;
            }
        }
    }
    EXPECT_GT(tally.filled, 1000);
    EXPECT_GT(tally.endless, 1000);
}

/// Time that this process computed, in seconds: it does not count what other processes take.
double computingTime() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

std::string substitutedQuickly(const std::string& text, const Defines& defines) {
    constexpr double generous = 10.0;
    const double start = computingTime();
    std::string result = substituted(text, defines);
    EXPECT_LT(computingTime() - start, generous);
    return result;
}

/// x0 stands for two x1, each of which stands for two x2, and so on to the last, which is `end`.
Defines doublingDefines(int levels, const std::string& end) {
    Defines defines;
    for (int level = 0; level < levels; ++level) {
        const std::string next = "{$x" + std::to_string(level + 1) + "}";
        defines["x" + std::to_string(level)] = next + next;
    }
    defines["x" + std::to_string(levels)] = end;
    return defines;
}

TEST(VELHLSSubstitution, DoublingDefinitionsAreWrittenOut) {
    EXPECT_EQ(substituted("{$x0}", doublingDefines(3, "ab")), "abababababababab");
    EXPECT_EQ(substituted("<{$x0}>", doublingDefines(10, "a")), "<" + std::string(1024, 'a') + ">");
    const std::string large = substitutedQuickly("{$x0}", doublingDefines(18, "a"));
    EXPECT_TRUE(large == std::string(std::size_t{1} << 18, 'a')) << large.size();
}

TEST(VELHLSSubstitution, DoublingDefinitionsThatGrowBeyondTheMaximumEmptyTheText) {
    for (const int levels : {21, 25, 40, 1000}) {
        EXPECT_EQ(substitutedQuickly("{$x0}", doublingDefines(levels, "a")), "") << levels;
    }
}

TEST(VELHLSSubstitution, DoublingDefinitionsThatVanishTakeNoExponentialTime) {
    for (const int levels : {20, 40, 1000}) {
        SCOPED_TRACE(levels);
        EXPECT_EQ(substitutedQuickly("a{$x0}b", doublingDefines(levels, "")), "ab");
        EXPECT_EQ(substitutedQuickly("{$x0}-{$x0}-{$x3}", doublingDefines(levels, "")), "--");
    }
}

TEST(VELHLSSubstitution, DoublingDefinitionsThatEndInAnUnknownNameEmptyTheText) {
    EXPECT_EQ(substitutedQuickly("a{$x0}b", doublingDefines(40, "{$unknown}")), "");
    EXPECT_EQ(substitutedQuickly("a{$x0}b", doublingDefines(40, "{$x0}")), "");
}

TEST(VELHLSSubstitution, LongChainOfDefinitionsIsFollowedToItsEnd) {
    constexpr int length = 20000;
    Defines defines;
    for (int link = 0; link < length; ++link) {
        defines["x" + std::to_string(link)] = "{$x" + std::to_string(link + 1) + "}";
    }
    defines["x" + std::to_string(length)] = "end";
    EXPECT_EQ(substitutedQuickly("{$x0}", defines), "end");
    defines["x" + std::to_string(length)] = "{$x0}";
    EXPECT_EQ(substitutedQuickly("{$x0}", defines), "");
}

std::string repeated(const std::string& piece, std::size_t count) {
    std::string text;
    text.reserve(piece.size() * count);
    for (; count > 0; --count)
        text += piece;
    return text;
}

TEST(VELHLSSubstitution, ManyReferencesTakeTimeLinearInTheText) {
    constexpr std::size_t count = 200000;
    const std::string result = substitutedQuickly(repeated("{$x}", count), {{"x", "1"}});
    EXPECT_TRUE(result == std::string(count, '1')) << result.size();
    EXPECT_EQ(substitutedQuickly("a" + repeated("{$x}", count) + "b", {{"x", ""}}), "ab");
    EXPECT_EQ(substitutedQuickly(repeated("{$x}", count) + "{$y}", {{"x", "1"}}), "");
}

TEST(VELHLSSubstitution, LongNamesTakeTimeLinearInTheText) {
    const std::string name(maximum, 'n');
    EXPECT_EQ(substitutedQuickly("a{$" + name + "}b", {{name, "1"}}), "a1b");
    EXPECT_EQ(substitutedQuickly("a{$" + name, {{name, "1"}}), "");
    EXPECT_EQ(substitutedQuickly(repeated("{$", maximum), {{"x", "1"}}), "");
}

TEST(VELHLSSubstitution, TextWithoutReferenceMayBeLongerThanTheMaximum) {
    for (const std::size_t length : {maximum - 1, maximum, maximum + 1, 3 * maximum}) {
        const std::string text(length, 'a');
        EXPECT_TRUE(substituted(text, {{"x", "1"}}) == text) << length;
        EXPECT_TRUE(substituted(text, {}) == text) << length;
    }
}

TEST(VELHLSSubstitution, ResultMayBeAsLongAsTheMaximumAndNoLonger) {
    const struct {
        std::size_t before;
        std::size_t after;
        bool fits;
    } rows[] = {
        {maximum - 2, 0, true},  {maximum - 1, 0, true},  {maximum, 0, false},    {0, maximum - 2, true},
        {0, maximum - 1, true},  {0, maximum, false},     {1, maximum - 2, true}, {1, maximum - 1, false},
        {maximum + 1, 0, false}, {0, 3 * maximum, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.before << " before, " << row.after << " after");
        const std::string before(row.before, 'a');
        const std::string after(row.after, 'b');
        const std::string expected = row.fits ? before + "1" + after : "";
        EXPECT_TRUE(substituted(before + "{$x}" + after, {{"x", "1"}}) == expected);
    }
}

TEST(VELHLSSubstitution, InsertedTextIsBoundedToo) {
    const std::string half(maximum / 2, 'v');
    EXPECT_TRUE(substituted("{$x}", {{"x", half}}) == half);
    EXPECT_TRUE(substituted("{$x}{$x}", {{"x", half}}) == half + half);
    EXPECT_EQ(substituted("{$x}{$x}{$x}", {{"x", half}}), "");
    EXPECT_TRUE(substituted("{$x}", {{"x", std::string(maximum, 'v')}}) == std::string(maximum, 'v'));
    EXPECT_EQ(substituted("{$x}", {{"x", std::string(maximum + 1, 'v')}}), "");
    EXPECT_EQ(substituted("{$x}", {{"x", std::string(2 * maximum, 'v')}}), "");
}

TEST(VELHLSSubstitution, AnyNumberOfReferencesInTheTextMayComeToNothing) {
    EXPECT_EQ(substitutedQuickly("a" + repeated("{$x}", 2 * maximum) + "b", {{"x", ""}}), "ab");
}

// What stands after "{$value}" ends the reference that the value begins, so that the value is read again
// every time. Each reference costs its value's bytes and one more; all together may cost twice the maximum
// beside the text's own length.
TEST(VELHLSSubstitution, WhatReferencesInsertIsBoundedToTheByte) {
    const std::string name(1020, 'n');
    const Defines defines = {{"value", "{$" + name}, {name, ""}};
    const auto textWith = [](std::size_t count) { return "a" + repeated("{$value}}", count) + "b"; };
    const std::size_t costOfOne = (1022 + 1) + (0 + 1) - std::string("{$value}}").size();
    const std::size_t most = (2 * maximum + 2) / costOfOne;
    EXPECT_EQ(substituted(textWith(most), defines), "ab");
    EXPECT_EQ(substituted(textWith(most + 1), defines), "");
}

// Each value is read again for every reference to it, since what stands after its end decides its last name:
// a hundred of them would take for ever, although they make no text.
TEST(VELHLSSubstitution, ValuesThatMultiplyWithoutMakingTextHaveAnEnd) {
    Defines defines = {{"v0", "{$"}, {"e", ""}};
    for (int index = 1; index <= 100; ++index) {
        const std::string inner = "{$v" + std::to_string(index - 1) + "}e}";
        defines["v" + std::to_string(index)] = inner + inner + "{$";
    }
    EXPECT_EQ(substitutedQuickly("{$v100}e}", defines), "");
}

}  // namespace
