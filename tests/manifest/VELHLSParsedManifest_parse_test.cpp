#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <istream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <type_traits>
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

constexpr auto untouchedError = static_cast<VELHLSParsingError>(77);
const std::string untouchedMessage = "as the caller left it";

/// A status that shows every write to it.
VELHLSParsingStatus markedStatus() {
    VELHLSParsingStatus status;
    status.error = untouchedError;
    status.message = untouchedMessage;
    return status;
}

/// What is still to be read, whatever state the stream is in.
std::string unreadIn(std::istream& input) {
    return {std::istreambuf_iterator<char>(input.rdbuf()), std::istreambuf_iterator<char>()};
}

std::shared_ptr<Manifest> parsed(const std::string& text) {
    std::istringstream input(text);
    return Manifest::parseManifest(input, nullptr);
}

/// The accepted playlist as a description; what the rows compare.
std::string descriptionOf(const std::string& text) {
    const auto manifest = parsed(text);
    return manifest == nullptr ? "rejected" : describe(*manifest);
}

void expectAccepted(const std::string& text) {
    SCOPED_TRACE(text);
    std::istringstream input(text);
    VELHLSParsingStatus status = markedStatus();
    ASSERT_NE(Manifest::parseManifest(input, &status), nullptr);
    EXPECT_EQ(status.error, VELHLSParsingErrorNone);
    EXPECT_EQ(status.message, untouchedMessage);
    EXPECT_FALSE(status.hasMediaPatterns);
    EXPECT_NE(status.metrics, nullptr);
    EXPECT_NE(parsed(text), nullptr) << "and without a status";
}

/// The playlist is rejected, the status says nothing of it, and `unread` is left in the stream.
void expectRejected(const std::string& text, const std::string& unread) {
    SCOPED_TRACE(text);
    std::istringstream input(text);
    VELHLSParsingStatus status = markedStatus();
    EXPECT_EQ(Manifest::parseManifest(input, &status), nullptr);
    EXPECT_EQ(status.error, untouchedError);
    EXPECT_EQ(status.message, untouchedMessage);
    EXPECT_FALSE(status.hasMediaPatterns);
    ASSERT_NE(status.metrics, nullptr);
    EXPECT_LT(status.metrics->parseDuration, 60.0);
    EXPECT_EQ(unreadIn(input), unread);
    EXPECT_EQ(parsed(text), nullptr) << "and without a status";
}

/// The exception leaves both entry points, and the status is as it was, metrics included.
template <typename Exception>
void expectThrown(const std::string& text, const std::string& unread) {
    SCOPED_TRACE(text);
    std::istringstream input(text);
    VELHLSParsingStatus status = markedStatus();
    EXPECT_THROW(static_cast<void>(Manifest::parseManifest(input, &status)), Exception);
    EXPECT_EQ(status.error, untouchedError);
    EXPECT_EQ(status.message, untouchedMessage);
    EXPECT_EQ(status.metrics, nullptr);
    EXPECT_EQ(unreadIn(input), unread);

    std::istringstream again(text);
    EXPECT_THROW(static_cast<void>(Manifest::parseManifest(again, nullptr)), Exception);
    std::istringstream internal(text);
    EXPECT_THROW(static_cast<void>(Manifest::internalParseManifest(internal, nullptr)), Exception);
}

const std::string lowVariant = "#EXT-X-STREAM-INF:BANDWIDTH=1000\nlow.m3u8\n";
const std::string highVariant = "#EXT-X-STREAM-INF:BANDWIDTH=2000\nhigh.m3u8\n";
const std::string iFrameVariant = "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=100,URI=\"i.m3u8\"\n";

/// Every tag of a master playlist once, or more.
const std::string wholePlaylist = lines({
    "#EXTM3U",
    "#EXT-X-VERSION:6",
    "## a comment",
    "#EXT-X-INDEPENDENT-SEGMENTS",
    "#EXT-X-START:TIME-OFFSET=2.5,PRECISE=YES",
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"aac\",NAME=\"en\",DEFAULT=YES,URI=\"en.m3u8\"",
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"aac\",NAME=\"fr\",CHARACTERISTICS=\"b,a\"",
    "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"cc\",NAME=\"cc1\",INSTREAM-ID=\"CC1\"",
    "",
    "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=700000,NOMINAL_AUDIO_BITRATE=64000",
    "#EXT-X-STREAM-INF:BANDWIDTH=800000,CODECS=\"a,b\",RESOLUTION=1x2,AUDIO=\"aac\",CLOSED-CAPTIONS=\"cc\"",
    "low.m3u8",
    "#ZOR-STREAM-INF:NOMINAL_AUDIO_BITRATE=96000",
    "#EXT-X-STREAM-INF:PROGRAM-ID=1,BANDWIDTH=700000,AUDIO=\"aac\"",
    "lower.m3u8?x=1,2",
    "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=90000,URI=\"i.m3u8\"",
    "#EXT-X-SESSION-DATA:LANGUAGE=\"en\",DATA-ID=\"t\",VALUE=\"Title\"",
    "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"1/2\"",
});

// ---------------------------------------------------------------------------------------------------------
// The data model

using Groups = std::map<std::string, std::map<std::string, std::shared_ptr<Rendition>>>;

static_assert(std::is_same_v<decltype(Manifest::hasHeader), bool>);
static_assert(std::is_same_v<decltype(Manifest::version), std::int32_t>);
static_assert(std::is_same_v<decltype(Manifest::renditions), std::map<Rendition::RenditionType, Groups>>);
static_assert(
    std::is_same_v<decltype(Manifest::streamVariants), std::vector<std::shared_ptr<VELHLSMediaVariant>>>);
static_assert(std::is_same_v<decltype(Manifest::variants),
                             std::multimap<std::uint64_t, std::shared_ptr<VELHLSMediaVariant>>>);
static_assert(
    std::is_same_v<decltype(Manifest::sessionData)::value_type, std::shared_ptr<VELHLSManifestSessionData>>);
static_assert(std::is_same_v<decltype(Manifest::zorStreamInformation),
                             std::vector<std::shared_ptr<VELHLSZORStreamInformation>>>);
static_assert(
    std::is_same_v<decltype(Manifest::sessionKeys), std::vector<std::shared_ptr<VELHLSProtectionData>>>);
static_assert(std::is_same_v<decltype(Manifest::independentSegments), bool>);
static_assert(std::is_same_v<decltype(Manifest::startTimeOffset), double>);
static_assert(std::is_same_v<decltype(Manifest::startPrecise), bool>);
static_assert(std::is_same_v<decltype(Manifest::hasZORStreamInformation), bool>);

using Parse = std::shared_ptr<Manifest> (*)(std::istream&, VELHLSParsingStatus*);
static_assert(std::is_same_v<decltype(static_cast<Parse>(&Manifest::parseManifest)), Parse>);
static_assert(std::is_same_v<decltype(&Manifest::internalParseManifest), Parse>);
static_assert(std::is_same_v<decltype(&Manifest::sanitize), void (Manifest::*)()>);
static_assert(std::is_same_v<decltype(&Manifest::populateMetaData), void (Manifest::*)()>);
static_assert(std::is_same_v<decltype(&Manifest::validate), bool (Manifest::*)() const>);
static_assert(std::is_same_v<decltype(&Manifest::render), std::int32_t (Manifest::*)(std::ostream&) const>);

TEST(VELHLSParsedManifestParse, NewManifestHoldsTheDefaults) {
    const Manifest manifest;
    EXPECT_EQ(describe(manifest), "header=0\nversion=1\nindependent=0\noffset=-1\nprecise=0\npaired=0\n");
}

TEST(VELHLSParsedManifestParse, PlaylistOfOneVariantLeavesAllElseAtItsDefault) {
    EXPECT_EQ(descriptionOf(lowVariant),
              "header=0\nversion=1\nindependent=0\noffset=-1\nprecise=0\npaired=0\n"
              "stream: bandwidth=1000 average=0 codecs= resolution= program=0 uri=low.m3u8 iFrame=0 "
              "nominalVideo=0 nominalAudio=0 attached=0 groups=\n"
              "variant 1000: bandwidth=1000 average=0 codecs= resolution= program=0 uri=low.m3u8 iFrame=0 "
              "nominalVideo=0 nominalAudio=0 attached=0 groups=\n");
}

TEST(VELHLSParsedManifestParse, ReadsEveryTagIntoItsField) {
    const auto manifest = parsed(wholePlaylist);
    ASSERT_NE(manifest, nullptr);
    EXPECT_TRUE(manifest->hasHeader);
    EXPECT_EQ(manifest->version, 6);
    EXPECT_TRUE(manifest->independentSegments);
    EXPECT_EQ(manifest->startTimeOffset, 2.5);
    EXPECT_TRUE(manifest->startPrecise);

    ASSERT_EQ(manifest->renditions.size(), 2U);
    const auto& audio = manifest->renditions.at(Rendition::Audio);
    ASSERT_EQ(audio.size(), 1U);
    ASSERT_EQ(audio.at("aac").size(), 2U);
    EXPECT_EQ(audio.at("aac").at("en")->uri, "en.m3u8");
    EXPECT_TRUE(audio.at("aac").at("en")->autoSelect);
    EXPECT_EQ(audio.at("aac").at("fr")->characteristics, (std::set<std::string>{"a", "b"}));
    EXPECT_EQ(manifest->renditions.at(Rendition::ClosedCaptions).at("cc").at("cc1")->instreamId, "CC1");

    ASSERT_EQ(manifest->streamVariants.size(), 2U);
    EXPECT_EQ(manifest->streamVariants[0]->uri, "low.m3u8");
    EXPECT_EQ(manifest->streamVariants[0]->codecs, "a,b");
    EXPECT_EQ(manifest->streamVariants[0]->nominalVideoBitrate, 700000U);
    EXPECT_EQ(manifest->streamVariants[0]->nominalAudioBitrate, 64000U);
    EXPECT_EQ(manifest->streamVariants[1]->uri, "lower.m3u8?x=1,2");
    EXPECT_EQ(manifest->streamVariants[1]->programId, 1U);
    EXPECT_EQ(manifest->streamVariants[1]->nominalVideoBitrate, 0U);
    EXPECT_EQ(manifest->streamVariants[1]->nominalAudioBitrate, 96000U);

    ASSERT_EQ(manifest->variants.size(), 3U);
    EXPECT_TRUE(manifest->variants.find(90000)->second->isIFrame);
    EXPECT_EQ(manifest->variants.find(800000)->second, manifest->streamVariants[0]) << "one shared record";
    EXPECT_EQ(manifest->variants.find(700000)->second, manifest->streamVariants[1]);

    ASSERT_EQ(manifest->sessionData.size(), 1U);
    EXPECT_EQ(describe(*manifest->sessionData.front()), "dataId=t value=Title uri= language=");
    ASSERT_EQ(manifest->sessionKeys.size(), 1U);
    EXPECT_EQ(describe(*manifest->sessionKeys[0]), "method=1 uri=k iv= format= versions=1/2/");
    ASSERT_EQ(manifest->zorStreamInformation.size(), 2U);
    EXPECT_TRUE(manifest->hasZORStreamInformation);
}

// ---------------------------------------------------------------------------------------------------------
// Lines that are told apart

TEST(VELHLSParsedManifestParse, IgnoresLinesThatAreNoTagsOfItsOwn) {
    const std::string plain = "#EXTM3U\n" + lowVariant;
    const std::string expected = descriptionOf(plain);
    for (const std::string& line : {
             ""s,
             " "s,
             "   "s,
             "\t"s,
             "\r"s,
             " \r\t\r "s,
             "#"s,
             "##"s,
             "# EXTM3U"s,
             "##EXTM3U"s,
             "# a comment: with a colon"s,
             "#E"s,
             "#EX"s,
             "#ext-x-endlist"s,
             "#Ext-X-VERSION:9"s,
             "#EXt-X-VERSION:9"s,
             "#EX-T"s,
             "#EXT:"s,
             "#EXT::"s,
             "#EXTM3U:"s,
             "#EXTM3U:#EXTM3U"s,
             "#EXTM3U :"s,
             "#EXT-X-INDEPENDENT-SEGMENTS:"s,
             "#EXT-X-INDEPENDENT-SEGMENTS:YES"s,
             "#EXTINF:10,"s,
             "#EXTINF:abc"s,
             "#EXT-X-TARGETDURATION:6"s,
             "#EXT-X-MEDIA-SEQUENCE:1"s,
             "#EXT-X-KEY:METHOD=AES-128,URI=\"k\""s,
             "#EXT-X-ENDLIST:"s,
             "#EXT-X-UNKNOWN:a=b"s,
             "#EXT-X-version:9"s,
             "#EXT-X-VERSIO:9"s,
             "#EXT-X-VERSIONS:9"s,
             "#EXT-X-VERSION :9"s,
             "#EXT -X-VERSION:9"s,
             "#EXT-X-VERSION\0:9"s,
             "#EXT-X-MEDI:TYPE=AUDIO"s,
             "#EXT-X-MEDIA :TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\""s,
             "#EXT-X-START-HERE:TIME-OFFSET=abc"s,
             "#EXT-X-STREAM-INF :BANDWIDTH=5"s,
             "#EXT-X-STREAM:BANDWIDTH=5"s,
             "#EXT-X-I-FRAME-STREAM:BANDWIDTH=5"s,
             "#EXT-X-SESSION:DATA"s,
             "#Z"s,
             "#ZO"s,
             "#ZOR"s,
             "#ZOR:"s,
             "#ZORRO"s,
             "#ZOR-PATTERN_START:"s,
             "#ZOR-STREAM-INF"s,
             "#ZOR-STREAM-INF:"s,
             "#ZOR-STREAM-INF :NOMINAL_VIDEO_BITRATE=5"s,
             "#ZOR-STREAM-INFO:NOMINAL_VIDEO_BITRATE=5"s,
             "#zor-stream-inf:NOMINAL_VIDEO_BITRATE=5"s,
             "#"s + std::string(3, '\0'),
         }) {
        SCOPED_TRACE("[" + line + "]");
        EXPECT_EQ(descriptionOf(line + "\n" + plain), expected) << "before";
        EXPECT_EQ(descriptionOf("#EXTM3U\n" + line + "\n" + lowVariant), expected) << "between";
        EXPECT_EQ(descriptionOf(plain + line + "\n"), expected) << "after";
        EXPECT_EQ(descriptionOf(plain + line), expected) << "after, without a line end";
    }
}

TEST(VELHLSParsedManifestParse, RejectsLinesThatHaveNoPlaceInAMasterPlaylist) {
    for (const std::string& line : {
             "foo.m3u8"s,
             "http://example.com/foo.m3u8"s,
             "."s,
             " #EXTM3U"s,
             "\t#EXTM3U"s,
             "EXTM3U"s,
             "\xEF\xBB\xBF#EXTM3U"s,
             " # comment"s,
             "\v"s,
             "\f"s,
             "\xC2\xA0"s,
             " \0"s,
             "\0"s,
             "\0#EXTM3U"s,
             "#EXT"s,
             "#EXTM3U "s,
             "#EXTM3U\t"s,
             "#EXTM3U8"s,
             "#EXTM3U\0"s,
             "#EXTm3u"s,
             "#EXTRA comment"s,
             "#EXT-X-ENDLIST"s,
             "#EXT-X-DISCONTINUITY"s,
             "#EXT-X-I-FRAMES-ONLY"s,
             "#EXT-X-INDEPENDENT-SEGMENTS "s,
             "#EXT-X-INDEPENDENT-SEGMENTS=YES"s,
             "#EXT-X-Independent-Segments"s,
             "#EXTINF"s,
             "#EXT-X-VERSION"s,
             "#EXT-X-START"s,
             "#EXT-X-MEDIA"s,
             "#EXT-X-STREAM-INF"s,
             "#EXT-X-I-FRAME-STREAM-INF"s,
             "#EXT-X-SESSION-DATA"s,
             "#EXT-X-SESSION-KEY"s,
         }) {
        expectRejected(line + "\n" + lowVariant, lowVariant);
        expectRejected("#EXTM3U\n" + lowVariant + line + "\r\n" + highVariant, highVariant);
        expectRejected(lowVariant + line, "");
    }
}

TEST(VELHLSParsedManifestParse, TakesATagWithoutColonOnlyWhole) {
    for (const std::string& tag : {"#EXTM3U"s, "#EXT-X-INDEPENDENT-SEGMENTS"s}) {
        for (std::size_t length = 0; length < tag.size(); ++length) {
            const std::string prefix = tag.substr(0, length);
            SCOPED_TRACE(prefix);
            EXPECT_EQ(parsed(lowVariant + prefix + "\n") == nullptr, length >= 4) << "#EXT begins a tag";
        }
        expectAccepted(lowVariant + tag + "\n");
    }
}

TEST(VELHLSParsedManifestParse, SetsTheFlagsOfTheTagsWithoutColon) {
    const auto bare = parsed(lowVariant);
    ASSERT_NE(bare, nullptr);
    EXPECT_FALSE(bare->hasHeader);
    EXPECT_FALSE(bare->independentSegments);
    const auto flagged = parsed(lowVariant + "#EXT-X-INDEPENDENT-SEGMENTS\n#EXTM3U");
    ASSERT_NE(flagged, nullptr);
    EXPECT_TRUE(flagged->hasHeader);
    EXPECT_TRUE(flagged->independentSegments);
    expectAccepted("#EXT-X-INDEPENDENT-SEGMENTS\n#EXT-X-INDEPENDENT-SEGMENTS\n" + lowVariant);
}

TEST(VELHLSParsedManifestParse, NeedsNoHeader) {
    expectAccepted(lowVariant);
    expectAccepted("#EXT-X-VERSION:3\n" + lowVariant + highVariant);
    expectAccepted(lowVariant + "#EXTM3U\n");
}

// ---------------------------------------------------------------------------------------------------------
// The second header

TEST(VELHLSParsedManifestParse, SecondHeaderEndsThePlaylistAndLeavesTheRestUnread) {
    const std::string rest = highVariant + "this would be rejected\n#EXT-X-ENDLIST\n";
    for (const std::string& header : {"#EXTM3U\n"s, "#EXTM3U\r\n"s, "#EXT\rM3U\r\r\n"s}) {
        std::istringstream input("#EXTM3U\n" + lowVariant + header + rest);
        VELHLSParsingStatus status = markedStatus();
        const auto manifest = Manifest::parseManifest(input, &status);
        ASSERT_NE(manifest, nullptr);
        ASSERT_EQ(manifest->streamVariants.size(), 1U);
        EXPECT_EQ(manifest->streamVariants[0]->uri, "low.m3u8");
        EXPECT_EQ(status.error, VELHLSParsingErrorNone);
        EXPECT_TRUE(input.good());
        EXPECT_EQ(unreadIn(input), rest);
    }
}

TEST(VELHLSParsedManifestParse, PlaylistsThatFollowEachOtherAreReadOneByOne) {
    std::istringstream input("#EXTM3U\n" + lowVariant + "#EXTM3U\n" + highVariant);
    const auto first = Manifest::parseManifest(input, nullptr);
    const auto second = Manifest::parseManifest(input, nullptr);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(describe(*first), descriptionOf("#EXTM3U\n" + lowVariant));
    EXPECT_EQ(describe(*second), descriptionOf(highVariant));
    EXPECT_EQ(Manifest::parseManifest(input, nullptr), nullptr) << "the stream is at its end";
}

TEST(VELHLSParsedManifestParse, SecondHeaderDoesNotSpareThePlaylistItsValidation) {
    expectRejected("#EXTM3U\n#EXTM3U\n" + lowVariant, lowVariant);
    expectRejected("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"none\"\nu\n#EXTM3U\n" + lowVariant,
                   lowVariant);
}

TEST(VELHLSParsedManifestParse, SecondHeaderStillPairsTheVendorTags) {
    const auto manifest =
        parsed("#EXTM3U\n#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=7\n" + lowVariant + "#EXTM3U\n" + highVariant);
    ASSERT_NE(manifest, nullptr);
    EXPECT_TRUE(manifest->hasZORStreamInformation);
    EXPECT_EQ(manifest->streamVariants.at(0)->nominalVideoBitrate, 7U);
}

// ---------------------------------------------------------------------------------------------------------
// EXT-X-VERSION

TEST(VELHLSParsedManifestParse, ReadsTheVersionAsTheStandardConversionDoes) {
    const struct {
        std::string value;
        std::int32_t version;
    } rows[] = {
        {"1", 1},
        {"7", 7},
        {"0", 0},
        {"+4", 4},
        {"-2", -2},
        {"007", 7},
        {"  5", 5},
        {"\t\v\f 5", 5},
        {"3abc", 3},
        {"3.9", 3},
        {"3 4", 3},
        {"3:4", 3},
        {"0x10", 0},
        {"8\0009"s, 8},
        {"2147483647", 2147483647},
        {"-2147483648", -2147483647 - 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        const auto manifest = parsed("#EXT-X-VERSION:" + row.value + "\n" + lowVariant);
        ASSERT_NE(manifest, nullptr);
        EXPECT_EQ(manifest->version, row.version);
    }
}

TEST(VELHLSParsedManifestParse, LaterVersionOverwrites) {
    const auto manifest = parsed("#EXT-X-VERSION:7\n#EXT-X-VERSION:3\n" + lowVariant + "#EXT-X-VERSION:1");
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->version, 1);
}

TEST(VELHLSParsedManifestParse, VersionThatIsNoNumberThrows) {
    for (const std::string& value :
         {""s, " "s, "+"s, "-"s, "+-3"s, "--3"s, "v3"s, ".5"s, ":3"s, "\"3\""s, "\0003"s, "- 3"s}) {
        expectThrown<std::invalid_argument>("#EXT-X-VERSION:" + value + "\n" + lowVariant, lowVariant);
    }
}

TEST(VELHLSParsedManifestParse, VersionBeyondItsTypeThrows) {
    for (const std::string& value :
         {"2147483648"s, "-2147483649"s, "99999999999999999999999"s, std::string(5000, '9')}) {
        expectThrown<std::out_of_range>("#EXT-X-VERSION:" + value + "\n" + lowVariant, lowVariant);
    }
}

// ---------------------------------------------------------------------------------------------------------
// EXT-X-START

TEST(VELHLSParsedManifestParse, ReadsTheStartOffset) {
    const struct {
        std::string attributes;
        double offset;
        bool precise;
    } rows[] = {
        {"TIME-OFFSET=-4.5", -4.5, false},
        {"TIME-OFFSET=+4.5", 4.5, false},
        {"TIME-OFFSET=0", 0.0, false},
        {"TIME-OFFSET=-4", -4.0, false},
        {"TIME-OFFSET=-4.", -4.0, false},
        {"TIME-OFFSET=.5", 0.5, false},
        {"TIME-OFFSET=-.5", -0.5, false},
        {"TIME-OFFSET=\"25\"", 25.0, false},
        {"TIME-OFFSET=1.2.3", 1.2, false},
        {"TIME-OFFSET=1-2", 1.0, false},
        {"TIME-OFFSET=1+", 1.0, false},
        {"TIME-OFFSET=9007199254740993", 9007199254740992.0, false},
        {"TIME-OFFSET=1,TIME-OFFSET=2", 1.0, false},
        {"TIME-OFFSET=25,PRECISE=YES", 25.0, true},
        {"PRECISE=YES,TIME-OFFSET=25", 25.0, true},
        {"TIME-OFFSET=25,PRECISE=\"YES\"", 25.0, true},
        {"TIME-OFFSET=25,PRECISE=NO", 25.0, false},
        {"TIME-OFFSET=25,PRECISE=yes", 25.0, false},
        {"TIME-OFFSET=25,PRECISE=Y", 25.0, false},
        {"TIME-OFFSET=25,PRECISE=YES ", 25.0, false},
        {"TIME-OFFSET=25,PRECISE=\"\"", 25.0, false},
        {"TIME-OFFSET=25, PRECISE=YES", 25.0, false},
        {"TIME-OFFSET=25,precise=YES", 25.0, false},
        {"TIME-OFFSET=25,PRECISE=NO,PRECISE=YES", 25.0, false},
        {"OTHER=\"a,b\",TIME-OFFSET=25", 25.0, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.attributes);
        const auto manifest = parsed("#EXT-X-START:" + row.attributes + "\n" + lowVariant);
        ASSERT_NE(manifest, nullptr);
        EXPECT_EQ(manifest->startTimeOffset, row.offset);
        EXPECT_EQ(manifest->startPrecise, row.precise);
    }
}

TEST(VELHLSParsedManifestParse, KeepsTheSignOfANegativeZeroOffset) {
    const auto manifest = parsed("#EXT-X-START:TIME-OFFSET=-0.0\n" + lowVariant);
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->startTimeOffset, 0.0);
    EXPECT_TRUE(std::signbit(manifest->startTimeOffset));
}

TEST(VELHLSParsedManifestParse, RejectsAStartWithoutAUsableOffset) {
    for (const std::string& attributes : {
             ""s,
             "T"s,
             "TIME-OFFSET"s,
             "TIME-OFFSET="s,
             "TIME-OFFSET=\"\""s,
             "TIME-OFFSET=,PRECISE=YES"s,
             "TIME-OFFSET=abc"s,
             "TIME-OFFSET=1e3"s,
             "TIME-OFFSET=0x10"s,
             "TIME-OFFSET=inf"s,
             "TIME-OFFSET=nan"s,
             "TIME-OFFSET= 5"s,
             "TIME-OFFSET=5 "s,
             "TIME-OFFSET=\"1,5\""s,
             "TIME-OFFSET=5\0"s,
             "PRECISE=YES"s,
             "time-offset=5"s,
             " TIME-OFFSET=5"s,
             ":TIME-OFFSET=5"s,
             "TIME-OFFSET=-4.5,"s,
             "TIME-OFFSET=-4.5,P"s,
             "TIME-OFFSET=-4.5,PRECISE"s,
             "TIME-OFFSET=-4.5,PRECISE="s,
             "TIME-OFFSET=-4.5,=YES"s,
             "TIME-OFFSET=+-,PRECISE="s,
         }) {
        expectRejected("#EXT-X-START:" + attributes + "\n" + lowVariant, lowVariant);
    }
}

TEST(VELHLSParsedManifestParse, StartOffsetThatIsNoNumberThrows) {
    for (const std::string& value : {"+"s, "-"s, "+-"s, "."s, "-."s, ".."s, "--5"s, "+-5"s, ".-5"s}) {
        expectThrown<std::invalid_argument>("#EXT-X-START:TIME-OFFSET=" + value + "\n" + lowVariant,
                                            lowVariant);
    }
}

TEST(VELHLSParsedManifestParse, StartOffsetBeyondItsTypeThrows) {
    for (const std::string& value :
         {std::string(400, '9'), "-" + std::string(400, '9'), "0." + std::string(400, '0') + "1"}) {
        expectThrown<std::out_of_range>("#EXT-X-START:TIME-OFFSET=" + value + "\n" + lowVariant, lowVariant);
    }
}

TEST(VELHLSParsedManifestParse, LaterStartOverwritesTheOffsetAndKeepsPrecise) {
    const auto manifest = parsed("#EXT-X-START:TIME-OFFSET=1,PRECISE=YES\n" + lowVariant +
                                 "#EXT-X-START:TIME-OFFSET=2,PRECISE=NO\n#EXT-X-START:TIME-OFFSET=3\n");
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->startTimeOffset, 3.0);
    EXPECT_TRUE(manifest->startPrecise);
}

// ---------------------------------------------------------------------------------------------------------
// EXT-X-MEDIA

TEST(VELHLSParsedManifestParse, FilesRenditionsByTypeGroupAndName) {
    const auto manifest =
        parsed(lines({"#EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"g\",NAME=\"n\"",
                      "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"h\",NAME=\"n\"",
                      "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\"",
                      "#EXT-X-MEDIA:NAME=\"n\",GROUP-ID=\"s\",TYPE=SUBTITLES",
                      "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"c\",NAME=\"n\",INSTREAM-ID=\"CC1\""}) +
               lowVariant);
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->renditions.size(), 4U);
    EXPECT_EQ(manifest->renditions.at(Rendition::Audio).size(), 2U);
    EXPECT_EQ(manifest->renditions.at(Rendition::Audio).at("g").at("n")->groupId, "g");
    EXPECT_EQ(manifest->renditions.at(Rendition::Audio).at("h").at("n")->groupId, "h");
    EXPECT_EQ(manifest->renditions.at(Rendition::Video).at("g").at("n")->type, Rendition::Video);
    EXPECT_EQ(manifest->renditions.at(Rendition::Subtitles).at("s").at("n")->type, Rendition::Subtitles);
    EXPECT_EQ(manifest->renditions.at(Rendition::ClosedCaptions).at("c").at("n")->instreamId, "CC1");
}

TEST(VELHLSParsedManifestParse, OfRenditionsWithOneNameTheFirstStays) {
    const auto manifest = parsed(lines({"#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\",URI=\"first\"",
                                        "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\",URI=\"second\"",
                                        "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"N\",URI=\"third\""}) +
                                 lowVariant);
    ASSERT_NE(manifest, nullptr);
    const auto& group = manifest->renditions.at(Rendition::Audio).at("g");
    ASSERT_EQ(group.size(), 2U);
    EXPECT_EQ(group.at("n")->uri, "first");
    EXPECT_EQ(group.at("N")->uri, "third");
}

TEST(VELHLSParsedManifestParse, RepeatedRenditionMustStillParse) {
    const std::string first = "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\"\n";
    const std::string repeat = "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\",DEFAULT=MAYBE\n";
    expectRejected(first + repeat + lowVariant, lowVariant);
}

TEST(VELHLSParsedManifestParse, RenditionsMayFollowTheVariantsThatNameThem) {
    expectAccepted(
        "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"g\"\nu\n"
        "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\"\n");
}

TEST(VELHLSParsedManifestParse, RejectsARenditionThatDoesNotParse) {
    for (const std::string& attributes : {
             ""s,
             "T"s,
             "TYPE="s,
             "TYPE=AUDIO"s,
             "TYPE=AUDIO,"s,
             "TYPE=AUDIO,GROUP-ID=\"g\""s,
             "TYPE=AUDIO,NAME=\"n\""s,
             "TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"\""s,
             "TYPE=audio,GROUP-ID=\"g\",NAME=\"n\""s,
             "GROUP-ID=\"g\",NAME=\"n\""s,
             "TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\",DEFAULT=yes"s,
             "TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\",FORCED=YES"s,
             "TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\",INSTREAM-ID=\"CC1\""s,
             "TYPE=CLOSED-CAPTIONS,GROUP-ID=\"g\",NAME=\"n\""s,
             "TYPE=CLOSED-CAPTIONS,GROUP-ID=\"g\",NAME=\"n\",INSTREAM-ID=\"CC1\",URI=\"u\""s,
         }) {
        expectRejected("#EXT-X-MEDIA:" + attributes + "\n" + lowVariant, lowVariant);
    }
}

// ---------------------------------------------------------------------------------------------------------
// EXT-X-STREAM-INF and EXT-X-I-FRAME-STREAM-INF

TEST(VELHLSParsedManifestParse, KeepsStreamVariantsInFileOrderAndAllVariantsByBandwidth) {
    const auto manifest = parsed(lines(
        {"#EXT-X-STREAM-INF:BANDWIDTH=3000", "c", "#EXT-X-STREAM-INF:BANDWIDTH=1000", "a",
         "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=2000,URI=\"i\"", "#EXT-X-STREAM-INF:BANDWIDTH=2000", "b"}));
    ASSERT_NE(manifest, nullptr);
    std::string inFileOrder;
    for (const auto& variant : manifest->streamVariants) {
        inFileOrder += variant->uri;
    }
    std::string byBandwidth;
    for (const auto& [bandwidth, variant] : manifest->variants) {
        EXPECT_EQ(bandwidth, variant->bandwidth);
        byBandwidth += variant->uri;
    }
    EXPECT_EQ(inFileOrder, "cab");
    EXPECT_EQ(byBandwidth, "aibc");
}

TEST(VELHLSParsedManifestParse, KeepsVariantsOfEqualBandwidthInFileOrder) {
    const auto manifest =
        parsed(lines({"#EXT-X-STREAM-INF:BANDWIDTH=5", "z", "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=5,URI=\"y\"",
                      "#EXT-X-STREAM-INF:BANDWIDTH=5", "x", "#EXT-X-STREAM-INF:BANDWIDTH=5", "z"}));
    ASSERT_NE(manifest, nullptr);
    ASSERT_EQ(manifest->variants.count(5), 4U);
    std::string uris;
    for (const auto& [bandwidth, variant] : manifest->variants) {
        uris += variant->uri;
    }
    EXPECT_EQ(uris, "zyxz");
    EXPECT_EQ(manifest->streamVariants.size(), 3U);
}

TEST(VELHLSParsedManifestParse, FilesANegativeBandwidthUnderItsTwosComplement) {
    const auto manifest = parsed("#EXT-X-STREAM-INF:BANDWIDTH=-1\nu\n");
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->variants.begin()->first, 18446744073709551615U);
}

TEST(VELHLSParsedManifestParse, PlaylistOfIFrameVariantsAloneIsAccepted) {
    const auto manifest = parsed(iFrameVariant);
    ASSERT_NE(manifest, nullptr);
    EXPECT_TRUE(manifest->streamVariants.empty());
    ASSERT_EQ(manifest->variants.size(), 1U);
    EXPECT_EQ(manifest->variants.find(100)->second->uri, "i.m3u8");
}

TEST(VELHLSParsedManifestParse, LineAfterStreamInfIsItsUriWhateverItHolds) {
    const struct {
        std::string line;
        std::string uri;
    } rows[] = {
        {"low.m3u8", "low.m3u8"},
        {"#EXTM3U", "#EXTM3U"},
        {"#EXT-X-ENDLIST", "#EXT-X-ENDLIST"},
        {"#EXT-X-VERSION:9", "#EXT-X-VERSION:9"},
        {"#EXT-X-VERSION:no number", "#EXT-X-VERSION:no number"},
        {"#EXT-X-STREAM-INF:BANDWIDTH=9", "#EXT-X-STREAM-INF:BANDWIDTH=9"},
        {"#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=7", "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=7"},
        {"# comment", "# comment"},
        {" ", " "},
        {"\t", "\t"},
        {" low.m3u8 ", " low.m3u8 "},
        {"a\0b"s, "a\0b"s},
        {"\0"s, "\0"s},
        {"low.m3u8\r", "low.m3u8"},
        {"\rlo\r\rw", "low"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        for (const std::string& lineEnd : {"\n"s, "\r\n"s, ""s}) {
            const auto manifest = parsed("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\n" + row.line + lineEnd);
            ASSERT_NE(manifest, nullptr);
            ASSERT_EQ(manifest->streamVariants.size(), 1U);
            EXPECT_EQ(manifest->streamVariants[0]->uri, row.uri);
            EXPECT_EQ(manifest->version, 1);
            EXPECT_TRUE(manifest->zorStreamInformation.empty());
        }
    }
}

TEST(VELHLSParsedManifestParse, UriLineThatATagTookThePlaceOfIsRejected) {
    expectRejected("#EXT-X-STREAM-INF:BANDWIDTH=1\n#EXT-X-VERSION:4\nlow.m3u8\n" + highVariant, highVariant);
}

TEST(VELHLSParsedManifestParse, StreamInfWithoutUriLineIsRejected) {
    expectRejected("#EXT-X-STREAM-INF:BANDWIDTH=1", "");
    expectRejected("#EXT-X-STREAM-INF:BANDWIDTH=1\n", "");
    expectRejected("#EXT-X-STREAM-INF:BANDWIDTH=1\r\n", "");
    expectRejected("#EXT-X-STREAM-INF:BANDWIDTH=1\n\n" + lowVariant, lowVariant);
    expectRejected("#EXT-X-STREAM-INF:BANDWIDTH=1\n\r\r\n" + lowVariant, lowVariant);
    expectRejected(lowVariant + "#EXT-X-STREAM-INF:BANDWIDTH=1,URI=\"u\"", "");
}

TEST(VELHLSParsedManifestParse, RejectsAStreamVariantThatDoesNotParse) {
    for (const std::string& attributes : {
             ""s,
             "B"s,
             "BANDWIDTH"s,
             "BANDWIDTH="s,
             "BANDWIDTH=0"s,
             "BANDWIDTH=1,"s,
             "BANDWIDTH=1,CODECS"s,
             "BANDWIDTH=1,CODECS="s,
             "BANDWIDTH=1,CODECS=\"a,b"s,
             "AVERAGE-BANDWIDTH=1"s,
             "bandwidth=1"s,
         }) {
        expectRejected("#EXT-X-STREAM-INF:" + attributes + "\nu.m3u8\n" + lowVariant, lowVariant);
        expectRejected(lowVariant + "#EXT-X-I-FRAME-STREAM-INF:" + attributes + "\n" + lowVariant,
                       lowVariant);
    }
}

TEST(VELHLSParsedManifestParse, RejectsAnIFrameVariantWithoutUri) {
    expectRejected("#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1\n" + lowVariant, lowVariant);
    expectRejected("#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"\"\nu\n" + lowVariant, "u\n" + lowVariant);
}

TEST(VELHLSParsedManifestParse, LineAfterAnIFrameVariantIsALineOfItsOwn) {
    expectRejected("#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"u\"\nu\n" + lowVariant, lowVariant);
    const auto manifest = parsed("#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"u\"\n#EXT-X-VERSION:4\n");
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->version, 4);
}

TEST(VELHLSParsedManifestParse, NumbersOfAVariantThatAreNoneThrow) {
    for (const std::string& attributes :
         {"BANDWIDTH=x"s, "BANDWIDTH=\"\""s, "BANDWIDTH=-"s, "BANDWIDTH=\0001"s,
          "BANDWIDTH=1,AVERAGE-BANDWIDTH=x"s, "BANDWIDTH=1,PROGRAM-ID=x"s}) {
        expectThrown<std::invalid_argument>("#EXT-X-STREAM-INF:" + attributes + "\nu\n" + lowVariant,
                                            lowVariant);
        expectThrown<std::invalid_argument>(
            "#EXT-X-I-FRAME-STREAM-INF:" + attributes + ",URI=\"u\"\n" + lowVariant, lowVariant);
    }
}

TEST(VELHLSParsedManifestParse, NumbersOfAVariantBeyondTheirTypeThrow) {
    for (const std::string& attributes :
         {"BANDWIDTH=9223372036854775808"s, "BANDWIDTH=-9223372036854775809"s,
          "BANDWIDTH=1,AVERAGE-BANDWIDTH=99999999999999999999"s, "BANDWIDTH=1,PROGRAM-ID=2147483648"s}) {
        expectThrown<std::out_of_range>("#EXT-X-STREAM-INF:" + attributes + "\nu\n" + lowVariant, lowVariant);
    }
}

// ---------------------------------------------------------------------------------------------------------
// EXT-X-SESSION-DATA and EXT-X-SESSION-KEY

TEST(VELHLSParsedManifestParse, KeepsSessionDataInFileOrder) {
    const auto manifest =
        parsed(lines({"#EXT-X-SESSION-DATA:X=1,DATA-ID=\"b\",VALUE=\"1\"",
                      "#EXT-X-SESSION-DATA:VALUE=\"lost\",DATA-ID=\"a\",URI=\"2\"",
                      "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"b\",VALUE=\"3\",LANGUAGE=\"en\""}) +
               lowVariant);
    ASSERT_NE(manifest, nullptr);
    std::string described;
    for (const auto& entry : manifest->sessionData) {
        described += describe(*entry) + "\n";
    }
    EXPECT_EQ(described,
              "dataId=b value=1 uri= language=\ndataId=a value= uri=2 language=\ndataId=b value=3 uri= "
              "language=en\n");
}

TEST(VELHLSParsedManifestParse, RejectsSessionDataThatDoesNotParse) {
    for (const std::string& attributes : {
             ""s,
             "X"s,
             "X=1"s,
             "DATA-ID=\"a\",VALUE=\"v\""s,
             "DATA-ID=\"a\",VALUE=\"v\",LANGUAGE=\"en\""s,
             "X=1,DATA-ID=\"a\""s,
             "X=1,DATA-ID=\"a\",VALUE=\"v\",URI=\"u\""s,
             "X=1,DATA-ID=\"\",VALUE=\"v\""s,
             "X=1,DATA-ID=\"a\",VALUE=\"v\","s,
         }) {
        expectRejected("#EXT-X-SESSION-DATA:" + attributes + "\n" + lowVariant, lowVariant);
    }
}

TEST(VELHLSParsedManifestParse, KeepsSessionKeysInFileOrder) {
    const auto manifest = parsed(
        lines({"#EXT-X-SESSION-KEY:METHOD=SAMPLE-AES,URI=\"z\",KEYFORMAT=\"f\",KEYFORMATVERSIONS=\"3/1\"",
               "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"a\",IV=0x0123456789abcdefABCDEF0123456789"}) +
        lowVariant);
    ASSERT_NE(manifest, nullptr);
    ASSERT_EQ(manifest->sessionKeys.size(), 2U);
    EXPECT_EQ(describe(*manifest->sessionKeys[0]), "method=2 uri=z iv= format=f versions=3/1/");
    EXPECT_EQ(describe(*manifest->sessionKeys[1]),
              "method=1 uri=a iv=0x0123456789abcdefABCDEF0123456789 format= versions=1/");
}

TEST(VELHLSParsedManifestParse, RejectsASessionKeyThatDoesNotParse) {
    for (const std::string& attributes : {
             ""s,
             "M"s,
             "METHOD="s,
             "METHOD=NONE"s,
             "METHOD=NONE,URI=\"k\""s,
             "METHOD=aes-128,URI=\"k\""s,
             "METHOD=AES-128"s,
             "METHOD=AES-128,URI=\"\""s,
             "URI=\"k\""s,
             "METHOD=AES-128,URI=\"k\",IV=0x12"s,
             "METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=\"1,2\""s,
             "METHOD=AES-128,URI=\"k\","s,
         }) {
        expectRejected("#EXT-X-SESSION-KEY:" + attributes + "\n" + lowVariant, lowVariant);
    }
}

TEST(VELHLSParsedManifestParse, KeyFormatVersionsThatAreNoNumbersThrow) {
    const std::string key = "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\",KEYFORMATVERSIONS=";
    for (const std::string& versions : {"\"\""s, "\"1/\""s, "\"/1\""s, "\"1//2\""s}) {
        expectThrown<std::invalid_argument>(key + versions + "\n" + lowVariant, lowVariant);
    }
    expectThrown<std::out_of_range>(key + "\"2147483648\"\n" + lowVariant, lowVariant);
}

// ---------------------------------------------------------------------------------------------------------
// ZOR-STREAM-INF, sanitize and populateMetaData

/// The nominal bit rates of the stream variants, in file order: "video/audio video/audio".
std::string nominalBitratesOf(const Manifest& manifest) {
    std::string text;
    for (const auto& variant : manifest.streamVariants) {
        if (!text.empty()) text += ' ';
        text += variant == nullptr ? "null"
                                   : std::to_string(variant->nominalVideoBitrate) + "/" +
                                         std::to_string(variant->nominalAudioBitrate);
    }
    return text;
}

const std::string vendorTagA = "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=10,NOMINAL_AUDIO_BITRATE=1\n";
const std::string vendorTagB = "#ZOR-STREAM-INF:NOMINAL_AUDIO_BITRATE=2\n";
const std::string vendorTagC = "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=30\n";
const std::string droppedVendorTag = "#ZOR-STREAM-INF:NOMINAL-VIDEO-BITRATE=40\n";

TEST(VELHLSParsedManifestParse, PairsVendorTagsWithStreamVariantsByPosition) {
    const struct {
        std::string text;
        std::size_t kept;
        std::string nominalBitrates;
    } rows[] = {
        {lowVariant, 0, "0/0"},
        {vendorTagA + lowVariant, 1, "10/1"},
        {lowVariant + vendorTagA, 1, "10/1"},
        {vendorTagA + vendorTagB + highVariant + lowVariant, 2, "10/1 0/2"},
        {highVariant + lowVariant + vendorTagA + vendorTagB, 2, "10/1 0/2"},
        {vendorTagA + highVariant + vendorTagB + lowVariant, 2, "10/1 0/2"},
        {vendorTagA + vendorTagB + vendorTagC + lowVariant + highVariant + lowVariant, 3, "10/1 0/2 30/0"},
        {vendorTagA + vendorTagB + vendorTagC + lowVariant + highVariant, 0, "0/0 0/0"},
        {vendorTagA + lowVariant + highVariant, 0, "0/0 0/0"},
        {vendorTagA + iFrameVariant + lowVariant, 1, "10/1"},
        {vendorTagA + vendorTagB + iFrameVariant + lowVariant, 0, "0/0"},
        {vendorTagA + iFrameVariant, 0, ""},
        {droppedVendorTag + lowVariant, 0, "0/0"},
        {droppedVendorTag + vendorTagA + lowVariant, 1, "10/1"},
        {vendorTagA + droppedVendorTag + lowVariant + highVariant, 0, "0/0 0/0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const auto manifest = parsed(row.text);
        ASSERT_NE(manifest, nullptr);
        EXPECT_EQ(manifest->zorStreamInformation.size(), row.kept);
        EXPECT_EQ(manifest->hasZORStreamInformation, row.kept > 0);
        EXPECT_EQ(nominalBitratesOf(*manifest), row.nominalBitrates);
    }
}

TEST(VELHLSParsedManifestParse, IFrameVariantsGetNoNominalBitrates) {
    const auto manifest = parsed(vendorTagA + iFrameVariant + lowVariant);
    ASSERT_NE(manifest, nullptr);
    const auto& iFrame = *manifest->variants.find(100)->second;
    EXPECT_EQ(iFrame.nominalVideoBitrate, 0U);
    EXPECT_EQ(iFrame.nominalAudioBitrate, 0U);
}

TEST(VELHLSParsedManifestParse, DropsMalformedVendorTagsWithoutRejectingThePlaylist) {
    for (const std::string& tag : {
             "#ZOR-STREAM-INF"s,
             "#ZOR-STREAM-INF:"s,
             "#ZOR-STREAM-INF:N"s,
             "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE"s,
             "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE="s,
             "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=0"s,
             "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=0,NOMINAL_AUDIO_BITRATE=0"s,
             "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=5,"s,
             "#ZOR-STREAM-INF:nominal_video_bitrate=5"s,
         }) {
        SCOPED_TRACE(tag);
        EXPECT_EQ(descriptionOf(tag + "\n" + lowVariant), descriptionOf(lowVariant));
    }
}

TEST(VELHLSParsedManifestParse, NominalBitratesThatAreNoNumbersThrow) {
    const std::string tag = "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=";
    expectThrown<std::invalid_argument>(tag + "x\n" + lowVariant, lowVariant);
    expectThrown<std::invalid_argument>(tag + "\"\"\n" + lowVariant, lowVariant);
    expectThrown<std::out_of_range>(tag + "9223372036854775808\n" + lowVariant, lowVariant);
}

TEST(VELHLSParsedManifestParse, SanitizingAndPopulatingAgainChangesNothing) {
    for (const std::string& text : {wholePlaylist, lowVariant, vendorTagA + lowVariant + highVariant}) {
        const auto manifest = parsed(text);
        ASSERT_NE(manifest, nullptr);
        const std::string before = describe(*manifest);
        for (int round = 0; round < 3; ++round) {
            manifest->sanitize();
            manifest->populateMetaData();
            EXPECT_EQ(describe(*manifest), before);
        }
    }
}

std::shared_ptr<VELHLSMediaVariant> streamVariant(std::uint64_t bandwidth) {
    return std::make_shared<VELHLSMediaVariant>(bandwidth, 0, "", "", "u", nullptr, false, 0);
}

std::shared_ptr<VELHLSZORStreamInformation> nominalBitrates(std::uint64_t video, std::uint64_t audio) {
    auto information = std::make_shared<VELHLSZORStreamInformation>();
    information->nominalVideoBitrate = video;
    information->nominalAudioBitrate = audio;
    return information;
}

/// As many variants of each kind as said, and as many vendor entries.
Manifest manifestOf(std::size_t streams, std::size_t iFrames, std::size_t vendorEntries) {
    Manifest manifest;
    for (std::size_t index = 1; index <= streams; ++index) {
        manifest.streamVariants.push_back(streamVariant(index));
        manifest.variants.emplace(index, manifest.streamVariants.back());
    }
    for (std::size_t index = 1; index <= iFrames; ++index) {
        manifest.variants.emplace(
            index, std::make_shared<VELHLSMediaVariant>(index, 0, "", "", "i", nullptr, true, 0));
    }
    for (std::size_t index = 1; index <= vendorEntries; ++index) {
        manifest.zorStreamInformation.push_back(nominalBitrates(index * 10, index));
    }
    return manifest;
}

TEST(VELHLSParsedManifestParse, SanitizeKeepsVendorEntriesOnlyWhenTheirNumberIsThatOfTheStreamVariants) {
    for (std::size_t streams = 0; streams < 4; ++streams) {
        for (std::size_t iFrames = 0; iFrames < 3; ++iFrames) {
            for (std::size_t entries = 0; entries < 4; ++entries) {
                SCOPED_TRACE(testing::Message()
                             << streams << " streams, " << iFrames << " I-frames, " << entries << " entries");
                Manifest manifest = manifestOf(streams, iFrames, entries);
                manifest.sanitize();
                const bool paired = entries > 0 && entries == streams;
                EXPECT_EQ(manifest.hasZORStreamInformation, paired);
                EXPECT_EQ(manifest.zorStreamInformation.size(), paired ? entries : 0U);
                EXPECT_EQ(manifest.variants.size(), streams + iFrames);
                EXPECT_EQ(manifest.streamVariants.size(), streams);
            }
        }
    }
}

TEST(VELHLSParsedManifestParse, SanitizeReleasesTheVendorEntriesThatItDrops) {
    Manifest manifest = manifestOf(2, 0, 1);
    const std::weak_ptr<VELHLSZORStreamInformation> entry = manifest.zorStreamInformation[0];
    manifest.sanitize();
    EXPECT_TRUE(entry.expired());
}

TEST(VELHLSParsedManifestParse, SanitizeNeverClearsTheFlag) {
    for (const std::size_t entries : {0U, 1U}) {
        Manifest manifest = manifestOf(2, 0, entries);
        manifest.hasZORStreamInformation = true;
        manifest.sanitize();
        EXPECT_TRUE(manifest.hasZORStreamInformation);
        EXPECT_TRUE(manifest.zorStreamInformation.empty());
        manifest.populateMetaData();
        EXPECT_EQ(nominalBitratesOf(manifest), "0/0 0/0");
    }
}

TEST(VELHLSParsedManifestParse, SanitizeCountsTheMultimapAndNotTheVector) {
    Manifest manifest = manifestOf(1, 0, 1);
    manifest.streamVariants.push_back(streamVariant(9));
    manifest.sanitize();
    EXPECT_TRUE(manifest.hasZORStreamInformation);
    manifest.populateMetaData();
    EXPECT_EQ(nominalBitratesOf(manifest), "10/1 0/0");
}

TEST(VELHLSParsedManifestParse, PopulatesOnlyWhenTheFlagIsSet) {
    Manifest manifest = manifestOf(2, 0, 2);
    manifest.populateMetaData();
    EXPECT_EQ(nominalBitratesOf(manifest), "0/0 0/0");
    manifest.hasZORStreamInformation = true;
    manifest.populateMetaData();
    EXPECT_EQ(nominalBitratesOf(manifest), "10/1 20/2");
}

TEST(VELHLSParsedManifestParse, PopulatingAgainCopiesWhatTheEntriesHoldThen) {
    const auto manifest = parsed(vendorTagA + lowVariant);
    ASSERT_NE(manifest, nullptr);
    manifest->streamVariants[0]->nominalAudioBitrate = 99;
    manifest->zorStreamInformation[0]->nominalVideoBitrate = 11;
    manifest->populateMetaData();
    EXPECT_EQ(nominalBitratesOf(*manifest), "11/1");
}

TEST(VELHLSParsedManifestParse, PopulatesVectorsOfDifferentLengthAsFarAsBothReach) {
    for (std::size_t streams = 0; streams < 4; ++streams) {
        for (std::size_t entries = 0; entries < 4; ++entries) {
            SCOPED_TRACE(testing::Message() << streams << " streams, " << entries << " entries");
            Manifest manifest = manifestOf(streams, 0, entries);
            manifest.hasZORStreamInformation = true;
            manifest.populateMetaData();
            for (std::size_t index = 0; index < streams; ++index) {
                const std::uint64_t expected = index < entries ? index + 1 : 0;
                EXPECT_EQ(manifest.streamVariants[index]->nominalVideoBitrate, expected * 10);
                EXPECT_EQ(manifest.streamVariants[index]->nominalAudioBitrate, expected);
            }
        }
    }
}

TEST(VELHLSParsedManifestParse, SanitizingAndPopulatingPassOverNullRecords) {
    Manifest manifest = manifestOf(3, 0, 3);
    manifest.variants.emplace(7, nullptr);
    manifest.streamVariants[0] = nullptr;
    manifest.zorStreamInformation[1] = nullptr;
    manifest.sanitize();
    EXPECT_TRUE(manifest.hasZORStreamInformation) << "a null variant is no stream variant";
    manifest.populateMetaData();
    EXPECT_EQ(nominalBitratesOf(manifest), "null 0/0 30/3");
}

// ---------------------------------------------------------------------------------------------------------
// The end of the parse

TEST(VELHLSParsedManifestParse, RejectsWhatDoesNotValidate) {
    const std::string key = "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"\n";
    const std::string data = "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"a\",VALUE=\"v\"\n";
    for (const std::string& text : {
             ""s,
             "\n"s,
             "#EXTM3U"s,
             "#EXTM3U\n#EXT-X-VERSION:4\n"s,
             "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\"\n"s,
             data + key,
             "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"g\"\nu\n"s,
             lowVariant + key + key,
             lowVariant + data + data,
             vendorTagA,
         }) {
        expectRejected(text, "");
    }
}

TEST(VELHLSParsedManifestParse, AcceptedPlaylistsValidate) {
    for (const std::string& text : {wholePlaylist, lowVariant, iFrameVariant, vendorTagA + highVariant}) {
        const auto manifest = parsed(text);
        ASSERT_NE(manifest, nullptr) << text;
        EXPECT_TRUE(manifest->validate()) << text;
    }
}

TEST(VELHLSParsedManifestParse, EveryBeginningOfAPlaylistEndsInOneOfTheThreeOutcomes) {
    for (std::size_t length = 0; length <= wholePlaylist.size(); ++length) {
        const std::string beginning = wholePlaylist.substr(0, length);
        SCOPED_TRACE(beginning);
        std::istringstream input(beginning);
        VELHLSParsingStatus status = markedStatus();
        try {
            const auto manifest = Manifest::parseManifest(input, &status);
            EXPECT_EQ(status.error, manifest == nullptr ? untouchedError : VELHLSParsingErrorNone);
            EXPECT_NE(status.metrics, nullptr);
            if (manifest != nullptr) {
                EXPECT_TRUE(manifest->validate());
            }
        } catch (const std::invalid_argument&) {
            EXPECT_EQ(status.error, untouchedError);
            EXPECT_EQ(status.metrics, nullptr);
        }
        EXPECT_EQ(status.message, untouchedMessage);
    }
}

TEST(VELHLSParsedManifestParse, LastLineNeedsNoLineEnd) {
    for (const std::string& text : {wholePlaylist, lowVariant, iFrameVariant, lowVariant + "#EXTM3U\n",
                                    lowVariant + "#EXT-X-VERSION:4\n", vendorTagA + lowVariant + "   \n"}) {
        SCOPED_TRACE(text);
        EXPECT_NE(parsed(text), nullptr);
        EXPECT_EQ(descriptionOf(text.substr(0, text.size() - 1)), descriptionOf(text));
    }
}

// ---------------------------------------------------------------------------------------------------------
// Carriage returns, NUL bytes and sizes

TEST(VELHLSParsedManifestParse, CarriageReturnAnywhereIsAsIfItWereNotThere) {
    const std::string expected = descriptionOf(wholePlaylist);
    ASSERT_NE(expected, "rejected");
    for (std::size_t position = 0; position <= wholePlaylist.size(); ++position) {
        std::string text = wholePlaylist;
        text.insert(position, "\r");
        EXPECT_EQ(descriptionOf(text), expected) << "at " << position << ":\n" << text;
    }
}

TEST(VELHLSParsedManifestParse, LineEndsOfBothKindsGiveOneModel) {
    std::string withCarriageReturns;
    std::string withManyCarriageReturns;
    for (const char character : wholePlaylist) {
        withCarriageReturns += character == '\n' ? "\r\n"s : std::string(1, character);
        withManyCarriageReturns += "\r"s + character + "\r\r";
    }
    EXPECT_EQ(descriptionOf(withCarriageReturns), descriptionOf(wholePlaylist));
    EXPECT_EQ(descriptionOf(withManyCarriageReturns), descriptionOf(wholePlaylist));
}

TEST(VELHLSParsedManifestParse, CarriageReturnAloneEndsNoLine) {
    expectRejected("#EXTM3U\r#EXT-X-STREAM-INF:BANDWIDTH=1000\rlow.m3u8\r", "");
    expectRejected("#EXTM3U\r#EXT-X-VERSION\n" + lowVariant, lowVariant);
}

TEST(VELHLSParsedManifestParse, KeepsNulBytesInValues) {
    const auto manifest = parsed("#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\0h\",NAME=\"n\0\"\n"s +
                                 "#EXT-X-STREAM-INF:BANDWIDTH=5\0006,AUDIO=\"g\0h\"\nu\0v\n"s);
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->renditions.at(Rendition::Audio).at("g\0h"s).count("n\0"s), 1U);
    EXPECT_EQ(manifest->streamVariants[0]->groupIds.at(Rendition::Audio), "g\0h"s);
    EXPECT_EQ(manifest->streamVariants[0]->uri, "u\0v"s);
    EXPECT_EQ(manifest->streamVariants[0]->bandwidth, 5U) << "a number ends at the NUL";
}

TEST(VELHLSParsedManifestParse, NulByteMakesAnotherTagName) {
    expectRejected("#EXTM3U\0\n"s + lowVariant, lowVariant);
    expectRejected("#EXT-X-INDEPENDENT-SEGMENTS\0\n"s + lowVariant, lowVariant);
    EXPECT_EQ(descriptionOf("#EXT\0-X-VERSION:4\n"s + lowVariant), descriptionOf(lowVariant));
}

constexpr std::size_t megabyte = std::size_t{1} << 20;

TEST(VELHLSParsedManifestParse, IgnoresLongLinesAsItDoesShortOnes) {
    const std::string expected = descriptionOf(lowVariant);
    for (const std::string& line :
         {"#" + std::string(megabyte, 'x'), "#EXT-X-UNKNOWN:" + std::string(megabyte, 'x'),
          "#ZOR" + std::string(megabyte, 'x'), std::string(megabyte, ' '), std::string(megabyte, '\r')}) {
        EXPECT_EQ(descriptionOf(line + "\n" + lowVariant), expected) << line.substr(0, 20);
        EXPECT_EQ(descriptionOf(lowVariant + line), expected) << line.substr(0, 20);
    }
}

TEST(VELHLSParsedManifestParse, KeepsLongValues) {
    const std::string longText(megabyte, 'x');
    const auto manifest = parsed("#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"" + longText + "\",NAME=\"" + longText +
                                 "\"\n#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"" + longText + "\"\n" + longText);
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->streamVariants[0]->uri, longText);
    EXPECT_EQ(manifest->renditions.at(Rendition::Audio).at(longText).count(longText), 1U);
}

TEST(VELHLSParsedManifestParse, RejectsLongLinesOutOfPlace) {
    EXPECT_EQ(parsed(std::string(megabyte, 'x') + "\n" + lowVariant), nullptr);
    EXPECT_EQ(parsed("#EXT" + std::string(megabyte, 'x') + "\n" + lowVariant), nullptr);
    EXPECT_EQ(parsed(std::string(megabyte, ' ') + "x\n" + lowVariant), nullptr);
}

TEST(VELHLSParsedManifestParse, ReadsOverAMillionBlankLines) {
    const std::string blankLines(1000000, '\n');
    EXPECT_EQ(descriptionOf(blankLines + lowVariant + blankLines), descriptionOf(lowVariant));
    expectRejected(blankLines, "");
    expectRejected("#EXT-X-STREAM-INF:BANDWIDTH=1\n" + blankLines, blankLines.substr(1));
}

TEST(VELHLSParsedManifestParse, ReadsManyVariants) {
    std::string text;
    for (int index = 0; index < 20000; ++index) {
        text += "#EXT-X-STREAM-INF:BANDWIDTH=" + std::to_string(1 + index % 100) + "\nv" +
                std::to_string(index) + "\n";
    }
    const auto manifest = parsed(text);
    ASSERT_NE(manifest, nullptr);
    EXPECT_EQ(manifest->streamVariants.size(), 20000U);
    EXPECT_EQ(manifest->variants.count(100), 200U);
    EXPECT_EQ(manifest->streamVariants.back()->uri, "v19999");
}

// ---------------------------------------------------------------------------------------------------------
// The state of the stream

TEST(VELHLSParsedManifestParse, StreamThatIsNotGoodIsNotRead) {
    for (const std::ios_base::iostate state :
         {std::ios_base::eofbit, std::ios_base::failbit, std::ios_base::badbit,
          std::ios_base::eofbit | std::ios_base::failbit}) {
        SCOPED_TRACE(static_cast<int>(state));
        std::istringstream input(lowVariant);
        input.setstate(state);
        VELHLSParsingStatus status = markedStatus();
        EXPECT_EQ(Manifest::parseManifest(input, &status), nullptr);
        EXPECT_EQ(input.rdstate(), state);
        EXPECT_EQ(status.error, untouchedError);
        EXPECT_EQ(status.message, untouchedMessage);
        EXPECT_NE(status.metrics, nullptr);
        EXPECT_EQ(unreadIn(input), lowVariant);
    }
}

TEST(VELHLSParsedManifestParse, StreamWithoutABufferIsRejected) {
    std::istream input(nullptr);
    VELHLSParsingStatus status = markedStatus();
    EXPECT_EQ(Manifest::parseManifest(input, &status), nullptr);
    EXPECT_EQ(status.error, untouchedError);
    EXPECT_NE(status.metrics, nullptr);
}

TEST(VELHLSParsedManifestParse, AcceptedPlaylistIsReadToItsEnd) {
    for (const std::string& text : {lowVariant, lowVariant.substr(0, lowVariant.size() - 1), wholePlaylist}) {
        std::istringstream input(text);
        ASSERT_NE(Manifest::parseManifest(input, nullptr), nullptr);
        EXPECT_TRUE(input.eof());
        EXPECT_FALSE(input.bad());
        EXPECT_EQ(unreadIn(input), "");
    }
}

/// Gives its text, and throws where an end would be.
class BreakingBuffer : public std::streambuf {
  public:
    explicit BreakingBuffer(std::string text) : text_(std::move(text)) {
        setg(text_.data(), text_.data(), text_.data() + text_.size());
    }

  protected:
    int_type underflow() override { throw std::runtime_error("the line is cut"); }

  private:
    std::string text_;
};

TEST(VELHLSParsedManifestParse, StreamThatBreaksEndsThePlaylist) {
    BreakingBuffer afterAVariant(lowVariant);
    std::istream input(&afterAVariant);
    VELHLSParsingStatus status = markedStatus();
    const auto manifest = Manifest::parseManifest(input, &status);
    ASSERT_NE(manifest, nullptr);
    EXPECT_TRUE(input.bad());
    EXPECT_EQ(describe(*manifest), descriptionOf(lowVariant));
    EXPECT_EQ(status.error, VELHLSParsingErrorNone);

    BreakingBuffer beforeTheUri("#EXT-X-STREAM-INF:BANDWIDTH=1000\n");
    std::istream without(&beforeTheUri);
    EXPECT_EQ(Manifest::parseManifest(without, nullptr), nullptr);
}

TEST(VELHLSParsedManifestParse, ExceptionsOfTheStreamLeaveTheParseWithTheMetricsUnwritten) {
    const struct {
        std::ios_base::iostate exceptions;
        std::string text;
    } rows[] = {
        {std::ios_base::failbit, lowVariant},  // reading on after the last line end fails
        {std::ios_base::eofbit, lowVariant},
        {std::ios_base::eofbit, lowVariant.substr(0, lowVariant.size() - 1)},
        {std::ios_base::failbit, "#EXT-X-STREAM-INF:BANDWIDTH=1"},
        {std::ios_base::failbit, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        std::istringstream input(row.text);
        input.exceptions(row.exceptions);
        VELHLSParsingStatus status = markedStatus();
        EXPECT_THROW(static_cast<void>(Manifest::parseManifest(input, &status)), std::ios_base::failure);
        EXPECT_EQ(status.error, untouchedError);
        EXPECT_EQ(status.message, untouchedMessage);
        EXPECT_EQ(status.metrics, nullptr);
    }
}

TEST(VELHLSParsedManifestParse, ExceptionsOfABrokenBufferLeaveTheParseAsTheyAre) {
    BreakingBuffer buffer(lowVariant);
    std::istream input(&buffer);
    input.exceptions(std::ios_base::badbit);
    VELHLSParsingStatus status = markedStatus();
    EXPECT_THROW(static_cast<void>(Manifest::parseManifest(input, &status)), std::runtime_error);
    EXPECT_EQ(status.error, untouchedError);
    EXPECT_EQ(status.metrics, nullptr);
}

TEST(VELHLSParsedManifestParse, ExceptionsThatHaveNoCauseDoNotDisturb) {
    const struct {
        std::ios_base::iostate exceptions;
        std::string text;
    } rows[] = {
        {std::ios_base::badbit, lowVariant},
        {std::ios_base::failbit, lowVariant.substr(0, lowVariant.size() - 1)},  // the end comes with the line
        {std::ios_base::eofbit | std::ios_base::failbit, "#EXTM3U\n" + lowVariant + "#EXTM3U\nrest"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        std::istringstream input(row.text);
        input.exceptions(row.exceptions);
        EXPECT_NE(Manifest::parseManifest(input, nullptr), nullptr);
    }
}

// ---------------------------------------------------------------------------------------------------------
// The status

TEST(VELHLSParsedManifestParse, SuccessStoresItsErrorValueWhateverWasThere) {
    for (const auto error : {untouchedError, VELHLSParsingErrorMediaPattern, VELHLSParsingErrorNone,
                             static_cast<VELHLSParsingError>(0)}) {
        std::istringstream input(lowVariant);
        VELHLSParsingStatus status;
        status.error = error;
        status.message = "#ZOR-PATTERN_END:";
        status.hasMediaPatterns = true;
        ASSERT_NE(Manifest::parseManifest(input, &status), nullptr);
        EXPECT_EQ(status.error, -1);
        EXPECT_EQ(status.message, "#ZOR-PATTERN_END:") << "success does not clear it";
        EXPECT_TRUE(status.hasMediaPatterns) << "nor this";
    }
}

TEST(VELHLSParsedManifestParse, MediaPatternTagsDoNotMarkTheStatus) {
    std::istringstream input(lowVariant + "#ZOR-PATTERN_START:\n#ZOR-PATTERN_REPEAT:\n");
    VELHLSParsingStatus status;
    ASSERT_NE(Manifest::parseManifest(input, &status), nullptr);
    EXPECT_FALSE(status.hasMediaPatterns);
}

TEST(VELHLSParsedManifestParse, OneMetricsRecordIsReusedFromParseToParse) {
    VELHLSParsingStatus status;
    std::istringstream accepted(lowVariant);
    ASSERT_NE(Manifest::parseManifest(accepted, &status), nullptr);
    const auto metrics = status.metrics;
    ASSERT_NE(metrics, nullptr);
    for (const std::string& text : {lowVariant, "nonsense"s, ""s}) {
        metrics->parseDuration = 1e9;
        std::istringstream input(text);
        static_cast<void>(Manifest::parseManifest(input, &status));
        EXPECT_EQ(status.metrics, metrics);
        EXPECT_LT(metrics->parseDuration, 1e9) << text;
        EXPECT_GE(metrics->parseDuration, 0.0) << text;
    }
}

TEST(VELHLSParsedManifestParse, ExceptionLeavesOldMetricsAsTheyWere) {
    VELHLSParsingStatus status;
    status.metrics = std::make_shared<VELHLSParsingMetrics>();
    status.metrics->parseDuration = 1e9;
    std::istringstream input("#EXT-X-VERSION:x\n");
    EXPECT_THROW(static_cast<void>(Manifest::parseManifest(input, &status)), std::invalid_argument);
    EXPECT_EQ(status.metrics->parseDuration, 1e9);
}

TEST(VELHLSParsedManifestParse, DurationIsThatOfTheParse) {
    std::istringstream input(std::string(1000000, '\n'));
    VELHLSParsingStatus status;
    const auto start = std::chrono::steady_clock::now();
    static_cast<void>(Manifest::parseManifest(input, &status));
    const std::chrono::duration<double> around = std::chrono::steady_clock::now() - start;
    ASSERT_NE(status.metrics, nullptr);
    EXPECT_GT(status.metrics->parseDuration, 0.0);
    EXPECT_LE(status.metrics->parseDuration, around.count());
}

TEST(VELHLSParsedManifestParse, InternalParseGivesTheSameAndMeasuresNothing) {
    for (const std::string& text : {wholePlaylist, lowVariant, "nonsense"s, ""s}) {
        SCOPED_TRACE(text);
        std::istringstream input(text);
        VELHLSParsingStatus status = markedStatus();
        const auto manifest = Manifest::internalParseManifest(input, &status);
        EXPECT_EQ(manifest == nullptr ? "rejected" : describe(*manifest), descriptionOf(text));
        EXPECT_EQ(status.error, manifest == nullptr ? untouchedError : VELHLSParsingErrorNone);
        EXPECT_EQ(status.message, untouchedMessage);
        EXPECT_EQ(status.metrics, nullptr);

        std::istringstream again(text);
        EXPECT_EQ(Manifest::internalParseManifest(again, nullptr) == nullptr, manifest == nullptr);
    }
}

TEST(VELHLSParsedManifestParse, EachVariantAndRenditionLivesAsLongAsItIsHeld) {
    std::string text;
    for (int index = 0; index < 300; ++index) {
        const std::string number = std::to_string(index);
        text += "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"sound\",NAME=\"the language of number " + number + "\"\n";
        text +=
            "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"sound\"\na/playlist/with/a/long/uri/" + number + ".m3u8\n";
    }
    auto manifest = parsed(text);
    ASSERT_NE(manifest, nullptr);
    const auto variant = manifest->streamVariants[150];
    const auto rendition =
        manifest->renditions[VELHLSMediaStreamRendition::Audio]["sound"]["the language of number 7"];
    const std::weak_ptr<VELHLSMediaVariant> released = manifest->streamVariants[151];
    manifest = nullptr;
    EXPECT_TRUE(released.expired());
    EXPECT_EQ(variant.use_count(), 1);
    EXPECT_EQ(variant->uri, "a/playlist/with/a/long/uri/150.m3u8");
    EXPECT_EQ(rendition.use_count(), 1);
    EXPECT_EQ(rendition->name, "the language of number 7");
}

}  // namespace
