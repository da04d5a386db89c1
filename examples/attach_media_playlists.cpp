// Reads the master playlist of a folder and the media playlists that it names, attaches them to their variants and
// renditions, and checks them together.
//
//     example_attach_media_playlists examples/presentation

#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include "velhls/VELHLS.h"

namespace {

/// Null when the file cannot be opened: reading it would give an empty playlist.
std::shared_ptr<VELHLSMediaStream> readMediaPlaylist(const std::string& path) {
    std::ifstream input(path);
    if (!input.is_open()) return nullptr;
    return VELHLSMediaStream::parseMediaStream(input, nullptr);
}

double lengthOf(const VELHLSMediaStream& stream) {
    if (stream.segments.empty()) return 0.0;
    return stream.segments.back()->startTime + stream.segments.back()->duration;
}

/// Attaching a media playlist is a plain assignment. From then on a variant's validate checks it too.
template <typename Owner>
bool attach(Owner& owner, const std::string& folder) {
    owner.mediaStream = readMediaPlaylist(folder + "/" + owner.uri);
    if (owner.mediaStream == nullptr) {
        std::cerr << owner.uri << ": missing or rejected\n";
        return false;
    }
    std::cout << owner.uri << ": " << owner.mediaStream->segments.size() << " segments, "
              << lengthOf(*owner.mediaStream) << " seconds\n";
    return true;
}

bool attachAll(const VELHLSParsedManifest& manifest, const std::string& folder) {
    bool complete = true;
    for (const auto& variant : manifest.streamVariants)
        complete = attach(*variant, folder) && complete;
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            for (const auto& [name, rendition] : group) {
                if (!rendition->uri.empty()) complete = attach(*rendition, folder) && complete;
            }
        }
    }
    return complete;
}

int run(const std::string& folder) {
    std::ifstream input(folder + "/master.m3u8");
    if (!input.is_open()) {
        std::cerr << "master.m3u8: cannot be opened\n";
        return 1;
    }
    const auto manifest = VELHLSParsedManifest::parseManifest(input, nullptr);
    if (manifest == nullptr) {
        std::cerr << "master.m3u8: rejected\n";
        return 1;
    }
    const bool complete = attachAll(*manifest, folder);
    std::cout << (complete ? "complete and valid\n" : "incomplete\n");
    return complete ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::cerr << "usage: example_attach_media_playlists FOLDER\n";
        return 2;
    }
    try {
        return run(arguments[1]);
    } catch (const std::exception& error) {
        // A number that is none, or a segment URI that is too short, leaves the parse as an exception.
        std::cerr << error.what() << "\n";
        return 1;
    }
}
