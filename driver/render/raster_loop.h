// The row loop of a page: every bitmap line becomes one row of ink values for the print engine.
#pragma once

#include "driver/device_instance.h"
#include "driver/render/page_layout.h"
#include "platform/windows.h"

namespace orvex {

// Sends the rows of an opened raster block: fill rows, image rows with the purge bar, fill rows. No side of
// the bitmap may be negative. Returns false, and logs it, when the engine refuses a row or when there is no
// memory for the rows; no further row is sent then.
bool SendRasterRows(const PDEV& pdev, const SURFOBJ& surface, const PageLayout& layout);

// Logs a duration since `startTick`, "...%dms...", when it is longer than every earlier one of its kind in
// the job.
void NoteDuration(DWORD startTick, uint32_t* maximum, const char* line);

}  // namespace orvex
