// Master playlists: the record, its variants, renditions, session data and session keys, and columns of these.
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Calls.h"
#include "Writing.h"

using velhls_c::fill;
using velhls_c::give;
using velhls_c::giveOne;
using velhls_c::stringOf;
using velhls_c::truthOf;

struct velhls_master {
    std::shared_ptr<VELHLSParsedManifest> manifest;
    /// Those of the manifest: the stream variants in their order, then the I-frame variants by bandwidth.
    std::vector<const VELHLSMediaVariant*> variants;
    /// Those of the manifest, by type, GROUP-ID and NAME.
    std::vector<const VELHLSMediaStreamRendition*> renditions;
    /// Nothing where the playlist was not parsed of a document.
    std::optional<VELHLSRecordLines> lines;
};

namespace {

void listVariants(velhls_master& master) {
    for (const auto& variant : master.manifest->streamVariants)
        master.variants.push_back(variant.get());
    for (const auto& [bandwidth, variant] : master.manifest->variants) {
        if (variant->isIFrame) master.variants.push_back(variant.get());
    }
}

void listRenditions(velhls_master& master) {
    for (const auto& [type, groups] : master.manifest->renditions) {
        for (const auto& [groupId, renditions] : groups) {
            for (const auto& [name, rendition] : renditions)
                master.renditions.push_back(rendition.get());
        }
    }
}

/// Stores the playlist that the parse made, or why there is none.
velhls_status giveParsed(std::unique_ptr<velhls_master> parsed, VELHLSReason reason, velhls_master** master,
                         velhls_error** error) {
    if (parsed->manifest == nullptr) {
        velhls_c::tell(error, std::move(reason));
        return VELHLS_REJECTED;
    }
    listVariants(*parsed);
    listRenditions(*parsed);
    *master = parsed.release();
    return VELHLS_OK;
}

/// The group that a variant names; the data is null when it names none.
velhls_string groupOf(const VELHLSMediaVariant& variant, VELHLSMediaStreamRendition::RenditionType type) {
    const auto found = variant.groupIds.find(type);
    return found == variant.groupIds.end() ? velhls_string{nullptr, 0} : stringOf(found->second);
}

velhls_variant structureOf(const VELHLSMediaVariant& variant) {
    velhls_variant value = {};
    value.uri = stringOf(variant.uri);
    value.bandwidth = variant.bandwidth;
    value.average_bandwidth = variant.averageBandwidth;
    value.codecs = stringOf(variant.codecs);
    value.resolution = stringOf(variant.resolution);
    value.program_id = variant.programId;
    value.is_i_frame = truthOf(variant.isIFrame);
    value.audio_group = groupOf(variant, VELHLSMediaStreamRendition::Audio);
    value.video_group = groupOf(variant, VELHLSMediaStreamRendition::Video);
    value.subtitles_group = groupOf(variant, VELHLSMediaStreamRendition::Subtitles);
    value.closed_captions_group = groupOf(variant, VELHLSMediaStreamRendition::ClosedCaptions);
    value.nominal_video_bitrate = variant.nominalVideoBitrate;
    value.nominal_audio_bitrate = variant.nominalAudioBitrate;
    return value;
}

velhls_rendition structureOf(const VELHLSMediaStreamRendition& rendition) {
    velhls_rendition value = {};
    value.type = static_cast<velhls_rendition_type>(rendition.type);
    value.is_default = truthOf(rendition.isDefault);
    value.auto_select = truthOf(rendition.autoSelect);
    value.forced = truthOf(rendition.forced);
    value.uri = stringOf(rendition.uri);
    value.group_id = stringOf(rendition.groupId);
    value.name = stringOf(rendition.name);
    value.language = stringOf(rendition.language);
    value.assoc_language = stringOf(rendition.assocLanguage);
    value.instream_id = stringOf(rendition.instreamId);
    value.audio_track_type = stringOf(rendition.audioTrackType);
    value.characteristic_count = rendition.characteristics.size();
    return value;
}

template <typename Value, typename ValueOf>
velhls_status fillVariants(const velhls_master* master, size_t first, size_t count, Value* values,
                           ValueOf valueOf) {
    if (master == nullptr) return VELHLS_INVALID_ARGUMENT;
    return fill(master->variants, first, count, values, valueOf);
}

}  // namespace

velhls_status velhls_master_parse(const char* text, size_t length, velhls_master** master,
                                  velhls_error** error) {
    velhls_c::clearError(error);
    if (!velhls_c::clear(master) || !velhls_c::isText(text, length)) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::guarded([&] {
        VELHLSReason reason;
        auto parsed = std::make_unique<velhls_master>();
        parsed->manifest = VELHLSParsedManifest::parseManifest(velhls_c::viewOf(text, length), &reason);
        return giveParsed(std::move(parsed), std::move(reason), master, error);
    });
}

velhls_status velhls_master_parse_document(const velhls_document* document, velhls_master** master,
                                           velhls_error** error) {
    velhls_c::clearError(error);
    if (!velhls_c::clear(master) || document == nullptr) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::guarded([&] {
        VELHLSReason reason;
        auto parsed = std::make_unique<velhls_master>();
        parsed->manifest = parsed->lines.emplace().parseManifest(document->document, &reason);
        return giveParsed(std::move(parsed), std::move(reason), master, error);
    });
}

void velhls_master_free(velhls_master* master) {
    delete master;
}

velhls_status velhls_master_get(const velhls_master* master, velhls_master_info* info) {
    if (master == nullptr) return VELHLS_INVALID_ARGUMENT;
    const VELHLSParsedManifest& manifest = *master->manifest;
    velhls_master_info value = {};
    value.has_header = truthOf(manifest.hasHeader);
    value.version = manifest.version;
    value.independent_segments = truthOf(manifest.independentSegments);
    value.start_precise = truthOf(manifest.startPrecise);
    value.start_time_offset = manifest.startTimeOffset;
    value.variant_count = master->variants.size();
    value.i_frame_variant_count = master->variants.size() - manifest.streamVariants.size();
    value.rendition_count = master->renditions.size();
    value.session_data_count = manifest.sessionData.size();
    value.session_key_count = manifest.sessionKeys.size();
    return give(value, info);
}

size_t velhls_master_variant_count(const velhls_master* master) {
    return master == nullptr ? 0 : master->variants.size();
}

velhls_status velhls_master_variant(const velhls_master* master, size_t index, velhls_variant* variant) {
    if (master == nullptr) return VELHLS_INVALID_ARGUMENT;
    return giveOne(master->variants, index, variant,
                   [](const VELHLSMediaVariant* found) { return structureOf(*found); });
}

velhls_status velhls_master_variant_lines(const velhls_master* master, size_t index, size_t* first,
                                          size_t* last) {
    if (master == nullptr) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::giveLines(master->lines, master->variants, index, first, last);
}

size_t velhls_master_rendition_count(const velhls_master* master) {
    return master == nullptr ? 0 : master->renditions.size();
}

velhls_status velhls_master_rendition(const velhls_master* master, size_t index,
                                      velhls_rendition* rendition) {
    if (master == nullptr) return VELHLS_INVALID_ARGUMENT;
    return giveOne(master->renditions, index, rendition,
                   [](const VELHLSMediaStreamRendition* found) { return structureOf(*found); });
}

velhls_status velhls_master_rendition_lines(const velhls_master* master, size_t index, size_t* first,
                                            size_t* last) {
    if (master == nullptr) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::giveLines(master->lines, master->renditions, index, first, last);
}

velhls_status velhls_master_characteristics(const velhls_master* master, size_t index, velhls_string* values,
                                            size_t count) {
    if (master == nullptr || (values == nullptr && count != 0)) return VELHLS_INVALID_ARGUMENT;
    if (index >= master->renditions.size()) return VELHLS_OUT_OF_RANGE;
    const auto& characteristics = master->renditions[index]->characteristics;
    if (count != characteristics.size()) return VELHLS_OUT_OF_RANGE;
    for (const std::string& characteristic : characteristics)
        *values++ = stringOf(characteristic);
    return VELHLS_OK;
}

velhls_status velhls_master_session_data(const velhls_master* master, size_t index,
                                         velhls_session_data* data) {
    if (master == nullptr) return VELHLS_INVALID_ARGUMENT;
    return giveOne(master->manifest->sessionData, index, data, [](const auto& found) {
        velhls_session_data value = {};
        value.data_id = stringOf(found->dataId);
        value.value = stringOf(found->value);
        value.uri = stringOf(found->uri);
        value.language = stringOf(found->language);
        return value;
    });
}

velhls_status velhls_master_session_key(const velhls_master* master, size_t index, const velhls_key** key) {
    if (!velhls_c::clear(key) || master == nullptr) return VELHLS_INVALID_ARGUMENT;
    if (index >= master->manifest->sessionKeys.size()) return VELHLS_OUT_OF_RANGE;
    *key = reinterpret_cast<const velhls_key*>(master->manifest->sessionKeys[index].get());
    return VELHLS_OK;
}

velhls_status velhls_master_render(const velhls_master* master, velhls_text** text) {
    if (!velhls_c::clear(text) || master == nullptr) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::render(*master->manifest, text);
}

velhls_status velhls_master_write(const velhls_master* master, const velhls_write_options* options,
                                  velhls_text** text, velhls_error** error) {
    velhls_c::clearError(error);
    if (!velhls_c::clear(text) || master == nullptr) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::write(*master->manifest, options, text, error);
}

velhls_status velhls_master_variant_uris(const velhls_master* master, size_t first, size_t count,
                                         velhls_string* values) {
    return fillVariants(master, first, count, values,
                        [](const auto& variant) { return stringOf(variant.uri); });
}

velhls_status velhls_master_bandwidths(const velhls_master* master, size_t first, size_t count,
                                       uint64_t* values) {
    return fillVariants(master, first, count, values, [](const auto& variant) { return variant.bandwidth; });
}

velhls_status velhls_master_average_bandwidths(const velhls_master* master, size_t first, size_t count,
                                               uint64_t* values) {
    return fillVariants(master, first, count, values,
                        [](const auto& variant) { return variant.averageBandwidth; });
}

velhls_status velhls_master_codecs(const velhls_master* master, size_t first, size_t count,
                                   velhls_string* values) {
    return fillVariants(master, first, count, values,
                        [](const auto& variant) { return stringOf(variant.codecs); });
}

velhls_status velhls_master_resolutions(const velhls_master* master, size_t first, size_t count,
                                        velhls_string* values) {
    return fillVariants(master, first, count, values,
                        [](const auto& variant) { return stringOf(variant.resolution); });
}

velhls_status velhls_master_rendition_uris(const velhls_master* master, size_t first, size_t count,
                                           velhls_string* values) {
    if (master == nullptr) return VELHLS_INVALID_ARGUMENT;
    return fill(master->renditions, first, count, values,
                [](const auto& rendition) { return stringOf(rendition.uri); });
}
