#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <ostream>
#include <string_view>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSReason.h"
#include "velhls/common/VELHLSUtility.h"
#include "velhls/media/VELHLSMediaSegment.h"

/// One media playlist (RFC 8216, section 4.3.3): its header values and its segments.
///
///     #EXTM3U                                  hasExtM3U
///     #EXT-X-VERSION:6                         version
///     #EXT-X-TARGETDURATION:6                  targetDuration
///     #EXT-X-PLAYLIST-TYPE:VOD                 playlistType
///     #EXT-X-MEDIA-SEQUENCE:100                mediaSequence
///     #EXT-X-DISCONTINUITY-SEQUENCE:3          discontinuitySequence
///     #EXT-X-INDEPENDENT-SEGMENTS              independentSegments
///     #EXT-X-START:TIME-OFFSET=-12.5           startTimeOffset, startPrecise
///     #EXT-X-DEFINE:NAME="n",VALUE="1"         hlsDefineMap["n"]
///     #EXTINF:6.006,                           segments[0]
///     segment100.ts
///     #EXT-X-ENDLIST                           endList
///
/// A playlist owns its segments through shared pointers. Nothing in the library changes it once it was
/// returned, but for `setHLSDefineMap`; it may be read from several threads.
class VELHLS_API VELHLSMediaStream {
  public:
    /// EXT-X-PLAYLIST-TYPE.
    enum PlaylistType : std::int32_t {
        None = 0,   ///< no such tag
        Event = 1,  ///< "EVENT"
        Vod = 2,    ///< "VOD"
    };

    /// The text of an EXT-X-PLAYLIST-TYPE, as a playlist has it: "EVENT" or "VOD". Empty for None, and for a
    /// value that is no type.
    [[nodiscard]] static std::string_view textOf(PlaylistType type) noexcept;

    /// Reads a media playlist from the stream. Returns null when the playlist is rejected: the overload that takes
    /// a text says why and where. `status` may be null.
    ///
    /// On success the status' error is set to VELHLSParsingErrorNone. A rejection for a media pattern tag
    /// sets it to VELHLSParsingErrorMediaPattern, with the line as the message, except that a
    /// ZOR-PATTERN_START without a colon and a pattern that is read but does not expand store nothing; all
    /// others leave both as they were. The metrics are written in all these cases. The exceptions of number
    /// conversion (std::invalid_argument, std::out_of_range) are not caught, nor those of a stream that was
    /// told to throw: they leave this function, and then the metrics are not written. When memory runs out
    /// std::bad_alloc leaves it, and error, message and metrics are as they were.
    ///
    /// A playlist is rejected for: a line that is no tag, no comment, not blank and no segment's URI; an
    /// EXT-X-TARGETDURATION that is empty or holds other characters than digits and points; an
    /// EXT-X-MEDIA-SEQUENCE or EXT-X-DISCONTINUITY-SEQUENCE that is empty or holds others than digits; an
    /// EXT-X-PLAYLIST-TYPE other than EVENT and VOD; an EXT-X-START without a TIME-OFFSET made of the
    /// characters "+-0123456789."; an EXT-X-DEFINE without NAME or VALUE, or with a NAME whose hash was made
    /// to meet too many others (VELHLSUtility::maximumCollidingNames); and a segment or pattern that does not
    /// parse: see VELHLSMediaSegment::parseNextSegment and VELHLSMediaPattern::parseMediaPattern.
    ///
    /// Kept as is:
    /// - A segment URI of fewer than 6 characters without EXT-X-BYTERANGE throws std::out_of_range. Write a
    ///   longer one ("./0.ts" for "0.ts"), or give the byte range.
    /// - "#EXTM3U" is not required. With it reading stops after "#EXT-X-ENDLIST"; without it to the end.
    /// - Unknown tags between segments are ignored, EXT-X-CUE-IN among them; among a segment's tags an
    ///   unknown one rejects the playlist.
    /// - A last URI line without a line feed rejects the playlist.
    /// - Header tags are taken anywhere, and the last one holds; but PRECISE=YES is not undone.
    /// - A stream that is not good on entry, or is empty, gives an empty playlist.
    /// - A stream that breaks off is read as one that ends there: ask input.bad().
    [[nodiscard]] static std::shared_ptr<VELHLSMediaStream> parseMediaStream(std::istream& input,
                                                                             VELHLSParsingStatus* status);

    /// The same of a text in memory, which need not outlive the playlist: no stream is made, and nothing is copied but
    /// what the playlist keeps. Throws std::bad_alloc alone: a number that cannot be converted is a reason as any other,
    /// and null. Only a rejected text is read a second time, up to the place of the reason, to say where that is;
    /// `reason` may be null, and is left as it was when the playlist is accepted.
    [[nodiscard]] static std::shared_ptr<VELHLSMediaStream> parseMediaStream(std::string_view text,
                                                                             VELHLSReason* reason = nullptr);

    /// Not for callers: what parseMediaStream times. The status' metrics are not touched.
    [[nodiscard]] static std::shared_ptr<VELHLSMediaStream> internalParseMediaStream(
        std::istream& input, VELHLSParsingStatus* status);

    /// True when every segment validates; an empty playlist does. The header values are not checked. A null
    /// segment, which only a caller can have put there, makes it false.
    [[nodiscard]] bool validate() const;

    /// Shares the map with this playlist: replaces `hlsDefineMap`, also by null.
    void setHLSDefineMap(std::shared_ptr<VELHLSDefineMap> map);

    /// Writes the playlist as text. Returns 0, or -1 with nothing written when a segment does not validate.
    /// Write errors of the stream are not looked at: ask the stream. Each line of the header is flushed.
    ///
    /// Kept as is: version 1 is not written. The target duration is always written, and cut to whole seconds
    /// (10.9 becomes 10); where no signed 32-bit number holds it the nearest one is written, and 0 for
    /// not-a-number. A start offset of 0 is not written; others are with the stream's precision and
    /// floating-point flags (six significant digits by default). The key and map in force are written before
    /// every segment. Variables and patterns are not written: the segments of a pattern are, one by one.
    [[nodiscard]] std::int32_t render(std::ostream& out) const;

    /// A line "#EXTM3U" was read. Nothing requires it.
    bool hasExtM3U = false;

    /// EXT-X-VERSION.
    std::int32_t version = 1;

    /// EXT-X-TARGETDURATION in seconds.
    double targetDuration = 0.0;

    /// EXT-X-PLAYLIST-TYPE.
    PlaylistType playlistType = None;

    /// EXT-X-MEDIA-SEQUENCE: the media sequence number of the first segment.
    std::int64_t mediaSequence = 0;

    /// EXT-X-DISCONTINUITY-SEQUENCE.
    std::int64_t discontinuitySequence = 0;

    /// EXT-X-ENDLIST was read.
    bool endList = false;

    /// EXT-X-I-FRAMES-ONLY was read.
    bool iFramesOnly = false;

    /// EXT-X-INDEPENDENT-SEGMENTS was read.
    bool independentSegments = false;

    /// TIME-OFFSET of EXT-X-START in seconds; 0 when there is none.
    double startTimeOffset = 0.0;

    /// PRECISE=YES of EXT-X-START.
    bool startPrecise = false;

    /// The segments in the order of the playlist.
    std::vector<std::shared_ptr<VELHLSMediaSegment>> segments;

    /// A segment whose first tag was EXT-X-DISCONTINUITY was read, outside of any pattern. Kept for callers.
    bool discontinuitySeen = false;

    /// The variables of EXT-X-DEFINE, as the last pattern left them. Not null unless a caller made it so.
    std::shared_ptr<VELHLSDefineMap> hlsDefineMap = std::make_shared<VELHLSDefineMap>();
};
