// Internal to the library, not installed: the line loop of a media playlist.
#pragma once

#include <istream>
#include <memory>
#include <string_view>

#include "velhls/common/LineReader.h"
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
    MediaStreamReader(std::istream& input, VELHLSParsingStatus* status, Recorder* recorder)
        : recorder_(recorder),
          lines_(input),
          segmentReader_(lines_, &recordMaker_, stream_->hlsDefineMap, status, recorder) {}

    /// Reads to the end of the playlist. Null when a line is rejected; reading stops behind that line. All
    /// segments are valid. With a recorder it goes on, and what was not rejected comes back.
    [[nodiscard]] std::shared_ptr<VELHLSMediaStream> read();

  private:
    [[nodiscard]] std::shared_ptr<VELHLSMediaStream> readRecorded();
    void readRecordedLine();
    bool takeLine();
    bool takeBareTag(const TagLine& tagLine);
    void tellOfIgnoredTag(const TagLine& tagLine);
    void tellOfUnreadLines();
    bool takeCount(Rule rule, std::string_view value, std::int64_t& count);
    bool takeTag(const TagLine& tagLine);
    bool takeTargetDuration(std::string_view value);
    bool takePlaylistType(std::string_view value);
    bool takeStart(const TagLine& tagLine);
    bool takeSegment(bool afterDiscontinuity);
    bool takePattern();
    bool appendPattern();
    [[nodiscard]] SegmentOrigin nextOrigin() const;

    std::shared_ptr<VELHLSMediaStream> stream_ = std::make_shared<VELHLSMediaStream>();
    Recorder* recorder_;
    LineReader lines_;
    std::string_view line_;
    RecordMaker recordMaker_;
    SegmentReader segmentReader_;
    ExpansionAllowance allowance_{VELHLSMediaPattern::maximumExpansionBytesOfPlaylist};
};

}  // namespace velhls
