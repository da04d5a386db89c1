#include "velhls/media/SegmentReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
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
#include "velhls/media/RecordParsers.h"

namespace velhls {
namespace {

/// The tags that describe a segment, each of which it can have once; EXTINF is the first.
constexpr std::array<std::string_view, 9> segmentTags = {
    tag::extInf, tag::byteRange,  tag::key,   tag::map,          tag::programDateTime,
    tag::cueOut, tag::cueOutCont, tag::cueIn, tag::discontinuity};

/// Gives access to the constructor that a reader needs.
struct ReadSegment : VELHLSMediaSegment {
    ReadSegment(std::string_view title, std::string_view uri) : VELHLSMediaSegment(title, uri) {}
};

bool isKeptByWriting(double duration) {
    constexpr int decimals = 6;
    std::array<char, mostFixedBytes> text;
    const char* const end = putFixed(text.data(), duration, decimals);
    return toDouble({text.data(), static_cast<std::size_t>(end - text.data())}) == duration;
}

}  // namespace

SegmentReader::SegmentReader(LineReader& lines, RecordMaker* maker, std::shared_ptr<VELHLSDefineMap> defines,
                             VELHLSParsingStatus* status, Recorder* recorder)
    : lines_(lines), maker_(maker), defines_(std::move(defines)), status_(status), recorder_(recorder) {
    lines_.tell(*this);
}

std::shared_ptr<VELHLSMediaSegment> SegmentReader::read(std::string_view firstLine,
                                                        const SegmentOrigin& origin) {
    reset();
    if (recorder_ != nullptr) return readRecorded(firstLine, origin);
    if (!gather(firstLine) || !isComplete()) return nullptr;
    return build(origin);
}

std::shared_ptr<VELHLSMediaSegment> SegmentReader::readRecorded(std::string_view firstLine,
                                                                const SegmentOrigin& origin) {
    recorded_ = {};
    if (!gatherRecorded(firstLine)) return nullptr;
    if (!withoutThrowing(*recorder_, false, [this] { return isComplete(); })) return nullptr;
    auto segment = build(origin);
    recordMade(*segment, origin.previous);
    return segment;
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

void SegmentReader::reset() {
    takenText_.clear();
    takenLineCount_ = 0;
    openedPattern_ = false;
    if (pattern_ != nullptr) pattern_ = nullptr;
    tags_.clear();
    title_ = {};
    uri_ = {};
}

void SegmentReader::recordStart(std::string_view firstLine) {
    recorder_->recordRead(this, isTagOrComment(firstLine) ? TagLine(firstLine).name : firstLine);
    // A first line that ends the input is not looked at.
    if (!lines_.good()) static_cast<void>(tellWhyIncomplete());
}

void SegmentReader::recordTag(const TagLine& tagLine) {
    recorder_->tagRead(tagLine);
    const auto found = std::find(segmentTags.begin(), segmentTags.end(), tagLine.name);
    if (found == segmentTags.end()) return;
    const auto index = static_cast<std::size_t>(found - segmentTags.begin());
    if (recorded_.tags.test(index)) recorder_->report(Rule::segmentTagReplaced, tagLine.name, {});
    recorded_.tags.set(index);
}

/// Reads on to the URI. False when the lines hold no segment.
bool SegmentReader::gather(std::string_view firstLine) {
    if (!lines_.good()) return false;
    std::string_view line = firstLine;
    while (takeLine(line)) {
        if (!uri_.empty()) return true;
        keep(line);
        line = lines_.next();
        // A line that ends the input without a line feed is not looked at.
        if (!lines_.good()) return true;
    }
    return false;
}

/// The same with a recorder. Behind a line that is rejected it goes on to the URI, so that the lines behind the
/// segment are read as what they are.
bool SegmentReader::gatherRecorded(std::string_view firstLine) {
    recordStart(firstLine);
    if (!lines_.good()) return false;
    bool allTaken = true;
    std::string_view line = firstLine;
    while (true) {
        allTaken = takeRecordedLine(line) && allTaken;
        if (openedPattern_) return false;
        if (!uri_.empty()) return allTaken;
        keep(line);
        line = lines_.next();
        recorder_->lineRead(line);
        ++recorded_.linesTaken;
        recorded_.unreadLine = line;
        if (!lines_.good()) return allTaken;
    }
}

void SegmentReader::keep(std::string_view line) {
    if (takenLineCount_ == takenLines_.size()) viewsEnd();
    takenLines_[takenLineCount_] = line;
    ++takenLineCount_;
}

void SegmentReader::viewsEnd() {
    for (std::size_t index = 0; index < takenLineCount_; ++index) {
        const std::string_view line = takenLines_[index];
        char* const end = put(takenText_.room(line.size() + 1), line);
        takenText_.endAt(put(end, '\n'));
    }
    takenLineCount_ = 0;
}

/// All lines that were taken, each with a line feed.
std::string SegmentReader::textTaken() {
    viewsEnd();
    return std::string(takenText_.text());
}

bool SegmentReader::takeRecordedLine(std::string_view line) {
    if (isStandardTag(line)) recordTag(TagLine(line));
    const bool taken = withoutThrowing(*recorder_, false, [this, line] { return takeLine(line); });
    if (taken && isTagLine(line, tag::extInf)) tellOfDuration(TagLine(line).value);
    if (taken && isTagLine(line, tag::byteRange) && tags_.byteRange.length == 0) {
        recorder_->report(Rule::byteRangeEmptyNotWritten, TagLine(line).value, {});
    }
    if (!uri_.empty()) tellOfUri(line);
    return taken;
}

bool SegmentReader::takeLine(std::string_view line) {
    if (!isTagOrComment(line)) {
        uri_ = withoutTrailing(line, blanks);
        return true;
    }
    // The tags that many segments have are told without looking for their colon.
    if (isTagLine(line, tag::extInf)) return takeDuration(behind(line, tagLength(tag::extInf)));
    if (!isStandardTag(line)) return takeVendorTagOrComment(line);
    if (isTagLine(line, tag::byteRange)) return takeByteRange(behind(line, tagLength(tag::byteRange)));
    if (isTagLine(line, tag::programDateTime)) {
        return takeProgramDateTime(behind(line, tagLength(tag::programDateTime)));
    }
    const TagLine tagLine(line);
    return tagLine.hasColon ? takeTag(tagLine, line) : takeBareTag(tagLine);
}

void SegmentReader::tellOfUri(std::string_view line) const {
    if (uri_.size() != line.size()) {
        recorder_->report(Rule::segmentUriTrimmed, line.substr(uri_.size()), {});
    }
    const std::size_t reference = uri_.find("{$");
    if (reference != std::string_view::npos) {
        recorder_->report(Rule::variableNotReplaced, uri_.substr(reference), {});
    }
}

bool SegmentReader::takeVendorTagOrComment(std::string_view line) {
    if (startsPattern(line)) {
        notePattern();
        if (!TagLine(line).hasColon) return reject(recorder_, Rule::patternStartWithoutColon, line);
        openedPattern_ = true;
        if (recorder_ != nullptr) recorder_->patternBegins(recorded_.linesTaken);
        pattern_ = readPattern(line, textTaken(), lines_, status_, recorder_);
        return false;
    }
    if (isPatternTag(line)) {
        notePattern();
        VELHLSUtility::updateParsingStatusWithError(status_, VELHLSParsingErrorMediaPattern,
                                                    std::string(line));
        return reject(recorder_, Rule::patternTagMisplaced, line);
    }
    tellOfComment(recorder_, line);
    return true;
}

bool SegmentReader::takeBareTag(const TagLine& tagLine) {
    if (tagLine.name == tag::discontinuity) {
        tags_.discontinuity = true;
        return true;
    }
    if (tagLine.name == tag::cueIn) {
        tell(recorder_, Rule::cueNotWritten, tagLine.name);
        tags_.cueIn = true;
        return true;
    }
    if (tagLine.name == tag::extM3U) return true;
    return reject(recorder_, Rule::segmentBareTagUnknown, tagLine.name);
}

bool SegmentReader::takeTag(const TagLine& tagLine, std::string_view line) {
    if (tagLine.name == tag::key) return takeKey(line);
    if (tagLine.name == tag::map) return takeMap(line);
    if (tagLine.name == tag::define) return takeDefine(tagLine);
    if (tagLine.name == tag::cueOut) {
        tell(recorder_, Rule::cueNotWritten, tagLine.name);
        tags_.cueOut = tagLine.value;
        return true;
    }
    if (tagLine.name == tag::cueOutCont) {
        tell(recorder_, Rule::cueNotWritten, tagLine.name);
        tags_.cueOutCont = tagLine.value;
        return true;
    }
    return reject(recorder_, Rule::segmentTagUnknown, tagLine.name);
}

bool SegmentReader::takeDuration(std::string_view value) {
    if (startsWith(value, ",")) return reject(recorder_, Rule::segmentDurationEmpty, value);
    const std::size_t length = readDuration(value);
    // The title keeps its comma, and gets another one when it is written: both are part of the interface.
    takeTitle(behind(value, length));
    return true;
}

/// Reads the duration, and finds out where it ends: at the first comma or the end of the line.
std::size_t SegmentReader::readDuration(std::string_view value) {
    const LeadingNumber<double> plain = leadingDecimal(value);
    const bool isAll = plain.length > 0 && (plain.length == value.size() || value[plain.length] == ',');
    const std::size_t length = isAll ? plain.length : std::min(value.find(','), value.size());
    const std::string_view text = number(recorder_, firstOf(value, length), NumberForm::decimal);
    tags_.duration = isAll ? plain.number : toDouble(text);
    return length;
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
    if (!parseRange(value, '@', false, tags_.byteRange, recorder_)) {
        return reject(recorder_, Rule::byteRangeMalformed, value);
    }
    tags_.hasByteRange = true;
    return true;
}

bool SegmentReader::takeKey(std::string_view line) {
    tags_.key = std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::None, "", "", "",
                                                       std::vector<std::int32_t>());
    return parseKey(line, *tags_.key, recorder_);
}

bool SegmentReader::takeMap(std::string_view line) {
    tags_.map = std::make_shared<VELHLSMISMap>();
    if (recorder_ != nullptr) recorder_->recordRead(&tags_.map, TagLine(line).name);
    return parseMap(line, *tags_.map, recorder_);
}

bool SegmentReader::takeProgramDateTime(std::string_view value) {
    tags_.programDateTime = timestamps_.read(value, recorder_);
    tags_.hasProgramDateTime = true;
    if (tags_.programDateTime < 0.0) return false;
    if (recorder_ != nullptr) tellOfTimestamp(*recorder_, value, tags_.programDateTime);
    return true;
}

bool SegmentReader::takeDefine(const TagLine& tagLine) {
    if (defines_ == nullptr) defines_ = std::make_shared<VELHLSDefineMap>();
    return takeDefineTag(tagLine, *defines_, recorder_);
}

void SegmentReader::notePattern() {
    if (status_ != nullptr) status_->hasMediaPatterns = true;
}

/// False when what was gathered is no valid segment. A key that parses is valid; a map is not when its URI is
/// empty.
bool SegmentReader::isComplete() {
    if (tags_.duration == 0.0 || uri_.empty()) return recorder_ != nullptr && tellWhyIncomplete();
    if (!tags_.hasByteRange && mayHoldRange(uri_)) {
        tags_.hasByteRange = rangeInUri(uri_, tags_.byteRange, recorder_);
    }
    if (tags_.hasByteRange && tags_.byteRange.length < 0) return false;
    if (tags_.map == nullptr || tags_.map->validate()) return true;
    if (recorder_ != nullptr) recorder_->reportRecord(Rule::mapUriEmpty, &tags_.map, {}, {});
    return false;
}

/// Called for a segment without a duration or a URI.
bool SegmentReader::tellWhyIncomplete() const {
    const std::string_view unread = lines_.good() ? std::string_view() : recorded_.unreadLine;
    if (uri_.empty() && !isBlank(unread) && !isTagOrComment(unread)) {
        recorder_->report(Rule::segmentUriWithoutLineFeed, unread, {});
    } else if (uri_.empty()) {
        recorder_->reportRecord(Rule::segmentUriMissing, this, {}, "the end of the playlist");
    } else if (recorded_.tags.test(0)) {
        recorder_->reportRecord(Rule::segmentDurationZero, &tags_.duration, {}, {});
    } else {
        recorder_->report(Rule::segmentDurationMissing, uri_, "none");
    }
    return false;
}

void SegmentReader::tellOfDuration(std::string_view value) const {
    const std::string_view text = value.substr(0, value.find(','));
    const std::string_view title = value.substr(text.size());
    recorder_->recordRead(&tags_.duration, text);
    if (tags_.duration < 0.0) recorder_->report(Rule::segmentDurationNegative, text, {});
    if (std::isfinite(tags_.duration) && !isKeptByWriting(tags_.duration)) {
        recorder_->report(Rule::segmentDurationRounded, text, {});
    }
    if (title.empty()) {
        recorder_->report(Rule::segmentCommaMissing, text, {});
    } else if (title == ",") {
        recorder_->report(Rule::segmentEmptyTitleGainsComma, title, "\",\" written as \",,\"");
    } else {
        recorder_->report(Rule::segmentTitleGainsComma, title.substr(1), {});
    }
}

/// What the segment got from the one in front of it, and the playlist did not say.
void SegmentReader::recordMade(const VELHLSMediaSegment& segment, const VELHLSMediaSegment* previous) const {
    recorder_->recordMade(&segment, &tags_.duration);
    if (previous == nullptr) return;
    if (!tags_.hasProgramDateTime && segment.programDateTime > 0.0) {
        recorder_->report(Rule::dateTimeAdded, uri_, "none");
    }
    const bool inherits =
        (segment.protectionData != nullptr && segment.protectionData == previous->protectionData) ||
        (segment.misMap != nullptr && segment.misMap == previous->misMap);
    if (inherits) recorder_->report(Rule::keyAndMapRepeated, uri_, "a segment without");
}

std::shared_ptr<VELHLSMediaSegment> SegmentReader::build(const SegmentOrigin& origin) {
    auto made = makeRecord<ReadSegment>(maker_, title_, uri_);
    VELHLSMediaSegment& segment = *made;
    segment.duration = tags_.duration;
    if (tags_.hasByteRange) segment.byteRange = makeRecord<VELHLSByteRange>(maker_, tags_.byteRange);
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
