#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velhls/VELHLS.h"

#include "tests/support/RecordText.h"
#include "tests/support/SameModel.h"

namespace {

using namespace std::string_literals;
using playlist::expectSameModel;
using record::rendered;

using Rendition = VELHLSMediaStreamRendition;
using RenditionPointer = std::shared_ptr<Rendition>;
using Change = std::function<void(Rendition&)>;

static_assert(std::is_same_v<std::underlying_type_t<Rendition::RenditionType>, std::uint32_t>);
static_assert(static_cast<std::uint32_t>(Rendition::RenditionType::Audio) == 0U);
static_assert(static_cast<std::uint32_t>(Rendition::RenditionType::Video) == 1U);
static_assert(static_cast<std::uint32_t>(Rendition::RenditionType::Subtitles) == 2U);
static_assert(static_cast<std::uint32_t>(Rendition::RenditionType::ClosedCaptions) == 3U);
static_assert(static_cast<std::uint32_t>(Rendition::RenditionType::Unknown) == 4294967295U);

static_assert(std::is_same_v<decltype(Rendition::type), Rendition::RenditionType>);
static_assert(std::is_same_v<decltype(Rendition::uri), std::string>);
static_assert(std::is_same_v<decltype(Rendition::mediaStream), std::shared_ptr<VELHLSMediaStream>>);
static_assert(std::is_same_v<decltype(Rendition::groupId), std::string>);
static_assert(std::is_same_v<decltype(Rendition::language), std::string>);
static_assert(std::is_same_v<decltype(Rendition::assocLanguage), std::string>);
static_assert(std::is_same_v<decltype(Rendition::name), std::string>);
static_assert(std::is_same_v<decltype(Rendition::isDefault), bool>);
static_assert(std::is_same_v<decltype(Rendition::autoSelect), bool>);
static_assert(std::is_same_v<decltype(Rendition::forced), bool>);
static_assert(std::is_same_v<decltype(Rendition::instreamId), std::string>);
static_assert(std::is_same_v<decltype(Rendition::audioTrackType), std::string>);
static_assert(std::is_same_v<decltype(Rendition::characteristics), std::set<std::string>>);
static_assert(std::is_same_v<decltype(&Rendition::parse), RenditionPointer (*)(const std::string&)>);
static_assert(std::is_same_v<decltype(&Rendition::render), std::int32_t (Rendition::*)(std::string&) const>);
static_assert(std::is_same_v<decltype(&Rendition::validate), bool (Rendition::*)() const>);
static_assert(std::is_same_v<decltype(&Rendition::equalExceptURIAndGroupID),
                             bool (Rendition::*)(RenditionPointer) const>);

const std::string mediaTag = "#EXT-X-MEDIA:";

/// What every rendition needs, of each type.
const std::string audio = "TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\"";
const std::string video = "TYPE=VIDEO,GROUP-ID=\"g\",NAME=\"n\"";
const std::string subtitles = "TYPE=SUBTITLES,GROUP-ID=\"g\",NAME=\"n\"";
const std::string captions = "TYPE=CLOSED-CAPTIONS,GROUP-ID=\"g\",NAME=\"n\",INSTREAM-ID=\"CC1\"";

RenditionPointer parsed(const std::string& attributes) {
    return Rendition::parse(mediaTag + attributes);
}

/// What the rendition with these attributes renders; "null" where there is none.
std::string text(const std::string& attributes) {
    const RenditionPointer rendition = parsed(attributes);
    return rendition == nullptr ? "null" : rendered(*rendition);
}

Rendition smallest(Rendition::RenditionType type) {
    const bool isCaptions = type == Rendition::ClosedCaptions;
    return {type, "", nullptr, "g", "", "", "n", false, false, false, isCaptions ? "CC1" : "", ""};
}

Rendition smallestAudio() {
    return smallest(Rendition::Audio);
}

// --- construction

TEST(VELHLSMediaStreamRendition, TypesHaveTheTextsThatPlaylistsWrite) {
    EXPECT_EQ(Rendition::textOf(Rendition::Audio), "AUDIO");
    EXPECT_EQ(Rendition::textOf(Rendition::Video), "VIDEO");
    EXPECT_EQ(Rendition::textOf(Rendition::Subtitles), "SUBTITLES");
    EXPECT_EQ(Rendition::textOf(Rendition::ClosedCaptions), "CLOSED-CAPTIONS");
    EXPECT_EQ(Rendition::textOf(Rendition::Unknown), "");
    EXPECT_EQ(Rendition::textOf(static_cast<Rendition::RenditionType>(4)), "");
}

TEST(VELHLSMediaStreamRendition, ConstructorStoresEachArgumentInItsMember) {
    const auto media = std::make_shared<VELHLSMediaStream>();
    const Rendition rendition(Rendition::Subtitles, "uri", media, "group", "language", "associated", "name",
                              true, false, true, "instream", "track");

    EXPECT_EQ(rendition.type, Rendition::Subtitles);
    EXPECT_EQ(rendition.uri, "uri");
    EXPECT_EQ(rendition.mediaStream, media);
    EXPECT_EQ(rendition.groupId, "group");
    EXPECT_EQ(rendition.language, "language");
    EXPECT_EQ(rendition.assocLanguage, "associated");
    EXPECT_EQ(rendition.name, "name");
    EXPECT_TRUE(rendition.isDefault);
    EXPECT_FALSE(rendition.autoSelect);
    EXPECT_TRUE(rendition.forced);
    EXPECT_EQ(rendition.instreamId, "instream");
    EXPECT_EQ(rendition.audioTrackType, "track");
    EXPECT_TRUE(rendition.characteristics.empty());
}

TEST(VELHLSMediaStreamRendition, ConstructorKeepsTheThreeFlagsApart) {
    const Rendition isDefault(Rendition::Audio, "", nullptr, "", "", "", "", true, false, false, "", "");
    const Rendition autoSelect(Rendition::Audio, "", nullptr, "", "", "", "", false, true, false, "", "");
    const Rendition forced(Rendition::Audio, "", nullptr, "", "", "", "", false, false, true, "", "");

    EXPECT_TRUE(isDefault.isDefault && !isDefault.autoSelect && !isDefault.forced);
    EXPECT_TRUE(!autoSelect.isDefault && autoSelect.autoSelect && !autoSelect.forced);
    EXPECT_TRUE(!forced.isDefault && !forced.autoSelect && forced.forced);
}

TEST(VELHLSMediaStreamRendition, SharesItsMediaStreamWithTheCaller) {
    const auto media = std::make_shared<VELHLSMediaStream>();
    {
        const Rendition rendition(Rendition::Audio, "", media, "g", "", "", "n", false, false, false, "", "");
        EXPECT_EQ(media.use_count(), 2);
    }
    EXPECT_EQ(media.use_count(), 1);
}

// --- parse

TEST(VELHLSMediaStreamRendition, ReadsTheLeastThatEachTypeNeeds) {
    const std::vector<std::pair<std::string, Rendition::RenditionType>> rows = {
        {audio, Rendition::Audio},
        {video, Rendition::Video},
        {subtitles, Rendition::Subtitles},
        {captions, Rendition::ClosedCaptions},
    };
    for (const auto& [list, type] : rows) {
        SCOPED_TRACE(list);
        const RenditionPointer rendition = parsed(list);
        ASSERT_NE(rendition, nullptr);
        expectSameModel(*rendition, smallest(type));
    }
}

TEST(VELHLSMediaStreamRendition, ReadsEveryAttribute) {
    const RenditionPointer rendition = parsed(
        "TYPE=SUBTITLES,URI=\"s.m3u8\",GROUP-ID=\"subs\",LANGUAGE=\"en\",ASSOC-LANGUAGE=\"en-GB\","
        "NAME=\"English, "
        "forced\",DEFAULT=YES,AUTOSELECT=YES,FORCED=YES,INSTREAM-ID=\"\",AUDIO-TRACK-TYPE=\"t\","
        "CHARACTERISTICS=\"public.easy-to-read,public.accessibility\"");

    ASSERT_NE(rendition, nullptr);
    Rendition expected(Rendition::Subtitles, "s.m3u8", nullptr, "subs", "en", "en-GB", "English, forced",
                       true, true, true, "", "t");
    expected.characteristics = {"public.accessibility", "public.easy-to-read"};
    expectSameModel(*rendition, expected);
}

TEST(VELHLSMediaStreamRendition, ReadsEachAttributeByItself) {
    const std::vector<std::pair<std::string, Change>> rows = {
        {"URI=\"a/b.m3u8?c=d,e\"", [](Rendition& rendition) { rendition.uri = "a/b.m3u8?c=d,e"; }},
        {"URI=a.m3u8", [](Rendition& rendition) { rendition.uri = "a.m3u8"; }},
        {"URI=\"\"", [](Rendition&) {}},
        {"LANGUAGE=\"EN\"", [](Rendition& rendition) { rendition.language = "EN"; }},
        {"LANGUAGE=\"not a language\"", [](Rendition& rendition) { rendition.language = "not a language"; }},
        {"LANGUAGE=\"\"", [](Rendition&) {}},
        {"ASSOC-LANGUAGE=\"de\"", [](Rendition& rendition) { rendition.assocLanguage = "de"; }},
        {"DEFAULT=NO", [](Rendition&) {}},
        {"DEFAULT=YES", [](Rendition& rendition) { rendition.isDefault = rendition.autoSelect = true; }},
        {"DEFAULT=\"YES\"", [](Rendition& rendition) { rendition.isDefault = rendition.autoSelect = true; }},
        {"AUTOSELECT=NO", [](Rendition&) {}},
        {"AUTOSELECT=YES", [](Rendition& rendition) { rendition.autoSelect = true; }},
        {"AUTOSELECT=\"NO\"", [](Rendition&) {}},
        {"FORCED=NO", [](Rendition&) {}},
        {"INSTREAM-ID=\"\"", [](Rendition&) {}},
        {"AUDIO-TRACK-TYPE=\"main\"", [](Rendition& rendition) { rendition.audioTrackType = "main"; }},
        {"CHARACTERISTICS=\"a\"", [](Rendition& rendition) { rendition.characteristics = {"a"}; }},
        {"CHARACTERISTICS=\"a", [](Rendition& rendition) { rendition.characteristics = {"a"}; }},
    };
    for (const auto& [attribute, change] : rows) {
        SCOPED_TRACE(attribute);
        Rendition expected = smallestAudio();
        change(expected);
        const RenditionPointer rendition = parsed(audio + "," + attribute);
        ASSERT_NE(rendition, nullptr);
        expectSameModel(*rendition, expected);
    }
}

TEST(VELHLSMediaStreamRendition, TakesGroupIdNameAndInstreamIdAsTheyAreWritten) {
    for (const std::string value : {"x", " ", "a,b", "a=b", "NONE", "CC5", "SERVICE64", "\xC3\xA9", "a\r"}) {
        SCOPED_TRACE(value);
        const RenditionPointer rendition = parsed("TYPE=CLOSED-CAPTIONS,GROUP-ID=\"" + value + "\",NAME=\"" +
                                                  value + "\",INSTREAM-ID=\"" + value + "\"");
        ASSERT_NE(rendition, nullptr);
        EXPECT_EQ(rendition->groupId, value);
        EXPECT_EQ(rendition->name, value);
        EXPECT_EQ(rendition->instreamId, value);
    }
}

TEST(VELHLSMediaStreamRendition, IgnoresOtherAttributes) {
    const std::vector<std::string> others = {
        "type=VIDEO",
        "Type=x",
        "TYPE2=x",
        " TYPE=x",
        "TYPE =x",
        "uri=\"u\"",
        "URL=\"u\"",
        "group-id=\"h\"",
        "GROUP_ID=\"h\"",
        "language=\"l\"",
        "LANGUAGES=\"l\"",
        "ASSOC=\"l\"",
        "ASSOC_LANGUAGE=x",
        "name=\"m\"",
        "NAME2=\"m\"",
        "default=YES",
        "DEFAULT2=YES",
        " DEFAULT=YES",
        "autoselect=YES",
        "AUTO-SELECT=YES",
        "forced=YES",
        "FORCED =YES",
        "instream-id=\"i\"",
        "INSTREAM_ID=\"i\"",
        "audio-track-type=\"t\"",
        "characteristics=\"c\"",
        "CHARACTERISTIC=\"c\"",
        "CHANNELS=\"2\"",
        "BANDWIDTH=x",
        "BIT-DEPTH=16",
        "DEFAULT\0=x"s,
        ":DEFAULT=x",
    };
    for (const std::string& other : others) {
        SCOPED_TRACE(other);
        const RenditionPointer rendition = parsed(audio + "," + other);
        ASSERT_NE(rendition, nullptr);
        expectSameModel(*rendition, smallestAudio());
    }
}

TEST(VELHLSMediaStreamRendition, TypeIsOneOfFourTexts) {
    std::vector<std::string> others = {"audio",
                                       "Audio",
                                       " AUDIO",
                                       "AUDIO ",
                                       "AUDIO\r",
                                       "AUDIO\0"s,
                                       "AUDIO2",
                                       "VIDEOS",
                                       "SUBTITLE2",
                                       "SUBTITLES2",
                                       "CAPTIONS",
                                       "CLOSED_CAPTIONS",
                                       "CLOSED-CAPTIONS ",
                                       "closed-captions",
                                       "NONE",
                                       "UNKNOWN",
                                       "Unknown",
                                       "0",
                                       "1",
                                       "3",
                                       "-1",
                                       "4294967295",
                                       "AUDIO,VIDEO"};
    for (const std::string_view type : {"AUDIO", "VIDEO", "SUBTITLES", "CLOSED-CAPTIONS"}) {
        for (const std::string& prefix : record::properPrefixes(type))
            others.push_back(prefix);
    }
    for (const std::string& other : others) {
        EXPECT_EQ(parsed("TYPE=\"" + other + "\",GROUP-ID=\"g\",NAME=\"n\""), nullptr) << other;
        EXPECT_EQ(parsed("TYPE=\"" + other + "\",GROUP-ID=\"g\",NAME=\"n\",INSTREAM-ID=\"CC1\""), nullptr)
            << other;
    }
    EXPECT_NE(parsed("TYPE=\"AUDIO\",GROUP-ID=\"g\",NAME=\"n\""), nullptr);
}

TEST(VELHLSMediaStreamRendition, FlagsAreYesOrNoAndNothingElse) {
    const std::vector<std::string> others = {"",      "Y",      "YE",   "yes", "Yes", "YES ", " YES",  "YESS",
                                             "YES\r", "YES\0"s, "N",    "no",  "No",  "NO ",  " NO",   "NOO",
                                             "TRUE",  "FALSE",  "true", "1",   "0",   "NONE", "YESNO", "NO,"};
    for (const std::string flag : {"DEFAULT", "AUTOSELECT", "FORCED"}) {
        for (const std::string& other : others) {
            EXPECT_EQ(parsed(subtitles + "," + flag + "=\"" + other + "\""), nullptr) << flag << "=" << other;
        }
        EXPECT_NE(parsed(subtitles + "," + flag + "=YES"), nullptr) << flag;
        EXPECT_NE(parsed(subtitles + "," + flag + "=NO"), nullptr) << flag;
    }
}

TEST(VELHLSMediaStreamRendition, AWrongFlagRejectsTheTagOfEveryType) {
    for (const std::string& list : {audio, video, subtitles, captions}) {
        for (const std::string flag : {"DEFAULT=yes", "AUTOSELECT=no", "FORCED=0"}) {
            EXPECT_EQ(parsed(list + "," + flag), nullptr) << list << "," << flag;
            EXPECT_EQ(parsed(flag + "," + list), nullptr) << flag << "," << list;
        }
    }
}

TEST(VELHLSMediaStreamRendition, DefaultBringsAutoSelect) {
    for (const std::string& list : {audio, video, subtitles}) {
        const std::string expected = mediaTag + list + ",DEFAULT=YES,AUTOSELECT=YES\n";
        EXPECT_EQ(text(list + ",DEFAULT=YES"), expected);
        EXPECT_EQ(text(list + ",DEFAULT=YES,AUTOSELECT=YES"), expected);
        EXPECT_EQ(text(list + ",DEFAULT=YES,AUTOSELECT=NO"), expected);
        EXPECT_EQ(text("AUTOSELECT=NO,DEFAULT=YES," + list), expected);
    }
    EXPECT_EQ(text(captions + ",DEFAULT=YES"),
              "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"g\",NAME=\"n\",DEFAULT=YES,AUTOSELECT=YES,"
              "INSTREAM-ID=\"CC1\"\n");
}

TEST(VELHLSMediaStreamRendition, AutoSelectDoesNotBringDefault) {
    EXPECT_EQ(text(audio + ",AUTOSELECT=YES,DEFAULT=NO"), mediaTag + audio + ",AUTOSELECT=YES\n");
}

TEST(VELHLSMediaStreamRendition, OnlySubtitlesAreForced) {
    EXPECT_EQ(text(subtitles + ",FORCED=YES"), mediaTag + subtitles + ",FORCED=YES\n");
    for (const std::string& list : {audio, video, captions}) {
        EXPECT_EQ(parsed(list + ",FORCED=YES"), nullptr) << list;
        EXPECT_EQ(parsed("FORCED=YES," + list), nullptr) << list;
    }
    for (const std::string& list : {audio, video, subtitles, captions}) {
        EXPECT_EQ(text(list + ",FORCED=NO"), text(list)) << list;
        EXPECT_NE(parsed(list + ",FORCED=NO"), nullptr) << list;
    }
}

TEST(VELHLSMediaStreamRendition, RejectsWhatDoesNotValidate) {
    const std::vector<std::string> lists = {
        "",
        "GROUP-ID=\"g\",NAME=\"n\"",
        "TYPE=AUDIO,NAME=\"n\"",
        "TYPE=AUDIO,GROUP-ID=\"\",NAME=\"n\"",
        "TYPE=AUDIO,GROUP-ID=\"g\"",
        "TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"\"",
        audio + ",INSTREAM-ID=\"CC1\"",
        video + ",INSTREAM-ID=\"CC1\"",
        subtitles + ",INSTREAM-ID=\"CC1\"",
        captions + ",URI=\"u\"",
        "TYPE=CLOSED-CAPTIONS,GROUP-ID=\"g\",NAME=\"n\"",
        "TYPE=CLOSED-CAPTIONS,GROUP-ID=\"g\",NAME=\"n\",INSTREAM-ID=\"\"",
        "TYPE=CLOSED-CAPTIONS,NAME=\"n\",INSTREAM-ID=\"CC1\"",
        "TYPE=CLOSED-CAPTIONS,GROUP-ID=\"g\",INSTREAM-ID=\"CC1\"",
    };
    for (const std::string& list : lists)
        EXPECT_EQ(parsed(list), nullptr) << list;
}

TEST(VELHLSMediaStreamRendition, AnEmptyUriIsAsIfAbsent) {
    EXPECT_EQ(text(captions + ",URI=\"\""), text(captions));
    EXPECT_EQ(text(audio + ",URI=\"\""), text(audio));
}

TEST(VELHLSMediaStreamRendition, CutsCharacteristicsAtEachComma) {
    using Pieces = std::set<std::string>;
    const std::vector<std::pair<std::string, Pieces>> rows = {
        {"", {""}},
        {"a", {"a"}},
        {"a,b", {"a", "b"}},
        {"b,a", {"a", "b"}},
        {"b,a,b,a", {"a", "b"}},
        {",", {""}},
        {",,,", {""}},
        {"a,", {"", "a"}},
        {",a", {"", "a"}},
        {"a,,b", {"", "a", "b"}},
        {"a, b", {" b", "a"}},
        {"a=1,b=2", {"a=1", "b=2"}},
        {"a\0b,a"s, {"a", "a\0b"s}},
        {"\0,a"s, {"\0"s, "a"}},
    };
    for (const auto& [value, pieces] : rows) {
        SCOPED_TRACE(value);
        const RenditionPointer rendition = parsed(audio + ",CHARACTERISTICS=\"" + value + "\"");
        ASSERT_NE(rendition, nullptr);
        EXPECT_EQ(rendition->characteristics, pieces);
    }
}

TEST(VELHLSMediaStreamRendition, TheFirstOfRepeatedAttributesHolds) {
    EXPECT_EQ(text("TYPE=VIDEO,TYPE=AUDIO,GROUP-ID=\"g\",GROUP-ID=\"h\",NAME=\"n\",NAME=\"m\""), text(video));
    EXPECT_EQ(text(audio + ",DEFAULT=NO,DEFAULT=maybe,TYPE=none"), text(audio));
    EXPECT_EQ(text(audio + ",CHARACTERISTICS=\"a\",CHARACTERISTICS=\"b\""),
              mediaTag + audio + ",CHARACTERISTICS=\"a\"\n");
    EXPECT_EQ(parsed("TYPE=none," + audio), nullptr);
}

TEST(VELHLSMediaStreamRendition, OrderOfTheAttributesDoesNotMatter) {
    std::vector<std::string> attributes = {"TYPE=SUBTITLES",
                                           "URI=\"u\"",
                                           "GROUP-ID=\"g\"",
                                           "LANGUAGE=\"l\"",
                                           "NAME=\"n\"",
                                           "DEFAULT=YES",
                                           "AUTOSELECT=NO",
                                           "FORCED=YES",
                                           "ASSOC-LANGUAGE=\"a\"",
                                           "AUDIO-TRACK-TYPE=\"t\"",
                                           "CHARACTERISTICS=\"d,c\""};
    for (std::size_t turn = 0; turn < attributes.size(); ++turn) {
        std::rotate(attributes.begin(), attributes.begin() + 1, attributes.end());
        std::string list;
        for (const std::string& attribute : attributes)
            list += (list.empty() ? "" : ",") + attribute;
        EXPECT_EQ(text(list),
                  "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"g\",NAME=\"n\",URI=\"u\",LANGUAGE=\"l\",ASSOC-"
                  "LANGUAGE=\"a\","
                  "DEFAULT=YES,AUTOSELECT=YES,FORCED=YES,CHARACTERISTICS=\"c,d\"\n")
            << list;
    }
}

TEST(VELHLSMediaStreamRendition, NulBytesInValuesSurvive) {
    EXPECT_EQ(
        text(
            "TYPE=AUDIO,GROUP-ID=\"\0\",NAME=\"n\0m\",URI=\"\0u\",LANGUAGE=\"l\0\",CHARACTERISTICS=\"b\0,\0a\""s),
        "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"\0\",NAME=\"n\0m\",URI=\"\0u\",LANGUAGE=\"l\0\",CHARACTERISTICS=\"\0a,b\0\"\n"s);
}

TEST(VELHLSMediaStreamRendition, RejectsMalformedAttributeLists) {
    for (const std::string& list : record::malformedLists) {
        SCOPED_TRACE(list);
        EXPECT_EQ(parsed(audio + "," + list), nullptr);
        EXPECT_EQ(parsed(list + "," + audio), nullptr);
        EXPECT_EQ(parsed(list), nullptr);
    }
}

TEST(VELHLSMediaStreamRendition, RejectsEachPrefixThatLacksItsName) {
    const std::string line = mediaTag + "TYPE=AUDIO,GROUP-ID=\"g\",DEFAULT=NO,NAME=\"";
    for (const std::string& prefix : record::properPrefixes(line)) {
        EXPECT_EQ(Rendition::parse(prefix), nullptr) << prefix;
    }
    EXPECT_EQ(Rendition::parse(line), nullptr);
    EXPECT_EQ(text("TYPE=AUDIO,GROUP-ID=\"g\",DEFAULT=NO,NAME=\"n"), text(audio));
}

TEST(VELHLSMediaStreamRendition, ReadsOrRejectsEachPrefixAfterItsName) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", text(audio)},
        {",", "null"},
        {",D", "null"},
        {",DEFAULT", "null"},
        {",DEFAULT=", "null"},
        {",DEFAULT=Y", "null"},
        {",DEFAULT=YE", "null"},
        {",DEFAULT=YES", mediaTag + audio + ",DEFAULT=YES,AUTOSELECT=YES\n"},
        {",DEFAULT=YES,", "null"},
        {",DEFAULT=YES,URI", "null"},
        {",DEFAULT=YES,URI=", "null"},
        {",DEFAULT=YES,URI=\"", mediaTag + audio + ",DEFAULT=YES,AUTOSELECT=YES\n"},
        {",DEFAULT=YES,URI=\"u", mediaTag + audio + ",URI=\"u\",DEFAULT=YES,AUTOSELECT=YES\n"},
        {",DEFAULT=YES,URI=\"u\"", mediaTag + audio + ",URI=\"u\",DEFAULT=YES,AUTOSELECT=YES\n"},
        {",DEFAULT=YES,URI=\"u\",", "null"},
    };
    for (const auto& [tail, expected] : rows)
        EXPECT_EQ(text(audio + tail), expected) << tail;
}

TEST(VELHLSMediaStreamRendition, RejectsEachPrefixOfItsTagName) {
    for (const std::string& prefix : record::properPrefixes(mediaTag)) {
        EXPECT_EQ(Rendition::parse(prefix), nullptr) << prefix;
        EXPECT_EQ(Rendition::parse(prefix + audio), nullptr) << prefix;
    }
}

TEST(VELHLSMediaStreamRendition, RejectsOtherTags) {
    const std::vector<std::string> tags = {
        "#EXT-X-MEDIA",
        "#EXT-X-MEDIA ",
        "#EXT-X-MEDIA :",
        "#EXT-X-MEDIA;",
        "#EXT-X-MEDIA2:",
        "#EXT-X-MEDIA\0:"s,
        "#EXT-X-MEDIA-SEQUENCE:",
        "#ext-x-media:",
        "#EXT-X-Media:",
        " #EXT-X-MEDIA:",
        "##EXT-X-MEDIA:",
        "EXT-X-MEDIA:",
        "\xEF\xBB\xBF#EXT-X-MEDIA:",
        "#EXT-X-STREAM-INF:",
        "#EXT-X-SESSION-DATA:",
        "\n#EXT-X-MEDIA:",
    };
    for (const std::string& tag : tags)
        EXPECT_EQ(Rendition::parse(tag + audio), nullptr) << tag;
}

// A second colon belongs to the first attribute's name.
TEST(VELHLSMediaStreamRendition, LosesTheAttributeAfterASecondColon) {
    EXPECT_EQ(Rendition::parse("#EXT-X-MEDIA::" + audio), nullptr);
    EXPECT_EQ(text(":LANGUAGE=\"l\"," + audio), text(audio));
}

// --- validate

TEST(VELHLSMediaStreamRendition, ValidatesEachRuleByItself) {
    const auto audioType = Rendition::Audio;
    const auto videoType = Rendition::Video;
    const auto subtitlesType = Rendition::Subtitles;
    const auto captionsType = Rendition::ClosedCaptions;
    const auto setUri = [](Rendition& rendition) { rendition.uri = "u"; };
    const auto setInstreamId = [](Rendition& rendition) { rendition.instreamId = "CC1"; };
    const auto clearInstreamId = [](Rendition& rendition) { rendition.instreamId.clear(); };
    const auto force = [](Rendition& rendition) { rendition.forced = true; };
    struct Row {
        std::string rule;
        Rendition::RenditionType type;
        Change change;
        bool valid;
    };
    const std::vector<Row> rows = {
        {"audio with a URI", audioType, setUri, true},
        {"video with a URI", videoType, setUri, true},
        {"subtitles with a URI", subtitlesType, setUri, true},
        {"closed captions with a URI", captionsType, setUri, false},
        {"audio with an instream ID", audioType, setInstreamId, false},
        {"video with an instream ID", videoType, setInstreamId, false},
        {"subtitles with an instream ID", subtitlesType, setInstreamId, false},
        {"closed captions without an instream ID", captionsType, clearInstreamId, false},
        {"forced audio", audioType, force, false},
        {"forced video", videoType, force, false},
        {"forced subtitles", subtitlesType, force, true},
        {"forced closed captions", captionsType, force, false},
    };
    for (const Row& row : rows) {
        Rendition rendition = smallest(row.type);
        EXPECT_TRUE(rendition.validate()) << row.rule;
        row.change(rendition);
        EXPECT_EQ(rendition.validate(), row.valid) << row.rule;
    }
}

TEST(VELHLSMediaStreamRendition, ValidatesTheRulesOfAllTypes) {
    const auto media = std::make_shared<VELHLSMediaStream>();
    media->segments.push_back(std::make_shared<VELHLSMediaSegment>(
        0.0, 0.0, 0U, 0U, "", nullptr, false, 0.0, nullptr, nullptr, "segment.ts", false, "", ""));
    struct Row {
        std::string rule;
        Change change;
        bool valid;
    };
    const std::vector<Row> rows = {
        {"unknown type", [](Rendition& rendition) { rendition.type = Rendition::Unknown; }, false},
        {"no group ID", [](Rendition& rendition) { rendition.groupId.clear(); }, false},
        {"no name", [](Rendition& rendition) { rendition.name.clear(); }, false},
        {"default without autoselect", [](Rendition& rendition) { rendition.isDefault = true; }, false},
        {"autoselect without default", [](Rendition& rendition) { rendition.autoSelect = true; }, true},
        {"default with autoselect",
         [](Rendition& rendition) { rendition.isDefault = rendition.autoSelect = true; }, true},
        {"languages", [](Rendition& rendition) { rendition.language = rendition.assocLanguage = "?"; }, true},
        {"audio track type", [](Rendition& rendition) { rendition.audioTrackType = "t"; }, true},
        {"characteristics",
         [](Rendition& rendition) {
             rendition.characteristics = {"", "a"};
         },
         true},
        {"a media stream that does not validate",
         [&](Rendition& rendition) { rendition.mediaStream = media; }, true},
    };
    ASSERT_FALSE(media->validate());
    for (const auto type :
         {Rendition::Audio, Rendition::Video, Rendition::Subtitles, Rendition::ClosedCaptions}) {
        for (const Row& row : rows) {
            Rendition rendition = smallest(type);
            row.change(rendition);
            EXPECT_EQ(rendition.validate(), row.valid) << row.rule << " of type " << type;
        }
    }
}

// --- render

TEST(VELHLSMediaStreamRendition, RendersEachMember) {
    struct Row {
        Change change;
        std::string tail;
    };
    const std::vector<Row> rows = {
        {[](Rendition&) {}, ""},
        {[](Rendition& rendition) { rendition.uri = "u"; }, ",URI=\"u\""},
        {[](Rendition& rendition) { rendition.language = "l"; }, ",LANGUAGE=\"l\""},
        {[](Rendition& rendition) { rendition.assocLanguage = "a"; }, ",ASSOC-LANGUAGE=\"a\""},
        {[](Rendition& rendition) { rendition.autoSelect = true; }, ",AUTOSELECT=YES"},
        {[](Rendition& rendition) { rendition.isDefault = rendition.autoSelect = true; },
         ",DEFAULT=YES,AUTOSELECT=YES"},
        {[](Rendition& rendition) { rendition.forced = true; }, ",FORCED=YES"},
        {[](Rendition& rendition) { rendition.audioTrackType = "t"; }, ""},
        {[](Rendition& rendition) { rendition.mediaStream = std::make_shared<VELHLSMediaStream>(); }, ""},
        {[](Rendition& rendition) { rendition.characteristics = {"c"}; }, ",CHARACTERISTICS=\"c\""},
        {[](Rendition& rendition) {
             rendition.characteristics = {"d", "c", "d"};
         },
         ",CHARACTERISTICS=\"c,d\""},
        {[](Rendition& rendition) { rendition.characteristics = {""}; }, ",CHARACTERISTICS=\"\""},
        {[](Rendition& rendition) {
             rendition.characteristics = {"", "a"};
         },
         ",CHARACTERISTICS=\",a\""},
        {[](Rendition& rendition) {
             rendition.characteristics = {"\xC3\xA9", "z", "Z", "a"};
         },
         ",CHARACTERISTICS=\"Z,a,z,\xC3\xA9\""},
    };
    for (const Row& row : rows) {
        Rendition rendition = smallest(Rendition::Subtitles);
        row.change(rendition);
        EXPECT_EQ(rendered(rendition), mediaTag + subtitles + row.tail + "\n");
    }
}

TEST(VELHLSMediaStreamRendition, RendersTheTextOfEachType) {
    EXPECT_EQ(rendered(smallest(Rendition::Audio)), "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"n\"\n");
    EXPECT_EQ(rendered(smallest(Rendition::Video)), "#EXT-X-MEDIA:TYPE=VIDEO,GROUP-ID=\"g\",NAME=\"n\"\n");
    EXPECT_EQ(rendered(smallest(Rendition::Subtitles)),
              "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"g\",NAME=\"n\"\n");
    EXPECT_EQ(rendered(smallest(Rendition::ClosedCaptions)),
              "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"g\",NAME=\"n\",INSTREAM-ID=\"CC1\"\n");
}

TEST(VELHLSMediaStreamRendition, RendersInstreamIdBetweenFlagsAndCharacteristics) {
    EXPECT_EQ(
        text(captions + ",CHARACTERISTICS=\"b,a\",LANGUAGE=\"en\",ASSOC-LANGUAGE=\"de\",DEFAULT=YES"),
        "#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,GROUP-ID=\"g\",NAME=\"n\",LANGUAGE=\"en\",ASSOC-LANGUAGE=\"de\","
        "DEFAULT=YES,AUTOSELECT=YES,INSTREAM-ID=\"CC1\",CHARACTERISTICS=\"a,b\"\n");
}

TEST(VELHLSMediaStreamRendition, DropsAudioTrackType) {
    EXPECT_EQ(text(audio + ",AUDIO-TRACK-TYPE=\"main\""), text(audio));
}

TEST(VELHLSMediaStreamRendition, RenderAppends) {
    std::string out = "kept\0|"s;
    EXPECT_EQ(smallestAudio().render(out), 0);
    EXPECT_EQ(smallest(Rendition::Video).render(out), 0);
    EXPECT_EQ(out, "kept\0|"s + mediaTag + audio + "\n" + mediaTag + video + "\n");
}

TEST(VELHLSMediaStreamRendition, RenderOfAnInvalidRenditionLeavesTheTextUntouched) {
    const std::vector<std::pair<std::string, Change>> rows = {
        {"unknown type", [](Rendition& rendition) { rendition.type = Rendition::Unknown; }},
        {"no group ID", [](Rendition& rendition) { rendition.groupId.clear(); }},
        {"no name", [](Rendition& rendition) { rendition.name.clear(); }},
        {"instream ID", [](Rendition& rendition) { rendition.instreamId = "CC1"; }},
        {"forced", [](Rendition& rendition) { rendition.forced = true; }},
        {"default without autoselect", [](Rendition& rendition) { rendition.isDefault = true; }},
        {"closed captions without instream ID",
         [](Rendition& rendition) { rendition.type = Rendition::ClosedCaptions; }},
    };
    for (const auto& [rule, change] : rows) {
        Rendition rendition = smallestAudio();
        change(rendition);
        std::string out = "kept";
        EXPECT_EQ(rendition.render(out), -1) << rule;
        EXPECT_EQ(out, "kept") << rule;
    }
}

TEST(VELHLSMediaStreamRendition, RenderOfATypeBeyondTheFourStopsAfterTheTagsStart) {
    for (const std::uint32_t number : {4U, 5U, 255U, 2147483648U, 4294967294U}) {
        Rendition rendition = smallest(static_cast<Rendition::RenditionType>(number));
        ASSERT_TRUE(rendition.validate()) << number;
        std::string out = "kept";
        EXPECT_EQ(rendition.render(out), -1) << number;
        EXPECT_EQ(out, "kept#EXT-X-MEDIA:TYPE=") << number;

        rendition.name.clear();
        EXPECT_EQ(rendered(rendition), "status -1: ") << number;
    }
}

TEST(VELHLSMediaStreamRendition, WhatWasRenderedReadsBackTheSame) {
    const std::vector<std::string> lists = {
        audio,
        video,
        subtitles,
        captions,
        audio + ",URI=\"a,b=c\",LANGUAGE=\"en\",ASSOC-LANGUAGE=\"en-GB\",DEFAULT=YES",
        audio + ",AUTOSELECT=YES,DEFAULT=NO,FORCED=NO,X-UNKNOWN=\"1\"",
        subtitles + ",FORCED=YES,AUTOSELECT=YES,CHARACTERISTICS=\"c,b,,a,b\"",
        captions + ",DEFAULT=YES,CHARACTERISTICS=\"\"",
        audio + ",CHARACTERISTICS=unquoted,URI=u",
        audio + ",URI=\"\0\",CHARACTERISTICS=\"\0,\0\0\""s,
        audio + ",LANGUAGE=\"not closed",
    };
    for (const std::string& list : lists) {
        SCOPED_TRACE(list);
        const RenditionPointer first = parsed(list);
        ASSERT_NE(first, nullptr);
        std::string line = rendered(*first);
        line.pop_back();
        const RenditionPointer second = Rendition::parse(line);
        ASSERT_NE(second, nullptr);
        expectSameModel(*second, *first);
        EXPECT_TRUE(second->equalExceptURIAndGroupID(first));
        EXPECT_EQ(rendered(*second), line + "\n");
    }
}

// --- equalExceptURIAndGroupID

/// One that holds something in every member.
Rendition full() {
    Rendition rendition(Rendition::Subtitles, "u", std::make_shared<VELHLSMediaStream>(), "g", "en", "de",
                        "n", true, true, true, "i", "t");
    rendition.characteristics = {"a", "b"};
    return rendition;
}

TEST(VELHLSMediaStreamRendition, EqualityComparesEachOfTheseMembers) {
    const std::vector<std::pair<std::string, Change>> rows = {
        {"type", [](Rendition& rendition) { rendition.type = Rendition::Audio; }},
        {"unknown type", [](Rendition& rendition) { rendition.type = Rendition::Unknown; }},
        {"language", [](Rendition& rendition) { rendition.language = "fr"; }},
        {"letter case of language", [](Rendition& rendition) { rendition.language = "EN"; }},
        {"no language", [](Rendition& rendition) { rendition.language.clear(); }},
        {"language with a NUL after it", [](Rendition& rendition) { rendition.language += '\0'; }},
        {"associated language", [](Rendition& rendition) { rendition.assocLanguage = "DE"; }},
        {"name", [](Rendition& rendition) { rendition.name = "N"; }},
        {"name with a space after it", [](Rendition& rendition) { rendition.name += ' '; }},
        {"default", [](Rendition& rendition) { rendition.isDefault = false; }},
        {"autoselect", [](Rendition& rendition) { rendition.autoSelect = false; }},
        {"forced", [](Rendition& rendition) { rendition.forced = false; }},
        {"instream ID", [](Rendition& rendition) { rendition.instreamId = "I"; }},
        {"no characteristics", [](Rendition& rendition) { rendition.characteristics.clear(); }},
        {"fewer characteristics", [](Rendition& rendition) { rendition.characteristics = {"a"}; }},
        {"more characteristics", [](Rendition& rendition) { rendition.characteristics.insert("c"); }},
        {"empty characteristic", [](Rendition& rendition) { rendition.characteristics.insert(""); }},
        {"first characteristic",
         [](Rendition& rendition) {
             rendition.characteristics = {"A", "b"};
         }},
        {"last characteristic",
         [](Rendition& rendition) {
             rendition.characteristics = {"a", "c"};
         }},
    };
    const auto unchanged = std::make_shared<Rendition>(full());
    for (const auto& [member, change] : rows) {
        const auto changed = std::make_shared<Rendition>(full());
        change(*changed);
        EXPECT_FALSE(unchanged->equalExceptURIAndGroupID(changed)) << member;
        EXPECT_FALSE(changed->equalExceptURIAndGroupID(unchanged)) << member;
    }
}

TEST(VELHLSMediaStreamRendition, EqualityComparesNoneOfTheOtherMembers) {
    const std::vector<std::pair<std::string, Change>> rows = {
        {"nothing", [](Rendition&) {}},
        {"uri", [](Rendition& rendition) { rendition.uri = "v"; }},
        {"no uri", [](Rendition& rendition) { rendition.uri.clear(); }},
        {"group ID", [](Rendition& rendition) { rendition.groupId = "h"; }},
        {"no group ID", [](Rendition& rendition) { rendition.groupId.clear(); }},
        {"audio track type", [](Rendition& rendition) { rendition.audioTrackType = "s"; }},
        {"media stream", [](Rendition& rendition) { rendition.mediaStream = nullptr; }},
    };
    const auto unchanged = std::make_shared<Rendition>(full());
    for (const auto& [member, change] : rows) {
        const auto changed = std::make_shared<Rendition>(full());
        change(*changed);
        EXPECT_TRUE(unchanged->equalExceptURIAndGroupID(changed)) << member;
        EXPECT_TRUE(changed->equalExceptURIAndGroupID(unchanged)) << member;
    }
}

TEST(VELHLSMediaStreamRendition, EqualsItself) {
    const auto rendition = std::make_shared<Rendition>(full());
    EXPECT_TRUE(rendition->equalExceptURIAndGroupID(rendition));
}

TEST(VELHLSMediaStreamRendition, EqualityAsksForNoValidity) {
    const auto invalid = std::make_shared<Rendition>(Rendition::Unknown, "", nullptr, "", "", "", "", false,
                                                     false, false, "", "");
    ASSERT_FALSE(invalid->validate());
    EXPECT_TRUE(invalid->equalExceptURIAndGroupID(std::make_shared<Rendition>(*invalid)));
}

TEST(VELHLSMediaStreamRendition, EqualsNoNull) {
    EXPECT_FALSE(full().equalExceptURIAndGroupID(nullptr));
}

TEST(VELHLSMediaStreamRendition, ParsedRenditionsAreEqualWhateverTheirUriGroupAndTrackType) {
    const RenditionPointer rendition = parsed(audio + ",LANGUAGE=\"en\",CHARACTERISTICS=\"a,b\"");
    const RenditionPointer other = parsed(
        "TYPE=AUDIO,GROUP-ID=\"h\",NAME=\"n\",URI=\"u\",AUDIO-TRACK-TYPE=\"t\",LANGUAGE=\"en\","
        "CHARACTERISTICS=\"b,a,b\"");
    const RenditionPointer upperCase = parsed(audio + ",LANGUAGE=\"EN\",CHARACTERISTICS=\"a,b\"");
    ASSERT_TRUE(rendition != nullptr && other != nullptr && upperCase != nullptr);

    EXPECT_TRUE(rendition->equalExceptURIAndGroupID(other));
    EXPECT_FALSE(rendition->equalExceptURIAndGroupID(upperCase));
}

// --- large input

TEST(VELHLSMediaStreamRendition, ReadsAndRendersMegabytesQuickly) {
    const std::string large(record::megabyte, 'c');
    const std::string list =
        audio + ",URI=\"" + large + "\",LANGUAGE=\"" + large + "\",CHARACTERISTICS=\"" + large + "\"";
    const double seconds = record::secondsOf([&] { EXPECT_TRUE(text(list) == mediaTag + list + "\n"); });
    EXPECT_LT(seconds, record::quickSeconds);
}

TEST(VELHLSMediaStreamRendition, ReadsManyAttributesQuickly) {
    const std::string list = record::manyAttributes() + audio;
    const double seconds = record::secondsOf([&] { EXPECT_EQ(text(list), text(audio)); });
    EXPECT_LT(seconds, record::quickSeconds);
}

TEST(VELHLSMediaStreamRendition, ReadsAMegabyteOfCharacteristicsQuickly) {
    const std::string commas(record::megabyte, ',');
    const double seconds = record::secondsOf([&] {
        EXPECT_EQ(text(audio + ",CHARACTERISTICS=\"" + commas + "a\""),
                  mediaTag + audio + ",CHARACTERISTICS=\",a\"\n");
    });
    EXPECT_LT(seconds, record::quickSeconds);
}

}  // namespace
