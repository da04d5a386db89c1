#include <iterator>

#include "velhls/common/Names.h"
#include "velhls/losses/Loss.h"

namespace velhls {
namespace {

constexpr bool lost = true;
constexpr bool kept = false;

bool isOwnTag(const LossLine& line) {
    return line.isTagNamed(tag::zorPatternStart) || line.isTagNamed(tag::zorPatternEnd) ||
           line.isTagNamed(tag::zorPatternRepeat);
}

void findPattern(const LossPattern& pattern, const TellLoss& tell) {
    tell(pattern.start(), pattern.start().tag.name);
}

void findMissingRepeat(const LossPattern& pattern, const TellLoss& tell) {
    const bool ends = pattern.lines.back().isTagNamed(tag::zorPatternRepeat);
    if (!ends) tell(pattern.start(), pattern.start().tag.name, "none");
}

void findLineAfterEnd(const LossPattern& pattern, const TellLoss& tell) {
    for (std::size_t index = pattern.startLine + 1; index < pattern.lines.size(); ++index) {
        const LossLine& line = pattern.lines[index];
        if (pattern.lines[index - 1].isTagNamed(tag::zorPatternEnd) && !isOwnTag(line)) tell(line, line.text);
    }
}

/// The lines of a pattern's body are kept as they stand; those of a segment before its start are not.
void findCarriageReturn(const LossPattern& pattern, const TellLoss& tell) {
    for (std::size_t index = pattern.startLine + 1; index < pattern.lines.size(); ++index) {
        const LossLine& line = pattern.lines[index];
        const std::size_t length = line.lineOfText.size();
        if (isOwnTag(line) || length == 0 || line.lineOfText.back() != '\r') continue;
        tell(Place{line.number, length, 1}, "one");
    }
}

void findPatternWithoutSegments(const LossPattern& pattern, const TellLoss& tell) {
    if (!pattern.madeSegments) tell(pattern.start(), pattern.start().tag.name, "none");
}

// clang-format off
constexpr PatternLoss losses[] = {
    {{"pattern-not-written", VELHLSFinding::Warning, "A media pattern is written as the segments that it makes.",
      "a tag that is written back", vendorExtension, lost},
     findPattern},
    {{"pattern-repeat-missing", VELHLSFinding::Warning, "A media pattern has no ZOR-PATTERN_REPEAT.",
      "ZOR-PATTERN_REPEAT before the end of the playlist", vendorExtension, kept},
     findMissingRepeat},
    {{"pattern-lines-after-end", VELHLSFinding::Warning, "Lines after ZOR-PATTERN_END belong to the pattern still.",
      "ZOR-PATTERN_REPEAT right after ZOR-PATTERN_END", vendorExtension, kept},
     findLineAfterEnd},
    {{"pattern-carriage-return-kept", VELHLSFinding::Warning, "A line of a media pattern ends in a carriage return, which is kept.",
      "no carriage return inside a media pattern", vendorExtension, kept},
     findCarriageReturn},
    {{"pattern-without-segments", VELHLSFinding::Warning, "A media pattern has no lines, and makes no segment.",
      "a segment in the pattern", vendorExtension, kept},
     findPatternWithoutSegments},
};
// clang-format on

}  // namespace

LossTable<PatternLoss> patternLosses() {
    return {losses, std::size(losses)};
}

}  // namespace velhls
