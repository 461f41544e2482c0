// A print file of the stand-in engine, read and checked as a whole.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "tools/orvexview/byte_reader.h"
#include "tools/orvexview/pjl_header.h"

namespace orvex::tools::view {

// One page with its raster block. Rows lie across the print head, so row numbers and `top` count along its
// width.
struct PrintedPage {
    uint32_t number = 0;                                // from 1
    int32_t resolutionCode = 0;                         // the number in the page's resolution command
    uint32_t width = 0;                                 // of the page, in 1/7200 inch, along a row
    uint32_t length = 0;                                // of the page, in 1/7200 inch, across the rows
    uint32_t top = 0;                                   // rows in front of the block
    uint32_t rowWidth = 0;                              // pixels
    uint32_t announcedRows = 0;                         // when the block was started
    uint32_t rows = 0;                                  // handed over
    std::vector<std::span<const uint8_t>> encodedRows;  // whole rows, in PrintFile::bytes

    size_t EncodedSize() const;
};

struct PrintFile {
    PrintFile() = default;
    ~PrintFile() = default;
    // The pages' rows lie in `bytes`, which stays where it is when it is moved.
    PrintFile(PrintFile&&) = default;
    PrintFile& operator=(PrintFile&&) = default;
    PrintFile(const PrintFile&) = delete;
    PrintFile& operator=(const PrintFile&) = delete;

    std::vector<uint8_t> bytes;
    PjlHeader header;
    uint32_t resolutionMode = 0;  // 0 = 300 dpi, 1 = 600 dpi, 2 = other
    uint32_t dpi = 0;             // of the resolution mode, 150 for other
    std::vector<PrintedPage> pages;
};

// Reads a print file; everything is checked, the code of every row included. Takes memory for the bytes and
// for one row, whatever the file claims. Throws PrintFileError.
PrintFile ParsePrintFile(std::vector<uint8_t> bytes);

// The same from a file. Throws std::system_error when it can't be read.
PrintFile ReadPrintFile(const std::filesystem::path& path);

// The rows of a page, one after the other, exactly as they were handed to the engine. The print file outlives
// it.
class RowReader {
  public:
    explicit RowReader(const PrintedPage& page);

    // The next row, valid until the next call; empty behind the last one.
    std::span<const uint32_t> Next();

  private:
    const PrintedPage& page_;
    std::vector<uint32_t> row_;
    size_t record_ = 0;
    std::span<const uint8_t> code_;
};

// All rows of a page at once, for small pages.
std::vector<std::vector<uint32_t>> ReadRows(const PrintedPage& page);

}  // namespace orvex::tools::view
