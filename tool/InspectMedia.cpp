#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "tool/Describe.h"
#include "tool/Inspect.h"
#include "tool/Printable.h"
#include "tool/Table.h"

namespace tool {
namespace {

using Segments = std::vector<std::shared_ptr<VELHLSMediaSegment>>;

std::string typeName(VELHLSMediaStream::PlaylistType type) {
    return type == VELHLSMediaStream::None ? "none" : std::string(VELHLSMediaStream::textOf(type));
}

std::string startOffset(const VELHLSMediaStream& stream) {
    if (stream.startTimeOffset == 0.0) return "none";
    return decimal(stream.startTimeOffset) + " s" + (stream.startPrecise ? ", precise" : "");
}

std::string patterns(const VELHLSParsingStatus& status) {
    // The model holds a pattern's segments and nothing that tells them from others.
    return status.hasMediaPatterns
               ? "yes (their segments are listed with the others; the model does not tell which)"
               : "none";
}

double totalDuration(const Segments& segments) {
    return segments.empty() ? 0.0 : segments.back()->startTime + segments.back()->duration;
}

std::string longestSegment(const VELHLSMediaStream& stream) {
    const auto longest = std::max_element(
        stream.segments.begin(), stream.segments.end(),
        [](const auto& first, const auto& second) { return first->duration < second->duration; });
    if (longest == stream.segments.end()) return "none";
    // RFC 8216, section 4.3.3.1: the duration rounded to the nearest integer must not exceed the target
    // duration.
    const bool tooLong = std::round((*longest)->duration) > stream.targetDuration;
    return decimal((*longest)->duration) + " s, " + (tooLong ? "longer than" : "within") +
           " the target duration of " + decimal(stream.targetDuration) + " s";
}

std::string timestamp(double seconds) {
    std::string text;
    VELHLSUtility::renderTimestamp(seconds, text);
    return text;
}

/// Whether the segment has a time of its own, or continues one that an earlier segment had. In a playlist
/// that starts without any, segments count from 1970 by their start times: those are no dates.
bool isDated(const VELHLSMediaSegment& segment, const VELHLSMediaSegment& first) {
    if (segment.programDateTime <= 0.0) return false;
    return first.programDateTime > 0.0 || segment.programDateTime != segment.startTime;
}

std::string dateTimes(const Segments& segments) {
    const auto dated = [&segments](const auto& segment) { return isDated(*segment, *segments.front()); };
    const auto first = std::find_if(segments.begin(), segments.end(), dated);
    if (first == segments.end()) return "none";
    const VELHLSMediaSegment& last = **std::find_if(segments.rbegin(), segments.rend(), dated);
    return timestamp((*first)->programDateTime) + " to " + timestamp(last.programDateTime + last.duration);
}

std::string header(const VELHLSMediaStream& stream, const VELHLSParsingStatus& status) {
    const auto discontinuities = std::count_if(stream.segments.begin(), stream.segments.end(),
                                               [](const auto& segment) { return segment->discontinuity; });
    std::string text = "media playlist\n";
    text += summaryLine("version", std::to_string(stream.version));
    text += summaryLine("type", typeName(stream.playlistType));
    text += summaryLine("ended", stream.endList ? "yes" : "no");
    text += summaryLine("I-frames only", stream.iFramesOnly ? "yes" : "no");
    text += summaryLine("independent segments", stream.independentSegments ? "yes" : "no");
    text += summaryLine("start offset", startOffset(stream));
    text += summaryLine("media sequence", std::to_string(stream.mediaSequence));
    text += summaryLine("discontinuity seq.", std::to_string(stream.discontinuitySequence));
    text += summaryLine("segments", std::to_string(stream.segments.size()));
    text += summaryLine("total duration", decimal(totalDuration(stream.segments)) + " s");
    text += summaryLine("longest segment", longestSegment(stream));
    text += summaryLine("discontinuities", std::to_string(discontinuities));
    text += summaryLine("program date-times", dateTimes(stream.segments));
    text += summaryLine("media patterns", patterns(status));
    return text;
}

/// A run of segments that one key or map applies to.
std::string numbers(const VELHLSMediaSegment& first, const VELHLSMediaSegment& last) {
    if (&first == &last) return std::to_string(first.mediaSequenceNumber);
    return std::to_string(first.mediaSequenceNumber) + " to " + std::to_string(last.mediaSequenceNumber);
}

/// One row for each run of segments that share a record, in the order of the playlist.
template <typename Record, typename Describe>
std::string runs(const Segments& segments, Record record, Describe describeRecord, const std::string& title) {
    Table table({"MEDIA SEQUENCE", title}, {Table::Align::left, Table::Align::left});
    bool any = false;
    for (std::size_t first = 0; first < segments.size();) {
        const auto& shared = (*segments[first]).*record;
        std::size_t next = first + 1;
        while (next < segments.size() && (*segments[next]).*record == shared)
            ++next;
        if (shared != nullptr) {
            table.addRow({numbers(*segments[first], *segments[next - 1]), describeRecord(*shared)});
            any = true;
        }
        first = next;
    }
    return any ? "\n" + table.text() : "";
}

std::string describeMap(const VELHLSMISMap& map) {
    std::string text = map.uri;
    if (map.byteRange == nullptr) return text;
    text += ", bytes ";
    static_cast<void>(map.byteRange->render(text));
    return text;
}

std::string cueMarkers(const Segments& segments) {
    Table table({"MEDIA SEQUENCE", "CUE"}, {Table::Align::left, Table::Align::left});
    bool any = false;
    for (const auto& segment : segments) {
        std::vector<std::string> cues;
        if (segment->cueIn) cues.emplace_back("in");
        if (!segment->cueOut.empty()) cues.push_back("out " + segment->cueOut);
        if (!segment->cueOutCont.empty()) cues.push_back("out, continued " + segment->cueOutCont);
        if (cues.empty()) continue;
        table.addRow({std::to_string(segment->mediaSequenceNumber), joined(cues)});
        any = true;
    }
    return any ? "\n" + table.text() : "";
}

std::string variables(const VELHLSMediaStream& stream) {
    if (stream.hlsDefineMap == nullptr || stream.hlsDefineMap->empty()) return {};
    Table table({"VARIABLE", "VALUE AT THE END"}, {Table::Align::left, Table::Align::left});
    // Sorted, since the define map has no order.
    for (const auto& [name, value] :
         std::map<std::string, std::string>(stream.hlsDefineMap->begin(), stream.hlsDefineMap->end())) {
        table.addRow({name, value});
    }
    return "\n" + table.text();
}

}  // namespace

std::string inspectMedia(const VELHLSMediaStream& stream, const VELHLSParsingStatus& status) {
    return header(stream, status) +
           runs(stream.segments, &VELHLSMediaSegment::protectionData, describe, "KEY") +
           runs(stream.segments, &VELHLSMediaSegment::misMap, describeMap, "INITIALIZATION SECTION") +
           cueMarkers(stream.segments) + variables(stream);
}

}  // namespace tool
