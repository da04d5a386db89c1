#include <bitset>
#include <iterator>

#include "velhls/common/Names.h"
#include "velhls/common/Tags.h"
#include "velhls/common/TextScan.h"
#include "velhls/common/UriRange.h"
#include "velhls/losses/Loss.h"

namespace velhls {
namespace {

constexpr bool lost = true;
constexpr bool kept = false;

void findReplacedTag(const LossSegment& segment, const TellLoss& tell) {
    std::bitset<usedTags.size()> seen;
    for (const LossLine& line : segment.lines) {
        const std::size_t index = line.isTag ? indexOfUsedTag(line.tag.name) : usedTags.size();
        if (index == usedTags.size() || (usedTags[index].uses & ofSegment) == 0) continue;
        if (seen.test(index)) tell(line, line.tag.name);
        seen.set(index);
    }
}

/// The lines of a pattern's URIs are trimmed before variables are put into them.
void findTrimmedUri(const LossSegment& segment, const TellLoss& tell) {
    const LossLine& line = segment.uriLine();
    const std::string_view uri = withoutTrailing(line.text, blanks);
    if (!segment.isOfPattern && uri.size() != line.text.size()) tell(line, line.text.substr(uri.size()));
}

/// Only the URIs of segments that a media pattern makes have their variables replaced.
void findReference(const LossSegment& segment, const TellLoss& tell) {
    constexpr std::string_view start = "{$";
    for (const LossLine& line : segment.lines) {
        if (!line.isTagNamed(tag::key) && !line.isTagNamed(tag::map)) continue;
        const std::size_t reference = line.tag.value.find(start);
        if (reference == std::string_view::npos) continue;
        const std::string_view rest = line.tag.value.substr(reference);
        tell(line, rest.substr(0, rest.find('"')));
    }
    const std::string_view uri = segment.segment.uri;
    const std::size_t reference = uri.find(start);
    if (reference == std::string_view::npos) return;
    tell(segment.uriLine(), segment.inUriLine(uri.substr(reference)));
}

void findRangeInUri(const LossSegment& segment, const TellLoss& tell) {
    if (segment.segment.byteRange == nullptr || segment.hasTag(tag::byteRange)) return;
    const std::string_view uri = segment.segment.uri;
    tell(segment.uriLine(), segment.inUriLine(uri.substr(startOfRangeInUri(uri))));
}

void findAddedDate(const LossSegment& segment, const TellLoss& tell) {
    const bool isDated = segment.segment.programDateTime > 0.0;
    if (segment.previous == nullptr || !isDated || segment.hasTag(tag::programDateTime)) return;
    tell(segment.uriLine(), segment.inUriLine(segment.segment.uri), "none");
}

void findRepeatedKeyAndMap(const LossSegment& segment, const TellLoss& tell) {
    if (segment.previous == nullptr) return;
    const auto& key = segment.segment.protectionData;
    const auto& map = segment.segment.misMap;
    const bool inherits = (key != nullptr && key == segment.previous->protectionData) ||
                          (map != nullptr && map == segment.previous->misMap);
    if (inherits) tell(segment.uriLine(), segment.inUriLine(segment.segment.uri), "a segment without");
}

/// What is written holds the key before the map, and RFC 8216 has a key apply to the maps after it: one that stood in the
/// clear is declared encrypted, and one of another key this one's.
void findMapBeforeKey(const LossSegment& segment, const TellLoss& tell) {
    const LossLine* key = nullptr;
    bool mapFollows = false;
    for (const LossLine& line : segment.lines) {
        if (line.isTagNamed(tag::key)) {
            key = &line;
            mapFollows = false;
        }
        if (line.isTagNamed(tag::map)) mapFollows = true;
    }
    const bool hasMap = segment.segment.misMap != nullptr;
    if (key != nullptr && hasMap && !mapFollows) tell(*key, key->tag.name, "EXT-X-MAP before it");
}

// clang-format off
constexpr SegmentLoss losses[] = {
    {{"variable-not-replaced", VELHLSFinding::Warning, "A URI refers to a variable that is not replaced: outside of media patterns, or in EXT-X-KEY or EXT-X-MAP.",
      "no reference to a variable", libraryBehaviour, kept},
     findReference},
    {{"segment-uri-trimmed", VELHLSFinding::Warning, "White space after a segment's URI is dropped.",
      "no white space after the URI", libraryBehaviour, kept},
     findTrimmedUri},
    {{"segment-tag-replaced", VELHLSFinding::Warning, "A tag stands twice in one segment: the later one replaces the earlier.",
      "the tag once in a segment", libraryBehaviour, lost},
     findReplacedTag},
    {{"key-and-map-repeated", VELHLSFinding::Note, "The key and map in force are written before every segment.",
      "EXT-X-KEY and EXT-X-MAP before every segment", libraryBehaviour, kept},
     findRepeatedKeyAndMap},
    {{"map-before-key", VELHLSFinding::Warning, "An EXT-X-MAP before an EXT-X-KEY is written after it, which declares it encrypted otherwise.",
      "EXT-X-KEY before the EXT-X-MAP that it applies to", libraryBehaviour, lost},
     findMapBeforeKey},
    {{"byte-range-from-uri", VELHLSFinding::Warning, "A byte range is read out of a segment's URI.",
      "a byte range in EXT-X-BYTERANGE, not in the URI", vendorExtension, kept},
     findRangeInUri},
    {{"date-time-added", VELHLSFinding::Warning, "Segments without a date and time get one.",
      "EXT-X-PROGRAM-DATE-TIME", libraryBehaviour, kept},
     findAddedDate},
};
// clang-format on

}  // namespace

LossTable<SegmentLoss> segmentLosses() {
    return {losses, std::size(losses)};
}

}  // namespace velhls
