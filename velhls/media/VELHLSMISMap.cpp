#include "velhls/media/VELHLSMISMap.h"

#include <optional>
#include <string_view>

#include "velhls/common/AttributeTag.h"
#include "velhls/common/AttributeWriter.h"
#include "velhls/common/Names.h"
#include "velhls/media/RangeText.h"
#include "velhls/media/RecordParsers.h"

namespace {

namespace attribute = velhls::attribute;

void tellOfIgnoredAttributes(velhls::Recorder& recorder, const velhls::AttributeList& attributes) {
    for (const velhls::Attribute& read : attributes) {
        const bool isKept = read.name == attribute::uri || read.name == attribute::byteRange;
        if (!isKept) recorder.report(velhls::Rule::attributeIgnored, read.name, {});
    }
}

}  // namespace

bool velhls::parseMap(std::string_view line, VELHLSMISMap& map, Recorder* recorder) {
    if (!isTagLine(line, tag::map)) return false;
    AttributeList attributes;
    if (!parseNonEmptyAttributes(line, attributes, recorder)) return false;

    const std::optional<std::string_view> uriValue = attributes.find(attribute::uri);
    if (!uriValue) return rejectMissing(recorder, Rule::mapUriMissing, TagLine(line).name);
    const std::optional<std::string_view> range = attributes.find(attribute::byteRange);
    if (range) {
        map.byteRange = std::make_shared<VELHLSByteRange>();
        if (!parseRange(*range, '@', false, *map.byteRange, recorder)) {
            tell(recorder, Rule::byteRangeMalformed, *range);
            map.uri.clear();
            return false;
        }
        if (map.byteRange->length == 0) tell(recorder, Rule::byteRangeEmptyNotWritten, *range);
    }
    if (recorder != nullptr) tellOfIgnoredAttributes(*recorder, attributes);
    // Last, since the line may be the one that this very member holds.
    map.uri = *uriValue;
    return true;
}

std::int32_t VELHLSMISMap::parse(const std::string& line) {
    return velhls::parseMap(line, *this, nullptr) ? 0 : -1;
}

bool VELHLSMISMap::validate() const {
    return !uri.empty();
}

std::int32_t VELHLSMISMap::render(std::string& out) const {
    if (uri.empty()) return -1;
    velhls::AttributeWriter line(out, velhls::tag::map);
    line.appendQuoted(velhls::attribute::uri, uri);
    if (byteRange != nullptr && byteRange->length >= 1) {
        std::string range;
        // A range of at least one byte always renders.
        static_cast<void>(byteRange->render(range));
        line.appendQuoted(velhls::attribute::byteRange, range);
    }
    line.endLine();
    return 0;
}
