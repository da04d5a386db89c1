#pragma once

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/support/PlaylistText.h"

/// How the tests run a command and look at all that it did.
namespace command {

/// A folder that is gone when the test is over.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "velhls-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] std::string path() const { return path_.string(); }
    [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

    /// Writes the content to a file of the folder, and gives its path.
    [[nodiscard]] std::string with(const std::string& name, const std::string& content) const {
        std::ofstream(file(name), std::ios::binary) << content;
        return file(name);
    }

  private:
    std::filesystem::path path_;
};

struct Outcome {
    int exitStatus;  ///< -1 stands for a signal
    std::string output;
    std::string errors;
    int signal = 0;              ///< the one that ended it, or 0
    std::size_t peakMemory = 0;  ///< the most bytes that it had in memory
};

/// Makes the descriptor stand for the file. To be called in the child.
inline void redirect(int descriptor, const std::string& path, int flags) {
    const int opened = ::open(path.c_str(), flags | O_CLOEXEC, 0600);
    if (opened < 0 || ::dup2(opened, descriptor) < 0) ::_exit(125);
}

/// What the child ends with when the program cannot be run.
inline constexpr int cannotRun = 126;

/// Becomes the program, which must be a path.
[[noreturn]] inline void become(const std::vector<std::string>& commandLine) {
    std::vector<char*> arguments;
    for (const std::string& argument : commandLine)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    ::execv(arguments[0], arguments.data());
    ::_exit(cannotRun);
}

/// Runs the program with the arguments, with empty standard input. `prepare` is called in the child last of all:
/// it may redirect, limit, and give up privileges.
inline Outcome runPrepared(const std::vector<std::string>& commandLine,
                           const std::function<void()>& prepare) {
    const TemporaryFolder folder;
    const std::string outputPath = folder.file("output");
    const std::string errorPath = folder.file("errors");
    const int writing = O_WRONLY | O_CREAT | O_TRUNC;
    const pid_t process = ::fork();
    if (process == 0) {
        redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
        redirect(STDOUT_FILENO, outputPath, writing);
        redirect(STDERR_FILENO, errorPath, writing);
        prepare();
        become(commandLine);
    }
    int status = 0;
    struct rusage usage = {};
    if (process < 0 || ::wait4(process, &status, 0, &usage) != process)
        throw std::runtime_error("cannot run " + commandLine[0]);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, playlist::contentOf(outputPath),
            playlist::contentOf(errorPath), WIFSIGNALED(status) ? WTERMSIG(status) : 0,
            static_cast<std::size_t>(usage.ru_maxrss) << 10};
}

/// Runs the program with the arguments and standard input; with standard output to a file when one is named.
inline Outcome run(const std::vector<std::string>& commandLine, const std::string& input = "",
                   const std::string& outputPath = "") {
    const TemporaryFolder folder;
    const std::string inputPath = folder.with("input", input);
    return runPrepared(commandLine, [&] {
        redirect(STDIN_FILENO, inputPath, O_RDONLY);
        if (!outputPath.empty()) redirect(STDOUT_FILENO, outputPath, O_WRONLY | O_CREAT | O_TRUNC);
    });
}

}  // namespace command
