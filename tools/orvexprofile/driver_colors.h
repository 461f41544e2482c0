// The colours of a profile as the driver has them: read by its own reader into its own colour cache, and
// looked up there. One profile and variant is loaded at a time in a process.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "tools/orvexprofile/profile.h"
#include "tools/orvexprofile/profile_reader.h"

namespace orvex::tools::profile {

// The variant for 600 dpi, or the one for all other resolutions.
enum class PrintVariant { kAt600, kOther };

// Whether the driver's reader accepts the file and so has it loaded. When not, the cache is left to the next
// load.
bool LoadIntoDriver(const std::filesystem::path& path, PrintVariant variant);

// Loads a file and says what it holds. Throws std::runtime_error with the file's name and the reader's
// message when the driver does not accept it.
ProfileFacts LoadAccepted(const std::filesystem::path& path, PrintVariant variant);

// Loads what the driver prints through when a job names no profile.
void LoadGenericIntoDriver(PrintVariant variant);

// The entries that the loaded profile of this version stores, in the order of a Variant.
Variant LoadedEntries(int version);

// Whether the driver prints every colour of a profile of this version as the profile means it: all but 3 and
// 4, whose colours between the stored ones it leaves without ink or computes from other colours.
bool PrintsAsMeant(int version);

// What the loaded profile of this version means for any colour: as the driver prints it, or where
// PrintsAsMeant says no, on the straight line between the stored neighbours. Works as long as the profile
// stays loaded.
InkSource LoadedColors(int version);

// What the driver prints for each of `colors` through the loaded profile.
std::vector<uint32_t> PrintedInks(std::span<const uint32_t> colors);

// All colours whose components are multiples of `step`, and those with a component of 255; every one when it
// is 1.
std::vector<uint32_t> ColorsEvery(int step);

}  // namespace orvex::tools::profile
