// Internal to the library, not installed: what two lists have in common, by keys.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace velhls {

/// An entry of both lists, or of one of them.
struct KeyedPair {
    static constexpr std::size_t none = SIZE_MAX;

    std::size_t before = none;
    std::size_t now = none;
};

/// Entries with one key are taken for each other in their order. First those of the old list that are not in the new one, then
/// those of the new list, each in their order. Takes time linear in the keys but for sorting.
[[nodiscard]] std::vector<KeyedPair> matchByKey(const std::vector<std::string>& before,
                                                const std::vector<std::string>& now);

}  // namespace velhls
