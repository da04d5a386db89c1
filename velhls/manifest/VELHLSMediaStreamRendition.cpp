#include "velhls/manifest/VELHLSMediaStreamRendition.h"

#include <optional>
#include <utility>

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/RenditionTypeText.h"

namespace {

namespace attribute = velhls::attribute;

/// Sets the flag; false for a value that is neither of the two.
bool readFlag(std::string_view value, bool& flag) {
    flag = value == velhls::fixed::yes;
    return flag || value == velhls::fixed::no;
}

void appendQuotedUnlessEmpty(std::string& out, std::string_view name, std::string_view value) {
    if (value.empty()) return;
    out += ',';
    velhls::appendQuotedAttribute(out, name, value);
}

void appendIfSet(std::string& out, std::string_view name, bool flag) {
    if (!flag) return;
    out += ',';
    velhls::appendAttribute(out, name, velhls::fixed::yes);
}

std::string joinedByCommas(const std::set<std::string>& pieces) {
    std::string text;
    for (auto piece = pieces.begin(); piece != pieces.end(); ++piece) {
        if (piece != pieces.begin()) text += ',';
        text += *piece;
    }
    return text;
}

}  // namespace

VELHLSMediaStreamRendition::VELHLSMediaStreamRendition(
    RenditionType type, const std::string& uri, std::shared_ptr<VELHLSMediaStream> mediaStream,
    const std::string& groupId, const std::string& language, const std::string& assocLanguage,
    const std::string& name, bool isDefault, bool autoSelect, bool forced, const std::string& instreamId,
    const std::string& audioTrackType)
    : type(type),
      uri(uri),
      mediaStream(std::move(mediaStream)),
      groupId(groupId),
      language(language),
      assocLanguage(assocLanguage),
      name(name),
      isDefault(isDefault),
      autoSelect(autoSelect),
      forced(forced),
      instreamId(instreamId),
      audioTrackType(audioTrackType) {}

std::shared_ptr<VELHLSMediaStreamRendition> VELHLSMediaStreamRendition::parse(const std::string& line) {
    if (!velhls::isTagLine(line, velhls::tag::media)) return nullptr;
    const std::optional<velhls::AttributeList> attributes =
        velhls::AttributeList::parse(velhls::TagLine(line).value);
    if (!attributes) return nullptr;

    auto rendition = std::make_shared<VELHLSMediaStreamRendition>(Unknown, "", nullptr, "", "", "", "", false,
                                                                  false, false, "", "");
    for (const velhls::Attribute& attribute : *attributes) {
        if (!rendition->readAttribute(attribute.name, attribute.value)) return nullptr;
    }
    if (rendition->isDefault) rendition->autoSelect = true;
    return rendition->validate() ? rendition : nullptr;
}

bool VELHLSMediaStreamRendition::readAttribute(std::string_view attributeName, std::string_view value) {
    if (attributeName == attribute::type) {
        const std::optional<RenditionType> named = velhls::renditionTypeNamed(value);
        type = named.value_or(Unknown);
        return named.has_value();
    }
    if (attributeName == attribute::defaultFlag) return readFlag(value, isDefault);
    if (attributeName == attribute::autoSelect) return readFlag(value, autoSelect);
    if (attributeName == attribute::forced) return readFlag(value, forced);
    if (attributeName == attribute::uri) uri = value;
    if (attributeName == attribute::groupId) groupId = value;
    if (attributeName == attribute::language) language = value;
    if (attributeName == attribute::assocLanguage) assocLanguage = value;
    if (attributeName == attribute::name) name = value;
    if (attributeName == attribute::instreamId) instreamId = value;
    if (attributeName == attribute::audioTrackType) audioTrackType = value;
    if (attributeName == attribute::characteristics) readCharacteristics(value);
    return true;
}

void VELHLSMediaStreamRendition::readCharacteristics(std::string_view value) {
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = value.find(',', start);
        characteristics.emplace(value.substr(start, comma - start));
        if (comma == std::string_view::npos) return;
        start = comma + 1;
    }
}

std::int32_t VELHLSMediaStreamRendition::render(std::string& out) const {
    if (!validate()) return -1;
    velhls::appendTag(out, velhls::tag::media);
    const std::optional<std::string_view> typeText = velhls::textOf(type);
    velhls::appendAttribute(out, attribute::type, typeText.value_or(""));
    if (!typeText) return -1;

    out += ',';
    velhls::appendQuotedAttribute(out, attribute::groupId, groupId);
    out += ',';
    velhls::appendQuotedAttribute(out, attribute::name, name);
    appendQuotedUnlessEmpty(out, attribute::uri, uri);
    appendQuotedUnlessEmpty(out, attribute::language, language);
    appendQuotedUnlessEmpty(out, attribute::assocLanguage, assocLanguage);
    appendIfSet(out, attribute::defaultFlag, isDefault);
    appendIfSet(out, attribute::autoSelect, autoSelect);
    appendIfSet(out, attribute::forced, forced);
    appendQuotedUnlessEmpty(out, attribute::instreamId, instreamId);
    if (!characteristics.empty()) {
        out += ',';
        velhls::appendQuotedAttribute(out, attribute::characteristics, joinedByCommas(characteristics));
    }
    out += '\n';
    return 0;
}

bool VELHLSMediaStreamRendition::validate() const {
    const bool captions = type == ClosedCaptions;
    if (type == Unknown) return false;
    if (groupId.empty()) return false;
    if (name.empty()) return false;
    if (!captions && !instreamId.empty()) return false;
    if (!captions && forced && type != Subtitles) return false;
    if (captions && !uri.empty()) return false;
    if (captions && instreamId.empty()) return false;
    if (captions && forced) return false;
    if (isDefault && !autoSelect) return false;
    return true;
}

bool VELHLSMediaStreamRendition::equalExceptURIAndGroupID(
    std::shared_ptr<VELHLSMediaStreamRendition> other) const {
    if (other == nullptr) return false;
    if (type != other->type) return false;
    if (language != other->language) return false;
    if (assocLanguage != other->assocLanguage) return false;
    if (name != other->name) return false;
    if (isDefault != other->isDefault) return false;
    if (autoSelect != other->autoSelect) return false;
    if (forced != other->forced) return false;
    if (instreamId != other->instreamId) return false;
    return characteristics == other->characteristics;
}
