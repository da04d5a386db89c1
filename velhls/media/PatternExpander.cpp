#include "velhls/media/PatternExpander.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include "velhls/common/LineReader.h"
#include "velhls/common/Names.h"
#include "velhls/common/NumberReading.h"
#include "velhls/common/NumberWriting.h"
#include "velhls/common/ReasonText.h"
#include "velhls/common/Substitution.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

/// What is nothing but the digits of a 32-bit number.
std::optional<std::uint32_t> plainNumber(std::string_view text) {
    const LeadingNumber<std::int64_t> plain = leadingInteger(text);
    const bool isPlain = plain.isAllOf(text) && plain.number <= std::numeric_limits<std::int32_t>::max();
    return isPlain ? std::optional(static_cast<std::uint32_t>(plain.number)) : std::nullopt;
}

/// Adds to a number digit by digit, from the last one on. False, with the text as it was, where that is not as mostly: nothing
/// but digits, no zeros in front, and as many afterwards, too few for more than a 32-bit number.
bool addInPlace(std::string& text, std::uint32_t amount) {
    std::array<char, 9> sum;
    if (text.empty() || text.size() > sum.size() || text.front() == '0') return false;
    for (std::size_t place = text.size(); place-- > 0;) {
        if (!isDigit(text[place])) return false;
        amount += static_cast<std::uint32_t>(text[place] - '0');
        sum[place] = static_cast<char>('0' + amount % 10);
        amount /= 10;
    }
    if (amount != 0) return false;
    std::copy_n(sum.data(), text.size(), text.data());
    return true;
}

/// Tells who follows the reading how long the lines are those of a pattern's text.
class FollowedExpansion {
  public:
    FollowedExpansion(Reading* reading, std::string_view body) : reading_(reading) {
        if (reading_ != nullptr) reading_->expansionBegins(body);
    }
    ~FollowedExpansion() {
        if (reading_ != nullptr) reading_->expansionEnds();
    }
    FollowedExpansion(const FollowedExpansion&) = delete;
    FollowedExpansion& operator=(const FollowedExpansion&) = delete;

  private:
    Reading* reading_;
};

/// Takes back what was appended to a list, unless all went well.
class AppendedSegments {
  public:
    explicit AppendedSegments(std::vector<std::shared_ptr<VELHLSMediaSegment>>& segments)
        : segments_(segments), countBefore_(segments.size()) {}
    ~AppendedSegments() {
        if (!kept_) segments_.resize(countBefore_);
    }
    AppendedSegments(const AppendedSegments&) = delete;
    AppendedSegments& operator=(const AppendedSegments&) = delete;

    void keep() { kept_ = true; }

  private:
    std::vector<std::shared_ptr<VELHLSMediaSegment>>& segments_;
    std::size_t countBefore_;
    bool kept_ = false;
};

}  // namespace

bool PatternExpander::expand() {
    if (pattern_.body.empty()) return true;
    if (!fits()) return isTooLarge();
    readBody();
    if (!expandOnce()) return false;
    // The other passes are about as long. What they lack is made room for as they need it.
    const std::uint64_t rest = text_.text().size() * pattern_.repeatCount;
    static_cast<void>(text_.room(static_cast<std::size_t>(std::min<std::uint64_t>(rest, allowance_.left()))));
    for (std::uint64_t pass = 0; pass < pattern_.repeatCount; ++pass) {
        if (!expandOnce()) return false;
    }
    return true;
}

/// Known before anything is made: each pass reads the whole body, and makes at least a byte of each of its
/// lines.
bool PatternExpander::fits() const {
    return pattern_.repeatCount < allowance_.left() / pattern_.body.size();
}

void PatternExpander::readBody() {
    restOfBody_ = pattern_.body;
    while (!restOfBody_.empty() && steps_.size() < mostSteps)
        steps_.push_back(readStep(restOfBody_));
}

/// The step of the first line, which is taken off the text.
PatternExpander::Step PatternExpander::readStep(std::string_view& text) const {
    const std::string_view line = nextLine(text);
    Step step = stepOf(line);
    step.bytes = line.size() + 1;
    return step;
}

PatternExpander::Step PatternExpander::stepOf(std::string_view line) const {
    if (isVendorTag(line)) return vendorTagStep(line);
    Step step;
    step.kind = isTagOrComment(line) ? Kind::copied : Kind::uri;
    step.line = line;
    if (step.kind == Kind::copied) return step;
    step.line = withoutTrailing(line, blanks);
    if (step.line.empty()) {
        step.kind = Kind::failing;
        step.rule = Rule::patternUriEmpty;
    }
    const bool isPlain = defines_ == nullptr || holdsNone(step.line, referenceStarts);
    if (isPlain && step.kind == Kind::uri) step.kind = Kind::copied;
    if (step.kind == Kind::uri) findReferences(step);
    return step;
}

PatternExpander::Step PatternExpander::vendorTagStep(std::string_view line) const {
    Step step;
    step.line = line;
    const TagLine tagLine(line);
    if (!tagLine.hasColon) step.kind = Kind::copied;
    const std::size_t comma = tagLine.value.find(',');
    const bool isIncrement = tagLine.hasColon && tagLine.name == tag::zorDefineIncrement;
    if (!isIncrement) return step;
    step.rule =
        comma == std::string_view::npos ? Rule::patternIncrementMalformed : Rule::patternIncrementUndefined;
    if (comma == std::string_view::npos || defines_ == nullptr) return step;
    const auto define = defines_->find(std::string(tagLine.value.substr(0, comma)));
    if (define == defines_->end()) return step;
    step.kind = Kind::increment;
    step.variable = &define->second;
    step.amount = tagLine.value.substr(comma + 1);
    step.plainAmount = plainNumber(step.amount);
    return step;
}

/// Leaves the list empty when one of the references does not name a variable.
void PatternExpander::findReferences(Step& step) const {
    std::vector<Reference> references;
    std::string_view rest = step.line;
    for (std::size_t start = rest.find_first_of("{$"); start != std::string_view::npos;
         start = rest.find_first_of("{$")) {
        const std::size_t close = rest.find('}', start);
        if (close == std::string_view::npos || close < start + 2) return;
        const auto define = defines_->find(std::string(rest.substr(start + 2, close - start - 2)));
        if (define == defines_->end()) return;
        references.push_back({rest.substr(0, start), &define->second});
        step.valuesArePlain = step.valuesArePlain && holdsNone(define->second, referenceStarts);
        rest.remove_prefix(close + 1);
    }
    step.references = std::move(references);
    step.textAfter = rest;
}

bool PatternExpander::expandOnce() {
    for (const Step& step : steps_) {
        if (!expandStep(step)) return false;
    }
    std::string_view rest = restOfBody_;
    while (!rest.empty()) {
        if (!expandStep(readStep(rest))) return false;
    }
    return true;
}

bool PatternExpander::expandStep(const Step& step) {
    if (!allowance_.spend(step.bytes)) return isTooLarge();
    switch (step.kind) {
        case Kind::copied:
            append(step.line);
            return true;
        case Kind::uri:
            return appendUri(step);
        case Kind::increment:
            return increment(step);
        case Kind::failing:
            break;
    }
    return why_(step.rule, step.line);
}

bool PatternExpander::isTooLarge() {
    return why_.ofRecord(Rule::patternTooLarge, tag::zorPatternStart, "more");
}

bool PatternExpander::appendUri(const Step& step) {
    std::size_t length = step.textAfter.size();
    for (const Reference& reference : step.references)
        length += reference.textBefore.size() + reference.value->size();
    const bool isPlain =
        !step.references.empty() && step.valuesArePlain && length <= VELHLSUtility::maximumSubstitutedBytes;
    return isPlain ? appendPlainUri(step, length) : appendSubstitutedUri(step.line);
}

bool PatternExpander::appendPlainUri(const Step& step, std::size_t length) {
    if (length == 0) return why_(Rule::patternVariableUnresolved, step.line);
    char* end = text_.room(length + 1);
    for (const Reference& reference : step.references) {
        if (!allowance_.spend(reference.value->size() + 1)) return isTooLarge();
        end = writeText(end, reference.textBefore);
        end = writeText(end, *reference.value);
    }
    end = writeText(end, step.textAfter);
    text_.endAt(writeText(end, '\n'));
    return true;
}

bool PatternExpander::appendSubstitutedUri(std::string_view uri) {
    const Substitution substitution = substitute(uri, *defines_);
    if (!allowance_.spendAfterwards(substitution.insertedBytes)) return isTooLarge();
    append(substitution.text);
    return !substitution.text.empty() || why_(Rule::patternVariableUnresolved, uri);
}

/// Adds two 32-bit numbers: their sum fits 64 bits.
std::int64_t PatternExpander::incremented(const Step& step) {
    try {
        return std::int64_t{toInt32(*step.variable, why_)} + toInt32(step.amount, why_);
    } catch (const std::logic_error&) {
        // The variable was set elsewhere.
        why_(why_.rule, step.line, why_.where.empty() ? "nothing" : quoted(why_.where));
        throw;
    }
}

bool PatternExpander::increment(const Step& step) {
    if (step.plainAmount && addInPlace(*step.variable, *step.plainAmount)) return true;
    const std::int64_t number = incremented(step);
    step.variable->clear();
    appendDecimal(*step.variable, number);
    return true;
}

void PatternExpander::append(std::string_view line) {
    char* const end = writeText(text_.room(line.size() + 1), line);
    text_.endAt(writeText(end, '\n'));
}

namespace {

/// Reads the segments of an expanded text.
bool readSegments(std::vector<std::shared_ptr<VELHLSMediaSegment>>& segments, PatternExpander& expander,
                  const SegmentOrigin& origin, const SegmentSurroundings& surroundings,
                  ExpansionAllowance& allowance, Reason& why) {
    LineReader lines(expander.text(), surroundings.reading);
    SegmentReader reader(lines, surroundings, why);
    SegmentOrigin next = origin;
    for (std::string_view line = lines.nextRaw(); lines.good(); line = lines.nextRaw()) {
        auto segment = reader.read(line, next);
        // What a variable held has begun a pattern of its own.
        if (reader.openedPattern()) return why(Rule::patternStartRepeated, line);
        if (segment == nullptr) return false;
        if (!allowance.spendSegment()) return expander.isTooLarge();
        next.previous = segment.get();
        if (surroundings.reading != nullptr) surroundings.reading->recordMade(segment.get());
        segments.push_back(std::move(segment));
    }
    return true;
}

}  // namespace

bool createSegments(std::vector<std::shared_ptr<VELHLSMediaSegment>>& segments,
                    const VELHLSMediaPattern& pattern, const SegmentOrigin& origin,
                    const SegmentSurroundings& surroundings, ExpansionAllowance& allowance, Reason& why) {
    AppendedSegments appended(segments);
    const FollowedExpansion followed(surroundings.reading, pattern.body);
    PatternExpander expander(pattern, surroundings.defines.get(), allowance, why);
    const auto create = [&] {
        return expander.expand() && readSegments(segments, expander, origin, surroundings, allowance, why);
    };
    if (!succeeds(create, surroundings.reading, why)) return false;
    appended.keep();
    return true;
}

}  // namespace velhls
