// The benchmark's program; ./bench/run builds and starts it.
#include <benchmark/benchmark.h>

#include <CLI/CLI.hpp>
#include <iostream>

#include "bench/page_checks.h"
#include "bench/report.h"
#include "bench/suites.h"
#include "driver/profiles/profile_file.h"

using namespace orvex;
using namespace orvex::bench;

namespace {

constexpr char kProfile[] = "neutral.zvp";

// Makes the library run the contenders in random order.
void SetUpLibrary() {
    char program[] = "orvexbench", interleaving[] = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {program, interleaving, nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);
}

}  // namespace

int main(int count, char** values) {
    BenchOptions options;
    int runs = 1;
    std::string newProcess;
    CLI::App app("Times the driver against memcpy, memset, Little CMS and pixman.");
    app.add_option("--filter", options.filter, "Only rows whose title contains this text");
    app.add_option("--repetitions", options.repetitions, "Timings of each side of a row in a run")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();
    app.add_option("--runs", runs, "Runs of the benchmark; the table shows the medians of their ratios")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    app.add_option("--new-process", newProcess)->group("");  // for the rows of first pages
    CLI11_PARSE(app, count, values);
    try {
        const std::filesystem::path installation = tools::ProgramFolder() / "install";
        if (!newProcess.empty()) {
            TimeNewProcess(installation, kProfile, newProcess);
            return 0;
        }
        SetUpLibrary();
        const std::filesystem::path profile = installation / "profiles" / kProfile;
        BenchDriver driver(installation, kProfile);
        const BenchSetting setting = {driver, profile, PlainInks(profile, kResolution600),
                                      PlainInks(profile, kResolutionOther)};
        Bench bench(options);
        for (int run = 0; run < runs; ++run) {
            MeasureColdPages(bench);
            MeasurePages(bench, setting);
            MeasureRowConversion(bench, setting);
            MeasureProfiles(bench, setting);
            MeasureExtras(bench, setting);
        }
        PrintReport(bench, std::cout);
    } catch (const std::exception& error) {
        std::cerr << "bench: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
