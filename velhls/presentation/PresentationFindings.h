// Internal to the library, not installed: findings of the rules of presentations, bounded and in order.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velhls/document/BoundedFindings.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/presentation/PresentationPlace.h"
#include "velhls/standard/StandardRule.h"

namespace velhls {

/// A place that breaks a rule, and what was seen there; empty for the text of the place.
struct BrokenPlace {
    PresentationPlace place;
    std::string seen;
};

/// All places that break a rule in one way, of all that could.
struct BrokenPlaces {
    std::vector<BrokenPlace> places;
    std::size_t total = 0;
    /// What there are so many of: "media playlists".
    std::string_view what;

    void add(const PresentationPlace& place, std::string seen = {}) {
        places.push_back({place, std::move(seen)});
    }
};

/// What a finding says.
struct PresentationWords {
    /// Empty for what the rule says.
    std::string expected;
    /// What the place disagrees with; without a text where there is none.
    PresentationPlace related = {};
    /// What stands there.
    std::string relatedSeen = {};
    /// "RFC 8216, section 6.2.4", where the rule stands for clauses of several sections.
    std::string_view source = {};
};

/// Gathers findings.
class PresentationFindings {
  public:
    /// Other places that one finding names.
    static constexpr std::size_t mostRelated = 10;

    /// Adds a finding at the first of the places, which also stands for the others.
    void add(const StandardRule& rule, StandardProfile profile, const BrokenPlaces& broken,
             const PresentationWords& words);

    /// All findings in the order of their texts and places. The list is empty afterwards.
    [[nodiscard]] std::vector<VELHLSFinding> takeAll() { return findings_.takeAll(); }

  private:
    BoundedFindings findings_;
};

/// Tells of one rule.
class TellPresentation {
  public:
    TellPresentation(PresentationFindings& findings, const StandardRule& rule, StandardProfile profile)
        : findings_(findings), rule_(rule), profile_(profile) {}

    /// Once for all of the places; not at all when there are none.
    void operator()(const BrokenPlaces& broken, const PresentationWords& words = {}) const {
        if (!broken.places.empty()) findings_.add(rule_, profile_, broken, words);
    }

    /// Of one place.
    void operator()(const PresentationPlace& place, std::string seen = {},
                    const PresentationWords& words = {}) const {
        BrokenPlaces broken;
        broken.add(place, std::move(seen));
        (*this)(broken, words);
    }

  private:
    PresentationFindings& findings_;
    const StandardRule& rule_;
    StandardProfile profile_;
};

/// "5.005 seconds": of sums that rounding has touched, to the millisecond.
[[nodiscard]] std::string durationText(double seconds);

/// "2560000 bit/s".
[[nodiscard]] std::string rateText(double rate);

}  // namespace velhls
