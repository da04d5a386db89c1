#include "velhls/manifest/VELHLSMediaStreamRendition.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "velhls/common/AttributeList.h"
#include "velhls/common/AttributeWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/RecordTags.h"

namespace {

namespace attribute = velhls::attribute;

using velhls::Reason;
using velhls::Rule;

/// Gives access to the constructor that a reader needs.
struct ReadRendition : VELHLSMediaStreamRendition {};

/// Each text at the place of its type's number.
constexpr std::array<std::string_view, 4> typeTexts = {attribute::audio, attribute::video,
                                                       attribute::subtitles, attribute::closedCaptions};

/// Sets the flag; false for a value that is neither of the two.
bool readFlag(std::string_view value, bool& flag, Reason& why) {
    flag = value == velhls::fixed::yes;
    return flag || value == velhls::fixed::no || why(Rule::renditionFlagInvalid, value);
}

/// Nothing for a text that names none.
std::optional<VELHLSMediaStreamRendition::RenditionType> typeNamed(std::string_view text) {
    for (std::uint32_t number = 0; number < typeTexts.size(); ++number) {
        if (typeTexts[number] == text) return static_cast<VELHLSMediaStreamRendition::RenditionType>(number);
    }
    return std::nullopt;
}

bool readType(std::string_view value, VELHLSMediaStreamRendition::RenditionType& type, Reason& why) {
    const auto named = typeNamed(value);
    type = named.value_or(VELHLSMediaStreamRendition::Unknown);
    return named || why(Rule::renditionTypeUnknown, value);
}

void readCharacteristics(std::string_view value, std::set<std::string>& characteristics) {
    for (std::size_t start = 0;;) {
        const std::size_t comma = value.find(',', start);
        characteristics.emplace(value.substr(start, comma - start));
        if (comma == std::string_view::npos) return;
        start = comma + 1;
    }
}

void readTexts(VELHLSMediaStreamRendition& rendition, const velhls::AttributeList& attributes) {
    if (const auto value = attributes.find(attribute::uri)) rendition.uri = std::string(*value);
    if (const auto value = attributes.find(attribute::groupId)) rendition.groupId = std::string(*value);
    if (const auto value = attributes.find(attribute::language)) rendition.language = std::string(*value);
    if (const auto value = attributes.find(attribute::assocLanguage))
        rendition.assocLanguage = std::string(*value);
    if (const auto value = attributes.find(attribute::name)) rendition.name = std::string(*value);
    if (const auto value = attributes.find(attribute::instreamId)) rendition.instreamId = std::string(*value);
    if (const auto value = attributes.find(attribute::audioTrackType))
        rendition.audioTrackType = std::string(*value);
    if (const auto value = attributes.find(attribute::characteristics)) {
        readCharacteristics(*value, rendition.characteristics);
    }
}

/// What may be read alone as one of a few words, in the order of the names: of several that are none the first one is told.
bool readFixedValues(VELHLSMediaStreamRendition& rendition, const velhls::AttributeList& attributes,
                     Reason& why) {
    const auto autoSelect = attributes.find(attribute::autoSelect);
    if (autoSelect && !readFlag(*autoSelect, rendition.autoSelect, why)) return false;
    const auto isDefault = attributes.find(attribute::defaultFlag);
    if (isDefault && !readFlag(*isDefault, rendition.isDefault, why)) return false;
    const auto forced = attributes.find(attribute::forced);
    if (forced && !readFlag(*forced, rendition.forced, why)) return false;
    const auto type = attributes.find(attribute::type);
    return !type || readType(*type, rendition.type, why);
}

struct RuleAndAttribute {
    Rule rule;
    /// The attribute that breaks it, where it is there.
    std::string_view attributeName;
};

/// The rules of a rendition, in the order in which they are looked at. No rule says that DEFAULT implies
/// AUTOSELECT: reading a rendition makes it so, and `validate` looks at it for callers.
std::optional<RuleAndAttribute> brokenRule(const VELHLSMediaStreamRendition& rendition) {
    const bool captions = rendition.type == VELHLSMediaStreamRendition::ClosedCaptions;
    const bool subtitles = rendition.type == VELHLSMediaStreamRendition::Subtitles;
    const bool hasInstreamId = !rendition.instreamId.empty();
    if (rendition.type == VELHLSMediaStreamRendition::Unknown) {
        return RuleAndAttribute{Rule::renditionTypeMissing, attribute::type};
    }
    if (rendition.groupId.empty()) return RuleAndAttribute{Rule::renditionGroupIdMissing, attribute::groupId};
    if (rendition.name.empty()) return RuleAndAttribute{Rule::renditionNameMissing, attribute::name};
    if (!captions && hasInstreamId) {
        return RuleAndAttribute{Rule::renditionInstreamIdUnexpected, attribute::instreamId};
    }
    if (rendition.forced && !subtitles)
        return RuleAndAttribute{Rule::renditionForcedUnexpected, attribute::forced};
    if (captions && !rendition.uri.empty())
        return RuleAndAttribute{Rule::renditionCaptionsUri, attribute::uri};
    if (captions && !hasInstreamId) {
        return RuleAndAttribute{Rule::renditionInstreamIdMissing, attribute::instreamId};
    }
    return std::nullopt;
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

std::string_view VELHLSMediaStreamRendition::textOf(RenditionType type) noexcept {
    const auto number = static_cast<std::size_t>(type);
    return number < typeTexts.size() ? typeTexts[number] : std::string_view();
}

std::shared_ptr<VELHLSMediaStreamRendition> velhls::readRendition(const TagLine& tagLine, RecordMaker* maker,
                                                                  Reason& why) {
    AttributeList attributes;
    if (!attributes.read(tagLine.value, why)) return nullptr;
    auto rendition = makeRecord<ReadRendition>(maker);
    if (!readFixedValues(*rendition, attributes, why)) return nullptr;
    readTexts(*rendition, attributes);
    // A default rendition may always be chosen without asking.
    if (rendition->isDefault) rendition->autoSelect = true;
    const std::optional<RuleAndAttribute> broken = brokenRule(*rendition);
    if (!broken) return rendition;
    const std::optional<std::string_view> value = attributes.find(broken->attributeName);
    if (value) {
        why(broken->rule, *value);
    } else {
        why.missing(broken->rule, tagLine.name);
    }
    return nullptr;
}

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
    velhls::Reason ignored;
    if (!velhls::isTagLine(line, velhls::tag::media)) return nullptr;
    return velhls::readRendition(velhls::TagLine(line), nullptr, ignored);
}

std::int32_t VELHLSMediaStreamRendition::render(std::string& out) const {
    if (!validate()) return -1;
    velhls::AttributeWriter line(out, velhls::tag::media);
    const std::string_view typeText = textOf(type);
    line.append(attribute::type, typeText);
    if (typeText.empty()) {
        line.endText();
        return -1;
    }

    line.appendQuoted(attribute::groupId, groupId)
        .appendQuoted(attribute::name, name)
        .appendQuotedUnlessEmpty(attribute::uri, uri)
        .appendQuotedUnlessEmpty(attribute::language, language)
        .appendQuotedUnlessEmpty(attribute::assocLanguage, assocLanguage)
        .appendIfSet(attribute::defaultFlag, isDefault)
        .appendIfSet(attribute::autoSelect, autoSelect)
        .appendIfSet(attribute::forced, forced)
        .appendQuotedUnlessEmpty(attribute::instreamId, instreamId);
    if (!characteristics.empty()) {
        line.appendQuoted(attribute::characteristics, joinedByCommas(characteristics));
    }
    line.endLine();
    return 0;
}

bool VELHLSMediaStreamRendition::validate() const {
    if (brokenRule(*this)) return false;
    return autoSelect || !isDefault;
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
