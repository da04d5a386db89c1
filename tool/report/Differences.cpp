#include "tool/report/Differences.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace tool::report {
namespace {

/// Durations are written rounded, and sound ends where its frames do.
constexpr double tolerance = 0.5;

using Times = std::vector<double>;

/// On the axis, in rising order.
template <typename Items, typename TimeOf>
Times timesOf(const Timeline& timeline, const Items& items, TimeOf timeOf) {
    Times times;
    for (const auto& item : items)
        times.push_back(timeline.offset + timeOf(item));
    std::sort(times.begin(), times.end());
    return times;
}

/// Those of the first that have no partner among the second.
Times withoutPartner(const Times& times, const Times& others) {
    Times alone;
    auto other = others.begin();
    for (const double time : times) {
        while (other != others.end() && *other < time - tolerance)
            ++other;
        if (other == others.end() || *other > time + tolerance)
            alone.push_back(time);
        else
            ++other;
    }
    return alone;
}

class Comparison {
  public:
    Comparison(const Timeline& reference, const Timeline& timeline, std::size_t place)
        : reference_(reference), timeline_(timeline), place_(place) {}

    std::vector<Difference> run() {
        compareMarks(MarkKind::Discontinuity);
        compareMarks(MarkKind::Gap);
        compareBreaks();
        if (reference_.isVariant && timeline_.isVariant) compareVariants();
        compareEnds();
        return std::move(differences_);
    }

  private:
    [[nodiscard]] bool isCovered(double time) const {
        const auto covers = [time](const Timeline& timeline) {
            return time >= timeline.offset - tolerance &&
                   time <= timeline.offset + timeline.duration + tolerance;
        };
        return covers(reference_) && covers(timeline_);
    }

    void add(const Times& times, const std::string& what) {
        Times covered;
        std::copy_if(times.begin(), times.end(), std::back_inserter(covered),
                     [this](double time) { return isCovered(time); });
        if (!covered.empty()) differences_.push_back({place_, covered.front(), what, covered.size() - 1});
    }

    void compare(const Times& expected, const Times& seen, const std::string& what) {
        add(withoutPartner(expected, seen), "a " + what + " is missing");
        add(withoutPartner(seen, expected), "a " + what + " that is not there in the other");
    }

    void compareMarks(MarkKind kind) {
        const auto timeOf = [](const Mark& mark) { return mark.time; };
        compare(timesOf(reference_, reference_.of(kind), timeOf),
                timesOf(timeline_, timeline_.of(kind), timeOf), std::string(nameOf(kind)));
    }

    void compareBreaks() {
        const auto startOf = [](const Break& each) { return each.start; };
        const auto endOf = [](const Break& each) { return each.end; };
        compare(timesOf(reference_, reference_.breaks, startOf),
                timesOf(timeline_, timeline_.breaks, startOf), "start of an ad break or date range");
        compare(timesOf(reference_, reference_.breaks, endOf), timesOf(timeline_, timeline_.breaks, endOf),
                "end of an ad break or date range");
    }

    /// Sound may be cut otherwise than pictures, and encrypted otherwise. Where only one of two variants is fragmented MP4,
    /// its maps say nothing.
    void compareVariants() {
        compareMarks(MarkKind::Key);
        if (!reference_.of(MarkKind::Map).empty() && !timeline_.of(MarkKind::Map).empty())
            compareMarks(MarkKind::Map);
        const auto itself = [](double start) { return start; };
        compare(timesOf(reference_, reference_.starts, itself), timesOf(timeline_, timeline_.starts, itself),
                "start of a segment");
    }

    void compareEnds() {
        if (!reference_.hasEnded || !timeline_.hasEnded) return;
        const double expected = reference_.offset + reference_.duration;
        const double seen = timeline_.offset + timeline_.duration;
        if (std::abs(expected - seen) <= tolerance) return;
        differences_.push_back({place_, seen, seen < expected ? "it ends earlier" : "it ends later"});
    }

    const Timeline& reference_;
    const Timeline& timeline_;
    std::size_t place_;
    std::vector<Difference> differences_;
};

}  // namespace

std::size_t referenceOf(const std::vector<Timeline>& timelines) {
    const auto variant = std::find_if(timelines.begin(), timelines.end(),
                                      [](const Timeline& timeline) { return timeline.isVariant; });
    return variant == timelines.end() ? 0 : static_cast<std::size_t>(variant - timelines.begin());
}

std::vector<Difference> differencesOf(const std::vector<Timeline>& timelines) {
    std::vector<Difference> all;
    const std::size_t reference = referenceOf(timelines);
    for (std::size_t place = 0; place < timelines.size(); ++place) {
        if (place == reference) continue;
        const std::vector<Difference> found = Comparison(timelines[reference], timelines[place], place).run();
        all.insert(all.end(), found.begin(), found.end());
    }
    return all;
}

}  // namespace tool::report
