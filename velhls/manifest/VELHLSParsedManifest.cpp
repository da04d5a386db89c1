#include "velhls/manifest/VELHLSParsedManifest.h"

#include <algorithm>
#include <utility>

#include "velhls/common/LineWriter.h"
#include "velhls/common/Names.h"
#include "velhls/common/Parses.h"
#include "velhls/common/Readers.h"
#include "velhls/common/StartTag.h"
#include "velhls/manifest/ManifestReader.h"
#include "velhls/manifest/ManifestRules.h"

namespace {

/// Writes records that follow each other, many at a time.
class RecordWriter {
  public:
    explicit RecordWriter(std::ostream& out) : out_(out) {}

    /// False for a record that does not render, of which nothing is written.
    template <typename Record>
    bool write(const Record& record) {
        constexpr std::size_t fullText = 32768;
        const std::size_t start = text_.size();
        if (record.render(text_) != 0) {
            text_.resize(start);
            return false;
        }
        if (text_.size() >= fullText) flush();
        return true;
    }

    /// To be called after the last record, and after one that does not render.
    void flush() {
        velhls::writeText(out_, text_);
        text_.clear();
    }

  private:
    std::ostream& out_;
    std::string text_;
};

bool writeRenditions(RecordWriter& out, const VELHLSParsedManifest::RenditionsByName& group, bool forced) {
    for (const auto& [name, rendition] : group) {
        if (rendition->forced == forced && !out.write(*rendition)) return false;
    }
    return true;
}

bool writeAllRenditions(RecordWriter& out, const VELHLSParsedManifest& manifest) {
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            if (!writeRenditions(out, group, false)) return false;
            if (!writeRenditions(out, group, true)) return false;
        }
    }
    return true;
}

bool writeVariants(RecordWriter& out, const VELHLSParsedManifest& manifest) {
    for (const auto& [bandwidth, variant] : manifest.variants) {
        if (!out.write(*variant)) return false;
    }
    return true;
}

bool writeSessionData(RecordWriter& out, const VELHLSParsedManifest& manifest) {
    for (const auto& entry : manifest.sessionData) {
        if (!out.write(*entry)) return false;
    }
    return true;
}

/// What was read, with its records bound to each other; null when they break a rule.
std::shared_ptr<VELHLSParsedManifest> finished(std::shared_ptr<VELHLSParsedManifest> manifest) {
    if (manifest == nullptr) return nullptr;
    manifest->sanitize();
    if (!manifest->validate()) return nullptr;
    manifest->populateMetaData();
    return manifest;
}

}  // namespace

std::shared_ptr<VELHLSParsedManifest> VELHLSParsedManifest::parseManifest(std::istream& input,
                                                                          VELHLSParsingStatus* status) {
    return velhls::timedParse(status, [&] { return internalParseManifest(input, status); });
}

std::shared_ptr<VELHLSParsedManifest> VELHLSParsedManifest::parseManifest(std::string_view text,
                                                                          VELHLSReason* reason) {
    return velhls::reasonedParse(
        text, reason, [text] { return finished(velhls::ManifestReader(text, nullptr).read()); },
        velhls::readMaster);
}

std::shared_ptr<VELHLSParsedManifest> VELHLSParsedManifest::internalParseManifest(
    std::istream& input, VELHLSParsingStatus* status) {
    auto manifest = finished(velhls::ManifestReader(input).read());
    if (manifest == nullptr) return nullptr;
    if (status != nullptr) status->error = VELHLSParsingErrorNone;
    return manifest;
}

std::int32_t VELHLSParsedManifest::render(std::ostream& out) const {
    if (!validate()) return -1;
    velhls::writeTag(out, velhls::tag::extM3U);
    if (version != 1) velhls::writeTag(out, velhls::tag::version, std::int64_t{version});
    if (independentSegments) velhls::writeTag(out, velhls::tag::independentSegments);
    velhls::writeStartTag(out, startTimeOffset, startPrecise);
    RecordWriter records(out);
    const bool rendered = writeAllRenditions(records, *this) && writeVariants(records, *this) &&
                          writeSessionData(records, *this);
    records.flush();
    return rendered ? 0 : -1;
}

bool VELHLSParsedManifest::validate() const {
    using velhls::BrokenRules;
    return velhls::brokenRulesOf(*this, BrokenRules::Wanted::first).empty();
}

void VELHLSParsedManifest::sanitize() {
    if (zorStreamInformation.empty()) return;
    const auto streams = std::count_if(variants.begin(), variants.end(), [](const auto& variant) {
        return variant.second != nullptr && !variant.second->isIFrame;
    });
    if (static_cast<std::size_t>(streams) == zorStreamInformation.size()) {
        hasZORStreamInformation = true;
    } else {
        zorStreamInformation.clear();
    }
}

void VELHLSParsedManifest::populateMetaData() {
    if (!hasZORStreamInformation) return;
    // A parse leaves as many of the ones as of the others. A caller may have changed either since.
    const std::size_t pairs = std::min(zorStreamInformation.size(), streamVariants.size());
    for (std::size_t index = 0; index < pairs; ++index) {
        if (zorStreamInformation[index] == nullptr || streamVariants[index] == nullptr) continue;
        streamVariants[index]->nominalVideoBitrate = zorStreamInformation[index]->nominalVideoBitrate;
        streamVariants[index]->nominalAudioBitrate = zorStreamInformation[index]->nominalAudioBitrate;
    }
}
