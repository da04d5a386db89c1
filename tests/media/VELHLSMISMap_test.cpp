#include "velhls/media/VELHLSMISMap.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

static_assert(!std::is_polymorphic_v<VELHLSMISMap>);
static_assert(std::is_same_v<decltype(VELHLSMISMap::uri), std::string>);
static_assert(std::is_same_v<decltype(VELHLSMISMap::byteRange), std::shared_ptr<VELHLSByteRange>>);
static_assert(
    std::is_same_v<decltype(std::declval<VELHLSMISMap&>().parse(std::declval<const std::string&>())),
                   std::int32_t>);
static_assert(std::is_same_v<decltype(std::declval<const VELHLSMISMap&>().validate()), bool>);
static_assert(
    std::is_same_v<decltype(std::declval<const VELHLSMISMap&>().render(std::declval<std::string&>())),
                   std::int32_t>);

/// What the record renders after it has parsed the line; "-1" where it does not.
std::string rendered(const std::string& line) {
    VELHLSMISMap map;
    std::string out;
    const bool good = map.parse(line) == 0 && map.render(out) == 0;
    return good ? out : "-1";
}

std::string written(const std::shared_ptr<VELHLSByteRange>& range) {
    if (range == nullptr) return "none";
    return std::to_string(range->length) + "@" + std::to_string(range->offset);
}

VELHLSMISMap mapOf(const std::string& uri, std::int64_t length, std::int64_t offset) {
    VELHLSMISMap map;
    map.uri = uri;
    map.byteRange = std::make_shared<VELHLSByteRange>();
    map.byteRange->length = length;
    map.byteRange->offset = offset;
    return map;
}

struct ParseRow {
    std::string line;
    std::string uri;
    std::string range;
};

void expectParses(const std::vector<ParseRow>& rows) {
    for (const ParseRow& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.line));
        VELHLSMISMap map;
        EXPECT_EQ(map.parse(row.line), 0);
        EXPECT_EQ(map.uri, row.uri);
        EXPECT_EQ(written(map.byteRange), row.range);
    }
}

/// Expects failures that are told before anything of the record is written.
void expectRejects(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        SCOPED_TRACE(testing::PrintToString(line));
        VELHLSMISMap map = mapOf("kept", 7, 8);
        const std::shared_ptr<VELHLSByteRange> range = map.byteRange;
        EXPECT_EQ(map.parse(line), -1);
        EXPECT_EQ(map.uri, "kept");
        EXPECT_EQ(map.byteRange, range);
        EXPECT_EQ(written(range), "7@8");
    }
}

/// Expects that the BYTERANGE of the line fails.
void expectRejectsRange(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        SCOPED_TRACE(testing::PrintToString(line));
        VELHLSMISMap map;
        EXPECT_EQ(map.parse(line), -1);
        EXPECT_EQ(map.uri, "");
        EXPECT_EQ(written(map.byteRange), "0@-1");
        EXPECT_FALSE(map.validate());
    }
}

TEST(VELHLSMISMap, StartsWithoutUriAndByteRange) {
    const VELHLSMISMap map;
    EXPECT_EQ(map.uri, "");
    EXPECT_EQ(map.byteRange, nullptr);
    EXPECT_FALSE(map.validate());
}

TEST(VELHLSMISMap, HoldsUriBeforeByteRange) {
    const VELHLSMISMap map;
    EXPECT_LT(static_cast<const void*>(&map.uri), static_cast<const void*>(&map.byteRange));
}

TEST(VELHLSMISMap, ReadsUri) {
    EXPECT_EQ(rendered(R"(#EXT-X-MAP:URI="init.mp4")"), R"(#EXT-X-MAP:URI="init.mp4")"
                                                        "\n");
}

TEST(VELHLSMISMap, ReadsUriAndByteRange) {
    EXPECT_EQ(rendered(R"(#EXT-X-MAP:URI="init.mp4",BYTERANGE="720@0")"),
              R"(#EXT-X-MAP:URI="init.mp4",BYTERANGE="720@0")"
              "\n");
}

TEST(VELHLSMISMap, ReadsTheAttributesInAnyOrder) {
    EXPECT_EQ(rendered(R"(#EXT-X-MAP:BYTERANGE="720",URI="init.mp4")"),
              R"(#EXT-X-MAP:URI="init.mp4",BYTERANGE="720")"
              "\n");
}

TEST(VELHLSMISMap, ReadsTheAttributesAsTheListDeliversThem) {
    expectParses({{R"(#EXT-X-MAP:URI="init.mp4")", "init.mp4", "none"},
                  {R"(#EXT-X-MAP:URI=init.mp4)", "init.mp4", "none"},
                  {R"(#EXT-X-MAP:URI="a,b=c:d")", "a,b=c:d", "none"},
                  {R"(#EXT-X-MAP:URI=dropped"init.mp4")", "init.mp4", "none"},
                  {R"(#EXT-X-MAP:URI="init.mp4)", "init.mp4", "none"},
                  {R"(#EXT-X-MAP:URI=" init ")", " init ", "none"},
                  {R"(#EXT-X-MAP:URI="{$x}")", "{$x}", "none"},
                  {R"(#EXT-X-MAP:URI="first",URI="second")", "first", "none"},
                  {R"(#EXT-X-MAP:URI="i",BYTERANGE="720@0")", "i", "720@0"},
                  {R"(#EXT-X-MAP:URI="i",BYTERANGE=720@0)", "i", "720@0"},
                  {R"(#EXT-X-MAP:URI="i",BYTERANGE="720")", "i", "720@-1"},
                  {R"(#EXT-X-MAP:URI="i",BYTERANGE="0")", "i", "0@-1"},
                  {R"(#EXT-X-MAP:URI="i",BYTERANGE="0@9")", "i", "0@9"},
                  {R"(#EXT-X-MAP:URI="i",BYTERANGE="1@2",BYTERANGE="3@4")", "i", "1@2"},
                  {R"(#EXT-X-MAP:URI=i,BYTERANGE="9223372036854775807@9223372036854775807")", "i",
                   "9223372036854775807@9223372036854775807"},
                  {R"(#EXT-X-MAP:URI="v/range/0-9")", "v/range/0-9", "none"}});
}

TEST(VELHLSMISMap, IgnoresOtherAttributes) {
    expectParses({{R"(#EXT-X-MAP:X="1",URI="i",Y=2)", "i", "none"},
                  {R"(#EXT-X-MAP:URI="i", BYTERANGE="x")", "i", "none"},
                  {R"(#EXT-X-MAP:URI="i",byterange="x")", "i", "none"},
                  {R"(#EXT-X-MAP:URI="i",BYTERANGES="x")", "i", "none"},
                  {R"(#EXT-X-MAP:uri="x",URI="i")", "i", "none"}});
}

TEST(VELHLSMISMap, LeavesTrailingLineEndsOut) {
    for (const char* end : {"", "\r\n", "\n", "\r", "\n\r", "\r\r\n\n\r"}) {
        SCOPED_TRACE(testing::PrintToString(end));
        expectParses({{R"(#EXT-X-MAP:URI="init.mp4")"s + end, "init.mp4", "none"},
                      {"#EXT-X-MAP:URI=init.mp4"s + end, "init.mp4", "none"},
                      {R"(#EXT-X-MAP:URI="i",BYTERANGE=720@0)"s + end, "i", "720@0"}});
    }
}

TEST(VELHLSMISMap, KeepsLineEndsInTheMiddle) {
    expectParses({{"#EXT-X-MAP:URI=\"in\r\nit\"", "in\r\nit", "none"},
                  {"#EXT-X-MAP:URI=init\r\n ", "init\r\n ", "none"}});
}

TEST(VELHLSMISMap, ReadsAUriThatEndsWithAColon) {
    expectParses({{"#EXT-X-MAP:URI=urn:", "urn:", "none"}});
}

TEST(VELHLSMISMap, KeepsNullBytes) {
    expectParses({{"#EXT-X-MAP:URI=\"a\0b\""s, "a\0b"s, "none"}});
}

TEST(VELHLSMISMap, ReadsAnEmptyUriThatDoesNotValidate) {
    for (const char* line : {R"(#EXT-X-MAP:URI="")", R"(#EXT-X-MAP:URI=")", R"(#EXT-X-MAP:URI="",X=1)"}) {
        SCOPED_TRACE(line);
        VELHLSMISMap map;
        EXPECT_EQ(map.parse(line), 0);
        EXPECT_EQ(map.uri, "");
        EXPECT_FALSE(map.validate());
        EXPECT_EQ(rendered(line), "-1");
    }
}

TEST(VELHLSMISMap, RejectsOtherTags) {
    expectRejects({"", "#", "#EXT-X-MA", "#EXT-X-MAP", "#EXT-X-MAP;URI=\"i\"", "#EXT-X-MAPS:URI=\"i\"",
                   "#EXT-X-MAP :URI=\"i\"", "#EXT-X-map:URI=\"i\"", "#ext-x-map:URI=\"i\"",
                   " #EXT-X-MAP:URI=\"i\"", "EXT-X-MAP:URI=\"i\"", "##EXT-X-MAP:URI=\"i\"",
                   "#EXT-X-KEY:URI=\"i\"", "#EXTINF:URI=\"i\"", "\r\n", "URI=\"i\"",
                   "\0#EXT-X-MAP:URI=\"i\""s});
}

TEST(VELHLSMISMap, RejectsAnEmptyAttributeList) {
    expectRejects(
        {"#EXT-X-MAP:", "#EXT-X-MAP:\r\n", "#EXT-X-MAP:\n", "#EXT-X-MAP:\r", "#EXT-X-MAP:\r\r\n\n"});
}

TEST(VELHLSMISMap, RejectsAMalformedAttributeList) {
    expectRejects({"#EXT-X-MAP::", "#EXT-X-MAP: ", "#EXT-X-MAP:,", "#EXT-X-MAP:=", "#EXT-X-MAP:URI",
                   "#EXT-X-MAP:URI=", "#EXT-X-MAP:URI=,X=1", "#EXT-X-MAP:=\"i\"", "#EXT-X-MAP:URI=\"i\",",
                   "#EXT-X-MAP:URI=\"i\"x,X=1", "#EXT-X-MAP:URI=\"i,X=1", "#EXT-X-MAP:\"URI=i\"",
                   "#EXT-X-MAP:URI=\"i\",BYTERANGE", "#EXT-X-MAP:URI=\"i\",BYTERANGE=",
                   "#EXT-X-MAP:URI=\"i\",BYTERANGE=\r\n", "#EXT-X-MAP:URI=\"i\",,BYTERANGE=\"1@0\""});
}

TEST(VELHLSMISMap, RejectsAMissingUri) {
    expectRejects({R"(#EXT-X-MAP:BYTERANGE="720@0")", R"(#EXT-X-MAP:BYTERANGE="x")", R"(#EXT-X-MAP:uri="i")",
                   R"(#EXT-X-MAP: URI="i")", R"(#EXT-X-MAP:X=1, URI="i")", R"(#EXT-X-MAP:URIS="i")"});
}

TEST(VELHLSMISMap, RejectsAMalformedByteRangeAndEmptiesTheUri) {
    expectRejectsRange({R"(#EXT-X-MAP:URI="i",BYTERANGE="7x")", R"(#EXT-X-MAP:URI="i",BYTERANGE="")",
                        R"(#EXT-X-MAP:URI="i",BYTERANGE=")", R"(#EXT-X-MAP:URI="i",BYTERANGE="@0")",
                        R"(#EXT-X-MAP:URI="i",BYTERANGE="720@")", R"(#EXT-X-MAP:URI="i",BYTERANGE="720@0@1")",
                        R"(#EXT-X-MAP:URI="i",BYTERANGE="720-0")", R"(#EXT-X-MAP:URI="i",BYTERANGE=" 720")",
                        R"(#EXT-X-MAP:URI="i",BYTERANGE="-1")", R"(#EXT-X-MAP:BYTERANGE="7x",URI="i")",
                        R"(#EXT-X-MAP:URI="",BYTERANGE="7x")", "#EXT-X-MAP:URI=i,BYTERANGE=720@0 \r\n"});
}

TEST(VELHLSMISMap, ReplacesAnEarlierByteRange) {
    VELHLSMISMap map = mapOf("old", 7, 8);
    const std::shared_ptr<VELHLSByteRange> old = map.byteRange;
    ASSERT_EQ(map.parse(R"(#EXT-X-MAP:URI="new",BYTERANGE="5")"), 0);
    EXPECT_EQ(map.uri, "new");
    EXPECT_EQ(written(map.byteRange), "5@-1");
    EXPECT_NE(map.byteRange, old);
    EXPECT_EQ(written(old), "7@8");
}

TEST(VELHLSMISMap, EmptiesAnEarlierUriWhenTheByteRangeFails) {
    VELHLSMISMap map = mapOf("old", 7, 8);
    const std::shared_ptr<VELHLSByteRange> old = map.byteRange;
    ASSERT_EQ(map.parse(R"(#EXT-X-MAP:URI="new",BYTERANGE="x")"), -1);
    EXPECT_EQ(map.uri, "");
    EXPECT_EQ(written(map.byteRange), "0@-1");
    EXPECT_EQ(written(old), "7@8");
}

TEST(VELHLSMISMap, ThrowsForAByteRangeBeyondSixtyFourBits) {
    for (const char* line : {R"(#EXT-X-MAP:URI="i",BYTERANGE="9223372036854775808")",
                             R"(#EXT-X-MAP:URI="i",BYTERANGE="1@9223372036854775808")"}) {
        VELHLSMISMap map;
        EXPECT_THROW(static_cast<void>(map.parse(line)), std::out_of_range) << line;
    }
}

TEST(VELHLSMISMap, ReadsEachPrefixForWhatItIs) {
    struct PrefixRow {
        std::size_t shortest;
        std::size_t longest;
        std::string rendered;
    };
    const std::string line = R"(#EXT-X-MAP:URI="i",BYTERANGE="72@0")";
    const std::string uriAlone = "#EXT-X-MAP:URI=\"i\"\n";
    const std::vector<PrefixRow> rows = {
        {0, 16, "-1"},                                       // up to: #EXT-X-MAP:URI="
        {17, 18, uriAlone},                                  // up to: "i"
        {19, 30, "-1"},                                      // up to: ,BYTERANGE="
        {31, 31, "#EXT-X-MAP:URI=\"i\",BYTERANGE=\"7\"\n"},  //
        {32, 32, "#EXT-X-MAP:URI=\"i\",BYTERANGE=\"72\"\n"},
        {33, 33, "-1"},  // up to: 72@
        {34, 35, line + "\n"},
    };
    ASSERT_EQ(line.size(), rows.back().longest);
    for (const PrefixRow& row : rows) {
        for (std::size_t length = row.shortest; length <= row.longest; ++length) {
            EXPECT_EQ(rendered(line.substr(0, length)), row.rendered) << line.substr(0, length);
        }
    }
}

TEST(VELHLSMISMap, ReadsAMegabyteOfUri) {
    const std::string uri(1 << 20, 'u');
    expectParses({{"#EXT-X-MAP:URI=\"" + uri + "\",BYTERANGE=\"1@0\"", uri, "1@0"}});
}

TEST(VELHLSMISMap, ValidatesTheUriAlone) {
    EXPECT_TRUE(mapOf("i", 1, 0).validate());
    EXPECT_TRUE(mapOf("i", -1, -1).validate());
    EXPECT_TRUE(mapOf(" ", 0, 0).validate());
    EXPECT_FALSE(mapOf("", 1, 0).validate());
}

TEST(VELHLSMISMap, DoesNotRenderWithoutUri) {
    std::string out = "before";
    EXPECT_EQ(mapOf("", 720, 0).render(out), -1);
    EXPECT_EQ(VELHLSMISMap().render(out), -1);
    EXPECT_EQ(out, "before");
}

struct RenderRow {
    std::string uri;
    std::int64_t length;
    std::int64_t offset;
    std::string line;
};

TEST(VELHLSMISMap, RendersAByteRangeOfAtLeastOneByte) {
    const std::vector<RenderRow> rows = {
        {"i", 720, 0, R"(#EXT-X-MAP:URI="i",BYTERANGE="720@0")"},
        {"i", 1, 9, R"(#EXT-X-MAP:URI="i",BYTERANGE="1@9")"},
        {"i", 1, -1, R"(#EXT-X-MAP:URI="i",BYTERANGE="1")"},
        {"i", 1, -2, R"(#EXT-X-MAP:URI="i",BYTERANGE="1")"},
        {"i", 0, 9, R"(#EXT-X-MAP:URI="i")"},
        {"i", -1, 9, R"(#EXT-X-MAP:URI="i")"},
        {"i", std::numeric_limits<std::int64_t>::min(), 9, R"(#EXT-X-MAP:URI="i")"},
        {"a\"b", 0, 0, R"(#EXT-X-MAP:URI="a"b")"},
    };
    for (const RenderRow& row : rows) {
        std::string out;
        EXPECT_EQ(mapOf(row.uri, row.length, row.offset).render(out), 0) << row.line;
        EXPECT_EQ(out, row.line + "\n");
    }
}

TEST(VELHLSMISMap, RendersAfterWhatIsThere) {
    std::string out = "before\n";
    EXPECT_EQ(mapOf("i", 0, -1).render(out), 0);
    EXPECT_EQ(out, "before\n#EXT-X-MAP:URI=\"i\"\n");
}

TEST(VELHLSMISMap, ParsesWhatItRenders) {
    for (const std::string& uri : {"init.mp4"s, "a,b=c"s, "http://example.com/i?x=1&y:2"s, "a\0b"s}) {
        for (const std::int64_t offset : {std::int64_t{-1}, std::int64_t{0}, std::int64_t{4096}}) {
            std::string line;
            ASSERT_EQ(mapOf(uri, 720, offset).render(line), 0);
            expectParses({{line, uri, "720@" + std::to_string(offset)}});
        }
    }
}

TEST(VELHLSMISMap, ReadsALineThatItHoldsItself) {
    VELHLSMISMap map;
    map.uri = "#EXT-X-MAP:BYTERANGE=\"720@0\",URI=\"a/initialization/section.mp4\"";
    ASSERT_EQ(map.parse(map.uri), 0);
    EXPECT_EQ(map.uri, "a/initialization/section.mp4");
    ASSERT_NE(map.byteRange, nullptr);
    EXPECT_EQ(map.byteRange->length, 720);
}

}  // namespace
