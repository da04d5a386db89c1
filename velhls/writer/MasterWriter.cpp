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
#include "velhls/manifest/ManifestRules.h"
#include "velhls/writer/BrokenRuleText.h"
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
    // Those of a ladder that rises stand in one order.
    if (listed == held) return true;
    std::sort(listed.begin(), listed.end(), std::less<>());
    std::sort(held.begin(), held.end(), std::less<>());
    return listed == held;
}

/// Why the rendition cannot be written; empty when it can.
std::string_view whyNoRendition(const VELHLSMediaStreamRendition& rendition) {
    const bool isCaptions = rendition.type == VELHLSMediaStreamRendition::ClosedCaptions;
    const bool isSubtitles = rendition.type == VELHLSMediaStreamRendition::Subtitles;
    if (VELHLSMediaStreamRendition::textOf(rendition.type).empty()) return "has no TYPE";
    if (rendition.groupId.empty()) return "has no GROUP-ID";
    if (rendition.name.empty()) return "has no NAME";
    if (isCaptions && rendition.instreamId.empty()) return "is of closed captions, and has no INSTREAM-ID";
    if (isCaptions && !rendition.uri.empty()) return "is of closed captions, and has a URI";
    if (!isCaptions && !rendition.instreamId.empty()) {
        return "has an INSTREAM-ID, and is not of closed captions";
    }
    if (rendition.forced && !isSubtitles) return "has FORCED=YES, and is not of subtitles";
    if (rendition.isDefault && !rendition.autoSelect) return "has DEFAULT=YES without AUTOSELECT=YES";
    return rendition.validate() ? std::string_view() : "does not validate";
}

/// Why the entry cannot be written; empty when it can.
std::string_view whyNoSessionData(const VELHLSManifestSessionData& entry) {
    if (entry.dataId.empty()) return "has no DATA-ID";
    if (entry.validate()) return {};
    return entry.value.empty() ? "has neither VALUE nor URI" : "has both VALUE and URI";
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
    if (!areInTheirPlaces(manifest)) return false;
    const BrokenRules broken = brokenRulesOf(manifest, BrokenRules::Wanted::first);
    if (!broken.empty()) {
        refusal_ = textOf(broken, manifest);
        return false;
    }
    if (!listsAgree(manifest)) {
        return refuse("the manifest", "has other streamVariants than its variants hold");
    }
    if (!std::isfinite(manifest.startTimeOffset)) return refuse("the start offset", "is not a finite number");
    const auto& variants = manifest.streamVariants;
    writesNoCaptions_ =
        options_.noClosedCaptions && std::none_of(variants.begin(), variants.end(), namesCaptions);
    return !options_.nominalBitrates || decideNominalBitrates(manifest);
}

/// A rendition is written with its own GROUP-ID and NAME: under others the rules between groups would have looked at
/// other groups than those that are written.
bool MasterWriter::areInTheirPlaces(const VELHLSParsedManifest& manifest) {
    startRecords("rendition");
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            for (const auto& [name, rendition] : group) {
                ++number_;
                if (rendition == nullptr) return refuse("it", "is null");
                if (rendition->type != type) return refuse("it", "stands under another TYPE than its own");
                if (rendition->groupId != groupId) {
                    return refuse("it", "stands under another GROUP-ID than its own");
                }
                if (rendition->name != name) return refuse("it", "stands under another NAME than its own");
            }
        }
    }
    startRecords({});
    return true;
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
    if (const std::string_view why = whyNoRendition(rendition); !why.empty()) return refuse("it", why);
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
    const std::string& resolution = variant.resolution;
    if (holdsControlOr<'"', ','>(resolution) && resolution.find_first_of("\r\n\",") != std::string::npos) {
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
        if (const std::string_view why = whyNoSessionData(*entry); !why.empty()) return refuse("it", why);
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
