// One run of the benchmark: which rows are wanted, and what came of them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/contest.h"

namespace orvex::bench {

struct BenchOptions {
    int repetitions = 20;
    std::string filter;  // only rows whose title holds this text; empty: all
};

// The memory that one run of something needed beyond what was there before.
struct PeakMemory {
    std::string title;
    double mebibytes;
};

class Bench {
  public:
    explicit Bench(const BenchOptions& options) : options_(options) {}

    // Whether a row of that title is to be measured: ask before making expensive things for it.
    bool Wants(const std::string& title) const;
    // Measures a row that is wanted. Another run of the same title joins the first.
    void Hold(const Contest& contest);
    // Measures the peak memory of a run, when it is wanted.
    void NotePeak(const std::string& title, const std::function<void()>& run);
    // A fact to print below the table.
    void Note(const std::string& line);

    const std::vector<ContestResult>& Results() const { return results_; }
    const std::vector<PeakMemory>& Peaks() const { return peaks_; }
    const std::vector<std::string>& Notes() const { return notes_; }

  private:
    BenchOptions options_;
    std::vector<ContestResult> results_;
    std::vector<PeakMemory> peaks_;
    std::vector<std::string> notes_;
};

}  // namespace orvex::bench
