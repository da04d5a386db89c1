#include "tool/report/HtmlTable.h"

#include <utility>

#include "tool/report/Limits.h"
#include "tool/report/Words.h"

namespace tool::report {

Cell numberCell(const std::string& text) {
    return {text, "number"};
}

Cell neededCell(const std::optional<std::string>& text) {
    return text ? Cell(*text) : Cell("missing", "missing");
}

Cell optionalCell(const std::optional<std::string>& text) {
    return {text.value_or("")};
}

HtmlTable::HtmlTable(std::string caption, std::vector<std::string> headings)
    : caption_(std::move(caption)), headings_(std::move(headings)) {}

void HtmlTable::addRow(std::vector<Cell> cells) {
    if (rows_.size() == mostRows) {
        ++left_;
        return;
    }
    rows_.push_back(std::move(cells));
}

std::vector<bool> HtmlTable::filledColumns() const {
    std::vector<bool> filled(headings_.size());
    for (const std::vector<Cell>& row : rows_) {
        for (std::size_t column = 0; column < row.size(); ++column)
            filled[column] = filled[column] || !row[column].text.empty();
    }
    filled.front() = true;
    return filled;
}

void HtmlTable::appendTo(Markup& page) const {
    if (rows_.empty()) return;
    const std::vector<bool> filled = filledColumns();
    page.open("div", {{"class", "scroll"}, {"tabindex", "0"}, {"role", "region"}, {"aria-label", caption_}});
    page.open("table").leaf("caption", caption_).open("thead").open("tr");
    for (std::size_t column = 0; column < headings_.size(); ++column) {
        if (filled[column]) page.leaf("th", headings_[column], {{"scope", "col"}});
    }
    page.close().close().open("tbody").verbatim("\n");
    for (const std::vector<Cell>& row : rows_) {
        page.open("tr");
        for (std::size_t column = 0; column < row.size(); ++column) {
            if (!filled[column]) continue;
            const Cell& cell = row[column];
            if (column == 0)
                page.open("th", {{"scope", "row"}});
            else if (cell.style.empty())
                page.open("td");
            else
                page.open("td", {{"class", std::string(cell.style)}});
            page.verbatim(cell.content.string()).close();
        }
        page.close().verbatim("\n");
    }
    page.close().close().close();
    if (left_ > 0) page.leaf("p", grouped(left_) + " more are left out.", {{"class", "soft"}});
    page.verbatim("\n");
}

}  // namespace tool::report
