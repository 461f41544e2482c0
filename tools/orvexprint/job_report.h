// What orvexprint tells about a job before and after it.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "driver/config/device_mode.h"
#include "driver/render/page_layout.h"
#include "tools/orvexprint/page_placement.h"
#include "tools/orvexprint/printer_settings.h"
#include "tools/orvexprint/test_page.h"

namespace orvex::tools::print {

// The page bitmap of a job, as the driver makes it.
struct PageBitmap {
    uint32_t width;   // pixels
    uint32_t height;  // pixels
    int dpi;
};

// "600 dpi, 100.0 x 150.0 mm, portrait": what the job is printed on.
std::string PaperLine(const DeviceMode& mode);

// Every setting with its value: "purge-dots", "1 pixel".
std::vector<NamedValue> SettingValues(const DeviceMode& mode);

// Where the page lies under the print head, for the settings as the driver takes them.
PageLayout LayoutOf(const DeviceMode& mode, const PageBitmap& bitmap);

// The settings and the layout of a page.
void PrintLayout(std::ostream& out, const DeviceMode& mode, const PageBitmap& bitmap);

// The printer's labels and profiles.
void PrintLists(std::ostream& out, const PrinterSettings& settings);

}  // namespace orvex::tools::print
