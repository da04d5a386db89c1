// Internal to the library, not installed: the attribute lists of tags, as the models read them.
#pragma once

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

/// The attributes of one tag, to be asked for by their names. Of several with one name the first holds.
///
/// As long as there are few they stand as they were written, in memory of the list's own: no tag of RFC 8216 has more. Once
/// there are many, all of them are sorted.
class AttributeList {
  public:
    /// Empty. The memory for attributes is left as it is: filling it would cost as much as scanning a short tag.
    AttributeList() {}
    AttributeList(const AttributeList&) = delete;
    AttributeList& operator=(const AttributeList&) = delete;

    /// Reads a whole list into one that is empty, in time linear in its length but for the sorting of many. False, with
    /// the reason, when the text is malformed; an empty text is an empty list. The attributes look into `text`.
    [[nodiscard]] bool read(std::string_view text, Reason& why);

    /// The same for a tag that needs at least one attribute, and may have line ends after the last one.
    [[nodiscard]] bool readNonEmpty(const TagLine& tagLine, Reason& why);

    [[nodiscard]] bool empty() const { return begin() == end(); }

    /// All of them: as they were written, repeated ones too, or each name once, in their byte-wise order.
    [[nodiscard]] const Attribute* begin() const { return isLong() ? many_.data() : few_; }
    [[nodiscard]] const Attribute* end() const { return isLong() ? many_.data() + many_.size() : fewEnd_; }

    /// The value of the attribute with this name, if there is one.
    [[nodiscard]] std::optional<std::string_view> find(std::string_view name) const {
        if ((marks_ & markOf(name)) == 0) return std::nullopt;
        for (const Attribute* attribute = few_; attribute != fewEnd_; ++attribute) {
            if (attribute->name == name) return attribute->value;
        }
        return isLong() ? findInMany(name) : std::nullopt;
    }

  private:
    static constexpr std::size_t mostFew = 16;

    [[nodiscard]] bool isLong() const { return !many_.empty(); }
    void makeRoom();
    void sortMany();
    [[nodiscard]] std::optional<std::string_view> findInMany(std::string_view name) const;

    /// One of 64 bits. No name is empty.
    [[nodiscard]] static std::uint64_t markOf(std::string_view name) {
        return std::uint64_t{1} << (name.size() + static_cast<unsigned char>(name.front())) % 64;
    }

    union {
        Attribute few_[mostFew];
    };
    Attribute* fewEnd_ = few_;
    /// Those of all names: most names that are not there have another one, and need not be looked for.
    std::uint64_t marks_ = 0;
    std::vector<Attribute> many_;
};

}  // namespace velhls
