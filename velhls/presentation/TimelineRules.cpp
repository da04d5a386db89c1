#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/ReasonText.h"
#include "velhls/presentation/Agreement.h"
#include "velhls/presentation/Presentation.h"
#include "velhls/presentation/Timelines.h"

// What media playlists say of the same time.

namespace velhls {
namespace {

using Playlists = std::vector<const PresentationPlaylist*>;

Playlists withSegments(const Presentation& presentation) {
    return presentation.playlistsThat(
        [](const PresentationPlaylist& playlist) { return !playlist.segments().empty(); });
}

/// Tells of the playlists that disagree with most. `find` returns the segments in which the right one disagrees with the left
/// one, `placeOf` what is told of a segment.
template <typename Find, typename PlaceOf>
void tellOfOthers(const Playlists& playlists, const TellPresentation& tell, Find find, PlaceOf placeOf) {
    const auto agreement = agreementByPairs<PresentationPlaylist>(
        playlists, [&](const PresentationPlaylist& left, const PresentationPlaylist& right) {
            return !find(left, right).has_value();
        });
    BrokenPlaces broken;
    broken.what = "media playlists";
    broken.total = playlists.size();
    PresentationWords words;
    for (const PresentationPlaylist* const other : agreement.others) {
        const auto pair = find(*agreement.reference, *other);
        if (!pair) continue;
        const BrokenPlace place = placeOf(*other, pair->right);
        broken.add(place.place, place.seen);
        if (broken.places.size() > 1) continue;
        const BrokenPlace related = placeOf(*agreement.reference, pair->left);
        words.related = related.place;
        words.relatedSeen = related.seen;
    }
    tell(broken, words);
}

/// By sequence numbers alone, or by what tells for certain.
template <bool isBySequence>
void findDiscontinuities(const Presentation& presentation, const TellPresentation& tell) {
    tellOfOthers(
        withSegments(presentation), tell,
        [](const PresentationPlaylist& left, const PresentationPlaylist& right) {
            const Alignment alignment = alignmentOf(left, right);
            if ((alignment == Alignment::bySequence) != isBySequence) return std::optional<SegmentPair>();
            return findOtherDiscontinuity(left, right, alignment);
        },
        [](const PresentationPlaylist& playlist, std::size_t place) {
            const TimedSegment& segment = playlist.segments()[place];
            return BrokenPlace{playlist.uriOf(segment),
                               std::to_string(segment.discontinuity) + " at " + durationText(segment.start)};
        });
}

/// The last segments of both, when one has more than the other by more than the target duration.
std::optional<SegmentPair> findOtherLength(const PresentationPlaylist& left,
                                           const PresentationPlaylist& right) {
    const auto alone = contentOfOneAlone(left, right, alignmentOf(left, right));
    // What goes on was fetched at other moments.
    const double targets = left.hasEnded() ? 1.0 : 3.0;
    const double most = targets * std::max(left.targetDuration(), right.targetDuration());
    if (!alone || left.hasEnded() != right.hasEnded() || *alone <= most) return std::nullopt;
    return SegmentPair{left.segments().size() - 1, right.segments().size() - 1};
}

BrokenPlace endOf(const PresentationPlaylist& playlist, std::size_t lastSegment) {
    return {playlist.uriOf(playlist.segments()[lastSegment]), durationText(playlist.duration())};
}

void findOtherLengths(const Presentation& presentation, const TellPresentation& tell) {
    const Playlists playlists = presentation.playlistsThat([](const PresentationPlaylist& playlist) {
        return !playlist.segments().empty() && !playlist.isBesideTheOthers();
    });
    tellOfOthers(playlists, tell, findOtherLength, endOf);
}

/// Each beside the first playlist that is none of these.
void findOtherLengthsBeside(const Presentation& presentation, const TellPresentation& tell) {
    const PresentationPlaylist* main = nullptr;
    BrokenPlaces broken;
    broken.what = "playlists of subtitles and I-frames";
    PresentationWords words;
    for (const PresentationPlaylist* const playlist : withSegments(presentation)) {
        if (main == nullptr && !playlist->isBesideTheOthers()) main = playlist;
    }
    if (main == nullptr) return;
    for (const PresentationPlaylist* const playlist : withSegments(presentation)) {
        if (!playlist->isBesideTheOthers()) continue;
        ++broken.total;
        const auto pair = findOtherLength(*main, *playlist);
        if (!pair) continue;
        const BrokenPlace end = endOf(*playlist, pair->right);
        broken.add(end.place, end.seen);
        words.related = endOf(*main, pair->left).place;
        words.relatedSeen = durationText(main->duration());
    }
    tell(broken, words);
}

void findOtherDates(const Presentation& presentation, const TellPresentation& tell) {
    tellOfOthers(
        withSegments(presentation), tell,
        [](const PresentationPlaylist& left, const PresentationPlaylist& right) {
            return findOtherDate(left, right, alignmentOf(left, right));
        },
        [](const PresentationPlaylist& playlist, std::size_t place) {
            const PresentationPlace date = playlist.dateOf(place);
            return BrokenPlace{date, quoted(date.piece) + " up to the segment at " +
                                         durationText(playlist.segments()[place].start)};
        });
}

// clang-format off
constexpr PresentationEntry rules[] = {
    {{{"discontinuities-differ", error, "Segments of the same time have other discontinuity sequence numbers in another media playlist.",
       "the discontinuity sequence number of the same time in other media playlists", "RFC 8216, section 6.2.4", false}, "MUST"}, findDiscontinuities<false>},
    {{{"discontinuities-seem-to-differ", warning, "Segments with one media sequence number and one duration have other discontinuity sequence numbers in another media playlist.",
       "the discontinuity sequence number of the same segment in other media playlists", "RFC 8216, section 6.2.4", false}, "MUST"}, findDiscontinuities<true>},
    {{{"content-of-one-playlist", error, "A media playlist has more content than another one of the presentation, by more than the target duration.",
       "the duration of other media playlists, to within the target duration", "RFC 8216, section 6.2.4", false}, "MUST"}, findOtherLengths},
    {{{"content-of-subtitles-or-i-frames", note, "Subtitles or I-frames cover more or less than the video, by more than the target duration.",
       "the duration of the video, to within the target duration", "RFC 8216, section 6.2.4", false}, "MUST"}, findOtherLengthsBeside},
    {{{"date-times-differ", error, "EXT-X-PROGRAM-DATE-TIME gives the same time another date in another media playlist.",
       "the date that other media playlists give the same time", "RFC 8216, section 6.2.4", false}, "MUST"}, findOtherDates},
};
// clang-format on

}  // namespace

PresentationTable timelineRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
