#include "velhls/writer/MasterWriter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "velhls/common/AttributeWriter.h"
#include "velhls/common/LineWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"
#include "velhls/writer/KeyRules.h"
#include "velhls/writer/SafeText.h"

namespace velhls {
namespace {

/// The offset that stands for none.
constexpr double noStart = -1.0;

/// Whether `streamVariants` are the EXT-X-STREAM-INF variants of `variants`, in any order.
bool listsAgree(const VELHLSParsedManifest& manifest) {
    // Compared as the objects that they are: the templates of a pointer to a public class would be handed out with it.
    std::vector<const void*> listed;
    for (const auto& variant : manifest.streamVariants)
        listed.push_back(variant.get());
    std::vector<const void*> held;
    for (const auto& [bandwidth, variant] : manifest.variants) {
        if (!variant->isIFrame) held.push_back(variant.get());
    }
    std::sort(listed.begin(), listed.end(), std::less<>());
    std::sort(held.begin(), held.end(), std::less<>());
    return listed == held;
}

bool hasNominalBitrate(const VELHLSMediaVariant& variant) {
    return variant.nominalVideoBitrate != 0 || variant.nominalAudioBitrate != 0;
}

bool namesCaptions(const std::shared_ptr<VELHLSMediaVariant>& variant) {
    return variant->groupIds.count(VELHLSMediaStreamRendition::ClosedCaptions) != 0;
}

}  // namespace

std::optional<std::string> MasterWriter::write(const VELHLSParsedManifest& manifest, std::ostream& out) {
    const bool isWritable = isSound(manifest) && appendRenditions(manifest) && appendVariants(manifest) &&
                            appendSessionData(manifest) && appendSessionKeys(manifest);
    if (!isWritable) return std::move(refusal_);
    writeText(out, header(manifest));
    writeText(out, body_);
    return std::nullopt;
}

bool MasterWriter::isSound(const VELHLSParsedManifest& manifest) {
    if (!manifest.validate()) return refuse("the manifest", "does not validate");
    if (!listsAgree(manifest)) {
        return refuse("the manifest", "has other streamVariants than its variants hold");
    }
    if (!std::isfinite(manifest.startTimeOffset)) return refuse("the start offset", "is not a finite number");
    const auto& variants = manifest.streamVariants;
    writesNoCaptions_ =
        options_.noClosedCaptions && std::none_of(variants.begin(), variants.end(), namesCaptions);
    return !options_.nominalBitrates || decideNominalBitrates(manifest);
}

/// ZOR-STREAM-INF lines pair with the variants by their positions, so that there is one for each or none.
bool MasterWriter::decideNominalBitrates(const VELHLSParsedManifest& manifest) {
    startRecords("variant");
    for (const auto& variant : manifest.streamVariants) {
        ++number_;
        if (number_ == 1) writesNominalBitrates_ = hasNominalBitrate(*variant);
        if (hasNominalBitrate(*variant) != writesNominalBitrates_) {
            return refuse("nominal bit rates", "stand in some variants and not in all");
        }
    }
    return true;
}

bool MasterWriter::appendRenditions(const VELHLSParsedManifest& manifest) {
    startRecords("rendition");
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            for (const auto& [name, rendition] : group) {
                ++number_;
                if (!append(*rendition)) return false;
            }
        }
    }
    return true;
}

bool MasterWriter::append(const VELHLSMediaStreamRendition& rendition) {
    const bool hasType = !VELHLSMediaStreamRendition::textOf(rendition.type).empty();
    if (!hasType || !rendition.validate()) return refuse("it", "does not validate");
    if (!areSound({{attribute::groupId, rendition.groupId},
                   {attribute::name, rendition.name},
                   {attribute::uri, rendition.uri},
                   {attribute::language, rendition.language},
                   {attribute::assocLanguage, rendition.assocLanguage},
                   {attribute::instreamId, rendition.instreamId},
                   {attribute::audioTrackType, rendition.audioTrackType}})) {
        return false;
    }
    for (const std::string& characteristic : rendition.characteristics) {
        if (!areSound({{attribute::characteristics, characteristic}})) return false;
    }
    static_cast<void>(rendition.render(body_));
    if (!rendition.audioTrackType.empty()) {
        body_.pop_back();
        AttributeWriter(body_).appendQuoted(attribute::audioTrackType, rendition.audioTrackType).endLine();
    }
    if (startsWith(rendition.instreamId, "SERVICE")) needed_.atLeast(7);
    return true;
}

bool MasterWriter::appendVariants(const VELHLSParsedManifest& manifest) {
    startRecords("variant");
    for (const auto& variant : manifest.streamVariants) {
        ++number_;
        if (writesNominalBitrates_) appendNominalBitrates(*variant);
        if (!append(*variant)) return false;
    }
    startRecords("I-frame variant");
    for (const auto& [bandwidth, variant] : manifest.variants) {
        if (!variant->isIFrame) continue;
        ++number_;
        if (!append(*variant)) return false;
    }
    return true;
}

void MasterWriter::appendNominalBitrates(const VELHLSMediaVariant& variant) {
    AttributeWriter(body_, tag::zorStreamInf)
        .append(attribute::nominalVideoBitrate, variant.nominalVideoBitrate)
        .appendUnlessZero(attribute::nominalAudioBitrate, variant.nominalAudioBitrate)
        .endLine();
}

bool MasterWriter::append(const VELHLSMediaVariant& variant) {
    if (variant.bandwidth == 0) return refuse(attribute::bandwidth, "is 0");
    if (variant.uri.empty()) return refuse(attribute::uri, "is empty");
    const std::string_view whyNoUri =
        variant.isIFrame ? whyNotQuoted(variant.uri) : whyNoUriLine(variant.uri);
    if (!whyNoUri.empty()) return refuse(attribute::uri, whyNoUri);
    if (!areSound({{attribute::codecs, variant.codecs}})) return false;
    if (holdsAny<'\n', '\r', '"', ','>(variant.resolution)) {
        return refuse(attribute::resolution, "holds a line end, a quote or a comma");
    }

    AttributeWriter line(body_, variant.isIFrame ? tag::iFrameStreamInf : tag::streamInf);
    line.append(attribute::bandwidth, variant.bandwidth)
        .appendUnlessZero(attribute::averageBandwidth, variant.averageBandwidth)
        .appendUnlessZero(attribute::programId, variant.programId)
        .appendQuotedUnlessEmpty(attribute::codecs, variant.codecs)
        .appendUnlessEmpty(attribute::resolution, variant.resolution);
    for (const auto& [type, groupId] : variant.groupIds) {
        const std::string_view name = VELHLSMediaStreamRendition::textOf(type);
        if (!areSound({{name, groupId}})) return false;
        line.appendQuoted(name, groupId);
    }
    if (variant.isIFrame) {
        line.appendQuoted(attribute::uri, variant.uri).endLine();
        return true;
    }
    if (writesNoCaptions_) line.append(attribute::closedCaptions, fixed::none);
    line.endLine();
    body_ += variant.uri;
    body_ += '\n';
    return true;
}

bool MasterWriter::appendSessionData(const VELHLSParsedManifest& manifest) {
    startRecords("session data");
    for (const auto& entry : manifest.sessionData) {
        ++number_;
        if (!entry->validate()) return refuse("it", "does not validate");
        if (!areSound({{attribute::dataId, entry->dataId},
                       {attribute::value, entry->value},
                       {attribute::uri, entry->uri},
                       {attribute::language, entry->language}})) {
            return false;
        }
        static_cast<void>(entry->render(body_));
    }
    return true;
}

bool MasterWriter::appendSessionKeys(const VELHLSParsedManifest& manifest) {
    startRecords("session key");
    for (const auto& key : manifest.sessionKeys) {
        ++number_;
        if (key->method == VELHLSProtectionData::None) return refuse(attribute::method, "is NONE");
        const std::string_view why = whyNoKey(*key);
        if (!why.empty()) return refuse("it", why);
        std::string line;
        static_cast<void>(key->render(line));
        appendTagStart(body_, tag::sessionKey);
        body_.append(line, tagLength(tag::key));
        needed_.atLeast(versionNeededBy(*key));
    }
    return true;
}

std::string MasterWriter::header(const VELHLSParsedManifest& manifest) const {
    std::string text;
    appendHeader(text, manifest.version, needed_);
    if (manifest.independentSegments) appendTag(text, tag::independentSegments);
    if (manifest.startTimeOffset != noStart || manifest.startPrecise) {
        appendStart(text, manifest.startTimeOffset, manifest.startPrecise);
    }
    return text;
}

bool MasterWriter::areSound(std::initializer_list<Quoted> values) {
    for (const Quoted& quoted : values) {
        const std::string_view why = whyNotQuoted(quoted.value);
        if (!why.empty()) return refuse(quoted.name, why);
    }
    return true;
}

void MasterWriter::startRecords(std::string_view name) {
    recordName_ = name;
    number_ = 0;
}

bool MasterWriter::refuse(std::string_view what, std::string_view why) {
    if (!recordName_.empty()) {
        refusal_ = recordName_;
        refusal_ += ' ' + std::to_string(number_) + ": ";
    }
    refusal_ += what;
    refusal_ += ' ';
    refusal_ += why;
    return false;
}

}  // namespace velhls
