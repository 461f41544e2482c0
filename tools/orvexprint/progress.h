// The progress of a long job, on a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <ostream>

namespace orvex::tools::print {

class Progress {
  public:
    using Clock = std::chrono::steady_clock;

    // `shown` is whether to write to `out` at all.
    Progress(std::ostream& out, bool shown, size_t pages, std::function<Clock::time_point()> now = Clock::now)
        : out_(out), shown_(shown), pages_(pages), now_(std::move(now)) {}
    ~Progress() { Clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Shows that `done` of `rows` rows of a page, counted from 1, are printed: at once, then at most ten
    // times a second. Each line is one write, since Wine's console takes long over each.
    void Show(uint64_t page, uint64_t done, uint64_t rows);
    // Erases the line.
    void Clear();

  private:
    std::ostream& out_;
    bool shown_;
    size_t pages_;
    std::function<Clock::time_point()> now_;
    Clock::time_point next_ = {};  // nothing is shown before this time
    size_t width_ = 0;             // characters of the line on the terminal
};

}  // namespace orvex::tools::print
