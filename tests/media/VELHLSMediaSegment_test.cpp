#include "velhls/media/VELHLSMediaSegment.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/media/VELHLSMediaStream.h"

#include "tests/support/PlaylistText.h"

namespace {

using playlist::lines;
using Segment = std::shared_ptr<VELHLSMediaSegment>;

constexpr std::uint64_t largestSequenceNumber = std::numeric_limits<std::uint64_t>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

static_assert(!std::is_polymorphic_v<VELHLSMediaSegment>);
static_assert(std::is_default_constructible_v<VELHLSMediaSegment>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::duration), double>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::startTime), double>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::mediaSequenceNumber), std::uint64_t>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::discontinuitySequenceNumber), std::uint64_t>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::title), std::string>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::byteRange), std::shared_ptr<VELHLSByteRange>>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::discontinuity), bool>);
static_assert(
    std::is_same_v<decltype(VELHLSMediaSegment::protectionData), std::shared_ptr<VELHLSProtectionData>>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::misMap), std::shared_ptr<VELHLSMISMap>>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::programDateTime), double>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::uri), std::string>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::cueIn), bool>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::cueOut), std::string>);
static_assert(std::is_same_v<decltype(VELHLSMediaSegment::cueOutCont), std::string>);
static_assert(std::is_same_v<decltype(std::declval<const VELHLSMediaSegment&>().validate()), bool>);
static_assert(std::is_same_v<decltype(std::declval<const VELHLSMediaSegment&>().render(
                                 std::declval<std::string&>(), true, true)),
                             std::int32_t>);

std::shared_ptr<VELHLSByteRange> rangeOf(std::int64_t length, std::int64_t offset) {
    auto range = std::make_shared<VELHLSByteRange>();
    range->length = length;
    range->offset = offset;
    return range;
}

std::shared_ptr<VELHLSProtectionData> keyOf(VELHLSProtectionData::ProtectionMethod method,
                                            const std::string& uri, const std::string& iv = "") {
    return std::make_shared<VELHLSProtectionData>(method, uri, iv, "", std::vector<std::int32_t>());
}

std::shared_ptr<VELHLSProtectionData> goodKey() {
    return keyOf(VELHLSProtectionData::AES128, "k");
}

std::shared_ptr<VELHLSMISMap> mapOf(const std::string& uri) {
    auto map = std::make_shared<VELHLSMISMap>();
    map->uri = uri;
    return map;
}

/// A segment with nothing but a duration and a URI.
VELHLSMediaSegment plainSegment(double duration = 10.0, const std::string& uri = "seg.ts") {
    return {duration, 0.0, 0, 0, "", nullptr, false, 0.0, nullptr, nullptr, uri, false, "", ""};
}

/// A segment that has everything.
VELHLSMediaSegment fullSegment() {
    return {6.006,     24.5,
            7,         3,
            "Intro",   rangeOf(1024, 2048),
            true,      1577872815.25,
            goodKey(), mapOf("init.mp4"),
            "seg1.ts", true,
            "30",      "10/30"};
}

std::string rendered(const VELHLSMediaSegment& segment, bool renderKey = true, bool renderMap = true) {
    std::string out;
    return segment.render(out, renderKey, renderMap) == 0 ? out : "-1";
}

void expectDoesNotRender(const VELHLSMediaSegment& segment) {
    for (const bool renderKey : {false, true}) {
        for (const bool renderMap : {false, true}) {
            std::string out = "before";
            EXPECT_EQ(segment.render(out, renderKey, renderMap), -1) << renderKey << renderMap;
            EXPECT_EQ(out, "before") << renderKey << renderMap;
        }
    }
}

TEST(VELHLSMediaSegment, StoresEveryArgumentInTheMemberOfItsName) {
    const auto range = rangeOf(1024, 2048);
    const auto key = goodKey();
    const auto map = mapOf("init.mp4");
    const VELHLSMediaSegment segment(6.006, 24.5, 7, 3, "the title", range, true, 99.25, key, map, "the uri",
                                     true, "the cue out", "the cue out cont");
    EXPECT_EQ(segment.duration, 6.006);
    EXPECT_EQ(segment.startTime, 24.5);
    EXPECT_EQ(segment.mediaSequenceNumber, 7U);
    EXPECT_EQ(segment.discontinuitySequenceNumber, 3U);
    EXPECT_EQ(segment.title, "the title");
    EXPECT_EQ(segment.byteRange, range);
    EXPECT_TRUE(segment.discontinuity);
    EXPECT_EQ(segment.programDateTime, 99.25);
    EXPECT_EQ(segment.protectionData, key);
    EXPECT_EQ(segment.misMap, map);
    EXPECT_EQ(segment.uri, "the uri");
    EXPECT_TRUE(segment.cueIn);
    EXPECT_EQ(segment.cueOut, "the cue out");
    EXPECT_EQ(segment.cueOutCont, "the cue out cont");
}

TEST(VELHLSMediaSegment, TellsItsTwoFlagsApart) {
    const VELHLSMediaSegment discontinuous(1, 0, 0, 0, "", nullptr, true, 0, nullptr, nullptr, "u", false, "",
                                           "");
    EXPECT_TRUE(discontinuous.discontinuity);
    EXPECT_FALSE(discontinuous.cueIn);
    const VELHLSMediaSegment cued(1, 0, 0, 0, "", nullptr, false, 0, nullptr, nullptr, "u", true, "", "");
    EXPECT_FALSE(cued.discontinuity);
    EXPECT_TRUE(cued.cueIn);
}

TEST(VELHLSMediaSegment, ChecksNothingWhenItIsMade) {
    const VELHLSMediaSegment segment(0.0, -1.0, largestSequenceNumber, largestSequenceNumber, "",
                                     rangeOf(-1, -1), false, -5.0, keyOf(VELHLSProtectionData::AES128, ""),
                                     mapOf(""), "", false, "", "");
    EXPECT_EQ(segment.duration, 0.0);
    EXPECT_EQ(segment.startTime, -1.0);
    EXPECT_EQ(segment.mediaSequenceNumber, largestSequenceNumber);
    EXPECT_EQ(segment.discontinuitySequenceNumber, largestSequenceNumber);
    EXPECT_EQ(segment.byteRange->length, -1);
    EXPECT_EQ(segment.programDateTime, -5.0);
    EXPECT_EQ(segment.uri, "");
}

TEST(VELHLSMediaSegment, CopiesItsTexts) {
    std::string title = "title";
    std::string uri = "uri";
    std::string cueOut = "cueOut";
    std::string cueOutCont = "cueOutCont";
    const VELHLSMediaSegment segment(1, 0, 0, 0, title, nullptr, false, 0, nullptr, nullptr, uri, false,
                                     cueOut, cueOutCont);
    for (std::string* text : {&title, &uri, &cueOut, &cueOutCont})
        text->assign("changed");
    EXPECT_EQ(segment.title, "title");
    EXPECT_EQ(segment.uri, "uri");
    EXPECT_EQ(segment.cueOut, "cueOut");
    EXPECT_EQ(segment.cueOutCont, "cueOutCont");
}

TEST(VELHLSMediaSegment, HoldsItsMembersInTheOrderOfThePlaylist) {
    const VELHLSMediaSegment segment = plainSegment();
    const std::vector<const void*> members = {&segment.duration,
                                              &segment.startTime,
                                              &segment.mediaSequenceNumber,
                                              &segment.discontinuitySequenceNumber,
                                              &segment.title,
                                              &segment.byteRange,
                                              &segment.discontinuity,
                                              &segment.protectionData,
                                              &segment.misMap,
                                              &segment.programDateTime,
                                              &segment.uri,
                                              &segment.cueIn,
                                              &segment.cueOut,
                                              &segment.cueOutCont};
    EXPECT_TRUE(std::is_sorted(members.begin(), members.end(), std::less<>()));
}

struct ValidityRow {
    std::string what;
    std::function<void(VELHLSMediaSegment&)> change;
};

void expectValidity(const std::vector<ValidityRow>& rows, bool valid) {
    for (const ValidityRow& row : rows) {
        SCOPED_TRACE(row.what);
        VELHLSMediaSegment plain = plainSegment();
        row.change(plain);
        EXPECT_EQ(plain.validate(), valid);
        VELHLSMediaSegment full = fullSegment();
        row.change(full);
        EXPECT_EQ(full.validate(), valid);
        if (!valid) {
            expectDoesNotRender(plain);
            expectDoesNotRender(full);
        }
    }
}

TEST(VELHLSMediaSegment, IsValidWithAUriAndADuration) {
    EXPECT_TRUE(plainSegment().validate());
    EXPECT_TRUE(fullSegment().validate());
}

TEST(VELHLSMediaSegment, IsNeitherValidNorRenderedWithABrokenMember) {
    expectValidity(
        {{"no URI", [](auto& segment) { segment.uri.clear(); }},
         {"duration 0", [](auto& segment) { segment.duration = 0.0; }},
         {"duration -0", [](auto& segment) { segment.duration = -0.0; }},
         {"length -1", [](auto& segment) { segment.byteRange = rangeOf(-1, 0); }},
         {"smallest length",
          [](auto& segment) { segment.byteRange = rangeOf(std::numeric_limits<std::int64_t>::min(), -1); }},
         {"AES-128 without URI",
          [](auto& segment) { segment.protectionData = keyOf(VELHLSProtectionData::AES128, ""); }},
         {"SAMPLE-AES without URI",
          [](auto& segment) { segment.protectionData = keyOf(VELHLSProtectionData::SampleAES, ""); }},
         {"short IV",
          [](auto& segment) { segment.protectionData = keyOf(VELHLSProtectionData::AES128, "k", "0x12"); }},
         {"short IV of no method",
          [](auto& segment) { segment.protectionData = keyOf(VELHLSProtectionData::None, "", "0x12"); }},
         {"map without URI", [](auto& segment) { segment.misMap = mapOf(""); }}},
        false);
}

TEST(VELHLSMediaSegment, IsValidWithUnusualMembers) {
    expectValidity({{"negative duration", [](auto& segment) { segment.duration = -4.0; }},
                    {"smallest duration",
                     [](auto& segment) { segment.duration = std::numeric_limits<double>::denorm_min(); }},
                    {"not-a-number duration", [](auto& segment) { segment.duration = notANumber; }},
                    {"infinite duration", [](auto& segment) { segment.duration = infinity; }},
                    {"length 0", [](auto& segment) { segment.byteRange = rangeOf(0, -1); }},
                    {"offset below -1", [](auto& segment) { segment.byteRange = rangeOf(1, -99); }},
                    {"no byte range", [](auto& segment) { segment.byteRange = nullptr; }},
                    {"key of no method",
                     [](auto& segment) { segment.protectionData = keyOf(VELHLSProtectionData::None, ""); }},
                    {"no key", [](auto& segment) { segment.protectionData = nullptr; }},
                    {"no map", [](auto& segment) { segment.misMap = nullptr; }},
                    {"negative byte range of the map",
                     [](auto& segment) {
                         segment.misMap = mapOf("init.mp4");
                         segment.misMap->byteRange = rangeOf(-1, -1);
                     }},
                    {"blank URI", [](auto& segment) { segment.uri = " "; }},
                    {"URI that is a tag", [](auto& segment) { segment.uri = "#EXTM3U"; }},
                    {"negative times",
                     [](auto& segment) {
                         segment.startTime = -1.0;
                         segment.programDateTime = -1.0;
                     }}},
                   true);
}

TEST(VELHLSMediaSegment, RendersDurationAndUri) {
    EXPECT_EQ(rendered(plainSegment()), "#EXTINF:10.000000\nseg.ts\n");
}

TEST(VELHLSMediaSegment, RendersAllThatItHolds) {
    EXPECT_EQ(rendered(fullSegment()), lines({"#EXT-X-DISCONTINUITY",                                    //
                                              "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"",                     //
                                              "#EXT-X-MAP:URI=\"init.mp4\"",                             //
                                              "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:15.250+00:00",  //
                                              "#EXTINF:6.006000,Intro",                                  //
                                              "#EXT-X-BYTERANGE:1024@2048",                              //
                                              "seg1.ts"}));
}

TEST(VELHLSMediaSegment, RendersKeyAndMapWhenAsked) {
    VELHLSMediaSegment segment = plainSegment();
    segment.protectionData = goodKey();
    segment.misMap = mapOf("init.mp4");
    const std::string key = "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n";
    const std::string map = "#EXT-X-MAP:URI=\"init.mp4\"\n";
    const std::string rest = "#EXTINF:10.000000\nseg.ts\n";
    EXPECT_EQ(rendered(segment, true, true), key + map + rest);
    EXPECT_EQ(rendered(segment, true, false), key + rest);
    EXPECT_EQ(rendered(segment, false, true), map + rest);
    EXPECT_EQ(rendered(segment, false, false), rest);
}

TEST(VELHLSMediaSegment, RendersAMissingKeyAndMapAsNothing) {
    for (const bool renderKey : {false, true}) {
        for (const bool renderMap : {false, true}) {
            EXPECT_EQ(rendered(plainSegment(), renderKey, renderMap), "#EXTINF:10.000000\nseg.ts\n");
        }
    }
}

TEST(VELHLSMediaSegment, RendersTheKeyAsTheKeyRendersItself) {
    VELHLSMediaSegment segment = plainSegment();
    for (const auto& key : {keyOf(VELHLSProtectionData::None, "dropped"), goodKey(),
                            keyOf(VELHLSProtectionData::SampleAES, "s"),
                            keyOf(static_cast<VELHLSProtectionData::ProtectionMethod>(3), "of no method")}) {
        std::string keyLine;
        ASSERT_EQ(key->render(keyLine), 0);
        segment.protectionData = key;
        EXPECT_EQ(rendered(segment), keyLine + "#EXTINF:10.000000\nseg.ts\n");
    }
}

TEST(VELHLSMediaSegment, RendersTheMapAsTheMapRendersItself) {
    VELHLSMediaSegment segment = plainSegment();
    segment.misMap = mapOf("init.mp4");
    segment.misMap->byteRange = rangeOf(720, 0);
    EXPECT_EQ(rendered(segment),
              "#EXT-X-MAP:URI=\"init.mp4\",BYTERANGE=\"720@0\"\n#EXTINF:10.000000\nseg.ts\n");
}

struct DateRow {
    double programDateTime;
    std::string lines;
};

TEST(VELHLSMediaSegment, RendersAProgramDateTimeAboveZero) {
    const std::vector<DateRow> rows = {
        {1577872805.5, "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:5.500+00:00\n"},
        {1577836800.0, "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T00:00:0.000+00:00\n"},
        {10.0, "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:10.000+00:00\n"},
        {0.5, "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:0.500+00:00\n"},
        {0.0, ""},
        {-0.0, ""},
        {-1.0, ""},
        {-1577836800.0, ""},
        {-infinity, ""},
        {notANumber, ""},
    };
    for (const DateRow& row : rows) {
        VELHLSMediaSegment segment = plainSegment();
        segment.programDateTime = row.programDateTime;
        EXPECT_EQ(rendered(segment), row.lines + "#EXTINF:10.000000\nseg.ts\n") << row.programDateTime;
    }
}

struct DurationRow {
    double duration;
    std::string text;
};

TEST(VELHLSMediaSegment, RendersTheDurationWithSixDecimals) {
    const std::vector<DurationRow> rows = {
        {10.0, "10.000000"},
        {6.006, "6.006000"},
        {0.1, "0.100000"},
        {9.9999994, "9.999999"},
        {9.9999996, "10.000000"},
        {0.0000001, "0.000000"},
        {0.0000015, "0.000002"},
        {-4.0, "-4.000000"},
        {-0.0000001, "-0.000000"},
        {123456789.125, "123456789.125000"},
        {1e15, "1000000000000000.000000"},
        {1e22, "10000000000000000000000.000000"},
        {std::numeric_limits<double>::denorm_min(), "0.000000"},
        {infinity, "inf"},
        {-infinity, "-inf"},
        {notANumber, "nan"},
    };
    for (const DurationRow& row : rows) {
        EXPECT_EQ(rendered(plainSegment(row.duration)), "#EXTINF:" + row.text + "\nseg.ts\n");
    }
}

TEST(VELHLSMediaSegment, RendersTheDurationLikeTheStandardConversion) {
    for (const double duration : {1.0 / 3.0, 2.0 / 3.0, 5.9999995, 0.5e-6, 1.5e-6, 2.5e-6, 1e300, -1e-300,
                                  4.000000500000001, std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::lowest(), std::nextafter(10.0, 11.0)}) {
        EXPECT_EQ(rendered(plainSegment(duration)), "#EXTINF:" + std::to_string(duration) + "\nseg.ts\n");
    }
}

struct TitleRow {
    std::string title;
    std::string line;
};

TEST(VELHLSMediaSegment, RendersATitleAfterACommaOfItsOwn) {
    const std::vector<TitleRow> rows = {
        {"", "#EXTINF:10.000000"},
        {"Intro", "#EXTINF:10.000000,Intro"},
        {",", "#EXTINF:10.000000,,"},
        {",Intro", "#EXTINF:10.000000,,Intro"},
        {",,Intro", "#EXTINF:10.000000,,,Intro"},
        {" ", "#EXTINF:10.000000, "},
        {"a,b:c", "#EXTINF:10.000000,a,b:c"},
    };
    for (const TitleRow& row : rows) {
        VELHLSMediaSegment segment = plainSegment();
        segment.title = row.title;
        EXPECT_EQ(rendered(segment), row.line + "\nseg.ts\n");
    }
}

struct RangeRow {
    std::int64_t length;
    std::int64_t offset;
    std::string line;
};

TEST(VELHLSMediaSegment, RendersAByteRangeOfAtLeastOneByte) {
    const std::vector<RangeRow> rows = {
        {1024, 0, "#EXT-X-BYTERANGE:1024@0\n"},
        {1, 5, "#EXT-X-BYTERANGE:1@5\n"},
        {1, -1, "#EXT-X-BYTERANGE:1\n"},
        {1, -99, "#EXT-X-BYTERANGE:1\n"},
        {0, -1, ""},
        {0, 0, ""},
        {0, 7, ""},
    };
    for (const RangeRow& row : rows) {
        VELHLSMediaSegment segment = plainSegment();
        segment.byteRange = rangeOf(row.length, row.offset);
        EXPECT_EQ(rendered(segment), "#EXTINF:10.000000\n" + row.line + "seg.ts\n")
            << row.length << "@" << row.offset;
    }
}

TEST(VELHLSMediaSegment, DoesNotRenderCuesAndNumbers) {
    VELHLSMediaSegment segment = plainSegment();
    segment.cueIn = true;
    segment.cueOut = "30";
    segment.cueOutCont = "10/30";
    segment.startTime = 100.0;
    segment.mediaSequenceNumber = 5;
    segment.discontinuitySequenceNumber = 6;
    EXPECT_EQ(rendered(segment), rendered(plainSegment()));
}

TEST(VELHLSMediaSegment, RendersAfterWhatIsThere) {
    std::string out = "#EXTM3U\n";
    EXPECT_EQ(plainSegment().render(out, true, true), 0);
    EXPECT_EQ(fullSegment().render(out, false, false), 0);
    EXPECT_EQ(out, lines({"#EXTM3U", "#EXTINF:10.000000", "seg.ts", "#EXT-X-DISCONTINUITY",
                          "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:15.250+00:00", "#EXTINF:6.006000,Intro",
                          "#EXT-X-BYTERANGE:1024@2048", "seg1.ts"}));
}

TEST(VELHLSMediaSegment, DoesNotRenderWithABrokenKeyOrMapThatIsNotAskedFor) {
    VELHLSMediaSegment brokenKey = plainSegment();
    brokenKey.protectionData = keyOf(VELHLSProtectionData::AES128, "");
    expectDoesNotRender(brokenKey);
    VELHLSMediaSegment brokenMap = plainSegment();
    brokenMap.misMap = mapOf("");
    expectDoesNotRender(brokenMap);
}

TEST(VELHLSMediaSegment, RendersTheSameEachTime) {
    const VELHLSMediaSegment segment = fullSegment();
    EXPECT_EQ(rendered(segment), rendered(segment));
}

/// The segments of the playlist, each rendered with its key and map.
std::string renderedPlaylist(const std::string& text) {
    std::istringstream input(text);
    const auto stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    if (stream == nullptr) return "null";
    std::string out;
    for (const Segment& segment : stream->segments)
        out += rendered(*segment);
    return out;
}

TEST(VELHLSMediaSegment, RendersWhatParsesBackToTheSameText) {
    const std::string text = lines({"#EXT-X-DISCONTINUITY", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"",
                                    "#EXT-X-MAP:URI=\"init.mp4\",BYTERANGE=\"720@0\"",
                                    "#EXT-X-PROGRAM-DATE-TIME:2020-01-01T10:00:15.250+00:00",
                                    "#EXTINF:6.006000", "#EXT-X-BYTERANGE:1024@2048", "seg1.ts"});
    EXPECT_EQ(renderedPlaylist(text), text);
}

TEST(VELHLSMediaSegment, GivesATitleOneMoreCommaWithEachRoundTrip) {
    const std::string once = renderedPlaylist("#EXTINF:10,Intro\nseg.ts\n");
    EXPECT_EQ(once, "#EXTINF:10.000000,,Intro\nseg.ts\n");
    EXPECT_EQ(renderedPlaylist(once), "#EXTINF:10.000000,,,Intro\nseg.ts\n");
}

TEST(VELHLSMediaSegment, BuildsTheNextSegment) {
    const Segment previous = std::make_shared<VELHLSMediaSegment>(fullSegment());
    const auto range = rangeOf(5, 6);
    const Segment next = VELHLSMediaSegment::buildNextSegment(previous, 4.5, range, "next.ts");
    ASSERT_NE(next, nullptr);
    EXPECT_EQ(next->duration, 4.5);
    EXPECT_EQ(next->startTime, 24.5 + 6.006);
    EXPECT_EQ(next->mediaSequenceNumber, 8U);
    EXPECT_EQ(next->discontinuitySequenceNumber, 3U);
    EXPECT_EQ(next->title, "");
    EXPECT_EQ(next->byteRange, range);
    EXPECT_FALSE(next->discontinuity);
    EXPECT_EQ(next->protectionData, previous->protectionData);
    EXPECT_EQ(next->misMap, previous->misMap);
    EXPECT_EQ(next->programDateTime, 1577872815.25 + 6.006);
    EXPECT_EQ(next->uri, "next.ts");
    EXPECT_FALSE(next->cueIn);
    EXPECT_EQ(next->cueOut, "");
    EXPECT_EQ(next->cueOutCont, "");
}

TEST(VELHLSMediaSegment, LeavesThePreviousSegmentAsItIs) {
    const Segment previous = std::make_shared<VELHLSMediaSegment>(fullSegment());
    const std::string before = rendered(*previous);
    static_cast<void>(VELHLSMediaSegment::buildNextSegment(previous, 4.5, nullptr, "next.ts"));
    EXPECT_EQ(rendered(*previous), before);
    EXPECT_EQ(previous->mediaSequenceNumber, 7U);
    EXPECT_EQ(previous->startTime, 24.5);
}

TEST(VELHLSMediaSegment, BuildsTheNextSegmentWithoutByteRangeKeyAndMap) {
    const Segment previous = std::make_shared<VELHLSMediaSegment>(plainSegment());
    const Segment next = VELHLSMediaSegment::buildNextSegment(previous, 4.5, nullptr, "v/range/0-99");
    EXPECT_EQ(next->byteRange, nullptr);
    EXPECT_EQ(next->protectionData, nullptr);
    EXPECT_EQ(next->misMap, nullptr);
    EXPECT_EQ(rendered(*next), "#EXTINF:4.500000\nv/range/0-99\n");
}

TEST(VELHLSMediaSegment, SharesOneByteRangeBetweenTwoBuiltSegments) {
    const Segment previous = std::make_shared<VELHLSMediaSegment>(plainSegment());
    const auto range = rangeOf(5, 6);
    const Segment first = VELHLSMediaSegment::buildNextSegment(previous, 1, range, "a.ts");
    const Segment second = VELHLSMediaSegment::buildNextSegment(first, 1, range, "b.ts");
    EXPECT_EQ(first->byteRange, range);
    EXPECT_EQ(second->byteRange, range);
    EXPECT_EQ(range.use_count(), 3);
}

TEST(VELHLSMediaSegment, BuildsWithAShortUri) {
    const Segment previous = std::make_shared<VELHLSMediaSegment>(plainSegment());
    EXPECT_EQ(VELHLSMediaSegment::buildNextSegment(previous, 1, nullptr, "a")->uri, "a");
}

TEST(VELHLSMediaSegment, DoesNotValidateWhatItBuilds) {
    const Segment previous = std::make_shared<VELHLSMediaSegment>(plainSegment());
    const Segment next = VELHLSMediaSegment::buildNextSegment(previous, 0.0, rangeOf(-1, 0), "");
    ASSERT_NE(next, nullptr);
    EXPECT_FALSE(next->validate());
    EXPECT_EQ(next->duration, 0.0);
    EXPECT_EQ(next->byteRange->length, -1);
    EXPECT_EQ(next->uri, "");
}

struct NextDateRow {
    double previousDate;
    double nextDate;
};

TEST(VELHLSMediaSegment, ContinuesADateUnlessItIsZero) {
    const std::vector<NextDateRow> rows = {
        {0.0, 0.0}, {-0.0, 0.0}, {0.5, 10.5}, {1577836800.0, 1577836810.0}, {-10.0, 0.0}, {-30.0, -20.0},
    };
    for (const NextDateRow& row : rows) {
        auto previous = std::make_shared<VELHLSMediaSegment>(plainSegment());
        previous->programDateTime = row.previousDate;
        EXPECT_EQ(VELHLSMediaSegment::buildNextSegment(previous, 1, nullptr, "u")->programDateTime,
                  row.nextDate)
            << row.previousDate;
    }
}

TEST(VELHLSMediaSegment, WrapsTheMediaSequenceNumberToZero) {
    auto previous = std::make_shared<VELHLSMediaSegment>(plainSegment());
    previous->mediaSequenceNumber = largestSequenceNumber;
    previous->discontinuitySequenceNumber = largestSequenceNumber;
    previous->discontinuity = true;
    const Segment next = VELHLSMediaSegment::buildNextSegment(previous, 1, nullptr, "u");
    EXPECT_EQ(next->mediaSequenceNumber, 0U);
    EXPECT_EQ(next->discontinuitySequenceNumber, largestSequenceNumber);
}

TEST(VELHLSMediaSegment, AddsUpStartTimesAndKeepsKeyAndMapOverManyBuiltSegments) {
    Segment last = std::make_shared<VELHLSMediaSegment>(fullSegment());
    last->duration = 2.0;
    const Segment first = last;
    for (int count = 0; count < 100; ++count)
        last = VELHLSMediaSegment::buildNextSegment(last, 2.0, nullptr, "next.ts");
    EXPECT_EQ(last->startTime, 24.5 + 200.0);
    EXPECT_EQ(last->mediaSequenceNumber, 107U);
    EXPECT_EQ(last->discontinuitySequenceNumber, 3U);
    EXPECT_EQ(last->programDateTime, 1577872815.25 + 200.0);
    EXPECT_EQ(last->protectionData, first->protectionData);
    EXPECT_EQ(last->misMap, first->misMap);
}

TEST(VELHLSMediaSegment, BuildsWithoutDateWhatAParseDates) {
    std::istringstream input("#EXTINF:10\n000.ts\n#EXTINF:10\n001.ts\n#EXTINF:10\n002.ts\n");
    const auto stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    ASSERT_NE(stream, nullptr);
    ASSERT_EQ(stream->segments.size(), 3U);
    Segment built = stream->segments.front();
    for (const Segment& parsed : stream->segments) {
        EXPECT_EQ(parsed->programDateTime, parsed->startTime);
        EXPECT_EQ(built->programDateTime, 0.0);
        EXPECT_EQ(built->startTime, parsed->startTime);
        EXPECT_EQ(built->mediaSequenceNumber, parsed->mediaSequenceNumber);
        built = VELHLSMediaSegment::buildNextSegment(built, 10.0, nullptr, "next.ts");
    }
}

}  // namespace
