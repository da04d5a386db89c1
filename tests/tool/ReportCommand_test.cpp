// What `velhls report` shows, and that nothing of a playlist becomes more than text in it.
#include <chrono>
#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PageElements.h"
#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"
#include "tests/support/VelhlsCommand.h"

namespace {

using command::Outcome;
using command::redirect;
using command::TemporaryFolder;
using page::elementsOf;
using playlist::contentOf;
using playlist::lines;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t place = text.find(part); place != std::string::npos;
         place = text.find(part, place + part.size()))
        ++count;
    return count;
}

/// What stands from one text to another.
std::string between(const std::string& text, const std::string& start, const std::string& end) {
    const std::size_t first = text.find(start);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find(end, first) - first);
}

std::string mediaOf(const std::vector<std::string>& segments, const std::string& header = "") {
    std::string text =
        "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXT-X-PLAYLIST-TYPE:VOD\n" + header;
    for (const std::string& segment : segments)
        text += segment + "\n";
    return text + "#EXT-X-ENDLIST\n";
}

const std::string extInf = "#EXTINF:6.006,\nsegment.ts";

std::string manySegments(std::size_t count) {
    std::string text = "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXT-X-PLAYLIST-TYPE:VOD\n";
    for (std::size_t segment = 0; segment < count; ++segment) {
        if (segment % 50 == 0)
            text += "#EXT-X-KEY:METHOD=AES-128,URI=\"key" + std::to_string(segment) + "\"\n";
        if (segment % 300 == 100) text += "#EXT-X-DISCONTINUITY\n";
        text += "#EXTINF:6.006,\nhttps://cdn.example.com/video/segment" + std::to_string(segment) + ".ts\n";
    }
    return text + "#EXT-X-ENDLIST\n";
}

/// A folder that the command is run in, so that its names are short.
class ReportCommand : public testing::Test {
  protected:
    void make(const std::string& name, const std::string& text) const {
        fs::create_directories(fs::path(folder.file(name)).parent_path());
        static_cast<void>(folder.with(name, text));
    }

    [[nodiscard]] Outcome report(std::vector<std::string> arguments,
                                 const std::string& input = "/dev/null") const {
        arguments.insert(arguments.begin(), {VELHLS_COMMAND, "report"});
        return command::runPrepared(arguments, [this, &input] {
            if (::chdir(folder.path().c_str()) != 0) ::_exit(125);
            redirect(STDIN_FILENO, input, O_RDONLY);
        });
    }

    /// The page about one playlist.
    [[nodiscard]] std::string pageOf(const std::string& text,
                                     const std::vector<std::string>& options = {}) const {
        make("list.m3u8", text);
        std::vector<std::string> arguments = options;
        arguments.emplace_back("list.m3u8");
        return report(arguments).output;
    }

    TemporaryFolder folder;
};

// --- the file

TEST_F(ReportCommand, WritesOneFileThatLoadsAndRunsNothing) {
    const std::string page = pageOf(mediaOf({extInf}));
    EXPECT_THAT(
        page, StartsWith("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"/>\n"
                         "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src &#39;none&#39;; "
                         "style-src &#39;sha256-"));
    EXPECT_THAT(page, Not(HasSubstr("unsafe")));
    const std::set<std::string> allowed = {"html lang",
                                           "head",
                                           "meta charset",
                                           "meta http-equiv content",
                                           "meta name content",
                                           "title",
                                           "title id",
                                           "desc id",
                                           "style",
                                           "body",
                                           "header",
                                           "main",
                                           "footer",
                                           "nav aria-label",
                                           "ul",
                                           "li",
                                           "a href",
                                           "a href rel",
                                           "h1",
                                           "h2",
                                           "h3 ",
                                           "h3",
                                           "p",
                                           "p class",
                                           "section id",
                                           "div class",
                                           "div id",
                                           "div class tabindex role aria-label",
                                           "svg id viewBox role aria-labelledby",
                                           "text class x y",
                                           "path class d",
                                           "rect class x y width height",
                                           "table",
                                           "caption",
                                           "thead",
                                           "tbody",
                                           "tr",
                                           "th scope",
                                           "td",
                                           "td class",
                                           "details",
                                           "summary",
                                           "code",
                                           "code aria-hidden",
                                           "span class",
                                           "pre",
                                           "del",
                                           "ins"};
    for (const std::string& element : elementsOf(page))
        EXPECT_EQ(allowed.count(element), 1U) << element;
}

TEST_F(ReportCommand, WritesTheFileWhollyOrNotAtAll) {
    make("list.m3u8", mediaOf({extInf}));
    make("page.html", "old");
    EXPECT_EQ(report({"missing.m3u8", "-o", "page.html"}).exitStatus, 2);
    EXPECT_EQ(contentOf(folder.file("page.html")), "old");
    const Outcome written = report({"list.m3u8", "-o", "page.html"});
    EXPECT_EQ(written.exitStatus, 0);
    EXPECT_EQ(written.output, "");
    EXPECT_EQ(contentOf(folder.file("page.html")), report({"list.m3u8"}).output);
}

TEST_F(ReportCommand, TellsByItsExitStatusWhetherSomethingWasFound) {
    EXPECT_EQ(report({"-"}).exitStatus, 1);
    make("list.m3u8", mediaOf({"#EXTINF:9,\na.ts"}));
    EXPECT_EQ(report({"list.m3u8"}).exitStatus, 1);
    EXPECT_EQ(report({"--disable=target-duration-too-small", "list.m3u8"}).exitStatus, 0);
    EXPECT_EQ(report({"--fail-on", "never", "list.m3u8"}).exitStatus, 2);
    EXPECT_EQ(report({"--format=png", "list.m3u8"}).exitStatus, 2);
}

TEST_F(ReportCommand, RefusesWhatIsNoPlaylist) {
    make("list.m3u8", "<html></html>\n");
    const Outcome outcome = report({"list.m3u8"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("list.m3u8:1: error: "));
    EXPECT_THAT(outcome.errors, testing::EndsWith(" [not-a-playlist]\n"));
    const Outcome large = report({"--max-bytes=3", "list.m3u8"});
    EXPECT_EQ(large.exitStatus, 2);
    EXPECT_EQ(large.output, "");
}

TEST_F(ReportCommand, ReadsStandardInput) {
    make("list.m3u8", mediaOf({extInf}));
    const Outcome outcome = report({}, "list.m3u8");
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_THAT(outcome.output, HasSubstr("<h1>&lt;stdin&gt;</h1>"));
}

// --- the ladder

TEST_F(ReportCommand, DrawsARungForEachVariantAndTheRatioToTheNext) {
    const std::string page = pageOf(lines(
        {"#EXTM3U",
         "#EXT-X-STREAM-INF:BANDWIDTH=1000000,AVERAGE-BANDWIDTH=800000,CODECS=\"avc1.4d401e,mp4a.40.2\","
         "RESOLUTION=640x360,FRAME-RATE=25",
         "low.m3u8",
         "#EXT-X-STREAM-INF:BANDWIDTH=2500000,CODECS=\"mp4a.40.2,avc1.4d401f\",RESOLUTION=1280x720",
         "high.m3u8", "#EXT-X-STREAM-INF:BANDWIDTH=64000,CODECS=\"mp4a.40.2\"", "sound.m3u8"}));
    const std::string picture = between(page, "<svg", "</svg>");
    EXPECT_EQ(countOf(picture, "class=\"peak\""), 4U) << "one in the legend";
    EXPECT_EQ(countOf(picture, "class=\"average\""), 2U);
    EXPECT_EQ(countOf(picture, "class=\"range\""), 1U);
    EXPECT_THAT(picture, HasSubstr(">avc1 + mp4a</text>"));
    EXPECT_THAT(picture, HasSubstr(">mp4a</text>"));
    EXPECT_THAT(picture, HasSubstr(">640x360, 25 fps</text>"));
    EXPECT_THAT(picture, HasSubstr(">\xC3\x97"
                                   "2.5</text>"));
    EXPECT_THAT(picture, HasSubstr("<title>AVERAGE-BANDWIDTH 800 kbit/s</title>"));
}

TEST_F(ReportCommand, SaysWhatVariantsAndRenditionsLack) {
    const std::string page = pageOf(lines(
        {"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"English\",LANGUAGE=\"en\",DEFAULT=YES",
         "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"unused\",NAME=\"Deutsch\",URI=\"de.m3u8\"",
         "#EXT-X-STREAM-INF:BANDWIDTH=1000000,RESOLUTION=640x360,AUDIO=\"a\",SUBTITLES=\"gone\"",
         "low.m3u8"}));
    EXPECT_THAT(page, HasSubstr("<th scope=\"row\"><a href=\"#list.m3u8-L4\">4</a></th><td>640x360</td>"
                                "<td class=\"missing\">missing</td><td class=\"missing\">missing</td>"));
    EXPECT_THAT(page, HasSubstr("<td>low.m3u8</td><td class=\"missing\">not followed</td>"));
    EXPECT_THAT(page, HasSubstr("<th scope=\"row\">AUDIO a</th><td class=\"number\">1</td><td>en</td>"
                                "<td class=\"number\">1</td>"));
    EXPECT_THAT(page, HasSubstr("<th scope=\"row\">SUBTITLES unused</th><td class=\"number\">1</td><td></td>"
                                "<td class=\"missing\">none</td>"));
    EXPECT_THAT(page, HasSubstr("<th scope=\"row\">SUBTITLES gone</th><td class=\"missing\">none</td>"));
}

TEST_F(ReportCommand, FollowsAMasterPlaylistAndMeasuresItsVariants) {
    make("in/master.m3u8",
         lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=900000,CODECS=\"avc1.4d401e\"", "v/low.m3u8",
                "#EXT-X-STREAM-INF:BANDWIDTH=1800000,CODECS=\"avc1.4d401e\"", "gone.m3u8",
                "#EXT-X-STREAM-INF:BANDWIDTH=2800000,CODECS=\"avc1.4d401e\"", "https://example.com/a.m3u8"}));
    make("in/v/low.m3u8", mediaOf({"#EXTINF:6.000,\n#EXT-X-BYTERANGE:600000@0\nall.ts"}));
    const std::string page = report({"--follow", "in/master.m3u8"}).output;
    EXPECT_THAT(page, HasSubstr("<title>measured peak 800 kbit/s</title>"));
    EXPECT_THAT(page, HasSubstr("<a href=\"#v/low.m3u8-source\">v/low.m3u8</a>"));
    EXPECT_THAT(page, HasSubstr("<td>gone.m3u8</td><td class=\"missing\">not there</td>"));
    EXPECT_THAT(page,
                HasSubstr("<td>https://example.com/a.m3u8</td><td class=\"missing\">not a local file</td>"));
    EXPECT_THAT(page, HasSubstr("<td>variant, avc1.4d401e</td>"));
    EXPECT_THAT(page, Not(HasSubstr(folder.path())));
}

// --- the timeline

TEST_F(ReportCommand, DrawsABarForEachSegmentAndAMarkForEachTag) {
    const std::string page = pageOf(
        mediaOf({"#EXT-X-KEY:METHOD=AES-128,URI=\"k\"", "#EXT-X-MAP:URI=\"init.mp4\"",
                 "#EXT-X-PROGRAM-DATE-TIME:2024-02-29T12:00:00.000Z", extInf, "#EXT-X-DISCONTINUITY",
                 "#EXT-X-CUE-OUT:6", extInf, "#EXT-X-CUE-IN", "#EXT-X-GAP", extInf, "#EXTINF:9.1,\nlong.ts",
                 "#EXT-X-DATERANGE:ID=\"ad\",START-DATE=\"2024-02-29T12:00:06.000Z\",DURATION=12"}));
    const std::string picture = between(page, "<svg", "</svg>");
    const auto barsOf = [&picture](const std::string& style) {
        const std::string path =
            between(picture.substr(picture.find("class=\"grid\"")), "<path class=\"" + style + "\" d=", "/>");
        return countOf(path, "v-");
    };
    EXPECT_EQ(barsOf("bar"), 2U);
    EXPECT_EQ(barsOf("over"), 1U);
    EXPECT_EQ(barsOf("hollow"), 1U);
    for (const char* const mark : {"discontinuity", "key", "map", "date", "gap"})
        EXPECT_EQ(countOf(picture, "<path class=\"" + std::string(mark) + "\""), 2U)
            << mark << ", one in the legend";
    EXPECT_THAT(picture, HasSubstr("<title>0:06: discontinuity</title>"));
    EXPECT_THAT(picture, HasSubstr("<title>cue 6: 0:06 to 0:12</title>"));
    EXPECT_THAT(picture, HasSubstr("<title>date range ad: 0:06 to 0:18</title>"));
    EXPECT_THAT(page, HasSubstr("<td>cue 6</td><td>to 0:12</td>"));
    EXPECT_THAT(page,
                HasSubstr("Times are counted from the earliest date of all, 2024-02-29T12:00:00.000Z."));
}

TEST_F(ReportCommand, ShowsWhereMediaPlaylistsDiffer) {
    make("master.m3u8", lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"avc1\"", "low.m3u8",
                               "#EXT-X-STREAM-INF:BANDWIDTH=2,CODECS=\"avc1\"", "high.m3u8"}));
    make("low.m3u8", mediaOf({extInf, "#EXT-X-DISCONTINUITY", extInf, extInf}));
    make("high.m3u8", mediaOf({extInf, extInf, "#EXTINF:3,\na.ts"}));
    const std::string page = report({"--follow", "master.m3u8"}).output;
    const std::string table = between(page, "<caption>Differences from low.m3u8", "</table>");
    EXPECT_THAT(table, HasSubstr("<td class=\"number\">0:06</td><td>a discontinuity is missing</td>"));
    EXPECT_THAT(table, HasSubstr("<td>it ends earlier</td>"));
    EXPECT_THAT(page, HasSubstr("<title>0:06: a discontinuity is missing</title>"));
    EXPECT_EQ(countOf(page, "class=\"differs\""), 3U) << "one in the legend";
}

TEST_F(ReportCommand, ShowsWhereKeysAndMapsOfVariantsDiffer) {
    const std::string key = "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"";
    const std::string map = "#EXT-X-MAP:URI=\"init.mp4\"";
    make("master.m3u8",
         lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"b\",URI=\"sound.m3u8\"",
                "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"avc1\",AUDIO=\"a\"", "low.m3u8",
                "#EXT-X-STREAM-INF:BANDWIDTH=2,CODECS=\"avc1\",AUDIO=\"a\"", "high.m3u8",
                "#EXT-X-STREAM-INF:BANDWIDTH=3,CODECS=\"avc1\",AUDIO=\"a\"", "top.m3u8"}));
    make("low.m3u8", mediaOf({map, key, extInf, key, extInf}));
    make("high.m3u8", mediaOf({map, key, extInf, map, extInf}));
    make("top.m3u8", mediaOf({key, extInf, key, extInf}));
    make("sound.m3u8", mediaOf({extInf, extInf}));
    const std::string page = report({"--follow", "master.m3u8"}).output;
    const std::string table = between(page, "<caption>Differences from low.m3u8", "</table>");
    EXPECT_EQ(countOf(table, "<tr>"), 3U) << "the head and two of high.m3u8\n" << table;
    EXPECT_THAT(table, HasSubstr("<td class=\"number\">0:06</td><td>a key is missing</td>"));
    EXPECT_THAT(table,
                HasSubstr("<td class=\"number\">0:06</td><td>a map that is not there in the other</td>"));
}

TEST_F(ReportCommand, PutsLivePlaylistsOnOneAxisByTheirNumbers) {
    const auto window = [](int first) {
        std::string text =
            "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:" + std::to_string(first) + "\n";
        for (int number = first; number < first + 4; ++number)
            text += "#EXTINF:6,\n" + std::to_string(number) + ".ts\n";
        return text;
    };
    make("a.m3u8", window(7));
    make("b.m3u8", window(9));
    const std::string page = report({"a.m3u8", "b.m3u8"}).output;
    EXPECT_THAT(page, HasSubstr("Segments with one media sequence number stand below each other"));
    EXPECT_THAT(page, HasSubstr("No playlist differs from a.m3u8"));
}

// --- the findings

TEST_F(ReportCommand, ShowsAFindingBesideItsLineWithItsRuleAndItsFix) {
    const std::string page = pageOf(mediaOf({"#EXTINF:9,\na.ts"}));
    EXPECT_THAT(
        page,
        HasSubstr("<div id=\"list.m3u8-L5\"><a href=\"#list.m3u8-L5\">5</a><code>#EXTINF:9,</code></div>\n"
                  "<div class=\"note\"><code aria-hidden=\"true\">        ^</code>"
                  "<p><span class=\"error\">error</span>: EXTINF: expected no more than the target "
                  "duration, rounded: 6 seconds, seen &quot;9&quot; "
                  "<a href=\"#rule:target-duration-too-small\">target-duration-too-small</a></p>"));
    EXPECT_THAT(page,
                HasSubstr("<del>-#EXT-X-TARGETDURATION:6</del>\n<ins>+#EXT-X-TARGETDURATION:9</ins>\n"));
    EXPECT_THAT(
        page, HasSubstr("<section id=\"rule:target-duration-too-small\"><h3>target-duration-too-small</h3>"));
    EXPECT_THAT(page, HasSubstr("href=\"https://www.rfc-editor.org/rfc/rfc8216#section-"));
    EXPECT_THAT(page,
                HasSubstr("<td class=\"number\">1</td><td><a href=\"#list.m3u8-L5\">list.m3u8:5</a></td>"));
}

TEST_F(ReportCommand, LeadsEveryLinkToAPlace) {
    make("master.m3u8", lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=0", "a b&'.m3u8",
                               "#EXT-X-STREAM-INF:CODECS=x", "high.m3u8"}));
    make("a b&'.m3u8", manySegments(900));
    make("high.m3u8", mediaOf({"#EXTINF:9,\na.ts", "#EXT-X-DISCONTINUITY", "#EXTINF:9,\nb.ts"}));
    const std::string page = report({"--follow", "--profile=rfc8216,library,apple", "master.m3u8"}).output;
    std::set<std::string> ids;
    static const std::regex id(" id=\"([^\"]*)\"");
    for (std::sregex_iterator each(page.begin(), page.end(), id), end; each != end; ++each)
        EXPECT_TRUE(ids.insert((*each)[1]).second) << (*each)[1];
    static const std::regex link(" href=\"#([^\"]*)\"");
    std::size_t links = 0;
    for (std::sregex_iterator each(page.begin(), page.end(), link), end; each != end; ++each, ++links)
        EXPECT_EQ(ids.count((*each)[1]), 1U) << (*each)[1];
    EXPECT_GT(links, 100U);
    EXPECT_THAT(page, HasSubstr("href=\"#a%20b%26%27.m3u8-L5\""));
}

TEST_F(ReportCommand, LeavesOutLinesOfALongPlaylistButThoseAroundFindings) {
    std::string text = mediaOf(std::vector<std::string>(500, extInf));
    text.replace(text.find("#EXTINF:6.006,", 3000), 8, "#EXTIMF:");
    const std::string page = pageOf(text);
    EXPECT_THAT(page, HasSubstr("lines 7 to "));
    EXPECT_THAT(page, HasSubstr("#EXTIMF:6.006,"));
    EXPECT_LT(countOf(page, "<div id=\"list.m3u8-L"), 30U);
}

TEST_F(ReportCommand, ShowsTheSeveritiesAndProfilesThatAreAskedFor) {
    const std::string text =
        lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"avc1.4d401e\"", "low.m3u8"});
    EXPECT_THAT(pageOf(text), Not(HasSubstr("rule:")));
    EXPECT_THAT(pageOf(text, {"--severity=note"}), HasSubstr("<span class=\"note\">note</span>"));
    EXPECT_THAT(pageOf(text, {"--profile=apple"}), HasSubstr("<td>apple</td>"));
}

// --- a series

class ReportedSeries : public ReportCommand {
  protected:
    static std::string window(int first, int count, const std::string& end = "") {
        std::string text = "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:" +
                           std::to_string(first) + "\n";
        for (int number = first; number < first + count; ++number)
            text += "#EXTINF:6.006,\n" + std::to_string(number) + ".ts\n";
        return text + end;
    }
};

TEST_F(ReportedSeries, ShowsWhatCameAndWent) {
    make("live/1.m3u8", window(7, 4));
    make("live/2.m3u8", window(9, 5));
    make("live/3.m3u8", window(9, 5, "#EXT-X-ENDLIST\n"));
    const Outcome outcome = report({"--series", "live"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_THAT(outcome.output, HasSubstr("<h1>3.m3u8, 3 versions</h1>"));
    const std::string picture = between(outcome.output, "<svg", "</svg>");
    EXPECT_EQ(countOf(picture, "<rect class=\"kept\""), 3U);
    EXPECT_THAT(picture, HasSubstr("<title>came: 11 to 13</title>"));
    EXPECT_THAT(picture, HasSubstr("<title>went: 7 to 8</title>"));
    EXPECT_THAT(
        outcome.output,
        HasSubstr(
            "<tr><th scope=\"row\">2.m3u8</th><td>9 to 13</td><td></td><td>11 to 13</td><td>7 to 8</td>"));
    EXPECT_THAT(outcome.output, HasSubstr("<td>+ EXT-X-ENDLIST</td>"));
    EXPECT_THAT(outcome.output, HasSubstr("<td class=\"number\">0:30</td>")) << "the timeline of the last";
}

TEST_F(ReportedSeries, ShowsForbiddenChangesBesideTheLinesOfTheirVersion) {
    make("1.m3u8", window(7, 4));
    make("2.m3u8", window(6, 4));
    make("3.m3u8", window(6, 4));
    const Outcome outcome = report({"--series", "1.m3u8", "2.m3u8", "3.m3u8"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.output, HasSubstr("<a href=\"#2.m3u8-L4\">2.m3u8:4</a>"));
    EXPECT_THAT(outcome.output, HasSubstr("<section id=\"rule:media-sequence-decreased\">"));
    EXPECT_EQ(report({"--series", "--elapsed=20", "--fail-on=warning", "1.m3u8", "1.m3u8"}).exitStatus, 1);
    EXPECT_EQ(report({"--series", "1.m3u8", "1.m3u8"}).exitStatus, 0);
}

TEST_F(ReportedSeries, RefusesWhatIsNoSeries) {
    make("1.m3u8", window(7, 4));
    make("master.m3u8", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n");
    const Outcome outcome = report({"--series", "1.m3u8", "master.m3u8", "-o", "page.html"});
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_THAT(outcome.errors, StartsWith("master.m3u8: error: cannot be compared: "));
    EXPECT_FALSE(fs::exists(folder.file("page.html")));
    EXPECT_EQ(report({"--series", "1.m3u8"}).exitStatus, 2);
    EXPECT_EQ(report({"--series", "--follow", "1.m3u8", "1.m3u8"}).exitStatus, 2);
}

TEST_F(ReportedSeries, ShowsTheLastOfManyVersions) {
    for (int version = 100; version < 170; ++version)
        make("live/" + std::to_string(version) + ".m3u8", window(version, 4));
    const std::string page = report({"--series", "live"}).output;
    EXPECT_THAT(page, HasSubstr("10 versions before these not shown."));
    EXPECT_THAT(page, HasSubstr("<h1>169.m3u8, 70 versions</h1>"));
    EXPECT_EQ(countOf(page, "<rect class=\"kept\""), 60U);
    EXPECT_LT(page.size(), 100000U);
}

// --- pictures alone

TEST_F(ReportCommand, WritesThePicturesAloneAsOneSvg) {
    make("master.m3u8", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1000,CODECS=\"avc1\"\nlow.m3u8\n");
    make("low.m3u8", mediaOf({extInf}));
    const Outcome outcome = report({"--follow", "--format=svg", "master.m3u8"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_THAT(outcome.output, StartsWith("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"-12 0 984 "));
    EXPECT_THAT(outcome.output,
                HasSubstr("<title id=\"title\">Ladder of master.m3u8; Timeline of low.m3u8</title>"));
    EXPECT_NE(elementsOf("\n" + outcome.output), std::vector<std::string>{"broken"});
    EXPECT_THAT(report({"--format=svg", "master.m3u8"}).output, Not(HasSubstr("Timeline")));
    EXPECT_THAT(report({"--format=svg", "low.m3u8"}).output, Not(HasSubstr("Ladder")));
}

TEST(PicturesOfTheGuide, AreWhatTheCommandDrawsOfTheExamples) {
    const std::string examples = VELHLS_SOURCE "/examples/report";
    const auto drawn = [&examples](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"report", "--config=/dev/null", "--format=svg"});
        return command::velhls(arguments,
                               [&examples] {
                                   if (::chdir(examples.c_str()) != 0) ::_exit(125);
                               })
            .output;
    };
    const std::string pictures = VELHLS_SOURCE "/docs/guide/pictures/";
    EXPECT_EQ(contentOf(pictures + "ladder.svg"), drawn({"master.m3u8"})) << "run scripts/refresh-documents";
    EXPECT_EQ(contentOf(pictures + "timeline.svg"), drawn({"video/720p.m3u8", "video/540p.m3u8"}));
    EXPECT_EQ(contentOf(pictures + "versions.svg"), drawn({"--series", "live"}));
}

TEST_F(ReportCommand, RefusesToDrawNothing) {
    make("empty.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-ENDLIST\n");
    make("page.svg", "old");
    const Outcome outcome = report({"--format=svg", "empty.m3u8", "-o", "page.svg"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.errors, StartsWith("empty.m3u8: error: there is nothing to draw"));
    EXPECT_EQ(contentOf(folder.file("page.svg")), "old");
}

// --- hostile playlists

/// A page of a presentation that has this text everywhere.
class HostileReport : public ReportCommand {
  protected:
    [[nodiscard]] std::string pageWith(const std::string& name) const {
        make("master.m3u8",
             "#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"" + name + "\",NAME=\"" + name + "\",LANGUAGE=\"" +
                 name + "\",URI=\"" + name + "\"\n#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"" + name +
                 "\",RESOLUTION=" + name + ",AUDIO=\"" + name +
                 "\"\nlow.m3u8\n#EXT-X-SESSION-DATA:DATA-ID=\"" + name + "\",VALUE=\"" + name + "\"\n");
        make(
            "low.m3u8",
            mediaOf({"#EXT-X-PROGRAM-DATE-TIME:2024-02-29T12:00:00.000Z",
                     "#EXT-X-KEY:METHOD=" + name + ",URI=\"" + name + "\"", "#EXT-X-CUE-OUT:" + name,
                     "#EXT-X-DATERANGE:ID=\"" + name + "\",START-DATE=\"2024-02-29T12:00:00.000Z\",X=" + name,
                     "#EXTINF:6," + name + "\n" + name}));
        return report({"--follow", "--profile=rfc8216,library", "--severity=note", "master.m3u8"}).output;
    }
};

/// What a page has for findings and fixes that a plain name does not give.
bool isHarmless(const std::string& element) {
    static const std::set<std::string> ofFindings = {"pre", "del", "ins"};
    return ofFindings.count(element) == 1;
}

TEST_F(HostileReport, MakesNoMarkupOfAnyText) {
    const std::set<std::string> plain = [this] {
        const std::vector<std::string> elements = elementsOf(pageWith("plain"));
        return std::set<std::string>(elements.begin(), elements.end());
    }();
    for (const char* const name :
         {"</script><script>alert(1)</script>", "'onload='alert(1)' x='", "<svg/onload=alert(1)>",
          "</title></style>", "&lt;img src=x onerror=alert(1)&gt;", "javascript:alert(1)", "-->]]>", "<!--",
          "`${alert(1)}`"}) {
        const std::string page = pageWith(name);
        for (const std::string& element : elementsOf(page))
            EXPECT_TRUE(plain.count(element) == 1 || isHarmless(element)) << name << ": " << element;
        EXPECT_NE(elementsOf(page), std::vector<std::string>{"broken"}) << name;
        EXPECT_THAT(page, Not(HasSubstr("<script"))) << name;
        EXPECT_THAT(page, Not(HasSubstr("href=\"javascript"))) << name;
    }
}

TEST_F(HostileReport, ShowsWhatCannotBeSeen) {
    const std::string page = pageWith(
        "a\xE2\x80\xAE"
        "b\x1B[31m\x01\xFF\xC0\xAF\xEF\xBF\xBF\xE2\x81\xA6z");
    EXPECT_THAT(page,
                HasSubstr("a\\xE2\\x80\\xAEb\\x1B[31m\\x01\\xFF\\xC0\\xAF\\xEF\\xBF\\xBF\\xE2\\x81\\xA6z"));
    for (const char* const hidden : {"\xE2\x80\xAE", "\x1B", "\x01", "\xFF", "\xEF\xBF\xBF", "\xE2\x81\xA6"})
        EXPECT_EQ(page.find(hidden), std::string::npos);
}

TEST_F(HostileReport, StaysWhatItIsForNulBytesAndNoLines) {
    for (const std::string& text :
         {std::string("#EXTM3U\n#EXTINF:6,\n\0a\0.ts\n", 25), std::string("#EXT-X-ENDLIST"),
          std::string("#EXTM3U\r\n#EXTINF:6,\r\na.ts\r\n"), std::string("#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO"),
          std::string("#EXT-X-TARGETDURATION:1\n#EXTINF:1e308,\na\n#EXTINF:-1,\nb\n#EXTINF:"
                      "99999999999999999999999,\nc\n"),
          std::string(
              "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=18446744073709551615,AVERAGE-BANDWIDTH=1\na\n")}) {
        const std::string page = pageOf(text);
        EXPECT_NE(elementsOf(page), std::vector<std::string>{"broken"}) << text;
        EXPECT_THAT(page, testing::EndsWith("</html>\n")) << text;
        EXPECT_THAT(page, Not(HasSubstr("nan"))) << text;
    }
}

// --- sizes

constexpr std::size_t mostBytesOfPage = 100000;

TEST_F(ReportCommand, SumsUpManySegmentsInASmallPage) {
    const std::string page = pageOf(manySegments(100000));
    EXPECT_LT(page.size(), mostBytesOfPage);
    EXPECT_THAT(page, HasSubstr("the longest of up to 625 segments that it sums up."));
    EXPECT_THAT(page, HasSubstr("<td class=\"number\">100,000</td>"));
    const std::string bars =
        between(page.substr(page.find("class=\"grid\"")), "<path class=\"bar\" d=", "/>");
    EXPECT_EQ(countOf(bars, "v-"), 160U);
}

TEST_F(ReportCommand, MakesASmallPageOfAUsualPresentation) {
    std::string master = "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-INDEPENDENT-SEGMENTS\n";
    for (const char* const language : {"en", "de", "fr"}) {
        for (const std::string type : {"AUDIO", "SUBTITLES"}) {
            const std::string name = type + "/" + language + ".m3u8";
            master += "#EXT-X-MEDIA:TYPE=" + type + ",GROUP-ID=\"" + type + "\",NAME=\"" + language +
                      "\",LANGUAGE=\"" + language + "\",AUTOSELECT=YES,CHANNELS=\"2\",URI=\"" + name + "\"\n";
            make(name, manySegments(600));
        }
    }
    for (int rung = 1; rung <= 8; ++rung) {
        const std::string name = "video/" + std::to_string(rung) + "/playlist.m3u8";
        master += "#EXT-X-STREAM-INF:BANDWIDTH=" + std::to_string(rung * 1000000) +
                  ",CODECS=\"avc1.64001f,mp4a.40.2\",RESOLUTION=1280x720,AUDIO=\"AUDIO\",SUBTITLES="
                  "\"SUBTITLES\"\n" +
                  name + "\n";
        make(name, manySegments(600));
    }
    make("master.m3u8", master);
    const std::string page = report({"--follow", "master.m3u8"}).output;
    EXPECT_EQ(countOf(page, "<path class=\"target\""), 14U);
    EXPECT_LT(page.size(), mostBytesOfPage);
}

TEST_F(ReportCommand, BoundsThePageWhateverIsInThePlaylist) {
    std::string master = "#EXTM3U\n";
    for (int rung = 1; rung <= 3000; ++rung)
        master += "#EXT-X-STREAM-INF:BANDWIDTH=" + std::to_string(rung * 1000) + ",CODECS=\"" +
                  std::string(300, 'c') + "\"\n" + std::string(300, 'u') + "\n";
    const std::string page = pageOf(master);
    EXPECT_THAT(page, HasSubstr("2,940 variants more not drawn"));
    EXPECT_THAT(page, HasSubstr("2,800 more are left out."));
    EXPECT_LT(page.size(), 5 * mostBytesOfPage);
}

TEST_F(ReportCommand, TakesTimeInProportionToTheSegments) {
    const auto secondsFor = [this](std::size_t segments) {
        make("list.m3u8", manySegments(segments));
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(report({"list.m3u8"}).exitStatus, 0);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    const double small = secondsFor(10000);
    EXPECT_LT(secondsFor(40000), 12 * small + 0.2);
}

}  // namespace
