#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"
#include "tests/support/VelhlsCommand.h"

namespace {

using command::Outcome;
using command::TemporaryFolder;
using command::velhls;
using playlist::contentOf;
using playlist::lines;
using testing::HasSubstr;
using testing::StartsWith;

/// Runs the velhls command.
const std::string master = lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=2000000", "high.m3u8",
                                  "#EXT-X-STREAM-INF:BANDWIDTH=1000000", "low.m3u8"});
const std::string cleanMaster = lines(
    {"#EXTM3U", "#EXT-X-START:TIME-OFFSET=-1", "#EXT-X-STREAM-INF:BANDWIDTH=1000000,CLOSED-CAPTIONS=NONE",
     "low.m3u8", "#EXT-X-STREAM-INF:BANDWIDTH=2000000,CLOSED-CAPTIONS=NONE", "high.m3u8"});
const std::string media =
    lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6,", "segment0.ts", "#EXT-X-ENDLIST"});
const std::string cleanMedia =
    lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6.000000,,", "segment0.ts", "#EXT-X-ENDLIST"});

TEST(RenderCommand, WritesTheCleanTextOfAMasterPlaylistFromAFile) {
    const TemporaryFolder folder;
    const std::string path = folder.with("master.m3u8", master);
    const Outcome outcome = velhls({"render", path});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, cleanMaster);
    EXPECT_EQ(
        outcome.errors,
        path +
            ":1: added: A master playlist without EXT-X-START is written with TIME-OFFSET=-1. "
            "[start-added]\n" +
            path +
            ":2: added: A variant without CLOSED-CAPTIONS is written with CLOSED-CAPTIONS=NONE. And 1 more. "
            "[variant-captions-none-added]\n");
}

TEST(RenderCommand, ReadsStandardInputForADashAndWithoutAFile) {
    EXPECT_EQ(velhls({"render", "-"}, master).output, cleanMaster);
    EXPECT_EQ(velhls({"render"}, master).output, cleanMaster);
}

TEST(RenderCommand, WritesTheCleanTextOfAMediaPlaylist) {
    const Outcome outcome = velhls({"render"}, media);
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, cleanMedia);
}

TEST(RenderCommand, WritesConformantTextWhenAskedTo) {
    const Outcome ofMedia = velhls({"render", "--conformant"}, media);
    EXPECT_EQ(ofMedia.exitStatus, 0);
    EXPECT_EQ(ofMedia.output, media);
    EXPECT_EQ(velhls({"render", "--conformant"}, master).output, master);
}

TEST(RenderCommand, TellsOnlyOfWhatConformantTextDoesNotHold) {
    const std::string text = lines(
        {"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXT-X-CUE-OUT:6", "#EXTINF:6,", "# a comment", "advert.ts"});
    const std::string lost =
        "<stdin>:5: lost: \"# a comment\": A comment is not written back. [comment-not-written]\n";
    EXPECT_EQ(velhls({"render", "--conformant"}, text).errors, lost);
    EXPECT_THAT(velhls({"render"}, text).errors, HasSubstr("[cue-not-written]"));
    const std::string withSessionKey =
        lines({"#EXTM3U", "#EXT-X-START:TIME-OFFSET=0", "#EXT-X-SESSION-KEY:METHOD=AES-128,URI=\"k\"",
               "#EXT-X-STREAM-INF:BANDWIDTH=1", "a.m3u8"});
    EXPECT_EQ(velhls({"render", "--conformant"}, withSessionKey).errors, "");
    EXPECT_THAT(
        velhls({"render"}, withSessionKey).errors,
        testing::AllOf(HasSubstr("[session-key-not-written]"), HasSubstr("[start-zero-not-written]")));
}

TEST(RenderCommand, NamesTheTagAndTheAttributeThatAreLost) {
    const std::string text = lines(
        {"#EXTM3U", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",CHANNELS=\"2\",AUDIO-TRACK-TYPE=\"x\"",
         "#EXT-X-STREAM-INF:BANDWIDTH=1,CLOSED-CAPTIONS=NONE", "a.m3u8", "#ext-x-\033",
         "#EXT-X-START:TIME-OFFSET=2"});
    EXPECT_EQ(
        velhls({"render"}, text).errors,
        lines({"<stdin>:2: lost: EXT-X-MEDIA: CHANNELS: An attribute that the model has no field for is "
               "dropped. "
               "[attribute-ignored]",
               "<stdin>:2: lost: EXT-X-MEDIA: AUDIO-TRACK-TYPE is read and never written. "
               "[rendition-audio-track-type-not-written]",
               "<stdin>:5: lost: \"#ext-x-\\x1B\": A comment is not written back. [comment-not-written]"}));
}

TEST(RenderCommand, TellsOfDatesAndMapsThatMeanSomethingElse) {
    const auto media = [](const std::string& key, const std::string& date) {
        return lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXT-X-MAP:URI=\"init.mp4\"",
                      "#EXT-X-KEY:METHOD=" + key + ",URI=\"k\"",
                      "#EXT-X-PROGRAM-DATE-TIME:2026-01-01T10:00:00" + date, "#EXTINF:6,", "segment0.m4s"});
    };
    const std::string lostMap =
        "<stdin>:4: lost: EXT-X-KEY: An EXT-X-MAP before an EXT-X-KEY is written after it, which declares it "
        "encrypted otherwise. [map-before-key]\n";
    EXPECT_THAT(velhls({"render"}, media("AES-128", "+02:00")).errors,
                HasSubstr("[date-time-offset-not-applied]"));
    EXPECT_EQ(velhls({"render"}, media("AES-128", "Z")).errors, lostMap);
    EXPECT_EQ(velhls({"render", "--conformant"}, media("AES-128", "Z")).errors, "");
    EXPECT_EQ(velhls({"render", "--conformant"}, media("SAMPLE-AES", "Z")).errors, lostMap);
    EXPECT_THAT(velhls({"render", "--conformant"}, media("AES-128", "+02:00")).errors,
                HasSubstr("[date-time-offset-not-applied]"));
}

TEST(RenderCommand, TellsWhyConformantTextIsRefusedAndLeavesTheOutputFile) {
    const TemporaryFolder folder;
    const std::string output = folder.with("out.m3u8", "old");
    const std::string input =
        folder.with("in.m3u8", lines({"#EXTM3U", "#EXTINF:6,", "#EXT-X-BYTERANGE:5", "segment0.ts"}));
    const Outcome outcome = velhls({"render", "--conformant", "-o", output, input});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.errors, input +
                                  ": error: cannot be written: segment 1: the byte range has no offset, and "
                                  "does not follow one of the same URI\n");
    EXPECT_EQ(contentOf(output), "old");
}

TEST(RenderCommand, ExpandsMediaPatterns) {
    const Outcome outcome =
        velhls({"render"},
               lines({"#EXTM3U", "#EXT-X-DEFINE:NAME=\"n\",VALUE=\"1\"", "#ZOR-PATTERN_START:p", "#EXTINF:4,",
                      "segment{$n}.ts", "#ZOR-DEFINE_INCREMENT:n,1", "#ZOR-PATTERN_REPEAT:p,1"}));
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, lines({"#EXTM3U", "#EXT-X-TARGETDURATION:0", "#EXTINF:4.000000,,",
                                     "segment1.ts", "#EXT-X-PROGRAM-DATE-TIME:1970-01-01T00:00:4.000+00:00",
                                     "#EXTINF:4.000000,,", "segment2.ts"}));
}

TEST(RenderCommand, ReadsThePlaylistAsTheKindThatWasAskedFor) {
    const std::string noTags = lines({"#EXTM3U"});
    EXPECT_EQ(velhls({"render", "--kind=media"}, noTags).output,
              lines({"#EXTM3U", "#EXT-X-TARGETDURATION:0"}));
    EXPECT_EQ(velhls({"render", "--kind=master"}, noTags).exitStatus, 1);
}

struct Rejection {
    const char* description;
    std::string text;
    int line;
    const char* reason;
};

const std::vector<Rejection>& rejections() {
    static const std::vector<Rejection> all = {
        {"a bad record",
         lines({"#EXTM3U", "#EXT-X-MEDIA:TYPE=audio", "#EXT-X-STREAM-INF:BANDWIDTH=1", "a.m3u8"}), 2,
         ": error: EXT-X-MEDIA: TYPE: expected AUDIO, VIDEO, SUBTITLES or CLOSED-CAPTIONS, seen \"audio\" "
         "[rendition-type-unknown]\n"},
        {"a variant, in the line that is at fault",
         lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=0", "a.m3u8", "#c"}), 2, "[variant-bandwidth-zero]"},
        {"a bad last line with a line feed",
         lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=1", "a.m3u8", "b.m3u8"}), 4,
         "seen \"b.m3u8\" [uri-without-tag]"},
        {"a number that escapes as an exception",
         lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=x", "a.m3u8"}), 2,
         "expected a number, seen \"x\" [number-missing]"},
        {"a number out of range", lines({"#EXTM3U", "#EXT-X-VERSION:99999999999", "#EXT-X-TARGETDURATION:4"}),
         2, "seen \"99999999999\" [number-out-of-range]"},
        {"rules between records", lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a\"", "a.m3u8"}),
         2,
         ": error: EXT-X-STREAM-INF: AUDIO: expected the GROUP-ID of an EXT-X-MEDIA tag of this type, "
         "seen "
         "\"a\" [group-missing]"},
        {"a media line", lines({"#EXTM3U", "#EXT-X-TARGETDURATION:4s", "#EXTINF:4,", "segment.ts"}), 2,
         "note: read as a media playlist"},
        {"a last URI without a line feed", "#EXTM3U\n#EXTINF:4,\nsegment.ts", 3,
         "[segment-uri-without-line-feed]"},
        {"a pattern tag out of place", lines({"#EXTM3U", "#EXTINF:4,", "#ZOR-PATTERN_END:p", "segment.ts"}),
         3, "[pattern-tag-misplaced]"},
        {"a short URI", lines({"#EXTM3U", "#EXTINF:4,", "0.ts"}), 3, "[segment-uri-too-short]"},
        {"no playlist at all", lines({"<html>", "</html>"}), 1,
         "expected an HLS playlist, seen HTML [not-a-playlist]"},
        {"nothing", "", 1, "expected an HLS playlist, seen an empty text [not-a-playlist]"},
    };
    return all;
}

TEST(RenderCommand, TellsTheLineAndTheReasonOfARejection) {
    for (const Rejection& rejection : rejections()) {
        SCOPED_TRACE(rejection.description);
        const TemporaryFolder folder;
        const std::string path = folder.with("playlist.m3u8", rejection.text);
        const Outcome outcome = velhls({"render", path});
        EXPECT_EQ(outcome.exitStatus, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, StartsWith(path + ":" + std::to_string(rejection.line) + ": error: "));
        EXPECT_THAT(outcome.errors, HasSubstr(rejection.reason));
    }
}

TEST(RenderCommand, NamesStandardInputInMessages) {
    EXPECT_THAT(velhls({"render"}, "#EXTM3U\nx\n").errors, StartsWith("<stdin>:1: error: "));
}

TEST(RenderCommand, KeepsControlCharactersOfThePlaylistFromTheTerminal) {
    const Outcome outcome = velhls({"render"}, lines({"#EXT-X-ENDLIST", "\x1B[2J\a\xC2\x9Bmore"}));
    EXPECT_THAT(outcome.errors, HasSubstr("\"\\x1B[2J\\x07\\xC2\\x9Bmore\""));
    EXPECT_EQ(outcome.errors.find('\x1B'), std::string::npos);
}

TEST(RenderCommand, ReplacesTheOutputFileAndKeepsItsPermissions) {
    const TemporaryFolder folder;
    const std::string output = folder.with("out.m3u8", "old");
    std::filesystem::permissions(output, std::filesystem::perms(0640));
    EXPECT_EQ(velhls({"render", "-o", output}, master).exitStatus, 0);
    EXPECT_EQ(contentOf(output), cleanMaster);
    EXPECT_EQ(std::filesystem::status(output).permissions(), std::filesystem::perms(0640));
}

TEST(RenderCommand, LeavesTheOutputFileAndNothingElseWhenThePlaylistIsRejected) {
    const TemporaryFolder folder;
    const std::string output = folder.with("out.m3u8", "old");
    EXPECT_EQ(velhls({"render", "-o", output}, "#EXTINF:x\n").exitStatus, 1);
    EXPECT_EQ(contentOf(output), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(RenderCommand, ReplacesTheFileItReadsFrom) {
    const TemporaryFolder folder;
    const std::string path = folder.with("playlist.m3u8", master);
    EXPECT_EQ(velhls({"render", path, "--output", path}).exitStatus, 0);
    EXPECT_EQ(contentOf(path), cleanMaster);
}

TEST(RenderCommand, ReplacesWhatASymbolicLinkPointsTo) {
    const TemporaryFolder folder;
    const std::string target = folder.with("target.m3u8", "old");
    std::filesystem::create_symlink(target, folder.file("link.m3u8"));
    EXPECT_EQ(velhls({"render", "-o", folder.file("link.m3u8")}, master).exitStatus, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link.m3u8")));
    EXPECT_EQ(contentOf(target), cleanMaster);
}

TEST(RenderCommand, WritesToADevice) {
    EXPECT_EQ(velhls({"render", "-o", "/dev/null"}, master).exitStatus, 0);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(RenderCommand, ReportsFilesThatItCannotReadOrWrite) {
    const TemporaryFolder folder;
    const std::string missing = folder.file("missing.m3u8");
    EXPECT_EQ(velhls({"render", missing}).errors,
              missing + ": error: cannot be read: No such file or directory\n");
    EXPECT_EQ(velhls({"render", folder.path()}).errors,
              folder.path() + ": error: cannot be read: Is a directory\n");
    EXPECT_EQ(velhls({"render", missing}).exitStatus, 2);

    const std::string unwritable = folder.file("missing/out.m3u8");
    const Outcome outcome = velhls({"render", "-o", unwritable}, master);
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.errors, unwritable + ": error: cannot be written: No such file or directory\n");
    EXPECT_EQ(velhls({"render", "-o", folder.path()}, master).errors,
              folder.path() + ": error: cannot be written: Is a directory\n");
}

TEST(RenderCommand, ReportsAnOutputThatTakesNothing) {
    const Outcome toStandardOutput = velhls({"render"}, master, "/dev/full");
    EXPECT_EQ(toStandardOutput.exitStatus, 2);
    EXPECT_EQ(toStandardOutput.errors, "<stdout>: error: cannot be written: No space left on device\n");
    EXPECT_EQ(velhls({"render", "-o", "/dev/full"}, master).exitStatus, 2);
}

TEST(RenderCommand, WritesFileNamesWithoutTheirControlCharacters) {
    EXPECT_EQ(velhls({"render", "a\nb"}).errors,
              "a\\x0Ab: error: cannot be read: No such file or directory\n");
}

TEST(Command, ExitsWithTwoForBadUsage) {
    const std::vector<std::vector<std::string>> usages = {{},
                                                          {"polish"},
                                                          {"render", "--unknown"},
                                                          {"render", "a", "b"},
                                                          {"render", "--kind=neither"},
                                                          {"render", "-o"}};
    for (const auto& arguments : usages) {
        const Outcome outcome = velhls(arguments);
        EXPECT_EQ(outcome.exitStatus, 2);
        EXPECT_NE(outcome.errors, "");
    }
}

TEST(Command, ShowsItsHelpAndVersion) {
    EXPECT_EQ(velhls({"--help"}).exitStatus, 0);
    EXPECT_THAT(velhls({"--help"}).output, HasSubstr("inspect"));
    EXPECT_THAT(velhls({"--version"}).output, StartsWith("velhls 1."));
}

TEST(InspectCommand, ShowsTheVariantsByBandwidthWithAllThatIsKnown) {
    const Outcome outcome =
        velhls({"inspect", std::string(VELHLS_EXAMPLE_PLAYLISTS) + "/master-adaptive.m3u8"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_THAT(outcome.output, StartsWith("master playlist\n  version               6\n"));
    EXPECT_THAT(outcome.output, HasSubstr("variants              10 streams, 3 I-frame playlists\n"));
    EXPECT_THAT(
        outcome.output,
        HasSubstr("     622000   508000     416x234  avc1.42c015,mp4a.40.2         380000         128000     "
                  "    1.3  stream   AUDIO=aac-stereo, SUBTITLES=text, CLOSED-CAPTIONS=captions    "
                  "video/234p-aac/index.m3u8\n"));
    EXPECT_LT(outcome.output.find("622000"), outcome.output.find("8444000"));
    EXPECT_THAT(outcome.output, HasSubstr("\nSUBTITLES group \"text\"\n"));
    EXPECT_THAT(outcome.output, HasSubstr("  Deutsch (forced)           de        AUTOSELECT, FORCED"));
    EXPECT_THAT(outcome.output, HasSubstr("\nsession data\n  DATA-ID                        VALUE  URI\n"
                                          "  com.example.programme.series   7f3a\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nsession keys\n  SAMPLE-AES, URI skd://key.example.com/7f3a, "
                                          "KEYFORMAT com.example.streaming.key, versions 1/2\n"));
}

TEST(InspectCommand, LeavesOutWhatAMasterPlaylistDoesNotHave) {
    EXPECT_EQ(velhls({"inspect"}, master).output,
              lines({"master playlist", "  version               1", "  independent segments  no",
                     "  start offset          -1 s (also when there is no EXT-X-START)",
                     "  variants              2 streams, 0 I-frame playlists", "",
                     "variants by bandwidth (bits per second)", "  BANDWIDTH  KIND    URI",
                     "    1000000  stream  low.m3u8", "    2000000  stream  high.m3u8"}));
}

TEST(InspectCommand, ShowsTheHeaderOfAMediaPlaylist) {
    EXPECT_EQ(
        velhls({"inspect"},
               lines({"#EXTM3U", "#EXT-X-VERSION:3", "#EXT-X-TARGETDURATION:6", "#EXT-X-PLAYLIST-TYPE:VOD",
                      "#EXT-X-MEDIA-SEQUENCE:7", "#EXTINF:6.006,", "segment7.ts", "#EXT-X-DISCONTINUITY",
                      "#EXTINF:8.5,", "segment8.ts", "#EXT-X-ENDLIST"}))
            .output,
        lines({"media playlist", "  version               3", "  type                  VOD",
               "  ended                 yes", "  I-frames only         no", "  independent segments  no",
               "  start offset          none", "  media sequence        7", "  discontinuity seq.    0",
               "  segments              2", "  total duration        14.506 s",
               "  longest segment       8.5 s, longer than the target duration of 6 s",
               "  discontinuities       1", "  program date-times    none", "  media patterns        none"}));
}

TEST(InspectCommand, ShowsTheRunsOfKeysAndMapsAndTheCuesAndVariables) {
    const Outcome outcome =
        velhls({"inspect"},
               lines({"#EXTM3U", "#EXT-X-DEFINE:NAME=\"b\",VALUE=\"2\"",
                      "#EXT-X-DEFINE:NAME=\"a\",VALUE=\"1\"", "#EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:00Z",
                      "#EXT-X-MAP:URI=\"init.mp4\",BYTERANGE=\"720@0\"", "#EXTINF:4,", "segment0.ts",
                      "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"", "#EXT-X-CUE-OUT:8", "#EXTINF:4,", "segment1.ts",
                      "#EXT-X-CUE-OUT-CONT:4/8", "#EXTINF:4,", "segment2.ts", "#EXTINF:4,", "#EXT-X-CUE-IN",
                      "#EXT-X-KEY:METHOD=NONE", "segment3.ts"}));
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_THAT(
        outcome.output,
        HasSubstr("program date-times    2026-01-01T00:00:0.000+00:00 to 2026-01-01T00:00:16.000+00:00\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\n  MEDIA SEQUENCE  KEY\n  1 to 2          AES-128, URI k\n"
                                          "  3               NONE\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\n  MEDIA SEQUENCE  INITIALIZATION SECTION\n"
                                          "  0 to 3          init.mp4, bytes 720@0\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\n  MEDIA SEQUENCE  CUE\n  1               out 8\n"
                                          "  2               out, continued 4/8\n  3               in\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\n  VARIABLE  VALUE AT THE END\n  a         1\n  b         2\n"));
}

TEST(InspectCommand, TellsThatThereWerePatterns) {
    const Outcome outcome =
        velhls({"inspect", std::string(VELHLS_EXAMPLE_PLAYLISTS) + "/media-pattern.m3u8"});
    EXPECT_THAT(outcome.output, HasSubstr("segments              600\n"));
    EXPECT_THAT(outcome.output, HasSubstr("media patterns        yes"));
}

TEST(Command, HelpsWhenAskedByACommand) {
    EXPECT_EQ(velhls({"help"}).output, velhls({"--help"}).output);
    EXPECT_EQ(velhls({"help", "render"}).output, velhls({"render", "--help"}).output);
    EXPECT_EQ(velhls({"help"}).exitStatus, 0);
    const Outcome unknown = velhls({"help", "rendre"});
    EXPECT_EQ(unknown.exitStatus, 2);
    EXPECT_THAT(unknown.errors, HasSubstr("there is no command \"rendre\""));
}

}  // namespace
