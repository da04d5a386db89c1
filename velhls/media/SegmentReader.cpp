#include "velhls/media/SegmentReader.h"

#include <utility>
#include <vector>

#include "velhls/common/DefineTag.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/PatternTags.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/Timestamps.h"
#include "velhls/media/PatternReader.h"
#include "velhls/media/RangeText.h"

namespace velhls {

SegmentReader::SegmentReader(LineReader& lines, SegmentMaker* maker, std::shared_ptr<VELHLSDefineMap> defines,
                             VELHLSParsingStatus* status)
    : lines_(lines), maker_(maker), defines_(std::move(defines)), status_(status) {}

std::shared_ptr<VELHLSMediaSegment> SegmentReader::read(std::string_view firstLine,
                                                        const SegmentOrigin& origin) {
    reset();
    if (!gather(firstLine) || !isComplete()) return nullptr;
    return build(origin);
}

void SegmentReader::Tags::clear() {
    duration = 0.0;
    programDateTime = 0.0;
    hasProgramDateTime = false;
    discontinuity = false;
    cueIn = false;
    byteRange = nullptr;
    key = nullptr;
    map = nullptr;
    cueOut.clear();
    cueOutCont.clear();
}

void SegmentReader::reset() {
    takenLines_.clear();
    openedPattern_ = false;
    pattern_ = nullptr;
    tags_.clear();
    title_ = {};
    uri_ = {};
}

/// Reads on to the URI. False when the lines hold no segment.
bool SegmentReader::gather(std::string_view firstLine) {
    if (!lines_.good()) return false;
    std::string_view line = firstLine;
    while (takeLine(line)) {
        if (!uri_.empty()) return true;
        takenLines_ += line;
        takenLines_ += '\n';
        line = lines_.next();
        // A line that ends the input without a line feed is not looked at.
        if (!lines_.good()) return true;
    }
    return false;
}

bool SegmentReader::takeLine(std::string_view line) {
    if (!isTagOrComment(line)) {
        uri_ = withoutTrailing(line, blanks);
        return true;
    }
    if (isTagLine(line, tag::extInf)) return takeDuration(line.substr(tagLength(tag::extInf)));
    if (!isStandardTag(line)) return takeVendorTagOrComment(line);
    const TagLine tagLine(line);
    return tagLine.hasColon ? takeTag(tagLine, line) : takeBareTag(tagLine);
}

bool SegmentReader::takeVendorTagOrComment(std::string_view line) {
    if (startsPattern(line)) {
        notePattern();
        if (!TagLine(line).hasColon) return false;
        openedPattern_ = true;
        pattern_ = readPattern(line, takenLines_, lines_, status_);
        return false;
    }
    if (isPatternTag(line)) {
        notePattern();
        VELHLSUtility::updateParsingStatusWithError(status_, VELHLSParsingErrorMediaPattern,
                                                    std::string(line));
        return false;
    }
    return true;
}

bool SegmentReader::takeBareTag(const TagLine& tagLine) {
    if (tagLine.name == tag::discontinuity) {
        tags_.discontinuity = true;
        return true;
    }
    if (tagLine.name == tag::cueIn) {
        tags_.cueIn = true;
        return true;
    }
    return tagLine.name == tag::extM3U;
}

bool SegmentReader::takeTag(const TagLine& tagLine, std::string_view line) {
    if (tagLine.name == tag::byteRange) return takeByteRange(tagLine.value);
    if (tagLine.name == tag::key) return takeKey(line);
    if (tagLine.name == tag::map) return takeMap(line);
    if (tagLine.name == tag::programDateTime) return takeProgramDateTime(tagLine.value);
    if (tagLine.name == tag::define) return takeDefine(tagLine);
    if (tagLine.name == tag::cueOut) {
        tags_.cueOut = tagLine.value;
        return true;
    }
    if (tagLine.name == tag::cueOutCont) {
        tags_.cueOutCont = tagLine.value;
        return true;
    }
    return false;
}

bool SegmentReader::takeDuration(std::string_view value) {
    const std::size_t comma = value.find(',');
    if (comma == 0) return false;
    tags_.duration = toDouble(value.substr(0, comma));
    // The title keeps its comma, and gets another one when it is written: both are part of the interface.
    takeTitle(comma == std::string_view::npos ? std::string_view() : value.substr(comma));
    return true;
}

/// Most titles are nothing but their comma, which is not worth a copy.
void SegmentReader::takeTitle(std::string_view title) {
    constexpr std::string_view comma = ",";
    if (title == comma) {
        title_ = comma;
        return;
    }
    titleMemory_ = title;
    title_ = titleMemory_;
}

bool SegmentReader::takeByteRange(std::string_view value) {
    VELHLSByteRange range;
    if (!parseRange(value, '@', false, range)) return false;
    tags_.byteRange = maker_ != nullptr ? maker_->make(range) : std::make_shared<VELHLSByteRange>(range);
    return true;
}

bool SegmentReader::takeKey(std::string_view line) {
    tags_.key = std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::None, "", "", "",
                                                       std::vector<std::int32_t>());
    return tags_.key->parse(std::string(line)) == 0;
}

bool SegmentReader::takeMap(std::string_view line) {
    tags_.map = std::make_shared<VELHLSMISMap>();
    return tags_.map->parse(std::string(line)) == 0;
}

bool SegmentReader::takeProgramDateTime(std::string_view value) {
    tags_.programDateTime = parseTimestamp(value);
    tags_.hasProgramDateTime = true;
    return !(tags_.programDateTime < 0.0);
}

bool SegmentReader::takeDefine(const TagLine& tagLine) {
    if (defines_ == nullptr) defines_ = std::make_shared<VELHLSDefineMap>();
    return takeDefineTag(tagLine, *defines_, nullptr);
}

void SegmentReader::notePattern() {
    if (status_ != nullptr) status_->hasMediaPatterns = true;
}

/// False when what was gathered is no valid segment. A key that parses is valid; a map is not when its URI is
/// empty.
bool SegmentReader::isComplete() {
    if (tags_.duration == 0.0 || uri_.empty()) return false;
    if (tags_.byteRange == nullptr) tags_.byteRange = rangeInUri(uri_);
    if (tags_.byteRange != nullptr && tags_.byteRange->length < 0) return false;
    return tags_.map == nullptr || tags_.map->validate();
}

std::shared_ptr<VELHLSMediaSegment> SegmentReader::build(const SegmentOrigin& origin) {
    auto made = maker_ != nullptr ? maker_->make(title_, uri_) : SegmentMaker::makeAlone(title_, uri_);
    VELHLSMediaSegment& segment = *made;
    segment.duration = tags_.duration;
    if (tags_.byteRange != nullptr) segment.byteRange = std::move(tags_.byteRange);
    segment.discontinuity = tags_.discontinuity;
    if (tags_.key != nullptr) segment.protectionData = std::move(tags_.key);
    if (tags_.map != nullptr) segment.misMap = std::move(tags_.map);
    segment.programDateTime = tags_.programDateTime;
    segment.cueIn = tags_.cueIn;
    if (!tags_.cueOut.empty()) segment.cueOut = std::move(tags_.cueOut);
    if (!tags_.cueOutCont.empty()) segment.cueOutCont = std::move(tags_.cueOutCont);

    segment.mediaSequenceNumber = origin.firstMediaSequenceNumber;
    segment.discontinuitySequenceNumber = origin.firstDiscontinuitySequenceNumber;
    if (const VELHLSMediaSegment* const previous = origin.previous) {
        segment.mediaSequenceNumber = previous->mediaSequenceNumber + 1;
        segment.discontinuitySequenceNumber = previous->discontinuitySequenceNumber;
        segment.startTime = previous->startTime + previous->duration;
        // Also when the previous segment had none: dates then count from 0.
        if (!tags_.hasProgramDateTime) {
            segment.programDateTime = previous->programDateTime + previous->duration;
        }
        if (segment.protectionData == nullptr) segment.protectionData = previous->protectionData;
        if (segment.misMap == nullptr) segment.misMap = previous->misMap;
    }
    if (segment.discontinuity) ++segment.discontinuitySequenceNumber;
    return made;
}

}  // namespace velhls
