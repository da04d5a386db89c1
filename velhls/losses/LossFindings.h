// Internal to the library, not installed: findings of what the models do, bounded and in order.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "velhls/common/Reading.h"
#include "velhls/document/BoundedFindings.h"
#include "velhls/document/TextLines.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSRule.h"

namespace velhls {

/// Gathers findings. Errors that the parse would not have come to are the last.
class LossFindings {
  public:
    /// Keeps so many of one rule.
    explicit LossFindings(const TextLines& lines, std::size_t mostOfOneRule = BoundedFindings::mostOfOneRule)
        : lines_(lines), findings_(mostOfOneRule) {}

    /// See BoundedFindings.
    [[nodiscard]] bool isFull(const VELHLSRule& rule) { return findings_.isFull(keyOf(rule)); }

    /// Adds a finding. Without `seen` the text at the place is what was seen.
    void add(const VELHLSRule& rule, const Place& place, std::string_view seen = {});

    /// Counts findings of a rule that were not kept in the first place.
    void addSuppressed(const VELHLSRule& rule, std::size_t count) {
        findings_.addSuppressed(keyOf(rule), count);
    }

    /// From here on errors are those between records, which the parse would only have looked at had it come so
    /// far.
    void readingEnded() { readingEnded_ = true; }

    /// All findings in their order. Called once, at the end.
    [[nodiscard]] std::vector<VELHLSFinding> takeAll() { return findings_.takeAll(); }

  private:
    static constexpr std::string_view profile = "library";

    /// A finding is late when the parse gave up before it would have come to it.
    enum Group : std::size_t { inTime, late };

    [[nodiscard]] static BoundedFindings::Key keyOf(const VELHLSRule& rule) { return {rule.id, profile}; }

    const TextLines& lines_;
    BoundedFindings findings_;
    bool readingEnded_ = false;
    bool lineRejected_ = false;
};

}  // namespace velhls
