// Internal to the library, not installed: the bit rates of a variant with its renditions, as far as texts tell.
#pragma once

#include <map>

#include "velhls/presentation/Presentation.h"

namespace velhls {

/// A bit rate that a combination of playlists comes to.
struct MeasuredRate {
    /// Bits per second, of all playlists whose sizes are known.
    double rate = 0.0;
    /// The largest of them.
    const PresentationPlaylist* largest = nullptr;
    double largestRate = 0.0;
};

/// What a variant takes at most, when each group gives its largest rendition.
struct VariantRates {
    /// Of its own playlist.
    MeasuredRate ownPeak;
    MeasuredRate ownAverage;
    /// Of the largest combination.
    MeasuredRate peak;
    MeasuredRate average;
    /// Whether renditions have playlists of their own.
    bool hasRenditions = false;
    /// Whether the sizes of all segments are known, of all playlists.
    bool isWhole = true;
    bool hasEnded = true;
    /// By how much what is measured may be wrong: a part of it.
    double tolerance = 0.0;
};

/// Measures variants, and each group once.
class RateMeasurement {
  public:
    explicit RateMeasurement(const Presentation& presentation) : presentation_(presentation) {}

    [[nodiscard]] VariantRates measure(const MasterUse& variant);

  private:
    /// The largest of some playlists.
    struct Part {
        MeasuredRate peak;
        MeasuredRate average;
        bool isWhole = true;
        bool hasEnded = true;
        double tolerance = 0.0;
    };

    static void take(Part& part, const PresentationPlaylist* playlist);
    static void take(Part& part, const Part& other);
    static void add(VariantRates& rates, const Part& part);
    const Part* partOf(const MasterUse& variant, std::string_view type);

    const Presentation& presentation_;
    std::map<const RenditionGroup*, Part> groups_;
};

/// "the playlist's segments …": where the peak of a playlist was measured.
[[nodiscard]] PresentationPlace placeOfPeak(const PresentationPlaylist& playlist);

}  // namespace velhls
