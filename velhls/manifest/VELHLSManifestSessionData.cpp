#include "velhls/manifest/VELHLSManifestSessionData.h"

#include <optional>
#include <string_view>

#include "velhls/common/AttributeList.h"
#include "velhls/common/AttributeWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/RecordTags.h"

namespace {

namespace attribute = velhls::attribute;

/// What is read as the attributes begins with the tag's colon, one character too early. Kept as it is:
/// which attribute is lost by that is part of the interface.
std::string_view attributeText(std::string_view line) {
    return line.substr(velhls::tagLength(velhls::tag::sessionData) - 1);
}

/// The rules of an entry, in the order in which they are looked at.
std::optional<velhls::Rule> brokenRule(const VELHLSManifestSessionData& entry) {
    if (entry.dataId.empty()) return velhls::Rule::sessionDataIdMissing;
    if (entry.value.empty() && entry.uri.empty()) return velhls::Rule::sessionDataValueMissing;
    if (!entry.value.empty() && !entry.uri.empty()) return velhls::Rule::sessionDataValueAndUri;
    return std::nullopt;
}

std::string_view nameOfAttributeOf(velhls::Rule rule) {
    return rule == velhls::Rule::sessionDataIdMissing ? attribute::dataId : attribute::value;
}

/// Most often the attribute is there, and was lost as the first one. Always false.
bool tellWhyInvalid(velhls::Rule rule, const velhls::AttributeList& attributes, std::string_view tagName,
                    velhls::Reason& why) {
    for (const velhls::Attribute& attribute : attributes) {
        if (!velhls::startsWith(attribute.name, ":")) continue;
        const std::string_view lost = attribute.name.substr(1);
        const bool isMissed = lost == nameOfAttributeOf(rule) || lost == attribute::uri;
        const bool isUriForId = lost == attribute::uri && rule == velhls::Rule::sessionDataIdMissing;
        if (!isMissed || isUriForId) break;
        return why(rule, lost, std::string(lost) + " as the first attribute, which is lost");
    }
    return why(rule, tagName, rule == velhls::Rule::sessionDataValueAndUri ? "both" : "none");
}

}  // namespace

std::shared_ptr<VELHLSManifestSessionData> velhls::readSessionData(std::string_view line, Reason& why) {
    AttributeList attributes;
    if (!attributes.read(attributeText(line), why)) return nullptr;
    auto entry = std::make_shared<VELHLSManifestSessionData>("", "", "", "");
    if (const auto value = attributes.find(attribute::dataId)) entry->dataId = *value;
    if (const auto value = attributes.find(attribute::value)) entry->value = *value;
    if (const auto value = attributes.find(attribute::uri)) entry->uri = *value;
    if (const auto value = attributes.find(attribute::language)) entry->language = *value;
    const std::optional<Rule> broken = brokenRule(*entry);
    if (!broken) return entry;
    tellWhyInvalid(*broken, attributes, TagLine(line).name, why);
    return nullptr;
}

VELHLSManifestSessionData::VELHLSManifestSessionData(const std::string& dataId, const std::string& value,
                                                     const std::string& uri, const std::string& language)
    : dataId(dataId), value(value), uri(uri), language(language) {}

std::shared_ptr<VELHLSManifestSessionData> VELHLSManifestSessionData::parseSessionData(
    const std::string& line) {
    velhls::Reason ignored;
    if (!velhls::isTagLine(line, velhls::tag::sessionData)) return nullptr;
    return velhls::readSessionData(line, ignored);
}

std::int32_t VELHLSManifestSessionData::render(std::string& out) const {
    if (!validate()) return -1;
    velhls::AttributeWriter line(out, velhls::tag::sessionData);
    line.appendQuoted(attribute::dataId, dataId);
    if (value.empty()) {
        line.appendQuoted(attribute::uri, uri);
    } else {
        line.appendQuoted(attribute::value, value);
    }
    line.appendQuotedUnlessEmpty(attribute::language, language).endLine();
    return 0;
}

bool VELHLSManifestSessionData::validate() const {
    return !brokenRule(*this);
}
