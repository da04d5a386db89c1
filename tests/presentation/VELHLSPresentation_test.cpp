#include "velhls/presentation/VELHLSPresentation.h"

#include <cmath>
#include <deque>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/presentation/Presented.h"

namespace presentation_test {
namespace {

using Profile = VELHLSStandard::Profile;
using Resource = VELHLSPresentation::Resource;

std::string referencesOf(const std::string& master) {
    const VELHLSDocument document(master);
    std::string text;
    for (const VELHLSPresentation::Reference& reference : VELHLSPresentation::references(document))
        text += std::to_string(reference.line) +
                (reference.use == VELHLSPresentation::Use::Playlist ? " " : " data ") +
                std::string(reference.uri) + "\n";
    return text;
}

TEST(VELHLSPresentation, NamesEachReferenceOnceInTheOrderOfTheLines) {
    EXPECT_EQ(
        referencesOf("#EXTM3U\n"
                     "#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n"
                     "#EXT-X-MEDIA:TYPE=AUDIO,URI=\"en.m3u8\"\n#EXT-X-MEDIA:TYPE=CLOSED-CAPTIONS,URI=\"no\"\n"
                     "#EXT-X-SESSION-DATA:URI=\"{$host}/data\"\n#EXT-X-SESSION-KEY:URI=\"key\"\n"
                     "#EXT-X-I-FRAME-STREAM-INF:URI=\"i.m3u8\"\n#EXT-X-MEDIA:TYPE=SUBTITLES,URI=\"\"\n"
                     "#EXT-X-STREAM-INF:BANDWIDTH=2\nlow.m3u8\nstray.m3u8\n"),
        "3 low.m3u8\n4 en.m3u8\n6 data {$host}/data\n8 i.m3u8\n");
}

TEST(VELHLSPresentation, FindsNoReferencesInOtherTexts) {
    for (const char* const text : {"", "\n", "#EXTM3U\n", "#EXTM3U\n#EXTINF:1,\nseg.ts\n", "low.m3u8"})
        EXPECT_EQ(referencesOf(text), "") << text;
}

/// What is found when the given URIs are not there or, with a reason, were not read.
std::vector<VELHLSFinding> findingsWithout(const std::string& uri, const std::string& whyNotRead) {
    const Texts texts = onDemand();
    std::deque<VELHLSDocument> documents;
    std::vector<Resource> resources;
    for (const auto& [name, text] : texts) {
        documents.emplace_back(text);
        const bool isRead = name != uri;
        resources.push_back({name, isRead ? &documents.back() : nullptr, isRead ? "" : whyNotRead});
    }
    return VELHLSPresentation::check(resources.front(), resources, {Profile::rfc8216});
}

TEST(VELHLSPresentation, TellsOfAPlaylistThatIsNotThere) {
    const auto findings = findingsWithout("mid/video.m3u8", "");
    ASSERT_EQ(rulesIn(findings, VELHLSFinding::Note), "playlist-missing") << shown(findings);
    EXPECT_EQ(findings.front().uri, "master.m3u8");
    EXPECT_EQ(findings.front().line, 12U);
    EXPECT_EQ(findings.front().severity, VELHLSFinding::Warning);
    EXPECT_EQ(findings.front().clause, "6.2.1");
    EXPECT_EQ(findings.front().message,
              "expected a playlist that is there, seen \"mid/video.m3u8\", and nothing there");
}

TEST(VELHLSPresentation, TellsOfSessionDataThatIsNotThere) {
    const auto findings = findingsWithout("lyrics.json", "");
    ASSERT_EQ(rulesIn(findings, VELHLSFinding::Note), "session-data-missing") << shown(findings);
    EXPECT_EQ(findings.front().line, 7U);
}

TEST(VELHLSPresentation, TellsOfWhatWasNotReadWithTheReason) {
    const auto findings = findingsWithout("mid/video.m3u8", "it is a folder");
    ASSERT_EQ(rulesIn(findings, VELHLSFinding::Note), "resource-not-read") << shown(findings);
    EXPECT_EQ(findings.front().message,
              "expected a URI that may be followed, seen \"mid/video.m3u8\": it is a folder");
    EXPECT_EQ(findings.front().profile, "library");
    EXPECT_EQ(findings.front().clause, "");
}

TEST(VELHLSPresentation, LeavesAloneWhatWasNotGiven) {
    const Texts texts = onDemand();
    const VELHLSDocument master(texts.front().second);
    EXPECT_EQ(shown(VELHLSPresentation::check({"master.m3u8", &master}, {}, {Profile::rfc8216})), "");
    const VELHLSDocument other("#EXTM3U\n#EXT-X-TARGETDURATION:99\n#EXTINF:99,\na.ts\n");
    EXPECT_EQ(shown(VELHLSPresentation::check({"master.m3u8", &master}, {{"elsewhere.m3u8", &other}},
                                              {Profile::rfc8216})),
              "");
    EXPECT_EQ(shown(VELHLSPresentation::check({"none.m3u8", nullptr}, {}, {Profile::rfc8216})), "");
}

TEST(VELHLSPresentation, TakesTwoUrisOfOneDocumentForOnePlaylist) {
    const VELHLSDocument master(
        "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=2\n./low.m3u8\n"
        "#EXT-X-STREAM-INF:BANDWIDTH=3\nhigh.m3u8\n");
    const VELHLSDocument low("#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\na.ts\n#EXT-X-ENDLIST\n");
    const VELHLSDocument high("#EXTM3U\n#EXT-X-TARGETDURATION:7\n#EXTINF:6,\na.ts\n#EXT-X-ENDLIST\n");
    const auto findings = VELHLSPresentation::check(
        {"master.m3u8", &master}, {{"./low.m3u8", &low}, {"low.m3u8", &low}, {"high.m3u8", &high}},
        {Profile::rfc8216});
    ASSERT_EQ(rulesIn(findings, VELHLSFinding::Warning), "target-durations-differ") << shown(findings);
    EXPECT_NE(findings.front().message.find("in 1 of 2 media playlists"), std::string::npos)
        << shown(findings);
    EXPECT_EQ(findings.front().uri, "high.m3u8");
}

TEST(VELHLSPresentation, TellsOnceWhatSeveralBreakAndNamesTheOthers) {
    Texts texts = onDemand();
    for (const char* const uri : {"audio/en.m3u8", "audio/de.m3u8", "text.m3u8"})
        texts = replaced(texts, uri, "DURATION:6", "DURATION:8");
    // Subtitles that cannot change may have another one.
    const auto findings = findingsIn(texts);
    ASSERT_EQ(findings.size(), 1U) << shown(findings);
    EXPECT_EQ(findings.front().message,
              "EXT-X-TARGETDURATION: expected 6, the target duration of other media playlists, seen \"8\", "
              "in 2 of 5 "
              "media playlists");
    ASSERT_EQ(findings.front().related.size(), 2U);
    EXPECT_EQ(findings.front().related[0].uri, "low/video.m3u8");
    EXPECT_EQ(findings.front().related[1].uri, "audio/de.m3u8");
}

TEST(VELHLSPresentation, FollowsMostWhereTheFirstIsTheOddOne) {
    const auto findings = findingsIn(replaced(onDemand(), "low/video.m3u8", "DURATION:6", "DURATION:8"));
    ASSERT_EQ(findings.size(), 1U) << shown(findings);
    EXPECT_EQ(findings.front().uri, "low/video.m3u8");
    const auto discontinuities =
        findingsIn(replaced(onDemand(), "low/video.m3u8", "#EXT-X-DISCONTINUITY\n", ""));
    ASSERT_EQ(rulesIn(discontinuities, VELHLSFinding::Note), "discontinuities-differ")
        << shown(discontinuities);
    EXPECT_EQ(discontinuities.front().uri, "low/video.m3u8");
}

TEST(VELHLSPresentation, FindsTheSameUnderEachProfileThatIsAsked) {
    const Texts texts = replaced(onDemand(), "audio/en.m3u8", "DURATION:6", "DURATION:8");
    std::deque<VELHLSDocument> documents;
    std::vector<Resource> resources;
    for (const auto& [uri, text] : texts) {
        documents.emplace_back(text);
        resources.push_back({uri, &documents.back()});
    }
    const auto findings =
        VELHLSPresentation::check(resources.front(), resources, {Profile::rfc8216, Profile::apple});
    std::string profiles;
    for (const VELHLSFinding& finding : findings) {
        if (finding.uri == "audio/en.m3u8") profiles += finding.profile + " " + finding.ruleId + "\n";
    }
    EXPECT_EQ(profiles, "rfc8216 target-durations-differ\napple authoring-audio-target-duration\n");
}

// What must raise no alarm.

TEST(VELHLSPresentation, KnowsAKeyByWhatItsUriNames) {
    // The same words in another folder are another key.
    Texts texts = onDemand();
    for (const char* const uri : {"low/video.m3u8", "mid/video.m3u8"})
        texts = replaced(texts, uri, "#EXT-X-PROGRAM",
                         "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"own\"\n#EXT-X-PROGRAM");
    EXPECT_EQ(shown(findingsIn(texts)), "");
    // And other words may be the same one.
    texts = replaced(texts, "mid/video.m3u8", "\"own\"", "\"../low/./own\"");
    EXPECT_EQ(rulesIn(findingsIn(texts), VELHLSFinding::Note), "session-key-missing");
    texts = replaced(replaced(texts, "low/video.m3u8", "\"own\"", "\"https://example.com/a/../own\""),
                     "mid/video.m3u8", "\"../low/./own\"", "\"https://example.com/own\"");
    EXPECT_EQ(rulesIn(findingsIn(texts), VELHLSFinding::Note), "session-key-missing");
}

TEST(VELHLSPresentation, LetsKeysWithVariablesAlone) {
    Texts texts = onDemand();
    for (const char* const uri : {"low/video.m3u8", "mid/video.m3u8"})
        texts = replaced(texts, uri, "#EXT-X-PROGRAM",
                         "#EXT-X-KEY:METHOD=AES-128,URI=\"{$k}/1\"\n#EXT-X-PROGRAM");
    EXPECT_EQ(shown(findingsIn(texts)), "");
}

TEST(VELHLSPresentation, LetsLiveWindowsDifferByWhatWasFetchedLater) {
    // One segment more at the end, one less at the start.
    Texts texts = replaced(live(), "mid.m3u8", "105.ts\n", "105.ts\n#EXTINF:6.006,\n106.ts\n");
    texts = replaced(texts, "mid.m3u8",
                     "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00.000Z\n#EXTINF:6.006,\n100.ts\n",
                     "#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:06.006Z\n");
    texts = replaced(texts, "mid.m3u8", "SEQUENCE:100", "SEQUENCE:101");
    EXPECT_EQ(shown(findingsIn(texts)), "");
    // Two at once without dates.
    texts = replaced(liveWithoutDates(), "mid.m3u8", "#EXTINF:6.006,\n100.ts\n#EXTINF:6.006,\n101.ts\n", "");
    texts = replaced(texts, "mid.m3u8", "SEQUENCE:100", "SEQUENCE:102");
    EXPECT_EQ(shown(findingsIn(texts)), "");
}

TEST(VELHLSPresentation, LetsSequenceNumbersDifferWhereThereAreDates) {
    EXPECT_EQ(shown(findingsIn(replaced(live(), "mid.m3u8", "SEQUENCE:100", "SEQUENCE:7"))), "");
}

TEST(VELHLSPresentation, LetsANewDateRangeComeLaterInAnotherLivePlaylist) {
    const std::string range = "#EXT-X-DATERANGE:ID=\"ad\",START-DATE=\"2026-11-21T10:00:";
    // In the last target duration, and before the window.
    for (const char* const time : {"33", "59"}) {
        EXPECT_EQ(shown(findingsIn(replaced(live(), "low.m3u8", "#EXT-X-PROGRAM",
                                            range + time + ".000Z\"\n#EXT-X-PROGRAM"))),
                  "")
            << time;
    }
    const auto findings =
        findingsIn(replaced(live(), "low.m3u8", "#EXT-X-PROGRAM", range + "12.000Z\"\n#EXT-X-PROGRAM"));
    ASSERT_EQ(rulesIn(findings, VELHLSFinding::Note), "date-range-not-everywhere") << shown(findings);
    EXPECT_NE(findings.front().message.find("in 2 of 3 variants"), std::string::npos) << shown(findings);
}

TEST(VELHLSPresentation, LetsRoundedDurationsDrift) {
    // 9.6 seconds written as 10, and 9.4 as 9.
    const auto playlist = [](const std::string& duration) {
        std::string text = "#EXTM3U\n#EXT-X-TARGETDURATION:10\n";
        for (int segment = 0; segment < 100; ++segment)
            text += "#EXTINF:" + duration + ",\n" + std::to_string(segment) + ".ts\n";
        return text + "#EXT-X-ENDLIST\n";
    };
    const std::string master =
        "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=2\nhigh.m3u8\n";
    EXPECT_EQ(shown(findingsIn(
                  {{"master.m3u8", master}, {"low.m3u8", playlist("10")}, {"high.m3u8", playlist("9")}})),
              "");
}

TEST(VELHLSPresentation, FindsALateDiscontinuityWhereWholeDurationsAreAlike) {
    const auto playlist = [](const std::string& beforeLast) {
        std::string text = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n";
        for (int segment = 0; segment < 20; ++segment)
            text += (segment == 19 ? beforeLast : "") + "#EXTINF:6,\n" + std::to_string(segment) + ".ts\n";
        return text + "#EXT-X-ENDLIST\n";
    };
    const std::string master =
        "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=2\nhigh.m3u8\n";
    EXPECT_EQ(rulesIn(findingsIn({{"master.m3u8", master},
                                  {"low.m3u8", playlist("")},
                                  {"high.m3u8", playlist("#EXT-X-DISCONTINUITY\n")}}),
                      VELHLSFinding::Note),
              "discontinuities-differ");
}

TEST(VELHLSPresentation, DoesNotAddAnAudioVariantToItsOwnGroup) {
    const std::string audio =
        "#EXTM3U\n#EXT-X-VERSION:4\n#EXT-X-TARGETDURATION:6\n#EXTINF:6.000,\n#EXT-X-BYTERANGE:75000@0\na."
        "aac\n"
        "#EXT-X-ENDLIST\n";
    EXPECT_EQ(
        shown(findingsIn({{"master.m3u8",
                           "#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"b\",URI=\"a.m3u8\"\n"
                           "#EXT-X-STREAM-INF:BANDWIDTH=100000,CODECS=\"mp4a.40.2\",AUDIO=\"a\"\na.m3u8\n"},
                          {"a.m3u8", audio}})),
        "");
}

/// "line peak average" of each variant that was measured, and "…" where a playlist counted for nothing.
std::string measuredIn(const Texts& texts) {
    std::deque<VELHLSDocument> documents;
    std::vector<Resource> resources;
    for (const auto& [name, text] : texts)
        resources.push_back({name, text.empty() ? nullptr : &documents.emplace_back(text)});
    std::string shown;
    for (const auto& rates : VELHLSPresentation::measure(resources.front(), resources))
        shown += std::to_string(rates.line) + " " + std::to_string(std::llround(rates.peak)) + " " +
                 std::to_string(std::llround(rates.average)) + (rates.isWhole ? "" : "\xE2\x80\xA6") + "\n";
    return shown;
}

std::string rangesOf(const std::string& first, const std::string& second) {
    return "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6.000,\n#EXT-X-BYTERANGE:" + first +
           "@0\na\n#EXTINF:6.000,\n#EXT-X-BYTERANGE:" + second + "\na\n#EXT-X-ENDLIST\n";
}

TEST(VELHLSPresentation, MeasuresVariantsWithTheLargestOfTheirRenditions) {
    const std::string master =
        "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"avc1.4d401e\",AUDIO=\"a\"\nlow\n"
        "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"1\",URI=\"en\"\n"
        "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"2\",URI=\"de\"\n"
        "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=1,URI=\"frames\"\n"
        "#EXT-X-STREAM-INF:BANDWIDTH=1\nunknown\n";
    const std::string unsized = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\na\n";
    Texts texts = {{"master", master},
                   {"low", rangesOf("750000", "1500000")},
                   {"en", rangesOf("7500", "7500")},
                   {"de", rangesOf("75000", "75000")},
                   {"frames", rangesOf("750", "750")},
                   {"unknown", unsized}};
    EXPECT_EQ(measuredIn(texts), "2 2100000 1600000\n6 1000 1000\n");
    EXPECT_EQ(measuredIn(replaced(texts, "de", textOf(texts, "de"), "")),
              "2 2010000 1510000\xE2\x80\xA6\n6 1000 1000\n");
    EXPECT_EQ(measuredIn({{"low", rangesOf("1", "1")}}), "");
    EXPECT_EQ(measuredIn({{"master", ""}}), "");
}

// JSON, as far as session data lets one see it.

bool isJson(const std::string& text) {
    return findingsIn(replaced(onDemand(), "lyrics.json",
                               textOf(*std::make_unique<Texts>(onDemand()), "lyrics.json"), text))
        .empty();
}

TEST(SessionDataJson, IsWhatRfc7159Says) {
    for (const char* const text : {"0", "-1.5e+10", "\"a\"", "\"\\u00e9\\n\\\"\\/\"", "[]", "{}",
                                   " [1 , [2,{}] ]\r\n\t", "{\"a\":{\"b\":[]},\"c\":null}", "true",
                                   "\"\xC3\xA9\"", "\xEF\xBB\xBF{}", "1E5", "[[],[]]", "[{},{}]"})
        EXPECT_TRUE(isJson(text)) << text;
    for (const char* const text : {"",
                                   " ",
                                   "a",
                                   "01",
                                   "-",
                                   "1.",
                                   ".5",
                                   "1e",
                                   "+1",
                                   "'a'",
                                   "\"a",
                                   "\"\\x\"",
                                   "\"\\u00g0\"",
                                   "\"\n\"",
                                   "[1,]",
                                   "[,1]",
                                   "[1 2]",
                                   "{\"a\"}",
                                   "{\"a\":}",
                                   "{a:1}",
                                   "{\"a\":1,}",
                                   "[",
                                   "{",
                                   "]",
                                   "[}",
                                   "{]",
                                   "1 2",
                                   "[]]",
                                   "\"\xC3\"",
                                   "nul",
                                   "{} // comment",
                                   "NaN",
                                   "{1:2}",
                                   "[1}"})
        EXPECT_FALSE(isJson(text)) << text;
    EXPECT_FALSE(isJson(std::string("\0", 1)));
}

TEST(SessionDataJson, MayBeNestedAsDeepAsItLikes) {
    constexpr std::size_t deep = 100000;
    EXPECT_TRUE(isJson(std::string(deep, '[') + std::string(deep, ']')));
    EXPECT_FALSE(isJson(std::string(deep, '[')));
}

}  // namespace
}  // namespace presentation_test
