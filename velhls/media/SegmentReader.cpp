#include "velhls/media/SegmentReader.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "velhls/common/DefineTag.h"
#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/PatternTags.h"
#include "velhls/common/TextScan.h"
#include "velhls/media/KeyAndMapTags.h"
#include "velhls/media/PatternReader.h"
#include "velhls/media/RangeText.h"

namespace velhls {
namespace {

/// Gives access to the constructor that a reader needs.
struct ReadSegment : VELHLSMediaSegment {
    ReadSegment(std::string_view title, std::string_view uri) : VELHLSMediaSegment(title, uri) {}
};

constexpr const char* endOfPlaylist = "the end of the playlist";

bool isUri(std::string_view line) {
    return !isBlank(line) && !isTagOrComment(line);
}

}  // namespace

SegmentReader::SegmentReader(LineReader& lines, SegmentSurroundings surroundings, Reason& why)
    : lines_(lines), with_(std::move(surroundings)), why_(why) {
    lines_.tell(*this);
}

std::shared_ptr<VELHLSMediaSegment> SegmentReader::read(std::string_view firstLine,
                                                        const SegmentOrigin& origin) {
    clear();
    if (!readLines(firstLine)) return nullptr;
    if (!succeeds([this] { return isComplete(); }, with_.reading, why_)) return nullptr;
    return build(origin);
}

void SegmentReader::Tags::clear() {
    duration = 0.0;
    programDateTime = 0.0;
    hasProgramDateTime = false;
    discontinuity = false;
    cueIn = false;
    hasByteRange = false;
    if (key != nullptr) key = nullptr;
    if (map != nullptr) map = nullptr;
    cueOut.clear();
    cueOutCont.clear();
}

void SegmentReader::clear() {
    keptText_.clear();
    keptLineCount_ = 0;
    openedPattern_ = false;
    if (pattern_ != nullptr) pattern_ = nullptr;
    tags_.clear();
    title_ = {};
    uri_ = {};
    unreadLine_ = {};
}

/// Reads on to the URI. False when the lines hold no segment. Where the reading goes on after a rejection it goes on to
/// the URI too, so that the lines after the segment are read as what they are.
bool SegmentReader::readLines(std::string_view firstLine) {
    // A line that ends the input without a line feed is not looked at.
    if (!lines_.good()) return true;
    bool allAccepted = true;
    std::string_view line = firstLine;
    while (true) {
        if (!succeeds([this, line] { return readLine(line); }, with_.reading, why_)) {
            // A pattern is not expanded when lines before it, which it repeats, were rejected.
            if (!allAccepted && pattern_ != nullptr) pattern_ = nullptr;
            if (openedPattern_ || !readsOn(with_.reading)) return false;
            allAccepted = false;
        }
        if (!uri_.empty()) return allAccepted;
        keep(line);
        const std::string_view before = line;
        line = lines_.next();
        if (lines_.good()) continue;
        unreadLine_ = line;
        if (!allAccepted) tellOfMissingUri(before);
        return allAccepted;
    }
}

/// Of a segment that was rejected nobody asks whether it is complete. What is told must come after what was.
void SegmentReader::tellOfMissingUri(std::string_view lastLine) {
    if (tags_.duration == 0.0) return;
    const auto step = [&] {
        return isUri(unreadLine_)
                   ? isIncomplete()
                   : why_(Rule::segmentUriMissing, lastLine.substr(lastLine.size()), endOfPlaylist);
    };
    static_cast<void>(succeeds(step, with_.reading, why_));
}

void SegmentReader::keep(std::string_view line) {
    if (keptLineCount_ == keptLines_.size()) copyKeptLines();
    keptLines_[keptLineCount_] = line;
    ++keptLineCount_;
}

/// Once a segment has its URI nobody asks for its lines any more when others are read.
void SegmentReader::viewsEnd() {
    if (uri_.empty()) copyKeptLines();
    keptLineCount_ = 0;
}

void SegmentReader::copyKeptLines() {
    for (std::size_t index = 0; index < keptLineCount_; ++index) {
        const std::string_view line = keptLines_[index];
        char* const end = writeText(keptText_.room(line.size() + 1), line);
        keptText_.endAt(writeText(end, '\n'));
    }
    keptLineCount_ = 0;
}

/// All lines that were kept, each with a line feed.
std::string SegmentReader::keptText() {
    copyKeptLines();
    return std::string(keptText_.text());
}

bool SegmentReader::readLine(std::string_view line) {
    if (!isTagOrComment(line)) {
        uri_ = withoutTrailing(line, blanks);
        return true;
    }
    // The tags that many segments have are told without looking for their colon.
    if (isTagLine(line, tag::extInf)) return readDuration(withoutFirst(line, tagLength(tag::extInf)));
    if (!isStandardTag(line)) return readVendorTagOrComment(line);
    if (isTagLine(line, tag::byteRange)) return readByteRange(withoutFirst(line, tagLength(tag::byteRange)));
    if (isTagLine(line, tag::programDateTime)) {
        return readProgramDateTime(withoutFirst(line, tagLength(tag::programDateTime)));
    }
    const TagLine tagLine(line);
    return tagLine.hasColon ? readTag(tagLine) : readBareTag(tagLine);
}

bool SegmentReader::readVendorTagOrComment(std::string_view line) {
    const bool isOfPattern = startsPattern(line) || isPatternTag(line);
    return !isOfPattern || readPatternTag(line);
}

/// Always false: at best the lines are a pattern's, and no segment's.
bool SegmentReader::readPatternTag(std::string_view line) {
    if (with_.status != nullptr) with_.status->hasMediaPatterns = true;
    if (!startsPattern(line)) {
        VELHLSUtility::updateParsingStatusWithError(with_.status, VELHLSParsingErrorMediaPattern,
                                                    std::string(line));
        return why_(Rule::patternTagMisplaced, line);
    }
    if (!TagLine(line).hasColon) return why_(Rule::patternStartWithoutColon, line);
    openedPattern_ = true;
    pattern_ = readPattern(line, keptText(), lines_, with_.status, with_.reading, why_);
    return false;
}

bool SegmentReader::readBareTag(const TagLine& tagLine) {
    if (tagLine.name == tag::discontinuity) {
        tags_.discontinuity = true;
    } else if (tagLine.name == tag::cueIn) {
        tags_.cueIn = true;
    } else if (tagLine.name != tag::extM3U) {
        return why_(Rule::segmentBareTagUnknown, tagLine.name);
    }
    return true;
}

bool SegmentReader::readTag(const TagLine& tagLine) {
    if (tagLine.name == tag::key) {
        tags_.key = std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::None, "", "", "",
                                                           std::vector<std::int32_t>());
        return readKey(tagLine, *tags_.key, why_);
    }
    if (tagLine.name == tag::map) {
        tags_.map = std::make_shared<VELHLSMISMap>();
        return readMap(tagLine, *tags_.map, why_);
    }
    if (tagLine.name == tag::define) {
        if (with_.defines == nullptr) with_.defines = std::make_shared<VELHLSDefineMap>();
        return readDefineTag(tagLine, *with_.defines, why_);
    }
    if (tagLine.name == tag::cueOut) {
        tags_.cueOut = tagLine.value;
    } else if (tagLine.name == tag::cueOutCont) {
        tags_.cueOutCont = tagLine.value;
    } else {
        return why_(Rule::segmentTagUnknown, tagLine.name);
    }
    return true;
}

/// The duration ends at the first comma or the end of the line.
bool SegmentReader::readDuration(std::string_view value) {
    if (startsWith(value, ",")) return why_(Rule::segmentDurationEmpty, value);
    const LeadingNumber<double> plain = leadingDecimal(value);
    const bool isAll = plain.length > 0 && (plain.length == value.size() || value[plain.length] == ',');
    const std::size_t length = isAll ? plain.length : std::min(value.find(','), value.size());
    tags_.duration = isAll ? plain.number : toDouble(firstOf(value, length), why_);
    // The title keeps its comma, and gets another one when it is rendered: both are part of the interface.
    readTitle(withoutFirst(value, length));
    return true;
}

/// Most titles are nothing but their comma, which is not worth a copy.
void SegmentReader::readTitle(std::string_view title) {
    constexpr std::string_view comma = ",";
    if (title == comma) {
        title_ = comma;
        return;
    }
    titleMemory_ = title;
    title_ = titleMemory_;
}

bool SegmentReader::readByteRange(std::string_view value) {
    if (!readRange(value, '@', false, tags_.byteRange, why_)) return why_(Rule::byteRangeMalformed, value);
    tags_.hasByteRange = true;
    return true;
}

bool SegmentReader::readProgramDateTime(std::string_view value) {
    tags_.programDateTime = timestamps_.read(value, why_);
    tags_.hasProgramDateTime = true;
    return !(tags_.programDateTime < 0.0);
}

/// False when what was read is no valid segment. A key that was read is valid; a map is not when its URI is
/// empty.
bool SegmentReader::isComplete() {
    if (tags_.duration == 0.0 || uri_.empty()) return isIncomplete();
    if (!tags_.hasByteRange && mayHoldRange(uri_)) {
        tags_.hasByteRange = readRangeInUri(uri_, tags_.byteRange, why_);
    }
    if (tags_.hasByteRange && tags_.byteRange.length < 0) return false;
    return tags_.map == nullptr || tags_.map->validate() || why_.ofRecord(Rule::mapUriEmpty, tag::map);
}

/// Says what a segment without a duration or a URI lacks, and returns false.
bool SegmentReader::isIncomplete() {
    if (uri_.empty()) {
        return isUri(unreadLine_) ? why_(Rule::segmentUriWithoutLineFeed, unreadLine_)
                                  : why_.ofRecord(Rule::segmentUriMissing, {}, endOfPlaylist);
    }
    constexpr std::string_view durationStart = "\n#EXTINF:";
    const bool hasDuration = ("\n" + keptText()).find(durationStart) != std::string::npos;
    return hasDuration ? why_.ofRecord(Rule::segmentDurationZero, tag::extInf)
                       : why_.missing(Rule::segmentDurationMissing, uri_);
}

std::shared_ptr<VELHLSMediaSegment> SegmentReader::build(const SegmentOrigin& origin) {
    auto made = makeRecord<ReadSegment>(with_.maker, title_, uri_);
    VELHLSMediaSegment& segment = *made;
    segment.duration = tags_.duration;
    if (tags_.hasByteRange) segment.byteRange = makeRecord<VELHLSByteRange>(with_.maker, tags_.byteRange);
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
