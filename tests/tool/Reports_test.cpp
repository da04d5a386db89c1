// The formats of the command's findings, byte by byte.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/VelhlsCommand.h"

namespace {

using command::checkByLibrary;
using command::Outcome;
using command::TemporaryFolder;
using command::velhls;
using playlist::contentOf;
using playlist::lines;
using testing::HasSubstr;

const std::string rejected =
    lines({"#EXTM3U", "#EXT-X-STREAM-INF:BANDWIDTH=0", "a.m3u8", "#EXT-X-START:TIME-OFFSET=2"});
const std::string clean = lines({"#EXTM3U", "#EXT-X-START:TIME-OFFSET=2.5",
                                 "#EXT-X-STREAM-INF:BANDWIDTH=1,CLOSED-CAPTIONS=NONE", "a.m3u8"});

/// "::error", "::warning" or "::notice" at the start of every line, and nowhere else what begins a command.
void expectAnnotationsAlone(const std::string& output) {
    std::istringstream text(output);
    for (std::string line; std::getline(text, line);) {
        EXPECT_TRUE(line.rfind("::error ", 0) == 0 || line.rfind("::warning ", 0) == 0 ||
                    line.rfind("::notice ", 0) == 0)
            << line;
        for (const char character : line)
            EXPECT_TRUE(static_cast<unsigned char>(character) >= 0x20) << line;
    }
}

TEST(JsonReport, WritesEachFileAsItIsChecked) {
    const TemporaryFolder folder;
    const std::string path = folder.with("a.m3u8", rejected);
    const Outcome outcome = checkByLibrary({"--format=json", path, folder.file("b"), "-"}, clean);
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_THAT(outcome.output, testing::StartsWith("{\n  \"version\": "));
    EXPECT_THAT(outcome.output, HasSubstr(",\n"
                                          "  \"files\": [\n"
                                          "    {\n"
                                          "      \"path\": \"" +
                                          path + "\",\n"));
    EXPECT_THAT(outcome.output, HasSubstr("      \"findings\": [\n"
                                          "        {\n"
                                          "          \"rule\": \"variant-bandwidth-zero\",\n"));
    EXPECT_THAT(outcome.output, HasSubstr("        }\n"
                                          "      ]\n"
                                          "    },\n"
                                          "    {\n"
                                          "      \"path\": \"" +
                                          folder.file("b") +
                                          "\",\n"
                                          "      \"failure\": \"" +
                                          folder.file("b") +
                                          ": error: cannot be read: No such file or directory\"\n"
                                          "    },\n"
                                          "    {\n"
                                          "      \"path\": \"-\",\n"
                                          "      \"kind\": \"master\",\n"));
    EXPECT_THAT(outcome.output, testing::EndsWith("      \"findings\": []\n"
                                                  "    }\n"
                                                  "  ]\n"
                                                  "}\n"));
}

TEST(JsonReport, OfNoFileIsWholeToo) {
    EXPECT_THAT(checkByLibrary({"--format=json", "--files-from=-"}).output,
                testing::MatchesRegex("\\{\n  \"version\": [0-9]+,\n  \"files\": \\[\\]\n\\}\n"));
    EXPECT_EQ(checkByLibrary({"--format=jsonl", "--files-from=-"}).output, "");
    EXPECT_EQ(checkByLibrary({"--format=github", "--files-from=-"}).output, "");
    EXPECT_THAT(checkByLibrary({"--format=sarif", "--files-from=-"}).output, HasSubstr("\"results\": [],\n"));
}

TEST(JsonReport, HoldsNoMoreThanOneFile) {
    if (isSanitized) GTEST_SKIP() << "counts the memory of a program";
    const TemporaryFolder folder;
    std::string playlist = clean;
    for (int count = 0; count < 100; ++count)
        playlist += "#EXT-X-UNKNOWN:\n";
    const std::string path = folder.with("a.m3u8", playlist);
    // The output goes elsewhere: a program counts as large as the one that started it.
    const auto peakFor = [&](const std::string& format, int files) {
        std::string list;
        for (int count = 0; count < files; ++count)
            list += path + "\n";
        const std::string check = VELHLS_COMMAND " check --profile=library --severity=note --files-from=" +
                                  folder.with("list", list) + " --format=" + format;
        const Outcome outcome = command::run({"/bin/sh", "-c", check + " | wc -c"});
        EXPECT_GT(std::stoi(outcome.output), files * 10000);
        return outcome.peakMemory;
    };
    for (const std::string format : {"json", "jsonl", "sarif", "github", "text"})
        EXPECT_LT(peakFor(format, 200), peakFor(format, 2) + (std::size_t{2} << 20)) << format;
}

TEST(JsonLinesReport, HasAFileInEachLine) {
    const TemporaryFolder folder;
    const std::string path = folder.with("a.m3u8", rejected);
    const std::string output = checkByLibrary({"--format=jsonl", path, folder.file("b"), "-"}, clean).output;
    EXPECT_THAT(output, testing::StartsWith("{\"path\":\"" + path +
                                            "\",\"kind\":\"master\",\"rejected\":{\"rule\":"));
    EXPECT_THAT(output,
                HasSubstr("]}\n{\"path\":\"" + folder.file("b") + "\",\"failure\":\"" + folder.file("b") +
                          ": error: cannot be read: No such file or directory\"}\n{\"path\":\"-\","));
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 3);
}

TEST(GithubReport, MakesAnnotations) {
    const TemporaryFolder folder;
    const std::string path = folder.with("a.m3u8", rejected);
    const Outcome outcome = checkByLibrary({"--format=github", path, "-", folder.file("b")}, rejected);
    const auto notesOf = [](const std::string& file) {
        const std::string place = file + "line=2,col=29,endColumn=30,title=";
        const std::string message =
            "variant-bandwidth-zero::EXT-X-STREAM-INF: BANDWIDTH: expected a BANDWIDTH above 0, seen \"0\"\n";
        return "::error " + place + message + "::notice " + place + "rejected%3A " + message;
    };
    EXPECT_EQ(outcome.output, notesOf("file=" + path + ",") + notesOf("") + "::error file=" +
                                  folder.file("b") + ",title=not read::" + folder.file("b") +
                                  ": error: cannot be read: No such file or directory\n");
    // What stands on standard error, too, a workflow would look through.
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.exitStatus, 2);
}

TEST(GithubReport, TakesTimeInProportionToALongLine) {
    // A hundred findings of each rule, all in one line of four megabytes.
    std::string text = "#EXTM3U\n#EXT-X-MEDIA:";
    for (int count = 0; count < 400; ++count)
        text += "lower=\xFF\xFF" + std::string(10000, 'x') + ",";
    text += "\n#EXT-X-STREAM-INF:BANDWIDTH=1\na.m3u8\n";
    for (const std::string format : {"github", "sarif"}) {
        const auto start = std::chrono::steady_clock::now();
        const Outcome outcome = velhls({"check", "--severity=note", "--format", format}, text);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << format;
        EXPECT_GT(outcome.output.size(), 10000U);
        EXPECT_LT(outcome.output.size(), 2000000U);
    }
}

TEST(GithubReport, CountsCharacters) {
    const std::string text =
        lines({"#EXTM3U", "#EXT-X-STREAM-INF:NAME=\"\xC3\xA9\xE2\x82\xAC\",BANDWIDTH=0", "a.m3u8"});
    EXPECT_THAT(checkByLibrary({"--format=github"}, text).output, HasSubstr("line=2,col=39,endColumn=40,"));
}

TEST(GithubReport, NamesNotesNotices) {
    const std::string output =
        checkByLibrary({"--format=github", "--severity=note", "--severity-of=variant-bandwidth-zero=note"},
                       rejected)
            .output;
    EXPECT_THAT(output, HasSubstr("::notice line=2,col=29,endColumn=30,title=variant-bandwidth-zero::"));
}

struct HostileName {
    std::string name;
    std::string property;
    std::string message;
};

TEST(GithubReport, LetsNoNameWriteACommand) {
    const std::vector<HostileName> names = {
        {"a,line=9.m3u8", "a%2Cline=9.m3u8", "a,line=9.m3u8"},
        {"a::error::b.m3u8", "a%3A%3Aerror%3A%3Ab.m3u8", "a::error::b.m3u8"},
        {"a\n::error::b.m3u8", "a%0A%3A%3Aerror%3A%3Ab.m3u8", "a\\x0A::error::b.m3u8"},
        {"a\r\n::stop-commands::x", "a%0D%0A%3A%3Astop-commands%3A%3Ax", "a\\x0D\\x0A::stop-commands::x"},
        {"100%.m3u8", "100%25.m3u8", "100%25.m3u8"},
        {"%0A%3A.m3u8", "%250A%253A.m3u8", "%250A%253A.m3u8"},
        {"\x1B[2J\xFF.m3u8", "\\x1B[2J\\xFF.m3u8", "\\x1B[2J\\xFF.m3u8"},
        {"##[error]x", "##[error]x", "##[error]x"},
    };
    const TemporaryFolder folder;
    for (const HostileName& name : names) {
        const Outcome missing = checkByLibrary({"--format=github", folder.file(name.name)});
        EXPECT_EQ(missing.output, "::error file=" + folder.file(name.property) +
                                      ",title=not read::" + folder.file(name.message) +
                                      ": error: cannot be read: No such file or directory\n");
        EXPECT_EQ(missing.errors, "");
        const Outcome found = checkByLibrary({"--format=github", folder.with(name.name, rejected)});
        EXPECT_THAT(found.output,
                    testing::StartsWith("::error file=" + folder.file(name.property) + ",line=2,col=29,"));
        expectAnnotationsAlone(found.output);
    }
}

TEST(GithubReport, LetsNoPlaylistWriteACommand) {
    const std::vector<std::string> values = {
        "0\r::error::x",          "::error::x", "\n::error::x", "%0A::error::x", "\x1B[2J", "%", "##[error]x",
        "\xE2\x80\xA8::error::x", "a,b:c"};
    for (const std::string& value : values) {
        const std::string text = "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=" + value + "\n" + value + "\n";
        const Outcome outcome = checkByLibrary({"--format=github", "--severity=note", "--kind=master"}, text);
        EXPECT_NE(outcome.output, "");
        expectAnnotationsAlone(outcome.output);
    }
    EXPECT_THAT(checkByLibrary({"--format=github", "--kind=master"}, "#EXTM3U\n50%\r::error::x\n").output,
                HasSubstr("seen \"50%25\\x0D::error::x\"\n"));
}

TEST(GithubReport, IsNothingButAnnotationsForAllExamples) {
    const Outcome outcome = checkByLibrary({"--format=github", "--severity=note", VELHLS_EXAMPLE_FINDINGS});
    EXPECT_GT(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 150);
    expectAnnotationsAlone(outcome.output);
}

}  // namespace
