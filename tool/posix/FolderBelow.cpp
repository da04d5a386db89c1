#include "tool/FolderBelow.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "tool/Failure.h"
#include "tool/InputFile.h"

namespace tool {
namespace {

struct Freer {
    void operator()(char* text) const { std::free(text); }
};

/// Empty where it leads nowhere: errno tells why.
std::string realPathOf(const std::string& path) {
    const std::unique_ptr<char, Freer> real(::realpath(path.c_str(), nullptr));
    return real == nullptr ? std::string() : std::string(real.get());
}

/// A folder that is open, and closed in the end.
class OpenFolder {
  public:
    OpenFolder(int parent, const std::string& name, int flags)
        : descriptor_(::openat(parent, name.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY | flags)) {}
    ~OpenFolder() {
        if (descriptor_ >= 0) static_cast<void>(::close(descriptor_));
    }
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;

    [[nodiscard]] int descriptor() const { return descriptor_; }

  private:
    int descriptor_;
};

}  // namespace

FolderBelow::FolderBelow(const std::string& path) : realPath_(realPathOf(path.empty() ? "." : path)) {
    struct stat status = {};
    const bool isFolder =
        !realPath_.empty() && ::stat(realPath_.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    if (!isFolder) throw Failure(unusable, nameInMessages(path) + ": error: is no folder that can be read");
    if (realPath_ != "/") realPath_ += "/";
}

FolderBelow::Target FolderBelow::find(const std::string& path) const {
    if (path.find('\0') != std::string::npos) return {{}, "its name holds a NUL byte"};
    const std::string real = realPathOf(path);
    if (real.empty()) {
        const bool isMissing = errno == ENOENT || errno == ENOTDIR;
        return {{}, isMissing ? "" : std::string(std::strerror(errno))};
    }
    if (real.compare(0, realPath_.size(), realPath_) != 0) return {{}, "it leads out of the folder"};
    struct stat status = {};
    if (::lstat(real.c_str(), &status) != 0) return {{}, std::strerror(errno)};
    if (!S_ISREG(status.st_mode)) return {{}, "it is no regular file"};
    return {real, {}};
}

/// From folder to folder, so that nobody can put a link in the way meanwhile.
std::string FolderBelow::contentOf(const std::string& realPath, std::size_t mostBytes) const {
    auto folder = std::make_unique<OpenFolder>(AT_FDCWD, realPath_, 0);
    std::string rest = realPath.substr(realPath_.size());
    for (std::size_t slash = rest.find('/'); slash != std::string::npos; slash = rest.find('/')) {
        folder = std::make_unique<OpenFolder>(folder->descriptor(), rest.substr(0, slash), O_NOFOLLOW);
        rest.erase(0, slash + 1);
    }
    InputFile file(realPath, folder->descriptor(), rest);
    return tool::contentOf(file, realPath, mostBytes);
}

}  // namespace tool
