// Internal to the library, not installed: the lines of one media segment.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "velhls/common/LineReader.h"
#include "velhls/common/Reading.h"
#include "velhls/common/Reason.h"
#include "velhls/common/RecordMaker.h"
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

/// What one segment after the other is read with. All of it is used as long as the reader is.
struct SegmentSurroundings {
    /// Null when each segment has memory of its own.
    RecordMaker* maker = nullptr;
    /// Variables go in here. Made on demand when it is null.
    std::shared_ptr<VELHLSDefineMap> defines;
    /// Null when nobody asks.
    VELHLSParsingStatus* status = nullptr;
    /// Null when nobody follows the reading.
    Reading* reading = nullptr;
};

/// Reads segments one by one: the tags of each up to and including its URI line, straight into a new record.
/// See VELHLSMediaSegment::parseNextSegment.
class SegmentReader : private LineReader::ViewKeeper {
  public:
    SegmentReader(LineReader& lines, SegmentSurroundings surroundings, Reason& why);

    /// Reads a segment from its first line on. Null, with the reason, when there is none; the lines may have opened a
    /// pattern instead. A segment is valid as long as the key and the map that it takes over from the previous one
    /// are: those are not looked at.
    [[nodiscard]] std::shared_ptr<VELHLSMediaSegment> read(std::string_view firstLine,
                                                           const SegmentOrigin& origin);

    /// Whether the lines that were last read opened a pattern, and that pattern; null when it was rejected.
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

    void clear();
    bool readLines(std::string_view firstLine);
    void tellOfMissingUri(std::string_view lastLine);
    void keep(std::string_view line);
    void viewsEnd() override;
    void copyKeptLines();
    [[nodiscard]] std::string keptText();
    bool readLine(std::string_view line);
    bool readVendorTagOrComment(std::string_view line);
    bool readPatternTag(std::string_view line);
    bool readBareTag(const TagLine& tagLine);
    bool readTag(const TagLine& tagLine);
    bool readDuration(std::string_view value);
    void readTitle(std::string_view title);
    bool readByteRange(std::string_view value);
    bool readProgramDateTime(std::string_view value);
    [[nodiscard]] bool isComplete();
    bool isIncomplete();
    [[nodiscard]] std::shared_ptr<VELHLSMediaSegment> build(const SegmentOrigin& origin);

    LineReader& lines_;
    SegmentSurroundings with_;
    Reason& why_;

    /// The lines that were read, since a pattern that begins after them repeats them: hardly ever, so that they are
    /// kept as views, and copied when those end. What was copied stands before what was not.
    TextBuffer keptText_;
    std::array<std::string_view, 8> keptLines_;
    std::size_t keptLineCount_ = 0;
    bool openedPattern_ = false;
    std::shared_ptr<VELHLSMediaPattern> pattern_;

    TimestampReader timestamps_;
    Tags tags_;
    std::string_view title_;
    /// Where the title stands when it is not always the same.
    std::string titleMemory_;
    /// Looks into the line that was read last.
    std::string_view uri_;
    /// The line that ends the input without a line feed, and is not looked at.
    std::string_view unreadLine_;
};

}  // namespace velhls
