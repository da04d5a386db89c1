#include "tool/InputFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tool/Failure.h"

namespace tool {
namespace {

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw Failure(unusable, nameInMessages(path) + ": error: cannot be read: " + reason);
}

bool isRegular(int descriptor) {
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// Relative to a folder that is open; the path is for messages.
int openIn(int folder, const std::string& name, InputKind kind, const std::string& path) {
    // A pipe without a writer would be waited for.
    const int carefully = kind == InputKind::Regular ? O_NOFOLLOW | O_NONBLOCK : 0;
    const int descriptor = ::openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | carefully);
    if (descriptor < 0) fail(path, std::strerror(errno));
    if (kind == InputKind::Regular && !isRegular(descriptor)) {
        static_cast<void>(::close(descriptor));
        fail(path, "not a regular file");
    }
    return descriptor;
}

int open(const std::string& path, InputKind kind) {
    if (path == standardInput && kind == InputKind::Any) return STDIN_FILENO;
    // A name with a NUL byte would open the file whose name ends before it.
    if (path.find('\0') != std::string::npos) fail(path, "its name holds a NUL byte");
    return openIn(AT_FDCWD, path, kind, path);
}

}  // namespace

InputFile::InputFile(const std::string& path, InputKind kind) : path_(path), descriptor_(open(path, kind)) {}

InputFile::InputFile(const std::string& path, int folder, const std::string& name)
    : path_(path), descriptor_(openIn(folder, name, InputKind::Regular, path)) {}

InputFile::~InputFile() {
    if (descriptor_ != STDIN_FILENO) static_cast<void>(::close(descriptor_));
}

std::size_t InputFile::read(char* bytes, std::size_t most) {
    while (true) {
        const ssize_t count = ::read(descriptor_, bytes, most);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) fail(path_, std::strerror(errno));
    }
}

std::size_t InputFile::size() const {
    struct stat status = {};
    if (::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    return static_cast<std::size_t>(status.st_size);
}

}  // namespace tool
