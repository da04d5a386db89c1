#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
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
#include "tests/support/SameModel.h"

namespace {

using namespace std::string_literals;
using playlist::expectSameModel;
using record::rendered;

using Rendition = VELHLSMediaStreamRendition;
using Variant = VELHLSMediaVariant;
using VariantPointer = std::shared_ptr<Variant>;
using Groups = std::map<Rendition::RenditionType, std::string>;

static_assert(std::is_same_v<decltype(Variant::bandwidth), std::uint64_t>);
static_assert(std::is_same_v<decltype(Variant::averageBandwidth), std::uint64_t>);
static_assert(std::is_same_v<decltype(Variant::codecs), std::string>);
static_assert(std::is_same_v<decltype(Variant::resolution), std::string>);
static_assert(std::is_same_v<decltype(Variant::programId), std::uint32_t>);
static_assert(std::is_same_v<decltype(Variant::groupIds), Groups>);
static_assert(std::is_same_v<decltype(Variant::uri), std::string>);
static_assert(std::is_same_v<decltype(Variant::mediaStream), std::shared_ptr<VELHLSMediaStream>>);
static_assert(std::is_same_v<decltype(Variant::isIFrame), bool>);
static_assert(std::is_same_v<decltype(Variant::nominalVideoBitrate), std::uint64_t>);
static_assert(std::is_same_v<decltype(Variant::nominalAudioBitrate), std::uint64_t>);
static_assert(std::is_same_v<decltype(&Variant::parseVariant),
                             VariantPointer (*)(const std::string&, const std::string&)>);
static_assert(std::is_same_v<decltype(&Variant::render), std::int32_t (Variant::*)(std::string&) const>);
static_assert(std::is_same_v<decltype(&Variant::validate), bool (Variant::*)() const>);
static_assert(std::is_same_v<decltype(&Variant::getCVBRRatio), double (Variant::*)() const>);
static_assert(
    std::is_constructible_v<Variant, std::uint64_t, std::uint64_t, const std::string&, const std::string&,
                            const std::string&, std::shared_ptr<VELHLSMediaStream>, bool, std::uint32_t>);

const std::string streamTag = "#EXT-X-STREAM-INF:";
const std::string iFrameTag = "#EXT-X-I-FRAME-STREAM-INF:";

VariantPointer stream(const std::string& attributes, const std::string& uriLine = "v.m3u8") {
    return Variant::parseVariant(streamTag + attributes, uriLine);
}

VariantPointer iFrame(const std::string& attributes, const std::string& uriLine = "") {
    return Variant::parseVariant(iFrameTag + attributes, uriLine);
}

/// What the variant renders; "null" for none.
std::string text(const VariantPointer& variant) {
    return variant == nullptr ? "null" : rendered(*variant);
}

/// A valid variant with nothing but a bandwidth of 1 and a URI.
Variant smallest() {
    return {1, 0, "", "", "v.m3u8", nullptr, false, 0};
}

std::shared_ptr<VELHLSMediaStream> invalidMediaStream() {
    auto media = std::make_shared<VELHLSMediaStream>();
    media->segments.push_back(std::make_shared<VELHLSMediaSegment>(
        0.0, 0.0, 0U, 0U, "", nullptr, false, 0.0, nullptr, nullptr, "segment.ts", false, "", ""));
    return media;
}

// --- construction

TEST(VELHLSMediaVariant, ConstructorStoresEachArgumentInItsMember) {
    const auto media = std::make_shared<VELHLSMediaStream>();
    const Variant variant(1, 2, "codecs", "resolution", "uri", media, true, 3);

    EXPECT_EQ(variant.bandwidth, 1U);
    EXPECT_EQ(variant.averageBandwidth, 2U);
    EXPECT_EQ(variant.codecs, "codecs");
    EXPECT_EQ(variant.resolution, "resolution");
    EXPECT_EQ(variant.uri, "uri");
    EXPECT_EQ(variant.mediaStream, media);
    EXPECT_TRUE(variant.isIFrame);
    EXPECT_EQ(variant.programId, 3U);
}

TEST(VELHLSMediaVariant, ConstructorLeavesGroupsAndNominalBitratesEmpty) {
    const Variant variant(1, 2, "codecs", "resolution", "uri", nullptr, true, 3);

    EXPECT_TRUE(variant.groupIds.empty());
    EXPECT_EQ(variant.nominalVideoBitrate, 0U);
    EXPECT_EQ(variant.nominalAudioBitrate, 0U);
}

TEST(VELHLSMediaVariant, ConstructorChecksNothing) {
    const Variant variant(0, 0, "", "", "", invalidMediaStream(), false, 0);

    EXPECT_EQ(variant.bandwidth, 0U);
    EXPECT_FALSE(variant.validate());
}

TEST(VELHLSMediaVariant, SharesItsMediaStreamWithTheCaller) {
    const auto media = std::make_shared<VELHLSMediaStream>();
    {
        const Variant variant(1, 0, "", "", "v.m3u8", media, false, 0);
        EXPECT_EQ(media.use_count(), 2);
    }
    EXPECT_EQ(media.use_count(), 1);
}

// --- parseVariant

TEST(VELHLSMediaVariant, ReadsOnlyBandwidthAndUriWhereNothingElseStands) {
    const VariantPointer variant = stream("BANDWIDTH=1280000", "low/video.m3u8");

    ASSERT_NE(variant, nullptr);
    expectSameModel(*variant, Variant(1280000, 0, "", "", "low/video.m3u8", nullptr, false, 0));
}

TEST(VELHLSMediaVariant, ReadsOnlyBandwidthAndUriOfAnIFrameVariant) {
    const VariantPointer variant = iFrame("BANDWIDTH=86000,URI=\"low/iframe.m3u8\"");

    ASSERT_NE(variant, nullptr);
    expectSameModel(*variant, Variant(86000, 0, "", "", "low/iframe.m3u8", nullptr, true, 0));
}

TEST(VELHLSMediaVariant, ReadsEveryAttribute) {
    const VariantPointer variant = stream(
        "BANDWIDTH=5605600,AVERAGE-BANDWIDTH=4800000,CODECS=\"avc1.64001f,mp4a.40.2\",RESOLUTION=1280x720,"
        "PROGRAM-ID=1,AUDIO=\"a\",VIDEO=\"v\",SUBTITLES=\"s\",CLOSED-CAPTIONS=\"c\"");

    ASSERT_NE(variant, nullptr);
    Variant expected(5605600, 4800000, "avc1.64001f,mp4a.40.2", "1280x720", "v.m3u8", nullptr, false, 1);
    expected.groupIds = {{Rendition::Audio, "a"},
                         {Rendition::Video, "v"},
                         {Rendition::Subtitles, "s"},
                         {Rendition::ClosedCaptions, "c"}};
    expectSameModel(*variant, expected);
}

TEST(VELHLSMediaVariant, ReadsEveryAttributeOfAnIFrameVariant) {
    const VariantPointer variant = iFrame(
        "URI=\"i.m3u8\",PROGRAM-ID=4,RESOLUTION=1x2,CODECS=\"c\",AVERAGE-BANDWIDTH=2,BANDWIDTH=3,VIDEO="
        "\"v\"");

    ASSERT_NE(variant, nullptr);
    Variant expected(3, 2, "c", "1x2", "i.m3u8", nullptr, true, 4);
    expected.groupIds = {{Rendition::Video, "v"}};
    expectSameModel(*variant, expected);
}

TEST(VELHLSMediaVariant, ReadsEachAttributeByItself) {
    struct Row {
        std::string attribute;
        std::function<void(Variant&)> change;
    };
    const std::vector<Row> rows = {
        {"AVERAGE-BANDWIDTH=5", [](Variant& variant) { variant.averageBandwidth = 5; }},
        {"AVERAGE-BANDWIDTH=0", [](Variant&) {}},
        {"CODECS=\"avc1.4d401e, mp4a.40.2\"",
         [](Variant& variant) { variant.codecs = "avc1.4d401e, mp4a.40.2"; }},
        {"CODECS=avc1", [](Variant& variant) { variant.codecs = "avc1"; }},
        {"CODECS=\"\"", [](Variant&) {}},
        {"CODECS=\"avc1", [](Variant& variant) { variant.codecs = "avc1"; }},
        {"RESOLUTION=1920x1080", [](Variant& variant) { variant.resolution = "1920x1080"; }},
        {"RESOLUTION=\"1920x1080\"", [](Variant& variant) { variant.resolution = "1920x1080"; }},
        {"RESOLUTION=large", [](Variant& variant) { variant.resolution = "large"; }},
        {"RESOLUTION= 1 x 2 \r", [](Variant& variant) { variant.resolution = " 1 x 2 \r"; }},
        {"PROGRAM-ID=7", [](Variant& variant) { variant.programId = 7; }},
        {"PROGRAM-ID=0", [](Variant&) {}},
        {"AUDIO=\"a b\"",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::Audio, "a b"}};
         }},
        {"AUDIO=aac",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::Audio, "aac"}};
         }},
        {"AUDIO=\"\"",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::Audio, ""}};
         }},
        {"AUDIO=NONE",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::Audio, "NONE"}};
         }},
        {"VIDEO=\"v\"",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::Video, "v"}};
         }},
        {"VIDEO=NONE",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::Video, "NONE"}};
         }},
        {"SUBTITLES=\"s\"",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::Subtitles, "s"}};
         }},
        {"SUBTITLES=NONE",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::Subtitles, "NONE"}};
         }},
        {"CLOSED-CAPTIONS=\"c\"",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::ClosedCaptions, "c"}};
         }},
        {"CLOSED-CAPTIONS=\"\"",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::ClosedCaptions, ""}};
         }},
        {"CLOSED-CAPTIONS=none",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::ClosedCaptions, "none"}};
         }},
        {"CLOSED-CAPTIONS=NONE2",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::ClosedCaptions, "NONE2"}};
         }},
        {"CLOSED-CAPTIONS= NONE",
         [](Variant& variant) {
             variant.groupIds = {{Rendition::ClosedCaptions, " NONE"}};
         }},
        {"CLOSED-CAPTIONS=NONE", [](Variant&) {}},
        {"CLOSED-CAPTIONS=\"NONE\"", [](Variant&) {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.attribute);
        Variant expected = smallest();
        row.change(expected);

        const VariantPointer variant = stream("BANDWIDTH=1," + row.attribute);
        ASSERT_NE(variant, nullptr);
        expectSameModel(*variant, expected);

        expected.isIFrame = true;
        const VariantPointer iFrameVariant = iFrame("URI=\"v.m3u8\",BANDWIDTH=1," + row.attribute);
        ASSERT_NE(iFrameVariant, nullptr);
        expectSameModel(*iFrameVariant, expected);
    }
}

TEST(VELHLSMediaVariant, IgnoresOtherAttributes) {
    const std::vector<std::string> others = {
        "FRAME-RATE=29.970",
        "HDCP-LEVEL=TYPE-0",
        "VIDEO-RANGE=PQ",
        "NAME=\"n\"",
        "TYPE=AUDIO",
        "GROUP-ID=\"g\"",
        "X-COM-EXAMPLE=1",
        "average-bandwidth=5",
        "Average-Bandwidth=5",
        "AVERAGE_BANDWIDTH=5",
        "codecs=\"c\"",
        "CODEC=\"c\"",
        "CODECSS=\"c\"",
        " CODECS=\"c\"",
        "CODECS =\"c\"",
        "resolution=1x1",
        "audio=\"a\"",
        "Video=\"v\"",
        "SUBTITLE=\"s\"",
        "SUBTITLES-2=\"s\"",
        "CLOSED_CAPTIONS=\"c\"",
        "CLOSED-CAPTION=\"c\"",
        "program-id=1",
        "PROGRAM_ID=1",
        "PROGRAM-ID2=x",
        "bandwidth=x",
        "BANDWIDTH2=x",
        " BANDWIDTH=x",
        "BANDWIDTH =x",
        "AVERAGE-BANDWIDTH-2=x",
        "NOMINAL_VIDEO_BITRATE=1",
        "NOMINAL_AUDIO_BITRATE=1",
        "NONE=NONE",
        "CODECS\0=\"c\""s,
        ":CODECS=\"c\"",
        "#CODECS=\"c\"",
    };
    for (const std::string& other : others) {
        SCOPED_TRACE(other);
        const VariantPointer variant = stream("BANDWIDTH=1," + other);
        ASSERT_NE(variant, nullptr);
        expectSameModel(*variant, smallest());
    }
}

TEST(VELHLSMediaVariant, UriAttributeOfAStreamVariantIsIgnored) {
    EXPECT_EQ(text(stream("BANDWIDTH=1,URI=\"attribute.m3u8\"", "line.m3u8")),
              "#EXT-X-STREAM-INF:BANDWIDTH=1,CLOSED-CAPTIONS=NONE\nline.m3u8\n");
}

TEST(VELHLSMediaVariant, UriLineIsTakenWhateverItHolds) {
    const std::vector<std::string> uriLines = {
        "v",
        " ",
        " v.m3u8 ",
        "#EXTM3U",
        "#EXT-X-STREAM-INF:BANDWIDTH=2",
        "https://example.com/v?a=\"b\",c",
        "\r",
        "two\nlines",
        "nul\0inside"s,
        std::string(1, '\0'),
    };
    for (const std::string& uriLine : uriLines) {
        SCOPED_TRACE(uriLine);
        const VariantPointer variant = stream("BANDWIDTH=1", uriLine);
        ASSERT_NE(variant, nullptr);
        EXPECT_EQ(variant->uri, uriLine);
    }
}

TEST(VELHLSMediaVariant, StreamVariantNeedsAUriLine) {
    EXPECT_EQ(stream("BANDWIDTH=1", ""), nullptr);
    EXPECT_EQ(stream("BANDWIDTH=1,URI=\"attribute.m3u8\"", ""), nullptr);
}

TEST(VELHLSMediaVariant, IFrameVariantTakesNoUriLine) {
    EXPECT_EQ(iFrame("BANDWIDTH=1,URI=\"i.m3u8\"", "v.m3u8"), nullptr);
    EXPECT_EQ(iFrame("BANDWIDTH=1,URI=\"i.m3u8\"", " "), nullptr);
    EXPECT_EQ(iFrame("BANDWIDTH=1", "v.m3u8"), nullptr);
}

TEST(VELHLSMediaVariant, IFrameVariantNeedsAUriAttribute) {
    for (const std::string attributes : {"BANDWIDTH=1", "BANDWIDTH=1,URI=\"\"", "BANDWIDTH=1,uri=\"i.m3u8\"",
                                         "BANDWIDTH=1,URL=\"i.m3u8\"", "BANDWIDTH=1, URI=\"i.m3u8\""}) {
        EXPECT_EQ(iFrame(attributes), nullptr) << attributes;
    }
}

TEST(VELHLSMediaVariant, WithoutABandwidthThereIsNoVariant) {
    for (const std::string attributes : {"", "CODECS=\"c\"", "AVERAGE-BANDWIDTH=1", "bandwidth=1",
                                         "BANDWIDTH =1", " BANDWIDTH=1", "PROGRAM-ID=1"}) {
        EXPECT_EQ(stream(attributes), nullptr) << attributes;
        EXPECT_EQ(iFrame("URI=\"i.m3u8\"," + attributes), nullptr) << attributes;
    }
}

TEST(VELHLSMediaVariant, BandwidthOfZeroMakesNoVariant) {
    for (const std::string& zero : record::zeros) {
        EXPECT_EQ(stream("BANDWIDTH=" + zero), nullptr) << zero;
        EXPECT_EQ(iFrame("URI=\"i.m3u8\",BANDWIDTH=" + zero), nullptr) << zero;
    }
}

TEST(VELHLSMediaVariant, ReadsTheNumberAtTheStartOfBandwidths) {
    for (const record::NumberText& row : record::numbers64) {
        SCOPED_TRACE(row.text);
        const std::string quoted = "\"" + row.text + "\"";
        const VariantPointer variant = stream("BANDWIDTH=" + quoted + ",AVERAGE-BANDWIDTH=" + quoted);
        ASSERT_NE(variant, nullptr);
        EXPECT_EQ(variant->bandwidth, row.number);
        EXPECT_EQ(variant->averageBandwidth, row.number);
    }
}

TEST(VELHLSMediaVariant, ReadsBandwidthsTheSameWithAndWithoutQuotes) {
    for (const record::NumberText& row : record::numbers64) {
        if (row.text.find(',') != std::string::npos) continue;
        SCOPED_TRACE(row.text);
        const VariantPointer variant = stream("BANDWIDTH=" + row.text + ",AVERAGE-BANDWIDTH=" + row.text);
        ASSERT_NE(variant, nullptr);
        EXPECT_EQ(variant->bandwidth, row.number);
        EXPECT_EQ(variant->averageBandwidth, row.number);
    }
}

TEST(VELHLSMediaVariant, AverageBandwidthOfZeroIsAsIfAbsent) {
    for (const std::string& zero : record::zeros) {
        EXPECT_EQ(text(stream("BANDWIDTH=1,AVERAGE-BANDWIDTH=" + zero)), text(stream("BANDWIDTH=1"))) << zero;
    }
}

TEST(VELHLSMediaVariant, ThrowsForNumbersThatAreNone) {
    for (const std::string& noNumber : record::noNumbers) {
        for (const std::string attribute : {"BANDWIDTH", "AVERAGE-BANDWIDTH", "PROGRAM-ID"}) {
            SCOPED_TRACE(attribute + "=\"" + noNumber + "\"");
            const std::string list = attribute + "=\"" + noNumber + "\",BANDWIDTH=1,URI=\"i.m3u8\"";
            EXPECT_EQ(playlist::thrownBy([&] { static_cast<void>(stream(list)); }), "invalid_argument");
            EXPECT_EQ(playlist::thrownBy([&] { static_cast<void>(iFrame(list)); }), "invalid_argument");
        }
    }
}

TEST(VELHLSMediaVariant, ThrowsForNumbersThatFitNoSigned64BitInteger) {
    for (const std::string& tooLarge : record::tooLargeFor64) {
        for (const std::string attribute : {"BANDWIDTH", "AVERAGE-BANDWIDTH", "PROGRAM-ID"}) {
            SCOPED_TRACE(attribute + "=" + tooLarge);
            const std::string list = attribute + "=" + tooLarge + ",BANDWIDTH=1,URI=\"i.m3u8\"";
            EXPECT_EQ(playlist::thrownBy([&] { static_cast<void>(stream(list)); }), "out_of_range");
            EXPECT_EQ(playlist::thrownBy([&] { static_cast<void>(iFrame(list)); }), "out_of_range");
        }
    }
}

TEST(VELHLSMediaVariant, ReadsTheNumberAtTheStartOfProgramId) {
    const std::vector<record::NumberText> rows = {
        {"1", 1},
        {" \t+12x", 12},
        {"007", 7},
        {"0x10", 0},
        {"2147483647", 2147483647U},
        {"2147483647.5", 2147483647U},
        {"-1", 4294967295U},
        {"-2", 4294967294U},
        {"-2147483647", 2147483649U},
        {"-2147483648", 2147483648U},
        {std::string(1000, '0') + "3", 3},
    };
    for (const record::NumberText& row : rows) {
        SCOPED_TRACE(row.text);
        const VariantPointer variant = stream("BANDWIDTH=1,PROGRAM-ID=" + row.text);
        ASSERT_NE(variant, nullptr);
        EXPECT_EQ(variant->programId, row.number);
    }
}

TEST(VELHLSMediaVariant, ThrowsForAProgramIdThatFitsNoSigned32BitInteger) {
    for (const std::string tooLarge :
         {"2147483648", "+2147483648", " 2147483648x", "-2147483649", "4294967295", "4294967296",
          "9223372036854775807", "-9223372036854775808"}) {
        SCOPED_TRACE(tooLarge);
        const std::string list = "BANDWIDTH=1,PROGRAM-ID=" + tooLarge;
        EXPECT_EQ(playlist::thrownBy([&] { static_cast<void>(stream(list)); }), "out_of_range");
    }
}

TEST(VELHLSMediaVariant, TheFirstAttributeByNameThrowsWhateverTheWrittenOrder) {
    const std::string noNumber = "=x";
    const std::string tooLarge = "=99999999999999999999";
    struct Row {
        std::vector<std::string> attributes;
        std::string thrown;
    };
    const std::vector<Row> rows = {
        {{"AVERAGE-BANDWIDTH" + noNumber, "BANDWIDTH" + tooLarge, "PROGRAM-ID" + tooLarge},
         "invalid_argument"},
        {{"AVERAGE-BANDWIDTH" + tooLarge, "BANDWIDTH" + noNumber, "PROGRAM-ID" + noNumber}, "out_of_range"},
        {{"AVERAGE-BANDWIDTH=1", "BANDWIDTH" + noNumber, "PROGRAM-ID" + tooLarge}, "invalid_argument"},
        {{"AVERAGE-BANDWIDTH=1", "BANDWIDTH" + tooLarge, "PROGRAM-ID" + noNumber}, "out_of_range"},
        {{"AVERAGE-BANDWIDTH=1", "BANDWIDTH=1", "PROGRAM-ID" + tooLarge}, "out_of_range"},
    };
    for (Row row : rows) {
        std::sort(row.attributes.begin(), row.attributes.end());
        do {
            const std::string list = row.attributes[0] + "," + row.attributes[1] + "," + row.attributes[2];
            EXPECT_EQ(playlist::thrownBy([&] { static_cast<void>(stream(list)); }), row.thrown) << list;
        } while (std::next_permutation(row.attributes.begin(), row.attributes.end()));
    }
}

TEST(VELHLSMediaVariant, AWrongUriLineIsSeenBeforeAnyNumber) {
    EXPECT_EQ(stream("BANDWIDTH=x", ""), nullptr);
    EXPECT_EQ(iFrame("BANDWIDTH=x,URI=\"i.m3u8\"", "v.m3u8"), nullptr);
}

TEST(VELHLSMediaVariant, AMalformedAttributeListIsSeenBeforeAnyNumber) {
    EXPECT_EQ(stream("BANDWIDTH=x,"), nullptr);
    EXPECT_EQ(iFrame("BANDWIDTH=x,URI"), nullptr);
}

TEST(VELHLSMediaVariant, ANumberThrowsAlsoWhereTheVariantWouldBeInvalid) {
    EXPECT_THROW(static_cast<void>(iFrame("BANDWIDTH=x")), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(stream("BANDWIDTH=0,PROGRAM-ID=x")), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(stream("AVERAGE-BANDWIDTH=9223372036854775808")), std::out_of_range);
}

TEST(VELHLSMediaVariant, TheFirstOfRepeatedAttributesHolds) {
    EXPECT_EQ(text(stream("BANDWIDTH=1,BANDWIDTH=x,AUDIO=\"a\",AUDIO=\"b\",CODECS=\"c\",CODECS=\"d\"")),
              "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"c\",AUDIO=\"a\",CLOSED-CAPTIONS=NONE\nv.m3u8\n");
    EXPECT_EQ(text(stream("BANDWIDTH=1,CLOSED-CAPTIONS=NONE,CLOSED-CAPTIONS=\"c\"")),
              text(stream("BANDWIDTH=1")));
    EXPECT_THROW(static_cast<void>(stream("BANDWIDTH=x,BANDWIDTH=1")), std::invalid_argument);
}

TEST(VELHLSMediaVariant, TheFirstOfRepeatedAttributesHoldsHoweverManyThereAre) {
    std::string list = "BANDWIDTH=1";
    for (int number = 0; number < 200; ++number) {
        list += ",X" + std::to_string(number) + "=1,BANDWIDTH=2,CODECS=\"c" + std::to_string(number) + "\"";
        EXPECT_EQ(text(stream(list)), text(stream("BANDWIDTH=1,CODECS=\"c0\""))) << list;
    }
}

TEST(VELHLSMediaVariant, NulBytesInValuesSurvive) {
    const VariantPointer variant = stream("BANDWIDTH=1,CODECS=\"a\0b\",RESOLUTION=\0,AUDIO=\"\0\""s, "u\0"s);

    ASSERT_NE(variant, nullptr);
    EXPECT_EQ(
        rendered(*variant),
        "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"a\0b\",RESOLUTION=\0,AUDIO=\"\0\",CLOSED-CAPTIONS=NONE\nu\0\n"s);
}

TEST(VELHLSMediaVariant, RejectsMalformedAttributeLists) {
    for (const std::string& list : record::malformedLists) {
        SCOPED_TRACE(list);
        EXPECT_EQ(stream("BANDWIDTH=1," + list), nullptr);
        EXPECT_EQ(stream(list + ",BANDWIDTH=1"), nullptr);
        EXPECT_EQ(stream(list), nullptr);
        EXPECT_EQ(iFrame("BANDWIDTH=1,URI=\"i.m3u8\"," + list), nullptr);
        EXPECT_EQ(iFrame(list + ",BANDWIDTH=1,URI=\"i.m3u8\""), nullptr);
    }
}

TEST(VELHLSMediaVariant, ReadsOrRejectsEachPrefixOfAnAttributeList) {
    const std::string bandwidthOnly = "#EXT-X-STREAM-INF:BANDWIDTH=1,CLOSED-CAPTIONS=NONE\nv.m3u8\n";
    const std::string codecs = "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"c\",CLOSED-CAPTIONS=NONE\nv.m3u8\n";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", "null"},
        {"B", "null"},
        {"BANDWIDTH", "null"},
        {"BANDWIDTH=", "null"},
        {"BANDWIDTH=1", bandwidthOnly},
        {"BANDWIDTH=1,", "null"},
        {"BANDWIDTH=1,C", "null"},
        {"BANDWIDTH=1,CODECS", "null"},
        {"BANDWIDTH=1,CODECS=", "null"},
        {"BANDWIDTH=1,CODECS=\"", bandwidthOnly},
        {"BANDWIDTH=1,CODECS=\"c", codecs},
        {"BANDWIDTH=1,CODECS=\"c\"", codecs},
        {"BANDWIDTH=1,CODECS=\"c\",", "null"},
        {"BANDWIDTH=1,CODECS=\"c\",X", "null"},
        {"BANDWIDTH=1,CODECS=\"c\",X=", "null"},
        {"BANDWIDTH=1,CODECS=\"c\",X=1", codecs},
    };
    for (const auto& [list, expected] : rows)
        EXPECT_EQ(text(stream(list)), expected) << list;
}

TEST(VELHLSMediaVariant, RejectsEachPrefixOfAnIFrameLineThatLacksItsUri) {
    const std::string line = iFrameTag + "BANDWIDTH=1,CODECS=\"c\",URI=\"";
    for (const std::string& prefix : record::properPrefixes(line)) {
        EXPECT_EQ(Variant::parseVariant(prefix, ""), nullptr) << prefix;
    }
    EXPECT_EQ(Variant::parseVariant(line, ""), nullptr);
    EXPECT_EQ(text(Variant::parseVariant(line + "i", "")),
              "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,CODECS=\"c\",CLOSED-CAPTIONS=NONE,URI=\"i\"\n");
}

TEST(VELHLSMediaVariant, RejectsEachPrefixOfItsTagsNames) {
    for (const std::string& tag : {streamTag, iFrameTag}) {
        for (const std::string& prefix : record::properPrefixes(tag)) {
            for (const std::string uriLine : {"", "v.m3u8"}) {
                EXPECT_EQ(Variant::parseVariant(prefix, uriLine), nullptr) << prefix;
                EXPECT_EQ(Variant::parseVariant(prefix + "BANDWIDTH=1,URI=\"i\"", uriLine), nullptr)
                    << prefix;
            }
        }
    }
}

TEST(VELHLSMediaVariant, RejectsOtherLines) {
    const std::vector<std::string> lines = {
        "",
        "#",
        ":",
        "X",
        "#EXTM3U",
        "v.m3u8",
        "#EXT-X-STREAM-INF",
        "#EXT-X-I-FRAME-STREAM-INF",
        "#ext-x-stream-inf:BANDWIDTH=1,URI=\"i\"",
        "#EXT-X-Stream-INF:BANDWIDTH=1,URI=\"i\"",
        " #EXT-X-STREAM-INF:BANDWIDTH=1,URI=\"i\"",
        "##EXT-X-STREAM-INF:BANDWIDTH=1,URI=\"i\"",
        "\xEF\xBB\xBF#EXT-X-STREAM-INF:BANDWIDTH=1,URI=\"i\"",
        "#EXT-X-STREAM-INF :BANDWIDTH=1,URI=\"i\"",
        "#EXT-X-STREAM-INF;BANDWIDTH=1,URI=\"i\"",
        "#EXT-X-STREAM-INF2:BANDWIDTH=1,URI=\"i\"",
        "#EXT-X-STREAM-INF\0:BANDWIDTH=1,URI=\"i\""s,
        "#EXT-X-I-FRAME-STREAM-INF2:BANDWIDTH=1,URI=\"i\"",
        "#EXT-X-IFRAME-STREAM-INF:BANDWIDTH=1,URI=\"i\"",
        "#EXT-X-MEDIA:TYPE=AUDIO,BANDWIDTH=1,URI=\"i\"",
        "#ZOR-STREAM-INF:BANDWIDTH=1,URI=\"i\"",
        "#BANDWIDTH=1,URI=\"i\"",
        "BANDWIDTH=1,URI=\"i\"",
    };
    for (const std::string& line : lines) {
        EXPECT_EQ(Variant::parseVariant(line, ""), nullptr) << line;
        EXPECT_EQ(Variant::parseVariant(line, "v.m3u8"), nullptr) << line;
    }
}

TEST(VELHLSMediaVariant, OfOtherLinesAllAfterTheFirstCharacterIsReadAsAttributes) {
    struct Row {
        std::string line;
        std::string thrown;
    };
    const std::vector<Row> rows = {
        {"#BANDWIDTH=x", "invalid_argument"},
        {"XBANDWIDTH=x", "invalid_argument"},
        {"\0BANDWIDTH=x"s, "invalid_argument"},
        {"#BANDWIDTH=9223372036854775808", "out_of_range"},
        {"#AVERAGE-BANDWIDTH=x", "invalid_argument"},
        {"#PROGRAM-ID=2147483648", "out_of_range"},
        {"#EXT-X-MEDIA:TYPE=AUDIO,BANDWIDTH=x", "invalid_argument"},
        {"#EXT-X-STREAM-IN:X=1,BANDWIDTH=x", "invalid_argument"},
        {"#ext-x-stream-inf:X=1,BANDWIDTH=x", "invalid_argument"},
        {"#EXT-X-I-FRAME-STREAM-IN:X=1,BANDWIDTH=99999999999999999999", "out_of_range"},
        {"BANDWIDTH=x", "nothing"},
        {"##BANDWIDTH=x", "nothing"},
        {"#EXT-X-STREAM-IN:BANDWIDTH=x", "nothing"},
        {"#BANDWIDTH=x,", "nothing"},
        {"#BANDWIDTH=", "nothing"},
        {"#BANDWIDTH", "nothing"},
        {"#BANDWIDTH=1", "nothing"},
    };
    for (const Row& row : rows) {
        for (const std::string uriLine : {"", "v.m3u8"}) {
            EXPECT_EQ(
                playlist::thrownBy([&] { static_cast<void>(Variant::parseVariant(row.line, uriLine)); }),
                row.thrown)
                << row.line;
        }
    }
    EXPECT_THROW(static_cast<void>(Variant::parseVariant("#BANDWIDTH=x", "")), std::invalid_argument);
}

// --- validate

TEST(VELHLSMediaVariant, ValidatesByUriMediaStreamAndBandwidth) {
    struct Row {
        std::string rule;
        std::function<void(Variant&)> change;
        bool valid;
    };
    const std::vector<Row> rows = {
        {"as it is", [](Variant&) {}, true},
        {"no uri", [](Variant& variant) { variant.uri.clear(); }, false},
        {"uri of one NUL", [](Variant& variant) { variant.uri.assign(1, '\0'); }, true},
        {"bandwidth 0", [](Variant& variant) { variant.bandwidth = 0; }, false},
        {"largest bandwidth", [](Variant& variant) { variant.bandwidth = 18446744073709551615U; }, true},
        {"empty media stream",
         [](Variant& variant) { variant.mediaStream = std::make_shared<VELHLSMediaStream>(); }, true},
        {"invalid media stream", [](Variant& variant) { variant.mediaStream = invalidMediaStream(); }, false},
        {"all of it wrong",
         [](Variant& variant) { variant = Variant(0, 0, "", "", "", invalidMediaStream(), false, 0); },
         false},
        {"average above bandwidth", [](Variant& variant) { variant.averageBandwidth = 2; }, true},
        {"empty group id", [](Variant& variant) { variant.groupIds[Rendition::Audio] = ""; }, true},
        {"group of no type", [](Variant& variant) { variant.groupIds[Rendition::Unknown] = "x"; }, true},
        {"nominal bit rates above bandwidth",
         [](Variant& variant) { variant.nominalVideoBitrate = variant.nominalAudioBitrate = 9; }, true},
    };
    for (const Row& row : rows) {
        for (const bool isIFrame : {false, true}) {
            Variant variant = smallest();
            variant.isIFrame = isIFrame;
            row.change(variant);
            EXPECT_EQ(variant.validate(), row.valid) << row.rule << (isIFrame ? ", I-frame" : "");
        }
    }
}

TEST(VELHLSMediaVariant, ValidatesByTheMediaStreamAsItIsNow) {
    Variant variant = smallest();
    variant.mediaStream = invalidMediaStream();
    EXPECT_FALSE(variant.validate());

    variant.mediaStream->segments.front()->duration = 4.0;
    EXPECT_TRUE(variant.validate());
    EXPECT_EQ(rendered(variant), rendered(smallest()));
}

// --- render

TEST(VELHLSMediaVariant, RendersAttributesInAFixedOrder) {
    std::vector<std::string> attributes = {"AUDIO=\"a\"",           "AVERAGE-BANDWIDTH=2", "BANDWIDTH=3",
                                           "CLOSED-CAPTIONS=\"c\"", "CODECS=\"d\"",        "PROGRAM-ID=1",
                                           "RESOLUTION=1x2",        "SUBTITLES=\"s\"",     "VIDEO=\"v\""};
    const std::string expected =
        "#EXT-X-STREAM-INF:BANDWIDTH=3,PROGRAM-ID=1,AVERAGE-BANDWIDTH=2,CODECS=\"d\",RESOLUTION=1x2,"
        "AUDIO=\"a\",VIDEO=\"v\",SUBTITLES=\"s\",CLOSED-CAPTIONS=\"c\"\nv.m3u8\n";
    for (std::size_t turn = 0; turn < attributes.size(); ++turn) {
        std::rotate(attributes.begin(), attributes.begin() + 1, attributes.end());
        std::string list;
        for (const std::string& attribute : attributes)
            list += (list.empty() ? "" : ",") + attribute;
        EXPECT_EQ(text(stream(list)), expected) << list;
    }
}

TEST(VELHLSMediaVariant, RendersEachMember) {
    struct Row {
        std::function<void(Variant&)> change;
        std::string attributes;
    };
    const std::vector<Row> rows = {
        {[](Variant&) {}, "BANDWIDTH=1,CLOSED-CAPTIONS=NONE"},
        {[](Variant& variant) { variant.bandwidth = 18446744073709551615U; },
         "BANDWIDTH=18446744073709551615,CLOSED-CAPTIONS=NONE"},
        {[](Variant& variant) { variant.programId = 4294967295U; },
         "BANDWIDTH=1,PROGRAM-ID=4294967295,CLOSED-CAPTIONS=NONE"},
        {[](Variant& variant) { variant.averageBandwidth = 18446744073709551615U; },
         "BANDWIDTH=1,AVERAGE-BANDWIDTH=18446744073709551615,CLOSED-CAPTIONS=NONE"},
        {[](Variant& variant) { variant.codecs = "a,b"; }, "BANDWIDTH=1,CODECS=\"a,b\",CLOSED-CAPTIONS=NONE"},
        {[](Variant& variant) { variant.resolution = "1,2"; },
         "BANDWIDTH=1,RESOLUTION=1,2,CLOSED-CAPTIONS=NONE"},
        {[](Variant& variant) {
             variant.groupIds = {{Rendition::Audio, "a"}};
         },
         "BANDWIDTH=1,AUDIO=\"a\",CLOSED-CAPTIONS=NONE"},
        {[](Variant& variant) {
             variant.groupIds = {{Rendition::Audio, ""}};
         },
         "BANDWIDTH=1,AUDIO=\"\",CLOSED-CAPTIONS=NONE"},
        {[](Variant& variant) {
             variant.groupIds = {{Rendition::Video, "v"}};
         },
         "BANDWIDTH=1,VIDEO=\"v\",CLOSED-CAPTIONS=NONE"},
        {[](Variant& variant) {
             variant.groupIds = {{Rendition::Subtitles, "s"}};
         },
         "BANDWIDTH=1,SUBTITLES=\"s\",CLOSED-CAPTIONS=NONE"},
        {[](Variant& variant) {
             variant.groupIds = {{Rendition::ClosedCaptions, "c"}};
         },
         "BANDWIDTH=1,CLOSED-CAPTIONS=\"c\""},
        {[](Variant& variant) {
             variant.groupIds = {{Rendition::ClosedCaptions, ""}};
         },
         "BANDWIDTH=1,CLOSED-CAPTIONS=\"\""},
        {[](Variant& variant) {
             variant.groupIds = {{Rendition::ClosedCaptions, "NONE"}};
         },
         "BANDWIDTH=1,CLOSED-CAPTIONS=\"NONE\""},
        {[](Variant& variant) { variant.nominalVideoBitrate = variant.nominalAudioBitrate = 9; },
         "BANDWIDTH=1,CLOSED-CAPTIONS=NONE"},
    };
    for (const Row& row : rows) {
        Variant variant = smallest();
        row.change(variant);
        EXPECT_EQ(rendered(variant), streamTag + row.attributes + "\nv.m3u8\n");
        variant.isIFrame = true;
        EXPECT_EQ(rendered(variant), iFrameTag + row.attributes + ",URI=\"v.m3u8\"\n");
    }
}

TEST(VELHLSMediaVariant, RendersTextsOfEveryLength) {
    for (std::size_t length = 1; length < 1100; ++length) {
        std::string letters;
        while (letters.size() < length)
            letters += static_cast<char>('a' + letters.size() % 23);
        VELHLSMediaVariant variant(1, 0, letters, std::string(length % 7, 'r'), "u", nullptr, false, 0);
        variant.groupIds[VELHLSMediaStreamRendition::Audio] = letters.substr(length / 2);
        const std::string resolution = length % 7 == 0 ? "" : ",RESOLUTION=" + variant.resolution;
        EXPECT_EQ(rendered(variant), "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"" + letters + "\"" + resolution +
                                         ",AUDIO=\"" + letters.substr(length / 2) +
                                         "\",CLOSED-CAPTIONS=NONE\nu\n");
    }
}

TEST(VELHLSMediaVariant, RendersAnIFrameVariantOnOneLineWithItsUriLast) {
    EXPECT_EQ(text(iFrame("URI=\"i.m3u8\",AUDIO=\"a\",BANDWIDTH=2,CODECS=\"c\"")),
              "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=2,CODECS=\"c\",AUDIO=\"a\",CLOSED-CAPTIONS=NONE,URI=\"i."
              "m3u8\"\n");
}

TEST(VELHLSMediaVariant, RendersNoCaptionsAsNoneWhetherOrNotTheyWereRead) {
    const std::string expected = "#EXT-X-STREAM-INF:BANDWIDTH=1,CLOSED-CAPTIONS=NONE\nv.m3u8\n";
    EXPECT_EQ(text(stream("BANDWIDTH=1,CLOSED-CAPTIONS=NONE")), expected);
    EXPECT_EQ(text(stream("CLOSED-CAPTIONS=NONE,BANDWIDTH=1")), expected);
    EXPECT_EQ(text(stream("BANDWIDTH=1")), expected);
}

TEST(VELHLSMediaVariant, DoesNotRenderAGroupOfNoKnownType) {
    Variant variant = smallest();
    for (const std::uint32_t number : {4U, 5U, 255U, 4294967294U, 4294967295U}) {
        variant.groupIds[static_cast<Rendition::RenditionType>(number)] = "x";
    }
    EXPECT_EQ(rendered(variant), rendered(smallest()));

    variant.groupIds[Rendition::ClosedCaptions] = "c";
    variant.groupIds[Rendition::Video] = "v";
    EXPECT_EQ(rendered(variant), "#EXT-X-STREAM-INF:BANDWIDTH=1,VIDEO=\"v\",CLOSED-CAPTIONS=\"c\"\nv.m3u8\n");
}

TEST(VELHLSMediaVariant, RenderAppends) {
    std::string out = "kept\0|"s;
    EXPECT_EQ(smallest().render(out), 0);
    EXPECT_EQ(smallest().render(out), 0);
    EXPECT_EQ(out, "kept\0|"s + rendered(smallest()) + rendered(smallest()));
}

TEST(VELHLSMediaVariant, RenderOfAnInvalidVariantLeavesTheTextUntouched) {
    Variant noUri = smallest();
    noUri.uri.clear();
    Variant noBandwidth = smallest();
    noBandwidth.bandwidth = 0;
    Variant wrongMedia = smallest();
    wrongMedia.mediaStream = invalidMediaStream();
    for (Variant variant : {noUri, noBandwidth, wrongMedia}) {
        for (const bool isIFrame : {false, true}) {
            variant.isIFrame = isIFrame;
            std::string out = "kept";
            EXPECT_EQ(variant.render(out), -1);
            EXPECT_EQ(out, "kept");
        }
    }
}

TEST(VELHLSMediaVariant, WhatWasRenderedReadsBackTheSame) {
    const std::vector<std::string> lists = {
        "BANDWIDTH=1",
        "BANDWIDTH=9223372036854775807,AVERAGE-BANDWIDTH=9223372036854775807,PROGRAM-ID=2147483647",
        "BANDWIDTH=\" +12kbit\",AVERAGE-BANDWIDTH=012",
        "BANDWIDTH=1,CODECS=\"a=b,c=d\",AUDIO=\"x,y\",VIDEO=\" \",SUBTITLES=\"=\",CLOSED-CAPTIONS=\",\"",
        "BANDWIDTH=1,AUDIO=\"\",VIDEO=\"\",SUBTITLES=\"\",CLOSED-CAPTIONS=\"\"",
        "BANDWIDTH=1,RESOLUTION=\"1x1 \",CODECS=unquoted,X=1,Y=\"2\"",
        "BANDWIDTH=1,CODECS=\"\0\",RESOLUTION=\0x\0"s,
        "BANDWIDTH=1,CODECS=\"not closed",
    };
    for (const std::string& list : lists) {
        SCOPED_TRACE(list);
        const VariantPointer first = stream(list, "a,b=\"c\"");
        ASSERT_NE(first, nullptr);
        const std::string lines = rendered(*first);
        const std::size_t lineFeed = lines.find('\n');
        const VariantPointer second = Variant::parseVariant(
            lines.substr(0, lineFeed), lines.substr(lineFeed + 1, lines.size() - lineFeed - 2));
        ASSERT_NE(second, nullptr);
        expectSameModel(*second, *first);
        EXPECT_EQ(rendered(*second), lines);
    }
}

TEST(VELHLSMediaVariant, WhatWasRenderedOfAnIFrameVariantReadsBackTheSame) {
    for (const std::string list :
         {"BANDWIDTH=1,URI=\"i\"", "URI=i,BANDWIDTH=2,AVERAGE-BANDWIDTH=1,PROGRAM-ID=3",
          "BANDWIDTH=1,CODECS=\"a,b\",VIDEO=\"v\",URI=\"a,b=c\""}) {
        SCOPED_TRACE(list);
        const VariantPointer first = iFrame(list);
        ASSERT_NE(first, nullptr);
        std::string line = rendered(*first);
        line.pop_back();
        const VariantPointer second = Variant::parseVariant(line, "");
        ASSERT_NE(second, nullptr);
        expectSameModel(*second, *first);
        EXPECT_EQ(rendered(*second), line + "\n");
    }
}

// A negative bandwidth is written as the unsigned number that it was stored as, which no signed one holds.
TEST(VELHLSMediaVariant, ARenderedNegativeBandwidthDoesNotReadBack) {
    EXPECT_EQ(text(stream("BANDWIDTH=-1")),
              "#EXT-X-STREAM-INF:BANDWIDTH=18446744073709551615,CLOSED-CAPTIONS=NONE\nv.m3u8\n");
    EXPECT_THROW(static_cast<void>(stream("BANDWIDTH=18446744073709551615")), std::out_of_range);
}

// --- getCVBRRatio

TEST(VELHLSMediaVariant, RatioIsBandwidthWithoutAudioOverVideo) {
    struct Row {
        std::uint64_t bandwidth;
        std::uint64_t audio;
        std::uint64_t video;
        double ratio;
    };
    const double infinite = std::numeric_limits<double>::infinity();
    const std::vector<Row> rows = {
        {1000, 200, 800, 1.0},
        {5605600, 128000, 5477600, 1.0},
        {18446744073709551615U, 9223372036854775807U, 9223372036854775808U, 1.0},
        {1000, 0, 500, 2.0},
        {1000, 0, 3000, 1000.0 / 3000.0},
        {200, 200, 800, 0.0},
        {0, 0, 800, 0.0},
        {18446744073709551615U, 0, 1, 18446744073709551616.0},
        {9007199254740993U, 0, 1, 9007199254740992.0},
        {0, 1, 1, 18446744073709551616.0},
        {199, 200, 2, 9223372036854775808.0},
        {0, 9223372036854775808U, 1, 9223372036854775808.0},
        {1000, 200, 0, infinite},
        {199, 200, 0, infinite},
        {1, 0, 0, infinite},
    };
    for (const Row& row : rows) {
        Variant variant(row.bandwidth, 0, "", "", "v.m3u8", nullptr, false, 0);
        variant.nominalAudioBitrate = row.audio;
        variant.nominalVideoBitrate = row.video;
        EXPECT_EQ(variant.getCVBRRatio(), row.ratio)
            << row.bandwidth << " - " << row.audio << " over " << row.video;
    }
}

TEST(VELHLSMediaVariant, RatioOfZeroOverZeroIsNotANumber) {
    for (const std::uint64_t bitrate :
         {std::uint64_t{0}, std::uint64_t{1000}, std::uint64_t{18446744073709551615U}}) {
        Variant variant(bitrate, 0, "", "", "", nullptr, false, 0);
        variant.nominalAudioBitrate = bitrate;
        EXPECT_TRUE(std::isnan(variant.getCVBRRatio())) << bitrate;
    }
}

TEST(VELHLSMediaVariant, ParsedVariantHasAnInfiniteRatio) {
    const VariantPointer variant = stream("BANDWIDTH=1");
    ASSERT_NE(variant, nullptr);
    EXPECT_EQ(variant->getCVBRRatio(), std::numeric_limits<double>::infinity());
}

// --- large input

TEST(VELHLSMediaVariant, ReadsAndRendersMegabytesQuickly) {
    const std::string large(record::megabyte, 'c');
    const double seconds = record::secondsOf([&] {
        const VariantPointer variant =
            stream("BANDWIDTH=1,CODECS=\"" + large + "\",RESOLUTION=" + large + ",AUDIO=\"" + large + "\"",
                   large + ".m3u8");
        ASSERT_NE(variant, nullptr);
        EXPECT_TRUE(rendered(*variant) == streamTag + "BANDWIDTH=1,CODECS=\"" + large +
                                              "\",RESOLUTION=" + large + ",AUDIO=\"" + large +
                                              "\",CLOSED-CAPTIONS=NONE\n" + large + ".m3u8\n");
    });
    EXPECT_LT(seconds, record::quickSeconds);
}

TEST(VELHLSMediaVariant, ReadsManyAttributesQuickly) {
    const std::string list = record::manyAttributes() + "BANDWIDTH=1,CODECS=\"c\"";
    const double seconds = record::secondsOf([&] {
        EXPECT_EQ(text(stream(list)),
                  "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"c\",CLOSED-CAPTIONS=NONE\nv.m3u8\n");
    });
    EXPECT_LT(seconds, record::quickSeconds);
}

TEST(VELHLSMediaVariant, RejectsNumbersOfAMegabyteQuickly) {
    const std::string nines(record::megabyte, '9');
    const double seconds = record::secondsOf([&] {
        EXPECT_THROW(static_cast<void>(stream("BANDWIDTH=" + nines)), std::out_of_range);
        EXPECT_THROW(static_cast<void>(stream("BANDWIDTH=1,PROGRAM-ID=-" + nines)), std::out_of_range);
        EXPECT_THROW(static_cast<void>(stream("BANDWIDTH=x" + nines)), std::invalid_argument);
    });
    EXPECT_LT(seconds, record::quickSeconds);
}

}  // namespace
