// Notes for the user about the pages of a job that printed all the same.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace orvex::tools::print {

class PageNotes {
  public:
    // Notes what "page 2" is or has: "is enlarged 2.96 times". `page` counts from 1. Ignores an empty text.
    void Add(size_t page, const std::string& text);

    // Writes a line for each different text, with the first page that has it and the number of others.
    void Write(std::ostream& out) const;

  private:
    struct Note {
        size_t page;
        std::string text;
        size_t others = 0;
    };
    std::vector<Note> notes_;
};

}  // namespace orvex::tools::print
