#include "tool/InputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <io.h>
#include <limits>
#include <sys/stat.h>
#include <sys/types.h>
#include <system_error>

#include "tool/Failure.h"
#include "tool/Path.h"

namespace tool {
namespace {

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw Failure(unusable, nameInMessages(path) + ": error: cannot be read: " + reason);
}

int open(const std::string& path, InputKind kind) {
    if (path == standardInput && kind == InputKind::Any) return ::_fileno(stdin);
    if (path.find('\0') != std::string::npos) fail(path, "its name holds a NUL byte");
    std::error_code unknown;
    if (kind == InputKind::Regular &&
        !std::filesystem::is_regular_file(std::filesystem::symlink_status(pathOf(path), unknown))) {
        fail(path, "not a regular file");
    }
    if (std::filesystem::is_directory(pathOf(path), unknown)) fail(path, std::strerror(EISDIR));
    const int descriptor = ::_wopen(pathOf(path).c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    if (descriptor < 0) fail(path, std::strerror(errno));
    return descriptor;
}

}  // namespace

InputFile::InputFile(const std::string& path, InputKind kind) : path_(path), descriptor_(open(path, kind)) {}

InputFile::~InputFile() {
    if (descriptor_ != ::_fileno(stdin)) static_cast<void>(::_close(descriptor_));
}

std::size_t InputFile::read(char* bytes, std::size_t most) {
    constexpr auto mostAtOnce = static_cast<std::size_t>(std::numeric_limits<int>::max());
    const int count = ::_read(descriptor_, bytes, static_cast<unsigned>(std::min(most, mostAtOnce)));
    if (count < 0) fail(path_, std::strerror(errno));
    return static_cast<std::size_t>(count);
}

std::size_t InputFile::size() const {
    struct _stat64 status = {};
    if (::_fstat64(descriptor_, &status) != 0 || (status.st_mode & _S_IFMT) != _S_IFREG) return 0;
    return static_cast<std::size_t>(status.st_size);
}

}  // namespace tool
