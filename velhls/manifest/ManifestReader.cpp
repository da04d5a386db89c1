#include "velhls/manifest/ManifestReader.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/Readers.h"
#include "velhls/common/StartTag.h"
#include "velhls/common/TextScan.h"
#include "velhls/manifest/ManifestRules.h"
#include "velhls/manifest/RecordTags.h"
#include "velhls/media/KeyAndMapTags.h"

namespace velhls {

std::shared_ptr<VELHLSParsedManifest> ManifestReader::read() {
    constexpr std::size_t variantsOfLadder = 8;
    manifest_->streamVariants.reserve(variantsOfLadder);
    while (lines_.good() && !playlistEnded_) {
        line_ = lines_.next();
        if (reading_ != nullptr) reading_->recordBegins();
        if (succeeds([this] { return readLine(); }, reading_, why_)) continue;
        if (!readsOn(reading_)) return nullptr;
        reading_->recordRejected();
    }
    return std::move(manifest_);
}

void ManifestReader::viewsEnd() {
    if (line_.data() == lineMemory_.data()) return;
    lineMemory_ = line_;
    line_ = lineMemory_;
    if (isStandardTag(line_)) tagLine_ = TagLine(line_);
}

bool ManifestReader::readLine() {
    if (isStandardTag(line_)) {
        tagLine_ = TagLine(line_);
        return tagLine_.hasColon ? readTag() : readBareTag();
    }
    if (isTagLine(line_, tag::zorStreamInf)) return readStreamInformation(TagLine(line_));
    // A variant's URI was read together with its tag. Any other is out of place.
    return isTagOrComment(line_) || isBlank(line_) || why_(Rule::uriWithoutTag, line_);
}

bool ManifestReader::readBareTag() {
    if (tagLine_.name == tag::extM3U) {
        playlistEnded_ = manifest_->hasHeader;
        manifest_->hasHeader = true;
        return true;
    }
    if (tagLine_.name != tag::independentSegments) return why_(Rule::masterBareTagUnknown, tagLine_.name);
    manifest_->independentSegments = true;
    return true;
}

bool ManifestReader::readTag() {
    if (tagLine_.name == tag::media) return readRendition();
    if (tagLine_.name == tag::streamInf) return readVariant(false);
    if (tagLine_.name == tag::iFrameStreamInf) return readVariant(true);
    if (tagLine_.name == tag::sessionData) return readSessionData();
    if (tagLine_.name == tag::sessionKey) return readSessionKey();
    if (tagLine_.name == tag::start) {
        return readStartTag(tagLine_, manifest_->startTimeOffset, manifest_->startPrecise, why_);
    }
    if (tagLine_.name == tag::version) manifest_->version = toInt32(tagLine_.value, why_);
    return true;
}

/// One that does not parse is dropped.
bool ManifestReader::readStreamInformation(const TagLine& tagLine) {
    auto information = velhls::readStreamInformation(tagLine, why_);
    if (information == nullptr) return true;
    recordMade(information.get());
    manifest_->zorStreamInformation.push_back(std::move(information));
    return true;
}

bool ManifestReader::readRendition() {
    auto rendition = velhls::readRendition(tagLine_, &recordMaker_, why_);
    if (rendition == nullptr) return false;
    // The first rendition with a name stays.
    auto& group = manifest_->renditions[rendition->type][rendition->groupId];
    const bool isKept = group.emplace(rendition->name, rendition).second;
    recordMade(isKept ? rendition.get() : nullptr);
    return true;
}

bool ManifestReader::readVariant(bool isIFrame) {
    const std::string_view uriLine = isIFrame ? std::string_view() : lines_.next();
    auto variant = velhls::readVariant(tagLine_, uriLine, &recordMaker_, why_);
    if (variant == nullptr) return false;
    recordMade(variant.get());
    // After all others of no more bandwidth: the hint only says where that often is.
    manifest_->variants.emplace_hint(manifest_->variants.end(), variant->bandwidth, variant);
    if (!isIFrame) manifest_->streamVariants.push_back(std::move(variant));
    return true;
}

bool ManifestReader::readSessionData() {
    auto entry = velhls::readSessionData(line_, why_);
    if (entry == nullptr) return false;
    recordMade(entry.get());
    manifest_->sessionData.push_back(std::move(entry));
    return true;
}

bool ManifestReader::readSessionKey() {
    auto key = std::make_shared<VELHLSProtectionData>(VELHLSProtectionData::None, "", "", "",
                                                      std::vector<std::int32_t>());
    if (!readKey(tagLine_, *key, why_)) return false;
    recordMade(key.get());
    manifest_->sessionKeys.push_back(std::move(key));
    return true;
}

void ManifestReader::recordMade(const void* record) {
    if (reading_ != nullptr) reading_->recordMade(record);
}

std::shared_ptr<VELHLSParsedManifest> readMaster(std::string_view text, Reading& reading) {
    auto manifest = ManifestReader(text, &reading).read();
    if (manifest == nullptr) return nullptr;
    manifest->sanitize();
    const auto wanted = reading.readsOn() ? BrokenRules::Wanted::all : BrokenRules::Wanted::first;
    const BrokenRules broken = brokenRulesOf(*manifest, wanted);
    for (const BrokenRule& rule : broken.all())
        reading.recordsRejected(rule);
    return broken.empty() || reading.readsOn() ? manifest : nullptr;
}

}  // namespace velhls
