// Moves a live playlist on: appends a segment, and drops the oldest ones so that the window keeps its length.
//
//     example_extend_live_window 4 live_268441.ts examples/playlists/media-live.m3u8
//
// appends a segment of 4 seconds with that URI.

#include <algorithm>
#include <cmath>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>

#include "velhls/VELHLS.h"

namespace {

/// The new segment continues the last one: its numbers, its start, its date; it shares its key and its map. It has no
/// title, and without one no comma is written after its duration, which RFC 8216 wants: so it gets the title that a
/// parsed segment without one has, the comma.
void append(VELHLSMediaStream& stream, double duration, const std::string& uri) {
    stream.segments.push_back(
        VELHLSMediaSegment::buildNextSegment(stream.segments.back(), duration, nullptr, uri));
    stream.segments.back()->title = ",";
}

/// A player knows a segment by its number: so the playlist's number rises with each segment that goes, and so does the
/// discontinuity sequence with each EXT-X-DISCONTINUITY that goes (RFC 8216, section 6.2.2).
void dropOldest(VELHLSMediaStream& stream) {
    stream.mediaSequence += 1;
    if (stream.segments.front()->discontinuity) stream.discontinuitySequence += 1;
    stream.segments.erase(stream.segments.begin());
}

/// EXT-X-TARGETDURATION is a whole number that no duration, rounded, exceeds (RFC 8216, section 4.3.3.1).
double neededTargetDuration(const VELHLSMediaStream& stream) {
    double longest = 0.0;
    for (const auto& segment : stream.segments)
        longest = std::max(longest, std::round(segment->duration));
    return longest;
}

int run(double duration, const std::string& uri, const std::string& path) {
    std::ifstream input(path);
    const auto stream = VELHLSMediaStream::parseMediaStream(input, nullptr);
    if (stream == nullptr || stream->segments.empty()) {
        std::cerr << path << ": missing, rejected or without segments\n";
        return 1;
    }
    append(*stream, duration, uri);
    dropOldest(*stream);
    if (neededTargetDuration(*stream) > stream->targetDuration) {
        // It must not change while players read the playlist.
        std::cerr << uri << ": longer than the target duration\n";
        return 1;
    }
    return stream->render(std::cout) == 0 ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 4) {
        std::cerr << "usage: example_extend_live_window SECONDS URI PLAYLIST\n";
        return 2;
    }
    try {
        return run(std::stod(arguments[1]), arguments[2], arguments[3]);
    } catch (const std::exception& error) {
        std::cerr << arguments[3] << ": " << error.what() << "\n";
        return 1;
    }
}
