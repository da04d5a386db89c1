#pragma once

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

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
    int exitStatus;
    std::string output;
    std::string errors;
};

/// Runs the program, which must be a path, with the arguments and standard input; with standard output to a
/// file when one is named. An exit status of -1 stands for a signal.
inline Outcome run(const std::vector<std::string>& commandLine, const std::string& input = "",
                   std::string outputPath = "") {
    const TemporaryFolder folder;
    const std::string inputPath = folder.with("input", input);
    const std::string errorPath = folder.file("errors");
    const bool captures = outputPath.empty();
    if (captures) outputPath = folder.file("output");

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const int writing = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, inputPath.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outputPath.c_str(), writing, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errorPath.c_str(), writing, 0600);
    std::vector<char*> arguments;
    for (const std::string& argument : commandLine)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    pid_t process = 0;
    const int failed = posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) throw std::runtime_error("cannot run " + commandLine[0]);

    int status = 0;
    waitpid(process, &status, 0);
    const auto contentOf = [](const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    };
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, captures ? contentOf(outputPath) : "",
            contentOf(errorPath)};
}

}  // namespace command
