#include "velhls/media/PatternReader.h"

#include <cstdint>
#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TagLine.h"

namespace velhls {
namespace {

/// Reads the lines of one pattern.
class PatternReader {
  public:
    PatternReader(std::string head, Recorder* recorder) : recorder_(recorder), body_(std::move(head)) {}

    /// What a line means for the pattern.
    enum class Outcome { goOn, patternEnds, rejected };

    Outcome takeLine(std::string_view line) {
        if (!isTagOrComment(line)) return keep(line);
        const TagLine tagLine(line);
        if (!tagLine.hasColon) {
            return tagLine.name == tag::discontinuity ? keep(line)
                                                      : rejectAt(Rule::patternLineNotAllowed, line);
        }
        if (tagLine.name == tag::zorPatternStart) return takeStart(tagLine);
        if (tagLine.name == tag::zorPatternEnd) return takeEnd(tagLine.value);
        if (tagLine.name == tag::zorPatternRepeat) return takeRepeat(tagLine);
        return mayStandInBody(tagLine.name) ? keep(line) : rejectAt(Rule::patternLineNotAllowed, line);
    }

    [[nodiscard]] std::shared_ptr<VELHLSMediaPattern> pattern() const {
        auto pattern = std::make_shared<VELHLSMediaPattern>(name_, body_, repeatCount_);
        if (recorder_ != nullptr) recorder_->recordMade(pattern.get(), this);
        return pattern;
    }

  private:
    Outcome rejectAt(Rule rule, std::string_view where) {
        tell(recorder_, rule, where);
        return Outcome::rejected;
    }

    static bool mayStandInBody(std::string_view tagName) {
        return tagName == tag::extInf || tagName == tag::byteRange || tagName == tag::key ||
               tagName == tag::map || tagName == tag::programDateTime || tagName == tag::cueOut ||
               tagName == tag::cueOutCont || tagName == tag::zorDefineIncrement;
    }

    Outcome keep(std::string_view line) {
        body_ += line;
        body_ += '\n';
        if (recorder_ != nullptr) tellOfKept(line);
        return Outcome::goOn;
    }

    void tellOfKept(std::string_view line) {
        recorder_->patternLineKept();
        if (endSeen_) recorder_->report(Rule::patternLinesAfterEnd, line, {});
        endSeen_ = false;
        const bool endsInCarriageReturn = !line.empty() && line.back() == '\r';
        if (endsInCarriageReturn) {
            recorder_->report(Rule::patternCarriageReturnKept, line.substr(line.size() - 1), "one");
        }
    }

    Outcome takeStart(const TagLine& tagLine) {
        if (!name_.empty()) return rejectAt(Rule::patternStartRepeated, tagLine.name);
        name_ = tagLine.value;
        if (recorder_ != nullptr) recorder_->recordRead(this, tagLine.name);
        return Outcome::goOn;
    }

    Outcome takeEnd(std::string_view name) {
        if (name != name_) return rejectAt(Rule::patternEndMismatch, name);
        endSeen_ = true;
        return Outcome::goOn;
    }

    Outcome takeRepeat(const TagLine& tagLine) {
        const std::string_view value = tagLine.value;
        const std::size_t comma = value.find(',');
        if (comma == std::string_view::npos) return rejectAt(Rule::patternRepeatMalformed, tagLine.name);
        const std::string_view name = value.substr(0, comma);
        if (name != name_) return rejectAt(Rule::patternRepeatMismatch, name);
        repeatCount_ = toInt64AsUnsigned(number(recorder_, value.substr(comma + 1)));
        return Outcome::patternEnds;
    }

    Recorder* recorder_;
    std::string name_;
    std::string body_;
    std::uint64_t repeatCount_ = 0;
    /// A ZOR-PATTERN_END was read, and nothing was kept since.
    bool endSeen_ = false;
};

/// With a recorder a rejected pattern is read to its end, so that the lines behind it are read as what they are.
void skipPattern(std::string_view rejectedLine, LineReader& lines, Recorder& recorder) {
    std::string_view line = rejectedLine;
    while (lines.good() && !isTagLine(line, tag::zorPatternRepeat)) {
        line = lines.nextRaw();
        recorder.lineRead(line);
    }
}

}  // namespace

std::shared_ptr<VELHLSMediaPattern> readPattern(std::string_view startLine, std::string head,
                                                LineReader& lines, VELHLSParsingStatus* status,
                                                Recorder* recorder) {
    PatternReader reader(std::move(head), recorder);
    std::string_view line = startLine;
    bool ended = false;
    while (lines.good() && !ended) {
        const PatternReader::Outcome outcome = reader.takeLine(line);
        if (outcome == PatternReader::Outcome::rejected) {
            VELHLSUtility::updateParsingStatusWithError(status, VELHLSParsingErrorMediaPattern,
                                                        std::string(line));
            if (recorder != nullptr) skipPattern(line, lines, *recorder);
            return nullptr;
        }
        ended = outcome == PatternReader::Outcome::patternEnds;
        if (ended) break;
        line = lines.nextRaw();
        if (recorder != nullptr) recorder->lineRead(line);
    }
    auto pattern = reader.pattern();
    if (!ended && recorder != nullptr) {
        recorder->reportRecord(Rule::patternRepeatMissing, pattern.get(), {}, "none");
    }
    return pattern;
}

}  // namespace velhls
