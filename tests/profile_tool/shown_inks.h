// What a preview shows for an ink value.
#pragma once

#include <vector>

#include "profile_tool/ink_preview.h"

// As red, green and blue.
inline std::vector<int> Shown(uint32_t inks) {
    const viewer::Rgb color = InkModelOf(PrintVariant::Other).OnPaper(inks);
    return {color.red, color.green, color.blue};
}

// As a pixel of a picture that was read.
inline uint32_t ShownPixel(uint32_t inks) {
    const viewer::Rgb color = InkModelOf(PrintVariant::Other).OnPaper(inks);
    return ColorIndex(color.red, color.green, color.blue);
}
