#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "velhls/VELHLS.h"

#include "tests/manifest/ManifestDescription.h"
#include "tests/support/MediaRoundTrip.h"

/// What the tests share to send master playlists and their records through the library and back.
namespace playlist {

/// Why what the variant renders does not parse, or not to the same; empty when it does.
inline std::string reasonNotToBeRead(const VELHLSMediaVariant& variant) {
    // A negative number is stored as one beyond what is read.
    constexpr auto most64 = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    constexpr auto most32 = static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max());
    if (variant.bandwidth > most64 || variant.averageBandwidth > most64) return "a negative bandwidth";
    if (variant.programId > most32) return "a negative program ID";
    // RESOLUTION is written without quotes.
    if (variant.resolution.find(',') != std::string::npos) return "a resolution with a comma";
    return {};
}

/// The variant as it is read from what it renders: the nominal bit rates stand in tags that are not written.
inline VELHLSMediaVariant rewrittenVariant(VELHLSMediaVariant variant) {
    variant.nominalVideoBitrate = 0;
    variant.nominalAudioBitrate = 0;
    return variant;
}

/// AUDIO-TRACK-TYPE is not written.
inline VELHLSMediaStreamRendition rewrittenRendition(VELHLSMediaStreamRendition rendition) {
    rendition.audioTrackType.clear();
    return rendition;
}

/// Why the library rejects what the manifest renders, or reads something else; empty when it reads it.
inline std::string reasonNotToBeRead(const VELHLSParsedManifest& manifest) {
    std::array<char, 32> offset;
    static_cast<void>(std::snprintf(offset.data(), offset.size(), "%.6g", manifest.startTimeOffset));
    if (std::string_view(offset.data()).find('e') != std::string_view::npos) {
        return "a start offset with an exponent";
    }
    // DATA-ID is written first, where it is not read.
    if (!manifest.sessionData.empty()) return "session data";
    for (const auto& [bandwidth, variant] : manifest.variants) {
        const std::string reason = reasonNotToBeRead(*variant);
        if (!reason.empty()) return reason;
    }
    return {};
}

/// The manifest as it is read from what it renders. Besides what the records say: the header is always there; the start
/// offset has six digits, and where it is 0 there is no EXT-X-START; session keys and ZOR-STREAM-INF are not written; and
/// the variants stand in the order of their bandwidths.
inline VELHLSParsedManifest rewrittenManifest(VELHLSParsedManifest manifest) {
    manifest.hasHeader = true;
    manifest.startPrecise = manifest.startPrecise && manifest.startTimeOffset != 0.0;
    const bool hasOffset = manifest.startTimeOffset != 0.0;
    manifest.startTimeOffset = hasOffset ? rewritten::startOffset(manifest.startTimeOffset) : -1.0;
    manifest.sessionKeys.clear();
    manifest.zorStreamInformation.clear();
    manifest.hasZORStreamInformation = false;
    for (auto& [type, groups] : manifest.renditions) {
        for (auto& [groupId, group] : groups) {
            for (auto& [name, rendition] : group)
                rendition = std::make_shared<VELHLSMediaStreamRendition>(rewrittenRendition(*rendition));
        }
    }
    manifest.streamVariants.clear();
    for (auto& [bandwidth, variant] : manifest.variants) {
        variant = std::make_shared<VELHLSMediaVariant>(rewrittenVariant(*variant));
        if (!variant->isIFrame) manifest.streamVariants.push_back(variant);
    }
    return manifest;
}

inline std::string renderedManifest(const VELHLSParsedManifest& manifest) {
    std::ostringstream text;
    const std::int32_t status = manifest.render(text);
    return status == 0 ? text.str() : "status " + std::to_string(status) + ": " + text.str();
}

/// Renders the manifest, reads the text again and compares. Empty when the two are equal but for what rendering is
/// documented not to keep, and the text is written the same a second time.
inline std::string differencesAfterRoundTrip(const VELHLSParsedManifest& original) {
    if (!reasonNotToBeRead(original).empty()) return {};
    const std::string text = renderedManifest(original);
    std::istringstream input(text);
    const auto reread = VELHLSParsedManifest::parseManifest(input, nullptr);
    if (reread == nullptr) return "not read again:\n" + text;
    const std::string expected = describe(rewrittenManifest(original));
    const std::string seen = describe(*reread);
    if (seen != expected) return "expected:\n" + expected + "\nseen:\n" + seen;
    // EXT-X-START is not written for an offset of 0, and is for the -1 that stands for none.
    if (original.startTimeOffset == 0.0) return {};
    const std::string again = renderedManifest(*reread);
    return again == text ? "" : "written differently the second time:\n" + text + "\n" + again;
}

}  // namespace playlist
