#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"

namespace {

using command::Outcome;
using command::TemporaryFolder;
using playlist::contentOf;
using playlist::lines;
using testing::HasSubstr;
using testing::StartsWith;

Outcome velhls(std::vector<std::string> arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), VELHLS_COMMAND);
    return command::run(arguments, input);
}

const std::string clean = lines({"#EXTM3U", "#EXT-X-START:TIME-OFFSET=2.5",
                                 "#EXT-X-STREAM-INF:BANDWIDTH=1,CLOSED-CAPTIONS=NONE", "a.m3u8"});
const std::string warned =
    lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=1,FRAME-RATE=25", "a.m3u8", "# a comment"});
const std::string rejected = lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=0", "a.m3u8"});
const std::string warning =
    "<stdin>:2:31: warning: EXT-X-STREAM-INF: expected an attribute that the library keeps, seen "
    "\"FRAME-RATE\" [attribute-ignored]\n";

TEST(CheckCommand, SaysNothingOfACleanPlaylist) {
    const Outcome outcome = velhls({"check", "--profile=library", "--severity=note"}, clean);
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "");
}

TEST(CheckCommand, TellsWarningsAndErrorsAndLeavesNotesOut) {
    const Outcome outcome = velhls({"check", "--profile=library", "-"}, warned);
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, warning);
    EXPECT_EQ(outcome.errors, "");
}

TEST(CheckCommand, LooksAtTheAskedSeverityAndAbove) {
    EXPECT_EQ(velhls({"check", "--profile=library", "--severity=error"}, warned).exitStatus, 0);
    EXPECT_EQ(velhls({"check", "--profile=library", "--severity=error"}, rejected).exitStatus, 1);
    EXPECT_THAT(velhls({"check", "--profile=library", "--severity=note"}, warned).output,
                HasSubstr("note: expected a line"));
}

TEST(CheckCommand, ChecksByTheProfilesThatAreAskedFor) {
    const std::string text = lines({"#EXTM3U", "#EXTINF:6,", "0.ts"});
    const Outcome standard = velhls({"check"}, text);
    EXPECT_EQ(standard.exitStatus, 1);
    EXPECT_THAT(standard.output, HasSubstr("[target-duration-missing]\n"));
    EXPECT_THAT(standard.output, HasSubstr("<stdin>:3:1: rejected: expected "));
    const std::string both =
        velhls({"check", "--profile=library", "--profile", "rfc8216", "--format=json"}, text).output;
    EXPECT_THAT(both, HasSubstr("\"profile\": \"rfc8216\",\n          \"clause\": \"4.3.3.1\""));
    EXPECT_THAT(both, HasSubstr("\"profile\": \"library\""));
    EXPECT_THAT(both, HasSubstr("\"rejected\": {\n        \"rule\": \"segment-uri-too-short\""));
}

TEST(CheckCommand, HasAnExitStatusOfItsProfilesAndNotOfTheRejection) {
    const std::string text =
        lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6,", "0.ts", "#EXT-X-ENDLIST"});
    const Outcome standard = velhls({"check"}, text);
    EXPECT_EQ(standard.exitStatus, 0);
    EXPECT_THAT(standard.output, HasSubstr(": rejected: "));
    EXPECT_EQ(velhls({"check", "--profile=library"}, text).exitStatus, 1);
}

TEST(CheckCommand, TakesWarningsForErrors) {
    const Outcome outcome = velhls({"check", "--profile=library", "--werror", "--severity=error"}, warned);
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.output, StartsWith("<stdin>:2:31: error: "));
}

TEST(CheckCommand, LeavesDisabledRulesOut) {
    EXPECT_EQ(velhls({"check", "--profile=library", "--disable=attribute-ignored"}, warned).exitStatus, 0);
    EXPECT_EQ(
        velhls({"check", "--profile=library", "--disable", "tag-ignored", "--disable", "attribute-ignored"},
               warned)
            .exitStatus,
        0);
    EXPECT_EQ(velhls({"check", "--profile=library", "--disable=tag-ignored,attribute-ignored", "-"}, warned)
                  .exitStatus,
              0);
    EXPECT_EQ(velhls({"check", "--profile=library", "--disable=tag-ignored"}, warned).output, warning);
}

TEST(CheckCommand, ChecksAllFiles) {
    const TemporaryFolder folder;
    const std::string first = folder.with("first.m3u8", warned);
    const std::string second = folder.with("second.m3u8", rejected);
    const Outcome outcome =
        velhls({"check", "--profile=library", first, folder.with("third.m3u8", clean), second});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.output, StartsWith(first + ":2:31: warning: "));
    EXPECT_THAT(outcome.output, HasSubstr("\n" + second + ":2:29: error: "));
}

TEST(CheckCommand, TellsOfFilesThatCannotBeReadAndChecksTheOthers) {
    const Outcome outcome = velhls({"check", "--profile=library", "no such file", "-"}, warned);
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.output, warning);
    EXPECT_THAT(outcome.errors, StartsWith("no such file: error: cannot be read: "));
}

TEST(CheckCommand, ExplainsBadUsage) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"check", "--format=xml"},
                                               {"check", "--severity=fatal"},
                                               {"check", "--color=blue"},
                                               {"check", "--disable=no-such-rule"},
                                               {"check", "--unknown"},
                                               {"explain"},
                                               {"explain", "no-such-rule"}}) {
        const Outcome outcome = velhls(arguments);
        EXPECT_EQ(outcome.exitStatus, 2) << arguments.back();
        EXPECT_NE(outcome.errors, "") << arguments.back();
        EXPECT_EQ(outcome.output, "") << arguments.back();
    }
}

TEST(CheckCommand, TellsOfWhatIsNoPlaylistInOneError) {
    const std::vector<std::pair<std::string, std::string>> texts = {
        {"", "an empty text"},
        {"<!DOCTYPE html>\n<html></html>\n", "HTML"},
        {"<?xml version=\"1.0\"?>\n<MPD/>\n", "markup"},
        {"{\"error\": 404}\n", "JSON"},
        {std::string("\x89PNG\r\n\0\0\0", 9), "binary data"},
        {"#EXTM3U\n#EXTINF:-1 tvg-id=\"a\" group-title=\"News\",Channel\nhttp://host/a\n", "an IPTV list"},
        {"#EXTM3U\n#EXTINF:-1,Channel\nhttp://host/a\n", "an IPTV list"},
        {"#EXTM3U\n", "no tag that only a master or only a media playlist has"},
        {"some words\n", "no tag"},
    };
    for (const auto& [text, seen] : texts) {
        const Outcome outcome = velhls({"check", "--profile=library", "--severity=note"}, text);
        EXPECT_EQ(outcome.exitStatus, 1) << seen;
        const std::string message = std::string(text.rfind("#EXTM3U", 0) == 0 ? "EXTM3U: " : "") +
                                    "expected an HLS playlist, seen " + seen + " [not-a-playlist]\n";
        EXPECT_EQ(outcome.output, "<stdin>:1:1: error: " + message + "<stdin>:1:1: rejected: " + message);
    }
}

TEST(CheckCommand, ReadsThePlaylistAsTheKindThatWasAskedFor) {
    EXPECT_EQ(velhls({"check", "--profile=library", "--kind=media", "--disable=target-duration-missing"},
                     "#EXTM3U\n")
                  .exitStatus,
              0);
    EXPECT_THAT(velhls({"check", "--profile=library", "--kind=master"}, "#EXTM3U\n").output,
                HasSubstr("[variants-missing]"));
}

TEST(CheckCommand, ShowsTheLineAndACaretInColoursWhenAskedTo) {
    EXPECT_EQ(velhls({"check", "--profile=library", "--color=always"}, rejected).output,
              "\x1B[1m<stdin>:2:29:\x1B[0m \x1B[1;31merror:\x1B[0m EXT-X-STREAM-INF: BANDWIDTH: expected a "
              "BANDWIDTH above 0, seen \"0\" [variant-bandwidth-zero]\n"
              "    #EXT-X-STREAM-INF:BANDWIDTH=\x1B[1;31m0\x1B[0m\n"
              "                                \x1B[1;32m^\x1B[0m\n"
              "<stdin>:2:29: rejected: EXT-X-STREAM-INF: BANDWIDTH: expected a BANDWIDTH above 0, seen \"0\" "
              "[variant-bandwidth-zero]\n");
}

TEST(CheckCommand, CutsLongLinesAroundThePlace) {
    const std::string playlist =
        lines({"#EXTM3U", "#EXT-X-STREAM-INF:CODECS=\"" + std::string(300, 'x') + "\",BANDWIDTH=0", "a"});
    const std::string output = velhls({"check", "--profile=library", "--color=always"}, playlist).output;
    EXPECT_THAT(output, HasSubstr("    ..." + std::string(48, 'x') + "\",BANDWIDTH=\x1B[1;31m0"));
}

TEST(CheckCommand, KeepsColoursAndControlCharactersFromFiles) {
    const std::string playlist = lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=\x1B[2J", "a.m3u8"});
    const Outcome outcome = velhls({"check", "--profile=library"}, playlist);
    EXPECT_THAT(outcome.output, HasSubstr("seen \"\\x1B[2J\""));
    EXPECT_EQ(outcome.output.find('\x1B'), std::string::npos);
}

TEST(CheckCommand, TellsHowManyFindingsOfARuleAreNotListed) {
    std::string playlist = clean;
    for (int count = 0; count < 130; ++count)
        playlist += "#EXT-X-UNKNOWN:1\n";
    const std::string output = velhls({"check", "--profile=library"}, playlist).output;
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 101);
    EXPECT_THAT(output, HasSubstr("<stdin>: note: 30 more of [tag-ignored] are not listed\n"));
}

TEST(CheckCommand, FindsInEachExampleWhatIsExpected) {
    std::vector<std::filesystem::path> examples;
    for (const auto& entry : std::filesystem::directory_iterator(VELHLS_EXAMPLE_FINDINGS)) {
        if (entry.path().extension() == ".m3u8") examples.push_back(entry.path());
    }
    EXPECT_GT(examples.size(), 150U);
    for (const std::filesystem::path& example : examples) {
        std::filesystem::path expected = example;
        expected.replace_extension(".expected");
        const std::string findings =
            velhls({"check", "--profile=library", "--severity=note", example.string()}).output;
        const std::string folder = example.parent_path().string() + "/";
        std::string relative;
        for (std::size_t start = 0; start < findings.size();) {
            const std::size_t end = findings.find('\n', start) + 1;
            EXPECT_EQ(findings.compare(start, folder.size(), folder), 0);
            relative += findings.substr(start + folder.size(), end - start - folder.size());
            start = end;
        }
        EXPECT_EQ(relative, contentOf(expected.string())) << example;
    }
}

TEST(ExplainCommand, ShowsThePageOfARule) {
    const Outcome outcome = velhls({"explain", "variant-bandwidth-zero"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, contentOf(VELHLS_SOURCE "/docs/rules/variant-bandwidth-zero.md"));
}

TEST(RenderCommand, SaysOncePerRuleWhatTheCleanTextNoLongerHolds) {
    const std::string playlist =
        lines({"#EXTM3U", "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"a\"",
               "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"b\"", "#EXT-X-STREAM-INF:BANDWIDTH=1", "a.m3u8"});
    const Outcome outcome = velhls({"render"}, playlist);
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.errors,
              "<stdin>:2: lost: EXT-X-SESSION-KEY is read and not written. And 1 more. "
              "[session-key-not-written]\n");
    const Outcome quiet = velhls({"render", "--quiet"}, playlist);
    EXPECT_EQ(quiet.errors, "");
    EXPECT_EQ(quiet.output, outcome.output);
}

/// The names of the data members of a header's class.
std::vector<std::string> fieldsOf(const std::string& header) {
    static const std::regex member("    [A-Za-z][A-Za-z0-9_:<>, ]* ([a-zA-Z0-9]+)( = [^;(]*(\\(\\))?)?;");
    std::vector<std::string> fields;
    std::istringstream text(contentOf(VELHLS_SOURCE "/velhls/" + header));
    for (std::string line; std::getline(text, line);) {
        std::smatch match;
        const bool isMember = std::regex_match(line, match, member) &&
                              line.find("static ") == std::string::npos &&
                              line.find("using ") == std::string::npos;
        if (isMember) fields.push_back(match[1]);
    }
    return fields;
}

TEST(InspectCommand, WritesEveryFieldOfTheModelAsJson) {
    const std::string master =
        lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\"",
               "#EXT-X-SESSION-DATA:X=1,DATA-ID=\"d\",VALUE=\"v\"", "#ZOR-STREAM-INF:NOMINAL_VIDEO_BITRATE=1",
               "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"", "#EXT-X-STREAM-INF:BANDWIDTH=1", "a.m3u8"});
    const std::string media = lines({"#EXTM3U", "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"",
                                     "#EXT-X-MAP:URI=\"m\",BYTERANGE=\"1@2\"", "#EXTINF:4,", "segment.ts"});
    const std::string masterJson = velhls({"inspect", "--json"}, master).output;
    const std::string mediaJson = velhls({"inspect", "--json"}, media).output;
    const std::vector<std::pair<std::string, const std::string*>> headers = {
        {"manifest/VELHLSParsedManifest.h", &masterJson},
        {"manifest/VELHLSMediaVariant.h", &masterJson},
        {"manifest/VELHLSMediaStreamRendition.h", &masterJson},
        {"manifest/VELHLSManifestSessionData.h", &masterJson},
        {"manifest/VELHLSZORStreamInformation.h", &masterJson},
        {"media/VELHLSProtectionData.h", &masterJson},
        {"media/VELHLSMediaStream.h", &mediaJson},
        {"media/VELHLSMediaSegment.h", &mediaJson},
        {"media/VELHLSByteRange.h", &mediaJson},
        {"media/VELHLSProtectionData.h", &mediaJson},
        {"media/VELHLSMISMap.h", &mediaJson},
    };
    for (const auto& [header, json] : headers) {
        const std::vector<std::string> fields = fieldsOf(header);
        EXPECT_GE(fields.size(), 2U) << header;
        for (const std::string& field : fields)
            EXPECT_THAT(*json, HasSubstr("\"" + field + "\": ")) << header;
    }
}

}  // namespace
