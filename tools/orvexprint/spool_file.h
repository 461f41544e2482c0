// Spool files of Windows that hold a job as enhanced metafiles: header, pages, device modes and fonts.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tools/orvexprint/little_endian.h"

namespace orvex::tools::print {

constexpr uint32_t kSpoolVersion = 0x00010000;  // first number of a spool file
constexpr size_t kSpoolHeader = 16;             // bytes of the fixed part of its header
constexpr size_t kSpoolRecordHead = 8;          // bytes of a record before its data: id and size of the data

// The ids of the records, by their names in the format.
#define SPOOL_RECORDS(ROW)         \
    ROW(1, EMRI_METAFILE)          \
    ROW(2, EMRI_ENGINE_FONT)       \
    ROW(3, EMRI_DEVMODE)           \
    ROW(4, EMRI_TYPE1_FONT)        \
    ROW(5, EMRI_PRESTARTPAGE)      \
    ROW(6, EMRI_DESIGNVECTOR)      \
    ROW(7, EMRI_SUBSET_FONT)       \
    ROW(8, EMRI_DELTA_FONT)        \
    ROW(9, EMRI_FORM_METAFILE)     \
    ROW(10, EMRI_BW_METAFILE)      \
    ROW(11, EMRI_BW_FORM_METAFILE) \
    ROW(12, EMRI_METAFILE_DATA)    \
    ROW(13, EMRI_METAFILE_EXT)     \
    ROW(14, EMRI_BW_METAFILE_EXT)  \
    ROW(15, EMRI_ENGINE_FONT_EXT)  \
    ROW(16, EMRI_TYPE1_FONT_EXT)   \
    ROW(17, EMRI_DESIGNVECTOR_EXT) \
    ROW(18, EMRI_SUBSET_FONT_EXT)  \
    ROW(19, EMRI_DELTA_FONT_EXT)   \
    ROW(20, EMRI_PS_JOB_DATA)      \
    ROW(21, EMRI_EMBED_FONT_EXT)

#define SPOOL_RECORD_ID(id, name) name = (id),
enum SpoolRecordId : uint32_t { SPOOL_RECORDS(SPOOL_RECORD_ID) };
#undef SPOOL_RECORD_ID

struct SpoolPage {
    ByteSpan metafile;
    ByteSpan deviceMode;  // in force where the page is printed; empty if the file has had none
};

// A job as its spool file holds it. The views are into the file's bytes.
struct SpoolFile {
    std::string document;                   // UTF-8; empty if the header names none
    std::string output;                     // the same for the port
    ByteSpan firstDeviceMode;               // before the first page is printed; empty if there is none
    std::vector<SpoolPage> pages;           // in the order of printing
    std::vector<ByteSpan> fonts;            // TrueType files
    std::vector<std::string> leftOut = {};  // what is not replayed, in words, a line each
};

// A spool file that can't be replayed; the message says what it is or has.
class SpoolError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Returns whether the first bytes are those of a spool file of metafiles.
bool IsSpoolFile(ByteSpan start);

// Returns the offset of the first record of such a file. Throws SpoolError for a header that is not within
// it.
size_t SpoolHeaderSize(ByteSpan bytes);

// Reads a spool file. Throws SpoolError for one of another kind, and for one whose pages or device modes
// can't be found.
SpoolFile ReadSpoolFile(ByteSpan bytes);

// Returns a stored device mode after a check that it holds as many bytes as its own fields say; more are
// kept. Throws SpoolError that calls it `name`.
ByteSpan CheckedDeviceMode(ByteSpan stored, std::string_view name);

}  // namespace orvex::tools::print
