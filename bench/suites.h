// The rows of the table, by what they measure. Each suite makes what it needs, checks and measures the rows
// that the bench wants.
#pragma once

#include <filesystem>
#include <vector>

#include "bench/bench.h"
#include "bench/page_job.h"

namespace orvex::bench {

using namespace tools;
// What the suites share.
struct BenchSetting {
    BenchDriver& driver;
    std::filesystem::path profile;  // of version 5; what the driver's jobs print through
    std::vector<uint32_t> inks;     // of all colours through it at 600 dpi, plainly computed
    std::vector<uint32_t> inks300;  // the same at 300 dpi
};

// Whole calls of DrvSendPage with an engine that does nothing.
void MeasurePages(Bench& bench, const BenchSetting& setting);
// Row conversion by itself.
void MeasureRowConversion(Bench& bench, const BenchSetting& setting);
// Loading profiles and the generic conversion; all colors interpolated.
void MeasureProfiles(Bench& bench, const BenchSetting& setting);
// The thumbnail's scaling, and what the log costs while it is off.
void MeasureExtras(Bench& bench, const BenchSetting& setting);

// Puts the profile into the color cache anew, at 600 dpi; nothing is interpolated yet.
void LoadFresh(const BenchSetting& setting);

}  // namespace orvex::bench
