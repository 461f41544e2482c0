// The color spaces that are embedded in pages. The driver takes colors for sRGB.
#pragma once

#include <string>

#include "tools/common/picture_reader.h"

namespace orvex::tools::print {

// Says in the help what becomes of embedded color spaces in this build.
extern const char kColorsHelp[];

struct ArtColors {
    PictureReader::ColorConversion toSrgb = nullptr;  // null if the colors are printed as they are
    std::string note = {};  // "has a color profile, which is ignored: ..."; empty if nothing is ignored
};

// Returns how the colors of a page become sRGB. What is sRGB already, but for rounding, stays as it is.
ArtColors ColorsOf(const EmbeddedColors& embedded);

}  // namespace orvex::tools::print
