#include "velhls/writer/MediaWriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "velhls/common/AttributeWriter.h"
#include "velhls/common/LineWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/TagLine.h"
#include "velhls/media/RangeText.h"
#include "velhls/writer/KeyRules.h"
#include "velhls/writer/SafeText.h"

namespace velhls {
namespace {

/// More than all that EXTINF, EXT-X-BYTERANGE and the line of the URI take besides the title and the URI.
constexpr std::size_t mostOtherBytes = mostShortestBytes + mostRangeBytes + 64;

constexpr std::size_t fullText = std::size_t{64} << 10;

/// The first number that a signed 64-bit integer does not hold.
constexpr double beyondInt64 = 9223372036854775808.0;

bool encrypts(const VELHLSProtectionData* key) {
    return key != nullptr && key->method != VELHLSProtectionData::None;
}

bool areEqual(const VELHLSProtectionData& left, const VELHLSProtectionData& right) {
    return left.method == right.method && left.uri == right.uri && left.iv == right.iv &&
           left.keyFormat == right.keyFormat && left.keyFormatVersions == right.keyFormatVersions;
}

bool areEqual(const VELHLSByteRange& left, const VELHLSByteRange& right) {
    return left.length == right.length && left.offset == right.offset;
}

bool areEqual(const VELHLSMISMap& left, const VELHLSMISMap& right);

/// Two of the same object, two without any, or two of equal value.
template <typename Record>
bool areSame(const Record* left, const Record* right) {
    if (left == right) return true;
    return left != nullptr && right != nullptr && areEqual(*left, *right);
}

bool areEqual(const VELHLSMISMap& left, const VELHLSMISMap& right) {
    return left.uri == right.uri && areSame(left.byteRange.get(), right.byteRange.get());
}

/// "identity" is what stands for none (RFC 8216, section 4.3.2.4).
bool areOfOneFormat(const VELHLSProtectionData& left, const VELHLSProtectionData& right) {
    const auto format = [](const VELHLSProtectionData& key) -> std::string_view {
        return key.keyFormat.empty() ? "identity" : std::string_view(key.keyFormat);
    };
    return format(left) == format(right);
}

/// An initialization section cannot be encrypted with AES-128 by a key without IV (RFC 8216, section 4.3.2.5).
bool cannotEncryptMap(const VELHLSProtectionData& key) {
    return key.method == VELHLSProtectionData::AES128 && key.iv.empty();
}

/// Where the library looks for a range in a URI that is long enough to have one.
std::size_t startOfRangeIn(std::string_view uri) {
    constexpr std::string_view marker = "/range/";
    const std::size_t markerPosition = uri.rfind(marker);
    return markerPosition == std::string_view::npos ? shortestUriWithoutRange
                                                    : markerPosition + marker.size();
}

/// Whether the library reads this very range from a URI without EXT-X-BYTERANGE: see getByteRangeFromUri.
bool isToldByUri(const VELHLSByteRange& range, std::string_view uri) {
    if (range.length < 1 || uri.size() <= shortestUriWithoutRange || !isDigit(uri.back())) return false;
    // Many a URI ends in the digit of "mp4".
    std::size_t start = uri.size();
    while (start > shortestUriWithoutRange && (isDigit(uri[start - 1]) || uri[start - 1] == '-'))
        --start;
    const bool isOnlyRange = start == shortestUriWithoutRange || uri[start - 1] == '/';
    if (!isOnlyRange || range.offset > std::numeric_limits<std::int64_t>::max() - range.length) return false;
    std::array<char, mostRangeBytes> text;
    char* end = text.data();
    if (range.offset < 0) {
        end = writeDecimal(end, range.length);
    } else {
        end = writeText(writeDecimal(end, range.offset), '-');
        end = writeDecimal(end, range.offset + range.length - 1);
    }
    const std::string_view told(text.data(), static_cast<std::size_t>(end - text.data()));
    return uri.substr(startOfRangeIn(uri)) == told;
}

bool isWhole(double number) {
    // From 2^53 on all are.
    return number >= 9007199254740992.0 || static_cast<double>(static_cast<std::int64_t>(number)) == number;
}

std::string_view whyNoDuration(double seconds) {
    if (std::isnan(seconds)) return "is not a number";
    if (seconds == 0.0) return "is 0, which stands for none";
    if (seconds < 0.0) return "is negative";
    return seconds < beyondInt64 ? std::string_view() : "is too long";
}

std::string_view whyNoNumber(double number) {
    return std::isfinite(number) ? std::string_view() : "is not a finite number";
}

std::string_view whyNoDate(double seconds) {
    if (!std::isfinite(seconds)) return "is not a finite number";
    if (seconds < 0.0) return "is before 1970";
    return seconds < endOfDates - 1.0 ? std::string_view() : "is after the year 9999";
}

/// Whether counting on came to the date, to the millisecond.
bool isSameDate(double date, double counted) {
    constexpr double surelyAnother = 0.002;
    if (date == counted) return true;
    if (!(std::abs(date - counted) < surelyAnother)) return false;
    if (!whyNoDate(date).empty() || !whyNoDate(counted).empty()) return false;
    return Milliseconds(date) == Milliseconds(counted);
}

}  // namespace

std::optional<std::string> MediaWriter::write(const VELHLSMediaStream& stream, std::ostream& out) {
    if (!isSound(stream) || !appendSegments(stream)) return std::move(refusal_);
    if (stream.endList) append("#EXT-X-ENDLIST\n");
    writeText(out, header(stream));
    for (const TextBuffer& text : full_)
        writeText(out, text.text());
    writeText(out, body_.text());
    return std::nullopt;
}

bool MediaWriter::isSound(const VELHLSMediaStream& stream) {
    if (std::isnan(stream.targetDuration)) return refuse("the target duration", "is not a number");
    if (stream.targetDuration < 0.0) return refuse("the target duration", "is negative");
    if (!(stream.targetDuration < beyondInt64)) return refuse("the target duration", "is too long");
    if (stream.mediaSequence < 0) return refuse("the media sequence", "is negative");
    if (stream.discontinuitySequence < 0) return refuse("the discontinuity sequence", "is negative");
    return refuseUnless(whyNoNumber(stream.startTimeOffset), "the start offset");
}

bool MediaWriter::isSound(const VELHLSMediaSegment& segment) {
    const bool isDuration = segment.duration > 0.0 && segment.duration < beyondInt64;
    if (!isDuration) return refuse("the duration", whyNoDuration(segment.duration));
    if (!refuseUnless(whyNoUriLine(segment.uri), "the URI")) return false;
    // Most titles are one comma.
    const bool isComma = segment.title.size() == 1 && segment.title.front() == ',';
    const bool titleBreaks = !isComma && holdsLineEnd(segment.title);
    if (titleBreaks) return refuse("the title", "holds a line end");
    if (!options_.cueMarkers) return true;
    const bool cuesBreak = holdsLineEnd(segment.cueOut) || holdsLineEnd(segment.cueOutCont);
    return !cuesBreak || refuse("a cue marker", "holds a line end");
}

bool MediaWriter::appendSegments(const VELHLSMediaStream& stream) {
    for (const auto& segment : stream.segments) {
        ++number_;
        if (segment == nullptr) return refuse("the segment", "is null");
        if (!isSound(*segment) || !append(*segment)) return false;
        if (body_.text().size() >= fullText) startNewText();
    }
    return true;
}

/// What is full stays as it is: one text for all segments would be copied again and again as it grows.
void MediaWriter::startNewText() {
    full_.push_back(std::move(body_));
    body_ = TextBuffer();
    static_cast<void>(body_.room(fullText + fullText / 8));
}

bool MediaWriter::append(const VELHLSMediaSegment& segment) {
    const std::size_t start = body_.text().size();
    if (segment.discontinuity) {
        append("#EXT-X-DISCONTINUITY\n");
        hasDiscontinuity_ = true;
    }
    if (!appendKeyAndMap(segment) || !appendDate(segment)) return false;
    // Where EXT-X-CUE-IN is a segment's first tag, the library's parse takes it for one between segments.
    const bool cuesFollow = segment.cueIn && body_.text().size() == start;
    if (!cuesFollow) appendCues(segment);

    char* end = body_.room(mostOtherBytes + segment.title.size() + segment.uri.size());
    end = writeTagStart(end, tag::extInf);
    end = writeShortest(end, segment.duration);
    if (segment.title.empty() || segment.title.front() != ',') end = writeText(end, ',');
    end = writeText(writeText(end, segment.title), '\n');
    body_.endAt(end);
    longestDuration_ = std::max(longestDuration_, segment.duration);
    hasDecimals_ = hasDecimals_ || !isWhole(segment.duration);

    if (cuesFollow) appendCues(segment);
    if (!appendRange(segment)) return false;
    end = body_.room(segment.uri.size() + 1);
    body_.endAt(writeText(writeText(end, segment.uri), '\n'));
    return true;
}

bool MediaWriter::appendKeyAndMap(const VELHLSMediaSegment& segment) {
    const VELHLSProtectionData* key = segment.protectionData.get();
    const VELHLSMISMap* map = segment.misMap.get();
    // Nearly always both are the objects of the segment before.
    if (key == key_ && map == map_) return true;
    if (map == nullptr && map_ != nullptr)
        return refuse("the initialization section", "cannot end: give the segment one");

    const bool keyChanges = encrypts(key) && !areSame(key, key_);
    const bool keyEnds = !encrypts(key) && (key == nullptr ? encrypts(key_) : !saysNone_);
    const bool formatEnds = keyChanges && encrypts(key_) && !areOfOneFormat(*key, *key_);
    const bool mapChanges = !areSame(map, map_);
    const bool mapIsClear = mapChanges && options_.clearInitializationSections;
    const bool keyIsInterrupted = mapIsClear && encrypts(key_);
    if (keyEnds || formatEnds || keyIsInterrupted) appendEndOfKey();

    const bool mapIsFirst = mapIsClear || (mapChanges && keyChanges && cannotEncryptMap(*key));
    if (mapIsFirst && !appendMap(*map)) return false;
    const bool keyGoesOn = keyIsInterrupted && encrypts(key);
    if ((keyChanges || keyGoesOn) && !appendKey(*key)) return false;
    if (mapChanges && !mapIsFirst && !appendMap(*map)) return false;
    key_ = key;
    map_ = map;
    return true;
}

void MediaWriter::appendEndOfKey() {
    append("#EXT-X-KEY:METHOD=NONE\n");
    saysNone_ = true;
}

bool MediaWriter::appendKey(const VELHLSProtectionData& key) {
    if (!refuseUnless(whyNoKey(key), "the key")) return false;
    line_.clear();
    static_cast<void>(key.render(line_));
    append(line_);
    needed_.atLeast(versionNeededBy(key));
    saysNone_ = false;
    return true;
}

bool MediaWriter::appendMap(const VELHLSMISMap& map) {
    if (map.uri.empty()) return refuse("the initialization section's URI", "is empty");
    if (!refuseUnless(whyNotQuoted(map.uri), "the initialization section's URI")) return false;
    line_.clear();
    std::string range;
    if (map.byteRange != nullptr && map.byteRange->render(range) != 0) {
        return refuse("the initialization section's byte range", "is negative");
    }
    AttributeWriter(line_, tag::map)
        .appendQuoted(attribute::uri, map.uri)
        .appendQuotedUnlessEmpty(attribute::byteRange, range)
        .endLine();
    append(line_);
    hasMap_ = true;
    return true;
}

bool MediaWriter::appendDate(const VELHLSMediaSegment& segment) {
    const double date = segment.programDateTime;
    const bool isNone = date == 0.0 || date == segment.startTime;
    const bool follows = number_ > 1 && isSameDate(date, nextDate_);
    const bool isAsked = dateIsKnown_ && (options_.everyDate || segment.discontinuity);
    if (isNone || (follows && !isAsked)) {
        nextDate_ += segment.duration;
        return true;
    }
    if (!refuseUnless(whyNoDate(date), "the date")) return false;
    const Milliseconds time(date);
    char* end = writeTagStart(body_.room(tagLength(tag::programDateTime) + DateWriter::length + 1),
                              tag::programDateTime);
    body_.endAt(writeText(dates_.write(end, time), '\n'));
    nextDate_ = time.asRead() + segment.duration;
    dateIsKnown_ = true;
    return true;
}

void MediaWriter::appendCues(const VELHLSMediaSegment& segment) {
    if (!options_.cueMarkers) return;
    if (segment.cueIn) append("#EXT-X-CUE-IN\n");
    const auto appendCue = [this](std::string_view name, std::string_view value) {
        if (value.empty()) return;
        char* end = writeTagStart(body_.room(tagLength(name) + value.size() + 1), name);
        body_.endAt(writeText(writeText(end, value), '\n'));
    };
    appendCue(tag::cueOut, segment.cueOut);
    appendCue(tag::cueOutCont, segment.cueOutCont);
}

bool MediaWriter::appendRange(const VELHLSMediaSegment& segment) {
    const std::string* const rangeUri = rangeUri_;
    rangeUri_ = nullptr;
    if (segment.byteRange == nullptr) return true;
    const VELHLSByteRange& range = *segment.byteRange;
    if (range.length < 0) return refuse("the byte range", "is negative");
    if (isToldByUri(range, segment.uri)) return true;
    if (range.offset < 0 && (rangeUri == nullptr || *rangeUri != segment.uri)) {
        return refuse("the byte range", "has no offset, and does not follow one of the same URI");
    }
    char* end = writeTagStart(body_.room(mostOtherBytes), tag::byteRange);
    body_.endAt(writeText(writeRange(end, range), '\n'));
    needed_.atLeast(4);
    rangeUri_ = &segment.uri;
    return true;
}

std::string MediaWriter::header(const VELHLSMediaStream& stream) {
    if (hasDecimals_) needed_.atLeast(3);
    if (stream.iFramesOnly) needed_.atLeast(4);
    if (hasMap_) needed_.atLeast(stream.iFramesOnly ? 5 : 6);
    const bool isLive = !stream.endList && stream.playlistType == VELHLSMediaStream::None;
    const bool discontinuityMayLeave = hasDiscontinuity_ && isLive;

    std::string text;
    appendHeader(text, stream.version, needed_);
    appendTag(text, tag::targetDuration, writtenTargetDuration(stream));
    if (stream.mediaSequence != 0) appendTag(text, tag::mediaSequence, stream.mediaSequence);
    if (stream.discontinuitySequence != 0 || discontinuityMayLeave) {
        appendTag(text, tag::discontinuitySequence, stream.discontinuitySequence);
    }
    if (stream.playlistType == VELHLSMediaStream::Vod) text += "#EXT-X-PLAYLIST-TYPE:VOD\n";
    if (stream.playlistType == VELHLSMediaStream::Event) text += "#EXT-X-PLAYLIST-TYPE:EVENT\n";
    if (stream.iFramesOnly) appendTag(text, tag::iFramesOnly);
    if (stream.independentSegments) appendTag(text, tag::independentSegments);
    if (stream.startTimeOffset != 0.0 || stream.startPrecise) {
        appendStart(text, stream.startTimeOffset, stream.startPrecise);
    }
    return text;
}

std::int64_t MediaWriter::writtenTargetDuration(const VELHLSMediaStream& stream) const {
    return nearestWhole(std::max(stream.targetDuration, longestDuration_));
}

void MediaWriter::append(std::string_view text) {
    body_.endAt(writeText(body_.room(text.size()), text));
}

bool MediaWriter::refuseUnless(std::string_view why, std::string_view what) {
    return why.empty() || refuse(what, why);
}

bool MediaWriter::refuse(std::string_view what, std::string_view why) {
    if (number_ != 0) refusal_ = "segment " + std::to_string(number_) + ": ";
    refusal_ += what;
    refusal_ += ' ';
    refusal_ += why;
    return false;
}

}  // namespace velhls
