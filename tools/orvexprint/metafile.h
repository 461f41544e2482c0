// Enhanced metafiles as files: what their header and records say. Only the graphics engine draws them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/windows.h"
#include "tools/common/picture.h"
#include "tools/orvexprint/little_endian.h"

namespace orvex::tools::print {

// A record of a spool file.
struct SpoolRecord {
    uint32_t id;
    uint64_t offset;  // of the record in the file that holds it
    ByteSpan data;
};

struct Metafile {
    ByteSpan bytes;     // from its header to its last record
    RECTL frame = {};   // of the picture, in 0.01 mm
    SIZEL device = {};  // pixels of the device that it was recorded for
    SIZEL deviceMm = {};
    bool plusOnly = false;                   // drawn with GDI+ alone, which GDI does not play
    std::vector<SpoolRecord> embedded = {};  // fonts for a spool file; offsets are within `bytes`
};

// Returns whether the bytes, of which 44 are enough, begin a metafile.
bool IsMetafile(ByteSpan bytes);

// Reads a metafile and checks that its records are whole and end within the bytes. Throws PageError, with
// what the file is or has: "is damaged: ...".
Metafile ReadMetafile(ByteSpan bytes);

// Splits bytes into records of a spool file, up to the first that is not whole; `base` is the offset of the
// first byte. Returns the offset of the first byte that is in no record.
uint64_t SplitSpoolRecords(ByteSpan bytes, uint64_t base, std::vector<SpoolRecord>& records);

// Returns the size of the frame. Its pixels are those of a device of this resolution, rounded; with its
// density it is exact.
PictureSize SizeOf(const Metafile& metafile, uint32_t dpi);

// Returns the place of the frame of a page that was drawn for a printer, in device pixels: where it was drawn
// if the page is as large as that printer's, by its real size otherwise.
RECT FrameOnPage(const Metafile& metafile, uint32_t pageWidth, uint32_t pageHeight, uint32_t dpi);

}  // namespace orvex::tools::print
