#include "velhls/common/VELHLSUtility.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

static_assert(!std::is_constructible_v<VELHLSUtility>);

struct UriClaim {
    const char* uri;
    bool absolute;
};

TEST(VELHLSUtility, UriIsAbsoluteWhenItBeginsWithHttpInLowerCase) {
    const UriClaim claims[] = {
        {"http", true},
        {"http:", true},
        {"http://example.com/a.m3u8", true},
        {"https://example.com/a.m3u8", true},
        {"httpfoo", true},
        {"http/a.ts", true},
        {"", false},
        {"h", false},
        {"ht", false},
        {"htt", false},
        {"htt:p", false},
        {"HTTP://example.com/", false},
        {"Http://example.com/", false},
        {"httP", false},
        {" http://example.com/", false},
        {"\"http://example.com/\"", false},
        {"ftp://example.com/", false},
        {"//example.com/http", false},
        {"/http", false},
        {"a/http://b", false},
        {"data:http", false},
        {"seg.ts", false},
    };
    for (const UriClaim& claim : claims) {
        EXPECT_EQ(VELHLSUtility::uriIsAbsoluteHTTPURL(claim.uri), claim.absolute) << claim.uri;
    }
}

TEST(VELHLSUtility, LastPathComponentIsAllAfterTheLastSlash) {
    const struct {
        const char* uri;
        const char* component;
    } rows[] = {
        {"a/b/c.ts", "c.ts"},
        {"c.ts", "c.ts"},
        {"a/", ""},
        {"/", ""},
        {"//", ""},
        {"", ""},
        {"/c.ts", "c.ts"},
        {"a//c.ts", "c.ts"},
        {"https://example.com", "example.com"},
        {"https://example.com/", ""},
        {"https://example.com/v/seg.ts?x=1#y", "seg.ts?x=1#y"},
        {"a/b.ts?x=/c", "c"},
        {"a/b.ts#/", ""},
        {"a\\b.ts", "a\\b.ts"},
        {"a/b c.ts ", "b c.ts "},
        {"a%2Fb.ts", "a%2Fb.ts"},
        {"..", ".."},
        {"../..", ".."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(VELHLSUtility::lastPathComponentFromURI(row.uri), row.component) << row.uri;
    }
}

TEST(VELHLSUtility, LastPathComponentTakesBytesAsTheyAre) {
    const std::string withNull("a/b\0c", 5);
    EXPECT_EQ(VELHLSUtility::lastPathComponentFromURI(withNull), std::string("b\0c", 3));
    EXPECT_EQ(VELHLSUtility::lastPathComponentFromURI("d/\xC3\xA9.ts"), "\xC3\xA9.ts");
}

const std::string mediaPatternTags[] = {
    "#ZOR-PATTERN_START:",
    "#ZOR-PATTERN_END:",
    "#ZOR-PATTERN_REPEAT:",
    "#ZOR-DEFINE_INCREMENT:",
};

TEST(VELHLSUtility, MediaPatternTagHoldsItsWholeNameUpToTheFirstColon) {
    for (const std::string& tag : mediaPatternTags) {
        SCOPED_TRACE(tag);
        EXPECT_TRUE(VELHLSUtility::isMediaPatternTag(tag));
        EXPECT_TRUE(VELHLSUtility::isMediaPatternTag(tag + "p"));
        EXPECT_TRUE(VELHLSUtility::isMediaPatternTag(tag + "p,1"));
        EXPECT_TRUE(VELHLSUtility::isMediaPatternTag(tag + ":"));
        EXPECT_TRUE(VELHLSUtility::isMediaPatternTag(tag + "a:b"));
        EXPECT_TRUE(VELHLSUtility::isMediaPatternTag(tag + "\r"));
    }
}

TEST(VELHLSUtility, NoPrefixOfAMediaPatternTagIsOne) {
    for (const std::string& tag : mediaPatternTags) {
        for (std::size_t length = 0; length < tag.size(); ++length) {
            const std::string prefix = tag.substr(0, length);
            EXPECT_FALSE(VELHLSUtility::isMediaPatternTag(prefix)) << prefix;
            if (length + 1 == tag.size()) continue;
            EXPECT_FALSE(VELHLSUtility::isMediaPatternTag(prefix + ":")) << prefix << ':';
            EXPECT_FALSE(VELHLSUtility::isMediaPatternTag(prefix + ":" + tag.substr(length))) << prefix;
        }
    }
}

TEST(VELHLSUtility, MediaPatternTagWithOneCharacterChangedIsNone) {
    for (const std::string& tag : mediaPatternTags) {
        for (std::size_t position = 0; position < tag.size(); ++position) {
            std::string changed = tag;
            changed[position] = '~';
            EXPECT_FALSE(VELHLSUtility::isMediaPatternTag(changed)) << changed;
        }
    }
}

TEST(VELHLSUtility, OtherLinesAreNoMediaPatternTags) {
    const char* const lines[] = {
        "",
        ":",
        "#",
        "#:",
        "##ZOR-PATTERN_START:p",
        " #ZOR-PATTERN_START:p",
        "ZOR-PATTERN_START:p",
        "# ZOR-PATTERN_START:p",
        "#ZOR-PATTERN_START :p",
        "#ZOR-PATTERN_STARTS:p",
        "#ZOR-PATTERN_END",
        "#ZOR-PATTERN_END\r",
        "#ZOR-PATTERN_END,p",
        "#zor-pattern_start:p",
        "#ZOR-PATTERN-START:p",
        "#ZOR-PATTERN:p",
        "#ZOR-DEFINE:n,1",
        "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=1",
        "#EXT-X-DEFINE:NAME=\"ZOR-PATTERN_START\",VALUE=\"1\"",
        "#EXTINF:4,#ZOR-PATTERN_START:p",
        "#EXTM3U",
        "seg.ts",
    };
    for (const char* const line : lines) {
        EXPECT_FALSE(VELHLSUtility::isMediaPatternTag(line)) << line;
    }
}

std::int64_t millisecondsOnTheWallClock() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
}

TEST(VELHLSUtility, TimeNowIsTheWallClockInMilliseconds) {
    static_assert(std::is_same_v<decltype(VELHLSUtility::getTimeNow()), std::int64_t>);
    // The two clocks may be read through different roads, and may be adjusted in between.
    constexpr std::int64_t tolerance = 2000;
    const std::int64_t before = millisecondsOnTheWallClock();
    const std::int64_t time = VELHLSUtility::getTimeNow();
    const std::int64_t after = millisecondsOnTheWallClock();
    EXPECT_GE(time, before - tolerance);
    EXPECT_LE(time, after + tolerance);
}

}  // namespace
