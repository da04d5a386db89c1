// What the command does when files, pipes, disks and signals are against it.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <grp.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PlaylistText.h"
#include "tests/support/RunCommand.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/VelhlsCommand.h"

namespace {

using command::Outcome;
using command::redirect;
using command::TemporaryFolder;
using command::velhls;
using playlist::contentOf;
using playlist::lines;
using testing::HasSubstr;
using testing::StartsWith;

const std::string media = lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6,", "segment0.ts"});
const std::string cleanMedia =
    lines({"#EXTM3U", "#EXT-X-TARGETDURATION:6", "#EXTINF:6.000000,,", "segment0.ts"});

/// A playlist whose clean text has more than a hundred thousand bytes.
std::string longMedia() {
    std::string text = media;
    for (int segment = 1; segment < 2000; ++segment)
        text += "#EXTINF:6,\nsegment" + std::to_string(segment) + ".ts\n";
    return text;
}

/// Runs the velhls command; `prepare` is called in its process before it begins.
void readFrom(const std::string& path) {
    redirect(STDIN_FILENO, path, O_RDONLY);
}

/// Root may do everything, so the command gives that up. To be called in the child.
void becomeOrdinaryUser() {
    constexpr unsigned nobody = 65534;
    if (::geteuid() != 0) return;
    if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0) ::_exit(125);
}

/// Whether an ordinary user gets as far as to run the command, and to the folder: they may stand in one of
/// root's.
bool ordinaryUserCanRunTheCommandIn(const std::string& folder) {
    const auto enter = [&folder] {
        becomeOrdinaryUser();
        if (::access(folder.c_str(), X_OK) != 0) ::_exit(125);
    };
    return velhls({"--version"}, enter).exitStatus == 0;
}

void allow(const std::string& path, unsigned permissions) {
    std::filesystem::permissions(path, std::filesystem::perms(permissions));
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    return names;
}

// --- input

TEST(HostileInput, ZerosWithoutEndAreRefusedAtABoundedPrice) {
    for (const std::string subcommand : {"render", "inspect", "check"}) {
        const std::string reason = ": error: cannot be read: larger than 67108864 bytes (--max-bytes)\n";
        const Outcome piped = velhls({subcommand}, [] { readFrom("/dev/zero"); });
        EXPECT_EQ(piped.errors, "<stdin>" + reason);
        EXPECT_EQ(piped.exitStatus, 2);
        EXPECT_TRUE(isSanitized || piped.peakMemory < std::size_t{224} << 20) << piped.peakMemory;
        EXPECT_EQ(velhls({subcommand, "/dev/zero"}).errors, "/dev/zero" + reason);
    }
}

TEST(HostileInput, FilesThatAreTooLargeAreRefusedUnread) {
    const TemporaryFolder folder;
    const std::string path = folder.with("zeros", "");
    std::filesystem::resize_file(path, std::uintmax_t{4} << 30);
    const Outcome outcome = velhls({"render", path});
    EXPECT_EQ(outcome.errors, path + ": error: cannot be read: larger than 67108864 bytes (--max-bytes)\n");
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_TRUE(isSanitized || outcome.peakMemory < std::size_t{32} << 20) << outcome.peakMemory;
}

TEST(HostileInput, TheMostBytesMayBeChosen) {
    const TemporaryFolder folder;
    const std::string path = folder.with("media.m3u8", media);
    const auto limited = [](std::size_t bytes) { return "--max-bytes=" + std::to_string(bytes); };
    for (const std::string& input : {path, std::string("-")}) {
        const auto read = [&path] { readFrom(path); };
        EXPECT_EQ(velhls({"render", "--quiet", input, limited(media.size())}, read).output, cleanMedia);
        const Outcome refused = velhls({"render", input, limited(media.size() - 1)}, read);
        EXPECT_EQ(refused.exitStatus, 2);
        EXPECT_THAT(refused.errors, HasSubstr("larger than " + std::to_string(media.size() - 1) + " bytes"));
    }
    for (const char* const size : {"-1", "ten", "", "1.5k", "10kk", "99999999999999999g"}) {
        const Outcome outcome = velhls({"render", path, std::string("--max-bytes=") + size});
        EXPECT_EQ(outcome.exitStatus, 2) << size;
        EXPECT_LT(outcome.errors.size(), 300U) << outcome.errors;
    }
}

TEST(HostileInput, TheMostBytesMayBeChosenInKilobytes) {
    const TemporaryFolder folder;
    const std::string fits = folder.with("fits", media + std::string(10240 - media.size(), '\n'));
    const std::string tooLarge = folder.with("large", media + std::string(10241 - media.size(), '\n'));
    EXPECT_EQ(velhls({"render", "--quiet", "--max-bytes=10k", fits}).output, cleanMedia);
    EXPECT_EQ(velhls({"render", "--max-bytes=10k", tooLarge}).errors,
              tooLarge + ": error: cannot be read: larger than 10240 bytes (--max-bytes)\n");
    EXPECT_EQ(velhls({"render", "--quiet", "--max-bytes", "1M", tooLarge}).exitStatus, 0);
}

TEST(HostileInput, AnEndlessLineIsToldOfInAShortMessage) {
    const TemporaryFolder folder;
    const std::string endless(std::size_t{8} << 20, 'x');
    const Outcome bare = velhls({"check", folder.with("bare", endless)});
    EXPECT_EQ(bare.exitStatus, 1);
    EXPECT_LT(bare.output.size(), 1000U);
    const Outcome uri = velhls({"render", folder.with("uri", "#EXTM3U\n#EXTINF:6,\n" + endless)});
    EXPECT_EQ(uri.exitStatus, 1);
    EXPECT_THAT(uri.errors, StartsWith(folder.file("uri") + ":3: error: "));
    EXPECT_LT(uri.errors.size(), 1000U);
}

TEST(HostileInput, APipeWithANameIsRead) {
    const TemporaryFolder folder;
    const std::string pipe = folder.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const pid_t writer = ::fork();
    if (writer == 0) {
        const int descriptor = ::open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
        ::_exit(::write(descriptor, media.data(), media.size()) < 0 ? 1 : 0);
    }
    EXPECT_EQ(velhls({"render", "--quiet", pipe}).output, cleanMedia);
    ::waitpid(writer, nullptr, 0);
}

TEST(HostileInput, FilesThatCannotBeReadAreToldOfAndTheOthersChecked) {
    const TemporaryFolder folder;
    const std::string missing = folder.file("missing");
    const Outcome outcome = velhls({"check", missing, folder.with("empty", "")});
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.errors, missing + ": error: cannot be read: No such file or directory\n");
    EXPECT_THAT(outcome.output, StartsWith(folder.file("empty") + ":1:1: error: "));
}

TEST(HostileInput, FilesOfOthersAreNotRead) {
    const TemporaryFolder folder;
    allow(folder.path(), 0755);
    if (!ordinaryUserCanRunTheCommandIn(folder.path())) GTEST_SKIP() << "an ordinary user cannot come here";
    const std::string path = folder.with("secret.m3u8", media);
    allow(path, 0000);
    const Outcome outcome = velhls({"render", path}, becomeOrdinaryUser);
    EXPECT_EQ(outcome.errors, path + ": error: cannot be read: Permission denied\n");
    EXPECT_EQ(outcome.exitStatus, 2);
}

TEST(HostileInput, MemoryThatRunsOutIsToldOf) {
    if (isSanitized) GTEST_SKIP() << "sanitizers need more address space than that";
    const TemporaryFolder folder;
    const std::string path = folder.with("long", std::string(std::size_t{50} << 20, 'x'));
    const Outcome outcome = velhls({"render", "--kind=media", path}, [] {
        const struct rlimit memory = {std::size_t{80} << 20, std::size_t{80} << 20};
        if (::setrlimit(RLIMIT_AS, &memory) != 0) ::_exit(125);
    });
    EXPECT_EQ(outcome.errors, "velhls: error: out of memory\n");
    EXPECT_EQ(outcome.exitStatus, 2);
}

// --- names

struct Name {
    const char* description;
    std::string name;
    std::string shown;
};

const std::vector<Name>& hostileNames() {
    static const std::vector<Name> all = {
        {"line feed", "a\nb", "a\\x0Ab"},
        {"terminal control", "a\x1B[2Jb", "a\\x1B[2Jb"},
        {"control character of ISO 8859",
         "a\xC2\x9B"
         "b",
         "a\\xC2\\x9Bb"},
        {"bytes that are not UTF-8", "a\x9B\xFF\xC0\xAF\xED\xA0\x80\xE2\x82",
         "a\\x9B\\xFF\\xC0\\xAF\\xED\\xA0\\x80\\xE2\\x82"},
        {"right to left",
         "a\xE2\x80\xAE"
         "8u3m",
         "a\\xE2\\x80\\xAE8u3m"},
        {"line separator",
         "a\xE2\x80\xA8"
         "b",
         "a\\xE2\\x80\\xA8b"},
        {"letters of UTF-8", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC"},
    };
    return all;
}

TEST(HostileNames, MessagesStayOneLineThatDoesNotSteerTheTerminal) {
    const TemporaryFolder folder;
    for (const Name& name : hostileNames()) {
        SCOPED_TRACE(name.description);
        EXPECT_EQ(velhls({"render", folder.file(name.name)}).errors,
                  folder.file(name.shown) + ": error: cannot be read: No such file or directory\n");
        EXPECT_EQ(velhls({"check", folder.file(name.name)}).errors,
                  folder.file(name.shown) + ": error: cannot be read: No such file or directory\n");
        const std::string playlist = folder.with(name.name, media);
        EXPECT_EQ(velhls({"render", playlist, "-o", folder.file(name.name) + "/out"}).errors,
                  folder.file(name.shown) + "/out: error: cannot be written: Not a directory\n");
        EXPECT_THAT(velhls({"render", "--kind=media", folder.with(name.name, "x\n")}).errors,
                    StartsWith(folder.file(name.shown) + ":1: error: "));
        EXPECT_EQ(velhls({"render", "a", name.name}).errors,
                  "velhls: error: The following argument was not expected: " + name.shown +
                      "\nRun velhls with --help for more information.\n");
    }
}

TEST(HostileNames, AreReadAndWrittenLikeOthers) {
    const TemporaryFolder folder;
    for (const Name& name : hostileNames()) {
        SCOPED_TRACE(name.description);
        const std::string path = folder.with(name.name, media);
        EXPECT_EQ(velhls({"render", path, "-o", path}).exitStatus, 0);
        EXPECT_EQ(contentOf(path), cleanMedia);
    }
}

TEST(HostileNames, MayBeAsLongAsTheFileSystemTakes) {
    const TemporaryFolder folder;
    const std::string path = folder.with(std::string(255, 'n'), media);
    EXPECT_EQ(velhls({"render", path, "-o", path}).exitStatus, 0);
    EXPECT_EQ(contentOf(path), cleanMedia);
    const std::string tooLong = folder.file(std::string(256, 'n'));
    EXPECT_EQ(velhls({"render", path, "-o", tooLong}).errors,
              tooLong + ": error: cannot be written: File name too long\n");
    EXPECT_EQ(namesIn(folder.path()).size(), 1U);
}

// --- output

/// A folder with a playlist to read, and one that is to be replaced.
class HostileOutput : public testing::Test {
  protected:
    [[nodiscard]] Outcome render(
        const std::string& to, const std::function<void()>& prepare = [] {}) const {
        return velhls({"render", "--quiet", input, "-o", to}, prepare);
    }

    /// The old content is there, and nothing beside it.
    void expectNothingHappened() const {
        EXPECT_EQ(contentOf(output), "old");
        EXPECT_EQ(namesIn(outputs.path()), std::vector<std::string>{"out.m3u8"});
    }

    TemporaryFolder inputs;
    TemporaryFolder outputs;
    /// Compared as a whole: a difference would be very long.
    [[nodiscard]] bool holdsTheNewText() const { return contentOf(output) == newText; }

    std::string input = inputs.with("media.m3u8", longMedia());
    std::string newText = velhls({"render", "--quiet", input}).output;
    std::string output = outputs.with("out.m3u8", "old");
};

TEST_F(HostileOutput, APipeThatIsClosedEarlyEndsTheCommandWithoutAWord) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const auto writeToClosedPipe = [&ends] {
        std::signal(SIGPIPE, SIG_DFL);
        ::close(ends[0]);
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[1]);
    };
    ::close(ends[0]);
    const std::vector<std::vector<std::string>> commandLines = {{"render", input},
                                                                {"inspect", input},
                                                                {"inspect", "--json", input},
                                                                {"--help"},
                                                                {"explain", "uri-without-tag"}};
    for (const auto& commandLine : commandLines) {
        const Outcome outcome = velhls(commandLine, writeToClosedPipe);
        EXPECT_EQ(outcome.signal, SIGPIPE);
        EXPECT_EQ(outcome.errors, "");
    }
    // Where the signal is ignored it is an output like any other that takes nothing.
    const Outcome ignoring = velhls({"render", input}, [&] {
        writeToClosedPipe();
        std::signal(SIGPIPE, SIG_IGN);
    });
    EXPECT_EQ(ignoring.exitStatus, 2);
    EXPECT_EQ(ignoring.errors, "<stdout>: error: cannot be written: Broken pipe\n");
    ::close(ends[1]);
}

TEST_F(HostileOutput, AFileBeyondTheLimitLeavesTheOldOne) {
    const auto limit = [] {
        const struct rlimit size = {8192, 8192};
        if (::setrlimit(RLIMIT_FSIZE, &size) != 0) ::_exit(125);
    };
    const Outcome outcome = render(output, limit);
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.errors, output + ": error: cannot be written: File too large\n");
    expectNothingHappened();
    EXPECT_EQ(velhls({"render", input}, limit).errors,
              "<stdout>: error: cannot be written: File too large\n");
}

TEST_F(HostileOutput, AFullDiskLeavesTheOldFile) {
    // A file system of this process alone, which goes when it ends.
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", outputs.path().c_str(), "tmpfs", 0, "size=32k") != 0) {
        GTEST_SKIP() << "no file system may be mounted";
    }
    output = outputs.with("out.m3u8", "old");
    const Outcome outcome = render(output);
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.errors, output + ": error: cannot be written: No space left on device\n");
    expectNothingHappened();
    ::umount(outputs.path().c_str());
}

TEST_F(HostileOutput, HelpThatCannotBeWrittenIsNoSuccess) {
    for (const std::string option : {"--help", "--version"}) {
        const Outcome outcome = velhls({option}, [] { redirect(STDOUT_FILENO, "/dev/full", O_WRONLY); });
        EXPECT_EQ(outcome.exitStatus, 2);
        EXPECT_EQ(outcome.errors, "<stdout>: error: cannot be written: No space left on device\n");
    }
}

TEST_F(HostileOutput, MissingStandardFilesAreNotMistakenForTheOutput) {
    const auto without = [](const std::vector<int>& descriptors) {
        return [descriptors] {
            for (const int descriptor : descriptors)
                ::close(descriptor);
        };
    };
    for (const std::vector<int>& closed : std::vector<std::vector<int>>{{0}, {1}, {2}, {0, 1, 2}}) {
        EXPECT_EQ(render(output, without(closed)).exitStatus, 0);
        EXPECT_TRUE(holdsTheNewText());
    }
    const std::string rejected = inputs.with("rejected.m3u8", "#EXTINF:x\n");
    EXPECT_EQ(velhls({"render", rejected, "-o", output}, without({0, 1, 2})).exitStatus, 1);
    EXPECT_TRUE(holdsTheNewText());
    EXPECT_EQ(velhls({"render"}, without({0})).errors,
              "<stdin>: error: cannot be read: Bad file descriptor\n");
    EXPECT_EQ(velhls({"render", input}, without({1})).errors,
              "<stdout>: error: cannot be written: Bad file descriptor\n");
}

TEST_F(HostileOutput, FoldersWithoutPermissionAndFilesThatAreReadOnlyAreLeftAlone) {
    for (const TemporaryFolder* folder : {&inputs, &outputs})
        allow(folder->path(), 0777);
    if (!ordinaryUserCanRunTheCommandIn(outputs.path())) GTEST_SKIP() << "an ordinary user cannot come here";
    allow(input, 0444);
    allow(output, 0444);
    const std::string denied = ": error: cannot be written: Permission denied\n";
    EXPECT_EQ(render(output, becomeOrdinaryUser).errors, output + denied);
    expectNothingHappened();
    allow(output, 0666);
    allow(outputs.path(), 0555);
    const Outcome outcome = render(output, becomeOrdinaryUser);
    allow(outputs.path(), 0755);
    EXPECT_EQ(outcome.errors, output + denied);
    EXPECT_EQ(outcome.exitStatus, 2);
    expectNothingHappened();
}

TEST_F(HostileOutput, TheOwnerOfTheFileStaysWhenRootReplacesIt) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root may give files away";
    ASSERT_EQ(::chown(output.c_str(), 65534, 65534), 0);
    EXPECT_EQ(render(output).exitStatus, 0);
    struct stat status = {};
    ASSERT_EQ(::stat(output.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 65534U);
    EXPECT_EQ(status.st_gid, 65534U);
}

TEST_F(HostileOutput, LinksStayAndWhatTheyLeadToIsReplacedOrMade) {
    const std::string link = inputs.file("link");
    std::filesystem::create_symlink(output, link);
    EXPECT_EQ(render(link).exitStatus, 0);
    EXPECT_TRUE(holdsTheNewText());
    std::filesystem::remove(output);
    EXPECT_EQ(render(link).exitStatus, 0);
    EXPECT_TRUE(holdsTheNewText());
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(namesIn(outputs.path()).size(), 1U);
}

TEST_F(HostileOutput, LinksThatLeadNowhereStay) {
    const std::string loop = outputs.file("loop");
    std::filesystem::create_symlink("loop", loop);
    EXPECT_EQ(render(loop).errors, loop + ": error: cannot be written: Too many levels of symbolic links\n");
    EXPECT_EQ(velhls({"render", loop}).errors,
              loop + ": error: cannot be read: Too many levels of symbolic links\n");
    EXPECT_TRUE(std::filesystem::is_symlink(loop));
    const std::string dangling = outputs.file("dangling");
    std::filesystem::create_symlink("missing/out.m3u8", dangling);
    EXPECT_EQ(render(dangling).errors, dangling + ": error: cannot be written: No such file or directory\n");
    EXPECT_TRUE(std::filesystem::is_symlink(dangling));
}

TEST_F(HostileOutput, LinksToFoldersAndDevicesAreTheseThings) {
    const std::string folder = outputs.file("folder");
    std::filesystem::create_symlink(inputs.path(), folder);
    EXPECT_EQ(render(folder).errors, folder + ": error: cannot be written: Is a directory\n");
    const std::string device = outputs.file("device");
    std::filesystem::create_symlink("/dev/full", device);
    EXPECT_EQ(render(device).errors, device + ": error: cannot be written: No space left on device\n");
    EXPECT_TRUE(std::filesystem::is_symlink(device));
}

TEST_F(HostileOutput, APipeIsWrittenToByItsName) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const std::string small = inputs.with("small.m3u8", media);
    const Outcome outcome = velhls({"render", "--quiet", small, "-o", "/dev/stdout"},
                                   [&ends] { ::dup2(ends[1], STDOUT_FILENO); });
    ::close(ends[1]);
    std::string piped(cleanMedia.size() + 1, '\0');
    const ssize_t count = ::read(ends[0], piped.data(), piped.size());
    ::close(ends[0]);
    EXPECT_EQ(outcome.errors, "");
    ASSERT_EQ(count, static_cast<ssize_t>(cleanMedia.size()));
    EXPECT_EQ(piped.substr(0, cleanMedia.size()), cleanMedia);
}

// --- interruption

/// Begins the command under this process's control, stopped before its first instruction.
pid_t startTraced(const std::vector<std::string>& commandLine) {
    const pid_t process = ::fork();
    if (process == 0) {
        // nohup and shells have their children ignore some.
        for (const int signal : {SIGHUP, SIGINT, SIGTERM})
            std::signal(signal, SIG_DFL);
        // The leak sanitizer cannot work under control.
        ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(125);
        command::become(commandLine);
    }
    return process;
}

/// Runs the command from system call to system call. From when on a temporary file is there it stops so many
/// times, and is then sent the signal. False when it ended before.
bool interruptAt(int stop, int signal, const std::string& folder, const std::vector<std::string>& commandLine,
                 int& status) {
    const pid_t process = startTraced(commandLine);
    ::waitpid(process, &status, 0);
    bool hasBegun = false;
    while (WIFSTOPPED(status)) {
        hasBegun = hasBegun || namesIn(folder).size() > 1;
        if (hasBegun && stop-- == 0) {
            ::kill(process, signal);
            ::ptrace(PTRACE_DETACH, process, nullptr, nullptr);
            ::waitpid(process, &status, 0);
            return true;
        }
        ::ptrace(PTRACE_SYSCALL, process, nullptr, nullptr);
        ::waitpid(process, &status, 0);
    }
    return false;
}

/// Calls `look` after the command was interrupted in each of its system calls. Gives their number.
int interruptEverywhere(int signal, const std::string& folder, const std::vector<std::string>& commandLine,
                        const std::function<void(int status)>& look) {
    int stop = 0;
    int status = 0;
    while (interruptAt(stop, signal, folder, commandLine, status)) {
        look(status);
        ++stop;
    }
    return stop;
}

TEST_F(HostileOutput, WhoeverEndsTheCommandFindsTheOldFileOrTheNewOneAndNoOther) {
    // A sanitized command takes its time to begin.
    const std::vector<int> all = {SIGTERM, SIGINT, SIGHUP};
    for (const int signal : isSanitized ? std::vector<int>{SIGTERM} : all) {
        int newOnes = 0;
        const int stops = interruptEverywhere(
            signal, outputs.path(), {VELHLS_COMMAND, "render", "--quiet", input, "-o", output},
            [&](int status) {
                const bool isNew = holdsTheNewText();
                if (!isNew) expectNothingHappened();
                EXPECT_EQ(namesIn(outputs.path()).size(), 1U);
                // The last system call is the one that ends it.
                const bool hadEnded = isNew && WIFEXITED(status) && WEXITSTATUS(status) == 0;
                EXPECT_TRUE(hadEnded || (WIFSIGNALED(status) && WTERMSIG(status) == signal));
                newOnes += isNew ? 1 : 0;
                output = outputs.with("out.m3u8", "old");
            });
        if (stops == 0) GTEST_SKIP() << "no process may be traced";
        EXPECT_GT(stops, 8);
        EXPECT_GT(newOnes, 0);
        EXPECT_LT(newOnes, stops);
    }
}

TEST_F(HostileOutput, KillingTheCommandLeavesTheOldFileOrTheNewOne) {
    const int stops = interruptEverywhere(
        SIGKILL, outputs.path(), {VELHLS_COMMAND, "render", "--quiet", input, "-o", output}, [&](int status) {
            EXPECT_TRUE(holdsTheNewText() || contentOf(output) == "old");
            EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
            for (const std::string& name : namesIn(outputs.path()))
                std::filesystem::remove(outputs.file(name));
            output = outputs.with("out.m3u8", "old");
        });
    if (stops == 0) GTEST_SKIP() << "no process may be traced";
    EXPECT_GT(stops, 8);
}

TEST_F(HostileOutput, SignalsThatWereIgnoredStayIgnored) {
    int status = 0;
    const std::string script =
        "trap '' HUP; exec " VELHLS_COMMAND " render --quiet " + input + " -o " + output;
    // The shell makes no second file, so that the count of stops begins with the command's.
    EXPECT_TRUE(interruptAt(3, SIGHUP, outputs.path(), {"/bin/sh", "-c", script}, status) || status != 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_TRUE(holdsTheNewText());
}

}  // namespace
