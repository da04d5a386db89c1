// What the folder's files share: Windows' own texts and files.
#pragma once

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

// After windows.h.
#include <shellapi.h>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "tool/Path.h"

namespace tool::windows {

/// What the last call of the system failed with, in its words.
[[nodiscard]] inline std::string lastReason() {
    return std::error_code(static_cast<int>(::GetLastError()), std::system_category()).message();
}

/// An open file or folder that closes itself.
class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle) {}
    ~Handle() { close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    [[nodiscard]] bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE get() const { return handle_; }
    void close() {
        if (isOpen()) ::CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE));
    }

  private:
    HANDLE handle_;
};

/// Where a path leads, links followed, with slashes; empty where that is nowhere.
[[nodiscard]] inline std::wstring realPathOf(const std::string& path) {
    constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const Handle file(::CreateFileW(pathOf(path).c_str(), 0, shared, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file.isOpen()) return {};
    std::wstring real(std::size_t{32} << 10, L'\0');
    const DWORD length =
        ::GetFinalPathNameByHandleW(file.get(), real.data(), static_cast<DWORD>(real.size()), 0);
    if (length == 0 || length >= real.size()) return {};
    real.resize(length);
    // Before a drive letter; the paths of other machines keep theirs.
    constexpr std::wstring_view prefix = L"\\\\?\\";
    const bool hasDrive =
        real.compare(0, prefix.size(), prefix) == 0 && real.substr(prefix.size(), 4) != L"UNC\\";
    return hasDrive ? real.substr(prefix.size()) : real;
}

}  // namespace tool::windows
