#include "velhls/media/MediaStreamReader.h"

#include <iterator>
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

bool takeCount(std::string_view value, std::int64_t& count) {
    if (value.empty() || !holdsOnly(value, digits)) return false;
    count = toInt64(value);
    return true;
}

bool opensSegment(std::string_view name) {
    return name == tag::byteRange || name == tag::key || name == tag::map || name == tag::programDateTime ||
           name == tag::cueOut || name == tag::cueOutCont;
}

}  // namespace

std::shared_ptr<VELHLSMediaStream> MediaStreamReader::read() {
    while (lines_.good()) {
        line_ = lines_.next();
        if (!takeLine()) return nullptr;
        if (stream_->endList && stream_->hasExtM3U) break;
    }
    return std::move(stream_);
}

bool MediaStreamReader::takeLine() {
    // Most lines that come here are these.
    if (isTagLine(line_, tag::extInf)) return takeSegment(false);
    if (isStandardTag(line_)) {
        const TagLine tagLine(line_);
        return tagLine.hasColon ? takeTag(tagLine) : takeBareTag(tagLine.name);
    }
    if (startsPattern(line_)) return takePattern();
    if (isTagOrComment(line_)) return true;
    // A segment's URI was read together with its tags. Any other is out of place.
    return isBlank(line_);
}

bool MediaStreamReader::takeBareTag(std::string_view name) {
    if (name == tag::extM3U) stream_->hasExtM3U = true;
    if (name == tag::endList) stream_->endList = true;
    if (name == tag::iFramesOnly) stream_->iFramesOnly = true;
    if (name == tag::independentSegments) stream_->independentSegments = true;
    if (name == tag::discontinuity) return takeSegment(true);
    return true;
}

bool MediaStreamReader::takeTag(const TagLine& tagLine) {
    if (opensSegment(tagLine.name)) return takeSegment(false);
    if (tagLine.name == tag::targetDuration) return takeTargetDuration(tagLine.value);
    if (tagLine.name == tag::mediaSequence) return takeCount(tagLine.value, stream_->mediaSequence);
    if (tagLine.name == tag::discontinuitySequence) {
        return takeCount(tagLine.value, stream_->discontinuitySequence);
    }
    if (tagLine.name == tag::playlistType) return takePlaylistType(tagLine.value);
    if (tagLine.name == tag::start) return takeStart(tagLine);
    if (tagLine.name == tag::define) return takeDefineTag(tagLine, *stream_->hlsDefineMap, nullptr);
    if (tagLine.name == tag::version) stream_->version = toInt32(tagLine.value);
    return true;
}

bool MediaStreamReader::takeTargetDuration(std::string_view value) {
    if (value.empty() || !holdsOnly(value, digitsAndPoint)) return false;
    stream_->targetDuration = toDouble(value);
    return true;
}

bool MediaStreamReader::takePlaylistType(std::string_view value) {
    if (value != fixed::event && value != fixed::vod) return false;
    stream_->playlistType = value == fixed::vod ? VELHLSMediaStream::Vod : VELHLSMediaStream::Event;
    return true;
}

bool MediaStreamReader::takeStart(const TagLine& tagLine) {
    const std::optional<StartTag> start = parseStartTag(tagLine, nullptr);
    if (!start) return false;
    stream_->startTimeOffset = start->timeOffset;
    // A later tag does not take PRECISE=YES back.
    if (start->precise) stream_->startPrecise = true;
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
    const auto segments = createSegments(*segmentReader_.pattern(), nextOrigin(), stream_->hlsDefineMap,
                                         segmentMaker_, allowance_);
    if (segments == nullptr) return false;
    stream_->segments.insert(stream_->segments.end(), std::make_move_iterator(segments->begin()),
                             std::make_move_iterator(segments->end()));
    return true;
}

SegmentOrigin MediaStreamReader::nextOrigin() const {
    return {stream_->segments.empty() ? nullptr : stream_->segments.back().get(),
            static_cast<std::uint64_t>(stream_->mediaSequence),
            static_cast<std::uint64_t>(stream_->discontinuitySequence)};
}

}  // namespace velhls
