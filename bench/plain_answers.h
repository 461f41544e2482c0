// The answers by their plain definitions, to hold the fast ones against before anything is timed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "bench/bench_page.h"
#include "bench/page_job.h"
#include "driver/profiles/profile_file.h"

namespace orvex::bench {

using namespace tools;
// The inks of all 2^24 colors through a profile of version 5, in double precision. Loads it into this
// program's color cache. Throws CheckFailure when it is no such profile.
std::vector<uint32_t> PlainInks(const std::filesystem::path& profile, ResolutionSelector resolution);

// Pixel `i` of row `row` of a page, as the orientations are defined.
uint32_t PlainPixel(const BenchPage& page, const PageSettings& settings, int32_t row, int32_t i);

// What is printed for an ink value at a place of its row, by the settings' color mode and blank pattern.
uint32_t PlainPrinted(uint32_t ink, int32_t place, const PageSettings& settings, int16_t dpi);

// Sends the page and throws CheckFailure unless every row of it is as plainly defined.
void CheckPage(PageJob& job, const BenchPage& page, const PageSettings& settings, int16_t dpi,
               const std::vector<uint32_t>& inks);

// Throws CheckFailure unless the colour cache holds `inks`, all of them.
void CheckCache(const std::vector<uint32_t>& inks, const char* what);

}  // namespace orvex::bench
