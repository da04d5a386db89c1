#include "velhls/presentation/VariantRates.h"

#include <algorithm>

#include "velhls/common/Names.h"
#include "velhls/standard/Codecs.h"

namespace velhls {
namespace {

void takeLarger(MeasuredRate& rate, double other, const PresentationPlaylist& playlist) {
    if (other <= rate.rate) return;
    rate = {other, &playlist, other};
}

void addRate(MeasuredRate& sum, const MeasuredRate& part) {
    sum.rate += part.rate;
    if (part.largestRate <= sum.largestRate) return;
    sum.largest = part.largest;
    sum.largestRate = part.largestRate;
}

/// Whether the variant's own playlist is audio, which its group's renditions stand for.
bool isAudioAlone(const MasterUse& variant) {
    const std::string_view codecs = variant.value(attribute::codecs);
    const bool namesNoVideo = !codecs.empty() && areAllKnown(codecs) && !hasCodec(codecs, CodecKind::video);
    return namesNoVideo || (variant.playlist != nullptr && variant.playlist->roles.isAudio);
}

}  // namespace

void RateMeasurement::take(Part& part, const PresentationPlaylist* playlist) {
    const bool isKnown = playlist != nullptr && playlist->rates() && playlist->rates()->peak;
    part.isWhole = part.isWhole && isKnown;
    part.hasEnded = part.hasEnded && playlist != nullptr && playlist->hasEnded();
    if (!isKnown) return;
    takeLarger(part.peak, *playlist->rates()->peak, *playlist);
    takeLarger(part.average, playlist->rates()->average, *playlist);
    constexpr double ofExactSizes = 0.01;
    constexpr double ofEstimates = 0.1;
    const bool isRough = playlist->rates()->isEstimated || playlist->hasWholeDurations();
    part.tolerance = std::max(part.tolerance, isRough ? ofEstimates : ofExactSizes);
}

void RateMeasurement::take(Part& part, const Part& other) {
    if (other.peak.largest != nullptr) takeLarger(part.peak, other.peak.rate, *other.peak.largest);
    if (other.average.largest != nullptr)
        takeLarger(part.average, other.average.rate, *other.average.largest);
    part.isWhole = part.isWhole && other.isWhole;
    part.hasEnded = part.hasEnded && other.hasEnded;
    part.tolerance = std::max(part.tolerance, other.tolerance);
}

void RateMeasurement::add(VariantRates& rates, const Part& part) {
    addRate(rates.peak, part.peak);
    addRate(rates.average, part.average);
    rates.isWhole = rates.isWhole && part.isWhole;
    rates.hasEnded = rates.hasEnded && part.hasEnded;
    rates.tolerance = std::max(rates.tolerance, part.tolerance);
}

const RateMeasurement::Part* RateMeasurement::partOf(const MasterUse& variant, std::string_view type) {
    const RenditionGroup* const group = presentation_.groupOf(variant, type);
    if (group == nullptr) return nullptr;
    const auto [part, isNew] = groups_.try_emplace(group);
    if (isNew) {
        for (const MasterUse* const member : group->members)
            take(part->second, member->playlist);
    }
    return &part->second;
}

VariantRates RateMeasurement::measure(const MasterUse& variant) {
    VariantRates rates;
    Part own;
    take(own, variant.playlist);
    rates.ownPeak = own.peak;
    rates.ownAverage = own.average;
    const Part* const video = partOf(variant, attribute::video);
    const Part* const audio = partOf(variant, attribute::audio);
    const Part* const subtitles = partOf(variant, attribute::subtitles);
    rates.hasRenditions = video != nullptr || audio != nullptr || subtitles != nullptr;
    if (video != nullptr) take(own, *video);
    const bool standsForOwn = audio != nullptr && isAudioAlone(variant);
    if (standsForOwn) take(own, *audio);
    add(rates, own);
    if (audio != nullptr && !standsForOwn) add(rates, *audio);
    if (subtitles != nullptr) add(rates, *subtitles);
    return rates;
}

PresentationPlace placeOfPeak(const PresentationPlaylist& playlist) {
    return playlist.uriOf(playlist.segments()[playlist.rates()->peakSegment]);
}

}  // namespace velhls
