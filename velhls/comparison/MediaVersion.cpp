#include "velhls/comparison/MediaVersion.h"

#include <algorithm>
#include <tuple>

#include "velhls/common/Names.h"
#include "velhls/document/FormatTables.h"
#include "velhls/document/VELHLSSyntax.h"

namespace velhls {
namespace {

constexpr std::size_t skip = tagIndex("EXT-X-SKIP");

/// A tag that is of the playlist and not of a segment, wherever it stands. Date ranges stand among the segments' tags.
bool isOfPlaylist(const VELHLSLine& line) {
    const VELHLSTagDefinition* const tag = line.definition;
    return tag != nullptr && tag->profile != VELHLSProfile::vendor &&
           tag->reach == VELHLSTagDefinition::Itself && tag->name != "EXT-X-DATERANGE";
}

}  // namespace

bool operator==(const SegmentKey& left, const SegmentKey& right) {
    return left.offset == right.offset && left.length == right.length && left.uri == right.uri;
}

bool operator<(const SegmentKey& left, const SegmentKey& right) {
    return std::tie(left.uri, left.offset, left.length) < std::tie(right.uri, right.offset, right.length);
}

MediaVersion::MediaVersion(const VELHLSDocument& document)
    : structure_(document), playlist_(structure_, document.kind(), StandardProfile::rfc8216) {
    for (const VELHLSLine line : document.lines())
        playlist_.add(line);
    lastLines_.reserve(segmentCount());
    for (std::size_t index = 0; index < segmentCount(); ++index)
        lastLines_.push_back(static_cast<std::uint32_t>(structure_.segment(index).lastLine));
    if (playlist_.has(skip)) {
        const auto count = valueOf(playlist_.firstLine(skip), "SKIPPED-SEGMENTS");
        skipped_ = VELHLSSyntax::readDecimalInteger(count.value_or("")).value_or(0);
    }
    firstNumber_ = segmentCount() > 0
                       ? structure_.segment(0).mediaSequence
                       : playlist_.number(tagIndexOf<tag::mediaSequence>).value_or(0) + skipped_;
    if (segmentCount() > 0) firstLine_ = startOfFirstSegment();
}

/// Tags that are not known, and date ranges, may stand before those that are the segment's.
std::size_t MediaVersion::startOfFirstSegment() const {
    std::size_t line = structure_.segment(0).firstLine;
    while (line > 1 && !isOfPlaylist(document().line(line - 1)))
        --line;
    return line;
}

SegmentKey MediaVersion::keyOf(std::size_t index) const {
    SegmentKey key = {uriLine(index).value};
    const VELHLSStructure::Segment segment = structure_.segment(index);
    if (segment.rangeLine == 0) return key;
    const auto range = VELHLSSyntax::readByteRange(trimmed(document().line(segment.rangeLine).value));
    if (range) key.length = range->length;
    if (segment.rangeOffset) key.offset = *segment.rangeOffset;
    return key;
}

std::string_view MediaVersion::textOf(std::size_t index) const {
    const std::size_t start = document().line(firstLine(index)).offset;
    const VELHLSLine last = document().line(lastLine(index));
    return std::string_view(document().text()).substr(start, last.offset + last.text.size() - start);
}

std::size_t MediaVersion::countOf(std::size_t tag, std::size_t index) const {
    const auto& lines = playlist_.lines(tag);
    const auto first = std::lower_bound(lines.begin(), lines.end(), firstLine(index));
    const auto end = std::upper_bound(first, lines.end(), lastLine(index));
    return static_cast<std::size_t>(end - first);
}

bool MediaVersion::skipsSegments() const {
    return playlist_.has(skip);
}

std::uint64_t MediaVersion::discontinuitySequence() const {
    return playlist_.number(tagIndexOf<tag::discontinuitySequence>).value_or(0);
}

bool MediaVersion::isEnded() const {
    return playlist_.has(tagIndexOf<tag::endList>);
}

bool MediaVersion::isOfType(std::string_view type) const {
    constexpr std::size_t playlistType = tagIndexOf<tag::playlistType>;
    return playlist_.has(playlistType) && trimmed(playlist_.firstLine(playlistType).value) == type;
}

std::string MediaVersion::pathOf(std::size_t index) const {
    return "segment " + std::to_string(numberOf(index));
}

}  // namespace velhls
