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
    explicit PatternReader(std::string head) : body_(std::move(head)) {}

    /// What a line means for the pattern.
    enum class Outcome { goOn, patternEnds, rejected };

    Outcome takeLine(std::string_view line) {
        if (!isTagOrComment(line)) return keep(line);
        const TagLine tagLine(line);
        if (!tagLine.hasColon) return tagLine.name == tag::discontinuity ? keep(line) : Outcome::rejected;
        if (tagLine.name == tag::zorPatternStart) return takeStart(tagLine.value);
        if (tagLine.name == tag::zorPatternEnd) return outcomeOf(tagLine.value == name_);
        if (tagLine.name == tag::zorPatternRepeat) return takeRepeat(tagLine.value);
        return mayStandInBody(tagLine.name) ? keep(line) : Outcome::rejected;
    }

    [[nodiscard]] std::shared_ptr<VELHLSMediaPattern> pattern() const {
        return std::make_shared<VELHLSMediaPattern>(name_, body_, repeatCount_);
    }

  private:
    static Outcome outcomeOf(bool accepted) { return accepted ? Outcome::goOn : Outcome::rejected; }

    static bool mayStandInBody(std::string_view tagName) {
        return tagName == tag::extInf || tagName == tag::byteRange || tagName == tag::key ||
               tagName == tag::map || tagName == tag::programDateTime || tagName == tag::cueOut ||
               tagName == tag::cueOutCont || tagName == tag::zorDefineIncrement;
    }

    Outcome keep(std::string_view line) {
        body_ += line;
        body_ += '\n';
        return Outcome::goOn;
    }

    Outcome takeStart(std::string_view name) {
        if (!name_.empty()) return Outcome::rejected;
        name_ = name;
        return Outcome::goOn;
    }

    Outcome takeRepeat(std::string_view value) {
        const std::size_t comma = value.find(',');
        if (comma == std::string_view::npos || value.substr(0, comma) != name_) return Outcome::rejected;
        repeatCount_ = toInt64AsUnsigned(value.substr(comma + 1));
        return Outcome::patternEnds;
    }

    std::string name_;
    std::string body_;
    std::uint64_t repeatCount_ = 0;
};

}  // namespace

std::shared_ptr<VELHLSMediaPattern> readPattern(std::string_view startLine, std::string head,
                                                LineReader& lines, VELHLSParsingStatus* status) {
    PatternReader reader(std::move(head));
    std::string_view line = startLine;
    while (lines.good()) {
        const PatternReader::Outcome outcome = reader.takeLine(line);
        if (outcome == PatternReader::Outcome::rejected) {
            VELHLSUtility::updateParsingStatusWithError(status, VELHLSParsingErrorMediaPattern,
                                                        std::string(line));
            return nullptr;
        }
        if (outcome == PatternReader::Outcome::patternEnds) break;
        line = lines.nextRaw();
    }
    return reader.pattern();
}

}  // namespace velhls
