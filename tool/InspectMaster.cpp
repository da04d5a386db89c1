#include <algorithm>
#include <string>
#include <vector>

#include "tool/Describe.h"
#include "tool/Inspect.h"
#include "tool/Printable.h"
#include "tool/Table.h"

namespace tool {
namespace {

using Rendition = VELHLSMediaStreamRendition;

std::string unlessZero(std::uint64_t number) {
    return number == 0 ? "" : std::to_string(number);
}

std::string groupsOf(const VELHLSMediaVariant& variant) {
    std::vector<std::string> groups;
    for (const auto& [type, groupId] : variant.groupIds)
        groups.push_back(std::string(Rendition::textOf(type)) + "=" + groupId);
    return joined(groups);
}

std::string ratioOf(const VELHLSMediaVariant& variant) {
    return variant.nominalVideoBitrate == 0 ? "" : decimal(variant.getCVBRRatio());
}

std::string header(const VELHLSParsedManifest& manifest) {
    const std::size_t iFrames = manifest.variants.size() - manifest.streamVariants.size();
    std::string text = "master playlist\n";
    text += summaryLine("version", std::to_string(manifest.version));
    text += summaryLine("independent segments", manifest.independentSegments ? "yes" : "no");
    // The model does not tell an absent EXT-X-START from an offset of -1.
    const bool perhapsAbsent = manifest.startTimeOffset == -1.0 && !manifest.startPrecise;
    text += summaryLine("start offset", decimal(manifest.startTimeOffset) + " s" +
                                            (manifest.startPrecise ? ", precise" : "") +
                                            (perhapsAbsent ? " (also when there is no EXT-X-START)" : ""));
    text += summaryLine("variants", counted(manifest.streamVariants.size(), "stream") + ", " +
                                        counted(iFrames, "I-frame playlist"));
    return text;
}

std::string variants(const VELHLSParsedManifest& manifest) {
    const auto left = Table::Align::left;
    const auto right = Table::Align::right;
    Table table({"BANDWIDTH", "AVERAGE", "RESOLUTION", "CODECS", "NOMINAL VIDEO", "NOMINAL AUDIO",
                 "CVBR RATIO", "KIND", "GROUPS", "URI"},
                {right, right, right, left, right, right, right, left, left, left});
    for (const auto& [bandwidth, variant] : manifest.variants) {
        table.addRow({std::to_string(bandwidth), unlessZero(variant->averageBandwidth), variant->resolution,
                      variant->codecs, unlessZero(variant->nominalVideoBitrate),
                      unlessZero(variant->nominalAudioBitrate), ratioOf(*variant),
                      variant->isIFrame ? "I-frame" : "stream", groupsOf(*variant), variant->uri});
    }
    return "\nvariants by bandwidth (bits per second)\n" + table.text();
}

std::string flagsOf(const Rendition& rendition) {
    std::vector<std::string> flags;
    if (rendition.isDefault) flags.emplace_back("DEFAULT");
    if (rendition.autoSelect) flags.emplace_back("AUTOSELECT");
    if (rendition.forced) flags.emplace_back("FORCED");
    return joined(flags);
}

std::string languagesOf(const Rendition& rendition) {
    if (rendition.assocLanguage.empty()) return rendition.language;
    return rendition.language + " (associated " + rendition.assocLanguage + ")";
}

std::string group(const VELHLSParsedManifest::RenditionsByName& renditions) {
    const auto left = Table::Align::left;
    Table table({"NAME", "LANGUAGE", "FLAGS", "INSTREAM-ID", "TRACK TYPE", "CHARACTERISTICS", "URI"},
                std::vector<Table::Align>(7, left));
    for (const auto& [name, rendition] : renditions) {
        table.addRow({name, languagesOf(*rendition), flagsOf(*rendition), rendition->instreamId,
                      rendition->audioTrackType,
                      joined({rendition->characteristics.begin(), rendition->characteristics.end()}),
                      rendition->uri});
    }
    return table.text();
}

std::string renditionGroups(const VELHLSParsedManifest& manifest) {
    std::string text;
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, renditions] : groups) {
            text += "\n" + std::string(Rendition::textOf(type)) + " group " + quotedExcerpt(groupId) + "\n" +
                    group(renditions);
        }
    }
    return text;
}

std::string sessionData(const VELHLSParsedManifest& manifest) {
    if (manifest.sessionData.empty()) return {};
    Table table({"DATA-ID", "LANGUAGE", "VALUE", "URI"}, std::vector<Table::Align>(4, Table::Align::left));
    for (const auto& entry : manifest.sessionData) {
        table.addRow({entry->dataId, entry->language, entry->value, entry->uri});
    }
    return "\nsession data\n" + table.text();
}

std::string sessionKeys(const VELHLSParsedManifest& manifest) {
    if (manifest.sessionKeys.empty()) return {};
    std::string text = "\nsession keys\n";
    for (const auto& key : manifest.sessionKeys)
        text += "  " + printable(describe(*key)) + "\n";
    return text;
}

}  // namespace

std::string inspectMaster(const VELHLSParsedManifest& manifest) {
    return header(manifest) + variants(manifest) + renditionGroups(manifest) + sessionData(manifest) +
           sessionKeys(manifest);
}

}  // namespace tool
