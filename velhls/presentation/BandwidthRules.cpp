#include <iterator>
#include <string>

#include "velhls/common/Names.h"
#include "velhls/document/VELHLSSyntax.h"
#include "velhls/presentation/Presentation.h"
#include "velhls/presentation/VariantRates.h"

// What byte ranges and EXT-X-BITRATE tell of BANDWIDTH and AVERAGE-BANDWIDTH.

namespace velhls {
namespace {

/// What a variant says that it takes, and what was measured.
struct Compared {
    const MasterUse* variant = nullptr;
    std::string_view text;
    double declared = 0.0;
    VariantRates rates;
};

/// Above this part of a rate another one is too high.
constexpr double tooHigh = 1.1;

bool isBelow(const Compared& compared, const MeasuredRate& measured) {
    return measured.largest != nullptr &&
           compared.declared * (1.0 + compared.rates.tolerance) < measured.rate;
}

/// Of I-frames the highest rate is of no use to anybody.
bool isAbove(const Compared& compared, const MeasuredRate& measured) {
    return compared.variant->kind == MasterUse::Kind::variant && compared.rates.isWhole &&
           compared.rates.hasEnded && compared.declared > measured.rate * tooHigh;
}

/// Tells once of all variants whose attribute is not what was measured. `measuredOf` returns that, or null where all is well.
template <typename MeasuredOf>
void compare(const Presentation& presentation, const TellPresentation& tell, std::string_view name,
             std::string_view what, MeasuredOf measuredOf) {
    RateMeasurement measurement(presentation);
    BrokenPlaces broken;
    broken.what = "variants";
    PresentationWords words;
    for (const MasterUse& use : presentation.uses()) {
        const auto text = use.isVariant() ? valueOf(use.line, name) : std::nullopt;
        const auto declared = text ? VELHLSSyntax::readDecimalInteger(*text) : std::nullopt;
        if (!declared) continue;
        ++broken.total;
        const Compared compared = {&use, *text, static_cast<double>(*declared), measurement.measure(use)};
        const MeasuredRate* const measured = measuredOf(compared);
        if (measured == nullptr || measured->largest == nullptr) continue;
        if (broken.places.empty()) {
            words.expected = std::string(what) + ", " + rateText(measured->rate);
            words.related = placeOfPeak(*measured->largest);
            words.relatedSeen = rateText(measured->largestRate) + " in this media playlist";
        }
        broken.add(presentation.inMaster(use.line, *text),
                   std::string(*text) + " where segments have " + rateText(measured->rate));
    }
    tell(broken, words);
}

void findBelowPeak(const Presentation& presentation, const TellPresentation& tell) {
    compare(presentation, tell, attribute::bandwidth, "no less than the peak segment bit rate",
            [](const Compared& compared) -> const MeasuredRate* {
                const MeasuredRate& own = compared.rates.ownPeak;
                const bool hasEnded = own.largest != nullptr && own.largest->hasEnded();
                return hasEnded && isBelow(compared, own) ? &own : nullptr;
            });
}

void findBelowCombination(const Presentation& presentation, const TellPresentation& tell) {
    compare(presentation, tell, attribute::bandwidth,
            "no less than the largest sum of the renditions' peak segment bit rates",
            [](const Compared& compared) -> const MeasuredRate* {
                const MeasuredRate& own = compared.rates.ownPeak;
                const bool isOthersFault =
                    own.largest != nullptr && own.largest->hasEnded() && isBelow(compared, own);
                const bool isOurs =
                    compared.rates.hasRenditions && !isOthersFault && isBelow(compared, compared.rates.peak);
                return isOurs ? &compared.rates.peak : nullptr;
            });
}

void findAbovePeak(const Presentation& presentation, const TellPresentation& tell) {
    compare(presentation, tell, attribute::bandwidth, "the largest sum of peak segment bit rates",
            [](const Compared& compared) -> const MeasuredRate* {
                return isAbove(compared, compared.rates.peak) ? &compared.rates.peak : nullptr;
            });
}

void findBelowAverage(const Presentation& presentation, const TellPresentation& tell) {
    compare(presentation, tell, attribute::averageBandwidth,
            "no less than the largest sum of average segment bit rates",
            [](const Compared& compared) -> const MeasuredRate* {
                const MeasuredRate& average = compared.rates.average;
                const bool hasEnded = average.largest != nullptr && average.largest->hasEnded();
                return hasEnded && isBelow(compared, average) ? &average : nullptr;
            });
}

void findAboveAverage(const Presentation& presentation, const TellPresentation& tell) {
    compare(presentation, tell, attribute::averageBandwidth, "the largest sum of average segment bit rates",
            [](const Compared& compared) -> const MeasuredRate* {
                return isAbove(compared, compared.rates.average) ? &compared.rates.average : nullptr;
            });
}

// clang-format off
constexpr PresentationEntry rules[] = {
    {{{"bandwidth-below-peak", error, "BANDWIDTH is lower than the peak segment bit rate of the variant's media playlist.",
       "no less than the peak segment bit rate", "RFC 8216, section 4.3.4.2", false}, "MUST"}, findBelowPeak},
    {{{"bandwidth-below-combination", error, "BANDWIDTH is lower than what the variant and its renditions take together.",
       "no less than the largest sum of the renditions' peak segment bit rates", "RFC 8216, section 4.3.4.2.1", false}, "MUST"}, findBelowCombination},
    {{{"bandwidth-above-peak", note, "BANDWIDTH is more than a tenth higher than the peak segment bit rate.",
       "the largest sum of peak segment bit rates", "RFC 8216, section 4.3.4.2", false}, "MUST"}, findAbovePeak},
    {{{"average-bandwidth-below-average", error, "AVERAGE-BANDWIDTH is lower than the average segment bit rate.",
       "no less than the average segment bit rate", "RFC 8216, section 4.3.4.2", false}, "MUST"}, findBelowAverage},
    {{{"average-bandwidth-above-average", note, "AVERAGE-BANDWIDTH is more than a tenth higher than the average segment bit rate.",
       "the largest sum of average segment bit rates", "RFC 8216, section 4.3.4.2", false}, "MUST"}, findAboveAverage},
};
// clang-format on

}  // namespace

PresentationTable bandwidthRules() {
    return {rules, std::size(rules)};
}

}  // namespace velhls
