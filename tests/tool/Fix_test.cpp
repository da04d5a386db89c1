#include <filesystem>
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
using testing::HasSubstr;

Outcome fix(std::vector<std::string> arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), {VELHLS_COMMAND, "fix", "--config=/dev/null"});
    return command::run(arguments, input);
}

const std::string faulty = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\n0.ts\n";
const std::string good = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\n./0.ts\n";
const std::string zero = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:0,\nfirst.ts\n";

TEST(FixCommand, ShowsWhatWouldChangeAndChangesNothing) {
    const TemporaryFolder folder;
    const std::string path = folder.with("a.m3u8", faulty);
    const Outcome outcome = fix({"--profile=library", path});
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.errors;
    EXPECT_EQ(outcome.output,
              "--- " + path + "\n+++ " + path +
                  "\n@@ -1,4 +1,4 @@\n #EXTM3U\n #EXT-X-TARGETDURATION:6\n #EXTINF:6,\n-0.ts\n+./0.ts\n");
    EXPECT_EQ(outcome.errors, "1 file: mended 1 safe\n");
    EXPECT_EQ(contentOf(path), faulty);
}

TEST(FixCommand, ReplacesFilesInPlaceOnlyWhereSomethingChanges) {
    const TemporaryFolder folder;
    const std::string path = folder.with("a.m3u8", faulty);
    EXPECT_EQ(fix({"--profile=library", "--apply", "--quiet", path}).exitStatus, 0);
    EXPECT_EQ(contentOf(path), good);
    const auto written = std::filesystem::last_write_time(path);
    const Outcome again = fix({"--profile=library", "--apply", path});
    EXPECT_EQ(again.output, "");
    EXPECT_EQ(again.errors, "1 file: mended nothing\n");
    EXPECT_EQ(std::filesystem::last_write_time(path), written);
}

TEST(FixCommand, WritesTheWholeTextOfOneMendedOrNot) {
    EXPECT_EQ(fix({"--profile=library", "-o", "-"}, faulty).output, good);
    EXPECT_EQ(fix({"--profile=library", "-o", "-"}, good).output, good);
    const Outcome left = fix({"--profile=library", "-o", "-"}, zero);
    EXPECT_EQ(left.exitStatus, 1);
    EXPECT_EQ(left.output, zero);
    const TemporaryFolder folder;
    const std::string path = folder.with("a.m3u8", faulty);
    EXPECT_EQ(fix({"--profile=library", "-o", path}, faulty).output, "");
    EXPECT_EQ(contentOf(path), good);
}

TEST(FixCommand, NamesWhatWasNotTaken) {
    const Outcome outcome = fix({"--profile=library"}, zero);
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "<stdin>:3:9: error: EXTINF: expected a duration other than 0, seen \"0\" "
              "[segment-duration-zero]\n"
              "<stdin>:3:9: fix: guess: writes the duration 1\n"
              "1 file: mended nothing; not taken 1 guess\n");
    const Outcome guessed = fix({"--profile=library", "--guess", "-o", "-"}, zero);
    EXPECT_EQ(guessed.exitStatus, 0);
    EXPECT_EQ(guessed.output, "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:1,\nfirst.ts\n");
}

TEST(FixCommand, MendsByRfc8216UnlessToldOtherwise) {
    const Outcome outcome = fix({"-o", "-"}, "#EXT-X-TARGETDURATION:6\n#EXTINF:6\nfirst.ts\n");
    EXPECT_EQ(outcome.output, "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nfirst.ts\n");
}

TEST(FixCommand, GoesOnAfterAFileThatCannotBeRead) {
    const TemporaryFolder folder;
    const std::string path = folder.with("a.m3u8", faulty);
    const Outcome outcome = fix({"--profile=library", "--apply", folder.file("none.m3u8"), path});
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("none.m3u8: error: cannot be read"));
    EXPECT_EQ(contentOf(path), good);
}

TEST(FixCommand, RefusesWhatTheOptionsCannotMean) {
    const TemporaryFolder folder;
    const std::string path = folder.with("a.m3u8", faulty);
    EXPECT_EQ(fix({"--apply"}, faulty).exitStatus, 2);
    EXPECT_EQ(fix({"-o", "-", path, path}).exitStatus, 2);
    EXPECT_EQ(fix({"--apply", "-o", "-", path}).exitStatus, 2);
    EXPECT_EQ(contentOf(path), faulty);
}

TEST(FixCommand, IsShownByCheckWithTheFindings) {
    const Outcome outcome = command::run({VELHLS_COMMAND, "check", "--config=/dev/null", "--profile=library",
                                          "--fixes", "--color=always", "--severity=error"},
                                         faulty);
    EXPECT_THAT(outcome.output, HasSubstr("./0.ts"));
    EXPECT_THAT(outcome.output, HasSubstr("fix: safe: writes \"./0.ts\", the same resource\n"));
    const Outcome json = command::run({VELHLS_COMMAND, "check", "--config=/dev/null", "--profile=library",
                                       "--fixes", "--format=json", "--severity=error"},
                                      faulty);
    EXPECT_THAT(json.output, HasSubstr("\"replacement\": \"./\""));
    const Outcome sarif = command::run({VELHLS_COMMAND, "check", "--config=/dev/null", "--profile=library",
                                        "--fixes", "--format=sarif", "--severity=error"},
                                       faulty);
    EXPECT_THAT(sarif.output, HasSubstr("\"artifactChanges\""));
    EXPECT_THAT(sarif.output, HasSubstr("\"byteOffset\": 43"));
}

}  // namespace
