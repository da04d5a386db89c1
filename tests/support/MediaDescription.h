#pragma once

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "velhls/VELHLS.h"

#include "tests/manifest/ManifestDescription.h"

/// A media playlist written down field by field, to the last bit of its numbers, so that two models compare as two
/// texts.
namespace playlist {

inline std::string describe(const VELHLSByteRange& range) {
    return std::to_string(range.length) + "@" + std::to_string(range.offset);
}

inline std::string describe(const VELHLSMISMap& map);

template <typename Record>
std::string describeOrNull(const std::shared_ptr<Record>& record) {
    return record == nullptr ? "null" : describe(*record);
}

inline std::string describe(const VELHLSMISMap& map) {
    return "uri=" + map.uri + " byteRange=" + describeOrNull(map.byteRange);
}

inline std::string describe(const VELHLSMediaSegment& segment) {
    std::ostringstream text;
    text << std::hexfloat << "duration=" << segment.duration << " startTime=" << segment.startTime
         << " sequence=" << segment.mediaSequenceNumber
         << " discontinuitySequence=" << segment.discontinuitySequenceNumber << " title=" << segment.title
         << " discontinuity=" << segment.discontinuity << " programDateTime=" << segment.programDateTime
         << " uri=" << segment.uri << " cueIn=" << segment.cueIn << " cueOut=" << segment.cueOut
         << " cueOutCont=" << segment.cueOutCont << "\n  byteRange: " << describeOrNull(segment.byteRange)
         << "\n  key: " << describeOrNull(segment.protectionData)
         << "\n  map: " << describeOrNull(segment.misMap) << '\n';
    return text.str();
}

/// The variables, in the order of their names.
inline std::string describe(const VELHLSDefineMap& defines) {
    std::vector<std::string> variables;
    for (const auto& [name, value] : defines)
        variables.push_back(name + "=" + value + "\n");
    std::sort(variables.begin(), variables.end());
    std::string text;
    for (const std::string& variable : variables)
        text += variable;
    return text;
}

inline std::string describe(const VELHLSMediaStream& stream) {
    std::ostringstream text;
    text << std::hexfloat << "header=" << stream.hasExtM3U << " version=" << stream.version
         << " targetDuration=" << stream.targetDuration << " type=" << stream.playlistType
         << " sequence=" << stream.mediaSequence << " discontinuitySequence=" << stream.discontinuitySequence
         << " endList=" << stream.endList << " iFramesOnly=" << stream.iFramesOnly
         << " independent=" << stream.independentSegments << " offset=" << stream.startTimeOffset
         << " precise=" << stream.startPrecise << " discontinuitySeen=" << stream.discontinuitySeen
         << "\nvariables:\n"
         << describe(*stream.hlsDefineMap);
    for (const auto& segment : stream.segments)
        text << describe(*segment);
    return text.str();
}

}  // namespace playlist
