#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/Outcome.h"
#include "tests/support/RecordText.h"

namespace {

using namespace std::string_literals;
using record::rendered;

using Key = VELHLSProtectionData;
using Versions = std::vector<std::int32_t>;
using Change = std::function<void(Key&)>;

static_assert(std::is_same_v<std::underlying_type_t<Key::ProtectionMethod>, std::int32_t>);
static_assert(static_cast<std::int32_t>(Key::ProtectionMethod::None) == 0);
static_assert(static_cast<std::int32_t>(Key::ProtectionMethod::AES128) == 1);
static_assert(static_cast<std::int32_t>(Key::ProtectionMethod::SampleAES) == 2);

static_assert(std::is_same_v<decltype(Key::method), Key::ProtectionMethod>);
static_assert(std::is_same_v<decltype(Key::uri), std::string>);
static_assert(std::is_same_v<decltype(Key::iv), std::string>);
static_assert(std::is_same_v<decltype(Key::keyFormat), std::string>);
static_assert(std::is_same_v<decltype(Key::keyFormatVersions), Versions>);
static_assert(!std::is_polymorphic_v<Key>);
static_assert(std::is_same_v<decltype(&Key::parse), std::int32_t (Key::*)(const std::string&)>);
static_assert(std::is_same_v<decltype(&Key::validate), bool (Key::*)() const>);
static_assert(std::is_same_v<decltype(&Key::render), std::int32_t (Key::*)(std::string&) const>);

const std::string keyTag = "#EXT-X-KEY:";
const std::string sessionKeyTag = "#EXT-X-SESSION-KEY:";
const std::string iv = "0x0123456789abcdefABCDEF0123456789";
const std::string aes = "METHOD=AES-128,URI=\"k\"";

/// A key as the readers of playlists make it before they let it parse.
Key blank() {
    return {Key::None, "", "", "", {}};
}

/// A key that holds something in every member.
Key full() {
    return {Key::SampleAES, "old", iv, "oldformat", {7, 8}};
}

/// What a key that was read from the line renders; the status where the line is not acceptable.
std::string textOfLine(const std::string& line) {
    Key key = blank();
    const std::int32_t status = key.parse(line);
    return status == 0 ? rendered(key) : "parse " + std::to_string(status);
}

const std::string rejected = "parse -1";

std::string text(const std::string& attributes) {
    return textOfLine(keyTag + attributes);
}

std::string thrownBy(const std::string& attributes) {
    return playlist::thrownBy([&] {
        Key key = blank();
        static_cast<void>(key.parse(keyTag + attributes));
    });
}

void expectSameModel(const Key& seen, const Key& expected) {
    EXPECT_EQ(seen.method, expected.method);
    EXPECT_EQ(seen.uri, expected.uri);
    EXPECT_EQ(seen.iv, expected.iv);
    EXPECT_EQ(seen.keyFormat, expected.keyFormat);
    EXPECT_EQ(seen.keyFormatVersions, expected.keyFormatVersions);
}

// --- construction

TEST(VELHLSProtectionData, MethodsHaveTheTextsThatPlaylistsWrite) {
    EXPECT_EQ(VELHLSProtectionData::textOf(VELHLSProtectionData::None), "NONE");
    EXPECT_EQ(VELHLSProtectionData::textOf(VELHLSProtectionData::AES128), "AES-128");
    EXPECT_EQ(VELHLSProtectionData::textOf(VELHLSProtectionData::SampleAES), "SAMPLE-AES");
    for (const int noMethod : {-1, 3, std::numeric_limits<int>::max()}) {
        EXPECT_EQ(VELHLSProtectionData::textOf(static_cast<VELHLSProtectionData::ProtectionMethod>(noMethod)),
                  "");
    }
}

TEST(VELHLSProtectionData, ConstructorStoresEachArgumentInItsMember) {
    const Key key(Key::AES128, "uri", "iv", "format", {2, 1});

    EXPECT_EQ(key.method, Key::AES128);
    EXPECT_EQ(key.uri, "uri");
    EXPECT_EQ(key.iv, "iv");
    EXPECT_EQ(key.keyFormat, "format");
    EXPECT_EQ(key.keyFormatVersions, (Versions{2, 1}));
}

TEST(VELHLSProtectionData, ConstructorMakesAnEmptyListOfVersionsTheSingleVersionOne) {
    const std::vector<std::pair<Versions, Versions>> rows = {
        {{}, {1}}, {{1}, {1}}, {{0}, {0}}, {{2}, {2}}, {{1, 1}, {1, 1}}, {{-1, 5}, {-1, 5}},
    };
    for (const auto& [given, stored] : rows) {
        EXPECT_EQ(Key(Key::None, "", "", "", given).keyFormatVersions, stored)
            << testing::PrintToString(given);
    }
}

TEST(VELHLSProtectionData, ConstructorChecksNothing) {
    const Key key(Key::AES128, "", "wrong", "", {});
    EXPECT_EQ(key.iv, "wrong");
    EXPECT_FALSE(key.validate());
}

// --- parse: the tag

TEST(VELHLSProtectionData, ReadsAKeyThatHasNothingButAUri) {
    Key key = blank();
    ASSERT_EQ(key.parse("#EXT-X-KEY:METHOD=AES-128,URI=\"https://example.com/k?a=1,2\""), 0);
    expectSameModel(key, Key(Key::AES128, "https://example.com/k?a=1,2", "", "", {1}));
}

TEST(VELHLSProtectionData, ReadsEveryAttribute) {
    Key key = blank();
    ASSERT_EQ(key.parse("#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"k.bin\",IV=" + iv +
                        ",KEYFORMAT=\"com.example\",KEYFORMATVERSIONS=\"1/2/5\""),
              0);
    expectSameModel(key, Key(Key::SampleAES, "k.bin", iv, "com.example", {1, 2, 5}));
}

TEST(VELHLSProtectionData, ReadsASessionKeyAsItReadsAKey) {
    const std::vector<std::string> lists = {
        aes,
        aes + ",IV=" + iv,
        "METHOD=SAMPLE-AES,URI=\"k.bin\",IV=" + iv + ",KEYFORMAT=\"f\",KEYFORMATVERSIONS=\"1/2\"",
        "",
        "METHOD=AES-128",
        "URI=\"k\"",
        aes + ",IV=0x",
        aes + ",KEYFORMATVERSIONS=a",
        aes + ",",
    };
    for (const std::string& list : lists) {
        EXPECT_EQ(textOfLine(sessionKeyTag + list), textOfLine(keyTag + list)) << list;
    }
    EXPECT_EQ(textOfLine(sessionKeyTag + aes), "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n");
}

TEST(VELHLSProtectionData, RejectsEachPrefixOfItsTagNames) {
    for (const std::string& tag : {keyTag, sessionKeyTag}) {
        for (const std::string& prefix : record::properPrefixes(tag)) {
            EXPECT_EQ(textOfLine(prefix), rejected) << prefix;
            EXPECT_EQ(textOfLine(prefix + "\r\n"), rejected) << prefix;
            EXPECT_EQ(textOfLine(prefix + aes), rejected) << prefix;
            EXPECT_EQ(textOfLine(prefix + "METHOD=NONE"), rejected) << prefix;
        }
    }
}

TEST(VELHLSProtectionData, RejectsOtherTags) {
    const std::vector<std::string> tags = {
        "#EXT-X-KEY ",
        "#EXT-X-KEY :",
        "#EXT-X-KEY;",
        "#EXT-X-KEY2:",
        "#EXT-X-KEY\0:"s,
        "#ext-x-key:",
        "#EXT-X-Key:",
        " #EXT-X-KEY:",
        "##EXT-X-KEY:",
        "EXT-X-KEY:",
        "\xEF\xBB\xBF#EXT-X-KEY:",
        "\n#EXT-X-KEY:",
        "#EXT-X-MAP:",
        "#EXT-X-SESSION:",
        "#EXT-X-SESSION-DATA:",
        "#EXT-X-SESSION_KEY:",
        "#ext-x-session-key:",
        "#EXT-X-SESSION-KEY2:",
        " #EXT-X-SESSION-KEY:",
        "#EXT-X-SESSION-KEY :",
        "#EXT-X-KEY#EXT-X-KEY:",
    };
    for (const std::string& tag : tags)
        EXPECT_EQ(textOfLine(tag + aes), rejected) << tag;
}

TEST(VELHLSProtectionData, RejectsATagWithoutAttributes) {
    for (const std::string& tag : {keyTag, sessionKeyTag}) {
        for (const std::string lineEnd : {"", "\n", "\r", "\r\n", "\n\r", "\r\r\n\n"}) {
            EXPECT_EQ(textOfLine(tag + lineEnd), rejected) << tag;
        }
        EXPECT_EQ(textOfLine(tag + " "), rejected) << tag;
        EXPECT_EQ(textOfLine(tag + ":"), rejected) << tag;
    }
}

TEST(VELHLSProtectionData, TrailingLineEndsAreNoPartOfTheLine) {
    const std::vector<std::string> lists = {
        "METHOD=NONE",
        aes,
        "METHOD=AES-128,URI=k",
        "URI=\"k\",METHOD=AES-128",
        aes + ",IV=" + iv,
        aes + ",KEYFORMAT=f",
        aes + ",KEYFORMATVERSIONS=2",
    };
    for (const std::string& list : lists) {
        ASSERT_NE(text(list), rejected) << list;
        for (const std::string lineEnd : {"\n", "\r", "\r\n", "\n\r", "\n\n", "\r\r\n\n"}) {
            EXPECT_EQ(text(list + lineEnd), text(list)) << list << testing::PrintToString(lineEnd);
        }
    }
    EXPECT_EQ(text("METHOD=AES-128,URI=k\r\n"), "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n");
    EXPECT_EQ(text("METHOD=AES-128,URI=\r\n"), rejected);
    EXPECT_EQ(text(aes + ",\r\n"), rejected);
}

TEST(VELHLSProtectionData, OtherTrailingWhiteSpaceAndLineEndsWithinStay) {
    EXPECT_EQ(text("METHOD=NONE "), rejected);
    EXPECT_EQ(text("METHOD=NONE\t"), rejected);
    EXPECT_EQ(text("METHOD=NONE\0"s), rejected);
    EXPECT_EQ(text("METHOD=NONE\r\n "), rejected);
    EXPECT_EQ(text("METHOD=AES-128,URI=k \r\n"), "#EXT-X-KEY:METHOD=AES-128,URI=\"k \"\n");
    EXPECT_EQ(text("METHOD=AES-128,URI=\"a\rb\n\""), "#EXT-X-KEY:METHOD=AES-128,URI=\"a\rb\n\"\n");
}

// --- parse: METHOD

TEST(VELHLSProtectionData, NeedsAMethod) {
    for (const std::string list : {"URI=\"k\"", "X=1", "method=AES-128,URI=\"k\"", "Method=NONE",
                                   " METHOD=NONE", "METHOD =NONE", "METHODS=NONE", ":METHOD=NONE"}) {
        EXPECT_EQ(text(list), rejected) << list;
    }
}

TEST(VELHLSProtectionData, MethodIsOneOfThreeTexts) {
    std::vector<std::string> others = {
        "aes-128",     "Aes-128",    "AES-256",        "AES128",     " AES-128",
        "AES-128 ",    "AES-1280",   "AES-128-CTR",    "sample-aes", "SAMPLE-AES ",
        "SAMPLE-AES2", "SAMPLE_AES", "SAMPLE-AES-CTR", "none",       "None",
        " NONE",       "NONE ",      "NONE2",          "0",          "1",
        "2",           "AES-128\0"s, "NONE\0"s};
    for (const std::string_view method : {"NONE", "AES-128", "SAMPLE-AES"}) {
        for (const std::string& prefix : record::properPrefixes(method))
            others.push_back(prefix);
    }
    for (const std::string& other : others) {
        EXPECT_EQ(text("METHOD=\"" + other + "\",URI=\"k\""), rejected) << other;
        EXPECT_EQ(textOfLine(sessionKeyTag + "METHOD=\"" + other + "\",URI=\"k\""), rejected) << other;
    }
    EXPECT_EQ(text("METHOD=\"AES-128\",URI=\"k\""), text(aes));
    EXPECT_EQ(text("METHOD=\"NONE\""), "#EXT-X-KEY:METHOD=NONE\n");
}

TEST(VELHLSProtectionData, MethodNoneDropsAllOtherAttributes) {
    const std::vector<std::string> lists = {
        "METHOD=NONE",
        "METHOD=NONE,URI=\"k\"",
        "URI=\"k\",METHOD=NONE",
        "METHOD=NONE,IV=wrong",
        "METHOD=NONE,IV=" + iv,
        "METHOD=NONE,KEYFORMAT=\"f\"",
        "METHOD=NONE,KEYFORMATVERSIONS=\"1/2\"",
        "METHOD=NONE,KEYFORMATVERSIONS=\"\"",
        "METHOD=NONE,KEYFORMATVERSIONS=\"99999999999\"",
        "METHOD=NONE,KEYFORMATVERSIONS=a",
        "METHOD=NONE,X=1",
    };
    for (const std::string& list : lists) {
        SCOPED_TRACE(list);
        Key key = full();
        ASSERT_EQ(key.parse(keyTag + list), 0);
        expectSameModel(key, Key(Key::None, "", "", "", {1}));
        EXPECT_EQ(rendered(key), "#EXT-X-KEY:METHOD=NONE\n");
    }
}

TEST(VELHLSProtectionData, MethodNoneIsNoSessionKey) {
    for (const std::string list :
         {"METHOD=NONE", "METHOD=NONE,URI=\"k\"", "METHOD=NONE,KEYFORMATVERSIONS=\"\""}) {
        EXPECT_EQ(textOfLine(sessionKeyTag + list), rejected) << list;
    }
}

TEST(VELHLSProtectionData, ParseForgetsWhatTheRecordHeld) {
    Key key = full();
    ASSERT_EQ(key.parse("#EXT-X-KEY:METHOD=AES-128,URI=\"new\""), 0);
    expectSameModel(key, Key(Key::AES128, "new", "", "", {1}));

    Key withoutUri = full();
    EXPECT_EQ(withoutUri.parse("#EXT-X-KEY:METHOD=AES-128"), -1);
}

// --- parse: URI and KEYFORMAT

TEST(VELHLSProtectionData, EncryptingMethodsNeedAUri) {
    for (const std::string method : {"AES-128", "SAMPLE-AES"}) {
        for (const std::string tail :
             {"", ",URI=\"\"", ",uri=\"k\"", ",URL=\"k\"", ", URI=\"k\"", ",KEYFORMAT=\"k\""}) {
            EXPECT_EQ(text("METHOD=" + method + tail), rejected) << method << tail;
        }
        EXPECT_EQ(text("METHOD=" + method + ",URI=k"), "#EXT-X-KEY:METHOD=" + method + ",URI=\"k\"\n");
    }
}

TEST(VELHLSProtectionData, TakesUriAndKeyFormatAsTheyAreWritten) {
    for (const std::string& value :
         {"x"s, " "s, "a,b"s, "a=b"s, "data:text/plain;base64,AA=="s, "\xC3\xA9"s, "a\0b"s, "\0"s}) {
        SCOPED_TRACE(value);
        const std::string list = "METHOD=AES-128,URI=\"" + value + "\",KEYFORMAT=\"" + value + "\"";
        Key key = blank();
        ASSERT_EQ(key.parse(keyTag + list), 0);
        expectSameModel(key, Key(Key::AES128, value, "", value, {1}));
        EXPECT_EQ(rendered(key), keyTag + list + "\n");
    }
}

TEST(VELHLSProtectionData, KeepsAColonAtTheEndOfAValue) {
    EXPECT_EQ(text("METHOD=AES-128,URI=skd:"), "#EXT-X-KEY:METHOD=AES-128,URI=\"skd:\"\n");
}

TEST(VELHLSProtectionData, AnEmptyKeyFormatIsAsIfAbsent) {
    EXPECT_EQ(text(aes + ",KEYFORMAT=\"\""), text(aes));
}

TEST(VELHLSProtectionData, IgnoresOtherAttributes) {
    for (const std::string& other :
         {"iv=wrong"s, "IV2=wrong"s, " IV=wrong"s, "IV =wrong"s, "KEY-FORMAT=\"f\""s, "keyformat=\"f\""s,
          "KEYFORMATVERSION=a"s, "KEYFORMATVERSIONS2=a"s, "keyformatversions=\"\""s, "KEYID=0x1"s,
          "NAME=\"n\""s, "IV\0=wrong"s}) {
        EXPECT_EQ(text(aes + "," + other), text(aes)) << other;
        EXPECT_EQ(text(other + "," + aes), text(aes)) << other;
    }
}

TEST(VELHLSProtectionData, TheFirstOfRepeatedAttributesHolds) {
    EXPECT_EQ(text("METHOD=AES-128,METHOD=NONE,URI=\"k\",URI=\"l\""), text(aes));
    EXPECT_EQ(text("METHOD=NONE,METHOD=AES-128"), "#EXT-X-KEY:METHOD=NONE\n");
    EXPECT_EQ(text(aes + ",IV=" + iv + ",IV=wrong"), text(aes + ",IV=" + iv));
    EXPECT_EQ(text(aes + ",KEYFORMATVERSIONS=2,KEYFORMATVERSIONS=\"\""), text(aes + ",KEYFORMATVERSIONS=2"));
    EXPECT_EQ(text("METHOD=wrong," + aes), rejected);
}

// --- parse: IV

/// Texts that are no IV, nor are they empty.
std::vector<std::string> wrongIVs() {
    std::vector<std::string> texts = record::properPrefixes(iv);
    texts.erase(texts.begin());
    texts.insert(texts.end(), {iv + "0",
                               iv + iv,
                               iv + " ",
                               " " + iv,
                               iv + "\0"s,
                               iv.substr(2),
                               "00" + iv.substr(2),
                               "0X" + iv.substr(2),
                               "1x" + iv.substr(2),
                               "x0" + iv.substr(2),
                               " x" + iv.substr(2),
                               "0 " + iv.substr(2),
                               "\0x"s + iv.substr(2),
                               "0\0"s + iv.substr(2),
                               "00x" + iv.substr(3),
                               "0x-" + iv.substr(3),
                               "0x+" + iv.substr(3),
                               "0x0x" + iv.substr(4),
                               iv.substr(0, 33) + "h",
                               iv.substr(0, 33) + "\r"});
    for (std::size_t position = 2; position < iv.size(); ++position) {
        for (const char wrong : {'g', 'G', 'x', ' ', '/', ':', '@', '`', '-', '\0', '\xFF'}) {
            texts.push_back(iv);
            texts.back()[position] = wrong;
        }
    }
    return texts;
}

TEST(VELHLSProtectionData, KeepsAnInitializationVectorAsItIsWritten) {
    for (const std::string& vector :
         {iv, "0x" + std::string(32, '0'), "0x" + std::string(32, 'F'), "0x" + std::string(32, 'a')}) {
        EXPECT_EQ(text(aes + ",IV=" + vector), keyTag + aes + ",IV=" + vector + "\n");
        EXPECT_EQ(text(aes + ",IV=\"" + vector + "\""), keyTag + aes + ",IV=" + vector + "\n");
    }
}

TEST(VELHLSProtectionData, RejectsWrongInitializationVectors) {
    for (const std::string& wrong : wrongIVs()) {
        EXPECT_EQ(text(aes + ",IV=\"" + wrong + "\""), rejected) << wrong;
        EXPECT_EQ(textOfLine(sessionKeyTag + "IV=\"" + wrong + "\"," + aes), rejected) << wrong;
    }
}

TEST(VELHLSProtectionData, RejectsAnEmptyInitializationVectorThatWasWritten) {
    EXPECT_EQ(text(aes + ",IV=\"\""), rejected);
    EXPECT_EQ(text("IV=\"\"," + aes), rejected);
}

TEST(VELHLSProtectionData, TakesTheTwentyTwoHexadecimalDigitsAndNoOtherByte) {
    const std::string_view digits = "0123456789ABCDEFabcdef";
    for (int byte = 0; byte < 256; ++byte) {
        const char character = static_cast<char>(byte);
        const bool isDigit = digits.find(character) != std::string_view::npos;
        for (const std::size_t position : {std::size_t{2}, std::size_t{17}, std::size_t{33}}) {
            std::string vector = iv;
            vector[position] = character;
            EXPECT_EQ(Key(Key::AES128, "k", vector, "", {}).validate(), isDigit)
                << byte << " at " << position;
            EXPECT_EQ(text(aes + ",IV=\"" + vector + "\"") != rejected, isDigit)
                << byte << " at " << position;
        }
    }
}

// --- parse: KEYFORMATVERSIONS

TEST(VELHLSProtectionData, CutsKeyFormatVersionsAtEachSlash) {
    const std::vector<std::pair<std::string, Versions>> rows = {
        {"1", {1}},
        {"0", {0}},
        {"2", {2}},
        {"01", {1}},
        {"1/1", {1, 1}},
        {"1/2/5", {1, 2, 5}},
        {"5/2/1", {5, 2, 1}},
        {"10/020/0", {10, 20, 0}},
        {"2147483647", {2147483647}},
        {"1/2147483647/3", {1, 2147483647, 3}},
        {std::string(1000, '0') + "3", {3}},
    };
    for (const auto& [value, versions] : rows) {
        SCOPED_TRACE(value);
        Key key = blank();
        ASSERT_EQ(key.parse(keyTag + aes + ",KEYFORMATVERSIONS=\"" + value + "\""), 0);
        expectSameModel(key, Key(Key::AES128, "k", "", "", versions));
        Key unquoted = blank();
        ASSERT_EQ(unquoted.parse(keyTag + "KEYFORMATVERSIONS=" + value + "," + aes), 0);
        expectSameModel(unquoted, key);
    }
}

TEST(VELHLSProtectionData, RejectsKeyFormatVersionsWithOtherCharacters) {
    for (const std::string& value :
         {"a"s, " 1"s, "1 "s, "+1"s, "-1"s, "1,2"s, "1.0"s, "1/a"s, "a/1"s, "1/ 2"s, "1\\2"s, "0x1"s, "1;2"s,
          "1:2"s, "1\t"s, "1\r"s, "1\0"s, "\0"s, "\xEF\xBC\x91"s, " "s,
          // Characters are looked at before numbers are.
          "/a"s, "a/"s, "1//a"s, "99999999999/a"s, "99999999999 "s}) {
        EXPECT_EQ(text(aes + ",KEYFORMATVERSIONS=\"" + value + "\""), rejected) << value;
    }
}

TEST(VELHLSProtectionData, ThrowsForKeyFormatVersionsThatAreNoNumbers) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", "invalid_argument"},
        {"/", "invalid_argument"},
        {"//", "invalid_argument"},
        {"1/", "invalid_argument"},
        {"/1", "invalid_argument"},
        {"1//2", "invalid_argument"},
        {"1/2/", "invalid_argument"},
        {"2147483648", "out_of_range"},
        {"4294967297", "out_of_range"},
        {"9223372036854775808", "out_of_range"},
        {"1/99999999999999999999", "out_of_range"},
        {"99999999999999999999/1", "out_of_range"},
        // The first piece that is none throws.
        {"99999999999/", "out_of_range"},
        {"/99999999999", "invalid_argument"},
    };
    for (const auto& [value, thrown] : rows) {
        EXPECT_EQ(thrownBy(aes + ",KEYFORMATVERSIONS=\"" + value + "\""), thrown) << value;
        EXPECT_EQ(thrownBy("KEYFORMATVERSIONS=\"" + value + "\"," + aes), thrown) << value;
        const std::string sessionKey = sessionKeyTag + aes + ",KEYFORMATVERSIONS=\"" + value + "\"";
        EXPECT_EQ(playlist::thrownBy([&] { static_cast<void>(textOfLine(sessionKey)); }), thrown) << value;
    }
    EXPECT_THROW(static_cast<void>(text(aes + ",KEYFORMATVERSIONS=\"1/\"")), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(text(aes + ",KEYFORMATVERSIONS=2147483648")), std::out_of_range);
}

TEST(VELHLSProtectionData, TheFirstWrongAttributeByNameDecidesWhateverTheWrittenOrder) {
    const std::string noVersion = "KEYFORMATVERSIONS=\"\"";
    // The IV is read before the versions, and the URI is missed after them.
    EXPECT_EQ(text(aes + ",IV=wrong," + noVersion), rejected);
    EXPECT_EQ(text(noVersion + ",IV=wrong," + aes), rejected);
    EXPECT_EQ(thrownBy("METHOD=AES-128," + noVersion), "invalid_argument");
    EXPECT_EQ(thrownBy("METHOD=AES-128,URI=\"\"," + noVersion), "invalid_argument");
}

TEST(VELHLSProtectionData, TagMethodAndListAreLookedAtBeforeKeyFormatVersions) {
    const std::string noVersion = "KEYFORMATVERSIONS=\"\"";
    EXPECT_EQ(textOfLine("#EXT-X-KEY2:" + aes + "," + noVersion), rejected);
    EXPECT_EQ(text(noVersion), rejected);
    EXPECT_EQ(text("URI=\"k\"," + noVersion), rejected);
    EXPECT_EQ(text("METHOD=wrong,URI=\"k\"," + noVersion), rejected);
    EXPECT_EQ(text(aes + "," + noVersion + ","), rejected);
}

// --- parse: the attribute list

TEST(VELHLSProtectionData, RejectsMalformedAttributeLists) {
    for (const std::string& list : record::malformedLists) {
        SCOPED_TRACE(list);
        EXPECT_EQ(text(aes + "," + list), rejected);
        EXPECT_EQ(text(list + "," + aes), rejected);
        EXPECT_EQ(text("METHOD=NONE," + list), rejected);
        EXPECT_EQ(text(list), rejected);
        EXPECT_EQ(textOfLine(sessionKeyTag + aes + "," + list), rejected);
    }
}

TEST(VELHLSProtectionData, ReadsOrRejectsEachPrefixOfALine) {
    for (const std::string& tag : {keyTag, sessionKeyTag}) {
        const std::string line = tag + "METHOD=AES-128,URI=\"";
        for (const std::string& prefix : record::properPrefixes(line)) {
            EXPECT_EQ(textOfLine(prefix), rejected) << prefix;
        }
        EXPECT_EQ(textOfLine(line), rejected);
        EXPECT_EQ(textOfLine(line + "k"), "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n");
    }
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", text(aes)},
        {",", rejected},
        {",I", rejected},
        {",IV", rejected},
        {",IV=", rejected},
        {",IV=0", rejected},
        {",IV=0x", rejected},
        {",IV=" + iv.substr(0, 33), rejected},
        {",IV=" + iv, text(aes + ",IV=" + iv)},
        {",IV=" + iv + ",", rejected},
        {",IV=" + iv + ",KEYFORMAT", rejected},
        {",IV=" + iv + ",KEYFORMAT=", rejected},
        {",IV=" + iv + ",KEYFORMAT=\"", text(aes + ",IV=" + iv)},
        {",IV=" + iv + ",KEYFORMAT=\"f", keyTag + aes + ",IV=" + iv + ",KEYFORMAT=\"f\"\n"},
        {",IV=" + iv + ",KEYFORMAT=\"f\"", keyTag + aes + ",IV=" + iv + ",KEYFORMAT=\"f\"\n"},
        {",IV=" + iv + ",KEYFORMAT=\"f\",", rejected},
    };
    for (const auto& [tail, expected] : rows)
        EXPECT_EQ(text(aes + tail), expected) << tail;
}

// --- validate

TEST(VELHLSProtectionData, EncryptingMethodsAreValidWithAUri) {
    EXPECT_TRUE(Key(Key::AES128, "k", "", "", {}).validate());
    EXPECT_TRUE(Key(Key::SampleAES, "k", "", "", {}).validate());
    EXPECT_FALSE(Key(Key::AES128, "", "", "", {}).validate());
    EXPECT_FALSE(Key(Key::SampleAES, "", "", "", {}).validate());
    EXPECT_FALSE(Key(Key::AES128, "", iv, "f", {2}).validate());
}

TEST(VELHLSProtectionData, OtherMethodsAreValidWithAnyUri) {
    for (const std::int32_t number : {0, 3, 4, -1, 2147483647, std::numeric_limits<std::int32_t>::min()}) {
        const auto method = static_cast<Key::ProtectionMethod>(number);
        EXPECT_TRUE(Key(method, "", "", "", {}).validate()) << number;
        EXPECT_TRUE(Key(method, "k", "", "", {}).validate()) << number;
    }
}

TEST(VELHLSProtectionData, ChecksTheInitializationVectorForEveryMethod) {
    for (const std::int32_t number : {0, 1, 2, 3, -1}) {
        Key key(static_cast<Key::ProtectionMethod>(number), "k", iv, "", {});
        EXPECT_TRUE(key.validate()) << number;
        for (const std::string& wrong : wrongIVs()) {
            key.iv = wrong;
            EXPECT_FALSE(key.validate()) << number << ", " << wrong;
        }
        key.iv.clear();
        EXPECT_TRUE(key.validate()) << number;
    }
}

TEST(VELHLSProtectionData, ValidityDoesNotDependOnKeyFormatOrVersions) {
    Key key(Key::AES128, "k", "", "any \0 format"s, {0, -1});
    EXPECT_TRUE(key.validate());
    key.keyFormatVersions.clear();
    EXPECT_TRUE(key.validate());
}

// --- render

TEST(VELHLSProtectionData, RendersEachMember) {
    const std::vector<std::pair<Change, std::string>> rows = {
        {[](Key&) {}, "METHOD=AES-128,URI=\"k\""},
        {[](Key& key) { key.method = Key::SampleAES; }, "METHOD=SAMPLE-AES,URI=\"k\""},
        {[](Key& key) { key.uri = "a,b"; }, "METHOD=AES-128,URI=\"a,b\""},
        {[](Key& key) { key.iv = iv; }, "METHOD=AES-128,URI=\"k\",IV=" + iv},
        {[](Key& key) { key.keyFormat = "f"; }, "METHOD=AES-128,URI=\"k\",KEYFORMAT=\"f\""},
        {[](Key& key) { key.keyFormatVersions = {1}; }, "METHOD=AES-128,URI=\"k\""},
        {[](Key& key) { key.keyFormatVersions = {2}; }, "METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"2\""},
        {[](Key& key) { key.keyFormatVersions = {0}; }, "METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"0\""},
        {[](Key& key) {
             key.keyFormatVersions = {1, 1};
         },
         "METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"1/1\""},
        {[](Key& key) {
             key.keyFormatVersions = {1, 2, 5};
         },
         "METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"1/2/5\""},
        {[](Key& key) {
             key.keyFormatVersions = {5, 1};
         },
         "METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"5/1\""},
        {[](Key& key) {
             key.keyFormatVersions = {2147483647, std::numeric_limits<std::int32_t>::min(), -1};
         },
         "METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"2147483647/-2147483648/-1\""},
        {[](Key& key) {
             key = Key(Key::SampleAES, "u", iv, "f", {1, 2});
         },
         "METHOD=SAMPLE-AES,URI=\"u\",IV=" + iv + ",KEYFORMAT=\"f\",KEYFORMATVERSIONS=\"1/2\""},
    };
    for (const auto& [change, attributes] : rows) {
        Key key(Key::AES128, "k", "", "", {});
        change(key);
        EXPECT_EQ(rendered(key), keyTag + attributes + "\n");
    }
}

TEST(VELHLSProtectionData, RendersAListOfVersionsThatACallerEmptied) {
    Key key(Key::AES128, "k", "", "", {});
    key.keyFormatVersions.clear();
    EXPECT_EQ(rendered(key), "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"\"\n");
}

TEST(VELHLSProtectionData, RendersOfMethodNoneNothingButTheMethod) {
    EXPECT_EQ(rendered(blank()), "#EXT-X-KEY:METHOD=NONE\n");
    EXPECT_EQ(rendered(Key(Key::None, "k", iv, "f", {1, 2})), "#EXT-X-KEY:METHOD=NONE\n");
}

TEST(VELHLSProtectionData, RendersNothingForAValueThatIsNoMethod) {
    for (const std::int32_t number : {3, 4, -1, 2147483647, std::numeric_limits<std::int32_t>::min()}) {
        Key key(static_cast<Key::ProtectionMethod>(number), "k", iv, "f", {1, 2});
        std::string out = "kept";
        EXPECT_EQ(key.render(out), 0) << number;
        EXPECT_EQ(out, "kept") << number;

        key.iv = "wrong";
        EXPECT_EQ(key.render(out), -1) << number;
        EXPECT_EQ(out, "kept") << number;
    }
}

TEST(VELHLSProtectionData, RenderAppends) {
    std::string out = "kept\0|"s;
    EXPECT_EQ(Key(Key::AES128, "k", "", "", {}).render(out), 0);
    EXPECT_EQ(blank().render(out), 0);
    EXPECT_EQ(out, "kept\0|#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n#EXT-X-KEY:METHOD=NONE\n"s);
}

TEST(VELHLSProtectionData, RenderOfAnInvalidKeyLeavesTheTextUntouched) {
    const std::vector<Key> keys = {
        {Key::AES128, "", "", "", {}},
        {Key::SampleAES, "", iv, "f", {2}},
        {Key::AES128, "k", iv + "0", "", {}},
        {Key::AES128, "k", "0X" + iv.substr(2), "", {}},
        {Key::SampleAES, "k", iv.substr(0, 33), "", {}},
        {Key::SampleAES, "k", iv.substr(0, 33) + "g", "", {}},
        {Key::None, "", "0x", "", {}},
    };
    for (const Key& key : keys) {
        std::string out = "kept";
        EXPECT_EQ(key.render(out), -1) << key.uri << ", " << key.iv;
        EXPECT_EQ(out, "kept") << key.uri << ", " << key.iv;
    }
}

TEST(VELHLSProtectionData, RendersAttributesInAFixedOrder) {
    std::vector<std::string> attributes = {"IV=" + iv, "KEYFORMAT=\"f\"", "KEYFORMATVERSIONS=\"1/2\"",
                                           "METHOD=AES-128", "URI=\"k\""};
    std::sort(attributes.begin(), attributes.end());
    do {
        std::string list;
        for (const std::string& attribute : attributes)
            list += (list.empty() ? "" : ",") + attribute;
        EXPECT_EQ(text(list), "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=" + iv +
                                  ",KEYFORMAT=\"f\",KEYFORMATVERSIONS=\"1/2\"\n")
            << list;
    } while (std::next_permutation(attributes.begin(), attributes.end()));
}

TEST(VELHLSProtectionData, WhatWasRenderedReadsBackTheSame) {
    const std::vector<std::string> lines = {
        keyTag + "METHOD=NONE",
        keyTag + "METHOD=NONE,URI=\"dropped\"",
        keyTag + aes,
        sessionKeyTag + aes,
        keyTag + "URI=unquoted,METHOD=SAMPLE-AES,X=1\r\n",
        keyTag + "METHOD=AES-128,URI=\"a,b=c\",IV=\"" + iv + "\"",
        keyTag + aes + ",KEYFORMAT=\" , \",KEYFORMATVERSIONS=0007/2147483647",
        keyTag + aes + ",KEYFORMATVERSIONS=\"1/1\"",
        keyTag + aes + ",KEYFORMATVERSIONS=\"1\"",
        sessionKeyTag + "METHOD=SAMPLE-AES,URI=\"\0\",KEYFORMAT=\"f\0\""s,
        keyTag + "METHOD=AES-128,URI=\"not closed",
    };
    for (const std::string& line : lines) {
        SCOPED_TRACE(line);
        Key first = blank();
        ASSERT_EQ(first.parse(line), 0);
        const std::string written = rendered(first);
        Key second = full();
        ASSERT_EQ(second.parse(written), 0);
        expectSameModel(second, first);
        EXPECT_EQ(rendered(second), written);
    }
}

// --- large input

TEST(VELHLSProtectionData, ReadsAndRendersMegabytesQuickly) {
    const std::string large(record::megabyte, 'c');
    const std::string list = "METHOD=AES-128,URI=\"" + large + "\",KEYFORMAT=\"" + large + "\"";
    const double seconds = record::secondsOf([&] {
        EXPECT_TRUE(text(list) == keyTag + list + "\n");
        EXPECT_TRUE(text(list + std::string(record::megabyte, '\r')) == keyTag + list + "\n");
        EXPECT_EQ(text(aes + ",IV=0x" + large), rejected);
    });
    EXPECT_LT(seconds, record::quickSeconds);
}

TEST(VELHLSProtectionData, ReadsManyAttributesQuickly) {
    const std::string list = record::manyAttributes() + aes;
    const double seconds = record::secondsOf([&] { EXPECT_EQ(text(list), text(aes)); });
    EXPECT_LT(seconds, record::quickSeconds);
}

TEST(VELHLSProtectionData, ReadsAMegabyteOfKeyFormatVersionsQuickly) {
    std::string versions = "2";
    while (versions.size() < record::megabyte)
        versions += "/2";
    const std::string nines(record::megabyte, '9');
    const double seconds = record::secondsOf([&] {
        const std::string list = aes + ",KEYFORMATVERSIONS=\"" + versions + "\"";
        EXPECT_TRUE(text(list) == keyTag + list + "\n");
        EXPECT_EQ(thrownBy(aes + ",KEYFORMATVERSIONS=" + nines), "out_of_range");
    });
    EXPECT_LT(seconds, record::quickSeconds);
}

TEST(VELHLSProtectionData, ReadsALineThatItHoldsItself) {
    VELHLSProtectionData key(VELHLSProtectionData::None, "", "", "", {});
    key.uri =
        "#EXT-X-KEY:METHOD=AES-128,KEYFORMAT=\"a format that is long enough\",URI=\"of/a/key/that/is/long\"";
    ASSERT_EQ(key.parse(key.uri), 0);
    EXPECT_EQ(key.uri, "of/a/key/that/is/long");
    EXPECT_EQ(key.keyFormat, "a format that is long enough");
}

TEST(VELHLSProtectionData, AFailedParseLeavesTheRecordAsItWas) {
    VELHLSProtectionData key(VELHLSProtectionData::SampleAES, "old.bin", "", "old", {2, 3});
    EXPECT_EQ(key.parse("#EXT-X-KEY:METHOD=AES-128,KEYFORMAT=\"new\",URI=\"\""), -1);
    EXPECT_EQ(key.parse("#EXT-X-KEY:METHOD=AES-128,URI=\"new.bin\",IV=0x1"), -1);
    EXPECT_EQ(key.method, VELHLSProtectionData::SampleAES);
    EXPECT_EQ(key.uri, "old.bin");
    EXPECT_EQ(key.keyFormat, "old");
    EXPECT_EQ(key.keyFormatVersions, (std::vector<std::int32_t>{2, 3}));
}

}  // namespace
