// Spool files made of drawn pages and device modes, which replay to the same print file.
#pragma once

#include <filesystem>
#include <string>

#include "tools/common/whole_file.h"
#include "tools/orvexprint/page_source.h"
#include "tools/orvexprint/spool_file.h"

namespace orvex::tools::print {

// A page bitmap as it is written.
struct DrawnPage {
    PageBits bits;
    uint32_t width;   // pixels
    uint32_t height;  // pixels
    uint32_t dpi;
};

class SpoolWriter {
  public:
    // Creates the file, which appears when it is complete. The names are UTF-8.
    SpoolWriter(const std::filesystem::path& path, const std::string& document, const std::string& port);

    // Adds a device mode for the pages that follow.
    void AddDeviceMode(ByteSpan deviceMode);
    // Adds a page as a metafile of its pixels, without rows that are white, and with as few bits a pixel as
    // its colors need.
    void AddPage(const DrawnPage& page);

    // Throws std::runtime_error if a write failed.
    void Complete();

  private:
    OutputFile file_;
};

}  // namespace orvex::tools::print
