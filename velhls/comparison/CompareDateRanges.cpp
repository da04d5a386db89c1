#include <algorithm>
#include <string>

#include "velhls/comparison/Compare.h"
#include "velhls/comparison/Values.h"

namespace velhls {
namespace {

std::string pathOf(const DateRange& range) {
    return "date range " + shortened(range.id);
}

Spot spotOf(const DateRanges& ranges, const DateRange& range) {
    return {range.firstLine, ranges.document().line(range.firstLine).value};
}

using Values = VELHLSRows<DateRangeValue>;

/// The next values with one name, the first of which has this place.
Values valuesAt(const DateRange& range, std::size_t place) {
    std::size_t end = place;
    while (end < range.values.size() && range.values[end].name == range.values[place].name)
        ++end;
    return {range.values.data() + place, end - place};
}

/// The first value that is none of the old ones; null when there is none. Two tags of one ID have one value of an attribute, unless
/// the playlist is wrong in itself; of a thousand only the first ones are looked at.
const DateRangeValue* findOther(const Values& before, const Values& now) {
    constexpr std::size_t most = 16;
    for (std::size_t place = 0; place < std::min(most, now.size()); ++place) {
        bool isKnown = false;
        for (std::size_t old = 0; old < std::min(most, before.size()); ++old)
            isKnown = isKnown || isSameValue(before[old].value, now[place].value);
        if (!isKnown) return &now[place];
    }
    return nullptr;
}

void compareRange(const DateRange& before, const DateRange& now, Differences& differences) {
    const DateRangeValue* const start = before.find("START-DATE");
    const DateRangeValue* const newStart = now.find("START-DATE");
    bool isReused = false;
    std::size_t first = 0;
    std::size_t second = 0;
    if (start != nullptr && newStart != nullptr) {
        const auto at = static_cast<std::size_t>(start - before.values.data());
        const auto newAt = static_cast<std::size_t>(newStart - now.values.data());
        isReused = findOther(valuesAt(before, at), valuesAt(now, newAt)) != nullptr;
    }
    while (first < before.values.size() || second < now.values.size()) {
        const Values old = valuesAt(before, first);
        const Values fresh = valuesAt(now, second);
        const int order = old.empty() ? 1 : fresh.empty() ? -1 : old[0].name.compare(fresh[0].name);
        const std::string_view name = order <= 0 ? old[0].name : fresh[0].name;
        const auto aspect = !isReused              ? Aspect::dateRangeValue
                            : name == "START-DATE" ? Aspect::dateRangeReused
                                                   : Aspect::foreignTag;
        const Spot missing = {before.firstLine, {}};
        const Spot missingNow = {now.firstLine, {}};
        const DateRangeValue* const other = order == 0 ? findOther(old, fresh) : nullptr;
        if (order != 0 || other != nullptr) {
            const Spot spot = order > 0 ? missing : Spot{old[0].line, old[0].value};
            const DateRangeValue* const value = order == 0 ? other : fresh.begin();
            const Spot newSpot = order < 0 ? missingNow : Spot{value->line, value->value};
            differences.add(aspect, pathOf(now), name, spot, newSpot).id = now.id;
        }
        first += order <= 0 ? old.size() : 0;
        second += order >= 0 ? fresh.size() : 0;
    }
}

}  // namespace

void compareDateRanges(const DateRanges& before, const DateRanges& now, Differences& differences) {
    auto old = before.all().begin();
    auto fresh = now.all().begin();
    while (old != before.all().end() || fresh != now.all().end()) {
        const int order = old == before.all().end()  ? 1
                          : fresh == now.all().end() ? -1
                                                     : old->id.compare(fresh->id);
        if (order < 0) differences.add(Aspect::dateRange, pathOf(*old), {}, spotOf(before, *old), {});
        if (order > 0) differences.add(Aspect::dateRange, pathOf(*fresh), {}, {}, spotOf(now, *fresh));
        if (order == 0) compareRange(*old, *fresh, differences);
        if (order <= 0) ++old;
        if (order >= 0) ++fresh;
    }
}

}  // namespace velhls
