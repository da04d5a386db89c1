// Internal to the library, not installed: findings in their order, of each rule a bounded number.
#pragma once

#include <cstddef>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "velhls/common/Reading.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSRule.h"

namespace velhls {

/// Keeps findings. Of each rule of each profile it keeps a bounded number, and counts the others.
class BoundedFindings {
  public:
    /// Of one rule. The last of them tells how many more there were.
    static constexpr std::size_t mostOfOneRule = 100;

    /// Keeps so many of one rule.
    explicit BoundedFindings(std::size_t most = mostOfOneRule) : most_(most) {}

    /// What findings are counted by: a rule's identifier, and a profile.
    using Key = std::pair<std::string_view, std::string_view>;

    /// Counts one finding of a rule that has as many as are kept, and returns true; false when there is room, and `add`
    /// is to be called. So nobody need work out what is not kept.
    [[nodiscard]] bool isFull(const Key& key);

    /// Keeps a finding for which there is room. A finding comes after all of a lower group.
    void add(const Key& key, VELHLSFinding finding, std::size_t group = 0);

    /// Counts findings of a rule that were not kept in the first place.
    void addSuppressed(const Key& key, std::size_t count);

    /// All findings by their groups and places, those of one place as they were added. The list is empty afterwards.
    [[nodiscard]] std::vector<VELHLSFinding> takeAll();

  private:
    struct Entry {
        VELHLSFinding finding;
        std::size_t group;
    };

    struct Count {
        std::size_t kept = 0;
        std::size_t last = 0;
    };

    std::size_t most_;
    std::vector<Entry> entries_;
    std::map<Key, Count> counts_;
};

/// A finding of a rule at a place of a line: "expected …, seen …". Without `seen` the text at the place is what was seen.
[[nodiscard]] VELHLSFinding findingOf(const VELHLSRule& rule, std::string_view line, const Place& place,
                                      std::string_view expected, std::string_view seen);

}  // namespace velhls
