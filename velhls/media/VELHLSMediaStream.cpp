#include "velhls/media/VELHLSMediaStream.h"

#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "velhls/common/LineWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/Parses.h"
#include "velhls/common/Readers.h"
#include "velhls/common/StartTag.h"
#include "velhls/media/MediaStreamReader.h"
#include "velhls/media/SegmentWriter.h"

namespace {

/// The seconds cut to a whole number; the nearest 32-bit one where none holds it, and 0 for not-a-number.
std::int32_t wholeTargetDuration(double seconds) {
    constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
    if (std::isnan(seconds)) return 0;
    if (seconds <= smallest) return smallest;
    if (seconds >= largest) return largest;
    return static_cast<std::int32_t>(seconds);
}

void writeUnlessZero(std::ostream& out, std::string_view tag, std::int64_t number) {
    if (number != 0) velhls::writeTag(out, tag, number);
}

/// Writes segments that are valid, many at a time.
void writeSegments(std::ostream& out, const std::vector<std::shared_ptr<VELHLSMediaSegment>>& segments) {
    constexpr std::size_t fullText = 32768;
    velhls::SegmentWriter writer;
    velhls::TextBuffer buffer;
    for (const auto& segment : segments) {
        writer.write(buffer, *segment, true, true);
        if (buffer.text().size() < fullText) continue;
        velhls::writeText(out, buffer.text());
        buffer.clear();
    }
    velhls::writeText(out, buffer.text());
}

}  // namespace

std::string_view VELHLSMediaStream::textOf(PlaylistType type) noexcept {
    if (type == Event) return velhls::fixed::event;
    return type == Vod ? velhls::fixed::vod : std::string_view();
}

std::shared_ptr<VELHLSMediaStream> VELHLSMediaStream::parseMediaStream(std::istream& input,
                                                                       VELHLSParsingStatus* status) {
    return velhls::timedParse(status, [&] { return internalParseMediaStream(input, status); });
}

std::shared_ptr<VELHLSMediaStream> VELHLSMediaStream::parseMediaStream(std::string_view text,
                                                                       VELHLSReason* reason) {
    return velhls::reasonedParse(
        text, reason, [text] { return velhls::MediaStreamReader(text, nullptr).read(); }, velhls::readMedia);
}

std::shared_ptr<VELHLSMediaStream> VELHLSMediaStream::internalParseMediaStream(std::istream& input,
                                                                               VELHLSParsingStatus* status) {
    std::shared_ptr<VELHLSMediaStream> stream = velhls::MediaStreamReader(input, status).read();
    if (stream == nullptr) return nullptr;
    if (status != nullptr) status->error = VELHLSParsingErrorNone;
    return stream;
}

bool VELHLSMediaStream::validate() const {
    velhls::SegmentWriter writer;
    for (const auto& segment : segments) {
        if (segment == nullptr || !writer.isValid(*segment)) return false;
    }
    return true;
}

void VELHLSMediaStream::setHLSDefineMap(std::shared_ptr<VELHLSDefineMap> map) {
    hlsDefineMap = std::move(map);
}

std::int32_t VELHLSMediaStream::render(std::ostream& out) const {
    if (!validate()) return -1;
    velhls::writeTag(out, velhls::tag::extM3U);
    if (version != 1) velhls::writeTag(out, velhls::tag::version, std::int64_t{version});
    velhls::writeTag(out, velhls::tag::targetDuration, std::int64_t{wholeTargetDuration(targetDuration)});
    writeUnlessZero(out, velhls::tag::mediaSequence, mediaSequence);
    writeUnlessZero(out, velhls::tag::discontinuitySequence, discontinuitySequence);
    const std::string_view typeText = textOf(playlistType);
    if (!typeText.empty()) velhls::writeTag(out, velhls::tag::playlistType, typeText);
    if (iFramesOnly) velhls::writeTag(out, velhls::tag::iFramesOnly);
    if (independentSegments) velhls::writeTag(out, velhls::tag::independentSegments);
    velhls::writeStartTag(out, startTimeOffset, startPrecise);

    writeSegments(out, segments);
    if (endList) velhls::writeTag(out, velhls::tag::endList);
    return 0;
}
