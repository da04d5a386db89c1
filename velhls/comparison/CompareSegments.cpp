#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "velhls/common/Names.h"
#include "velhls/comparison/Compare.h"
#include "velhls/comparison/KeyedMatch.h"
#include "velhls/comparison/Values.h"
#include "velhls/document/FormatTables.h"
#include "velhls/document/VELHLSSyntax.h"

namespace velhls {
namespace {

using Segment = VELHLSStructure::Segment;

/// A segment of a version.
struct Side {
    const MediaVersion& version;
    std::size_t index;
    Segment segment;

    Side(const MediaVersion& from, std::size_t place)
        : version(from), index(place), segment(from.segment(place)) {}

    [[nodiscard]] VELHLSLine line(std::size_t number) const { return version.document().line(number); }
    [[nodiscard]] VELHLSLine uri() const { return line(segment.uriLine); }
    /// Its line, where what is looked for is not there.
    [[nodiscard]] Spot nothing() const { return {segment.uriLine, {}}; }

    /// The duration and the title of its EXTINF, without white space around them.
    [[nodiscard]] Spot duration() const {
        if (segment.durationLine == 0) return nothing();
        const VELHLSLine tag = line(segment.durationLine);
        return spotOf(tag, trimmed(tag.value.substr(0, tag.value.find(','))));
    }
    [[nodiscard]] Spot title() const {
        if (segment.durationLine == 0) return nothing();
        const VELHLSLine tag = line(segment.durationLine);
        const std::size_t comma = tag.value.find(',');
        const std::string_view text =
            comma == std::string_view::npos ? nothingAfter(tag.value) : tag.value.substr(comma + 1);
        return trimmed(text).empty() ? Spot{tag.number, {}} : spotOf(tag, trimmed(text));
    }
    [[nodiscard]] Spot range() const {
        if (segment.rangeLine == 0) return nothing();
        return spotOf(line(segment.rangeLine), trimmed(line(segment.rangeLine).value));
    }
    [[nodiscard]] bool hasOwn(std::size_t tag) const { return version.countOf(tag, index) > 0; }
};

/// Numbers the keys, or the maps, of both versions, so that those that say the same have the same number.
class InForceNumbers {
  public:
    InForceNumbers(std::size_t tag, const MediaVersion& before, const MediaVersion& now) {
        std::vector<Entry> entries;
        append(before, before.playlist().lines(tag), false, entries);
        append(now, now.playlist().lines(tag), true, entries);
        std::sort(entries.begin(), entries.end(),
                  [](const Entry& left, const Entry& right) { return left.list < right.list; });
        before_.lines = before.playlist().lines(tag);
        before_.numbers.resize(before_.lines.size());
        now_.lines = now.playlist().lines(tag);
        now_.numbers.resize(now_.lines.size());
        std::size_t number = 0;
        for (std::size_t place = 0; place < entries.size(); ++place) {
            if (place > 0 && entries[place].list != entries[place - 1].list) ++number;
            (entries[place].isNow ? now_ : before_).numbers[entries[place].index] = number;
        }
    }

    [[nodiscard]] std::size_t numberBefore(std::size_t line) const { return before_.numberOf(line); }
    [[nodiscard]] std::size_t numberNow(std::size_t line) const { return now_.numberOf(line); }

  private:
    struct Entry {
        std::string list;
        std::size_t index;
        bool isNow;
    };

    struct Numbers {
        std::vector<std::uint32_t> lines;
        std::vector<std::size_t> numbers;

        [[nodiscard]] std::size_t numberOf(std::size_t line) const {
            return numbers[static_cast<std::size_t>(std::lower_bound(lines.begin(), lines.end(), line) -
                                                    lines.begin())];
        }
    };

    static void append(const MediaVersion& version, const std::vector<std::uint32_t>& lines, bool isNow,
                       std::vector<Entry>& entries) {
        for (std::size_t index = 0; index < lines.size(); ++index)
            entries.push_back({canonicalList(version.document().line(lines[index]).value), index, isNow});
    }

    Numbers before_;
    Numbers now_;
};

/// A key or a map in force.
struct InForce {
    std::size_t line;
    std::size_t number;
};

using InForceList = std::vector<InForce>;

bool holds(const InForceList& list, std::size_t number) {
    return std::any_of(list.begin(), list.end(),
                       [&](const InForce& other) { return other.number == number; });
}

/// Those that are not in the other list.
InForceList without(const InForceList& list, const InForceList& other) {
    InForceList left;
    std::copy_if(list.begin(), list.end(), std::back_inserter(left),
                 [&](const InForce& one) { return !holds(other, one.number); });
    return left;
}

std::vector<std::size_t> keyLines(const VELHLSStructure::InForce& inForce) {
    return {inForce.keyLines.begin(), inForce.keyLines.end()};
}

std::vector<std::size_t> mapLines(const VELHLSStructure::InForce& inForce) {
    if (inForce.mapLine == 0) return {};
    return {inForce.mapLine};
}

/// Follows the keys, or the maps, of both versions from pair to pair.
class Follower {
  public:
    using LinesInForce = std::vector<std::size_t> (*)(const VELHLSStructure::InForce& inForce);

    Follower(Aspect aspect, std::string_view what, std::size_t tag, LinesInForce lines,
             const MediaVersion& before, const MediaVersion& now)
        : aspect_(aspect), what_(what), tag_(tag), lines_(lines), numbers_(tag, before, now) {}

    /// A pair follows when both its segments come right after those of the pair before.
    void follow(const Side& before, const Side& now, bool follows, Differences& differences) {
        const bool hasOwn = before.hasOwn(tag_);
        const bool hasNewOwn = now.hasOwn(tag_);
        // Where neither has a tag of its own, both go on as they were.
        if (follows && !hasOwn && !hasNewOwn) return;
        const InForceList old = listOf(before, false);
        const InForceList fresh = listOf(now, true);
        const InForceList gone = without(old, fresh);
        const InForceList added = without(fresh, old);
        const std::vector<std::size_t> told = numbersOf(gone, added);
        const bool isTold = follows && told == told_;
        told_ = told;
        if ((gone.empty() && added.empty()) || isTold) return;
        // What is no longer there is the fault when the new version has no tag of its own that says otherwise.
        const bool isRemoved = follows ? hasOwn && !hasNewOwn : !gone.empty() && fresh.empty();
        const bool isAdded = follows ? !hasOwn : old.empty();
        Spot spot = spotOf(before, gone);
        Spot newSpot = spotOf(now, added);
        if (isRemoved) newSpot = now.nothing();
        if (isAdded && !isRemoved) spot = before.nothing();
        differences.add(aspect_, now.version.pathOf(now.index), what_, spot, newSpot, textOf(before, gone),
                        textOf(now, added));
    }

  private:
    [[nodiscard]] InForceList listOf(const Side& side, bool isNow) const {
        InForceList list;
        for (const std::size_t line : lines_(side.segment.inForce))
            list.push_back({line, isNow ? numbers_.numberNow(line) : numbers_.numberBefore(line)});
        return list;
    }

    static std::vector<std::size_t> numbersOf(const InForceList& gone, const InForceList& added) {
        std::vector<std::size_t> numbers;
        for (const InForce& one : gone)
            numbers.push_back(one.number);
        numbers.push_back(SIZE_MAX);
        for (const InForce& one : added)
            numbers.push_back(one.number);
        return numbers;
    }

    /// The last line of the list, or the segment's URI where it is empty.
    static Spot spotOf(const Side& side, const InForceList& list) {
        if (list.empty()) return velhls::spotOf(side.uri(), side.uri().value);
        const VELHLSLine line = side.line(list.back().line);
        return velhls::spotOf(line, line.value);
    }

    /// "METHOD=AES-128,URI="key"" for each that only one version has.
    static std::string textOf(const Side& side, const InForceList& list) {
        std::string text;
        for (const InForce& one : list)
            text.append(text.empty() ? "" : " and ").append(shortened(side.line(one.line).value));
        return text.empty() ? "none" : text;
    }

    Aspect aspect_;
    std::string_view what_;
    std::size_t tag_;
    LinesInForce lines_;
    InForceNumbers numbers_;
    /// What was different at the pair before.
    std::vector<std::size_t> told_;
};

/// Compares dates: a shift of all dates is told once.
class DateFollower {
  public:
    void follow(const Side& before, const Side& now, Differences& differences) {
        const bool isWritten = before.segment.dateLine != 0;
        const bool isNewWritten = now.segment.dateLine != 0;
        if (before.segment.date && now.segment.date)
            return compare(before, now, isWritten, isNewWritten, differences);
        shift_ = 0;
        const bool isGone = before.segment.date && !now.segment.date;
        if (isGone && !isGone_) add(Aspect::date, before, now, differences);
        isGone_ = isGone;
        if (!before.segment.date && isNewWritten && !isWritten)
            add(Aspect::segmentTag, before, now, differences);
    }

  private:
    void compare(const Side& before, const Side& now, bool isWritten, bool isNewWritten,
                 Differences& differences) {
        isGone_ = false;
        constexpr std::int64_t millisecond = 1000;
        // Durations are rounded, and encoders' clocks are not those of durations.
        constexpr std::int64_t rounding = 500 * millisecond;
        const bool areWritten = isWritten && isNewWritten;
        const std::int64_t shift = *now.segment.date - *before.segment.date;
        const std::int64_t most = areWritten ? millisecond - 1 : rounding;
        const bool isShifted = std::abs(shift) > most;
        // Where neither date is written, they follow from what was told before.
        const bool isKnown = std::abs(shift - shift_) <= most || (!isWritten && !isNewWritten);
        if (isShifted && !isKnown) add(Aspect::date, before, now, differences);
        if (!isShifted && isWritten && !isNewWritten) add(Aspect::segmentTag, before, now, differences);
        if (isShifted || areWritten) shift_ = isShifted ? shift : 0;
    }

    static Spot spotOf(const Side& side) {
        if (side.segment.dateLine != 0)
            return velhls::spotOf(side.line(side.segment.dateLine),
                                  trimmed(side.line(side.segment.dateLine).value));
        return side.segment.date ? velhls::spotOf(side.uri(), side.uri().value) : side.nothing();
    }

    /// As it is written, or else as it follows from the last one that is.
    static std::string textOf(const Side& side) {
        if (side.segment.dateLine != 0) return std::string(trimmed(side.line(side.segment.dateLine).value));
        if (!side.segment.date) return {};
        return dateText(*side.segment.date);
    }

    static void add(Aspect aspect, const Side& before, const Side& now, Differences& differences) {
        Spot spot = spotOf(before);
        Spot newSpot = spotOf(now);
        if (aspect == Aspect::segmentTag && now.segment.dateLine == 0) newSpot = now.nothing();
        if (aspect == Aspect::segmentTag && before.segment.dateLine == 0) spot = before.nothing();
        differences.add(aspect, now.version.pathOf(now.index), "date", spot, newSpot, textOf(before),
                        textOf(now));
    }

    std::int64_t shift_ = 0;
    bool isGone_ = false;
};

/// The lines of a segment's tags that only the successor of RFC 8216 and vendors know.
std::vector<VELHLSLine> foreignTags(const Side& side) {
    std::vector<VELHLSLine> lines;
    for (std::size_t number = side.version.firstLine(side.index); number < side.version.lastLine(side.index);
         ++number) {
        const VELHLSLine line = side.line(number);
        if (line.name.empty()) continue;
        const VELHLSTagDefinition* const tag = line.definition;
        const bool isOther =
            tag == nullptr || tag->profile == VELHLSProfile::vendor ||
            (tag->profile == VELHLSProfile::rfc8216bis && tag->reach != VELHLSTagDefinition::Itself);
        // Vendors' tags of the whole playlist are compared with that.
        const bool isOfPlaylist = tag != nullptr && tag->reach == VELHLSTagDefinition::Itself;
        if (isOther && !isOfPlaylist) lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> namesOf(const std::vector<VELHLSLine>& lines) {
    std::vector<std::string> names;
    names.reserve(lines.size());
    for (const VELHLSLine& line : lines)
        names.emplace_back(line.name);
    return names;
}

class SegmentComparer {
  public:
    SegmentComparer(const MediaVersion& before, const MediaVersion& now, Differences& differences)
        : before_(before),
          now_(now),
          differences_(differences),
          isPartly_(before.skipsSegments() || now.skipsSegments()),
          keys_(Aspect::key, "key", tagIndex(tag::key), keyLines, before, now),
          maps_(Aspect::map, "map", tagIndex(tag::map), mapLines, before, now) {}

    void compare(const SegmentPair& pair) {
        const Side before(before_, pair.before);
        const Side now(now_, pair.now);
        if (before.uri().value != now.uri().value) {
            differences_.add(Aspect::segmentUri, now_.pathOf(pair.now), "uri",
                             spotOf(before.uri(), before.uri().value), spotOf(now.uri(), now.uri().value));
            return;
        }
        if (before_.textOf(pair.before) != now_.textOf(pair.now)) compareTexts(before, now);
        if (isPartly_) return;
        const bool follows = last_ && last_->before + 1 == pair.before && last_->now + 1 == pair.now;
        keys_.follow(before, now, follows, differences_);
        maps_.follow(before, now, follows, differences_);
        dates_.follow(before, now, differences_);
        last_ = pair;
    }

    void addAlone(const MediaVersion& version, std::size_t index, bool isNow) {
        const Side side(version, index);
        const Spot spot = spotOf(side.uri(), side.uri().value);
        const std::string text =
            (side.segment.durationLine == 0 ? std::string() : std::string(side.duration().text) + " ") +
            std::string(side.uri().value);
        differences_.add(Aspect::segment, version.pathOf(index), {}, isNow ? Spot() : spot,
                         isNow ? spot : Spot(), isNow ? std::string() : text, isNow ? text : std::string());
    }

  private:
    void compareTexts(const Side& before, const Side& now) {
        const Spot duration = before.duration();
        const Spot newDuration = now.duration();
        if (!isSameValue(duration.text, newDuration.text))
            add(Aspect::segmentDuration, now, "duration", duration, newDuration);
        const Spot title = before.title();
        const Spot newTitle = now.title();
        if (title.text != newTitle.text) add(Aspect::segmentTag, now, "title", title, newTitle);
        if (!isSameRange(before, now))
            add(Aspect::segmentTag, now, "byte range", before.range(), now.range());
        if (!isPartly_) compareDiscontinuities(before, now);
        compareForeignTags(before, now);
    }

    void add(Aspect aspect, const Side& now, std::string_view what, const Spot& spot, const Spot& newSpot) {
        differences_.add(aspect, now.version.pathOf(now.index), what, spot, newSpot);
    }

    /// Where a range has no offset, since that of the segment before tells, and this is gone, nobody knows better.
    static bool isSameRange(const Side& before, const Side& now) {
        if ((before.segment.rangeLine == 0) != (now.segment.rangeLine == 0)) return false;
        if (before.segment.rangeLine == 0 || before.range().text == now.range().text) return true;
        const auto range = VELHLSSyntax::readByteRange(before.range().text);
        const auto newRange = VELHLSSyntax::readByteRange(now.range().text);
        if (!range || !newRange || range->length != newRange->length) return false;
        return !before.segment.rangeOffset || !now.segment.rangeOffset ||
               before.segment.rangeOffset == now.segment.rangeOffset;
    }

    void compareDiscontinuities(const Side& before, const Side& now) {
        constexpr std::size_t tag = tagIndexOf<tag::discontinuity>;
        const std::size_t count = before_.countOf(tag, before.index);
        const std::size_t newCount = now_.countOf(tag, now.index);
        if (count == newCount) return;
        const auto spot = [](const Side& side, bool isThere) {
            return isThere ? spotOf(side.uri(), side.uri().value) : side.nothing();
        };
        // One of two is a change, and all the same one tag that is gone or has come.
        const bool isGone = newCount < count;
        differences_.add(Aspect::discontinuity, now_.pathOf(now.index), "discontinuity", spot(before, isGone),
                         spot(now, !isGone), std::to_string(count), std::to_string(newCount));
    }

    void compareForeignTags(const Side& before, const Side& now) {
        const std::vector<VELHLSLine> old = foreignTags(before);
        const std::vector<VELHLSLine> fresh = foreignTags(now);
        if (old.empty() && fresh.empty()) return;
        for (const KeyedPair& pair : matchByKey(namesOf(old), namesOf(fresh))) {
            const bool isOld = pair.before != KeyedPair::none;
            const bool isNew = pair.now != KeyedPair::none;
            const VELHLSLine& named = isNew ? fresh[pair.now] : old[pair.before];
            const Spot spot = isOld ? valueSpotOf(old[pair.before]) : before.nothing();
            const Spot newSpot = isNew ? valueSpotOf(fresh[pair.now]) : now.nothing();
            if (isOld && isNew && spot.text == newSpot.text) continue;
            add(Aspect::foreignTag, now, named.name, spot, newSpot);
        }
    }

    static Spot valueSpotOf(const VELHLSLine& line) { return spotOf(line, trimmed(line.value)); }

    const MediaVersion& before_;
    const MediaVersion& now_;
    Differences& differences_;
    /// EXT-X-SKIP stands for the lines that would tell what is in force.
    bool isPartly_;
    std::optional<SegmentPair> last_;
    Follower keys_;
    Follower maps_;
    DateFollower dates_;
};

}  // namespace

void compareSegments(const MediaVersion& before, const MediaVersion& now, const SegmentMatch& match,
                     Differences& differences) {
    SegmentComparer comparer(before, now, differences);
    std::size_t old = 0;
    std::size_t fresh = 0;
    const auto addUpTo = [&](std::size_t oldEnd, std::size_t newEnd) {
        for (; old < oldEnd; ++old)
            comparer.addAlone(before, old, false);
        for (; fresh < newEnd; ++fresh)
            comparer.addAlone(now, fresh, true);
    };
    for (const SegmentPair& pair : match.pairs) {
        addUpTo(pair.before, pair.now);
        comparer.compare(pair);
        old = pair.before + 1;
        fresh = pair.now + 1;
    }
    addUpTo(before.segmentCount(), now.segmentCount());
}

}  // namespace velhls
