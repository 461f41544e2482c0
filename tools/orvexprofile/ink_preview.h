// Pictures as the driver prints them: their look, and the place of each ink.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>

#include "driver/color/ink.h"
#include "tools/common/raster_image.h"
#include "tools/orvexprofile/profile.h"
#include "tools/orvexview/ink_model.h"
#include "tools/orvexview/picture.h"

namespace orvex::tools::profile {

// Returns the model by which a preview shows a variant: full ink is 255, and half of that at 600 dpi.
tools::view::InkModel InkModelOf(PrintVariant variant);

struct InkPictures {
    tools::view::Picture composite;  // in color, on white paper
    std::array<tools::view::Picture, kInks>
        inks;  // K, C, M, Y, in gray: white without ink, black for full ink
    double pixelsPerInch = 0;
};

// Prints the picture through the loaded profile.
InkPictures PrintPicture(const RasterImage& picture, PrintVariant variant);

// Writes a PNG file, whole or not at all. Throws std::runtime_error, in words, when that fails.
void SavePng(const tools::view::Picture& picture, double pixelsPerInch, const std::filesystem::path& path);

}  // namespace orvex::tools::profile
