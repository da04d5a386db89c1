#include "tool/OutputFile.h"

#include <cerrno>
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

/// A new file beside the one that it is to replace; gone again unless it took that one's place.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& target)
        : name_(target + ".XXXXXX"),
          descriptor_(::mkstemp(name_.data())),
          isThere_(descriptor_.number() >= 0) {}
    ~TemporaryFile() {
        if (isThere_) static_cast<void>(::unlink(name_.c_str()));
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// False, with errno set, when any step fails.
    [[nodiscard]] bool fill(std::string_view text, mode_t permissions) {
        return isThere_ && writeAll(descriptor_.number(), text) &&
               ::fchmod(descriptor_.number(), permissions) == 0 && ::fsync(descriptor_.number()) == 0 &&
               descriptor_.close();
    }

    [[nodiscard]] bool replace(const std::string& target) {
        isThere_ = ::rename(name_.c_str(), target.c_str()) != 0;
        return !isThere_;
    }

  private:
    std::string name_;
    Descriptor descriptor_;
    bool isThere_;
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
    std::error_code error;
    if (!std::filesystem::is_symlink(path, error)) return path;
    const std::filesystem::path target = std::filesystem::weakly_canonical(path, error);
    return error ? path : target.string();
}

}  // namespace

void writeToStandardOutput(std::string_view text) {
    if (!writeAll(STDOUT_FILENO, text)) fail("<stdout>", std::strerror(errno));
}

void replaceFile(const std::string& path, std::string_view text) {
    const std::string target = linkTarget(path);
    struct stat present = {};
    const bool exists = ::stat(target.c_str(), &present) == 0;
    if (exists && S_ISDIR(present.st_mode)) fail(path, std::strerror(EISDIR));
    if (exists && !S_ISREG(present.st_mode)) return writeInPlace(path, text);

    TemporaryFile file(target);
    const mode_t permissions = exists ? present.st_mode & 07777 : permissionsOfNewFile();
    if (!file.fill(text, permissions) || !file.replace(target)) fail(path, std::strerror(errno));
}

}  // namespace tool
