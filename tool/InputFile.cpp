#include "tool/InputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tool/Failure.h"
#include "tool/Printable.h"

namespace tool {
namespace {

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw Failure(unusable, nameInMessages(path) + ": error: cannot be read: " + reason);
}

std::string contentOf(std::FILE* file, const std::string& path) {
    constexpr std::size_t blockSize = std::size_t{64} << 10;
    std::string content;
    while (true) {
        const std::size_t size = content.size();
        content.resize(size + blockSize);
        const std::size_t count = std::fread(&content[size], 1, blockSize, file);
        content.resize(size + count);
        if (std::ferror(file) != 0) fail(path, std::strerror(errno));
        if (count < blockSize) return content;
        if (content.size() > largestInput) fail(path, "larger than 512 MiB");
    }
}

struct Closer {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

}  // namespace

std::string nameInMessages(const std::string& path) {
    return path == standardInput ? "<stdin>" : printable(path);
}

std::string contentOf(const std::string& path) {
    if (path == standardInput) return contentOf(stdin, path);
    const std::unique_ptr<std::FILE, Closer> file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) fail(path, std::strerror(errno));
    return contentOf(file.get(), path);
}

}  // namespace tool
