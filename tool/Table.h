#pragma once

#include <string>
#include <vector>

namespace tool {

/// Rows of cells, laid out in columns for a person. Cells are made printable.
class Table {
  public:
    enum class Align { left, right };

    /// The headings, and how the cells below each are aligned.
    Table(std::vector<std::string> headings, std::vector<Align> alignments);

    void addRow(std::vector<std::string> cells);

    /// The rows with two spaces before and between the columns; columns without any cell are left out.
    [[nodiscard]] std::string text() const;

  private:
    [[nodiscard]] std::vector<std::size_t> widths() const;

    std::vector<std::vector<std::string>> rows_;
    std::vector<Align> alignments_;
};

}  // namespace tool
