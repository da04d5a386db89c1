// Internal to the library, not installed: how changes of attributes become one edit of their list.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "velhls/document/VELHLSEdit.h"
#include "velhls/document/VELHLSLine.h"

namespace velhls {

/// What the changes make of a line's attribute list. It covers no more than lies from the first attribute that changes to
/// the last: of a single one that is set, the value alone. Commas go with the attributes that they divide.
class AttributeListEdit {
  public:
    /// Throws std::invalid_argument, saying why, for what the list cannot be given.
    AttributeListEdit(const VELHLSLine& line, const std::vector<VELHLSAttributeChange>& changes);

    /// The part of the line that is replaced.
    [[nodiscard]] std::string_view replaced() const { return replaced_; }
    /// What comes in its place.
    [[nodiscard]] const std::string& replacement() const { return replacement_; }

  private:
    /// An attribute of the list, and what becomes of it.
    struct Entry {
        VELHLSAttribute attribute;
        bool changes = false;
        /// Its new value as it is written; empty when it is removed.
        std::string value = {};

        [[nodiscard]] bool isRemoved() const { return changes && value.empty(); }
        [[nodiscard]] std::string text() const;
    };

    [[nodiscard]] std::string written(const VELHLSAttributeChange& change) const;
    void change(const std::vector<VELHLSAttributeChange>& changes);
    void add(const std::vector<VELHLSAttributeChange>& changes);
    void makeRoomForAdded();
    void replaceEntries(std::size_t first, std::size_t end);
    [[nodiscard]] std::string joined(std::size_t first, std::size_t end) const;

    const VELHLSLine& line_;
    std::vector<Entry> entries_;
    std::vector<std::string> added_;
    std::string_view replaced_;
    std::string replacement_;
};

}  // namespace velhls
