// Internal to the library, not installed: the rules that bind the records of one master playlist to each
// other.
#pragma once

#include <utility>
#include <vector>

#include "velhls/common/Reading.h"
#include "velhls/manifest/VELHLSParsedManifest.h"

namespace velhls {

/// What the rules find: all that is broken, or no more than the first.
class BrokenRules {
  public:
    enum class Wanted { first, all };

    explicit BrokenRules(Wanted wanted) : wanted_(wanted) {}

    /// What only a caller can have done to a manifest, such as a null record: there is no line to tell of.
    void addByCaller() { isByCaller_ = true; }
    void add(BrokenRule broken) { rules_.push_back(std::move(broken)); }

    [[nodiscard]] bool areEnough() const {
        return isByCaller_ || (wanted_ == Wanted::first && !rules_.empty());
    }
    [[nodiscard]] bool empty() const { return rules_.empty() && !isByCaller_; }
    [[nodiscard]] const std::vector<BrokenRule>& all() const { return rules_; }

  private:
    Wanted wanted_;
    bool isByCaller_ = false;
    std::vector<BrokenRule> rules_;
};

/// See VELHLSParsedManifest::validate. Where all are wanted each group is told at most once what it lacks.
[[nodiscard]] BrokenRules brokenRulesOf(const VELHLSParsedManifest& manifest, BrokenRules::Wanted wanted);

}  // namespace velhls
