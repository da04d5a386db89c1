#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// A live origin: a window that slides over a programme with advertisements, keys that change, dates and date ranges. It keeps
/// all that RFC 8216 demands of updates.
namespace live_origin {

/// How the origin writes what RFC 8216 leaves open.
struct Style {
    std::size_t window = 8;
    /// A date for each segment, or only for the first one and after each discontinuity.
    bool datesEverySegment = true;
    /// The end of a range by a second tag with its ID, or in its one tag.
    bool endsInSecondTag = true;
    /// All date ranges before the first segment, or each before the segment where it begins.
    bool rangesFirst = false;
    /// EXT-X-KEY before each segment, or only where it changes.
    bool keysEverySegment = false;
};

/// One segment as it is written.
struct Segment {
    std::size_t number = 0;
    std::string uri;
    std::string duration;
    std::string date;
    std::string key;
    std::string map;
    std::string cue;
    std::string title;
    bool isDiscontinuous = false;
};

/// A version before it is written, so that a test may plant a fault.
struct Version {
    std::string targetDuration;
    std::string version;
    std::string mediaSequence;
    std::string discontinuitySequence;
    std::string type;
    std::vector<std::string> dateRanges;
    std::vector<Segment> segments;
    bool isEnded = false;
    Style style;

    [[nodiscard]] std::string text() const;
};

/// The version whose last segment has this number.
[[nodiscard]] Version versionAt(std::size_t lastNumber, const Style& style);

}  // namespace live_origin
