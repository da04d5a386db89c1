#include "velhls/common/AttributeList.h"

#include <algorithm>
#include <new>
#include <string>

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
    AttributeScanner(std::string_view text, Reason& why) : text_(text), why_(why), ended_(text.empty()) {}

    [[nodiscard]] bool ended() const { return ended_; }

    /// Reads the next attribute. False, with the reason, when the rest of the list is malformed.
    bool next(Attribute& attribute) { return nextOfUsualForm(attribute) || nextByTheRules(attribute); }

  private:
    /// An attribute as nearly all are written, NAME=value or NAME="value" and then a comma or the end, is
    /// taken in one walk over its characters. False, and nothing done, for any other.
    bool nextOfUsualForm(Attribute& attribute) {
        const std::size_t equals = endOfRun(position_, nameEnds);
        const bool isNamed = equals < text_.size() && text_[equals] == '=' && equals > position_;
        if (!isNamed) return false;
        const std::size_t start = equals + 1;
        const bool quoted = start < text_.size() && text_[start] == '"';
        const std::size_t valueStart = quoted ? start + 1 : start;
        const std::size_t valueEnd = quoted ? text_.find('"', valueStart) : endOfRun(start, valueEnds);
        if (valueEnd == none || (!quoted && valueEnd == start)) return false;
        const std::size_t end = quoted ? valueEnd + 1 : valueEnd;
        if (end < text_.size() && text_[end] != ',') return false;

        attribute.name = between(position_, equals);
        attribute.value = between(valueStart, valueEnd);
        attribute.isQuoted = quoted;
        ended_ = end == text_.size();
        position_ = end + 1;
        return true;
    }

    /// The position of the first character in `ends` from a position on, or the end of the text.
    [[nodiscard]] std::size_t endOfRun(std::size_t position, const CharacterSet& ends) const {
        while (position < text_.size() && !ends.holds(text_[position]))
            ++position;
        return position;
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
        ended_ = comma == none;
        position_ = comma + 1;
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
    bool ended_;
    std::size_t position_ = 0;
    /// Found when it is asked for.
    std::size_t quote_ = 0;
    bool quoteKnown_ = false;
};

constexpr unsigned indexBits = 8;

/// The first four bytes of a name, and below them where its attribute stands. As numbers these are in the order of the
/// names, but for names that begin alike.
std::uint64_t placeOf(std::string_view name, std::size_t index) {
    const auto byte = [name](std::size_t position) {
        return std::uint64_t{static_cast<unsigned char>(name[position])};
    };
    std::uint64_t start = 0;
    if (name.size() >= 4) {
        start = byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3);
    } else {
        for (std::size_t position = 0; position < name.size(); ++position)
            start |= byte(position) << (24 - 8 * position);
    }
    return start << indexBits | index;
}

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
    while (!scanner.ended()) {
        if (!scanner.next(newAttribute())) return false;
        keepNewAttribute();
    }
    if (isLong()) sortMany();
    return true;
}

bool AttributeList::readNonEmpty(const TagLine& tagLine, Reason& why) {
    if (!read(withoutTrailing(tagLine.value, lineEnds), why)) return false;
    return !empty() || why.missing(Rule::attributeListEmpty, tagLine.name);
}

/// Where the next attribute is read to: attributes are not moved once they were read, since a copy of what has just
/// been written in small pieces waits for all of them.
Attribute& AttributeList::newAttribute() {
    if (!isLong() && fewCount_ < mostFew) return *::new (&few_[fewCount_]) Attribute;
    if (!isLong()) many_.assign(few_, few_ + fewCount_);
    return many_.emplace_back();
}

bool AttributeList::isBefore(std::uint64_t left, std::uint64_t right) const {
    const bool beginAlike = (left ^ right) >> indexBits == 0;
    return beginAlike ? fewAt(left).name < fewAt(right).name : left < right;
}

/// Gives the attribute that was read last its place in the order, unless there is one of its name.
void AttributeList::keepNewAttribute() {
    if (isLong()) return;
    const std::string_view name = few_[fewCount_].name;
    const std::uint64_t place = placeOf(name, fewCount_);
    std::size_t position = fewCount_;
    for (; position > 0 && isBefore(place, order_[position - 1]); --position)
        order_[position] = order_[position - 1];
    order_[position] = place;
    ++fewCount_;
    if (position > 0 && fewAt(order_[position - 1]).name == name) {
        std::copy(order_.begin() + position + 1, order_.begin() + fewCount_, order_.begin() + position);
        --fewCount_;
    }
}

void AttributeList::sortMany() {
    std::stable_sort(many_.begin(), many_.end(),
                     [](const Attribute& left, const Attribute& right) { return left.name < right.name; });
    const auto sameName = [](const Attribute& left, const Attribute& right) {
        return left.name == right.name;
    };
    many_.erase(std::unique(many_.begin(), many_.end(), sameName), many_.end());
}

std::optional<std::string_view> AttributeList::find(std::string_view name) const {
    if (!isLong()) {
        const Attribute* const end = few_ + fewCount_;
        const auto hasName = [name](const Attribute& attribute) { return attribute.name == name; };
        const Attribute* const found = std::find_if(few_, end, hasName);
        return found == end ? std::nullopt : std::optional(found->value);
    }
    const auto isBeforeName = [](const Attribute& attribute, std::string_view wanted) {
        return attribute.name < wanted;
    };
    const auto found = std::lower_bound(many_.begin(), many_.end(), name, isBeforeName);
    if (found == many_.end() || found->name != name) return std::nullopt;
    return found->value;
}

}  // namespace velhls
