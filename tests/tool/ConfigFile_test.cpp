// Options from a file: which file, what holds, and what is told of.
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"

namespace {

using command::Outcome;
using command::TemporaryFolder;
using playlist::lines;
using testing::HasSubstr;

namespace fs = std::filesystem;

const std::string rejected = lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=fast", "a.m3u8"});

/// A folder that the command is run in.
class ConfigFile : public testing::Test {
  protected:
    ConfigFile() { static_cast<void>(folder.with("a.m3u8", rejected)); }

    [[nodiscard]] Outcome check(std::vector<std::string> options, const std::string& from = ".") const {
        options.insert(options.begin(), {VELHLS_COMMAND, "check"});
        return command::runPrepared(options, [&] {
            if (::chdir(folder.file(from).c_str()) != 0) ::_exit(125);
        });
    }

    void configure(const std::string& text) const { static_cast<void>(folder.with(".velhls.toml", text)); }

    TemporaryFolder folder;
};

TEST_F(ConfigFile, OfTheWorkingDirectoryGivesOptions) {
    configure("[check]\ndisable = [\"attribute-wrong-type\"]\n");
    EXPECT_EQ(check({"a.m3u8"}).exitStatus, 0);
    configure("[check]\nseverity-of = [\"attribute-wrong-type=warning\"]\nseverity = \"error\"\n");
    EXPECT_EQ(check({"a.m3u8"}).exitStatus, 0);
    EXPECT_EQ(check({"a.m3u8"}).output.find("attribute-wrong-type"), std::string::npos);
    configure("[check]\nseverity-of = \"attribute-wrong-type=warning\"\nfail-on = \"warning\"\n");
    EXPECT_EQ(check({"a.m3u8"}).exitStatus, 1);
    configure("[check]\nformat = \"jsonl\"\n");
    EXPECT_THAT(check({"a.m3u8"}).output, testing::StartsWith("{\"path\":\"a.m3u8\""));
    configure("[check]\nmax-bytes = \"1k\"\nkind = 'media' # a comment\n\n; another\n");
    EXPECT_THAT(check({"a.m3u8"}).output, HasSubstr("[tag-of-master-playlist]\n"));
}

TEST_F(ConfigFile, MayHaveArraysInManyLinesAndComments) {
    for (const std::string text :
         {"[check]\ndisable = [\n  \"tag-ignored\",\n  \"attribute-wrong-type\",\n]\nfail-on = \"error\"\n",
          "[check] # a comment\ndisable = [ # another\n'tag-ignored', # [\n'attribute-wrong-type' ]\n",
          "[check]\r\ndisable = [\r\n\"attribute-wrong-type\"]\r\n",
          "[check]\nprofile = []\ndisable = \"attribute-wrong-type\" # a comment"}) {
        configure(text);
        const Outcome outcome = check({"a.m3u8"});
        EXPECT_EQ(outcome.exitStatus, 0) << text << outcome.errors;
    }
}

TEST_F(ConfigFile, GivesProfiles) {
    configure("[check]\nprofile = [\"library\", \"apple\"]\nformat = \"jsonl\"\nseverity = \"note\"\n");
    const std::string both = check({"a.m3u8"}).output;
    EXPECT_THAT(both, HasSubstr("\"profile\":\"library\""));
    EXPECT_THAT(both, HasSubstr("\"profile\":\"apple\""));
    EXPECT_EQ(both.find("\"profile\":\"rfc8216\""), std::string::npos);
    const std::string standard = check({"--profile=rfc8216", "a.m3u8"}).output;
    EXPECT_THAT(standard, HasSubstr("\"profile\":\"rfc8216\""));
    EXPECT_EQ(standard.find("\"profile\":\"library\""), std::string::npos);
}

TEST_F(ConfigFile, MayHaveOptionsOfAllCommandsBeforeItsSections) {
    configure("disable = [\"attribute-wrong-type\"]\n");
    EXPECT_EQ(check({"a.m3u8"}).exitStatus, 0);
    // A section holds more.
    configure("fail-on = \"error\"\nformat=\"json\"\n[check]\nformat = \"jsonl\"\n");
    EXPECT_THAT(check({"a.m3u8"}).output, testing::StartsWith("{\"path\":\"a.m3u8\""));
}

TEST_F(ConfigFile, SetsFlags) {
    static_cast<void>(folder.with("master.m3u8", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na.m3u8\n"));
    configure("[check]\nformat = \"jsonl\"\n");
    EXPECT_EQ(check({"master.m3u8"}).output.find("\"path\":\"a.m3u8\""), std::string::npos);
    for (const std::string value : {" = true", " = \"yes\"", ""}) {
        configure("[check]\nformat = \"jsonl\"\nfollow" + value + "\n");
        EXPECT_THAT(check({"master.m3u8"}).output, HasSubstr("\"path\":\"a.m3u8\"")) << value;
    }
    configure("[check]\nformat = \"jsonl\"\nfollow = false\n");
    EXPECT_EQ(check({"master.m3u8"}).output.find("\"path\":\"a.m3u8\""), std::string::npos);
}

TEST_F(ConfigFile, GivesWayToTheCommandLine) {
    configure("[check]\ndisable = [\"attribute-wrong-type\"]\nformat = \"jsonl\"\n");
    EXPECT_EQ(check({"--disable=tag-ignored", "a.m3u8"}).exitStatus, 1);
    EXPECT_EQ(check({"--format=text", "a.m3u8"}).output.find('{'), std::string::npos);
}

TEST_F(ConfigFile, IsFoundInTheNearestFolderAbove) {
    fs::create_directories(folder.file("x/y"));
    configure("[check]\ndisable = [\"attribute-wrong-type\"]\n");
    EXPECT_EQ(check({"../../a.m3u8"}, "x/y").exitStatus, 0);
    static_cast<void>(folder.with("x/.velhls.toml", ""));
    EXPECT_EQ(check({"../../a.m3u8"}, "x/y").exitStatus, 1);
    fs::create_directories(folder.file("x/y/.velhls.toml"));
    EXPECT_EQ(check({"../../a.m3u8"}, "x/y").exitStatus, 1);
}

TEST_F(ConfigFile, BesideACheckedFileIsNotRead) {
    fs::create_directories(folder.file("work"));
    fs::create_directories(folder.file("playlists"));
    static_cast<void>(folder.with("playlists/a.m3u8", rejected));
    static_cast<void>(folder.with("playlists/.velhls.toml",
                                  "[check]\ndisable = [\"attribute-wrong-type\"]\nno-option = 1\n"));
    EXPECT_EQ(check({"../playlists/a.m3u8"}, "work").exitStatus, 1);
    EXPECT_EQ(check({"../playlists"}, "work").exitStatus, 1);
}

TEST_F(ConfigFile, MayBeNamed) {
    configure("[check]\ndisable = [\"attribute-wrong-type\"]\n");
    static_cast<void>(folder.with("other.toml", "[check]\nformat=\"jsonl\"\n"));
    const Outcome outcome = check({"--config=other.toml", "a.m3u8"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.output, testing::StartsWith("{\"path\":\"a.m3u8\""));
    EXPECT_EQ(check({"--config=/dev/null", "a.m3u8"}).exitStatus, 1);
}

TEST_F(ConfigFile, ThatCannotBeReadIsToldOf) {
    const Outcome missing = check({"--config=missing", "a.m3u8"});
    EXPECT_EQ(missing.exitStatus, 2);
    EXPECT_EQ(missing.output, "");
    EXPECT_EQ(missing.errors, "missing: error: cannot be read: No such file or directory\n");
    EXPECT_EQ(check({"--config", "", "a.m3u8"}).errors,
              ": error: cannot be read: No such file or directory\n");
    EXPECT_EQ(check({"--config=.", "a.m3u8"}).errors, ".: error: cannot be read: Is a directory\n");
    EXPECT_THAT(check({"--config=/dev/zero", "a.m3u8"}).errors,
                testing::StartsWith("/dev/zero: error: cannot be read: larger than 1048576 bytes"));
}

TEST_F(ConfigFile, IsRefusedWhole) {
    const std::vector<std::pair<std::string, std::string>> refused = {
        {"[check]\nno-option = 1\n", "there is no option \"no-option\""},
        {"no-option = 1\n", "there is no option \"no-option\""},
        {"[check]\nfiles-from = \"/etc/passwd\"\n", "there is no option \"files-from\""},
        {"[check]\nconfig = \"other\"\n", "there is no option \"config\""},
        {"[check]\nFILE = \"/etc/passwd\"\n", "there is no option \"FILE\""},
        {"[check]\nhelp = true\n", "there is no option \"help\""},
        {"[check]\nroot = \"/\"\n", "there is no option \"root\""},
        {"[check]\nnull = true\n", "there is no option \"null\""},
        {"[polish]\nseverity = \"note\"\n", "there is no section \"polish\""},
        {"[render]\nquiet = true\n", "there is no section \"render\""},
        {"[check.more]\nseverity = \"note\"\n", "there is no section \"check\""},
        {"[check]\nseverity = \"fatal\"\n", "fatal"},
        {"[check]\nseverity = [\"note\", \"error\"]\n", "severity"},
        {"[check]\ndisable = [\"no-such-rule\"]\n", "there is no rule \"no-such-rule\""},
        {"[check]\ndisable = [\n\"tag-ignored\"\nseverity = \"note\"\n", "there is no rule"},
        {"[check\n", "there is no option \"[check\""},
        {"[check]\nmax-bytes = -1\n", "expected a number of bytes"},
        {"[check]\nthis is no TOML\n", "there is no option \"this is no TOML\""},
        {"[check]\n\x1B[2J = 1\n", "there is no option \"\\x1B[2J\""},
    };
    for (const auto& [text, reason] : refused) {
        configure(text);
        const Outcome outcome = check({"a.m3u8"});
        EXPECT_EQ(outcome.exitStatus, 2) << text;
        EXPECT_EQ(outcome.output, "") << text;
        EXPECT_THAT(outcome.errors,
                    testing::StartsWith(fs::canonical(folder.path()).string() + "/.velhls.toml: error: "))
            << text;
        EXPECT_THAT(outcome.errors, HasSubstr(reason)) << text;
    }
}

TEST_F(ConfigFile, IsNotReadByOtherCommands) {
    configure("[check]\nno-option = 1\n");
    const Outcome outcome = command::runPrepared({VELHLS_COMMAND, "rules"}, [this] {
        if (::chdir(folder.path().c_str()) != 0) ::_exit(125);
    });
    EXPECT_EQ(outcome.exitStatus, 0);
}

}  // namespace
