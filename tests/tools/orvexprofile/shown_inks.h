// The color that a preview shows for an ink value.
#pragma once

#include <vector>

#include "tools/orvexprofile/ink_preview.h"

namespace orvex::tools::profile {

// Returns it as red, green and blue.
inline std::vector<int> Shown(uint32_t inks) {
    const Rgb color = InkModelOf(PrintVariant::kOther).OnPaper(inks);
    return {color.red, color.green, color.blue};
}

// Returns it as a pixel of a picture.
inline uint32_t ShownPixel(uint32_t inks) {
    const Rgb color = InkModelOf(PrintVariant::kOther).OnPaper(inks);
    return ColorIndex(color.red, color.green, color.blue);
}

}  // namespace orvex::tools::profile
