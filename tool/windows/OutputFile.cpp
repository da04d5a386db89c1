#include "tool/OutputFile.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include "tool/Failure.h"
#include "tool/Path.h"
#include "tool/Printable.h"
#include "tool/windows/Wide.h"

namespace tool {
namespace {

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw Failure(unusable, printable(path) + ": error: cannot be written: " + reason);
}

bool writeAll(HANDLE file, std::string_view text) {
    constexpr std::size_t mostAtOnce = std::size_t{1} << 30;
    while (!text.empty()) {
        DWORD count = 0;
        const auto asked = static_cast<DWORD>(std::min(text.size(), mostAtOnce));
        if (::WriteFile(file, text.data(), asked, &count, nullptr) == 0) return false;
        text.remove_prefix(count);
    }
    return true;
}

/// The name of the temporary file that is there; null for none.
std::atomic<const wchar_t*> fileToRemove = nullptr;

/// Control-C, a closed window, the end of the session: called in a thread of its own.
BOOL WINAPI removeFileAndEnd(DWORD /*event*/) {
    const wchar_t* const name = fileToRemove.load();
    if (name != nullptr) ::DeleteFileW(name);
    return FALSE;
}

/// A new file in the folder of the one that it is to replace; gone again unless it took that one's place, also
/// when the command is told to end.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::filesystem::path& target)
        : name_(nameBeside(target)), file_(make(name_)) {
        if (file_.isOpen()) fileToRemove = name_.c_str();
    }
    ~TemporaryFile() {
        file_.close();
        if (fileToRemove.load() != nullptr) ::DeleteFileW(name_.c_str());
        fileToRemove = nullptr;
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] bool isOpen() const { return file_.isOpen(); }

    /// False, with the reason at hand, when any step fails.
    [[nodiscard]] bool fill(std::string_view text) {
        if (!writeAll(file_.get(), text) || ::FlushFileBuffers(file_.get()) == 0) return false;
        file_.close();
        return true;
    }

    [[nodiscard]] bool replace(const std::filesystem::path& target) const {
        constexpr DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
        if (::MoveFileExW(name_.c_str(), target.c_str(), how) == 0) return false;
        fileToRemove = nullptr;
        return true;
    }

  private:
    static std::filesystem::path nameBeside(const std::filesystem::path& target) {
        const std::wstring name = L".velhls-" + std::to_wstring(::GetCurrentProcessId());
        return target.parent_path() / name;
    }

    static HANDLE make(const std::filesystem::path& name) {
        ::SetConsoleCtrlHandler(removeFileAndEnd, TRUE);
        return ::CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                             nullptr);
    }

    std::filesystem::path name_;
    windows::Handle file_;
};

}  // namespace

void writeToStandardOutput(std::string_view text) {
    if (!writeAll(::GetStdHandle(STD_OUTPUT_HANDLE), text)) fail("<stdout>", windows::lastReason());
}

void replaceFile(const std::string& path, std::string_view text) {
    const DWORD attributes = ::GetFileAttributesW(pathOf(path).c_str());
    const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
    if (exists && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) fail(path, std::strerror(EISDIR));
    if (exists && (attributes & FILE_ATTRIBUTE_READONLY) != 0) fail(path, std::strerror(EACCES));
    const std::wstring real = exists ? windows::realPathOf(path) : std::wstring();
    const std::filesystem::path target = real.empty() ? pathOf(path) : std::filesystem::path(real);
    TemporaryFile file(target);
    if (!file.isOpen() || !file.fill(text) || !file.replace(target)) fail(path, windows::lastReason());
}

}  // namespace tool
