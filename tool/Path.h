#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Paths are texts in the command: on POSIX the bytes that the system has, on Windows UTF-8, whatever the code page is.
namespace tool {

#if defined(_WIN32)
inline constexpr std::string_view pathSeparators = "/\\";

[[nodiscard]] inline std::string textOf(const std::filesystem::path& path) {
    return path.generic_u8string();
}
#else
inline constexpr std::string_view pathSeparators = "/";

[[nodiscard]] inline std::string textOf(const std::filesystem::path& path) {
    return path.string();
}
#endif

[[nodiscard]] inline std::filesystem::path pathOf(const std::string& text) {
    return std::filesystem::u8path(text);
}

/// The text of a path up to the separator before its last name, with that; empty where there is none.
[[nodiscard]] inline std::string folderOf(const std::string& path) {
    return path.substr(0, path.find_last_of(pathSeparators) + 1);
}

}  // namespace tool
