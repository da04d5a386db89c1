#include "velhls/standard/UriSuffix.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace velhls {
namespace {

struct Row {
    std::string_view suffix;
    SegmentFormat format;
};

constexpr std::array rows = {
    Row{"ts", SegmentFormat::transportStream}, Row{"m2ts", SegmentFormat::transportStream},
    Row{"mp4", SegmentFormat::fragmentedMp4},  Row{"m4s", SegmentFormat::fragmentedMp4},
    Row{"m4v", SegmentFormat::fragmentedMp4},  Row{"m4a", SegmentFormat::fragmentedMp4},
    Row{"m4f", SegmentFormat::fragmentedMp4},  Row{"cmfv", SegmentFormat::fragmentedMp4},
    Row{"cmfa", SegmentFormat::fragmentedMp4}, Row{"cmft", SegmentFormat::fragmentedMp4},
    Row{"aac", SegmentFormat::packedAudio},    Row{"mp3", SegmentFormat::packedAudio},
    Row{"ac3", SegmentFormat::packedAudio},    Row{"ec3", SegmentFormat::packedAudio},
    Row{"vtt", SegmentFormat::webVtt},         Row{"webvtt", SegmentFormat::webVtt},
};

}  // namespace

std::string_view suffixOf(std::string_view uri) {
    if (uri.find('?') == std::string_view::npos && uri.find('#') == std::string_view::npos) {
        // Nothing follows the path, so its end is where to look.
        std::size_t start = uri.size();
        while (start > 0 && uri[start - 1] != '.' && uri[start - 1] != '/')
            --start;
        return start == 0 || uri[start - 1] == '/' ? std::string_view() : uri.substr(start);
    }
    std::size_t start = 0;
    for (std::size_t place = 0; place < uri.size(); ++place) {
        const char character = uri[place];
        if (character == '?' || character == '#')
            return start == 0 ? std::string_view() : uri.substr(start, place - start);
        if (character == '/') start = 0;
        if (character == '.') start = place + 1;
    }
    return start == 0 ? std::string_view() : uri.substr(start);
}

SegmentFormat formatOf(std::string_view uri) {
    const std::string_view suffix = suffixOf(uri);
    const auto row =
        std::find_if(rows.begin(), rows.end(), [suffix](const Row& each) { return each.suffix == suffix; });
    return row == rows.end() ? SegmentFormat::unknown : row->format;
}

}  // namespace velhls
