// One row of the table: the driver's code against a reference, measured in the same run.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvex::bench {

double MedianOf(std::vector<double> values);

// Seconds of repeated runs, in order.
struct Timing {
    std::vector<double> seconds;

    double Median() const { return MedianOf(seconds); }
    double Minimum() const;
};

// A side of a contest. `prepare`, if there is one, restores the initial state before each run, untimed.
struct Contender {
    std::string name;
    std::function<void()> run;
    std::function<void()> prepare = nullptr;
};

enum class AimKind {
    kAtMost,      // our time is at most so many times the reference's
    kTimesFaster  // the reference's time is at least so many times ours
};

struct Contest {
    std::string title;
    Contender ours;
    Contender reference;
    AimKind kind;
    double aim;  // 0: no aim
    // Throws CheckFailure if our answer differs from the plain definition's.
    std::function<void()> check;
};

struct ContestResult {
    std::string title;
    std::string reference;
    AimKind kind;
    double aim;
    Timing ours;
    Timing theirs;
    std::vector<double> ratios;  // of the medians, one for each run of the benchmark

    // Returns the median of the ratios.
    double Ratio() const;
    bool Met() const;
    // Adds the times of another run of the same contest.
    void Add(const ContestResult& other);
};

class CheckFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Checks the answer, warms both sides up, then times each of them `repetitions` times in random order.
ContestResult Hold(const Contest& contest, int repetitions);

}  // namespace orvex::bench
