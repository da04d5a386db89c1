#include "velhls/common/AttributeList.h"

#include <algorithm>

#include "velhls/common/TextScan.h"

namespace velhls {
namespace {

constexpr std::size_t none = std::string_view::npos;

/// Takes one attribute after another from the front of a list.
///
/// Every search starts where the last attribute ended, and a text may hold its only quote a megabyte further
/// on: the position of the next quote is therefore kept from one attribute to the next. All other searches
/// end within the attribute that they serve, or end the scan.
class AttributeScanner {
    static constexpr CharacterSet nameEnds{"=,\""};
    static constexpr CharacterSet valueEnds{",\""};

  public:
    AttributeScanner(std::string_view text, Recorder* recorder)
        : text_(text), recorder_(recorder), ended_(text.empty()) {}

    [[nodiscard]] bool ended() const { return ended_; }

    /// The next attribute; nothing when the rest of the list is malformed.
    std::optional<Attribute> next() {
        if (const std::optional<Attribute> attribute = nextOfUsualForm()) return attribute;
        return nextByTheRules();
    }

  private:
    /// An attribute as nearly all are written, NAME=value or NAME="value" and then a comma or the end, is
    /// taken in one walk over its characters. Nothing, and nothing done, for any other.
    std::optional<Attribute> nextOfUsualForm() {
        const std::size_t equals = endOfRun(position_, nameEnds);
        const bool isNamed = equals < text_.size() && text_[equals] == '=' && equals > position_;
        if (!isNamed) return std::nullopt;
        const std::size_t start = equals + 1;
        const bool quoted = start < text_.size() && text_[start] == '"';
        const std::size_t valueStart = quoted ? start + 1 : start;
        const std::size_t valueEnd = quoted ? text_.find('"', valueStart) : endOfRun(start, valueEnds);
        if (valueEnd == none || (!quoted && valueEnd == start)) return std::nullopt;
        const std::size_t end = quoted ? valueEnd + 1 : valueEnd;
        if (end < text_.size() && text_[end] != ',') return std::nullopt;

        const Attribute attribute{between(position_, equals), between(valueStart, valueEnd)};
        ended_ = end == text_.size();
        position_ = end + 1;
        return attribute;
    }

    /// The position of the first character in `ends` from a position on, or the end of the text.
    [[nodiscard]] std::size_t endOfRun(std::size_t position, const CharacterSet& ends) const {
        while (position < text_.size() && !ends.holds(text_[position]))
            ++position;
        return position;
    }

    std::optional<Attribute> nextByTheRules() {
        findNextQuote();
        std::size_t comma = text_.find(',', position_);
        const bool quoted = quote_ < comma;
        std::size_t closing = none;
        if (quoted) {
            closing = text_.find('"', quote_ + 1);
            if (comma != none) {
                // The comma may be part of the quoted value. What ends the attribute is a comma right after
                // it.
                if (closing == none) return malformed(Rule::attributeQuoteUnclosed, text_.substr(quote_));
                comma = text_.find(',', closing);
                if (comma != none && comma != closing + 1) {
                    return malformed(Rule::attributeTextAfterQuote, between(closing + 1, comma));
                }
            }
        }

        const std::size_t equals = text_.find('=', position_);
        const std::size_t nameLimit = quoted ? quote_ : comma;
        const std::size_t limit = std::min(comma, text_.size());
        if (equals == none || equals > nameLimit) {
            return malformed(Rule::attributeEqualsMissing, between(position_, limit));
        }
        if (equals == position_) return malformed(Rule::attributeNameEmpty, between(position_, limit));
        if (!quoted && equals + 1 == limit) {
            return malformed(Rule::attributeValueEmpty, between(position_, limit));
        }
        if (quoted && recorder_ != nullptr) tellOfTextAroundQuotes(equals, closing, comma == none);

        Attribute attribute;
        attribute.name = between(position_, equals);
        attribute.value = quoted ? between(quote_ + 1, std::min(closing, text_.size())) : between(equals + 1, limit);
        ended_ = comma == none;
        position_ = comma + 1;
        return attribute;
    }

    void findNextQuote() {
        if (quoteKnown_ && quote_ >= position_) return;
        quote_ = text_.find('"', position_);
        quoteKnown_ = true;
    }

    std::optional<Attribute> malformed(Rule rule, std::string_view where) const {
        tell(recorder_, rule, where);
        return std::nullopt;
    }

    void tellOfTextAroundQuotes(std::size_t equals, std::size_t closing, bool isLast) const {
        if (equals + 1 != quote_)
            tell(recorder_, Rule::attributeTextBeforeQuote, between(equals + 1, quote_));
        if (closing == none) {
            tell(recorder_, Rule::attributeQuoteUnclosedAtEnd, text_.substr(quote_));
        } else if (isLast && closing + 1 != text_.size()) {
            tell(recorder_, Rule::attributeTextAfterLastQuote, text_.substr(closing + 1));
        }
    }

    [[nodiscard]] std::string_view between(std::size_t start, std::size_t end) const {
        return behind(firstOf(text_, end), start);
    }

    std::string_view text_;
    Recorder* recorder_;
    bool ended_;
    std::size_t position_ = 0;
    /// Found when it is asked for.
    std::size_t quote_ = 0;
    bool quoteKnown_ = false;
};

/// The byte-wise order of two names, neither of them empty. Most differ in their first character.
bool isBefore(std::string_view left, std::string_view right) {
    const auto leftFirst = static_cast<unsigned char>(left.front());
    const auto rightFirst = static_cast<unsigned char>(right.front());
    return leftFirst != rightFirst ? leftFirst < rightFirst : left < right;
}

}  // namespace

std::optional<AttributeList> AttributeList::parse(std::string_view text, Recorder* recorder) {
    // Made in place: a list is large, and costly to move.
    std::optional<AttributeList> list(std::in_place);
    AttributeScanner scanner(text, recorder);
    while (!scanner.ended()) {
        const std::optional<Attribute> attribute = scanner.next();
        if (!attribute) {
            list.reset();
            return list;
        }
        list->add(*attribute, recorder);
    }
    if (list->isLong()) list->sortMany(recorder);
    return list;
}

void AttributeList::add(const Attribute& attribute, Recorder* recorder) {
    if (!isLong() && fewCount_ < mostFew) {
        insertAmongFew(attribute, recorder);
        return;
    }
    if (!isLong()) many_.assign(few_.begin(), few_.end());
    many_.push_back(attribute);
}

void AttributeList::insertAmongFew(const Attribute& attribute, Recorder* recorder) {
    std::size_t position = fewCount_;
    while (position > 0 && isBefore(attribute.name, few_[position - 1].name))
        --position;
    if (position > 0 && few_[position - 1].name == attribute.name) {
        tell(recorder, Rule::attributeRepeated, attribute.name);
        return;
    }
    std::copy_backward(few_.data() + position, few_.data() + fewCount_, few_.data() + fewCount_ + 1);
    few_[position] = attribute;
    ++fewCount_;
}

void AttributeList::sortMany(Recorder* recorder) {
    std::stable_sort(many_.begin(), many_.end(),
                     [](const Attribute& left, const Attribute& right) { return left.name < right.name; });
    if (recorder != nullptr) tellOfRepeatedNames(*recorder);
    const auto sameName = [](const Attribute& left, const Attribute& right) {
        return left.name == right.name;
    };
    many_.erase(std::unique(many_.begin(), many_.end(), sameName), many_.end());
}

/// Called when the many are in order.
void AttributeList::tellOfRepeatedNames(Recorder& recorder) const {
    for (std::size_t index = 1; index < many_.size(); ++index) {
        const bool isRepeated = many_[index].name == many_[index - 1].name;
        if (isRepeated) recorder.report(Rule::attributeRepeated, many_[index].name, {});
    }
}

std::optional<std::string_view> AttributeList::find(std::string_view name) const {
    const Attribute* const found = std::lower_bound(
        begin(), end(), name,
        [](const Attribute& attribute, std::string_view wanted) { return attribute.name < wanted; });
    if (found == end() || found->name != name) return std::nullopt;
    return found->value;
}

}  // namespace velhls
