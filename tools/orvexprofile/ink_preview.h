// A picture as the driver prints it: what it looks like, and where each ink goes.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>

#include "tools/common/raster_image.h"
#include "tools/orvexprofile/driver_colors.h"
#include "tools/orvexprofile/ink.h"
#include "tools/orvexview/ink_model.h"
#include "tools/orvexview/picture.h"

namespace orvex::tools::profile {

// How a preview takes the inks of a variant: full ink is 255, and half of that at 600 dpi.
tools::view::InkModel InkModelOf(PrintVariant variant);

struct InkPictures {
    tools::view::Picture composite;  // in colour, on white paper
    std::array<tools::view::Picture, kInks>
        inks;  // K, C, M, Y, in grey: white without ink, black for full ink
    double pixelsPerInch = 0;
};

// Prints the picture through the profile that is loaded.
InkPictures PrintPicture(const RasterImage& picture, PrintVariant variant);

// Writes a PNG file. Throws std::runtime_error, in words, when that fails; then there is no file.
void SavePng(const tools::view::Picture& picture, double pixelsPerInch, const std::filesystem::path& path);

}  // namespace orvex::tools::profile
