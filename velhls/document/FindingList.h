// Internal to the library, not installed: findings with their places, bounded and in order.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "velhls/common/Reading.h"
#include "velhls/document/TextLines.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSRule.h"

namespace velhls {

/// Gathers findings. Of each rule it keeps a bounded number, and counts the others.
class FindingList {
  public:
    /// Of one rule. The last of them tells how many more there were.
    static constexpr std::size_t mostOfOneRule = 100;

    explicit FindingList(const TextLines& lines) : lines_(lines) {}

    /// Counts one finding of a rule that has as many as are kept, and returns true; false when there is room, and `add`
    /// is to be called. So nobody need work out a place that is not kept.
    [[nodiscard]] bool isFull(const VELHLSRule& rule);

    /// Adds a finding. Without `seen` the text at the place is what was seen.
    void add(const VELHLSRule& rule, const Place& place, std::string_view seen = {});

    /// Counts findings of a rule that were not kept in the first place.
    void addSuppressed(const VELHLSRule& rule, std::size_t count);

    /// From here on errors are those between records, which the parse would only have looked at had it come so
    /// far.
    void readingEnded() { readingEnded_ = true; }

    /// All findings in their order. Called once, at the end.
    [[nodiscard]] std::vector<VELHLSFinding> takeAll();

  private:
    /// A finding is late when the parse gave up before it would have come to it.
    struct Entry {
        VELHLSFinding finding;
        bool late;
    };

    struct Count {
        std::size_t kept = 0;
        std::size_t lastEntry = 0;
    };

    const TextLines& lines_;
    std::vector<Entry> entries_;
    std::unordered_map<std::string_view, Count> counts_;
    bool readingEnded_ = false;
    bool lineRejected_ = false;
};

}  // namespace velhls
