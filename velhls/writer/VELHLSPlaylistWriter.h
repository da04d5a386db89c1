#pragma once

#include <optional>
#include <ostream>
#include <string>

#include "velhls/common/VELHLSExport.h"
#include "velhls/manifest/VELHLSParsedManifest.h"
#include "velhls/media/VELHLSMediaStream.h"
#include "velhls/writer/VELHLSWriterOptions.h"

/// Writes what a model holds as RFC 8216 wants it, for players and strict readers. `render` of the two models writes
/// other text, which is kept to the byte.
///
///     segments[0]     duration 6.006, title ",Intro"      #EXTINF:6.006,Intro
///                     programDateTime 1767225605.5        #EXT-X-PROGRAM-DATE-TIME:2026-01-01T00:00:05.500Z
///     segments[1]     the key and the date go on          (neither is written again)
///     segments[2]     no key any more                     #EXT-X-KEY:METHOD=NONE
///     targetDuration  0                                   #EXT-X-TARGETDURATION:6
///     version         1                                   #EXT-X-VERSION:3 (for 6.006)
///
/// A playlist is written whole or not at all: what would break a line, begin a tag or not be playable is refused
/// before the first byte. What was written holds no error by RFC 8216 but what the model itself holds, and the
/// library's own parse reads an equal model from it, where it can: the exceptions stand below.
class VELHLS_API VELHLSPlaylistWriter {
  public:
    /// Writes a media playlist. Returns nothing when it was written, and otherwise why it was refused, as
    /// "segment 3: the URI holds a line end" (counted from 1); then nothing was written. Write errors of the stream
    /// are not looked at: ask the stream. Nothing is flushed. The text is held in memory until it is written.
    ///
    /// Refused are:
    /// - a line end in a URI, a title or a cue marker, a quote in a value that stands in quotes, and a segment's URI that
    ///   is blank or begins with "#";
    /// - a reference to a variable ("{$name}") in a URI or in a value that stands in quotes: EXT-X-DEFINE is not written, so
    ///   that players would not find the variable;
    /// - numbers that are not finite, a duration of 0 or less or of 2^63 or more, a negative target duration, media
    ///   sequence or discontinuity sequence, a byte range of negative length, a date before 1970 or after 9999;
    /// - a key or a map that does not validate, a key's version below 0 or none at all;
    /// - a byte range without an offset that follows no range of the same URI: players cannot know where it begins
    ///   (section 4.3.2.2);
    /// - an initialization section that ends, since no tag can say so (section 4.3.2.5);
    /// - a null segment.
    ///
    /// What is written, where it is not plainly the member's value:
    /// - EXT-X-VERSION is the model's version, or the lowest that has all that is written (section 7) where that is
    ///   higher. Version 1 is not written.
    /// - EXT-X-TARGETDURATION is `targetDuration` rounded, or the longest duration rounded where that is more (section
    ///   4.3.3.1). Of a live playlist neither these nor the version should change: set both to what will be needed.
    /// - EXT-X-MEDIA-SEQUENCE is `mediaSequence`, and not the number of the first segment. EXT-X-DISCONTINUITY-SEQUENCE
    ///   is written for 0 too where a discontinuity may leave the playlist (section 6.2.2).
    /// - EXT-X-START is not written for an offset of 0, unless it is precise.
    /// - Durations and offsets have the fewest decimals that are read back as the same number.
    /// - A title is written after one comma, whether or not it begins with one.
    /// - A date is written in UTC to the millisecond, after a discontinuity or where counting on from the segment before
    ///   gives another millisecond; see VELHLSWriterOptions::everyDate. One of 0, or equal to `startTime`, was counted from 1970 by the parse and is none.
    /// - Key and map are written where they change, METHOD=NONE where a key ends, and before one of another KEYFORMAT,
    ///   since the earlier key would else hold as well (section 4.3.2.4).
    /// - A map that changes together with the key stands after it, and is so declared encrypted with it. It stands before
    ///   a key of AES-128 without IV, which cannot encrypt a section (section 4.3.2.5). Of a parsed playlist the order
    ///   is not known: see VELHLSWriterOptions::clearInitializationSections.
    /// - A byte range that the URI tells (getByteRangeFromUri) is not written.
    /// - Cue markers stand before EXTINF, but after it where an EXT-X-CUE-IN would be the segment's first tag.
    /// - Variables are not written, and patterns are the segments that they made.
    ///
    /// The library does not read back: a segment's URI of fewer than 6 characters without a byte range, and a duration
    /// below 2.3e-308 s. It reads otherwise: dates, to the millisecond; a segment after one with a key, whose null
    /// becomes a key of method None; variables, of which none are left; and what the rules above change.
    [[nodiscard]] static std::optional<std::string> write(const VELHLSMediaStream& stream, std::ostream& out,
                                                          const VELHLSWriterOptions& options = {});

    /// Writes a master playlist; returns and refuses as for a media playlist.
    ///
    /// Refused are: a line end in any value; a quote in a value that stands in quotes; a reference to a variable there or
    /// in a variant's URI; a quote or a comma in a RESOLUTION; a variant's URI that is blank or begins with "#"; a start
    /// offset that is not finite; records that do not validate, session keys of method None among them; a rendition that
    /// stands under another type, GROUP-ID or NAME than its own; and a manifest that does not validate, or whose
    /// `streamVariants` are not the stream variants of `variants`. With VELHLSWriterOptions::nominalBitrates: nominal bit
    /// rates of some variants and not of all.
    ///
    /// Of a manifest that does not validate the reason names the record and the rule, as the parse would: "variant 1:
    /// EXT-X-STREAM-INF: AUDIO: expected the GROUP-ID of an EXT-X-MEDIA tag of this type, seen "mp3" [group-missing]".
    ///
    /// The order is: header, version, independent segments, start; renditions by type, GROUP-ID and NAME; variants in the
    /// order of `streamVariants`; I-frame variants by bandwidth; session data; session keys.
    ///
    /// What is written, where it is not plainly the member's value:
    /// - EXT-X-VERSION as of a media playlist.
    /// - EXT-X-START is not written for an offset of -1, which stands for none, unless it is precise.
    /// - CLOSED-CAPTIONS=NONE only with VELHLSWriterOptions::noClosedCaptions, and never of an I-frame variant.
    /// - AUDIO-TRACK-TYPE (vendor extension) is written.
    ///
    /// The library does not read back: session data, whose DATA-ID is written first, and bandwidths of 2^63 or more. It
    /// reads otherwise: nominal bit rates unless they are written, and variants of one bandwidth, whose I-frame ones
    /// come last.
    [[nodiscard]] static std::optional<std::string> write(const VELHLSParsedManifest& manifest,
                                                          std::ostream& out,
                                                          const VELHLSWriterOptions& options = {});
};
