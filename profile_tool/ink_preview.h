// A picture as the driver prints it: what it looks like, and where each ink goes.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>

#include "host/raster_image.h"
#include "profile_tool/driver_colors.h"
#include "profile_tool/ink.h"
#include "viewer/ink_model.h"
#include "viewer/picture.h"

// How a preview takes the inks of a variant: full ink is 255, and half of that at 600 dpi.
viewer::InkModel InkModelOf(PrintVariant variant);

struct InkPictures {
    viewer::Picture composite;                // in colour, on white paper
    std::array<viewer::Picture, kInks> inks;  // K, C, M, Y, in grey: white without ink, black for full ink
    double pixelsPerInch = 0;
};

// Prints the picture through the profile that is loaded.
InkPictures PrintPicture(const RasterImage& picture, PrintVariant variant);

// Writes a PNG file. Throws std::runtime_error, in words, when that fails; then there is no file.
void SavePng(const viewer::Picture& picture, double pixelsPerInch, const std::filesystem::path& path);
