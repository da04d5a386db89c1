#include "velhls/manifest/VELHLSManifestSessionData.h"

#include <optional>
#include <string_view>

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"
#include "velhls/common/TagLine.h"

namespace {

namespace attribute = velhls::attribute;

/// What is read as the attributes begins with the tag's colon, one character too early. Kept as it is:
/// which attribute is lost by that is part of the interface.
std::string_view attributeText(std::string_view line) {
    return line.substr(velhls::tagLength(velhls::tag::sessionData) - 1);
}

}  // namespace

VELHLSManifestSessionData::VELHLSManifestSessionData(const std::string& dataId, const std::string& value,
                                                     const std::string& uri, const std::string& language)
    : dataId(dataId), value(value), uri(uri), language(language) {}

std::shared_ptr<VELHLSManifestSessionData> VELHLSManifestSessionData::parseSessionData(
    const std::string& line) {
    if (!velhls::isTagLine(line, velhls::tag::sessionData)) return nullptr;
    const std::optional<velhls::AttributeList> attributes = velhls::AttributeList::parse(attributeText(line));
    if (!attributes) return nullptr;

    auto entry = std::make_shared<VELHLSManifestSessionData>("", "", "", "");
    for (const velhls::Attribute& attribute : *attributes) {
        if (attribute.name == attribute::dataId) entry->dataId = attribute.value;
        if (attribute.name == attribute::value) entry->value = attribute.value;
        if (attribute.name == attribute::uri) entry->uri = attribute.value;
        if (attribute.name == attribute::language) entry->language = attribute.value;
    }
    return entry->validate() ? entry : nullptr;
}

std::int32_t VELHLSManifestSessionData::render(std::string& out) const {
    if (!validate()) return -1;
    velhls::appendTag(out, velhls::tag::sessionData);
    velhls::appendQuotedAttribute(out, attribute::dataId, dataId);
    out += ',';
    if (value.empty()) {
        velhls::appendQuotedAttribute(out, attribute::uri, uri);
    } else {
        velhls::appendQuotedAttribute(out, attribute::value, value);
    }
    if (!language.empty()) {
        out += ',';
        velhls::appendQuotedAttribute(out, attribute::language, language);
    }
    out += '\n';
    return 0;
}

bool VELHLSManifestSessionData::validate() const {
    if (dataId.empty()) return false;
    return value.empty() != uri.empty();
}
