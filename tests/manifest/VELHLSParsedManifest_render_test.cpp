#include <cstdint>
#include <iomanip>
#include <limits>
#include <locale>
#include <memory>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/manifest/ManifestDescription.h"
#include "tests/support/PlaylistText.h"

namespace {

using namespace std::string_literals;
using playlist::describe;
using playlist::lines;

using Manifest = VELHLSParsedManifest;
using Rendition = VELHLSMediaStreamRendition;

std::shared_ptr<Manifest> parsed(const std::string& text) {
    std::istringstream input(text);
    return Manifest::parseManifest(input, nullptr);
}

/// The playlist text; a result that is not 0 is put before it.
std::string rendered(const Manifest& manifest) {
    std::ostringstream out;
    const std::int32_t result = manifest.render(out);
    return (result == 0 ? "" : "[" + std::to_string(result) + "]") + out.str();
}

/// Text in, text out.
std::string renderedAgain(const std::string& text) {
    const auto manifest = parsed(text);
    return manifest == nullptr ? "rejected" : rendered(*manifest);
}

std::shared_ptr<VELHLSMediaVariant> variantOf(std::uint64_t bandwidth, const std::string& uri = "u") {
    return std::make_shared<VELHLSMediaVariant>(bandwidth, 0, "", "", uri, nullptr, false, 0);
}

/// A manifest made by hand, with no start offset and one variant: two lines after the header.
Manifest smallManifest() {
    Manifest manifest;
    manifest.startTimeOffset = 0.0;
    manifest.variants.emplace(5, variantOf(5));
    return manifest;
}

const std::string smallVariant = "#EXT-X-STREAM-INF:BANDWIDTH=5,CLOSED-CAPTIONS=NONE\nu\n";
const std::string smallText = "#EXTM3U\n" + smallVariant;

/// Every tag that is written, each in its written form and place.
const std::string wholePlaylist = lines({
    "#EXTM3U",
    "#EXT-X-VERSION:6",
    "#EXT-X-INDEPENDENT-SEGMENTS",
    "#EXT-X-START:TIME-OFFSET=25,PRECISE=YES",
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"en\",URI=\"en.m3u8\",LANGUAGE=\"en\",DEFAULT=YES,"
    "AUTOSELECT=YES",
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"fr\",ASSOC-LANGUAGE=\"fr\",CHARACTERISTICS=\"x,y\"",
    "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"s\",NAME=\"z\",URI=\"z.m3u8\"",
    "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"s\",NAME=\"a\",URI=\"a.m3u8\",FORCED=YES",
    "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"cc\",INSTREAM-ID=\"CC1\"",
    "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=90000,CODECS=\"avc1\",RESOLUTION=1x2,CLOSED-CAPTIONS=NONE,URI=\"i."
    "m3u8\"",
    "#EXT-X-STREAM-INF:BANDWIDTH=800000,PROGRAM-ID=1,AVERAGE-BANDWIDTH=700000,CODECS=\"avc1,mp4a\","
    "RESOLUTION=1280x720,AUDIO=\"a\",SUBTITLES=\"s\",CLOSED-CAPTIONS=\"c\"",
    "low.m3u8",
    "#EXT-X-STREAM-INF:BANDWIDTH=9000000,AUDIO=\"a\",CLOSED-CAPTIONS=NONE",
    "high.m3u8",
});

// ---------------------------------------------------------------------------------------------------------
// The manifest's own lines

TEST(VELHLSParsedManifestRender, HeaderIsFollowedDirectlyByTheRecords) {
    EXPECT_EQ(rendered(smallManifest()), smallText);
}

TEST(VELHLSParsedManifestRender, WritesTheHeaderWhetherItWasReadOrNot) {
    const std::string body = "#EXT-X-START:TIME-OFFSET=1\n" + smallVariant;
    EXPECT_EQ(renderedAgain(body), "#EXTM3U\n" + body);
    EXPECT_EQ(renderedAgain("#EXTM3U\n" + body), "#EXTM3U\n" + body);
}

TEST(VELHLSParsedManifestRender, WritesEveryVersionButOne) {
    const struct {
        std::int32_t version;
        std::string line;
    } rows[] = {
        {1, ""},
        {0, "#EXT-X-VERSION:0\n"},
        {2, "#EXT-X-VERSION:2\n"},
        {7, "#EXT-X-VERSION:7\n"},
        {-1, "#EXT-X-VERSION:-1\n"},
        {1234567, "#EXT-X-VERSION:1234567\n"},
        {2147483647, "#EXT-X-VERSION:2147483647\n"},
        {-2147483647 - 1, "#EXT-X-VERSION:-2147483648\n"},
    };
    for (const auto& row : rows) {
        Manifest manifest = smallManifest();
        manifest.version = row.version;
        EXPECT_EQ(rendered(manifest), "#EXTM3U\n" + row.line + smallVariant);
    }
    EXPECT_EQ(renderedAgain("#EXT-X-VERSION:1\n#EXT-X-START:TIME-OFFSET=0\n" + smallVariant), smallText);
}

TEST(VELHLSParsedManifestRender, WritesIndependentSegments) {
    Manifest manifest = smallManifest();
    manifest.independentSegments = true;
    EXPECT_EQ(rendered(manifest), "#EXTM3U\n#EXT-X-INDEPENDENT-SEGMENTS\n" + smallVariant);
}

TEST(VELHLSParsedManifestRender, WritesTheStartOffsetInSixSignificantDigits) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        double offset;
        std::string written;
    } rows[] = {
        {10.5, "10.5"},
        {-1.0, "-1"},
        {25.0, "25"},
        {-4.5, "-4.5"},
        {1234567.0, "1.23457e+06"},
        {-1234567.0, "-1.23457e+06"},
        {999999.0, "999999"},
        {999999.5, "1e+06"},
        {100000.0, "100000"},
        {1000000.0, "1e+06"},
        {0.1 + 0.2, "0.3"},
        {1.0 / 3.0, "0.333333"},
        {2.0 / 3.0, "0.666667"},
        {0.0001, "0.0001"},
        {0.00001, "1e-05"},
        {1e300, "1e+300"},
        {5e-324, "4.94066e-324"},
        {nan, "nan"},
        {infinity, "inf"},
        {-infinity, "-inf"},
    };
    for (const auto& row : rows) {
        Manifest manifest = smallManifest();
        manifest.startTimeOffset = row.offset;
        EXPECT_EQ(rendered(manifest),
                  "#EXTM3U\n#EXT-X-START:TIME-OFFSET=" + row.written + "\n" + smallVariant);
        manifest.startPrecise = true;
        EXPECT_EQ(rendered(manifest),
                  "#EXTM3U\n#EXT-X-START:TIME-OFFSET=" + row.written + ",PRECISE=YES\n" + smallVariant);
    }
}

TEST(VELHLSParsedManifestRender, OffsetOfZeroIsNotWrittenEvenWhenPrecise) {
    for (const double zero : {0.0, -0.0}) {
        for (const bool precise : {false, true}) {
            Manifest manifest = smallManifest();
            manifest.startTimeOffset = zero;
            manifest.startPrecise = precise;
            EXPECT_EQ(rendered(manifest), smallText);
        }
    }
    EXPECT_EQ(renderedAgain("#EXT-X-START:TIME-OFFSET=-0.0,PRECISE=YES\n" + smallVariant), smallText);
}

TEST(VELHLSParsedManifestRender, PlaylistWithoutStartGetsTheDefaultOffset) {
    EXPECT_EQ(renderedAgain(smallVariant), "#EXTM3U\n#EXT-X-START:TIME-OFFSET=-1\n" + smallVariant);
}

TEST(VELHLSParsedManifestRender, WritesBackTheStartThatItRead) {
    const struct {
        std::string read;
        std::string written;
    } rows[] = {
        {"TIME-OFFSET=25,PRECISE=YES", "TIME-OFFSET=25,PRECISE=YES"},
        {"PRECISE=YES,TIME-OFFSET=25.0", "TIME-OFFSET=25,PRECISE=YES"},
        {"TIME-OFFSET=10.5,PRECISE=NO", "TIME-OFFSET=10.5"},
        {"TIME-OFFSET=+010.50", "TIME-OFFSET=10.5"},
        {"TIME-OFFSET=-.25", "TIME-OFFSET=-0.25"},
        {"TIME-OFFSET=1234567", "TIME-OFFSET=1.23457e+06"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(renderedAgain("#EXT-X-START:" + row.read + "\n" + smallVariant),
                  "#EXTM3U\n#EXT-X-START:" + row.written + "\n" + smallVariant);
    }
}

TEST(VELHLSParsedManifestRender, OwnLinesComeInTheirOrder) {
    Manifest manifest = smallManifest();
    manifest.version = 4;
    manifest.independentSegments = true;
    manifest.startTimeOffset = 1.5;
    EXPECT_EQ(rendered(manifest),
              "#EXTM3U\n#EXT-X-VERSION:4\n#EXT-X-INDEPENDENT-SEGMENTS\n"
              "#EXT-X-START:TIME-OFFSET=1.5\n" +
                  smallVariant);
}

// ---------------------------------------------------------------------------------------------------------
// The order of the records

std::shared_ptr<Rendition> renditionOf(Rendition::RenditionType type, const std::string& groupId,
                                       const std::string& name, bool forced = false) {
    const std::string instreamId = type == Rendition::ClosedCaptions ? "CC1" : "";
    return std::make_shared<Rendition>(type, "", nullptr, groupId, "", "", name, false, false, forced,
                                       instreamId, "");
}

void file(Manifest& manifest, const std::shared_ptr<Rendition>& rendition) {
    manifest.renditions[rendition->type][rendition->groupId][rendition->name] = rendition;
}

/// What each rendition line says of itself: "TYPE group name" or "TYPE group name forced".
std::string renditionOrder(const std::string& text) {
    std::string order;
    std::istringstream input(text);
    for (std::string line; std::getline(input, line);) {
        const auto rendition = Rendition::parse(line);
        if (rendition == nullptr) continue;
        order += std::to_string(rendition->type) + " " + rendition->groupId + " " + rendition->name +
                 (rendition->forced ? " forced\n" : "\n");
    }
    return order;
}

TEST(VELHLSParsedManifestRender, RenditionsComeByTypeThenGroupThenName) {
    Manifest manifest = smallManifest();
    for (const auto type :
         {Rendition::ClosedCaptions, Rendition::Subtitles, Rendition::Audio, Rendition::Video}) {
        for (const std::string& groupId : {"b"s, "a"s}) {
            for (const std::string& name : {"y"s, "x"s}) {
                file(manifest, renditionOf(type, groupId, name));
            }
        }
    }
    EXPECT_EQ(renditionOrder(rendered(manifest)),
              "0 a x\n0 a y\n0 b x\n0 b y\n1 a x\n1 a y\n1 b x\n1 b y\n"
              "2 a x\n2 a y\n2 b x\n2 b y\n3 a x\n3 a y\n3 b x\n3 b y\n");
}

TEST(VELHLSParsedManifestRender, GroupsAndNamesComeInTheOrderOfTheirBytes) {
    Manifest manifest = smallManifest();
    for (const std::string& text : {"\xC3\xA9"s, "a"s, "Z"s, "aa"s, "10"s, "9"s, " "s}) {
        file(manifest, renditionOf(Rendition::Audio, "g", text));
    }
    EXPECT_EQ(renditionOrder(rendered(manifest)),
              "0 g  \n0 g 10\n0 g 9\n0 g Z\n0 g a\n0 g aa\n0 g \xC3\xA9\n");

    manifest.renditions.clear();
    for (const std::string& text : {"\xC3\xA9"s, "a"s, "Z"s, "aa"s, "10"s, "9"s, " "s}) {
        file(manifest, renditionOf(Rendition::Audio, text, "n"));
    }
    EXPECT_EQ(renditionOrder(rendered(manifest)),
              "0   n\n0 10 n\n0 9 n\n0 Z n\n0 a n\n0 aa n\n0 \xC3\xA9 n\n");
}

TEST(VELHLSParsedManifestRender, ForcedRenditionsFollowTheOthersOfTheirGroup) {
    Manifest manifest = smallManifest();
    for (const std::string& groupId : {"g"s, "h"s}) {
        file(manifest, renditionOf(Rendition::Subtitles, groupId, "a"));
        file(manifest, renditionOf(Rendition::Subtitles, groupId, "b", true));
        file(manifest, renditionOf(Rendition::Subtitles, groupId, "c"));
        file(manifest, renditionOf(Rendition::Subtitles, groupId, "A", true));
    }
    EXPECT_EQ(renditionOrder(rendered(manifest)),
              "2 g a\n2 g c\n2 g A forced\n2 g b forced\n2 h a\n2 h c\n2 h A forced\n2 h b forced\n");
}

TEST(VELHLSParsedManifestRender, GroupOfForcedRenditionsAloneIsWritten) {
    Manifest manifest = smallManifest();
    file(manifest, renditionOf(Rendition::Subtitles, "g", "b", true));
    file(manifest, renditionOf(Rendition::Subtitles, "g", "a", true));
    EXPECT_EQ(renditionOrder(rendered(manifest)), "2 g a forced\n2 g b forced\n");
}

TEST(VELHLSParsedManifestRender, EmptyTypesAndGroupsWriteNothing) {
    Manifest manifest = smallManifest();
    manifest.renditions[Rendition::Audio];
    manifest.renditions[Rendition::Video]["g"];
    EXPECT_EQ(rendered(manifest), smallText);
}

TEST(VELHLSParsedManifestRender, VariantsOfBothKindsComeByBandwidth) {
    EXPECT_EQ(renderedAgain(lines({"#EXT-X-START:TIME-OFFSET=0", "#EXT-X-STREAM-INF:BANDWIDTH=3000000",
                                   "three", "#EXT-X-STREAM-INF:BANDWIDTH=1000000", "one",
                                   "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1500000,URI=\"i\"",
                                   "#EXT-X-STREAM-INF:BANDWIDTH=2000000", "two"})),
              lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=1000000,CLOSED-CAPTIONS=NONE", "one",
                     "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1500000,CLOSED-CAPTIONS=NONE,URI=\"i\"",
                     "#EXT-X-STREAM-INF:BANDWIDTH=2000000,CLOSED-CAPTIONS=NONE", "two",
                     "#EXT-X-STREAM-INF:BANDWIDTH=3000000,CLOSED-CAPTIONS=NONE", "three"}));
}

TEST(VELHLSParsedManifestRender, VariantsComeByNumberAndNotByText) {
    EXPECT_EQ(renderedAgain(
                  lines({"#EXT-X-START:TIME-OFFSET=0", "#EXT-X-STREAM-INF:BANDWIDTH=-1", "wrapped",
                         "#EXT-X-STREAM-INF:BANDWIDTH=10", "ten", "#EXT-X-STREAM-INF:BANDWIDTH=9", "nine"})),
              lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=9,CLOSED-CAPTIONS=NONE", "nine",
                     "#EXT-X-STREAM-INF:BANDWIDTH=10,CLOSED-CAPTIONS=NONE", "ten",
                     "#EXT-X-STREAM-INF:BANDWIDTH=18446744073709551615,CLOSED-CAPTIONS=NONE", "wrapped"}));
}

TEST(VELHLSParsedManifestRender, VariantsOfEqualBandwidthKeepTheirOrder) {
    EXPECT_EQ(renderedAgain(lines({"#EXT-X-START:TIME-OFFSET=0", "#EXT-X-STREAM-INF:BANDWIDTH=5", "z",
                                   "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=5,URI=\"y\"",
                                   "#EXT-X-STREAM-INF:BANDWIDTH=5", "x"})),
              lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=5,CLOSED-CAPTIONS=NONE", "z",
                     "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=5,CLOSED-CAPTIONS=NONE,URI=\"y\"",
                     "#EXT-X-STREAM-INF:BANDWIDTH=5,CLOSED-CAPTIONS=NONE", "x"}));
}

TEST(VELHLSParsedManifestRender, VariantsAreTakenFromTheMultimapByTheirKeys) {
    Manifest manifest = smallManifest();
    manifest.streamVariants.push_back(variantOf(1, "only in the vector"));
    manifest.variants.emplace(1, variantOf(9, "filed under 1"));
    EXPECT_EQ(rendered(manifest),
              "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=9,CLOSED-CAPTIONS=NONE\nfiled under 1\n" + smallVariant);
}

TEST(VELHLSParsedManifestRender, SessionDataComesLastInFileOrder) {
    EXPECT_EQ(renderedAgain(
                  lines({"#EXT-X-SESSION-DATA:X=1,DATA-ID=\"b\",VALUE=\"1\"",
                         "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"a\",URI=\"2\",LANGUAGE=\"en\"",
                         "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"c\",VALUE=\"3\"", "#EXT-X-START:TIME-OFFSET=0"}) +
                  smallVariant),
              smallText + lines({"#EXT-X-SESSION-DATA:DATA-ID=\"b\",VALUE=\"1\"",
                                 "#EXT-X-SESSION-DATA:DATA-ID=\"a\",URI=\"2\",LANGUAGE=\"en\"",
                                 "#EXT-X-SESSION-DATA:DATA-ID=\"c\",VALUE=\"3\""}));
}

TEST(VELHLSParsedManifestRender, OrderDoesNotDependOnThatOfThePlaylistRead) {
    std::string data = "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"d\",VALUE=\"v\"\n";
    std::string variant = "#EXT-X-STREAM-INF:BANDWIDTH=5\nu\n";
    std::string rendition = "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\"\n";
    std::string start = "#EXT-X-START:TIME-OFFSET=2\n";
    std::string independent = "#EXT-X-INDEPENDENT-SEGMENTS\n";
    std::string version = "#EXT-X-VERSION:4\n";
    EXPECT_EQ(renderedAgain(data + variant + rendition + start + independent + version + "#EXTM3U\n"),
              "#EXTM3U\n" + version + independent + start + rendition + smallVariant +
                  "#EXT-X-SESSION-DATA:DATA-ID=\"d\",VALUE=\"v\"\n");
}

TEST(VELHLSParsedManifestRender, WritesAllRecordsOfAWholePlaylist) {
    EXPECT_EQ(renderedAgain(wholePlaylist), wholePlaylist);
}

TEST(VELHLSParsedManifestRender, LeavesOutKeysVendorTagsCommentsAndUnknownTags) {
    const std::string text =
        lines({"#EXTM3U", "# a comment", "#EXT-X-UNKNOWN:1", "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=7",
               "#ZOR-OTHER", "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"", "#EXT-X-START:TIME-OFFSET=0",
               ""}) +
        smallVariant;
    const auto manifest = parsed(text);
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->sessionKeys.size(), 1U);
    EXPECT_EQ(manifest->streamVariants[0]->nominalVideoBitrate, 7U);
    EXPECT_EQ(rendered(*manifest), smallText);
}

// ---------------------------------------------------------------------------------------------------------
// Failure

/// Keeps what is written, and what had been written at each flush.
class FlushRecorder : public std::stringbuf {
  public:
    std::vector<std::string> textAtFlush;

  protected:
    int sync() override {
        textAtFlush.push_back(str());
        return 0;
    }
};

TEST(VELHLSParsedManifestRender, ManifestThatDoesNotValidateLeavesTheStreamUntouched) {
    Manifest withoutVariants = smallManifest();
    withoutVariants.variants.clear();
    Manifest withoutGroup = smallManifest();
    withoutGroup.variants.begin()->second->groupIds[Rendition::Audio] = "none";
    Manifest withRepeatedData = smallManifest();
    withRepeatedData.sessionData.assign(2, std::make_shared<VELHLSManifestSessionData>("a", "v", "", ""));
    Manifest withRepeatedKey = smallManifest();
    withRepeatedKey.sessionKeys.assign(
        2, std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::AES128, "k", "", "",
                                                  std::vector<std::int32_t>{}));
    Manifest withNullVariant = smallManifest();
    withNullVariant.variants.emplace(6, nullptr);
    for (const Manifest* manifest :
         {&withoutVariants, &withoutGroup, &withRepeatedData, &withRepeatedKey, &withNullVariant}) {
        FlushRecorder buffer;
        std::ostream out(&buffer);
        out << "before";
        out.width(9);
        EXPECT_EQ(manifest->render(out), -1) << describe(*manifest);
        EXPECT_EQ(buffer.str(), "before");
        EXPECT_TRUE(buffer.textAtFlush.empty());
        EXPECT_TRUE(out.good());
        EXPECT_EQ(out.width(), 9);
    }
}

TEST(VELHLSParsedManifestRender, RenditionThatDoesNotRenderCutsTheOutputAfterTheLastWholeRecord) {
    constexpr auto otherType = static_cast<Rendition::RenditionType>(7);
    Manifest manifest = smallManifest();
    manifest.version = 4;
    file(manifest, renditionOf(Rendition::Audio, "g", "a"));
    file(manifest, renditionOf(Rendition::ClosedCaptions, "g", "c"));
    file(manifest, renditionOf(otherType, "g", "o"));
    ASSERT_TRUE(manifest.validate());
    EXPECT_EQ(rendered(manifest),
              "[-1]#EXTM3U\n#EXT-X-VERSION:4\n"
              "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"a\"\n"
              "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"g\",NAME=\"c\",INSTREAM-ID=\"CC1\"\n");
}

TEST(VELHLSParsedManifestRender, ForcedRenditionThatDoesNotRenderCutsTheOutputInItsPass) {
    Manifest manifest = smallManifest();
    file(manifest, renditionOf(Rendition::Audio, "g", "a"));
    file(manifest, renditionOf(Rendition::Audio, "g", "b", true));  // only subtitles may be forced
    file(manifest, renditionOf(Rendition::Audio, "g", "c"));
    file(manifest, renditionOf(Rendition::Audio, "h", "a"));
    file(manifest, renditionOf(Rendition::Audio, "h", "b", true));
    file(manifest, renditionOf(Rendition::Audio, "h", "c"));
    EXPECT_EQ(rendered(manifest),
              "[-1]#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"a\"\n"
              "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"c\"\n");
}

TEST(VELHLSParsedManifestRender, FirstRecordThatDoesNotRenderLeavesTheManifestsOwnLines) {
    Manifest manifest = smallManifest();
    manifest.startTimeOffset = 3.0;
    file(manifest, renditionOf(Rendition::Audio, "g", ""));
    EXPECT_EQ(rendered(manifest), "[-1]#EXTM3U\n#EXT-X-START:TIME-OFFSET=3\n");
}

TEST(VELHLSParsedManifestRender, VariantThatDoesNotRenderCutsTheOutput) {
    Manifest manifest = smallManifest();
    file(manifest, renditionOf(Rendition::Audio, "g", "a"));
    manifest.variants.emplace(6, variantOf(6, ""));
    manifest.variants.emplace(7, variantOf(7));
    manifest.sessionData.push_back(std::make_shared<VELHLSManifestSessionData>("d", "v", "", ""));
    EXPECT_EQ(rendered(manifest),
              "[-1]#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"a\"\n" + smallVariant);
}

TEST(VELHLSParsedManifestRender, VariantWhoseMediaPlaylistDoesNotValidateCutsTheOutput) {
    std::istringstream input("#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nsegment.ts\n");
    const auto mediaStream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    ASSERT_NE(mediaStream, nullptr);
    Manifest manifest = smallManifest();
    manifest.variants.emplace(6, variantOf(6));
    manifest.variants.rbegin()->second->mediaStream = mediaStream;
    const std::string second = "#EXT-X-STREAM-INF:BANDWIDTH=6,CLOSED-CAPTIONS=NONE\nu\n";
    EXPECT_EQ(rendered(manifest), smallText + second);
    mediaStream->segments.push_back(nullptr);
    EXPECT_EQ(rendered(manifest), "[-1]" + smallText);
}

TEST(VELHLSParsedManifestRender, SessionDataThatDoesNotRenderCutsTheOutput) {
    Manifest manifest = smallManifest();
    manifest.sessionData.push_back(std::make_shared<VELHLSManifestSessionData>("d", "v", "", ""));
    manifest.sessionData.push_back(std::make_shared<VELHLSManifestSessionData>("e", "v", "and a uri", ""));
    manifest.sessionData.push_back(std::make_shared<VELHLSManifestSessionData>("f", "v", "", ""));
    EXPECT_EQ(rendered(manifest), "[-1]" + smallText + "#EXT-X-SESSION-DATA:DATA-ID=\"d\",VALUE=\"v\"\n");
}

TEST(VELHLSParsedManifestRender, SessionKeyThatDoesNotRenderDoesNotMatter) {
    Manifest manifest = smallManifest();
    manifest.sessionKeys.push_back(std::make_shared<VELHLSProtectionData>(
        VELHLSProtectionData::AES128, "", "", "", std::vector<std::int32_t>{}));
    EXPECT_EQ(rendered(manifest), smallText);
}

// ---------------------------------------------------------------------------------------------------------
// The stream

TEST(VELHLSParsedManifestRender, FlushesOnceAfterEachLineOfItsOwnAndNeverAfterARecord) {
    Manifest manifest = smallManifest();
    file(manifest, renditionOf(Rendition::Audio, "g", "a"));
    manifest.variants.emplace(6, variantOf(6));
    manifest.sessionData.push_back(std::make_shared<VELHLSManifestSessionData>("d", "v", "", ""));
    FlushRecorder small;
    std::ostream smallOut(&small);
    EXPECT_EQ(manifest.render(smallOut), 0);
    EXPECT_EQ(small.textAtFlush, (std::vector<std::string>{"#EXTM3U\n"}));

    manifest.version = 4;
    manifest.independentSegments = true;
    manifest.startTimeOffset = 2.5;
    FlushRecorder large;
    std::ostream largeOut(&large);
    EXPECT_EQ(manifest.render(largeOut), 0);
    const std::string versionLine = "#EXTM3U\n#EXT-X-VERSION:4\n";
    const std::string independentLine = versionLine + "#EXT-X-INDEPENDENT-SEGMENTS\n";
    EXPECT_EQ(large.textAtFlush,
              (std::vector<std::string>{"#EXTM3U\n", versionLine, independentLine,
                                        independentLine + "#EXT-X-START:TIME-OFFSET=2.5\n"}));
    EXPECT_EQ(large.str(), rendered(manifest));
}

TEST(VELHLSParsedManifestRender, AppendsToWhatTheStreamHolds) {
    std::ostringstream out;
    EXPECT_EQ(smallManifest().render(out), 0);
    EXPECT_EQ(smallManifest().render(out), 0);
    EXPECT_EQ(out.str(), smallText + smallText);
}

TEST(VELHLSParsedManifestRender, ChangesNothingInTheManifest) {
    const auto manifest = parsed(wholePlaylist);
    ASSERT_NE(manifest, nullptr);
    const std::string before = describe(*manifest);
    EXPECT_EQ(rendered(*manifest), rendered(*manifest));
    EXPECT_EQ(describe(*manifest), before);
}

/// A decimal comma, and points between groups of three digits.
class CommaNumbers : public std::numpunct<char> {
  protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

std::locale localeWithCommas() {
    return std::locale(std::locale::classic(), new CommaNumbers);
}

/// The manifest whose numbers a locale, a base or a field width could spoil.
Manifest manifestOfNumbers() {
    Manifest manifest = smallManifest();
    manifest.version = 1234567;
    manifest.startTimeOffset = 12345.5;
    manifest.variants.emplace(98765432, variantOf(98765432));
    manifest.variants.rbegin()->second->averageBandwidth = 87654321;
    manifest.variants.rbegin()->second->programId = 7654321;
    return manifest;
}

const std::string textOfNumbers =
    "#EXTM3U\n#EXT-X-VERSION:1234567\n#EXT-X-START:TIME-OFFSET=12345.5\n" + smallVariant +
    "#EXT-X-STREAM-INF:BANDWIDTH=98765432,PROGRAM-ID=7654321,AVERAGE-BANDWIDTH=87654321,"
    "CLOSED-CAPTIONS=NONE\nu\n";

TEST(VELHLSParsedManifestRender, LocaleOfTheStreamDoesNotChangeAByte) {
    std::ostringstream out;
    out.imbue(localeWithCommas());
    out << 12345.5 << '\n';
    ASSERT_EQ(out.str(), "12.345,5\n") << "the locale writes numbers otherwise";
    out.str("");
    EXPECT_EQ(manifestOfNumbers().render(out), 0);
    EXPECT_EQ(out.str(), textOfNumbers);
}

/// Sets the global locale as long as it lives.
class GlobalLocale {
  public:
    explicit GlobalLocale(const std::locale& locale) : before_(std::locale::global(locale)) {}
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;
    ~GlobalLocale() { std::locale::global(before_); }

  private:
    std::locale before_;
};

TEST(VELHLSParsedManifestRender, GlobalLocaleChangesNeitherReadingNorWriting) {
    const GlobalLocale commas(localeWithCommas());
    EXPECT_EQ(rendered(manifestOfNumbers()), textOfNumbers);
    EXPECT_EQ(renderedAgain(textOfNumbers), textOfNumbers);
}

TEST(VELHLSParsedManifestRender, IntegerFlagsWidthAndFillDoNotChangeAByte) {
    std::ostringstream out;
    out << std::hex << std::showbase << std::uppercase << std::boolalpha << std::right << std::setfill('*');
    out.width(60);
    EXPECT_EQ(manifestOfNumbers().render(out), 0);
    EXPECT_EQ(out.str(), textOfNumbers);
}

TEST(VELHLSParsedManifestRender, OffsetFollowsThePrecisionAndTheFloatingPointFlagsOfTheStream) {
    const struct {
        std::string title;
        std::ios_base& (*flag)(std::ios_base&);
        std::streamsize precision;
        std::string written;
    } rows[] = {
        {"default", std::defaultfloat, 6, "12345.5"},
        {"three digits", std::defaultfloat, 3, "1.23e+04"},
        {"twelve digits", std::defaultfloat, 12, "12345.5"},
        {"fixed", std::fixed, 2, "12345.50"},
        {"scientific", std::scientific, 2, "1.23e+04"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.title);
        Manifest manifest = smallManifest();
        manifest.startTimeOffset = 12345.5;
        std::ostringstream out;
        out << row.flag;
        out.precision(row.precision);
        EXPECT_EQ(manifest.render(out), 0);
        EXPECT_EQ(out.str(), "#EXTM3U\n#EXT-X-START:TIME-OFFSET=" + row.written + "\n" + smallVariant);
        EXPECT_EQ(out.precision(), row.precision) << "and leaves them as they are";
    }
}

TEST(VELHLSParsedManifestRender, FailedStreamIsNotNoticed) {
    const auto manifest = parsed(wholePlaylist);
    ASSERT_NE(manifest, nullptr);
    for (const std::ios_base::iostate state :
         {std::ios_base::failbit, std::ios_base::badbit, std::ios_base::eofbit}) {
        std::ostringstream out;
        out.setstate(state);
        EXPECT_EQ(manifest->render(out), 0);
        EXPECT_EQ(out.str(), "");
    }
    std::ostream withoutBuffer(nullptr);
    EXPECT_EQ(manifest->render(withoutBuffer), 0);
}

/// Takes so many bytes and no more.
class FullBuffer : public std::streambuf {
  public:
    explicit FullBuffer(std::size_t capacity) : capacity_(capacity) {}
    std::string taken;

  protected:
    int_type overflow(int_type character) override {
        if (taken.size() == capacity_) return traits_type::eof();
        taken += traits_type::to_char_type(character);
        return character;
    }

  private:
    std::size_t capacity_;
};

TEST(VELHLSParsedManifestRender, StreamThatFillsUpIsNotNoticed) {
    const auto manifest = parsed(wholePlaylist);
    ASSERT_NE(manifest, nullptr);
    for (std::size_t capacity = 0; capacity <= wholePlaylist.size(); ++capacity) {
        FullBuffer buffer(capacity);
        std::ostream out(&buffer);
        EXPECT_EQ(manifest->render(out), 0);
        EXPECT_EQ(buffer.taken, wholePlaylist.substr(0, capacity));
        EXPECT_EQ(out.bad(), capacity < wholePlaylist.size());
    }
}

TEST(VELHLSParsedManifestRender, ExceptionsOfTheStreamLeaveIt) {
    FullBuffer buffer(3);
    std::ostream out(&buffer);
    out.exceptions(std::ios_base::badbit);
    EXPECT_THROW(static_cast<void>(smallManifest().render(out)), std::ios_base::failure);
    EXPECT_EQ(buffer.taken, "#EX");
}

TEST(VELHLSParsedManifestRender, WritesNulBytesAndLongValuesAsTheyAre) {
    const std::string longText(std::size_t{1} << 20, 'x');
    Manifest manifest = smallManifest();
    manifest.variants.begin()->second->uri = "u\0v"s + longText;
    EXPECT_EQ(rendered(manifest),
              "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=5,CLOSED-CAPTIONS=NONE\nu\0v"s + longText + "\n");
}

// ---------------------------------------------------------------------------------------------------------
// Written and read again

TEST(VELHLSParsedManifestRender, WrittenPlaylistParsesToAnEqualModel) {
    for (const std::string& text :
         {wholePlaylist, smallVariant, "#EXT-X-START:TIME-OFFSET=-7.25\n" + smallVariant,
          "#EXT-X-VERSION:1\n" + smallVariant + smallVariant}) {
        SCOPED_TRACE(text);
        auto manifest = parsed(text);
        ASSERT_NE(manifest, nullptr);
        const auto again = parsed(rendered(*manifest));
        ASSERT_NE(again, nullptr);
        manifest->hasHeader = true;  // one is always written
        EXPECT_EQ(describe(*again), describe(*manifest));
    }
}

TEST(VELHLSParsedManifestRender, WritingAndReadingAgainChangesNoByte) {
    for (
        const std::string& text : {
            wholePlaylist,
            smallVariant,
            "#EXT-X-STREAM-INF:BANDWIDTH=2\nb\n#EXT-X-STREAM-INF:BANDWIDTH=1\na\n#EXT-X-STREAM-INF:BANDWIDTH=2\na\n"s,
            "#EXT-X-STREAM-INF:BANDWIDTH=2\n#EXTM3U\n"s,
            "#EXT-X-STREAM-INF:BANDWIDTH=2\n  \n"s,
            "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"\n"s + smallVariant,
            "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\",DEFAULT=YES,CHARACTERISTICS=\"b,,a\"\n"s +
                smallVariant,
        }) {
        const std::string once = renderedAgain(text);
        EXPECT_NE(once, "rejected");
        EXPECT_EQ(renderedAgain(once), once) << text;
    }
}

TEST(VELHLSParsedManifestRender, StreamVariantsComeBackInTheOrderOfTheirBandwidths) {
    const auto manifest = parsed("#EXT-X-STREAM-INF:BANDWIDTH=2\nb\n#EXT-X-STREAM-INF:BANDWIDTH=1\na\n");
    ASSERT_NE(manifest, nullptr);
    const auto again = parsed(rendered(*manifest));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(manifest->streamVariants.at(0)->uri, "b");
    EXPECT_EQ(again->streamVariants.at(0)->uri, "a");
    EXPECT_EQ(again->streamVariants.at(1)->uri, "b");
}

TEST(VELHLSParsedManifestRender, KeysVendorEntriesAndTrackTypesDoNotComeBack) {
    const auto manifest = parsed(
        "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"\n"
        "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=7\n"
        "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\",AUDIO-TRACK-TYPE=\"t\"\n" +
        smallVariant);
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->renditions.at(Rendition::Audio).at("g").at("n")->audioTrackType, "t");
    const auto again = parsed(rendered(*manifest));
    ASSERT_NE(again, nullptr);
    EXPECT_TRUE(again->sessionKeys.empty());
    EXPECT_TRUE(again->zorStreamInformation.empty());
    EXPECT_FALSE(again->hasZORStreamInformation);
    EXPECT_EQ(again->streamVariants.at(0)->nominalVideoBitrate, 0U);
    EXPECT_EQ(again->renditions.at(Rendition::Audio).at("g").at("n")->audioTrackType, "");
}

TEST(VELHLSParsedManifestRender, PlaylistWithSessionDataDoesNotParseAgain) {
    const std::string written =
        renderedAgain("#EXT-X-SESSION-DATA:X=1,DATA-ID=\"d\",VALUE=\"v\"\n" + smallVariant);
    EXPECT_NE(written, "rejected");
    EXPECT_EQ(renderedAgain(written), "rejected");
}

TEST(VELHLSParsedManifestRender, OffsetWithAnExponentDoesNotParseAgain) {
    Manifest manifest = smallManifest();
    const double unreadable[] = {1e6, 1e-5, std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity()};
    for (const double offset : unreadable) {
        manifest.startTimeOffset = offset;
        EXPECT_EQ(renderedAgain(rendered(manifest)), "rejected") << offset;
    }
    manifest.startTimeOffset = 999999.0;
    EXPECT_EQ(renderedAgain(rendered(manifest)), rendered(manifest));
}

TEST(VELHLSParsedManifestRender, OffsetOfZeroComesBackAsTheDefault) {
    const auto again = parsed(renderedAgain("#EXT-X-START:TIME-OFFSET=0,PRECISE=YES\n" + smallVariant));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->startTimeOffset, -1.0);
    EXPECT_FALSE(again->startPrecise);
}

TEST(VELHLSParsedManifestRender, ThreadsReadAndWritePlaylistsOfTheirOwn) {
    const std::vector<std::string> playlists = {wholePlaylist, textOfNumbers};
    std::vector<int> differing(playlists.size(), 0);
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < playlists.size(); ++index) {
        threads.emplace_back([&text = playlists[index], &count = differing[index]] {
            for (int round = 0; round < 300; ++round) {
                if (renderedAgain(text) != text) ++count;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(differing, std::vector<int>(playlists.size(), 0));
}

TEST(VELHLSParsedManifestRender, ThreadsWriteOneManifestAtTheSameTime) {
    const auto manifest = parsed(wholePlaylist);
    ASSERT_NE(manifest, nullptr);
    std::vector<int> differing(2, 0);
    std::vector<std::thread> threads;
    for (int& count : differing) {
        threads.emplace_back([&manifest, &count] {
            for (int round = 0; round < 300; ++round) {
                if (rendered(*manifest) != wholePlaylist) ++count;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(differing, std::vector<int>(2, 0));
}

}  // namespace
