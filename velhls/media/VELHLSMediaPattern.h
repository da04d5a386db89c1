#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "velhls/common/VELHLSExport.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSUtility.h"
#include "velhls/media/VELHLSMediaSegment.h"

/// A run of similar segments, written once (vendor extension).
///
///     #EXT-X-DEFINE:NAME="n",VALUE="1"
///     #ZOR-PATTERN_START:p                 name           p
///     #EXTINF:4,                           body           these three lines
///     seg{$n}.ts
///     #ZOR-DEFINE_INCREMENT:n,1
///     #ZOR-PATTERN_END:p                                  may be left out; does not end the body
///     #ZOR-PATTERN_REPEAT:p,2              repeatCount    2: seg1.ts, seg2.ts and seg3.ts
class VELHLS_API VELHLSMediaPattern {
  public:
    /// The most text, in bytes, that one expansion makes or reads: 64 MiB. An expansion beyond it fails.
    static constexpr std::size_t maximumExpansionBytes = std::size_t{64} << 20;

    /// The same for all patterns of one playlist together: 64 MiB.
    static constexpr std::size_t maximumExpansionBytesOfPlaylist = std::size_t{64} << 20;

    /// The most segments that one pattern makes, and all patterns of one playlist together: 524,288, six days
    /// of one second each. A segment takes more memory than the text it is made from, so that short lines
    /// could multiply beyond what the bounds of the text mean to allow. Text alone, as expandMediaPattern
    /// makes it, is not counted in segments.
    static constexpr std::size_t maximumExpansionSegments = std::size_t{1} << 19;

    /// Stores its arguments.
    VELHLSMediaPattern(std::string name, std::string body, std::uint64_t repeatCount);

    /// Reads a pattern: `startLine`, its "ZOR-PATTERN_START" line, and the lines after it in `input` up to
    /// and including its "ZOR-PATTERN_REPEAT" line. `prefix` holds the lines of the current segment before
    /// the start line, each with its line feed: they become the head of the body, and are repeated with
    /// it. `status` may be null.
    ///
    /// Returns the pattern; or null for a line that may not stand in a pattern, with the status' error set to
    /// VELHLSParsingErrorMediaPattern and its message to that line. What was read stays consumed. In a
    /// pattern may stand: URI lines and empty lines, EXTINF, EXT-X-BYTERANGE, EXT-X-KEY, EXT-X-MAP,
    /// EXT-X-PROGRAM-DATE-TIME, EXT-X-CUE-OUT and EXT-X-CUE-OUT-CONT with a colon, EXT-X-DISCONTINUITY
    /// without one, ZOR-DEFINE_INCREMENT, and a ZOR-PATTERN_END with the pattern's name. The
    /// ZOR-PATTERN_REPEAT needs a comma and the pattern's name. Why and where it is, tells the parse of a playlist: see
    /// VELHLSReason.
    ///
    /// Throws std::invalid_argument or std::out_of_range for a repeat count that is no signed 64-bit number.
    ///
    /// Kept as is: carriage returns are not removed inside a pattern, so with CRLF line ends a
    /// ZOR-PATTERN_END does not match and an EXT-X-DISCONTINUITY is not allowed. Without a ZOR-PATTERN_REPEAT
    /// the rest of the input is read as the pattern, with repeat count 0. Lines after ZOR-PATTERN_END belong
    /// to the body still. A negative repeat count converts to a very large one, whose expansion fails.
    [[nodiscard]] static std::shared_ptr<VELHLSMediaPattern> parseMediaPattern(const std::string& startLine,
                                                                               std::istream& prefix,
                                                                               std::istream& input,
                                                                               VELHLSParsingStatus* status);

    /// Writes the body `repeatCount` + 1 times as playlist text: variables are replaced in URI lines, each
    /// ZOR-DEFINE_INCREMENT adds its amount to its variable in `defines`, and other lines stay as they are.
    ///
    /// Returns null when the expansion fails: for a URI line whose substitution is empty (an empty line, or
    /// an unknown variable); an increment without a comma or of a variable that is not defined, a null
    /// `defines` included; another vendor tag with a colon; or more text than `maximumExpansionBytes`, which
    /// counts the body once for every pass, and the variables' values that were put in. Increments made until
    /// then stay.
    ///
    /// Throws std::invalid_argument or std::out_of_range when a variable that is incremented or its amount is
    /// no signed 32-bit number.
    [[nodiscard]] std::shared_ptr<std::stringstream> expandMediaPattern(
        const std::shared_ptr<VELHLSDefineMap>& defines) const;

    /// Expands the pattern and reads the result as segments that follow `previous`, which may be null: then
    /// they start at the two given sequence numbers. Returns the segments in order, or null when the
    /// expansion fails, a segment does not parse, or there are more of them than
    /// `maximumExpansionSegments`. `status` is not used: no error is stored. Throws what
    /// expansion and VELHLSMediaSegment::parseNextSegment throw.
    [[nodiscard]] std::shared_ptr<std::vector<std::shared_ptr<VELHLSMediaSegment>>> createMediaSegments(
        const std::shared_ptr<VELHLSMediaSegment>& previous, std::uint64_t firstMediaSequenceNumber,
        std::uint64_t firstDiscontinuitySequenceNumber, std::shared_ptr<VELHLSDefineMap> defines,
        VELHLSParsingStatus* status) const;

    /// The text after the colon of ZOR-PATTERN_START.
    std::string name;

    /// The lines of the pattern as they were read, each with a line feed.
    std::string body;

    /// How many more times the body is to be repeated; 0 when no ZOR-PATTERN_REPEAT was read.
    std::uint64_t repeatCount;
};
