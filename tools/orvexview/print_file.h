// Print files of the stand-in print engine: checked as a whole, with an index of their pages, and read again
// page by page. Whatever a file claims and however long it is, memory is taken for the index and some rows
// only.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "tools/orvexview/byte_reader.h"
#include "tools/orvexview/pjl_header.h"

namespace orvex::tools::view {

inline constexpr size_t kMaxPages = 1'000'000;

// One page with its raster block. Row numbers and `top` count along the width of the print head.
struct PrintedPage {
    uint32_t number = 0;           // from 1
    int32_t resolutionCode = 0;    // the number in the page's resolution command
    uint32_t width = 0;            // of the page, in 1/7200 inch, along a row
    uint32_t length = 0;           // of the page, in 1/7200 inch, across the rows
    uint32_t top = 0;              // rows before the block
    uint32_t rowWidth = 0;         // pixels
    uint32_t announcedRows = 0;    // when the block was started
    uint32_t rows = 0;             // that were sent
    uint32_t missingRows = 0;      // last rows that the file lacks, which read as blank
    uint64_t encodedSize = 0;      // bytes of the rows' code
    uint64_t rowsOffset = 0;       // of the first rows record
    uint64_t fingerprint = 0;      // of the rows' code; equal pages have the same
    ByteSource* source = nullptr;  // of the print file, which must outlive the page
};

struct PrintFile {
    std::unique_ptr<ByteSource> source;
    PjlHeader header;
    uint32_t resolutionMode = 0;  // 0 = 300 dpi, 1 = 600 dpi, 2 = other
    uint32_t dpi = 0;             // of the resolution mode; 150 for other
    std::vector<PrintedPage> pages;
};

// Parse a print file and check all of it, including the code of every row. Throw PrintFileError.
PrintFile ParsePrintFile(std::unique_ptr<ByteSource> source);
PrintFile ParsePrintFile(std::vector<uint8_t> bytes);

// Parses a print file, and keeps it open. Throws PrintFileError, and std::runtime_error if the file can't be
// read.
PrintFile ReadPrintFile(const std::filesystem::path& path);

// A print file as far as it can be read.
struct ReadablePart {
    PrintFile file;
    std::string problem;  // with the offset where reading ended; empty for a sound file
};

// Parses what there is: of a file of another print engine the job header alone, of one that is cut or damaged
// the pages and rows before that place. Throws PrintFileError if not even the header can be read.
ReadablePart ParseReadablePart(std::unique_ptr<ByteSource> source);
// Does the same with the file of that name, UTF-8. Throws std::runtime_error that begins with the name.
ReadablePart ReadReadablePart(const std::string& name);

// Throws std::runtime_error with the file's name and its problem, if it has one.
void RequireSound(const std::string& name, const ReadablePart& part);

// Decodes the thumbnail, which there must be, and hands over its bytes part by part.
void ReadThumbnail(const PrintFile& file, const std::function<void(std::span<const uint8_t>)>& take);

// Reader of a page's rows, exactly as the print engine got them.
class RowReader {
  public:
    explicit RowReader(const PrintedPage& page);

    // Returns the next row, valid until the next call; empty after the last one. Throws PrintFileError if the
    // file has changed since it was parsed.
    std::span<const uint32_t> Next();

  private:
    void TakeRecord();

    ByteReader reader_;
    uint32_t rowsLeft_;
    uint32_t blankLeft_;  // of them
    std::vector<uint32_t> row_;
    std::vector<uint8_t> record_;
    std::span<const uint8_t> code_;  // of the rows in `record_` that are not decoded yet
};

// Returns all rows of a page at once, for small pages.
std::vector<std::vector<uint32_t>> ReadRows(const PrintedPage& page);

}  // namespace orvex::tools::view
