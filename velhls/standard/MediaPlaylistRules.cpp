#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/document/SecondsText.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"

namespace velhls {
namespace {

void findTargetDurationMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    if (playlist.isMedia() && !playlist.has(tagIndexOf<tag::targetDuration>))
        tell(playlist.top(), playlist.top().text.substr(0, 0), {{}, "none", {}});
}

/// Seconds that a playlist must not be shorter than, and that one should not start nearer to its end.
std::optional<double> threeTargetDurations(const CheckedPlaylist& playlist) {
    const auto target = playlist.targetDuration();
    if (!target) return std::nullopt;
    return 3.0 * static_cast<double>(*target);
}

void findSequenceAfterSegment(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMedia() || playlist.segmentCount() == 0) return;
    const std::size_t firstUri = playlist.structure().segment(0).uriLine;
    constexpr std::size_t tags[] = {tagIndexOf<tag::mediaSequence>, tagIndexOf<tag::discontinuitySequence>};
    for (const std::size_t tag : tags) {
        if (!playlist.has(tag)) continue;
        const VELHLSLine line = playlist.firstLine(tag);
        if (line.number < firstUri) continue;
        const std::string seen = "it after the segment of line " + std::to_string(firstUri);
        tell(line, line.name, {{}, seen, sourceOf(*line.definition)});
    }
}

void findSequenceAfterDiscontinuity(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr std::size_t sequence = tagIndexOf<tag::discontinuitySequence>;
    constexpr std::size_t discontinuity = tagIndexOf<tag::discontinuity>;
    if (!playlist.isMedia() || !playlist.has(sequence) || !playlist.has(discontinuity)) return;
    const VELHLSLine line = playlist.firstLine(sequence);
    const std::size_t first = playlist.lines(discontinuity).front();
    if (line.number < first) return;
    const std::string seen = "it after that of line " + std::to_string(first);
    tell(line, line.name, {{}, seen, {}});
}

/// Whether the segment says how long it is. One with a duration that cannot be read has one of 0.
bool isDurationKnown(const CheckedPlaylist& playlist, const VELHLSStructure::Segment& segment) {
    if (segment.duration != 0.0) return true;
    if (segment.durationLine == 0) return segment.uriLine == 0;
    const VELHLSLine line = playlist.document().line(segment.durationLine);
    return VELHLSSyntax::readDecimalFloatingPoint(durationIn(line)).has_value();
}

/// Whether every segment says how long it is, so that it is known how long the playlist is.
bool isDurationKnown(const CheckedPlaylist& playlist) {
    for (const VELHLSStructure::Segment& segment : playlist.structure().segments()) {
        if (!isDurationKnown(playlist, segment)) return false;
    }
    return !playlist.has(tagIndex("EXT-X-SKIP"));
}

/// Where the EXT-X-START of a media playlist points, in seconds from its start and from its end.
struct Start {
    VELHLSLine line;
    std::string_view text;
    double offset = 0.0;
};

std::optional<Start> startOf(const CheckedPlaylist& playlist) {
    if (!playlist.isMedia() || playlist.segmentCount() == 0 || !playlist.has(tagIndexOf<tag::start>))
        return std::nullopt;
    Start start;
    start.line = playlist.firstLine(tagIndexOf<tag::start>);
    start.text = valueOf(start.line, attribute::timeOffset).value_or("");
    const auto offset = VELHLSSyntax::readSignedDecimalFloatingPoint(start.text);
    if (!offset || !isDurationKnown(playlist)) return std::nullopt;
    start.offset = *offset;
    return start;
}

bool isBeyond(const CheckedPlaylist& playlist, const Start& start) {
    return start.offset > playlist.duration() || -start.offset > playlist.duration();
}

void findStartBeyond(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto start = startOf(playlist);
    if (!start || !isBeyond(playlist, *start)) return;
    const std::string expected =
        "no more than the playlist's duration, " + secondsText(playlist.duration()) + " seconds";
    tell(start->line, start->text, {expected, {}, {}});
}

void findStartNearEnd(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto start = startOf(playlist);
    const auto least = threeTargetDurations(playlist);
    if (!start || !least || playlist.has(tagIndexOf<tag::endList>) || isBeyond(playlist, *start)) return;
    const bool isNegative = !start->text.empty() && start->text.front() == '-';
    const double fromEnd = isNegative ? -start->offset : playlist.duration() - start->offset;
    if (fromEnd >= *least) return;
    const std::string expected = "a start at least " + secondsText(*least) +
                                 " seconds before the end of a playlist without EXT-X-ENDLIST";
    tell(start->line, start->text, {expected, {}, {}});
}

void findVodWithoutEnd(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr std::size_t type = tagIndexOf<tag::playlistType>;
    if (!playlist.isMedia() || !playlist.has(type) || playlist.has(tagIndexOf<tag::endList>)) return;
    const VELHLSLine line = playlist.firstLine(type);
    if (trimmed(line.value) == fixed::vod) tell(line, line.value, {{}, "none", {}});
}

void findShortWindow(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto least = threeTargetDurations(playlist);
    if (!playlist.isSlidingWindow() || !least || playlist.segmentCount() == 0) return;
    if (playlist.duration() >= *least || !isDurationKnown(playlist)) return;
    const VELHLSLine line = playlist.firstLine(tagIndexOf<tag::targetDuration>);
    const std::string expected =
        "at least " + secondsText(*least) + " seconds, three target durations, in a live playlist";
    const std::string seen = secondsText(playlist.duration()) + " seconds";
    tell(line, line.value, {expected, seen, {}});
}

/// That of a segment which has not come is not counted.
bool hasDiscontinuityOfSegment(const CheckedPlaylist& playlist) {
    const auto& lines = playlist.lines(tagIndexOf<tag::discontinuity>);
    if (lines.empty() || playlist.segmentCount() == 0) return false;
    return lines.front() < playlist.structure().segment(playlist.segmentCount() - 1).uriLine;
}

void findDiscontinuitySequenceMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    const bool hasSequence = playlist.has(tagIndexOf<tag::discontinuitySequence>);
    if (!playlist.isSlidingWindow() || hasSequence || !hasDiscontinuityOfSegment(playlist)) return;
    const VELHLSLine line = playlist.firstLine(tagIndexOf<tag::discontinuity>);
    tell(line, line.name, {{}, "none", {}});
}

void findTypeOfLive(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr std::size_t type = tagIndexOf<tag::playlistType>;
    const bool hasMoved = playlist.number(tagIndexOf<tag::mediaSequence>).value_or(0) > 0;
    if (!playlist.isMedia() || !playlist.has(type) || !hasMoved || playlist.has(tagIndexOf<tag::endList>))
        return;
    const VELHLSLine line = playlist.firstLine(type);
    tell(line, line.name);
}

// clang-format off
constexpr PlaylistEntry rules[] = {
    {{{"target-duration-missing", error, "A media playlist has no EXT-X-TARGETDURATION.",
       "EXT-X-TARGETDURATION", "RFC 8216, section 4.3.3.1", false}, "REQUIRED"}, findTargetDurationMissing},
    {{{"sequence-after-segment", error, "EXT-X-MEDIA-SEQUENCE or EXT-X-DISCONTINUITY-SEQUENCE stands after a segment.",
       "the tag before the first segment", "RFC 8216, section 4.3.3.2", false}, "MUST"}, findSequenceAfterSegment},
    {{{"sequence-after-discontinuity", error, "EXT-X-DISCONTINUITY-SEQUENCE stands after an EXT-X-DISCONTINUITY.",
       "the tag before any EXT-X-DISCONTINUITY", "RFC 8216, section 4.3.3.3", false}, "MUST"}, findSequenceAfterDiscontinuity},
    {{{"start-beyond-playlist", warning, "EXT-X-START points beyond the playlist.",
       "no more than the playlist's duration", "RFC 8216, section 4.3.5.2", false}, "SHOULD NOT"}, findStartBeyond},
    {{{"start-near-live-end", warning, "EXT-X-START points within three target durations of the end of a live playlist.",
       "a start that is further from the end", "RFC 8216, section 4.3.5.2", false}, "SHOULD NOT"}, findStartNearEnd},
    {{{"vod-without-end", warning, "A playlist of type VOD, which cannot grow, has no EXT-X-ENDLIST.",
       "EXT-X-ENDLIST in a playlist of type VOD", "RFC 8216, section 6.2.1", false}, "MUST"}, findVodWithoutEnd},
    {{{"live-window-short", warning, "A live playlist that segments were removed from is shorter than three target durations.",
       "at least three target durations", "RFC 8216, section 6.2.2", false}, "MUST NOT"}, findShortWindow},
    {{{"discontinuity-sequence-missing", warning, "A live playlist that segments were removed from has EXT-X-DISCONTINUITY, and no EXT-X-DISCONTINUITY-SEQUENCE.",
       "EXT-X-DISCONTINUITY-SEQUENCE in a live playlist with EXT-X-DISCONTINUITY", "RFC 8216, section 6.2.2", false}, "MUST"}, findDiscontinuitySequenceMissing},
    {{{"live-window-with-type", warning, "A live playlist that segments were removed from has EXT-X-PLAYLIST-TYPE.",
       "no EXT-X-PLAYLIST-TYPE in a playlist that segments are removed from", "RFC 8216, section 6.2.2", false}, "MUST NOT"}, findTypeOfLive},
};
// clang-format on

}  // namespace

StandardTable<CheckedPlaylist> mediaPlaylistRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
