#include "velhls/common/AttributeList.h"

#include <algorithm>
#include <new>
#include <string>

#include "velhls/common/EightBytes.h"
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
  public:
    AttributeScanner(std::string_view text, Reason& why)
        : text_(text), why_(why), position_(text.empty() ? 1 : 0) {}

    [[nodiscard]] bool ended() const { return position_ > text_.size(); }

    /// Reads the next attribute. False, with the reason, when the rest of the list is malformed.
    bool next(Attribute& attribute) { return nextOfUsualForm(attribute) || nextByTheRules(attribute); }

  private:
    /// An attribute as nearly all are written, NAME=value or NAME="value" and then a comma or the end, of characters
    /// from "-" on where there are no quotes. False, and nothing done, for any other.
    bool nextOfUsualForm(Attribute& attribute) {
        if (text_.size() < 8) return false;
        const std::size_t equals = find(
            position_, [](std::uint64_t bytes) { return markBelow(bytes, '-') | markEqual(bytes, '='); });
        if (equals == position_ || !isAt(equals, '=')) return false;
        const std::size_t start = equals + 1;
        const bool quoted = isAt(start, '"');
        const std::size_t end = quoted ? endOfQuoted(start) : endOfPlain(start);
        if (end == start || (end < text_.size() && text_[end] != ',')) return false;

        attribute.name = between(position_, equals);
        attribute.value = quoted ? between(start + 1, end - 1) : between(start, end);
        attribute.isQuoted = quoted;
        position_ = end + 1;
        return true;
    }

    [[nodiscard]] bool isAt(std::size_t position, char character) const {
        return position < text_.size() && text_[position] == character;
    }

    /// The position after a quoted value; where it starts when it has no end.
    [[nodiscard]] std::size_t endOfQuoted(std::size_t start) const {
        const std::size_t closing = text_.find('"', start + 1);
        return closing == none ? start : closing + 1;
    }

    [[nodiscard]] std::size_t endOfPlain(std::size_t start) const {
        return find(start, [](std::uint64_t bytes) { return markBelow(bytes, '-'); });
    }

    /// The position of the first byte that is marked, from a position on, or the end of the text, which has at least eight
    /// bytes. A byte of 0 must be marked: such bytes stand for those after the end.
    template <typename Mark>
    [[nodiscard]] std::size_t find(std::size_t position, Mark mark) const {
        for (; position + 8 <= text_.size(); position += 8) {
            const std::uint64_t marks = mark(eightBytesAt(text_.data() + position));
            if (marks != 0) return position + firstMarked(marks);
        }
        return position + firstMarked(mark(lastBytesFrom(text_, position)));
    }

    bool nextByTheRules(Attribute& attribute) {
        findNextQuote();
        std::size_t comma = text_.find(',', position_);
        const bool quoted = quote_ < comma;
        std::size_t closing = none;
        if (quoted) {
            closing = text_.find('"', quote_ + 1);
            if (comma != none) {
                // The comma may be part of the quoted value. What ends the attribute is a comma right after
                // it.
                if (closing == none) return why_(Rule::attributeQuoteUnclosed, text_.substr(quote_));
                comma = text_.find(',', closing);
                if (comma != none && comma != closing + 1) {
                    return why_(Rule::attributeTextAfterQuote, between(closing + 1, comma));
                }
            }
        }

        const std::size_t equals = text_.find('=', position_);
        const std::size_t nameLimit = quoted ? quote_ : comma;
        const std::size_t limit = std::min(comma, text_.size());
        if (equals == none || equals > nameLimit) {
            return why_(Rule::attributeEqualsMissing, between(position_, limit), seenWithoutEquals(limit));
        }
        if (equals == position_) return why_(Rule::attributeNameEmpty, between(position_, limit));
        if (!quoted && equals + 1 == limit) {
            return why_(Rule::attributeValueEmpty, between(position_, limit));
        }

        attribute.name = between(position_, equals);
        attribute.value =
            quoted ? between(quote_ + 1, std::min(closing, text_.size())) : between(equals + 1, limit);
        attribute.isQuoted = quoted;
        position_ = limit + 1;
        return true;
    }

    /// What is said of an attribute that is not there.
    [[nodiscard]] std::string seenWithoutEquals(std::size_t limit) const {
        if (limit > position_ || text_.empty()) return {};
        if (position_ == 0) return "nothing before the first comma";
        return limit == text_.size() ? "nothing after the last comma" : "nothing between two commas";
    }

    void findNextQuote() {
        if (quoteKnown_ && quote_ >= position_) return;
        quote_ = text_.find('"', position_);
        quoteKnown_ = true;
    }

    [[nodiscard]] std::string_view between(std::size_t start, std::size_t end) const {
        return withoutFirst(firstOf(text_, end), start);
    }

    std::string_view text_;
    Reason& why_;
    /// Beyond the end of the text when all was read.
    std::size_t position_;
    /// Found when it is asked for.
    std::size_t quote_ = 0;
    bool quoteKnown_ = false;
};

}  // namespace

std::optional<std::vector<Attribute>> attributesAsWritten(std::string_view text) {
    Reason ignored;
    std::vector<Attribute> attributes;
    AttributeScanner scanner(text, ignored);
    while (!scanner.ended()) {
        if (!scanner.next(attributes.emplace_back())) return std::nullopt;
    }
    return attributes;
}

bool AttributeList::read(std::string_view text, Reason& why) {
    AttributeScanner scanner(text, why);
    for (; !scanner.ended() && fewEnd_ != few_ + mostFew; ++fewEnd_) {
        // It is not moved once it was read, since a copy of what has just been written in small pieces waits for all of
        // them.
        if (!scanner.next(*::new (fewEnd_) Attribute)) return false;
        marks_ |= markOf(fewEnd_->name);
    }
    if (scanner.ended()) return true;
    many_.assign(few_, fewEnd_);
    while (!scanner.ended()) {
        if (many_.size() == many_.capacity()) makeRoom();
        if (!scanner.next(many_.emplace_back())) return false;
    }
    sortMany();
    return true;
}

bool AttributeList::readNonEmpty(const TagLine& tagLine, Reason& why) {
    if (!read(withoutTrailing(tagLine.value, lineEnds), why)) return false;
    return !empty() || why.missing(Rule::attributeListEmpty, tagLine.name);
}

/// However often names are repeated, they are held a few times at most.
void AttributeList::makeRoom() {
    sortMany();
    if (many_.size() > many_.capacity() / 2) many_.reserve(2 * many_.capacity());
}

/// From here on none is found among the few, and all names are looked for among the many.
void AttributeList::sortMany() {
    fewEnd_ = few_;
    marks_ = ~std::uint64_t{0};
    std::stable_sort(many_.begin(), many_.end(),
                     [](const Attribute& left, const Attribute& right) { return left.name < right.name; });
    const auto sameName = [](const Attribute& left, const Attribute& right) {
        return left.name == right.name;
    };
    many_.erase(std::unique(many_.begin(), many_.end(), sameName), many_.end());
}

std::optional<std::string_view> AttributeList::findInMany(std::string_view name) const {
    const auto isBeforeName = [](const Attribute& attribute, std::string_view wanted) {
        return attribute.name < wanted;
    };
    const auto found = std::lower_bound(many_.begin(), many_.end(), name, isBeforeName);
    return found == many_.end() || found->name != name ? std::nullopt : std::optional(found->value);
}

}  // namespace velhls
