#include "velhls/comparison/SegmentMatch.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace velhls {
namespace {

using Pairs = std::vector<SegmentPair>;

/// A key, and where it stands.
struct Entry {
    SegmentKey key;
    std::size_t index;
    bool isNow;
};

class Matcher {
  public:
    Matcher(const MediaVersion& before, const MediaVersion& now)
        : before_(before), now_(now), beforeCount_(before.segmentCount()), nowCount_(now.segmentCount()) {}

    SegmentMatch match() {
        const Pairs sameNumbers = pairsByNumber();
        const bool agree = std::all_of(sameNumbers.begin(), sameNumbers.end(),
                                       [this](const SegmentPair& pair) { return isSame(pair); });
        if (!sameNumbers.empty() && agree) return {SegmentMatch::overlapping, sameNumbers};
        if (before_.skipsSegments() || now_.skipsSegments())
            return {sameNumbers.empty() ? SegmentMatch::beyond : SegmentMatch::overlapping, sameNumbers};
        const Pairs anchors = anchorPairs();
        if (beforeCount_ == 0 || nowCount_ == 0) return {SegmentMatch::beyond, {}};
        if (sameNumbers.empty() && now_.firstNumber() > before_.firstNumber()) {
            // Names may come again after a while, so that far numbers hold unless the one list goes on where the other ends.
            if (!slides(anchors)) return {SegmentMatch::beyond, {}};
            return {SegmentMatch::overlapping, anchors};
        }
        if (!anchors.empty()) return {SegmentMatch::overlapping, filledUp(anchors)};
        const bool hasSame = std::any_of(sameNumbers.begin(), sameNumbers.end(),
                                         [this](const SegmentPair& pair) { return isSame(pair); });
        const bool isOneReplaced = sameNumbers.size() == 1 && now_.firstNumber() >= before_.firstNumber();
        if (hasSame || isOneReplaced) return {SegmentMatch::overlapping, sameNumbers};
        return {SegmentMatch::anew, sameNumbers};
    }

  private:
    [[nodiscard]] bool isSame(const SegmentPair& pair) const {
        return before_.keyOf(pair.before) == now_.keyOf(pair.now);
    }

    [[nodiscard]] Pairs pairsByNumber() const {
        const std::uint64_t first = std::max(before_.firstNumber(), now_.firstNumber());
        const std::uint64_t skippedBefore = first - before_.firstNumber();
        const std::uint64_t skippedNow = first - now_.firstNumber();
        if (skippedBefore >= beforeCount_ || skippedNow >= nowCount_) return {};
        const auto start =
            SegmentPair{static_cast<std::size_t>(skippedBefore), static_cast<std::size_t>(skippedNow)};
        const std::size_t count = std::min(beforeCount_ - start.before, nowCount_ - start.now);
        Pairs pairs;
        pairs.reserve(count);
        for (std::size_t place = 0; place < count; ++place)
            pairs.push_back({start.before + place, start.now + place});
        return pairs;
    }

    /// The segments that stand once in each version, as many of them as have the same order in both.
    [[nodiscard]] Pairs anchorPairs() const {
        std::vector<Entry> entries;
        entries.reserve(beforeCount_ + nowCount_);
        for (std::size_t index = 0; index < beforeCount_; ++index)
            entries.push_back({before_.keyOf(index), index, false});
        for (std::size_t index = 0; index < nowCount_; ++index)
            entries.push_back({now_.keyOf(index), index, true});
        std::sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
            if (left.key < right.key) return true;
            return left.key == right.key && left.isNow < right.isNow;
        });
        Pairs pairs;
        for (std::size_t first = 0, end = 0; first < entries.size(); first = end) {
            while (end < entries.size() && entries[end].key == entries[first].key)
                ++end;
            const bool isOnce = end - first == 2 && !entries[first].isNow && entries[first + 1].isNow;
            if (isOnce) pairs.push_back({entries[first].index, entries[first + 1].index});
        }
        return longestRising(std::move(pairs));
    }

    /// The most pairs that can be left so that both their places rise.
    static Pairs longestRising(Pairs pairs) {
        std::sort(pairs.begin(), pairs.end(),
                  [](const SegmentPair& left, const SegmentPair& right) { return left.now < right.now; });
        constexpr std::size_t none = SIZE_MAX;
        // Of each length, the pair that ends a sequence of it with the lowest place.
        std::vector<std::size_t> ends;
        std::vector<std::size_t> previous(pairs.size(), none);
        for (std::size_t index = 0; index < pairs.size(); ++index) {
            const auto end = std::lower_bound(
                ends.begin(), ends.end(), pairs[index].before,
                [&pairs](std::size_t at, std::size_t place) { return pairs[at].before < place; });
            if (end != ends.begin()) previous[index] = *(end - 1);
            if (end == ends.end()) {
                ends.push_back(index);
            } else {
                *end = index;
            }
        }
        Pairs rising;
        for (std::size_t at = ends.empty() ? none : ends.back(); at != none; at = previous[at])
            rising.push_back(pairs[at]);
        std::reverse(rising.begin(), rising.end());
        return rising;
    }

    /// Whether the pairs are the end of the old version and the beginning of the new one, and nothing tells them apart.
    [[nodiscard]] bool slides(const Pairs& pairs) const {
        if (pairs.size() < 2 || pairs.front().now != 0 || pairs.back().before + 1 != beforeCount_)
            return false;
        if (pairs.back().now + 1 != pairs.size() || pairs.front().before + pairs.size() != beforeCount_)
            return false;
        return std::all_of(pairs.begin(), pairs.end(), [this](const SegmentPair& pair) {
            const VELHLSStructure::Segment before = before_.segment(pair.before);
            const VELHLSStructure::Segment now = now_.segment(pair.now);
            constexpr std::int64_t second = 1000000;
            const bool hasDates = before.date && now.date;
            return std::abs(before.duration - now.duration) < 1e-6 &&
                   (!hasDates || std::abs(*before.date - *now.date) < second);
        });
    }

    /// The pairs, and those of what lies between them.
    [[nodiscard]] Pairs filledUp(const Pairs& anchors) const {
        Pairs pairs;
        SegmentPair from = {0, 0};
        for (const SegmentPair& anchor : anchors) {
            appendBetween(from, anchor, pairs);
            pairs.push_back(anchor);
            from = {anchor.before + 1, anchor.now + 1};
        }
        appendAfter(from, pairs);
        return pairs;
    }

    /// Before an anchor. At the start of a version the last ones belong together: the first ones were removed.
    void appendBetween(const SegmentPair& from, const SegmentPair& anchor, Pairs& pairs) const {
        SegmentPair first = from;
        SegmentPair end = anchor;
        const bool isStart = from.before == 0 && from.now == 0;
        while (!isStart && first.before < end.before && first.now < end.now && isSame(first))
            pairs.push_back({first.before++, first.now++});
        Pairs last;
        while (first.before < end.before && first.now < end.now && isSame({end.before - 1, end.now - 1}))
            last.push_back({--end.before, --end.now});
        const std::size_t left = end.before - first.before;
        if (isStart || left == end.now - first.now) {
            while (end.before > first.before && end.now > first.now)
                last.push_back({--end.before, --end.now});
        }
        pairs.insert(pairs.end(), last.rbegin(), last.rend());
    }

    /// After the last anchor: what is more in the new version was added to it.
    void appendAfter(SegmentPair from, Pairs& pairs) const {
        while (from.before < beforeCount_ && from.now < nowCount_)
            pairs.push_back({from.before++, from.now++});
    }

    const MediaVersion& before_;
    const MediaVersion& now_;
    std::size_t beforeCount_;
    std::size_t nowCount_;
};

}  // namespace

SegmentMatch matchSegments(const MediaVersion& before, const MediaVersion& now) {
    return Matcher(before, now).match();
}

}  // namespace velhls
