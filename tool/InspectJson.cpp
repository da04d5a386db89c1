// Every record is taken apart by a structured binding, which names all of its fields: a field that is added to the
// model does not compile here until it is written too.
#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "tool/Inspect.h"
#include "tool/JsonText.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

/// Changes when what is written would no longer be read as before.
constexpr int formatVersion = 1;

/// JSON has no notation for what is no finite number: that is a text.
Json number(double value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value > 0.0 ? "Infinity" : "-Infinity";
    return value;
}

Json describe(const VELHLSByteRange& range);
Json describe(const VELHLSProtectionData& key);
Json describe(const VELHLSMISMap& map);
Json describe(const VELHLSMediaSegment& segment);
Json describe(const VELHLSMediaStream& stream);
Json describe(const VELHLSMediaStreamRendition& rendition);
Json describe(const VELHLSMediaVariant& variant);
Json describe(const VELHLSManifestSessionData& entry);
Json describe(const VELHLSZORStreamInformation& information);

template <typename Record>
Json describeUnlessNull(const std::shared_ptr<Record>& record) {
    return record == nullptr ? Json() : describe(*record);
}

template <typename Records>
Json describeAll(const Records& records) {
    Json list = Json::array();
    for (const auto& record : records)
        list.push_back(describe(*record));
    return list;
}

/// What no tag says is "NONE".
std::string_view playlistTypeText(VELHLSMediaStream::PlaylistType type) {
    return type == VELHLSMediaStream::None ? "NONE" : VELHLSMediaStream::textOf(type);
}

Json describe(const VELHLSByteRange& range) {
    const auto& [length, offset] = range;
    return {{"length", length}, {"offset", offset}};
}

Json describe(const VELHLSProtectionData& key) {
    const auto& [method, uri, iv, keyFormat, keyFormatVersions] = key;
    return {{"method", VELHLSProtectionData::textOf(method)},
            {"uri", uri},
            {"iv", iv},
            {"keyFormat", keyFormat},
            {"keyFormatVersions", keyFormatVersions}};
}

Json describe(const VELHLSMISMap& map) {
    const auto& [uri, byteRange] = map;
    return {{"uri", uri}, {"byteRange", describeUnlessNull(byteRange)}};
}

Json describe(const VELHLSMediaSegment& segment) {
    const auto& [duration, startTime, mediaSequenceNumber, discontinuitySequenceNumber, title, byteRange,
                 discontinuity, protectionData, misMap, programDateTime, uri, cueIn, cueOut, cueOutCont] =
        segment;
    return {{"duration", number(duration)},
            {"startTime", number(startTime)},
            {"mediaSequenceNumber", mediaSequenceNumber},
            {"discontinuitySequenceNumber", discontinuitySequenceNumber},
            {"title", title},
            {"byteRange", describeUnlessNull(byteRange)},
            {"discontinuity", discontinuity},
            {"protectionData", describeUnlessNull(protectionData)},
            {"misMap", describeUnlessNull(misMap)},
            {"programDateTime", number(programDateTime)},
            {"uri", uri},
            {"cueIn", cueIn},
            {"cueOut", cueOut},
            {"cueOutCont", cueOutCont}};
}

Json describe(const VELHLSMediaStream& stream) {
    const auto& [hasExtM3U, version, targetDuration, playlistType, mediaSequence, discontinuitySequence,
                 endList, iFramesOnly, independentSegments, startTimeOffset, startPrecise, segments,
                 discontinuitySeen, hlsDefineMap] = stream;
    Json variables = Json::object();
    // Sorted, since the define map has no order.
    for (const auto& [name, value] :
         std::map<std::string, std::string>(hlsDefineMap->begin(), hlsDefineMap->end())) {
        variables[name] = value;
    }
    return {{"hasExtM3U", hasExtM3U},
            {"version", version},
            {"targetDuration", number(targetDuration)},
            {"playlistType", playlistTypeText(playlistType)},
            {"mediaSequence", mediaSequence},
            {"discontinuitySequence", discontinuitySequence},
            {"endList", endList},
            {"iFramesOnly", iFramesOnly},
            {"independentSegments", independentSegments},
            {"startTimeOffset", number(startTimeOffset)},
            {"startPrecise", startPrecise},
            {"segments", describeAll(segments)},
            {"discontinuitySeen", discontinuitySeen},
            {"hlsDefineMap", variables}};
}

Json describe(const VELHLSMediaStreamRendition& rendition) {
    const auto& [type, uri, mediaStream, groupId, language, assocLanguage, name, isDefault, autoSelect,
                 forced, instreamId, audioTrackType, characteristics] = rendition;
    return {{"type", VELHLSMediaStreamRendition::textOf(type)},
            {"uri", uri},
            {"mediaStream", describeUnlessNull(mediaStream)},
            {"groupId", groupId},
            {"language", language},
            {"assocLanguage", assocLanguage},
            {"name", name},
            {"isDefault", isDefault},
            {"autoSelect", autoSelect},
            {"forced", forced},
            {"instreamId", instreamId},
            {"audioTrackType", audioTrackType},
            {"characteristics", characteristics}};
}

Json describe(const VELHLSMediaVariant& variant) {
    const auto& [bandwidth, averageBandwidth, codecs, resolution, programId, groupIds, uri, mediaStream,
                 isIFrame, nominalVideoBitrate, nominalAudioBitrate] = variant;
    Json groups = Json::object();
    for (const auto& [type, groupId] : groupIds)
        groups[std::string(VELHLSMediaStreamRendition::textOf(type))] = groupId;
    return {{"bandwidth", bandwidth},
            {"averageBandwidth", averageBandwidth},
            {"codecs", codecs},
            {"resolution", resolution},
            {"programId", programId},
            {"groupIds", groups},
            {"uri", uri},
            {"mediaStream", describeUnlessNull(mediaStream)},
            {"isIFrame", isIFrame},
            {"nominalVideoBitrate", nominalVideoBitrate},
            {"nominalAudioBitrate", nominalAudioBitrate}};
}

Json describe(const VELHLSManifestSessionData& entry) {
    const auto& [dataId, value, uri, language] = entry;
    return {{"dataId", dataId}, {"value", value}, {"uri", uri}, {"language", language}};
}

Json describe(const VELHLSZORStreamInformation& information) {
    const auto& [nominalVideoBitrate, nominalAudioBitrate] = information;
    return {{"nominalVideoBitrate", nominalVideoBitrate}, {"nominalAudioBitrate", nominalAudioBitrate}};
}

/// Type to group to name to rendition, as the model has them.
template <typename Renditions>
Json describeRenditions(const Renditions& renditions) {
    Json types = Json::object();
    for (const auto& [type, groups] : renditions) {
        Json& described = types[std::string(VELHLSMediaStreamRendition::textOf(type))];
        for (const auto& [groupId, group] : groups) {
            for (const auto& [name, rendition] : group)
                described[groupId][name] = describe(*rendition);
        }
    }
    return types;
}

Json describe(const VELHLSParsedManifest& manifest) {
    const auto& [hasHeader, version, renditions, streamVariants, variants, sessionData, zorStreamInformation,
                 sessionKeys, independentSegments, startTimeOffset, startPrecise, hasZORStreamInformation] =
        manifest;
    Json byBandwidth = Json::array();
    std::map<const VELHLSMediaVariant*, std::size_t> positions;
    for (const auto& [bandwidth, variant] : variants) {
        positions.emplace(variant.get(), byBandwidth.size());
        byBandwidth.push_back(describe(*variant));
    }
    Json inOrder = Json::array();
    for (const auto& variant : streamVariants)
        inOrder.push_back(positions.at(variant.get()));
    return {{"hasHeader", hasHeader},
            {"version", version},
            {"renditions", describeRenditions(renditions)},
            {"streamVariants", inOrder},
            {"variants", byBandwidth},
            {"sessionData", describeAll(sessionData)},
            {"zorStreamInformation", describeAll(zorStreamInformation)},
            {"sessionKeys", describeAll(sessionKeys)},
            {"independentSegments", independentSegments},
            {"startTimeOffset", number(startTimeOffset)},
            {"startPrecise", startPrecise},
            {"hasZORStreamInformation", hasZORStreamInformation}};
}

}  // namespace

std::string inspectAsJson(const VELHLSParsedManifest& manifest) {
    return jsonText({{"version", formatVersion}, {"kind", "master"}, {"playlist", describe(manifest)}});
}

std::string inspectAsJson(const VELHLSMediaStream& stream, const VELHLSParsingStatus& status) {
    return jsonText({{"version", formatVersion},
                     {"kind", "media"},
                     {"hasMediaPatterns", status.hasMediaPatterns},
                     {"playlist", describe(stream)}});
}

}  // namespace tool
