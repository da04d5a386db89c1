#include "velhls/manifest/VELHLSManifestSessionData.h"

#include <optional>
#include <string_view>

#include "velhls/common/AttributeList.h"
#include "velhls/common/AttributeWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/RecordParsers.h"

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

/// Most often the attribute is there, and was lost as the first one.
void tellWhyInvalid(velhls::Recorder& recorder, velhls::Rule rule, const velhls::AttributeList& attributes,
                    std::string_view tagName) {
    for (const velhls::Attribute& attribute : attributes) {
        if (!velhls::startsWith(attribute.name, ":")) continue;
        const std::string_view lost = attribute.name.substr(1);
        const bool isMissed = lost == nameOfAttributeOf(rule) || lost == attribute::uri;
        const bool isUriForId = lost == attribute::uri && rule == velhls::Rule::sessionDataIdMissing;
        if (!isMissed || isUriForId) break;
        recorder.report(rule, lost, std::string(lost) + " as the first attribute, which is lost");
        return;
    }
    recorder.report(rule, tagName, rule == velhls::Rule::sessionDataValueAndUri ? "both" : "none");
}

/// The attribute that was lost; the colon in front of its name is what it was lost for.
void tellOfLostAttribute(velhls::Recorder* recorder, const velhls::AttributeList& attributes) {
    if (recorder == nullptr || attributes.empty()) return;
    for (const velhls::Attribute& attribute : attributes) {
        if (!velhls::startsWith(attribute.name, ":")) continue;
        recorder->report(velhls::Rule::sessionDataAttributeLost, attribute.name.substr(1), {});
        return;
    }
}

}  // namespace

std::shared_ptr<VELHLSManifestSessionData> velhls::parseSessionData(const std::string& line,
                                                                    Recorder* recorder) {
    if (!isTagLine(line, tag::sessionData)) return nullptr;
    const std::string_view tagName = TagLine(line).name;
    AttributeList attributes;
    if (!attributes.parse(attributeText(line), recorder)) return nullptr;
    if (recorder != nullptr) recorder->attributesRead(tagName, attributes);

    auto entry = std::make_shared<VELHLSManifestSessionData>("", "", "", "");
    for (const Attribute& attribute : attributes) {
        if (attribute.name == attribute::dataId) {
            entry->dataId = attribute.value;
        } else if (attribute.name == attribute::value) {
            entry->value = attribute.value;
        } else if (attribute.name == attribute::uri) {
            entry->uri = attribute.value;
        } else if (attribute.name == attribute::language) {
            entry->language = attribute.value;
        } else if (!startsWith(attribute.name, ":")) {
            tell(recorder, Rule::attributeIgnored, attribute.name);
        }
    }
    if (const std::optional<Rule> broken = brokenRule(*entry)) {
        if (recorder != nullptr) tellWhyInvalid(*recorder, *broken, attributes, tagName);
        return nullptr;
    }
    tellOfLostAttribute(recorder, attributes);
    return entry;
}

VELHLSManifestSessionData::VELHLSManifestSessionData(const std::string& dataId, const std::string& value,
                                                     const std::string& uri, const std::string& language)
    : dataId(dataId), value(value), uri(uri), language(language) {}

std::shared_ptr<VELHLSManifestSessionData> VELHLSManifestSessionData::parseSessionData(
    const std::string& line) {
    return velhls::parseSessionData(line, nullptr);
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
