#include "velhls/document/VELHLSDocument.h"

#include <cstddef>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "velhls/document/VELHLSSyntax.h"

namespace {

using namespace std::string_literals;

const char* nameOf(VELHLSLine::Kind kind) {
    switch (kind) {
        case VELHLSLine::Blank:
            return "blank";
        case VELHLSLine::Uri:
            return "uri";
        case VELHLSLine::Comment:
            return "comment";
        case VELHLSLine::Tag:
            return "tag";
    }
    return "?";
}

/// The only line of the text: its kind, name and value.
std::string described(const std::string& text) {
    const VELHLSDocument document(text);
    if (document.lineCount() != 1) return std::to_string(document.lineCount()) + " lines";
    const VELHLSLine line = document.line(1);
    return std::string(nameOf(line.kind)) + " <" + std::string(line.name) + (line.hasColon ? ">:<" : "><") +
           std::string(line.value) + ">";
}

TEST(VELHLSDocument, TellsWhatALineIs) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"#EXTM3U", "tag <EXTM3U><>"},
        {"#EXTINF:6.006,Intro: part one", "tag <EXTINF>:<6.006,Intro: part one>"},
        {"#EXT-X-KEY:", "tag <EXT-X-KEY>:<>"},
        {"#EXT-X-ENDLIST ", "tag <EXT-X-ENDLIST><>"},
        {"#EXT-X-EndList", "tag <EXT-X-EndList><>"},
        {"#EXT-X-KEY METHOD=NONE", "tag <EXT-X-KEY><>"},
        {"#EXT", "tag <EXT><>"},
        {"#EXT:1", "tag <EXT>:<1>"},
        {"  #EXTINF:6,", "tag <EXTINF>:<6,>"},
        {"\xEF\xBB\xBF#EXTM3U", "tag <EXTM3U><>"},
        {"#", "comment <><>"},
        {"# by hand: yes", "comment <>< by hand: yes>"},
        {"#ext-x-key:1", "comment <><ext-x-key:1>"},
        {"#ZOR-PATTERN_START:hour", "comment <ZOR-PATTERN_START>:<hour>"},
        {"#OTHER-VENDOR", "comment <OTHER-VENDOR><>"},
        {"", "0 lines"},
        {"\n", "blank <><>"},
        {"\r\n", "blank <><>"},
        {" \t ", "blank <><>"},
        {"segment1.ts", "uri <><segment1.ts>"},
        {" a b \t", "uri <><a b>"},
        {"\0"s, "uri <><"s + "\0>"s},
        {"\xEF\xBB\xBF", "blank <><>"},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(described(text), expected) << text;
}

TEST(VELHLSDocument, TakesAByteOrderMarkForACharacterAfterTheFirstLine) {
    const VELHLSDocument document("#EXTM3U\n\xEF\xBB\xBF#EXTINF:6,\n");
    EXPECT_EQ(document.line(2).kind, VELHLSLine::Uri);
}

TEST(VELHLSDocument, KnowsTheEndOfEachLine) {
    const VELHLSDocument document("a\r\nb\n\r\r\nc\rd");
    ASSERT_EQ(document.lineCount(), 4U);
    EXPECT_EQ(document.line(1).text, "a");
    EXPECT_EQ(document.line(1).ending, "\r\n");
    EXPECT_EQ(document.line(2).ending, "\n");
    EXPECT_EQ(document.line(3).text, "\r");
    EXPECT_EQ(document.line(3).ending, "\r\n");
    EXPECT_EQ(document.line(4).text, "c\rd");
    EXPECT_EQ(document.line(4).ending, "");
    EXPECT_EQ(document.line(4).offset, 8U);
}

TEST(VELHLSDocument, HasNoOtherLines) {
    const VELHLSDocument document("a\nb\n");
    EXPECT_THROW(static_cast<void>(document.line(0)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(document.line(3)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(VELHLSDocument("").line(1)), std::out_of_range);
}

TEST(VELHLSDocument, FindsLinesByPlaceAndByName) {
    const VELHLSDocument document("#EXTM3U\n#EXT-X-MEDIA:A\nx\n#EXT-X-MEDIA:B\n");
    EXPECT_EQ(document.lineAt(0), 1U);
    EXPECT_EQ(document.lineAt(7), 1U);
    EXPECT_EQ(document.lineAt(8), 2U);
    EXPECT_EQ(document.lineAt(1000), 4U);
    EXPECT_EQ(VELHLSDocument("").lineAt(0), 0U);
    const auto renditions = document.linesNamed("EXT-X-MEDIA");
    ASSERT_EQ(renditions.size(), 2U);
    EXPECT_EQ(renditions[1].number, 4U);
    EXPECT_EQ(renditions[1].column(renditions[1].value), 14U);
    EXPECT_TRUE(document.linesNamed("").empty());
    EXPECT_TRUE(document.linesNamed("EXT-X-MEDI").empty());
}

TEST(VELHLSDocument, TellsTheKindOfPlaylist) {
    const std::string variant = "#EXT-X-STREAM-INF:BANDWIDTH=1\nv\n";
    const std::string segment = "#EXTINF:6,\ns\n";
    const auto kind = [](const std::string& text) { return VELHLSDocument(text).kind(); };
    EXPECT_EQ(kind(""), VELHLSDocument::Neither);
    EXPECT_EQ(kind("#EXTM3U\n#EXT-X-VERSION:3\nfile\n"), VELHLSDocument::Neither);
    EXPECT_EQ(kind(variant), VELHLSDocument::Master);
    EXPECT_EQ(kind(segment), VELHLSDocument::Media);
    EXPECT_EQ(kind("#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"u\"\n"), VELHLSDocument::Master);
    EXPECT_EQ(kind(variant + segment), VELHLSDocument::Master);
    EXPECT_EQ(kind(segment + variant), VELHLSDocument::Media);
    EXPECT_EQ(kind(variant + segment + segment), VELHLSDocument::Media);
    EXPECT_EQ(kind(segment + variant + variant), VELHLSDocument::Master);
    EXPECT_EQ(kind("#EXT-X-ENDLIST\n" + variant), VELHLSDocument::Master);
    EXPECT_EQ(kind("#EXT-X-ENDLIST\n" + variant + segment), VELHLSDocument::Master);
    EXPECT_EQ(kind("#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA:A=1\n"), VELHLSDocument::Media);
    EXPECT_EQ(kind("#EXTM3U\n#EXT-X-MEDIA:A=1\n#EXT-X-TARGETDURATION:6\n"), VELHLSDocument::Master);
}

TEST(VELHLSDocument, ListsUrisOfLinesAndAttributes) {
    const VELHLSDocument document(
        "#EXT-X-MEDIA:TYPE=AUDIO,URI=\"a.m3u8\"\n#EXT-X-STREAM-INF:CODECS=\"c\"\n v.m3u8 "
        "\n#EXT-X-KEY:METHOD=NONE\n"
        "#EXT-X-DATERANGE:ID=\"1\",X-ASSET-URI=\"ad.m3u8\",X-COM-URI=\"none\"\n#EXT-X-OTHER:URI=\"o\",SERVER-"
        "URI=\"p\"\n"
        "#EXT-X-MAP:URI=bare\n#EXT-X-CONTENT-STEERING:SERVER-URI=\"s\"\n# "
        "URI=\"c\"\n#EXTINF:6,URI=\"title\"\n");
    std::vector<std::string> uris;
    for (const VELHLSUri& uri : document.uris())
        uris.push_back(std::to_string(uri.line) + std::string(uri.attribute) + "=" + std::string(uri.text));
    EXPECT_THAT(uris, testing::ElementsAre("1URI=a.m3u8", "3=v.m3u8", "5X-ASSET-URI=ad.m3u8", "6URI=o",
                                           "8SERVER-URI=s"));
}

/// The line after the changes, or why it is refused.
std::string changed(const std::string& line, const std::vector<VELHLSAttributeChange>& changes) {
    const VELHLSDocument document(line);
    try {
        return document.apply({document.changeAttributes(1, changes)}).text;
    } catch (const std::invalid_argument& refused) {
        return std::string("refused: ") + refused.what();
    }
}

const std::string rendition = "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"a, b\"";

TEST(VELHLSDocumentEdits, SetAttributesAsTheirTypesAreWritten) {
    EXPECT_EQ(changed(rendition, {{"TYPE", "VIDEO"}}),
              "#EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"g\",NAME=\"a, b\"");
    EXPECT_EQ(changed(rendition, {{"NAME", "c"}}), "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"c\"");
    EXPECT_EQ(changed(rendition, {{"LANGUAGE", "de"}}), rendition + ",LANGUAGE=\"de\"");
    EXPECT_EQ(changed(rendition, {{"DEFAULT", "YES"}, {"CHANNELS", "2"}}),
              rendition + ",DEFAULT=YES,CHANNELS=\"2\"");
    EXPECT_EQ(changed("#EXT-X-STREAM-INF:BANDWIDTH=1", {{"CLOSED-CAPTIONS", "NONE"}}),
              "#EXT-X-STREAM-INF:BANDWIDTH=1,CLOSED-CAPTIONS=NONE");
    EXPECT_EQ(changed("#EXT-X-STREAM-INF:BANDWIDTH=1", {{"CLOSED-CAPTIONS", "cc"}}),
              "#EXT-X-STREAM-INF:BANDWIDTH=1,CLOSED-CAPTIONS=\"cc\"");
    EXPECT_EQ(changed("#EXT-X-DATERANGE:ID=\"1\"", {{"X-COM-A", "0xF"}, {"X-COM-B", "\"text\""}}),
              "#EXT-X-DATERANGE:ID=\"1\",X-COM-A=0xF,X-COM-B=\"text\"");
    EXPECT_EQ(changed("#EXT-X-OTHER", {{"A", "\"1, 2\""}, {"B", "3"}}), "#EXT-X-OTHER:A=\"1, 2\",B=3");
    EXPECT_EQ(changed("#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=1", {{"NOMINAL_VIDEO_BITRATE", "2"}}),
              "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=2");
}

TEST(VELHLSDocumentEdits, RemoveAttributesWithOneCommaEach) {
    EXPECT_EQ(changed(rendition, {{"TYPE", std::nullopt}}), "#EXT-X-MEDIA:GROUP-ID=\"g\",NAME=\"a, b\"");
    EXPECT_EQ(changed(rendition, {{"GROUP-ID", std::nullopt}}), "#EXT-X-MEDIA:TYPE=AUDIO,NAME=\"a, b\"");
    EXPECT_EQ(changed(rendition, {{"NAME", std::nullopt}}), "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\"");
    EXPECT_EQ(changed(rendition, {{"NAME", std::nullopt}, {"TYPE", std::nullopt}}),
              "#EXT-X-MEDIA:GROUP-ID=\"g\"");
    EXPECT_EQ(
        changed(rendition, {{"NAME", std::nullopt}, {"TYPE", std::nullopt}, {"GROUP-ID", std::nullopt}}),
        "#EXT-X-MEDIA:");
    EXPECT_EQ(changed(rendition, {{"URI", std::nullopt}}), rendition);
    EXPECT_EQ(changed("#A:X=1,B=2,X=3", {{"X", std::nullopt}}), "#A:B=2");
}

TEST(VELHLSDocumentEdits, MakeOneEditOfAllChangesOfAList) {
    EXPECT_EQ(changed(rendition, {{"TYPE", std::nullopt}, {"NAME", "n"}, {"URI", "u"}}),
              "#EXT-X-MEDIA:GROUP-ID=\"g\",NAME=\"n\",URI=\"u\"");
    EXPECT_EQ(changed(rendition, {{"NAME", std::nullopt}, {"URI", "u"}}),
              "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",URI=\"u\"");
    EXPECT_EQ(changed(rendition, {{"URI", "u"}, {"URI", "w"}, {"TYPE", "VIDEO"}, {"TYPE", "AUDIO"}}),
              rendition + ",URI=\"w\"");
    EXPECT_EQ(changed("#A:X=1,B=2,X=3", {{"X", "4"}}), "#A:X=4,B=2,X=4");
    EXPECT_EQ(changed(rendition, {}), rendition);
}

TEST(VELHLSDocumentEdits, CoverNoMoreThanWhatChanges) {
    const VELHLSDocument document(rendition);
    const VELHLSEdit set = document.changeAttributes(1, {{"GROUP-ID", "h"}});
    EXPECT_EQ(set.offset, rendition.find("\"g\""));
    EXPECT_EQ(set.length, 3U);
    EXPECT_EQ(set.replacement, "\"h\"");
    const VELHLSEdit none = document.changeAttributes(1, {{"TYPE", "AUDIO"}});
    EXPECT_EQ(none.length, 0U);
    EXPECT_EQ(none.replacement, "");
}

TEST(VELHLSDocumentEdits, LeaveBrokenListsAsTheyAreBesideTheChange) {
    EXPECT_EQ(changed("#A:X=1, B = 2 ,c=3", {{"B", "4"}}), "#A:X=1, B = 4 ,c=3");
    EXPECT_EQ(changed("#A:X=1,", {{"B", "4"}}), "#A:X=1,B=4");
    EXPECT_EQ(changed("#A:X=1,,Y=2", {{"B", "4"}}), "#A:X=1,,Y=2,B=4");
    EXPECT_EQ(changed("#A:X=\"1\"2,Y=2", {{"X", "4"}}), "#A:X=4,Y=2");
    EXPECT_EQ(changed("#A:X,Y=2", {{"X", "4"}}), "#A:X=4,Y=2");
    EXPECT_EQ(changed("#A:X=\"1", {{"X", "4"}}), "#A:X=4");
    EXPECT_EQ(changed("#A:X=\"1", {{"Y", "4"}}),
              "refused: X: nothing can be added after a quote that is not closed");
    EXPECT_EQ(changed("#A:X=\"1", {{"X", "4"}, {"Y", "5"}}), "#A:X=4,Y=5");
}

TEST(VELHLSDocumentEdits, RefuseWhatAListCannotHold) {
    const std::string quoted = "refused: NAME: a quoted string holds no quote and no line end";
    EXPECT_EQ(changed(rendition, {{"NAME", "a\"b"}}), quoted);
    EXPECT_EQ(changed(rendition, {{"NAME", "a\nb"}}), quoted);
    EXPECT_EQ(changed(rendition, {{"NAME", "a\r"}}), quoted);
    const std::string bare =
        "refused: TYPE: a value without quotes is not empty, and holds no comma, quote or white space";
    for (const char* value : {"", "a,b", "a b", "\"a\"", "a\n"})
        EXPECT_EQ(changed(rendition, {{"TYPE", value}}), bare) << value;
    EXPECT_EQ(changed("#A", {{"B", "\"x\"y\""}}),
              "refused: B: a quoted string holds no quote and no line end");
    EXPECT_EQ(changed("#A", {{"B", "\""}}),
              "refused: B: a value without quotes is not empty, and holds no comma, quote or white space");
    EXPECT_EQ(changed("#A", {{"b", "1"}}), "refused: \"b\" is no attribute's name: expected A-Z, 0-9 and -");
    EXPECT_EQ(changed("#A", {{"", "1"}}), "refused: \"\" is no attribute's name: expected A-Z, 0-9 and -");
    EXPECT_EQ(changed("segment1.ts", {{"B", "1"}}), "refused: the line has no tag");
    EXPECT_EQ(changed("#A junk", {{"B", "1"}}),
              "refused: something other than a colon follows the tag's name");
    EXPECT_THROW(static_cast<void>(VELHLSDocument("#A").changeAttributes(2, {})), std::out_of_range);
}

TEST(VELHLSDocumentEdits, ReplaceValues) {
    const VELHLSDocument document("#EXTM3U\r\n#EXT-X-VERSION:3\r\nuri");
    EXPECT_EQ(document.apply({document.replaceValue(2, "7")}).text, "#EXTM3U\r\n#EXT-X-VERSION:7\r\nuri");
    EXPECT_EQ(document.apply({document.replaceValue(1, "x")}).text, "#EXTM3U:x\r\n#EXT-X-VERSION:3\r\nuri");
    EXPECT_THROW(static_cast<void>(document.replaceValue(2, "7\n8")), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(document.replaceValue(2, "7\r")), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(document.replaceValue(3, "7")), std::invalid_argument);
}

TEST(VELHLSDocumentEdits, ReplaceUris) {
    const VELHLSDocument document(" a.ts \n#EXT-X-MAP:URI=\"i\"\n");
    const std::vector<VELHLSUri> uris = document.uris();
    ASSERT_EQ(uris.size(), 2U);
    EXPECT_EQ(
        document.apply({document.replaceUri(uris[0], "b.ts"), document.replaceUri(uris[1], "#j k")}).text,
        " b.ts \n#EXT-X-MAP:URI=\"#j k\"\n");
    for (const char* refused : {"", "#b", " b", "b ", "b\nc", "b\r"})
        EXPECT_THROW(static_cast<void>(document.replaceUri(uris[0], refused)), std::invalid_argument)
            << refused;
    for (const char* refused : {"", "a\"b", "a\nb", "a\rb"})
        EXPECT_THROW(static_cast<void>(document.replaceUri(uris[1], refused)), std::invalid_argument)
            << refused;
    const VELHLSUri elsewhere = {1, "a.ts", {}};
    EXPECT_THROW(static_cast<void>(document.replaceUri(elsewhere, "b")), std::invalid_argument);
}

TEST(VELHLSDocumentEdits, InsertLinesWithTheEndsOfTheirNeighbours) {
    const auto before = [](const std::string& text, std::size_t line, const std::string& inserted) {
        const VELHLSDocument document(text);
        return document.apply({document.insertBefore(line, inserted)}).text;
    };
    const auto after = [](const std::string& text, std::size_t line, const std::string& inserted) {
        const VELHLSDocument document(text);
        return document.apply({document.insertAfter(line, inserted)}).text;
    };
    EXPECT_EQ(before("a\nb\n", 2, "x"), "a\nx\nb\n");
    EXPECT_EQ(before("a\r\nb\r\n", 1, "x\ny"), "x\r\ny\r\na\r\nb\r\n");
    EXPECT_EQ(before("a\nb\r\n", 2, "x"), "a\nx\r\nb\r\n");
    EXPECT_EQ(after("a\nb\r\n", 1, "x"), "a\nx\nb\r\n");
    EXPECT_EQ(before("a\r\nb", 2, "x"), "a\r\nx\r\nb");
    EXPECT_EQ(before("a\r\nb", 3, "x"), "a\r\nb\r\nx");
    EXPECT_EQ(after("a\nb", 2, "x\r\ny"), "a\nb\nx\ny");
    EXPECT_EQ(after("a\nb\n", 2, "x"), "a\nb\nx\n");
    EXPECT_EQ(after("a\nb\n", 0, "x"), "x\na\nb\n");
    EXPECT_EQ(before("", 1, "x"), "x\n");
    EXPECT_EQ(after("", 0, "x"), "x\n");
    EXPECT_EQ(before("a", 1, "x"), "x\na");
    EXPECT_EQ(before("a\n", 1, ""), "\na\n");
    const VELHLSDocument document("a\n");
    EXPECT_THROW(static_cast<void>(document.insertBefore(0, "x")), std::out_of_range);
    EXPECT_THROW(static_cast<void>(document.insertBefore(3, "x")), std::out_of_range);
    EXPECT_THROW(static_cast<void>(document.insertAfter(2, "x")), std::out_of_range);
}

TEST(VELHLSDocumentEdits, KeepTheOrderOfInsertionsAtOnePlace) {
    const VELHLSDocument document("a\nb");
    EXPECT_EQ(document
                  .apply({document.insertAfter(1, "1"), document.removeLine(2), document.insertBefore(2, "2"),
                          document.insertAfter(1, "3")})
                  .text,
              "a\n1\n2\n3\n");
    EXPECT_EQ(document.apply({document.insertAfter(2, "1"), document.insertAfter(2, "2")}).text,
              "a\nb\n1\n2");
}

TEST(VELHLSDocumentEdits, RemoveLines) {
    const VELHLSDocument document("a\r\nb\nc\nd");
    EXPECT_EQ(document.apply({document.removeLines(2, 3)}).text, "a\r\nd");
    EXPECT_EQ(document.apply({document.removeLine(4), document.removeLine(1)}).text, "b\nc\n");
    EXPECT_THROW(static_cast<void>(document.removeLines(2, 1)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(document.removeLines(0, 1)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(document.removeLines(1, 5)), std::out_of_range);
}

TEST(VELHLSDocumentEdits, SayWhichOfThemOverlap) {
    const VELHLSDocument document("0123456789");
    const auto overlap = [&](const std::vector<VELHLSEdit>& edits) { return document.apply(edits).overlap; };
    const VELHLSEdit middle = {3, 4, "x"};
    EXPECT_FALSE(overlap({middle, {7, 1, ""}, {1, 2, ""}, {3, 0, "a"}, {7, 0, "b"}}));
    EXPECT_EQ(document.apply({middle, {7, 1, ""}, {1, 2, ""}, {3, 0, "a"}, {7, 0, "b"}}).text, "0axb89");
    EXPECT_EQ(overlap({middle, {0, 1, ""}, {6, 1, ""}}), std::pair(std::size_t{0}, std::size_t{2}));
    EXPECT_EQ(overlap({{6, 1, ""}, middle}), std::pair(std::size_t{0}, std::size_t{1}));
    EXPECT_EQ(overlap({{5, 0, "inside"}, middle}), std::pair(std::size_t{0}, std::size_t{1}));
    EXPECT_EQ(overlap({middle, middle}), std::pair(std::size_t{0}, std::size_t{1}));
    EXPECT_EQ(document.apply({middle, middle}).text, "");
    EXPECT_THROW(static_cast<void>(document.apply({{10, 1, ""}})), std::out_of_range);
    EXPECT_THROW(static_cast<void>(document.apply({{11, 0, ""}})), std::out_of_range);
    EXPECT_THROW(static_cast<void>(document.apply({{1, std::string::npos, ""}})), std::out_of_range);
}

TEST(VELHLSTagDefinition, KnowsTheTagsAndTheirAttributes) {
    for (const VELHLSTagDefinition& tag : VELHLSTagDefinition::all()) {
        SCOPED_TRACE(tag.name);
        EXPECT_EQ(VELHLSTagDefinition::find(tag.name), &tag);
        EXPECT_EQ(tag.section.empty(), tag.profile == VELHLSProfile::vendor);
        EXPECT_TRUE(tag.attributes.empty() || tag.form == VELHLSTagDefinition::AttributeList);
        EXPECT_EQ(tag.values.empty(), tag.form != VELHLSTagDefinition::Word);
        const bool isTag = tag.name.substr(0, 3) == "EXT";
        EXPECT_EQ(VELHLSDocument("#" + std::string(tag.name)).line(1).kind,
                  isTag ? VELHLSLine::Tag : VELHLSLine::Comment);
        for (const VELHLSAttributeDefinition& attribute : tag.attributes) {
            SCOPED_TRACE(attribute.name);
            EXPECT_EQ(tag.findAttribute(attribute.name), &attribute);
            EXPECT_TRUE(attribute.content == VELHLSAttributeDefinition::Text ||
                        attribute.type == VELHLSAttributeDefinition::QuotedString);
            const bool hasWords = attribute.type == VELHLSAttributeDefinition::EnumeratedString ||
                                  attribute.type == VELHLSAttributeDefinition::QuotedOrEnumerated;
            EXPECT_EQ(attribute.values.empty(), !hasWords);
        }
    }
    for (const char* name :
         {"", "EXT", "EXTM3", "EXTM3U8", "EXT-X-UNKNOWN", "ext-x-key", "EXT-X-GAP ", "EXT-X-PARTS"})
        EXPECT_EQ(VELHLSTagDefinition::find(name), nullptr) << name;
}

TEST(VELHLSTagDefinition, FindsAttributesByTheBeginningOfTheirNames) {
    const VELHLSTagDefinition* const dateRange = VELHLSTagDefinition::find("EXT-X-DATERANGE");
    ASSERT_NE(dateRange, nullptr);
    EXPECT_EQ(dateRange->findAttribute("X-COM-EXAMPLE")->name, "X-*");
    EXPECT_EQ(dateRange->findAttribute("X-ASSET-URI")->name, "X-ASSET-URI");
    EXPECT_EQ(dateRange->findAttribute("XY"), nullptr);
    EXPECT_EQ(VELHLSTagDefinition::find("EXT-X-I-FRAME-STREAM-INF")->findAttribute("AUDIO"), nullptr);
    EXPECT_NE(VELHLSTagDefinition::find("EXT-X-STREAM-INF")->findAttribute("AUDIO"), nullptr);
}

/// The first attribute of the line is as the tables want it.
bool hasType(const std::string& line) {
    const VELHLSDocument document(line);
    const VELHLSAttribute attribute = *document.line(1).attributes().begin();
    return document.line(1).definition->findAttribute(attribute.name)->hasType(attribute);
}

TEST(VELHLSAttributeDefinition, TellsWhetherAValueHasItsType) {
    for (const char* line :
         {"#EXT-X-STREAM-INF:BANDWIDTH=1", "#EXT-X-STREAM-INF:CODECS=\"\"",
          "#EXT-X-STREAM-INF:RESOLUTION=1x1", "#EXT-X-STREAM-INF:FRAME-RATE=25.000",
          "#EXT-X-STREAM-INF:CLOSED-CAPTIONS=NONE", "#EXT-X-STREAM-INF:CLOSED-CAPTIONS=\"NONE\"",
          "#EXT-X-KEY:METHOD=WHATEVER", "#EXT-X-KEY:IV=0XAB", "#EXT-X-START:TIME-OFFSET=-1.5",
          "#EXT-X-DATERANGE:X-A=1.5", "#EXT-X-DATERANGE:X-A=0xA", "#EXT-X-DATERANGE:X-A=\"a\""}) {
        EXPECT_TRUE(hasType(line)) << line;
    }
    for (const char* line :
         {"#EXT-X-STREAM-INF:BANDWIDTH=\"1\"", "#EXT-X-STREAM-INF:BANDWIDTH=1.5",
          "#EXT-X-STREAM-INF:CODECS=avc1", "#EXT-X-STREAM-INF:CODECS=\"a\r\"",
          "#EXT-X-STREAM-INF:RESOLUTION=1X1", "#EXT-X-STREAM-INF:FRAME-RATE=-1",
          "#EXT-X-STREAM-INF:CLOSED-CAPTIONS=cc", "#EXT-X-KEY:METHOD=\"NONE\"", "#EXT-X-KEY:IV=AB",
          "#EXT-X-START:TIME-OFFSET=+1", "#EXT-X-DATERANGE:X-A=-1", "#EXT-X-DATERANGE:X-A=word"}) {
        EXPECT_FALSE(hasType(line)) << line;
    }
}

TEST(VELHLSAttributeDefinition, TellsWhichWordsAreAllowed) {
    const auto* const method = VELHLSTagDefinition::find("EXT-X-KEY")->findAttribute("METHOD");
    EXPECT_TRUE(method->allows("NONE"));
    EXPECT_TRUE(method->allows("SAMPLE-AES"));
    EXPECT_TRUE(method->allows("SAMPLE-AES-CTR"));
    EXPECT_FALSE(method->allows("SAMPLE-AES-CTR", VELHLSProfile::rfc8216));
    EXPECT_FALSE(method->allows("AES"));
    EXPECT_FALSE(method->allows(""));
    EXPECT_FALSE(VELHLSTagDefinition::find("EXT-X-SESSION-KEY")->findAttribute("METHOD")->allows("NONE"));
    EXPECT_TRUE(VELHLSTagDefinition::find("EXT-X-KEY")->findAttribute("URI")->allows("anything"));
}

/// Takes 8 GiB of memory, so only who asks for it gets it: VELHLS_TEST_HUGE=1.
TEST(VELHLSDocument, RefusesTextsOfFourGibibytes) {
    if (std::getenv("VELHLS_TEST_HUGE") == nullptr) GTEST_SKIP() << "VELHLS_TEST_HUGE is not set";
    std::string text(VELHLSDocument::maximumBytes, 'a');
    text.back() = '\n';
    EXPECT_EQ(VELHLSDocument(text).lineCount(), 1U);
    text += "a";
    EXPECT_THROW(VELHLSDocument(std::move(text)), std::length_error);
}

}  // namespace
