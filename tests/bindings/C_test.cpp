// libvelhls-c beside what it stands for: each field of each structure and each value of each column is that of the C++ object,
// for all examples; and what a caller does wrong is a status.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

#include "tests/support/Corpus.h"
#include "tests/support/PlaylistText.h"
#include "velhls.h"

namespace {

/// A handle that frees itself.
template <typename Handle, void (*release)(Handle*)>
class Owned {
  public:
    Owned() = default;
    ~Owned() { release(handle_); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    /// Where a call stores what it makes; what was there is freed.
    Handle** out() {
        release(handle_);
        handle_ = nullptr;
        return &handle_;
    }
    operator Handle*() const { return handle_; }

  private:
    Handle* handle_ = nullptr;
};

using Text = Owned<velhls_text, velhls_text_free>;
using Error = Owned<velhls_error, velhls_error_free>;
using Document = Owned<velhls_document, velhls_document_free>;
using Attributes = Owned<velhls_attributes, velhls_attributes_free>;
using Uris = Owned<velhls_uris, velhls_uris_free>;
using Structure = Owned<velhls_structure, velhls_structure_free>;
using Edits = Owned<velhls_edits, velhls_edits_free>;
using Media = Owned<velhls_media, velhls_media_free>;
using Master = Owned<velhls_master, velhls_master_free>;
using Report = Owned<velhls_report, velhls_report_free>;
using Comparison = Owned<velhls_comparison, velhls_comparison_free>;
using Presentation = Owned<velhls_presentation, velhls_presentation_free>;
using Mended = Owned<velhls_mended, velhls_mended_free>;

std::string textOf(velhls_string string) {
    EXPECT_NE(string.data, nullptr);
    return std::string(string.data, string.length);
}

std::string textOf(const velhls_text* text) {
    return std::string(velhls_text_data(text), velhls_text_length(text));
}

/// "line:column:length: message [rule]"
std::string textOf(const velhls_reason& reason) {
    return std::to_string(reason.line) + ":" + std::to_string(reason.column) + ":" +
           std::to_string(reason.length) + ": " + textOf(reason.message) + " [" + textOf(reason.rule) + "]";
}

std::string textOf(const VELHLSReason& reason) {
    return std::to_string(reason.line) + ":" + std::to_string(reason.column) + ":" +
           std::to_string(reason.length) + ": " + reason.message + " [" + reason.ruleId + "]";
}

std::string messageOf(const velhls_error* error) {
    velhls_reason reason = VELHLS_INIT(velhls_reason);
    EXPECT_EQ(velhls_error_reason(error, &reason), VELHLS_OK);
    return textOf(reason.message);
}

velhls_string stringOf(std::string_view text) {
    return {text.data(), text.size()};
}

void makeDocument(Document& document, const std::string& text) {
    ASSERT_EQ(velhls_document_new(text.data(), text.size(), document.out()), VELHLS_OK);
}

void expectSameKey(const velhls_key* key, const VELHLSProtectionData* expected) {
    ASSERT_EQ(key == nullptr, expected == nullptr);
    if (key == nullptr) return;
    velhls_key_info info = VELHLS_INIT(velhls_key_info);
    ASSERT_EQ(velhls_key_get(key, &info), VELHLS_OK);
    EXPECT_EQ(info.method, expected->method);
    EXPECT_EQ(textOf(info.uri), expected->uri);
    EXPECT_EQ(textOf(info.iv), expected->iv);
    EXPECT_EQ(textOf(info.format), expected->keyFormat);
    EXPECT_EQ(std::vector<std::int32_t>(info.versions, info.versions + info.version_count),
              expected->keyFormatVersions);
}

void expectSameMap(const velhls_map* map, const VELHLSMISMap* expected) {
    ASSERT_EQ(map == nullptr, expected == nullptr);
    if (map == nullptr) return;
    velhls_map_info info = VELHLS_INIT(velhls_map_info);
    ASSERT_EQ(velhls_map_get(map, &info), VELHLS_OK);
    EXPECT_EQ(textOf(info.uri), expected->uri);
    EXPECT_EQ(info.has_byte_range != 0, expected->byteRange != nullptr);
    EXPECT_EQ(info.byte_range_length, expected->byteRange == nullptr ? 0 : expected->byteRange->length);
    EXPECT_EQ(info.byte_range_offset, expected->byteRange == nullptr ? -1 : expected->byteRange->offset);
}

void expectSameSegment(const velhls_segment& segment, const VELHLSMediaSegment& expected) {
    EXPECT_EQ(segment.size, sizeof(velhls_segment));
    EXPECT_EQ(textOf(segment.uri), expected.uri);
    EXPECT_EQ(textOf(segment.title), expected.title);
    EXPECT_EQ(segment.duration, expected.duration);
    EXPECT_EQ(segment.start_time, expected.startTime);
    EXPECT_EQ(segment.program_date_time, expected.programDateTime);
    EXPECT_EQ(segment.media_sequence, expected.mediaSequenceNumber);
    EXPECT_EQ(segment.discontinuity_sequence, expected.discontinuitySequenceNumber);
    EXPECT_EQ(segment.discontinuity != 0, expected.discontinuity);
    EXPECT_EQ(segment.has_byte_range != 0, expected.byteRange != nullptr);
    EXPECT_EQ(segment.byte_range_length, expected.byteRange == nullptr ? 0 : expected.byteRange->length);
    EXPECT_EQ(segment.byte_range_offset, expected.byteRange == nullptr ? -1 : expected.byteRange->offset);
    expectSameKey(segment.key, expected.protectionData.get());
    expectSameMap(segment.map, expected.misMap.get());
    EXPECT_EQ(textOf(segment.cue_out), expected.cueOut);
    EXPECT_EQ(textOf(segment.cue_out_cont), expected.cueOutCont);
    EXPECT_EQ(segment.cue_in != 0, expected.cueIn);
}

/// Every column of all segments, beside the structures of them.
void expectSameColumns(const velhls_media* media, const std::vector<velhls_segment>& segments) {
    const std::size_t count = segments.size();
    std::vector<double> durations(count), starts(count), dates(count);
    std::vector<std::uint64_t> sequences(count), discontinuitySequences(count);
    std::vector<std::uint8_t> discontinuities(count);
    std::vector<std::int64_t> lengths(count), offsets(count);
    std::vector<velhls_string> uris(count), titles(count);
    std::vector<const velhls_key*> keys(count);
    std::vector<const velhls_map*> maps(count);
    std::vector<std::size_t> ends(count);
    Text joined;
    ASSERT_EQ(velhls_media_durations(media, 0, count, durations.data()), VELHLS_OK);
    ASSERT_EQ(velhls_media_start_times(media, 0, count, starts.data()), VELHLS_OK);
    ASSERT_EQ(velhls_media_program_date_times(media, 0, count, dates.data()), VELHLS_OK);
    ASSERT_EQ(velhls_media_sequences(media, 0, count, sequences.data()), VELHLS_OK);
    ASSERT_EQ(velhls_media_discontinuity_sequences(media, 0, count, discontinuitySequences.data()),
              VELHLS_OK);
    ASSERT_EQ(velhls_media_discontinuities(media, 0, count, discontinuities.data()), VELHLS_OK);
    ASSERT_EQ(velhls_media_byte_ranges(media, 0, count, lengths.data(), offsets.data()), VELHLS_OK);
    ASSERT_EQ(velhls_media_uris(media, 0, count, uris.data()), VELHLS_OK);
    ASSERT_EQ(velhls_media_titles(media, 0, count, titles.data()), VELHLS_OK);
    ASSERT_EQ(velhls_media_keys(media, 0, count, keys.data()), VELHLS_OK);
    ASSERT_EQ(velhls_media_maps(media, 0, count, maps.data()), VELHLS_OK);
    ASSERT_EQ(velhls_media_joined_uris(media, 0, count, joined.out(), ends.data()), VELHLS_OK);
    std::string all;
    for (std::size_t index = 0; index < count; ++index) {
        const velhls_segment& segment = segments[index];
        EXPECT_EQ(durations[index], segment.duration);
        EXPECT_EQ(starts[index], segment.start_time);
        EXPECT_EQ(dates[index], segment.program_date_time);
        EXPECT_EQ(sequences[index], segment.media_sequence);
        EXPECT_EQ(discontinuitySequences[index], segment.discontinuity_sequence);
        EXPECT_EQ(discontinuities[index], segment.discontinuity);
        EXPECT_EQ(lengths[index], segment.has_byte_range != 0 ? segment.byte_range_length : -1);
        EXPECT_EQ(offsets[index], segment.byte_range_offset);
        EXPECT_EQ(uris[index].data, segment.uri.data);
        EXPECT_EQ(titles[index].data, segment.title.data);
        EXPECT_EQ(keys[index], segment.key);
        EXPECT_EQ(maps[index], segment.map);
        all += textOf(segment.uri);
        EXPECT_EQ(ends[index], all.size());
    }
    EXPECT_EQ(textOf(joined), all);
}

/// What `render` and the writer make of a model, and what the library makes of it.
template <typename Model, typename Handle>
void expectSameTexts(const Model& model, const Handle* handle,
                     velhls_status (*render)(const Handle*, velhls_text**),
                     velhls_status (*write)(const Handle*, const velhls_write_options*, velhls_text**,
                                            velhls_error**)) {
    Text text;
    std::ostringstream rendered;
    ASSERT_EQ(model.render(rendered), 0);
    ASSERT_EQ(render(handle, text.out()), VELHLS_OK);
    EXPECT_EQ(textOf(text), rendered.str());
    std::ostringstream written;
    Error error;
    const auto refused = VELHLSPlaylistWriter::write(model, written);
    const velhls_status status = write(handle, nullptr, text.out(), error.out());
    EXPECT_EQ(status, refused ? VELHLS_REFUSED : VELHLS_OK);
    if (refused) {
        EXPECT_EQ(messageOf(error), *refused);
        EXPECT_EQ(text, nullptr);
    } else {
        EXPECT_EQ(textOf(text), written.str());
    }
}

void expectSameMedia(const velhls_media* media, const VELHLSMediaStream& expected) {
    velhls_media_info info = VELHLS_INIT(velhls_media_info);
    ASSERT_EQ(velhls_media_get(media, &info), VELHLS_OK);
    EXPECT_EQ(info.has_header != 0, expected.hasExtM3U);
    EXPECT_EQ(info.version, expected.version);
    EXPECT_EQ(info.target_duration, expected.targetDuration);
    EXPECT_EQ(info.playlist_type, expected.playlistType);
    EXPECT_EQ(info.end_list != 0, expected.endList);
    EXPECT_EQ(info.media_sequence, expected.mediaSequence);
    EXPECT_EQ(info.discontinuity_sequence, expected.discontinuitySequence);
    EXPECT_EQ(info.i_frames_only != 0, expected.iFramesOnly);
    EXPECT_EQ(info.independent_segments != 0, expected.independentSegments);
    EXPECT_EQ(info.start_time_offset, expected.startTimeOffset);
    EXPECT_EQ(info.start_precise != 0, expected.startPrecise);
    EXPECT_EQ(info.discontinuity_seen != 0, expected.discontinuitySeen);
    ASSERT_EQ(info.segment_count, expected.segments.size());
    ASSERT_EQ(info.variable_count, expected.hlsDefineMap->size());
    for (std::size_t index = 0; index < info.variable_count; ++index) {
        velhls_string name = {};
        velhls_string value = {};
        ASSERT_EQ(velhls_media_variable(media, index, &name, &value), VELHLS_OK);
        EXPECT_EQ(textOf(value), expected.hlsDefineMap->at(textOf(name)));
    }
    std::vector<velhls_segment> segments(info.segment_count, VELHLS_INIT(velhls_segment));
    for (std::size_t index = 0; index < segments.size(); ++index) {
        ASSERT_EQ(velhls_media_segment(media, index, &segments[index]), VELHLS_OK);
        expectSameSegment(segments[index], *expected.segments[index]);
    }
    velhls_segment beyond = VELHLS_INIT(velhls_segment);
    EXPECT_EQ(velhls_media_segment(media, segments.size(), &beyond), VELHLS_OUT_OF_RANGE);
    expectSameColumns(media, segments);
    expectSameTexts(expected, media, velhls_media_render, velhls_media_write);
}

std::string groupOf(velhls_string group) {
    return group.data == nullptr ? "(none)" : textOf(group);
}

std::string groupOf(const VELHLSMediaVariant& variant, VELHLSMediaStreamRendition::RenditionType type) {
    const auto found = variant.groupIds.find(type);
    return found == variant.groupIds.end() ? "(none)" : found->second;
}

void expectSameVariant(const velhls_variant& variant, const VELHLSMediaVariant& expected) {
    EXPECT_EQ(textOf(variant.uri), expected.uri);
    EXPECT_EQ(variant.bandwidth, expected.bandwidth);
    EXPECT_EQ(variant.average_bandwidth, expected.averageBandwidth);
    EXPECT_EQ(textOf(variant.codecs), expected.codecs);
    EXPECT_EQ(textOf(variant.resolution), expected.resolution);
    EXPECT_EQ(variant.program_id, expected.programId);
    EXPECT_EQ(variant.is_i_frame != 0, expected.isIFrame);
    EXPECT_EQ(groupOf(variant.audio_group), groupOf(expected, VELHLSMediaStreamRendition::Audio));
    EXPECT_EQ(groupOf(variant.video_group), groupOf(expected, VELHLSMediaStreamRendition::Video));
    EXPECT_EQ(groupOf(variant.subtitles_group), groupOf(expected, VELHLSMediaStreamRendition::Subtitles));
    EXPECT_EQ(groupOf(variant.closed_captions_group),
              groupOf(expected, VELHLSMediaStreamRendition::ClosedCaptions));
    EXPECT_EQ(variant.nominal_video_bitrate, expected.nominalVideoBitrate);
    EXPECT_EQ(variant.nominal_audio_bitrate, expected.nominalAudioBitrate);
}

void expectSameRendition(const velhls_master* master, std::size_t index,
                         const VELHLSMediaStreamRendition& expected) {
    velhls_rendition rendition = VELHLS_INIT(velhls_rendition);
    ASSERT_EQ(velhls_master_rendition(master, index, &rendition), VELHLS_OK);
    EXPECT_EQ(static_cast<std::uint32_t>(rendition.type), expected.type);
    EXPECT_EQ(rendition.is_default != 0, expected.isDefault);
    EXPECT_EQ(rendition.auto_select != 0, expected.autoSelect);
    EXPECT_EQ(rendition.forced != 0, expected.forced);
    EXPECT_EQ(textOf(rendition.uri), expected.uri);
    EXPECT_EQ(textOf(rendition.group_id), expected.groupId);
    EXPECT_EQ(textOf(rendition.name), expected.name);
    EXPECT_EQ(textOf(rendition.language), expected.language);
    EXPECT_EQ(textOf(rendition.assoc_language), expected.assocLanguage);
    EXPECT_EQ(textOf(rendition.instream_id), expected.instreamId);
    EXPECT_EQ(textOf(rendition.audio_track_type), expected.audioTrackType);
    std::vector<velhls_string> values(rendition.characteristic_count);
    ASSERT_EQ(velhls_master_characteristics(master, index, values.data(), values.size()), VELHLS_OK);
    std::set<std::string> characteristics;
    for (const velhls_string value : values)
        characteristics.insert(textOf(value));
    EXPECT_EQ(characteristics, expected.characteristics);
    velhls_string uri = {};
    ASSERT_EQ(velhls_master_rendition_uris(master, index, 1, &uri), VELHLS_OK);
    EXPECT_EQ(uri.data, rendition.uri.data);
}

void expectSameVariants(const velhls_master* master, const VELHLSParsedManifest& expected) {
    std::vector<const VELHLSMediaVariant*> variants;
    for (const auto& variant : expected.streamVariants)
        variants.push_back(variant.get());
    for (const auto& [bandwidth, variant] : expected.variants) {
        if (variant->isIFrame) variants.push_back(variant.get());
    }
    const std::size_t count = variants.size();
    ASSERT_EQ(velhls_master_variant_count(master), count);
    std::vector<velhls_string> uris(count), codecs(count), resolutions(count);
    std::vector<std::uint64_t> bandwidths(count), averages(count);
    ASSERT_EQ(velhls_master_variant_uris(master, 0, count, uris.data()), VELHLS_OK);
    ASSERT_EQ(velhls_master_codecs(master, 0, count, codecs.data()), VELHLS_OK);
    ASSERT_EQ(velhls_master_resolutions(master, 0, count, resolutions.data()), VELHLS_OK);
    ASSERT_EQ(velhls_master_bandwidths(master, 0, count, bandwidths.data()), VELHLS_OK);
    ASSERT_EQ(velhls_master_average_bandwidths(master, 0, count, averages.data()), VELHLS_OK);
    for (std::size_t index = 0; index < count; ++index) {
        velhls_variant variant = VELHLS_INIT(velhls_variant);
        ASSERT_EQ(velhls_master_variant(master, index, &variant), VELHLS_OK);
        expectSameVariant(variant, *variants[index]);
        EXPECT_EQ(uris[index].data, variant.uri.data);
        EXPECT_EQ(codecs[index].data, variant.codecs.data);
        EXPECT_EQ(resolutions[index].data, variant.resolution.data);
        EXPECT_EQ(bandwidths[index], variant.bandwidth);
        EXPECT_EQ(averages[index], variant.average_bandwidth);
    }
}

void expectSameMaster(const velhls_master* master, const VELHLSParsedManifest& expected) {
    velhls_master_info info = VELHLS_INIT(velhls_master_info);
    ASSERT_EQ(velhls_master_get(master, &info), VELHLS_OK);
    EXPECT_EQ(info.has_header != 0, expected.hasHeader);
    EXPECT_EQ(info.version, expected.version);
    EXPECT_EQ(info.independent_segments != 0, expected.independentSegments);
    EXPECT_EQ(info.start_time_offset, expected.startTimeOffset);
    EXPECT_EQ(info.start_precise != 0, expected.startPrecise);
    EXPECT_EQ(info.variant_count, expected.variants.size());
    EXPECT_EQ(info.i_frame_variant_count, expected.variants.size() - expected.streamVariants.size());
    expectSameVariants(master, expected);
    std::size_t index = 0;
    for (const auto& [type, groups] : expected.renditions) {
        for (const auto& [groupId, renditions] : groups) {
            for (const auto& [name, rendition] : renditions)
                expectSameRendition(master, index++, *rendition);
        }
    }
    EXPECT_EQ(info.rendition_count, index);
    EXPECT_EQ(velhls_master_rendition_count(master), index);
    ASSERT_EQ(info.session_data_count, expected.sessionData.size());
    for (std::size_t entry = 0; entry < info.session_data_count; ++entry) {
        velhls_session_data data = VELHLS_INIT(velhls_session_data);
        ASSERT_EQ(velhls_master_session_data(master, entry, &data), VELHLS_OK);
        EXPECT_EQ(textOf(data.data_id), expected.sessionData[entry]->dataId);
        EXPECT_EQ(textOf(data.value), expected.sessionData[entry]->value);
        EXPECT_EQ(textOf(data.uri), expected.sessionData[entry]->uri);
        EXPECT_EQ(textOf(data.language), expected.sessionData[entry]->language);
    }
    ASSERT_EQ(info.session_key_count, expected.sessionKeys.size());
    for (std::size_t entry = 0; entry < info.session_key_count; ++entry) {
        const velhls_key* key = nullptr;
        ASSERT_EQ(velhls_master_session_key(master, entry, &key), VELHLS_OK);
        expectSameKey(key, expected.sessionKeys[entry].get());
    }
    expectSameTexts(expected, master, velhls_master_render, velhls_master_write);
}

/// An error of a rejected playlist says what the C++ parse says; an accepted playlist has none.
void expectSameRejection(velhls_status status, const velhls_error* error, const VELHLSReason& expected) {
    ASSERT_EQ(status, VELHLS_REJECTED);
    velhls_reason reason = VELHLS_INIT(velhls_reason);
    ASSERT_EQ(velhls_error_reason(error, &reason), VELHLS_OK);
    EXPECT_EQ(textOf(reason), textOf(expected));
}

TEST(CMedia, HoldsWhatTheModelHoldsForAllExamples) {
    std::size_t accepted = 0;
    for (const std::string& text : corpus::texts()) {
        SCOPED_TRACE(text);
        VELHLSReason why;
        const auto expected = VELHLSMediaStream::parseMediaStream(text, &why);
        Media media;
        Error error;
        const velhls_status status = velhls_media_parse(text.data(), text.size(), media.out(), error.out());
        if (expected == nullptr) {
            EXPECT_EQ(media, nullptr);
            expectSameRejection(status, error, why);
            continue;
        }
        ASSERT_EQ(status, VELHLS_OK);
        EXPECT_EQ(error, nullptr);
        expectSameMedia(media, *expected);
        ++accepted;
    }
    EXPECT_GT(accepted, 30U);
}

TEST(CMaster, HoldsWhatTheModelHoldsForAllExamples) {
    std::size_t accepted = 0;
    for (const std::string& text : corpus::texts()) {
        SCOPED_TRACE(text);
        VELHLSReason why;
        const auto expected = VELHLSParsedManifest::parseManifest(text, &why);
        Master master;
        Error error;
        const velhls_status status = velhls_master_parse(text.data(), text.size(), master.out(), error.out());
        if (expected == nullptr) {
            EXPECT_EQ(master, nullptr);
            expectSameRejection(status, error, why);
            continue;
        }
        ASSERT_EQ(status, VELHLS_OK);
        EXPECT_EQ(error, nullptr);
        expectSameMaster(master, *expected);
        ++accepted;
    }
    EXPECT_GT(accepted, 30U);
}

TEST(CMedia, OfADocumentTellsTheLinesOfItsSegments) {
    const std::string text =
        "#EXTM3U\n#EXTINF:4,\nsegment1.ts\n#EXT-X-DISCONTINUITY\n#EXTINF:4,\nsegment2.ts\n";
    Document document;
    makeDocument(document, text);
    Media media;
    ASSERT_EQ(velhls_media_parse_document(document, media.out(), nullptr), VELHLS_OK);
    std::size_t first = 0;
    std::size_t last = 0;
    ASSERT_EQ(velhls_media_segment_lines(media, 1, &first, &last), VELHLS_OK);
    EXPECT_EQ(first, 4U);
    EXPECT_EQ(last, 6U);
    EXPECT_EQ(velhls_media_segment_lines(media, 2, &first, &last), VELHLS_OUT_OF_RANGE);
    ASSERT_EQ(velhls_media_parse(text.data(), text.size(), media.out(), nullptr), VELHLS_OK);
    EXPECT_EQ(velhls_media_segment_lines(media, 1, &first, &last), VELHLS_NOT_FOUND);
}

TEST(CMaster, OfADocumentTellsTheLinesOfItsRecords) {
    Document document;
    makeDocument(document,
                 "#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\"\n"
                 "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"a\"\nlow.m3u8\n");
    Master master;
    ASSERT_EQ(velhls_master_parse_document(document, master.out(), nullptr), VELHLS_OK);
    std::size_t first = 0;
    std::size_t last = 0;
    ASSERT_EQ(velhls_master_variant_lines(master, 0, &first, &last), VELHLS_OK);
    EXPECT_EQ(first, 3U);
    EXPECT_EQ(last, 4U);
    ASSERT_EQ(velhls_master_rendition_lines(master, 0, &first, &last), VELHLS_OK);
    EXPECT_EQ(first, 2U);
    EXPECT_EQ(last, 2U);
}

TEST(CMedia, WritesWhatTheOptionsAskFor) {
    const std::string text = "#EXTM3U\n#EXT-X-TARGETDURATION:4\n#EXT-X-CUE-OUT:4\n#EXTINF:4,\nsegment1.ts\n";
    Media media;
    ASSERT_EQ(velhls_media_parse(text.data(), text.size(), media.out(), nullptr), VELHLS_OK);
    Text written;
    ASSERT_EQ(velhls_media_write(media, nullptr, written.out(), nullptr), VELHLS_OK);
    EXPECT_NE(textOf(written).find("#EXT-X-CUE-OUT:4\n"), std::string::npos);
    velhls_write_options options = VELHLS_INIT(velhls_write_options);
    ASSERT_EQ(velhls_media_write(media, &options, written.out(), nullptr), VELHLS_OK);
    EXPECT_EQ(textOf(written).find("#EXT-X-CUE-OUT"), std::string::npos);
}

TEST(CColumns, OfAPartAreThatPart) {
    const std::string text =
        "#EXTM3U\n#EXTINF:1,\nsegment1.ts\n#EXTINF:2,\nsegment2.ts\n#EXTINF:3,\nsegment3.ts\n";
    Media media;
    ASSERT_EQ(velhls_media_parse(text.data(), text.size(), media.out(), nullptr), VELHLS_OK);
    double durations[2] = {0, 0};
    ASSERT_EQ(velhls_media_durations(media, 1, 2, durations), VELHLS_OK);
    EXPECT_THAT(durations, testing::ElementsAre(2.0, 3.0));
    std::size_t ends[2] = {0, 0};
    Text joined;
    ASSERT_EQ(velhls_media_joined_uris(media, 1, 2, joined.out(), ends), VELHLS_OK);
    EXPECT_EQ(textOf(joined), "segment2.tssegment3.ts");
    EXPECT_THAT(ends, testing::ElementsAre(11U, 22U));
}

TEST(CColumns, BeyondTheRecordsAreNotWritten) {
    const std::string text = "#EXTM3U\n#EXTINF:1,\nsegment1.ts\n";
    Media media;
    ASSERT_EQ(velhls_media_parse(text.data(), text.size(), media.out(), nullptr), VELHLS_OK);
    double durations[2] = {-1, -1};
    EXPECT_EQ(velhls_media_durations(media, 0, 2, durations), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(velhls_media_durations(media, 2, 0, durations), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(velhls_media_durations(media, 1, SIZE_MAX, durations), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(velhls_media_durations(media, SIZE_MAX, 1, durations), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(durations[0], -1);
    EXPECT_EQ(velhls_media_durations(media, 1, 0, nullptr), VELHLS_OK);
    EXPECT_EQ(velhls_media_durations(media, 0, 1, nullptr), VELHLS_INVALID_ARGUMENT);
    Text joined;
    std::size_t ends = 0;
    EXPECT_EQ(velhls_media_joined_uris(media, 0, 2, joined.out(), &ends), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(joined, nullptr);
}

void expectSameAttributes(const velhls_document* document, const VELHLSLine& line) {
    Attributes attributes;
    ASSERT_EQ(velhls_attributes_new(document, line.number, attributes.out()), VELHLS_OK);
    std::size_t index = 0;
    for (const VELHLSAttribute& expected : line.attributes()) {
        velhls_attribute attribute = VELHLS_INIT(velhls_attribute);
        ASSERT_EQ(velhls_attributes_get(attributes, index++, &attribute), VELHLS_OK);
        EXPECT_EQ(textOf(attribute.name), expected.name);
        EXPECT_EQ(textOf(attribute.value), expected.value);
        EXPECT_EQ(textOf(attribute.written_value), expected.writtenValue);
        EXPECT_EQ(attribute.is_quoted != 0, expected.quoted);
        EXPECT_EQ(attribute.fault, expected.fault);
        EXPECT_EQ(attribute.column, line.column(expected.text));
    }
    EXPECT_EQ(velhls_attributes_count(attributes), index);
}

void expectSameLines(const velhls_document* document, const VELHLSDocument& expected) {
    ASSERT_EQ(velhls_document_line_count(document), expected.lineCount());
    EXPECT_EQ(velhls_document_kind(document), expected.kind());
    EXPECT_EQ(std::string(velhls_document_data(document), velhls_document_length(document)), expected.text());
    for (const VELHLSLine expectedLine : expected.lines()) {
        velhls_line line = VELHLS_INIT(velhls_line);
        ASSERT_EQ(velhls_document_line(document, expectedLine.number, &line), VELHLS_OK);
        EXPECT_EQ(line.kind, expectedLine.kind);
        EXPECT_EQ(line.number, expectedLine.number);
        EXPECT_EQ(line.offset, expectedLine.offset);
        EXPECT_EQ(textOf(line.text), expectedLine.text);
        EXPECT_EQ(textOf(line.ending), expectedLine.ending);
        EXPECT_EQ(textOf(line.name), expectedLine.name);
        EXPECT_EQ(textOf(line.value), expectedLine.value);
        EXPECT_EQ(line.has_colon != 0, expectedLine.hasColon);
        EXPECT_EQ(line.is_known != 0, expectedLine.definition != nullptr);
        EXPECT_EQ(velhls_document_line_at(document, line.offset), line.number);
        expectSameAttributes(document, expectedLine);
    }
    Uris uris;
    ASSERT_EQ(velhls_uris_new(document, uris.out()), VELHLS_OK);
    ASSERT_EQ(velhls_uris_count(uris), expected.uris().size());
    for (std::size_t index = 0; index < expected.uris().size(); ++index) {
        velhls_uri uri = VELHLS_INIT(velhls_uri);
        ASSERT_EQ(velhls_uris_get(uris, index, &uri), VELHLS_OK);
        EXPECT_EQ(uri.line, expected.uris()[index].line);
        EXPECT_EQ(textOf(uri.text), expected.uris()[index].text);
        EXPECT_EQ(textOf(uri.attribute), expected.uris()[index].attribute);
    }
}

void expectSameStructure(const velhls_document* document, const VELHLSDocument& expectedDocument) {
    const VELHLSStructure expected(expectedDocument);
    Structure structure;
    ASSERT_EQ(velhls_structure_new(document, structure.out()), VELHLS_OK);
    ASSERT_EQ(velhls_structure_segment_count(structure), expected.segmentCount());
    for (const VELHLSStructure::Segment expectedSegment : expected.segments()) {
        velhls_structure_segment segment = VELHLS_INIT(velhls_structure_segment);
        ASSERT_EQ(velhls_structure_get_segment(structure, expectedSegment.index, &segment), VELHLS_OK);
        EXPECT_EQ(segment.first_line, expectedSegment.firstLine);
        EXPECT_EQ(segment.last_line, expectedSegment.lastLine);
        EXPECT_EQ(segment.uri_line, expectedSegment.uriLine);
        EXPECT_EQ(segment.duration_line, expectedSegment.durationLine);
        EXPECT_EQ(segment.byte_range_line, expectedSegment.rangeLine);
        EXPECT_EQ(segment.date_line, expectedSegment.dateLine);
        EXPECT_EQ(std::vector<std::uint32_t>(segment.key_lines, segment.key_lines + segment.key_line_count),
                  std::vector<std::uint32_t>(expectedSegment.inForce.keyLines.begin(),
                                             expectedSegment.inForce.keyLines.end()));
        EXPECT_EQ(segment.map_line, expectedSegment.inForce.mapLine);
        EXPECT_EQ(segment.date_line_in_force, expectedSegment.inForce.dateLine);
        EXPECT_EQ(segment.duration, expectedSegment.duration);
        EXPECT_EQ(segment.start_time, expectedSegment.startTime);
        EXPECT_EQ(segment.media_sequence, expectedSegment.mediaSequence);
        EXPECT_EQ(segment.discontinuity_sequence, expectedSegment.discontinuitySequence);
        EXPECT_EQ(segment.has_byte_range_offset != 0, expectedSegment.rangeOffset.has_value());
        EXPECT_EQ(segment.byte_range_offset, expectedSegment.rangeOffset.value_or(0));
        EXPECT_EQ(segment.has_date != 0, expectedSegment.date.has_value());
        EXPECT_EQ(segment.date, expectedSegment.date.value_or(0));
    }
    ASSERT_EQ(velhls_structure_variant_count(structure), expected.variants().size());
    for (std::size_t index = 0; index < expected.variants().size(); ++index) {
        velhls_structure_variant variant = VELHLS_INIT(velhls_structure_variant);
        ASSERT_EQ(velhls_structure_get_variant(structure, index, &variant), VELHLS_OK);
        EXPECT_EQ(variant.tag_line, expected.variants()[index].tagLine);
        EXPECT_EQ(variant.uri_line, expected.variants()[index].uriLine);
    }
    for (std::size_t line = 1; line <= expectedDocument.lineCount(); ++line) {
        std::size_t place = SIZE_MAX;
        EXPECT_EQ(velhls_structure_segment_of(structure, line, &place),
                  expected.segmentOf(line) ? VELHLS_OK : VELHLS_NOT_FOUND);
        EXPECT_EQ(place, expected.segmentOf(line).value_or(SIZE_MAX));
        place = SIZE_MAX;
        EXPECT_EQ(velhls_structure_variant_of(structure, line, &place),
                  expected.variantOf(line) ? VELHLS_OK : VELHLS_NOT_FOUND);
        EXPECT_EQ(place, expected.variantOf(line).value_or(SIZE_MAX));
    }
}

TEST(CDocument, HoldsWhatTheDocumentHoldsForAllExamples) {
    for (const std::string& text : corpus::texts()) {
        SCOPED_TRACE(text);
        const VELHLSDocument expected(text);
        Document document;
        makeDocument(document, text);
        expectSameLines(document, expected);
        expectSameStructure(document, expected);
    }
}

TEST(CDocument, TakesBytesOfAllKinds) {
    for (const std::string& text :
         {std::string(), std::string("\0", 1), std::string("\xff\xfe#EXTM3U\r\n\0", 11)}) {
        Document document;
        makeDocument(document, text);
        expectSameLines(document, VELHLSDocument(text));
    }
    Document empty;
    ASSERT_EQ(velhls_document_new(nullptr, 0, empty.out()), VELHLS_OK);
    EXPECT_EQ(velhls_document_line_count(empty), 0U);
}

TEST(CDocument, IsNotMadeOfTextsThatAreTooLarge) {
    const char one = ' ';
    Document document;
    // The text is not looked at: the number of its bytes is enough.
    EXPECT_EQ(velhls_document_new(&one, std::size_t{UINT32_MAX} + 1, document.out()), VELHLS_TOO_LARGE);
    EXPECT_EQ(document, nullptr);
}

TEST(CDocument, FindsAttributesByName) {
    Document document;
    makeDocument(document, "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\n");
    Attributes attributes;
    ASSERT_EQ(velhls_attributes_new(document, 1, attributes.out()), VELHLS_OK);
    velhls_attribute attribute = VELHLS_INIT(velhls_attribute);
    ASSERT_EQ(velhls_attributes_find(attributes, "URI", 3, &attribute), VELHLS_OK);
    EXPECT_EQ(textOf(attribute.value), "k");
    EXPECT_EQ(velhls_attributes_find(attributes, "IV", 2, &attribute), VELHLS_NOT_FOUND);
    EXPECT_EQ(velhls_attributes_new(document, 2, attributes.out()), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(attributes, nullptr);
}

constexpr const char* editedText =
    "#EXTM3U\r\n#EXT-X-TARGETDURATION:4\r\n#EXTINF:4,\r\nsegment1.ts\r\n#EXTINF:4,\r\nsegment2.ts\r\n"
    "#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0x1\r\n";

class CEdits : public testing::Test {
  protected:
    void SetUp() override {
        makeDocument(document_, editedText);
        ASSERT_EQ(velhls_edits_new(document_, edits_.out()), VELHLS_OK);
    }

    std::string applied() {
        Text text;
        EXPECT_EQ(velhls_edits_apply(edits_, text.out(), nullptr), VELHLS_OK);
        return textOf(text);
    }

    /// The text with one part of it replaced.
    static std::string with(std::string_view part, std::string_view replacement) {
        std::string text = editedText;
        return text.replace(text.find(part), part.size(), replacement);
    }

    Document document_;
    Edits edits_;
    Error error_;
};

TEST_F(CEdits, OfNothingGiveTheText) {
    EXPECT_EQ(applied(), editedText);
}

TEST_F(CEdits, ChangeAttributes) {
    const velhls_string names[] = {stringOf("URI"), stringOf("IV"), stringOf("KEYFORMAT")};
    const velhls_string values[] = {stringOf("other"), {nullptr, 0}, stringOf("identity")};
    ASSERT_EQ(velhls_edits_change_attributes(edits_, 7, names, values, 3, error_.out()), VELHLS_OK);
    EXPECT_EQ(applied(), with("URI=\"k\",IV=0x1", "URI=\"other\",KEYFORMAT=\"identity\""));
}

TEST_F(CEdits, ReplaceValuesAndUris) {
    Uris uris;
    ASSERT_EQ(velhls_uris_new(document_, uris.out()), VELHLS_OK);
    ASSERT_EQ(velhls_edits_replace_value(edits_, 2, "5", 1, error_.out()), VELHLS_OK);
    ASSERT_EQ(velhls_edits_replace_uri(edits_, uris, 0, "a.ts", 4, error_.out()), VELHLS_OK);
    EXPECT_EQ(applied(), with("4\r\n#EXTINF:4,\r\nsegment1.ts", "5\r\n#EXTINF:4,\r\na.ts"));
    velhls_edit edit = VELHLS_INIT(velhls_edit);
    EXPECT_EQ(velhls_edits_count(edits_), 2U);
    ASSERT_EQ(velhls_edits_get(edits_, 1, &edit), VELHLS_OK);
    EXPECT_EQ(textOf(edit.replacement), "a.ts");
    EXPECT_EQ(edit.offset, std::string_view(editedText).find("segment1.ts"));
    EXPECT_EQ(edit.length, 11U);
    EXPECT_EQ(velhls_edits_get(edits_, 2, &edit), VELHLS_OUT_OF_RANGE);
}

TEST_F(CEdits, InsertAndRemoveLines) {
    ASSERT_EQ(velhls_edits_insert_before(edits_, 3, "# a\n# b", 7), VELHLS_OK);
    ASSERT_EQ(velhls_edits_insert_after(edits_, 6, "# c", 3), VELHLS_OK);
    ASSERT_EQ(velhls_edits_remove_lines(edits_, 7, 7), VELHLS_OK);
    std::string expected = with("#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=0x1\r\n", "# c\r\n");
    EXPECT_EQ(applied(), expected.insert(expected.find("#EXTINF"), "# a\r\n# b\r\n"));
}

TEST_F(CEdits, RemoveRecords) {
    Structure structure;
    ASSERT_EQ(velhls_structure_new(document_, structure.out()), VELHLS_OK);
    ASSERT_EQ(velhls_edits_remove_segment(edits_, structure, 0), VELHLS_OK);
    EXPECT_EQ(applied(), with("#EXTINF:4,\r\nsegment1.ts\r\n", ""));
    EXPECT_EQ(velhls_edits_remove_segment(edits_, structure, 9), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(velhls_edits_remove_variant(edits_, structure, 0), VELHLS_OUT_OF_RANGE);
}

TEST_F(CEdits, ReplaceBytesOfTheText) {
    ASSERT_EQ(velhls_edits_replace_bytes(edits_, 0, 7, "\xff", 1), VELHLS_OK);
    EXPECT_EQ(applied(), with("#EXTM3U", "\xff"));
    EXPECT_EQ(velhls_edits_replace_bytes(edits_, 1, SIZE_MAX, "", 0), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(velhls_edits_replace_bytes(edits_, SIZE_MAX, 1, "", 0), VELHLS_OUT_OF_RANGE);
}

TEST_F(CEdits, ThatAreRefusedSayWhyAndChangeNothing) {
    EXPECT_EQ(velhls_edits_replace_value(edits_, 2, "5\n6", 3, error_.out()), VELHLS_REFUSED);
    EXPECT_NE(messageOf(error_), "");
    velhls_reason reason = VELHLS_INIT(velhls_reason);
    ASSERT_EQ(velhls_error_reason(error_, &reason), VELHLS_OK);
    EXPECT_EQ(reason.line, 2U);
    EXPECT_EQ(textOf(reason.rule), "");
    const velhls_string name = stringOf("URI");
    const velhls_string value = stringOf("a\"b");
    EXPECT_EQ(velhls_edits_change_attributes(edits_, 7, &name, &value, 1, nullptr), VELHLS_REFUSED);
    EXPECT_EQ(velhls_edits_replace_value(edits_, 8, "5", 1, error_.out()), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(error_, nullptr);
    EXPECT_EQ(velhls_edits_remove_lines(edits_, 7, 8), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(velhls_edits_insert_before(edits_, 0, "# a", 3), VELHLS_OUT_OF_RANGE);
    EXPECT_EQ(velhls_edits_count(edits_), 0U);
}

TEST_F(CEdits, ThatOverlapAreNamed) {
    ASSERT_EQ(velhls_edits_replace_value(edits_, 2, "5", 1, nullptr), VELHLS_OK);
    ASSERT_EQ(velhls_edits_remove_lines(edits_, 2, 2), VELHLS_OK);
    Text text;
    EXPECT_EQ(velhls_edits_apply(edits_, text.out(), error_.out()), VELHLS_REFUSED);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(messageOf(error_), "edits 0 and 1 overlap");
}

TEST_F(CEdits, TakeNothingOfAnotherDocument) {
    Document other;
    makeDocument(other, editedText);
    Uris uris;
    Structure structure;
    ASSERT_EQ(velhls_uris_new(other, uris.out()), VELHLS_OK);
    ASSERT_EQ(velhls_structure_new(other, structure.out()), VELHLS_OK);
    EXPECT_EQ(velhls_edits_replace_uri(edits_, uris, 0, "a.ts", 4, nullptr), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_edits_remove_segment(edits_, structure, 0), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_edits_remove_variant(edits_, structure, 0), VELHLS_INVALID_ARGUMENT);
}

void expectSameEdit(const velhls_edit& edit, const VELHLSEdit& expected) {
    EXPECT_EQ(edit.offset, expected.offset);
    EXPECT_EQ(edit.length, expected.length);
    EXPECT_EQ(textOf(edit.replacement), expected.replacement);
}

void expectSameFixes(const velhls_findings* findings, std::size_t index,
                     const std::vector<VELHLSFix>& expected) {
    for (std::size_t which = 0; which < expected.size(); ++which) {
        velhls_fix fix = VELHLS_INIT(velhls_fix);
        ASSERT_EQ(velhls_findings_fix(findings, index, which, &fix), VELHLS_OK);
        EXPECT_EQ(fix.fix_class, expected[which].fixClass);
        EXPECT_EQ(textOf(fix.sentence), expected[which].sentence);
        ASSERT_EQ(fix.edit_count, expected[which].edits.size());
        velhls_edit edit = VELHLS_INIT(velhls_edit);
        for (std::size_t at = 0; at < fix.edit_count; ++at) {
            ASSERT_EQ(velhls_findings_fix_edit(findings, index, which, at, &edit), VELHLS_OK);
            expectSameEdit(edit, expected[which].edits[at]);
        }
        EXPECT_EQ(velhls_findings_fix_edit(findings, index, which, fix.edit_count, &edit),
                  VELHLS_OUT_OF_RANGE);
    }
    velhls_fix fix = VELHLS_INIT(velhls_fix);
    EXPECT_EQ(velhls_findings_fix(findings, index, expected.size(), &fix), VELHLS_OUT_OF_RANGE);
}

void expectSameFindings(const velhls_findings* findings, const std::vector<VELHLSFinding>& expected) {
    ASSERT_EQ(velhls_findings_count(findings), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        velhls_finding finding = VELHLS_INIT(velhls_finding);
        ASSERT_EQ(velhls_findings_get(findings, index, &finding), VELHLS_OK);
        EXPECT_EQ(finding.severity, expected[index].severity);
        EXPECT_EQ(textOf(finding.rule), expected[index].ruleId);
        EXPECT_EQ(textOf(finding.uri), expected[index].uri);
        EXPECT_EQ(finding.line, expected[index].line);
        EXPECT_EQ(finding.column, expected[index].column);
        EXPECT_EQ(finding.length, expected[index].length);
        EXPECT_EQ(textOf(finding.message), expected[index].message);
        EXPECT_EQ(textOf(finding.source), expected[index].source);
        EXPECT_EQ(textOf(finding.profile), expected[index].profile);
        EXPECT_EQ(textOf(finding.clause), expected[index].clause);
        EXPECT_EQ(textOf(finding.level), expected[index].level);
        EXPECT_EQ(finding.suppressed, expected[index].suppressed);
        ASSERT_EQ(finding.fix_count, expected[index].fixes.size());
        expectSameFixes(findings, index, expected[index].fixes);
        ASSERT_EQ(finding.related_count, expected[index].related.size());
        for (std::size_t other = 0; other < finding.related_count; ++other) {
            const VELHLSRelatedPlace& expectedPlace = expected[index].related[other];
            velhls_related_place place = VELHLS_INIT(velhls_related_place);
            ASSERT_EQ(velhls_findings_related(findings, index, other, &place), VELHLS_OK);
            EXPECT_EQ(textOf(place.uri), expectedPlace.uri);
            EXPECT_EQ(place.line, expectedPlace.line);
            EXPECT_EQ(place.column, expectedPlace.column);
            EXPECT_EQ(place.length, expectedPlace.length);
            EXPECT_EQ(textOf(place.message), expectedPlace.message);
        }
    }
}

constexpr velhls_profiles allProfiles =
    VELHLS_PROFILE_RFC8216 | VELHLS_PROFILE_RFC8216BIS | VELHLS_PROFILE_APPLE | VELHLS_PROFILE_LIBRARY;

velhls_check_options checking(velhls_profiles profiles, velhls_kind kind = VELHLS_KIND_NEITHER) {
    velhls_check_options options = VELHLS_INIT(velhls_check_options);
    options.profiles = profiles;
    options.kind = kind;
    return options;
}

void expectSameReport(const velhls_report* report, const VELHLSDiagnostics::Report& expected) {
    EXPECT_EQ(velhls_report_kind(report), expected.kind);
    expectSameFindings(velhls_report_findings(report), expected.findings);
    velhls_reason reason = VELHLS_INIT(velhls_reason);
    const velhls_status status = velhls_report_rejection(report, &reason);
    ASSERT_EQ(status, expected.rejected ? VELHLS_OK : VELHLS_NOT_FOUND);
    if (expected.rejected) {
        EXPECT_EQ(textOf(reason), textOf(*expected.rejected));
    }
}

TEST(CCheck, FindsWhatTheDiagnosticsFindForAllExamples) {
    VELHLSDiagnostics::Options options;
    options.profiles = VELHLSDiagnostics::profiles();
    options.fixes = true;
    velhls_check_options asked = checking(allProfiles);
    asked.fixes = 1;
    for (const std::string& text : corpus::texts()) {
        SCOPED_TRACE(text);
        Report report;
        ASSERT_EQ(velhls_check(text.data(), text.size(), &asked, report.out()), VELHLS_OK);
        expectSameReport(report, VELHLSDiagnostics::check(text, options));
        const auto detection = VELHLSDiagnostics::detectKind(text);
        velhls_kind kind = -1;
        ASSERT_EQ(velhls_detect_kind(text.data(), text.size(), &kind), VELHLS_OK);
        EXPECT_EQ(kind, detection ? detection->kind : VELHLSDiagnostics::Detect);
    }
}

TEST(CCheck, AsksTheProfilesThatAreNamed) {
    const std::string text = "#EXTM3U\n#EXTINF:4,\nsegment1.ts\n";
    Report report;
    ASSERT_EQ(velhls_check(text.data(), text.size(), nullptr, report.out()), VELHLS_OK);
    expectSameReport(report, VELHLSDiagnostics::check(text));
    for (const VELHLSDiagnostics::Profile profile : VELHLSDiagnostics::profiles()) {
        VELHLSDiagnostics::Options options;
        options.profiles = {profile};
        const velhls_check_options asked = checking(1U << static_cast<unsigned>(profile));
        ASSERT_EQ(velhls_check(text.data(), text.size(), &asked, report.out()), VELHLS_OK);
        expectSameFindings(velhls_report_findings(report), VELHLSDiagnostics::check(text, options).findings);
    }
    const velhls_check_options nothing = checking(0, VELHLS_KIND_MASTER);
    ASSERT_EQ(velhls_check(text.data(), text.size(), &nothing, report.out()), VELHLS_OK);
    EXPECT_EQ(velhls_findings_count(velhls_report_findings(report)), 0U);
    velhls_reason reason = VELHLS_INIT(velhls_reason);
    EXPECT_EQ(velhls_report_rejection(report, &reason), VELHLS_OK);
    velhls_check_options withoutSize = checking(1);
    withoutSize.size = 0;
    for (const velhls_check_options& asked : {checking(16), checking(1, 3), checking(1, -1), withoutSize}) {
        EXPECT_EQ(velhls_check(text.data(), text.size(), &asked, report.out()), VELHLS_INVALID_ARGUMENT);
        EXPECT_EQ(static_cast<velhls_report*>(report), nullptr);
    }
}

TEST(CCheck, GivesFixesThatEditsTake) {
    const std::string text = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\n0.ts\n#EXT-X-ENDLIST\n";
    velhls_check_options asked = checking(VELHLS_PROFILE_LIBRARY);
    asked.fixes = 1;
    Report report;
    ASSERT_EQ(velhls_check(text.data(), text.size(), &asked, report.out()), VELHLS_OK);
    const velhls_findings* const findings = velhls_report_findings(report);
    velhls_finding finding = VELHLS_INIT(velhls_finding);
    std::size_t index = 0;
    while (velhls_findings_get(findings, index, &finding) == VELHLS_OK && finding.fix_count == 0)
        ++index;
    velhls_edit edit = VELHLS_INIT(velhls_edit);
    ASSERT_EQ(velhls_findings_fix_edit(findings, index, 0, 0, &edit), VELHLS_OK);
    Document document;
    makeDocument(document, text);
    Edits edits;
    ASSERT_EQ(velhls_edits_new(document, edits.out()), VELHLS_OK);
    ASSERT_EQ(velhls_edits_replace_bytes(edits, edit.offset, edit.length, edit.replacement.data,
                                         edit.replacement.length),
              VELHLS_OK);
    Text mended;
    ASSERT_EQ(velhls_edits_apply(edits, mended.out(), nullptr), VELHLS_OK);
    EXPECT_EQ(textOf(mended), "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\n./0.ts\n#EXT-X-ENDLIST\n");
}

void expectSameMended(const velhls_mended* mended, const VELHLSFixes::Result& expected) {
    EXPECT_EQ(std::string(velhls_mended_data(mended), velhls_mended_length(mended)), expected.text);
    EXPECT_EQ(velhls_mended_rounds(mended), expected.rounds);
    ASSERT_EQ(velhls_mended_edit_count(mended), expected.edits.size());
    velhls_edit edit = VELHLS_INIT(velhls_edit);
    for (std::size_t index = 0; index < expected.edits.size(); ++index) {
        ASSERT_EQ(velhls_mended_edit(mended, index, &edit), VELHLS_OK);
        expectSameEdit(edit, expected.edits[index]);
    }
    EXPECT_EQ(velhls_mended_edit(mended, expected.edits.size(), &edit), VELHLS_OUT_OF_RANGE);
    ASSERT_EQ(velhls_mended_done_count(mended), expected.done.size());
    velhls_done done = VELHLS_INIT(velhls_done);
    for (std::size_t index = 0; index < expected.done.size(); ++index) {
        ASSERT_EQ(velhls_mended_done(mended, index, &done), VELHLS_OK);
        EXPECT_EQ(textOf(done.rule), expected.done[index].ruleId);
        EXPECT_EQ(textOf(done.profile), expected.done[index].profile);
        EXPECT_EQ(done.fix_class, expected.done[index].fixClass);
        EXPECT_EQ(textOf(done.sentence), expected.done[index].sentence);
        EXPECT_EQ(done.line, expected.done[index].line);
    }
    EXPECT_EQ(velhls_mended_done(mended, expected.done.size(), &done), VELHLS_OUT_OF_RANGE);
    expectSameReport(velhls_mended_left(mended), expected.left);
}

TEST(CMending, GivesWhatFixesGiveForAllExamples) {
    VELHLSFixes::Options options;
    options.profiles = {VELHLSDiagnostics::Profile::library};
    options.lossy = options.guess = true;
    velhls_fix_options asked = VELHLS_INIT(velhls_fix_options);
    asked.profiles = VELHLS_PROFILE_LIBRARY;
    asked.lossy = asked.guess = 1;
    std::size_t count = 0;
    for (const std::string& text : corpus::texts()) {
        SCOPED_TRACE(text);
        Mended mended;
        ASSERT_EQ(velhls_fix_text(text.data(), text.size(), &asked, mended.out()), VELHLS_OK);
        expectSameMended(mended, VELHLSFixes::apply(text, options));
        count += velhls_mended_done_count(mended);
        ASSERT_EQ(velhls_fix_for_models(text.data(), text.size(), mended.out()), VELHLS_OK);
        expectSameMended(mended, VELHLSFixes::forModels(text));
    }
    EXPECT_GT(count, 0U);
}

TEST(CMending, TakesWhatTheOptionsAskFor) {
    const std::string text = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:0,\n0.ts";
    Mended mended;
    ASSERT_EQ(velhls_fix_text(text.data(), text.size(), nullptr, mended.out()), VELHLS_OK);
    expectSameMended(mended, VELHLSFixes::apply(text, VELHLSFixes::Options()));
    velhls_fix_options asked = VELHLS_INIT(velhls_fix_options);
    asked.profiles = VELHLS_PROFILE_LIBRARY;
    ASSERT_EQ(velhls_fix_text(text.data(), text.size(), &asked, mended.out()), VELHLS_OK);
    EXPECT_EQ(std::string(velhls_mended_data(mended), velhls_mended_length(mended)).find("#EXTINF:1,"),
              std::string::npos);
    asked.guess = 1;
    asked.kind = VELHLS_KIND_MEDIA;
    ASSERT_EQ(velhls_fix_text(text.data(), text.size(), &asked, mended.out()), VELHLS_OK);
    EXPECT_NE(std::string(velhls_mended_data(mended), velhls_mended_length(mended)).find("#EXTINF:1,"),
              std::string::npos);
    asked.kind = VELHLS_KIND_MASTER;
    ASSERT_EQ(velhls_fix_text(text.data(), text.size(), &asked, mended.out()), VELHLS_OK);
    EXPECT_EQ(velhls_report_kind(velhls_mended_left(mended)), VELHLS_KIND_MASTER);
    velhls_fix_options wrong = asked;
    wrong.profiles = 16;
    EXPECT_EQ(velhls_fix_text(text.data(), text.size(), &wrong, mended.out()), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(static_cast<velhls_mended*>(mended), nullptr);
    wrong = asked;
    wrong.kind = 3;
    EXPECT_EQ(velhls_fix_text(text.data(), text.size(), &wrong, mended.out()), VELHLS_INVALID_ARGUMENT);
    wrong = asked;
    wrong.size = 0;
    EXPECT_EQ(velhls_fix_text(text.data(), text.size(), &wrong, mended.out()), VELHLS_INVALID_ARGUMENT);
}

TEST(CCheck, KnowsTheRulesByTheirNames) {
    for (const VELHLSDiagnostics::Profile profile : VELHLSDiagnostics::profiles()) {
        for (const VELHLSRule& expected : VELHLSDiagnostics::rules(profile)) {
            velhls_rule rule = VELHLS_INIT(velhls_rule);
            ASSERT_EQ(velhls_rule_named(expected.id.data(), expected.id.size(), &rule), VELHLS_OK);
            EXPECT_EQ(textOf(rule.id), expected.id);
            const auto first = VELHLSDiagnostics::ruleNamed(expected.id);
            EXPECT_EQ(textOf(rule.summary), first->summary);
            EXPECT_EQ(textOf(rule.expected), first->expected);
            EXPECT_EQ(textOf(rule.source), first->source);
            EXPECT_EQ(textOf(rule.profile), first->profile);
            EXPECT_EQ(textOf(rule.clause), first->clause);
            EXPECT_EQ(textOf(rule.level), first->level);
            EXPECT_EQ(rule.severity, first->severity);
            EXPECT_EQ(rule.is_lost_when_written != 0, first->isLostWhenWritten);
        }
    }
    velhls_rule rule = VELHLS_INIT(velhls_rule);
    EXPECT_EQ(velhls_rule_named("no-such-rule", 12, &rule), VELHLS_NOT_FOUND);
}

TEST(CComparison, FindsWhatChangedAndWhatMayNot) {
    const std::string before =
        "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nsegment1.ts\n#EXTINF:6,\nsegment2.ts\n";
    const std::string now =
        "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:5,\nsegment1.ts\n#EXTINF:6,\nsegment2.ts\n";
    const auto expected =
        VELHLSComparison::compare(VELHLSDocument(before), VELHLSDocument(now), {std::optional<double>(3.0)});
    Comparison comparison;
    {
        Document first;
        Document second;
        makeDocument(first, before);
        makeDocument(second, now);
        ASSERT_EQ(velhls_compare(first, second, 3.0, comparison.out()), VELHLS_OK);
    }
    ASSERT_TRUE(expected);
    ASSERT_FALSE(expected->changes.empty());
    ASSERT_FALSE(expected->findings.empty());
    ASSERT_EQ(velhls_comparison_change_count(comparison), expected->changes.size());
    for (std::size_t index = 0; index < expected->changes.size(); ++index) {
        velhls_change change = VELHLS_INIT(velhls_change);
        ASSERT_EQ(velhls_comparison_change(comparison, index, &change), VELHLS_OK);
        EXPECT_EQ(change.kind, expected->changes[index].kind);
        EXPECT_EQ(textOf(change.path), expected->changes[index].path);
        EXPECT_EQ(textOf(change.what), expected->changes[index].what);
        EXPECT_EQ(textOf(change.old_text), expected->changes[index].oldText);
        EXPECT_EQ(textOf(change.new_text), expected->changes[index].newText);
        EXPECT_EQ(change.old_line, expected->changes[index].oldLine);
        EXPECT_EQ(change.new_line, expected->changes[index].newLine);
    }
    expectSameFindings(velhls_comparison_findings(comparison), expected->findings);
}

TEST(CComparison, OfTheSameLiveTextDependsOnTheTimeThatHasGone) {
    Document document;
    makeDocument(document, "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nsegment1.ts\n");
    Comparison comparison;
    ASSERT_EQ(velhls_compare(document, document, -1, comparison.out()), VELHLS_OK);
    EXPECT_EQ(velhls_findings_count(velhls_comparison_findings(comparison)), 0U);
    ASSERT_EQ(velhls_compare(document, document, 60, comparison.out()), VELHLS_OK);
    EXPECT_EQ(velhls_findings_count(velhls_comparison_findings(comparison)), 1U);
}

TEST(CComparison, OfDifferentKindsIsRefused) {
    Document media;
    Document master;
    makeDocument(media, "#EXTM3U\n#EXTINF:6,\nsegment1.ts\n");
    makeDocument(master, "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n");
    Comparison comparison;
    EXPECT_EQ(velhls_compare(media, master, -1, comparison.out()), VELHLS_REFUSED);
    EXPECT_EQ(comparison, nullptr);
}

TEST(CPresentation, FindsWhatItsTextsDoNotKeepTogether) {
    const std::string masterText =
        "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1000\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=2000\nhigh.m3u8\n"
        "#EXT-X-STREAM-INF:BANDWIDTH=3000\nmissing.m3u8\n";
    const std::string low = "#EXTM3U\n#EXT-X-TARGETDURATION:4\n#EXTINF:4,\nsegment1.ts\n#EXT-X-ENDLIST\n";
    const std::string high = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:4,\nsegment1.ts\n";
    const VELHLSDocument expectedMaster(masterText), expectedLow(low), expectedHigh(high);
    const std::vector<VELHLSFinding> expected = VELHLSPresentation::check(
        {"master.m3u8", &expectedMaster},
        {{"low.m3u8", &expectedLow}, {"high.m3u8", &expectedHigh}, {"missing.m3u8", nullptr, "it is a pipe"}},
        {VELHLSStandard::Profile::rfc8216, VELHLSStandard::Profile::apple});
    ASSERT_FALSE(expected.empty());

    Document master, lowDocument, highDocument;
    makeDocument(master, masterText);
    makeDocument(lowDocument, low);
    makeDocument(highDocument, high);
    Presentation presentation;
    ASSERT_EQ(velhls_presentation_new("master.m3u8", 11, master, presentation.out()), VELHLS_OK);
    ASSERT_EQ(velhls_presentation_reference_count(presentation), 3U);
    velhls_reference reference = VELHLS_INIT(velhls_reference);
    ASSERT_EQ(velhls_presentation_reference(presentation, 1, &reference), VELHLS_OK);
    EXPECT_EQ(textOf(reference.uri), "high.m3u8");
    EXPECT_EQ(reference.use, VELHLS_USE_PLAYLIST);
    EXPECT_EQ(reference.line, 5U);
    EXPECT_EQ(velhls_presentation_reference(presentation, 3, &reference), VELHLS_OUT_OF_RANGE);
    ASSERT_EQ(velhls_presentation_add(presentation, "low.m3u8", 8, lowDocument, nullptr, 0), VELHLS_OK);
    ASSERT_EQ(velhls_presentation_add(presentation, "high.m3u8", 9, highDocument, nullptr, 0), VELHLS_OK);
    ASSERT_EQ(velhls_presentation_add(presentation, "missing.m3u8", 12, nullptr, "it is a pipe", 12),
              VELHLS_OK);
    Report report;
    const velhls_profiles profiles = VELHLS_PROFILE_RFC8216 | VELHLS_PROFILE_APPLE;
    ASSERT_EQ(velhls_presentation_check(presentation, profiles, report.out()), VELHLS_OK);
    EXPECT_EQ(velhls_report_kind(report), VELHLS_KIND_MASTER);
    expectSameFindings(velhls_report_findings(report), expected);
    EXPECT_EQ(velhls_presentation_check(presentation, VELHLS_PROFILE_LIBRARY, report.out()),
              VELHLS_INVALID_ARGUMENT);
}

TEST(CMisuse, OfNullPointersIsAStatus) {
    EXPECT_EQ(velhls_document_new("a", 1, nullptr), VELHLS_INVALID_ARGUMENT);
    Document document;
    EXPECT_EQ(velhls_document_new(nullptr, 1, document.out()), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(document, nullptr);
    velhls_kind kind = 0;
    EXPECT_EQ(velhls_detect_kind(nullptr, 1, &kind), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_detect_kind("a", 1, nullptr), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_media_parse("a", 1, nullptr, nullptr), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_master_parse("a", 1, nullptr, nullptr), VELHLS_INVALID_ARGUMENT);
    Media media;
    Error error;
    EXPECT_EQ(velhls_media_parse(nullptr, 1, media.out(), error.out()), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_media_parse_document(nullptr, media.out(), error.out()), VELHLS_INVALID_ARGUMENT);
    velhls_segment segment = VELHLS_INIT(velhls_segment);
    EXPECT_EQ(velhls_media_segment(nullptr, 0, &segment), VELHLS_INVALID_ARGUMENT);
    velhls_media_info info = VELHLS_INIT(velhls_media_info);
    EXPECT_EQ(velhls_media_get(nullptr, &info), VELHLS_INVALID_ARGUMENT);
    double duration = 0;
    EXPECT_EQ(velhls_media_durations(nullptr, 0, 1, &duration), VELHLS_INVALID_ARGUMENT);
    Text text;
    EXPECT_EQ(velhls_media_render(nullptr, text.out()), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_edits_apply(nullptr, text.out(), nullptr), VELHLS_INVALID_ARGUMENT);
    Report report;
    EXPECT_EQ(velhls_check(nullptr, 1, nullptr, report.out()), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_check("a", 1, nullptr, nullptr), VELHLS_INVALID_ARGUMENT);
    velhls_fix fix = VELHLS_INIT(velhls_fix);
    velhls_edit edit = VELHLS_INIT(velhls_edit);
    EXPECT_EQ(velhls_findings_fix(nullptr, 0, 0, &fix), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_findings_fix_edit(nullptr, 0, 0, 0, &edit), VELHLS_INVALID_ARGUMENT);
    Mended mended;
    EXPECT_EQ(velhls_fix_text(nullptr, 1, nullptr, mended.out()), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_fix_text("a", 1, nullptr, nullptr), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_fix_for_models(nullptr, 1, mended.out()), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_fix_for_models("a", 1, nullptr), VELHLS_INVALID_ARGUMENT);
    velhls_done done = VELHLS_INIT(velhls_done);
    EXPECT_EQ(velhls_mended_edit(nullptr, 0, &edit), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_mended_done(nullptr, 0, &done), VELHLS_INVALID_ARGUMENT);
    Comparison comparison;
    EXPECT_EQ(velhls_compare(nullptr, nullptr, 0, comparison.out()), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_error_reason(nullptr, nullptr), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_key_get(nullptr, nullptr), VELHLS_INVALID_ARGUMENT);
    EXPECT_EQ(velhls_map_get(nullptr, nullptr), VELHLS_INVALID_ARGUMENT);
}

TEST(CMisuse, NullHandlesHoldNothing) {
    EXPECT_EQ(velhls_text_data(nullptr), nullptr);
    EXPECT_EQ(velhls_text_length(nullptr), 0U);
    EXPECT_EQ(velhls_document_data(nullptr), nullptr);
    EXPECT_EQ(velhls_document_length(nullptr), 0U);
    EXPECT_EQ(velhls_document_kind(nullptr), VELHLS_KIND_NEITHER);
    EXPECT_EQ(velhls_document_line_count(nullptr), 0U);
    EXPECT_EQ(velhls_document_line_at(nullptr, 0), 0U);
    EXPECT_EQ(velhls_attributes_count(nullptr), 0U);
    EXPECT_EQ(velhls_uris_count(nullptr), 0U);
    EXPECT_EQ(velhls_structure_segment_count(nullptr), 0U);
    EXPECT_EQ(velhls_structure_variant_count(nullptr), 0U);
    EXPECT_EQ(velhls_edits_count(nullptr), 0U);
    EXPECT_EQ(velhls_media_segment_count(nullptr), 0U);
    EXPECT_EQ(velhls_master_variant_count(nullptr), 0U);
    EXPECT_EQ(velhls_master_rendition_count(nullptr), 0U);
    EXPECT_EQ(velhls_findings_count(nullptr), 0U);
    EXPECT_EQ(velhls_report_kind(nullptr), VELHLS_KIND_NEITHER);
    EXPECT_EQ(velhls_report_findings(nullptr), nullptr);
    EXPECT_EQ(velhls_comparison_change_count(nullptr), 0U);
    EXPECT_EQ(velhls_comparison_findings(nullptr), nullptr);
    EXPECT_EQ(velhls_presentation_reference_count(nullptr), 0U);
    EXPECT_EQ(velhls_mended_data(nullptr), nullptr);
    EXPECT_EQ(velhls_mended_length(nullptr), 0U);
    EXPECT_EQ(velhls_mended_rounds(nullptr), 0U);
    EXPECT_EQ(velhls_mended_edit_count(nullptr), 0U);
    EXPECT_EQ(velhls_mended_done_count(nullptr), 0U);
    EXPECT_EQ(velhls_mended_left(nullptr), nullptr);
}

TEST(CMisuse, StructuresWithoutTheirSizeAreNotWritten) {
    Document document;
    makeDocument(document, "#EXTM3U\n");
    velhls_line line = {};
    for (const std::size_t size : {std::size_t{0}, sizeof(line) - 1, std::size_t{4097}, SIZE_MAX}) {
        line.size = size;
        line.number = 7;
        EXPECT_EQ(velhls_document_line(document, 1, &line), VELHLS_INVALID_ARGUMENT);
        EXPECT_EQ(line.number, 7U);
    }
}

TEST(CMisuse, StructuresOfALaterHeaderAreFilledAsFarAsTheyAreKnown) {
    struct Later {
        velhls_line line;
        std::uint64_t later;
    };
    Document document;
    makeDocument(document, "#EXTM3U\n");
    Later later = {};
    later.line.size = sizeof(Later);
    later.later = 7;
    ASSERT_EQ(velhls_document_line(document, 1, &later.line), VELHLS_OK);
    EXPECT_EQ(later.line.number, 1U);
    EXPECT_EQ(later.line.size, sizeof(Later));
    EXPECT_EQ(later.later, 0U);
}

TEST(CStatus, HasATextOfItsOwn) {
    std::set<std::string> texts;
    for (velhls_status status = VELHLS_OK; status <= VELHLS_INTERNAL_ERROR; ++status)
        texts.insert(velhls_status_text(status));
    EXPECT_EQ(texts.size(), 9U);
    EXPECT_STREQ(velhls_status_text(99), "no such status");
    EXPECT_STREQ(velhls_version(), ZORHLSManifestLibVersionString);
}

}  // namespace
