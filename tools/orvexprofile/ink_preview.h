// Pictures as the driver prints them: their look, and the place of each ink.
#pragma once

#include <array>
#include <cstdint>

#include "driver/color/ink.h"
#include "tools/common/ink_model.h"
#include "tools/common/picture.h"
#include "tools/common/raster_image.h"
#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// Returns the model by which a preview shows a variant: full ink is 255, and half of that at 600 dpi.
InkModel InkModelOf(PrintVariant variant);

struct InkPictures {
    Picture composite;                // in color, on white paper
    std::array<Picture, kInks> inks;  // K, C, M, Y, in gray: white without ink, black for full ink
    double pixelsPerInch = 0;
};

// Prints the picture through the loaded profile.
InkPictures PrintPicture(const RasterImage& picture, PrintVariant variant);

}  // namespace orvex::tools::profile
