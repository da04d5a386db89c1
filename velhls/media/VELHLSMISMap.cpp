#include "velhls/media/VELHLSMISMap.h"

#include <optional>
#include <string_view>

#include "velhls/common/AttributeList.h"
#include "velhls/common/AttributeWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/TagLine.h"
#include "velhls/media/KeyAndMapTags.h"
#include "velhls/media/RangeText.h"

namespace {

namespace attribute = velhls::attribute;

}  // namespace

bool velhls::readMap(const TagLine& tagLine, VELHLSMISMap& map, Reason& why) {
    AttributeList attributes;
    if (!attributes.readNonEmpty(tagLine, why)) return false;

    const std::optional<std::string_view> uriValue = attributes.find(attribute::uri);
    if (!uriValue) return why.missing(Rule::mapUriMissing, tagLine.name);
    if (const std::optional<std::string_view> range = attributes.find(attribute::byteRange)) {
        map.byteRange = std::make_shared<VELHLSByteRange>();
        if (!readRange(*range, '@', false, *map.byteRange, why)) {
            why(Rule::byteRangeMalformed, *range);
            map.uri.clear();
            return false;
        }
    }
    // Last, since the line may be the one that this very member holds.
    map.uri = *uriValue;
    return true;
}

std::int32_t VELHLSMISMap::parse(const std::string& line) {
    velhls::Reason ignored;
    const bool isMap = velhls::isTagLine(line, velhls::tag::map);
    return isMap && velhls::readMap(velhls::TagLine(line), *this, ignored) ? 0 : -1;
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
