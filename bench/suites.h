// The suites of the benchmark. Each makes its inputs, checks the answers and measures the rows that the bench
// wants.
#pragma once

#include <filesystem>
#include <vector>

#include "bench/bench.h"
#include "bench/page_job.h"

namespace orvex::bench {

// Inputs of all suites.
struct BenchSetting {
    BenchDriver& driver;
    std::filesystem::path profile;  // the profile of all jobs, of version 5
    std::vector<uint32_t> inks;     // plain inks of all colors at 600 dpi
    std::vector<uint32_t> inks300;  // at 300 dpi
};

// Measures calls of DrvSendPage with an engine that does nothing.
void MeasurePages(Bench& bench, const BenchSetting& setting);
// Measures first pages, and whole jobs of one page, each in a process of its own.
void MeasureColdPages(Bench& bench);
// Is such a process: prints the page of that name twice and writes the seconds of its set-up and of both
// pages.
void TimeNewProcess(const std::filesystem::path& installation, const std::string& profile,
                    const std::string& name);
// Measures row conversion by itself.
void MeasureRowConversion(Bench& bench, const BenchSetting& setting);
// Measures loads of profiles, the generic conversion and the interpolation of all colors.
void MeasureProfiles(Bench& bench, const BenchSetting& setting);
// Measures the thumbnail's scaling, the cost of the log while it is off, a whole job of orvexprint, and the
// pictures of orvexview.
void MeasureExtras(Bench& bench, const BenchSetting& setting);

// Reloads the profile at 600 dpi, so that no color is interpolated yet.
void LoadFresh(const BenchSetting& setting);

}  // namespace orvex::bench
