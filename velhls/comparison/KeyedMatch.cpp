#include "velhls/comparison/KeyedMatch.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <tuple>

namespace velhls {
namespace {

struct Entry {
    std::string_view key;
    std::size_t index;
};

std::vector<Entry> sorted(const std::vector<std::string>& keys) {
    std::vector<Entry> entries;
    entries.reserve(keys.size());
    for (std::size_t index = 0; index < keys.size(); ++index)
        entries.push_back({keys[index], index});
    std::sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
        return std::tie(left.key, left.index) < std::tie(right.key, right.index);
    });
    return entries;
}

}  // namespace

std::vector<KeyedPair> matchByKey(const std::vector<std::string>& before,
                                  const std::vector<std::string>& now) {
    std::vector<std::size_t> nowOf(before.size(), KeyedPair::none);
    std::vector<std::size_t> beforeOf(now.size(), KeyedPair::none);
    const std::vector<Entry> left = sorted(before);
    const std::vector<Entry> right = sorted(now);
    for (std::size_t first = 0, second = 0; first < left.size() && second < right.size();) {
        const int order = left[first].key.compare(right[second].key);
        if (order == 0) {
            nowOf[left[first].index] = right[second].index;
            beforeOf[right[second].index] = left[first].index;
        }
        first += order <= 0 ? 1 : 0;
        second += order >= 0 ? 1 : 0;
    }
    std::vector<KeyedPair> pairs;
    for (std::size_t index = 0; index < before.size(); ++index) {
        if (nowOf[index] == KeyedPair::none) pairs.push_back({index, KeyedPair::none});
    }
    for (std::size_t index = 0; index < now.size(); ++index)
        pairs.push_back({beforeOf[index], index});
    return pairs;
}

}  // namespace velhls
