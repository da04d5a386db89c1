// What a user's first program does: parse a playlist of each kind and write it back. All consumers build this one.

#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "velhls/VELHLS.h"

namespace {

const char* const masterText =
    "#EXTM3U\n"
    "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"aac\",NAME=\"English\",URI=\"en.m3u8\"\n"
    "#EXT-X-STREAM-INF:BANDWIDTH=800000,AUDIO=\"aac\"\n"
    "low.m3u8\n";

const char* const mediaText =
    "#EXTM3U\n"
    "#EXT-X-VERSION:3\n"
    "#EXT-X-TARGETDURATION:6\n"
    "#EXTINF:6.006,\n"
    "segment0.ts\n"
    "#EXT-X-ENDLIST\n";

template <typename Playlist>
bool writeBack(const std::shared_ptr<Playlist>& playlist) {
    return playlist != nullptr && playlist->validate() && playlist->render(std::cout) == 0;
}

/// An exception that the library throws has to reach the program, whatever library it comes from.
bool throwsForABandwidthThatIsNone() {
    std::istringstream input("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=fast\nlow.m3u8\n");
    try {
        static_cast<void>(VELHLSParsedManifest::parseManifest(input, nullptr));
    } catch (const std::invalid_argument&) {
        return true;
    }
    return false;
}

}  // namespace

int main() {
    std::istringstream masterInput(masterText);
    std::istringstream mediaInput(mediaText);
    if (!writeBack(VELHLSParsedManifest::parseManifest(masterInput, nullptr))) return EXIT_FAILURE;
    if (!writeBack(VELHLSMediaStream::parseMediaStream(mediaInput, nullptr))) return EXIT_FAILURE;
    if (!throwsForABandwidthThatIsNone()) return EXIT_FAILURE;
    std::cout << ZORHLSManifestLibVersionNumber << "\n";
    return EXIT_SUCCESS;
}
