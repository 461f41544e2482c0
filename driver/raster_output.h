// The way of a page's rows to the print engine.
#pragma once

#include "driver/device_instance.h"
#include "driver/render/page_layout.h"
#include "platform/windows.h"

namespace orvex {

// Sends the rows of an opened raster block and logs how long their stages took. No side of the bitmap may be
// negative. Returns false, and logs it, when the engine refuses a row or memory runs out; no further row is
// sent then.
bool SendRasterRows(const PDEV& pdev, const SURFOBJ& surface, const PageLayout& layout);

}  // namespace orvex
