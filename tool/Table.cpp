#include "tool/Table.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tool/Printable.h"
#include "tool/Utf8.h"

namespace tool {
namespace {

std::string withoutTrailingSpaces(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

}  // namespace

Table::Table(std::vector<std::string> headings, std::vector<Align> alignments)
    : rows_{std::move(headings)}, alignments_(std::move(alignments)) {}

void Table::addRow(std::vector<std::string> cells) {
    for (std::string& cell : cells)
        cell = printable(cell);
    rows_.push_back(std::move(cells));
}

std::vector<std::size_t> Table::widths() const {
    std::vector<std::size_t> widths(alignments_.size(), 0);
    for (std::size_t row = 1; row < rows_.size(); ++row) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            widths[column] = std::max(widths[column], utf8::countCharacters(rows_[row][column]));
        }
    }
    for (std::size_t column = 0; column < widths.size(); ++column) {
        if (widths[column] != 0)
            widths[column] = std::max(widths[column], utf8::countCharacters(rows_[0][column]));
    }
    return widths;
}

std::string Table::text() const {
    const std::vector<std::size_t> columnWidths = widths();
    std::string text;
    for (const std::vector<std::string>& row : rows_) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            if (columnWidths[column] == 0) continue;
            const std::string padding(columnWidths[column] - utf8::countCharacters(row[column]), ' ');
            line += "  ";
            line += alignments_[column] == Align::right ? padding + row[column] : row[column] + padding;
        }
        text += withoutTrailingSpaces(line) + "\n";
    }
    return text;
}

}  // namespace tool
