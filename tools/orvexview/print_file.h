// Print files of the stand-in print engine, read and checked as a whole.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "tools/orvexview/byte_reader.h"
#include "tools/orvexview/pjl_header.h"

namespace orvex::tools::view {

// One page with its raster block. Row numbers and `top` count along the width of the print head.
struct PrintedPage {
    uint32_t number = 0;                                // from 1
    int32_t resolutionCode = 0;                         // the number in the page's resolution command
    uint32_t width = 0;                                 // of the page, in 1/7200 inch, along a row
    uint32_t length = 0;                                // of the page, in 1/7200 inch, across the rows
    uint32_t top = 0;                                   // rows before the block
    uint32_t rowWidth = 0;                              // pixels
    uint32_t announcedRows = 0;                         // when the block was started
    uint32_t rows = 0;                                  // that were sent
    std::vector<std::span<const uint8_t>> encodedRows;  // whole rows, in PrintFile::bytes

    size_t EncodedSize() const;
};

struct PrintFile {
    PrintFile() = default;
    ~PrintFile() = default;
    // Only moves are safe: the pages' rows point into `bytes`, whose memory then stays the same.
    PrintFile(PrintFile&&) = default;
    PrintFile& operator=(PrintFile&&) = default;
    PrintFile(const PrintFile&) = delete;
    PrintFile& operator=(const PrintFile&) = delete;

    std::vector<uint8_t> bytes;
    PjlHeader header;
    uint32_t resolutionMode = 0;  // 0 = 300 dpi, 1 = 600 dpi, 2 = other
    uint32_t dpi = 0;             // of the resolution mode; 150 for other
    std::vector<PrintedPage> pages;
};

// Parses a print file and checks all of it, including the code of every row. Whatever the file claims, takes
// memory only for its bytes and one row. Throws PrintFileError.
PrintFile ParsePrintFile(std::vector<uint8_t> bytes);

// Reads and parses a print file. Throws PrintFileError, and std::runtime_error if the file can't be read.
PrintFile ReadPrintFile(const std::filesystem::path& path);

// Reader of a page's rows, exactly as the print engine got them. The print file must outlive it.
class RowReader {
  public:
    explicit RowReader(const PrintedPage& page);

    // Returns the next row, valid until the next call; empty after the last one.
    std::span<const uint32_t> Next();

  private:
    const PrintedPage& page_;
    std::vector<uint32_t> row_;
    size_t record_ = 0;
    std::span<const uint8_t> code_;
};

// Returns all rows of a page at once, for small pages.
std::vector<std::vector<uint32_t>> ReadRows(const PrintedPage& page);

}  // namespace orvex::tools::view
