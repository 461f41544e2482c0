// Text tables for a terminal.
#pragma once

#include <string>
#include <vector>

namespace orvex::tools::view {

// A table with columns as wide as their widest cell, separated by two blanks.
class Table {
  public:
    explicit Table(std::vector<std::string> titles) { rows_.push_back(std::move(titles)); }

    // Adds a row of as many cells as there are titles, UTF-8.
    void Add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

    // Returns the titles, a rule and the rows.
    std::string Text() const;

  private:
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace orvex::tools::view
