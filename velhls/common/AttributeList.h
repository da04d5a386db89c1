// Internal to the library, not installed: the one scanner of attribute lists (RFC 8216, section 4.2).
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace velhls {

/// One NAME=value pair. Both views look into the text that was scanned; a quoted value comes without its
/// quotes.
struct Attribute {
    std::string_view name;
    std::string_view value;
};

/// The attributes of one tag in the byte-wise order of their names. Of several with one name the first holds.
class AttributeList {
  public:
    /// Scans a whole list, in time linear in its length but for the sorting of the names. Nothing comes back
    /// when the text is malformed; an empty text is an empty list. The result looks into `text`.
    [[nodiscard]] static std::optional<AttributeList> parse(std::string_view text);

    [[nodiscard]] bool empty() const { return attributes_.empty(); }
    [[nodiscard]] auto begin() const { return attributes_.begin(); }
    [[nodiscard]] auto end() const { return attributes_.end(); }

    /// The value of the attribute with this name, if there is one.
    [[nodiscard]] std::optional<std::string_view> find(std::string_view name) const;

  private:
    void sortAndDropRepeatedNames();

    std::vector<Attribute> attributes_;
};

}  // namespace velhls
