// Moves a live playlist on: appends a segment, and drops the oldest ones so that the window keeps its length.
//
//     example_extend_live_window 4 live_268441.ts examples/playlists/media-live.m3u8
//
// appends a segment of 4 seconds with that URI.

#include <cmath>
#include <iostream>
#include <string>

#include "velhls/VELHLS.h"

#include "examples/RunOnFiles.h"

namespace {

/// The new segment continues the last one: its numbers, its start, its date; it shares its key and its map.
void append(VELHLSMediaStream& stream, double duration, const std::string& uri) {
    stream.segments.push_back(
        VELHLSMediaSegment::buildNextSegment(stream.segments.back(), duration, nullptr, uri));
}

/// A player knows a segment by its number: so the playlist's number rises with each segment that goes, and so does the
/// discontinuity sequence with each EXT-X-DISCONTINUITY that goes (RFC 8216, section 6.2.2).
void dropOldest(VELHLSMediaStream& stream) {
    stream.mediaSequence += 1;
    if (stream.segments.front()->discontinuity) stream.discontinuitySequence += 1;
    stream.segments.erase(stream.segments.begin());
}

int run(double duration, const std::string& uri, const std::string& path) {
    const auto stream = example::mediaPlaylistOf(path);
    if (stream->segments.empty()) {
        std::cerr << path << ": without segments\n";
        return 1;
    }
    if (std::round(duration) > stream->targetDuration) {
        // It would be raised, and must not change while players read the playlist.
        std::cerr << uri << ": longer than the target duration\n";
        return 1;
    }
    append(*stream, duration, uri);
    dropOldest(*stream);
    VELHLSWriterOptions options;
    options.everyDate = true;
    if (const auto refusal = VELHLSPlaylistWriter::write(*stream, std::cout, options)) {
        std::cerr << path << ": " << *refusal << "\n";
        return 1;
    }
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return example::runOn(argumentCount, arguments, 4, "example_extend_live_window SECONDS URI PLAYLIST",
                          [&] { return run(std::stod(arguments[1]), arguments[2], arguments[3]); });
}
