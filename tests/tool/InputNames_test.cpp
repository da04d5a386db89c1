// Which files the command takes for what is named: folders, lists of names, and what is hostile about them.
#include <filesystem>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"
#include "tests/support/VelhlsCommand.h"

namespace {

using command::Outcome;
using command::redirect;
using command::TemporaryFolder;
using command::velhls;
using playlist::lines;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

const std::string media = lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6,", "segment0.ts"});

/// The paths of all files that were checked, or could not be, in the order of the report; with ordinary names.
std::vector<std::string> pathsIn(const std::string& report) {
    return command::quotedAfter("{\"path\":\"", report);
}

std::vector<std::string> checkedPaths(
    std::vector<std::string> arguments, const std::function<void()>& prepare = [] {}) {
    arguments.insert(arguments.begin(), {"check", "--format=jsonl"});
    return pathsIn(velhls(arguments, prepare).output);
}

/// A folder that the command is run in, so that its names are short.
class InputNames : public testing::Test {
  protected:
    /// Makes a playlist, and the folders on the way to it.
    void make(const std::string& name) const {
        fs::create_directories(fs::path(folder.file(name)).parent_path());
        static_cast<void>(folder.with(name, media));
    }

    [[nodiscard]] std::function<void()> inside(const std::string& input = "/dev/null") const {
        return [this, input] {
            if (::chdir(folder.path().c_str()) != 0) ::_exit(125);
            redirect(STDIN_FILENO, input, O_RDONLY);
        };
    }

    [[nodiscard]] std::vector<std::string> checked(const std::vector<std::string>& arguments) const {
        return checkedPaths(arguments, inside());
    }

    TemporaryFolder folder;
};

TEST_F(InputNames, OfAFolderAreThePlaylistsBelowItInTheOrderOfTheirBytes) {
    for (const char* const name :
         {"a.m3u8", "a/x.m3u8", "a/b/c.m3u", "a-b.m3u8", "Z.m3u", "b/.m3u8", "b/.hidden/d.m3u8", "x.M3U8",
          "x.ts", "m3u8", "x.m3u8.gz", "c.m3u8/d.m3u8", "\xC3\xA9.m3u8"}) {
        make(name);
    }
    EXPECT_THAT(checked({"."}),
                ElementsAre("./Z.m3u", "./a-b.m3u8", "./a.m3u8", "./a/b/c.m3u", "./a/x.m3u8",
                            "./b/.hidden/d.m3u8", "./b/.m3u8", "./c.m3u8/d.m3u8", "./\xC3\xA9.m3u8"));
    EXPECT_THAT(checked({"a/", "x.ts", "a", "Z.m3u"}),
                ElementsAre("a/b/c.m3u", "a/x.m3u8", "x.ts", "a/b/c.m3u", "a/x.m3u8", "Z.m3u"));
}

TEST_F(InputNames, OfAnEmptyFolderAreNone) {
    fs::create_directories(folder.file("empty/deep"));
    const Outcome outcome = velhls({"check", "empty"}, inside());
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, "0 files checked: nothing found\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(InputNames, LinksInFoldersAreNotFollowed) {
    make("in/a.m3u8");
    make("out/b.m3u8");
    fs::create_symlink("../out/b.m3u8", folder.file("in/b.m3u8"));
    fs::create_symlink("../out", folder.file("in/folder"));
    fs::create_symlink("..", folder.file("in/loop"));
    fs::create_symlink("itself.m3u8", folder.file("in/itself.m3u8"));
    fs::create_symlink("nowhere", folder.file("in/notes.txt"));
    EXPECT_THAT(checked({"in"}), ElementsAre("in/a.m3u8"));
    const Outcome outcome = velhls({"check", "--severity=error", "in"}, inside());
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_THAT(outcome.output, testing::MatchesRegex("1 file checked: .*, 4 links not followed\n"));
    // Links that are named are.
    EXPECT_THAT(checked({"in/folder", "in/b.m3u8"}), ElementsAre("in/folder/b.m3u8", "in/b.m3u8"));
}

TEST_F(InputNames, PipesInFoldersAreNotWaitedFor) {
    make("a.m3u8");
    ASSERT_EQ(::mkfifo(folder.file("b.m3u8").c_str(), 0600), 0);
    make("c.m3u8");
    const Outcome outcome = velhls({"check", "--format=jsonl", "."}, inside());
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.errors, "./b.m3u8: error: cannot be read: not a regular file\n");
    EXPECT_THAT(pathsIn(outcome.output), ElementsAre("./a.m3u8", "./b.m3u8", "./c.m3u8"));
}

TEST_F(InputNames, FilesInFoldersThatAreTooLargeAreToldOf) {
    make("a.m3u8");
    fs::resize_file(folder.with("b.m3u8", ""), 1000);
    const Outcome outcome = velhls({"check", "--max-bytes=999", "."}, inside());
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.errors, "./b.m3u8: error: cannot be read: larger than 999 bytes (--max-bytes)\n");
}

TEST_F(InputNames, FoldersThatAreTooDeepAreToldOfAndTheOthersChecked) {
    const Outcome made = command::runPrepared({"/bin/true"}, [this] {
        const std::string name(250, 'd');
        bool isMade = ::chdir(folder.path().c_str()) == 0;
        for (int depth = 0; depth < 20 && isMade; ++depth)
            isMade = ::mkdir(name.c_str(), 0700) == 0 && ::chdir(name.c_str()) == 0;
        if (!isMade) ::_exit(125);
    });
    ASSERT_EQ(made.exitStatus, 0);
    make("z.m3u8");
    const Outcome outcome = velhls({"check", "--format=jsonl", "."}, inside());
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_THAT(outcome.errors, testing::EndsWith("d/: error: cannot be read: File name too long\n"));
    EXPECT_THAT(pathsIn(outcome.output), testing::Contains("./z.m3u8"));
}

TEST_F(InputNames, WhatMayNotBeReadInFoldersIsToldOfAndTheOthersChecked) {
    for (const char* const name : {"in/a.m3u8", "in/closed/b.m3u8", "in/c.m3u8"})
        make(name);
    const auto becomeOrdinaryUserInside = [this] {
        inside()();
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(125);
    };
    fs::permissions(folder.path(), fs::perms(0755));
    if (velhls({"--version"}, becomeOrdinaryUserInside).exitStatus != 0)
        GTEST_SKIP() << "an ordinary user cannot come here";
    fs::permissions(folder.file("in/a.m3u8"), fs::perms(0));
    fs::permissions(folder.file("in/closed"), fs::perms(0));
    const Outcome outcome = velhls({"check", "--format=jsonl", "in"}, becomeOrdinaryUserInside);
    fs::permissions(folder.file("in/closed"), fs::perms(0700));
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.errors,
              "in/a.m3u8: error: cannot be read: Permission denied\n"
              "in/closed/: error: cannot be read: Permission denied\n");
    EXPECT_THAT(pathsIn(outcome.output), ElementsAre("in/a.m3u8", "in/c.m3u8", "in/closed/"));
}

TEST_F(InputNames, OfAListStandEachInALine) {
    for (const char* const name : {"a.m3u8", "b.m3u8", "in/c.m3u8", " d.m3u8 "})
        make(name);
    static_cast<void>(folder.with("list", "b.m3u8\n\n\nin\n d.m3u8 \nmissing\na.m3u8"));
    EXPECT_THAT(checked({"--files-from=list"}),
                ElementsAre("b.m3u8", "in/c.m3u8", " d.m3u8 ", "missing", "a.m3u8"));
    EXPECT_THAT(checked({"--files-from", "list", "in"}),
                ElementsAre("in/c.m3u8", "b.m3u8", "in/c.m3u8", " d.m3u8 ", "missing", "a.m3u8"));
    EXPECT_THAT(checkedPaths({"--files-from=-"}, inside(folder.file("list"))),
                ElementsAre("b.m3u8", "in/c.m3u8", " d.m3u8 ", "missing", "a.m3u8"));
}

TEST_F(InputNames, OfAListMayEndInNulBytes) {
    make("a.m3u8");
    make("new\nline.m3u8");
    static_cast<void>(folder.with("list", std::string("a.m3u8\0\0new\nline.m3u8\0a.m3u8", 28)));
    EXPECT_THAT(checked({"--null", "--files-from=list"}), ElementsAre("a.m3u8", "new\\nline.m3u8", "a.m3u8"));
}

TEST_F(InputNames, OfAnEmptyListAreNone) {
    for (const std::string text : {"", "\n", "\n\n\n"}) {
        static_cast<void>(folder.with("list", text));
        const Outcome outcome = velhls({"check", "--files-from=list"}, inside("/dev/full"));
        EXPECT_EQ(outcome.exitStatus, 0);
        EXPECT_EQ(outcome.output, "0 files checked: nothing found\n");
    }
}

TEST_F(InputNames, WithNulBytesInThemAreNotCutThere) {
    make("a.m3u8");
    make("in/b.m3u8");
    static_cast<void>(folder.with("list", std::string("a.m3u8\0.txt\nin\0x\n", 17)));
    const Outcome outcome = velhls({"check", "--files-from=list"}, inside());
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.errors,
              "a.m3u8\\x00.txt: error: cannot be read: its name holds a NUL byte\n"
              "in\\x00x: error: cannot be read: its name holds a NUL byte\n");
    EXPECT_EQ(outcome.output, "0 files checked: nothing found, 2 inputs not read\n");
}

TEST_F(InputNames, OfStandardInputCannotNameStandardInput) {
    make("a.m3u8");
    static_cast<void>(folder.with("list", "-\na.m3u8\n"));
    const Outcome outcome = velhls({"check", "--files-from=-"}, inside(folder.file("list")));
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.errors, "<stdin>: error: cannot be read: the list of names is read from it\n");
    EXPECT_THAT(outcome.output, HasSubstr("1 file checked: "));
    EXPECT_THAT(checkedPaths({"-", "--files-from=-"}, inside(folder.file("list"))),
                ElementsAre("-", "-", "a.m3u8"));
    EXPECT_THAT(checkedPaths({"--files-from=list"}, inside(folder.file("a.m3u8"))),
                ElementsAre("-", "a.m3u8"));
}

TEST_F(InputNames, OfAListThatCannotBeReadAreToldOfAfterTheOthers) {
    make("a.m3u8");
    for (const std::string list : {"missing", ".", ""}) {
        const Outcome outcome = velhls({"check", "--format=jsonl", "a.m3u8", "--files-from", list}, inside());
        EXPECT_EQ(outcome.exitStatus, 2);
        EXPECT_THAT(outcome.errors, testing::StartsWith(list + ": error: cannot be read: "));
        EXPECT_THAT(pathsIn(outcome.output), ElementsAre("a.m3u8", list));
    }
}

TEST_F(InputNames, OfAListWithoutEndAreRefused) {
    for (const std::vector<std::string>& asked : std::vector<std::vector<std::string>>{
             {"check", "--files-from=/dev/zero"}, {"check", "--files-from=-"}}) {
        const Outcome outcome = velhls(asked, inside("/dev/zero"));
        EXPECT_EQ(outcome.exitStatus, 2);
        EXPECT_THAT(outcome.errors,
                    HasSubstr(": error: cannot be read: a name in it has more than 65536 bytes\n"));
    }
}

TEST_F(InputNames, AreCheckedAsSoonAsTheListHasThem) {
    make("a.m3u8");
    int list[2];
    int report[2];
    ASSERT_EQ(::pipe(list), 0);
    ASSERT_EQ(::pipe(report), 0);
    const pid_t process = ::fork();
    if (process == 0) {
        inside()();
        ::dup2(list[0], STDIN_FILENO);
        ::dup2(report[1], STDOUT_FILENO);
        for (const int descriptor : {list[0], list[1], report[0], report[1]})
            ::close(descriptor);
        command::become({VELHLS_COMMAND, "check", "--format=jsonl", "--files-from=-"});
    }
    ::close(report[1]);
    char bytes[1000];
    for (int round = 0; round < 3; ++round) {
        ASSERT_EQ(::write(list[1], "a.m3u8\n", 7), 7);
        const ssize_t count = ::read(report[0], bytes, sizeof bytes);
        ASSERT_GT(count, 0);
        EXPECT_THAT(pathsIn(std::string(bytes, static_cast<std::size_t>(count))), ElementsAre("a.m3u8"));
    }
    for (const int descriptor : {list[0], list[1], report[0]})
        ::close(descriptor);
    int status = 0;
    ::waitpid(process, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST_F(InputNames, OfFoldersMayBeAnyBytes) {
    make("a\nb.m3u8");
    make("\x1B[2J/\xFF.m3u8");
    const Outcome outcome = velhls({"check", "--format=jsonl", "."}, inside());
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_THAT(outcome.output, HasSubstr("{\"path\":\"./a\\nb.m3u8\","));
    EXPECT_THAT(outcome.output, HasSubstr("{\"path\":\"./\\u001b[2J/\xEF\xBF\xBD.m3u8\","));
    static_cast<void>(folder.with("a\nb.m3u8", "#EXTM3U\n"));
    EXPECT_THAT(velhls({"check", "."}, inside()).output, HasSubstr("./a\\x0Ab.m3u8:1:1: error: "));
}

}  // namespace
