// Internal to the library, not installed: the lines of one media segment.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "velhls/common/LineReader.h"
#include "velhls/common/RecordMaker.h"
#include "velhls/common/Recorder.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextBuffer.h"
#include "velhls/common/Timestamps.h"
#include "velhls/common/VELHLSParsingStatus.h"
#include "velhls/common/VELHLSUtility.h"
#include "velhls/media/VELHLSMediaPattern.h"
#include "velhls/media/VELHLSMediaSegment.h"

namespace velhls {

/// What a segment goes on from.
struct SegmentOrigin {
    /// Null for the first segment of a playlist, which starts at the two numbers.
    const VELHLSMediaSegment* previous = nullptr;
    std::uint64_t firstMediaSequenceNumber = 0;
    std::uint64_t firstDiscontinuitySequenceNumber = 0;
};

/// Reads segments one by one: the tags of each up to and including its URI line, straight into a new record.
/// See VELHLSMediaSegment::parseNextSegment.
class SegmentReader : private LineReader::ViewKeeper {
  public:
    /// All three are used as long as the reader is. The maker may be null: each segment then has memory of
    /// its own. Variables go into `defines`, which is made on demand when it is null.
    SegmentReader(LineReader& lines, RecordMaker* maker, std::shared_ptr<VELHLSDefineMap> defines,
                  VELHLSParsingStatus* status, Recorder* recorder);

    /// Reads a segment from its first line on. Null when there is none; the lines may have opened a pattern
    /// instead. A segment is valid as long as the key and the map that it takes over from the previous one
    /// are: those are not looked at.
    [[nodiscard]] std::shared_ptr<VELHLSMediaSegment> read(std::string_view firstLine,
                                                           const SegmentOrigin& origin);

    /// Whether the lines that were last read opened a pattern, and that pattern; null when it does not parse.
    [[nodiscard]] bool openedPattern() const { return openedPattern_; }
    [[nodiscard]] const std::shared_ptr<VELHLSMediaPattern>& pattern() const { return pattern_; }

  private:
    /// What the tags of one segment say.
    struct Tags {
        /// Cheaper than to assign a new one: nearly all of it is empty already.
        void clear();

        double duration = 0.0;
        double programDateTime = 0.0;
        bool hasProgramDateTime = false;
        bool discontinuity = false;
        bool cueIn = false;
        bool hasByteRange = false;
        VELHLSByteRange byteRange;
        std::shared_ptr<VELHLSProtectionData> key;
        std::shared_ptr<VELHLSMISMap> map;
        std::string cueOut;
        std::string cueOutCont;
    };

    void reset();
    bool gather(std::string_view firstLine);
    [[nodiscard]] std::shared_ptr<VELHLSMediaSegment> readRecorded(std::string_view firstLine,
                                                                   const SegmentOrigin& origin);
    bool gatherRecorded(std::string_view firstLine);
    void keep(std::string_view line);
    void viewsEnd() override;
    [[nodiscard]] std::string textTaken();
    bool takeRecordedLine(std::string_view line);
    bool takeLine(std::string_view line);
    bool takeVendorTagOrComment(std::string_view line);
    bool takeBareTag(const TagLine& tagLine);
    bool takeTag(const TagLine& tagLine, std::string_view line);
    bool takeDuration(std::string_view value);
    std::size_t readDuration(std::string_view value);
    void takeTitle(std::string_view title);
    bool takeByteRange(std::string_view value);
    bool takeKey(std::string_view line);
    bool takeMap(std::string_view line);
    bool takeProgramDateTime(std::string_view value);
    bool takeDefine(const TagLine& tagLine);
    void notePattern();
    void recordStart(std::string_view firstLine);
    void recordTag(const TagLine& tagLine);
    void tellOfUri(std::string_view line) const;
    void tellOfDuration(std::string_view value) const;
    [[nodiscard]] bool tellWhyIncomplete() const;
    void recordMade(const VELHLSMediaSegment& segment, const VELHLSMediaSegment* previous) const;
    [[nodiscard]] bool isComplete();
    [[nodiscard]] std::shared_ptr<VELHLSMediaSegment> build(const SegmentOrigin& origin);

    LineReader& lines_;
    RecordMaker* maker_;
    std::shared_ptr<VELHLSDefineMap> defines_;
    VELHLSParsingStatus* status_;
    Recorder* recorder_;

    /// The lines that were taken, since a pattern that begins behind them repeats them: hardly ever, so that they are
    /// kept as views, and copied when those end. What was copied stands in front of what was not.
    TextBuffer takenText_;
    std::array<std::string_view, 8> takenLines_;
    std::size_t takenLineCount_ = 0;
    bool openedPattern_ = false;
    std::shared_ptr<VELHLSMediaPattern> pattern_;

    TimestampReader timestamps_;
    Tags tags_;
    std::string_view title_;
    /// Where the title stands when it is not always the same.
    std::string titleMemory_;
    /// Looks into the line that was read last.
    std::string_view uri_;

    /// What only a recorder needs to be told.
    struct Recorded {
        std::bitset<16> tags;
        std::size_t linesTaken = 0;
        std::string_view unreadLine;
    };
    Recorded recorded_;
};

}  // namespace velhls
