#include "velhls/common/AttributeList.h"

#include <algorithm>

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
    explicit AttributeScanner(std::string_view text) : text_(text), ended_(text.empty()) {}

    [[nodiscard]] bool ended() const { return ended_; }

    /// The next attribute; nothing when the rest of the list is malformed.
    std::optional<Attribute> next() {
        findNextQuote();
        std::size_t comma = text_.find(',', position_);
        const bool quoted = quote_ < comma;
        std::size_t closing = none;
        if (quoted) {
            closing = text_.find('"', quote_ + 1);
            if (comma != none) {
                // The comma may be part of the quoted value. What ends the attribute is a comma right after
                // it.
                if (closing == none) return std::nullopt;
                comma = text_.find(',', closing);
                if (comma != none && comma != closing + 1) return std::nullopt;
            }
        }

        const std::size_t equals = text_.find('=', position_);
        const std::size_t nameLimit = quoted ? quote_ : comma;
        if (equals == none || equals > nameLimit || equals == position_) return std::nullopt;
        const std::size_t limit = std::min(comma, text_.size());
        if (!quoted && equals + 1 == limit) return std::nullopt;

        Attribute attribute;
        attribute.name = text_.substr(position_, equals - position_);
        attribute.value = quoted ? between(quote_ + 1, closing) : between(equals + 1, limit);
        ended_ = comma == none;
        position_ = comma + 1;
        return attribute;
    }

  private:
    void findNextQuote() {
        if (quote_ >= position_) return;
        quote_ = text_.find('"', position_);
    }

    [[nodiscard]] std::string_view between(std::size_t start, std::size_t end) const {
        return text_.substr(start, end - start);
    }

    std::string_view text_;
    bool ended_;
    std::size_t position_ = 0;
    std::size_t quote_ = text_.find('"');
};

}  // namespace

std::optional<AttributeList> AttributeList::parse(std::string_view text) {
    AttributeList list;
    AttributeScanner scanner(text);
    while (!scanner.ended()) {
        const std::optional<Attribute> attribute = scanner.next();
        if (!attribute) return std::nullopt;
        list.add(*attribute);
    }
    list.sortMany();
    return list;
}

void AttributeList::add(const Attribute& attribute) {
    if (!isLong() && fewCount_ < mostFew) {
        insertAmongFew(attribute);
        return;
    }
    if (!isLong()) many_.assign(few_.begin(), few_.end());
    many_.push_back(attribute);
}

void AttributeList::insertAmongFew(const Attribute& attribute) {
    std::size_t position = fewCount_;
    while (position > 0 && attribute.name < few_[position - 1].name)
        --position;
    if (position > 0 && few_[position - 1].name == attribute.name) return;
    std::copy_backward(few_.data() + position, few_.data() + fewCount_, few_.data() + fewCount_ + 1);
    few_[position] = attribute;
    ++fewCount_;
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
    const Attribute* const found = std::lower_bound(
        begin(), end(), name,
        [](const Attribute& attribute, std::string_view wanted) { return attribute.name < wanted; });
    if (found == end() || found->name != name) return std::nullopt;
    return found->value;
}

}  // namespace velhls
