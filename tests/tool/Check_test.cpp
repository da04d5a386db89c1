#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"
#include "tests/support/VelhlsCommand.h"

namespace {

using command::checkByLibrary;
using command::Outcome;
using command::TemporaryFolder;
using command::velhls;
using playlist::contentOf;
using playlist::lines;
using testing::HasSubstr;
using testing::StartsWith;

const std::string clean = lines({"#EXTM3U", "#EXT-X-START:TIME-OFFSET=2.5",
                                 "#EXT-X-STREAM-INF:BANDWIDTH=1,CLOSED-CAPTIONS=NONE", "a.m3u8"});
const std::string warned =
    lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=1,FRAME-RATE=25", "a.m3u8", "# a comment"});
const std::string rejected = lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=0", "a.m3u8"});
const std::string warning =
    "<stdin>:2:31: warning: EXT-X-STREAM-INF: expected an attribute that the library keeps, seen "
    "\"FRAME-RATE\" [attribute-ignored]\n";

TEST(CheckCommand, FindsNothingInACleanPlaylist) {
    const Outcome outcome = checkByLibrary({"--severity=note"}, clean);
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, "1 file checked: nothing found\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(CheckCommand, TellsWarningsAndErrorsAndCountsTheNotes) {
    const Outcome outcome = checkByLibrary({"-"}, warned);
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, warning + "1 file checked: 1 warning, 2 notes not shown\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(CheckCommand, ShowsTheAskedSeverityAndAbove) {
    EXPECT_EQ(checkByLibrary({"--severity=error"}, warned).output,
              "1 file checked: 1 warning not shown, 2 notes not shown\n");
    EXPECT_THAT(checkByLibrary({"--severity=note"}, warned).output, HasSubstr("note: expected a line"));
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
    EXPECT_EQ(velhls({"check", "--profile=library,rfc8216", "--format=json", "-"}, text).output, both);
}

TEST(CheckCommand, HasAnExitStatusOfItsProfilesAndNotOfTheRejection) {
    const std::string text =
        lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6,", "0.ts", "#EXT-X-ENDLIST"});
    const Outcome standard = velhls({"check"}, text);
    EXPECT_EQ(standard.exitStatus, 0);
    EXPECT_THAT(standard.output, StartsWith("<stdin>:4:1: rejected: "));
    EXPECT_THAT(standard.output, testing::EndsWith("\n1 file checked: nothing found, 1 rejected\n"));
    EXPECT_EQ(checkByLibrary({}, text).exitStatus, 1);
}

TEST(CheckCommand, FailsByTheAskedSeverityWhateverIsShown) {
    struct Case {
        std::string failOn;
        std::string text;
        int exitStatus;
    };
    const std::vector<Case> cases = {
        {"error", rejected, 1}, {"error", warned, 0}, {"error", clean, 0}, {"warning", warned, 1},
        {"warning", clean, 0},  {"note", warned, 1},  {"note", clean, 0},
    };
    for (const Case& row : cases) {
        for (const std::string shown : {"error", "warning", "note"}) {
            const Outcome outcome =
                checkByLibrary({"--fail-on=" + row.failOn, "--severity", shown}, row.text);
            EXPECT_EQ(outcome.exitStatus, row.exitStatus) << row.failOn << " " << shown << "\n" << row.text;
        }
    }
    EXPECT_EQ(checkByLibrary({}, rejected).exitStatus, 1);
}

TEST(CheckCommand, AnInputThatCannotBeReadWeighsMoreThanWhatIsFound) {
    EXPECT_EQ(checkByLibrary({"-", "no such file"}, rejected).exitStatus, 2);
    EXPECT_EQ(checkByLibrary({"no such file", "-"}, rejected).exitStatus, 2);
}

TEST(CheckCommand, LeavesDisabledRulesOut) {
    const auto checked = [&](std::vector<std::string> more) {
        more.insert(more.begin(), "--fail-on=warning");
        return checkByLibrary(more, warned);
    };
    EXPECT_EQ(checked({"--disable=attribute-ignored"}).exitStatus, 0);
    EXPECT_EQ(checked({"--disable=attribute-ignored"}).output, "1 file checked: 2 notes not shown\n");
    EXPECT_EQ(checked({"--disable", "tag-ignored", "--disable", "attribute-ignored"}).exitStatus, 0);
    EXPECT_EQ(checked({"--disable=tag-ignored,attribute-ignored", "-"}).exitStatus, 0);
    EXPECT_EQ(checked({"--disable=tag-ignored"}).exitStatus, 1);
    EXPECT_THAT(checked({"--disable=tag-ignored"}).output, StartsWith(warning));
}

TEST(CheckCommand, GivesFindingsTheSeverityThatIsAskedFor) {
    const Outcome raised = checkByLibrary({"--severity-of=attribute-ignored=error"}, warned);
    EXPECT_EQ(raised.exitStatus, 1);
    EXPECT_THAT(raised.output, StartsWith("<stdin>:2:31: error: "));
    EXPECT_THAT(raised.output, testing::EndsWith("\n1 file checked: 1 error, 2 notes not shown\n"));
    const Outcome lowered = checkByLibrary({"--severity-of", "variant-bandwidth-zero=note"}, rejected);
    EXPECT_EQ(lowered.exitStatus, 0);
    EXPECT_THAT(lowered.output, StartsWith("<stdin>:2:29: rejected: "));
    EXPECT_THAT(lowered.output, testing::EndsWith("\n1 file checked: 1 note not shown, 1 rejected\n"));
    // Of two for one rule the last one holds, and what is disabled is gone.
    const Outcome both = checkByLibrary(
        {"--severity-of=attribute-ignored=note,tag-ignored=error", "--severity-of=attribute-ignored=error"},
        warned);
    EXPECT_EQ(both.exitStatus, 1);
    EXPECT_EQ(checkByLibrary({"--severity-of=attribute-ignored=error", "--disable=attribute-ignored"}, warned)
                  .exitStatus,
              0);
}

TEST(CheckCommand, ChecksAllFiles) {
    const TemporaryFolder folder;
    const std::string first = folder.with("first.m3u8", warned);
    const std::string second = folder.with("second.m3u8", rejected);
    const Outcome outcome = checkByLibrary({first, folder.with("third.m3u8", clean), second});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.output, StartsWith(first + ":2:31: warning: "));
    EXPECT_THAT(outcome.output, HasSubstr("\n" + second + ":2:29: error: "));
}

TEST(CheckCommand, TellsOfFilesThatCannotBeReadAndChecksTheOthers) {
    const Outcome outcome = checkByLibrary({"no such file", "-"}, warned);
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.output, warning + "1 file checked: 1 warning, 2 notes not shown, 1 input not read\n");
    EXPECT_EQ(outcome.errors, "no such file: error: cannot be read: No such file or directory\n");
}

TEST(CheckCommand, ExplainsBadUsage) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"check", "--format=xml"},
                                               {"check", "--severity=fatal"},
                                               {"check", "--color=blue"},
                                               {"check", "--disable=no-such-rule"},
                                               {"check", "--fail-on=fatal"},
                                               {"check", "--severity-of=tag-ignored"},
                                               {"check", "--severity-of=tag-ignored=fatal"},
                                               {"check", "--severity-of=no-such-rule=note"},
                                               {"check", "--null"},
                                               {"rules", "--format=sarif"},
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
        const Outcome outcome = checkByLibrary({"--severity=note"}, text);
        EXPECT_EQ(outcome.exitStatus, 1) << seen;
        const std::string message = std::string(text.rfind("#EXTM3U", 0) == 0 ? "EXTM3U: " : "") +
                                    "expected an HLS playlist, seen " + seen + " [not-a-playlist]\n";
        EXPECT_EQ(outcome.output, "<stdin>:1:1: error: " + message + "<stdin>:1:1: rejected: " + message +
                                      "1 file checked: 1 error, 1 rejected\n");
    }
}

TEST(CheckCommand, ReadsThePlaylistAsTheKindThatWasAskedFor) {
    EXPECT_EQ(checkByLibrary({"--kind=media", "--disable=target-duration-missing"}, "#EXTM3U\n").exitStatus,
              0);
    EXPECT_THAT(checkByLibrary({"--kind=master"}, "#EXTM3U\n").output, HasSubstr("[variants-missing]"));
}

TEST(CheckCommand, ShowsTheLineAndACaretInColoursWhenAskedTo) {
    EXPECT_EQ(checkByLibrary({"--color=always"}, rejected).output,
              "\x1B[1m<stdin>:2:29:\x1B[0m \x1B[1;31merror:\x1B[0m EXT-X-STREAM-INF: BANDWIDTH: expected a "
              "BANDWIDTH above 0, seen \"0\" [variant-bandwidth-zero]\n"
              "    #EXT-X-STREAM-INF:BANDWIDTH=\x1B[1;31m0\x1B[0m\n"
              "                                \x1B[1;32m^\x1B[0m\n"
              "<stdin>:2:29: rejected: EXT-X-STREAM-INF: BANDWIDTH: expected a BANDWIDTH above 0, seen \"0\" "
              "[variant-bandwidth-zero]\n"
              "1 file checked: 1 error, 1 rejected\n");
}

TEST(CheckCommand, CutsLongLinesAroundThePlace) {
    const std::string playlist =
        lines({"#EXTM3U", "#EXT-X-STREAM-INF:CODECS=\"" + std::string(300, 'x') + "\",BANDWIDTH=0", "a"});
    const std::string output = checkByLibrary({"--color=always"}, playlist).output;
    EXPECT_THAT(output, HasSubstr("    ..." + std::string(48, 'x') + "\",BANDWIDTH=\x1B[1;31m0"));
}

TEST(CheckCommand, KeepsColoursAndControlCharactersFromFiles) {
    const std::string playlist = lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=\x1B[2J", "a.m3u8"});
    const Outcome outcome = checkByLibrary({}, playlist);
    EXPECT_THAT(outcome.output, HasSubstr("seen \"\\x1B[2J\""));
    EXPECT_EQ(outcome.output.find('\x1B'), std::string::npos);
}

TEST(CheckCommand, TellsHowManyFindingsOfARuleAreNotListed) {
    std::string playlist = clean;
    for (int count = 0; count < 130; ++count)
        playlist += "#EXT-X-UNKNOWN:1\n";
    const std::string output = checkByLibrary({}, playlist).output;
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 102);
    EXPECT_THAT(output, testing::EndsWith("<stdin>: note: 30 more of [tag-ignored] are not listed\n"
                                          "1 file checked: 130 warnings\n"));
}

TEST(CheckCommand, FindsInEachExampleWhatIsExpected) {
    std::vector<std::filesystem::path> examples;
    for (const auto& entry : std::filesystem::directory_iterator(VELHLS_EXAMPLE_FINDINGS)) {
        if (entry.path().extension() == ".m3u8") examples.push_back(entry.path());
    }
    EXPECT_GT(examples.size(), 300U);
    for (const std::filesystem::path& example : examples) {
        std::filesystem::path expected = example;
        expected.replace_extension(".expected");
        const std::string page = contentOf(VELHLS_SOURCE "/docs/rules/" + example.stem().string() + ".md");
        const std::string before = "- Profile: ";
        const std::size_t profile = page.find(before) + before.size();
        const std::string option = "--profile=" + page.substr(profile, page.find('\n', profile) - profile);
        const std::string findings = velhls({"check", option, "--severity=note", example.string()}).output;
        const std::string folder = example.parent_path().string() + "/";
        std::string relative;
        // The last line counts them.
        const std::size_t summary = findings.rfind('\n', findings.size() - 2) + 1;
        for (std::size_t start = 0; start < summary;) {
            const std::size_t end = findings.find('\n', start) + 1;
            EXPECT_EQ(findings.compare(start, folder.size(), folder), 0);
            relative += findings.substr(start + folder.size(), end - start - folder.size());
            start = end;
        }
        EXPECT_EQ(relative, contentOf(expected.string())) << example;
    }
}

TEST(RenderCommand, SaysOncePerRuleWhatTheCleanTextNoLongerHoldsAndWhatItAdds) {
    const std::string playlist =
        lines({"#EXTM3U", "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"a\"",
               "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"b\"", "#EXT-X-STREAM-INF:BANDWIDTH=1", "a.m3u8"});
    const Outcome outcome = velhls({"render"}, playlist);
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.errors,
              "<stdin>:1: added: A master playlist without EXT-X-START is written with TIME-OFFSET=-1. "
              "[start-added]\n"
              "<stdin>:2: lost: EXT-X-SESSION-KEY is read and not written. And 1 more. "
              "[session-key-not-written]\n"
              "<stdin>:4: added: A variant without CLOSED-CAPTIONS is written with CLOSED-CAPTIONS=NONE. "
              "[variant-captions-none-added]\n");
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
