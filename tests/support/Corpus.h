#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/PlaylistText.h"

/// The texts for which promises are held, and how many mutations of them.
namespace corpus {

/// The example playlists that are not large, and the failing ones of the rules.
inline std::vector<std::string> texts() {
    std::vector<std::string> found;
    for (const char* const folder : {VELHLS_EXAMPLE_PLAYLISTS, VELHLS_EXAMPLE_FINDINGS}) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            constexpr std::uintmax_t largest = 4096;
            if (entry.path().extension() != ".m3u8" || entry.file_size() > largest) continue;
            found.push_back(playlist::contentOf(entry.path().string()));
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

/// Beginnings of the texts: of each every few bytes, from another byte on, so that all kinds of ends are among them.
inline std::vector<std::string> beginnings() {
    constexpr std::size_t step = 7;
    constexpr std::size_t longest = 600;
    std::vector<std::string> found;
    std::size_t first = 0;
    for (const std::string& text : texts()) {
        for (std::size_t length = first; length < std::min(text.size(), longest); length += step)
            found.push_back(text.substr(0, length));
        first = (first + 1) % step;
    }
    return found;
}

/// How many mutated playlists are looked at: a few thousand, or as many as VELHLS_MUTATIONS says.
inline std::uint64_t numberOfMutations(std::uint64_t few) {
    const char* const asked = std::getenv("VELHLS_MUTATIONS");
    return asked == nullptr ? few : std::strtoull(asked, nullptr, 10);
}

}  // namespace corpus
