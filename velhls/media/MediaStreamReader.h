// Internal to the library, not installed: the line loop of a media playlist.
#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <string_view>

#include "velhls/common/LineReader.h"
#include "velhls/common/Reading.h"
#include "velhls/common/Reason.h"
#include "velhls/common/RecordMaker.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/media/PatternExpander.h"
#include "velhls/media/SegmentReader.h"
#include "velhls/media/VELHLSMediaStream.h"

namespace velhls {

/// Reads the lines of one media playlist: its header tags here, its segments and patterns through their
/// readers.
class MediaStreamReader {
  public:
    /// The status may be null.
    MediaStreamReader(std::istream& input, VELHLSParsingStatus* status) : lines_(input), status_(status) {}
    /// The reading may be null.
    MediaStreamReader(std::string_view text, Reading* reading) : lines_(text, reading), reading_(reading) {}

    /// From here on a segment is let go once the one after it was read, for somebody who only wants to know whether the
    /// playlist is rejected.
    void letSegmentsGo() { letsSegmentsGo_ = true; }

    /// Reads to the end of the playlist. Null when a line is rejected; reading stops after that line. All
    /// segments are valid. A reading that goes on after rejections gives what was not rejected.
    [[nodiscard]] std::shared_ptr<VELHLSMediaStream> read();

  private:
    bool readLine();
    bool readBareTag(const TagLine& tagLine);
    bool readTag(const TagLine& tagLine);
    bool readCount(Rule rule, std::string_view value, std::int64_t& count);
    bool readTargetDuration(std::string_view value);
    bool readPlaylistType(std::string_view value);
    bool readSegment(bool afterDiscontinuity);
    bool appendPattern();
    void letGoAllButLast();
    [[nodiscard]] SegmentOrigin nextOrigin() const;

    std::shared_ptr<VELHLSMediaStream> stream_ = std::make_shared<VELHLSMediaStream>();
    LineReader lines_;
    VELHLSParsingStatus* status_ = nullptr;
    Reading* reading_ = nullptr;
    Reason why_;
    std::string_view line_;
    bool letsSegmentsGo_ = false;
    RecordMaker recordMaker_;
    SegmentReader segmentReader_{lines_, {&recordMaker_, stream_->hlsDefineMap, status_, reading_}, why_};
    ExpansionAllowance allowance_{VELHLSMediaPattern::maximumExpansionBytesOfPlaylist};
};

}  // namespace velhls
