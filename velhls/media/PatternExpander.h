// Internal to the library, not installed: media patterns turned into playlist text and segments, within
// bounds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/common/Reading.h"
#include "velhls/common/Reason.h"
#include "velhls/common/RecordMaker.h"
#include "velhls/common/TextBuffer.h"
#include "velhls/common/VELHLSUtility.h"
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

    /// For what was done before it was known how much it takes: false when that was more than is left, and then
    /// nothing is left.
    bool spendAfterwards(std::size_t bytes) {
        if (spend(bytes)) return true;
        left_ = 0;
        return false;
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
///
/// What each line of the body is, and which variables it names, is found out once and not in every pass. The
/// body and the define map must stay as they are but for what the expansion itself changes.
class PatternExpander {
  public:
    PatternExpander(const VELHLSMediaPattern& pattern, VELHLSDefineMap* defines,
                    ExpansionAllowance& allowance, Reason& why)
        : pattern_(pattern), defines_(defines), allowance_(allowance), why_(why) {}

    /// False, with the reason, when the expansion fails. The text is then not to be used.
    [[nodiscard]] bool expand();

    /// Says that the pattern makes too much, and returns false.
    bool isTooLarge();

    [[nodiscard]] std::string_view text() const { return text_.text(); }

  private:
    enum class Kind { copied, uri, increment, failing };

    /// A reference and the text before it. The value may change from pass to pass.
    struct Reference {
        std::string_view textBefore;
        const std::string* value;
    };

    /// One line of the body.
    struct Step {
        Kind kind = Kind::failing;
        /// Why a failing line fails.
        Rule rule = Rule::patternTagUnknown;
        /// How many bytes of the body it is.
        std::size_t bytes = 0;
        std::string_view line;
        /// Of a URI whose references all name variables; empty otherwise.
        std::vector<Reference> references;
        std::string_view textAfter;
        /// None of the values holds a reference in turn. An increment makes no such value.
        bool valuesArePlain = true;
        /// Of an increment; null for a variable that is not defined.
        std::string* variable = nullptr;
        std::string_view amount;
        /// The amount, where it is plain digits.
        std::optional<std::uint32_t> plainAmount;
    };

    [[nodiscard]] bool fits() const;
    void readBody();
    Step readStep(std::string_view& text) const;
    [[nodiscard]] Step stepOf(std::string_view line) const;
    [[nodiscard]] Step vendorTagStep(std::string_view line) const;
    void findReferences(Step& step) const;
    bool expandOnce();
    bool expandStep(const Step& step);
    bool appendUri(const Step& step);
    bool appendPlainUri(const Step& step, std::size_t length);
    bool appendSubstitutedUri(std::string_view uri);
    bool increment(const Step& step);
    [[nodiscard]] std::int64_t incremented(const Step& step);
    void append(std::string_view line);

    const VELHLSMediaPattern& pattern_;
    VELHLSDefineMap* defines_;
    ExpansionAllowance& allowance_;
    Reason& why_;
    /// A step takes much more memory than its line: those of a very long body are made anew in each pass.
    static constexpr std::size_t mostSteps = 4096;
    std::vector<Step> steps_;
    std::string_view restOfBody_;
    TextBuffer text_;
};

/// See VELHLSMediaPattern::createMediaSegments. Appends the segments. False, with the reason and with none appended, when
/// the expansion fails or goes beyond the allowance.
[[nodiscard]] bool createSegments(std::vector<std::shared_ptr<VELHLSMediaSegment>>& segments,
                                  const VELHLSMediaPattern& pattern, const SegmentOrigin& origin,
                                  const SegmentSurroundings& surroundings, ExpansionAllowance& allowance,
                                  Reason& why);

}  // namespace velhls
