#include "velhls/presentation/Timelines.h"

#include <algorithm>
#include <cmath>

#include "velhls/common/Names.h"

namespace velhls {
namespace {

double secondsBetween(std::int64_t from, std::int64_t to) {
    return (static_cast<double>(to) - static_cast<double>(from)) / 1e6;
}

std::uint64_t firstSequence(const PresentationPlaylist& playlist) {
    return playlist.tags().number(tagIndexOf<tag::mediaSequence>).value_or(0);
}

/// The segments of both that have the same media sequence numbers: the place of the first one in each, and how many.
struct SharedSequence {
    std::size_t left = 0;
    std::size_t right = 0;
    std::size_t count = 0;
};

SharedSequence sharedSequence(const PresentationPlaylist& left, const PresentationPlaylist& right) {
    const std::uint64_t ofLeft = firstSequence(left);
    const std::uint64_t ofRight = firstSequence(right);
    const std::uint64_t first = std::max(ofLeft, ofRight);
    if (first - ofLeft >= left.segments().size() || first - ofRight >= right.segments().size()) return {};
    SharedSequence shared;
    shared.left = static_cast<std::size_t>(first - ofLeft);
    shared.right = static_cast<std::size_t>(first - ofRight);
    shared.count = std::min(left.segments().size() - shared.left, right.segments().size() - shared.right);
    return shared;
}

bool lastAsLong(const PresentationPlaylist& left, const PresentationPlaylist& right) {
    constexpr double tolerance = 0.05;
    const SharedSequence shared = sharedSequence(left, right);
    for (std::size_t place = 0; place < shared.count; ++place) {
        const double ofLeft = left.segments()[shared.left + place].duration;
        const double ofRight = right.segments()[shared.right + place].duration;
        if (std::fabs(ofLeft - ofRight) > tolerance) return false;
    }
    return shared.count > 0;
}

/// The times of a playlist in seconds since a moment that both playlists know.
class Clock {
  public:
    Clock(const PresentationPlaylist& playlist, Alignment alignment, std::int64_t origin)
        : playlist_(playlist), isByDate_(alignment == Alignment::byDate), origin_(origin) {}

    [[nodiscard]] double startOf(std::size_t segment) const {
        const TimedSegment& each = playlist_.segments()[segment];
        if (!isByDate_) return each.start;
        return secondsBetween(origin_, each.date.value_or(origin_));
    }
    [[nodiscard]] double endOf(std::size_t segment) const {
        return startOf(segment) + playlist_.segments()[segment].duration;
    }
    [[nodiscard]] double end() const { return endOf(playlist_.segments().size() - 1); }

  private:
    const PresentationPlaylist& playlist_;
    bool isByDate_;
    std::int64_t origin_;
};

struct Clocks {
    Clock left;
    Clock right;
};

Clocks clocksOf(const PresentationPlaylist& left, const PresentationPlaylist& right, Alignment alignment) {
    const std::int64_t origin = left.segments().front().date.value_or(0);
    return {Clock(left, alignment, origin), Clock(right, alignment, origin)};
}

/// How far segments of two playlists may be apart since durations are rounded: not at all where all are written alike.
class Rounding {
  public:
    Rounding(const PresentationPlaylist& left, const PresentationPlaylist& right)
        : left_(left), right_(right), areAlike_(areDurationsAlike(left, right)) {}

    [[nodiscard]] double at(std::size_t leftSegment, std::size_t rightSegment) const {
        return areAlike_ ? 0.0 : left_.roundingAt(leftSegment) + right_.roundingAt(rightSegment);
    }

  private:
    static bool areDurationsAlike(const PresentationPlaylist& left, const PresentationPlaylist& right) {
        return std::equal(left.segments().begin(), left.segments().end(), right.segments().begin(),
                          right.segments().end(), [](const TimedSegment& first, const TimedSegment& second) {
                              return first.duration == second.duration;
                          });
    }

    const PresentationPlaylist& left_;
    const PresentationPlaylist& right_;
    bool areAlike_;
};

double longerTarget(const PresentationPlaylist& left, const PresentationPlaylist& right) {
    return std::max(left.targetDuration(), right.targetDuration());
}

std::optional<SegmentPair> findOtherInSequence(const PresentationPlaylist& left,
                                               const PresentationPlaylist& right) {
    const SharedSequence shared = sharedSequence(left, right);
    for (std::size_t place = 0; place < shared.count; ++place) {
        const SegmentPair pair = {shared.left + place, shared.right + place};
        if (left.segments()[pair.left].discontinuity != right.segments()[pair.right].discontinuity)
            return pair;
    }
    return std::nullopt;
}

/// Walks over runs of segments with one discontinuity sequence number.
class RunWalk {
  public:
    RunWalk(const PresentationPlaylist& playlist, const Clock& clock) : playlist_(playlist), clock_(clock) {
        run_.end = playlist.runEnd(0);
    }

    [[nodiscard]] bool isAtEnd() const { return run_.first >= playlist_.segments().size(); }
    void next() {
        run_.first = run_.end;
        if (!isAtEnd()) run_.end = playlist_.runEnd(run_.first);
    }
    [[nodiscard]] double start() const { return clock_.startOf(run_.first); }
    [[nodiscard]] double end() const { return clock_.endOf(run_.end - 1); }
    [[nodiscard]] std::uint64_t number() const { return playlist_.segments()[run_.first].discontinuity; }
    /// The first segment of the run that ends after a time.
    [[nodiscard]] std::size_t segmentAt(double time) const {
        std::size_t first = run_.first;
        std::size_t end = run_.end - 1;
        while (first < end) {
            const std::size_t middle = first + (end - first) / 2;
            if (clock_.endOf(middle) > time)
                end = middle;
            else
                first = middle + 1;
        }
        return first;
    }

  private:
    struct Run {
        std::size_t first = 0;
        std::size_t end = 0;
    };

    const PresentationPlaylist& playlist_;
    const Clock& clock_;
    Run run_;
};

}  // namespace

Alignment alignmentOf(const PresentationPlaylist& left, const PresentationPlaylist& right) {
    if (left.segments().empty() || right.segments().empty()) return Alignment::none;
    if (left.holdsItsStart() && right.holdsItsStart()) return Alignment::byStart;
    if (left.hasDates() && right.hasDates()) return Alignment::byDate;
    return lastAsLong(left, right) ? Alignment::bySequence : Alignment::none;
}

std::optional<SegmentPair> findOtherDiscontinuity(const PresentationPlaylist& left,
                                                  const PresentationPlaylist& right, Alignment alignment) {
    if (alignment == Alignment::none) return std::nullopt;
    if (alignment == Alignment::bySequence) return findOtherInSequence(left, right);
    const Clocks clocks = clocksOf(left, right, alignment);
    RunWalk ofLeft(left, clocks.left);
    RunWalk ofRight(right, clocks.right);
    const double target = std::min(left.targetDuration(), right.targetDuration());
    const Rounding rounding(left, right);
    double differing = 0.0;
    SegmentPair first;
    // So that many short playlists beside a long one take no more time than their length explains. What differs is found in
    // few steps, unless segments last for nothing.
    std::size_t steps = 64 + 4 * right.segments().size();
    while (!ofLeft.isAtEnd() && !ofRight.isAtEnd() && steps-- > 0) {
        const double start = std::max(ofLeft.start(), ofRight.start());
        const double end = std::min(ofLeft.end(), ofRight.end());
        if (ofLeft.number() == ofRight.number()) {
            if (end > start) differing = 0.0;
        } else if (end > start) {
            // A little further on, since the ends of segments that belong together are not quite at one time.
            const double inside = start + std::min(1.0, (end - start) / 2.0);
            if (differing == 0.0) first = {ofLeft.segmentAt(inside), ofRight.segmentAt(inside)};
            differing += end - start;
            const double uncertain =
                alignment == Alignment::byDate ? 0.0 : rounding.at(first.left, first.right);
            if (differing > target / 2.0 + uncertain) return first;
        }
        (ofLeft.end() < ofRight.end() ? ofLeft : ofRight).next();
    }
    return std::nullopt;
}

std::optional<double> contentOfOneAlone(const PresentationPlaylist& left, const PresentationPlaylist& right,
                                        Alignment alignment) {
    if (alignment != Alignment::byStart && alignment != Alignment::byDate) return std::nullopt;
    const Clocks clocks = clocksOf(left, right, alignment);
    const double atEnd = std::fabs(clocks.left.end() - clocks.right.end());
    const double atStart = std::fabs(clocks.left.startOf(0) - clocks.right.startOf(0));
    const bool overlap =
        clocks.left.startOf(0) < clocks.right.end() && clocks.right.startOf(0) < clocks.left.end();
    if (!overlap) return std::nullopt;
    double uncertain = 0.0;
    if (alignment == Alignment::byStart) {
        uncertain = left.roundingAt(left.segments().size()) + right.roundingAt(right.segments().size());
    }
    return std::max(atStart, atEnd) - uncertain;
}

std::size_t nearestSegment(const PresentationPlaylist& playlist, double time) {
    const std::vector<TimedSegment>& segments = playlist.segments();
    const auto after =
        std::lower_bound(segments.begin(), segments.end(), time,
                         [](const TimedSegment& segment, double wanted) { return segment.start < wanted; });
    if (after == segments.begin()) return 0;
    const auto place = static_cast<std::size_t>(after - segments.begin());
    const bool isBeforeNearer =
        after == segments.end() || time - segments[place - 1].start <= after->start - time;
    return isBeforeNearer ? place - 1 : place;
}

std::optional<SegmentPair> findOtherDate(const PresentationPlaylist& left, const PresentationPlaylist& right,
                                         Alignment alignment) {
    if (!left.hasDates() || !right.hasDates()) return std::nullopt;
    if (alignment == Alignment::byDate) {
        const Clocks clocks = clocksOf(left, right, alignment);
        const double gap = std::max(clocks.right.startOf(0) - clocks.left.end(),
                                    clocks.left.startOf(0) - clocks.right.end());
        const bool areApart = gap > std::max(left.duration(), right.duration());
        return areApart ? std::optional(SegmentPair{0, 0}) : std::nullopt;
    }
    if (alignment != Alignment::byStart) return std::nullopt;
    // Playlists on demand start at one media timestamp; others may have up to a target duration of their own before that.
    const bool areOnDemand = left.type() == fixed::vod && right.type() == fixed::vod;
    const double uncertain = areOnDemand ? 1.0 : longerTarget(left, right);
    const Rounding rounding(left, right);
    const auto differs = [&](std::size_t ofLeft, std::size_t ofRight) {
        const TimedSegment& leftSegment = left.segments()[ofLeft];
        const TimedSegment& rightSegment = right.segments()[ofRight];
        const double expected = rightSegment.start - leftSegment.start;
        const double seen = secondsBetween(*leftSegment.date, *rightSegment.date);
        return std::fabs(seen - expected) > uncertain + rounding.at(ofLeft, ofRight);
    };
    for (std::size_t place = 0; place < right.segments().size(); ++place) {
        const TimedSegment& segment = right.segments()[place];
        if (!segment.date || segment.start > left.duration()) continue;
        const std::size_t nearest = nearestSegment(left, segment.start);
        // Where dates jump, the one beside it may be meant.
        bool isElsewhere = true;
        for (const std::size_t each : {nearest, nearest == 0 ? 0 : nearest - 1, nearest + 1}) {
            const bool isThere = each < left.segments().size() && left.segments()[each].date.has_value();
            isElsewhere = isElsewhere && (!isThere || differs(each, place));
        }
        if (isElsewhere) return SegmentPair{nearest, place};
    }
    return std::nullopt;
}

}  // namespace velhls
