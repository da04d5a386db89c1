// Shows what a master playlist offers: its variants by bandwidth, and the renditions of each group that they name.
//
//     example_inspect_master examples/playlists/master-adaptive.m3u8

#include <iostream>
#include <string>

#include "velhls/VELHLS.h"

#include "examples/RunOnFiles.h"

namespace {

using Rendition = VELHLSMediaStreamRendition;

const char* nameOf(Rendition::RenditionType type) {
    switch (type) {
        case Rendition::Audio:
            return "audio";
        case Rendition::Video:
            return "video";
        case Rendition::Subtitles:
            return "subtitles";
        case Rendition::ClosedCaptions:
            return "closed captions";
        case Rendition::Unknown:
            break;
    }
    return "unknown";
}

void showVariants(const VELHLSParsedManifest& manifest) {
    for (const auto& [bandwidth, variant] : manifest.variants) {
        std::cout << bandwidth << " bit/s" << (variant->isIFrame ? " (I-frames)" : "") << "  "
                  << variant->resolution << "  " << variant->uri;
        for (const auto& [type, groupId] : variant->groupIds)
            std::cout << "  " << nameOf(type) << "=" << groupId;
        std::cout << "\n";
    }
}

void showRenditions(const VELHLSParsedManifest& manifest) {
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            std::cout << "\n" << nameOf(type) << " group " << groupId << "\n";
            for (const auto& [name, rendition] : group) {
                std::cout << "  " << name << " [" << rendition->language << "]"
                          << (rendition->isDefault ? " default" : "") << (rendition->forced ? " forced" : "")
                          << "  " << rendition->uri << "\n";
            }
        }
    }
}

int run(const std::string& path) {
    const auto manifest = example::masterPlaylistOf(path);
    showVariants(*manifest);
    showRenditions(*manifest);
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return example::runOn(argumentCount, arguments, 2, "example_inspect_master MASTER",
                          [&] { return run(arguments[1]); });
}
