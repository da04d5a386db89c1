#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/SecondsText.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/standard/CheckedPlaylist.h"
#include "velhls/standard/UriSuffix.h"

// Apple's authoring rules for media playlists.

namespace velhls {
namespace {

bool isIFrames(const CheckedPlaylist& playlist) {
    return playlist.has(tagIndexOf<tag::iFramesOnly>);
}

void findLongSegment(const CheckedSegment& checked, const Tell& tell) {
    const auto target = checked.playlist.targetDuration();
    constexpr double most = 0.5;
    if (!target || checked.segment.duration <= static_cast<double>(*target) + most) return;
    const VELHLSLine line = checked.durationLine();
    tell(line, line.value.substr(0, line.value.find(',')));
}

void findMapMissing(const CheckedSegment& checked, const Tell& tell) {
    const bool isFragment = checked.format == SegmentFormat::fragmentedMp4;
    if (isFragment && checked.segment.inForce.mapLine == 0)
        tell(checked.uri, checked.uri.value, {{}, "none", {}});
}

void findPlainHttp(const CheckedSegment& checked, const Tell& tell) {
    if (startsWith(checked.uri.value, "http://")) tell(checked.uri, checked.uri.value);
}

void findOtherTargetDuration(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr std::uint64_t recommended = 6;
    if (!playlist.isMedia() || isIFrames(playlist) ||
        playlist.targetDuration().value_or(recommended) == recommended)
        return;
    const VELHLSLine line = playlist.firstLine(tagIndexOf<tag::targetDuration>);
    tell(line, line.value);
}

/// The last segment is what is left.
void findOtherDurations(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMedia() || isIFrames(playlist) || playlist.segmentCount() == 0) return;
    const VELHLSStructure::Segment last = playlist.structure().segment(playlist.segmentCount() - 1);
    const bool isAlone = last.index == 0;
    const double mean = isAlone ? last.duration : last.startTime / static_cast<double>(last.index);
    constexpr double recommended = 6.0;
    constexpr double tolerance = 1.5;
    if (std::fabs(mean - recommended) <= tolerance || (isAlone && mean < recommended)) return;
    const VELHLSLine line = playlist.document().line(playlist.structure().segment(0).firstLine);
    const std::string seen = secondsText(mean) + " seconds on average";
    tell(line, line.text, {{}, seen, {}});
}

void findDateMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    const bool hasDate = playlist.has(tagIndexOf<tag::programDateTime>);
    if (playlist.isLive() && playlist.segmentCount() > 0 && !hasDate)
        tell(playlist.top(), playlist.top().text.substr(0, 0), {{}, "none", {}});
}

void findTypeMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    if (!playlist.isMedia() || !playlist.has(tagIndexOf<tag::endList>) ||
        playlist.has(tagIndexOf<tag::playlistType>))
        return;
    tell(playlist.top(), playlist.top().text.substr(0, 0), {{}, "none", {}});
}

void findFewSegments(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr std::size_t least = 6;
    if (!playlist.isLive() || playlist.segmentCount() >= least || playlist.has(tagIndex("EXT-X-SKIP")))
        return;
    const std::string seen = std::to_string(playlist.segmentCount());
    tell(playlist.top(), playlist.top().text.substr(0, 0), {{}, seen, {}});
}

void findShortLive(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr double quarterOfAnHour = 900.0;
    // Segments are of any length, so that the last one may be missing to it.
    const double tolerance = static_cast<double>(playlist.targetDuration().value_or(0));
    if (!playlist.isLive() || playlist.has(tagIndex("EXT-X-SKIP")) ||
        playlist.duration() + tolerance >= quarterOfAnHour)
        return;
    const std::string seen = std::to_string(std::llround(playlist.duration())) + " seconds";
    tell(playlist.top(), playlist.top().text.substr(0, 0), {{}, seen, {}});
}

void findDiscontinuitySequenceMissing(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr std::size_t discontinuity = tagIndexOf<tag::discontinuity>;
    if (!playlist.isLive() || !playlist.has(discontinuity) ||
        playlist.has(tagIndexOf<tag::discontinuitySequence>))
        return;
    const VELHLSLine line = playlist.firstLine(discontinuity);
    tell(line, line.name, {{}, "none", {}});
}

std::optional<double> secondsOf(const CheckedPlaylist& playlist, std::size_t tag, std::string_view name) {
    const auto text = playlist.has(tag) ? valueOf(playlist.firstLine(tag), name) : std::nullopt;
    return text ? VELHLSSyntax::readDecimalFloatingPoint(*text) : std::nullopt;
}

constexpr std::size_t serverControl = tagIndex("EXT-X-SERVER-CONTROL");
constexpr std::size_t partInf = tagIndex("EXT-X-PART-INF");

void findShortPartHoldBack(const CheckedPlaylist& playlist, const Tell& tell) {
    const auto target = secondsOf(playlist, partInf, "PART-TARGET");
    const auto holdBack = secondsOf(playlist, serverControl, "PART-HOLD-BACK");
    constexpr double rounding = 1e-6;
    if (!target || !holdBack || *holdBack + rounding >= 3.0 * *target) return;
    const VELHLSLine line = playlist.firstLine(serverControl);
    tell(line, line.attributes().find("PART-HOLD-BACK")->value);
}

void findNoDeltaUpdates(const CheckedPlaylist& playlist, const Tell& tell) {
    constexpr double longWindow = 120.0;
    const bool isLowLatency = playlist.has(partInf) || playlist.has(serverControl);
    if (!playlist.isLive() || !isLowLatency || playlist.duration() <= longWindow) return;
    const VELHLSLine line = playlist.firstLine(playlist.has(serverControl) ? serverControl : partInf);
    if (!valueOf(line, "CAN-SKIP-UNTIL")) tell(line, line.name, {{}, "none", {}});
}

// clang-format off
constexpr SegmentEntry ofSegments[] = {
    {{{"authoring-segment-too-long", error, "A segment is more than half a second longer than the target duration.",
       "no more than the target duration and half a second", "Apple's authoring rules, 7.7", false}, "MUST NOT"}, findLongSegment},
    {{{"authoring-map-missing", error, "A segment of fragmented MP4 has no EXT-X-MAP.",
       "EXT-X-MAP with fragmented MP4", "Apple's authoring rules, 8.20", false}, "MUST"}, findMapMissing},
    {{{"authoring-segment-not-https", warning, "A segment is fetched by http.",
       "https", "Apple's authoring rules, 11.3", false}, "SHOULD"}, findPlainHttp},
};

constexpr PlaylistEntry ofPlaylists[] = {
    {{{"authoring-target-duration", warning, "The target duration is not 6 seconds.",
       "6", "Apple's authoring rules, 7.5", false}, "SHOULD"}, findOtherTargetDuration},
    {{{"authoring-segment-durations", warning, "The segments are not about 6 seconds long.",
       "segments of about 6 seconds", "Apple's authoring rules, 7.6", false}, "SHOULD"}, findOtherDurations},
    {{{"authoring-live-without-dates", error, "A live playlist has no EXT-X-PROGRAM-DATE-TIME.",
       "EXT-X-PROGRAM-DATE-TIME in a live playlist", "Apple's authoring rules, 8.4", false}, "MUST"}, findDateMissing},
    {{{"authoring-vod-without-type", error, "A playlist that has ended has no EXT-X-PLAYLIST-TYPE.",
       "EXT-X-PLAYLIST-TYPE:VOD with EXT-X-ENDLIST", "Apple's authoring rules, 8.6", false}, "MUST"}, findTypeMissing},
    {{{"authoring-live-segments", error, "A live playlist has fewer than six segments.",
       "at least six segments in a live playlist", "Apple's authoring rules, 8.11", false}, "MUST"}, findFewSegments},
    {{{"authoring-live-duration", warning, "A live playlist is shorter than 15 minutes.",
       "at least 15 minutes in a live playlist", "Apple's authoring rules, 8.12", false}, "SHOULD"}, findShortLive},
    {{{"authoring-discontinuity-sequence-missing", error, "A live playlist has EXT-X-DISCONTINUITY, and no EXT-X-DISCONTINUITY-SEQUENCE.",
       "EXT-X-DISCONTINUITY-SEQUENCE", "Apple's authoring rules, 8.17", false}, "MUST"}, findDiscontinuitySequenceMissing},
    {{{"authoring-part-hold-back", error, "PART-HOLD-BACK is less than three part targets.",
       "at least three times PART-TARGET", "Apple's authoring rules, 14.3", false}, "MUST"}, findShortPartHoldBack},
    {{{"authoring-delta-updates-missing", warning, "A low-latency playlist of more than two minutes offers no delta updates.",
       "CAN-SKIP-UNTIL in a playlist of more than two minutes", "Apple's authoring rules, 14.4", false}, "SHOULD"}, findNoDeltaUpdates},
};
// clang-format on

}  // namespace

StandardTable<CheckedSegment> authoringSegmentRules() {
    return {ofSegments, std::size(ofSegments)};
}

StandardTable<CheckedPlaylist> authoringMediaRules() {
    return {ofPlaylists, std::size(ofPlaylists)};
}

}  // namespace velhls
