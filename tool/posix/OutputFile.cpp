#include "tool/OutputFile.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "tool/Failure.h"
#include "tool/Printable.h"

namespace tool {
namespace {

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw Failure(unusable, printable(path) + ": error: cannot be written: " + reason);
}

/// An open file that closes itself.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) static_cast<void>(::close(number_));
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int number() const { return number_; }

    /// Closing may be what tells that the disk is full.
    [[nodiscard]] bool close() { return ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// The name of the temporary file that is there; null for none. A signal handler may look at no more than this.
std::atomic<const char*> fileToRemove = nullptr;

extern "C" void removeFileAndEnd(int signal) {
    const char* const name = fileToRemove.load();
    if (name != nullptr) static_cast<void>(::unlink(name));
    // The default action was put back when the handler was called.
    static_cast<void>(::raise(signal));
}

/// The signals that end a command and that somebody sends it.
constexpr std::array<int, 3> endingSignals = {SIGHUP, SIGINT, SIGTERM};

/// Has the ending signals remove the temporary file first, but for those that the command was told to ignore.
void removeFileOnSignals() {
    for (const int signal : endingSignals) {
        struct sigaction present = {};
        static_cast<void>(::sigaction(signal, nullptr, &present));
        if (present.sa_handler == SIG_IGN) continue;
        struct sigaction removing = {};
        removing.sa_handler = removeFileAndEnd;
        removing.sa_flags = static_cast<int>(SA_RESETHAND);
        static_cast<void>(::sigaction(signal, &removing, nullptr));
    }
}

/// Keeps the ending signals waiting as long as it lives.
class SignalsWait {
  public:
    SignalsWait() {
        sigset_t signals;
        ::sigemptyset(&signals);
        for (const int signal : endingSignals)
            ::sigaddset(&signals, signal);
        static_cast<void>(::sigprocmask(SIG_BLOCK, &signals, &before_));
    }
    ~SignalsWait() { static_cast<void>(::sigprocmask(SIG_SETMASK, &before_, nullptr)); }
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;

  private:
    sigset_t before_ = {};
};

/// A new file in the folder of the one that it is to replace; gone again unless it took that one's place, also
/// when a signal ends the command.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& target)
        : name_(target.substr(0, target.rfind('/') + 1) + ".velhls-XXXXXX"), descriptor_(make(name_)) {}
    ~TemporaryFile() {
        if (fileToRemove.load() != nullptr) static_cast<void>(::unlink(name_.c_str()));
        fileToRemove = nullptr;
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] bool isOpen() const { return descriptor_.number() >= 0; }

    /// False when the user may not give files away. That is to come before the permissions, which it changes.
    bool giveTo(uid_t owner, gid_t group) const { return ::fchown(descriptor_.number(), owner, group) == 0; }

    /// False, with errno set, when any step fails.
    [[nodiscard]] bool fill(std::string_view text, mode_t permissions) {
        return writeAll(descriptor_.number(), text) && ::fchmod(descriptor_.number(), permissions) == 0 &&
               ::fsync(descriptor_.number()) == 0 && descriptor_.close();
    }

    [[nodiscard]] bool replace(const std::string& target) const {
        if (::rename(name_.c_str(), target.c_str()) != 0) return false;
        fileToRemove = nullptr;
        return true;
    }

  private:
    static int make(std::string& name) {
        removeFileOnSignals();
        const SignalsWait wait;
        const int descriptor = ::mkstemp(name.data());
        if (descriptor >= 0) fileToRemove = name.c_str();
        return descriptor;
    }

    std::string name_;
    Descriptor descriptor_;
};

mode_t permissionsOfNewFile() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

void writeInPlace(const std::string& path, std::string_view text) {
    Descriptor descriptor(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (descriptor.number() < 0 || !writeAll(descriptor.number(), text) || !descriptor.close()) {
        fail(path, std::strerror(errno));
    }
}

/// The file that a symbolic link leads to, there or not; any other path as it is.
std::string linkTarget(const std::string& path) {
    constexpr int mostLinks = 40;
    std::filesystem::path target = path;
    std::error_code error;
    for (int links = 0; links < mostLinks; ++links) {
        if (!std::filesystem::is_symlink(target, error)) return target.string();
        target = target.parent_path() / std::filesystem::read_symlink(target, error);
        if (error) fail(path, error.message());
    }
    fail(path, std::strerror(ELOOP));
}

bool mayBeWritten(const std::string& path) {
    return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

}  // namespace

void writeToStandardOutput(std::string_view text) {
    if (!writeAll(STDOUT_FILENO, text)) fail("<stdout>", std::strerror(errno));
}

void replaceFile(const std::string& path, std::string_view text) {
    struct stat present = {};
    const bool exists = ::stat(path.c_str(), &present) == 0;
    if (exists && S_ISDIR(present.st_mode)) fail(path, std::strerror(EISDIR));
    if (exists && !S_ISREG(present.st_mode)) return writeInPlace(path, text);

    const std::string target = linkTarget(path);
    if (exists && !mayBeWritten(target)) fail(path, std::strerror(errno));
    TemporaryFile file(target);
    if (!file.isOpen()) fail(path, std::strerror(errno));
    if (exists) file.giveTo(present.st_uid, present.st_gid);
    const mode_t permissions = exists ? present.st_mode & 0777 : permissionsOfNewFile();
    if (!file.fill(text, permissions) || !file.replace(target)) fail(path, std::strerror(errno));
}

}  // namespace tool
