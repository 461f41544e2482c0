#include "bench/bench.h"

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace orvex::bench {

namespace {

// Returns a value of this process' status in KiB, such as "VmRSS:".
double StatusKib(const std::string& key) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double value = 0;
        if (word == key && status >> value) return value;
    }
    throw std::runtime_error("/proc/self/status has no " + key);
}

}  // namespace

bool Bench::Wants(const std::string& title) const {
    return title.find(options_.filter) != std::string::npos;
}

void Bench::Hold(const Contest& contest) {
    if (Wants(contest.title)) Take(bench::Hold(contest, options_.repetitions));
}

void Bench::Take(const ContestResult& result) {
    if (!Wants(result.title)) return;
    std::fprintf(stderr, "%-60s %8.2f\n", result.title.c_str(), result.Ratio());
    for (ContestResult& earlier : results_) {
        if (earlier.title == result.title) return earlier.Add(result);
    }
    results_.push_back(result);
}

void Bench::Note(const std::string& line) {
    if (std::find(notes_.begin(), notes_.end(), line) == notes_.end()) notes_.push_back(line);
}

void Bench::NotePeak(const std::string& title, const std::function<void()>& run) {
    if (!Wants(title)) return;
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";  // resets the high-water mark
    const double before = StatusKib("VmRSS:");
    run();
    const double grown = (StatusKib("VmHWM:") - before) / 1024;
    for (const PeakMemory& earlier : peaks_) {
        if (earlier.title == title) return;
    }
    peaks_.push_back({title, grown});
}

}  // namespace orvex::bench
