// Internal to the library, not installed: the lines of one media segment.
#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

#include "velhls/common/TagLine.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSUtility.h"
#include "velhls/media/VELHLSMediaPattern.h"
#include "velhls/media/VELHLSMediaSegment.h"

namespace velhls {

/// Gathers the tags of one segment up to and including its URI line, then makes the segment from them and
/// from the one in front of it. See VELHLSMediaSegment::parseNextSegment.
class SegmentReader {
  public:
    SegmentReader(std::istream& input, std::shared_ptr<VELHLSDefineMap> defines, VELHLSParsingStatus* status);

    /// Reads from the segment's first line on. False when there is no segment; then a pattern may have been
    /// read.
    [[nodiscard]] bool gather(const std::string& firstLine);

    /// Whether the lines opened a pattern, and that pattern; null when it does not parse.
    [[nodiscard]] bool openedPattern() const { return openedPattern_; }
    [[nodiscard]] std::shared_ptr<VELHLSMediaPattern> pattern() const { return pattern_; }

    /// The segment that was gathered; null when it does not validate. Without a previous segment it starts at
    /// the two numbers.
    [[nodiscard]] std::shared_ptr<VELHLSMediaSegment> build(const VELHLSMediaSegment* previous,
                                                            std::uint64_t firstMediaSequenceNumber,
                                                            std::uint64_t firstDiscontinuitySequenceNumber);

  private:
    bool takeLine(const std::string& line);
    bool takeUri(std::string_view line);
    bool takeVendorTagOrComment(const std::string& line);
    bool takeBareTag(const TagLine& tagLine);
    bool takeTag(const TagLine& tagLine, const std::string& line);
    bool takeDuration(std::string_view value);
    bool takeByteRange(std::string_view value);
    bool takeKey(const std::string& line);
    bool takeMap(const std::string& line);
    bool takeProgramDateTime(std::string_view value);
    bool takeDefine(std::string_view value);
    void notePattern();

    std::istream& input_;
    std::shared_ptr<VELHLSDefineMap> defines_;
    VELHLSParsingStatus* status_;

    /// All lines that were taken, each with a line feed: a pattern that begins behind them repeats them.
    std::string takenLines_;
    bool openedPattern_ = false;
    std::shared_ptr<VELHLSMediaPattern> pattern_;

    double duration_ = 0.0;
    std::string title_;
    std::shared_ptr<VELHLSByteRange> byteRange_;
    std::shared_ptr<VELHLSProtectionData> key_;
    std::shared_ptr<VELHLSMISMap> map_;
    double programDateTime_ = 0.0;
    bool hasProgramDateTime_ = false;
    bool discontinuity_ = false;
    bool cueIn_ = false;
    std::string cueOut_;
    std::string cueOutCont_;
    std::string uri_;
};

}  // namespace velhls
