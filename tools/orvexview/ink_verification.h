// Whether a page has exactly the inks that its art gets through a profile, by the driver's own profile reader
// and color conversion.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "tools/common/png_reader.h"
#include "tools/orvexview/ink_place.h"
#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

// Loads a profile's variant for the file's resolution into the driver's color cache. Throws
// std::runtime_error if the driver does not accept it.
void LoadProfileForPrint(const std::filesystem::path& path, const PrintFile& file);

// Compares the inks of a page's image with those that the loaded profile gives for the art; the first of a
// differing pair is the printed one. A band of about `bandBytes` of the art is in memory at a time. Throws
// std::runtime_error if the sizes differ, and PageError if the art is damaged.
InkDifference VerifyInks(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                         PngReader& art, size_t bandBytes);

// Returns the verdict in words.
std::string DescribeVerification(const InkDifference& difference, const PagePlacement& placement);

}  // namespace orvex::tools::view
