#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Long texts for hostile playlists, made of many short ones.
namespace playlist {

/// The text so many times.
inline std::string times(std::size_t count, std::string_view text) {
    if (text.size() == 1) return std::string(count, text.front());
    std::string all;
    for (std::size_t index = 0; index < count; ++index)
        all += text;
    return all;
}

/// The text once for each of so many numbers, from the first one on, with the number for each "~" in it.
inline std::string numbered(std::size_t count, std::string_view text, std::size_t first = 0) {
    std::string all;
    for (std::size_t number = first; number < first + count; ++number) {
        std::size_t start = 0;
        for (std::size_t place = text.find('~'); place != std::string_view::npos;
             place = text.find('~', start)) {
            all += text.substr(start, place - start);
            all += std::to_string(number);
            start = place + 1;
        }
        all += text.substr(start);
    }
    return all;
}

}  // namespace playlist
