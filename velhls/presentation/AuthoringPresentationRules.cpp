#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/common/TextScan.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/presentation/Presentation.h"
#include "velhls/presentation/Timelines.h"
#include "velhls/presentation/VariantRates.h"
#include "velhls/standard/Codecs.h"
#include "velhls/standard/UriSuffix.h"

// Apple's authoring rules for what a master playlist and its media playlists show together.

namespace velhls {
namespace {

using Kind = MasterUse::Kind;
using Playlists = std::vector<const PresentationPlaylist*>;

bool isVideoVariant(const MasterUse& use) {
    const std::string_view codecs = use.value(attribute::codecs);
    return use.kind == Kind::variant && (codecs.empty() || hasCodec(codecs, CodecKind::video));
}

/// The playlists of variants with video, each once, in their order.
Playlists videoPlaylists(const Presentation& presentation) {
    Playlists playlists;
    std::set<const PresentationPlaylist*> seen;
    for (const MasterUse& use : presentation.uses()) {
        if (use.playlist != nullptr && isVideoVariant(use) && seen.insert(use.playlist).second)
            playlists.push_back(use.playlist);
    }
    return playlists;
}

/// What those are compared with that go with the video: the first of it.
const PresentationPlaylist* mainPlaylist(const Presentation& presentation) {
    const Playlists playlists = videoPlaylists(presentation);
    return playlists.empty() ? nullptr : playlists.front();
}

bool isAudioRendition(const PresentationPlaylist& playlist) {
    return playlist.roles.isAudio;
}

bool isSubtitles(const PresentationPlaylist& playlist) {
    return playlist.roles.isSubtitles;
}

bool namesOneOf(std::string_view codecs, std::string_view starts) {
    bool names = false;
    forEachPart(codecs, ',', [&](std::string_view codec) {
        forEachPart(starts, ',',
                    [&](std::string_view start) { names = names || startsWith(trimmed(codec), start); });
    });
    return names;
}

SegmentFormat formatOfFirst(const PresentationPlaylist& playlist) {
    if (playlist.segments().empty()) return SegmentFormat::unknown;
    return formatOf(playlist.uriOf(playlist.segments().front()).piece);
}

void findHevcElsewhere(const Presentation& presentation, const TellPresentation& tell) {
    BrokenPlaces broken;
    broken.what = "variants";
    PresentationWords words;
    for (const MasterUse& use : presentation.uses()) {
        if (!use.isVariant()) continue;
        ++broken.total;
        const std::string_view codecs = use.value(attribute::codecs);
        const bool isHevc = namesOneOf(codecs, "hvc1,hev1,dvh1,dvhe");
        if (!isHevc || use.playlist == nullptr ||
            formatOfFirst(*use.playlist) != SegmentFormat::transportStream)
            continue;
        if (broken.places.empty()) words.related = use.playlist->uriOf(use.playlist->segments().front());
        broken.add(presentation.inMaster(use.line, codecs));
    }
    tell(broken, words);
}

bool isWithinTenth(double declared, double measured) {
    constexpr double tenth = 0.1;
    return std::fabs(declared - measured) <= tenth * measured;
}

/// Of variants on demand whose sizes are all known. `isOfRule` chooses among them, `rateOf` what is compared.
template <typename IsOfRule, typename RateOf>
void compareRates(const Presentation& presentation, const TellPresentation& tell, std::string_view name,
                  IsOfRule isOfRule, RateOf rateOf) {
    RateMeasurement measurement(presentation);
    BrokenPlaces broken;
    broken.what = "variants";
    PresentationWords words;
    for (const MasterUse& use : presentation.uses()) {
        if (!use.isVariant()) continue;
        ++broken.total;
        const auto text = valueOf(use.line, name);
        const auto declared = text ? VELHLSSyntax::readDecimalInteger(*text) : std::nullopt;
        if (!declared) continue;
        const VariantRates rates = measurement.measure(use);
        const MeasuredRate& measured = rateOf(rates);
        const bool isMeasured = rates.isWhole && rates.hasEnded && measured.largest != nullptr;
        if (!isMeasured || !isOfRule(rates) || isWithinTenth(static_cast<double>(*declared), measured.rate))
            continue;
        if (broken.places.empty()) {
            words.expected = rateText(measured.rate) + ", to within a tenth";
            words.related = placeOfPeak(*measured.largest);
            words.relatedSeen = rateText(measured.largestRate) + " in this media playlist";
        }
        broken.add(presentation.inMaster(use.line, *text),
                   std::string(*text) + " where segments have " + rateText(measured.rate));
    }
    tell(broken, words);
}

void findOtherAverage(const Presentation& presentation, const TellPresentation& tell) {
    compareRates(
        presentation, tell, attribute::averageBandwidth, [](const VariantRates&) { return true; },
        [](const VariantRates& rates) -> const MeasuredRate& { return rates.average; });
}

void findOtherPeak(const Presentation& presentation, const TellPresentation& tell) {
    compareRates(
        presentation, tell, attribute::bandwidth,
        [](const VariantRates& rates) { return !rates.hasRenditions; },
        [](const VariantRates& rates) -> const MeasuredRate& { return rates.peak; });
}

void findOtherSum(const Presentation& presentation, const TellPresentation& tell) {
    compareRates(
        presentation, tell, attribute::bandwidth,
        [](const VariantRates& rates) { return rates.hasRenditions; },
        [](const VariantRates& rates) -> const MeasuredRate& { return rates.peak; });
}

/// Tells of playlists that do not last as long as the video. `isBroken` is given by how much they are longer, and the
/// part of it that is uncertain is taken off.
template <typename IsBroken>
void compareLengths(const Presentation& presentation, const TellPresentation& tell,
                    const Playlists& playlists, std::string_view what, IsBroken isBroken) {
    const PresentationPlaylist* const main = mainPlaylist(presentation);
    if (main == nullptr || main->segments().empty() || !main->hasEnded()) return;
    BrokenPlaces broken;
    broken.what = what;
    for (const PresentationPlaylist* const playlist : playlists) {
        if (playlist == main || playlist->segments().empty() || !playlist->hasEnded()) continue;
        ++broken.total;
        const double longer = playlist->duration() - main->duration();
        const double uncertain = main->targetDuration() / 2.0 + main->roundingAt(main->segments().size()) +
                                 playlist->roundingAt(playlist->segments().size());
        if (std::fabs(longer) > uncertain && isBroken(longer))
            broken.add(playlist->uriOf(playlist->segments().back()), durationText(playlist->duration()));
    }
    PresentationWords words;
    words.expected = "the duration of the video, " + durationText(main->duration());
    words.related = main->uriOf(main->segments().back());
    words.relatedSeen = durationText(main->duration());
    tell(broken, words);
}

bool isShorter(double longer) {
    return longer < 0.0;
}

bool isAny(double) {
    return true;
}

void findShortAudio(const Presentation& presentation, const TellPresentation& tell) {
    compareLengths(presentation, tell, presentation.playlistsThat(isAudioRendition), "audio renditions",
                   isShorter);
}

void findShortSubtitles(const Presentation& presentation, const TellPresentation& tell) {
    compareLengths(presentation, tell, presentation.playlistsThat(isSubtitles), "subtitle renditions",
                   isShorter);
}

void findOtherAudioLength(const Presentation& presentation, const TellPresentation& tell) {
    compareLengths(presentation, tell, presentation.playlistsThat(isAudioRendition), "audio renditions",
                   isAny);
}

void findOtherRange(const Presentation& presentation, const TellPresentation& tell) {
    compareLengths(presentation, tell,
                   presentation.playlistsThat([](const PresentationPlaylist&) { return true; }),
                   "media playlists", isAny);
}

/// Once for each rendition of subtitles, whatever groups it is in.
void findOtherSubtitleFormat(const Presentation& presentation, const TellPresentation& tell) {
    constexpr std::string_view others = "srt,ttml,dfxp,xml,ass,ssa,sub,smi,scc,txt,sbv";
    BrokenPlaces broken;
    broken.what = "subtitle renditions";
    for (const PresentationPlaylist* const playlist : presentation.playlistsThat(isSubtitles)) {
        ++broken.total;
        if (playlist->segments().empty()) continue;
        const PresentationPlace uri = playlist->uriOf(playlist->segments().front());
        const std::string_view suffix = suffixOf(uri.piece);
        bool isOther = false;
        forEachPart(others, ',', [&](std::string_view other) { isOther = isOther || suffix == other; });
        if (isOther) broken.add(uri);
    }
    tell(broken);
}

/// Of the target durations of some playlists, live or not, beside that of the video.
template <typename IsCompared>
void compareTargets(const Presentation& presentation, const TellPresentation& tell, std::string_view what,
                    IsCompared isCompared) {
    const PresentationPlaylist* const main = mainPlaylist(presentation);
    if (main == nullptr || !main->tags().targetDuration()) return;
    constexpr std::size_t targetDuration = tagIndexOf<tag::targetDuration>;
    BrokenPlaces broken;
    broken.what = what;
    for (const PresentationPlaylist* const playlist : presentation.playlistsThat(isCompared)) {
        ++broken.total;
        const auto target = playlist->tags().targetDuration();
        if (target && target != main->tags().targetDuration())
            broken.add(playlist->valueOfTag(targetDuration));
    }
    PresentationWords words;
    words.expected = std::to_string(*main->tags().targetDuration()) + ", the target duration of the video";
    words.related = main->valueOfTag(targetDuration);
    tell(broken, words);
}

void findOtherSubtitleTarget(const Presentation& presentation, const TellPresentation& tell) {
    compareTargets(presentation, tell, "live subtitle renditions", [](const PresentationPlaylist& playlist) {
        return isSubtitles(playlist) && !playlist.hasEnded();
    });
}

void findOtherIFrameTarget(const Presentation& presentation, const TellPresentation& tell) {
    compareTargets(presentation, tell, "live I-frame playlists", [](const PresentationPlaylist& playlist) {
        return playlist.roles.isIFrameVariant && !playlist.hasEnded();
    });
}

void findOtherAudioTarget(const Presentation& presentation, const TellPresentation& tell) {
    compareTargets(presentation, tell, "audio renditions", isAudioRendition);
}

/// Subtitles in fragmented MP4 are IMSC1, unless CODECS says that they are WebVTT.
void findSubtitleCodecMissing(const Presentation& presentation, const TellPresentation& tell) {
    BrokenPlaces broken;
    broken.what = "variants";
    PresentationWords words;
    std::map<const RenditionGroup*, const PresentationPlaylist*> fragmented;
    for (const MasterUse& use : presentation.uses()) {
        if (use.kind != Kind::variant) continue;
        ++broken.total;
        const RenditionGroup* const group = presentation.groupOf(use, attribute::subtitles);
        const auto codecs = valueOf(use.line, attribute::codecs);
        if (group == nullptr || !codecs || namesOneOf(*codecs, "stpp,wvtt")) continue;
        const auto [known, isNew] = fragmented.emplace(group, nullptr);
        for (const MasterUse* const member : group->members) {
            if (!isNew || known->second != nullptr) break;
            if (member->playlist != nullptr &&
                formatOfFirst(*member->playlist) == SegmentFormat::fragmentedMp4)
                known->second = member->playlist;
        }
        if (known->second == nullptr) continue;
        if (broken.places.empty()) words.related = known->second->uriOf(known->second->segments().front());
        broken.add(presentation.inMaster(use.line, *codecs));
    }
    tell(broken, words);
}

Playlists iFramePlaylists(const Presentation& presentation) {
    return presentation.playlistsThat(
        [](const PresentationPlaylist& playlist) { return playlist.roles.isIFrameVariant; });
}

void findOtherIFrameInterval(const Presentation& presentation, const TellPresentation& tell) {
    constexpr double shortest = 0.5;
    constexpr double longest = 1.5;
    BrokenPlaces broken;
    broken.what = "I-frame playlists";
    for (const PresentationPlaylist* const playlist : iFramePlaylists(presentation)) {
        ++broken.total;
        if (playlist->segments().empty() || !playlist->isIFrames()) continue;
        const double interval = playlist->duration() / static_cast<double>(playlist->segments().size());
        if (interval < shortest || interval > longest)
            broken.add(playlist->uriOf(playlist->segments().front()),
                       "one in " + durationText(interval) + " on average");
    }
    tell(broken);
}

void findIFramesOnlyMissing(const Presentation& presentation, const TellPresentation& tell) {
    BrokenPlaces broken;
    broken.what = "I-frame playlists";
    for (const PresentationPlaylist* const playlist : iFramePlaylists(presentation)) {
        ++broken.total;
        if (!playlist->isIFrames()) broken.add(playlist->top(), "none");
    }
    tell(broken);
}

void findOtherDiscontinuities(const Presentation& presentation, const TellPresentation& tell) {
    const Playlists playlists = presentation.playlistsThat(
        [](const PresentationPlaylist& playlist) { return playlist.roles.isVariant; });
    BrokenPlaces broken;
    broken.what = "variants";
    broken.total = playlists.size();
    PresentationWords words;
    for (const PresentationPlaylist* const playlist : playlists) {
        const PresentationPlaylist& first = *playlists.front();
        const auto pair = findOtherDiscontinuity(first, *playlist, alignmentOf(first, *playlist));
        if (!pair) continue;
        const TimedSegment& segment = playlist->segments()[pair->right];
        if (broken.places.empty()) words.related = first.uriOf(first.segments()[pair->left]);
        broken.add(playlist->uriOf(segment), std::to_string(segment.discontinuity) +
                                                 " discontinuities up to " + durationText(segment.start));
    }
    tell(broken, words);
}

/// The first segment of the second one that starts where none of the first one does.
std::optional<SegmentPair> findOtherBoundary(const PresentationPlaylist& left,
                                             const PresentationPlaylist& right) {
    if (&left == &right || alignmentOf(left, right) != Alignment::byStart) return std::nullopt;
    constexpr double tolerance = 0.1;
    for (std::size_t place = 0; place < right.segments().size(); ++place) {
        const double start = right.segments()[place].start;
        const std::size_t nearest = nearestSegment(left, start);
        const double uncertain = tolerance + left.roundingAt(nearest) + right.roundingAt(place);
        const bool isAtEnd = std::fabs(left.duration() - start) <= uncertain;
        if (std::fabs(left.segments()[nearest].start - start) > uncertain && !isAtEnd)
            return SegmentPair{nearest, place};
    }
    return std::nullopt;
}

void findOtherBoundaries(const Presentation& presentation, const TellPresentation& tell) {
    const Playlists playlists = videoPlaylists(presentation);
    BrokenPlaces broken;
    broken.what = "variants";
    broken.total = playlists.size();
    PresentationWords words;
    for (const PresentationPlaylist* const playlist : playlists) {
        const PresentationPlaylist& first = *playlists.front();
        const auto pair = findOtherBoundary(first, *playlist);
        if (!pair) continue;
        const TimedSegment& segment = playlist->segments()[pair->right];
        if (broken.places.empty()) {
            const TimedSegment& nearest = first.segments()[pair->left];
            words.related = first.uriOf(nearest);
            words.relatedSeen = "a segment at " + durationText(nearest.start);
        }
        broken.add(playlist->uriOf(segment), "a segment at " + durationText(segment.start));
    }
    tell(broken, words);
}

void findDependentSegments(const Presentation& presentation, const TellPresentation& tell) {
    constexpr std::size_t independent = tagIndexOf<tag::independentSegments>;
    if (presentation.master().has(independent)) return;
    BrokenPlaces broken;
    broken.what = "video playlists";
    for (const PresentationPlaylist* const playlist : videoPlaylists(presentation)) {
        ++broken.total;
        if (!playlist->has(independent)) broken.add(playlist->top(), "none");
    }
    PresentationWords words;
    words.related = presentation.topOfMaster();
    words.relatedSeen = "none here either";
    tell(broken, words);
}

bool isEncrypted(const PresentationPlaylist& playlist) {
    const std::vector<std::uint32_t>& keys = playlist.tags().lines(tagIndexOf<tag::key>);
    return std::any_of(keys.begin(), keys.end(), [&playlist](std::uint32_t number) {
        return valueOf(playlist.text().document.line(number), attribute::method).value_or(fixed::none) !=
               fixed::none;
    });
}

/// "TYPE-0" for high definition, "TYPE-1" above it, or empty.
std::string_view levelFor(const MasterUse& use) {
    const auto resolution = VELHLSSyntax::readDecimalResolution(use.value(attribute::resolution));
    constexpr std::uint64_t highDefinition = 720;
    constexpr std::uint64_t highestOfIt = 1080;
    if (!resolution || resolution->height < highDefinition) return {};
    return resolution->height > highestOfIt ? "TYPE-1" : "TYPE-0";
}

void findLevelMissing(const Presentation& presentation, const TellPresentation& tell) {
    std::map<const PresentationPlaylist*, bool> encrypted;
    BrokenPlaces broken;
    broken.what = "variants";
    PresentationWords words;
    for (const MasterUse& use : presentation.uses()) {
        if (!use.isVariant()) continue;
        ++broken.total;
        const std::string_view wanted = levelFor(use);
        const auto level = valueOf(use.line, "HDCP-LEVEL");
        const bool isEnough = wanted.empty() || level == wanted || level == "TYPE-1";
        if (isEnough || use.playlist == nullptr) continue;
        const auto [known, isNew] = encrypted.emplace(use.playlist, false);
        if (isNew) known->second = isEncrypted(*use.playlist);
        if (!known->second) continue;
        if (broken.places.empty()) {
            words.expected = "HDCP-LEVEL=" + std::string(wanted);
            words.related = use.playlist->nameOfTag(tagIndexOf<tag::key>);
            words.relatedSeen = "the key of the media playlist";
        }
        broken.add(presentation.inMaster(use.line, level.value_or(use.line.name)), level ? "" : "none");
    }
    tell(broken, words);
}

// clang-format off
constexpr PresentationEntry rules[] = {
    {{{"authoring-hevc-in-transport-stream", error, "A variant of HEVC has segments that are no fragmented MP4.",
       "HEVC in fragmented MP4", "Apple's authoring rules, 1.5", false}, "MUST"}, findHevcElsewhere},
    {{{"authoring-average-bandwidth-measured", error, "AVERAGE-BANDWIDTH is not within a tenth of the average segment bit rate.",
       "the average segment bit rate, to within a tenth", "Apple's authoring rules, 1.26", false}, "MUST"}, findOtherAverage},
    {{{"authoring-bandwidth-measured", error, "BANDWIDTH is not within a tenth of the peak segment bit rate.",
       "the peak segment bit rate, to within a tenth", "Apple's authoring rules, 1.27", false}, "MUST"}, findOtherPeak},
    {{{"authoring-audio-incomplete", error, "An audio rendition is shorter than the video.",
       "the duration of the video", "Apple's authoring rules, 2.15", false}, "MUST"}, findShortAudio},
    {{{"authoring-subtitle-format", error, "Subtitles are neither WebVTT nor IMSC1.",
       "WebVTT, or IMSC1 in fragmented MP4", "Apple's authoring rules, 5.2", false}, "MUST"}, findOtherSubtitleFormat},
    {{{"authoring-subtitles-incomplete", error, "A rendition of subtitles is shorter than the video.",
       "the duration of the video", "Apple's authoring rules, 5.5", false}, "MUST"}, findShortSubtitles},
    {{{"authoring-subtitle-target-duration", error, "Live subtitles have another target duration than the video.",
       "the target duration of the video", "Apple's authoring rules, 5.6", false}, "MUST"}, findOtherSubtitleTarget},
    {{{"authoring-subtitle-codec-missing", warning, "CODECS does not name the IMSC1 of subtitles.",
       "stpp.ttml.im1t among the codecs", "Apple's authoring rules, 5.10", false}, "SHOULD"}, findSubtitleCodecMissing},
    {{{"authoring-i-frame-interval", warning, "An I-frame playlist has not one frame a second.",
       "one frame a second", "Apple's authoring rules, 6.2", false}, "SHOULD"}, findOtherIFrameInterval},
    {{{"authoring-i-frames-only-missing", error, "An I-frame playlist has no EXT-X-I-FRAMES-ONLY.",
       "EXT-X-I-FRAMES-ONLY", "Apple's authoring rules, 6.8", false}, "MUST"}, findIFramesOnlyMissing},
    {{{"authoring-i-frame-target-duration", error, "A live I-frame playlist has another target duration than the video.",
       "the target duration of the video", "Apple's authoring rules, 6.11", false}, "MUST"}, findOtherIFrameTarget},
    {{{"authoring-audio-target-duration", error, "An audio rendition has another target duration than the video.",
       "the target duration of the video", "Apple's authoring rules, 8.2", false}, "MUST"}, findOtherAudioTarget},
    {{{"authoring-audio-duration", error, "An audio rendition is not as long as the video.",
       "the duration of the video", "Apple's authoring rules, 8.3", false}, "MUST"}, findOtherAudioLength},
    {{{"authoring-vod-range", error, "Media playlists of a presentation on demand do not cover the same time.",
       "the duration of the video", "Apple's authoring rules, 8.7", false}, "MUST"}, findOtherRange},
    {{{"authoring-discontinuities-differ", error, "Discontinuities of variants stand at other times.",
       "discontinuities at the times of the first variant", "Apple's authoring rules, 8.15", false}, "MUST"}, findOtherDiscontinuities},
    {{{"authoring-segment-boundaries", warning, "Segments of variants begin at other times.",
       "segments that begin where those of the first variant do", "Apple's authoring rules, 8.22", false}, "SHOULD"}, findOtherBoundaries},
    {{{"authoring-video-not-independent", error, "Neither the master playlist nor each video playlist has EXT-X-INDEPENDENT-SEGMENTS.",
       "EXT-X-INDEPENDENT-SEGMENTS in all video playlists or in the master playlist", "Apple's authoring rules, 9.12", false}, "MUST"}, findDependentSegments},
    {{{"authoring-bandwidth-sum", error, "BANDWIDTH is not the largest sum of the renditions' peak segment bit rates.",
       "the largest sum of peak segment bit rates, to within a tenth", "Apple's authoring rules, 9.13", false}, "MUST"}, findOtherSum},
    {{{"authoring-hdcp-level-missing", warning, "An encrypted variant in high definition does not ask for HDCP.",
       "HDCP-LEVEL=TYPE-0, or TYPE-1 above 1080 lines", "Apple's authoring rules, 13.5", false}, "SHOULD"}, findLevelMissing},
};
// clang-format on

}  // namespace

PresentationTable authoringPresentationRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
