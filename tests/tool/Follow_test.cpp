// How the command follows a master playlist, and what is hostile about what that names.
#include <filesystem>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"

namespace {

using command::Outcome;
using command::redirect;
using command::TemporaryFolder;
using playlist::lines;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

std::string mediaOf(const std::string& targetDuration) {
    return lines({"#EXTM3U", "#EXT-X-VERSION:3", "#EXT-X-TARGETDURATION:" + targetDuration, "#EXTINF:5.005,",
                  "segment.ts", "#EXT-X-ENDLIST"});
}

/// A master playlist of one variant for each URI.
std::string masterOf(const std::vector<std::string>& uris) {
    std::string text = "#EXTM3U\n";
    for (const std::string& uri : uris)
        text += "#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"mp4a.40.2\"\n" + uri + "\n";
    return text;
}

/// A folder that the command is run in, so that its names are short.
class Follow : public testing::Test {
  protected:
    void make(const std::string& name, const std::string& text) const {
        fs::create_directories(fs::path(folder.file(name)).parent_path());
        static_cast<void>(folder.with(name, text));
    }

    [[nodiscard]] Outcome velhls(std::vector<std::string> arguments,
                                 const std::string& input = "/dev/null") const {
        arguments.insert(arguments.begin(), {VELHLS_COMMAND, "check", "--follow"});
        return command::runPrepared(arguments, [this, &input] {
            if (::chdir(folder.path().c_str()) != 0) ::_exit(125);
            redirect(STDIN_FILENO, input, O_RDONLY);
        });
    }

    /// What is said of a master playlist with this URI alone.
    [[nodiscard]] std::string saidOf(const std::string& uri,
                                     const std::vector<std::string>& options = {}) const {
        make("in/master.m3u8", masterOf({uri}));
        std::vector<std::string> arguments = options;
        arguments.emplace_back("in/master.m3u8");
        return velhls(arguments).output;
    }

    TemporaryFolder folder;
};

const std::string unread = "in/master.m3u8:3:1: warning: expected a URI that may be followed, seen \"";

TEST_F(Follow, ChecksThePlaylistsThatAMasterPlaylistNamesAndAllTogether) {
    make("master.m3u8", masterOf({"low.m3u8", "high/video.m3u8?token=1#start", "low.m3u8"}));
    make("low.m3u8", mediaOf("6"));
    make("high/video.m3u8", mediaOf("8"));
    const Outcome outcome = velhls({"master.m3u8"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(
        outcome.output,
        "high/video.m3u8:3:23: error: EXT-X-TARGETDURATION: expected 6, the target duration of other media "
        "playlists, seen \"8\", in 1 of 2 media playlists [target-durations-differ]\n"
        "low.m3u8:3:23: note: \"6\"\n"
        "3 files checked: 1 error\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(Follow, ChecksEachPlaylistByItselfToo) {
    make("a/master.m3u8", masterOf({"low.m3u8"}));
    make("a/low.m3u8", mediaOf("3"));
    EXPECT_EQ(velhls({"a/master.m3u8"}).output,
              "a/low.m3u8:4:9: error: EXTINF: expected no more than the target duration, rounded: 3 seconds, "
              "seen \"5.005\" "
              "[target-duration-too-small]\n2 files checked: 1 error\n");
}

TEST_F(Follow, WritesFindingsInTheFileThatTheyStandIn) {
    make("master.m3u8",
         masterOf({"low.m3u8", "https://example.com/a.m3u8", "{$v}.m3u8", "gone.m3u8", "/abs.m3u8"}));
    make("low.m3u8", mediaOf("6"));
    const std::string json = velhls({"--format=jsonl", "master.m3u8"}).output;
    EXPECT_THAT(
        json,
        StartsWith("{\"path\":\"master.m3u8\",\"kind\":\"master\",\"rejected\":null,\"followed\":{\"read\":1,"
                   "\"missing\":1,\"refused\":1,\"network\":1,\"variable\":1},\"findings\":["
                   "{\"rule\":\"uri-malformed\""));
    EXPECT_THAT(
        json, HasSubstr("\n{\"path\":\"low.m3u8\",\"kind\":\"media\",\"rejected\":null,\"findings\":[]}\n"));
}

TEST_F(Follow, NamesTheOtherPlaylistAsARelatedPlace) {
    make("master.m3u8", masterOf({"low.m3u8", "high.m3u8"}));
    make("low.m3u8", mediaOf("6"));
    make("high.m3u8", mediaOf("8"));
    EXPECT_THAT(velhls({"--format=jsonl", "master.m3u8"}).output,
                HasSubstr("\"related\":[{\"path\":\"low.m3u8\",\"line\":3,\"column\":23,\"length\":1,"
                          "\"message\":\"\\\"6\\\"\"}]"));
    EXPECT_THAT(velhls({"--format=sarif", "master.m3u8"}).output, HasSubstr("\"relatedLocations\""));
    EXPECT_THAT(velhls({"--format=github", "master.m3u8"}).output, HasSubstr("; low.m3u8:3: \"6\""));
}

TEST_F(Follow, CountsWhatItDoesNotFollow) {
    make("master.m3u8", masterOf({"https://example.com/a.m3u8", "//example.com/b.m3u8", "file:///etc/passwd",
                                  "{$host}/c.m3u8"}));
    EXPECT_EQ(velhls({"master.m3u8"}).output,
              "master.m3u8:9:1: error: expected a URI as RFC 3986 writes it, seen \"{\" [uri-malformed]\n"
              "1 file checked: 1 error, 3 URIs of the network, 1 URI with variables not followed\n");
}

TEST_F(Follow, TellsOfAPlaylistThatIsNotThere) {
    EXPECT_THAT(
        saidOf("gone.m3u8"),
        StartsWith("in/master.m3u8:3:1: warning: expected a playlist that is there, seen \"gone.m3u8\", and "
                   "nothing there [playlist-missing]\n"));
    EXPECT_THAT(saidOf("master.m3u8/low.m3u8"), HasSubstr("[playlist-missing]"));
}

TEST_F(Follow, ReadsSessionDataAndLooksForNoSegmentsAndKeys) {
    make("master.m3u8",
         "#EXTM3U\n#EXT-X-SESSION-DATA:LANGUAGE=\"en\",URI=\"a.json\",DATA-ID=\"com.example.a\"\n#EXT-X-"
         "SESSION-KEY:METHOD="
         "AES-128,"
         "URI=\"key\"\n" +
             masterOf({"low.m3u8"}).substr(8));
    make("low.m3u8", mediaOf("6"));
    make("a.json", "{}");
    EXPECT_EQ(velhls({"master.m3u8"}).output, "2 files checked: nothing found\n");
    make("a.json", "{]");
    EXPECT_THAT(velhls({"master.m3u8"}).output,
                HasSubstr("seen \"a.json\", which is no JSON [session-data-not-json]\na.json:1:2: note: what "
                          "is no JSON\n"));
}

TEST_F(Follow, LeavesOtherPlaylistsAsTheyAre) {
    make("low.m3u8", mediaOf("6"));
    EXPECT_EQ(velhls({"low.m3u8"}).output, "1 file checked: nothing found\n");
}

TEST_F(Follow, TakesAMasterPlaylistFromStandardInput) {
    make("master.m3u8", masterOf({"low.m3u8", "gone.m3u8"}));
    make("low.m3u8", mediaOf("3"));
    const std::string output = velhls({"-"}, folder.file("master.m3u8")).output;
    EXPECT_THAT(output, StartsWith("<stdin>:5:1: warning: expected a playlist that is there"));
    EXPECT_THAT(output, HasSubstr("\nlow.m3u8:4:9: error: "));
}

TEST_F(Follow, ChecksAPlaylistOnceWhereItIsAlsoNamed) {
    make("in/a-master.m3u8", masterOf({"b.m3u8"}));
    make("in/b.m3u8", mediaOf("3"));
    EXPECT_EQ(velhls({"in"}).output,
              "in/b.m3u8:4:9: error: EXTINF: expected no more than the target duration, rounded: 3 seconds, "
              "seen \"5.005\" "
              "[target-duration-too-small]\n2 files checked: 1 error\n");
    // Whatever comes first, and what no master playlist names comes last.
    make("in/z-master.m3u8", masterOf({"b.m3u8", "c.m3u8"}));
    make("in/c.m3u8", mediaOf("6"));
    make("in/alone.m3u8", mediaOf("4"));
    const std::string output = velhls({"in/b.m3u8", "in"}).output;
    EXPECT_EQ(output.find("in/b.m3u8:4:9: error"), output.rfind("in/b.m3u8:4:9: error")) << output;
    EXPECT_THAT(output, HasSubstr("[target-durations-differ]"));
    EXPECT_THAT(output, testing::EndsWith(
                            "in/alone.m3u8:4:9: error: EXTINF: expected no more than the target duration, "
                            "rounded: 4 seconds, seen \"5.005\" [target-duration-too-small]\n"
                            "5 files checked: 3 errors\n"));
}

// What is hostile.

TEST_F(Follow, DoesNotLeaveTheFolderByDots) {
    make("out.m3u8", mediaOf("1"));
    for (const char* const uri : {"../out.m3u8", "a/../../out.m3u8", "%2e%2e/out.m3u8", ".%2E/out.m3u8",
                                  "./.././out.m3u8", "../in/low.m3u8", ".."}) {
        EXPECT_EQ(saidOf(uri), unread + uri +
                                   "\": it leads out of the folder [resource-not-read]\n"
                                   "1 file checked: 1 warning\n");
    }
}

TEST_F(Follow, TakesDotsThatStayInTheFolder) {
    make("in/low.m3u8", mediaOf("6"));
    for (const char* const uri :
         {"a/../low.m3u8", "./low.m3u8", "%2E/low.m3u8", "a//b/../../low.m3u8", "l%6Fw.m3u8"})
        EXPECT_EQ(saidOf(uri), "2 files checked: nothing found\n") << uri;
}

TEST_F(Follow, TakesNoAbsolutePaths) {
    for (const char* const uri : {"/etc/passwd", "/"})
        EXPECT_THAT(saidOf(uri),
                    StartsWith(unread + uri + "\": it is an absolute path [resource-not-read]\n"));
    // An absolute path that is encoded is a name with slashes in it.
    EXPECT_THAT(
        saidOf("%2Fetc%2Fpasswd"),
        StartsWith(unread + "%2Fetc%2Fpasswd\": it holds a percent-encoded slash [resource-not-read]\n"));
    EXPECT_THAT(saidOf("a%2f..%2f..%2fout.m3u8"), HasSubstr("it holds a percent-encoded slash"));
}

TEST_F(Follow, TakesNoNamesThatHoldNulOrBrokenEscapes) {
    make("in/low.m3u8", mediaOf("1"));
    EXPECT_THAT(saidOf("low.m3u8%00.txt"), HasSubstr("it holds a percent-encoded NUL [resource-not-read]"));
    for (const char* const uri : {"low%.m3u8", "low.m3u8%", "low.m3u8%6", "%zz.m3u8"})
        EXPECT_THAT(saidOf(uri), HasSubstr("a percent escape in it is malformed [resource-not-read]")) << uri;
    make("in/master.m3u8", masterOf({std::string("low.m3u8\0.txt", 13)}));
    EXPECT_THAT(velhls({"in/master.m3u8"}).output, HasSubstr("[resource-not-read]"));
}

TEST_F(Follow, FollowsNoLinksThatLeadOut) {
    make("out/secret.m3u8", mediaOf("1"));
    make("in/low.m3u8", mediaOf("6"));
    fs::create_symlink("../out/secret.m3u8", folder.file("in/file.m3u8"));
    fs::create_symlink("../out", folder.file("in/folder"));
    fs::create_symlink("/etc/passwd", folder.file("in/absolute.m3u8"));
    for (const char* const uri : {"file.m3u8", "folder/secret.m3u8", "absolute.m3u8"}) {
        EXPECT_EQ(saidOf(uri), unread + uri +
                                   "\": it leads out of the folder [resource-not-read]\n"
                                   "1 file checked: 1 warning\n");
    }
    // One that stays in it is followed.
    fs::create_symlink("low.m3u8", folder.file("in/link.m3u8"));
    EXPECT_EQ(saidOf("link.m3u8"), "2 files checked: nothing found\n");
    // As is a name that only begins like the folder's.
    make("in-side/low.m3u8", mediaOf("1"));
    fs::create_symlink("../in-side/low.m3u8", folder.file("in/side.m3u8"));
    EXPECT_THAT(saidOf("side.m3u8"), HasSubstr("it leads out of the folder"));
}

TEST_F(Follow, ComesOutOfLoops) {
    fs::create_directories(folder.file("in"));
    fs::create_symlink("loop.m3u8", folder.file("in/loop.m3u8"));
    EXPECT_THAT(saidOf("loop.m3u8"), HasSubstr("[resource-not-read]"));
    // A master playlist that names itself, and two that name each other, are not followed on.
    EXPECT_THAT(saidOf("master.m3u8"), HasSubstr("seen \"master.m3u8\", a master playlist "
                                                 "[variant-names-master-playlist]"));
    EXPECT_THAT(saidOf("?again"), HasSubstr("[variant-names-master-playlist]"));
    make("in/other.m3u8", masterOf({"master.m3u8", "gone.m3u8"}));
    const std::string output = saidOf("other.m3u8");
    EXPECT_THAT(output, HasSubstr("[variant-names-master-playlist]"));
    EXPECT_THAT(output, Not(HasSubstr("[playlist-missing]")));
}

TEST_F(Follow, ReadsRegularFilesAlone) {
    fs::create_directories(folder.file("in/folder.m3u8"));
    ASSERT_EQ(::mkfifo(folder.file("in/pipe.m3u8").c_str(), 0600), 0);
    for (const char* const uri : {"folder.m3u8", "pipe.m3u8"})
        EXPECT_THAT(saidOf(uri),
                    StartsWith(unread + uri + "\": it is no regular file [resource-not-read]\n"));
    fs::create_symlink("/dev/zero", folder.file("in/zero.m3u8"));
    EXPECT_THAT(saidOf("zero.m3u8"), HasSubstr("it leads out of the folder"));
    EXPECT_THAT(saidOf("zero.m3u8", {"--root=/"}), HasSubstr("it is no regular file"));
}

TEST_F(Follow, ReadsBelowTheRootThatIsGiven) {
    make("audio/en.m3u8", mediaOf("6"));
    make("in/low.m3u8", mediaOf("6"));
    EXPECT_THAT(saidOf("../audio/en.m3u8"), HasSubstr("it leads out of the folder"));
    EXPECT_EQ(saidOf("../audio/en.m3u8", {"--root=."}), "2 files checked: nothing found\n");
    EXPECT_EQ(saidOf("low.m3u8", {"--root=in"}), "2 files checked: nothing found\n");
    EXPECT_THAT(saidOf("low.m3u8", {"--root=audio"}), HasSubstr("it leads out of the folder"));
    EXPECT_THAT(saidOf("../../x.m3u8", {"--root=."}), Not(HasSubstr("nothing found")));
    const Outcome none = velhls({"--root=nowhere", "in/master.m3u8"});
    EXPECT_EQ(none.exitStatus, 2);
    EXPECT_EQ(none.errors, "nowhere: error: is no folder that can be read\n");
}

TEST_F(Follow, ReadsNoMoreThanIsAllowedOfEachAndOfAll) {
    make("in/low.m3u8", mediaOf("6") + std::string(2000, '\n'));
    EXPECT_THAT(saidOf("low.m3u8", {"--max-bytes=1000"}),
                StartsWith(unread + "low.m3u8\": it cannot be read: larger than 1000 bytes (--max-bytes) "
                                    "[resource-not-read]\n"));
    std::vector<std::string> uris;
    for (int number = 0; number < 6; ++number) {
        uris.push_back(std::to_string(number) + ".m3u8");
        make("all/" + uris.back(), mediaOf("6") + std::string(900, '\n'));
    }
    make("all/master.m3u8", masterOf(uris));
    const std::string output = velhls({"--max-bytes=1000", "all/master.m3u8"}).output;
    EXPECT_THAT(output, HasSubstr("all/master.m3u8:11:1: warning: "));
    EXPECT_THAT(output, HasSubstr("all files together are larger than 4 times --max-bytes"));
    EXPECT_THAT(output, Not(HasSubstr("all/master.m3u8:9:1: warning: ")));
}

TEST_F(Follow, NeedsNoMoreThanTheFlagForItsRoot) {
    const std::vector<std::string> arguments = {VELHLS_COMMAND, "check", "--root=.", "-"};
    EXPECT_EQ(command::run(arguments).exitStatus, 2);
}

}  // namespace
