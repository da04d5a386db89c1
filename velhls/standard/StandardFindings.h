// Internal to the library, not installed: findings of the standard's rules, bounded and in order.
#pragma once

#include <string_view>
#include <vector>

#include "velhls/document/BoundedFindings.h"
#include "velhls/document/VELHLSFinding.h"
#include "velhls/document/VELHLSLine.h"
#include "velhls/standard/StandardRule.h"

namespace velhls {

/// What a finding says otherwise than its rule does. What is empty is as the rule says, or for what was seen the text of the
/// place.
struct FindingWords {
    std::string_view expected = {};
    std::string_view seen = {};
    /// "RFC 8216, section 4.3.2.4", where the rule stands for clauses of several sections.
    std::string_view source = {};
    /// A second place; null for none.
    const VELHLSRelatedPlace* related = nullptr;
    /// The key word of the clause, where the rule stands for clauses of several.
    std::string_view level = {};
};

/// Gathers findings of one profile.
class StandardFindings {
  public:
    /// Keeps so many of one rule.
    explicit StandardFindings(StandardProfile profile, std::size_t most = BoundedFindings::mostOfOneRule)
        : profile_(VELHLSStandard::nameOf(profile)), findings_(most) {}

    /// Adds a finding at a piece of the line.
    void add(const StandardRule& rule, const VELHLSLine& line, std::string_view piece,
             const FindingWords& words);

    /// All findings in the order of their places. The list is empty afterwards.
    [[nodiscard]] std::vector<VELHLSFinding> takeAll() { return findings_.takeAll(); }

  private:
    std::string_view profile_;
    BoundedFindings findings_;
};

/// Tells of one rule.
class Tell {
  public:
    Tell(StandardFindings& findings, const StandardRule& rule) : findings_(findings), rule_(rule) {}

    /// At a piece of the line.
    void operator()(const VELHLSLine& line, std::string_view piece, const FindingWords& words = {}) const {
        findings_.add(rule_, line, piece, words);
    }

  private:
    StandardFindings& findings_;
    const StandardRule& rule_;
};

}  // namespace velhls
