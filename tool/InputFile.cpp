#include "tool/InputFile.h"

#include "tool/Failure.h"
#include "tool/Printable.h"

namespace tool {
namespace {

[[noreturn]] void failAsTooLarge(const std::string& path, std::size_t mostBytes) {
    throw Failure(unusable, nameInMessages(path) + ": error: cannot be read: larger than " +
                                std::to_string(mostBytes) + " bytes (--max-bytes)");
}

}  // namespace

std::string nameInMessages(const std::string& path) {
    return path == standardInput ? "<stdin>" : printable(path);
}

std::string contentOf(const std::string& path, std::size_t mostBytes, InputKind kind) {
    InputFile file(path, kind);
    return contentOf(file, path, mostBytes);
}

std::string contentOf(InputFile& file, const std::string& path, std::size_t mostBytes) {
    constexpr std::size_t blockSize = std::size_t{64} << 10;
    const std::size_t expected = file.size();
    if (expected > mostBytes) failAsTooLarge(path, mostBytes);
    // One byte more than is expected, so that the end shows without another block.
    std::string content(expected == 0 ? blockSize : expected + 1, '\0');
    std::size_t filled = 0;
    while (true) {
        if (filled == content.size()) content.resize(filled + blockSize);
        const std::size_t count = file.read(&content[filled], content.size() - filled);
        filled += count;
        if (filled > mostBytes) failAsTooLarge(path, mostBytes);
        if (count != 0) continue;
        content.resize(filled);
        return content;
    }
}

}  // namespace tool
