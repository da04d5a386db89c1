#pragma once

#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <string_view>

/// What the tests share to write playlists down.
namespace playlist {

/// The lines, each with a line feed.
inline std::string lines(std::initializer_list<std::string_view> list) {
    std::string text;
    for (const std::string_view line : list) {
        text += line;
        text += '\n';
    }
    return text;
}

/// The whole of a file; empty when it cannot be read.
inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace playlist
