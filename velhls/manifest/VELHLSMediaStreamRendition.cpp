#include "velhls/manifest/VELHLSMediaStreamRendition.h"

#include <optional>
#include <utility>

#include "velhls/common/AttributeList.h"
#include "velhls/common/AttributeWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/RecordParsers.h"
#include "velhls/manifest/RenditionTypeText.h"

namespace {

namespace attribute = velhls::attribute;

using velhls::Attribute;
using velhls::Recorder;
using velhls::Rule;

/// Gives access to the constructor that a reader needs.
struct ReadRendition : VELHLSMediaStreamRendition {};

/// Sets the flag; false for a value that is neither of the two.
bool readFlag(std::string_view value, bool& flag, Recorder* recorder) {
    flag = value == velhls::fixed::yes;
    if (flag || value == velhls::fixed::no) return true;
    return velhls::reject(recorder, Rule::renditionFlagInvalid, value);
}

bool readType(std::string_view value, VELHLSMediaStreamRendition::RenditionType& type, Recorder* recorder) {
    const auto named = velhls::renditionTypeNamed(value);
    type = named.value_or(VELHLSMediaStreamRendition::Unknown);
    return named || velhls::reject(recorder, Rule::renditionTypeUnknown, value);
}

/// The last piece that was read is a view into the value, so that what a set makes of the order can be told.
void readCharacteristics(std::string_view value, std::set<std::string>& characteristics, Recorder* recorder) {
    std::string_view last;
    for (std::size_t start = 0;;) {
        const std::size_t comma = value.find(',', start);
        const std::string_view piece = value.substr(start, comma - start);
        characteristics.emplace(piece);
        if (start != 0 && piece <= last) tell(recorder, Rule::renditionCharacteristicsChanged, piece);
        if (comma == std::string_view::npos) return;
        last = piece;
        start = comma + 1;
    }
}

bool readAttribute(VELHLSMediaStreamRendition& rendition, const Attribute& read, Recorder* recorder) {
    if (read.name == attribute::type) return readType(read.value, rendition.type, recorder);
    if (read.name == attribute::defaultFlag) return readFlag(read.value, rendition.isDefault, recorder);
    if (read.name == attribute::autoSelect) return readFlag(read.value, rendition.autoSelect, recorder);
    if (read.name == attribute::forced) return readFlag(read.value, rendition.forced, recorder);
    if (read.name == attribute::uri) {
        rendition.uri = read.value;
    } else if (read.name == attribute::groupId) {
        rendition.groupId = read.value;
    } else if (read.name == attribute::language) {
        rendition.language = read.value;
    } else if (read.name == attribute::assocLanguage) {
        rendition.assocLanguage = read.value;
    } else if (read.name == attribute::name) {
        rendition.name = read.value;
    } else if (read.name == attribute::instreamId) {
        rendition.instreamId = read.value;
    } else if (read.name == attribute::audioTrackType) {
        rendition.audioTrackType = read.value;
        tell(recorder, Rule::renditionAudioTrackTypeNotWritten, read.name);
    } else if (read.name == attribute::characteristics) {
        readCharacteristics(read.value, rendition.characteristics, recorder);
    } else {
        tell(recorder, Rule::attributeIgnored, read.name);
    }
    return true;
}

/// A default rendition may always be chosen without asking.
void implyAutoSelect(VELHLSMediaStreamRendition& rendition, const velhls::AttributeList& attributes,
                     Recorder* recorder) {
    if (!rendition.isDefault || rendition.autoSelect) return;
    rendition.autoSelect = true;
    if (recorder == nullptr) return;
    const std::optional<std::string_view> said = attributes.find(attribute::autoSelect);
    if (said) {
        recorder->report(Rule::renditionAutoselectOverruled, *said, {});
    } else {
        recorder->report(Rule::renditionAutoselectImplied, *attributes.find(attribute::defaultFlag), "none");
    }
}

struct BrokenRule {
    Rule rule;
    /// The attribute that breaks it, where it is there.
    std::string_view attributeName;
};

/// The rules of a rendition, in the order in which they are looked at. No rule says that DEFAULT implies
/// AUTOSELECT: reading a rendition makes it so, and `validate` looks at it for callers.
std::optional<BrokenRule> brokenRule(const VELHLSMediaStreamRendition& rendition) {
    const bool captions = rendition.type == VELHLSMediaStreamRendition::ClosedCaptions;
    const bool subtitles = rendition.type == VELHLSMediaStreamRendition::Subtitles;
    const bool hasInstreamId = !rendition.instreamId.empty();
    if (rendition.type == VELHLSMediaStreamRendition::Unknown) {
        return BrokenRule{Rule::renditionTypeMissing, attribute::type};
    }
    if (rendition.groupId.empty()) return BrokenRule{Rule::renditionGroupIdMissing, attribute::groupId};
    if (rendition.name.empty()) return BrokenRule{Rule::renditionNameMissing, attribute::name};
    if (!captions && hasInstreamId) {
        return BrokenRule{Rule::renditionInstreamIdUnexpected, attribute::instreamId};
    }
    if (rendition.forced && !subtitles) return BrokenRule{Rule::renditionForcedUnexpected, attribute::forced};
    if (captions && !rendition.uri.empty()) return BrokenRule{Rule::renditionCaptionsUri, attribute::uri};
    if (captions && !hasInstreamId) {
        return BrokenRule{Rule::renditionInstreamIdMissing, attribute::instreamId};
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

std::shared_ptr<VELHLSMediaStreamRendition> velhls::parseRendition(const std::string& line,
                                                                   RecordMaker* maker, Recorder* recorder) {
    if (!isTagLine(line, tag::media)) return nullptr;
    const TagLine tagLine(line);
    AttributeList attributes;
    if (!attributes.parse(tagLine.value, recorder)) return nullptr;
    if (recorder != nullptr) recorder->attributesRead(tagLine.name, attributes);

    auto rendition = makeRecord<ReadRendition>(maker);
    for (const Attribute& attribute : attributes) {
        if (!readAttribute(*rendition, attribute, recorder)) return nullptr;
    }
    implyAutoSelect(*rendition, attributes, recorder);
    if (const std::optional<BrokenRule> broken = brokenRule(*rendition)) {
        const std::optional<std::string_view> value = attributes.find(broken->attributeName);
        if (value) tell(recorder, broken->rule, *value);
        if (!value) tellMissing(recorder, broken->rule, tagLine.name);
        return nullptr;
    }
    return rendition;
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
    return velhls::parseRendition(line, nullptr, nullptr);
}

std::string_view VELHLSMediaStreamRendition::textOf(RenditionType type) noexcept {
    return velhls::textOf(type).value_or("");
}

std::int32_t VELHLSMediaStreamRendition::render(std::string& out) const {
    if (!validate()) return -1;
    velhls::AttributeWriter line(out, velhls::tag::media);
    const std::string_view typeText = textOf(type);
    line.append(attribute::type, typeText);
    if (typeText.empty()) return -1;

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
