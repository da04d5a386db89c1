#pragma once

#include <sstream>
#include <string>

#include "velhls/VELHLS.h"

/// A manifest written down field by field, so that two models compare as two texts. It is not playlist text,
/// and it does not go through `render`: what rendering drops or reorders shows here.
namespace playlist {

inline std::string describe(const VELHLSMediaStreamRendition& rendition) {
    std::ostringstream text;
    text << "type=" << rendition.type << " uri=" << rendition.uri << " group=" << rendition.groupId
         << " language=" << rendition.language << " assocLanguage=" << rendition.assocLanguage
         << " name=" << rendition.name << " default=" << rendition.isDefault
         << " autoSelect=" << rendition.autoSelect << " forced=" << rendition.forced
         << " instreamId=" << rendition.instreamId << " trackType=" << rendition.audioTrackType
         << " attached=" << (rendition.mediaStream != nullptr) << " characteristics=";
    for (const std::string& characteristic : rendition.characteristics) {
        text << '<' << characteristic << '>';
    }
    return text.str();
}

inline std::string describe(const VELHLSMediaVariant& variant) {
    std::ostringstream text;
    text << "bandwidth=" << variant.bandwidth << " average=" << variant.averageBandwidth
         << " codecs=" << variant.codecs << " resolution=" << variant.resolution
         << " program=" << variant.programId << " uri=" << variant.uri << " iFrame=" << variant.isIFrame
         << " nominalVideo=" << variant.nominalVideoBitrate << " nominalAudio=" << variant.nominalAudioBitrate
         << " attached=" << (variant.mediaStream != nullptr) << " groups=";
    for (const auto& [type, groupId] : variant.groupIds) {
        text << type << '<' << groupId << '>';
    }
    return text.str();
}

inline std::string describe(const VELHLSManifestSessionData& entry) {
    return "dataId=" + entry.dataId + " value=" + entry.value + " uri=" + entry.uri +
           " language=" + entry.language;
}

inline std::string describe(const VELHLSZORStreamInformation& information) {
    return "nominalVideo=" + std::to_string(information.nominalVideoBitrate) +
           " nominalAudio=" + std::to_string(information.nominalAudioBitrate);
}

inline std::string describe(const VELHLSProtectionData& key) {
    std::ostringstream text;
    text << "method=" << key.method << " uri=" << key.uri << " iv=" << key.iv << " format=" << key.keyFormat
         << " versions=";
    for (const int version : key.keyFormatVersions) {
        text << version << '/';
    }
    return text.str();
}

template <typename Record>
std::string describeLine(const std::string& title, const std::shared_ptr<Record>& record) {
    return title + (record == nullptr ? "null" : describe(*record)) + '\n';
}

inline std::string describe(const VELHLSParsedManifest& manifest) {
    std::ostringstream text;
    text.precision(17);
    text << "header=" << manifest.hasHeader << "\nversion=" << manifest.version
         << "\nindependent=" << manifest.independentSegments << "\noffset=" << manifest.startTimeOffset
         << "\nprecise=" << manifest.startPrecise << "\npaired=" << manifest.hasZORStreamInformation << '\n';
    for (const auto& [type, groups] : manifest.renditions) {
        for (const auto& [groupId, group] : groups) {
            text << "group " << type << ' ' << groupId << '\n';
            for (const auto& [name, rendition] : group) {
                text << describeLine("  " + name + ": ", rendition);
            }
        }
    }
    for (const auto& variant : manifest.streamVariants) {
        text << describeLine("stream: ", variant);
    }
    for (const auto& [bandwidth, variant] : manifest.variants) {
        text << describeLine("variant " + std::to_string(bandwidth) + ": ", variant);
    }
    for (const auto& entry : manifest.sessionData) {
        text << describeLine("sessionData: ", entry);
    }
    for (const auto& information : manifest.zorStreamInformation) {
        text << describeLine("streamInformation: ", information);
    }
    for (const auto& key : manifest.sessionKeys) {
        text << describeLine("sessionKey: ", key);
    }
    return text.str();
}

}  // namespace playlist
