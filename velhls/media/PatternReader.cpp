#include "velhls/media/PatternReader.h"

#include <cstdint>
#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/Tags.h"

namespace velhls {
namespace {

/// Reads the lines of one pattern.
class PatternReader {
  public:
    PatternReader(std::string head, Reason& why) : why_(why), body_(std::move(head)) {}

    /// False, with the reason, when the line is rejected.
    bool readLine(std::string_view line) {
        if (!isTagOrComment(line)) return keep(line);
        const TagLine tagLine(line);
        if (tagLine.hasColon) return readTag(tagLine, line);
        return tagLine.name == tag::discontinuity ? keep(line) : why_(Rule::patternLineNotAllowed, line);
    }

    [[nodiscard]] std::shared_ptr<VELHLSMediaPattern> pattern() const {
        return std::make_shared<VELHLSMediaPattern>(name_, body_, repeatCount_);
    }

  private:
    bool readTag(const TagLine& tagLine, std::string_view line) {
        if (tagLine.name == tag::zorPatternStart) return readStart(tagLine);
        if (tagLine.name == tag::zorPatternEnd) {
            return tagLine.value == name_ || why_(Rule::patternEndMismatch, tagLine.value);
        }
        if (tagLine.name == tag::zorPatternRepeat) return readRepeat(tagLine);
        return hasUse<inPatternBody>(tagLine.name) ? keep(line) : why_(Rule::patternLineNotAllowed, line);
    }

    bool keep(std::string_view line) {
        body_ += line;
        body_ += '\n';
        return true;
    }

    bool readStart(const TagLine& tagLine) {
        if (!name_.empty()) return why_(Rule::patternStartRepeated, tagLine.name);
        name_ = tagLine.value;
        return true;
    }

    bool readRepeat(const TagLine& tagLine) {
        const std::string_view value = tagLine.value;
        const std::size_t comma = value.find(',');
        if (comma == std::string_view::npos) return why_(Rule::patternRepeatMalformed, tagLine.name);
        const std::string_view name = value.substr(0, comma);
        if (name != name_) return why_(Rule::patternRepeatMismatch, name);
        repeatCount_ = toInt64AsUnsigned(value.substr(comma + 1), why_);
        return true;
    }

    Reason& why_;
    std::string name_;
    std::string body_;
    std::uint64_t repeatCount_ = 0;
};

}  // namespace

std::shared_ptr<VELHLSMediaPattern> readPattern(std::string_view startLine, std::string head,
                                                LineReader& lines, VELHLSParsingStatus* status,
                                                Reading* reading, Reason& why) {
    PatternReader reader(std::move(head), why);
    bool isAccepted = true;
    for (std::string_view line = startLine; lines.good(); line = lines.nextRaw()) {
        if (isAccepted && !succeeds([&] { return reader.readLine(line); }, reading, why)) {
            VELHLSUtility::updateParsingStatusWithError(status, VELHLSParsingErrorMediaPattern,
                                                        std::string(line));
            if (!readsOn(reading)) return nullptr;
            isAccepted = false;
        }
        if (isTagLine(line, tag::zorPatternRepeat)) break;
    }
    return isAccepted ? reader.pattern() : nullptr;
}

}  // namespace velhls
