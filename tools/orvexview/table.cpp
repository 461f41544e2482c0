#include "tools/orvexview/table.h"

#include <algorithm>

namespace orvex::tools::view {

namespace {

// Returns the number of characters in UTF-8 text, that is of its bytes that are not continuations.
size_t CharacterCount(const std::string& text) {
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string Line(const std::vector<std::string>& cells, const std::vector<size_t>& widths) {
    std::string line;
    for (size_t column = 0; column < cells.size(); ++column) {
        line += cells[column];
        if (column + 1 < cells.size()) line.append(widths[column] - CharacterCount(cells[column]) + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

}  // namespace

std::string Table::Text() const {
    std::vector<size_t> widths(rows_[0].size());
    for (const std::vector<std::string>& row : rows_) {
        for (size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], CharacterCount(row[column]));
        }
    }
    std::vector<std::string> rule;
    for (const size_t width : widths) rule.emplace_back(width, '-');
    std::string text = Line(rows_[0], widths) + Line(rule, widths);
    for (size_t row = 1; row < rows_.size(); ++row) text += Line(rows_[row], widths);
    return text;
}

}  // namespace orvex::tools::view
