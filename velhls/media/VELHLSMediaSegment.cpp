#include "velhls/media/VELHLSMediaSegment.h"

#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/Timestamps.h"
#include "velhls/media/SegmentReader.h"

VELHLSMediaSegment::VELHLSMediaSegment(double duration, double startTime, std::uint64_t mediaSequenceNumber,
                                       std::uint64_t discontinuitySequenceNumber, const std::string& title,
                                       std::shared_ptr<VELHLSByteRange> byteRange, bool discontinuity,
                                       double programDateTime,
                                       std::shared_ptr<VELHLSProtectionData> protectionData,
                                       std::shared_ptr<VELHLSMISMap> misMap, const std::string& uri,
                                       bool cueIn, const std::string& cueOut, const std::string& cueOutCont)
    : duration(duration),
      startTime(startTime),
      mediaSequenceNumber(mediaSequenceNumber),
      discontinuitySequenceNumber(discontinuitySequenceNumber),
      title(title),
      byteRange(std::move(byteRange)),
      discontinuity(discontinuity),
      protectionData(std::move(protectionData)),
      misMap(std::move(misMap)),
      programDateTime(programDateTime),
      uri(uri),
      cueIn(cueIn),
      cueOut(cueOut),
      cueOutCont(cueOutCont) {}

std::shared_ptr<VELHLSMediaSegment> VELHLSMediaSegment::parseNextSegment(
    const std::shared_ptr<VELHLSMediaSegment>& previous, const std::string& line, std::istream& input,
    std::shared_ptr<VELHLSMediaPattern>& pattern, std::uint64_t firstMediaSequenceNumber,
    std::uint64_t firstDiscontinuitySequenceNumber, std::shared_ptr<VELHLSDefineMap> defines,
    VELHLSParsingStatus* status) {
    velhls::LineReader lines(input);
    velhls::SegmentReader reader(lines, nullptr, std::move(defines), status);
    auto segment =
        reader.read(line, {previous.get(), firstMediaSequenceNumber, firstDiscontinuitySequenceNumber});
    if (reader.openedPattern()) pattern = reader.pattern();
    // The caller's previous segment may hold a key or a map that is not valid.
    return segment != nullptr && segment->validate() ? segment : nullptr;
}

std::shared_ptr<VELHLSMediaSegment> VELHLSMediaSegment::buildNextSegment(
    const std::shared_ptr<VELHLSMediaSegment>& previous, double duration,
    const std::shared_ptr<VELHLSByteRange>& byteRange, const std::string& uri) {
    const bool isDated = previous->programDateTime != 0.0;
    return std::make_shared<VELHLSMediaSegment>(
        duration, previous->startTime + previous->duration, previous->mediaSequenceNumber + 1,
        previous->discontinuitySequenceNumber, "", byteRange, false,
        isDated ? previous->programDateTime + previous->duration : 0.0, previous->protectionData,
        previous->misMap, uri, false, "", "");
}

bool VELHLSMediaSegment::validate() const {
    if (uri.empty()) return false;
    if (duration == 0.0) return false;
    if (byteRange != nullptr && byteRange->length < 0) return false;
    if (protectionData != nullptr && !protectionData->validate()) return false;
    if (misMap != nullptr && !misMap->validate()) return false;
    return true;
}

std::int32_t VELHLSMediaSegment::render(std::string& out, bool renderKey, bool renderMap) const {
    if (!validate()) return -1;
    std::string text;
    if (discontinuity) {
        text += '#';
        text += velhls::tag::discontinuity;
        text += '\n';
    }
    // A valid segment's key, map and byte range are valid too, and valid ones always render.
    if (protectionData != nullptr && renderKey) static_cast<void>(protectionData->render(text));
    if (misMap != nullptr && renderMap) static_cast<void>(misMap->render(text));
    if (programDateTime > 0.0) {
        velhls::appendTag(text, velhls::tag::programDateTime);
        velhls::renderTimestamp(programDateTime, text);
        text += '\n';
    }
    velhls::appendTag(text, velhls::tag::extInf);
    velhls::appendFixed(text, duration, 6);
    if (!title.empty()) {
        // A parsed title has its comma already: the second one is part of the interface.
        text += ',';
        text += title;
    }
    text += '\n';
    if (byteRange != nullptr && byteRange->length >= 1) {
        velhls::appendTag(text, velhls::tag::byteRange);
        static_cast<void>(byteRange->render(text));
        text += '\n';
    }
    text += uri;
    text += '\n';
    out += text;
    return 0;
}
