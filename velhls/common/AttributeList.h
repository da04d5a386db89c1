// Internal to the library, not installed: the one scanner of attribute lists (RFC 8216, section 4.2).
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "velhls/common/Recorder.h"

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
    [[nodiscard]] static std::optional<AttributeList> parse(std::string_view text,
                                                            Recorder* recorder = nullptr);

    [[nodiscard]] bool empty() const { return begin() == end(); }
    [[nodiscard]] const Attribute* begin() const { return isLong() ? many_.data() : few_.data(); }
    [[nodiscard]] const Attribute* end() const { return begin() + (isLong() ? many_.size() : fewCount_); }

    /// The value of the attribute with this name, if there is one.
    [[nodiscard]] std::optional<std::string_view> find(std::string_view name) const;

  private:
    [[nodiscard]] bool isLong() const { return !many_.empty(); }
    void add(const Attribute& attribute, Recorder* recorder);
    void insertAmongFew(const Attribute& attribute, Recorder* recorder);
    void sortMany(Recorder* recorder);
    void tellOfRepeatedNames(Recorder& recorder) const;

    /// As long as there are few they are kept in order, without memory of their own: no tag of RFC 8216 has
    /// more. Once there are many, all of them are in `many_`, to be sorted at the end.
    static constexpr std::size_t mostFew = 16;
    std::array<Attribute, mostFew> few_;
    std::size_t fewCount_ = 0;
    std::vector<Attribute> many_;
};

}  // namespace velhls
