// Writes a playlist of many segments as a media pattern (vendor extension), and shows what it expands to.
//
//     example_expand_patterns 3
//
// does so for three segments.

#include <cstdint>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>

#include "velhls/VELHLS.h"

namespace {

/// The first pass makes one segment, and each repetition one more.
std::string playlistWithPattern(std::uint64_t segmentCount) {
    std::ostringstream text;
    text << "#EXTM3U\n"
            "#EXT-X-VERSION:3\n"
            "#EXT-X-TARGETDURATION:4\n"
            "#EXT-X-DEFINE:NAME=\"number\",VALUE=\"0\"\n"
            "#ZOR-PATTERN_START:all\n"
            "#EXTINF:4,\n"
            "video/segment{$number}.ts\n"
            "#ZOR-DEFINE_INCREMENT:number,1\n"
            "#ZOR-PATTERN_END:all\n"
         << "#ZOR-PATTERN_REPEAT:all," << segmentCount - 1 << "\n"
         << "#EXT-X-ENDLIST\n";
    return text.str();
}

/// Without dates of its own a playlist would get those of 1970 from its second segment on.
void removeDates(VELHLSMediaStream& stream) {
    for (const auto& segment : stream.segments)
        segment->programDateTime = 0.0;
}

int run(std::uint64_t segmentCount) {
    const std::string text = playlistWithPattern(segmentCount);
    std::cout << text << "\nexpands to\n\n";
    std::istringstream input(text);
    VELHLSParsingStatus status;
    const auto stream = VELHLSMediaStream::parseMediaStream(input, &status);
    if (stream == nullptr) {
        // More segments than VELHLSMediaPattern::maximumExpansionSegments, for instance.
        std::cerr << "rejected: " << (status.message.empty() ? "the pattern does not expand" : status.message)
                  << "\n";
        return 1;
    }
    removeDates(*stream);
    return stream->render(std::cout) == 0 ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::cerr << "usage: example_expand_patterns SEGMENTS\n";
        return 2;
    }
    try {
        return run(std::stoull(arguments[1]));
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
