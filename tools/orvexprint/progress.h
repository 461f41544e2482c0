// The progress of a long job, on a terminal.
#pragma once

#include <cstdint>
#include <ostream>

namespace orvex::tools::print {

class Progress {
  public:
    // `shown` is whether to write to `out` at all.
    Progress(std::ostream& out, bool shown, size_t pages) : out_(out), shown_(shown), pages_(pages) {}
    ~Progress() { Clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Shows that `done` of `rows` rows of a page, counted from 1, are printed.
    void Show(uint64_t page, uint64_t done, uint64_t rows);
    // Erases the line.
    void Clear();

  private:
    std::ostream& out_;
    bool shown_;
    size_t pages_;
    uint64_t lastPage_ = 0;
    uint64_t lastPercent_ = 0;
    size_t width_ = 0;  // characters of the line on the terminal
};

}  // namespace orvex::tools::print
