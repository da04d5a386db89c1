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
using testing::HasSubstr;
using testing::Not;

Outcome compare(std::vector<std::string> arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), {VELHLS_COMMAND, "compare"});
    return command::run(arguments, input);
}

std::string window(int first, int count, const std::string& duration = "6") {
    std::string text =
        "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXT-X-MEDIA-SEQUENCE:" + std::to_string(first) + "\n";
    for (int number = first; number < first + count; ++number)
        text += "#EXTINF:" + duration + ",\n" + std::to_string(number) + ".ts\n";
    return text;
}

const std::string master = "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n";

TEST(CompareCommand, SaysNothingWhereNothingChanged) {
    const TemporaryFolder folder;
    const std::string old = folder.with("old.m3u8", window(7, 4));
    const Outcome outcome = compare({old, folder.with("new.m3u8", "# now\n" + window(7, 4))});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "");
}

TEST(CompareCommand, ListsWhatChanged) {
    const TemporaryFolder folder;
    const std::string old = folder.with("old.m3u8", window(7, 4));
    const Outcome outcome = compare({old, folder.with("new.m3u8", window(8, 4))});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output,
              "EXT-X-MEDIA-SEQUENCE: 7 \xE2\x86\x92 8\n- segment 7: 6 7.ts\n+ segment 11: 6 11.ts\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(CompareCommand, TellsWhatIsForbiddenAtBothPlaces) {
    const TemporaryFolder folder;
    const std::string old = folder.with("old.m3u8", window(7, 4));
    const std::string now = folder.with("new.m3u8", window(7, 4, "5.5") + "#EXTINF:6,\n11.ts\n");
    const Outcome outcome = compare({"--quiet", old, now});
    EXPECT_EQ(outcome.exitStatus, 3);
    EXPECT_THAT(outcome.output,
                HasSubstr(now +
                          ":4:9: error: EXTINF: expected the duration that segment 7 had, 6, seen \"5.5\" "
                          "[segment-duration-changed]\n" +
                          old + ":4:9: note: duration \"6\" before\n"));
    EXPECT_THAT(outcome.output, Not(HasSubstr("\xE2\x86\x92")));
}

TEST(CompareCommand, FindsEqualLiveTextsOnlyWhenTheTimeIsUp) {
    const TemporaryFolder folder;
    const std::string old = folder.with("old.m3u8", window(7, 4));
    EXPECT_EQ(compare({old, old}).exitStatus, 0);
    EXPECT_EQ(compare({"--elapsed", "8.9", old, old}).exitStatus, 0);
    const Outcome late = compare({"--elapsed", "9", old, old});
    EXPECT_EQ(late.exitStatus, 3);
    EXPECT_THAT(late.output, HasSubstr("0 new segments in 9 seconds [new-version-late]\n"));
    const Outcome json = compare({"--elapsed=9", "--format=json", old, old});
    EXPECT_EQ(json.exitStatus, 3);
    EXPECT_THAT(json.output, HasSubstr("\"changes\": [],\n"));
}

TEST(CompareCommand, TakesANoteForNoAlarm) {
    const TemporaryFolder folder;
    const std::string old = folder.with("old.m3u8", window(7, 4));
    const Outcome early = compare({"--elapsed", "1", old, folder.with("new.m3u8", window(8, 4))});
    EXPECT_EQ(early.exitStatus, 1);
    EXPECT_THAT(early.output, HasSubstr(": note: EXT-X-TARGETDURATION: expected a new version no earlier"));
}

TEST(CompareCommand, RefusesVersionsOfDifferentKinds) {
    const TemporaryFolder folder;
    const std::string media = folder.with("media.m3u8", window(7, 4));
    const std::string other = folder.with("master.m3u8", master);
    const Outcome outcome = compare({media, other});
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, other + ": error: cannot be compared: it is a master playlist, and " + media +
                                  " is a media playlist\n");
    EXPECT_EQ(compare({media, folder.with("empty.m3u8", "")}).exitStatus, 2);
    EXPECT_EQ(compare({media, folder.file("missing.m3u8")}).exitStatus, 2);
}

TEST(CompareCommand, WantsTwoVersions) {
    const TemporaryFolder folder;
    const std::string file = folder.with("media.m3u8", window(7, 4));
    EXPECT_EQ(compare({file}).errors,
              "velhls: error: compare: expected OLD and NEW, seen 1 files (--series takes more)\n");
    EXPECT_EQ(compare({file, file, file}).exitStatus, 2);
    EXPECT_EQ(compare({"-", "-"}).exitStatus, 2);
    EXPECT_EQ(compare({}).exitStatus, 2);
    EXPECT_EQ(compare({"--elapsed", "-1", file, file}).exitStatus, 2);
    EXPECT_EQ(compare({"--elapsed", "soon", file, file}).exitStatus, 2);
    EXPECT_EQ(compare({"--series", file}).exitStatus, 2);
    EXPECT_EQ(compare({"--max-bytes", "10", file, file}).exitStatus, 2);
}

TEST(CompareCommand, ReadsOneVersionFromStandardInput) {
    const TemporaryFolder folder;
    const std::string old = folder.with("old.m3u8", window(7, 4));
    EXPECT_EQ(compare({old, "-"}, window(7, 4)).exitStatus, 0);
    EXPECT_EQ(compare({"-", old}, window(9, 4)).exitStatus, 3);
}

TEST(CompareCommand, ShowsControlCharactersOfAPlaylistAsNumbers) {
    const TemporaryFolder folder;
    const std::string old = folder.with("old.m3u8", window(7, 4));
    const Outcome outcome = compare({old, "-"}, window(7, 4) + "#EXTINF:6,\n\x1B[31m.ts\n");
    EXPECT_THAT(outcome.output, HasSubstr("+ segment 11: 6 \\x1B[31m.ts\n"));
}

TEST(CompareCommand, ComparesASeriesStepByStep) {
    const TemporaryFolder folder;
    const std::string first = folder.with("1.m3u8", window(7, 4));
    const std::string second = folder.with("2.m3u8", window(8, 4));
    const std::string third = folder.with("3.m3u8", window(7, 4));
    const Outcome outcome = compare({"--series", first, second, second, third});
    EXPECT_EQ(outcome.exitStatus, 3);
    EXPECT_THAT(outcome.output, HasSubstr(first + " \xE2\x86\x92 " + second + "\n"));
    EXPECT_THAT(outcome.output, Not(HasSubstr(second + " \xE2\x86\x92 " + second + "\n")));
    EXPECT_THAT(
        outcome.output,
        HasSubstr("4 versions: 1 changed, 1 unchanged, 1 with forbidden changes; 1 error, 0 warnings, "
                  "0 notes\n  media-sequence-decreased: 1\n"));
    EXPECT_EQ(compare({"--series", first, second}).exitStatus, 1);
    EXPECT_EQ(compare({"--series", first, first}).exitStatus, 0);
}

TEST(CompareCommand, ComparesTheVersionsOfAFolderInTheOrderOfTheirNames) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.file("more.m3u8"));
    static_cast<void>(folder.with("02.m3u8", window(8, 4)));
    static_cast<void>(folder.with("01.m3u", window(7, 4)));
    static_cast<void>(folder.with("03.m3u8", window(9, 4)));
    static_cast<void>(folder.with("00.txt", master));
    const Outcome outcome = compare({"--series", "--format=json", folder.path()});
    EXPECT_EQ(outcome.exitStatus, 1) << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("\"versions\": 3,"));
    EXPECT_LT(outcome.output.find("01.m3u\""), outcome.output.find("02.m3u8\""));
    EXPECT_LT(outcome.output.find("02.m3u8\""), outcome.output.find("03.m3u8\""));
}

TEST(CompareCommand, GoesOnAfterAVersionThatCannotBeCompared) {
    const TemporaryFolder folder;
    const std::string first = folder.with("1.m3u8", window(7, 4));
    const std::string last = folder.with("4.m3u8", window(8, 4));
    const Outcome missing = compare({"--series", "--format=json", first, folder.file("missing.m3u8"), last});
    EXPECT_EQ(missing.exitStatus, 2);
    EXPECT_THAT(missing.errors, HasSubstr("missing.m3u8: error: cannot be read"));
    EXPECT_THAT(missing.output, HasSubstr("\"failure\": "));
    EXPECT_THAT(missing.output, HasSubstr("\"path\": \"segment 11\""));
    const Outcome other = compare({"--series", first, folder.with("2.m3u8", master), last});
    EXPECT_EQ(other.exitStatus, 2);
    EXPECT_THAT(other.output,
                HasSubstr("3 versions: 0 changed, 0 unchanged, 0 with forbidden changes, 2 not compared"));
}

/// The shell block of the guide that holds the text.
std::string guideBlock(const std::string& text) {
    const std::string page = playlist::contentOf(VELHLS_SOURCE "/docs/guide/monitoring.md");
    const std::string fence = "```sh\n";
    for (std::size_t start = page.find(fence); start != std::string::npos;
         start = page.find(fence, start + 1)) {
        const std::size_t begin = start + fence.size();
        const std::string block = page.substr(begin, page.find("```", begin) - begin);
        if (block.find(text) != std::string::npos) return block;
    }
    return "";
}

std::string path() {
    return std::filesystem::path(VELHLS_COMMAND).parent_path().string() + ":$PATH";
}

TEST(CompareCommand, ShowsGitWhatChanged) {
    if (command::run({"/bin/sh", "-c", "git --version"}).exitStatus != 0)
        GTEST_SKIP() << "git is not on PATH";
    const TemporaryFolder folder;
    static_cast<void>(folder.with("old", window(7, 4)));
    static_cast<void>(folder.with("new", window(8, 4, "5")));
    static_cast<void>(folder.with("other", master));
    const std::string recipe = guideBlock("git config");
    ASSERT_NE(recipe, "");
    const std::string script = folder.with(
        "script", "set -e\ncd " + folder.path() + "\nPATH=" + path() +
                      "\nexport GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_SYSTEM=/dev/null\ngit init -q .\n" +
                      recipe +
                      "cp old live.m3u8\ncp old same.m3u8\ncp old kind.m3u8\ngit add .\n"
                      "git -c user.name=n -c user.email=e commit -q -m one\n"
                      "cp new live.m3u8\ncp other kind.m3u8\n"
                      "git --no-pager diff\necho status $?\n");
    const Outcome outcome = command::run({"/bin/sh", script});
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("EXT-X-MEDIA-SEQUENCE: 7 \xE2\x86\x92 8\n"));
    EXPECT_THAT(outcome.output, HasSubstr("segment 8: duration 6 \xE2\x86\x92 5\n"));
    EXPECT_THAT(outcome.output, HasSubstr("[segment-duration-changed]"));
    EXPECT_THAT(outcome.output, HasSubstr("\n+#EXT-X-STREAM-INF:BANDWIDTH=1\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nstatus 0\n"));
}

TEST(CompareCommand, WatchesAPlaylistInTheLoopOfTheGuide) {
    const TemporaryFolder folder;
    const std::string monitor = folder.with("monitor", guideBlock("# monitor URL SECONDS"));
    static_cast<void>(folder.with("1", window(7, 4)));
    static_cast<void>(folder.with("2", window(7, 4)));
    static_cast<void>(folder.with("3", window(8, 4)));
    static_cast<void>(folder.with("4", window(7, 4)));
    // Each call gives the next version, until there is none; a call to date adds five seconds.
    const std::string count = "n=$(($(cat " + folder.file("count") +
                              " 2>/dev/null || echo 0) + 1)); echo $n > " + folder.file("count") + "\n";
    static_cast<void>(folder.with(
        "curl", "#!/bin/sh\n" + count + "while [ $# -gt 2 ]; do [ \"$1\" = -o ] && out=$2; shift; done\n" +
                    "cp " + folder.path() + "/$n \"$out\"\n"));
    static_cast<void>(folder.with("date", "#!/bin/sh\necho $(($(cat " + folder.file("count") + ") * 5))\n"));
    static_cast<void>(folder.with("sleep", "#!/bin/sh\n[ $(cat " + folder.file("count") + ") -lt 4 ]\n"));
    for (const char* const name : {"curl", "date", "sleep"})
        std::filesystem::permissions(folder.file(name), std::filesystem::perms::owner_all);
    const Outcome outcome = command::run(
        {"/bin/sh", "-c",
         "TMPDIR=" + folder.path() + " PATH=" + folder.path() + ":" + path() + " sh " + monitor + " url 5"});
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, HasSubstr("new.m3u8:3:23: error: EXT-X-MEDIA-SEQUENCE"));
    EXPECT_THAT(outcome.output, Not(HasSubstr("warning")));
}

}  // namespace
