#include "velhls/media/SegmentReader.h"

#include <sstream>
#include <utility>
#include <vector>

#include "velhls/common/DefineTag.h"
#include "velhls/common/LineReader.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/Timestamps.h"
#include "velhls/media/PatternTags.h"

namespace velhls {

SegmentReader::SegmentReader(std::istream& input, std::shared_ptr<VELHLSDefineMap> defines,
                             VELHLSParsingStatus* status)
    : input_(input), defines_(std::move(defines)), status_(status) {}

bool SegmentReader::gather(const std::string& firstLine) {
    if (!input_.good()) return false;
    std::string line = firstLine;
    while (true) {
        if (!takeLine(line)) return false;
        if (!uri_.empty()) return true;
        takenLines_ += line;
        takenLines_ += '\n';
        readLine(input_, line);
        // A line that ends the input without a line feed is not looked at.
        if (!input_.good()) return true;
    }
}

bool SegmentReader::takeLine(const std::string& line) {
    if (!isTagOrComment(line)) return takeUri(line);
    if (!isStandardTag(line)) return takeVendorTagOrComment(line);
    const TagLine tagLine(line);
    return tagLine.hasColon ? takeTag(tagLine, line) : takeBareTag(tagLine);
}

bool SegmentReader::takeUri(std::string_view line) {
    uri_ = withoutTrailing(line, blanks);
    return true;
}

bool SegmentReader::takeVendorTagOrComment(const std::string& line) {
    if (startsPattern(line)) {
        notePattern();
        if (!TagLine(line).hasColon) return false;
        openedPattern_ = true;
        std::istringstream prefix(takenLines_);
        pattern_ = VELHLSMediaPattern::parseMediaPattern(line, prefix, input_, status_);
        return false;
    }
    if (VELHLSUtility::isMediaPatternTag(line)) {
        notePattern();
        VELHLSUtility::updateParsingStatusWithError(status_, VELHLSParsingErrorMediaPattern, line);
        return false;
    }
    return true;
}

bool SegmentReader::takeBareTag(const TagLine& tagLine) {
    if (tagLine.name == tag::discontinuity) {
        discontinuity_ = true;
        return true;
    }
    if (tagLine.name == tag::cueIn) {
        cueIn_ = true;
        return true;
    }
    return tagLine.name == tag::extM3U;
}

bool SegmentReader::takeTag(const TagLine& tagLine, const std::string& line) {
    if (tagLine.name == tag::extInf) return takeDuration(tagLine.value);
    if (tagLine.name == tag::byteRange) return takeByteRange(tagLine.value);
    if (tagLine.name == tag::key) return takeKey(line);
    if (tagLine.name == tag::map) return takeMap(line);
    if (tagLine.name == tag::programDateTime) return takeProgramDateTime(tagLine.value);
    if (tagLine.name == tag::define) return takeDefine(tagLine.value);
    if (tagLine.name == tag::cueOut) {
        cueOut_ = tagLine.value;
        return true;
    }
    if (tagLine.name == tag::cueOutCont) {
        cueOutCont_ = tagLine.value;
        return true;
    }
    return false;
}

bool SegmentReader::takeDuration(std::string_view value) {
    const std::size_t comma = value.find(',');
    if (comma == 0) return false;
    duration_ = toDouble(value.substr(0, comma));
    // The title keeps its comma, and gets another one when it is written: both are part of the interface.
    title_ = comma == std::string_view::npos ? std::string_view() : value.substr(comma);
    return true;
}

bool SegmentReader::takeByteRange(std::string_view value) {
    byteRange_ = std::make_shared<VELHLSByteRange>();
    return byteRange_->parse(std::string(value), '@', false) == 0;
}

bool SegmentReader::takeKey(const std::string& line) {
    key_ = std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::None, "", "", "",
                                                  std::vector<std::int32_t>());
    return key_->parse(line) == 0;
}

bool SegmentReader::takeMap(const std::string& line) {
    map_ = std::make_shared<VELHLSMISMap>();
    return map_->parse(line) == 0;
}

bool SegmentReader::takeProgramDateTime(std::string_view value) {
    programDateTime_ = parseTimestamp(value);
    hasProgramDateTime_ = true;
    return !(programDateTime_ < 0.0);
}

bool SegmentReader::takeDefine(std::string_view value) {
    if (defines_ == nullptr) defines_ = std::make_shared<VELHLSDefineMap>();
    return takeDefineTag(value, *defines_);
}

void SegmentReader::notePattern() {
    if (status_ != nullptr) status_->hasMediaPatterns = true;
}

std::shared_ptr<VELHLSMediaSegment> SegmentReader::build(const VELHLSMediaSegment* previous,
                                                         std::uint64_t firstMediaSequenceNumber,
                                                         std::uint64_t firstDiscontinuitySequenceNumber) {
    if (duration_ == 0.0 || uri_.empty()) return nullptr;
    if (byteRange_ == nullptr) byteRange_ = getByteRangeFromUri(uri_);

    std::uint64_t mediaSequenceNumber = firstMediaSequenceNumber;
    std::uint64_t discontinuitySequenceNumber = firstDiscontinuitySequenceNumber;
    double startTime = 0.0;
    if (previous != nullptr) {
        mediaSequenceNumber = previous->mediaSequenceNumber + 1;
        discontinuitySequenceNumber = previous->discontinuitySequenceNumber;
        startTime = previous->startTime + previous->duration;
        // Also when the previous segment had none: dates then count from 0.
        if (!hasProgramDateTime_) programDateTime_ = previous->programDateTime + previous->duration;
        if (key_ == nullptr) key_ = previous->protectionData;
        if (map_ == nullptr) map_ = previous->misMap;
    }
    if (discontinuity_) ++discontinuitySequenceNumber;

    auto segment = std::make_shared<VELHLSMediaSegment>(
        duration_, startTime, mediaSequenceNumber, discontinuitySequenceNumber, title_, byteRange_,
        discontinuity_, programDateTime_, key_, map_, uri_, cueIn_, cueOut_, cueOutCont_);
    return segment->validate() ? segment : nullptr;
}

}  // namespace velhls
