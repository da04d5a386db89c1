#include "velhls/media/VELHLSMediaSegment.h"

#include <utility>

#include "velhls/common/LineReader.h"
#include "velhls/media/SegmentReader.h"
#include "velhls/media/SegmentWriter.h"

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
    velhls::Reason ignored;
    velhls::SegmentReader reader(lines, {nullptr, std::move(defines), status, nullptr}, ignored);
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
    return velhls::SegmentWriter().isValid(*this);
}

std::int32_t VELHLSMediaSegment::render(std::string& out, bool renderKey, bool renderMap) const {
    if (!validate()) return -1;
    velhls::TextBuffer text;
    velhls::SegmentWriter().write(text, *this, renderKey, renderMap);
    out += text.text();
    return 0;
}
