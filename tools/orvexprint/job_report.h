// The texts of orvexprint: settings, layout and lists.
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

// The size of a job's page bitmap.
struct PageRaster {
    uint32_t width;   // pixels
    uint32_t height;  // pixels
    int dpi;
};

// Returns what the job is printed on: "600 dpi, 100.0 x 150.0 mm, portrait".
std::string PaperLine(const DeviceMode& mode);

// Returns every setting with its value: "purge-dots", "1 pixel".
std::vector<NamedValue> SettingValues(const DeviceMode& mode);

// Computes the page's place under the print head; `mode` is validated, as the driver has it.
PageLayout LayoutOf(const DeviceMode& mode, const PageRaster& bitmap);

// Writes the settings and the layout of a page.
void PrintLayout(std::ostream& out, const DeviceMode& mode, const PageRaster& bitmap);

// Writes the printer's labels and profiles.
void PrintLists(std::ostream& out, const PrinterSettings& settings);

}  // namespace orvex::tools::print
