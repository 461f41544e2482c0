// A picture as the driver prints it: what it looks like, and where each ink goes.
#pragma once

#include <array>
#include <cstdint>

#include "tools/common/ink_model.h"
#include "tools/common/picture.h"
#include "tools/common/raster_image.h"
#include "tools/orvexprofile/driver_colors.h"
#include "tools/orvexprofile/ink.h"

namespace orvex::tools::profile {

// How a preview takes the inks of a variant: full ink is 255, and half of that at 600 dpi.
InkModel InkModelOf(PrintVariant variant);

struct InkPictures {
    Picture composite;                // in colour, on white paper
    std::array<Picture, kInks> inks;  // K, C, M, Y, in grey: white without ink, black for full ink
    double pixelsPerInch = 0;
};

// Prints the picture through the profile that is loaded.
InkPictures PrintPicture(const RasterImage& picture, PrintVariant variant);

}  // namespace orvex::tools::profile
