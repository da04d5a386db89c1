#include "tests/comparison/LiveOrigin.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace live_origin {
namespace {

/// Of twelve segments the last three are an advertisement.
constexpr std::size_t cycle = 12;
constexpr std::size_t programme = 9;
constexpr std::size_t segmentsOfKey = 7;
constexpr std::size_t milliseconds = 6000;
constexpr std::size_t shorter = 4800;

std::size_t durationOf(std::size_t number) {
    // The last segment of the programme is cut off by the advertisement.
    return number % cycle == programme - 1 ? shorter : milliseconds;
}

std::size_t startOf(std::size_t number) {
    const std::size_t wholeCycle = (cycle - 1) * milliseconds + shorter;
    const std::size_t inCycle = number % cycle;
    return number / cycle * wholeCycle + inCycle * milliseconds -
           (inCycle >= programme ? milliseconds - shorter : 0);
}

bool isAdvertisement(std::size_t number) {
    return number % cycle >= programme;
}

bool isDiscontinuous(std::size_t number) {
    return number > 0 && (number % cycle == 0 || number % cycle == programme);
}

std::string dateAt(std::size_t time) {
    std::array<char, 64> text = {};
    const std::size_t seconds = time / 1000;
    static_cast<void>(std::snprintf(text.data(), text.size(), "2026-11-%02zuT%02zu:%02zu:%02zu.%03zuZ",
                                    1 + seconds / 86400, seconds / 3600 % 24, seconds / 60 % 60, seconds % 60,
                                    time % 1000));
    return text.data();
}

std::string secondsText(std::size_t time) {
    std::array<char, 32> text = {};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%zu.%03zu", time / 1000, time % 1000));
    return text.data();
}

std::string keyOf(std::size_t number) {
    if (isAdvertisement(number)) return "METHOD=NONE";
    return "METHOD=AES-128,URI=\"key" + std::to_string(number / segmentsOfKey) + "\"";
}

Segment segmentAt(std::size_t number) {
    Segment segment;
    segment.number = number;
    const bool isAd = isAdvertisement(number);
    segment.uri = (isAd ? "ad" : "film") + std::to_string(number) + ".m4s";
    segment.duration = secondsText(durationOf(number));
    segment.date = dateAt(startOf(number));
    segment.key = keyOf(number);
    segment.map = isAd ? "URI=\"ad.mp4\"" : "URI=\"film.mp4\"";
    segment.isDiscontinuous = isDiscontinuous(number);
    if (number % cycle == programme) segment.cue = "EXT-X-CUE-OUT:18.000";
    if (number % cycle > programme)
        segment.cue = "EXT-X-CUE-OUT-CONT:" + std::to_string(number % cycle - programme);
    if (number % cycle == 0 && number > 0) segment.cue = "EXT-X-CUE-IN";
    return segment;
}

/// The range of the advertisement in this cycle, from when its first segment is listed until its last one is not.
void appendRange(std::size_t number, std::size_t first, std::size_t last, const Style& style,
                 std::vector<std::string>& ranges) {
    const std::size_t start = number * cycle + programme;
    const std::size_t end = (number + 1) * cycle;
    if (start > last || end <= first) return;
    const std::string begin =
        "ID=\"ad-" + std::to_string(number) + "\",START-DATE=\"" + dateAt(startOf(start)) + "\"";
    const std::string planned = begin + ",CLASS=\"ads\",PLANNED-DURATION=18";
    const bool hasEnded = last >= end - 1;
    if (hasEnded && !style.endsInSecondTag) {
        ranges.push_back(planned + ",DURATION=18.000");
        return;
    }
    ranges.push_back(planned);
    if (hasEnded) ranges.push_back(begin + ",DURATION=18");
}

void appendDate(const Segment& segment, bool isFirst, const Style& style, std::string& text) {
    if (segment.date.empty()) return;
    if (isFirst || style.datesEverySegment || segment.isDiscontinuous)
        text += "#EXT-X-PROGRAM-DATE-TIME:" + segment.date + "\n";
}

void appendInForce(const Segment& segment, const Segment* before, const Style& style, std::string& text) {
    const bool isNewKey = before == nullptr ? segment.key != "METHOD=NONE" : before->key != segment.key;
    const bool isNewMap = before == nullptr || before->map != segment.map;
    if (!segment.key.empty() && (isNewKey || style.keysEverySegment))
        text += "#EXT-X-KEY:" + segment.key + "\n";
    if (!segment.map.empty() && isNewMap) text += "#EXT-X-MAP:" + segment.map + "\n";
}

std::string lineOf(const std::string& name, const std::string& value) {
    return value.empty() ? std::string() : "#" + name + ":" + value + "\n";
}

}  // namespace

std::string Version::text() const {
    std::string text =
        "#EXTM3U\n" + lineOf("EXT-X-VERSION", version) + lineOf("EXT-X-TARGETDURATION", targetDuration) +
        lineOf("EXT-X-MEDIA-SEQUENCE", mediaSequence) +
        lineOf("EXT-X-DISCONTINUITY-SEQUENCE", discontinuitySequence) + lineOf("EXT-X-PLAYLIST-TYPE", type);
    std::string ranges;
    for (const std::string& range : dateRanges)
        ranges += lineOf("EXT-X-DATERANGE", range);
    if (style.rangesFirst) text += ranges;
    const Segment* before = nullptr;
    for (const Segment& segment : segments) {
        if (segment.isDiscontinuous) text += "#EXT-X-DISCONTINUITY\n";
        appendInForce(segment, before, style, text);
        appendDate(segment, before == nullptr, style, text);
        if (!segment.cue.empty()) text += "#" + segment.cue + "\n";
        text += "#EXTINF:" + segment.duration + "," + segment.title + "\n" + segment.uri + "\n";
        before = &segment;
    }
    if (!style.rangesFirst) text += ranges;
    return text + (isEnded ? "#EXT-X-ENDLIST\n" : "");
}

Version versionAt(std::size_t lastNumber, const Style& style) {
    Version version;
    const std::size_t count = std::min(style.window, lastNumber + 1);
    const std::size_t first = lastNumber + 1 - count;
    version.style = style;
    version.targetDuration = "6";
    version.version = "6";
    version.mediaSequence = std::to_string(first);
    std::size_t discontinuities = 0;
    for (std::size_t number = 0; number < first; ++number)
        discontinuities += isDiscontinuous(number) ? 1 : 0;
    version.discontinuitySequence = std::to_string(discontinuities);
    for (std::size_t number = first; number <= lastNumber; ++number)
        version.segments.push_back(segmentAt(number));
    for (std::size_t number = 0; number <= lastNumber / cycle; ++number)
        appendRange(number, first, lastNumber, style, version.dateRanges);
    return version;
}

}  // namespace live_origin
