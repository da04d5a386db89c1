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

SegmentFormat formatOf(std::string_view uri) {
    const std::string_view path = uri.substr(0, uri.find_first_of("?#"));
    const std::string_view name = path.substr(path.find_last_of('/') + 1);
    const std::size_t dot = name.find_last_of('.');
    if (dot == std::string_view::npos) return SegmentFormat::unknown;
    const auto row = std::find_if(rows.begin(), rows.end(), [suffix = name.substr(dot + 1)](const Row& each) {
        return each.suffix == suffix;
    });
    return row == rows.end() ? SegmentFormat::unknown : row->format;
}

}  // namespace velhls
