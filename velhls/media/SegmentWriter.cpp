#include "velhls/media/SegmentWriter.h"

#include "velhls/common/Names.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/TagLine.h"
#include "velhls/media/RangeText.h"

namespace velhls {
namespace {

/// More than all that a segment writes besides its key, its map, its title and its URI.
constexpr std::size_t mostBytesBesideTexts = mostFixedBytes + mostTimestampBytes + mostRangeBytes + 128;

/// Null, or the record that was last found to be valid, is.
template <typename Record>
bool isValidRecord(const Record* record, const Record*& lastValid) {
    if (record == nullptr || record == lastValid) return true;
    if (!record->validate()) return false;
    lastValid = record;
    return true;
}

/// The line of the record, made anew when it is not the one that was last written. A valid record always
/// renders.
template <typename Record>
const std::string& lineOf(const Record& record, const Record*& lastWritten, std::string& line) {
    if (&record != lastWritten) {
        line.clear();
        static_cast<void>(record.render(line));
        lastWritten = &record;
    }
    return line;
}

}  // namespace

bool SegmentWriter::isValid(const VELHLSMediaSegment& segment) {
    if (segment.uri.empty()) return false;
    if (segment.duration == 0.0) return false;
    if (segment.byteRange != nullptr && segment.byteRange->length < 0) return false;
    if (!isValidRecord(segment.protectionData.get(), validKey_)) return false;
    return isValidRecord(segment.misMap.get(), validMap_);
}

void SegmentWriter::write(TextBuffer& out, const VELHLSMediaSegment& segment, bool writeKey, bool writeMap) {
    std::string_view keyLine;
    std::string_view mapLine;
    if (segment.protectionData != nullptr && writeKey) {
        keyLine = lineOf(*segment.protectionData, writtenKey_, keyLine_);
    }
    if (segment.misMap != nullptr && writeMap) mapLine = lineOf(*segment.misMap, writtenMap_, mapLine_);

    char* end = out.room(mostBytesBesideTexts + keyLine.size() + mapLine.size() + segment.title.size() +
                         segment.uri.size());
    if (segment.discontinuity) {
        end = writeText(end, '#');
        end = writeText(end, tag::discontinuity);
        end = writeText(end, '\n');
    }
    if (!keyLine.empty()) end = writeText(end, keyLine);
    if (!mapLine.empty()) end = writeText(end, mapLine);
    if (segment.programDateTime > 0.0) {
        end = writeTagStart(end, tag::programDateTime);
        end = timestamps_.write(end, segment.programDateTime);
        end = writeText(end, '\n');
    }
    end = writeTagStart(end, tag::extInf);
    end = writeFixed(end, segment.duration, 6);
    if (!segment.title.empty()) {
        // A parsed title has its comma already: the second one is part of the interface.
        end = writeText(end, ',');
        end = writeText(end, segment.title);
    }
    end = writeText(end, '\n');
    if (segment.byteRange != nullptr && segment.byteRange->length >= 1) {
        end = writeTagStart(end, tag::byteRange);
        end = writeRange(end, *segment.byteRange);
        end = writeText(end, '\n');
    }
    end = writeText(end, segment.uri);
    end = writeText(end, '\n');
    out.endAt(end);
}

}  // namespace velhls
