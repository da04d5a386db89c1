// Master playlists, variants, renditions and session data.
#include <sstream>

#include "Common.h"

namespace velhls_python {

namespace {

using Variant = VELHLSMediaVariant;
using Rendition = VELHLSMediaStreamRendition;
using SessionData = VELHLSManifestSessionData;
using Manifest = VELHLSParsedManifest;

constexpr Rendition::RenditionType allTypes[] = {Rendition::Audio, Rendition::Video, Rendition::Subtitles,
                                                 Rendition::ClosedCaptions};

Rendition::RenditionType typeNamed(const std::string& text) {
    for (const Rendition::RenditionType type : allTypes) {
        if (Rendition::textOf(type) == text) return type;
    }
    throw py::value_error("expected AUDIO, VIDEO, SUBTITLES or CLOSED-CAPTIONS, seen " + text);
}

/// A group that a variant names, or None.
template <typename Class>
void defGroup(Class& made, const char* name, Rendition::RenditionType type, const char* documentation) {
    made.def_property(
        name,
        [type](const Variant& variant) -> py::object {
            const auto found = variant.groupIds.find(type);
            return found == variant.groupIds.end() ? py::object(py::none()) : strOf(found->second);
        },
        [type](Variant& variant, const py::object& group) {
            if (group.is_none()) {
                variant.groupIds.erase(type);
            } else {
                variant.groupIds[type] = bytesOf(group);
            }
        },
        documentation);
}

void defVariant(py::module_& module) {
    py::class_<Variant, std::shared_ptr<Variant>> made(
        module, "Variant",
        "One variant: EXT-X-STREAM-INF or EXT-X-I-FRAME-STREAM-INF (RFC 8216, section 4.3.4.2).");
    made.def(py::init<>());
    defText(made, "uri", &Variant::uri, "URI of the variant's media playlist, not resolved.");
    defValue(made, "bandwidth", &Variant::bandwidth, "BANDWIDTH: peak bits per second.");
    defValue(made, "average_bandwidth", &Variant::averageBandwidth,
             "AVERAGE-BANDWIDTH: bits per second; 0 when absent.");
    defText(made, "codecs", &Variant::codecs, "CODECS, not split; empty when absent.");
    defText(made, "resolution", &Variant::resolution, "RESOLUTION as it was written; empty when absent.");
    defValue(made, "program_id", &Variant::programId, "PROGRAM-ID; 0 when absent.");
    defValue(made, "is_i_frame", &Variant::isIFrame, "True for EXT-X-I-FRAME-STREAM-INF.");
    defGroup(made, "audio", Rendition::Audio, "AUDIO: a GROUP-ID; None when absent.");
    defGroup(made, "video", Rendition::Video, "VIDEO: a GROUP-ID; None when absent.");
    defGroup(made, "subtitles", Rendition::Subtitles, "SUBTITLES: a GROUP-ID; None when absent.");
    defGroup(made, "closed_captions", Rendition::ClosedCaptions,
             "CLOSED-CAPTIONS: a GROUP-ID; None when absent, and for NONE.");
    defValue(made, "nominal_video_bitrate", &Variant::nominalVideoBitrate,
             "Of ZOR-STREAM-INF (vendor extension): bits per second; 0 without one.");
    defValue(made, "nominal_audio_bitrate", &Variant::nominalAudioBitrate, "Likewise.");
}

void defRendition(py::module_& module) {
    py::class_<Rendition, std::shared_ptr<Rendition>> made(
        module, "Rendition", "One alternative rendition: EXT-X-MEDIA (RFC 8216, section 4.3.4.1).");
    made.def(py::init<>());
    made.def_property(
        "type", [](const Rendition& rendition) { return strOf(Rendition::textOf(rendition.type)); },
        [](Rendition& rendition, const py::object& text) { rendition.type = typeNamed(bytesOf(text)); },
        "TYPE: \"AUDIO\", \"VIDEO\", \"SUBTITLES\" or \"CLOSED-CAPTIONS\"; empty as long as none is set.");
    defText(made, "uri", &Rendition::uri,
            "URI of its media playlist, not resolved; empty when there is none.");
    defText(made, "group_id", &Rendition::groupId, "GROUP-ID.");
    defText(made, "name", &Rendition::name, "NAME.");
    defText(made, "language", &Rendition::language, "LANGUAGE; empty when absent.");
    defText(made, "assoc_language", &Rendition::assocLanguage, "ASSOC-LANGUAGE; empty when absent.");
    defValue(made, "is_default", &Rendition::isDefault, "DEFAULT.");
    defValue(made, "auto_select", &Rendition::autoSelect, "AUTOSELECT.");
    defValue(made, "forced", &Rendition::forced, "FORCED.");
    defText(made, "instream_id", &Rendition::instreamId, "INSTREAM-ID; empty when absent.");
    defText(made, "audio_track_type", &Rendition::audioTrackType, "AUDIO-TRACK-TYPE (vendor extension).");
    made.def_property(
        "characteristics",
        [](const Rendition& rendition) {
            py::list texts;
            for (const std::string& characteristic : rendition.characteristics)
                texts.append(strOf(characteristic));
            return texts;
        },
        [](Rendition& rendition, const py::iterable& texts) {
            rendition.characteristics.clear();
            for (const py::handle text : texts)
                rendition.characteristics.insert(bytesOf(text));
        },
        "CHARACTERISTICS, cut at its commas and sorted: a copy.");
}

void defSessionData(py::module_& module) {
    py::class_<SessionData, std::shared_ptr<SessionData>> made(
        module, "SessionData", "One piece of session data: EXT-X-SESSION-DATA (RFC 8216, section 4.3.4.4).");
    made.def(py::init<>());
    defText(made, "data_id", &SessionData::dataId, "DATA-ID.");
    defText(made, "value", &SessionData::value, "VALUE; empty when the data is given by URI.");
    defText(made, "uri", &SessionData::uri, "URI of a JSON resource; empty when the data is given by VALUE.");
    defText(made, "language", &SessionData::language, "LANGUAGE; empty when absent.");
}

/// A property of the manifest itself.
template <typename Class, typename Value>
void defManifestValue(Class& made, const char* name, Value Manifest::*member, const char* documentation) {
    made.def_property(
        name, [member](const MasterPlaylist& playlist) { return (*playlist.manifest).*member; },
        [member](MasterPlaylist& playlist, const Value& value) { (*playlist.manifest).*member = value; },
        documentation);
}

template <typename PlaylistClass>
void defMasterFields(PlaylistClass& made) {
    defManifestValue(made, "has_header", &Manifest::hasHeader, "\"#EXTM3U\" was read.");
    defManifestValue(made, "version", &Manifest::version, "EXT-X-VERSION.");
    defManifestValue(made, "independent_segments", &Manifest::independentSegments,
                     "EXT-X-INDEPENDENT-SEGMENTS was read.");
    defManifestValue(made, "start_time_offset", &Manifest::startTimeOffset,
                     "TIME-OFFSET of EXT-X-START in seconds; -1 when there is none.");
    defManifestValue(made, "start_precise", &Manifest::startPrecise, "PRECISE=YES of EXT-X-START.");
    defListProperty(made, "variants", &MasterPlaylist::variants,
                    "The EXT-X-STREAM-INF variants, in their order.");
    defListProperty(made, "i_frame_variants", &MasterPlaylist::iFrameVariants,
                    "The I-frame variants, by bandwidth.");
    defListProperty(made, "renditions", &MasterPlaylist::renditions,
                    "The renditions, by type, GROUP-ID and NAME.");
    defListProperty(made, "session_data", &MasterPlaylist::sessionData,
                    "EXT-X-SESSION-DATA, in their order.");
    defListProperty(made, "session_keys", &MasterPlaylist::sessionKeys, "EXT-X-SESSION-KEY, in their order.");
}

}  // namespace

MasterPlaylist::MasterPlaylist(std::shared_ptr<VELHLSParsedManifest> parsed)
    : manifest(std::move(parsed)),
      variants(manifest->streamVariants),
      sessionData(manifest->sessionData),
      sessionKeys(manifest->sessionKeys) {
    for (const auto& [bandwidth, variant] : manifest->variants) {
        if (variant->isIFrame) iFrameVariants.push_back(variant);
    }
    for (const auto& [type, groups] : manifest->renditions) {
        for (const auto& [groupId, byName] : groups) {
            for (const auto& [name, rendition] : byName)
                renditions.push_back(rendition);
        }
    }
}

bool MasterPlaylist::hasItsVariants() const {
    std::vector<std::shared_ptr<Variant>> iFrames;
    for (const auto& [bandwidth, variant] : manifest->variants) {
        if (bandwidth != variant->bandwidth) return false;
        if (variant->isIFrame) iFrames.push_back(variant);
    }
    return manifest->streamVariants == variants && iFrames == iFrameVariants &&
           manifest->variants.size() == variants.size() + iFrames.size();
}

const VELHLSParsedManifest& MasterPlaylist::current() const {
    // What was parsed and not changed keeps the order of equal bandwidths.
    if (!hasItsVariants()) {
        manifest->streamVariants = variants;
        manifest->variants.clear();
        for (const auto& variant : variants)
            manifest->variants.emplace(variant->bandwidth, variant);
        for (const auto& variant : iFrameVariants)
            manifest->variants.emplace(variant->bandwidth, variant);
    }
    manifest->renditions.clear();
    for (const auto& rendition : renditions) {
        const bool isNew = manifest->renditions[rendition->type][rendition->groupId]
                               .emplace(rendition->name, rendition)
                               .second;
        if (!isNew) {
            throw py::value_error("two renditions have one TYPE, GROUP-ID and NAME: " +
                                  std::string(Rendition::textOf(rendition->type)) + " " + rendition->groupId +
                                  " " + rendition->name);
        }
    }
    manifest->sessionData = sessionData;
    manifest->sessionKeys = sessionKeys;
    return *manifest;
}

void defMaster(py::module_& module) {
    defVariant(module);
    defRendition(module);
    defSessionData(module);
    defList<MasterPlaylist, Variant>(module, "VariantList",
                                     "Variants of a master playlist, changed in place.");
    defList<MasterPlaylist, Rendition>(module, "RenditionList",
                                       "Renditions of a master playlist, changed in place.");
    defList<MasterPlaylist, SessionData>(module, "SessionDataList", "Session data, changed in place.");
    defList<MasterPlaylist, VELHLSProtectionData>(module, "KeyList", "Session keys, changed in place.");
    py::class_<MasterPlaylist, std::shared_ptr<MasterPlaylist>> made(
        module, "MasterPlaylist",
        "One master playlist: its variants, renditions, session data and keys (RFC 8216, section 4.3.4).");
    made.def(py::init<>());
    defMasterFields(made);
    made.def(
        "__len__", [](const MasterPlaylist& playlist) { return playlist.variants.size(); },
        "The number of EXT-X-STREAM-INF variants.");
    made.def(
        "validate", [](const MasterPlaylist& playlist) { return playlist.current().validate(); },
        "Whether the records keep the rules that bind them to each other.");
    made.def(
        "render",
        [](const MasterPlaylist& playlist) {
            std::ostringstream out;
            if (playlist.current().render(out) != 0) throw py::value_error("the playlist is not valid");
            return strOf(out.str());
        },
        "The playlist as text, as the models write it. ValueError when it is not valid.");
    made.def(
        "write",
        [](const MasterPlaylist& playlist, bool noClosedCaptions, bool nominalBitrates) {
            VELHLSWriterOptions options;
            options.noClosedCaptions = noClosedCaptions;
            options.nominalBitrates = nominalBitrates;
            std::ostringstream out;
            const auto refused = VELHLSPlaylistWriter::write(playlist.current(), out, options);
            if (refused) throw py::value_error(*refused);
            return strOf(out.str());
        },
        py::kw_only(), py::arg("no_closed_captions") = false, py::arg("nominal_bitrates") = false,
        "The playlist as text as RFC 8216 wants it. ValueError, which says why, for what cannot be written "
        "so.");
}

}  // namespace velhls_python
