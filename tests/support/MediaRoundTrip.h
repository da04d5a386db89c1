#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "velhls/VELHLS.h"

/// What the tests share to send media playlists through the library and back.
namespace playlist {

/// The playlist that the text holds; null when it is rejected.
inline std::shared_ptr<VELHLSMediaStream> parsedMedia(const std::string& text) {
    std::istringstream input(text);
    return VELHLSMediaStream::parseMediaStream(input, nullptr);
}

/// The text that the playlist renders. A status that is not 0 stands in front of it.
inline std::string renderedMedia(const VELHLSMediaStream& stream) {
    std::ostringstream text;
    const std::int32_t status = stream.render(text);
    return status == 0 ? text.str() : "status " + std::to_string(status) + ": " + text.str();
}

/// Compares a playlist with the one that was read from its rendered text.
///
/// They are equal but for what rendering is documented not to keep. Each such difference has its function
/// below, and these are all: the title, the target duration, the start offset, the define map, the cues,
/// EXTM3U, the note of a discontinuity, the precision of durations and dates, and empty byte ranges. Sequence
/// numbers are equal when the header tags stood in front of the segments.
class RoundTripComparison {
  public:
    RoundTripComparison(const VELHLSMediaStream& original, const VELHLSMediaStream& reread) {
        compareHeaders(original, reread);
        compare("number of segments", original.segments.size(), reread.segments.size());
        const std::size_t count = std::min(original.segments.size(), reread.segments.size());
        for (std::size_t index = 0; index < count; ++index) {
            where_ = "segment " + std::to_string(index) + ": ";
            compareSegments(*original.segments[index], *reread.segments[index], index);
        }
    }

    /// One line for each difference; empty when there is none.
    [[nodiscard]] std::string differences() const { return differences_.str(); }

  private:
    /// A parsed title keeps its comma, and rendering adds one.
    static std::string titleAfter(const std::string& title) { return title.empty() ? "" : "," + title; }

    /// The target duration is cut to whole seconds.
    static double targetDurationAfter(double seconds) { return std::trunc(seconds); }

    /// The start offset is written with six significant digits.
    static double startOffsetTolerance(double seconds) { return std::abs(seconds) * 1e-5; }

    /// EXT-X-START is not written for an offset of 0.
    static bool startPreciseAfter(const VELHLSMediaStream& stream) {
        return stream.startPrecise && stream.startTimeOffset != 0.0;
    }

    /// EXT-X-DISCONTINUITY is written as the first tag of its segment, wherever it stood.
    static bool discontinuitySeenAfter(const VELHLSMediaStream& stream) {
        for (const auto& segment : stream.segments) {
            if (segment->discontinuity) return true;
        }
        return false;
    }

    /// Durations are written with six decimals, so that start times gather an error with each segment.
    static constexpr double durationTolerance = 0.51e-6;

    /// Dates are written in milliseconds.
    static constexpr double dateTolerance = 0.51e-3;

    /// A byte range of length 0 is not written, and the URI is asked for one then.
    static std::shared_ptr<VELHLSByteRange> byteRangeAfter(const VELHLSMediaSegment& segment) {
        if (segment.byteRange == nullptr || segment.byteRange->length > 0) return segment.byteRange;
        return getByteRangeFromUri(segment.uri);
    }

    /// A byte range of length 0 or less is not written.
    static std::shared_ptr<VELHLSByteRange> byteRangeAfter(const VELHLSMISMap& map) {
        const bool isWritten = map.byteRange != nullptr && map.byteRange->length > 0;
        return isWritten ? map.byteRange : nullptr;
    }

    void compareHeaders(const VELHLSMediaStream& original, const VELHLSMediaStream& reread) {
        compare("hasExtM3U", true, reread.hasExtM3U);
        compare("version", original.version, reread.version);
        compare("targetDuration", targetDurationAfter(original.targetDuration), reread.targetDuration);
        compare("playlistType", original.playlistType, reread.playlistType);
        compare("mediaSequence", original.mediaSequence, reread.mediaSequence);
        compare("discontinuitySequence", original.discontinuitySequence, reread.discontinuitySequence);
        compare("endList", original.endList, reread.endList);
        compare("iFramesOnly", original.iFramesOnly, reread.iFramesOnly);
        compare("independentSegments", original.independentSegments, reread.independentSegments);
        compareNear("startTimeOffset", original.startTimeOffset, reread.startTimeOffset,
                    startOffsetTolerance(original.startTimeOffset));
        compare("startPrecise", startPreciseAfter(original), reread.startPrecise);
        compare("discontinuitySeen", discontinuitySeenAfter(original), reread.discontinuitySeen);
        compare("number of variables", std::size_t{0}, reread.hlsDefineMap->size());
    }

    void compareSegments(const VELHLSMediaSegment& original, const VELHLSMediaSegment& reread,
                         std::size_t index) {
        compareNear("duration", original.duration, reread.duration, durationTolerance);
        compareNear("startTime", original.startTime, reread.startTime,
                    durationTolerance * static_cast<double>(index + 1));
        compareNear("programDateTime", original.programDateTime, reread.programDateTime, dateTolerance);
        compare("mediaSequenceNumber", original.mediaSequenceNumber, reread.mediaSequenceNumber);
        compare("discontinuitySequenceNumber", original.discontinuitySequenceNumber,
                reread.discontinuitySequenceNumber);
        compare("title", titleAfter(original.title), reread.title);
        compare("discontinuity", original.discontinuity, reread.discontinuity);
        compare("uri", original.uri, reread.uri);
        compareByteRanges("byteRange", byteRangeAfter(original), reread.byteRange);
        compareKeys(original.protectionData, reread.protectionData);
        compareMaps(original.misMap, reread.misMap);
        compareCues(reread);
    }

    /// The cues are not written.
    void compareCues(const VELHLSMediaSegment& reread) {
        compare("cueIn", false, reread.cueIn);
        compare("cueOut", std::string(), reread.cueOut);
        compare("cueOutCont", std::string(), reread.cueOutCont);
    }

    void compareByteRanges(std::string_view what, const std::shared_ptr<VELHLSByteRange>& original,
                           const std::shared_ptr<VELHLSByteRange>& reread) {
        compare(what, original != nullptr, reread != nullptr);
        if (original == nullptr || reread == nullptr) return;
        compare("length of range", original->length, reread->length);
        compare("offset of range", original->offset, reread->offset);
    }

    void compareKeys(const std::shared_ptr<VELHLSProtectionData>& original,
                     const std::shared_ptr<VELHLSProtectionData>& reread) {
        compare("protectionData", original != nullptr, reread != nullptr);
        if (original == nullptr || reread == nullptr) return;
        compare("key method", original->method, reread->method);
        compare("key uri", original->uri, reread->uri);
        compare("key iv", original->iv, reread->iv);
        compare("key format", original->keyFormat, reread->keyFormat);
        if (original->keyFormatVersions != reread->keyFormatVersions) note("key format versions");
    }

    void compareMaps(const std::shared_ptr<VELHLSMISMap>& original,
                     const std::shared_ptr<VELHLSMISMap>& reread) {
        compare("misMap", original != nullptr, reread != nullptr);
        if (original == nullptr || reread == nullptr) return;
        compare("map uri", original->uri, reread->uri);
        compareByteRanges("map byte range", byteRangeAfter(*original), reread->byteRange);
    }

    template <typename Value>
    void compare(std::string_view what, const Value& expected, const Value& seen) {
        if (expected == seen) return;
        note(what);
        differences_ << "  expected " << expected << "\n  seen     " << seen << '\n';
    }

    void compareNear(std::string_view what, double expected, double seen, double tolerance) {
        if (!(std::abs(expected - seen) <= tolerance)) compare(what, expected, seen);
    }

    void note(std::string_view what) { differences_ << where_ << what << '\n'; }

    std::string where_;
    std::ostringstream differences_;
};

/// Renders the playlist, reads the text again and compares. Empty when the two are equal but for what
/// rendering is documented not to keep; otherwise one line for each difference.
inline std::string differencesAfterRoundTrip(const VELHLSMediaStream& original) {
    const std::string text = renderedMedia(original);
    const std::shared_ptr<VELHLSMediaStream> reread = parsedMedia(text);
    if (reread == nullptr) return "not read again:\n" + text;
    return RoundTripComparison(original, *reread).differences();
}

}  // namespace playlist
