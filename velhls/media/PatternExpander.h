// Internal to the library, not installed: media patterns turned into playlist text and segments, within
// bounds.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/TagLine.h"
#include "velhls/common/VELHLSUtility.h"
#include "velhls/media/SegmentMaker.h"
#include "velhls/media/SegmentReader.h"
#include "velhls/media/VELHLSMediaPattern.h"

namespace velhls {

/// How many bytes of pattern text may still be made, and how many segments from it.
class ExpansionAllowance {
  public:
    explicit ExpansionAllowance(std::size_t bytes) : left_(bytes) {}

    /// False, and nothing is spent, when so much is not left.
    bool spend(std::size_t bytes) {
        if (bytes > left_) return false;
        left_ -= bytes;
        return true;
    }

    /// False when no segment is left.
    bool spendSegment() {
        if (segmentsLeft_ == 0) return false;
        --segmentsLeft_;
        return true;
    }

    [[nodiscard]] std::size_t left() const { return left_; }

  private:
    std::size_t left_;
    std::size_t segmentsLeft_ = VELHLSMediaPattern::maximumExpansionSegments;
};

/// Expands one pattern. See VELHLSMediaPattern::expandMediaPattern.
class PatternExpander {
  public:
    PatternExpander(const VELHLSMediaPattern& pattern, VELHLSDefineMap* defines,
                    ExpansionAllowance& allowance)
        : pattern_(pattern), defines_(defines), allowance_(allowance) {}

    /// False when the expansion fails. The text is then not to be used.
    [[nodiscard]] bool expand();

    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    [[nodiscard]] bool fits() const;
    bool expandOnce();
    bool expandLine(std::string_view line);
    bool expandUri(std::string_view line);
    bool expandVendorTag(std::string_view line);
    bool increment(const TagLine& tagLine);
    void append(std::string_view line);

    const VELHLSMediaPattern& pattern_;
    VELHLSDefineMap* defines_;
    ExpansionAllowance& allowance_;
    std::string text_;
};

/// See VELHLSMediaPattern::createMediaSegments. Null when the expansion fails or goes beyond the allowance.
[[nodiscard]] std::shared_ptr<std::vector<std::shared_ptr<VELHLSMediaSegment>>> createSegments(
    const VELHLSMediaPattern& pattern, const SegmentOrigin& origin,
    const std::shared_ptr<VELHLSDefineMap>& defines, SegmentMaker& maker, ExpansionAllowance& allowance);

}  // namespace velhls
