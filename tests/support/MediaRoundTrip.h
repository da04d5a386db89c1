#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <stdexcept>
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

/// The text that the playlist renders. A status that is not 0 stands before it.
inline std::string renderedMedia(const VELHLSMediaStream& stream) {
    std::ostringstream text;
    const std::int32_t status = stream.render(text);
    return status == 0 ? text.str() : "status " + std::to_string(status) + ": " + text.str();
}

namespace rewritten {

/// What is read from the digits that are written of a number.
inline double asPrinted(const char* format, double number) {
    std::array<char, 400> text;
    static_cast<void>(std::snprintf(text.data(), text.size(), format, number));
    return std::strtod(text.data(), nullptr);
}

/// Durations are written with six decimals.
inline double duration(double seconds) {
    return asPrinted("%.6f", seconds);
}

/// The start offset is written with six significant digits.
inline double startOffset(double seconds) {
    return asPrinted("%.6g", seconds);
}

/// The target duration is cut to whole seconds, and to what 32 bits hold.
inline double targetDuration(double seconds) {
    return std::min(std::trunc(seconds), 2147483647.0);
}

/// Dates are written in milliseconds, and those far ahead cut off after 31 characters: -1.0 when it cannot be read
/// again.
inline double date(double seconds) {
    std::string text;
    VELHLSUtility::renderTimestamp(seconds, text);
    try {
        return VELHLSUtility::parseTimestamp(text);
    } catch (const std::invalid_argument&) {
        return -1.0;
    }
}

/// The first line of a segment that a pattern makes keeps its carriage returns; no other line does.
inline std::string text(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

/// A byte range of length 0 or less is not written.
inline bool isWritten(const std::shared_ptr<VELHLSByteRange>& range) {
    return range != nullptr && range->length > 0;
}

}  // namespace rewritten

/// Why the library rejects what the playlist renders, or throws; empty when it reads it.
inline std::string reasonNotToBeRead(const VELHLSMediaStream& stream) {
    std::array<char, 32> offset;
    static_cast<void>(std::snprintf(offset.data(), offset.size(), "%.6g", stream.startTimeOffset));
    if (std::string_view(offset.data()).find('e') != std::string_view::npos) {
        return "a start offset with an exponent";
    }
    for (const auto& segment : stream.segments) {
        if (rewritten::duration(segment->duration) == 0.0) return "a duration that is rounded to 0";
        const bool isDated = segment->programDateTime > 0.0;
        if (isDated && rewritten::date(segment->programDateTime) < 0.0) return "a date that is cut off";
        const auto& key = segment->protectionData;
        const bool hasKey = key != nullptr && key->method != VELHLSProtectionData::None;
        if (hasKey && rewritten::text(key->uri).empty()) return "a key's URI of carriage returns";
        const auto& map = segment->misMap;
        if (map != nullptr && rewritten::text(map->uri).empty()) return "a map's URI of carriage returns";
        if (segment->byteRange == nullptr || rewritten::isWritten(segment->byteRange)) continue;
        try {
            const auto range = getByteRangeFromUri(segment->uri);
            if (range != nullptr && range->length < 0)
                return "an empty byte range, and a negative one in the URI";
        } catch (const std::out_of_range&) {
            return "an empty byte range, and a URI that throws";
        }
    }
    return {};
}

/// Compares a playlist that was parsed with the one that was read from its rendered text.
///
/// They are equal to the last bit but for what rendering is documented not to keep. Each such exception has its function
/// below or in `rewritten`, and these are all.
///
/// Header: EXTM3U is always there; the target duration is cut to whole seconds of 32 bits; the start offset has six
/// digits, and with an offset of 0 EXT-X-START is not written; variables are not; a discontinuity that was not the first
/// tag of its segment is.
///
/// Segments: durations have six decimals, and so start times add up to others; dates have milliseconds, and those that are
/// not after the epoch are not written, so that they are counted on from the segment before; sequence numbers count on
/// from the header's last values; a title gains a comma; cues are not written; a byte range of length 0 is not written, and
/// the URI asked for one; carriage returns, which the first line of a pattern's segment keeps, are lost.
///
/// `reasonNotToBeRead` names the playlists whose text the library itself rejects.
class RoundTripComparison {
  public:
    RoundTripComparison(const VELHLSMediaStream& original, const VELHLSMediaStream& reread) {
        compareHeaders(original, reread);
        compare("number of segments", original.segments.size(), reread.segments.size());
        const std::size_t count = std::min(original.segments.size(), reread.segments.size());
        discontinuitySequence_ = static_cast<std::uint64_t>(original.discontinuitySequence);
        mediaSequence_ = static_cast<std::uint64_t>(original.mediaSequence);
        for (std::size_t index = 0; index < count; ++index) {
            where_ = "segment " + std::to_string(index) + ": ";
            compareSegments(*original.segments[index], *reread.segments[index]);
        }
    }

    /// One line for each difference; empty when there is none.
    [[nodiscard]] std::string differences() const { return differences_.str(); }

  private:
    /// A parsed title keeps its comma, and rendering adds one.
    static std::string titleAfter(const std::string& title) {
        return title.empty() ? "" : "," + rewritten::text(title);
    }

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

    /// Without a date of its own a segment follows the one before, which the first has not.
    double dateAfter(const VELHLSMediaSegment& segment) const {
        return segment.programDateTime > 0.0 ? rewritten::date(segment.programDateTime) : nextDate_;
    }

    /// A byte range of length 0 is not written, and the URI is asked for one then.
    static std::shared_ptr<VELHLSByteRange> byteRangeAfter(const VELHLSMediaSegment& segment) {
        const bool isKept = segment.byteRange == nullptr || rewritten::isWritten(segment.byteRange);
        return isKept ? segment.byteRange : getByteRangeFromUri(segment.uri);
    }

    /// A byte range of length 0 or less is not written.
    static std::shared_ptr<VELHLSByteRange> byteRangeAfter(const VELHLSMISMap& map) {
        return rewritten::isWritten(map.byteRange) ? map.byteRange : nullptr;
    }

    void compareHeaders(const VELHLSMediaStream& original, const VELHLSMediaStream& reread) {
        compare("hasExtM3U", true, reread.hasExtM3U);
        compare("version", original.version, reread.version);
        compare("targetDuration", rewritten::targetDuration(original.targetDuration), reread.targetDuration);
        compare("playlistType", original.playlistType, reread.playlistType);
        compare("mediaSequence", original.mediaSequence, reread.mediaSequence);
        compare("discontinuitySequence", original.discontinuitySequence, reread.discontinuitySequence);
        compare("endList", original.endList, reread.endList);
        compare("iFramesOnly", original.iFramesOnly, reread.iFramesOnly);
        compare("independentSegments", original.independentSegments, reread.independentSegments);
        compareNumbers("startTimeOffset", rewritten::startOffset(original.startTimeOffset),
                       reread.startTimeOffset);
        compare("startPrecise", startPreciseAfter(original), reread.startPrecise);
        compare("discontinuitySeen", discontinuitySeenAfter(original), reread.discontinuitySeen);
        compare("number of variables", std::size_t{0}, reread.hlsDefineMap->size());
    }

    void compareSegments(const VELHLSMediaSegment& original, const VELHLSMediaSegment& reread) {
        const double duration = rewritten::duration(original.duration);
        const double date = dateAfter(original);
        discontinuitySequence_ += original.discontinuity ? 1 : 0;
        compareNumbers("duration", duration, reread.duration);
        compareNumbers("startTime", startTime_, reread.startTime);
        compareNumbers("programDateTime", date, reread.programDateTime);
        compare("mediaSequenceNumber", mediaSequence_, reread.mediaSequenceNumber);
        compare("discontinuitySequenceNumber", discontinuitySequence_, reread.discontinuitySequenceNumber);
        compare("title", titleAfter(original.title), reread.title);
        compare("discontinuity", original.discontinuity, reread.discontinuity);
        compare("uri", original.uri, reread.uri);
        compareByteRanges("byteRange", byteRangeAfter(original), reread.byteRange);
        compareKeys(original.protectionData, reread.protectionData);
        compareMaps(original.misMap, reread.misMap);
        compareCues(reread);
        ++mediaSequence_;
        startTime_ += duration;
        nextDate_ = date + duration;
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
        compare("key uri", rewritten::text(original->uri), reread->uri);
        compare("key iv", original->iv, reread->iv);
        compare("key format", rewritten::text(original->keyFormat), reread->keyFormat);
        if (original->keyFormatVersions != reread->keyFormatVersions) note("key format versions");
    }

    void compareMaps(const std::shared_ptr<VELHLSMISMap>& original,
                     const std::shared_ptr<VELHLSMISMap>& reread) {
        compare("misMap", original != nullptr, reread != nullptr);
        if (original == nullptr || reread == nullptr) return;
        compare("map uri", rewritten::text(original->uri), reread->uri);
        compareByteRanges("map byte range", byteRangeAfter(*original), reread->byteRange);
    }

    template <typename Value>
    void compare(std::string_view what, const Value& expected, const Value& seen) {
        if (expected == seen) return;
        note(what);
        differences_ << "  expected " << expected << "\n  seen     " << seen << '\n';
    }

    /// Equal numbers, or both of them none.
    void compareNumbers(std::string_view what, double expected, double seen) {
        if (std::isnan(expected) && std::isnan(seen)) return;
        compare(what, expected, seen);
    }

    void note(std::string_view what) { differences_ << where_ << what << '\n'; }

    std::string where_;
    std::ostringstream differences_;
    /// What the next segment's are when it is read again.
    std::uint64_t mediaSequence_ = 0;
    std::uint64_t discontinuitySequence_ = 0;
    double startTime_ = 0.0;
    double nextDate_ = 0.0;
};

/// The text without what changes when it is read and written again: the commas that titles gain, and dates, which the
/// comparison looks at.
inline std::string withoutCommasAndDates(const std::string& text) {
    std::istringstream lines(text);
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("#EXT-X-PROGRAM-DATE-TIME:", 0) == 0) continue;
        const std::size_t comma = line.rfind("#EXTINF:", 0) == 0 ? line.find(',') : std::string::npos;
        if (comma != std::string::npos) line.erase(comma, line.find_first_not_of(',', comma) - comma);
        kept += line + "\n";
    }
    return kept;
}

/// A segment's empty byte range, which is not written, hides one in its URI.
inline bool gainsRange(const VELHLSMediaStream& stream) {
    return std::any_of(stream.segments.begin(), stream.segments.end(), [](const auto& segment) {
        const bool isHidden = segment->byteRange != nullptr && !rewritten::isWritten(segment->byteRange);
        return isHidden && rewritten::isWritten(getByteRangeFromUri(segment->uri));
    });
}

/// Renders the playlist, reads the text again and compares. Empty when the two are equal but for what
/// rendering is documented not to keep; otherwise one line for each difference.
inline std::string differencesAfterRoundTrip(const VELHLSMediaStream& original) {
    const std::string text = renderedMedia(original);
    const std::string reason = reasonNotToBeRead(original);
    std::shared_ptr<VELHLSMediaStream> reread;
    try {
        reread = parsedMedia(text);
    } catch (const std::logic_error&) {
        if (reason.empty()) return "throws when it is read again:\n" + text;
    }
    if (!reason.empty()) return reread == nullptr ? "" : "read again in spite of " + reason + ":\n" + text;
    if (reread == nullptr) return "not read again:\n" + text;
    const std::string differences = RoundTripComparison(original, *reread).differences();
    if (!differences.empty()) return differences + text;
    // A range that only the URI told is written from the second time on: then the third text is that of the second.
    const std::string first = gainsRange(original) ? renderedMedia(*reread) : text;
    const std::string again = renderedMedia(*parsedMedia(first));
    const bool isFixedPoint = withoutCommasAndDates(again) == withoutCommasAndDates(rewritten::text(first));
    return isFixedPoint ? "" : "written differently the second time:\n" + first + "\n" + again;
}

}  // namespace playlist
