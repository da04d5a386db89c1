#include "tool/FolderBelow.h"

#include <filesystem>
#include <system_error>

#include "tool/Failure.h"
#include "tool/InputFile.h"
#include "tool/Path.h"
#include "tool/windows/Wide.h"

namespace tool {

FolderBelow::FolderBelow(const std::string& path)
    : realPath_(textOf(windows::realPathOf(path.empty() ? "." : path))) {
    std::error_code unknown;
    const bool isFolder = !realPath_.empty() && std::filesystem::is_directory(pathOf(realPath_), unknown);
    if (!isFolder) throw Failure(unusable, nameInMessages(path) + ": error: is no folder that can be read");
    if (realPath_.back() != '/') realPath_ += '/';
}

FolderBelow::Target FolderBelow::find(const std::string& path) const {
    if (path.find('\0') != std::string::npos) return {{}, "its name holds a NUL byte"};
    const std::string real = textOf(windows::realPathOf(path));
    if (real.empty()) {
        const DWORD error = ::GetLastError();
        const bool isMissing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
        return {{}, isMissing ? "" : windows::lastReason()};
    }
    if (real.compare(0, realPath_.size(), realPath_) != 0) return {{}, "it leads out of the folder"};
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(pathOf(real), unknown)) return {{}, "it is no regular file"};
    return {real, {}};
}

/// Looked at once more when it is open: Windows opens no file relative to a folder.
std::string FolderBelow::contentOf(const std::string& realPath, std::size_t mostBytes) const {
    InputFile file(realPath, InputKind::Regular);
    if (find(realPath).realPath != realPath) {
        throw Failure(unusable, nameInMessages(realPath) + ": error: cannot be read: it leads elsewhere now");
    }
    return tool::contentOf(file, realPath, mostBytes);
}

}  // namespace tool
