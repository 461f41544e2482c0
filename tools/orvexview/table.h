// Text tables for a terminal.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvex::tools::view {

// Columns as wide as their widest cell, two blanks between them.
class Table {
  public:
    explicit Table(std::vector<std::string> titles) { rows_.push_back(std::move(titles)); }

    // A row of as many cells as there are titles, UTF-8.
    void Add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

    // The titles, a line under them, the rows.
    std::string Text() const;

  private:
    std::vector<std::vector<std::string>> rows_;
};

// "2362 x 3543".
std::string SizeText(uint64_t width, uint64_t height);

// A number with that many decimals.
std::string DecimalText(double number, int decimals);

}  // namespace orvex::tools::view
