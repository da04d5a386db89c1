// Reads the master playlist of a folder and the media playlists that it names, attaches them to their variants and
// renditions, and checks them together.
//
//     example_attach_media_playlists examples/presentation

#include <iostream>
#include <stdexcept>
#include <string>

#include "velhls/VELHLS.h"

#include "examples/RunOnFiles.h"

namespace {

double lengthOf(const VELHLSMediaStream& stream) {
    if (stream.segments.empty()) return 0.0;
    return stream.segments.back()->startTime + stream.segments.back()->duration;
}

/// Attaching a media playlist is a plain assignment. From then on a variant's validate checks it too.
template <typename Owner>
bool attach(Owner& owner, const std::string& folder) {
    try {
        owner.mediaStream = example::mediaPlaylistOf(folder + "/" + owner.uri);
    } catch (const std::runtime_error& missingOrRejected) {
        std::cerr << missingOrRejected.what() << "\n";
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
    const auto manifest = example::masterPlaylistOf(folder + "/master.m3u8");
    const bool complete = attachAll(*manifest, folder);
    std::cout << (complete ? "complete and valid\n" : "incomplete\n");
    return complete ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return example::runOn(argumentCount, arguments, 2, "example_attach_media_playlists FOLDER",
                          [&] { return run(arguments[1]); });
}
