#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

#include "velhls/common/VELHLSExport.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSUtility.h"
#include "velhls/media/VELHLSByteRange.h"
#include "velhls/media/VELHLSMISMap.h"
#include "velhls/media/VELHLSProtectionData.h"

class VELHLSMediaPattern;

/// One media segment: the tags that describe it, and its URI (RFC 8216, section 4.3.2).
///
///     #EXT-X-DISCONTINUITY                             discontinuity
///     #EXT-X-KEY:METHOD=AES-128,URI="k"                protectionData   (shared with the segments after it)
///     #EXT-X-MAP:URI="init.mp4"                        misMap           (shared with the segments after it)
///     #EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:00Z    programDateTime
///     #EXT-X-CUE-OUT:30                                cueOut           (not written by render)
///     #EXTINF:6.006,Intro                              duration, title  (the title keeps its comma: ",Intro")
///     #EXT-X-BYTERANGE:1024@0                          byteRange
///     seg1.ts                                          uri
///
/// A segment is not changed by the library once it was made. Segments share their key and map objects.
class VELHLS_API VELHLSMediaSegment {
  public:
    /// A segment without anything, to be filled member by member; it validates once it has a duration and a URI.
    VELHLSMediaSegment() = default;

    /// Stores every argument in the member of its name and checks nothing. The order of the arguments is not
    /// that of the members.
    ///
    ///     VELHLSMediaSegment segment(6.006,                  // duration
    ///                                0.0,                    // startTime
    ///                                100, 3,                 // mediaSequenceNumber, discontinuitySequenceNumber
    ///                                "Intro",                // title: `render` puts a comma before it
    ///                                nullptr,                // byteRange: the whole resource
    ///                                false,                  // discontinuity
    ///                                0.0,                    // programDateTime: none
    ///                                nullptr, nullptr,       // protectionData, misMap: none
    ///                                "segment100.ts",        // uri
    ///                                false, "", "");         // cueIn, cueOut, cueOutCont: none
    ///
    /// A parsed title has a comma of its own. To make the segments after the first one, buildNextSegment asks
    /// for less.
    VELHLSMediaSegment(double duration, double startTime, std::uint64_t mediaSequenceNumber,
                       std::uint64_t discontinuitySequenceNumber, const std::string& title,
                       std::shared_ptr<VELHLSByteRange> byteRange, bool discontinuity, double programDateTime,
                       std::shared_ptr<VELHLSProtectionData> protectionData,
                       std::shared_ptr<VELHLSMISMap> misMap, const std::string& uri, bool cueIn,
                       const std::string& cueOut, const std::string& cueOutCont);

    /// Reads one segment: `line`, the first line that belongs to it and that the caller has just read, and
    /// the lines after it in `input` up to and including the segment's URI.
    ///
    /// `previous` is the segment before it, or null: the new one takes over its key, map and numbering, and
    /// without it starts at the two given sequence numbers. `defines` takes the variables of EXT-X-DEFINE.
    /// `status` may be null.
    ///
    /// Returns a new segment, which validates; or null. Null stands for: a stream that is not good on entry;
    /// a tag that does not parse; a tag, with or without a colon, that is none of a segment's; an EXTINF
    /// whose comma follows its colon, or whose duration is 0; the end of the input; a segment that does not
    /// validate; a media pattern tag. When a "ZOR-PATTERN_START" opens a media pattern (vendor extension),
    /// `pattern` receives it, and null is returned. A ZOR-PATTERN_START without a colon stores nothing; any
    /// other pattern tag sets the status' error to VELHLSParsingErrorMediaPattern and its message to the
    /// line. All of them set `hasMediaPatterns`. Why and where it is, tells the parse of a playlist: see VELHLSReason.
    ///
    /// Throws std::invalid_argument or std::out_of_range for a number that is none or does not fit, and
    /// std::out_of_range for a URI of fewer than 6 characters without EXT-X-BYTERANGE: see
    /// getByteRangeFromUri.
    ///
    /// Kept as is:
    /// - A last line that ends the input without a line feed is read and not looked at: a URI there gives
    ///   null.
    /// - The title keeps its comma, and a segment without EXT-X-BYTERANGE may take one from its URI.
    /// - Without EXT-X-PROGRAM-DATE-TIME a segment gets the previous one's time plus its duration, also when
    ///   that one had none (0): the second segment of a playlist without any then starts at the first one's
    ///   duration.
    /// - A tag that comes twice replaces the first.
    /// - Nothing is substituted here: variables are replaced in the URI lines of media patterns only.
    [[nodiscard]] static std::shared_ptr<VELHLSMediaSegment> parseNextSegment(
        const std::shared_ptr<VELHLSMediaSegment>& previous, const std::string& line, std::istream& input,
        std::shared_ptr<VELHLSMediaPattern>& pattern, std::uint64_t firstMediaSequenceNumber,
        std::uint64_t firstDiscontinuitySequenceNumber, std::shared_ptr<VELHLSDefineMap> defines,
        VELHLSParsingStatus* status);

    /// Makes the segment that follows `previous`, which must not be null, to extend a playlist. It shares the
    /// byte range (which may be null), and the key and map of `previous`; it has no title and no
    /// discontinuity. Its program date-time continues that of `previous`, or is 0 when that is 0. The result
    /// is not validated.
    [[nodiscard]] static std::shared_ptr<VELHLSMediaSegment> buildNextSegment(
        const std::shared_ptr<VELHLSMediaSegment>& previous, double duration,
        const std::shared_ptr<VELHLSByteRange>& byteRange, const std::string& uri);

    /// True when the URI is not empty, the duration is not exactly 0, the byte range (if any) has no negative
    /// length, and key and map (if any) validate. Kept as is: a negative duration passes, and not-a-number
    /// too.
    [[nodiscard]] bool validate() const;

    /// Appends the segment's lines. The key's and the map's are written when the flags ask for them, whether
    /// or not they are those of the segment before. Returns 0, or -1 with nothing appended when the segment,
    /// its key or its map does not validate.
    ///
    /// Kept as is: the duration has six decimals, and a title is written after a comma, so a parsed title
    /// gets a second one ("#EXTINF:10.000000,,Intro"). A byte range of length 0 and cue markers are not
    /// written, nor is a program date-time of 0 or less. Infinite and not-a-number durations are written as
    /// "inf" and "nan".
    [[nodiscard]] std::int32_t render(std::string& out, bool renderKey, bool renderMap) const;

    /// EXTINF: seconds. 0 means none, and makes the segment invalid.
    double duration = 0.0;

    /// Start on the playlist's own timeline in seconds: the durations of the segments before it, summed up.
    double startTime = 0.0;

    /// Media sequence number.
    std::uint64_t mediaSequenceNumber = 0;

    /// Discontinuity sequence number.
    std::uint64_t discontinuitySequenceNumber = 0;

    /// Title of EXTINF with the comma before it; empty when there is not even a comma.
    std::string title;

    /// EXT-X-BYTERANGE, or the range in the URI (vendor extension); null when there is neither.
    std::shared_ptr<VELHLSByteRange> byteRange;

    /// EXT-X-DISCONTINUITY stands before this segment.
    bool discontinuity = false;

    /// The key in force; null when there is none.
    std::shared_ptr<VELHLSProtectionData> protectionData;

    /// The initialization section in force; null when there is none.
    std::shared_ptr<VELHLSMISMap> misMap;

    /// Time of the first sample in seconds since the Unix epoch; 0 means none.
    double programDateTime = 0.0;

    /// The URI line without its trailing white space, not resolved (VELHLS.h).
    std::string uri;

    /// EXT-X-CUE-IN stood among the segment's tags (vendor extension; not written by `render`).
    bool cueIn = false;

    /// The text after the colon of EXT-X-CUE-OUT (vendor extension; not written by `render`); empty when there
    /// is none, and when the tag has no colon.
    std::string cueOut;

    /// The text after the colon of EXT-X-CUE-OUT-CONT (vendor extension; not written by `render`).
    std::string cueOutCont;

  protected:
    /// For the library's own reader, which sets all other members in place.
    VELHLSMediaSegment(std::string_view titleText, std::string_view uriText)
        : title(titleText), uri(uriText) {}
};
