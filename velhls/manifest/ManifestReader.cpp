#include "velhls/manifest/ManifestReader.h"

#include <optional>
#include <utility>

#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/StartTag.h"
#include "velhls/common/TextScan.h"
#include "velhls/manifest/RecordParsers.h"
#include "velhls/media/RecordParsers.h"

namespace velhls {

std::shared_ptr<VELHLSParsedManifest> ManifestReader::read() {
    while (lines_.good()) {
        // Kept, since a variant's URI is read while its tag is still needed.
        line_ = lines_.next();
        noteLine(line_);
        const Outcome outcome = recorder_ == nullptr ? takeLine() : takeLineWithoutThrowing();
        if (outcome == Outcome::rejected && recorder_ == nullptr) return nullptr;
        if (outcome == Outcome::playlistEnds) break;
    }
    return std::move(manifest_);
}

void ManifestReader::noteLine(std::string_view line) {
    if (recorder_ != nullptr) recorder_->lineRead(line);
}

ManifestReader::Outcome ManifestReader::takeLineWithoutThrowing() {
    return withoutThrowing(*recorder_, Outcome::rejected, [this] { return takeLine(); });
}

ManifestReader::Outcome ManifestReader::takeLine() {
    if (isStandardTag(line_)) {
        const TagLine tagLine(line_);
        if (recorder_ != nullptr) recorder_->tagRead(tagLine);
        return tagLine.hasColon ? takeTag(tagLine) : takeBareTag(tagLine);
    }
    if (isVendorTag(line_)) return takeVendorTag(TagLine(line_));
    if (isTagOrComment(line_)) {
        tell(recorder_, Rule::commentNotWritten, line_);
        return Outcome::goOn;
    }
    if (isBlank(line_)) return Outcome::goOn;
    // A variant's URI was read together with its tag. Any other is out of place.
    tell(recorder_, Rule::uriWithoutTag, line_);
    return Outcome::rejected;
}

ManifestReader::Outcome ManifestReader::takeBareTag(const TagLine& tagLine) {
    if (tagLine.name == tag::extM3U) {
        // The header of a second playlist ends the first.
        if (manifest_->hasHeader) {
            tell(recorder_, Rule::headerEndsPlaylist, line_);
            return Outcome::playlistEnds;
        }
        manifest_->hasHeader = true;
        return Outcome::goOn;
    }
    if (tagLine.name == tag::independentSegments) {
        manifest_->independentSegments = true;
        return Outcome::goOn;
    }
    tell(recorder_, Rule::masterBareTagUnknown, tagLine.name);
    return Outcome::rejected;
}

ManifestReader::Outcome ManifestReader::takeTag(const TagLine& tagLine) {
    if (tagLine.name == tag::media) return takeRendition();
    if (tagLine.name == tag::streamInf) return takeVariant(false);
    if (tagLine.name == tag::iFrameStreamInf) return takeVariant(true);
    if (tagLine.name == tag::sessionData) return takeSessionData();
    if (tagLine.name == tag::sessionKey) return takeSessionKey();
    if (tagLine.name == tag::start) return takeStart(tagLine);
    if (tagLine.name == tag::version) {
        manifest_->version = toInt32(number(recorder_, tagLine.value));
        return Outcome::goOn;
    }
    if (recorder_ != nullptr) recorder_->tagIgnored(tagLine);
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeVendorTag(const TagLine& tagLine) {
    if (recorder_ != nullptr) recorder_->tagRead(tagLine);
    if (tagLine.name != tag::zorStreamInf) {
        if (recorder_ != nullptr) recorder_->tagIgnored(tagLine);
        return Outcome::goOn;
    }
    if (auto information = parseStreamInformation(line_, recorder_)) {
        if (recorder_ != nullptr) recorder_->recordRead(information.get(), TagLine(line_).name);
        manifest_->zorStreamInformation.push_back(std::move(information));
    }
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeRendition() {
    auto rendition = parseRendition(line_, &recordMaker_, recorder_);
    if (rendition == nullptr) return Outcome::rejected;
    if (recorder_ != nullptr) recorder_->recordRead(rendition.get(), TagLine(line_).name);
    // The first rendition with a name stays.
    auto& group = manifest_->renditions[rendition->type][rendition->groupId];
    const bool isNew = group.emplace(rendition->name, rendition).second;
    if (!isNew && recorder_ != nullptr) {
        recorder_->reportRecord(Rule::renditionRepeated, rendition.get(), attribute::name, {});
    }
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeVariant(bool isIFrame) {
    std::string_view uriLine;
    if (!isIFrame) {
        uriLine = lines_.next();
        noteLine(uriLine);
    }
    auto variant = parseVariant(line_, uriLine, &recordMaker_, recorder_);
    if (variant == nullptr) return Outcome::rejected;
    if (recorder_ != nullptr) recorder_->recordRead(variant.get(), TagLine(line_).name);
    // Behind all others of no more bandwidth: the hint only says where that often is.
    manifest_->variants.emplace_hint(manifest_->variants.end(), variant->bandwidth, variant);
    if (!isIFrame) manifest_->streamVariants.push_back(std::move(variant));
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeSessionData() {
    auto entry = parseSessionData(line_, recorder_);
    if (entry == nullptr) return Outcome::rejected;
    if (recorder_ != nullptr) recorder_->recordRead(entry.get(), TagLine(line_).name);
    manifest_->sessionData.push_back(std::move(entry));
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeSessionKey() {
    auto key = std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::None, "", "", "",
                                                      std::vector<std::int32_t>());
    if (!parseKey(line_, *key, recorder_)) return Outcome::rejected;
    if (recorder_ != nullptr) {
        recorder_->recordRead(key.get(), TagLine(line_).name);
        recorder_->reportRecord(Rule::sessionKeyNotWritten, key.get(), {}, {});
    }
    manifest_->sessionKeys.push_back(std::move(key));
    return Outcome::goOn;
}

ManifestReader::Outcome ManifestReader::takeStart(const TagLine& tagLine) {
    const std::optional<StartTag> start = parseStartTag(tagLine, recorder_);
    if (!start) return Outcome::rejected;
    manifest_->startTimeOffset = start->timeOffset;
    // A later tag does not take PRECISE=YES back.
    if (start->precise) manifest_->startPrecise = true;
    if (manifest_->startPrecise && !start->precise) tell(recorder_, Rule::startPreciseKept, tagLine.name);
    return Outcome::goOn;
}

}  // namespace velhls
