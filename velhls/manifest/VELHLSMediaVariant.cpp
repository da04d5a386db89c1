#include "velhls/manifest/VELHLSMediaVariant.h"

#include <limits>
#include <optional>
#include <utility>

#include "velhls/common/AttributeList.h"
#include "velhls/common/AttributeWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/RecordTags.h"
#include "velhls/media/VELHLSMediaStream.h"

namespace {

namespace attribute = velhls::attribute;
using velhls::Reason;
using velhls::Rule;

/// In the order of their names: of several that are no numbers the first one is told.
void readNumbers(VELHLSMediaVariant& variant, const velhls::AttributeList& attributes, Reason& why) {
    if (const auto value = attributes.find(attribute::averageBandwidth)) {
        variant.averageBandwidth = velhls::toInt64AsUnsigned(*value, why);
    }
    if (const auto value = attributes.find(attribute::bandwidth)) {
        variant.bandwidth = velhls::toInt64AsUnsigned(*value, why);
    }
    if (const auto value = attributes.find(attribute::programId)) {
        variant.programId = static_cast<std::uint32_t>(velhls::toInt32(*value, why));
    }
}

void readTexts(VELHLSMediaVariant& variant, const velhls::AttributeList& attributes) {
    if (const auto value = attributes.find(attribute::codecs)) variant.codecs = std::string(*value);
    if (const auto value = attributes.find(attribute::resolution)) variant.resolution = std::string(*value);
    if (!variant.isIFrame) return;
    if (const auto value = attributes.find(attribute::uri)) variant.uri = std::string(*value);
}

void readGroups(VELHLSMediaVariant& variant, const velhls::AttributeList& attributes) {
    using Rendition = VELHLSMediaStreamRendition;
    const auto readGroup = [&](Rendition::RenditionType type, std::string_view name) {
        const auto groupId = attributes.find(name);
        const bool isNone = type == Rendition::ClosedCaptions && groupId == velhls::fixed::none;
        if (groupId && !isNone) variant.groupIds.emplace_hint(variant.groupIds.end(), type, *groupId);
    };
    readGroup(Rendition::Audio, attribute::audio);
    readGroup(Rendition::Video, attribute::video);
    readGroup(Rendition::Subtitles, attribute::subtitles);
    readGroup(Rendition::ClosedCaptions, attribute::closedCaptions);
}

/// Gives access to the constructor that a reader needs.
struct ReadVariant : VELHLSMediaVariant {
    ReadVariant(bool isIFrame, std::string_view uriLine) : VELHLSMediaVariant(isIFrame, uriLine) {}
};

/// Says why a variant that was read does not validate.
void tellWhyInvalid(const VELHLSMediaVariant& variant, const velhls::AttributeList& attributes,
                    std::string_view tagName, Reason& why) {
    if (variant.uri.empty()) {
        why.missing(Rule::variantUriAttributeMissing, tagName);
    } else if (const auto bandwidth = attributes.find(attribute::bandwidth)) {
        why(Rule::variantBandwidthZero, *bandwidth);
    } else {
        why.missing(Rule::variantBandwidthMissing, tagName);
    }
}

/// Of a line that is no variant's, all but its first character: its attributes are read too, and their
/// numbers may throw, although without a URI it never becomes a variant.
velhls::TagLine foreignLine(std::string_view line) {
    velhls::TagLine tagLine;
    tagLine.value = line.empty() ? line : line.substr(1);
    return tagLine;
}

/// A type that is none has no text, and is not written.
void appendGroups(velhls::AttributeWriter& line,
                  const std::map<VELHLSMediaStreamRendition::RenditionType, std::string>& groupIds) {
    for (const auto& [type, groupId] : groupIds) {
        const std::string_view typeText = VELHLSMediaStreamRendition::textOf(type);
        if (!typeText.empty()) line.appendQuoted(typeText, groupId);
    }
    if (groupIds.count(VELHLSMediaStreamRendition::ClosedCaptions) == 0) {
        line.append(attribute::closedCaptions, velhls::fixed::none);
    }
}

}  // namespace

std::shared_ptr<VELHLSMediaVariant> velhls::readVariant(const TagLine& tagLine, std::string_view uriLine,
                                                        RecordMaker* maker, Reason& why) {
    const bool isStream = tagLine.name == tag::streamInf;
    const bool isIFrame = tagLine.name == tag::iFrameStreamInf;
    if (isStream && uriLine.empty()) {
        why.missing(Rule::variantUriMissing, tagLine.name);
        return nullptr;
    }
    if (isIFrame && !uriLine.empty()) return nullptr;

    AttributeList attributes;
    if (!attributes.read(tagLine.value, why)) return nullptr;
    auto variant = makeRecord<ReadVariant>(maker, isIFrame, isStream ? uriLine : std::string_view());
    readNumbers(*variant, attributes, why);
    readTexts(*variant, attributes);
    readGroups(*variant, attributes);
    if (variant->validate()) return variant;
    tellWhyInvalid(*variant, attributes, tagLine.name, why);
    return nullptr;
}

VELHLSMediaVariant::VELHLSMediaVariant(std::uint64_t bandwidth, std::uint64_t averageBandwidth,
                                       const std::string& codecs, const std::string& resolution,
                                       const std::string& uri, std::shared_ptr<VELHLSMediaStream> mediaStream,
                                       bool isIFrame, std::uint32_t programId)
    : bandwidth(bandwidth),
      averageBandwidth(averageBandwidth),
      codecs(codecs),
      resolution(resolution),
      programId(programId),
      uri(uri),
      mediaStream(std::move(mediaStream)),
      isIFrame(isIFrame) {}

std::shared_ptr<VELHLSMediaVariant> VELHLSMediaVariant::parseVariant(const std::string& tagLine,
                                                                     const std::string& uriLine) {
    const bool isVariant = velhls::isTagLine(tagLine, velhls::tag::streamInf) ||
                           velhls::isTagLine(tagLine, velhls::tag::iFrameStreamInf);
    velhls::Reason ignored;
    return velhls::readVariant(isVariant ? velhls::TagLine(tagLine) : foreignLine(tagLine), uriLine, nullptr,
                               ignored);
}

std::int32_t VELHLSMediaVariant::render(std::string& out) const {
    if (!validate()) return -1;
    velhls::AttributeWriter line(out, isIFrame ? velhls::tag::iFrameStreamInf : velhls::tag::streamInf);
    line.append(attribute::bandwidth, bandwidth)
        .appendUnlessZero(attribute::programId, programId)
        .appendUnlessZero(attribute::averageBandwidth, averageBandwidth)
        .appendQuotedUnlessEmpty(attribute::codecs, codecs)
        .appendUnlessEmpty(attribute::resolution, resolution);
    appendGroups(line, groupIds);
    if (isIFrame) line.appendQuoted(attribute::uri, uri);
    line.endLine();
    if (!isIFrame) {
        out += uri;
        out += '\n';
    }
    return 0;
}

bool VELHLSMediaVariant::validate() const {
    if (uri.empty()) return false;
    if (mediaStream != nullptr && !mediaStream->validate()) return false;
    return bandwidth != 0;
}

double VELHLSMediaVariant::getCVBRRatio() const {
    using Limits = std::numeric_limits<double>;
    const auto videoBandwidth = static_cast<double>(bandwidth - nominalAudioBitrate);
    if (nominalVideoBitrate == 0) return videoBandwidth > 0.0 ? Limits::infinity() : Limits::quiet_NaN();
    return videoBandwidth / static_cast<double>(nominalVideoBitrate);
}
