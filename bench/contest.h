// One row of the table: the driver's code against a reference, measured in the same run.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvex::bench {

double MedianOf(std::vector<double> values);

// Seconds of repeated runs, in the order they were taken.
struct Timing {
    std::vector<double> seconds;

    double Median() const { return MedianOf(seconds); }
    double Minimum() const;
};

// What is timed. `prepare`, where there is one, puts things back before each run and is not timed.
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
    double aim;  // 0: none, the row is for information
    // Throws CheckFailure when our answer is not the plain definition's.
    std::function<void()> check;
};

struct ContestResult {
    std::string title;
    std::string reference;
    AimKind kind;
    double aim;
    Timing ours;
    Timing theirs;
    std::vector<double> ratios;  // of the medians, one for each run of the whole benchmark

    // The median of the ratios, as the kind says.
    double Ratio() const;
    bool Met() const;
    // Takes another run of the same contest in.
    void Add(const ContestResult& other);
};

class CheckFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Checks, runs both once to warm up, then times each `repetitions` times, one after the other by turns.
ContestResult Hold(const Contest& contest, int repetitions);

}  // namespace orvex::bench
