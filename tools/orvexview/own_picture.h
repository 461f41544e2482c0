// The pictures that orvexview writes. They name it as their maker, so that it replaces them later, but
// nothing else.
#pragma once

#include <string>

#include "tools/common/png_writer.h"

namespace orvex::tools::view {

// Returns the settings of such a picture. `dpi` is the print file's; `scale` x `scale` of its pixels are one.
PngSettings OwnPicture(uint32_t width, uint32_t height, uint32_t channels, uint32_t dpi, uint32_t scale);

// Throws std::runtime_error if a file of that name (UTF-8) is there that orvexview has not made, such as art
// of a similar name.
void RefuseReplacing(const std::string& name);

}  // namespace orvex::tools::view
