#include "velhls/media/VELHLSMediaPattern.h"

#include <iterator>
#include <string_view>
#include <utility>

#include "velhls/common/LineReader.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TagLine.h"
#include "velhls/media/PatternExpander.h"

namespace {

namespace tag = velhls::tag;

/// Reads the lines of one pattern.
class PatternReader {
  public:
    /// What a line means for the pattern.
    enum class Outcome { goOn, patternEnds, rejected };

    Outcome takeLine(const std::string& line) {
        if (!velhls::isTagOrComment(line)) return keep(line);
        const velhls::TagLine tagLine(line);
        if (!tagLine.hasColon) return tagLine.name == tag::discontinuity ? keep(line) : Outcome::rejected;
        if (tagLine.name == tag::zorPatternStart) return takeStart(tagLine.value);
        if (tagLine.name == tag::zorPatternEnd) return outcomeOf(tagLine.value == name_);
        if (tagLine.name == tag::zorPatternRepeat) return takeRepeat(tagLine.value);
        return mayStandInBody(tagLine.name) ? keep(line) : Outcome::rejected;
    }

    void startBody(std::string text) { body_ = std::move(text); }

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

    Outcome keep(const std::string& line) {
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
        repeatCount_ = velhls::toInt64AsUnsigned(value.substr(comma + 1));
        return Outcome::patternEnds;
    }

    std::string name_;
    std::string body_;
    std::uint64_t repeatCount_ = 0;
};

std::string allOf(std::istream& stream) {
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

}  // namespace

VELHLSMediaPattern::VELHLSMediaPattern(std::string name, std::string body, std::uint64_t repeatCount)
    : name(std::move(name)), body(std::move(body)), repeatCount(repeatCount) {}

std::shared_ptr<VELHLSMediaPattern> VELHLSMediaPattern::parseMediaPattern(const std::string& startLine,
                                                                          std::istream& prefix,
                                                                          std::istream& input,
                                                                          VELHLSParsingStatus* status) {
    PatternReader reader;
    reader.startBody(allOf(prefix));
    std::string line = startLine;
    while (input.good()) {
        const PatternReader::Outcome outcome = reader.takeLine(line);
        if (outcome == PatternReader::Outcome::rejected) {
            VELHLSUtility::updateParsingStatusWithError(status, VELHLSParsingErrorMediaPattern, line);
            return nullptr;
        }
        if (outcome == PatternReader::Outcome::patternEnds) break;
        velhls::readRawLine(input, line);
    }
    return reader.pattern();
}

std::shared_ptr<std::stringstream> VELHLSMediaPattern::expandMediaPattern(
    const std::shared_ptr<VELHLSDefineMap>& defines) const {
    velhls::ExpansionAllowance allowance(maximumExpansionBytes);
    velhls::PatternExpander expander(*this, defines.get(), allowance);
    if (!expander.expand()) return nullptr;
    return std::make_shared<std::stringstream>(expander.text());
}

std::shared_ptr<std::vector<std::shared_ptr<VELHLSMediaSegment>>> VELHLSMediaPattern::createMediaSegments(
    const std::shared_ptr<VELHLSMediaSegment>& previous, std::uint64_t firstMediaSequenceNumber,
    std::uint64_t firstDiscontinuitySequenceNumber, std::shared_ptr<VELHLSDefineMap> defines,
    VELHLSParsingStatus* /*status*/) const {
    velhls::ExpansionAllowance allowance(maximumExpansionBytes);
    return velhls::createSegments(
        *this, {previous, firstMediaSequenceNumber, firstDiscontinuitySequenceNumber}, defines, allowance);
}
