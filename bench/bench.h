// One run of the benchmark: the wanted rows and their results.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/contest.h"

namespace orvex::bench {

struct BenchOptions {
    int repetitions = 10;
    std::string filter;  // only rows whose title contains this text
};

// The memory that a run needed beyond what the process had before.
struct PeakMemory {
    std::string title;
    double mebibytes;
};

class Bench {
  public:
    explicit Bench(const BenchOptions& options) : options_(options) {}

    // Returns whether a row is to be measured. Ask before making expensive inputs for it.
    bool Wants(const std::string& title) const;
    // Returns how often each side of a row is to be timed.
    int Repetitions() const { return options_.repetitions; }
    // Measures a row if it is wanted.
    void Hold(const Contest& contest);
    // Adds a row that was measured, if it is wanted. Runs of the same title add up.
    void Take(const ContestResult& result);
    // Measures the peak memory of a run if it is wanted.
    void NotePeak(const std::string& title, const std::function<void()>& run);
    // Adds a fact to print below the table.
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
