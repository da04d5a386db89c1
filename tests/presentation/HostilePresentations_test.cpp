// Presentations that were made to be costly: each is four times as large for the second measurement, and may take little more
// than four times the time.
#include <algorithm>
#include <ctime>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/presentation/Presented.h"
#include "tests/support/RepeatedText.h"

namespace presentation_test {
namespace {

using playlist::numbered;
using Profile = VELHLSStandard::Profile;

std::string media(const std::string& segments) {
    return "#EXTM3U\n#EXT-X-TARGETDURATION:6\n" + segments + "#EXT-X-ENDLIST\n";
}

/// A master playlist of so many variants, and the playlist of each.
Texts many(std::size_t count, const std::string& first, const std::string& others) {
    Texts texts = {{"master.m3u8", "#EXTM3U\n" + numbered(count, "#EXT-X-STREAM-INF:BANDWIDTH=~\n~.m3u8\n")}};
    for (std::size_t each = 0; each < count; ++each)
        texts.emplace_back(std::to_string(each) + ".m3u8", each == 0 ? first : others);
    return texts;
}

struct Hostile {
    const char* what;
    Texts (*make)(std::size_t size);
};

const Hostile hostiles[] = {
    {"variants that name one playlist",
     [](std::size_t size) {
         return Texts{
             {"master.m3u8",
              "#EXTM3U\n" + numbered(size,
                                     "#EXT-X-STREAM-INF:BANDWIDTH=~,HDCP-LEVEL=NONE,CODECS=\"hvc1\"\n"
                                     "a.m3u8\n#EXT-X-STREAM-INF:HDCP-LEVEL=TYPE-0,BANDWIDTH=1\na.m3u8\n")},
             {"a.m3u8", media(numbered(size,
                                       "#EXT-X-KEY:METHOD=AES-128,URI=\"~\"\n#EXTINF:6,\n"
                                       "#EXT-X-BYTERANGE:~@0\n~.ts\n"))}};
     }},
    {"variants that name one group of many",
     [](std::size_t size) {
         return Texts{
             {"master.m3u8", "#EXTM3U\n" +
                                 numbered(size,
                                          "#EXT-X-STREAM-INF:BANDWIDTH=~,CODECS=\"a\",AUDIO=\"a\","
                                          "SUBTITLES=\"a\"\na.m3u8\n") +
                                 numbered(size,
                                          "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"~\",URI=\"a.m3u8\"\n"
                                          "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"a\",URI=\"a.m3u8\"\n")},
             {"a.m3u8", media("#EXTINF:6,\n#EXT-X-BYTERANGE:9@0\na.ec3\n")}};
     }},
    {"small playlists beside a large one",
     [](std::size_t size) {
         return many(size, media(numbered(size, "#EXT-X-DISCONTINUITY\n#EXTINF:0.001,\n~.ts\n")),
                     media("#EXTINF:99999,\na.ts\n"));
     }},
    {"small playlists beside one whose segments last for nothing",
     [](std::size_t size) {
         return many(size, media(numbered(size, "#EXT-X-DISCONTINUITY\n#EXTINF:0,\n~.ts\n")),
                     media("#EXTINF:99999,\na.ts\n"));
     }},
    {"playlists of which one has many date ranges",
     [](std::size_t size) {
         return many(size,
                     media(numbered(size, "#EXT-X-DATERANGE:ID=\"~\",X-~=\"~\"\n") + "#EXTINF:6,\na.ts\n"),
                     media("#EXT-X-DATERANGE:ID=\"1\",X-1=\"2\"\n#EXTINF:6,\na.ts\n"));
     }},
    {"playlists that each have a date range of their own",
     [](std::size_t size) {
         Texts texts = many(size, "", "");
         for (std::size_t each = 1; each < texts.size(); ++each)
             texts[each].second =
                 media("#EXT-X-DATERANGE:ID=\"" + std::to_string(each) + "\"\n#EXTINF:6,\na.ts\n");
         return texts;
     }},
    {"keys",
     [](std::size_t size) {
         const std::string keys =
             media(numbered(size, "#EXT-X-KEY:METHOD=AES-128,URI=\"../~\"\n#EXTINF:6,\n~.ts\n"));
         return Texts{
             {"master.m3u8",
              "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=1\nb.m3u8\n" +
                  numbered(size, "#EXT-X-SESSION-KEY:METHOD=~,URI=\"../1\"\n")},
             {"a.m3u8", keys},
             {"b.m3u8", keys}};
     }},
    {"segments of all sizes that last for nearly nothing",
     [](std::size_t size) {
         return Texts{
             {"master.m3u8", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na.m3u8\n"},
             {"a.m3u8", media(numbered(size,
                                       "#EXTINF:0.001,\n#EXT-X-BYTERANGE:~@0\na.ts\n#EXTINF:0.0009,\n"
                                       "#EXT-X-BYTERANGE:777@0\na.ts\n"))}};
     }},
    {"dots in URIs",
     [](std::size_t size) {
         return Texts{{"master.m3u8", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na.m3u8\n"},
                      {"a.m3u8", media("#EXT-X-KEY:METHOD=AES-128,URI=\"" + numbered(size, "a/../") +
                                       numbered(size, "../") + "\"\n#EXTINF:6,\na.ts\n")}};
     }},
    {"formats of a group",
     [](std::size_t size) {
         Texts texts = {
             {"master.m3u8", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a\",CODECS=\"" +
                                 numbered(size, "~,") + "\"\nv.m3u8\n" +
                                 numbered(size, "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",URI=\"~.m3u8\"\n")}};
         for (std::size_t each = 0; each < size; ++each)
             texts.emplace_back(std::to_string(each) + ".m3u8",
                                media(each % 2 == 0 ? "#EXTINF:6,\na.ec3\n" : "#EXTINF:6,\na.ac3\n"));
         return texts;
     }},
};

double secondsFor(const Texts& texts, Profile profile) {
    std::deque<VELHLSDocument> documents;
    std::vector<VELHLSPresentation::Resource> resources;
    for (const auto& [uri, text] : texts) {
        documents.emplace_back(text);
        resources.push_back({uri, &documents.back()});
    }
    const std::clock_t start = std::clock();
    static_cast<void>(VELHLSPresentation::check(resources.front(), resources, {profile}));
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

TEST(HostilePresentations, TakeTimeInProportionToTheirSize) {
    constexpr std::size_t size = 300;
    constexpr std::size_t times = 4;
    for (const Profile profile : {Profile::rfc8216, Profile::apple}) {
        for (const Hostile& hostile : hostiles) {
            const double once = secondsFor(hostile.make(size), profile);
            const double longer = secondsFor(hostile.make(times * size), profile);
            // Quadratic work would take sixteen times as long.
            EXPECT_LT(longer, 8.0 * once + 0.1) << hostile.what << " by " << VELHLSStandard::nameOf(profile);
        }
    }
}

TEST(HostilePresentations, HaveBoundedFindingsThatStandInTheirLines) {
    for (const Profile profile : {Profile::rfc8216, Profile::apple}) {
        for (const Hostile& hostile : hostiles) {
            const Texts texts = hostile.make(100);
            std::map<std::string, std::size_t> counts;
            for (const VELHLSFinding& finding : findingsIn(texts, profile)) {
                EXPECT_LE(++counts[finding.ruleId], 100U) << hostile.what;
                EXPECT_LE(finding.message.size(), 1000U) << hostile.what;
                EXPECT_LE(finding.related.size(), 10U) << hostile.what;
                std::vector<VELHLSRelatedPlace> places = finding.related;
                places.push_back({finding.uri, finding.line, finding.column, finding.length, {}});
                for (const VELHLSRelatedPlace& place : places) {
                    Texts given = texts;
                    const VELHLSDocument document(textOf(given, place.uri.empty() ? finding.uri : place.uri));
                    ASSERT_LE(place.line, document.lineCount()) << hostile.what;
                    EXPECT_LE(place.column - 1 + place.length, document.line(place.line).text.size())
                        << hostile.what;
                }
            }
        }
    }
}

/// What is missing in a text without lines is told in its first line.
TEST(HostilePresentations, MayBeOfTextsWithoutLines) {
    const Texts texts = {{"master.m3u8", ""}, {"a.m3u8", ""}};
    for (const Profile profile : {Profile::rfc8216, Profile::rfc8216bis, Profile::apple}) {
        EXPECT_EQ(shown(findingsIn({texts.front()}, profile)), "") << VELHLSStandard::nameOf(profile);
        EXPECT_EQ(shown(findingsIn(texts, profile)), "") << VELHLSStandard::nameOf(profile);
        const Texts named = {
            {"master.m3u8", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"avc1\"\na.m3u8\n"},
            texts.back()};
        for (const VELHLSFinding& finding : findingsIn(named, profile))
            EXPECT_GE(finding.line, 1U) << finding.ruleId;
    }
}

}  // namespace
}  // namespace presentation_test
