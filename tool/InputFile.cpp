#include "tool/InputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>

#include "tool/Failure.h"
#include "tool/Printable.h"

namespace tool {
namespace {

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw Failure(unusable, nameInMessages(path) + ": error: cannot be read: " + reason);
}

[[noreturn]] void failAsTooLarge(const std::string& path, std::size_t mostBytes) {
    fail(path, "larger than " + std::to_string(mostBytes) + " bytes (--max-bytes)");
}

/// The size of a regular file; 0 for what only tells its size when it has been read.
std::size_t sizeOf(std::FILE* file) {
    struct stat status = {};
    if (::fstat(::fileno(file), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    return static_cast<std::size_t>(status.st_size);
}

std::string contentOf(std::FILE* file, const std::string& path, std::size_t mostBytes) {
    constexpr std::size_t blockSize = std::size_t{64} << 10;
    const std::size_t expected = sizeOf(file);
    if (expected > mostBytes) failAsTooLarge(path, mostBytes);
    std::string content;
    content.reserve(expected + blockSize);
    while (true) {
        const std::size_t size = content.size();
        content.resize(size + blockSize);
        const std::size_t count = std::fread(&content[size], 1, blockSize, file);
        content.resize(size + count);
        if (std::ferror(file) != 0) fail(path, std::strerror(errno));
        if (content.size() > mostBytes) failAsTooLarge(path, mostBytes);
        if (count < blockSize) return content;
    }
}

struct Closer {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

}  // namespace

std::string nameInMessages(const std::string& path) {
    return path == standardInput ? "<stdin>" : printable(path);
}

std::string contentOf(const std::string& path, std::size_t mostBytes) {
    if (path == standardInput) return contentOf(stdin, path, mostBytes);
    const std::unique_ptr<std::FILE, Closer> file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) fail(path, std::strerror(errno));
    return contentOf(file.get(), path, mostBytes);
}

}  // namespace tool
