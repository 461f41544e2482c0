#include "bench/contest.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

namespace orvex::bench {

namespace {

// Times one run of a contender per iteration of the library.
void Time(benchmark::State& state, const Contender& contender) {
    for (auto _ : state) {
        if (contender.prepare) contender.prepare();
        const auto start = std::chrono::steady_clock::now();
        contender.run();
        benchmark::ClobberMemory();
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(elapsed.count());
    }
}

// Collects the times and prints nothing.
class Collector : public benchmark::BenchmarkReporter {
  public:
    Collector(Timing& ours, Timing& theirs) : ours_(ours), theirs_(theirs) {}

    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            Timing& timing = run.run_name.function_name == "ours" ? ours_ : theirs_;
            timing.seconds.push_back(run.real_accumulated_time / static_cast<double>(run.iterations));
        }
    }

  private:
    Timing& ours_;
    Timing& theirs_;
};

void RunOnce(const Contender& contender) {
    if (contender.prepare) contender.prepare();
    contender.run();
}

}  // namespace

double MedianOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double Timing::Minimum() const {
    return *std::min_element(seconds.begin(), seconds.end());
}

double ContestResult::Ratio() const {
    return MedianOf(ratios);
}

bool ContestResult::Met() const {
    return kind == AimKind::kAtMost ? Ratio() <= aim : Ratio() >= aim;
}

void ContestResult::Add(const ContestResult& other) {
    const auto append = [](std::vector<double>& to, const std::vector<double>& from) {
        to.insert(to.end(), from.begin(), from.end());
    };
    append(ours.seconds, other.ours.seconds);
    append(theirs.seconds, other.theirs.seconds);
    append(ratios, other.ratios);
}

ContestResult Hold(const Contest& contest, int repetitions) {
    if (contest.check) contest.check();
    RunOnce(contest.ours);
    RunOnce(contest.reference);

    ContestResult result = {contest.title, contest.reference.name, contest.kind, contest.aim, {}, {}, {}};
    Collector collector(result.ours, result.theirs);
    benchmark::ClearRegisteredBenchmarks();
    for (const auto& [name, contender] :
         {std::pair{"ours", &contest.ours}, {"reference", &contest.reference}}) {
        benchmark::RegisterBenchmark(
            name, [contender = contender](benchmark::State& state) { Time(state, *contender); })
            ->UseManualTime()
            ->Iterations(1)
            ->Repetitions(repetitions);
    }
    benchmark::RunSpecifiedBenchmarks(&collector);
    const double ours = result.ours.Median(), theirs = result.theirs.Median();
    result.ratios.push_back(contest.kind == AimKind::kAtMost ? ours / theirs : theirs / ours);
    return result;
}

}  // namespace orvex::bench
