// Checks of what is timed against the plain definitions.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "bench/page_job.h"
#include "driver/profiles/profile_file.h"

namespace orvex::bench {

// Returns the inks of all 2^24 colors by the plain definition. Loads the profile into this program's color
// cache. Throws CheckFailure unless it is of version 5.
std::vector<uint32_t> PlainInks(const std::filesystem::path& profile, ResolutionSelector resolution);

// Returns the print options of rows, as the plain definition takes them.
plain::RowOptions PlainOptions(const PageSettings& settings, int16_t dpi);

// Sends the page and throws CheckFailure unless each of its rows is the plain definition's.
void CheckPage(PageJob& job, const BenchPage& page, const PageSettings& settings, int16_t dpi,
               const std::vector<uint32_t>& inks);

// Throws CheckFailure unless the color cache equals `inks`.
void CheckCache(const std::vector<uint32_t>& inks, const char* what);

}  // namespace orvex::bench
