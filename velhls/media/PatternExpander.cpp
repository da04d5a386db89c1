#include "velhls/media/PatternExpander.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <istream>
#include <limits>
#include <streambuf>
#include <utility>

#include "velhls/common/LineReader.h"
#include "velhls/common/Names.h"
#include "velhls/common/Numbers.h"
#include "velhls/common/Substitution.h"
#include "velhls/common/TagLine.h"
#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

/// A stream over a text that is not copied.
class TextStream : private std::streambuf, public std::istream {
  public:
    explicit TextStream(std::string_view text) : std::istream(static_cast<std::streambuf*>(this)) {
        // A get area is declared as text that may be changed; nothing in it ever is.
        char* const begin = const_cast<char*>(text.data());
        setg(begin, begin, begin + text.size());
    }
};

/// Tells the recorder where the lines come from as long as a pattern is dealt with.
class RecordedExpansion {
  public:
    RecordedExpansion(Recorder* recorder, std::string_view body) : recorder_(recorder) {
        if (recorder_ != nullptr) recorder_->expansionBegins(body);
    }
    ~RecordedExpansion() {
        if (recorder_ != nullptr) recorder_->expansionEnds();
    }
    RecordedExpansion(const RecordedExpansion&) = delete;
    RecordedExpansion& operator=(const RecordedExpansion&) = delete;

    void textBegins() {
        if (recorder_ != nullptr) recorder_->expandedTextBegins();
    }

  private:
    Recorder* recorder_;
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

void tellOfPattern(Recorder* recorder, Rule rule, const VELHLSMediaPattern& pattern) {
    if (recorder != nullptr) recorder->reportRecord(rule, &pattern, {}, "more");
}

}  // namespace

bool PatternExpander::expand() {
    if (pattern_.body.empty()) return true;
    if (!fits()) return rejectAsTooLarge();
    readBody();
    for (std::uint64_t pass = 0; pass <= pattern_.repeatCount; ++pass) {
        if (!expandOnce()) return false;
        isFirstPass_ = false;
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
        steps_.push_back(takeStep(restOfBody_));
}

/// The step of the first line, which is taken off the text.
PatternExpander::Step PatternExpander::takeStep(std::string_view& text) const {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
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
    const LeadingNumber<std::int64_t> plain = leadingInteger(step.amount);
    const bool isPlain =
        plain.isAllOf(step.amount) && plain.number <= std::numeric_limits<std::int32_t>::max();
    if (isPlain) step.plainAmount = static_cast<std::int32_t>(plain.number);
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
    step.textBehind = rest;
}

bool PatternExpander::expandOnce() {
    for (const Step& step : steps_) {
        if (!take(step)) return false;
    }
    std::string_view rest = restOfBody_;
    while (!rest.empty()) {
        if (!take(takeStep(rest))) return false;
    }
    return true;
}

bool PatternExpander::take(const Step& step) {
    if (!allowance_.spend(step.bytes)) return rejectAsTooLarge();
    if (recorder_ != nullptr && isFirstPass_ && (step.kind == Kind::copied || step.kind == Kind::uri))
        recorder_->lineExpanded(step.line);
    switch (step.kind) {
        case Kind::copied:
            append(step.line);
            return true;
        case Kind::uri:
            return putUri(step);
        case Kind::increment:
            return increment(step);
        case Kind::failing:
            break;
    }
    return reject(recorder_, step.rule, step.line);
}

bool PatternExpander::rejectAsTooLarge() {
    tellOfPattern(recorder_, Rule::patternTooLarge, pattern_);
    return false;
}

bool PatternExpander::putUri(const Step& step) {
    std::size_t length = step.textBehind.size();
    for (const Reference& reference : step.references)
        length += reference.textBefore.size() + reference.value->size();
    const bool isPlain =
        !step.references.empty() && step.valuesArePlain && length <= VELHLSUtility::maximumSubstitutedBytes;
    return isPlain ? putPlainUri(step, length) : putSubstitutedUri(step.line);
}

bool PatternExpander::putPlainUri(const Step& step, std::size_t length) {
    if (length == 0) return reject(recorder_, Rule::patternVariableUnresolved, step.line);
    char* end = text_.room(length + 1);
    for (const Reference& reference : step.references) {
        if (!allowance_.spend(reference.value->size() + 1)) return rejectAsTooLarge();
        end = put(end, reference.textBefore);
        end = put(end, *reference.value);
    }
    end = put(end, step.textBehind);
    text_.endAt(put(end, '\n'));
    return true;
}

bool PatternExpander::putSubstitutedUri(std::string_view uri) {
    const Substitution substitution = substitute(uri, *defines_);
    if (!allowance_.spendAfterwards(substitution.insertedBytes)) return rejectAsTooLarge();
    append(substitution.text);
    return !substitution.text.empty() || reject(recorder_, Rule::patternVariableUnresolved, uri);
}

bool PatternExpander::increment(const Step& step) {
    // Two 32-bit numbers: their sum fits 64 bits.
    if (recorder_ != nullptr) recorder_->converting(*step.variable, NumberForm::any, step.line);
    const std::int64_t current = toInt32(*step.variable);
    const std::int64_t amount =
        step.plainAmount ? *step.plainAmount : toInt32(number(recorder_, step.amount, NumberForm::any));
    std::array<char, mostDecimalBytes> text;
    const auto length = static_cast<std::size_t>(putDecimal(text.data(), current + amount) - text.data());
    // Mostly as long as before: only its digits change.
    step.variable->resize(length);
    std::copy_n(text.data(), length, step.variable->data());
    return true;
}

void PatternExpander::append(std::string_view line) {
    char* const end = put(text_.room(line.size() + 1), line);
    text_.endAt(put(end, '\n'));
}

bool createSegments(std::vector<std::shared_ptr<VELHLSMediaSegment>>& segments,
                    const VELHLSMediaPattern& pattern, const SegmentOrigin& origin,
                    const std::shared_ptr<VELHLSDefineMap>& defines, RecordMaker& maker,
                    ExpansionAllowance& allowance, Recorder* recorder) {
    AppendedSegments appended(segments);
    RecordedExpansion recorded(recorder, pattern.body);
    PatternExpander expander(pattern, defines.get(), allowance, recorder);
    if (!expander.expand()) return false;
    recorded.textBegins();

    TextStream input(expander.text());
    LineReader lines(input);
    SegmentReader reader(lines, &maker, defines, nullptr, recorder);
    SegmentOrigin next = origin;
    for (std::string_view line = lines.nextRaw(); lines.good(); line = lines.nextRaw()) {
        if (recorder != nullptr) recorder->lineRead(line);
        auto segment = reader.read(line, next);
        if (segment == nullptr) {
            // What a variable held has begun a pattern of its own.
            if (reader.openedPattern()) tell(recorder, Rule::patternStartRepeated, line);
            return false;
        }
        if (!allowance.spendSegment()) {
            tellOfPattern(recorder, Rule::patternTooLarge, pattern);
            return false;
        }
        next.previous = segment.get();
        segments.push_back(std::move(segment));
    }
    appended.keep();
    return true;
}

}  // namespace velhls
