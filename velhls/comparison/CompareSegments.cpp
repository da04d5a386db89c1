#include <algorithm>
#include <cmath>
#include <cstdlib>
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

/// "METHOD=AES-128,URI="key"" for each key or map in force.
std::string joinedText(const std::vector<VELHLSLine>& lines) {
    std::string text;
    for (const VELHLSLine& line : lines)
        text.append(text.empty() ? "" : " and ").append(line.value);
    return text.empty() ? "none" : text;
}

/// What tags that hold for the segments after them say at a segment.
struct InForce {
    std::vector<VELHLSLine> lines;
};

InForce keysOf(const Side& side) {
    InForce keys;
    for (const std::uint32_t number : side.segment.inForce.keyLines)
        keys.lines.push_back(side.line(number));
    return keys;
}

InForce mapOf(const Side& side) {
    InForce map;
    if (side.segment.inForce.mapLine != 0) map.lines.push_back(side.line(side.segment.inForce.mapLine));
    return map;
}

bool holds(const std::vector<VELHLSLine>& lines, const VELHLSLine& wanted) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const VELHLSLine& line) { return isSameList(line.value, wanted.value); });
}

bool holdsAll(const std::vector<VELHLSLine>& lines, const std::vector<VELHLSLine>& wanted) {
    return std::all_of(wanted.begin(), wanted.end(),
                       [&](const VELHLSLine& line) { return holds(lines, line); });
}

/// Follows the keys, or the maps, of both versions from pair to pair.
class Follower {
  public:
    Follower(Aspect aspect, std::string_view what, std::size_t tag, InForce (*inForce)(const Side&))
        : aspect_(aspect), what_(what), tag_(tag), inForce_(inForce) {}

    /// A pair follows when both its segments come right after those of the pair before.
    void follow(const Side& before, const Side& now, bool follows, Differences& differences) {
        const bool hasOwn = before.hasOwn(tag_);
        const bool hasNewOwn = now.hasOwn(tag_);
        // Where neither has a tag of its own, both go on as they were.
        if (follows && !hasOwn && !hasNewOwn) return;
        const InForce old = inForce_(before);
        const InForce fresh = inForce_(now);
        const bool isKept = holdsAll(fresh.lines, old.lines);
        if (isKept && holdsAll(old.lines, fresh.lines)) {
            isTold_ = false;
            return;
        }
        const std::string oldText = joinedText(old.lines);
        const std::string newText = joinedText(fresh.lines);
        if (follows && isTold_ && oldText == oldText_ && newText == newText_) return;
        isTold_ = true;
        oldText_ = oldText;
        newText_ = newText;
        // What is no longer there is the fault when the new version has no tag of its own that says otherwise.
        const bool isRemoved = follows ? hasOwn && !hasNewOwn : !isKept && fresh.lines.empty();
        const bool isAdded = follows ? !hasOwn : old.lines.empty();
        Spot spot = spotOf(before, old);
        Spot newSpot = spotOf(now, fresh);
        if (isRemoved) newSpot = now.nothing();
        if (isAdded && !isRemoved) spot = before.nothing();
        differences.add(aspect_, now.version.pathOf(now.index), what_, spot, newSpot, oldText, newText);
    }

  private:
    /// The last line in force, or the segment's URI where none is.
    static Spot spotOf(const Side& side, const InForce& inForce) {
        if (inForce.lines.empty()) return velhls::spotOf(side.uri(), side.uri().value);
        return velhls::spotOf(inForce.lines.back(), inForce.lines.back().value);
    }

    Aspect aspect_;
    std::string_view what_;
    std::size_t tag_;
    InForce (*inForce_)(const Side&);
    bool isTold_ = false;
    std::string oldText_;
    std::string newText_;
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
          isPartly_(before.skipsSegments() || now.skipsSegments()) {}

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
    Follower keys_{Aspect::key, "key", tagIndexOf<tag::key>, keysOf};
    Follower maps_{Aspect::map, "map", tagIndexOf<tag::map>, mapOf};
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
