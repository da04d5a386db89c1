#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/RecordText.h"

namespace {

using namespace std::string_literals;
using record::rendered;

using SessionData = VELHLSManifestSessionData;
using SessionDataPointer = std::shared_ptr<SessionData>;

static_assert(std::is_same_v<decltype(SessionData::dataId), std::string>);
static_assert(std::is_same_v<decltype(SessionData::value), std::string>);
static_assert(std::is_same_v<decltype(SessionData::uri), std::string>);
static_assert(std::is_same_v<decltype(SessionData::language), std::string>);
static_assert(
    std::is_same_v<decltype(&SessionData::parseSessionData), SessionDataPointer (*)(const std::string&)>);
static_assert(
    std::is_same_v<decltype(&SessionData::render), std::int32_t (SessionData::*)(std::string&) const>);
static_assert(std::is_same_v<decltype(&SessionData::validate), bool (SessionData::*)() const>);

const std::string sessionDataTag = "#EXT-X-SESSION-DATA:";

SessionDataPointer parsed(const std::string& attributes) {
    return SessionData::parseSessionData(sessionDataTag + attributes);
}

/// What the entry with these attributes renders; "null" where there is none.
std::string text(const std::string& attributes) {
    const SessionDataPointer entry = parsed(attributes);
    return entry == nullptr ? "null" : rendered(*entry);
}

void expectMembers(const SessionDataPointer& entry, const std::string& dataId, const std::string& value,
                   const std::string& uri, const std::string& language) {
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->dataId, dataId);
    EXPECT_EQ(entry->value, value);
    EXPECT_EQ(entry->uri, uri);
    EXPECT_EQ(entry->language, language);
}

// --- construction

TEST(VELHLSManifestSessionData, ConstructorStoresEachArgumentInItsMember) {
    expectMembers(std::make_shared<SessionData>("id", "value", "uri", "language"), "id", "value", "uri",
                  "language");
    expectMembers(std::make_shared<SessionData>("", "", "", ""), "", "", "", "");
}

// --- parseSessionData

TEST(VELHLSManifestSessionData, ReadsEveryAttributeButTheFirst) {
    expectMembers(parsed("X=1,DATA-ID=\"id\",VALUE=\"v\",LANGUAGE=\"en\""), "id", "v", "", "en");
    expectMembers(parsed("X=1,DATA-ID=\"id\",URI=\"u\",LANGUAGE=\"en\""), "id", "", "u", "en");
    expectMembers(parsed("X=1,DATA-ID=\"id\",VALUE=\"v\""), "id", "v", "", "");
    expectMembers(parsed("X=1,DATA-ID=id,VALUE=v,LANGUAGE=l"), "id", "v", "", "l");
}

TEST(VELHLSManifestSessionData, LosesTheAttributeThatStandsFirst) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"DATA-ID=\"id\",VALUE=\"v\"", "null"},
        {"DATA-ID=\"id\",URI=\"u\"", "null"},
        {"DATA-ID=\"id\",VALUE=\"v\",LANGUAGE=\"en\"", "null"},
        {"VALUE=\"v\",DATA-ID=\"id\"", "null"},
        {"URI=\"u\",DATA-ID=\"id\"", "null"},
        {"VALUE=\"v\",DATA-ID=\"id\",URI=\"u\"", "#EXT-X-SESSION-DATA:DATA-ID=\"id\",URI=\"u\"\n"},
        {"URI=\"u\",DATA-ID=\"id\",VALUE=\"v\"", "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n"},
        {"LANGUAGE=\"en\",DATA-ID=\"id\",VALUE=\"v\"", "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n"},
        {"LANGUAGE=\"en\",URI=\"u\",DATA-ID=\"id\"", "#EXT-X-SESSION-DATA:DATA-ID=\"id\",URI=\"u\"\n"},
        {"VALUE=\"\",DATA-ID=\"id\",URI=\"u\"", "#EXT-X-SESSION-DATA:DATA-ID=\"id\",URI=\"u\"\n"},
        {"X=1,DATA-ID=\"id\",VALUE=\"v\"", "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n"},
    };
    for (const auto& [list, expected] : rows)
        EXPECT_EQ(text(list), expected) << list;
}

TEST(VELHLSManifestSessionData, AnAttributeThatWasLostFirstCountsWhereItIsRepeated) {
    EXPECT_EQ(text("DATA-ID=\"lost\",DATA-ID=\"id\",VALUE=\"v\""),
              "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n");
    EXPECT_EQ(text("VALUE=\"lost\",VALUE=\"v\",DATA-ID=\"id\""),
              "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n");
}

// The tag's colon is the name of the first attribute here, so its name is not empty.
TEST(VELHLSManifestSessionData, TheFirstAttributeNeedsNoName) {
    EXPECT_EQ(text("=1,DATA-ID=\"id\",VALUE=\"v\""), "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n");
    EXPECT_EQ(text("=\"\",DATA-ID=\"id\",VALUE=\"v\""), "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n");
    EXPECT_EQ(text("=,DATA-ID=\"id\",VALUE=\"v\""), "null");
    EXPECT_EQ(text("X=1,=1,DATA-ID=\"id\",VALUE=\"v\""), "null");
}

TEST(VELHLSManifestSessionData, RejectsEachOrderInWhichDataIdIsFirst) {
    std::vector<std::string> attributes = {"DATA-ID=\"id\"", "LANGUAGE=\"en\"", "VALUE=\"v\"", "X=1"};
    std::sort(attributes.begin(), attributes.end());
    do {
        std::string list;
        for (const std::string& attribute : attributes)
            list += (list.empty() ? "" : ",") + attribute;
        const bool rejected = attributes.front() == "DATA-ID=\"id\"" || attributes.front() == "VALUE=\"v\"";
        EXPECT_EQ(parsed(list) == nullptr, rejected) << list;
    } while (std::next_permutation(attributes.begin(), attributes.end()));
}

TEST(VELHLSManifestSessionData, IgnoresOtherAttributes) {
    for (const std::string& other :
         {"data-id=\"x\""s, "DATA_ID=\"x\""s, "value=\"x\""s, "VALUES=\"x\""s, "uri=\"x\""s, "URL=\"x\""s,
          " URI=\"x\""s, "URI =\"x\""s, "language=\"x\""s, "LANG=\"x\""s, ":URI=\"x\""s, "FORMAT=JSON"s,
          "LANGUAGE\0=\"x\""s}) {
        SCOPED_TRACE(other);
        expectMembers(parsed("X=1,DATA-ID=\"id\",VALUE=\"v\"," + other), "id", "v", "", "");
        expectMembers(parsed(other + ",DATA-ID=\"id\",VALUE=\"v\""), "id", "v", "", "");
    }
}

TEST(VELHLSManifestSessionData, TakesValuesAsTheyAreWritten) {
    for (const std::string& value :
         {"x"s, " "s, "a,b"s, "a=b"s, "not a language"s, "\xC3\xA9"s, "a\0b"s, "\0"s, "\r"s}) {
        SCOPED_TRACE(value);
        const std::string quoted = "\"" + value + "\"";
        const std::string begin = "X=1,DATA-ID=" + quoted + ",LANGUAGE=" + quoted;
        expectMembers(parsed(begin + ",VALUE=" + quoted), value, value, "", value);
        expectMembers(parsed(begin + ",URI=" + quoted), value, "", value, value);
        EXPECT_EQ(text(begin + ",VALUE=" + quoted), "#EXT-X-SESSION-DATA:DATA-ID=" + quoted +
                                                        ",VALUE=" + quoted + ",LANGUAGE=" + quoted + "\n");
    }
}

TEST(VELHLSManifestSessionData, RejectsWhatDoesNotValidate) {
    const std::vector<std::string> lists = {
        "",
        "X=1",
        "X=1,VALUE=\"v\"",
        "X=1,URI=\"u\"",
        "X=1,DATA-ID=\"id\"",
        "X=1,DATA-ID=\"id\",LANGUAGE=\"en\"",
        "X=1,DATA-ID=\"\",VALUE=\"v\"",
        "X=1,DATA-ID=\"id\",VALUE=\"\"",
        "X=1,DATA-ID=\"id\",URI=\"\"",
        "X=1,DATA-ID=\"id\",VALUE=\"\",URI=\"\"",
        "X=1,DATA-ID=\"id\",VALUE=\"v\",URI=\"u\"",
    };
    for (const std::string& list : lists)
        EXPECT_EQ(parsed(list), nullptr) << list;
}

TEST(VELHLSManifestSessionData, AnEmptyValueOrUriIsAsIfAbsent) {
    EXPECT_EQ(text("X=1,DATA-ID=\"id\",VALUE=\"\",URI=\"u\""),
              "#EXT-X-SESSION-DATA:DATA-ID=\"id\",URI=\"u\"\n");
    EXPECT_EQ(text("X=1,DATA-ID=\"id\",VALUE=\"v\",URI=\"\""),
              "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n");
}

TEST(VELHLSManifestSessionData, TheFirstOfRepeatedAttributesHolds) {
    expectMembers(
        parsed("X=1,DATA-ID=\"a\",DATA-ID=\"b\",VALUE=\"c\",VALUE=\"d\",LANGUAGE=\"e\",LANGUAGE=\"f\""), "a",
        "c", "", "e");
}

TEST(VELHLSManifestSessionData, RejectsMalformedAttributeLists) {
    const std::string valid = "X=1,DATA-ID=\"id\",VALUE=\"v\"";
    for (const std::string& list : record::malformedLists) {
        EXPECT_EQ(parsed(valid + "," + list), nullptr) << list;
        EXPECT_EQ(parsed("X=1," + list + ",DATA-ID=\"id\",VALUE=\"v\""), nullptr) << list;
        EXPECT_EQ(parsed(list), nullptr) << list;
    }
}

TEST(VELHLSManifestSessionData, ReadsOrRejectsEachPrefixOfAnAttributeList) {
    const std::string line = sessionDataTag + "X=1,DATA-ID=\"id\",VALUE=\"";
    for (const std::string& prefix : record::properPrefixes(line)) {
        EXPECT_EQ(SessionData::parseSessionData(prefix), nullptr) << prefix;
    }
    EXPECT_EQ(SessionData::parseSessionData(line), nullptr);

    const std::string begin = "X=1,DATA-ID=\"id\",VALUE=\"v";
    const std::string expected = "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", expected},
        {"\"", expected},
        {"\",", "null"},
        {"\",L", "null"},
        {"\",LANGUAGE", "null"},
        {"\",LANGUAGE=", "null"},
        {"\",LANGUAGE=\"", expected},
        {"\",LANGUAGE=\"e", "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\",LANGUAGE=\"e\"\n"},
        {"\",LANGUAGE=\"e\"", "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\",LANGUAGE=\"e\"\n"},
    };
    for (const auto& [tail, output] : rows)
        EXPECT_EQ(text(begin + tail), output) << begin << tail;
}

TEST(VELHLSManifestSessionData, RejectsEachPrefixOfItsTagName) {
    for (const std::string& prefix : record::properPrefixes(sessionDataTag)) {
        EXPECT_EQ(SessionData::parseSessionData(prefix), nullptr) << prefix;
        EXPECT_EQ(SessionData::parseSessionData(prefix + "X=1,DATA-ID=\"id\",VALUE=\"v\""), nullptr)
            << prefix;
    }
    EXPECT_EQ(SessionData::parseSessionData(sessionDataTag), nullptr);
}

TEST(VELHLSManifestSessionData, RejectsOtherTags) {
    for (const std::string& tag :
         {"#EXT-X-SESSION-DATA"s, "#EXT-X-SESSION-DATA "s, "#EXT-X-SESSION-DATA :"s, "#EXT-X-SESSION-DATA;"s,
          "#EXT-X-SESSION-DATA2:"s, "#EXT-X-SESSION-DATA\0:"s, "#EXT-X-SESSION-KEY:"s,
          "#ext-x-session-data:"s, "#EXT-X-Session-DATA:"s, " #EXT-X-SESSION-DATA:"s,
          "##EXT-X-SESSION-DATA:"s, "EXT-X-SESSION-DATA:"s, "\xEF\xBB\xBF#EXT-X-SESSION-DATA:"s,
          "#EXT-X-MEDIA:"s, "\n#EXT-X-SESSION-DATA:"s}) {
        EXPECT_EQ(SessionData::parseSessionData(tag + "X=1,DATA-ID=\"id\",VALUE=\"v\""), nullptr) << tag;
    }
}

// --- validate

TEST(VELHLSManifestSessionData, IsValidWithADataIdAndEitherAValueOrAUri) {
    struct Row {
        SessionData entry;
        bool valid;
    };
    const std::vector<Row> rows = {
        {{"id", "v", "", ""}, true},   {{"id", "", "u", ""}, true},   {{"id", "v", "", "en"}, true},
        {{"id", "", "u", "en"}, true}, {{"id", "v", "u", ""}, false}, {{"id", "", "", ""}, false},
        {{"id", "", "", "en"}, false}, {{"", "v", "", ""}, false},    {{"", "", "u", ""}, false},
        {{"", "v", "u", "en"}, false}, {{"", "", "", ""}, false},     {{" ", " ", "", ""}, true},
    };
    for (const auto& [entry, valid] : rows) {
        EXPECT_EQ(entry.validate(), valid)
            << "\"" << entry.dataId << "\", \"" << entry.value << "\", \"" << entry.uri << "\"";
    }
}

// --- render

TEST(VELHLSManifestSessionData, RendersDataIdThenValueOrUriThenLanguage) {
    EXPECT_EQ(rendered(SessionData("id", "v", "", "")), "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n");
    EXPECT_EQ(rendered(SessionData("id", "", "u", "")), "#EXT-X-SESSION-DATA:DATA-ID=\"id\",URI=\"u\"\n");
    EXPECT_EQ(rendered(SessionData("id", "v", "", "en")),
              "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\",LANGUAGE=\"en\"\n");
    EXPECT_EQ(rendered(SessionData("id", "", "u", "en")),
              "#EXT-X-SESSION-DATA:DATA-ID=\"id\",URI=\"u\",LANGUAGE=\"en\"\n");
}

TEST(VELHLSManifestSessionData, RenderAppends) {
    std::string out = "kept\0|"s;
    EXPECT_EQ(SessionData("a", "b", "", "").render(out), 0);
    EXPECT_EQ(SessionData("c", "", "d", "").render(out), 0);
    EXPECT_EQ(out,
              "kept\0|#EXT-X-SESSION-DATA:DATA-ID=\"a\",VALUE=\"b\"\n"
              "#EXT-X-SESSION-DATA:DATA-ID=\"c\",URI=\"d\"\n"s);
}

TEST(VELHLSManifestSessionData, RenderOfAnInvalidEntryLeavesTheTextUntouched) {
    for (const SessionData& entry : {SessionData("", "v", "", ""), SessionData("", "", "u", ""),
                                     SessionData("id", "", "", "en"), SessionData("id", "v", "u", "")}) {
        std::string out = "kept";
        EXPECT_EQ(entry.render(out), -1);
        EXPECT_EQ(out, "kept");
    }
}

TEST(VELHLSManifestSessionData, WhatWasRenderedDoesNotReadBackUntilAnotherAttributeIsFirst) {
    for (const std::string list :
         {"X=1,DATA-ID=\"id\",VALUE=\"v\"", "X=1,DATA-ID=\"a,b\",URI=\"u=1,2\",LANGUAGE=\"en\"",
          "LANGUAGE=\"lost\",VALUE=unquoted,DATA-ID=id"}) {
        SCOPED_TRACE(list);
        const SessionDataPointer first = parsed(list);
        ASSERT_NE(first, nullptr);
        std::string line = rendered(*first);
        line.pop_back();
        EXPECT_EQ(SessionData::parseSessionData(line), nullptr);

        line.insert(sessionDataTag.size(), "X=1,");
        expectMembers(SessionData::parseSessionData(line), first->dataId, first->value, first->uri,
                      first->language);
    }
}

// --- large input

TEST(VELHLSManifestSessionData, ReadsAndRendersMegabytesQuickly) {
    const std::string large(record::megabyte, 'c');
    const std::string attributes =
        "DATA-ID=\"" + large + "\",VALUE=\"" + large + "\",LANGUAGE=\"" + large + "\"";
    const double seconds = record::secondsOf([&] {
        EXPECT_TRUE(text("X=\"" + large + "\"," + attributes) == sessionDataTag + attributes + "\n");
    });
    EXPECT_LT(seconds, record::quickSeconds);
}

TEST(VELHLSManifestSessionData, ReadsManyAttributesQuickly) {
    const std::string list = record::manyAttributes() + "DATA-ID=\"id\",VALUE=\"v\"";
    const double seconds =
        record::secondsOf([&] { EXPECT_EQ(text(list), "#EXT-X-SESSION-DATA:DATA-ID=\"id\",VALUE=\"v\"\n"); });
    EXPECT_LT(seconds, record::quickSeconds);
}

}  // namespace
