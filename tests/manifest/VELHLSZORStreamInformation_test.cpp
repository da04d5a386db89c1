#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/Outcome.h"
#include "tests/support/RecordText.h"

namespace {

using namespace std::string_literals;

using Information = VELHLSZORStreamInformation;
using InformationPointer = std::shared_ptr<Information>;

static_assert(std::is_same_v<decltype(Information::nominalVideoBitrate), std::uint64_t>);
static_assert(std::is_same_v<decltype(Information::nominalAudioBitrate), std::uint64_t>);
static_assert(std::is_same_v<decltype(&Information::parse), InformationPointer (*)(const std::string&)>);
static_assert(std::is_same_v<decltype(&Information::validate), bool (Information::*)() const>);

const std::string zorTag = "#ZOR-STREAM-INF:";

InformationPointer parsed(const std::string& attributes) {
    return Information::parse(zorTag + attributes);
}

/// The two bit rates of the line, "video/audio"; "null" where there is no entry.
std::string bitrates(const std::string& attributes) {
    const InformationPointer entry = parsed(attributes);
    if (entry == nullptr) return "null";
    return std::to_string(entry->nominalVideoBitrate) + "/" + std::to_string(entry->nominalAudioBitrate);
}

// --- construction and validate

TEST(VELHLSZORStreamInformation, StartsWithoutBitrates) {
    const Information entry;
    EXPECT_EQ(entry.nominalVideoBitrate, 0U);
    EXPECT_EQ(entry.nominalAudioBitrate, 0U);
    EXPECT_FALSE(entry.validate());
}

TEST(VELHLSZORStreamInformation, IsValidWithOneBitrate) {
    struct Row {
        std::uint64_t video;
        std::uint64_t audio;
        bool valid;
    };
    const std::vector<Row> rows = {
        {0, 0, false},
        {1, 0, true},
        {0, 1, true},
        {1, 1, true},
        {18446744073709551615U, 0, true},
        {0, 9223372036854775808U, true},
        {4294967296U, 0, true},
        {0, 4294967296U, true},
    };
    for (const Row& row : rows) {
        Information entry;
        entry.nominalVideoBitrate = row.video;
        entry.nominalAudioBitrate = row.audio;
        EXPECT_EQ(entry.validate(), row.valid) << row.video << "/" << row.audio;
    }
}

// --- parse

TEST(VELHLSZORStreamInformation, ReadsBothBitrates) {
    EXPECT_EQ(bitrates("NOMINAL_VIDEO_BITRATE=4500000,NOMINAL_AUDIO_BITRATE=128000"), "4500000/128000");
    EXPECT_EQ(bitrates("NOMINAL_AUDIO_BITRATE=128000,NOMINAL_VIDEO_BITRATE=4500000"), "4500000/128000");
    EXPECT_EQ(bitrates("NOMINAL_VIDEO_BITRATE=\"4500000\",NOMINAL_AUDIO_BITRATE=\"128000\""),
              "4500000/128000");
}

TEST(VELHLSZORStreamInformation, OneBitrateIsEnough) {
    EXPECT_EQ(bitrates("NOMINAL_VIDEO_BITRATE=1"), "1/0");
    EXPECT_EQ(bitrates("NOMINAL_AUDIO_BITRATE=1"), "0/1");
    EXPECT_EQ(bitrates("NOMINAL_VIDEO_BITRATE=1,NOMINAL_AUDIO_BITRATE=0"), "1/0");
    EXPECT_EQ(bitrates("NOMINAL_VIDEO_BITRATE=0,NOMINAL_AUDIO_BITRATE=1"), "0/1");
}

TEST(VELHLSZORStreamInformation, WithoutABitrateThereIsNoEntry) {
    for (const std::string list : {"", "X=1", "BANDWIDTH=1", "VIDEO_BITRATE=1", "AUDIO_BITRATE=1"}) {
        EXPECT_EQ(parsed(list), nullptr) << list;
    }
    for (const std::string& zero : record::zeros) {
        EXPECT_EQ(parsed("NOMINAL_VIDEO_BITRATE=" + zero), nullptr) << zero;
        EXPECT_EQ(parsed("NOMINAL_AUDIO_BITRATE=" + zero), nullptr) << zero;
        EXPECT_EQ(parsed("NOMINAL_VIDEO_BITRATE=" + zero + ",NOMINAL_AUDIO_BITRATE=" + zero), nullptr)
            << zero;
    }
}

TEST(VELHLSZORStreamInformation, IgnoresOtherAttributes) {
    const std::vector<std::string> others = {
        "NOMINAL-VIDEO-BITRATE=x",
        "NOMINAL-AUDIO-BITRATE=x",
        "NOMINAL_VIDEO-BITRATE=x",
        "NOMINAL-VIDEO_BITRATE=x",
        "nominal_video_bitrate=x",
        "Nominal_Audio_Bitrate=x",
        "NOMINAL_VIDEO_BITRATE2=x",
        "NOMINAL_VIDEO_BITRAT=x",
        " NOMINAL_VIDEO_BITRATE=x",
        "NOMINAL_AUDIO_BITRATE =x",
        ":NOMINAL_AUDIO_BITRATE=x",
        "BANDWIDTH=x",
        "VIDEO=\"a,b\"",
        "NOMINAL_VIDEO_BITRATE\0=x"s,
    };
    for (const std::string& other : others) {
        EXPECT_EQ(parsed(other), nullptr) << other;
        EXPECT_EQ(bitrates(other + ",NOMINAL_VIDEO_BITRATE=2,NOMINAL_AUDIO_BITRATE=1"), "2/1") << other;
        EXPECT_EQ(bitrates("NOMINAL_VIDEO_BITRATE=2,NOMINAL_AUDIO_BITRATE=1," + other), "2/1") << other;
    }
}

TEST(VELHLSZORStreamInformation, HyphenatedNamesMakeNoEntry) {
    EXPECT_EQ(parsed("NOMINAL-VIDEO-BITRATE=4500000,NOMINAL-AUDIO-BITRATE=128000"), nullptr);
}

TEST(VELHLSZORStreamInformation, ReadsTheNumberAtTheStartOfBitrates) {
    for (const record::NumberText& row : record::numbers64) {
        SCOPED_TRACE(row.text);
        const InformationPointer video = parsed("NOMINAL_VIDEO_BITRATE=\"" + row.text + "\"");
        ASSERT_NE(video, nullptr);
        EXPECT_EQ(video->nominalVideoBitrate, row.number);
        EXPECT_EQ(video->nominalAudioBitrate, 0U);

        const InformationPointer audio = parsed("NOMINAL_AUDIO_BITRATE=\"" + row.text + "\"");
        ASSERT_NE(audio, nullptr);
        EXPECT_EQ(audio->nominalVideoBitrate, 0U);
        EXPECT_EQ(audio->nominalAudioBitrate, row.number);
    }
}

TEST(VELHLSZORStreamInformation, ThrowsForNumbersThatAreNone) {
    for (const std::string& noNumber : record::noNumbers) {
        for (const std::string attribute : {"NOMINAL_VIDEO_BITRATE", "NOMINAL_AUDIO_BITRATE"}) {
            SCOPED_TRACE(attribute + "=\"" + noNumber + "\"");
            const std::string list = "X=1," + attribute + "=\"" + noNumber + "\"";
            EXPECT_EQ(playlist::thrownBy([&] { static_cast<void>(parsed(list)); }), "invalid_argument");
        }
    }
    EXPECT_THROW(static_cast<void>(parsed("NOMINAL_VIDEO_BITRATE=fast")), std::invalid_argument);
}

TEST(VELHLSZORStreamInformation, ThrowsForNumbersThatFitNoSigned64BitInteger) {
    for (const std::string& tooLarge : record::tooLargeFor64) {
        for (const std::string attribute : {"NOMINAL_VIDEO_BITRATE", "NOMINAL_AUDIO_BITRATE"}) {
            SCOPED_TRACE(attribute + "=" + tooLarge);
            EXPECT_EQ(playlist::thrownBy([&] { static_cast<void>(parsed(attribute + "=" + tooLarge)); }),
                      "out_of_range");
        }
    }
    EXPECT_THROW(static_cast<void>(parsed("NOMINAL_AUDIO_BITRATE=9223372036854775808")), std::out_of_range);
}

TEST(VELHLSZORStreamInformation, AudioThrowsBeforeVideoWhateverTheWrittenOrder) {
    const std::string tooLarge = "9223372036854775808";
    struct Row {
        std::string list;
        std::string thrown;
    };
    const std::vector<Row> rows = {
        {"NOMINAL_AUDIO_BITRATE=x,NOMINAL_VIDEO_BITRATE=" + tooLarge, "invalid_argument"},
        {"NOMINAL_VIDEO_BITRATE=" + tooLarge + ",NOMINAL_AUDIO_BITRATE=x", "invalid_argument"},
        {"NOMINAL_AUDIO_BITRATE=" + tooLarge + ",NOMINAL_VIDEO_BITRATE=x", "out_of_range"},
        {"NOMINAL_VIDEO_BITRATE=x,NOMINAL_AUDIO_BITRATE=" + tooLarge, "out_of_range"},
        {"NOMINAL_VIDEO_BITRATE=x,NOMINAL_AUDIO_BITRATE=1", "invalid_argument"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(playlist::thrownBy([&] { static_cast<void>(parsed(row.list)); }), row.thrown) << row.list;
    }
}

TEST(VELHLSZORStreamInformation, AWrongTagOrAMalformedListIsSeenBeforeAnyNumber) {
    EXPECT_EQ(Information::parse("#ZOR-STREAM-INF2:NOMINAL_VIDEO_BITRATE=x"), nullptr);
    EXPECT_EQ(parsed("NOMINAL_VIDEO_BITRATE=x,"), nullptr);
    EXPECT_EQ(parsed("NOMINAL_VIDEO_BITRATE=99999999999999999999,X"), nullptr);
}

TEST(VELHLSZORStreamInformation, TheFirstOfRepeatedAttributesHolds) {
    EXPECT_EQ(bitrates("NOMINAL_VIDEO_BITRATE=1,NOMINAL_VIDEO_BITRATE=x,NOMINAL_AUDIO_BITRATE=2,NOMINAL_"
                       "AUDIO_BITRATE=3"),
              "1/2");
    EXPECT_EQ(parsed("NOMINAL_VIDEO_BITRATE=0,NOMINAL_VIDEO_BITRATE=1"), nullptr);
}

TEST(VELHLSZORStreamInformation, RejectsMalformedAttributeLists) {
    for (const std::string& list : record::malformedLists) {
        EXPECT_EQ(parsed("NOMINAL_VIDEO_BITRATE=1," + list), nullptr) << list;
        EXPECT_EQ(parsed(list + ",NOMINAL_VIDEO_BITRATE=1"), nullptr) << list;
        EXPECT_EQ(parsed(list), nullptr) << list;
    }
}

TEST(VELHLSZORStreamInformation, ReadsOrRejectsEachPrefixOfAnAttributeList) {
    for (const std::string& prefix : record::properPrefixes("NOMINAL_VIDEO_BITRATE=1")) {
        EXPECT_EQ(parsed(prefix), nullptr) << prefix;
    }
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"NOMINAL_VIDEO_BITRATE=1", "1/0"},
        {"NOMINAL_VIDEO_BITRATE=12", "12/0"},
        {"NOMINAL_VIDEO_BITRATE=12,", "null"},
        {"NOMINAL_VIDEO_BITRATE=12,N", "null"},
        {"NOMINAL_VIDEO_BITRATE=12,NOMINAL_AUDIO_BITRATE", "null"},
        {"NOMINAL_VIDEO_BITRATE=12,NOMINAL_AUDIO_BITRATE=", "null"},
        {"NOMINAL_VIDEO_BITRATE=12,NOMINAL_AUDIO_BITRATE=\"3", "12/3"},
        {"NOMINAL_VIDEO_BITRATE=12,NOMINAL_AUDIO_BITRATE=\"3\"", "12/3"},
        {"NOMINAL_VIDEO_BITRATE=12,NOMINAL_AUDIO_BITRATE=\"3\",", "null"},
    };
    for (const auto& [list, expected] : rows)
        EXPECT_EQ(bitrates(list), expected) << list;
}

TEST(VELHLSZORStreamInformation, RejectsEachPrefixOfItsTagName) {
    for (const std::string& prefix : record::properPrefixes(zorTag)) {
        EXPECT_EQ(Information::parse(prefix), nullptr) << prefix;
        EXPECT_EQ(Information::parse(prefix + "NOMINAL_VIDEO_BITRATE=1"), nullptr) << prefix;
    }
    EXPECT_EQ(Information::parse(zorTag), nullptr);
}

TEST(VELHLSZORStreamInformation, RejectsOtherTags) {
    for (const std::string& tag :
         {"#ZOR-STREAM-INF"s, "#ZOR-STREAM-INF "s, "#ZOR-STREAM-INF :"s, "#ZOR-STREAM-INF;"s,
          "#ZOR-STREAM-INF2:"s, "#ZOR-STREAM-INF\0:"s, "#zor-stream-inf:"s, "#Zor-STREAM-INF:"s,
          " #ZOR-STREAM-INF:"s, "##ZOR-STREAM-INF:"s, "ZOR-STREAM-INF:"s, "#ZOR-STREAM_INF:"s,
          "\xEF\xBB\xBF#ZOR-STREAM-INF:"s, "#EXT-X-STREAM-INF:"s, "#EXT-ZOR-STREAM-INF:"s,
          "\n#ZOR-STREAM-INF:"s}) {
        EXPECT_EQ(Information::parse(tag + "NOMINAL_VIDEO_BITRATE=1"), nullptr) << tag;
    }
}

// --- large input

TEST(VELHLSZORStreamInformation, ReadsMegabytesQuickly) {
    const std::string large(record::megabyte, 'c');
    const std::string nines(record::megabyte, '9');
    const double seconds = record::secondsOf([&] {
        EXPECT_EQ(bitrates("X=\"" + large + "\",NOMINAL_VIDEO_BITRATE=1" + large), "1/0");
        EXPECT_THROW(static_cast<void>(parsed("NOMINAL_VIDEO_BITRATE=" + nines)), std::out_of_range);
        EXPECT_THROW(static_cast<void>(parsed("NOMINAL_AUDIO_BITRATE=" + large)), std::invalid_argument);
    });
    EXPECT_LT(seconds, record::quickSeconds);
}

TEST(VELHLSZORStreamInformation, ReadsManyAttributesQuickly) {
    const std::string list = record::manyAttributes() + "NOMINAL_VIDEO_BITRATE=\"1\"";
    const double seconds = record::secondsOf([&] { EXPECT_EQ(bitrates(list), "1/0"); });
    EXPECT_LT(seconds, record::quickSeconds);
}

}  // namespace
