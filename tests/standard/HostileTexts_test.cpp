// Texts that were made to be costly: each is as long again for the second measurement, and may take little more than twice
// the time.
#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/standard/Breach.h"
#include "tests/support/RepeatedText.h"

namespace standard_test {
namespace {

using playlist::numbered;
using playlist::times;
using StandardProfile = VELHLSStandard::Profile;

struct Hostile {
    const char* what;
    std::string (*make)(std::size_t size);
};

const Hostile hostiles[] = {
    {"one long line",
     [](std::size_t size) { return "#EXTM3U\n#EXTINF:6," + std::string(size * 16, 'a') + "\na"; }},
    {"blank lines", [](std::size_t size) { return times(size * 16, "\n"); }},
    {"NUL bytes", [](std::size_t size) { return "#EXTM3U\n" + std::string(size * 16, '\0'); }},
    {"carriage returns", [](std::size_t size) { return "#EXTM3U\n" + times(size * 16, "\r"); }},
    {"bytes that are no UTF-8", [](std::size_t size) { return "#EXTM3U\n" + times(size * 16, "\xC3"); }},
    {"blanks",
     [](std::size_t size) {
         return "#EXTM3U\n" + times(size * 16, " ") + "#EXTINF:6,\n" + times(size * 16, " ");
     }},
    {"one attribute many times",
     [](std::size_t size) { return "#EXTM3U\n#EXT-X-STREAM-INF:" + times(size, "BANDWIDTH=1,") + "\na\n"; }},
    {"commas",
     [](std::size_t size) { return "#EXTM3U\n#EXT-X-STREAM-INF:" + times(size * 8, ",") + "\na\n"; }},
    {"quotes",
     [](std::size_t size) { return "#EXTM3U\n#EXT-X-STREAM-INF:A=" + times(size * 8, "\"") + "\na\n"; }},
    {"codecs",
     [](std::size_t size) {
         return "#EXTM3U\n#EXT-X-STREAM-INF:CODECS=\"" + times(size * 8, ",") + "\"\na\n";
     }},
    {"variables in a URI",
     [](std::size_t size) {
         return "#EXTM3U\n#EXT-X-DEFINE:NAME=\"a\",VALUE=\"b\"\n" + times(size * 4, "{$a}") + "{$" +
                times(size * 4, "{$") + "\n";
     }},
    {"keys of other formats, and maps",
     [](std::size_t size) {
         return "#EXTM3U\n" + numbered(size,
                                       "#EXT-X-KEY:METHOD=AES-128,URI=\"a\",KEYFORMAT=\"~\"\n#EXT-X-MAP:URI="
                                       "\"~\"\n#EXTINF:6,\n~.ts\n");
     }},
    {"a long key in force for many maps",
     [](std::size_t size) {
         return "#EXTM3U\n#EXT-X-KEY:URI=\"" + std::string(size * 8, 'a') + "\",METHOD=AES-128\n" +
                times(size, "#EXT-X-MAP:URI=\"a\"\n#EXTINF:6,\na.ts\n");
     }},
    {"a long map in force for many segments",
     [](std::size_t size) {
         return "#EXTM3U\n#EXT-X-MAP:URI=\"" + std::string(size * 8, 'a') + "\"\n" +
                times(size, "#EXTINF:6,\na.ts\n");
     }},
    {"date ranges with one ID",
     [](std::size_t size) {
         return "#EXTM3U\n" +
                numbered(size, "#EXT-X-DATERANGE:ID=\"a\",START-DATE=\"2026-11-21\",X-~=\"~\"\n") +
                "#EXTINF:6,\na\n";
     }},
    {"date ranges of one class",
     [](std::size_t size) {
         return "#EXTM3U\n" +
                numbered(size,
                         "#EXT-X-DATERANGE:ID=\"~\",CLASS=\"a\",START-DATE=\"2026-11-21T10:00:00Z\",END-ON-"
                         "NEXT=YES,DURATION=9\n") +
                "#EXTINF:6,\na\n";
     }},
    {"groups of one rendition",
     [](std::size_t size) {
         return "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na\n" +
                times(size, "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"b\"\n");
     }},
    {"a group of many, and many of one",
     [](std::size_t size) {
         return "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na\n" +
                numbered(size, "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"~\"\n") +
                numbered(size, "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"~\",NAME=\"1\"\n");
     }},
    {"types",
     [](std::size_t size) {
         return "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na\n" +
                numbered(size, "#EXT-X-MEDIA:TYPE=~,GROUP-ID=\"~\",NAME=\"~\"\n");
     }},
    {"variants of other groups",
     [](std::size_t size) {
         return "#EXTM3U\n" +
                numbered(size, "#EXT-X-STREAM-INF:BANDWIDTH=~,AUDIO=\"~\",VIDEO=\"~\",VIDEO-RANGE=PQ\n~\n");
     }},
    {"session data and keys",
     [](std::size_t size) {
         return "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na\n" +
                numbered(size,
                         "#EXT-X-SESSION-DATA:DATA-ID=\"~\"\n#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"~\"\n");
     }},
    {"definitions",
     [](std::size_t size) { return "#EXTM3U\n" + numbered(size, "#EXT-X-DEFINE:NAME=\"~\",VALUE=\"a\"\n"); }},
    {"language tags",
     [](std::size_t size) {
         return "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME="
                "\"b\",LANGUAGE=\"en" +
                times(size * 4, "-variant") + "\"\n";
     }},
};

double secondsFor(const std::string& text, StandardProfile profile) {
    const std::clock_t start = std::clock();
    static_cast<void>(findingsIn(text, profile));
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

TEST(HostileTexts, TakeTimeInProportionToTheirLength) {
    constexpr std::size_t size = 4000;
    constexpr std::size_t times = 4;
    for (const Hostile& hostile : hostiles) {
        for (const auto profile :
             {StandardProfile::rfc8216, StandardProfile::rfc8216bis, StandardProfile::apple}) {
            const double once = secondsFor(hostile.make(size), profile);
            const double longer = secondsFor(hostile.make(size * times), profile);
            // Quadratic work would take sixteen times as long.
            EXPECT_LT(longer, 8.0 * once + 0.2) << hostile.what << " by " << VELHLSStandard::nameOf(profile);
        }
    }
}

TEST(HostileTexts, GiveBoundedFindings) {
    for (const Hostile& hostile : hostiles) {
        const auto findings = findingsIn(hostile.make(1000), StandardProfile::rfc8216bis);
        EXPECT_LE(findings.size(), 100 * VELHLSStandard::rules(StandardProfile::rfc8216bis).size())
            << hostile.what;
        for (const VELHLSFinding& finding : findings)
            EXPECT_LE(finding.message.size(), 1000U) << hostile.what << finding.message;
    }
}

/// Playlists with a few bytes of them gone, wherever they stand, and one of another kind instead.
TEST(HostileTexts, HaveFindingsThatStandInTheirLines) {
    constexpr std::string_view bytes("\0\",\n\xFF ", 6);
    constexpr std::size_t gone = 7;
    for (const std::string text : {vod, fragments, dateRanges, master, lowLatency}) {
        for (std::size_t length = 0; length <= text.size(); ++length) {
            const std::string broken = text.substr(0, length) + bytes[length % bytes.size()] +
                                       text.substr(std::min(text.size(), length + gone));
            const VELHLSDocument document(broken);
            for (const VELHLSFinding& finding : findingsIn(broken, StandardProfile::rfc8216bis)) {
                ASSERT_GE(finding.line, 1U);
                ASSERT_LE(finding.line, document.lineCount());
                ASSERT_GE(finding.column, 1U);
                ASSERT_LE(finding.column - 1 + finding.length, document.line(finding.line).text.size())
                    << finding.message << broken;
            }
        }
    }
}

TEST(StandardSources, IncludeNeitherTheModelsNorWhatSpeaksOfThem) {
    for (const auto& entry : std::filesystem::directory_iterator(VELHLS_SOURCE "/velhls/standard")) {
        std::ifstream file(entry.path());
        std::stringstream text;
        text << file.rdbuf();
        for (const char* const folder :
             {"velhls/manifest/", "velhls/media/", "velhls/losses/", "velhls/diagnostics/"})
            EXPECT_EQ(text.str().find(std::string("#include \"") + folder), std::string::npos)
                << entry.path() << folder;
    }
}

}  // namespace
}  // namespace standard_test
