#include "velhls/media/MediaStreamReader.h"

#include <stdexcept>
#include <utility>

#include "velhls/common/DefineTag.h"
#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/PatternTags.h"
#include "velhls/common/Readers.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/StartTag.h"
#include "velhls/common/Tags.h"
#include "velhls/common/TextScan.h"

namespace velhls {

std::shared_ptr<VELHLSMediaStream> MediaStreamReader::read() {
    constexpr std::size_t segmentsOfLiveWindow = 8;
    stream_->segments.reserve(segmentsOfLiveWindow);
    while (lines_.good()) {
        line_ = lines_.next();
        if (reading_ != nullptr) reading_->recordBegins();
        if (!succeeds([this] { return readLine(); }, reading_, why_)) {
            if (!readsOn(reading_)) return nullptr;
            reading_->recordRejected();
        }
        if (stream_->endList && stream_->hasExtM3U) break;
    }
    return std::move(stream_);
}

bool MediaStreamReader::readLine() {
    // Most lines that come here are these.
    if (isTagLine(line_, tag::extInf)) return readSegment(false);
    if (isStandardTag(line_)) {
        const TagLine tagLine(line_);
        return tagLine.hasColon ? readTag(tagLine) : readBareTag(tagLine);
    }
    if (startsPattern(line_)) return readSegment(false);
    // A segment's URI was read together with its tags. Any other is out of place.
    return isTagOrComment(line_) || isBlank(line_) || why_(Rule::uriWithoutTag, line_);
}

bool MediaStreamReader::readBareTag(const TagLine& tagLine) {
    if (tagLine.name == tag::discontinuity) return readSegment(true);
    if (tagLine.name == tag::extM3U) {
        stream_->hasExtM3U = true;
    } else if (tagLine.name == tag::endList) {
        stream_->endList = true;
    } else if (tagLine.name == tag::iFramesOnly) {
        stream_->iFramesOnly = true;
    } else if (tagLine.name == tag::independentSegments) {
        stream_->independentSegments = true;
    }
    return true;
}

bool MediaStreamReader::readTag(const TagLine& tagLine) {
    if (hasUse<opensSegment>(tagLine.name)) return readSegment(false);
    if (tagLine.name == tag::targetDuration) return readTargetDuration(tagLine.value);
    if (tagLine.name == tag::mediaSequence) {
        return readCount(Rule::mediaSequenceMalformed, tagLine.value, stream_->mediaSequence);
    }
    if (tagLine.name == tag::discontinuitySequence) {
        return readCount(Rule::discontinuitySequenceMalformed, tagLine.value, stream_->discontinuitySequence);
    }
    if (tagLine.name == tag::playlistType) return readPlaylistType(tagLine.value);
    if (tagLine.name == tag::start) {
        return readStartTag(tagLine, stream_->startTimeOffset, stream_->startPrecise, why_);
    }
    if (tagLine.name == tag::define) return readDefineTag(tagLine, *stream_->hlsDefineMap, why_);
    if (tagLine.name == tag::version) stream_->version = toInt32(tagLine.value, why_);
    return true;
}

bool MediaStreamReader::readCount(Rule rule, std::string_view value, std::int64_t& count) {
    if (value.empty() || !holdsOnly(value, digits)) return why_(rule, value);
    count = toInt64(value, why_);
    return true;
}

bool MediaStreamReader::readTargetDuration(std::string_view value) {
    if (value.empty() || !holdsOnly(value, digitsAndPoint)) {
        return why_(Rule::targetDurationMalformed, value);
    }
    stream_->targetDuration = toDouble(value, why_);
    return true;
}

bool MediaStreamReader::readPlaylistType(std::string_view value) {
    if (value != fixed::event && value != fixed::vod) return why_(Rule::playlistTypeUnknown, value);
    stream_->playlistType = value == fixed::vod ? VELHLSMediaStream::Vod : VELHLSMediaStream::Event;
    return true;
}

/// Reads a segment, or the pattern that its lines open.
bool MediaStreamReader::readSegment(bool afterDiscontinuity) {
    auto segment = segmentReader_.read(line_, nextOrigin());
    if (segmentReader_.pattern() != nullptr) return appendPattern();
    if (segment == nullptr) return false;
    if (reading_ != nullptr) reading_->recordMade(segment.get());
    stream_->segments.push_back(std::move(segment));
    if (letsSegmentsGo_) letGoAllButLast();
    if (afterDiscontinuity) stream_->discontinuitySeen = true;
    return true;
}

bool MediaStreamReader::appendPattern() {
    const VELHLSMediaPattern& pattern = *segmentReader_.pattern();
    const SegmentSurroundings surroundings{&recordMaker_, stream_->hlsDefineMap, nullptr, reading_};
    if (!createSegments(stream_->segments, pattern, nextOrigin(), surroundings, allowance_, why_))
        return false;
    if (reading_ != nullptr) reading_->patternMade();
    if (letsSegmentsGo_) letGoAllButLast();
    return true;
}

/// The next segment goes on from the last one.
void MediaStreamReader::letGoAllButLast() {
    auto& segments = stream_->segments;
    if (segments.size() > 1) segments.erase(segments.begin(), segments.end() - 1);
}

SegmentOrigin MediaStreamReader::nextOrigin() const {
    return {stream_->segments.empty() ? nullptr : stream_->segments.back().get(),
            static_cast<std::uint64_t>(stream_->mediaSequence),
            static_cast<std::uint64_t>(stream_->discontinuitySequence)};
}

std::shared_ptr<VELHLSMediaStream> readMedia(std::string_view text, Reading& reading) {
    return MediaStreamReader(text, &reading).read();
}

std::optional<VELHLSReason> whyMediaIsRejected(std::string_view text) {
    try {
        MediaStreamReader reader(text, nullptr);
        reader.letSegmentsGo();
        if (reader.read() != nullptr) return std::nullopt;
    } catch (const std::logic_error&) {
        // A number that cannot be converted. The second reading takes it for a reason.
    }
    Reading reading(text, Reading::Extent::toFirstRejection);
    MediaStreamReader reader(text, &reading);
    reader.letSegmentsGo();
    static_cast<void>(reader.read());
    return reasonOf(text, reading.rejections().front());
}

}  // namespace velhls
