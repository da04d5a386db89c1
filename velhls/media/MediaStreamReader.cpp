#include "velhls/media/MediaStreamReader.h"

#include <optional>
#include <utility>

#include "velhls/common/DefineTag.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/PatternTags.h"
#include "velhls/common/StartTag.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

bool opensSegment(std::string_view name) {
    return name == tag::byteRange || name == tag::key || name == tag::map || name == tag::programDateTime ||
           name == tag::cueOut || name == tag::cueOutCont;
}

}  // namespace

std::shared_ptr<VELHLSMediaStream> MediaStreamReader::read() {
    if (recorder_ != nullptr) return readRecorded();
    while (lines_.good()) {
        line_ = lines_.next();
        if (!takeLine()) return nullptr;
        if (stream_->endList && stream_->hasExtM3U) break;
    }
    return std::move(stream_);
}

/// The same with a recorder, which is told why a line is rejected.
std::shared_ptr<VELHLSMediaStream> MediaStreamReader::readRecorded() {
    while (lines_.good()) {
        readRecordedLine();
        static_cast<void>(withoutThrowing(*recorder_, false, [this] { return takeLine(); }));
        if (stream_->endList && stream_->hasExtM3U) break;
    }
    tellOfUnreadLines();
    return std::move(stream_);
}

void MediaStreamReader::readRecordedLine() {
    line_ = lines_.next();
    recorder_->lineRead(line_);
}

bool MediaStreamReader::takeLine() {
    // Most lines that come here are these.
    if (isTagLine(line_, tag::extInf)) return takeSegment(false);
    if (isStandardTag(line_)) {
        const TagLine tagLine(line_);
        return tagLine.hasColon ? takeTag(tagLine) : takeBareTag(tagLine);
    }
    if (startsPattern(line_)) return takePattern();
    if (isTagOrComment(line_)) {
        tellOfComment(recorder_, line_);
        return true;
    }
    // A segment's URI was read together with its tags. Any other is out of place.
    return isBlank(line_) || reject(recorder_, Rule::uriWithoutTag, line_);
}

bool MediaStreamReader::takeBareTag(const TagLine& tagLine) {
    if (tagLine.name == tag::discontinuity) return takeSegment(true);
    if (recorder_ != nullptr) recorder_->tagRead(tagLine);
    if (tagLine.name == tag::extM3U) {
        stream_->hasExtM3U = true;
    } else if (tagLine.name == tag::endList) {
        stream_->endList = true;
    } else if (tagLine.name == tag::iFramesOnly) {
        stream_->iFramesOnly = true;
    } else if (tagLine.name == tag::independentSegments) {
        stream_->independentSegments = true;
    } else if (recorder_ != nullptr) {
        tellOfIgnoredTag(tagLine);
    }
    return true;
}

bool MediaStreamReader::takeTag(const TagLine& tagLine) {
    if (opensSegment(tagLine.name)) return takeSegment(false);
    if (recorder_ != nullptr) recorder_->tagRead(tagLine);
    if (tagLine.name == tag::targetDuration) return takeTargetDuration(tagLine.value);
    if (tagLine.name == tag::mediaSequence) {
        return takeCount(Rule::mediaSequenceMalformed, tagLine.value, stream_->mediaSequence);
    }
    if (tagLine.name == tag::discontinuitySequence) {
        return takeCount(Rule::discontinuitySequenceMalformed, tagLine.value, stream_->discontinuitySequence);
    }
    if (tagLine.name == tag::playlistType) return takePlaylistType(tagLine.value);
    if (tagLine.name == tag::start) return takeStart(tagLine);
    if (tagLine.name == tag::define) return takeDefineTag(tagLine, *stream_->hlsDefineMap, recorder_);
    if (tagLine.name == tag::version) {
        stream_->version = toInt32(number(recorder_, tagLine.value));
        return true;
    }
    if (recorder_ != nullptr) tellOfIgnoredTag(tagLine);
    return true;
}

/// Cue markers are tags of segments where they stand among a segment's.
void MediaStreamReader::tellOfIgnoredTag(const TagLine& tagLine) {
    if (tagLine.name == tag::cueIn) {
        recorder_->report(Rule::cueInDropped, tagLine.name, {});
    } else if (tagLine.name == tag::cueOut) {
        recorder_->report(Rule::cueOutIgnored, tagLine.name, {});
    } else {
        recorder_->tagIgnored(tagLine);
    }
}

/// What stands behind the end of the playlist, but for blank lines and comments.
void MediaStreamReader::tellOfUnreadLines() {
    while (lines_.good()) {
        readRecordedLine();
        if (isBlank(line_) || (isTagOrComment(line_) && !isStandardTag(line_) && !isVendorTag(line_)))
            continue;
        recorder_->report(Rule::contentAfterEnd, line_, {});
        return;
    }
}

bool MediaStreamReader::takeCount(Rule rule, std::string_view value, std::int64_t& count) {
    if (value.empty() || !holdsOnly(value, digits)) return reject(recorder_, rule, value);
    count = toInt64(number(recorder_, value));
    return true;
}

bool MediaStreamReader::takeTargetDuration(std::string_view value) {
    if (value.empty() || !holdsOnly(value, digitsAndPoint)) {
        return reject(recorder_, Rule::targetDurationMalformed, value);
    }
    stream_->targetDuration = toDouble(number(recorder_, value, NumberForm::decimal));
    return true;
}

bool MediaStreamReader::takePlaylistType(std::string_view value) {
    if (value != fixed::event && value != fixed::vod) {
        return reject(recorder_, Rule::playlistTypeUnknown, value);
    }
    stream_->playlistType = value == fixed::vod ? VELHLSMediaStream::Vod : VELHLSMediaStream::Event;
    return true;
}

bool MediaStreamReader::takeStart(const TagLine& tagLine) {
    const std::optional<StartTag> start = parseStartTag(tagLine, recorder_);
    if (!start) return false;
    stream_->startTimeOffset = start->timeOffset;
    // A later tag does not take PRECISE=YES back.
    if (start->precise) stream_->startPrecise = true;
    if (stream_->startPrecise && !start->precise) tell(recorder_, Rule::startPreciseKept, tagLine.name);
    return true;
}

bool MediaStreamReader::takeSegment(bool afterDiscontinuity) {
    auto segment = segmentReader_.read(line_, nextOrigin());
    if (segmentReader_.pattern() != nullptr) return appendPattern();
    if (segment == nullptr) return false;
    stream_->segments.push_back(std::move(segment));
    if (afterDiscontinuity) stream_->discontinuitySeen = true;
    return true;
}

bool MediaStreamReader::takePattern() {
    static_cast<void>(segmentReader_.read(line_, nextOrigin()));
    return segmentReader_.pattern() != nullptr && appendPattern();
}

bool MediaStreamReader::appendPattern() {
    const std::size_t countBefore = stream_->segments.size();
    const bool areCreated = createSegments(stream_->segments, *segmentReader_.pattern(), nextOrigin(),
                                           stream_->hlsDefineMap, recordMaker_, allowance_, recorder_);
    if (!areCreated) return false;
    if (recorder_ != nullptr) {
        const void* const pattern = segmentReader_.pattern().get();
        recorder_->reportRecord(Rule::patternNotWritten, pattern, {}, {});
        if (stream_->segments.size() == countBefore)
            recorder_->reportRecord(Rule::patternWithoutSegments, pattern, {}, "none");
    }
    return true;
}

SegmentOrigin MediaStreamReader::nextOrigin() const {
    return {stream_->segments.empty() ? nullptr : stream_->segments.back().get(),
            static_cast<std::uint64_t>(stream_->mediaSequence),
            static_cast<std::uint64_t>(stream_->discontinuitySequence)};
}

}  // namespace velhls
