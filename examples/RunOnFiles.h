// How the examples read playlists from files, and say why they cannot.
#pragma once

#include <cstddef>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "velhls/VELHLS.h"

namespace example {

/// The text of the file. Throws when it cannot be read.
inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text;
    char block[4096];
    while (file.read(block, sizeof block) || file.gcount() > 0)
        text.append(block, static_cast<std::size_t>(file.gcount()));
    if (!file.is_open() || file.bad()) throw std::runtime_error(path + ": cannot be read");
    return text;
}

/// "low.m3u8:2:29: EXT-X-STREAM-INF: BANDWIDTH: expected a BANDWIDTH above 0, seen "0""
inline std::runtime_error rejection(const std::string& path, const VELHLSReason& reason) {
    return std::runtime_error(path + ":" + std::to_string(reason.line) + ":" + std::to_string(reason.column) +
                              ": " + reason.message);
}

/// The master playlist in the file. Throws when it cannot be read or is rejected.
inline std::shared_ptr<VELHLSParsedManifest> masterPlaylistOf(const std::string& path) {
    VELHLSReason reason;
    auto manifest = VELHLSParsedManifest::parseManifest(contentOf(path), &reason);
    if (manifest == nullptr) throw rejection(path, reason);
    return manifest;
}

/// The media playlist in the file. Throws when it cannot be read or is rejected.
inline std::shared_ptr<VELHLSMediaStream> mediaPlaylistOf(const std::string& path) {
    VELHLSReason reason;
    auto stream = VELHLSMediaStream::parseMediaStream(contentOf(path), &reason);
    if (stream == nullptr) throw rejection(path, reason);
    return stream;
}

/// Runs the example on files; its arguments come after the program's name.
template <typename Run>
int runOn(int argumentCount, char** arguments, int wanted, const char* usage, Run run) {
    if (argumentCount != wanted) {
        std::cerr << "usage: " << usage << "\n";
        return 2;
    }
    try {
        return run();
    } catch (const std::exception& error) {
        std::cerr << arguments[0] << ": " << error.what() << "\n";
        return 1;
    }
}

}  // namespace example
