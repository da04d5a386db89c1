#include "Inputs.h"

#include <cstdint>
#include <random>

namespace inputs {
namespace {

constexpr std::uint32_t seed = 20261121;

std::string padded(std::size_t number, std::size_t width) {
    const std::string digits = std::to_string(number);
    return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

/// Durations between two and ten seconds, to the millisecond.
class Durations {
  public:
    std::string next() {
        const std::size_t milliseconds = 2000 + random_() % 8000;
        return std::to_string(milliseconds / 1000) + "." + padded(milliseconds % 1000, 3);
    }

  private:
    std::mt19937 random_{seed};
};

const std::string vodHeader =
    "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:10\n#EXT-X-PLAYLIST-TYPE:VOD\n";
const std::string endList = "#EXT-X-ENDLIST\n";

std::string vodWithUriStart(std::size_t segments, const std::string& uriStart) {
    Durations durations;
    std::string text = vodHeader;
    for (std::size_t index = 0; index < segments; ++index) {
        text += "#EXTINF:" + durations.next() + ",\n" + uriStart + padded(index, 6) + ".ts\n";
    }
    return text + endList;
}

/// A time of day that goes on from segment to segment.
std::string dateTime(std::size_t index) {
    const std::size_t seconds = index * 4 % 86400;
    return "2026-11-21T" + padded(seconds / 3600, 2) + ":" + padded(seconds / 60 % 60, 2) + ":" +
           padded(seconds % 60, 2) + "." + padded(index * 7 % 1000, 3) + "Z";
}

std::string richSegment(std::size_t index, Durations& durations) {
    std::string text;
    if (index % 100 == 99) text += "#EXT-X-DISCONTINUITY\n";
    if (index % 10 == 0) {
        text += "#EXT-X-KEY:METHOD=AES-128,URI=\"https://keys.example.com/key_" + padded(index, 6) +
                ".bin\",IV=0x" + padded(index, 32) + "\n";
    }
    text += "#EXT-X-PROGRAM-DATE-TIME:" + dateTime(index) + "\n";
    text += "#EXTINF:" + durations.next() + ",\n";
    text += "#EXT-X-BYTERANGE:" + std::to_string(100000 + index % 1000) + "@" +
            std::to_string(index * 101000) + "\n";
    return text + "segment_" + padded(index / 50, 6) + ".mp4\n";
}

std::string rendition(const std::string& type, const std::string& group, std::size_t index) {
    const std::string language = "x" + std::to_string(index);
    return "#EXT-X-MEDIA:TYPE=" + type + ",GROUP-ID=\"" + group + "\",NAME=\"Language " +
           std::to_string(index) + "\",LANGUAGE=\"" + language +
           "\",AUTOSELECT=YES,DEFAULT=" + (index == 0 ? "YES" : "NO") + ",URI=\"" + group + "/" + language +
           "/index.m3u8\"\n";
}

std::string variant(std::size_t index, const std::string& groups) {
    const std::size_t bandwidth = 400000 + index * 1000;
    return "#EXT-X-STREAM-INF:BANDWIDTH=" + std::to_string(bandwidth) +
           ",AVERAGE-BANDWIDTH=" + std::to_string(bandwidth * 9 / 10) +
           ",CODECS=\"avc1.64001f,mp4a.40.2\",RESOLUTION=1280x720,FRAME-RATE=25.000" + groups + "\nvideo/" +
           padded(index, 5) + "/index.m3u8\n";
}

}  // namespace

std::string vod(std::size_t segments) {
    return vodWithUriStart(segments, "segment_");
}

std::string vodWithLongUris(std::size_t segments) {
    const std::string start = "https://cdn.example.com/recordings/2026/11/21/channel-7/1080p/avc/";
    return vodWithUriStart(segments, start + std::string(71 - start.size(), '-'));
}

std::string rich(std::size_t segments) {
    Durations durations;
    std::string text =
        "#EXTM3U\n#EXT-X-VERSION:7\n#EXT-X-TARGETDURATION:10\n#EXT-X-MAP:URI=\"init.mp4\",BYTERANGE=\"720@"
        "0\"\n";
    for (std::size_t index = 0; index < segments; ++index)
        text += richSegment(index, durations);
    return text + endList;
}

std::string live() {
    Durations durations;
    std::string text =
        "#EXTM3U\n#EXT-X-VERSION:6\n#EXT-X-TARGETDURATION:10\n#EXT-X-MEDIA-SEQUENCE:268147\n"
        "#EXT-X-DISCONTINUITY-SEQUENCE:3\n#EXT-X-INDEPENDENT-SEGMENTS\n";
    for (std::size_t index = 0; index < 6; ++index) {
        text += "#EXT-X-PROGRAM-DATE-TIME:" + dateTime(5000 + index) + "\n#EXTINF:" + durations.next() +
                ",\nhttps://live.example.com/channel-7/1080p/20261121/segment_" + padded(268147 + index, 8) +
                ".ts?session=0123456789abcdef\n";
    }
    return text;
}

std::string smallMaster() {
    std::string text = "#EXTM3U\n#EXT-X-VERSION:6\n#EXT-X-INDEPENDENT-SEGMENTS\n";
    for (const char* group : {"audio-low", "audio-high"}) {
        for (std::size_t index = 0; index < 3; ++index)
            text += rendition("AUDIO", group, index);
    }
    for (std::size_t index = 0; index < 4; ++index)
        text += rendition("SUBTITLES", "subtitles", index);
    for (std::size_t index = 0; index < 12; ++index) {
        const std::string audio = index < 6 ? "audio-low" : "audio-high";
        text += variant(index * 500, ",AUDIO=\"" + audio + "\",SUBTITLES=\"subtitles\"");
    }
    for (std::size_t index = 0; index < 4; ++index) {
        text += "#EXT-X-I-FRAME-STREAM-INF:BANDWIDTH=" + std::to_string(90000 + index * 60000) +
                ",CODECS=\"avc1.64001f\",RESOLUTION=640x360,URI=\"iframes/" + std::to_string(index) +
                "/index.m3u8\"\n";
    }
    return text;
}

std::string largeMaster(std::size_t variants) {
    std::string text = "#EXTM3U\n#EXT-X-VERSION:6\n";
    for (std::size_t index = 0; index < variants; ++index)
        text += variant(index, "");
    return text;
}

std::string pattern(std::size_t segments) {
    return "#EXTM3U\n#EXT-X-TARGETDURATION:4\n#EXT-X-DEFINE:NAME=\"n\",VALUE=\"100000\"\n"
           "#ZOR-PATTERN_START:p\n#EXTINF:3.840,\nsegment_{$n}.ts\n#ZOR-DEFINE_INCREMENT:n,1\n"
           "#ZOR-PATTERN_END:p\n#ZOR-PATTERN_REPEAT:p," +
           std::to_string(segments - 1) + "\n" + endList;
}

std::string patternWrittenOut(std::size_t segments) {
    std::string text = "#EXTM3U\n#EXT-X-TARGETDURATION:4\n";
    for (std::size_t index = 0; index < segments; ++index)
        text += "#EXTINF:3.840,\nsegment_" + std::to_string(100000 + index) + ".ts\n";
    return text + endList;
}

}  // namespace inputs
