#include "velhls/media/VELHLSMISMap.h"

#include <optional>
#include <string_view>

#include "velhls/common/AttributeTag.h"
#include "velhls/common/Names.h"

std::int32_t VELHLSMISMap::parse(const std::string& line) {
    if (!velhls::isTagLine(line, velhls::tag::map)) return -1;
    const std::optional<velhls::AttributeList> attributes = velhls::parseNonEmptyAttributes(line, nullptr);
    if (!attributes) return -1;

    const std::optional<std::string_view> uriValue = attributes->find(velhls::attribute::uri);
    if (!uriValue) return -1;
    const std::optional<std::string_view> range = attributes->find(velhls::attribute::byteRange);
    if (range) {
        byteRange = std::make_shared<VELHLSByteRange>();
        if (byteRange->parse(std::string(*range), '@', false) != 0) {
            uri.clear();
            return -1;
        }
    }
    // Last, since the line may be the one that this very member holds.
    uri = *uriValue;
    return 0;
}

bool VELHLSMISMap::validate() const {
    return !uri.empty();
}

std::int32_t VELHLSMISMap::render(std::string& out) const {
    if (uri.empty()) return -1;
    velhls::appendTag(out, velhls::tag::map);
    velhls::appendQuotedAttribute(out, velhls::attribute::uri, uri);
    if (byteRange != nullptr && byteRange->length >= 1) {
        std::string range;
        // A range of at least one byte always renders.
        static_cast<void>(byteRange->render(range));
        out += ',';
        velhls::appendQuotedAttribute(out, velhls::attribute::byteRange, range);
    }
    out += '\n';
    return 0;
}
