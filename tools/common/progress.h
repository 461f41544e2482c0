// How far a long job is, on a terminal.
#pragma once

#include <cstdint>
#include <ostream>

namespace orvex::tools {

class Progress {
  public:
    // Shows nothing unless `shown`.
    Progress(std::ostream& out, bool shown, size_t pages) : out_(out), shown_(shown), pages_(pages) {}
    ~Progress() { Clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // `done` of `rows` rows of a page, counted from 1, are printed.
    void Show(uint64_t page, uint64_t done, uint64_t rows);
    // Takes the line away again.
    void Clear();

  private:
    std::ostream& out_;
    bool shown_;
    size_t pages_;
    uint64_t lastPage_ = 0;
    uint64_t lastPercent_ = 0;
    size_t width_ = 0;  // characters of the line that stands there
};

}  // namespace orvex::tools
