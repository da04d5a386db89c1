#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tool/report/Markup.h"

namespace tool::report {

/// What stands in a table.
struct Cell {
    Cell(const std::string& text) : text(text) { content.text(text); }
    Cell(const char* text) : Cell(std::string(text)) {}
    /// With a style of page.css: "number", "missing".
    Cell(const std::string& text, std::string_view style) : Cell(text) { this->style = style; }
    /// What is markup already.
    Cell(Markup content) : text(content.string()), content(std::move(content)) {}

    std::string text;
    Markup content;
    std::string_view style = {};
};

[[nodiscard]] Cell numberCell(const std::string& text);
/// The text, or "missing".
[[nodiscard]] Cell neededCell(const std::optional<std::string>& text);
/// The text, or nothing.
[[nodiscard]] Cell optionalCell(const std::optional<std::string>& text);

/// A table of HTML. Of its rows no more than mostRows are written, and the others counted; columns without any text are left out.
class HtmlTable {
  public:
    HtmlTable(std::string caption, std::vector<std::string> headings);

    /// The first cell is the heading of the row.
    void addRow(std::vector<Cell> cells);

    /// Appends the table; nothing when it has no rows.
    void appendTo(Markup& page) const;

  private:
    [[nodiscard]] std::vector<bool> filledColumns() const;

    std::string caption_;
    std::vector<std::string> headings_;
    std::vector<std::vector<Cell>> rows_;
    std::size_t left_ = 0;
};

}  // namespace tool::report
