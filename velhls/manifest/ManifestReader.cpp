#include "velhls/manifest/ManifestReader.h"

#include <optional>
#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/StartTag.h"
#include "velhls/common/TextScan.h"

namespace velhls {

std::shared_ptr<VELHLSParsedManifest> ManifestReader::read() {
    while (lines_.good()) {
        line_ = lines_.next();
        const Outcome outcome = takeLine();
        if (outcome == Outcome::rejected) return nullptr;
        if (outcome == Outcome::playlistEnds) break;
    }
    return std::move(manifest_);
}

ManifestReader::Outcome ManifestReader::takeLine() {
    if (isStandardTag(line_)) {
        const TagLine tagLine(line_);
        return tagLine.hasColon ? takeTag(tagLine) : takeBareTag();
    }
    if (isVendorTag(line_)) return takeVendorTag(TagLine(line_));
    if (isTagOrComment(line_)) return Outcome::goOn;
    // A variant's URI was read together with its tag. Any other is out of place.
    return isBlank(line_) ? Outcome::goOn : Outcome::rejected;
}

ManifestReader::Outcome ManifestReader::takeBareTag() {
    const std::string_view name = TagLine(line_).name;
    if (name == tag::extM3U) {
        // The header of a second playlist ends the first.
        if (manifest_->hasHeader) return Outcome::playlistEnds;
        manifest_->hasHeader = true;
        return Outcome::goOn;
    }
    if (name == tag::independentSegments) {
        manifest_->independentSegments = true;
        return Outcome::goOn;
    }
    return Outcome::rejected;
}

ManifestReader::Outcome ManifestReader::takeTag(const TagLine& tagLine) {
    if (tagLine.name == tag::media) return takeRendition();
    if (tagLine.name == tag::streamInf) return takeVariant(false);
    if (tagLine.name == tag::iFrameStreamInf) return takeVariant(true);
    if (tagLine.name == tag::sessionData) return takeSessionData();
    if (tagLine.name == tag::sessionKey) return takeSessionKey();
    if (tagLine.name == tag::start) return takeStart(tagLine);
    if (tagLine.name == tag::version) manifest_->version = toInt32(tagLine.value);
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeVendorTag(const TagLine& tagLine) {
    if (tagLine.name != tag::zorStreamInf) return Outcome::goOn;
    if (auto information = VELHLSZORStreamInformation::parse(line_)) {
        manifest_->zorStreamInformation.push_back(std::move(information));
    }
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeRendition() {
    auto rendition = VELHLSMediaStreamRendition::parse(line_);
    if (rendition == nullptr) return Outcome::rejected;
    // The first rendition with a name stays.
    auto& group = manifest_->renditions[rendition->type][rendition->groupId];
    group.emplace(rendition->name, rendition);
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeVariant(bool isIFrame) {
    std::string uriLine;
    if (!isIFrame) uriLine = lines_.next();
    auto variant = VELHLSMediaVariant::parseVariant(line_, uriLine);
    if (variant == nullptr) return Outcome::rejected;
    manifest_->variants.emplace(variant->bandwidth, variant);
    if (!isIFrame) manifest_->streamVariants.push_back(std::move(variant));
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeSessionData() {
    auto entry = VELHLSManifestSessionData::parseSessionData(line_);
    if (entry == nullptr) return Outcome::rejected;
    manifest_->sessionData.push_back(std::move(entry));
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeSessionKey() {
    auto key = std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::None, "", "", "",
                                                      std::vector<std::int32_t>());
    if (key->parse(line_) != 0) return Outcome::rejected;
    manifest_->sessionKeys.push_back(std::move(key));
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeStart(const TagLine& tagLine) {
    const std::optional<StartTag> start = parseStartTag(tagLine.value);
    if (!start) return Outcome::rejected;
    manifest_->startTimeOffset = start->timeOffset;
    // A later tag does not take PRECISE=YES back.
    if (start->precise) manifest_->startPrecise = true;
    return Outcome::goOn;
}

}  // namespace velhls
