// Versions that were made to be costly: each is as long again for the second measurement, and may take little more than twice
// the time.
#include <algorithm>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/comparison/Updates.h"
#include "tests/support/RepeatedText.h"

namespace comparison_test {
namespace {

using playlist::numbered;

std::string media(const std::string& lines) {
    return "#EXTM3U\n#EXT-X-TARGETDURATION:6\n" + lines;
}

std::string longText(std::size_t size, char character) {
    std::string text(size * 8, character);
    return text;
}

struct Hostile {
    const char* what;
    Versions (*make)(std::size_t size);
};

const Hostile hostiles[] = {
    {"segments in the opposite order",
     [](std::size_t size) {
         std::string now;
         for (std::size_t each = size; each > 0; --each)
             now += "#EXTINF:6,\n" + std::to_string(each) + "\n";
         return Versions{media(numbered(size, "#EXTINF:6,\n~\n")), media(now)};
     }},
    {"every second segment is gone",
     [](std::size_t size) {
         return Versions{media(numbered(size, "#EXTINF:6,\n~\n#EXTINF:6,\n~-\n")),
                         media(numbered(size, "#EXTINF:6,\n~\n"))};
     }},
    {"one URI for all segments",
     [](std::size_t size) {
         return Versions{media(numbered(size, "#EXTINF:6,\na\n") + "#EXTINF:6,\nb\n"),
                         media("#EXTINF:6,\nb\n" + numbered(size, "#EXTINF:6,\na\n"))};
     }},
    {"long URIs that begin alike",
     [](std::size_t size) {
         const std::string uri(200, 'a');
         return Versions{media(numbered(size, "#EXTINF:6,\n" + uri + "~\n")),
                         media(numbered(size, "#EXTINF:6,\n" + uri + "~\n", 7))};
     }},
    {"a long key in force for many other keys",
     [](std::size_t size) {
         const auto text = [size](char character) {
             return media(
                 "#EXT-X-KEY:METHOD=AES-128,URI=\"" + longText(size, character) + "\"\n" +
                 numbered(size, "#EXT-X-KEY:METHOD=AES-128,KEYFORMAT=\"~\",URI=\"a\"\n#EXTINF:6,\n~\n"));
         };
         return Versions{text('a'), text('b')};
     }},
    {"a long map that changes with many segments",
     [](std::size_t size) {
         return Versions{
             media("#EXT-X-MAP:URI=\"" + longText(size, 'a') + "\"\n" + numbered(size, "#EXTINF:6,\n~\n")),
             media("#EXT-X-MAP:URI=\"" + longText(size, 'b') + "\"\n" + numbered(size, "#EXTINF:6,\n~\n"))};
     }},
    {"many attributes of one key",
     [](std::size_t size) {
         return Versions{
             media("#EXT-X-KEY:" + numbered(size, "A~=1,") + "\n#EXTINF:6,\na\n#EXT-X-KEY:\n#EXTINF:6,\nb\n"),
             media("#EXT-X-KEY:" + numbered(size, "A~=1,") + "B=1\n#EXTINF:6,\na\n#EXTINF:6,\nb\n")};
     }},
    {"a date range with a long ID and many attributes",
     [](std::size_t size) {
         const std::string range = "#EXT-X-DATERANGE:ID=\"" + longText(size, 'a') + "\",";
         return Versions{media(range + numbered(size, "X-~=1,") + "\n#EXTINF:6,\na\n"),
                         media(range + numbered(size, "X-~=2,") + "\n#EXTINF:6,\na\n")};
     }},
    {"many tags of one date range",
     [](std::size_t size) {
         return Versions{media(numbered(size, "#EXT-X-DATERANGE:ID=\"a\",X=\"~\"\n") + "#EXTINF:6,\na\n"),
                         media(numbered(size, "#EXT-X-DATERANGE:ID=\"a\",X=\"~\"\n", 1) + "#EXTINF:6,\na\n")};
     }},
    {"date ranges of one class and one date",
     [](std::size_t size) {
         const std::string range =
             "#EXT-X-DATERANGE:CLASS=\"a\",START-DATE=\"2026-11-21T10:00:00Z\",END-ON-NEXT=YES,ID=\"~\"\n";
         return Versions{media("#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00Z\n" + numbered(size, range) +
                               "#EXTINF:6,\na\n"),
                         media("#EXT-X-PROGRAM-DATE-TIME:2026-11-21T10:00:00Z\n" +
                               numbered(size, range, size) + "#EXTINF:6,\na\n")};
     }},
    {"dates that go back",
     [](std::size_t size) {
         std::string text;
         for (std::size_t each = size; each > 0; --each) {
             text += "#EXT-X-PROGRAM-DATE-TIME:20" + std::to_string(10 + each % 90) +
                     "-11-21T10:00:00Z\n#EXTINF:99999999,\n" + std::to_string(each) + "\n";
         }
         return Versions{
             media(numbered(size, "#EXT-X-DATERANGE:ID=\"~\",START-DATE=\"2030-11-21T10:00:00Z\"\n") + text),
             media(text)};
     }},
    {"tags that are not known before one segment",
     [](std::size_t size) {
         return Versions{media(numbered(size, "#EXT-X-~:1\n") + "#EXTINF:6,\na\n"),
                         media(numbered(size, "#EXT-X-~:2\n") + "#EXTINF:6,\na\n")};
     }},
    {"one tag of the playlist many times",
     [](std::size_t size) {
         return Versions{media(numbered(size, "#EXT-X-VERSION:~\n#EXT-X-DEFINE:NAME=\"~\"\n")),
                         media(numbered(size, "#EXT-X-VERSION:~\n#EXT-X-DEFINE:NAME=\"~\"\n", 5))};
     }},
    {"variants with one URI",
     [](std::size_t size) {
         const std::string variant = "#EXT-X-STREAM-INF:BANDWIDTH=~,AUDIO=\"~\"\na\n";
         return Versions{"#EXTM3U\n" + numbered(size, variant), "#EXTM3U\n" + numbered(size, variant, size)};
     }},
    {"renditions with one name",
     [](std::size_t size) {
         const std::string rendition = "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"b\",URI=\"~\"\n";
         return Versions{"#EXTM3U\n" + numbered(size, rendition),
                         "#EXTM3U\n" + numbered(size, rendition, size)};
     }},
    {"a rendition with a long name and many attributes",
     [](std::size_t size) {
         const std::string rendition = "#EXT-X-MEDIA:NAME=\"" + longText(size, 'a') + "\",";
         return Versions{"#EXTM3U\n" + rendition + numbered(size, "X-~=1,") + "\n",
                         "#EXTM3U\n" + rendition + numbered(size, "X-~=2,") + "\n"};
     }},
    {"numbers at the end of what there is",
     [](std::size_t size) {
         return Versions{media("#EXT-X-MEDIA-SEQUENCE:18446744073709551615\n#EXT-X-DISCONTINUITY-SEQUENCE:"
                               "18446744073709551615\n" +
                               numbered(size, "#EXT-X-DISCONTINUITY\n#EXTINF:6,\n~\n")),
                         media("#EXT-X-MEDIA-SEQUENCE:18446744073709551610\n#EXT-X-SKIP:SKIPPED-SEGMENTS="
                               "18446744073709551615\n" +
                               numbered(size, "#EXTINF:6,\n~\n"))};
     }},
};

double secondsFor(const Versions& versions) {
    const std::clock_t start = std::clock();
    static_cast<void>(compared(versions));
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

TEST(HostileVersions, TakeTimeInProportionToTheirLength) {
    constexpr std::size_t size = 1000;
    constexpr std::size_t times = 4;
    for (const Hostile& hostile : hostiles) {
        const double once = secondsFor(hostile.make(size));
        const double longer = secondsFor(hostile.make(size * times));
        // Quadratic work would take sixteen times as long.
        EXPECT_LT(longer, 8.0 * once + 0.2) << hostile.what;
    }
}

std::size_t bytesOf(const VELHLSComparison& comparison) {
    std::size_t bytes = 0;
    for (const VELHLSChange& change : comparison.changes)
        bytes += sizeof(change) + change.path.size() + change.what.size() + change.oldText.size() +
                 change.newText.size();
    for (const VELHLSFinding& finding : comparison.findings)
        bytes += sizeof(finding) + finding.message.size();
    return bytes;
}

TEST(HostileVersions, GiveNoMoreThanAMultipleOfTheTexts) {
    for (const Hostile& hostile : hostiles) {
        for (const std::size_t size : {500U, 2000U}) {
            const Versions versions = hostile.make(size);
            const VELHLSComparison comparison = compared(versions);
            EXPECT_LE(bytesOf(comparison), 100 * (versions.before.size() + versions.now.size()))
                << hostile.what;
            EXPECT_LE(comparison.findings.size(), 100 * VELHLSComparison::rules().size()) << hostile.what;
            for (const VELHLSFinding& finding : comparison.findings)
                EXPECT_LE(finding.message.size(), 2000U) << hostile.what << finding.message;
        }
    }
}

void expectPlaces(const VELHLSDocument& old, const VELHLSDocument& now, const VELHLSComparison& comparison) {
    for (const VELHLSFinding& finding : comparison.findings) {
        ASSERT_GE(finding.line, 1U);
        ASSERT_LE(finding.line, now.lineCount());
        ASSERT_LE(finding.column - 1 + finding.length, now.line(finding.line).text.size())
            << finding.message << now.text();
        for (const VELHLSRelatedPlace& place : finding.related) {
            ASSERT_LE(place.line, old.lineCount());
            ASSERT_LE(place.column - 1 + place.length, old.line(place.line).text.size()) << finding.message;
        }
    }
    for (const VELHLSChange& change : comparison.changes) {
        ASSERT_LE(change.oldLine, old.lineCount());
        ASSERT_LE(change.newLine, now.lineCount());
        ASSERT_NE(change.oldLine + change.newLine, 0U);
    }
}

/// Every prefix of a version, and each with one byte of another kind, is compared both ways.
TEST(HostileVersions, HaveFindingsThatStandInTheirLines) {
    for (const Versions& versions : {live, event, songs, vod}) {
        const VELHLSDocument old(versions.before);
        for (std::size_t length = 0; length <= versions.now.size(); length += 5) {
            for (const char byte : {'\0', '"', ',', '\n', '9'}) {
                const VELHLSDocument broken(versions.now.substr(0, length) + byte +
                                            versions.now.substr(std::min(versions.now.size(), length + 7)));
                if (const auto comparison = VELHLSComparison::compare(old, broken, {3.0}))
                    expectPlaces(old, broken, *comparison);
                if (const auto comparison = VELHLSComparison::compare(broken, old, {30.0}))
                    expectPlaces(broken, old, *comparison);
            }
        }
    }
}

TEST(HostileVersions, AreTheSameAsThemselves) {
    for (const Hostile& hostile : hostiles) {
        const Versions versions = hostile.make(200);
        const VELHLSComparison comparison = compared({versions.now, versions.now});
        EXPECT_EQ(shownChanges(comparison.changes), "") << hostile.what;
        EXPECT_EQ(shown(comparison.findings), "") << hostile.what;
    }
}

}  // namespace
}  // namespace comparison_test
