#include "velhls/manifest/VELHLSMediaVariant.h"

#include <optional>
#include <utility>

#include "velhls/common/AttributeList.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/RenditionTypeText.h"
#include "velhls/media/VELHLSMediaStream.h"

namespace {

namespace attribute = velhls::attribute;

void appendNumber(std::string& out, std::string_view name, std::uint64_t number) {
    velhls::appendAttribute(out, name, "");
    velhls::appendDecimal(out, number);
}

/// Of a line that is no variant's, all but its first character: its attributes are read too, and their
/// numbers may throw, although without a URI it never becomes a variant.
std::string_view attributeText(std::string_view tagLine, bool isVariant) {
    if (isVariant) return velhls::TagLine(tagLine).value;
    return tagLine.empty() ? tagLine : tagLine.substr(1);
}

}  // namespace

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
    const bool isStream = velhls::isTagLine(tagLine, velhls::tag::streamInf);
    const bool isIFrame = velhls::isTagLine(tagLine, velhls::tag::iFrameStreamInf);
    if (isStream && uriLine.empty()) return nullptr;
    if (isIFrame && !uriLine.empty()) return nullptr;

    const std::optional<velhls::AttributeList> attributes =
        velhls::AttributeList::parse(attributeText(tagLine, isStream || isIFrame));
    if (!attributes) return nullptr;
    auto variant = std::make_shared<VELHLSMediaVariant>(0, 0, "", "", "", nullptr, isIFrame, 0);
    if (isStream) variant->uri = uriLine;
    for (const velhls::Attribute& attribute : *attributes) {
        variant->readAttribute(attribute.name, attribute.value);
    }
    return variant->validate() ? variant : nullptr;
}

void VELHLSMediaVariant::readAttribute(std::string_view name, std::string_view value) {
    if (name == attribute::bandwidth) {
        bandwidth = velhls::toInt64AsUnsigned(value);
    } else if (name == attribute::averageBandwidth) {
        averageBandwidth = velhls::toInt64AsUnsigned(value);
    } else if (name == attribute::codecs) {
        codecs = value;
    } else if (name == attribute::resolution) {
        resolution = value;
    } else if (name == attribute::programId) {
        programId = static_cast<std::uint32_t>(velhls::toInt32(value));
    } else if (name == attribute::uri) {
        if (isIFrame) uri = value;
    } else if (const auto type = velhls::renditionTypeNamed(name)) {
        const bool noCaptions =
            type == VELHLSMediaStreamRendition::ClosedCaptions && value == velhls::fixed::none;
        if (!noCaptions) groupIds.emplace(*type, value);
    }
}

std::int32_t VELHLSMediaVariant::render(std::string& out) const {
    if (!validate()) return -1;
    velhls::appendTag(out, isIFrame ? velhls::tag::iFrameStreamInf : velhls::tag::streamInf);
    appendNumber(out, attribute::bandwidth, bandwidth);
    if (programId != 0) {
        out += ',';
        appendNumber(out, attribute::programId, programId);
    }
    if (averageBandwidth != 0) {
        out += ',';
        appendNumber(out, attribute::averageBandwidth, averageBandwidth);
    }
    if (!codecs.empty()) {
        out += ',';
        velhls::appendQuotedAttribute(out, attribute::codecs, codecs);
    }
    if (!resolution.empty()) {
        out += ',';
        velhls::appendAttribute(out, attribute::resolution, resolution);
    }
    appendGroups(out);
    if (isIFrame) {
        out += ',';
        velhls::appendQuotedAttribute(out, attribute::uri, uri);
    }
    out += '\n';
    if (!isIFrame) {
        out += uri;
        out += '\n';
    }
    return 0;
}

void VELHLSMediaVariant::appendGroups(std::string& out) const {
    for (const auto& [type, groupId] : groupIds) {
        const std::optional<std::string_view> typeText = velhls::textOf(type);
        if (!typeText) continue;
        out += ',';
        velhls::appendQuotedAttribute(out, *typeText, groupId);
    }
    if (groupIds.count(VELHLSMediaStreamRendition::ClosedCaptions) == 0) {
        out += ',';
        velhls::appendAttribute(out, attribute::closedCaptions, velhls::fixed::none);
    }
}

bool VELHLSMediaVariant::validate() const {
    if (uri.empty()) return false;
    if (mediaStream != nullptr && !mediaStream->validate()) return false;
    return bandwidth != 0;
}

double VELHLSMediaVariant::getCVBRRatio() const {
    return static_cast<double>(bandwidth - nominalAudioBitrate) / static_cast<double>(nominalVideoBitrate);
}
