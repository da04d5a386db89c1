// Drops the variants of a master playlist above a bandwidth, as for players on a metered network.
//
//     example_drop_variants 2500000 examples/playlists/master-adaptive.m3u8

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <string>

#include "velhls/VELHLS.h"

#include "examples/RunOnFiles.h"

namespace {

/// A variant stands in `variants`, which is what render writes, and in `streamVariants` unless it is an I-frame one.
void dropAbove(VELHLSParsedManifest& manifest, std::uint64_t highest) {
    manifest.variants.erase(manifest.variants.upper_bound(highest), manifest.variants.end());
    auto& streams = manifest.streamVariants;
    const auto isAbove = [highest](const auto& variant) { return variant->bandwidth > highest; };
    streams.erase(std::remove_if(streams.begin(), streams.end(), isAbove), streams.end());
}

int run(std::uint64_t highest, const std::string& path) {
    const auto manifest = example::masterPlaylistOf(path);
    dropAbove(*manifest, highest);
    if (manifest->streamVariants.empty()) {
        std::cerr << path << ": no variant at or below " << highest << " bit/s\n";
        return 1;
    }
    return manifest->render(std::cout) == 0 ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return example::runOn(argumentCount, arguments, 3, "example_drop_variants BITS_PER_SECOND MASTER",
                          [&] { return run(std::stoull(arguments[1]), arguments[2]); });
}
