#include "velhls/manifest/VELHLSMediaVariant.h"

#include <limits>
#include <optional>
#include <utility>

#include "velhls/common/AttributeList.h"
#include "velhls/common/AttributeWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/TagLine.h"
#include "velhls/manifest/RecordParsers.h"
#include "velhls/manifest/RenditionTypeText.h"
#include "velhls/media/VELHLSMediaStream.h"

namespace {

namespace attribute = velhls::attribute;
using velhls::Recorder;
using velhls::Rule;

/// Of a line that is no variant's, all but its first character: its attributes are read too, and their
/// numbers may throw, although without a URI it never becomes a variant.
std::string_view attributeText(std::string_view tagLine, bool isVariant) {
    if (isVariant) return velhls::TagLine(tagLine).value;
    return tagLine.empty() ? tagLine : tagLine.substr(1);
}

void readGroup(VELHLSMediaVariant& variant, VELHLSMediaStreamRendition::RenditionType type,
               std::string_view value, Recorder* recorder) {
    if (type == VELHLSMediaStreamRendition::ClosedCaptions && value == velhls::fixed::none) {
        // What is quoted stands behind a quote.
        const bool isQuoted = recorder != nullptr && value.data()[-1] == '"';
        if (isQuoted) recorder->report(Rule::variantCaptionsQuotedNone, value, {});
        return;
    }
    variant.groupIds.emplace(type, value);
}

void readAttribute(VELHLSMediaVariant& variant, const velhls::Attribute& read, Recorder* recorder) {
    if (read.name == attribute::bandwidth) {
        variant.bandwidth = velhls::toInt64AsUnsigned(number(recorder, read.value));
    } else if (read.name == attribute::averageBandwidth) {
        variant.averageBandwidth = velhls::toInt64AsUnsigned(number(recorder, read.value));
    } else if (read.name == attribute::codecs) {
        variant.codecs = read.value;
    } else if (read.name == attribute::resolution) {
        variant.resolution = read.value;
    } else if (read.name == attribute::programId) {
        variant.programId = static_cast<std::uint32_t>(velhls::toInt32(number(recorder, read.value)));
    } else if (read.name == attribute::uri) {
        if (variant.isIFrame) {
            variant.uri = read.value;
        } else {
            tell(recorder, Rule::variantUriAttributeIgnored, read.value);
        }
    } else if (const auto type = velhls::renditionTypeNamed(read.name)) {
        readGroup(variant, *type, read.value, recorder);
    } else {
        tell(recorder, Rule::attributeIgnored, read.name);
    }
}

/// Gives access to the constructor that a reader needs.
struct ReadVariant : VELHLSMediaVariant {
    explicit ReadVariant(bool isIFrame) : VELHLSMediaVariant(isIFrame) {}
};

/// Why a variant that was read does not validate.
void tellWhyInvalid(Recorder& recorder, const VELHLSMediaVariant& variant,
                    const velhls::AttributeList& attributes, std::string_view tagName) {
    if (variant.uri.empty()) {
        recorder.report(Rule::variantUriAttributeMissing, tagName, "none");
    } else if (const auto bandwidth = attributes.find(attribute::bandwidth)) {
        recorder.report(Rule::variantBandwidthZero, *bandwidth, {});
    } else {
        recorder.report(Rule::variantBandwidthMissing, tagName, "none");
    }
}

/// What is read of a variant otherwise than it seems to be meant.
void tellOfSurprises(Recorder& recorder, const velhls::AttributeList& attributes, std::string_view tagName,
                     std::string_view uriLine) {
    if (velhls::isTagOrComment(uriLine)) recorder.report(Rule::variantUriIsTag, uriLine, {});
    const bool saysCaptions = attributes.find(attribute::closedCaptions).has_value();
    if (!saysCaptions) recorder.report(Rule::variantCaptionsNoneAdded, tagName, "none");
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

std::shared_ptr<VELHLSMediaVariant> velhls::parseVariant(std::string_view tagLine, std::string_view uriLine,
                                                         RecordMaker* maker, Recorder* recorder) {
    const bool isStream = isTagLine(tagLine, tag::streamInf);
    const bool isIFrame = isTagLine(tagLine, tag::iFrameStreamInf);
    if (isStream && uriLine.empty()) {
        tellMissing(recorder, Rule::variantUriMissing, TagLine(tagLine).name);
        return nullptr;
    }
    if (isIFrame && !uriLine.empty()) return nullptr;

    AttributeList attributes;
    if (!attributes.parse(attributeText(tagLine, isStream || isIFrame), recorder)) return nullptr;
    if (recorder != nullptr) recorder->attributesRead(TagLine(tagLine).name, attributes);
    auto variant = makeRecord<ReadVariant>(maker, isIFrame);
    if (isStream) variant->uri = uriLine;
    for (const Attribute& attribute : attributes) {
        readAttribute(*variant, attribute, recorder);
    }
    if (!variant->validate()) {
        if (recorder != nullptr) tellWhyInvalid(*recorder, *variant, attributes, TagLine(tagLine).name);
        return nullptr;
    }
    if (recorder != nullptr) tellOfSurprises(*recorder, attributes, TagLine(tagLine).name, uriLine);
    return variant;
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
    return velhls::parseVariant(tagLine, uriLine, nullptr, nullptr);
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
