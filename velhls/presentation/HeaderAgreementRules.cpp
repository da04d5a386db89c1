#include <cmath>
#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/presentation/Agreement.h"
#include "velhls/presentation/Presentation.h"

// What the tags of whole playlists say, in the master playlist and in the media playlists, or in these only.

namespace velhls {
namespace {

constexpr std::string_view mediaPlaylists = "media playlists";

using Playlists = std::vector<const PresentationPlaylist*>;

Playlists allOf(const Presentation& presentation) {
    return presentation.playlistsThat([](const PresentationPlaylist&) { return true; });
}

void findTagTwice(const Presentation& presentation, const TellPresentation& tell) {
    for (const std::size_t tag : {tagIndexOf<tag::independentSegments>, tagIndexOf<tag::start>}) {
        if (!presentation.master().has(tag)) continue;
        BrokenPlaces broken;
        broken.what = mediaPlaylists;
        broken.total = presentation.playlists().size();
        for (const PresentationPlaylist& playlist : presentation.playlists()) {
            if (playlist.has(tag)) broken.add(playlist.nameOfTag(tag), "it");
        }
        const VELHLSLine line = presentation.master().firstLine(tag);
        PresentationWords words;
        words.expected = std::string(tagTable[tag].name) + " in the master playlist only";
        words.related = presentation.inMaster(line, line.name);
        words.relatedSeen = "it in the master playlist";
        tell(broken, words);
    }
}

/// What EXT-X-START says.
struct Start {
    std::optional<double> offset;
    std::string_view precise;
};

Start startOf(const VELHLSLine& line) {
    const std::string_view offset = valueOf(line, attribute::timeOffset).value_or("");
    return {VELHLSSyntax::readSignedDecimalFloatingPoint(offset),
            valueOf(line, attribute::precise).value_or(fixed::no)};
}

constexpr std::size_t start = tagIndexOf<tag::start>;

void findOtherStart(const Presentation& presentation, const TellPresentation& tell) {
    if (!presentation.master().has(start)) return;
    const VELHLSLine line = presentation.master().firstLine(start);
    const Start ofMaster = startOf(line);
    BrokenPlaces broken;
    broken.what = mediaPlaylists;
    broken.total = presentation.playlists().size();
    for (const PresentationPlaylist& playlist : presentation.playlists()) {
        if (!playlist.has(start)) continue;
        const Start ofPlaylist = startOf(playlist.tags().firstLine(start));
        const bool isSame = ofPlaylist.offset == ofMaster.offset && ofPlaylist.precise == ofMaster.precise;
        if (!isSame) broken.add(playlist.valueOfTag(start));
    }
    PresentationWords words;
    words.related = presentation.inMaster(line, line.value);
    tell(broken, words);
}

/// Tells of the start in the master playlist once for all playlists that it does not fit. `findTrouble` returns what is
/// expected, or an empty text.
template <typename FindTrouble>
void findUnfitStart(const Presentation& presentation, const TellPresentation& tell, FindTrouble findTrouble) {
    if (!presentation.master().has(start)) return;
    const VELHLSLine line = presentation.master().firstLine(start);
    const auto text = valueOf(line, attribute::timeOffset);
    const auto offset = text ? VELHLSSyntax::readSignedDecimalFloatingPoint(*text) : std::nullopt;
    if (!offset) return;
    PresentationWords words;
    std::size_t total = 0;
    std::size_t count = 0;
    for (const PresentationPlaylist& playlist : presentation.playlists()) {
        if (playlist.isBesideTheOthers() || playlist.segments().empty()) continue;
        ++total;
        const std::string expected = findTrouble(playlist, *offset, std::signbit(*offset));
        if (expected.empty()) continue;
        if (++count > 1) continue;
        words.expected = expected;
        words.related = playlist.uriOf(playlist.segments().back());
        words.relatedSeen = "the last segment, up to " + durationText(playlist.duration());
    }
    if (count == 0) return;
    const std::string seen = std::string(*text) + ", which does not fit " + std::to_string(count) + " of " +
                             std::to_string(total) + " media playlists";
    tell(presentation.inMaster(line, *text), seen, words);
}

bool isBeyond(const PresentationPlaylist& playlist, double offset) {
    return std::fabs(offset) > playlist.duration();
}

void findStartBeyond(const Presentation& presentation, const TellPresentation& tell) {
    findUnfitStart(presentation, tell, [](const PresentationPlaylist& playlist, double offset, bool) {
        if (!isBeyond(playlist, offset)) return std::string();
        return "no more than the duration of the media playlist, " + durationText(playlist.duration());
    });
}

void findStartNearEnd(const Presentation& presentation, const TellPresentation& tell) {
    findUnfitStart(presentation, tell,
                   [](const PresentationPlaylist& playlist, double offset, bool isFromEnd) {
                       const double least = 3.0 * playlist.targetDuration();
                       const double distance = isFromEnd ? -offset : playlist.duration() - offset;
                       if (playlist.hasEnded() || isBeyond(playlist, offset) || distance >= least)
                           return std::string();
                       return "a start at least " + durationText(least) +
                              ", three target durations, before the end of a playlist without EXT-X-ENDLIST";
                   });
}

/// Subtitles and I-frames of a playlist that cannot change may have another one.
bool mayDiffer(const PresentationPlaylist& playlist) {
    const bool isSubtitlesAlone =
        playlist.roles.isSubtitles && !playlist.roles.isVariant && !playlist.roles.isAudio;
    return (isSubtitlesAlone || playlist.isIFrames()) && playlist.type() == fixed::vod;
}

void findOtherTargetDuration(const Presentation& presentation, const TellPresentation& tell) {
    constexpr std::size_t targetDuration = tagIndexOf<tag::targetDuration>;
    const Playlists playlists = presentation.playlistsThat([](const PresentationPlaylist& playlist) {
        return playlist.tags().targetDuration().has_value() && !mayDiffer(playlist);
    });
    if (playlists.empty()) return;
    const auto agreement = agreementByValue(
        playlists, [](const PresentationPlaylist& playlist) { return *playlist.tags().targetDuration(); });
    BrokenPlaces broken;
    broken.what = mediaPlaylists;
    broken.total = playlists.size();
    for (const PresentationPlaylist* const other : agreement.others)
        broken.add(other->valueOfTag(targetDuration));
    PresentationWords words;
    words.expected = std::to_string(*agreement.reference->tags().targetDuration()) +
                     ", the target duration of other media playlists";
    words.related = agreement.reference->valueOfTag(targetDuration);
    tell(broken, words);
}

/// Tells of playlists without a tag that others have.
void findTagMissing(const Playlists& playlists, std::size_t tag, const TellPresentation& tell) {
    BrokenPlaces broken;
    broken.what = mediaPlaylists;
    broken.total = playlists.size();
    const PresentationPlaylist* with = nullptr;
    for (const PresentationPlaylist* const playlist : playlists) {
        if (!playlist->has(tag)) broken.add(playlist->top(), "none");
        if (playlist->has(tag) && with == nullptr) with = playlist;
    }
    if (with == nullptr) return;
    PresentationWords words;
    words.related = with->nameOfTag(tag);
    words.relatedSeen = "it in another media playlist";
    tell(broken, words);
}

constexpr std::size_t playlistType = tagIndexOf<tag::playlistType>;

void findTypeMissing(const Presentation& presentation, const TellPresentation& tell) {
    findTagMissing(allOf(presentation), playlistType, tell);
}

void findOtherType(const Presentation& presentation, const TellPresentation& tell) {
    const Playlists playlists = presentation.playlistsThat(
        [](const PresentationPlaylist& playlist) { return playlist.has(playlistType); });
    if (playlists.empty()) return;
    const auto agreement =
        agreementByValue(playlists, [](const PresentationPlaylist& playlist) { return playlist.type(); });
    BrokenPlaces broken;
    broken.what = mediaPlaylists;
    broken.total = playlists.size();
    for (const PresentationPlaylist* const other : agreement.others)
        broken.add(other->valueOfTag(playlistType));
    PresentationWords words;
    words.related = agreement.reference->valueOfTag(playlistType);
    tell(broken, words);
}

void findDatesMissing(const Presentation& presentation, const TellPresentation& tell) {
    const Playlists playlists = presentation.playlistsThat(
        [](const PresentationPlaylist& playlist) { return playlist.tags().segmentCount() > 0; });
    findTagMissing(playlists, tagIndexOf<tag::programDateTime>, tell);
}

/// Tells of those that are fewer; of as many, of those that go on.
void findOthersEnded(const Presentation& presentation, const TellPresentation& tell) {
    constexpr std::size_t endList = tagIndexOf<tag::endList>;
    const Playlists ended =
        presentation.playlistsThat([](const PresentationPlaylist& playlist) { return playlist.hasEnded(); });
    const Playlists goingOn =
        presentation.playlistsThat([](const PresentationPlaylist& playlist) { return !playlist.hasEnded(); });
    if (ended.empty() || goingOn.empty()) return;
    BrokenPlaces broken;
    broken.what = mediaPlaylists;
    broken.total = ended.size() + goingOn.size();
    PresentationWords words;
    if (ended.size() < goingOn.size()) {
        for (const PresentationPlaylist* const playlist : ended)
            broken.add(playlist->nameOfTag(endList), "it");
        words.expected = "no EXT-X-ENDLIST while other media playlists go on";
        words.related = goingOn.front()->top();
        words.relatedSeen = "a playlist without EXT-X-ENDLIST";
    } else {
        for (const PresentationPlaylist* const playlist : goingOn)
            broken.add(playlist->top(), "none");
        words.related = ended.front()->nameOfTag(endList);
        words.relatedSeen = "the end of another media playlist";
    }
    tell(broken, words);
}

// clang-format off
constexpr PresentationEntry rules[] = {
    {{{"tag-in-master-and-media", warning, "EXT-X-INDEPENDENT-SEGMENTS or EXT-X-START stands in the master playlist and in a media playlist.",
       "the tag in the master playlist only", "RFC 8216, section 4.3.5", false}, "SHOULD NOT"}, findTagTwice},
    {{{"start-differs-from-master", error, "EXT-X-START has another value in a media playlist than in the master playlist.",
       "the value of EXT-X-START in the master playlist", "RFC 8216, section 4.3.5", false}, "MUST"}, findOtherStart},
    {{{"master-start-beyond-playlist", warning, "EXT-X-START of the master playlist points beyond a media playlist.",
       "no more than the duration of the media playlists", "RFC 8216, section 4.3.5.2", false}, "SHOULD NOT"}, findStartBeyond},
    {{{"master-start-near-live-end", warning, "EXT-X-START of the master playlist points within three target durations of the end of a live playlist.",
       "a start that is further from the end", "RFC 8216, section 4.3.5.2", false}, "SHOULD NOT"}, findStartNearEnd},
    {{{"target-durations-differ", error, "Media playlists of one presentation have other target durations.",
       "the target duration of other media playlists", "RFC 8216, section 6.2.4", false}, "MUST"}, findOtherTargetDuration},
    {{{"playlist-type-not-everywhere", error, "A media playlist has no EXT-X-PLAYLIST-TYPE, and another one has.",
       "EXT-X-PLAYLIST-TYPE in all media playlists or in none", "RFC 8216, section 6.2.4", false}, "MUST"}, findTypeMissing},
    {{{"playlist-types-differ", error, "Media playlists of one presentation have other values of EXT-X-PLAYLIST-TYPE.",
       "the type of other media playlists", "RFC 8216, section 6.2.4", false}, "MUST"}, findOtherType},
    {{{"date-times-not-everywhere", error, "A media playlist has no EXT-X-PROGRAM-DATE-TIME, and another one has.",
       "EXT-X-PROGRAM-DATE-TIME in all media playlists or in none", "RFC 8216, section 6.2.4", false}, "MUST"}, findDatesMissing},
    {{{"ended-not-everywhere", warning, "A media playlist has ended, and another one of the presentation goes on.",
       "EXT-X-ENDLIST, as other media playlists have ended", "RFC 8216, section 6.2.4", false}, "MUST"}, findOthersEnded},
};
// clang-format on

}  // namespace

PresentationTable headerAgreementRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
