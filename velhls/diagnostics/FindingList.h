// Internal to the library, not installed: findings with their places, bounded and in order.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/diagnostics/RuleTable.h"
#include "velhls/diagnostics/TextLines.h"
#include "velhls/diagnostics/VELHLSFinding.h"

namespace velhls {

/// A piece of a line. All are counted from 1; the length may be 0.
struct Place {
    std::size_t line = 1;
    std::size_t column = 1;
    std::size_t length = 0;
};

/// A number of seconds for messages: "6.5".
[[nodiscard]] std::string inSeconds(double seconds);

/// Gathers findings. Of each rule it keeps a bounded number, and counts the others.
class FindingList {
  public:
    explicit FindingList(const TextLines& lines) : lines_(lines) {}

    /// Adds a finding. Without `seen` the text at the place is what was seen.
    void add(Rule rule, const Place& place, const std::string& seen = {});

    /// From here on errors are those between records, which the parse would only have looked at had it come so
    /// far.
    void readingEnded() { readingEnded_ = true; }

    /// All findings in their order. The list is empty afterwards.
    [[nodiscard]] std::vector<VELHLSFinding> takeAll();

  private:
    /// A finding is late when the parse gave up before it would have come to it.
    struct Entry {
        VELHLSFinding finding;
        bool late;
    };

    [[nodiscard]] std::string messageOf(Rule rule, const Place& place, const std::string& seen) const;

    const TextLines& lines_;
    std::vector<Entry> entries_;
    std::array<std::size_t, ruleCount> counts_ = {};
    std::array<std::size_t, ruleCount> lastEntries_ = {};
    bool readingEnded_ = false;
    bool lineRejected_ = false;
};

}  // namespace velhls
