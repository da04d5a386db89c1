// Internal to the library, not installed: the attribute lists of tags, as the models read them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "velhls/common/PrivateExport.h"
#include "velhls/common/Reason.h"
#include "velhls/common/TagLine.h"

namespace velhls {

/// One NAME=value pair. Both views look into the text that was scanned; a quoted value comes without its
/// quotes.
struct Attribute {
    std::string_view name;
    std::string_view value;
    bool isQuoted;
};

/// All attributes of a list in the order of the text, repeated ones too. Nothing when the list is malformed.
[[nodiscard]] VELHLS_PRIVATE_API std::optional<std::vector<Attribute>> attributesAsWritten(
    std::string_view text);

/// The attributes of one tag in the byte-wise order of their names. Of several with one name the first holds.
///
/// As long as there are few they stand as they were written, in memory of the list's own, with the order beside them:
/// no tag of RFC 8216 has more. Once there are many, all of them are sorted.
class AttributeList {
  public:
    class Iterator;

    /// Empty. The memory for attributes is left as it is: filling it would cost as much as scanning a short tag.
    AttributeList() {}
    AttributeList(const AttributeList&) = delete;
    AttributeList& operator=(const AttributeList&) = delete;

    /// Reads a whole list into one that is empty, in time linear in its length but for the sorting of the names. False,
    /// with the reason, when the text is malformed; an empty text is an empty list. The attributes look into `text`.
    [[nodiscard]] bool read(std::string_view text, Reason& why);

    /// The same for a tag that needs at least one attribute, and may have line ends after the last one.
    [[nodiscard]] bool readNonEmpty(const TagLine& tagLine, Reason& why);

    [[nodiscard]] bool empty() const { return size() == 0; }
    [[nodiscard]] std::size_t size() const { return isLong() ? many_.size() : fewCount_; }
    /// By its position in the order of the names.
    [[nodiscard]] const Attribute& operator[](std::size_t position) const {
        return isLong() ? many_[position] : fewAt(order_[position]);
    }
    [[nodiscard]] Iterator begin() const;
    [[nodiscard]] Iterator end() const;

    /// The value of the attribute with this name, if there is one.
    [[nodiscard]] std::optional<std::string_view> find(std::string_view name) const;

  private:
    static constexpr std::size_t mostFew = 16;

    [[nodiscard]] bool isLong() const { return !many_.empty(); }
    [[nodiscard]] const Attribute& fewAt(std::uint64_t place) const { return few_[place % 256]; }
    [[nodiscard]] bool isBefore(std::uint64_t left, std::uint64_t right) const;
    [[nodiscard]] Attribute& newAttribute();
    void keepNewAttribute();
    void sortMany();

    union {
        Attribute few_[mostFew];
    };
    /// Each with the start of its name above its index, so that most names are compared without being looked at.
    std::array<std::uint64_t, mostFew> order_;
    std::size_t fewCount_ = 0;
    std::vector<Attribute> many_;
};

class AttributeList::Iterator {
  public:
    Iterator(const AttributeList& list, std::size_t position) : list_(list), position_(position) {}

    const Attribute& operator*() const { return list_[position_]; }
    Iterator& operator++() {
        ++position_;
        return *this;
    }
    bool operator!=(const Iterator& other) const { return position_ != other.position_; }

  private:
    const AttributeList& list_;
    std::size_t position_;
};

inline AttributeList::Iterator AttributeList::begin() const {
    return {*this, 0};
}

inline AttributeList::Iterator AttributeList::end() const {
    return {*this, size()};
}

}  // namespace velhls
