// Media playlists: the record, its segments, and the columns of these.
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Calls.h"
#include "Writing.h"

using velhls_c::fill;
using velhls_c::give;
using velhls_c::stringOf;
using velhls_c::truthOf;

struct velhls_media {
    std::shared_ptr<VELHLSMediaStream> stream;
    /// Those of the stream, in the order of the names.
    std::vector<std::pair<std::string_view, std::string_view>> variables;
    /// Nothing where the playlist was not parsed of a document.
    std::optional<VELHLSRecordLines> lines;
};

namespace {

const velhls_key* keyOf(const VELHLSMediaSegment& segment) {
    return reinterpret_cast<const velhls_key*>(segment.protectionData.get());
}

const velhls_map* mapOf(const VELHLSMediaSegment& segment) {
    return reinterpret_cast<const velhls_map*>(segment.misMap.get());
}

/// Stores the playlist that the parse made, or why there is none.
velhls_status giveParsed(std::unique_ptr<velhls_media> parsed, VELHLSReason reason, velhls_media** media,
                         velhls_error** error) {
    if (parsed->stream == nullptr) {
        velhls_c::tell(error, std::move(reason));
        return VELHLS_REJECTED;
    }
    for (const auto& [name, value] : *parsed->stream->hlsDefineMap)
        parsed->variables.emplace_back(name, value);
    std::sort(parsed->variables.begin(), parsed->variables.end());
    *media = parsed.release();
    return VELHLS_OK;
}

velhls_segment structureOf(const VELHLSMediaSegment& segment) {
    velhls_segment value = {};
    value.uri = stringOf(segment.uri);
    value.title = stringOf(segment.title);
    value.duration = segment.duration;
    value.start_time = segment.startTime;
    value.program_date_time = segment.programDateTime;
    value.media_sequence = segment.mediaSequenceNumber;
    value.discontinuity_sequence = segment.discontinuitySequenceNumber;
    value.discontinuity = truthOf(segment.discontinuity);
    value.byte_range_offset = -1;
    if (segment.byteRange != nullptr) {
        value.has_byte_range = 1;
        value.byte_range_length = segment.byteRange->length;
        value.byte_range_offset = segment.byteRange->offset;
    }
    value.key = keyOf(segment);
    value.map = mapOf(segment);
    value.cue_out = stringOf(segment.cueOut);
    value.cue_out_cont = stringOf(segment.cueOutCont);
    value.cue_in = truthOf(segment.cueIn);
    return value;
}

/// A column of the segments; nothing is written for a null playlist.
template <typename Value, typename ValueOf>
velhls_status fillColumn(const velhls_media* media, size_t first, size_t count, Value* values,
                         ValueOf valueOf) {
    if (media == nullptr) return VELHLS_INVALID_ARGUMENT;
    return fill(media->stream->segments, first, count, values, valueOf);
}

}  // namespace

velhls_status velhls_media_parse(const char* text, size_t length, velhls_media** media,
                                 velhls_error** error) {
    velhls_c::clearError(error);
    if (!velhls_c::clear(media) || !velhls_c::isText(text, length)) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::guarded([&] {
        VELHLSReason reason;
        auto parsed = std::make_unique<velhls_media>();
        parsed->stream = VELHLSMediaStream::parseMediaStream(velhls_c::viewOf(text, length), &reason);
        return giveParsed(std::move(parsed), std::move(reason), media, error);
    });
}

velhls_status velhls_media_parse_document(const velhls_document* document, velhls_media** media,
                                          velhls_error** error) {
    velhls_c::clearError(error);
    if (!velhls_c::clear(media) || document == nullptr) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::guarded([&] {
        VELHLSReason reason;
        auto parsed = std::make_unique<velhls_media>();
        parsed->stream = parsed->lines.emplace().parseMediaStream(document->document, &reason);
        return giveParsed(std::move(parsed), std::move(reason), media, error);
    });
}

void velhls_media_free(velhls_media* media) {
    delete media;
}

velhls_status velhls_media_get(const velhls_media* media, velhls_media_info* info) {
    if (media == nullptr) return VELHLS_INVALID_ARGUMENT;
    const VELHLSMediaStream& stream = *media->stream;
    velhls_media_info value = {};
    value.has_header = truthOf(stream.hasExtM3U);
    value.version = stream.version;
    value.target_duration = stream.targetDuration;
    value.playlist_type = stream.playlistType;
    value.end_list = truthOf(stream.endList);
    value.media_sequence = stream.mediaSequence;
    value.discontinuity_sequence = stream.discontinuitySequence;
    value.i_frames_only = truthOf(stream.iFramesOnly);
    value.independent_segments = truthOf(stream.independentSegments);
    value.start_time_offset = stream.startTimeOffset;
    value.start_precise = truthOf(stream.startPrecise);
    value.discontinuity_seen = truthOf(stream.discontinuitySeen);
    value.segment_count = stream.segments.size();
    value.variable_count = media->variables.size();
    return give(value, info);
}

velhls_status velhls_media_variable(const velhls_media* media, size_t index, velhls_string* name,
                                    velhls_string* value) {
    if (media == nullptr || name == nullptr || value == nullptr) return VELHLS_INVALID_ARGUMENT;
    if (index >= media->variables.size()) return VELHLS_OUT_OF_RANGE;
    *name = stringOf(media->variables[index].first);
    *value = stringOf(media->variables[index].second);
    return VELHLS_OK;
}

size_t velhls_media_segment_count(const velhls_media* media) {
    return media == nullptr ? 0 : media->stream->segments.size();
}

velhls_status velhls_media_segment(const velhls_media* media, size_t index, velhls_segment* segment) {
    if (media == nullptr) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::giveOne(media->stream->segments, index, segment,
                             [](const auto& found) { return structureOf(*found); });
}

velhls_status velhls_media_segment_lines(const velhls_media* media, size_t index, size_t* first,
                                         size_t* last) {
    if (media == nullptr) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::giveLines(media->lines, media->stream->segments, index, first, last);
}

velhls_status velhls_media_render(const velhls_media* media, velhls_text** text) {
    if (!velhls_c::clear(text) || media == nullptr) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::render(*media->stream, text);
}

velhls_status velhls_media_write(const velhls_media* media, const velhls_write_options* options,
                                 velhls_text** text, velhls_error** error) {
    velhls_c::clearError(error);
    if (!velhls_c::clear(text) || media == nullptr) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::write(*media->stream, options, text, error);
}

velhls_status velhls_media_durations(const velhls_media* media, size_t first, size_t count, double* values) {
    return fillColumn(media, first, count, values, [](const auto& segment) { return segment.duration; });
}

velhls_status velhls_media_start_times(const velhls_media* media, size_t first, size_t count,
                                       double* values) {
    return fillColumn(media, first, count, values, [](const auto& segment) { return segment.startTime; });
}

velhls_status velhls_media_program_date_times(const velhls_media* media, size_t first, size_t count,
                                              double* values) {
    return fillColumn(media, first, count, values,
                      [](const auto& segment) { return segment.programDateTime; });
}

velhls_status velhls_media_sequences(const velhls_media* media, size_t first, size_t count,
                                     uint64_t* values) {
    return fillColumn(media, first, count, values,
                      [](const auto& segment) { return segment.mediaSequenceNumber; });
}

velhls_status velhls_media_discontinuity_sequences(const velhls_media* media, size_t first, size_t count,
                                                   uint64_t* values) {
    return fillColumn(media, first, count, values,
                      [](const auto& segment) { return segment.discontinuitySequenceNumber; });
}

velhls_status velhls_media_discontinuities(const velhls_media* media, size_t first, size_t count,
                                           uint8_t* values) {
    return fillColumn(media, first, count, values,
                      [](const auto& segment) { return segment.discontinuity ? uint8_t{1} : uint8_t{0}; });
}

velhls_status velhls_media_byte_ranges(const velhls_media* media, size_t first, size_t count,
                                       int64_t* lengths, int64_t* offsets) {
    if (offsets == nullptr && count != 0) return VELHLS_INVALID_ARGUMENT;
    const velhls_status status = fillColumn(media, first, count, lengths, [](const auto& segment) {
        return segment.byteRange == nullptr ? int64_t{-1} : segment.byteRange->length;
    });
    if (status != VELHLS_OK) return status;
    return fillColumn(media, first, count, offsets, [](const auto& segment) {
        return segment.byteRange == nullptr ? int64_t{-1} : segment.byteRange->offset;
    });
}

velhls_status velhls_media_uris(const velhls_media* media, size_t first, size_t count,
                                velhls_string* values) {
    return fillColumn(media, first, count, values, [](const auto& segment) { return stringOf(segment.uri); });
}

velhls_status velhls_media_joined_uris(const velhls_media* media, size_t first, size_t count,
                                       velhls_text** text, size_t* ends) {
    if (!velhls_c::clear(text)) return VELHLS_INVALID_ARGUMENT;
    return velhls_c::guarded([&] {
        size_t length = 0;
        const velhls_status status = fillColumn(media, first, count, ends, [&length](const auto& segment) {
            return length += segment.uri.size();
        });
        if (status != VELHLS_OK) return status;
        auto joined = std::make_unique<velhls_text>();
        joined->text.reserve(length);
        for (size_t index = first; index < first + count; ++index)
            joined->text += media->stream->segments[index]->uri;
        *text = joined.release();
        return velhls_status{VELHLS_OK};
    });
}

velhls_status velhls_media_titles(const velhls_media* media, size_t first, size_t count,
                                  velhls_string* values) {
    return fillColumn(media, first, count, values,
                      [](const auto& segment) { return stringOf(segment.title); });
}

velhls_status velhls_media_keys(const velhls_media* media, size_t first, size_t count,
                                const velhls_key** values) {
    return fillColumn(media, first, count, values, keyOf);
}

velhls_status velhls_media_maps(const velhls_media* media, size_t first, size_t count,
                                const velhls_map** values) {
    return fillColumn(media, first, count, values, mapOf);
}
