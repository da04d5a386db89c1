// Internal to the library, not installed: which of several things the others agree upon.
#pragma once

#include <cstddef>
#include <map>
#include <vector>

namespace velhls {

/// What most things have, and those that have something else.
template <typename Thing>
struct Agreement {
    /// One that has what most have: the first; null when there are none.
    const Thing* reference = nullptr;
    std::vector<const Thing*> others;
};

/// By a value of each: the value that most have, of as many the one that comes first.
template <typename Thing, typename ValueOf>
[[nodiscard]] Agreement<Thing> agreementByValue(const std::vector<const Thing*>& things, ValueOf valueOf) {
    Agreement<Thing> agreement;
    std::map<decltype(valueOf(*things.front())), std::size_t> counts;
    for (const Thing* const thing : things)
        ++counts[valueOf(*thing)];
    std::size_t most = 0;
    for (const Thing* const thing : things) {
        const std::size_t count = counts[valueOf(*thing)];
        if (count > most) agreement.reference = thing;
        most = count > most ? count : most;
    }
    for (const Thing* const thing : things) {
        if (valueOf(*thing) != valueOf(*agreement.reference)) agreement.others.push_back(thing);
    }
    return agreement;
}

/// Where things cannot be sorted by a value: each is compared with the first one, and where most disagree with that, with the
/// first of those.
template <typename Thing, typename Agree>
[[nodiscard]] Agreement<Thing> agreementByPairs(const std::vector<const Thing*>& things, Agree agree) {
    const auto comparedWith = [&](const Thing* reference) {
        Agreement<Thing> agreement;
        agreement.reference = reference;
        for (const Thing* const thing : things) {
            if (thing != reference && !agree(*reference, *thing)) agreement.others.push_back(thing);
        }
        return agreement;
    };
    if (things.empty()) return {};
    Agreement<Thing> withFirst = comparedWith(things.front());
    if (withFirst.others.size() * 2 <= things.size()) return withFirst;
    Agreement<Thing> withOther = comparedWith(withFirst.others.front());
    return withOther.others.size() < withFirst.others.size() ? withOther : withFirst;
}

}  // namespace velhls
