// Media playlists, segments, keys, initialization sections and byte ranges.
#include <sstream>

#include "Common.h"

namespace velhls_python {

namespace {

using Segment = VELHLSMediaSegment;
using Key = VELHLSProtectionData;
using Map = VELHLSMISMap;
using ByteRange = VELHLSByteRange;
using Media = VELHLSMediaStream;

/// The value whose text this is. Throws ValueError.
template <typename Value, typename TextOf>
Value valueNamed(const std::string& text, std::initializer_list<Value> values, TextOf textOf) {
    std::string known;
    for (const Value value : values) {
        if (textOf(value) == text) return value;
        known += (known.empty() ? "" : ", ") + std::string(textOf(value));
    }
    throw py::value_error("expected one of " + known + ", seen " + text);
}

void defByteRange(py::module_& module) {
    py::class_<ByteRange, std::shared_ptr<ByteRange>> made(
        module, "ByteRange", "A sub-range of a resource (RFC 8216, section 4.3.2.2).");
    made.def(py::init<>());
    defValue(made, "length", &ByteRange::length, "Number of bytes.");
    defValue(made, "offset", &ByteRange::offset, "First byte, counted from 0; -1 when none was given.");
}

void defKey(py::module_& module) {
    py::class_<Key, std::shared_ptr<Key>> made(
        module, "Key", "An encryption key: EXT-X-KEY or EXT-X-SESSION-KEY (RFC 8216, section 4.3.2.4).");
    made.def(py::init<>());
    made.def_property(
        "method", [](const Key& key) { return strOf(Key::textOf(key.method)); },
        [](Key& key, const py::object& text) {
            key.method = valueNamed(bytesOf(text), {Key::None, Key::AES128, Key::SampleAES}, Key::textOf);
        },
        "METHOD: \"NONE\", \"AES-128\" or \"SAMPLE-AES\".");
    defText(made, "uri", &Key::uri, "URI of the key, not resolved.");
    defText(made, "iv", &Key::iv, "IV as it was written; empty when absent.");
    defText(made, "key_format", &Key::keyFormat, "KEYFORMAT; empty when absent.");
    defValue(made, "key_format_versions", &Key::keyFormatVersions,
             "KEYFORMATVERSIONS, a copy; [1] when absent.");
}

void defMap(py::module_& module) {
    py::class_<Map, std::shared_ptr<Map>> made(
        module, "Map", "A media initialization section: EXT-X-MAP (RFC 8216, section 4.3.2.5).");
    made.def(py::init<>());
    defText(made, "uri", &Map::uri, "URI of the resource that holds it, not resolved.");
    defRecord(made, "byte_range", &Map::byteRange, "BYTERANGE; None when absent.");
}

void defSegment(py::module_& module) {
    py::class_<Segment, std::shared_ptr<Segment>> made(
        module, "Segment",
        "One media segment: the tags that describe it, and its URI (RFC 8216, section 4.3.2).");
    made.def(py::init<>());
    defText(made, "uri", &Segment::uri, "The URI, not resolved.");
    defValue(made, "duration", &Segment::duration, "EXTINF: seconds.");
    defText(made, "title", &Segment::title, "Title of EXTINF with the comma before it; empty without one.");
    defValue(made, "start_time", &Segment::startTime, "The durations of the segments before it: seconds.");
    defValue(made, "media_sequence", &Segment::mediaSequenceNumber, "Media sequence number.");
    defValue(made, "discontinuity_sequence", &Segment::discontinuitySequenceNumber,
             "Discontinuity sequence number.");
    defValue(made, "discontinuity", &Segment::discontinuity, "EXT-X-DISCONTINUITY stands before it.");
    defValue(made, "program_date_time", &Segment::programDateTime,
             "Seconds since the Unix epoch; 0 means none.");
    defRecord(made, "byte_range", &Segment::byteRange, "EXT-X-BYTERANGE; None when absent.");
    defRecord(made, "key", &Segment::protectionData,
              "The key in force, which segments share; None when there is none.");
    defRecord(made, "map", &Segment::misMap, "The initialization section in force, likewise.");
    defValue(made, "cue_in", &Segment::cueIn, "EXT-X-CUE-IN stood among its tags (vendor extension).");
    defText(made, "cue_out", &Segment::cueOut, "The text after EXT-X-CUE-OUT (vendor extension).");
    defText(made, "cue_out_cont", &Segment::cueOutCont,
            "The text after EXT-X-CUE-OUT-CONT (vendor extension).");
}

py::dict variablesOf(const Media& playlist) {
    py::dict variables;
    if (playlist.hlsDefineMap == nullptr) return variables;
    for (const auto& [name, value] : *playlist.hlsDefineMap)
        variables[strOf(name)] = strOf(value);
    return variables;
}

void setVariables(Media& playlist, const py::dict& variables) {
    auto defines = std::make_shared<VELHLSDefineMap>();
    for (const auto& [name, value] : variables)
        defines->emplace(bytesOf(name), bytesOf(value));
    playlist.setHLSDefineMap(std::move(defines));
}

template <typename PlaylistClass>
void defMediaFields(PlaylistClass& made) {
    defValue(made, "has_header", &Media::hasExtM3U, "\"#EXTM3U\" was read.");
    defValue(made, "version", &Media::version, "EXT-X-VERSION.");
    defValue(made, "target_duration", &Media::targetDuration, "EXT-X-TARGETDURATION: seconds.");
    made.def_property(
        "playlist_type", [](const Media& playlist) { return strOf(Media::textOf(playlist.playlistType)); },
        [](Media& playlist, const py::object& text) {
            playlist.playlistType =
                valueNamed(bytesOf(text), {Media::None, Media::Event, Media::Vod}, Media::textOf);
        },
        "EXT-X-PLAYLIST-TYPE: \"EVENT\", \"VOD\", or empty without one.");
    defValue(made, "media_sequence", &Media::mediaSequence, "EXT-X-MEDIA-SEQUENCE.");
    defValue(made, "discontinuity_sequence", &Media::discontinuitySequence, "EXT-X-DISCONTINUITY-SEQUENCE.");
    defValue(made, "end_list", &Media::endList, "EXT-X-ENDLIST was read.");
    defValue(made, "i_frames_only", &Media::iFramesOnly, "EXT-X-I-FRAMES-ONLY was read.");
    defValue(made, "independent_segments", &Media::independentSegments,
             "EXT-X-INDEPENDENT-SEGMENTS was read.");
    defValue(made, "start_time_offset", &Media::startTimeOffset,
             "TIME-OFFSET of EXT-X-START in seconds; 0 when there is none.");
    defValue(made, "start_precise", &Media::startPrecise, "PRECISE=YES of EXT-X-START.");
    made.def_property("variables", variablesOf, setVariables, "The variables of EXT-X-DEFINE, a copy.");
    defListProperty(made, "segments", &Media::segments, "The segments, in the order of the playlist.");
}

template <typename PlaylistClass>
void defMediaColumns(PlaylistClass& made) {
    made.def_property_readonly(
        "durations",
        [](const Media& playlist) {
            return columnOf<double>(playlist.segments,
                                    [](const Segment& segment) { return segment.duration; });
        },
        "The durations of all segments in seconds, as a memoryview of doubles: a copy.");
    made.def_property_readonly(
        "start_times",
        [](const Media& playlist) {
            return columnOf<double>(playlist.segments,
                                    [](const Segment& segment) { return segment.startTime; });
        },
        "The start times of all segments in seconds, as a memoryview of doubles: a copy.");
    made.def_property_readonly(
        "byte_range_lengths",
        [](const Media& playlist) {
            return columnOf<std::int64_t>(playlist.segments, [](const Segment& segment) {
                return segment.byteRange == nullptr ? std::int64_t{-1} : segment.byteRange->length;
            });
        },
        "The lengths of all byte ranges, as a memoryview of 64-bit integers: a copy. -1 without a range.");
    made.def_property_readonly(
        "byte_range_offsets",
        [](const Media& playlist) {
            return columnOf<std::int64_t>(playlist.segments, [](const Segment& segment) {
                return segment.byteRange == nullptr ? std::int64_t{-1} : segment.byteRange->offset;
            });
        },
        "The offsets of all byte ranges, likewise. -1 where there is none.");
    made.def_property_readonly(
        "uris",
        [](const Media& playlist) {
            py::list uris(playlist.segments.size());
            for (std::size_t index = 0; index < playlist.segments.size(); ++index)
                uris[index] = strOf(playlist.segments[index]->uri);
            return uris;
        },
        "The URIs of all segments, as a list of str.");
}

}  // namespace

void defMedia(py::module_& module) {
    defByteRange(module);
    defKey(module);
    defMap(module);
    defSegment(module);
    defList<Media, Segment>(module, "SegmentList", "The segments of a media playlist, changed in place.");
    py::class_<Media, std::shared_ptr<Media>> made(
        module, "MediaPlaylist",
        "One media playlist: its header values and its segments (RFC 8216, section 4.3.3).");
    made.def(py::init<>());
    defMediaFields(made);
    defMediaColumns(made);
    made.def(
        "__len__", [](const Media& playlist) { return playlist.segments.size(); }, "The number of segments.");
    made.def("validate", &Media::validate, "Whether every segment is valid.");
    made.def(
        "render",
        [](const Media& playlist) {
            std::ostringstream out;
            if (playlist.render(out) != 0) throw py::value_error("a segment is not valid");
            return strOf(out.str());
        },
        "The playlist as text, as the models write it. ValueError when a segment is not valid.");
    made.def(
        "write",
        [](const Media& playlist, bool cueMarkers, bool everyDate, bool clearInitializationSections) {
            VELHLSWriterOptions options;
            options.cueMarkers = cueMarkers;
            options.everyDate = everyDate;
            options.clearInitializationSections = clearInitializationSections;
            std::ostringstream out;
            const auto refused = VELHLSPlaylistWriter::write(playlist, out, options);
            if (refused) throw py::value_error(*refused);
            return strOf(out.str());
        },
        py::kw_only(), py::arg("cue_markers") = true, py::arg("every_date") = false,
        py::arg("clear_initialization_sections") = false,
        "The playlist as text as RFC 8216 wants it. ValueError, which says why, for what cannot be written "
        "so.");
}

}  // namespace velhls_python
