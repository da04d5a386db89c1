#include <algorithm>
#include <cstddef>
#include <ctime>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/common/VELHLSUtility.h"

#include "tests/support/PlainForms.h"

namespace {

using Attributes = VELHLSAttributeMap;

static_assert(std::is_same_v<decltype(VELHLSUtility::parseAttributeMap("")), std::unique_ptr<Attributes>>);

std::optional<Attributes> attributesOf(const std::string& text) {
    const std::unique_ptr<Attributes> map = VELHLSUtility::parseAttributeMap(text);
    if (map == nullptr) return std::nullopt;
    return *map;
}

struct Row {
    std::string text;
    Attributes attributes;
};

void expectAttributes(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const std::optional<Attributes> attributes = attributesOf(row.text);
        ASSERT_TRUE(attributes.has_value());
        EXPECT_EQ(*attributes, row.attributes);
    }
}

void expectMalformed(const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
        EXPECT_EQ(VELHLSUtility::parseAttributeMap(text), nullptr) << text;
    }
}

TEST(VELHLSAttributeMap, EmptyTextIsAnEmptyMap) {
    const std::unique_ptr<Attributes> map = VELHLSUtility::parseAttributeMap("");
    ASSERT_NE(map, nullptr);
    EXPECT_TRUE(map->empty());
}

TEST(VELHLSAttributeMap, ReadsUnquotedAndQuotedValues) {
    expectAttributes({
        {R"(A=1)", {{"A", "1"}}},
        {R"(A=1,B=2)", {{"A", "1"}, {"B", "2"}}},
        {R"(A="x")", {{"A", "x"}}},
        {R"(A="x",B="y")", {{"A", "x"}, {"B", "y"}}},
        {R"(A=1,B="x,y",C=3)", {{"A", "1"}, {"B", "x,y"}, {"C", "3"}}},
        {R"(A="x",B=2,C="y")", {{"A", "x"}, {"B", "2"}, {"C", "y"}}},
        {R"(METHOD=AES-128,URI="https://k/1?a=b,c=d",IV=0x1A)",
         {{"METHOD", "AES-128"}, {"URI", "https://k/1?a=b,c=d"}, {"IV", "0x1A"}}},
        {R"(BANDWIDTH=800000,CODECS="avc1.4d401e,mp4a.40.2",RESOLUTION=640x360)",
         {{"BANDWIDTH", "800000"}, {"CODECS", "avc1.4d401e,mp4a.40.2"}, {"RESOLUTION", "640x360"}}},
    });
}

TEST(VELHLSAttributeMap, QuotedValueMayBeEmptyAndMayHoldSeparators) {
    expectAttributes({
        {R"(A="")", {{"A", ""}}},
        {R"(A="",B="")", {{"A", ""}, {"B", ""}}},
        {R"(A=",")", {{"A", ","}}},
        {R"(A=",,,",B=1)", {{"A", ",,,"}, {"B", "1"}}},
        {R"(A="=")", {{"A", "="}}},
        {R"(A="B=1,C=2",D=3)", {{"A", "B=1,C=2"}, {"D", "3"}}},
        {R"(A="x,")", {{"A", "x,"}}},
        {R"(A=",x")", {{"A", ",x"}}},
    });
}

TEST(VELHLSAttributeMap, UnquotedValueGoesToTheCommaWhateverItHolds) {
    expectAttributes({
        {R"(A=B=1)", {{"A", "B=1"}}},
        {R"(A==)", {{"A", "="}}},
        {R"(A==,B=1)", {{"A", "="}, {"B", "1"}}},
        {R"(A= )", {{"A", " "}}},
        {R"(A=a b ,B=1)", {{"A", "a b "}, {"B", "1"}}},
        {R"(A='x',B=1)", {{"A", "'x'"}, {"B", "1"}}},
        {"A=\r", {{"A", "\r"}}},
        {"A=\xC3\xA9,B=\xFF", {{"A", "\xC3\xA9"}, {"B", "\xFF"}}},
    });
}

TEST(VELHLSAttributeMap, TrimsNoWhiteSpace) {
    expectAttributes({
        {R"(A=1, B=2)", {{"A", "1"}, {" B", "2"}}},
        {R"( A=1)", {{" A", "1"}}},
        {R"(A =1)", {{"A ", "1"}}},
        {R"(A= 1 ,B=2)", {{"A", " 1 "}, {"B", "2"}}},
        {R"(A=" x ")", {{"A", " x "}}},
        {"\tA=\t1", {{"\tA", "\t1"}}},
        {" =1", {{" ", "1"}}},
    });
}

TEST(VELHLSAttributeMap, KeepsBackslashesAndEscapesAsTheyStand) {
    expectAttributes({
        {R"(A="x\")", {{"A", "x\\"}}},
        {R"(A="x\n",B="%2C")", {{"A", "x\\n"}, {"B", "%2C"}}},
    });
}

TEST(VELHLSAttributeMap, FirstOfSeveralAttributesWithOneNameHolds) {
    expectAttributes({
        {R"(A=1,A=2)", {{"A", "1"}}},
        {R"(A="",A=2)", {{"A", ""}}},
        {R"(A=1,B=2,A=3,B=4,C=5)", {{"A", "1"}, {"B", "2"}, {"C", "5"}}},
        {R"(A=1,a=2)", {{"A", "1"}, {"a", "2"}}},
        {R"(A=1, A=2)", {{"A", "1"}, {" A", "2"}}},
        {R"(B=1,A=1,B=2,A=2,B=3,A=3)", {{"A", "1"}, {"B", "1"}}},
    });
}

TEST(VELHLSAttributeMap, FirstOfVeryManyAttributesWithOneNameHolds) {
    std::string text = "B=first,C=first,A=first";
    for (int repetition = 0; repetition < 1000; ++repetition) {
        text += std::string(",") + "ACB"[repetition % 3] + "=" + std::to_string(repetition);
    }
    const Attributes expected = {{"A", "first"}, {"B", "first"}, {"C", "first"}};
    EXPECT_EQ(attributesOf(text), expected);
}

TEST(VELHLSAttributeMap, LaterDuplicatesMustBeWellFormedAllTheSame) {
    expectMalformed({"A=1,A=", "A=1,A", "A=1,A=\"x\"y,B=1"});
}

TEST(VELHLSAttributeMap, OrdersNamesByTheirBytes) {
    const std::unique_ptr<Attributes> map =
        VELHLSUtility::parseAttributeMap("b=1,\xC3\xA9=1,B=1,a-b=1,a=1, =1,0=1,aa=1,A=1");
    ASSERT_NE(map, nullptr);
    std::vector<std::string> names;
    for (const auto& [name, value] : *map)
        names.push_back(name);
    EXPECT_EQ(names, (std::vector<std::string>{" ", "0", "A", "B", "a", "a-b", "aa", "b", "\xC3\xA9"}));
}

TEST(VELHLSAttributeMap, TextBetweenEqualsSignAndOpeningQuoteIsDropped) {
    expectAttributes({
        {R"(A=pre"x")", {{"A", "x"}}},
        {R"(A= "x")", {{"A", "x"}}},
        {R"(A=="x",B=1)", {{"A", "x"}, {"B", "1"}}},
        {R"(A=b=c"x,y",B=1)", {{"A", "x,y"}, {"B", "1"}}},
    });
}

TEST(VELHLSAttributeMap, AfterTheLastCommaTheClosingQuoteMayBeMissing) {
    expectAttributes({
        {R"(A="x)", {{"A", "x"}}},
        {R"(A=")", {{"A", ""}}},
        {R"(A="x=y)", {{"A", "x=y"}}},
        {R"(A=pre"x)", {{"A", "x"}}},
        {R"(A=1,B="x)", {{"A", "1"}, {"B", "x"}}},
    });
}

TEST(VELHLSAttributeMap, AfterTheLastCommaTextAfterTheClosingQuoteIsDropped) {
    expectAttributes({
        {R"(A="x"y)", {{"A", "x"}}},
        {R"(A="x" )", {{"A", "x"}}},
        {R"(A="x"")", {{"A", "x"}}},
        {R"(A="x"y"z")", {{"A", "x"}}},
        {R"(A="x,y"z)", {{"A", "x,y"}}},
        {R"(B=1,A="x"=)", {{"A", "x"}, {"B", "1"}}},
    });
}

TEST(VELHLSAttributeMap, TextAfterAClosingQuoteMayBeginWithAnyByteButAComma) {
    for (int byte = 0; byte < 256; ++byte) {
        const char character = static_cast<char>(byte);
        if (character == ',') continue;
        const std::string text = std::string("A=\"x\"") + character;
        EXPECT_EQ(attributesOf(text), (Attributes{{"A", "x"}})) << text;
        EXPECT_EQ(attributesOf(text + ",B=y"), std::nullopt) << text;
    }
}

TEST(VELHLSAttributeMap, QuoteIsMalformedWhereACommaFollowsWrongly) {
    expectMalformed({
        R"(A="x,B=1)",
        R"(A=",)",
        R"(A=pre"x,)",
        R"(A="x"y,B=1)",
        R"(A="x" ,B=1)",
        R"(A="x"",B=1)",
        R"(A="x,y"z,B=1)",
        R"(A=1,B="x,C=2)",
        R"(A=1,B="x"y,C=2)",
    });
}

TEST(VELHLSAttributeMap, QuoteAfterTheNextCommaBelongsToALaterAttribute) {
    expectAttributes({
        {R"(A=1,B="x")", {{"A", "1"}, {"B", "x"}}},
        {R"(A=1,B=2,C="x,y")", {{"A", "1"}, {"B", "2"}, {"C", "x,y"}}},
    });
    expectMalformed({R"(A,B="x")", R"(A=,B="x")", R"(=1,B="x")"});
}

TEST(VELHLSAttributeMap, NameMustNotBeEmpty) {
    expectMalformed({"=", "=1", "=\"x\"", "=,A=1", "A=1,=2", "A=1,=", "A=\"x\",=1", "=A=1"});
}

TEST(VELHLSAttributeMap, UnquotedValueMustNotBeEmpty) {
    expectMalformed({"A=", "A=,", "A=,B=1", "A=1,B=", "A=1,B=,C=3", "A=\"x\",B="});
}

TEST(VELHLSAttributeMap, EqualsSignMustStandBeforeValueAndComma) {
    expectMalformed({"A", "A,B=1", "A=1,B", "A=1,B,C=3", R"("x")", R"("x"=1)", R"(A"x")", R"(A"x"=1)",
                     R"(A"=1)", R"("A=1)", R"(A=1,"B=2)", R"(A"x",B=1)", R"("A"=1,B=2)", R"(")", R"("")",
                     R"("","")"});
}

TEST(VELHLSAttributeMap, CommaMustBeFollowedByAnAttribute) {
    expectMalformed({",", ",,", "A=1,", "A=\"x\",", ",A=1", "A=1,,B=2", "A=1,,", " ,A=1"});
}

TEST(VELHLSAttributeMap, ReadsNullBytesLikeAnyOther) {
    const std::string text("A=\0,\0=1", 7);
    const Attributes expected = {{"A", std::string(1, '\0')}, {std::string(1, '\0'), "1"}};
    EXPECT_EQ(attributesOf(text), expected);
}

/// Each prefix of one list, so that each position where a list can break off is a row. Null is malformed.
TEST(VELHLSAttributeMap, ReadsPrefixesOfAList) {
    const std::string text = R"(A=1,B="x,y",C=3)";
    const std::optional<Attributes> expected[] = {
        Attributes{},                          //
        std::nullopt,                          // A
        std::nullopt,                          // A=
        Attributes{{"A", "1"}},                // A=1
        std::nullopt,                          // A=1,
        std::nullopt,                          // A=1,B
        std::nullopt,                          // A=1,B=
        Attributes{{"A", "1"}, {"B", ""}},     // A=1,B="
        Attributes{{"A", "1"}, {"B", "x"}},    // A=1,B="x
        std::nullopt,                          // A=1,B="x,
        std::nullopt,                          // A=1,B="x,y
        Attributes{{"A", "1"}, {"B", "x,y"}},  // A=1,B="x,y"
        std::nullopt,                          // A=1,B="x,y",
        std::nullopt,                          // A=1,B="x,y",C
        std::nullopt,                          // A=1,B="x,y",C=
        Attributes{{"A", "1"}, {"B", "x,y"}, {"C", "3"}},
    };
    ASSERT_EQ(std::size(expected), text.size() + 1);
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const std::string prefix = text.substr(0, length);
        EXPECT_EQ(attributesOf(prefix), expected[length]) << prefix;
    }
}

/// The text that counts as `number` in the alphabet's digits.
std::string textNumbered(std::size_t number, std::size_t length, std::string_view alphabet) {
    std::string text;
    for (std::size_t position = 0; position < length; ++position, number /= alphabet.size()) {
        text += alphabet[number % alphabet.size()];
    }
    return text;
}

TEST(VELHLSAttributeMap, AgreesWithTheRulesOnAllShortTexts) {
    constexpr std::string_view alphabet = "A,=\"B";
    constexpr std::size_t longest = 7;
    std::size_t wellFormed = 0;
    std::size_t count = 1;
    for (std::size_t length = 0; length <= longest; ++length, count *= alphabet.size()) {
        for (std::size_t number = 0; number < count; ++number) {
            const std::string text = textNumbered(number, length, alphabet);
            const std::optional<Attributes> expected = plain::attributeMap(text);
            ASSERT_EQ(attributesOf(text), expected) << text;
            if (expected) ++wellFormed;
        }
    }
    EXPECT_GT(wellFormed, 1000U);
}

TEST(VELHLSAttributeMap, AgreesWithTheRulesOnRandomTexts) {
    constexpr std::string_view alphabet = "AB,,==\"\" x";
    std::mt19937 random(20240229);
    std::uniform_int_distribution<std::size_t> lengths(8, 40);
    std::uniform_int_distribution<std::size_t> characters(0, alphabet.size() - 1);
    for (int round = 0; round < 100000; ++round) {
        std::string text(lengths(random), ' ');
        std::generate(text.begin(), text.end(), [&] { return alphabet[characters(random)]; });
        ASSERT_EQ(attributesOf(text), plain::attributeMap(text)) << text;
    }
}

// Random characters seldom make a long list: these texts are put together from pieces of lists.
TEST(VELHLSAttributeMap, AgreesWithTheRulesOnRandomLists) {
    const std::string pieces[] = {"A=1",   "B=2",   "C=\"x,y\"", "D=\"\"", "A=\"z\"",  "E=p\"q\"",
                                  " F=1 ", "G==\"", "H=\"x",     "I=",     "J=\"x\"y", "K"};
    std::mt19937 random(8216);
    std::uniform_int_distribution<std::size_t> counts(1, 8);
    // The well-formed pieces, which come first, are chosen more often.
    std::discrete_distribution<std::size_t> chosen({9, 9, 9, 9, 9, 9, 9, 1, 1, 1, 1, 1});
    std::size_t wellFormed = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (std::size_t count = counts(random); count > 0; --count) {
            text += pieces[chosen(random)];
            if (count > 1) text += ',';
        }
        const std::optional<Attributes> expected = plain::attributeMap(text);
        ASSERT_EQ(attributesOf(text), expected) << text;
        if (expected) ++wellFormed;
    }
    EXPECT_GT(wellFormed, 5000U);
    EXPECT_LT(wellFormed, 19000U);
}

// Lists that end anywhere in a run of eight bytes, with the bytes beside those that end a name or a value.
TEST(VELHLSAttributeMap, AgreesWithTheRulesOnRandomBytesInLists) {
    constexpr std::string_view odd("=,\"-+!#<>. \0\x7F\x80\xAC\xAD\xBD\xFF", 18);
    const std::string whole[] = {"A=1", "BANDWIDTH=800000", "CODECS=\"avc1.64001f,mp4a.40.2\"", "NAME=\"\""};
    std::mt19937 random(3986);
    std::size_t wellFormed = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text = whole[random() % std::size(whole)];
        for (std::size_t count = random() % 4; count > 0; --count)
            text += "," + whole[random() % std::size(whole)];
        for (std::size_t count = random() % 3; count > 0; --count)
            text[random() % text.size()] = odd[random() % odd.size()];
        const std::optional<Attributes> expected = plain::attributeMap(text);
        ASSERT_EQ(attributesOf(text), expected) << text;
        if (expected) ++wellFormed;
    }
    EXPECT_GT(wellFormed, 5000U);
    EXPECT_LT(wellFormed, 19000U);
}

TEST(VELHLSAttributeMap, ReadsBackWhatAMapIsWrittenAs) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> characters(' ', '~');
    std::uniform_int_distribution<std::size_t> lengths(1, 12);
    const auto randomText = [&](std::string_view excluded) {
        std::string text;
        for (std::size_t length = lengths(random); text.size() < length;) {
            const char character = static_cast<char>(characters(random));
            if (excluded.find(character) == std::string_view::npos) text += character;
        }
        return text;
    };
    for (int round = 0; round < 2000; ++round) {
        Attributes map;
        for (std::size_t count = lengths(random); count > 0; --count) {
            map[randomText("=,\"")] = randomText("\"");
        }
        std::string text;
        for (const auto& [name, value] : map) {
            if (!text.empty()) text += ',';
            text += name + "=\"" + value + "\"";
        }
        ASSERT_EQ(attributesOf(text), map) << text;
    }
}

constexpr std::size_t hostileLength = std::size_t{4} << 20;

std::string repeated(std::string_view piece, std::size_t length = hostileLength) {
    std::string text;
    text.reserve(length + piece.size());
    while (text.size() < length)
        text += piece;
    return text;
}

/// Time that this process computed, in seconds: it does not count what other processes take.
double computingTime() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

struct HostileText {
    std::string text;
    bool wellFormed;
};

// A search that goes to the end of the text for each attribute takes minutes here, and not a second.
TEST(VELHLSAttributeMap, TakesTimeLinearInTheText) {
    constexpr double generous = 10.0;
    const HostileText texts[] = {
        {repeated("A=1,") + "A=1", true},
        {repeated("A=1,"), false},
        {repeated("A=1,") + "A=\"1", true},
        {repeated("A=1,") + "B=\"x\"", true},
        {repeated("A=1,") + "B=\"" + repeated("x"), true},
        {repeated("A=1,") + "B", false},
        {repeated("A=\"\",") + "A=1", true},
        {repeated("A=\"x,y\",") + "B=1", true},
        {repeated("A=\","), false},
        {repeated("A=\"") + "A=1", true},
        {repeated("A=") + "A=1", true},
        {repeated("="), false},
        {"A" + repeated("="), true},
        {repeated(","), false},
        {"A=1" + repeated(","), false},
        {repeated("\""), false},
        {"A=" + repeated("\""), true},
        {"A=" + repeated("\"") + ",", false},
        {"A=\"" + repeated(","), false},
        {"A=\"" + repeated(",") + "\"", true},
        {repeated("A"), false},
        {repeated("A") + "=1", true},
        {"A=" + repeated("1"), true},
    };
    for (const HostileText& hostile : texts) {
        SCOPED_TRACE(hostile.text.substr(0, 16) + "..." + hostile.text.substr(hostile.text.size() - 16));
        const double start = computingTime();
        const std::unique_ptr<Attributes> map = VELHLSUtility::parseAttributeMap(hostile.text);
        EXPECT_LT(computingTime() - start, generous);
        EXPECT_EQ(map != nullptr, hostile.wellFormed);
    }
}

TEST(VELHLSAttributeMap, ReadsManyDifferentNamesInReasonableTime) {
    constexpr int count = 200000;
    std::string text;
    for (int number = 0; number < count; ++number) {
        if (number > 0) text += ',';
        text += "N" + std::to_string((number * 7919) % count) + "=" + std::to_string(number);
    }
    const double start = computingTime();
    const std::unique_ptr<Attributes> map = VELHLSUtility::parseAttributeMap(text);
    EXPECT_LT(computingTime() - start, 10.0);
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(map->size(), static_cast<std::size_t>(count));
    EXPECT_EQ(map->at("N0"), "0");
    EXPECT_EQ(map->at("N7919"), "1");
}

}  // namespace
